#include "demo/demo_prints.h"

#include <sqlite3.h>

#include <fstream>
#include <stdexcept>

#include "component/dispatch.h"

#include "report/barcode/barcode.h"
#include "report/raster/png_writer.h"
#include "reports/catalogue.h"

namespace vantorel::demo {
namespace {

using Context = PrintContext;

void SetSetting(const std::string& db, const char* flag, const char* type, const char* value) {
  sqlite3* handle = nullptr;
  if (sqlite3_open(db.c_str(), &handle) == SQLITE_OK) {
    const std::string sql = std::string("update para_setup set para_value='") + value +
                            "' where para_flag='" + flag + "' and para_type='" + type + "'";
    sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr);
  }
  sqlite3_close(handle);
}

void GatePassYes(const Context& c) { SetSetting(c.db, "CHALLAN", "GATEPASS", "Y"); }
void GatePassNo(const Context& c) { SetSetting(c.db, "CHALLAN", "GATEPASS", "N"); }
void PurchaseOrderView(const Context& c) { SetSetting(c.db, "WS_PO", "PO", "Y"); }
void PurchaseOrderPlain(const Context& c) { SetSetting(c.db, "WS_PO", "PO", "N"); }

// The e-invoices a host hands their signed QR code as a picture file, each made from the signed
// text of its own document: the SQL that reads it, facts in braces.
struct QrSource {
  const char* output;
  const char* sql;
};
constexpr QrSource kQrSources[] = {
    {"einvoice", "select qr_text from invoice where id={einvoice_id}"},
    {"einvoice-service",
     "select qr_text from ws_jobinv where id={einvoice_service_id} and "
     "ma_rv='{einvoice_service_rv}'"},
    {"einvoice-claim",
     "select qr_text from ws_claim where docid={claim_docid} and docfrom='{claim_docfrom}'"},
};

const QrSource* QrSourceOf(const std::string& output) {
  for (const QrSource& source : kQrSources) {
    if (output == source.output) return &source;
  }
  return nullptr;
}

// The QR picture of "output": its own file, so that each e-invoice shows its own code.
std::string QrPicture(const Context& c, const std::string& output) {
  return c.folder + "/" + (QrSourceOf(output) != nullptr ? output : "einvoice") + "-qr.png";
}

// "text" with each {key} replaced by its fact.
std::string WithFacts(std::string text, const Context& c) {
  for (size_t open = text.find('{'); open != std::string::npos; open = text.find('{', open)) {
    const size_t close = text.find('}', open);
    if (close == std::string::npos) break;
    const std::string& value = c.Fact(text.substr(open + 1, close - open - 1));
    text.replace(open, close - open + 1, value);
    open += value.size();
  }
  return text;
}

// The e-invoice QR a host would hand over as a picture file: the document's signed QR text, as
// PNG.
void WriteQrPicture(const Context& c, const QrSource& source) {
  sqlite3* handle = nullptr;
  std::string payload = "IRN";
  if (sqlite3_open_v2(c.db.c_str(), &handle, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
    sqlite3_stmt* statement = nullptr;
    const std::string sql = WithFacts(source.sql, c);
    if (sqlite3_prepare_v2(handle, sql.c_str(), -1, &statement, nullptr) == SQLITE_OK &&
        sqlite3_step(statement) == SQLITE_ROW && sqlite3_column_text(statement, 0) != nullptr) {
      payload = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
    }
    sqlite3_finalize(statement);
  }
  sqlite3_close(handle);
  using namespace vantorel::report;
  Document document;
  Page page;
  page.size = {170, 170};
  page.items.push_back(RectItem{{0, 0, 170, 170}, Color::White(), {0}, 0});
  const uint32_t symbol = document.AddBarcode(Encode(Symbology::kQr, payload));
  page.items.push_back(BarcodeItem{{5, 5, 160, 160}, symbol});
  document.pages.push_back(page);
  std::ofstream(QrPicture(c, source.output), std::ios::binary) << PagePng(document, 0, 300);
}

// The facts and the pictures the arguments of "output" name.
std::map<std::string, std::string> ArgumentValues(const Context& c, const std::string& output) {
  std::map<std::string, std::string> values = c.facts;
  values["logo"] = c.logo;
  values["qr"] = QrPicture(c, output);
  return values;
}

// What a print needs first, by its output's name: the customer challan's template follows a
// setting, so the two challans set it and the receipt after them puts back the demo's own "Y";
// the purchase order's layout follows a setting too; an e-invoice is handed its QR picture as a
// file.
std::function<void(const Context&)> Preparation(const std::string& output) {
  if (output == "challan-gatepass" || output == "receipt") return GatePassYes;
  if (output == "challan") return GatePassNo;
  if (const QrSource* source = QrSourceOf(output)) {
    return [source](const Context& c) { WriteQrPicture(c, *source); };
  }
  if (output == "purchase-order-view") return PurchaseOrderView;
  if (output == "purchase-order") return PurchaseOrderPlain;
  return nullptr;
}

}  // namespace

const std::string& PrintContext::Fact(const std::string& key) const {
  const auto it = facts.find(key);
  if (it == facts.end()) throw std::runtime_error("the facts have no " + key);
  return it->second;
}

int16_t PrintContext::Id(const std::string& key) const {
  return static_cast<int16_t>(std::stoi(Fact(key)));
}

std::string Arguments(const DemoPrint& print, const PrintContext& context) {
  std::string text;
  for (const std::string& argument :
       ExampleArguments({print.name, print.template_name, print.arguments},
                        ArgumentValues(context, print.name))) {
    text += (text.empty() ? "" : " ") + argument;
  }
  return text;
}

const std::vector<DemoPrint>& DemoPrints() {
  static const std::vector<DemoPrint> prints = [] {
    std::vector<DemoPrint> all;
    for (const PrintMethodFacts& method : PrintMethodCatalogue()) {
      for (const ExampleCall& example : method.examples) {
        const char* name = method.method;
        all.push_back({example.output, example.template_name, name, example.arguments,
                       Preparation(example.output),
                       [name, example](CRepoter& rep, const Context& c) {
                         std::vector<Variant> args;
                         for (const std::string& argument :
                              ExampleArguments(example, ArgumentValues(c, example.output))) {
                           args.push_back(Variant::String(argument));
                         }
                         InvokeByName(rep, name, kDispatchMethod, args);
                       }});
      }
    }
    return all;
  }();
  return prints;
}

}  // namespace vantorel::demo
