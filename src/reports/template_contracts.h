// What each print method needs of its template: the memos it sets, the queries it changes (and
// their parameters), the picture variables it fills. A template missing one of them fails, or
// prints nothing, when its method runs; `vantorel check --contracts` finds that beforehand.
//
// Thread-safety: immutable.
#ifndef VANTOREL_REPORTS_TEMPLATE_CONTRACTS_H_
#define VANTOREL_REPORTS_TEMPLATE_CONTRACTS_H_

#include <span>
#include <string>
#include <vector>

#include "report/compile/compiled_report.h"

namespace vantorel {

struct TemplateContract {
  const char* template_name;
  const char* method;  // the print method that loads it
  std::vector<const char*> memos;
  // Queries as "name" or "name:param1,param2" when the method sets parameters.
  std::vector<const char*> queries;
  std::vector<const char*> variables;  // "Company" variables: logo, qrcode, picpath
};

// The contracts of the sales and vehicle documents, one per template name.
std::span<const TemplateContract> SalesContracts();

// The contract of "template_name", or nullptr.
const TemplateContract* FindContract(const std::string& template_name);

// What "report" lacks of "contract": the "DMSDB" database, each memo (a text object of that
// name), each query and its parameters, each "Company" variable. Empty when it has everything.
std::vector<report::Problem> CheckContract(const report::CompiledReport& report,
                                           const TemplateContract& contract);

}  // namespace vantorel

#endif  // VANTOREL_REPORTS_TEMPLATE_CONTRACTS_H_
