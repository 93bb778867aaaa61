#include "vantorel/crepoter.h"
#include "vantorel/error.h"

namespace vantorel {

void CRepoter::TrialParty(Date, const std::string&) { throw NotImplementedYet("TrialParty"); }

void CRepoter::TrialPartydcr(Date) { throw NotImplementedYet("TrialPartydcr"); }

void CRepoter::TrialGroup(Date, const std::string&, const std::string&) {
  throw NotImplementedYet("TrialGroup");
}

void CRepoter::TrialNature(Date, const std::string&, const std::string&) {
  throw NotImplementedYet("TrialNature");
}

}  // namespace vantorel
