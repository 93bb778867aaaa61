#include "vantorel/crepoter.h"
#include "vantorel/error.h"

namespace vantorel {

void CRepoter::w_purchaseCheck(int16_t) { throw NotImplementedYet("w_purchaseCheck"); }

void CRepoter::w_purchaseCheckGST(int16_t) { throw NotImplementedYet("w_purchaseCheckGST"); }

void CRepoter::w_partPlacementList(int16_t) { throw NotImplementedYet("w_partPlacementList"); }

void CRepoter::w_stocktransfer(int16_t) { throw NotImplementedYet("w_stocktransfer"); }

void CRepoter::w_purchaseorder(int16_t) { throw NotImplementedYet("w_purchaseorder"); }

void CRepoter::w_estimate(int16_t) { throw NotImplementedYet("w_estimate"); }

void CRepoter::Apro_WsPrintPurRet(int16_t, double, VBool, const std::string&) {
  throw NotImplementedYet("Apro_WsPrintPurRet");
}

}  // namespace vantorel
