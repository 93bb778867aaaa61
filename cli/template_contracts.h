// What a template must hold for the print method that loads it, as the catalogue says: the
// memos it sets, the queries it changes (and their parameters), the picture variables it fills.
// A template missing one of them fails, or prints nothing, when its method runs;
// `vantorel check --contracts` finds that beforehand.
//
// Thread-safety: stateless.
#ifndef VANTOREL_CLI_TEMPLATE_CONTRACTS_H_
#define VANTOREL_CLI_TEMPLATE_CONTRACTS_H_

#include <vector>

#include "report/compile/compiled_report.h"
#include "reports/catalogue.h"

namespace vantorel {

// What "report" lacks of what "method" pokes: the "DMSDB" database, each memo (a text object of
// that name), each query and its parameters, each "Company" variable. Empty when it has
// everything.
std::vector<report::Problem> CheckContract(const report::CompiledReport& report,
                                           const PrintMethodFacts& method);

}  // namespace vantorel

#endif  // VANTOREL_CLI_TEMPLATE_CONTRACTS_H_
