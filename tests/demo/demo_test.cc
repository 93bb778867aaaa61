// demo_gen and the SQLite demo database it writes: deterministic output, every table, view and
// column the print methods and templates read, ids in the facts file that exist, and amounts,
// taxes and identifiers that add up.
#include <sqlite3.h>
#include <sys/wait.h>

#include <cctype>
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
using data::Value;
using data::testing::TempFolder;

int ExitCode(int status) { return WIFEXITED(status) ? WEXITSTATUS(status) : -1; }

int64_t CountRows(const std::string& db_path, const std::string& relation) {
  auto db = data::Connection::Open(db_path);
  return Rows(*db, "select count(*) from " + relation)[0][0].integer();
}

TEST(DemoGenerator, TheSameSeedWritesTheSameBytes) {
  TempFolder folder;
  for (const char* run : {"a", "b"}) {
    const std::string prefix = folder.File(run);
    std::string arguments = "--seed 42";
    for (const char* output : {"sqlite", "sql", "facts"}) {
      arguments.append(" --").append(output).append(" ").append(prefix).append(".").append(output);
    }
    ASSERT_EQ(RunGenerator(arguments), 0);
  }
  for (const char* ext : {".sqlite", ".sql", ".facts"}) {
    const std::string first = ReadText(folder.File(std::string("a") + ext));
    EXPECT_FALSE(first.empty()) << ext;
    EXPECT_TRUE(first == ReadText(folder.File(std::string("b") + ext))) << ext << " differs";
  }
}

TEST(DemoGenerator, AnotherSeedWritesOtherData) {
  TempFolder folder;
  ASSERT_EQ(RunGenerator("--sql " + folder.File("default.sql")), 0);
  ASSERT_EQ(RunGenerator("--seed 7 --sql " + folder.File("seven.sql")), 0);
  EXPECT_NE(ReadText(folder.File("default.sql")), ReadText(folder.File("seven.sql")));
}

// The facts pick documents by what they show, with plainer fallbacks, so any seed has them all.
TEST(DemoGenerator, EverySeedHasADocumentOfEveryKind) {
  TempFolder folder;
  const Facts reference = [&] {
    EXPECT_EQ(RunGenerator("--facts " + folder.File("default.facts")), 0);
    return ReadFacts(folder.File("default.facts"));
  }();
  for (int seed = 1; seed <= 12; ++seed) {
    const std::string facts = folder.File(std::to_string(seed) + ".facts");
    ASSERT_EQ(RunGenerator("--seed " + std::to_string(seed) + " --facts " + facts), 0) << seed;
    const Facts found = ReadFacts(facts);
    EXPECT_EQ(found.size(), reference.size()) << seed;
    EXPECT_EQ(Fact(found, "seed"), std::to_string(seed));
  }
}

TEST(DemoGenerator, WritesTheDatabase) {
  TempFolder folder;
  ASSERT_EQ(RunGenerator("--sqlite " + folder.File("demo.db")), 0);
  auto db = data::Connection::Open(folder.File("demo.db"));
  EXPECT_FALSE(Rows(*db, "select id from invoice").empty());
}

TEST(DemoGenerator, GatepassOptionSetsTheChallanSetting) {
  TempFolder folder;
  ASSERT_EQ(RunGenerator("--gatepass N --sqlite " + folder.File("demo.db") + " --facts " +
                         folder.File("facts")),
            0);
  auto db = data::Connection::Open(folder.File("demo.db"));
  EXPECT_EQ(Rows(*db,
                 "select para_value from para_setup where para_flag='CHALLAN' and "
                 "para_type='GATEPASS'")[0][0],
            Value::Text("N"));
  EXPECT_EQ(Fact(ReadFacts(folder.File("facts")), "gatepass"), "N");
}

TEST(DemoGenerator, RefusesBadArguments) {
  TempFolder folder;
  EXPECT_EQ(ExitCode(RunGenerator("")), 1);
  EXPECT_EQ(ExitCode(RunGenerator("--seed x12 --sql " + folder.File("a.sql"))), 1);
  EXPECT_EQ(ExitCode(RunGenerator("--gatepass yes --sql " + folder.File("a.sql"))), 1);
  EXPECT_EQ(ExitCode(RunGenerator("--colour red")), 1);
  EXPECT_EQ(ExitCode(RunGenerator("--sql")), 1);
  EXPECT_EQ(ExitCode(RunGenerator("--help")), 0);
}

// schema.sql followed by the --sql script gives the same rows as --sqlite, so PostgreSQL loads
// the same data.
TEST(DemoGenerator, SchemaAndSqlScriptRebuildTheDatabase) {
  TempFolder folder;
  ASSERT_EQ(
      RunGenerator("--sqlite " + folder.File("demo.db") + " --sql " + folder.File("data.sql")), 0);
  data::testing::CreateSqlite(folder.File("loaded.db"),
                              ReadText(SchemaPath()) + ReadText(folder.File("data.sql")));
  for (const auto& relations : {Tables(), Views()}) {
    for (const std::string& relation : relations) {
      EXPECT_EQ(CountRows(folder.File("loaded.db"), relation),
                CountRows(folder.File("demo.db"), relation))
          << relation;
    }
  }
}

TEST(DemoGenerator, ScriptsSplitIntoStatementsAtLineEnds) {
  const std::vector<std::string> expected = {"create table t (a text)",
                                             "insert into t values\n('x; y'),\n('z')"};
  EXPECT_EQ(SplitStatements("-- a comment;\ncreate table t (a text);\n\n"
                            "insert into t values\n('x; y'),\n('z');\n"),
            expected);
  const std::vector<std::string> schema = SplitStatements(ReadText(SchemaPath()));
  EXPECT_GT(schema.size(), 60u);
  for (const std::string& statement : schema) {
    EXPECT_EQ(statement.find(';'), std::string::npos) << statement;
  }
}

class DemoDatabase : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new TempFolder;
    ASSERT_EQ(
        RunGenerator("--sqlite " + folder_->File("demo.db") + " --facts " + folder_->File("facts")),
        0);
    facts_ = new Facts(ReadFacts(folder_->File("facts")));
  }
  static void TearDownTestSuite() {
    delete facts_;
    delete folder_;
  }
  void SetUp() override { db_ = data::Connection::Open(folder_->File("demo.db")); }

  std::vector<std::vector<Value>> Query(const std::string& sql) { return Rows(*db_, sql); }
  Value One(const std::string& sql) {
    const auto rows = Query(sql);
    EXPECT_EQ(rows.size(), 1u) << sql;
    return rows.empty() ? Value() : rows[0][0];
  }
  int64_t Count(const std::string& sql) { return One(sql).integer(); }
  double Number(const std::string& sql) { return ToDouble(One(sql)); }
  std::string Id(const std::string& key) { return Fact(*facts_, key); }
  std::vector<std::string> Column(const std::string& sql) {
    std::vector<std::string> values;
    for (const auto& row : Query(sql)) values.push_back(ToText(row[0]));
    return values;
  }

  static TempFolder* folder_;
  static Facts* facts_;
  std::unique_ptr<data::Connection> db_;
};

TempFolder* DemoDatabase::folder_ = nullptr;
Facts* DemoDatabase::facts_ = nullptr;

TEST_F(DemoDatabase, EveryTableAndViewHasRows) {
  for (const auto& relations : {Tables(), Views()}) {
    for (const std::string& relation : relations) {
      EXPECT_GT(Count("select count(*) from " + relation), 0) << relation;
    }
  }
  EXPECT_EQ(Count("select count(*) from customer"), 60);
  EXPECT_EQ(Count("select count(*) from invoice"), 150);
  EXPECT_EQ(Count("select count(*) from enqdata"), 300);
  EXPECT_EQ(Count("select count(*) from branch"), 3);
  EXPECT_EQ(Count("select count(*) from fa_acmaster where am_group = 'SUBDEALER'"), 6);
  EXPECT_GE(Count("select count(*) from challan"), 50);
}

TEST_F(DemoDatabase, TablesAndViewsHaveTheColumnsDocumentsRead) {
  for (const auto& [relation, columns] : RequiredColumns()) {
    const auto cursor = db_->Execute("select * from " + relation + " where 1 = 0");
    std::set<std::string> present;
    for (const data::Column& column : cursor->columns()) present.insert(column.name);
    for (const std::string& column : columns) {
      EXPECT_TRUE(present.count(column)) << relation << "." << column;
    }
  }
}

// The branch-transfer print joins btmstveh and fa_acmaster by a bare "id".
TEST_F(DemoDatabase, AccountMasterHasNoIdColumn) {
  const auto cursor = db_->Execute("select * from fa_acmaster where 1 = 0");
  for (const data::Column& column : cursor->columns()) EXPECT_NE(column.name, "id");
}

TEST_F(DemoDatabase, InvariantsHold) {
  for (const Invariant& invariant : Invariants()) {
    EXPECT_EQ(Count(invariant.sql), 0) << invariant.name;
  }
}

TEST_F(DemoDatabase, DocumentQueriesFindTheirRows) {
  for (const DocumentQuery& query : DocumentQueries(*facts_)) {
    const auto rows = Rows(*db_, query.sql, query.params);
    EXPECT_GE(rows.size(), query.min_rows) << query.name << ": " << query.sql;
    if (!rows.empty()) {
      EXPECT_FALSE(rows[0][0].is_null()) << query.name << ": " << query.sql;
    }
  }
}

TEST_F(DemoDatabase, ChallansPrintAsTheCustomerChallanReadsThem) {
  EXPECT_EQ(One("select para_value from para_setup where para_flag='CHALLAN' and "
                "para_type='GATEPASS'"),
            Value::Text("Y"));
  const std::string id = Id("challan_customer_id");
  const auto cursor = db_->Execute("select * from challan where id=" + id);
  size_t amt = cursor->columns().size();
  for (size_t i = 0; i < cursor->columns().size(); ++i) {
    if (cursor->columns()[i].name == "amt") amt = i;
  }
  std::vector<Value> row;
  ASSERT_TRUE(cursor->Next(row));
  ASSERT_LT(amt, row.size());
  EXPECT_GT(data::Val(ToText(row[amt])), 5000.0);
  EXPECT_EQ(One("select type from challan where id=" + id), Value::Text("C"));
  EXPECT_EQ(Count("select count(*) from challan where id=" + Id("challan_missing_id")), 0);
  EXPECT_EQ(One("select type from challan where id=" + Id("challan_sub_id")), Value::Text("S"));
  EXPECT_TRUE(One("select invid from challan where id=" + Id("challan_pending_id")).is_null());
}

TEST_F(DemoDatabase, InvoiceFactsNameInvoicesOfTheirKind) {
  auto invoice = [&](const std::string& key, const std::string& column) {
    return One("select " + column + " from invoice where id=" + Id(key));
  };
  EXPECT_EQ(invoice("invoice_id", "vcat"), Value::Text("MC"));
  EXPECT_EQ(invoice("invoice_scooter_id", "vcat"), Value::Text("SC"));
  EXPECT_FALSE(invoice("invoice_financed_id", "hypothecation").is_null());
  EXPECT_GE(Count("select count(*) from purdata where invid=" + Id("invoice_accessories_id")), 2);
  EXPECT_EQ(ToText(invoice("invoice_before_revision_id", "idate")), "2025-09-21");
  EXPECT_EQ(ToText(invoice("invoice_after_revision_id", "idate")), "2025-09-22");
  EXPECT_EQ(Number("select cgst_rate + sgst_rate from purdata where line = 1 and invid=" +
                   Id("invoice_before_revision_id")),
            28.0);
  EXPECT_EQ(Number("select cgst_rate + sgst_rate from purdata where line = 1 and invid=" +
                   Id("invoice_after_revision_id")),
            18.0);
  EXPECT_GT(Number("select tot_subsidy from invoice where id=" + Id("invoice_subsidy_id")), 0);
  EXPECT_EQ(Count("select count(*) from purdata where subsidyamt is not null and invid=" +
                  Id("invoice_null_subsidy_id")),
            0);
  EXPECT_EQ(Number("select sum(netprice-coalesce(subsidyamt,0)) from purdata where invid=" +
                   Id("invoice_subsidy_id")),
            Number("select payable from invoice where id=" + Id("invoice_subsidy_id")));
  for (const char* key :
       {"hero_subdealer_invoice_id", "subdealer_invoice_id", "subdealer_igst_invoice_id",
        "cycle_subdealer_invoice_id", "packing_list_id", "einvoice_id"}) {
    EXPECT_EQ(invoice(key, "itype"), Value::Text("S")) << key;
  }
  EXPECT_GT(Number("select tot_igst from invoice where id=" + Id("subdealer_igst_invoice_id")), 0);
  EXPECT_EQ(Number("select tot_igst from invoice where id=" + Id("subdealer_invoice_id")), 0);
  EXPECT_EQ(invoice("cycle_invoice_id", "vcat"), Value::Text("CY"));
  EXPECT_EQ(invoice("cycle_subdealer_invoice_id", "vcat"), Value::Text("CY"));
  EXPECT_FALSE(invoice("einvoice_id", "irn").is_null());
  EXPECT_FALSE(invoice("einvoice_id", "ewb_no").is_null());
  EXPECT_EQ(invoice("einvoice_retail_id", "itype"), Value::Text("R"));
  EXPECT_FALSE(invoice("einvoice_retail_id", "irn").is_null());
  EXPECT_FALSE(invoice("form22_invoice_id", "regno").is_null());
  EXPECT_EQ(Count("select count(*) from hsrp where fit_date is not null and invid=" +
                  Id("hsrp_invoice_id")),
            1);
  EXPECT_EQ(Count("select count(*) from tempreg where invid=" + Id("prorc_invoice_id")), 1);
}

TEST_F(DemoDatabase, OtherFactsNameDocumentsOfTheirKind) {
  EXPECT_EQ(One("select reg_state from tempreg where tline=" + Id("temp_tline")),
            Value::Text("Maharashtra"));
  EXPECT_EQ(One("select reg_state from tempreg where tline=" + Id("temp_tline_karnataka")),
            Value::Text("Karnataka"));
  EXPECT_EQ(One("select mode from receipt where id=" + Id("receipt_id")), Value::Text("CASH"));
  EXPECT_EQ(One("select mode from receipt where id=" + Id("receipt_cheque_id")),
            Value::Text("CHEQUE"));
  EXPECT_EQ(One("select mode from receipt where id=" + Id("receipt_finance_id")),
            Value::Text("FINANCE"));
  EXPECT_EQ(One("select a.am_group from bulkrec b join fa_acmaster a on a.am_id = b.am_id "
                "where b.id=" +
                Id("bulk_receipt_id")),
            Value::Text("FINANCIER"));
  EXPECT_EQ(One("select a.am_group from bulkrec b join fa_acmaster a on a.am_id = b.am_id "
                "where b.id=" +
                Id("bulk_receipt_subdealer_id")),
            Value::Text("SUBDEALER"));
  EXPECT_GT(Number("select igst from purchase where id=" + Id("purchase_id")), 0);
  EXPECT_GT(Number("select cgst from purchase where id=" + Id("purchase_intra_id")), 0);
  EXPECT_GE(Count("select count(*) from btdetveh where btid=" + Id("branch_transfer_id")), 2);
  EXPECT_GE(Count("select count(*) from vintrfdet where tid=" + Id("vintrf_id")), 1);
  EXPECT_EQ(Count("select count(*) from firm where coid=" + Id("firm_id")), 1);
  EXPECT_EQ(Count("select count(distinct mode) from receipt where rdate>='" + Id("receipt_from") +
                  "' and rdate<='" + Id("receipt_to") + "'"),
            5);
  const std::string month = "select count(*) from enqdata where enq_date>='" +
                            Id("enquiry_month_from") + "' and enq_date<='" +
                            Id("enquiry_month_to") + "'";
  for (const char* filter : {" and enq_status=0", " and enq_status=1", " and enq_status=2"}) {
    EXPECT_GT(Count(month + filter), 0) << filter;
  }
}

// The print methods write dates year first with the regional separator; the SQLite backend
// reads them like the ISO dates the database stores.
TEST_F(DemoDatabase, YearFirstDateLiteralsSelectLikeIsoOnes) {
  const std::string from = Id("enquiry_month_from");
  const std::string to = Id("enquiry_month_to");
  const int64_t iso = Count("select count(*) from enqdata where  enq_date>='" + from +
                            "' and enq_date<='" + to + "'");
  EXPECT_GT(iso, 0);
  EXPECT_EQ(Count("select count(*) from enqdata where  enq_date>='" + SlashDate(from) +
                  "' and enq_date<='" + SlashDate(to) + "'"),
            iso);
  EXPECT_EQ(Count("select count(*) from enqdata where enq_date>='2024/04/01' and "
                  "enq_date<='2025/03/31'"),
            300);
}

bool IsVin(const std::string& vin) {
  static const std::string kLetters = "ABCDEFGHJKLMNPRSTUVWXYZ";
  static const int kValues[] = {1, 2, 3, 4, 5, 6, 7, 8, 1, 2, 3, 4,
                                5, 7, 9, 2, 3, 4, 5, 6, 7, 8, 9};
  static const int kWeights[] = {8, 7, 6, 5, 4, 3, 2, 10, 0, 9, 8, 7, 6, 5, 4, 3, 2};
  if (vin.size() != 17 || vin.compare(0, 2, "MD") != 0) return false;
  int sum = 0;
  for (size_t i = 0; i < vin.size(); ++i) {
    const char c = vin[i];
    const size_t letter = kLetters.find(c);
    if (!std::isdigit(static_cast<unsigned char>(c)) && letter == std::string::npos) return false;
    sum += (std::isdigit(static_cast<unsigned char>(c)) ? c - '0' : kValues[letter]) * kWeights[i];
  }
  return vin[8] == (sum % 11 == 10 ? 'X' : static_cast<char>('0' + sum % 11));
}

TEST_F(DemoDatabase, ChassisNumbersAreUniqueVinsWithValidCheckDigits) {
  const auto chassis = Column("select chassis from vehicle");
  EXPECT_GT(chassis.size(), 250u);
  EXPECT_EQ(std::set<std::string>(chassis.begin(), chassis.end()).size(), chassis.size());
  for (const std::string& vin : chassis) EXPECT_TRUE(IsVin(vin)) << vin;
}

TEST_F(DemoDatabase, EngineNumbersAreUniqueAndOnlyCyclesLackThem) {
  EXPECT_EQ(Count("select count(*) from vehicle where engine is not null"),
            Count("select count(distinct engine) from vehicle"));
  EXPECT_EQ(Count("select count(*) from vehicle v join vehmodel m on m.model_id = v.model_id "
                  "where (v.engine is null) <> (m.vcat = 'CY')"),
            0);
}

// An independent reading of the GSTIN check: code points weighted 1, 2, 1, … from the left,
// each product folded to quotient plus remainder by 36.
char GstinCheck(const std::string& gstin) {
  static const std::string kCodes = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  int sum = 0;
  for (size_t i = 0; i < 14; ++i) {
    const int product = static_cast<int>(kCodes.find(gstin[i])) * (i % 2 == 0 ? 1 : 2);
    sum += product / 36 + product % 36;
  }
  return kCodes[static_cast<size_t>((36 - sum % 36) % 36)];
}

TEST_F(DemoDatabase, GstinsHaveValidCheckCharacters) {
  // Published GSTINs, to pin the check itself.
  EXPECT_EQ(GstinCheck("27AAPFU0939F1ZV"), 'V');
  EXPECT_EQ(GstinCheck("29AAGCB7383J1Z4"), '4');

  const std::regex format("[0-9]{2}[A-Z]{5}[0-9]{4}[A-Z][1-9A-Z]Z[0-9A-Z]");
  const auto gstins = Column(
      "select gstin from firm union all select am_gst from fa_acmaster where am_gst is not null "
      "union all select cgstin from customer where cgstin is not null");
  EXPECT_GE(gstins.size(), 20u);
  for (const std::string& gstin : gstins) {
    ASSERT_TRUE(std::regex_match(gstin, format)) << gstin;
    EXPECT_EQ(gstin[14], GstinCheck(gstin)) << gstin;
  }
  EXPECT_EQ(ToText(One("select gstin from firm")).substr(0, 2), "27");
  EXPECT_EQ(Count("select count(*) from fa_acmaster where am_gst is not null and "
                  "substr(am_gst, 1, 2) <> am_statecode"),
            0);
  EXPECT_EQ(Count("select count(*) from firm where substr(gstin, 3, 10) <> pan"), 0);
}

TEST_F(DemoDatabase, EInvoicesCarryIrnAckAndQrPayload) {
  const std::regex hex("[0-9a-f]{64}");
  const auto rows = Query("select irn, ack_no, qr_text, num from invoice where irn is not null");
  EXPECT_GE(rows.size(), 30u);
  for (const auto& row : rows) {
    const std::string irn = ToText(row[0]);
    EXPECT_TRUE(std::regex_match(irn, hex)) << irn;
    EXPECT_TRUE(std::regex_match(ToText(row[1]), std::regex("1[0-9]{14}"))) << ToText(row[1]);
    const std::string qr = ToText(row[2]);
    EXPECT_NE(qr.find("\"Irn\":\"" + irn + "\""), std::string::npos) << qr;
    EXPECT_NE(qr.find("\"DocNo\":\"" + ToText(row[3]) + "\""), std::string::npos) << qr;
  }
}

TEST_F(DemoDatabase, SalesAfterTheRateRevisionAreOnFile) {
  EXPECT_GE(Count("select count(*) from invoice where idate >= '2025-09-22'"), 15);
  EXPECT_GE(Count("select count(*) from invoice where idate < '2025-09-22'"), 100);
  EXPECT_GT(Count("select count(*) from purdata d join invoice i on i.id = d.invid "
                  "where i.idate >= '2025-09-22' and d.hsn = '871200'"),
            0);
}

}  // namespace
}  // namespace vantorel::demo::testing
