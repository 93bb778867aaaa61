#include "vantorel/crepoter.h"
#include "vantorel/error.h"

namespace vantorel {

void CRepoter::w_ServiceReport(Date, Date) { throw NotImplementedYet("w_ServiceReport"); }

void CRepoter::w_mechreqlist(int16_t, const std::string&, const std::string&, Date, Date) {
  throw NotImplementedYet("w_mechreqlist");
}

void CRepoter::w_mechlablist(int16_t, const std::string&, Date, Date) {
  throw NotImplementedYet("w_mechlablist");
}

void CRepoter::w_superreqlist(int16_t, const std::string&, Date, Date) {
  throw NotImplementedYet("w_superreqlist");
}

void CRepoter::w_superlablist(int16_t, const std::string&, Date, Date) {
  throw NotImplementedYet("w_superlablist");
}

}  // namespace vantorel
