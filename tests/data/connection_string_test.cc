#include <gtest/gtest.h>

#include "data/connection.h"
#include "temp_database.h"
#include "vantorel/error.h"

namespace vantorel::data {
namespace {

using Backend = ConnectionTarget::Backend;

struct MappingCase {
  const char* name;
  const char* connection_string;
  Backend backend;
  const char* target;  // the ODBC string or the SQLite path
};

class DataConnectionStringMapping : public ::testing::TestWithParam<MappingCase> {};

TEST_P(DataConnectionStringMapping, MapsToTheBackend) {
  const ConnectionTarget target = ParseConnectionString(GetParam().connection_string);
  EXPECT_EQ(target.backend, GetParam().backend);
  EXPECT_EQ(GetParam().backend == Backend::kOdbc ? target.odbc : target.sqlite_path,
            GetParam().target);
}

INSTANTIATE_TEST_SUITE_P(
    Table, DataConnectionStringMapping,
    ::testing::Values(
        MappingCase{"SqlOleDb",
                    "Provider=SQLOLEDB;Data Source=srv;Initial Catalog=dms;User ID=sa;"
                    "Password=x",
                    Backend::kOdbc,
                    "Driver={FreeTDS};Server=srv;Port=1433;Database=dms;UID=sa;PWD=x"
                    ";TDS_Version=7.4;ClientCharset=UTF-8"},
        MappingCase{"SqlOleDbVersionedAndPersistSecurityInfo",
                    "Provider=SQLOLEDB.1;Persist Security Info=False;User ID=sa;Password=pw;"
                    "Initial Catalog=dms;Data Source=192.168.1.5,1444",
                    Backend::kOdbc,
                    "Driver={FreeTDS};Server=192.168.1.5;Port=1444;Database=dms;UID=sa;PWD=pw"
                    ";TDS_Version=7.4;ClientCharset=UTF-8"},
        MappingCase{"SqlNativeClientNamedInstance",
                    "Provider=SQLNCLI11;Server=srv\\SQLEXPRESS;Database=dms;UID=sa;PWD=pw",
                    Backend::kOdbc,
                    "Driver={FreeTDS};Server=srv\\SQLEXPRESS;Database=dms;UID=sa;PWD=pw"
                    ";TDS_Version=7.4;ClientCharset=UTF-8"},
        MappingCase{"MsOleDbSqlLocalAndTcpPrefix",
                    "provider=msoledbsql19;data source=tcp:(local),1433;user id=sa;password=pw",
                    Backend::kOdbc,
                    "Driver={FreeTDS};Server=127.0.0.1;Port=1433;UID=sa;PWD=pw"
                    ";TDS_Version=7.4;ClientCharset=UTF-8"},
        MappingCase{"SqlServerIntegratedSecurityFalseIsIgnored",
                    "Provider=SQLOLEDB;Integrated Security=False;Data Source=.;User ID=u;"
                    "Password=p",
                    Backend::kOdbc,
                    "Driver={FreeTDS};Server=127.0.0.1;Port=1433;UID=u;PWD=p"
                    ";TDS_Version=7.4;ClientCharset=UTF-8"},
        MappingCase{"PostgreSqlOleDb",
                    "Provider=PostgreSQL OLE DB Provider;Data Source=127.0.0.1:54329;"
                    "Location=dms;User ID=dms;Password=dmspw",
                    Backend::kOdbc,
                    "Driver={PostgreSQL Unicode};Server=127.0.0.1;Port=54329;Database=dms;UID=dms;"
                    "PWD=dmspw"},
        MappingCase{"PgnpWithCommaPortAndInitialCatalog",
                    "Provider=PGNP.1;Data Source=db.local,5433;Initial Catalog=dms;User ID=u;"
                    "Password=p",
                    Backend::kOdbc,
                    "Driver={PostgreSQL Unicode};Server=db.local;Port=5433;Database=dms;UID=u;"
                    "PWD=p"},
        MappingCase{"PostgreSqlWithoutPort",
                    "Provider=PostgreSQL.1;Data Source=pg;Location=dms;User ID=u;Password=p",
                    Backend::kOdbc,
                    "Driver={PostgreSQL Unicode};Server=pg;Database=dms;UID=u;PWD=p"},
        MappingCase{"MySqlProv",
                    "Provider=MySQLProv;Data Source=10.0.0.2;Initial Catalog=dms;User Id=root;"
                    "Password=p",
                    Backend::kOdbc,
                    "Driver={MariaDB Unicode};Server=10.0.0.2;Database=dms;UID=root;PWD=p"},
        MappingCase{"MariaDbWithPortKey",
                    "Provider=MariaDB OLE DB;Server=m;Port=3307;Database=dms;UID=u;PWD=p",
                    Backend::kOdbc,
                    "Driver={MariaDB Unicode};Server=m;Port=3307;Database=dms;UID=u;PWD=p"},
        MappingCase{"MsdasqlDataSourceIsTheDsn",
                    "Provider=MSDASQL.1;Persist Security Info=False;User ID=sa;Password=p;"
                    "Data Source=dmsdsn",
                    Backend::kOdbc, "DSN=dmsdsn;UID=sa;PWD=p"},
        MappingCase{"MsdasqlDsnAndExtraKeys", "Provider=MSDASQL;DSN=dms;UID=sa;PWD=p;Port=5432",
                    Backend::kOdbc, "DSN=dms;UID=sa;PWD=p;Port=5432"},
        MappingCase{"MsdasqlDriver",
                    "Provider=MSDASQL;Driver={PostgreSQL Unicode};Server=h;Database=dms",
                    Backend::kOdbc, "Driver={PostgreSQL Unicode};Database=dms;Server=h"},
        MappingCase{"MsdasqlExtendedProperties",
                    "Provider=MSDASQL.1;Password=p;User ID=u;"
                    "Extended Properties=\"DSN=dms;Server=h\"",
                    Backend::kOdbc, "DSN=dms;Server=h;UID=u;PWD=p"},
        MappingCase{"PlainOdbcDriverPassesThrough",
                    "Driver={PostgreSQL Unicode};Server=127.0.0.1;Port=54329;Database=dms;UID=dms;"
                    "PWD=dmspw",
                    Backend::kOdbc,
                    "Driver={PostgreSQL Unicode};Server=127.0.0.1;Port=54329;Database=dms;UID=dms;"
                    "PWD=dmspw"},
        MappingCase{"PlainOdbcDsnPassesThrough", "DSN=dms;UID=u;PWD=p", Backend::kOdbc,
                    "DSN=dms;UID=u;PWD=p"},
        MappingCase{"SqliteProvider", "Provider=SQLite;Data Source=/data/dms.db", Backend::kSqlite,
                    "/data/dms.db"},
        MappingCase{"Sqlite3ProviderAnyCase",
                    "provider=SQLITE3; data source = C:\\DMS\\dms.sqlite ", Backend::kSqlite,
                    "C:\\DMS\\dms.sqlite"},
        MappingCase{"SqliteQuotedPathWithSemicolon", "Provider=SQLite;Data Source=\"/data/a;b.db\"",
                    Backend::kSqlite, "/data/a;b.db"},
        MappingCase{"BareDbPath", "/srv/dms/dms.db", Backend::kSqlite, "/srv/dms/dms.db"},
        MappingCase{"BareSqlitePathWithBlanks", "  /srv/My DMS/dms.SQLITE3 ", Backend::kSqlite,
                    "/srv/My DMS/dms.SQLITE3"},
        MappingCase{"DataSourceDbWithoutProvider", "Data Source=dms.db", Backend::kSqlite,
                    "dms.db"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(DataConnectionString, QuotedValuesKeepSemicolonsAndQuotes) {
  const ConnectionTarget single =
      ParseConnectionString("Provider=SQLOLEDB;Data Source=s;User ID=u;Password='a;b''c'");
  EXPECT_NE(single.odbc.find("PWD={a;b'c}"), std::string::npos) << single.odbc;
  const ConnectionTarget braced =
      ParseConnectionString("Provider=SQLOLEDB;Data Source=s;User ID=u;Password={x}}y;z}");
  EXPECT_NE(braced.odbc.find("PWD={x}}y;z}"), std::string::npos) << braced.odbc;
  const ConnectionTarget doubled =
      ParseConnectionString("Provider=PGNP;Data Source=h;User ID=\"my user\";Password=p");
  EXPECT_NE(doubled.odbc.find("UID=my user"), std::string::npos) << doubled.odbc;
}

TEST(DataConnectionString, BareExistingFileIsSqliteWhateverItsName) {
  testing::TempFolder folder;
  const std::string path = folder.File("dealer.data");
  testing::CreateSqlite(path, "create table t (a)");
  const ConnectionTarget target = ParseConnectionString(path);
  EXPECT_EQ(target.backend, Backend::kSqlite);
  EXPECT_EQ(target.sqlite_path, path);
}

Error ParseError(const std::string& connection_string) {
  try {
    ParseConnectionString(connection_string);
  } catch (const Error& error) {
    return error;
  }
  ADD_FAILURE() << "no error for " << connection_string;
  return Error(0, "", "");
}

TEST(DataConnectionString, EmptyIsError3709) {
  for (const char* text : {"", "   ", "\t"}) {
    const Error error = ParseError(text);
    EXPECT_EQ(error.number(), errnum::kConnectionInvalid);
    EXPECT_NE(error.description().find("empty"), std::string::npos);
  }
}

TEST(DataConnectionString, AccessProvidersAreRejectedByName) {
  const Error error = ParseError(
      "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=C:\\dms.mdb;Jet OLEDB:Database "
      "Password=secret1");
  EXPECT_EQ(error.number(), errnum::kConnectionInvalid);
  EXPECT_NE(error.description().find("Microsoft.Jet.OLEDB.4.0"), std::string::npos);
  EXPECT_EQ(error.description().find("secret1"), std::string::npos);
  EXPECT_NE(ParseError("Provider=Microsoft.ACE.OLEDB.12.0;Data Source=x.accdb")
                .description()
                .find("Microsoft.ACE.OLEDB.12.0"),
            std::string::npos);
}

TEST(DataConnectionString, UnknownProviderIsNamedButNotThePassword) {
  const Error error = ParseError(
      "Provider=OraOLEDB.Oracle;Data Source=orcl;User ID=u;"
      "Password=tiger99");
  EXPECT_EQ(error.number(), errnum::kConnectionInvalid);
  EXPECT_NE(error.description().find("OraOLEDB.Oracle"), std::string::npos);
  EXPECT_EQ(error.description().find("tiger99"), std::string::npos);
}

TEST(DataConnectionString, IntegratedSecurityIsAClearError) {
  for (const char* text : {"Provider=SQLOLEDB;Data Source=s;Integrated Security=SSPI",
                           "Provider=SQLNCLI11;Server=s;Trusted_Connection=yes"}) {
    const Error error = ParseError(text);
    EXPECT_EQ(error.number(), errnum::kConnectionInvalid);
    EXPECT_NE(error.description().find("integrated security"), std::string::npos);
  }
}

TEST(DataConnectionString, OtherFaultsAreClearErrors) {
  EXPECT_NE(ParseError("Provider=SQLOLEDB;Initial Catalog=dms").description().find("server"),
            std::string::npos);
  EXPECT_NE(ParseError("Provider=SQLite").description().find("Data Source"), std::string::npos);
  EXPECT_NE(ParseError("Provider=MSDASQL;User ID=u").description().find("DSN"), std::string::npos);
  EXPECT_NE(ParseError("Initial Catalog=dms;User ID=u").description().find("Provider"),
            std::string::npos);
  EXPECT_EQ(ParseError("not a connection string").number(), errnum::kConnectionInvalid);
}

TEST(DataConnectionString, APartWithoutEqualsNeverEchoesIt) {
  // An unquoted ';' in a password splits it; the tail must not reach the message.
  const Error error = ParseError("Provider=SQLOLEDB;Data Source=s;Password=abc;tail42;User ID=u");
  EXPECT_EQ(error.number(), errnum::kConnectionInvalid);
  EXPECT_EQ(error.description().find("tail42"), std::string::npos);
  EXPECT_EQ(error.description().find("abc"), std::string::npos);
}

// A password that is a star, given many times, once made each pass triple the text.
TEST(DataRedact, ReplacementsAreNeverRedactedAgain) {
  std::string connection = "DSN=d";
  for (int i = 0; i < 40; ++i) connection += ";PWD=*;Pwd=**";
  EXPECT_EQ(Redact("a * b ** c", connection), "a *** b *** c");
}

TEST(DataRedact, ReplacesEveryPasswordOccurrence) {
  EXPECT_EQ(Redact("login failed: s3cret was s3cret", "DSN=d;UID=u;PWD=s3cret"),
            "login failed: *** was ***");
  EXPECT_EQ(Redact("bad Password=Rupee₹42 here", "Provider=SQLOLEDB;Password=Rupee₹42"),
            "bad Password=*** here");
}

TEST(DataRedact, HandlesQuotedBracedAndNestedPasswords) {
  EXPECT_EQ(Redact("x {a;b} y a;b", "Driver={D};PWD={a;b}"), "x *** y ***");
  EXPECT_EQ(Redact("it's 'q;w' or q;w", "Provider=PGNP;Password='q;w'"), "it's *** or ***");
  EXPECT_EQ(Redact("inner pw9 leaked", "Provider=MSDASQL;Extended Properties=\"DSN=d;PWD=pw9\""),
            "inner *** leaked");
}

TEST(DataRedact, LeavesTextAloneWithoutPasswords) {
  EXPECT_EQ(Redact("nothing to hide", "DSN=d;UID=u"), "nothing to hide");
  EXPECT_EQ(Redact("nothing to hide", "DSN=d;PWD="), "nothing to hide");
  EXPECT_EQ(Redact("nothing to hide", ""), "nothing to hide");
  EXPECT_EQ(Redact("nothing to hide", "/srv/dms.db"), "nothing to hide");
}

}  // namespace
}  // namespace vantorel::data
