// The books of account of the demo dealership, on the SQLite file demo_gen writes: every voucher
// balances, every trial balance agrees, every ledger closes at its opening plus its movements,
// the GST documents add up, the ids fit the interface, and the host's SQL in the facts runs.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "data/connection.h"
#include "data/temp_database.h"
#include "data/value.h"
#include "demo/demo_support.h"
#include "demo/entities.h"
#include "demo/random.h"
#include "demo/workshop.h"

namespace vantorel::demo::testing {
namespace {

using data::ToDouble;
using data::ToText;
using data::Value;
using data::testing::TempFolder;

// The balance of every account as on a date: the opening of the books plus every voucher line
// up to that day.
std::string Balances(const std::string& upto) {
  return "select a.am_id, a.am_group, a.am_opbal + coalesce((select sum(d.vd_dr - d.vd_cr) "
         "from vchdet d join vchmst m on m.vm_id = d.vm_id where d.am_id = a.am_id and "
         "m.vm_date <= '" +
         upto + "'), 0) as bal from fa_acmaster a";
}

class Books : public GeneratedDemo {};

TEST_F(Books, HasVouchersOfEveryKind) {
  for (const char* type : {"SALES", "PURCHASE", "RECEIPT", "PAYMENT", "JOURNAL", "CONTRA",
                           "CREDIT NOTE", "DEBIT NOTE"}) {
    EXPECT_GT(Count(std::string("select count(*) from vchmst where vm_type = '") + type + "'"), 0)
        << type;
  }
  EXPECT_GT(Count("select count(*) from gstvmst where dtype = 'G'"), 0);
  EXPECT_GT(Count("select count(*) from gstvmst where dtype = 'P'"), 0);
  EXPECT_GT(Count("select count(*) from oldveh"), 0);
}

TEST_F(Books, EveryVoucherBalances) {
  EXPECT_EQ(Count("select count(*) from vchmst m where (select count(*) from vchdet d "
                  "where d.vm_id = m.vm_id) < 2"),
            0);
  EXPECT_EQ(Count("select count(*) from vchmst m join (select vm_id, sum(vd_dr) as dr, "
                  "sum(vd_cr) as cr from vchdet group by vm_id) t on t.vm_id = m.vm_id "
                  "where abs(t.dr - t.cr) > 0.001 or abs(t.dr - m.vm_amt) > 0.001"),
            0);
  // A line debits or credits, never both, never neither.
  EXPECT_EQ(Count("select count(*) from vchdet where vd_dr < 0 or vd_cr < 0 or "
                  "(vd_dr = 0 and vd_cr = 0) or (vd_dr <> 0 and vd_cr <> 0)"),
            0);
}

TEST_F(Books, EveryLineIsOnAnAccountOfAGroup) {
  EXPECT_EQ(Count("select count(*) from vchdet d left join fa_acmaster a on a.am_id = d.am_id "
                  "where a.am_id is null"),
            0);
  EXPECT_EQ(Count("select count(*) from fa_acmaster a left join fa_group g on "
                  "g.grp_code = a.am_group where g.grp_code is null"),
            0);
  EXPECT_EQ(Count("select count(*) from vchdet d left join fa_acmaster a on "
                  "a.am_id = d.vd_against where a.am_id is null"),
            0);
}

TEST_F(Books, TheOpeningBalancesAgree) {
  EXPECT_NEAR(Number("select sum(am_opbal) from fa_acmaster"), 0, 0.001);
}

TEST_F(Books, EveryTrialBalanceAgrees) {
  for (const std::string& upto :
       std::vector<std::string>{"2024-03-31", "2024-09-30", Id("trial_date"), "2025-12-31"}) {
    const std::string balances = Balances(upto);
    const double debits = Number("select sum(bal) from (" + balances + ") t where bal > 0");
    const double credits = Number("select -sum(bal) from (" + balances + ") t where bal < 0");
    EXPECT_GT(debits, 0) << upto;
    EXPECT_NEAR(debits, credits, 0.005) << upto;
    // Group by group, as the group trial prints it, too.
    EXPECT_NEAR(Number("select sum(b) from (select g.grp_id, sum(t.bal) as b from (" + balances +
                       ") t join fa_group g on g.grp_code = t.am_group group by g.grp_id) x"),
                0, 0.005)
        << upto;
  }
}

TEST_F(Books, EveryLedgerClosesAtItsOpeningPlusItsMovements) {
  const std::string from = Id("ledger_from");
  const std::string to = Id("ledger_to");
  for (const std::string& account :
       {Id("ledger_refid"), Id("cash_account_id"), Id("party_account_id"), std::string("1")}) {
    const double opening = Number(
        "select a.am_opbal + coalesce((select sum(vd_dr - vd_cr) from vu_ledger where am_id = " +
        account + " and vm_date < '" + from +
        "'), 0) from fa_acmaster a where a.am_id = " + account);
    const std::string period = " from vu_ledger where am_id = " + account + " and vm_date >= '" +
                               from + "' and vm_date <= '" + to + "'";
    const double debits = Number("select coalesce(sum(vd_dr), 0)" + period);
    const double credits = Number("select coalesce(sum(vd_cr), 0)" + period);
    EXPECT_GT(Count("select count(*)" + period), 0) << account;
    EXPECT_NEAR(opening + debits - credits,
                Number("select bal from (" + Balances(to) + ") t where am_id = " + account), 0.005)
        << account;
  }
  // The running balance of the cash book never leaves the till short.
  const auto rows =
      Rows(*db_, "select vd_dr - vd_cr from vu_ledger where am_id = " + Id("cash_account_id") +
                     " order by vm_date, vm_id, vd_line");
  double cash = Number("select am_opbal from fa_acmaster where am_id = " + Id("cash_account_id"));
  for (const auto& row : rows) {
    cash += ToDouble(row[0]);
    ASSERT_GE(cash, -0.005);
  }
}

// The list of debtors as the party trial prints it (trialparty.fr3, trialpartydcr.fr3): every
// debtor with a balance on a date.
std::string Debtors(const std::string& upto) {
  return "select * from (select a.am_id, a.am_name, a.am_town, a.am_gst, a.am_opbal + "
         "coalesce((select sum(d.vd_dr - d.vd_cr) from vchdet d join vchmst m on m.vm_id = "
         "d.vm_id where d.am_id = a.am_id and m.vm_date <= '" +
         upto +
         "'), 0) as bal from fa_acmaster a join fa_group g on g.grp_code = a.am_group where "
         "g.grp_name = 'SUNDRY DEBTORS') t where bal <> 0";
}

// A party has one ledger, whatever documents post to it: a fleet buyer's vehicle invoices,
// receipts, exchanges and job bills all reach the same account, so the debtors list shows each
// party once.
TEST_F(Books, EveryPartyHasOneLedger) {
  for (const char* key : {"am_gst", "am_name || ', ' || coalesce(am_town, '')"}) {
    EXPECT_EQ(Count(std::string("select count(*) from (select ") + key +
                    " from fa_acmaster a join fa_group g on g.grp_code = a.am_group where "
                    "g.grp_name = 'SUNDRY DEBTORS' and am_gst is not null group by " +
                    key + " having count(*) > 1) t"),
              0)
        << key;
  }
  for (const std::string& upto :
       std::vector<std::string>{"2024-09-30", Id("trial_date"), "2025-12-31"}) {
    EXPECT_GT(Count("select count(*) from (" + Debtors(upto) + ") t"), 5) << upto;
    EXPECT_EQ(Count("select count(*) from (select am_name, am_town from (" + Debtors(upto) +
                    ") t group by am_name, am_town having count(*) > 1) x"),
              0)
        << upto;
  }
  // Each posting path names the customer's own ledger: the workshop's bills on account and the
  // books' vehicle invoices alike.
  for (const char* bills : {"ws_jobinv", "ws_counterinv"}) {
    EXPECT_EQ(Count(std::string("select count(*) from ") + bills +
                    " where cust_id is not null and am_id is not null and am_id <> 100000 + "
                    "cust_id and am_id in (select am_id from fa_acmaster where am_group = "
                    "'CUSTOMER')"),
              0)
        << bills;
  }
  EXPECT_EQ(Count("select count(*) from invoice i join vchmst m on m.vm_type = 'SALES' and "
                  "m.vm_ref = i.num join vchdet d on d.vm_id = m.vm_id and d.vd_line = 1 "
                  "where i.itype = 'R' and d.am_id <> 100000 + i.cust_id"),
            0);
  // A fleet buyer's job bills and its vehicle invoices are owed on one ledger.
  EXPECT_GT(Count("select count(*) from (select d.am_id from vchdet d join vchmst m on m.vm_id = "
                  "d.vm_id where d.am_id > 100000 and m.vm_ref like 'JCR/%' and exists (select 1 "
                  "from invoice i join vchmst v on v.vm_ref = i.num join vchdet l on l.vm_id = "
                  "v.vm_id where l.am_id = d.am_id) group by d.am_id) t"),
            0);
}

// Each month's GST is settled with the return by the 20th of the next month: the input tax
// credit set off against the output tax, the rest and the reverse charge paid from the bank, so
// that the output ledgers owe only what the month after raised; the credit never runs short.
TEST_F(Books, GstIsSettledMonthByMonth) {
  int payments = 0;
  for (int m = 0; m < 20; ++m) {  // April 2024 to November 2025
    const int year = 2024 + (m + 3) / 12;
    const int month = (m + 3) % 12 + 1;
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%04d-%02d-01", year, month);
    const std::string first = buffer;
    const std::string end = ToText(One("select date('" + first + "', '+1 month', '-1 day')"));
    std::snprintf(buffer, sizeof buffer, "GSTR-3B %02d/%04d", month, year);
    const std::string settled = std::string(" from vchmst where vm_ref = '") + buffer + "'";
    EXPECT_GT(Count("select count(*)" + settled), 0) << buffer;
    EXPECT_EQ(Count("select count(*)" + settled + " and (vm_date <= '" + end +
                    "' or vm_date > date('" + end + "', '+20 days'))"),
              0)
        << buffer;
    payments += static_cast<int>(Count("select count(*)" + settled + " and vm_type = 'PAYMENT'"));
    // A ledger's debit balance as on the month's end, and what the settlement debited to it.
    auto balance = [&](const std::string& ledger) {
      return Number(
          "select coalesce(sum(d.vd_dr - d.vd_cr), 0) from vchdet d join vchmst m on "
          "m.vm_id = d.vm_id where d.am_id = " +
          ledger + " and m.vm_date <= '" + end + "'");
    };
    auto settlement = [&](const std::string& ledger) {
      return Number("select coalesce(sum(d.vd_dr - d.vd_cr), 0) from vchdet d where d.am_id = " +
                    ledger + " and d.vm_id in (select vm_id" + settled + ")");
    };
    for (const char* ledger : {"61", "62", "63", "454"}) {
      EXPECT_LE(balance(ledger), 0.005) << buffer << " ledger " << ledger;
      EXPECT_NEAR(balance(ledger) + settlement(ledger), 0, 0.005) << buffer << " ledger " << ledger;
    }
    // The credit set off is credit the month's end had.
    for (const char* ledger : {"451", "452", "453"}) {
      EXPECT_GE(balance(ledger) + settlement(ledger), -0.005) << buffer << " ledger " << ledger;
    }
  }
  EXPECT_GE(payments, 18);
  // The challans are paid from the current account, and only the tax ledgers are debited.
  EXPECT_EQ(Count("select count(*) from vchmst m join vchdet d on d.vm_id = m.vm_id where "
                  "m.vm_ref like 'GSTR-3B %' and m.vm_type = 'PAYMENT' and ((d.vd_cr > 0 and "
                  "d.am_id <> 41) or (d.vd_dr > 0 and d.am_id not in (61, 62, 63, 454)))"),
            0);
  // The duties and taxes carry the last month's tax, which is due after the books end.
  EXPECT_LT(Number("select sum(d.vd_dr - d.vd_cr) from vchdet d where d.am_id in (61, 62, 63)"),
            -1000);
}

// The workshop's customers on account and the store's suppliers are settled month by month: at
// a month's end they owe, or are owed, no more than that month's own bills.
TEST_F(Books, WorkshopBillsOnAccountAreSettledMonthly) {
  const std::vector<std::pair<std::string, bool>> parties = {
      {"901", false}, {"902", false}, {"101", true}, {"102", true},
      {"103", true},  {"104", true},  {"105", true}};
  for (const auto& [party, supplier] : parties) {
    const std::string settled = supplier ? "PAYMENT" : "RECEIPT";
    EXPECT_GT(Count("select count(*) from vu_ledger where am_id = " + party + " and vm_type = '" +
                    settled + "'"),
              0)
        << party;
    for (int m = 1; m < 20; ++m) {  // May 2024 to November 2025
      char first[32];
      std::snprintf(first, sizeof first, "%04d-%02d-01", 2024 + (m + 3) / 12, (m + 3) % 12 + 1);
      const std::string end = "date('" + std::string(first) + "', '+1 month', '-1 day')";
      const double owed =
          (supplier ? -1 : 1) * Number(
                                    "select coalesce(sum(vd_dr - vd_cr), 0) from vu_ledger where "
                                    "am_id = " +
                                    party + " and vm_date <= " + end);
      const double billed =
          Number(std::string("select coalesce(sum(") + (supplier ? "vd_cr" : "vd_dr") +
                 "), 0) from vu_ledger where am_id = " + party + " and vm_type <> '" + settled +
                 "' and vm_date >= '" + first + "' and vm_date <= " + end);
      EXPECT_LE(owed, billed + 0.005) << party << " at the end of " << first;
      EXPECT_GE(owed, -0.005) << party << " at the end of " << first;
    }
  }
}

TEST_F(Books, IdsFitTheInterface) {
  // Documents are 16-bit ids; the reference ledger's id is beyond them, within 32 bits.
  for (const char* sql : {"select max(vm_id) from vchmst", "select max(did) from gstvmst",
                          "select max(did) from gstdcnmst", "select max(xid) from oldveh"}) {
    EXPECT_LE(Count(sql), 32767) << sql;
  }
  const int64_t refid = std::stoll(Id("ledger_refid"));
  EXPECT_GT(refid, 65535);
  EXPECT_LE(refid, 2147483647);
  EXPECT_EQ(Count("select count(*) from fa_acmaster where am_id = " + Id("ledger_refid")), 1);
  EXPECT_EQ(Count("select count(*) from fa_acmaster where am_id = " + Id("party_account_id")), 1);
  for (const char* key :
       {"voucher_id", "voucher_payment_id", "voucher_journal_id", "cheque_voucher_id"}) {
    EXPECT_EQ(Count("select count(*) from vchmst where vm_id = " + Id(key)), 1) << key;
  }
  EXPECT_EQ(
      Count("select count(*) from gstvmst where dtype = 'G' and did = " + Id("gst_voucher_id")), 1);
  EXPECT_EQ(
      Count("select count(*) from gstvmst where dtype = 'P' and did = " + Id("payout_voucher_id")),
      1);
  EXPECT_EQ(Count("select count(*) from gstdcnmst where dtype = 'C' and did = " +
                  Id("gst_credit_note_id")),
            1);
  EXPECT_EQ(Count("select count(*) from gstdcnmst where dtype = 'D' and did = " +
                  Id("gst_debit_note_id")),
            1);
  EXPECT_EQ(Count("select count(*) from oldveh where xid = " + Id("old_vehicle_id")), 1);
  EXPECT_EQ(
      ToText(One("select distinct grp_name from fa_group where grp_id = " + Id("trial_group_id"))),
      Id("trial_group_name"));
}

TEST_F(Books, GstDocumentsAddUpAndArePosted) {
  for (const char* document : {"gstvmst", "gstdcnmst"}) {
    const std::string lines = std::string(document) == "gstvmst" ? "gstvdet" : "gstdcndet";
    EXPECT_EQ(Count(std::string("select count(*) from ") + document +
                    " where abs(taxable + cgst + sgst + igst - damt) > 0.001"),
              0)
        << document;
    EXPECT_EQ(Count(std::string("select count(*) from ") + document + " h where abs(damt - " +
                    "(select sum(amount) from " + lines + " l where l.did = h.did)) > 0.001"),
              0)
        << document;
    EXPECT_EQ(Count(std::string("select count(*) from ") + document +
                    " h join vchmst m on m.vm_id = h.vm_id where abs(m.vm_amt - h.damt) > 0.001"),
              0)
        << document;
  }
  // A line is taxed either within the state or across it, never both.
  EXPECT_EQ(Count("select count(*) from gstdcndet where igst <> 0 and cgst + sgst <> 0"), 0);
  // A credit note adjusts one of our invoices; a debit note one of our suppliers' bills.
  EXPECT_EQ(Count("select count(*) from gstdcnmst n where dtype = 'C' and not exists "
                  "(select 1 from invoice i where i.num = n.orig_no)"),
            0);
  EXPECT_EQ(Count("select count(*) from gstdcnmst n where dtype = 'D' and not exists "
                  "(select 1 from purchase p where p.billno = n.orig_no)"),
            0);
}

TEST_F(Books, EverySaleAndPurchaseIsPosted) {
  EXPECT_EQ(Count("select count(*) from invoice i where not exists (select 1 from vchmst m "
                  "where m.vm_type = 'SALES' and m.vm_ref = i.num)"),
            0);
  EXPECT_EQ(Count("select count(*) from receipt r where not exists (select 1 from vchmst m "
                  "where m.vm_type = 'RECEIPT' and m.vm_ref = r.num)"),
            0);
  EXPECT_EQ(Count("select count(*) from purchase p where not exists (select 1 from vchmst m "
                  "where m.vm_type = 'PURCHASE' and m.vm_ref = p.billno)"),
            0);
  // The sales ledgers carry every invoice's taxable value.
  EXPECT_NEAR(Number("select -sum(vd_dr - vd_cr) from vchdet where am_id in (51, 431) and "
                     "vm_id in (select vm_id from vchmst where vm_type = 'SALES')"),
              Number("select sum(taxable) from purdata where invid is not null"), 0.01);
}

TEST_F(Books, TheHostsSqlRuns) {
  EXPECT_GT(Rows(*db_, Id("party_ledger_sql")).size(), 3u);
  EXPECT_GT(Rows(*db_, Id("voucher_user_sql")).size(), 3u);
  const auto natures = Rows(*db_, Id("trial_nature_sql"));
  EXPECT_GT(natures.size(), 3u);
  EXPECT_NE(Id("party_ledger_title").find("Vayu Motocorp"), std::string::npos);
}

TEST(BooksCashBook, ABusyDealersCashBookHasTheEntriesAsked) {
  TempFolder folder;
  ASSERT_EQ(RunGenerator("--ledger-entries 3000 --sqlite " + folder.File("busy.db") + " --facts " +
                         folder.File("facts")),
            0);
  auto db = data::Connection::Open(folder.File("busy.db"));
  const Facts facts = ReadFacts(folder.File("facts"));
  EXPECT_EQ(
      Rows(*db, "select count(*) from vu_ledger where am_id = " + Fact(facts, "cash_account_id") +
                    " and vm_date >= '" + Fact(facts, "ledger_from") + "' and vm_date <= '" +
                    Fact(facts, "ledger_to") + "'")[0][0]
          .integer(),
      3000);
  EXPECT_EQ(Rows(*db,
                 "select count(*) from (select vm_id from vchdet group by vm_id "
                 "having abs(sum(vd_dr) - sum(vd_cr)) > 0.001) t")[0][0]
                .integer(),
            0);
}

// The workshop's documents reach the books as postings; whatever the workshop leaves there is
// posted: a sale debits its party (the cash book when it has none) and credits the sales, tax
// and round-off ledgers, a purchase the other way round, a return turns either round, and a
// party the account master does not know goes to the workshop customers' account.
TEST(BooksPostings, TheWorkshopsPostingsArePosted) {
  Random random(kDefaultSeed);
  Random paperwork(kDefaultSeed ^ 1);
  Dealership sales;
  AddMasters(random, sales);
  AddTrading(random, paperwork, sales);
  Workshop workshop;
  const Day day = Day::FromYmd(2024, 6, 3);
  workshop.postings = {
      {day, "SERVICE", "JI/24-25/0001", 0, Rs(1000), Rs(90), Rs(90), 0, Rs(1180)},
      {day, "SPARES PURCHASE", "SPB/24-25/0001", 1, Rs(5000), 0, 0, Rs(900), Rs(5900)},
      {day, "PURCHASE RETURN", "SPR/24-25/0001", 1, Rs(200), 0, 0, Rs(36), Rs(236)},
      {day, "COUNTER", "CS/24-25/0001", 777777, 25012, 2251, 2251, 0, Rs(295)},
  };
  Dataset tables;
  FactList facts;
  AddBooks(sales, Options{}, random, workshop, tables, facts);

  const Table* masters = nullptr;
  const Table* lines = nullptr;
  for (const Table& table : tables.tables()) {
    if (table.name() == "vchmst") masters = &table;
    if (table.name() == "vchdet") lines = &table;
  }
  ASSERT_NE(masters, nullptr);
  ASSERT_NE(lines, nullptr);
  auto paise = [](const Cell& cell) { return std::get<Money>(cell).paise; };
  // document: its voucher type, and the party's debit (positive) or credit (negative)
  const std::map<std::string, std::pair<std::string, std::pair<int64_t, int64_t>>> expected = {
      {"JI/24-25/0001", {"SALES", {43, Rs(1180)}}},
      {"SPB/24-25/0001", {"PURCHASE", {1, -Rs(5900)}}},
      {"SPR/24-25/0001", {"DEBIT NOTE", {1, Rs(236)}}},
      {"CS/24-25/0001", {"SALES", {494, Rs(295)}}},
  };
  for (const auto& [document, want] : expected) {
    int64_t id = 0;
    for (const auto& row : masters->rows()) {
      if (std::holds_alternative<std::string>(row[5]) &&
          std::get<std::string>(row[5]) == document) {
        EXPECT_EQ(std::get<std::string>(row[1]), want.first) << document;
        id = std::get<int64_t>(row[0]);
      }
    }
    ASSERT_NE(id, 0) << document << " is not posted";
    int64_t debits = 0, credits = 0, party = 0;
    for (const auto& row : lines->rows()) {
      if (std::get<int64_t>(row[0]) != id) continue;
      debits += paise(row[3]);
      credits += paise(row[4]);
      if (std::get<int64_t>(row[2]) == want.second.first) party += paise(row[3]) - paise(row[4]);
    }
    EXPECT_EQ(debits, credits) << document;
    EXPECT_EQ(party, want.second.second) << document;
  }
}

}  // namespace
}  // namespace vantorel::demo::testing
