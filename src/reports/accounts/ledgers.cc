#include "vantorel/crepoter.h"
#include "vantorel/error.h"

namespace vantorel {

void CRepoter::RefLedger(int32_t, Date, Date) { throw NotImplementedYet("RefLedger"); }

void CRepoter::PartyRefLedgerOld(int16_t) { throw NotImplementedYet("PartyRefLedgerOld"); }

void CRepoter::PartyRefLedger(const std::string&, const std::string&) {
  throw NotImplementedYet("PartyRefLedger");
}

void CRepoter::VoucherPrintUserWise(const std::string&) {
  throw NotImplementedYet("VoucherPrintUserWise");
}

}  // namespace vantorel
