// The VAT year, the GST summaries, quotations, top lists and label selections of the demo
// database: the summaries the GST templates print add up to the invoice and purchase lines of
// their period, by rate and by HSN, to the paisa; VAT and CST are the rate on the value line by
// line; the C forms cover exactly the inter-state purchases they name; the tax paid each month is
// the tax the month's bills work out to; and the host's SQL in the facts selects rows.
#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <map>
#include <memory>
#include <regex>
#include <string>

#include "data/connection.h"
#include "data/temp_database.h"
#include "data/value.h"
#include "demo/demo_support.h"

namespace vantorel::demo::testing {
namespace {

using data::ToDouble;
using data::ToText;

class ReturnsTest : public GeneratedDemo {
 protected:
  std::unique_ptr<data::Connection> Open() {
    return data::Connection::Open(folder_->File("demo.db"));
  }
  // The SQL of the query "name" of the shipped template "file", with its date parameters written
  // in as the period of the GST facts.
  static std::string TemplateSql(const std::string& file, const std::string& name) {
    const std::string text = ReadText(std::string(VANTOREL_SOURCE_DIR) + "/templates/" + file);
    const std::regex query("<query name=\"" + name + "\"[^>]*>\\s*<sql>([^<]*)</sql>");
    std::smatch match;
    EXPECT_TRUE(std::regex_search(text, match, query)) << file << " has no query " << name;
    std::string sql = match[1];
    sql = std::regex_replace(sql, std::regex("&lt;"), "<");
    sql = std::regex_replace(sql, std::regex(":xdt"), "'" + Fact(*facts_, "gst_from") + "'");
    sql = std::regex_replace(sql, std::regex(":ydt"), "'" + Fact(*facts_, "gst_to") + "'");
    return sql;
  }
};

// Sums by key: taxable value, IGST, CGST, SGST in paise.
using Sums = std::map<std::string, std::array<int64_t, 4>>;

Sums SumsOf(data::Connection& db, const std::string& sql) {
  Sums sums;
  for (const auto& row : Rows(db, sql)) {
    auto& sum = sums[ToText(row[0])];
    for (int i = 0; i < 4; ++i) sum[i] += Paise(row[i + 1]);
  }
  return sums;
}

TEST_F(ReturnsTest, TheGstSaleSummaryAddsUpToTheInvoiceLinesByRateAndByHsn) {
  auto db = Open();
  const std::string period =
      " between '" + Fact(*facts_, "gst_from") + "' and '" + Fact(*facts_, "gst_to") + "'";
  const std::string lines =
      " sum(p.taxable), sum(coalesce(p.igst_amt, 0)), sum(coalesce(p.cgst_amt, 0)), "
      "sum(coalesce(p.sgst_amt, 0)) from invoice i join purdata p on p.invid = i.id where i.idate" +
      period;
  Sums by_rate = SumsOf(*db,
                        "select cast(coalesce(p.cgst_rate, 0) + coalesce(p.sgst_rate, 0) + "
                        "coalesce(p.igst_rate, 0) as integer)," +
                            lines + " group by 1");
  Sums by_hsn = SumsOf(*db, "select p.hsn," + lines + " group by p.hsn");
  // The workshop's invoices, once its lines are there.
  if (!Rows(*db, "select name from sqlite_master where name = 'vu_ws_gstsalelines'").empty()) {
    const std::string workshop =
        " taxable, igst, cgst, sgst from vu_ws_gstsalelines where doc_date" + period;
    for (const auto& [rate, sum] : SumsOf(*db, "select gst_rate," + workshop)) {
      for (int i = 0; i < 4; ++i) by_rate[rate][i] += sum[i];
    }
    for (const auto& [hsn, sum] : SumsOf(*db, "select hsn," + workshop)) {
      for (int i = 0; i < 4; ++i) by_hsn[hsn][i] += sum[i];
    }
  }
  ASSERT_GE(by_rate.size(), 2u) << "the period should have several rates";

  const Sums rate_summary = SumsOf(*db, "select gst_rate, taxable, igst, cgst, sgst from (" +
                                            TemplateSql("gstsalesummary.fr3", "sumtax") + ") s");
  EXPECT_EQ(rate_summary, by_rate);
  Sums hsn_summary;
  for (const auto& [hsn, sum] :
       SumsOf(*db, "select hsn, taxable, igst, cgst, sgst from (" +
                       TemplateSql("gstsalesummary.fr3", "sumhsn") + ") s")) {
    for (int i = 0; i < 4; ++i) hsn_summary[hsn][i] += sum[i];
  }
  EXPECT_EQ(hsn_summary, by_hsn);
}

TEST_F(ReturnsTest, TheGstPurchaseSummaryAddsUpToThePurchaseLines) {
  auto db = Open();
  const std::string from = Fact(*facts_, "gst_from"), to = Fact(*facts_, "gst_to");
  const std::string vehicles =
      "select cast(coalesce(l.cgst_rate, 0) + coalesce(l.sgst_rate, 0) + coalesce(l.igst_rate, 0) "
      "as integer), l.taxable, coalesce(l.igst_amt, 0), coalesce(l.cgst_amt, 0), "
      "coalesce(l.sgst_amt, 0) from purchase u join purveh l on l.purid = u.id where u.billdate "
      "between '" +
      from + "' and '" + to + "'";
  Sums expected = SumsOf(*db, vehicles);
  Sums spares;
  const bool has_spares =
      !Rows(*db, "select name from sqlite_master where name = 'vu_ws_gstpurchaselines'").empty();
  if (has_spares) {
    spares = SumsOf(*db,
                    "select gst_rate, taxable, igst, cgst, sgst from vu_ws_gstpurchaselines where "
                    "doc_date between '" +
                        from + "' and '" + to + "'");
  }
  Sums by_rate;
  for (const Sums* part : {&expected, &spares}) {
    for (const auto& [rate, sum] : *part) {
      for (int i = 0; i < 4; ++i) by_rate[rate][i] += sum[i];
    }
  }
  const Sums summary = SumsOf(*db, "select gst_rate, taxable, igst, cgst, sgst from (" +
                                       TemplateSql("gstpurchasesummary.fr3", "sumtax") + ") s");
  EXPECT_EQ(summary, by_rate);
  Sums hsn_total, rate_total;
  for (const auto& [hsn, sum] :
       SumsOf(*db, "select 'all', taxable, igst, cgst, sgst from (" +
                       TemplateSql("gstpurchasesummary.fr3", "sumhsn") + ") s")) {
    hsn_total[hsn] = sum;
  }
  for (const auto& [rate, sum] : summary) {
    for (int i = 0; i < 4; ++i) rate_total["all"][i] += sum[i];
  }
  EXPECT_EQ(hsn_total, rate_total);
}

TEST_F(ReturnsTest, VatIsTheRateOnTheValueLineByLine) {
  auto db = Open();
  for (const char* sql : {"select bill_no, vat_rate, taxable, vat_amt, total from vat_sale",
                          "select bill_no, tax_rate, taxable, tax_amt, total from vat_purchase"}) {
    const auto rows = Rows(*db, sql);
    ASSERT_GT(rows.size(), 40u) << sql;
    for (const auto& row : rows) {
      const int64_t taxable = Paise(row[2]), tax = Paise(row[3]);
      const double exact = ToDouble(row[1]) * static_cast<double>(taxable) / 100;
      EXPECT_LE(std::abs(static_cast<double>(tax) - exact), 0.5001) << ToText(row[0]);
      EXPECT_EQ(Paise(row[4]), taxable + tax) << ToText(row[0]);
    }
  }
  const auto rates = Rows(*db, "select distinct vat_rate from vat_sale order by 1");
  ASSERT_EQ(rates.size(), 4u);
  EXPECT_EQ(ToDouble(rates[0][0]), 2);
  EXPECT_EQ(ToDouble(rates[3][0]), 13.5);
}

TEST_F(ReturnsTest, EveryCFormCoversTheInterStatePurchasesItNames) {
  auto db = Open();
  const auto forms =
      Rows(*db,
           "select f.cf_id, f.amount, f.bills, sum(p.total), count(p.vp_id), "
           "min(p.bill_date) >= f.period_from and max(p.bill_date) <= f.period_to, "
           "min(p.am_id) = f.am_id and max(p.am_id) = f.am_id "
           "from vat_cform f left join vat_purchase p on p.cf_id = f.cf_id "
           "group by f.cf_id, f.amount, f.bills, f.period_from, f.period_to, f.am_id");
  ASSERT_GE(forms.size(), 8u);
  for (const auto& row : forms) {
    EXPECT_EQ(Paise(row[1]), Paise(row[3])) << "C form " << ToText(row[0]);
    EXPECT_EQ(row[2].integer(), row[4].integer()) << "C form " << ToText(row[0]);
    EXPECT_EQ(row[5].integer(), 1) << "C form " << ToText(row[0]) << " covers another quarter";
    EXPECT_EQ(row[6].integer(), 1) << "C form " << ToText(row[0]) << " covers another supplier";
  }
  EXPECT_EQ(Rows(*db,
                 "select count(*) from vat_purchase where (purchase_type = 'I') <> "
                 "(cf_id is not null)")[0][0]
                .integer(),
            0);
  EXPECT_EQ(Rows(*db,
                 "select count(*) from vat_purchase where purchase_type = 'I' and tax_rate "
                 "<> 2")[0][0]
                .integer(),
            0);
}

TEST_F(ReturnsTest, TheTaxPaidEachMonthIsWhatItsBillsWorkOutTo) {
  auto db = Open();
  const auto months = Rows(*db,
                           "select w.yy, w.mm, p.vat_amt, p.cst_amt, p.interest, p.total, "
                           "sum(case when w.side = 'S' and w.trade = 'L' then w.tax else 0 end) - "
                           "sum(case when w.side = 'P' and w.trade = 'L' then w.tax else 0 end), "
                           "sum(case when w.side = 'S' and w.trade = 'I' then w.tax else 0 end) "
                           "from vu_vat_wsheet w join vat_payment p on p.mm = w.mm and p.yy = w.yy "
                           "group by w.yy, w.mm, p.vat_amt, p.cst_amt, p.interest, p.total");
  ASSERT_EQ(months.size(), 15u);
  for (const auto& row : months) {
    const std::string month = ToText(row[1]) + "/" + ToText(row[0]);
    EXPECT_EQ(Paise(row[2]), std::llround(ToDouble(row[6])) * 100) << month;
    EXPECT_EQ(Paise(row[3]), std::llround(ToDouble(row[7])) * 100) << month;
    EXPECT_EQ(Paise(row[5]), Paise(row[2]) + Paise(row[3]) + Paise(row[4])) << month;
  }
  const auto vat16 = Rows(
      *db, "select interest from vat_payment where qno = " + Fact(*facts_, "vat16_qno") +
               " and mm = " + Fact(*facts_, "vat16_mm") + " and yy = " + Fact(*facts_, "vat16_yy"));
  ASSERT_EQ(vat16.size(), 1u);
  EXPECT_GT(ToDouble(vat16[0][0]), 0) << "the return the demo prints was paid late, with interest";
}

TEST_F(ReturnsTest, QuotationsAddUpToTheirOnRoadPrice) {
  auto db = Open();
  for (const auto& row :
       Rows(*db,
            "select id, exsh_price, taxable, gst_amt, gst_rate, reg_charges, hsrp, "
            "insurance, accessories, ext_warranty, discount, onroad from quotation")) {
    const std::string id = ToText(row[0]);
    EXPECT_EQ(Paise(row[1]), Paise(row[2]) + Paise(row[3])) << id;
    EXPECT_NEAR(ToDouble(row[2]) * ToDouble(row[4]) / 100, ToDouble(row[3]), 0.011) << id;
    EXPECT_EQ(Paise(row[11]), Paise(row[1]) + Paise(row[5]) + Paise(row[6]) + Paise(row[7]) +
                                  Paise(row[8]) + Paise(row[9]) - Paise(row[10]))
        << id;
  }
  const auto chosen = Rows(*db,
                           "select accessories, ext_warranty, discount from quotation "
                           "where id = " +
                               Fact(*facts_, "quotation_id"));
  ASSERT_EQ(chosen.size(), 1u);
  for (int i = 0; i < 3; ++i) EXPECT_GT(ToDouble(chosen[0][i]), 0) << "column " << i;
}

TEST_F(ReturnsTest, TopListsAreRankedAndTheirSharesAreOfTheWhole) {
  auto db = Open();
  for (const char* key : {"toplist_id", "toplist_mechanics_id"}) {
    const auto rows = Rows(*db,
                           "select rank_no, amount, share, top_n from vu_ws_toplist where "
                           "td_id = " +
                               Fact(*facts_, key) + " order by rank_no");
    ASSERT_FALSE(rows.empty()) << key;
    EXPECT_EQ(static_cast<int64_t>(rows.size()), rows[0][3].integer()) << key;
    double shares = 0;
    for (size_t i = 0; i < rows.size(); ++i) {
      EXPECT_EQ(rows[i][0].integer(), static_cast<int64_t>(i + 1));
      if (i > 0) {
        EXPECT_LE(ToDouble(rows[i][1]), ToDouble(rows[i - 1][1])) << key << " rank " << i;
      }
      shares += ToDouble(rows[i][2]);
    }
    EXPECT_LE(shares, 100.0) << key;
  }
}

// A top list is worked out from the workshop's bills of its period and branch (parts from job
// and counter invoices, labour from job invoices): each line's bills, quantity (parts) or hours
// (mechanics), taxable value and share of the whole agree with the bills, ranked by value.
TEST_F(ReturnsTest, TopListsAreWorkedOutFromTheBills) {
  auto db = Open();
  auto selected = [](const std::string& bills) {
    return " from " + bills + "det d join " + bills +
           " i on i.id = d.invid join ws_toplist t on t.td_id = %ID% where i.br_id = t.br_id and "
           "i.inv_date >= t.from_date and i.inv_date <= t.to_date";
  };
  const std::map<std::string, std::string> by_basis = {
      {"toplist_id",
       "select code, count(distinct id), sum(qty), sum(taxable) from (select d.code, i.id, d.qty, "
       "d.taxable" +
           selected("ws_jobinv") +
           " and d.item_kind = 'P' union all select d.code, i.id, d.qty, d.taxable" +
           selected("ws_counterinv") + " and d.item_kind = 'P') x group by code"},
      {"toplist_mechanics_id",
       "select 'MEC' || d.mech_id, count(distinct i.id), sum((select l.hours from ws_labour l "
       "where l.job_srl = i.job_srl and l.lab_code = d.code and l.mech_id = d.mech_id)), "
       "sum(d.taxable)" +
           selected("ws_jobinv") + " and d.item_kind = 'L' group by d.mech_id"}};
  for (const auto& [key, sql] : by_basis) {
    std::string lines = sql;
    for (size_t at = lines.find("%ID%"); at != std::string::npos; at = lines.find("%ID%")) {
      lines.replace(at, 4, Fact(*facts_, key));
    }
    const auto expected = Rows(*db, "select * from (" + lines + ") x order by 4 desc, 1");
    const auto listed = Rows(*db,
                             "select code, docs, qty, amount, share, top_n from "
                             "vu_ws_toplist where td_id = " +
                                 Fact(*facts_, key) + " order by rank_no");
    ASSERT_GE(expected.size(), listed.size()) << key;
    ASSERT_GE(listed.size(), 5u) << key;
    EXPECT_EQ(static_cast<int64_t>(listed.size()),
              std::min<int64_t>(listed[0][5].integer(), static_cast<int64_t>(expected.size())))
        << key;
    double whole = 0;
    for (const auto& row : expected) whole += ToDouble(row[3]);
    for (size_t i = 0; i < listed.size(); ++i) {
      EXPECT_EQ(ToText(listed[i][0]), ToText(expected[i][0])) << key << " rank " << i + 1;
      EXPECT_EQ(listed[i][1].integer(), expected[i][1].integer()) << key << " rank " << i + 1;
      EXPECT_NEAR(ToDouble(listed[i][2]), ToDouble(expected[i][2]), 0.005)
          << key << " rank " << i + 1;
      EXPECT_NEAR(ToDouble(listed[i][3]), ToDouble(expected[i][3]), 0.005)
          << key << " rank " << i + 1;
      EXPECT_NEAR(ToDouble(listed[i][4]), 100 * ToDouble(expected[i][3]) / whole, 0.0051)
          << key << " rank " << i + 1;
    }
  }
}

TEST_F(ReturnsTest, TheHostsSqlInTheFactsSelectsRows) {
  auto db = Open();
  for (const char* key :
       {"vat23_sql", "vat23_sql2", "vat24_sql", "vat24_sql2", "vat18_sql", "vat19_sql", "cform_sql",
        "parts_qr_sql", "parts_qr_roll_sql", "chassis_qr_sql", "chassis_qr_roll_sql"}) {
    EXPECT_FALSE(Rows(*db, Fact(*facts_, key)).empty()) << key << ": " << Fact(*facts_, key);
  }
  EXPECT_EQ(Rows(*db, Fact(*facts_, "parts_qr_roll_sql")).size(), 3u);
  EXPECT_GT(Rows(*db, Fact(*facts_, "parts_qr_sql")).size(), 24u) << "a sheet and more";
  // The registers print the quarter the facts name, whose sales include every rate.
  EXPECT_EQ(
      Rows(*db, "select distinct vat_rate from (" + Fact(*facts_, "vat18_sql") + ") s").size(), 4u);
}

}  // namespace
}  // namespace vantorel::demo::testing
