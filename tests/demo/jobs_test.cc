// The workshop floor of the demo database: job cards, job and counter invoices, proformas, claims
// on the makers and follow-ups, as demo_gen writes them to SQLite. The tax of every line to the
// paisa, the totals and their round-off, the place of supply, the job card behind every bill, the
// e-invoices, the GST line view, and the documents the facts name.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <regex>
#include <set>

#include "data/connection.h"
#include "data/temp_database.h"
#include "data/value.h"
#include "demo/demo_support.h"

namespace vantorel::demo::testing {
namespace {

using data::ToDouble;
using data::ToText;

// The database and its facts, generated once.
class Floor : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new data::testing::TempFolder();
    ASSERT_EQ(
        RunGenerator("--sqlite " + folder_->File("demo.db") + " --facts " + folder_->File("facts")),
        0);
    facts_ = new Facts(ReadFacts(folder_->File("facts")));
  }
  static void TearDownTestSuite() {
    delete facts_;
    delete folder_;
  }

  std::unique_ptr<data::Connection> Db() const {
    return data::Connection::Open(folder_->File("demo.db"));
  }
  int64_t Count(const std::string& sql) const { return Rows(*Db(), sql)[0][0].integer(); }
  std::string Text(const std::string& sql) const {
    const auto rows = Rows(*Db(), sql);
    return rows.empty() || rows[0][0].is_null() ? "" : ToText(rows[0][0]);
  }
  const Facts& facts() const { return *facts_; }

  static data::testing::TempFolder* folder_;
  static Facts* facts_;
};

data::testing::TempFolder* Floor::folder_ = nullptr;
Facts* Floor::facts_ = nullptr;

// Every priced line of the workshop: job and counter invoices, proformas, claims.
const char kLines[] =
    "(select item_kind, hsn, uqc, qty, rate, amount, discount, taxable, gst_rate, cgst_rate, "
    "cgst_amt, sgst_rate, sgst_amt, igst_rate, igst_amt, netprice from ws_jobinvdet "
    "union all select item_kind, hsn, uqc, qty, rate, amount, discount, taxable, gst_rate, "
    "cgst_rate, cgst_amt, sgst_rate, sgst_amt, igst_rate, igst_amt, netprice from ws_counterinvdet "
    "union all select item_kind, hsn, uqc, qty, rate, amount, discount, taxable, gst_rate, "
    "cgst_rate, cgst_amt, sgst_rate, sgst_amt, igst_rate, igst_amt, netprice from ws_proformadet "
    "union all select item_kind, hsn, uqc, qty, rate, amount, discount, taxable, gst_rate, "
    "cgst_rate, cgst_amt, sgst_rate, sgst_amt, igst_rate, igst_amt, netprice from ws_claimdet) l";

// True when the tax "amount" is not "rate" percent of the taxable value, rounded to the paisa
// half up: in whole paise and basis points, so exact.
std::string TaxOff(const std::string& amount, const std::string& rate) {
  return "abs(" + amount + " * 100 - (cast(round(taxable * 100) as bigint) * cast(round(" + rate +
         " * 100) as bigint) + 5000) / 10000) > 0.001";
}

TEST_F(Floor, HasDocumentsOfEveryKind) {
  for (const char* table :
       {"ws_mechanic", "ws_jobcard", "ws_jobcomplaint", "ws_requisition", "ws_labour", "ws_jobinv",
        "ws_jobinvdet", "ws_proforma", "ws_proformadet", "ws_counterinv", "ws_counterinvdet",
        "ws_claim", "ws_claimdet", "ws_followup"}) {
    EXPECT_GT(Count(std::string("select count(*) from ") + table), 0) << table;
  }
  EXPECT_GT(Count("select count(*) from ws_jobcard"), 200);
  EXPECT_GT(Count("select count(*) from ws_jobcard where veh_id is null"), 30)
      << "vehicles the dealership did not sell come too";
  EXPECT_GT(Count("select count(*) from ws_claim where docfrom = 'WC'"), 0);
  EXPECT_GT(Count("select count(*) from ws_claim where docfrom = 'FSC'"), 0);
}

TEST_F(Floor, EachTaxIsItsRateOnTheTaxableValueToThePaisa) {
  EXPECT_EQ(Count(std::string("select count(*) from ") + kLines + " where " +
                  TaxOff("cgst_amt", "cgst_rate") + " or " + TaxOff("sgst_amt", "sgst_rate") +
                  " or " + TaxOff("igst_amt", "igst_rate")),
            0);
}

TEST_F(Floor, LinesAddUp) {
  const std::string from = std::string("select count(*) from ") + kLines + " where ";
  EXPECT_EQ(Count(from + "abs(taxable + cgst_amt + sgst_amt + igst_amt - netprice) > 0.001"), 0);
  EXPECT_EQ(Count(from + "abs(amount - discount - taxable) > 0.001"), 0);
  EXPECT_EQ(Count(from + "abs(qty * rate - amount) > 0.001"), 0);
  EXPECT_EQ(Count(from + "abs(cgst_rate + sgst_rate + igst_rate - gst_rate) > 0.001"), 0);
  EXPECT_EQ(Count(from + "qty < 1 or discount < 0"), 0);
}

TEST_F(Floor, LabourIsBilledUnderSac998714At18Percent) {
  const std::string from = std::string("select count(*) from ") + kLines + " where ";
  EXPECT_EQ(Count(from + "item_kind = 'L' and (hsn <> '998714' or gst_rate <> 18 or uqc <> 'OTH')"),
            0);
  EXPECT_EQ(Count(from + "item_kind = 'P' and (hsn = '998714' or uqc = 'OTH')"), 0);
  EXPECT_GT(Count(from + "item_kind = 'L'"), 0);
}

TEST_F(Floor, BilledPartsAreInThePartsMaster) {
  EXPECT_EQ(Count("select count(*) from (select code from ws_jobinvdet where item_kind = 'P' "
                  "union all select code from ws_counterinvdet) l where not exists "
                  "(select 1 from ws_partmaster p where p.part_no = l.code)"),
            0);
  EXPECT_EQ(Count("select count(*) from ws_requisition r where not exists "
                  "(select 1 from ws_partmaster p where p.part_no = r.part_no)"),
            0);
}

TEST_F(Floor, TotalsAreTheirLinesRoundedToTheRupee) {
  for (const auto& [head, lines] :
       {std::pair{"ws_jobinv", "ws_jobinvdet"}, std::pair{"ws_counterinv", "ws_counterinvdet"}}) {
    EXPECT_EQ(Count(std::string("select count(*) from ") + head +
                    " i where abs(invamt - round(invamt)) > 0.001 or round_off <= -0.5 "
                    "or round_off > 0.5 or not exists (select 1 from " +
                    lines +
                    " d where d.invid = i.id group by d.invid "
                    "having abs(sum(d.netprice) + i.round_off - i.invamt) < 0.001 "
                    "and abs(sum(d.taxable) - i.tot_taxable) < 0.001 "
                    "and abs(sum(d.cgst_amt) - i.tot_cgst) < 0.001 "
                    "and abs(sum(d.sgst_amt) - i.tot_sgst) < 0.001 "
                    "and abs(sum(d.igst_amt) - i.tot_igst) < 0.001 "
                    "and abs(sum(d.discount) - i.tot_discount) < 0.001 "
                    "and abs(sum(d.amount) - i.tot_parts - i.tot_labour) < 0.001)"),
              0)
        << head;
  }
  EXPECT_EQ(Count("select count(*) from ws_claim c where abs(claimamt - round(claimamt)) > 0.001 "
                  "or not exists (select 1 from ws_claimdet d where d.docid = c.docid "
                  "group by d.docid having abs(sum(d.netprice) + c.round_off - c.claimamt) "
                  "< 0.001 and abs(sum(d.taxable) - c.tot_taxable) < 0.001)"),
            0);
  EXPECT_GT(Count("select count(*) from ws_jobinv where round_off <> 0"), 0)
      << "MRPs worked back leave paise to round off";
}

TEST_F(Floor, WithinMaharashtraCgstEqualsSgstAndOutsideOnlyIgst) {
  for (const auto& [head, lines] :
       {std::pair{"ws_jobinv", "ws_jobinvdet"}, std::pair{"ws_counterinv", "ws_counterinvdet"}}) {
    const std::string join = std::string("select count(*) from ") + head + " i join " + lines +
                             " d on d.invid = i.id where ";
    EXPECT_EQ(Count(join + "i.pos_code = '27' and (d.cgst_amt <> d.sgst_amt or "
                           "d.cgst_rate <> d.sgst_rate or d.igst_amt <> 0 or d.igst_rate <> 0)"),
              0)
        << head;
    EXPECT_EQ(Count(join + "i.pos_code <> '27' and (d.cgst_amt <> 0 or d.sgst_amt <> 0 or "
                           "d.igst_rate <> d.gst_rate)"),
              0)
        << head;
    EXPECT_EQ(Count(std::string("select count(*) from ") + head + " where pos_code <> cstatecode"),
              0)
        << "the place of supply is the buyer's state";
    EXPECT_GT(Count(std::string("select count(*) from ") + head + " where pos_code <> '27'"), 0)
        << head;
  }
  EXPECT_EQ(Count("select count(*) from ws_claim c join ws_claimdet d on d.docid = c.docid "
                  "join fa_acmaster a on a.am_id = c.am_id where c.pos_code <> a.am_statecode "
                  "or (c.pos_code = '27' and d.igst_amt <> 0) "
                  "or (c.pos_code <> '27' and d.cgst_amt + d.sgst_amt <> 0)"),
            0);
}

TEST_F(Floor, EveryBillHasTheJobCardOfItsVehicle) {
  EXPECT_EQ(Count("select count(*) from ws_jobinv i where not exists "
                  "(select 1 from ws_jobcard j where j.job_srl = i.job_srl)"),
            0);
  EXPECT_EQ(Count("select count(*) from ws_jobinv i join ws_jobcard j on j.job_srl = i.job_srl "
                  "where coalesce(i.cust_id, 0) <> coalesce(j.cust_id, 0) "
                  "or coalesce(i.am_id, 0) <> coalesce(j.am_id, 0) or i.inv_date < j.job_date"),
            0);
  EXPECT_EQ(Count("select count(*) from ws_jobcard j join vehicle v on v.veh_id = j.veh_id "
                  "where v.chassis <> j.chassis or v.status <> 'SOLD'"),
            0)
      << "a job card names the vehicle the dealership sold";
  EXPECT_EQ(Count("select count(*) from ws_jobcard j join invoice i on i.veh_id = j.veh_id "
                  "where i.idate > j.job_date or i.regno <> j.regno"),
            0)
      << "a vehicle comes to the workshop after its sale, under its registration";
  EXPECT_EQ(Count("select count(*) from ws_jobcard j where j.status = 'BILLED' and not exists "
                  "(select 1 from ws_jobinv i where i.job_srl = j.job_srl)"),
            0);
  EXPECT_EQ(Count("select count(*) from (select job_srl from ws_jobinv group by job_srl "
                  "having count(*) > 1) twice"),
            0);
  EXPECT_EQ(Count("select count(*) from ws_claimdet d join ws_jobcard j on j.job_srl = d.job_srl "
                  "where d.chassis <> j.chassis"),
            0);
}

TEST_F(Floor, MechanicsWorkAndSupervisorsSupervise) {
  EXPECT_EQ(Count("select count(*) from ws_jobcard j join ws_mechanic m on m.mech_id = j.mech_id "
                  "join ws_mechanic s on s.mech_id = j.sup_id where m.mech_type <> 'M' "
                  "or s.mech_type <> 'S' or m.br_id <> j.br_id or s.br_id <> j.br_id"),
            0);
  EXPECT_EQ(Count("select count(*) from ws_requisition r join ws_mechanic m on "
                  "m.mech_id = r.mech_id where m.mech_type <> 'M'"),
            0);
  EXPECT_EQ(Count("select count(*) from ws_labour l join ws_mechanic m on m.mech_id = l.mech_id "
                  "where m.mech_type <> 'M'"),
            0);
}

TEST_F(Floor, RegisteredBuyersAndTheMakersGetEInvoices) {
  EXPECT_EQ(Count("select count(*) from (select cgstin, irn from ws_jobinv union all "
                  "select cgstin, irn from ws_counterinv) b "
                  "where (cgstin is null) <> (irn is null)"),
            0);
  const std::regex hex("[0-9a-f]{64}"), digits("[0-9]{15}");
  std::set<std::string> acks;
  for (const char* sql : {"select irn, ack_no, qr_text from ws_jobinv where irn is not null",
                          "select irn, ack_no, qr_text from ws_counterinv where irn is not null",
                          "select irn, ack_no, qr_text from ws_claim"}) {
    const auto rows = Rows(*Db(), sql);
    EXPECT_FALSE(rows.empty()) << sql;
    for (const auto& row : rows) {
      EXPECT_TRUE(std::regex_match(ToText(row[0]), hex)) << ToText(row[0]);
      EXPECT_TRUE(std::regex_match(ToText(row[1]), digits)) << ToText(row[1]);
      EXPECT_TRUE(acks.insert(ToText(row[1])).second) << "ack given twice: " << ToText(row[1]);
      const std::string qr = ToText(row[2]);
      EXPECT_GE(qr.size(), 900u);
      EXPECT_LE(qr.size(), 1300u);
      EXPECT_EQ(std::count(qr.begin(), qr.end(), '.'), 2) << "header.payload.signature";
    }
  }
}

TEST_F(Floor, TheGstLineViewHasTheColumnsOfTheContract) {
  const auto cursor = Db()->Execute("select * from vu_ws_gstsalelines");
  std::vector<std::string> columns;
  for (const data::Column& column : cursor->columns()) columns.push_back(column.name);
  EXPECT_EQ(columns,
            (std::vector<std::string>{"doc_date", "doc_no", "party_id", "party_name", "party_gstin",
                                      "pos_state_code", "hsn", "description", "uqc", "qty",
                                      "gst_rate", "taxable", "cgst", "sgst", "igst", "cess"}));
  EXPECT_EQ(Count("select count(*) from vu_ws_gstsalelines"),
            Count("select (select count(*) from ws_jobinvdet) + (select count(*) from "
                  "ws_counterinvdet) + (select count(*) from ws_claimdet)"));
  EXPECT_EQ(Count("select count(*) from vu_ws_gstsalelines where cess <> 0 or uqc is null "
                  "or gst_rate not in (5, 12, 18, 28)"),
            0);
  EXPECT_EQ(Count("select count(*) from vu_ws_gstsalelines where party_gstin is null and "
                  "doc_no like 'JCR/%'"),
            Count("select count(*) from ws_jobinvdet d join ws_jobinv i on i.id = d.invid "
                  "where i.cgstin is null and i.ma_rv = 'CREDIT'"));
}

TEST_F(Floor, IdsFitSixteenBits) {
  EXPECT_EQ(Count("select count(*) from (select job_srl as id from ws_jobcard union all "
                  "select id from ws_jobinv union all select id from ws_counterinv union all "
                  "select docid from ws_claim union all select fu_id from ws_followup union all "
                  "select mech_id from ws_mechanic) ids where id < 1 or id > 32767"),
            0);
}

TEST_F(Floor, TheFactsNameTheirDocuments) {
  const Facts& f = facts();
  for (const auto& [key, table] :
       {std::pair{"jobinv", "ws_jobinv"}, std::pair{"jobinv_credit", "ws_jobinv"},
        std::pair{"jobinv_igst", "ws_jobinv"}, std::pair{"einvoice_service", "ws_jobinv"},
        std::pair{"counter", "ws_counterinv"}, std::pair{"counter_b2b", "ws_counterinv"},
        std::pair{"counter_igst", "ws_counterinv"}}) {
    const std::string key_text = key;
    EXPECT_EQ(Text(std::string("select invamt from ") + table + " where id=" +
                   Fact(f, key_text + "_id") + " and ma_rv='" + Fact(f, key_text + "_rv") + "'"),
              Fact(f, key_text + "_amt"))
        << key;
  }
  EXPECT_NE(Text("select pos_code from ws_jobinv where id=" + Fact(f, "jobinv_igst_id")), "27");
  EXPECT_NE(Text("select pos_code from ws_counterinv where id=" + Fact(f, "counter_igst_id")),
            "27");
  EXPECT_FALSE(
      Text("select irn from ws_jobinv where id=" + Fact(f, "einvoice_service_id")).empty());
  EXPECT_EQ(Text("select claimamt from ws_claim where docid=" + Fact(f, "claim_docid") +
                 " and docfrom='" + Fact(f, "claim_docfrom") + "'"),
            Fact(f, "claim_amt"));
  EXPECT_GT(Count("select count(*) from ws_requisition where job_srl=" + Fact(f, "jobcard_srl")),
            1);
  EXPECT_GT(Count("select count(*) from ws_proformadet where job_srl=" + Fact(f, "proforma_srl")),
            1);
  EXPECT_GT(
      Count("select count(*) from ws_jobcard where chassis='" + Fact(f, "history_chassis") + "'"),
      2);
  EXPECT_EQ(Text("select mech_name from ws_mechanic where mech_type='M' and mech_id=" +
                 Fact(f, "mechanic_id")),
            Fact(f, "mechanic_name"));
  EXPECT_EQ(Text("select mech_name from ws_mechanic where mech_type='S' and mech_id=" +
                 Fact(f, "supervisor_id")),
            Fact(f, "supervisor_name"));
  // The technician lists' own queries find rows for the facts' people and quarter.
  const std::string range = " and job_date >= '" + Fact(f, "list_from") + "' and job_date <= '" +
                            Fact(f, "list_to") + "'";
  EXPECT_GT(Count("select count(*) from vu_ws_requisition where mech_id=" + Fact(f, "mechanic_id") +
                  " and substr(part_type, 1, 1) = '" + Fact(f, "req_part_type") + "'" + range),
            0);
  EXPECT_GT(
      Count("select count(*) from vu_ws_labour where sup_id=" + Fact(f, "supervisor_id") + range),
      0);
}

}  // namespace
}  // namespace vantorel::demo::testing
