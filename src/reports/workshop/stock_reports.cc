#include "vantorel/crepoter.h"
#include "vantorel/error.h"

namespace vantorel {

void CRepoter::w_history(const std::string&) { throw NotImplementedYet("w_history"); }

void CRepoter::w_OpeningParts() { throw NotImplementedYet("w_OpeningParts"); }

void CRepoter::w_ClosingParts(Date, VBool) { throw NotImplementedYet("w_ClosingParts"); }

void CRepoter::w_Stockvaluation(Date, VBool, const std::string&, const std::string&) {
  throw NotImplementedYet("w_Stockvaluation");
}

void CRepoter::w_Negativepart(Date) { throw NotImplementedYet("w_Negativepart"); }

void CRepoter::Apro_StockSummary(Date) { throw NotImplementedYet("Apro_StockSummary"); }

}  // namespace vantorel
