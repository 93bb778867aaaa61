#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "report/expr/expression.h"
#include "report/expr/fake_binder.h"

namespace vantorel::report::expr {
namespace {

using testing::FakeBinder;
using testing::FakeContext;

class TextTemplateTest : public ::testing::Test {
 protected:
  TextTemplateTest() {
    context_.fields[binder_.AddField("Q.amt")] = Value::Number(*Decimal::Parse("105630.5"));
    context_.fields[binder_.AddField("Q.name")] = Value::Text("Ravi Kumar");
    context_.fields[binder_.AddField("Q.flag")] = Value::Bool(true);
    context_.fields[binder_.AddField("Q.none")] = Value();
    context_.system[SystemValue::kPage] = Value::Integer(3);
    context_.system[SystemValue::kTotalPages] = Value::Integer(10);
  }

  std::string Run(std::string_view text, bool literal_on_error = false,
                  std::string_view format = {}) {
    return TextTemplate::Compile(text, binder_, literal_on_error)->Evaluate(context_, format);
  }

  FakeBinder binder_;
  FakeContext context_;
};

TEST_F(TextTemplateTest, LiteralTextStaysAsItIs) {
  const auto t = TextTemplate::Compile("RUPEES : FIVE ONLY", binder_, false);
  EXPECT_EQ(t->Evaluate(context_, {}), "RUPEES : FIVE ONLY");
  EXPECT_TRUE(t->IsConstant());
  EXPECT_EQ(t->single(), nullptr);
}

TEST_F(TextTemplateTest, EmptyText) {
  const auto t = TextTemplate::Compile("", binder_, false);
  EXPECT_EQ(t->Evaluate(context_, "0.00"), "");
  EXPECT_TRUE(t->IsConstant());
}

TEST_F(TextTemplateTest, ExpressionsBetweenLiterals) {
  const auto t = TextTemplate::Compile("Page [Page] of [TotalPages]", binder_, false);
  EXPECT_EQ(t->Evaluate(context_, {}), "Page 3 of 10");
  EXPECT_TRUE(t->Uses(SystemValue::kTotalPages));
  EXPECT_FALSE(t->Uses(SystemValue::kDate));
  EXPECT_FALSE(t->IsConstant());
  EXPECT_EQ(t->single(), nullptr);
}

TEST_F(TextTemplateTest, SingleExpressionTakesTheFormat) {
  const auto t = TextTemplate::Compile("[Q.amt]", binder_, false);
  ASSERT_NE(t->single(), nullptr);
  EXPECT_EQ(t->single()->source(), "Q.amt");
  EXPECT_EQ(t->Evaluate(context_, "#,##,##0.00"), "1,05,630.50");
  EXPECT_EQ(t->Evaluate(context_, {}), "105630.5");
}

TEST_F(TextTemplateTest, FormatIgnoredWhenThereIsMoreThanOneExpression) {
  EXPECT_EQ(Run("Total: [Q.amt]", false, "#,##0.00"), "Total: 105630.5");
}

TEST_F(TextTemplateTest, NullShowsAsNothing) { EXPECT_EQ(Run("<[Q.none]>"), "<>"); }

TEST_F(TextTemplateTest, TextsInsideMayHoldBrackets) {
  EXPECT_EQ(Run(R"([IIF(Q.flag, "]", "")])"), "]");
  EXPECT_EQ(Run("[ 'x]y' ]"), "x]y");
  EXPECT_EQ(Run(R"([IIF(Q.flag, "[", "")] and [Q.name])"), "[ and Ravi Kumar");
  EXPECT_EQ(Run(R"([ "a""]b" ])"), "a\"]b");
}

TEST_F(TextTemplateTest, DoubledOpeningBracketIsLiteral) {
  EXPECT_EQ(Run("[[Q.amt]"), "[Q.amt]");
  EXPECT_EQ(Run("a [[b]] c"), "a [b]] c");
  EXPECT_EQ(Run("[[[Page]"), "[3");
}

TEST_F(TextTemplateTest, LoneClosingBracketIsLiteral) {
  EXPECT_EQ(Run("a ] b [Page]]"), "a ] b 3]");
}

TEST_F(TextTemplateTest, ApostropheAfterAnExpression) {
  EXPECT_EQ(Run("[Q.name]'s bike"), "Ravi Kumar's bike");
}

TEST_F(TextTemplateTest, ConstantPartsFoldIntoText) {
  const auto t = TextTemplate::Compile("[1 + 2] items, [Upper('ok')]", binder_, false);
  EXPECT_TRUE(t->IsConstant());
  EXPECT_EQ(t->Evaluate(context_, "0.00"), "3 items, OK");
  const auto single = TextTemplate::Compile("[1 + 2]", binder_, false);
  ASSERT_NE(single->single(), nullptr);
  EXPECT_EQ(single->Evaluate(context_, "0.00"), "3.00");
}

TEST_F(TextTemplateTest, LiteralOnErrorKeepsBadSegmentsVerbatim) {
  EXPECT_EQ(Run("Dear [Q.nope], [Q.name]", true), "Dear [Q.nope], Ravi Kumar");
  EXPECT_EQ(Run("Title [Draft copy] page [Page]", true), "Title [Draft copy] page 3");
  EXPECT_EQ(Run("[Don't care] [Page]", true), "[Don't care] 3");
  EXPECT_EQ(Run("[]", true), "[]");
  EXPECT_EQ(Run("[a[b]c]", true), "[a[b]c]");
  EXPECT_EQ(Run("Unclosed [ bracket [Page]", true), "Unclosed [ bracket 3");
  EXPECT_EQ(Run("ends with [", true), "ends with [");
}

TEST_F(TextTemplateTest, BadSegmentsRegisterNoAggregates) {
  EXPECT_EQ(Run("[Sum(Q.amt) + Trm(1)] [Sum(Q.amt)]", true), "[Sum(Q.amt) + Trm(1)] ");
  ASSERT_EQ(binder_.aggregates.size(), 1u);
  EXPECT_EQ(binder_.aggregates[0].argument->source(), "Q.amt");
}

struct TemplateError {
  const char* name;
  const char* text;
  size_t offset;
  const char* message;
  const char* hint;
};

class TemplateErrors : public TextTemplateTest,
                       public ::testing::WithParamInterface<TemplateError> {};

TEST_P(TemplateErrors, ReportOffsetsIntoTheText) {
  try {
    TextTemplate::Compile(GetParam().text, binder_, false);
    FAIL() << "compiled: " << GetParam().text;
  } catch (const ExprError& e) {
    EXPECT_EQ(e.offset(), GetParam().offset) << e.message();
    EXPECT_THAT(e.message(), ::testing::HasSubstr(GetParam().message));
    EXPECT_THAT(e.hint(), ::testing::HasSubstr(GetParam().hint));
  }
}

const TemplateError kTemplateErrors[] = {
    {"UnknownFunction", "Total [Trm(Q.name)]", 7, "unknown function 'Trm'", "Trim"},
    {"UnknownField", "Dear [Q.nope]", 6, "no field Q.nope", ""},
    {"Empty", "a [] b", 3, "empty", ""},
    {"Unclosed", "Unclosed [ bracket", 9, "'[' is not closed", "[["},
    {"UnclosedText", "x [Don't]", 6, "the text is not closed", ""},
    {"SyntaxInSecond", "[Page] of [1 +]", 14, "ends too early", ""},
};

INSTANTIATE_TEST_SUITE_P(Table, TemplateErrors, ::testing::ValuesIn(kTemplateErrors),
                         testing::CaseName());

}  // namespace
}  // namespace vantorel::report::expr
