#include "vantorel/crepoter.h"
#include "vantorel/error.h"

namespace vantorel {

void CRepoter::GstSaleSummary(Date, Date) { throw NotImplementedYet("GstSaleSummary"); }

void CRepoter::GstPurchaseSummary(Date, Date) { throw NotImplementedYet("GstPurchaseSummary"); }

}  // namespace vantorel
