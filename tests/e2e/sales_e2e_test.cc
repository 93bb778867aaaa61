// Every catalogued print method, end to end, called as its first example call says: the demo
// dealership's database (SQLite, and the same data in PostgreSQL), the shipped templates, our
// engine, a PDF checked with qpdf and read back with pdftotext for what the document must show —
// the customer, the vehicle, the amount in words exactly as the component wrote it.
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>

#include "component/dispatch.h"
#include "data/connection.h"
#include "data/value.h"
#include "demo/facts.h"
#include "host/date_format.h"
#include "reports/catalogue.h"
#include "support/postgres.h"
#include "support/shared_demo.h"
#include "support/shell.h"
#include "support/test_support.h"
#include "vantorel/crepoter.h"
#include "vantorel/error.h"
#include "words/amount_in_words.h"

namespace vantorel {
namespace {

using testing::Shell;

// Runs of blanks and line breaks as one blank: documents wrap and align text as they like.
std::string Squeezed(const std::string& text) {
  std::string out;
  for (char c : text) {
    const bool blank = c == ' ' || c == '\n' || c == '\t' || c == '\f' || c == '\r';
    if (blank) {
      if (!out.empty() && out.back() != ' ') out += ' ';
    } else {
      out += c;
    }
  }
  return out;
}

std::vector<std::string> Statements(const std::string& path) {
  std::ifstream in(path);
  std::vector<std::string> statements;
  std::string line, statement;
  while (std::getline(in, line)) {
    const size_t text = line.find_first_not_of(" \t\r");
    if (text == std::string::npos || line.compare(text, 2, "--") == 0) continue;
    statement += line + "\n";
    if (line[line.find_last_not_of(" \t\r")] == ';') {
      statements.push_back(statement.substr(0, statement.rfind(';')));
      statement.clear();
    }
  }
  return statements;
}

// The demo database once for all tests: as an SQLite file and loaded into PostgreSQL.
class Demo {
 public:
  static Demo& Get() {
    static Demo demo;
    return demo;
  }

  std::string folder() const { return folder_; }
  std::string sqlite() const { return folder() + "/demo.db"; }
  const std::map<std::string, std::string>& facts() const { return facts_; }

  // The PostgreSQL connection string of a schema holding the demo data; empty without a server.
  const std::string& postgres() {
    if (!postgres_loaded_) LoadPostgres();
    return postgres_;
  }

  // The MariaDB connection string of a database holding the demo data; empty without a server.
  const std::string& mariadb() {
    if (!mariadb_loaded_) LoadMariaDb();
    return mariadb_;
  }

 private:
  // The prints only read the database, so every test process reads the same files.
  Demo() : folder_(testing::SharedDemoFolder(DEMO_GEN)) {
    facts_ = demo::ReadFacts(folder() + "/facts.txt");
  }

  void Load(data::Connection& db) const {
    for (const std::string& file :
         {std::string(VANTOREL_SOURCE_DIR) + "/demo/schema.sql", folder() + "/data.sql"}) {
      for (const std::string& statement : Statements(file)) db.Execute(statement);
    }
  }

  // Loaded once per start of the server, into a schema of its own.
  void LoadPostgres() {
    postgres_loaded_ = true;
    const std::string server = testing::PostgresConnectionString();
    const std::string server_folder = testing::ServerFolder("pg/cluster");
    if (server.empty() || server_folder.empty()) return;
    const std::string schema = "e2e_demo";
    testing::Once(server_folder, schema, [&] {
      auto db = data::Connection::OpenForLoading(server);
      db->Execute("drop schema if exists " + schema + " cascade");
      db->Execute("create schema " + schema);
      db->Execute("set search_path to " + schema);
      db->Execute("set client_min_messages to warning");
      Load(*db);
    });
    // Every connection the component and the templates make lands in that schema.
    postgres_ = server + ";ConnSettings=set search_path to " + schema;
  }

  // Loaded once per start of the server, into a database of its own.
  void LoadMariaDb() {
    mariadb_loaded_ = true;
    const std::string server = testing::MariaDbConnectionString();
    const std::string server_folder = testing::ServerFolder("mariadb/server");
    if (server.empty() || server_folder.empty()) return;
    const std::string database = "e2e_demo";
    const std::string connection =
        server.substr(0, server.find("Database=dms")) + "Database=" + database +
        server.substr(server.find("Database=dms") + std::string("Database=dms").size());
    testing::Once(server_folder, database, [&] {
      {
        auto db = data::Connection::OpenForLoading(server);
        db->Execute("drop database if exists " + database);
        db->Execute("create database " + database);
      }
      auto db = data::Connection::OpenForLoading(connection);
      Load(*db);
    });
    mariadb_ = connection;
  }

  std::string folder_;
  std::map<std::string, std::string> facts_;
  std::string postgres_;
  bool postgres_loaded_ = false;
  std::string mariadb_;
  bool mariadb_loaded_ = false;
};

// What a document's PDF must show, from the database it was printed from.
using Expected = std::function<std::vector<std::string>(data::Connection&,
                                                        const std::map<std::string, std::string>&)>;

int16_t Id(const std::map<std::string, std::string>& facts, const std::string& key) {
  const auto it = facts.find(key);
  EXPECT_NE(it, facts.end()) << key;
  return it == facts.end() ? 0 : static_cast<int16_t>(std::stoi(it->second));
}

std::string One(data::Connection& db, const std::string& sql) {
  auto cursor = db.Execute(sql);
  std::vector<data::Value> row;
  if (!cursor->Next(row) || row.empty() || row[0].is_null()) return {};
  return data::ToText(row[0]);
}

double Amount(data::Connection& db, const std::string& sql) {
  const std::string text = One(db, sql);
  return text.empty() ? 0 : data::Val(text);
}

std::string Words(double amount) {
  std::string words = AmountInWords(amount);
  while (!words.empty() && words.back() == ' ') words.pop_back();
  return words;
}

// An invoice document: its customer, its chassis and, when the form prints them, its words.
// A tax invoice of goods in its three copies, each labelled as the GST rules ask.
std::vector<std::string> InEveryCopy(std::vector<std::string> shows) {
  for (const char* label :
       {"ORIGINAL FOR RECIPIENT", "DUPLICATE FOR TRANSPORTER", "TRIPLICATE FOR SUPPLIER"}) {
    shows.push_back(label);
  }
  return shows;
}

std::vector<std::string> InvoiceShows(data::Connection& db, int16_t id, const std::string& words) {
  const std::string where = " from vu_invoice where id=" + std::to_string(id);
  std::vector<std::string> shows = {One(db, "select cname" + where),
                                    One(db, "select chassis" + where + " and chassis is not null")};
  if (!words.empty()) shows.push_back(words);
  return shows;
}

std::string InvoiceWords(data::Connection& db, int16_t id, bool less_subsidy, bool rupees) {
  const double amount =
      Amount(db, std::string("select sum(") +
                     (less_subsidy ? "netprice-coalesce(subsidyamt,0)" : "netprice") +
                     ") from purdata where invid=" + std::to_string(id));
  return (rupees ? "Rupees " : "AMOUNT IN WORDS ") + Words(amount);
}

using Facts = std::map<std::string, std::string>;

#define SHOWS(METHOD, ...)                                                               \
  {                                                                                      \
    METHOD,                                                                              \
        []([[maybe_unused]] data::Connection& db,                                        \
           [[maybe_unused]] const Facts& f) -> std::vector<std::string> { __VA_ARGS__; } \
  }

std::string Title(const Facts& f, const char* from, const char* to) {
  auto date = [&](const char* key) {
    return FormatDate(*Date::FromIso(f.at(key)), "dd-mm-yyyy", '-');
  };
  return date(from) + " TO " + date(to);
}

// A workshop bill named by facts "<key>_id", "<key>_rv" and "<key>_amt": its number, its
// customer and the words of the amount the host passes, with the method's prefix.
std::vector<std::string> WorkshopBillShows(data::Connection& db, const Facts& f,
                                           const std::string& table, const std::string& key,
                                           const std::string& prefix) {
  const std::string where = " from " + table + " where id=" + f.at(key + "_id") + " and ma_rv='" +
                            f.at(key + "_rv") + "'";
  return {One(db, "select inv_no" + where), One(db, "select cname" + where),
          prefix + Words(std::stod(f.at(key + "_amt")))};
}

std::vector<std::string> JobBillShows(data::Connection& db, const Facts& f, const std::string& key,
                                      const std::string& prefix) {
  return WorkshopBillShows(db, f, "ws_jobinv", key, prefix);
}

std::vector<std::string> CounterBillShows(data::Connection& db, const Facts& f,
                                          const std::string& key) {
  return WorkshopBillShows(db, f, "ws_counterinv", key, "RUPEES : ");
}

// The original for the buyer and the duplicate for the dealer's file.
std::vector<std::string> Copies(std::vector<std::string> shows) {
  shows.push_back("ORIGINAL FOR RECIPIENT");
  shows.push_back("DUPLICATE FOR SUPPLIER");
  return shows;
}

// A date fact as the host's short date form writes it in a title.
std::string ShortDate(const Facts& f, const char* key) {
  return ShortDateText(*Date::FromIso(f.at(key)), RegionalDateSettings{});
}

// An amount as the store's documents print it: Indian grouping, two decimals ("1,11,587.00").
std::string IndianAmount(double amount) {
  const long long paise = std::llround(amount * 100);
  std::string digits = std::to_string((paise < 0 ? -paise : paise) / 100);
  std::string grouped = digits.size() > 3 ? digits.substr(digits.size() - 3) : digits;
  for (size_t end = digits.size() > 3 ? digits.size() - 3 : 0; end > 0;
       end = end > 2 ? end - 2 : 0) {
    grouped = digits.substr(end > 2 ? end - 2 : 0, end > 2 ? 2 : end) + "," + grouped;
  }
  const long long cents = (paise < 0 ? -paise : paise) % 100;
  return std::string(paise < 0 ? "-" : "") + grouped + "." + (cents < 10 ? "0" : "") +
         std::to_string(cents);
}

// A date fact as the books' prints write it: "01-04-2024" on ledgers, "31/03/2024" in the trial
// balances' titles (the regional separator of the tests is the slash).
std::string Dmy(const Facts& f, const char* key) {
  return FormatDate(*Date::FromIso(f.at(key)), "dd-mm-yyyy", '-');
}
std::string Slashed(const Facts& f, const char* key) {
  return FormatDate(*Date::FromIso(f.at(key)), "dd/mm/yyyy", '/');
}
// A balance with its side, as the books print it: "1,05,630.00 Dr".
std::string Balance(double amount) {
  return IndianAmount(amount < 0 ? -amount : amount) + (amount < 0 ? " Cr" : " Dr");
}

// What each method's first example call of the catalogue must show. A method without an entry
// is still printed, to a valid PDF without a message; an entry makes the test read it too.
const std::map<std::string, Expected>& Expectations() {
  static const std::map<std::string, Expected> expectations = {
    SHOWS("Challan_Customer",
          return {"RUPEES : " + Words(Amount(db, "select amt from challan where id=" +
                                                     f.at("challan_customer_id")))}),
    SHOWS("ReceiptPrint",
          return {"(AMOUNT IN WORDS RUPEES " +
                  Squeezed(AmountInWords(
                      Amount(db, "select amt from receipt where id=" + f.at("receipt_id")))) +
                  ")"}),
    SHOWS("EnqGroupwise",
          return {"Enquiry Register Group wise from " + Title(f, "enquiry_from", "enquiry_to")}),
    SHOWS("EnqPending",
          return {"Matured Enquiry Register from " + Title(f, "enquiry_from", "enquiry_to")}),
    SHOWS("EnqBooking",
          return {"Enquiry Booking Register from " + Title(f, "enquiry_from", "enquiry_to")}),
    SHOWS("RecRegister",
          return {"Receipts Register from " + Title(f, "receipt_from", "receipt_to")}),
    SHOWS("VehPurBill",
          return {One(db,
                      "select am_name from purchase p, fa_acmaster where p.supid = am_id and "
                      "p.id=" +
                          f.at("purchase_id"))}),
    SHOWS("VehPurBillGST",
          return {One(db,
                      "select am_gst from purchase p, fa_acmaster where p.supid = am_id and "
                      "p.id=" +
                          f.at("purchase_id"))}),
    SHOWS("VinTrf", return {One(db, "select chassis from vu_vintrf where tid=" + f.at("vintrf_id") +
                                        " order by line limit 1")}),
    SHOWS("VehBtPrint",
          return {One(db,
                      "select br_name from btmstveh bv, branch where bv.btto = branch.am_id and "
                      "bv.id=" +
                          f.at("branch_transfer_id"))}),
    SHOWS("ChallanSub", return {"AMOUNT IN WORDS " +
                                Words(Amount(db, "select sum(chlamt) from purdata where chlid=" +
                                                     f.at("challan_sub_id")))}),
    SHOWS("VehInvoice2in1",
          return InEveryCopy(InvoiceShows(db, Id(f, "invoice_id"),
                                          InvoiceWords(db, Id(f, "invoice_id"), false, false)))),
    SHOWS("VehInvoicewith21",
          return InvoiceShows(db, Id(f, "invoice_id"),
                              InvoiceWords(db, Id(f, "invoice_id"), false, false))),
    SHOWS("VehInvoiceSingle",
          return InvoiceShows(db, Id(f, "invoice_id"),
                              InvoiceWords(db, Id(f, "invoice_id"), false, false))),
    SHOWS("VehInvoiceHero",
          return InvoiceShows(db, Id(f, "hero_invoice_id"),
                              InvoiceWords(db, Id(f, "hero_invoice_id"), false, true))),
    SHOWS("VehInvoiceHeroSubdealer",
          return InvoiceShows(db, Id(f, "hero_subdealer_invoice_id"),
                              InvoiceWords(db, Id(f, "hero_subdealer_invoice_id"), false, true))),
    SHOWS("ProVisionalRc", return InvoiceShows(db, Id(f, "prorc_invoice_id"), "")),
    SHOWS("VehGatePass", return InvoiceShows(db, Id(f, "gatepass_invoice_id"), "")),
    SHOWS("CycleGatePass",
          return {One(db, "select cname from vu_invoice where id=" + f.at("cycle_invoice_id"))}),
    SHOWS("DecForm", return InvoiceShows(db, Id(f, "invoice_id"), "")),
    SHOWS("VehSticker",
          return {One(db, "select chassis from vu_invoice where id=" + f.at("sticker_invoice_id") +
                              " and chassis is not null")}),
    SHOWS("VehSaleLetter", return InvoiceShows(db, Id(f, "invoice_id"), "")),
    SHOWS("CycleSaleLetter",
          return {One(db, "select cname from vu_invoice where id=" + f.at("cycle_invoice_id"))}),
    SHOWS("VehForm22",
          return {One(db, "select chassis from vu_invoice where id=" + f.at("form22_invoice_id") +
                              " and chassis is not null")}),
    SHOWS("VehHSRP", return {One(db, "select chassis from vu_invoice where id=" +
                                         f.at("hsrp_invoice_id") + " and chassis is not null")}),
    SHOWS("VehTempCertificate",
          return {One(db, "select tno from vu_tempnumber where tline=" + f.at("temp_tline")),
                  One(db, "select chassis from vu_tempnumber where tline=" + f.at("temp_tline"))}),
    SHOWS("VehInvoiceSubDealer",
          return InvoiceShows(db, Id(f, "subdealer_invoice_id"),
                              InvoiceWords(db, Id(f, "subdealer_invoice_id"), false, false))),
    SHOWS("Wrc", return {One(db, "select name from firm where coid=" + f.at("firm_id"))}),
    SHOWS("BulkReceiptPrint", return {One(db, "select am_name from vu_bulkreceipt where id=" +
                                                  f.at("bulk_receipt_id") + " limit 1")}),
    SHOWS("GSTVehInvoiceSingle",
          return InvoiceShows(db, Id(f, "invoice_subsidy_id"),
                              InvoiceWords(db, Id(f, "invoice_subsidy_id"), true, false))),
    SHOWS("CycleInvoice",
          return {One(db, "select cname from vu_invoice where id=" + f.at("cycle_invoice_id")),
                  InvoiceWords(db, Id(f, "cycle_invoice_id"), false, false)}),
    SHOWS("GSTVehInvoiceHero",
          return InvoiceShows(db, Id(f, "hero_invoice_id"),
                              InvoiceWords(db, Id(f, "hero_invoice_id"), false, true))),
    SHOWS("GSTVehInvoiceHeroSubdealer",
          return InvoiceShows(db, Id(f, "hero_subdealer_invoice_id"),
                              InvoiceWords(db, Id(f, "hero_subdealer_invoice_id"), false, true))),
    SHOWS("GSTVehInvoice2in1",
          return InEveryCopy(InvoiceShows(db, Id(f, "invoice_id"),
                                          InvoiceWords(db, Id(f, "invoice_id"), false, false)))),
    SHOWS("GSTVehInvoicewith21",
          return InvoiceShows(db, Id(f, "invoice_after_revision_id"),
                              InvoiceWords(db, Id(f, "invoice_after_revision_id"), false, false))),
    SHOWS("GSTVehInvoiceSubDealer",
          return InvoiceShows(db, Id(f, "subdealer_igst_invoice_id"),
                              InvoiceWords(db, Id(f, "subdealer_igst_invoice_id"), false, false))),
    SHOWS("CycleInvoiceSubDealer",
          return {InvoiceWords(db, Id(f, "cycle_subdealer_invoice_id"), false, false)}),
    SHOWS("VehSubDealerPackingList", return InvoiceShows(db, Id(f, "packing_list_id"), "")),
    SHOWS("EInvoiceVehicle",
          return InvoiceShows(db, Id(f, "einvoice_id"),
                              InvoiceWords(db, Id(f, "einvoice_id"), false, false))),

    // Spares purchase and stock documents, parts stock reports.
    SHOWS("w_purchaseCheck",
          const std::string where = " from ws_purchase p join fa_acmaster a on a.am_id = "
                                    "p.am_id where p.pu_id=" +
                                    f.at("spares_purchase_id");
          return {"PURCHASE CHECK SHEET", One(db, "select a.am_name" + where),
                  One(db, "select p.bill_no" + where), One(db, "select p.pu_no" + where),
                  IndianAmount(Amount(db, "select p.total" + where))}),
    SHOWS("w_purchaseCheckGST",
          const std::string where = " from ws_purchase p join fa_acmaster a on a.am_id = "
                                    "p.am_id where p.pu_id=" +
                                    f.at("spares_purchase_igst_id");
          return {"(INWARD SUPPLY UNDER GST)", One(db, "select a.am_gst" + where),
                  One(db, "select p.bill_no" + where),
                  IndianAmount(Amount(db, "select p.igst" + where)),
                  IndianAmount(Amount(db, "select p.total" + where))}),
    SHOWS(
        "w_partPlacementList",
        return {"PART PLACEMENT LIST",
                One(db, "select pu_no from ws_purchase where pu_id=" + f.at("spares_purchase_id")),
                "Total: " +
                    One(db,
                        "select count(*) from ws_purchasedet where qty_accepted > 0 and "
                        "pu_id=" +
                            f.at("spares_purchase_id")) +
                    " parts to place"}),
    SHOWS("w_stocktransfer",
          const std::string where = " from ws_stktrf t join branch b on b.br_id = t.to_br "
                                    "where t.stk_id=" +
                                    f.at("stock_transfer_id");
          return {"STOCK TRANSFER NOTE", One(db, "select t.stk_no" + where),
                  One(db, "select b.br_name" + where),
                  IndianAmount(Amount(db, "select t.stk_value" + where))}),
    SHOWS("w_purchaseorder",
          const std::string where = " from ws_po o join fa_acmaster a on a.am_id = o.am_id "
                                    "where o.od_id=" +
                                    f.at("purchase_order_id");
          return {"PURCHASE ORDER", One(db, "select o.od_no" + where),
                  One(db, "select a.am_name" + where),
                  IndianAmount(Amount(db, "select o.od_value" + where))}),
    SHOWS("w_estimate",
          const std::string where = " from ws_estimate e join customer c on c.cust_id = "
                                    "e.cust_id where e.em_id=" +
                                    f.at("estimate_id");
          return {"ESTIMATE", One(db, "select e.em_no" + where), One(db, "select c.cname" + where),
                  One(db, "select e.regno" + where), Words(Amount(db, "select e.total" + where))}),
    SHOWS("Apro_WsPrintPurRet",
          const std::string where = " from ws_purret r join fa_acmaster a on a.am_id = "
                                    "r.am_id where r.pr_id=" +
                                    f.at("purchase_return_id");
          return {"PURCHASE RETURN", One(db, "select r.pr_no" + where),
                  One(db, "select a.am_name" + where),
                  "RUPEES : " + Words(Amount(db, "select r.total" + where))}),
    SHOWS("w_OpeningParts",
          return {"OPENING STOCK OF SPARE PARTS",
                  "GRAND TOTAL: " +
                      One(db, "select count(*) from ws_partmaster where part_op1 <> 0") + " parts",
                  One(db, "select sum(part_op1) from ws_partmaster")}),
    SHOWS("w_ClosingParts",
          return {"CLOSING STOCK AS ON " +
                      FormatDate(*Date::FromIso(f.at("stock_date")), "dd-mm-yyyy", '-'),
                  "GRAND TOTAL: " +
                      One(db, "select count(*) from ws_partmaster where part_balance1 <> 0") +
                      " parts",
                  One(db, "select sum(part_balance1) from ws_partmaster")}),
    SHOWS("w_Stockvaluation",
          return {"STOCK VALUATION AS ON " +
                      FormatDate(*Date::FromIso(f.at("stock_date")), "dd-mm-yyyy", '-'),
                  "(RATES: DP)",
                  IndianAmount(Amount(db,
                                      "select sum(part_balance1 * part_pp) from "
                                      "ws_partmaster where part_balance1 <> 0"))}),
    SHOWS("w_Negativepart",
          return {"NEGATIVE STOCK AS ON " +
                      FormatDate(*Date::FromIso(f.at("stock_date")), "dd-mm-yyyy", '-'),
                  One(db, "select min(part_no) from ws_partmaster where part_balance1 < 0"),
                  "GRAND TOTAL: " +
                      One(db, "select count(*) from ws_partmaster where part_balance1 < 0")}),
    SHOWS("Apro_StockSummary",
          return {"Vehicle Stock Summary as on " +
                      FormatDate(*Date::FromIso(f.at("stock_summary_date")), "dd/mm/yyyy", '/'),
                  "GRAND TOTAL"}),

    // Job cards, job invoices, counter invoices, service and technician lists.
    SHOWS("w_jobcardprint",
          return {One(db, "select job_no from ws_jobcard where job_srl=" + f.at("jobcard_srl")),
                  One(db, "select regno from ws_jobcard where job_srl=" + f.at("jobcard_srl")),
                  One(db, "select complaint from ws_jobcomplaint where line=1 and job_srl=" +
                              f.at("jobcard_srl"))}),
    SHOWS("w_jobinvPrint", return JobBillShows(db, f, "jobinv", "RUPEES : ")),
    SHOWS("w_jobinvPrintHero", return JobBillShows(db, f, "jobinv", "Rs. ")),
    SHOWS("custom_w_jobinvPrint", return Copies(JobBillShows(db, f, "jobinv_credit", "RUPEES : "))),
    SHOWS("w_proinvoicePrint",
          return {"PROFORMA INVOICE",
                  One(db, "select pf_no from ws_proforma where job_srl=" + f.at("proforma_srl")),
                  One(db, "select cname from ws_jobcard where job_srl=" + f.at("proforma_srl"))}),
    SHOWS("w_gstjobinvPrint", return JobBillShows(db, f, "jobinv", "RUPEES : ")),
    SHOWS("Apro_jobinvPrint", return JobBillShows(db, f, "jobinv", "RUPEES : ")),
    SHOWS("EInvoiceService",
          {
            std::vector<std::string> shows = JobBillShows(db, f, "einvoice_service", "RUPEES : ");
            shows.push_back(
                One(db, "select irn from ws_jobinv where id=" + f.at("einvoice_service_id")));
            shows.push_back(
                One(db, "select ack_no from ws_jobinv where id=" + f.at("einvoice_service_id")));
            return shows;
          }),
    SHOWS("w_counterprint", return CounterBillShows(db, f, "counter")),
    SHOWS("w_counterprinthero", return CounterBillShows(db, f, "counter")),
    SHOWS("w_gstcounterprinthero", return CounterBillShows(db, f, "counter_igst")),
    SHOWS("custom_w_counterprint", return Copies(CounterBillShows(db, f, "counter_b2b"))),
    SHOWS("w_gstcounterprint", return CounterBillShows(db, f, "counter_b2b")),
    SHOWS("Apro_counterprint", return CounterBillShows(db, f, "counter")),
    SHOWS("EInvoiceClaim",
          return {One(db, "select claim_no from ws_claim where docid=" + f.at("claim_docid")),
                  One(db, "select irn from ws_claim where docid=" + f.at("claim_docid")),
                  One(db,
                      "select am_name from ws_claim c, fa_acmaster a where c.am_id = a.am_id "
                      "and docid=" +
                          f.at("claim_docid")),
                  "RUPEES : " + Words(std::stod(f.at("claim_amt")))}),
    SHOWS("w_ServiceReport",
          return {"Service Followup Report from " + ShortDate(f, "followup_from") + " to " +
                      ShortDate(f, "followup_to"),
                  One(db, "select regno from vu_ws_followup order by due_date, fu_id")}),
    SHOWS("w_mechreqlist",
          return {"REPORT FROM " + ShortDate(f, "list_from") + " TO " + ShortDate(f, "list_to") +
                      " MECHANIC NAME : " + f.at("mechanic_name"),
                  "Total:"}),
    SHOWS("w_mechlablist",
          return {"REPORT FROM " + ShortDate(f, "list_from") + " TO " + ShortDate(f, "list_to") +
                      " MECHANIC NAME : " + f.at("mechanic_name"),
                  "Total:"}),
    SHOWS("w_superreqlist",
          return {"REPORT FROM " + ShortDate(f, "list_from") + " TO " + ShortDate(f, "list_to") +
                      " SUPERVISOR NAME : " + f.at("supervisor_name"),
                  "Total:"}),
    SHOWS("w_superlablist",
          return {"REPORT FROM " + ShortDate(f, "list_from") + " TO " + ShortDate(f, "list_to") +
                      " SUPERVISOR NAME : " + f.at("supervisor_name"),
                  "Total:"}),
    SHOWS("w_history", return {"SERVICE HISTORY", f.at("history_chassis"),
                               One(db, "select regno from ws_jobcard where chassis='" +
                                           f.at("history_chassis") + "' order by job_srl")}),

    // Ledgers, trial balances, vouchers, cheques and notes.
    SHOWS(
        "RefLedger",
        return {One(db, "select am_name from fa_acmaster where am_id=" + f.at("ledger_refid")),
                "Opening Balance as on " + Dmy(f, "ledger_from"),
                "Closing Balance as on " + Dmy(f, "ledger_to"),
                Balance(Amount(db,
                               "select a.am_opbal + coalesce((select sum(vd_dr - vd_cr) "
                               "from vu_ledger l where l.am_id = a.am_id and "
                               "l.vm_date <= '" +
                                   f.at("ledger_to") + "'), 0) from fa_acmaster a where a.am_id=" +
                                   f.at("ledger_refid")))}),
    SHOWS(
        "PartyRefLedgerOld",
        return {One(db, "select am_name from fa_acmaster where am_id=" + f.at("party_account_id")),
                "PARTY LEDGER", "Closing Balance",
                Balance(Amount(db,
                               "select a.am_opbal + coalesce((select sum(vd_dr - vd_cr) "
                               "from vu_ledger l where l.am_id = a.am_id), 0) from "
                               "fa_acmaster a where a.am_id=" +
                                   f.at("party_account_id")))}),
    SHOWS("PartyRefLedger",
          return {f.at("party_ledger_title"), "Account: Vayu Motocorp Ltd", "Closing Balance"}),
    SHOWS("VoucherPrintUserWise",
          return {"User: " + f.at("voucher_user"), "VOUCHERS ENTERED BY USER",
                  IndianAmount(
                      Amount(db, "select sum(vd_dr) from (" + f.at("voucher_user_sql") + ") t"))}),
    SHOWS("TrialParty",
          return {"List of " + f.at("trial_party_nature") + " as on " + Slashed(f, "trial_date"),
                  "Krishna Auto Agencies"}),
    SHOWS("TrialPartydcr",
          return {"List of Debitors as on " + Slashed(f, "trial_date"),
                  "List of Creditors as on " + Slashed(f, "trial_date"), "Vayu Motocorp Ltd"}),
    SHOWS("TrialGroup",
          return {"Group Trial as on " + Slashed(f, "trial_date"),
                  f.at("trial_group_name") + " Trial as on " + Slashed(f, "trial_date"),
                  "CAPITAL ACCOUNT", "SUNDRY CREDITORS"}),
    SHOWS("TrialNature", return {"Trial Balance as on " + Slashed(f, "trial_date"),
                                 f.at("trial_nature") + " Trial as on " + Slashed(f, "trial_date"),
                                 "CASH-IN-HAND", "Cash in Hand"}),
    SHOWS("VoucherPrintSingle",
          return {One(db, "select vm_no from vchmst where vm_id=" + f.at("voucher_id")),
                  "SALES VOUCHER",
                  "Rupees " + Words(Amount(db, "select vm_amt from vchmst where vm_id=" +
                                                   f.at("voucher_id"))),
                  "Receiver's Signature"}),
    SHOWS("OldVehicleReceiptPrint",
          return {One(db, "select regno from oldveh where xid=" + f.at("old_vehicle_id")),
                  One(db, "select cname from vu_oldveh where xid=" + f.at("old_vehicle_id")),
                  "EXCHANGE VEHICLE RECEIPT",
                  "Rupees " + Words(Amount(db, "select value from oldveh where xid=" +
                                                   f.at("old_vehicle_id")))}),
    SHOWS("ChequePrint", return {f.at("cheque_acpay"), f.at("cheque_party"), f.at("cheque_amount"),
                                 f.at("cheque_words")}),
    SHOWS("GstVoucherPrint",
          return {One(db, "select am_name from vu_gstvoucher where did=" + f.at("gst_voucher_id") +
                              " and line = 1"),
                  One(db, "select am_gst from vu_gstvoucher where did=" + f.at("gst_voucher_id") +
                              " and line = 1"),
                  "GST EXPENSE VOUCHER",
                  "Rupees " + Words(Amount(db, "select damt from gstvmst where did=" +
                                                   f.at("gst_voucher_id")))}),
    SHOWS("PayoutVoucherPrint",
          return {One(db, "select am_name from vu_gstvoucher where did=" +
                              f.at("payout_voucher_id") + " and line = 1"),
                  "PAYOUT VOUCHER",
                  "Rupees " + Words(Amount(db, "select damt from gstvmst where did=" +
                                                   f.at("payout_voucher_id")))}),
    SHOWS("GstDCNPrint",
          return {"(INR " +
                      Squeezed(AmountInWords(Amount(db, "select damt from gstdcnmst where did=" +
                                                            f.at("gst_credit_note_id")))) +
                      ")",
                  "CREDIT NOTE",
                  One(db, "select orig_no from gstdcnmst where did=" + f.at("gst_credit_note_id")),
                  One(db, "select am_gst from vu_gstdcn where did=" + f.at("gst_credit_note_id") +
                              " and line = 1")}),

    // VAT and C-form returns, GST summaries, quotations, top lists and QR labels.
    SHOWS("VAT23print",
          return {
              "Tax Period From : " + Slashed(f, "vat_fy_from") + "  To  " + Slashed(f, "vat_fy_to"),
              "ANNEXURE J1: CUSTOMER-WISE SALES",
              IndianAmount(Amount(db,
                                  "select sum(total) from vat_sale where bill_date "
                                  "between '" +
                                      f.at("vat_fy_from") + "' and '" + f.at("vat_fy_to") + "'"))}),
    SHOWS("VAT24print",
          return {
              "Tax Period From : " + Slashed(f, "vat_fy_from") + "  To  " + Slashed(f, "vat_fy_to"),
              "ANNEXURE J2: SUPPLIER-WISE PURCHASES", "Vayu Motocorp Ltd",
              IndianAmount(Amount(db,
                                  "select sum(total) from vat_purchase where bill_date "
                                  "between '" +
                                      f.at("vat_fy_from") + "' and '" + f.at("vat_fy_to") + "'"))}),
    SHOWS(
        "Vat18Print",
        return {"From " + Slashed(f, "vat_quarter_from") + "  To  " + Slashed(f, "vat_quarter_to"),
                "SALES REGISTER: VAT AND CENTRAL SALES TAX",
                IndianAmount(Amount(db,
                                    "select sum(total) from vat_sale where bill_date "
                                    "between '" +
                                        f.at("vat_quarter_from") + "' and '" +
                                        f.at("vat_quarter_to") + "'"))}),
    SHOWS(
        "Vat19Print",
        return {"From " + Slashed(f, "vat_quarter_from") + "  To  " + Slashed(f, "vat_quarter_to"),
                "PURCHASE REGISTER: VAT AND CENTRAL SALES TAX",
                IndianAmount(Amount(db,
                                    "select sum(total) from vat_purchase where bill_date "
                                    "between '" +
                                        f.at("vat_quarter_from") + "' and '" +
                                        f.at("vat_quarter_to") + "'"))}),
    SHOWS("PrintCformList",
          return {
              "C form List From " + Slashed(f, "vat_fy_from") + "  To  " + Slashed(f, "vat_fy_to") +
                  " (" + f.at("cform_title") + ")",
              One(db, "select cform_no from vat_cform order by cf_id limit 1"),
              IndianAmount(Amount(db,
                                  "select sum(total) from vat_purchase where "
                                  "purchase_type = 'I' and bill_date between '" +
                                      f.at("vat_fy_from") + "' and '" + f.at("vat_fy_to") + "'"))}),
    SHOWS("PrintVat16",
          const std::string month =
              " from vat_payment where mm = " + f.at("vat16_mm") + " and yy = " + f.at("vat16_yy");
          return {"FORM 231: RETURN OF VALUE ADDED TAX", One(db, "select challan_no" + month),
                  IndianAmount(Amount(db, "select total" + month)),
                  "Rupees " + Words(Amount(db, "select total" + month))}),
    SHOWS("GstSaleSummary",
          return {"GST SUMMARY OF OUTWARD SUPPLIES (SALES)",
                  IndianAmount(Amount(db,
                                      "select sum(taxable) from vu_gst_outward where doc_date "
                                      "between '" +
                                          f.at("gst_from") + "' and '" + f.at("gst_to") + "'"))}),
    SHOWS("GstPurchaseSummary",
          return {"GST SUMMARY OF INWARD SUPPLIES (PURCHASES)",
                  IndianAmount(Amount(db,
                                      "select sum(taxable) from vu_gst_inward where "
                                      "doc_date between '" +
                                          f.at("gst_from") + "' and '" + f.at("gst_to") + "'"))}),
    SHOWS("WS_TOPLIST",
          const std::string list = " from vu_ws_toplist where td_id = " + f.at("toplist_id");
          return {"WORKSHOP TOP LIST", One(db, "select title" + list + " limit 1"),
                  One(db, "select name" + list + " and rank_no = 1"),
                  IndianAmount(Amount(db, "select sum(amount)" + list))}),
    SHOWS("QuotePrint",
          const std::string quote = " from quotation where id = " + f.at("quotation_id");
          return {"QUOTATION", One(db, "select cname" + quote), One(db, "select qno" + quote),
                  IndianAmount(Amount(db, "select onroad" + quote)),
                  "RUPEES " + Words(Amount(db, "select onroad" + quote))}),
    SHOWS(
        "PartsQrPrint",
        const std::string first = "select part_no from (" + f.at("parts_qr_sql") + ") s";
        return {One(db, first), One(db, "select part_desc from (" + f.at("parts_qr_sql") + ") s")}),
    SHOWS("ChassisQrPrint",
          return {One(db, "select chassis from (" + f.at("chassis_qr_sql") + ") s"),
                  One(db, "select engine from (" + f.at("chassis_qr_sql") + ") s")}),

  };
  return expectations;
}

enum class Server { kSqlite, kPostgres, kMariaDb };

struct Case {
  const PrintMethodFacts* method;
  Server server;
};

void PrintTo(const Case& c, std::ostream* out) {
  *out << c.method->method
       << (c.server == Server::kPostgres  ? " on PostgreSQL"
           : c.server == Server::kMariaDb ? " on MariaDB"
                                          : " on SQLite");
}

class SalesEndToEnd : public ::testing::TestWithParam<Case> {};

TEST_P(SalesEndToEnd, PrintsAValidPdfShowingItsData) {
  const Case& c = GetParam();
  Demo& demo = Demo::Get();
  const std::string connection = c.server == Server::kPostgres  ? demo.postgres()
                                 : c.server == Server::kMariaDb ? demo.mariadb()
                                                                : demo.sqlite();
  ASSERT_FALSE(connection.empty()) << "no database server: run with its fixture";
  testing::TempDir out;
  // The program's folder, which the firm's logo path (assets/logo.png) is relative to.
  std::filesystem::current_path(std::string(VANTOREL_SOURCE_DIR) + "/demo");
  const std::string pdf = out.path().string() + "/" + c.method->method + ".pdf";
  const std::string logo = std::string(VANTOREL_SOURCE_DIR) + "/demo/assets/logo.png";
  testing::PlatformScope platform;
  CRepoter rep;
  rep.put_ReportPath(std::string(VANTOREL_SOURCE_DIR) + "/templates/");
  rep.put_DbConnectstring(connection);
  rep.put_RptPDF(kTrue);
  rep.put_PDFPath(pdf);
  rep.put_FirmID(1);
  rep.SetVars();
  std::map<std::string, std::string> values = demo.facts();
  values["logo"] = logo;
  values["qr"] = logo;  // any picture will do for the QR code
  std::vector<Variant> args;
  for (const std::string& arg : ExampleArguments(c.method->examples.at(0), values)) {
    args.push_back(Variant::String(arg));
  }
  InvokeByName(rep, c.method->method, kDispatchMethod, args);
  EXPECT_TRUE(platform->messages().empty())
      << platform->messages()[0].text << " (LastMsg: " << rep.get_LastMsg() << ")";
  ASSERT_TRUE(std::filesystem::exists(pdf)) << "LastMsg: " << rep.get_LastMsg();
  EXPECT_EQ(Shell("qpdf --check '" + pdf + "' >/dev/null 2>&1; echo $?"), "0\n");
  const auto expectation = Expectations().find(c.method->method);
  if (expectation == Expectations().end()) return;
  // In layout order a wrapped text interleaves with its neighbours' columns; in content order
  // it reads through.
  const std::string layout = Squeezed(Shell("pdftotext -layout '" + pdf + "' -"));
  const std::string raw = Squeezed(Shell("pdftotext -raw '" + pdf + "' -"));
  auto db = data::Connection::Open(connection);
  const std::vector<std::string> expected = expectation->second(*db, demo.facts());
  ASSERT_FALSE(expected.empty());
  for (const std::string& shown : expected) {
    ASSERT_FALSE(shown.empty()) << "the database has nothing this document must show";
    const std::string wanted = Squeezed(shown);
    EXPECT_TRUE(layout.find(wanted) != std::string::npos || raw.find(wanted) != std::string::npos)
        << "missing: " << shown << "\n"
        << layout;
  }
}

TEST(SalesEndToEndList, ExpectsOnlyCataloguedMethods) {
  for (const auto& [method, expected] : Expectations()) {
    EXPECT_NE(FindPrintMethod(method), nullptr) << method;
  }
}

std::vector<Case> Cases(Server server) {
  std::vector<Case> cases;
  for (const PrintMethodFacts& method : PrintMethodCatalogue()) cases.push_back({&method, server});
  return cases;
}

std::string CaseName(const ::testing::TestParamInfo<Case>& info) {
  return std::string(info.param.method->method);
}

#if defined(VANTOREL_E2E_POSTGRES)
INSTANTIATE_TEST_SUITE_P(Postgres, SalesEndToEnd, ::testing::ValuesIn(Cases(Server::kPostgres)),
                         CaseName);
#elif defined(VANTOREL_E2E_MARIADB)
INSTANTIATE_TEST_SUITE_P(MariaDb, SalesEndToEnd, ::testing::ValuesIn(Cases(Server::kMariaDb)),
                         CaseName);
#else
INSTANTIATE_TEST_SUITE_P(Sqlite, SalesEndToEnd, ::testing::ValuesIn(Cases(Server::kSqlite)),
                         CaseName);
#endif

}  // namespace
}  // namespace vantorel
