#include "vantorel/crepoter.h"
#include "vantorel/error.h"

namespace vantorel {

void CRepoter::Challan_Customer(int16_t, const std::string&) { throw NotImplementedYet("Challan_Customer"); }

void CRepoter::ReceiptPrint(int16_t) { throw NotImplementedYet("ReceiptPrint"); }

}  // namespace vantorel
