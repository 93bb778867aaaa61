#include "template_contracts.h"

#include <cctype>
#include <string_view>

namespace vantorel {
namespace {

// Parameter names are matched without case, as the engine finds them.
bool SameName(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (std::toupper(static_cast<unsigned char>(a[i])) !=
        std::toupper(static_cast<unsigned char>(b[i]))) {
      return false;
    }
  }
  return true;
}

}  // namespace

std::vector<report::Problem> CheckContract(const report::CompiledReport& report,
                                           const PrintMethodFacts& method) {
  std::vector<report::Problem> problems;
  auto missing = [&](const std::string& what, Lookup lookup, const std::string& hint) {
    const char* effect = lookup == Lookup::kRequired ? " (without it the method fails)"
                                                     : " (without it the method prints nothing)";
    problems.push_back(
        {report.file, 0, std::string(method.method) + " needs " + what + effect, hint});
  };
  if (report.FindDatabase("DMSDB") < 0) {
    problems.push_back({report.file, 0,
                        std::string(method.method) + " needs the database \"DMSDB\"",
                        "add <database name=\"DMSDB\"/>"});
  }
  for (const Use& memo : method.memos) {
    const report::ComponentEntry* entry = report.Find(memo.name);
    if (entry == nullptr || entry->kind != report::ComponentEntry::Kind::kMemo) {
      missing(std::string("a text named \"") + memo.name + "\"", memo.lookup,
              std::string("add <text name=\"") + memo.name + "\" …>");
    }
  }
  for (const QueryUse& use : method.queries) {
    const std::string name = use.name;
    const int query = report.FindQuery(name);
    if (query < 0) {
      missing("a query named \"" + name + "\"", use.lookup, "add <query name=\"" + name + "\">");
      continue;
    }
    for (const Use& param : use.parameters) {
      bool found = false;
      for (const report::CompiledParam& declared :
           report.queries[static_cast<size_t>(query)].params) {
        found |= SameName(declared.name, param.name);
      }
      if (!found) {
        missing(std::string("the parameter \"") + param.name + "\" of query \"" + name + "\"",
                param.lookup,
                std::string("add <param name=\"") + param.name + "\" …/> to the query");
      }
    }
  }
  for (const Use& variable : method.pictures) {
    if (report.FindVariable("Company", variable.name) < 0) {
      missing(std::string("the variable Company.") + variable.name, variable.lookup,
              std::string("add <variable category=\"Company\" name=\"") + variable.name +
                  "\" value='\"\"'/>");
    }
  }
  return problems;
}

}  // namespace vantorel
