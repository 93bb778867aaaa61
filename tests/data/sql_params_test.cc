#include "data/sql_params.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantorel::data {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct RewriteCase {
  const char* name;
  const char* sql;
  const char* positional;
};

class DataSqlParamsRewrite : public ::testing::TestWithParam<RewriteCase> {};

TEST_P(DataSqlParamsRewrite, WritesQuestionMarks) {
  EXPECT_EQ(ToPositional(GetParam().sql).sql, GetParam().positional);
}

INSTANTIATE_TEST_SUITE_P(
    Table, DataSqlParamsRewrite,
    ::testing::Values(
        RewriteCase{"One", "select * from challan where id=:id",
                    "select * from challan where id=?"},
        RewriteCase{"Several", "where a=:a and b between :from_date and :to_date",
                    "where a=? and b between ? and ?"},
        RewriteCase{"InsideStringUntouched", "where s=':x' and t=:t", "where s=':x' and t=?"},
        RewriteCase{"EscapedQuoteInString", "where s='it''s :x' and t=:t",
                    "where s='it''s :x' and t=?"},
        RewriteCase{"QuotedIdentifierUntouched", "select \":x\", [:y], `:z` from t where a=:a",
                    "select \":x\", [:y], `:z` from t where a=?"},
        RewriteCase{"LineCommentUntouched", "select 1 -- :x\nwhere a=:a",
                    "select 1 -- :x\nwhere a=?"},
        RewriteCase{"BlockCommentUntouched", "select /* :x */ :a", "select /* :x */ ?"},
        RewriteCase{"CastUntouched", "select amount::numeric(12,2), :a::date",
                    "select amount::numeric(12,2), ?::date"},
        RewriteCase{"ColonDigitIsNotAParameter", "select '10:30', 12 :1", "select '10:30', 12 :1"},
        RewriteCase{"LoneColon", "select :", "select :"},
        RewriteCase{"UnterminatedStringIsKept", "select ':a", "select ':a"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(DataSqlParams, NamesComeInOrderWithRepeats) {
  const PositionalSql result = ToPositional("where a=:Id or b=:name or c=:id");
  EXPECT_THAT(result.names, ElementsAre("Id", "name", "id"));
}

TEST(DataSqlParams, NoParametersNoNames) {
  EXPECT_THAT(ToPositional("select 'a:b' from t").names, IsEmpty());
}

TEST(DataSqlParams, LookupIgnoresCaseAndMissingIsNull) {
  const std::map<std::string, ParamValue> params = {{"FromDate", std::string("x")},
                                                    {"id", int64_t{5}}};
  ASSERT_NE(FindParam(params, "fromdate"), nullptr);
  EXPECT_EQ(std::get<std::string>(*FindParam(params, "FROMDATE")), "x");
  EXPECT_EQ(std::get<int64_t>(*FindParam(params, "ID")), 5);
  EXPECT_EQ(FindParam(params, "todate"), nullptr);
}

}  // namespace
}  // namespace vantorel::data
