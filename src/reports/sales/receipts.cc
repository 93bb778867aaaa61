#include "vantorel/crepoter.h"
#include "vantorel/error.h"

namespace vantorel {

void CRepoter::Wrc() { throw NotImplementedYet("Wrc"); }

void CRepoter::BulkReceiptPrint(int16_t, const std::string&) { throw NotImplementedYet("BulkReceiptPrint"); }

}  // namespace vantorel
