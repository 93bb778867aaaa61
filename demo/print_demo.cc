// Prints every sales document of the demo dealership through the component, the way a host
// does: one CRepoter, its properties, SetVars, then each print method (both templates where a
// setting or an argument chooses one) to a PDF in OUT. Writes OUT/manifest.tsv: file, method,
// template, arguments.
//
//   demo_print --db DEMO.db --facts FACTS --templates DIR --assets DIR --out DIR
#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "report/barcode/barcode.h"
#include "report/raster/png_writer.h"
#include "vantorel/crepoter.h"
#include "vantorel/error.h"
#include "vantorel/platform.h"
#include "vantorel/report_state.h"

namespace {

using vantorel::CRepoter;
using vantorel::Date;

std::map<std::string, std::string> ReadFacts(const std::string& path) {
  std::map<std::string, std::string> facts;
  std::ifstream in(path);
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    const size_t equals = line.find('=');
    if (equals != std::string::npos) facts[line.substr(0, equals)] = line.substr(equals + 1);
  }
  return facts;
}

void SetGatePass(const std::string& db, const char* value) {
  sqlite3* handle = nullptr;
  if (sqlite3_open(db.c_str(), &handle) == SQLITE_OK) {
    const std::string sql = std::string("update para_setup set para_value='") + value +
                            "' where para_flag='CHALLAN' and para_type='GATEPASS'";
    sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr);
  }
  sqlite3_close(handle);
}

// The e-invoice QR a host would hand over as a picture file: the invoice's QR payload, as PNG.
void WriteQrPicture(const std::string& db, int invoice, const std::string& file) {
  sqlite3* handle = nullptr;
  std::string payload = "IRN";
  if (sqlite3_open_v2(db.c_str(), &handle, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
    sqlite3_stmt* statement = nullptr;
    const std::string sql = "select qr_text from invoice where id=" + std::to_string(invoice);
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
  std::ofstream(file, std::ios::binary) << PagePng(document, 0, 300);
}

Date Iso(const std::string& text) {
  return Date::FromIso(text).value_or(Date::FromYmd(2024, 4, 1));
}

}  // namespace

int main(int argc, char** argv) {
  std::map<std::string, std::string> options;
  for (int i = 1; i + 1 < argc; i += 2) options[argv[i]] = argv[i + 1];
  for (const char* required : {"--db", "--facts", "--templates", "--assets", "--out"}) {
    if (!options.count(required)) {
      std::cerr << "usage: demo_print --db DEMO.db --facts FACTS --templates DIR --assets DIR "
                   "--out DIR\n";
      return 2;
    }
  }
  const std::string db = options["--db"];
  const std::string out = options["--out"];
  const std::string assets = options["--assets"];
  std::map<std::string, std::string> facts = ReadFacts(options["--facts"]);
  auto fact = [&](const char* key) -> std::string {
    const auto it = facts.find(key);
    if (it == facts.end()) throw std::runtime_error(std::string("the facts have no ") + key);
    return it->second;
  };
  auto id = [&](const char* key) { return static_cast<int16_t>(std::stoi(fact(key))); };
  std::filesystem::create_directories(out);
  const std::string logo = assets + "/logo.png";
  const std::string qr = out + "/einvoice-qr.png";
  // Stickers find their pictures in the host's temporary folder.
  ::setenv("TEMP", assets.c_str(), 1);
  // Message boxes of a demo run go to stderr, not to a desktop.
  vantorel::SetMessageBoxHandler([](const std::string& text, vantorel::MessageIcon) {
    std::cerr << "demo_print: message: " << text << "\n";
  });

  CRepoter rep;
  rep.put_ReportPath(options["--templates"] + "/");
  rep.put_DbConnectstring(db);
  rep.put_RptPDF(vantorel::kTrue);
  rep.put_AppPath(out);
  rep.put_FirmID(static_cast<uint8_t>(std::stoi(fact("firm_id"))));

  struct Call {
    std::string file;
    std::string method;
    std::string arguments;
    std::function<void()> run;
    std::function<void()> before;
  };
  std::vector<Call> calls;
  auto add = [&](std::string file, std::string method, std::string arguments,
                 std::function<void()> run, std::function<void()> before = {}) {
    calls.push_back({std::move(file), std::move(method), std::move(arguments), std::move(run),
                     std::move(before)});
  };
  try {
    const int16_t challan = id("challan_customer_id");
    add(
        "challan-gatepass", "Challan_Customer", fact("challan_customer_id"),
        [&] { rep.Challan_Customer(challan, logo); }, [&] { SetGatePass(db, "Y"); });
    add(
        "challan", "Challan_Customer", fact("challan_customer_id"),
        [&] { rep.Challan_Customer(challan, logo); }, [&] { SetGatePass(db, "N"); });
    add(
        "receipt", "ReceiptPrint", fact("receipt_id"),
        [&, r = id("receipt_id")] { rep.ReceiptPrint(r); }, [&] { SetGatePass(db, "Y"); });
    const Date enquiry_from = Iso(fact("enquiry_from")), enquiry_to = Iso(fact("enquiry_to"));
    const std::string range = fact("enquiry_from") + " " + fact("enquiry_to");
    add("enquiry-groupwise", "EnqGroupwise", range,
        [&] { rep.EnqGroupwise(enquiry_from, enquiry_to); });
    add("enquiry-matured", "EnqPending", range + " 1",
        [&] { rep.EnqPending(enquiry_from, enquiry_to, 1); });
    add("enquiry-pending", "EnqPending", range + " 0",
        [&] { rep.EnqPending(enquiry_from, enquiry_to, 0); });
    add("enquiry-booking", "EnqBooking", range, [&] { rep.EnqBooking(enquiry_from, enquiry_to); });
    const Date receipts_from = Iso(fact("receipt_from")), receipts_to = Iso(fact("receipt_to"));
    add("receipt-register", "RecRegister", fact("receipt_from") + " " + fact("receipt_to"),
        [&] { rep.RecRegister(receipts_from, receipts_to); });
    add("purchase-bill", "VehPurBill", fact("purchase_id"),
        [&, p = id("purchase_id")] { rep.VehPurBill(p); });
    add("purchase-bill-gst", "VehPurBillGST", fact("purchase_id"),
        [&, p = id("purchase_id")] { rep.VehPurBillGST(p); });
    add("vehicle-transfer", "VinTrf", fact("vintrf_id"),
        [&, t = id("vintrf_id")] { rep.VinTrf(t); });
    add("branch-transfer", "VehBtPrint", fact("branch_transfer_id"),
        [&, t = id("branch_transfer_id")] { rep.VehBtPrint(t); });
    add("challan-subdealer", "ChallanSub", fact("challan_sub_id"),
        [&, c = id("challan_sub_id")] { rep.ChallanSub(c, logo); });

    const int16_t invoice = id("invoice_id");
    const std::string inv = fact("invoice_id");
    add("invoice-2in1", "VehInvoice2in1", inv, [&] { rep.VehInvoice2in1(invoice); });
    add("invoice-with21", "VehInvoicewith21", inv, [&] { rep.VehInvoicewith21(invoice); });
    add("invoice-single", "VehInvoiceSingle", inv, [&] { rep.VehInvoiceSingle(invoice); });
    add("invoice-hero", "VehInvoiceHero", fact("hero_invoice_id"),
        [&, i = id("hero_invoice_id")] { rep.VehInvoiceHero(i); });
    add("invoice-hero-subdealer", "VehInvoiceHeroSubdealer", fact("hero_subdealer_invoice_id"),
        [&, i = id("hero_subdealer_invoice_id")] { rep.VehInvoiceHeroSubdealer(i); });
    add("provisional-rc", "ProVisionalRc", fact("prorc_invoice_id"),
        [&, i = id("prorc_invoice_id")] { rep.ProVisionalRc(i); });
    add("gate-pass", "VehGatePass", fact("gatepass_invoice_id"),
        [&, i = id("gatepass_invoice_id")] { rep.VehGatePass(i); });
    add("cycle-gate-pass", "CycleGatePass", fact("cycle_invoice_id"),
        [&, i = id("cycle_invoice_id")] { rep.CycleGatePass(i, logo); });
    add("declaration", "DecForm", inv, [&] { rep.DecForm(invoice); });
    add("stickers", "VehSticker", fact("sticker_invoice_id") + " 4",
        [&, i = id("sticker_invoice_id")] { rep.VehSticker(i, 4); });
    add("sale-letter", "VehSaleLetter", inv, [&] { rep.VehSaleLetter(invoice); });
    add("cycle-sale-letter", "CycleSaleLetter", fact("cycle_invoice_id"),
        [&, i = id("cycle_invoice_id")] { rep.CycleSaleLetter(i, logo); });
    add("form22", "VehForm22", fact("form22_invoice_id"),
        [&, i = id("form22_invoice_id")] { rep.VehForm22(i); });
    add("hsrp", "VehHSRP", fact("hsrp_invoice_id"),
        [&, i = id("hsrp_invoice_id")] { rep.VehHSRP(i); });
    add("temp-certificate-single", "VehTempCertificate", fact("temp_tline") + " Y",
        [&, t = id("temp_tline")] { rep.VehTempCertificate(t, "Y"); });
    add("temp-certificate", "VehTempCertificate", fact("temp_tline") + " N",
        [&, t = id("temp_tline")] { rep.VehTempCertificate(t, "N"); });
    add("invoice-subdealer", "VehInvoiceSubDealer", fact("subdealer_invoice_id"),
        [&, i = id("subdealer_invoice_id")] { rep.VehInvoiceSubDealer(i); });
    add("firm", "Wrc", "", [&] { rep.Wrc(); });
    add("bulk-receipt", "BulkReceiptPrint", fact("bulk_receipt_id") + " R",
        [&, r = id("bulk_receipt_id")] { rep.BulkReceiptPrint(r, "R"); });
    add("bulk-receipt-detail", "BulkReceiptPrint", fact("bulk_receipt_id") + " D",
        [&, r = id("bulk_receipt_id")] { rep.BulkReceiptPrint(r, "D"); });
    add("gst-invoice-single", "GSTVehInvoiceSingle", fact("invoice_subsidy_id"),
        [&, i = id("invoice_subsidy_id")] { rep.GSTVehInvoiceSingle(i, logo); });
    add("cycle-invoice", "CycleInvoice", fact("cycle_invoice_id"),
        [&, i = id("cycle_invoice_id")] { rep.CycleInvoice(i, logo); });
    add("gst-invoice-hero", "GSTVehInvoiceHero", fact("hero_invoice_id"),
        [&, i = id("hero_invoice_id")] { rep.GSTVehInvoiceHero(i); });
    add("gst-invoice-hero-subdealer", "GSTVehInvoiceHeroSubdealer",
        fact("hero_subdealer_invoice_id"),
        [&, i = id("hero_subdealer_invoice_id")] { rep.GSTVehInvoiceHeroSubdealer(i); });
    add("gst-invoice-2in1", "GSTVehInvoice2in1", inv,
        [&] { rep.GSTVehInvoice2in1(invoice, logo); });
    add("gst-invoice-with21", "GSTVehInvoicewith21", fact("invoice_after_revision_id"),
        [&, i = id("invoice_after_revision_id")] { rep.GSTVehInvoicewith21(i, logo); });
    add("gst-invoice-subdealer", "GSTVehInvoiceSubDealer", fact("subdealer_igst_invoice_id"),
        [&, i = id("subdealer_igst_invoice_id")] { rep.GSTVehInvoiceSubDealer(i, logo); });
    add("cycle-invoice-subdealer", "CycleInvoiceSubDealer", fact("cycle_subdealer_invoice_id"),
        [&, i = id("cycle_subdealer_invoice_id")] { rep.CycleInvoiceSubDealer(i, logo); });
    add("packing-list", "VehSubDealerPackingList", fact("packing_list_id"),
        [&, i = id("packing_list_id")] { rep.VehSubDealerPackingList(i); });
    add(
        "einvoice", "EInvoiceVehicle", fact("einvoice_id"),
        [&, i = id("einvoice_id")] { rep.EInvoiceVehicle(i, logo, qr); },
        [&] { WriteQrPicture(db, std::stoi(fact("einvoice_id")), qr); });
  } catch (const std::exception& error) {
    std::cerr << "demo_print: " << error.what() << "\n";
    return 1;
  }

  std::ofstream manifest(out + "/manifest.tsv");
  int failed = 0;
  for (const Call& call : calls) {
    if (call.before) call.before();
    const std::string pdf = out + "/" + call.file + ".pdf";
    std::filesystem::remove(pdf);
    rep.put_PDFPath(pdf);
    rep.SetVars();
    try {
      call.run();
    } catch (const vantorel::Error& error) {
      std::cerr << "demo_print: " << call.method << " " << call.arguments << ": "
                << error.description() << "\n";
      ++failed;
      continue;
    }
    if (!std::filesystem::exists(pdf)) {
      std::cerr << "demo_print: " << call.method << " " << call.arguments
                << " printed nothing (LastMsg: " << rep.get_LastMsg() << ")\n";
      ++failed;
      continue;
    }
    manifest << call.file << ".pdf\t" << call.method << "\t"
             << vantorel::CurrentReportState().RptName << "\t" << call.arguments << "\n";
    std::cout << pdf << "\n";
  }
  return failed == 0 ? 0 : 1;
}
