// The books of account: chart of accounts and vouchers posted from every document.
#include "demo/workshop.h"

namespace vantorel::demo {

void AddBooks(const Dealership&, const Options&, Random&, Workshop&, Dataset&, Facts&) {}

}  // namespace vantorel::demo
