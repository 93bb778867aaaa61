// The demo's facts file: which document ids and date ranges show what ("invoice_id=12"), one
// "key=value" line each. demo_gen writes it beside the database; the demo printer, the layout
// goldens and the tests read it to know which documents to print.
#ifndef VANTOREL_DEMO_FACTS_H_
#define VANTOREL_DEMO_FACTS_H_

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace vantorel::demo {

// The facts as demo_gen gathers them, in the order it writes them.
using FactList = std::vector<std::pair<std::string, std::string>>;
// The facts as a reader looks them up.
using Facts = std::map<std::string, std::string>;

// The file's text: a comment heading, then the facts in their order.
std::string FactsText(const FactList& facts);

// Reads a facts file: "key=value" lines; blank lines and lines starting with '#' are skipped.
// A file that cannot be read gives no facts.
Facts ReadFacts(const std::string& path);

}  // namespace vantorel::demo

#endif  // VANTOREL_DEMO_FACTS_H_
