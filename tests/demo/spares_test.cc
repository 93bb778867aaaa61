// The spare-parts store of the demo database: the parts master, the store's documents and their
// arithmetic, stock balances that follow from the movements, the GST purchase lines and the
// facts that name the store's documents.
#include <cmath>
#include <filesystem>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "data/connection.h"
#include "data/temp_database.h"
#include "data/value.h"
#include "demo/demo_support.h"

namespace vantorel::demo::testing {
namespace {

using data::ToDouble;
using data::ToText;
using data::Value;
using data::testing::TempFolder;

// Amounts as the database holds them, in paise.
class SparesDatabase : public GeneratedDemo {};

TEST_F(SparesDatabase, PartsMasterHoldsADealersParts) {
  EXPECT_GE(Count("select count(*) from ws_partmaster"), 1500);
  EXPECT_EQ(Count("select count(*) from ws_partmaster"),
            Count("select count(distinct part_no) from ws_partmaster"));
  EXPECT_EQ(ToText(One("select count(*) from ws_partmaster")), Id("parts_count"));
  // Every class of part the stock reports filter on, by the first letter of its type.
  for (const char* type : {"S", "L", "A", "T", "B"}) {
    EXPECT_GT(Count(std::string("select count(*) from ws_partmaster where substr(part_type, 1, "
                                "1) = '") +
                    type + "'"),
              20)
        << type;
  }
  // HSN by kind of goods; rates and their halves.
  EXPECT_EQ(Count("select count(*) from ws_partmaster where part_type = 'TYRE-TUBE' and "
                  "part_hsncode not like '4011%' and part_hsncode not like '4013%'"),
            0);
  EXPECT_EQ(Count("select count(*) from ws_partmaster where part_type = 'BATTERY' and "
                  "part_hsncode not like '8507%'"),
            0);
  EXPECT_GT(Count("select count(*) from ws_partmaster where part_hsncode like '2710%'"), 10);
  EXPECT_EQ(Count("select count(*) from ws_partmaster where part_igstrate not in (5, 18) or "
                  "part_cgstrate + part_sgstrate <> part_igstrate or part_cgstrate <> "
                  "part_sgstrate"),
            0);
  // Prices: purchase price below dealer price below the MRP's value before tax.
  EXPECT_EQ(Count("select count(*) from ws_partmaster where not (part_pp > 0 and part_pp < "
                  "part_dp and part_dp * (100 + part_igstrate) < part_mrp * 100)"),
            0);
  // Sources, locations, bin cards.
  EXPECT_EQ(Count("select count(*) from ws_partmaster where part_source not in "
                  "('VAYU', 'GANGA', 'LOCAL') or part_location is null or part_bincard is null"),
            0);
  // Stock: many parts without an opening, some at zero and some below it.
  EXPECT_GT(Count("select count(*) from ws_partmaster where part_op1 = 0"), 300);
  EXPECT_GT(Count("select count(*) from ws_partmaster where part_balance1 = 0"), 20);
  EXPECT_GT(Count("select count(*) from ws_partmaster where part_balance1 < 0"), 0);
}

TEST(SparesGenerator, MakesAPartsMasterOfTheSizeAsked) {
  TempFolder folder;
  ASSERT_EQ(RunGenerator("--parts 20000 --sqlite " + folder.File("big.db")), 0);
  auto db = data::Connection::Open(folder.File("big.db"));
  EXPECT_EQ(
      Rows(*db, "select count(*), count(distinct part_no) from ws_partmaster")[0][0].integer(),
      20000);
  EXPECT_EQ(Rows(*db, "select count(distinct part_no) from ws_partmaster")[0][0].integer(), 20000);
}

// Each taxed line of the store's documents: qty × rate = amount, amount - discount = taxable,
// each tax its rate on the taxable value to the paisa (half up), the net their sum; the whole
// rate split within the state, IGST alone across it.
TEST_F(SparesDatabase, EveryLineTaxIsItsRateOnItsTaxableValue) {
  for (const std::string& source :
       {std::string("ws_purchasedet d join ws_purchase h on h.pu_id = d.pu_id"),
        std::string("ws_purretdet d join ws_purret h on h.pr_id = d.pr_id"),
        std::string("ws_estimatedet d join ws_estimate h on h.em_id = d.em_id")}) {
    const auto lines = Query(
        "select d.qty, d.rate, d.amount, d.discount, d.taxable, d.gst_rate, d.cgst_rate, "
        "d.cgst_amt, d.sgst_rate, d.sgst_amt, d.igst_rate, d.igst_amt, d.netamt, " +
        std::string(source.find("ws_estimate ") != std::string::npos ? "'N'" : "h.inter_state") +
        " from " + source);
    EXPECT_GT(lines.size(), 50u) << source;
    for (const auto& l : lines) {
      const int64_t qty = l[0].integer();
      const int64_t taxable = Paise(l[4]);
      const int64_t rate = l[5].integer();
      const bool inter_state = ToText(l[13]) == "Y";
      EXPECT_EQ(Paise(l[2]), qty * Paise(l[1])) << source;
      EXPECT_EQ(Paise(l[2]) - Paise(l[3]), taxable) << source;
      EXPECT_EQ(Paise(l[6]) * 2, inter_state ? 0 : rate * 100) << source;
      EXPECT_EQ(Paise(l[8]), Paise(l[6])) << source;
      EXPECT_EQ(Paise(l[10]), inter_state ? rate * 100 : 0) << source;
      for (size_t tax = 6; tax < 12; tax += 2) {
        const int64_t basis_points = Paise(l[tax]);
        EXPECT_EQ(Paise(l[tax + 1]), (2 * taxable * basis_points + 10000) / 20000)
            << source << ": taxable " << ToText(l[4]) << " at " << ToText(l[tax]) << "%";
      }
      EXPECT_EQ(Paise(l[12]), taxable + Paise(l[7]) + Paise(l[9]) + Paise(l[11])) << source;
    }
  }
}

// Each document's totals are its lines' sums, and its total their net plus a round-off to
// whole rupees.
TEST_F(SparesDatabase, DocumentTotalsAreTheirLinesPlusTheRoundOff) {
  for (const char* sql :
       {"select h.total, h.round_off, sum(d.netamt), h.taxable, sum(d.taxable), h.cgst, "
        "sum(d.cgst_amt), h.sgst, sum(d.sgst_amt), h.igst, sum(d.igst_amt) from ws_purchase h "
        "join ws_purchasedet d on d.pu_id = h.pu_id group by h.pu_id, h.total, h.round_off, "
        "h.taxable, h.cgst, h.sgst, h.igst",
        "select h.total, h.round_off, sum(d.netamt), h.taxable, sum(d.taxable), h.cgst, "
        "sum(d.cgst_amt), h.sgst, sum(d.sgst_amt), h.igst, sum(d.igst_amt) from ws_purret h "
        "join ws_purretdet d on d.pr_id = h.pr_id group by h.pr_id, h.total, h.round_off, "
        "h.taxable, h.cgst, h.sgst, h.igst",
        "select h.total, h.round_off, sum(d.netamt), h.taxable, sum(d.taxable), h.cgst, "
        "sum(d.cgst_amt), h.sgst, sum(d.sgst_amt), h.igst, sum(d.igst_amt) from ws_estimate h "
        "join ws_estimatedet d on d.em_id = h.em_id group by h.em_id, h.total, h.round_off, "
        "h.taxable, h.cgst, h.sgst, h.igst"}) {
    const auto documents = Query(sql);
    EXPECT_GT(documents.size(), 20u) << sql;
    for (const auto& row : documents) {
      ExpectWholeRupeeTotal(row, sql);
      for (size_t i = 3; i < 11; i += 2) EXPECT_EQ(Paise(row[i]), Paise(row[i + 1])) << sql;
    }
  }
  // Orders and transfers are valued at the purchase price.
  EXPECT_EQ(Count("select count(*) from (select o.od_id from ws_po o join ws_podet d on d.od_id "
                  "= o.od_id group by o.od_id, o.od_value, o.od_qty, o.od_items having "
                  "round(o.od_value * 100) <> round(sum(d.amount) * 100) or o.od_qty <> sum(d.qty) "
                  "or o.od_items <> "
                  "count(*)) x"),
            0);
  EXPECT_EQ(Count("select count(*) from (select t.stk_id from ws_stktrf t join ws_stktrfdet d "
                  "on d.stk_id = t.stk_id group by t.stk_id, t.stk_value, t.stk_qty, "
                  "t.stk_items having round(t.stk_value * 100) <> round(sum(d.amount) * 100) or "
                  "t.stk_qty <> sum(d.qty) "
                  "or t.stk_items <> count(*)) x"),
            0);
  EXPECT_EQ(Count("select count(*) from ws_podet d join ws_partmaster m on m.part_id = d.part_id "
                  "where round(d.rate * 100) <> round(m.part_pp * 100) or round(d.amount * 100) <> "
                  "d.qty * round(d.rate * 100)"),
            0);
}

// Purchase lines carry the rate of their part on the bill's date: 28 % (12 % for cycle parts)
// before 22 September 2025, the master's rate from it.
TEST_F(SparesDatabase, PurchasesBearTheRateOfTheirDay) {
  EXPECT_EQ(Count("select count(*) from ws_purchasedet d join ws_purchase p on p.pu_id = d.pu_id "
                  "join ws_partmaster m on m.part_id = d.part_id where p.bill_date >= "
                  "'2025-09-22' and d.gst_rate <> m.part_igstrate"),
            0);
  EXPECT_EQ(Count("select count(*) from ws_purchasedet d join ws_purchase p on p.pu_id = d.pu_id "
                  "join ws_partmaster m on m.part_id = d.part_id where p.bill_date < "
                  "'2025-09-22' and d.gst_rate <> case when m.part_hsncode like '2710%' or "
                  "m.part_hsncode like '3%' or m.part_hsncode like '6506%' then 18 when "
                  "m.part_igstrate = 5 then 12 else 28 end"),
            0);
  EXPECT_GT(Count("select count(*) from ws_purchasedet where gst_rate = 28"), 100);
  EXPECT_GT(Count("select count(*) from ws_purchasedet where gst_rate = 18"), 100);
}

// The check sheet: received = billed - short, accepted = received - damaged; a debit note
// claims exactly what was short or damaged on its bill, and a return sends back no more than
// was taken in.
TEST_F(SparesDatabase, CheckSheetQuantitiesAndClaimsAgree) {
  EXPECT_EQ(Count("select count(*) from ws_purchasedet where qty_received <> qty - qty_short or "
                  "qty_accepted <> qty_received - qty_damaged or qty_accepted < 0 or qty < 1"),
            0);
  EXPECT_GT(Count("select count(*) from ws_purchasedet where qty_short > 0"), 5);
  EXPECT_GT(Count("select count(*) from ws_purchasedet where qty_damaged > 0"), 5);
  EXPECT_GT(Count("select count(*) from ws_purchasedet where qty < qty_ordered"), 5);
  // Claims of goods short or damaged, and the debit notes that claim them (a bill received in the
  // last days of the year waits for its note).
  const std::string claims =
      "(select p.pu_id, p.pu_date, d.part_id, d.qty_short + d.qty_damaged as claimed from "
      "ws_purchase p join ws_purchasedet d on d.pu_id = p.pu_id where d.qty_short + "
      "d.qty_damaged > 0) c left join (select r.pu_id, l.part_id, sum(l.qty) as qty from "
      "ws_purret r join ws_purretdet l on l.pr_id = r.pr_id where r.pr_type = 'D' group by "
      "r.pu_id, l.part_id) n on n.pu_id = c.pu_id and n.part_id = c.part_id";
  EXPECT_EQ(Count("select count(*) from " + claims + " where n.qty <> c.claimed"), 0);
  EXPECT_EQ(
      Count("select count(*) from " + claims + " where n.qty is null and c.pu_date < '2025-12-24'"),
      0);
  EXPECT_EQ(Count("select count(*) from ws_purretdet l join ws_purret r on r.pr_id = l.pr_id "
                  "left join ws_purchasedet d on d.pu_id = r.pu_id and d.part_id = l.part_id "
                  "where r.pr_type = 'D' and (d.pu_id is null or l.qty <> d.qty_short + "
                  "d.qty_damaged)"),
            0);
  EXPECT_EQ(Count("select count(*) from ws_purret r join ws_purretdet l on l.pr_id = r.pr_id "
                  "join ws_purchasedet d on d.pu_id = r.pu_id and d.part_id = l.part_id where "
                  "r.pr_type = 'R' and l.qty > d.qty_accepted"),
            0);
  // Every return is dated after the goods came in, and to the bill's supplier.
  EXPECT_EQ(Count("select count(*) from ws_purret r join ws_purchase p on p.pu_id = r.pu_id "
                  "where r.pr_date <= p.pu_date or r.am_id <> p.am_id or r.inter_state <> "
                  "p.inter_state"),
            0);
  for (const char* type : {"R", "D"}) {
    EXPECT_GT(Count(std::string("select count(*) from ws_purret where pr_type = '") + type + "'"),
              3);
  }
}

// part_balance1 = opening + accepted on purchases - returned - sent to branches + received from
// them - issued.
TEST_F(SparesDatabase, StockBalancesFollowTheMovements) {
  const char* sql =
      "select count(*) from ws_partmaster m "
      "left join (select part_id, sum(qty_accepted) as q from ws_purchasedet group by part_id) p "
      "on p.part_id = m.part_id "
      "left join (select l.part_id, sum(l.qty) as q from ws_purretdet l join ws_purret r on "
      "r.pr_id = l.pr_id where r.pr_type = 'R' group by l.part_id) r on r.part_id = m.part_id "
      "left join (select d.part_id, sum(d.qty) as q from ws_stktrfdet d join ws_stktrf t on "
      "t.stk_id = d.stk_id where t.from_br = 1 group by d.part_id) o on o.part_id = m.part_id "
      "left join (select d.part_id, sum(d.qty) as q from ws_stktrfdet d join ws_stktrf t on "
      "t.stk_id = d.stk_id where t.to_br = 1 group by d.part_id) i on i.part_id = m.part_id "
      "where m.part_balance1 <> m.part_op1 + coalesce(p.q, 0) - coalesce(r.q, 0) - "
      "coalesce(o.q, 0) + coalesce(i.q, 0) - m.part_issue";
  EXPECT_EQ(Count(sql), 0);
  // The check sees a balance one off.
  TempFolder scratch;
  const std::string copy = scratch.File("changed.db");
  std::filesystem::copy_file(folder_->File("demo.db"), copy);
  data::testing::CreateSqlite(copy,
                              "update ws_partmaster set part_balance1 = part_balance1 + 1 "
                              "where part_id = 7");
  auto changed = data::Connection::Open(copy);
  EXPECT_EQ(Rows(*changed, sql)[0][0].integer(), 1);
  // Transfers join the head office store with a branch.
  EXPECT_EQ(Count("select count(*) from ws_stktrf where (from_br = 1) = (to_br = 1)"), 0);
  EXPECT_GT(Count("select count(*) from ws_stktrf where to_br = 1"), 3);
}

TEST_F(SparesDatabase, IdsFitSixteenBitsInTheirRanges) {
  for (const auto& [table, id, low, high] :
       std::vector<std::tuple<std::string, std::string, int, int>>{
           {"ws_po", "od_id", 11001, 11999},
           {"ws_purchase", "pu_id", 12001, 12599},
           {"ws_purret", "pr_id", 12601, 12799},
           {"ws_stktrf", "stk_id", 12801, 12999},
           {"ws_estimate", "em_id", 13001, 13999}}) {
    EXPECT_EQ(Count("select min(" + id + ") from " + table), low) << table;
    EXPECT_LE(Count("select max(" + id + ") from " + table), high) << table;
  }
  EXPECT_LE(Count("select max(part_id) from ws_partmaster"), 32767);
  // Numbered in date order.
  EXPECT_EQ(Count("select count(*) from ws_purchase a join ws_purchase b on b.pu_id = a.pu_id + "
                  "1 where b.pu_date < a.pu_date"),
            0);
}

// The GST purchase lines: one per purchase line, returns and debit notes negative, in the
// columns the GST summaries read.
TEST_F(SparesDatabase, GstPurchaseLinesAddUpToTheDocuments) {
  const auto columns = Rows(*db_, "select * from vu_ws_gstpurchaselines where 1 = 0");
  (void)columns;
  EXPECT_EQ(
      Count("select count(*) from vu_ws_gstpurchaselines"),
      Count("select count(*) from ws_purchasedet") + Count("select count(*) from ws_purretdet"));
  EXPECT_EQ(Paise(One("select sum(taxable) from vu_ws_gstpurchaselines")),
            Paise(One("select sum(taxable) from ws_purchase")) -
                Paise(One("select sum(taxable) from ws_purret")));
  EXPECT_EQ(Paise(One("select sum(cgst + sgst + igst) from vu_ws_gstpurchaselines")),
            Paise(One("select sum(cgst + sgst + igst) from ws_purchase")) -
                Paise(One("select sum(cgst + sgst + igst) from ws_purret")));
  EXPECT_EQ(Count("select count(*) from vu_ws_gstpurchaselines where qty < 0"),
            Count("select count(*) from ws_purretdet"));
  EXPECT_EQ(Count("select count(*) from vu_ws_gstpurchaselines where gst_rate not in (5, 12, "
                  "18, 28) or cess <> 0 or pos_state_code <> '27' or party_gstin is null or "
                  "uqc not in ('NOS', 'SET', 'PRS', 'PAC', 'LTR')"),
            0);
  EXPECT_EQ(Count("select count(doc_date) + count(doc_no) + count(party_id) + count(party_name) "
                  "+ count(hsn) + count(description) from vu_ws_gstpurchaselines") %
                Count("select count(*) from vu_ws_gstpurchaselines"),
            0);
}

TEST_F(SparesDatabase, FactsNameTheStoresDocuments) {
  EXPECT_EQ(Count("select count(*) from ws_purchase where inter_state = 'N' and pu_id = " +
                  Id("spares_purchase_id")),
            1);
  EXPECT_GT(Count("select count(*) from ws_purchasedet where qty_short > 0 and pu_id = " +
                  Id("spares_purchase_id")),
            0);
  EXPECT_EQ(Count("select count(*) from ws_purchase where inter_state = 'Y' and pu_id = " +
                  Id("spares_purchase_igst_id")),
            1);
  EXPECT_EQ(Count("select count(*) from ws_stktrf where from_br = 1 and stk_id = " +
                  Id("stock_transfer_id")),
            1);
  EXPECT_EQ(Count("select count(*) from ws_stktrf where to_br = 1 and stk_id = " +
                  Id("stock_transfer_in_id")),
            1);
  EXPECT_EQ(Count("select count(*) from ws_po where od_status = 'RECEIVED' and od_id = " +
                  Id("purchase_order_id")),
            1);
  EXPECT_EQ(Count("select count(*) from ws_po where od_status = 'OPEN' and od_id = " +
                  Id("purchase_order_open_id")),
            1);
  EXPECT_GT(Count("select count(*) from ws_estimatedet where kind = 'L' and em_id = " +
                  Id("estimate_id")),
            0);
  EXPECT_EQ(ToText(One("select pr_type from ws_purret where pr_id = " + Id("purchase_return_id"))),
            "R");
  EXPECT_EQ(ToText(One("select pr_type from ws_purret where pr_id = " + Id("debit_note_id"))), "D");
  EXPECT_EQ(Paise(One("select total from ws_purret where pr_id = " + Id("purchase_return_id"))),
            std::llround(std::stod(Id("purchase_return_amount")) * 100));
  EXPECT_EQ(Paise(One("select total from ws_purret where pr_id = " + Id("debit_note_id"))),
            std::llround(std::stod(Id("debit_note_amount")) * 100));
  EXPECT_EQ(Id("stock_types"), "'S','L','A','T','B'");
  EXPECT_EQ(Id("stock_date"), "2025-12-31");
}

// The vehicle stock summary's counts hold together: what was in stock at the start of the year,
// plus what came in, less what was sold, is what is in stock on the date.
TEST_F(SparesDatabase, VehicleStockSummaryBalances) {
  const auto rows = Query(
      "select sum(case when p.recdate < f.fy_from and (s.idate is null or s.idate >= f.fy_from) "
      "then 1 else 0 end), sum(case when p.recdate >= f.fy_from and p.recdate <= '" +
      Id("stock_summary_date") +
      "' then 1 else 0 end), sum(case when s.idate >= f.fy_from and s.idate <= '" +
      Id("stock_summary_date") + "' then 1 else 0 end), sum(case when p.recdate <= '" +
      Id("stock_summary_date") + "' and (s.idate is null or s.idate > '" +
      Id("stock_summary_date") +
      "') then 1 else 0 end) from vehicle v join purchase p on p.id = v.purid join fin_years f on "
      "f.fy_from <= '" +
      Id("stock_summary_date") + "' and f.fy_to >= '" + Id("stock_summary_date") +
      "' left join (select d.veh_id, min(i.idate) as idate from purdata d join invoice i on i.id "
      "= d.invid where d.veh_id is not null group by d.veh_id) s on s.veh_id = v.veh_id");
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_GT(rows[0][1].integer(), 50);
  EXPECT_GT(rows[0][2].integer(), 50);
  EXPECT_EQ(rows[0][0].integer() + rows[0][1].integer() - rows[0][2].integer(),
            rows[0][3].integer());
}

}  // namespace
}  // namespace vantorel::demo::testing
