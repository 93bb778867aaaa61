#include "demo/demo_prints.h"

#include <sqlite3.h>

#include <fstream>
#include <stdexcept>

#include "report/barcode/barcode.h"
#include "report/raster/png_writer.h"

namespace vantorel::demo {
namespace {

using Context = PrintContext;

void SetGatePass(const std::string& db, const char* value) {
  sqlite3* handle = nullptr;
  if (sqlite3_open(db.c_str(), &handle) == SQLITE_OK) {
    const std::string sql = std::string("update para_setup set para_value='") + value +
                            "' where para_flag='CHALLAN' and para_type='GATEPASS'";
    sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr);
  }
  sqlite3_close(handle);
}

void GatePassYes(const Context& c) { SetGatePass(c.db, "Y"); }
void GatePassNo(const Context& c) { SetGatePass(c.db, "N"); }

std::string QrPicture(const Context& c) { return c.folder + "/einvoice-qr.png"; }

// The e-invoice QR a host would hand over as a picture file: the invoice's QR payload, as PNG.
void WriteQrPicture(const Context& c) {
  sqlite3* handle = nullptr;
  std::string payload = "IRN";
  if (sqlite3_open_v2(c.db.c_str(), &handle, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
    sqlite3_stmt* statement = nullptr;
    const std::string sql = "select qr_text from invoice where id=" + c.Fact("einvoice_id");
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
  std::ofstream(QrPicture(c), std::ios::binary) << PagePng(document, 0, 300);
}

Date Day(const Context& c, const char* key) {
  return Date::FromIso(c.Fact(key)).value_or(Date::FromYmd(2024, 4, 1));
}

}  // namespace

Facts ReadFacts(const std::string& path) {
  Facts facts;
  std::ifstream in(path);
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    const size_t equals = line.find('=');
    if (equals != std::string::npos) facts[line.substr(0, equals)] = line.substr(equals + 1);
  }
  return facts;
}

const std::string& PrintContext::Fact(const std::string& key) const {
  const auto it = facts.find(key);
  if (it == facts.end()) throw std::runtime_error("the facts have no " + key);
  return it->second;
}

int16_t PrintContext::Id(const std::string& key) const {
  return static_cast<int16_t>(std::stoi(Fact(key)));
}

std::string Arguments(const DemoPrint& print, const PrintContext& context) {
  std::string text = print.arguments;
  for (size_t open = text.find('{'); open != std::string::npos; open = text.find('{', open)) {
    const size_t close = text.find('}', open);
    if (close == std::string::npos) break;
    const std::string& fact = context.Fact(text.substr(open + 1, close - open - 1));
    text.replace(open, close - open + 1, fact);
    open += fact.size();
  }
  return text;
}

const std::vector<DemoPrint>& DemoPrints() {
  // The customer challan's template follows a setting, so the two challans set it first and
  // the receipt after them puts back the demo's own "Y".
  static const std::vector<DemoPrint> prints = {
      {"challan-gatepass", "chlgatepass", "Challan_Customer", "{challan_customer_id}", GatePassYes,
       [](CRepoter& rep, const Context& c) {
         rep.Challan_Customer(c.Id("challan_customer_id"), c.logo);
       }},
      {"challan", "challancus", "Challan_Customer", "{challan_customer_id}", GatePassNo,
       [](CRepoter& rep, const Context& c) {
         rep.Challan_Customer(c.Id("challan_customer_id"), c.logo);
       }},
      {"receipt", "receipt", "ReceiptPrint", "{receipt_id}", GatePassYes,
       [](CRepoter& rep, const Context& c) { rep.ReceiptPrint(c.Id("receipt_id")); }},
      {"enquiry-groupwise", "enqgroupwise", "EnqGroupwise", "{enquiry_from} {enquiry_to}", nullptr,
       [](CRepoter& rep, const Context& c) {
         rep.EnqGroupwise(Day(c, "enquiry_from"), Day(c, "enquiry_to"));
       }},
      {"enquiry-matured", "enqpending", "EnqPending", "{enquiry_from} {enquiry_to} 1", nullptr,
       [](CRepoter& rep, const Context& c) {
         rep.EnqPending(Day(c, "enquiry_from"), Day(c, "enquiry_to"), 1);
       }},
      {"enquiry-pending", "enqpending", "EnqPending", "{enquiry_from} {enquiry_to} 0", nullptr,
       [](CRepoter& rep, const Context& c) {
         rep.EnqPending(Day(c, "enquiry_from"), Day(c, "enquiry_to"), 0);
       }},
      {"enquiry-booking", "enqbooking", "EnqBooking", "{enquiry_from} {enquiry_to}", nullptr,
       [](CRepoter& rep, const Context& c) {
         rep.EnqBooking(Day(c, "enquiry_from"), Day(c, "enquiry_to"));
       }},
      {"receipt-register", "recregister", "RecRegister", "{receipt_from} {receipt_to}", nullptr,
       [](CRepoter& rep, const Context& c) {
         rep.RecRegister(Day(c, "receipt_from"), Day(c, "receipt_to"));
       }},
      {"purchase-bill", "vehpurbill", "VehPurBill", "{purchase_id}", nullptr,
       [](CRepoter& rep, const Context& c) { rep.VehPurBill(c.Id("purchase_id")); }},
      {"purchase-bill-gst", "vehpurbillgst", "VehPurBillGST", "{purchase_id}", nullptr,
       [](CRepoter& rep, const Context& c) { rep.VehPurBillGST(c.Id("purchase_id")); }},
      {"vehicle-transfer", "vintrf", "VinTrf", "{vintrf_id}", nullptr,
       [](CRepoter& rep, const Context& c) { rep.VinTrf(c.Id("vintrf_id")); }},
      {"branch-transfer", "vehbtprint", "VehBtPrint", "{branch_transfer_id}", nullptr,
       [](CRepoter& rep, const Context& c) { rep.VehBtPrint(c.Id("branch_transfer_id")); }},
      {"challan-subdealer", "challansub", "ChallanSub", "{challan_sub_id}", nullptr,
       [](CRepoter& rep, const Context& c) { rep.ChallanSub(c.Id("challan_sub_id"), c.logo); }},
      {"invoice-2in1", "vehinvoice", "VehInvoice2in1", "{invoice_id}", nullptr,
       [](CRepoter& rep, const Context& c) { rep.VehInvoice2in1(c.Id("invoice_id")); }},
      {"invoice-with21", "vehinvoicewith21", "VehInvoicewith21", "{invoice_id}", nullptr,
       [](CRepoter& rep, const Context& c) { rep.VehInvoicewith21(c.Id("invoice_id")); }},
      {"invoice-single", "vehinvoicesingle", "VehInvoiceSingle", "{invoice_id}", nullptr,
       [](CRepoter& rep, const Context& c) { rep.VehInvoiceSingle(c.Id("invoice_id")); }},
      {"invoice-hero", "vehinvoicehero", "VehInvoiceHero", "{hero_invoice_id}", nullptr,
       [](CRepoter& rep, const Context& c) { rep.VehInvoiceHero(c.Id("hero_invoice_id")); }},
      {"invoice-hero-subdealer", "vehinvoiceherosubdealer", "VehInvoiceHeroSubdealer",
       "{hero_subdealer_invoice_id}", nullptr,
       [](CRepoter& rep, const Context& c) {
         rep.VehInvoiceHeroSubdealer(c.Id("hero_subdealer_invoice_id"));
       }},
      {"provisional-rc", "prorc", "ProVisionalRc", "{prorc_invoice_id}", nullptr,
       [](CRepoter& rep, const Context& c) { rep.ProVisionalRc(c.Id("prorc_invoice_id")); }},
      {"gate-pass", "vehgatepass", "VehGatePass", "{gatepass_invoice_id}", nullptr,
       [](CRepoter& rep, const Context& c) { rep.VehGatePass(c.Id("gatepass_invoice_id")); }},
      {"cycle-gate-pass", "cyclegatepass", "CycleGatePass", "{cycle_invoice_id}", nullptr,
       [](CRepoter& rep, const Context& c) {
         rep.CycleGatePass(c.Id("cycle_invoice_id"), c.logo);
       }},
      {"declaration", "decform", "DecForm", "{invoice_id}", nullptr,
       [](CRepoter& rep, const Context& c) { rep.DecForm(c.Id("invoice_id")); }},
      {"stickers", "vehsticker", "VehSticker", "{sticker_invoice_id} 4", nullptr,
       [](CRepoter& rep, const Context& c) { rep.VehSticker(c.Id("sticker_invoice_id"), 4); }},
      {"sale-letter", "vehsaleletter", "VehSaleLetter", "{invoice_id}", nullptr,
       [](CRepoter& rep, const Context& c) { rep.VehSaleLetter(c.Id("invoice_id")); }},
      {"cycle-sale-letter", "cyclesaleletter", "CycleSaleLetter", "{cycle_invoice_id}", nullptr,
       [](CRepoter& rep, const Context& c) {
         rep.CycleSaleLetter(c.Id("cycle_invoice_id"), c.logo);
       }},
      {"form22", "form22", "VehForm22", "{form22_invoice_id}", nullptr,
       [](CRepoter& rep, const Context& c) { rep.VehForm22(c.Id("form22_invoice_id")); }},
      {"hsrp", "hsrp", "VehHSRP", "{hsrp_invoice_id}", nullptr,
       [](CRepoter& rep, const Context& c) { rep.VehHSRP(c.Id("hsrp_invoice_id")); }},
      {"temp-certificate-single", "tempcertsingle", "VehTempCertificate", "{temp_tline} Y", nullptr,
       [](CRepoter& rep, const Context& c) { rep.VehTempCertificate(c.Id("temp_tline"), "Y"); }},
      {"temp-certificate", "tempcert", "VehTempCertificate", "{temp_tline} N", nullptr,
       [](CRepoter& rep, const Context& c) { rep.VehTempCertificate(c.Id("temp_tline"), "N"); }},
      {"invoice-subdealer", "vehinvoicesub", "VehInvoiceSubDealer", "{subdealer_invoice_id}",
       nullptr,
       [](CRepoter& rep, const Context& c) {
         rep.VehInvoiceSubDealer(c.Id("subdealer_invoice_id"));
       }},
      {"firm", "wrc", "Wrc", "", nullptr, [](CRepoter& rep, const Context&) { rep.Wrc(); }},
      {"bulk-receipt", "bulkreceipt", "BulkReceiptPrint", "{bulk_receipt_id} R", nullptr,
       [](CRepoter& rep, const Context& c) { rep.BulkReceiptPrint(c.Id("bulk_receipt_id"), "R"); }},
      {"bulk-receipt-detail", "bulkreceiptdetail", "BulkReceiptPrint", "{bulk_receipt_id} D",
       nullptr,
       [](CRepoter& rep, const Context& c) { rep.BulkReceiptPrint(c.Id("bulk_receipt_id"), "D"); }},
      {"gst-invoice-single", "gstvehinvoicesingle", "GSTVehInvoiceSingle", "{invoice_subsidy_id}",
       nullptr,
       [](CRepoter& rep, const Context& c) {
         rep.GSTVehInvoiceSingle(c.Id("invoice_subsidy_id"), c.logo);
       }},
      {"cycle-invoice", "cycleinvoice", "CycleInvoice", "{cycle_invoice_id}", nullptr,
       [](CRepoter& rep, const Context& c) { rep.CycleInvoice(c.Id("cycle_invoice_id"), c.logo); }},
      {"gst-invoice-hero", "gstvehinvoicehero", "GSTVehInvoiceHero", "{hero_invoice_id}", nullptr,
       [](CRepoter& rep, const Context& c) { rep.GSTVehInvoiceHero(c.Id("hero_invoice_id")); }},
      {"gst-invoice-hero-subdealer", "gstvehinvoiceherosubdealer", "GSTVehInvoiceHeroSubdealer",
       "{hero_subdealer_invoice_id}", nullptr,
       [](CRepoter& rep, const Context& c) {
         rep.GSTVehInvoiceHeroSubdealer(c.Id("hero_subdealer_invoice_id"));
       }},
      {"gst-invoice-2in1", "gstvehinvoice", "GSTVehInvoice2in1", "{invoice_id}", nullptr,
       [](CRepoter& rep, const Context& c) { rep.GSTVehInvoice2in1(c.Id("invoice_id"), c.logo); }},
      {"gst-invoice-with21", "gstvehinvoicewith21", "GSTVehInvoicewith21",
       "{invoice_after_revision_id}", nullptr,
       [](CRepoter& rep, const Context& c) {
         rep.GSTVehInvoicewith21(c.Id("invoice_after_revision_id"), c.logo);
       }},
      {"gst-invoice-subdealer", "gstvehinvoicesub", "GSTVehInvoiceSubDealer",
       "{subdealer_igst_invoice_id}", nullptr,
       [](CRepoter& rep, const Context& c) {
         rep.GSTVehInvoiceSubDealer(c.Id("subdealer_igst_invoice_id"), c.logo);
       }},
      {"cycle-invoice-subdealer", "cycleinvoicesub", "CycleInvoiceSubDealer",
       "{cycle_subdealer_invoice_id}", nullptr,
       [](CRepoter& rep, const Context& c) {
         rep.CycleInvoiceSubDealer(c.Id("cycle_subdealer_invoice_id"), c.logo);
       }},
      {"packing-list", "vehsubpackinglist", "VehSubDealerPackingList", "{packing_list_id}", nullptr,
       [](CRepoter& rep, const Context& c) {
         rep.VehSubDealerPackingList(c.Id("packing_list_id"));
       }},
      {"einvoice", "einvoicevehicle", "EInvoiceVehicle", "{einvoice_id}", WriteQrPicture,
       [](CRepoter& rep, const Context& c) {
         rep.EInvoiceVehicle(c.Id("einvoice_id"), c.logo, QrPicture(c));
       }},
  };
  return prints;
}

}  // namespace vantorel::demo
