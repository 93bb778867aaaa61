// The catalogue of print methods: for each implemented method, the templates it may load, the
// components it pokes in them and what a template without one of them does to it, and the calls
// that print it on the demo dealership. Written once here and read by the template contract
// check (`vantorel check --contracts`), the test benches, the demo printer and the docs; a test
// runs every method on the scripted engine and holds it to its row.
//
// Thread-safety: immutable.
#ifndef VANTOREL_REPORTS_CATALOGUE_H_
#define VANTOREL_REPORTS_CATALOGUE_H_

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vantorel {

// What a template without the component does to the method.
enum class Lookup {
  // Used without a test: the engine's error reaches the host, and nothing is rendered or
  // released.
  kRequired,
  // Tested for: the method skips rendering without a word, and still releases.
  kChecked,
};

// A memo, a query parameter or a "Company" picture variable the method sets.
struct Use {
  // Not an aggregate, so that a list of bare names is a list of uses.
  constexpr Use(const char* use_name, Lookup use_lookup = Lookup::kRequired)  // NOLINT: implicit
      : name(use_name), lookup(use_lookup) {}
  const char* name;
  Lookup lookup;
};

struct QueryUse {
  const char* name;
  Lookup lookup = Lookup::kRequired;
  bool sql = false;             // the method writes the query's SQL
  std::vector<Use> parameters;  // in the order the method sets them
};

// One print of the method on the demo dealership.
struct ExampleCall {
  const char* output;         // the demo's file stem: "challan-gatepass"
  const char* template_name;  // the template this call prints
  // The arguments as `vantorel call` takes them, blank-separated: facts of the demo database in
  // braces ("{invoice_id}"), "{logo}" for the dealership's logo, "{qr}" for a QR picture file.
  const char* arguments;
};

struct PrintMethodFacts {
  const char* method;
  std::vector<const char*> templates;  // every template it may load, the usual one first
  std::vector<Use> memos;
  std::vector<QueryUse> queries;
  std::vector<Use> pictures;  // "Company" variables: logo, qrcode, picpath
  std::vector<ExampleCall> examples;
};

// Every implemented print method, in the order of the interface's sales documents.
std::span<const PrintMethodFacts> PrintMethodCatalogue();

// The row of "method", or nullptr.
const PrintMethodFacts* FindPrintMethod(std::string_view method);

// The row of the method that loads "template_name", or nullptr.
const PrintMethodFacts* FindTemplateUser(std::string_view template_name);

// The arguments of "call" split at blanks, each "{key}" replaced by values.at(key) (the demo's
// facts, and "logo" and "qr"); throws std::out_of_range naming a key that has no value.
std::vector<std::string> ExampleArguments(const ExampleCall& call,
                                          const std::map<std::string, std::string>& values);

// The catalogue as a Markdown table, one row per method, as docs/print-methods.md shows it.
std::string CatalogueTable();

}  // namespace vantorel

#endif  // VANTOREL_REPORTS_CATALOGUE_H_
