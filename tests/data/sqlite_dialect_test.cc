#include "data/sqlite_dialect.h"

#include <gtest/gtest.h>

namespace vantorel::data {
namespace {

struct RewriteCase {
  const char* name;
  const char* sql;
  const char* sqlite;
};

class DataSqliteDialectRewrite : public ::testing::TestWithParam<RewriteCase> {};

TEST_P(DataSqliteDialectRewrite, Translates) {
  EXPECT_EQ(TranslateForSqlite(GetParam().sql), GetParam().sqlite);
}

INSTANTIATE_TEST_SUITE_P(
    Table, DataSqliteDialectRewrite,
    ::testing::Values(
        RewriteCase{"LeftCall", "select left(cname, 3) from t", "select vt_left(cname, 3) from t"},
        RewriteCase{"RightCallAnyCaseAndBlank", "select RIGHT (chassis_no,5) from t",
                    "select vt_right (chassis_no,5) from t"},
        RewriteCase{"LeftJoinUntouched", "select * from a left join b on a.id=b.id",
                    "select * from a left join b on a.id=b.id"},
        RewriteCase{"LeftOuterJoinUntouched", "select * from a LEFT OUTER JOIN b using (id)",
                    "select * from a LEFT OUTER JOIN b using (id)"},
        RewriteCase{"QualifiedColumnNamedLeftUntouched", "select t.left from t",
                    "select t.left from t"},
        RewriteCase{"CastAsDate", "select cast('2024/03/31' as date)",
                    "select vt_date('2024-03-31')"},
        RewriteCase{"CastAsDateOfColumn", "where CAST ( enq_date  AS  DATE ) >= :d",
                    "where vt_date( enq_date) >= :d"},
        RewriteCase{"CastAsDatetimeKeepsTime", "select cast(visited as datetime)",
                    "select vt_date(visited, 1)"},
        RewriteCase{"CastAsDatetime2WithPrecision", "select cast(x as datetime2(0))",
                    "select vt_date(x, 1)"},
        RewriteCase{"CastOfExpressionWithCalls", "select cast(left(d, 10) as date)",
                    "select vt_date(vt_left(d, 10))"},
        RewriteCase{"NestedCastAsDate", "select cast(cast(d as text) as date)",
                    "select vt_date(cast(d as text))"},
        RewriteCase{"CastToOtherTypesUntouched", "select cast(amount as integer), cast(x as text)",
                    "select cast(amount as integer), cast(x as text)"},
        RewriteCase{"SlashDateLiteral", "where enq_date>='2024/03/31'",
                    "where enq_date>='2024-03-31'"},
        RewriteCase{"DotDateLiteralUnpadded", "where d = '2024.3.5'", "where d = '2024-03-05'"},
        RewriteCase{"DashDateLiteralUnpadded", "where d = '2024-3-5'", "where d = '2024-03-05'"},
        RewriteCase{"DateLiteralWithTime", "where v < '2024/03/31 18:30'",
                    "where v < '2024-03-31 18:30:00'"},
        RewriteCase{"DateLiteralWithSeconds", "where v < '2024/03/31 18:30:05'",
                    "where v < '2024-03-31 18:30:05'"},
        RewriteCase{"IsoLiteralUnchanged", "where d = '2024-03-31'", "where d = '2024-03-31'"},
        RewriteCase{"DayFirstLiteralUntouched", "where d = '31/03/2024'", "where d = '31/03/2024'"},
        RewriteCase{"ImpossibleDateUntouched", "where d = '2024/02/30'", "where d = '2024/02/30'"},
        RewriteCase{"LikePatternUntouched", "where d like '2024/03/%'", "where d like '2024/03/%'"},
        RewriteCase{"MixedSeparatorsUntouched", "where d = '2024/03-31'", "where d = '2024/03-31'"},
        RewriteCase{"IsNullCall", "select isnull(cname, '') from t",
                    "select ifnull(cname, '') from t"},
        RewriteCase{"IsNullOperatorUntouched", "select * from t where cname isnull",
                    "select * from t where cname isnull"},
        RewriteCase{"CommentsUntouched",
                    "select 1 -- left(x,1) '2024/03/31'\n/* cast(a as date) */",
                    "select 1 -- left(x,1) '2024/03/31'\n/* cast(a as date) */"},
        RewriteCase{"QuotedIdentifiersUntouched", "select \"left\"(1), [2024/03/31] from t",
                    "select \"left\"(1), [2024/03/31] from t"},
        RewriteCase{"StringHoldingCallUntouched", "select 'left(x, 1)'", "select 'left(x, 1)'"},
        RewriteCase{"UnbalancedCastLeftAlone", "select cast(x as date", "select cast(x as date"}),
    [](const auto& test) { return std::string(test.param.name); });

struct DateCase {
  const char* text;
  bool keep_time;
  const char* iso;  // nullptr: not a year-first date
};

class DataSqliteDialectDate : public ::testing::TestWithParam<DateCase> {};

TEST_P(DataSqliteDialectDate, Normalises) {
  const auto iso = NormaliseYearFirstDate(GetParam().text, GetParam().keep_time);
  if (GetParam().iso == nullptr) {
    EXPECT_FALSE(iso.has_value()) << *iso;
  } else {
    EXPECT_EQ(iso.value_or("(none)"), GetParam().iso);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Table, DataSqliteDialectDate,
    ::testing::Values(
        DateCase{"2024/03/31", false, "2024-03-31"}, DateCase{"2024.03.31", false, "2024-03-31"},
        DateCase{"2024-3-1", false, "2024-03-01"},
        DateCase{"2024/03/31 10:30", false, "2024-03-31"},
        DateCase{"2024/03/31 10:30", true, "2024-03-31 10:30:00"},
        DateCase{"2024/03/31T9:05:07.123", true, "2024-03-31 09:05:07"},
        DateCase{"2024/02/29", false, "2024-02-29"}, DateCase{"2023/02/29", false, nullptr},
        DateCase{"2024/13/01", false, nullptr}, DateCase{"24/03/31", false, nullptr},
        DateCase{"31/03/2024", false, nullptr}, DateCase{"2024/03/31x", false, nullptr},
        DateCase{"2024/03/31 25:00", true, nullptr}, DateCase{"", false, nullptr}));

}  // namespace
}  // namespace vantorel::data
