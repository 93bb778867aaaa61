// The spare-parts store: parts master, suppliers, purchases, transfers, orders, estimates, returns.
#include "demo/workshop.h"

namespace vantorel::demo {

void AddSpares(const Dealership&, const Options&, Random&, Workshop&, Dataset&, Facts&) {}

}  // namespace vantorel::demo
