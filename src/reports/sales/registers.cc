#include "vantorel/crepoter.h"
#include "vantorel/error.h"

namespace vantorel {

void CRepoter::EnqGroupwise(Date, Date) { throw NotImplementedYet("EnqGroupwise"); }

void CRepoter::EnqPending(Date, Date, int16_t) { throw NotImplementedYet("EnqPending"); }

void CRepoter::EnqBooking(Date, Date) { throw NotImplementedYet("EnqBooking"); }

void CRepoter::RecRegister(Date, Date) { throw NotImplementedYet("RecRegister"); }

}  // namespace vantorel
