// The demo dealership's documents as a host prints them: one entry per example call of the
// print-method catalogue (src/reports/catalogue.h), naming the template it prints, the print
// method with its arguments, and the call on a CRepoter. The demo printer (make demo) writes each
// to a PDF, and the layout golden tests print each template through the same entries, so a method
// added to the catalogue is printed by both without a line here.
//
// Thread-safety: the table is immutable; a print runs on the thread of the CRepoter it is given.
#ifndef VANTOREL_DEMO_DEMO_PRINTS_H_
#define VANTOREL_DEMO_DEMO_PRINTS_H_

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "demo/facts.h"
#include "vantorel/crepoter.h"

namespace vantorel::demo {

// What a print needs besides its CRepoter.
struct PrintContext {
  std::string db;      // the demo database file; some prints change a setting in it first
  Facts facts;         // its facts
  std::string logo;    // the dealership's logo picture
  std::string folder;  // where prints may write files of their own (the e-invoices' QR pictures)

  // The fact "key"; throws std::runtime_error when the facts have none.
  const std::string& Fact(const std::string& key) const;
  // The fact "key" as a document id.
  int16_t Id(const std::string& key) const;
};

struct DemoPrint {
  const char* name;           // the output's file stem: "challan-gatepass"
  const char* template_name;  // the template the print chooses: "chlgatepass"
  const char* method;         // the print method
  const char* arguments;      // as text, facts in braces: "{sticker_invoice_id} 4", and "{logo}"
                              // and "{qr}" for the context's logo and QR picture
  // A setting or a file the print needs first; empty when it needs none.
  std::function<void(const PrintContext& context)> prepare;
  // Calls the method by name with the arguments, as a late-binding host does.
  std::function<void(CRepoter& rep, const PrintContext& context)> print;
};

// Every print of the demo, in the order make demo prints them. Together they print every
// shipped template; a template that a setting or an argument chooses has a print of its own.
const std::vector<DemoPrint>& DemoPrints();

// The print's arguments with each {key} replaced by its fact ("logo" and "qr": the context's
// pictures).
std::string Arguments(const DemoPrint& print, const PrintContext& context);

}  // namespace vantorel::demo

#endif  // VANTOREL_DEMO_DEMO_PRINTS_H_
