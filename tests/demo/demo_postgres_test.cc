// The demo database on PostgreSQL: demo/schema.sql and demo_gen's --sql script load unchanged
// into a fresh schema through the ODBC backend, hold the same rows and sums as the SQLite file,
// pass the same invariants, and answer the print methods' SQL, year-first date literals
// included, whatever the server's DateStyle. The server comes from the "postgres" CTest fixture
// (tests/support/postgres.sh), which writes its connection string to
// $VANTOREL_BUILD_DIR/pg/conn (this build's folder when the variable is not set).
#include <unistd.h>

#include <set>

#include "data/connection.h"
#include "data/temp_database.h"
#include "data/value.h"
#include "demo/demo_support.h"
#include "support/postgres.h"

namespace vantorel::demo::testing {
namespace {

using data::ToDouble;
using data::Value;
using data::testing::TempFolder;

using vantorel::testing::PostgresConnectionString;

class DemoPostgres : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new TempFolder;
    ASSERT_EQ(RunGenerator("--sqlite " + folder_->File("demo.db") + " --sql " +
                           folder_->File("data.sql") + " --facts " + folder_->File("facts")),
              0);
    facts_ = new Facts(ReadFacts(folder_->File("facts")));
    const std::string conn = PostgresConnectionString();
    ASSERT_FALSE(conn.empty()) << "no $VANTOREL_BUILD_DIR/pg/conn: run with the postgres fixture";
    pg_ = data::Connection::OpenForLoading(conn).release();
    // A schema of its own, so that runs never meet each other's tables.
    schema_ = "demo_test_" + std::to_string(::getpid());
    pg_->Execute("drop schema if exists " + schema_ + " cascade");
    pg_->Execute("create schema " + schema_);
    pg_->Execute("set search_path to " + schema_);
    pg_->Execute("set client_min_messages to warning");
    for (const std::string& file : {SchemaPath(), folder_->File("data.sql")}) {
      for (const std::string& statement : SplitStatements(ReadText(file))) {
        pg_->Execute(statement);
      }
    }
    sqlite_ = data::Connection::Open(folder_->File("demo.db")).release();
  }

  static void TearDownTestSuite() {
    if (pg_ != nullptr) pg_->Execute("drop schema if exists " + schema_ + " cascade");
    delete pg_;
    delete sqlite_;
    delete facts_;
    delete folder_;
    pg_ = sqlite_ = nullptr;
  }

  void SetUp() override {
    ASSERT_NE(pg_, nullptr);
    ASSERT_NE(sqlite_, nullptr);
  }

  static Value One(data::Connection& db, const std::string& sql) {
    const auto rows = Rows(db, sql);
    EXPECT_EQ(rows.size(), 1u) << sql;
    return rows.empty() || rows[0].empty() ? Value() : rows[0][0];
  }
  static double Number(data::Connection& db, const std::string& sql) {
    return ToDouble(One(db, sql));
  }

  static TempFolder* folder_;
  static Facts* facts_;
  static data::Connection* pg_;
  static data::Connection* sqlite_;
  static std::string schema_;
};

TempFolder* DemoPostgres::folder_ = nullptr;
Facts* DemoPostgres::facts_ = nullptr;
data::Connection* DemoPostgres::pg_ = nullptr;
data::Connection* DemoPostgres::sqlite_ = nullptr;
std::string DemoPostgres::schema_;

TEST_F(DemoPostgres, EveryTableAndViewHoldsTheRowsOfTheSqliteFile) {
  for (const auto& relations : {Tables(), Views()}) {
    for (const std::string& relation : relations) {
      const std::string sql = "select count(*) from " + relation;
      const double rows = Number(*sqlite_, sql);
      EXPECT_GT(rows, 0) << relation;
      EXPECT_EQ(Number(*pg_, sql), rows) << relation;
    }
  }
}

TEST_F(DemoPostgres, SumsMatchTheSqliteFile) {
  for (const char* sql :
       {"select sum(invamt) from invoice", "select sum(tot_subsidy) from invoice",
        "select sum(netprice) from purdata", "select sum(taxable) from purdata",
        "select sum(cgst_amt) from purdata", "select sum(igst_amt) from purdata",
        "select sum(amt) from challan", "select sum(amt) from receipt",
        "select sum(amt) from bulkrec", "select sum(total) from purchase",
        "select sum(btvalue) from btmstveh", "select sum(enq_status) from enqdata",
        "select sum(round_off) from invoice", "select sum(round_off) from challan",
        "select sum(round_off) from purchase", "select sum(cgst_amt) from purveh",
        "select sum(enq_booking) from enqdata", "select sum(netprice) from vu_invoice",
        "select sum(fee) from hsrp"}) {
    EXPECT_NEAR(Number(*pg_, sql), Number(*sqlite_, sql), 0.005) << sql;
  }
}

std::string Text(const Value& value) { return value.is_null() ? "(null)" : data::ToText(value); }

// Texts the views put together (addresses on one line) and texts the generator wrote (signed QR
// codes, register numbers) read the same on both engines.
TEST_F(DemoPostgres, TextsMatchTheSqliteFile) {
  for (const char* sql :
       {"select caddress, clocality from vu_invoicehead order by id",
        "select caddress, clocality from vu_challan order by id, line",
        "select caddress, clocality, cert_no from vu_tempnumber order by tline",
        "select paddress from vu_receipt order by id", "select qr_text from invoice order by id",
        "select enq_bkstatus from enqdata order by enq_id",
        "select ewb_no from btmstveh order by id"}) {
    const auto expected = Rows(*sqlite_, sql);
    const auto rows = Rows(*pg_, sql);
    ASSERT_EQ(rows.size(), expected.size()) << sql;
    for (size_t r = 0; r < rows.size(); ++r) {
      for (size_t c = 0; c < rows[r].size(); ++c) {
        EXPECT_EQ(Text(rows[r][c]), Text(expected[r][c])) << sql << ", row " << r;
      }
    }
  }
}

TEST_F(DemoPostgres, TablesAndViewsHaveTheColumnsDocumentsRead) {
  for (const auto& [relation, columns] : RequiredColumns()) {
    const auto cursor = pg_->Execute("select * from " + relation + " where 1 = 0");
    std::set<std::string> present;
    for (const data::Column& column : cursor->columns()) present.insert(column.name);
    for (const std::string& column : columns) {
      EXPECT_TRUE(present.count(column)) << relation << "." << column;
    }
  }
}

TEST_F(DemoPostgres, InvariantsHold) {
  for (const Invariant& invariant : Invariants()) {
    EXPECT_EQ(Number(*pg_, invariant.sql), 0) << invariant.name;
  }
}

// The print methods' own SQL (upper-case names, "BV.*", the bare "id" of the branch-transfer
// join) and the templates' parameter queries return what they return on SQLite.
TEST_F(DemoPostgres, DocumentQueriesReturnTheRowsTheyReturnOnSqlite) {
  for (const DocumentQuery& query : DocumentQueries(*facts_)) {
    const auto expected = Rows(*sqlite_, query.sql, query.params);
    const auto rows = Rows(*pg_, query.sql, query.params);
    EXPECT_GE(rows.size(), query.min_rows) << query.name << ": " << query.sql;
    EXPECT_EQ(rows.size(), expected.size()) << query.name << ": " << query.sql;
    if (!rows.empty() && !expected.empty()) {
      EXPECT_EQ(rows[0].size(), expected[0].size()) << query.name;
    }
  }
}

// PostgreSQL reads '2024/04/01', '2024.04.01' and '2024-04-01' as year, month, day in every
// DateStyle, so the enquiry registers need no server setting.
TEST_F(DemoPostgres, YearFirstDateLiteralsWorkInEveryDateStyle) {
  const std::string from = Fact(*facts_, "enquiry_month_from");
  const std::string to = Fact(*facts_, "enquiry_month_to");
  const double expected = Number(*sqlite_, "select count(*) from enqdata where enq_date>='" + from +
                                               "' and enq_date<='" + to + "'");
  ASSERT_GT(expected, 0);
  auto with = [](std::string iso, char separator) {
    for (char& c : iso) {
      if (c == '-') c = separator;
    }
    return iso;
  };
  for (const char* style :
       {"ISO, MDY", "ISO, DMY", "ISO, YMD", "SQL, DMY", "SQL, MDY", "German", "Postgres, DMY"}) {
    pg_->Execute(std::string("set datestyle to '") + style + "'");
    for (const char separator : {'/', '-', '.'}) {
      const std::string sql = "select count(*) from enqdata where  enq_date>='" +
                              with(from, separator) + "' and enq_date<='" + with(to, separator) +
                              "'";
      EXPECT_EQ(Number(*pg_, sql), expected) << style << ": " << sql;
    }
    EXPECT_EQ(Number(*pg_,
                     "select count(*) from enqdata where enq_date>='2024/04/01' and "
                     "enq_date<='2025/03/31'"),
              300)
        << style;
  }
  pg_->Execute("set datestyle to default");
}

}  // namespace
}  // namespace vantorel::demo::testing
