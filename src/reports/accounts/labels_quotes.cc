#include "vantorel/crepoter.h"
#include "vantorel/error.h"

namespace vantorel {

void CRepoter::WS_TOPLIST(int16_t) { throw NotImplementedYet("WS_TOPLIST"); }

void CRepoter::QuotePrint(int16_t) { throw NotImplementedYet("QuotePrint"); }

void CRepoter::PartsQrPrint(const std::string&, int16_t) {
  throw NotImplementedYet("PartsQrPrint");
}

void CRepoter::ChassisQrPrint(const std::string&, int16_t) {
  throw NotImplementedYet("ChassisQrPrint");
}

}  // namespace vantorel
