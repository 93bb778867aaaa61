#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <thread>

#include "data/connection.h"
#include "data/sqlite_backend.h"
#include "temp_database.h"
#include "vantorel/error.h"

namespace vantorel::data {
namespace {

class DataSqlite : public ::testing::Test {
 protected:
  void SetUp() override {
    path_ = folder_.File("dms.db");
    testing::CreateSqlite(path_, testing::kDealershipScript);
  }

  // Every row of "sql" run on a fresh connection.
  std::vector<std::vector<Value>> Rows(const std::string& sql,
                                       const std::map<std::string, ParamValue>& params = {}) {
    return data::testing::Rows(*Connection::Open(path_), sql, params);
  }

  Value One(const std::string& sql, const std::map<std::string, ParamValue>& params = {}) {
    const auto rows = Rows(sql, params);
    EXPECT_EQ(rows.size(), 1u) << sql;
    return rows.empty() || rows[0].empty() ? Value() : rows[0][0];
  }

  Error ErrorOf(const std::string& sql) {
    try {
      Rows(sql);
    } catch (const Error& error) {
      return error;
    }
    ADD_FAILURE() << "no error for " << sql;
    return Error(0, "", "");
  }

  testing::TempFolder folder_;
  std::string path_;
};

TEST_F(DataSqlite, ColumnsCarryNamesAndDeclaredTypes) {
  const auto connection = Connection::Open("Provider=SQLite;Data Source=" + path_);
  const auto cursor = connection->Execute(
      "select enq_id, cname, amount, enq_id + 1 as next "
      "from enquiry");
  ASSERT_EQ(cursor->columns().size(), 4u);
  EXPECT_EQ(cursor->columns()[0].name, "enq_id");
  EXPECT_EQ(cursor->columns()[0].declared_type, "INTEGER");
  EXPECT_EQ(cursor->columns()[2].declared_type, "NUMERIC(12,2)");
  EXPECT_EQ(cursor->columns()[3].name, "next");
  EXPECT_EQ(cursor->columns()[3].declared_type, "");
}

TEST_F(DataSqlite, ValuesComeTyped) {
  const auto rows = Rows(
      "select enq_id, cname, enq_date, amount, visited, hot, photo, rate "
      "from enquiry order by enq_id");
  ASSERT_EQ(rows.size(), 4u);
  EXPECT_EQ(rows[0][0], Value::Integer(1));
  EXPECT_EQ(rows[0][1], Value::Text("Ramesh Kumar"));
  EXPECT_EQ(rows[0][2], Value::FromDate(Date::FromYmd(2024, 3, 30)));
  EXPECT_EQ(rows[0][3], Value::Decimal("60000.10"));  // padded back to the declared scale
  EXPECT_EQ(rows[0][4], Value::FromDateTime(Date::FromParts({2024, 3, 30, 10, 15, 0})));
  EXPECT_EQ(rows[0][5], Value::Boolean(true));
  EXPECT_EQ(rows[0][6], Value::Blob(std::string("\x00\xff\x10", 3)));
  EXPECT_EQ(rows[0][7], Value::Real(0.1));
  EXPECT_EQ(rows[1][1], Value::Text("सुनीता देवी ₹"));
  EXPECT_EQ(rows[1][5], Value::Boolean(false));
}

TEST_F(DataSqlite, NullsStayNull) {
  const auto rows = Rows("select * from enquiry where enq_id = 4");
  ASSERT_EQ(rows.size(), 1u);
  for (size_t i = 1; i < rows[0].size(); ++i) EXPECT_TRUE(rows[0][i].is_null()) << i;
}

TEST_F(DataSqlite, MoneyStaysExact) {
  EXPECT_EQ(ToText(One("select amount from enquiry where enq_id = 2")), "125000.50");
  EXPECT_EQ(ToText(One("select amount from enquiry where enq_id = 3")), "99.99");
  EXPECT_EQ(One("select sum(amount) from enquiry"), Value::Real(185100.59))
      << "an expression has no declared type, so a sum is a plain double";
}

TEST_F(DataSqlite, WholeAmountsInDecimalColumnsAreDecimals) {
  testing::CreateSqlite(path_,
                        "create table price (p decimal(10,2), m money, t numeric);"
                        "insert into price values ('60000.00', 15, '12.50');");
  const auto rows = Rows("select p, m, t from price");
  ASSERT_EQ(rows.size(), 1u);
  // SQLite keeps no scale; a declared one is restored, digits that are there are never cut.
  EXPECT_EQ(rows[0][0], Value::Decimal("60000.00"));
  EXPECT_EQ(rows[0][1], Value::Decimal("15"));
  EXPECT_EQ(rows[0][2], Value::Decimal("12.5"));
}

TEST_F(DataSqlite, DatesInOtherFormsStayText) {
  testing::CreateSqlite(path_,
                        "create table d (a date, b timestamp, c time);"
                        "insert into d values ('31/03/2024', '2024/03/31 08:00', '10:30');");
  const auto rows = Rows("select a, b, c from d");
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0][0], Value::Text("31/03/2024"));
  EXPECT_EQ(rows[0][1], Value::FromDateTime(Date::FromParts({2024, 3, 31, 8, 0, 0})));
  EXPECT_EQ(rows[0][2], Value::Text("10:30"));
}

TEST_F(DataSqlite, NamedParametersBindByNameWithoutCase) {
  EXPECT_EQ(One("select cname from enquiry where enq_id = :ID", {{"id", int64_t{3}}}),
            Value::Text("Amit"));
  EXPECT_EQ(
      One("select enq_id from enquiry where cname = :name", {{"Name", std::string("सुनीता देवी ₹")}}),
      Value::Integer(2));
  EXPECT_EQ(
      One("select enq_id from enquiry where enq_date = :d", {{"d", Date::FromYmd(2024, 4, 1)}}),
      Value::Integer(3));
  EXPECT_EQ(One("select enq_id from enquiry where visited = :v",
                {{"v", Date::FromParts({2024, 3, 30, 10, 15, 0})}}),
            Value::Integer(1));
  EXPECT_EQ(One("select enq_id from enquiry where rate = :r", {{"r", 2.5}}), Value::Integer(2));
  EXPECT_EQ(One("select :x is null, :y is null", {{"y", std::monostate{}}}), Value::Integer(1));
}

TEST_F(DataSqlite, AllRowsAreRead) {
  testing::CreateSqlite(path_,
                        "create table many (n integer);"
                        "with recursive c(n) as (select 1 union all select n + 1 from c "
                        "where n < 2500) insert into many select n from c;");
  EXPECT_EQ(Rows("select n from many").size(), 2500u);
}

// Templates and the host's SQL only read: anything that would write, reach another file or change
// the connection is refused when prepared, saying what was refused, and leaves no file behind.
TEST_F(DataSqlite, RefusesEveryStatementThatIsNotAReading) {
  const std::string copy = folder_.File("copy.db");
  const std::string other = folder_.File("other.db");
  testing::CreateSqlite(other, "create table t (a); insert into t values (1);");
  const struct {
    std::string sql;
    std::string refused;
  } cases[] = {
      {"insert into para_setup values ('x', 'y', 'z')", "changing table para_setup"},
      {"update enquiry set cname = 'x'", "changing table enquiry"},
      {"delete from enquiry", "changing table enquiry"},
      {"create table t (a)", "changing the database"},
      {"create temp table t (a)", "changing the database"},
      {"create temp view v as select 1", "changing the database"},
      {"drop table enquiry", "changing the database"},
      {"alter table enquiry add column x", "changing the database"},
      {"create index i on enquiry (cname)", "changing the database"},
      {"vacuum into '" + copy + "'", "a statement that returns no rows"},
      {"vacuum", "a statement that returns no rows"},
      {"attach database '" + other + "' as o", "ATTACH"},
      {"detach database main", "DETACH"},
      {"select load_extension('/tmp/evil.so')", "load_extension()"},
      {"pragma journal_mode = delete", "PRAGMA journal_mode"},
      {"pragma writable_schema = 1", "PRAGMA writable_schema"},
      {"pragma temp_store_directory = '/tmp'", "PRAGMA temp_store_directory"},
      {"pragma user_version = 7", "PRAGMA user_version"},
      {"pragma query_only = 0", "PRAGMA query_only"},
      {"begin immediate", "a transaction"},
      {"savepoint s", "a transaction"},
      {"analyze", "changing the database"},
      {"reindex", "a statement that returns no rows"},
      {"with x(a) as (select 1) insert into para_setup select a, a, a from x",
       "changing table para_setup"},
  };
  for (const auto& c : cases) {
    const Error error = ErrorOf(c.sql);
    EXPECT_EQ(error.number(), errnum::kCommandError) << c.sql;
    EXPECT_EQ(error.source(), "SQLite") << c.sql;
    EXPECT_EQ(error.description(),
              "The database is open for reading only: " + c.refused + " is not allowed")
        << c.sql;
    EXPECT_EQ(error.system_code(), SQLITE_AUTH) << c.sql;
  }
  EXPECT_FALSE(std::filesystem::exists(copy));
  EXPECT_EQ(One("select count(*) from enquiry"), Value::Integer(4));
}

TEST_F(DataSqlite, ReadingStatementsStillWork) {
  EXPECT_EQ(One("select count(*) from enquiry e join para_setup p on 1 = 1"), Value::Integer(12));
  EXPECT_EQ(One("with recursive c(n) as (select 1 union all select n + 1 from c where n < 5) "
                "select sum(n) from c"),
            Value::Integer(15));
  EXPECT_EQ(Rows("pragma table_info(enquiry)").size(), 8u);
  EXPECT_EQ(One("select upper(left(cname, 3)) from enquiry where enq_id = 1"), Value::Text("RAM"));
}

TEST_F(DataSqlite, BadSqlIsACommandErrorWithSqlitesText) {
  Error error = ErrorOf("selec 1");
  EXPECT_EQ(error.number(), errnum::kCommandError);
  EXPECT_EQ(error.description(), "near \"selec\": syntax error");
  EXPECT_EQ(error.system_code(), SQLITE_ERROR);
  error = ErrorOf("select * from no_such_table");
  EXPECT_EQ(error.description(), "no such table: no_such_table");
  EXPECT_EQ(ErrorOf("  -- nothing\n").number(), errnum::kCommandError);
}

TEST_F(DataSqlite, MissingFileIsAnErrorAndCreatesNothing) {
  const std::string missing = folder_.File("absent.db");
  try {
    Connection::Open(missing);
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errnum::kUnspecified);
    EXPECT_EQ(error.source(), "SQLite");
    EXPECT_NE(error.description().find("unable to open database file"), std::string::npos);
    EXPECT_NE(error.description().find(missing), std::string::npos);
    EXPECT_EQ(error.system_code(), SQLITE_CANTOPEN);
  }
  EXPECT_FALSE(std::filesystem::exists(missing));
}

TEST_F(DataSqlite, FolderOrNonDatabaseFileIsAnOpenError) {
  EXPECT_THROW(Connection::Open("Provider=SQLite;Data Source=" + folder_.path().string()), Error);
  const std::string text = folder_.File("notes.db");
  { std::ofstream(text) << "this is not a database, just some text long enough to check\n"; }
  try {
    Connection::Open(text);
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errnum::kUnspecified);
    EXPECT_NE(error.description().find("file is not a database"), std::string::npos);
  }
}

TEST_F(DataSqlite, HostPathsWithBackslashesOpen) {
  std::string host_path = path_;
  for (char& c : host_path) {
    if (c == '/') c = '\\';
  }
  const auto connection = Connection::Open("Provider=SQLite;Data Source=" + host_path);
  EXPECT_NE(connection, nullptr);
}

// The dialect rewrites, end to end on a real file.

TEST_F(DataSqlite, SlashDateFiltersMatchIsoDates) {
  EXPECT_EQ(Rows("select enq_id from enquiry where enq_date>='2024/03/31' order by 1").size(), 2u);
  EXPECT_EQ(Rows("select enq_id from enquiry where enq_date between '2024.03.30' and "
                 "'2024.03.31'")
                .size(),
            2u);
  EXPECT_EQ(One("select enq_id from enquiry where visited < '2024/03/30 11:00'"),
            Value::Integer(1));
}

TEST_F(DataSqlite, CastToDateNormalisesYearFirstText) {
  EXPECT_EQ(One("select cast('2024/03/31' as date)"), Value::Text("2024-03-31"));
  EXPECT_EQ(One("select cast(:d as DATE)", {{"d", std::string("2024.3.5")}}),
            Value::Text("2024-03-05"));
  EXPECT_EQ(One("select cast('2024/03/31 10:30' as datetime)"), Value::Text("2024-03-31 10:30:00"));
  EXPECT_EQ(One("select count(*) from enquiry where enq_date >= cast('2024/03/31' as date)"),
            Value::Integer(2));
  EXPECT_TRUE(One("select cast(null as date)").is_null());
  EXPECT_EQ(One("select cast('31/03/2024' as date)"), Value::Text("31/03/2024"));
}

TEST_F(DataSqlite, LeftAndRightCountCharacters) {
  EXPECT_EQ(One("select left(cname, 6) from enquiry where enq_id = 1"), Value::Text("Ramesh"));
  EXPECT_EQ(One("select right(cname, 5) from enquiry where enq_id = 1"), Value::Text("Kumar"));
  EXPECT_EQ(One("select left(cname, 3) from enquiry where enq_id = 2"), Value::Text("सुन"));
  EXPECT_EQ(One("select right(cname, 1) from enquiry where enq_id = 2"), Value::Text("₹"));
  EXPECT_EQ(One("select left('abc', 10) || right('abc', 0)"), Value::Text("abc"));
  EXPECT_EQ(One("select left(12345, 2)"), Value::Text("12"));
  EXPECT_TRUE(One("select left(cname, 2) from enquiry where enq_id = 4").is_null());
  EXPECT_TRUE(One("select right('abc', null)").is_null());
  EXPECT_EQ(ErrorOf("select left('abc', -1)").number(), errnum::kCommandError);
  EXPECT_EQ(
      Rows("select e.enq_id from enquiry e left join para_setup p on p.para_flag = e.cname").size(),
      4u);
}

TEST_F(DataSqlite, HabitualFunctionsWork) {
  EXPECT_EQ(One("select isnull(cname, 'none') from enquiry where enq_id = 4"), Value::Text("none"));
  EXPECT_EQ(One("select len('Amit  ')"), Value::Integer(4));
  EXPECT_EQ(One("select len('सुनीता')"), Value::Integer(6));
  EXPECT_EQ(One("select year(enq_date) * 10000 + month(enq_date) * 100 + day(enq_date) "
                "from enquiry where enq_id = 2"),
            Value::Integer(20240331));
  EXPECT_TRUE(One("select year('not a date')").is_null());
  EXPECT_EQ(ToText(One("select length(getdate())")), "19");
}

}  // namespace
}  // namespace vantorel::data

namespace vantorel::data {
namespace {

class KeptSqliteConnections : public ::testing::Test {
 protected:
  void SetUp() override {
    path_ = folder_.File("kept.db");
    testing::CreateSqlite(path_, "create table t (n integer); insert into t values (1);");
  }

  int64_t Count(const std::string& path) {
    const auto connection = Connection::Open(path);
    const auto cursor = connection->Execute("select count(*) from t");
    std::vector<Value> row;
    EXPECT_TRUE(cursor->Next(row));
    return row.at(0).integer();
  }

  testing::TempFolder folder_;
  std::string path_;
};

TEST_F(KeptSqliteConnections, WithoutAHandleNothingIsKept) {
  EXPECT_EQ(Count(path_), 1);
  EXPECT_EQ(Count(path_), 1);
  EXPECT_EQ(ThisThreadSqliteReuse().opened, 0);
  EXPECT_EQ(ThisThreadSqliteReuse().reused, 0);
}

TEST_F(KeptSqliteConnections, TheSameFileIsOpenedOnce) {
  const auto keep = KeepSqliteConnections();
  EXPECT_EQ(Count(path_), 1);
  EXPECT_EQ(Count(path_), 1);
  EXPECT_EQ(Count(path_), 1);
  EXPECT_EQ(ThisThreadSqliteReuse().opened, 1);
  EXPECT_EQ(ThisThreadSqliteReuse().reused, 2);
}

TEST_F(KeptSqliteConnections, AChangeCommittedBetweenTwoReadsIsSeen) {
  const auto keep = KeepSqliteConnections();
  EXPECT_EQ(Count(path_), 1);
  testing::CreateSqlite(path_, "insert into t values (2); insert into t values (3);");
  EXPECT_EQ(Count(path_), 3);
}

TEST_F(KeptSqliteConnections, AChangeCommittedInWalModeIsSeenOnTheKeptConnection) {
  testing::CreateSqlite(path_, "pragma journal_mode = wal;");
  sqlite3* writer = nullptr;
  ASSERT_EQ(sqlite3_open(path_.c_str(), &writer), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(writer, "pragma wal_autocheckpoint = 0", nullptr, nullptr, nullptr),
            SQLITE_OK);
  const auto keep = KeepSqliteConnections();
  EXPECT_EQ(Count(path_), 1);
  ASSERT_EQ(sqlite3_exec(writer, "insert into t values (2)", nullptr, nullptr, nullptr), SQLITE_OK);
  EXPECT_EQ(Count(path_), 2);
  sqlite3_close(writer);
  EXPECT_EQ(ThisThreadSqliteReuse().reused, 1);
}

TEST_F(KeptSqliteConnections, AFileReplacedUnderItsPathIsOpenedAnew) {
  const auto keep = KeepSqliteConnections();
  EXPECT_EQ(Count(path_), 1);
  const std::string other = folder_.File("other.db");
  testing::CreateSqlite(other, "create table t (n integer); insert into t values (7), (8);");
  std::filesystem::rename(other, path_);
  EXPECT_EQ(Count(path_), 2);
  EXPECT_EQ(ThisThreadSqliteReuse().opened, 2);
}

TEST_F(KeptSqliteConnections, AConnectionBusyWithAStatementIsNotHandedOut) {
  const auto keep = KeepSqliteConnections();
  const auto first = Connection::Open(path_);
  const auto cursor = first->Execute("select n from t");
  EXPECT_EQ(Count(path_), 1);
  EXPECT_EQ(ThisThreadSqliteReuse().opened, 2);
}

TEST_F(KeptSqliteConnections, TwoThreadsDoNotShareOne) {
  const auto keep = KeepSqliteConnections();
  EXPECT_EQ(Count(path_), 1);
  SqliteReuseStats other;
  std::thread thread([&] {
    const auto keep_there = KeepSqliteConnections();
    EXPECT_EQ(Count(path_), 1);
    EXPECT_EQ(Count(path_), 1);
    other = ThisThreadSqliteReuse();
  });
  thread.join();
  EXPECT_EQ(other.opened, 1) << "the other thread opened its own";
  EXPECT_EQ(other.reused, 1);
  EXPECT_EQ(ThisThreadSqliteReuse().opened, 1);
  EXPECT_EQ(ThisThreadSqliteReuse().reused, 0);
}

// The rows of "sql" run with "params" on "connection", first columns as integers.
std::vector<int64_t> Numbers(Connection& connection, const std::string& sql,
                             const std::map<std::string, ParamValue>& params = {}) {
  const auto cursor = connection.Execute(sql, params);
  std::vector<int64_t> numbers;
  std::vector<Value> row;
  while (cursor->Next(row)) numbers.push_back(row.at(0).integer());
  return numbers;
}

TEST_F(KeptSqliteConnections, AQueryRunAgainReusesItsStatement) {
  const auto keep = KeepSqliteConnections();
  EXPECT_EQ(Count(path_), 1);
  EXPECT_EQ(Count(path_), 1);
  EXPECT_EQ(Count(path_), 1);
  EXPECT_EQ(ThisThreadSqliteReuse().statements_reused, 2);
}

TEST_F(KeptSqliteConnections, AReusedStatementTakesItsNewParameters) {
  testing::CreateSqlite(path_, "insert into t values (2), (2);");
  const auto keep = KeepSqliteConnections();
  const auto connection = Connection::Open(path_);
  const std::string sql = "select n from t where n = :n";
  EXPECT_EQ(Numbers(*connection, sql, {{"n", int64_t{1}}}), std::vector<int64_t>({1}));
  EXPECT_EQ(Numbers(*connection, sql, {{"n", int64_t{2}}}), std::vector<int64_t>({2, 2}));
  EXPECT_EQ(Numbers(*connection, sql), std::vector<int64_t>()) << "a missing parameter is NULL";
  EXPECT_EQ(ThisThreadSqliteReuse().statements_reused, 2);
}

TEST_F(KeptSqliteConnections, AStatementLeftHalfReadStartsAfreshWhenReused) {
  testing::CreateSqlite(path_, "insert into t values (2), (3);");
  const auto keep = KeepSqliteConnections();
  const auto connection = Connection::Open(path_);
  const std::string sql = "select n from t order by n";
  {
    const auto cursor = connection->Execute(sql);
    std::vector<Value> row;
    ASSERT_TRUE(cursor->Next(row));
  }
  EXPECT_EQ(Numbers(*connection, sql), std::vector<int64_t>({1, 2, 3}));
  EXPECT_EQ(ThisThreadSqliteReuse().statements_reused, 1);
}

TEST_F(KeptSqliteConnections, TheSameQueryRunsTwiceAtOnce) {
  testing::CreateSqlite(path_, "insert into t values (2);");
  const auto keep = KeepSqliteConnections();
  const auto connection = Connection::Open(path_);
  const std::string sql = "select n from t order by n";
  const auto outer = connection->Execute(sql);
  std::vector<Value> row;
  std::vector<int64_t> seen;
  while (outer->Next(row)) {
    seen.push_back(row.at(0).integer());
    for (const int64_t n : Numbers(*connection, sql)) seen.push_back(n);
  }
  EXPECT_EQ(seen, std::vector<int64_t>({1, 1, 2, 2, 1, 2}));
}

TEST_F(KeptSqliteConnections, AReusedStatementReadsAChangeCommittedInBetween) {
  const auto keep = KeepSqliteConnections();
  const auto connection = Connection::Open(path_);
  EXPECT_EQ(Numbers(*connection, "select n from t"), std::vector<int64_t>({1}));
  sqlite3* writer = nullptr;
  ASSERT_EQ(sqlite3_open(path_.c_str(), &writer), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(writer, "insert into t values (5)", nullptr, nullptr, nullptr), SQLITE_OK);
  sqlite3_close(writer);
  EXPECT_EQ(Numbers(*connection, "select n from t"), std::vector<int64_t>({1, 5}));
  EXPECT_EQ(ThisThreadSqliteReuse().statements_reused, 1);
}

TEST_F(KeptSqliteConnections, AReusedStatementShowsColumnsAddedInBetween) {
  const auto keep = KeepSqliteConnections();
  const auto connection = Connection::Open(path_);
  ASSERT_EQ(connection->Execute("select * from t")->columns().size(), 1u);
  sqlite3* writer = nullptr;
  ASSERT_EQ(sqlite3_open(path_.c_str(), &writer), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(writer, "alter table t add column amount numeric(12,2) default 7", nullptr,
                         nullptr, nullptr),
            SQLITE_OK);
  sqlite3_close(writer);
  const auto cursor = connection->Execute("select * from t");
  ASSERT_EQ(cursor->columns().size(), 2u);
  EXPECT_EQ(cursor->columns()[1].name, "amount");
  std::vector<Value> row;
  ASSERT_TRUE(cursor->Next(row));
  ASSERT_EQ(row.size(), 2u);
  EXPECT_EQ(row[1].kind(), Value::Kind::kDecimal) << "read by its declared type";
  EXPECT_EQ(row[1].text(), "7.00");
}

TEST_F(KeptSqliteConnections, ReleasingTheLastHandleClosesThem) {
  {
    const auto keep = KeepSqliteConnections();
    EXPECT_EQ(Count(path_), 1);
  }
  const auto keep = KeepSqliteConnections();
  EXPECT_EQ(Count(path_), 1);
  EXPECT_EQ(ThisThreadSqliteReuse().opened, 1);
  EXPECT_EQ(ThisThreadSqliteReuse().reused, 0);
}

}  // namespace
}  // namespace vantorel::data
