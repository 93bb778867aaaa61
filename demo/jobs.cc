// The workshop floor: job cards, job and counter invoices, e-invoices, mechanics, follow-ups.
#include "demo/workshop.h"

namespace vantorel::demo {

void AddJobs(const Dealership&, const Options&, Random&, Workshop&, Dataset&, Facts&) {}

}  // namespace vantorel::demo
