// Returns and labels: the pre-GST VAT year, C forms, quotations, the top list, label selections.
#include "demo/workshop.h"

namespace vantorel::demo {

void AddReturns(const Dealership&, const Options&, Random&, Workshop&, Dataset&, Facts&) {}

}  // namespace vantorel::demo
