#include "vantorel/crepoter.h"
#include "vantorel/error.h"

namespace vantorel {

void CRepoter::VoucherPrintSingle(int16_t) { throw NotImplementedYet("VoucherPrintSingle"); }

void CRepoter::OldVehicleReceiptPrint(int16_t) {
  throw NotImplementedYet("OldVehicleReceiptPrint");
}

void CRepoter::ChequePrint(const std::string&, const std::string&, const std::string&,
                           const std::string&, const std::string&) {
  throw NotImplementedYet("ChequePrint");
}

void CRepoter::GstVoucherPrint(int16_t) { throw NotImplementedYet("GstVoucherPrint"); }

void CRepoter::PayoutVoucherPrint(int16_t) { throw NotImplementedYet("PayoutVoucherPrint"); }

void CRepoter::GstDCNPrint(int16_t) { throw NotImplementedYet("GstDCNPrint"); }

}  // namespace vantorel
