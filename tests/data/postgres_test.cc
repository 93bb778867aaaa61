// The ODBC backend against a real PostgreSQL server on loopback: tests/support/postgres.sh,
// started by the "postgres" CTest fixture, writes its connection string to
// $VANTOREL_BUILD_DIR/pg/conn (this build's folder when the variable is not set).
#include <gtest/gtest.h>
#include <stdlib.h>

#include <fstream>
#include <functional>
#include <memory>

#include "data/connection.h"
#include "data/open_rs.h"
#include "data/recordset.h"
#include "data/temp_database.h"
#include "host/recording_platform.h"
#include "support/postgres.h"
#include "vantorel/error.h"
#include "vantorel/platform.h"

namespace vantorel::data {
namespace {

std::string ReadConnectionString() { return vantorel::testing::PostgresConnectionString(); }

std::string Replace(std::string text, const std::string& from, const std::string& to) {
  const size_t pos = text.find(from);
  if (pos != std::string::npos) text.replace(pos, from.size(), to);
  return text;
}

class DataPostgres : public ::testing::Test {
 protected:
  void SetUp() override {
    conn_ = ReadConnectionString();
    ASSERT_FALSE(conn_.empty()) << "no $VANTOREL_BUILD_DIR/pg/conn: run with the postgres fixture";
    const size_t port = conn_.find("Port=");
    port_ = conn_.substr(port + 5, conn_.find(';', port) - port - 5);
    db_ = Connection::Open(conn_);
    loader_ = Connection::OpenForLoading(conn_);
    SetPlatform(platform_);
  }
  void TearDown() override { SetPlatform(nullptr); }

  void Run(const std::string& sql) { loader_->Execute(sql); }

  std::vector<std::vector<Value>> Rows(const std::string& sql,
                                       const std::map<std::string, ParamValue>& params = {}) {
    return data::testing::Rows(*db_, sql, params);
  }

  Value One(const std::string& sql, const std::map<std::string, ParamValue>& params = {}) {
    const auto rows = Rows(sql, params);
    EXPECT_EQ(rows.size(), 1u) << sql;
    return rows.empty() || rows[0].empty() ? Value() : rows[0][0];
  }

  static Error ErrorOf(const std::function<void()>& call) {
    try {
      call();
    } catch (const Error& error) {
      return error;
    }
    ADD_FAILURE() << "no error";
    return Error(0, "", "");
  }

  std::string conn_;
  std::string port_;
  std::unique_ptr<Connection> db_;      // as the component connects: reading only
  std::unique_ptr<Connection> loader_;  // sets up the tables the tests read
  std::shared_ptr<RecordingPlatform> platform_ = std::make_shared<RecordingPlatform>();
};

TEST_F(DataPostgres, DecimalsAreExact) {
  Run("drop table if exists t_decimals");
  Run("create table t_decimals (id int, amt numeric(12,2), rate numeric)");
  Run("insert into t_decimals values (1, 60000.10, 0.1), (2, 0.05, 1e-20), "
      "(3, -1234.50, 12345678901234567890.123456789), (4, 9999999999.99, 100)");
  const auto rows = Rows("select amt, rate from t_decimals order by id");
  ASSERT_EQ(rows.size(), 4u);
  EXPECT_EQ(rows[0][0], Value::Decimal("60000.10"));
  EXPECT_EQ(rows[0][1], Value::Decimal("0.1"));
  EXPECT_EQ(rows[1][0], Value::Decimal("0.05"));
  EXPECT_EQ(rows[1][1], Value::Decimal("0.00000000000000000001"));
  EXPECT_EQ(rows[2][0], Value::Decimal("-1234.50"));
  EXPECT_EQ(rows[2][1], Value::Decimal("12345678901234567890.123456789"));
  EXPECT_EQ(rows[3][0], Value::Decimal("9999999999.99"));
  EXPECT_EQ(ToText(rows[0][0]), "60000.10");
}

TEST_F(DataPostgres, DatesComeAsDates) {
  EXPECT_EQ(One("select date '2024-03-31'"), Value::FromDate(Date::FromYmd(2024, 3, 31)));
  EXPECT_EQ(One("select timestamp '2024-03-31 18:45:10'"),
            Value::FromDateTime(Date::FromParts({2024, 3, 31, 18, 45, 10})));
  EXPECT_EQ(ToText(One("select timestamp '1999-12-31 23:59:59.75'")), "1999-12-31 23:59:59");
}

TEST_F(DataPostgres, OtherTypesComeTyped) {
  const auto rows = Rows(
      "select 42::int4, 9000000000::int8, 7::int2, 1.5::float8, 0.25::float4, "
      "'abc'::varchar(10), 'x'::char(3), '\\x00ff'::bytea");
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0][0], Value::Integer(42));
  EXPECT_EQ(rows[0][1], Value::Integer(9000000000));
  EXPECT_EQ(rows[0][2], Value::Integer(7));
  EXPECT_EQ(rows[0][3], Value::Real(1.5));
  EXPECT_EQ(rows[0][4], Value::Real(0.25));
  EXPECT_EQ(rows[0][5], Value::Text("abc"));
  EXPECT_EQ(rows[0][6], Value::Text("x  "));
  EXPECT_EQ(rows[0][7], Value::Blob(std::string("\x00\xff", 2)));
}

TEST_F(DataPostgres, NullsStayNull) {
  const auto rows = Rows(
      "select null::int, null::text, null::numeric(12,2), null::date, "
      "null::timestamp, null::float8, null::bytea, null::bool");
  ASSERT_EQ(rows.size(), 1u);
  for (size_t i = 0; i < rows[0].size(); ++i) EXPECT_TRUE(rows[0][i].is_null()) << i;
}

TEST_F(DataPostgres, DevanagariAndTheRupeeSignRoundTrip) {
  const std::string name = "सुनीता देवी — ₹ 60,000 😀";
  Run("drop table if exists t_unicode");
  Run("create table t_unicode (id int, name text)");
  loader_->Execute("insert into t_unicode values (1, :name)", {{"name", name}});
  Run("insert into t_unicode values (2, 'रमेश ₹')");
  EXPECT_EQ(One("select name from t_unicode where id = 1"), Value::Text(name));
  EXPECT_EQ(One("select name from t_unicode where id = 2"), Value::Text("रमेश ₹"));
  EXPECT_EQ(One("select id from t_unicode where name = 'रमेश ₹'"), Value::Integer(2));
  EXPECT_EQ(One("select length(name) from t_unicode where id = 1"), Value::Integer(24));
}

TEST_F(DataPostgres, LongTextIsReadWhole) {
  // Long enough to need many pieces, with characters outside the BMP across piece boundaries.
  std::string text;
  for (int i = 0; i < 3000; ++i) text += i % 7 == 0 ? "😀" : i % 2 == 0 ? "क" : "a";
  EXPECT_EQ(One("select :t::text", {{"t", text}}), Value::Text(text));
}

TEST_F(DataPostgres, EveryRowIsFetchedAndCounted) {
  Run("drop table if exists t_many");
  Run("create table t_many as select n, n * 1.5 as half from generate_series(1, 2500) n");
  Recordset rs;
  rs.Open("select * from t_many order by n", conn_);
  EXPECT_EQ(rs.RecordCount(), 2500);
  EXPECT_EQ(rs.Fields("N").Value(), Value::Integer(1));
  EXPECT_EQ(rs.Fields("half").Value(), Value::Decimal("1.5"));
}

TEST_F(DataPostgres, NamedParametersAreTyped) {
  Run("drop table if exists t_params");
  Run("create table t_params (id int, cname text, enq_date date, visited timestamp, "
      "amount numeric(12,2))");
  Run("insert into t_params values (1, 'Amit', '2024-03-31', '2024-03-31 10:00', 60000.10), "
      "(2, 'Ravi', '2024-04-01', '2024-04-01 11:30', 500)");
  EXPECT_EQ(One("select cname from t_params where id = :id", {{"ID", int64_t{2}}}),
            Value::Text("Ravi"));
  EXPECT_EQ(One("select id from t_params where cname = :name", {{"name", std::string("Amit")}}),
            Value::Integer(1));
  EXPECT_EQ(
      One("select id from t_params where enq_date >= :from", {{"from", Date::FromYmd(2024, 4, 1)}}),
      Value::Integer(2));
  EXPECT_EQ(One("select id from t_params where visited = :v",
                {{"v", Date::FromParts({2024, 3, 31, 10, 0, 0})}}),
            Value::Integer(1));
  EXPECT_EQ(One("select id from t_params where amount > :a", {{"a", 1000.5}}), Value::Integer(1));
  // A parameter the map lacks is bound as NULL.
  EXPECT_EQ(One("select count(*) from t_params where coalesce(cname = :missing, true)"),
            Value::Integer(2));
  EXPECT_EQ(One("select id from t_params where id = :id and enq_date::text = '2024-03-31'",
                {{"id", int64_t{1}}}),
            Value::Integer(1));
}

TEST_F(DataPostgres, DeadServerGivesTheDriversText) {
  const std::string dead = Replace(conn_, "Port=" + port_, "Port=1");
  const Error error = ErrorOf([&] { Connection::Open(dead); });
  EXPECT_EQ(error.number(), errnum::kUnspecified);
  EXPECT_NE(error.description().find("Connection refused"), std::string::npos)
      << error.description();
  EXPECT_EQ(error.description().find("dmspw"), std::string::npos);
  EXPECT_EQ(error.description().find("Driver="), std::string::npos);
}

TEST_F(DataPostgres, WrongPasswordIsAnAuthenticationFailureThatNeverShowsThePassword) {
  const std::string wrong = Replace(conn_, "PWD=dmspw", "PWD=Wr0ngPass!");
  const Error error = ErrorOf([&] { Connection::Open(wrong); });
  EXPECT_EQ(error.number(), errnum::kAuthenticationFailed);
  EXPECT_NE(error.description().find("password authentication failed"), std::string::npos)
      << error.description();
  EXPECT_EQ(error.description().find("Wr0ngPass!"), std::string::npos);

  Recordset rs;
  OpenRs("select 1", rs, wrong);
  ASSERT_EQ(platform_->messages().size(), 1u);
  const std::string message = platform_->messages()[0].text;
  EXPECT_EQ(message.rfind("Function OpenRs, ErrNo : -2147217843 , ", 0), 0u) << message;
  EXPECT_EQ(message.find("Wr0ngPass!"), std::string::npos);
  EXPECT_EQ(message.find("dmspw"), std::string::npos);
  EXPECT_EQ(rs.State(), kStateClosed);
}

TEST_F(DataPostgres, BadSqlIsACommandErrorWithTheDriversText) {
  const Error error = ErrorOf([&] { Rows("selec 1"); });
  EXPECT_EQ(error.number(), errnum::kCommandError);
  EXPECT_NE(error.description().find("syntax error at or near \"selec\""), std::string::npos)
      << error.description();
  const Error missing = ErrorOf([&] { Rows("select * from no_such_table"); });
  EXPECT_EQ(missing.number(), errnum::kCommandError);
  EXPECT_NE(missing.description().find("relation \"no_such_table\" does not exist"),
            std::string::npos);
}

TEST_F(DataPostgres, TheComponentsSessionOnlyReads) {
  Run("drop table if exists t_guarded");
  Run("create table t_guarded (id int)");
  Run("insert into t_guarded values (1)");
  for (const char* sql :
       {"insert into t_guarded values (2)", "update t_guarded set id = 3", "delete from t_guarded",
        "create table t_new (a int)", "drop table t_guarded"}) {
    const Error error = ErrorOf([&] { Rows(sql); });
    EXPECT_EQ(error.number(), errnum::kCommandError) << sql;
    EXPECT_NE(error.description().find("read-only transaction"), std::string::npos)
        << sql << ": " << error.description();
  }
  EXPECT_EQ(One("select count(*) from t_guarded"), Value::Integer(1));
}

TEST_F(DataPostgres, OnlyServersOpenForLoading) {
  EXPECT_THROW(Connection::OpenForLoading("Provider=SQLite;Data Source=/tmp/x.db"), Error);
}

TEST_F(DataPostgres, OpenRsShowsBadSqlInTheExactFormat) {
  const Error error = ErrorOf([&] { Rows("selec 1"); });
  Recordset rs;
  OpenRs("select 1 as one", rs, conn_);
  ASSERT_EQ(rs.State(), kStateOpen);
  OpenRs("selec 1", rs, conn_);
  const std::vector<RecordingPlatform::Message> expected = {
      {"Function OpenRs, ErrNo : -2147217900 , " + error.description() + ", " +
           std::to_string(error.system_code()),
       MessageIcon::kNone}};
  EXPECT_EQ(platform_->messages(), expected);
  EXPECT_EQ(rs.State(), kStateClosed);
}

TEST_F(DataPostgres, OpenRsReadsASetting) {
  Run("drop table if exists para_setup");
  Run("create table para_setup (para_value text, para_flag text, para_type text)");
  Run("insert into para_setup values (' y ', 'CHALLAN', 'GATEPASS'), (null, 'WS_PO', 'PO')");
  Recordset rs;
  OpenRs("select para_value from para_setup where para_flag='CHALLAN' and para_type='GATEPASS'", rs,
         conn_);
  ASSERT_EQ(rs.RecordCount(), 1);
  EXPECT_EQ(rs.Fields(int16_t{0}).Value(), Value::Text(" y "));
  OpenRs("select para_value from para_setup where para_flag='WS_PO' and para_type='PO'", rs, conn_);
  EXPECT_TRUE(rs.Fields("PARA_VALUE").Value().is_null());
  EXPECT_TRUE(platform_->messages().empty());
}

TEST_F(DataPostgres, OleDbProviderStringReachesTheSameServer) {
  const std::string oledb = "Provider=PostgreSQL OLE DB Provider;Data Source=127.0.0.1:" + port_ +
                            ";Location=dms;User ID=dms;Password=dmspw";
  Recordset rs;
  rs.Open("select current_database() as db, current_user as who", oledb);
  EXPECT_EQ(rs.Fields("db").Value(), Value::Text("dms"));
  EXPECT_EQ(rs.Fields("who").Value(), Value::Text("dms"));
}

}  // namespace
}  // namespace vantorel::data
