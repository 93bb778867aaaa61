#include <gtest/gtest.h>

#include <string>

#include "report/expr/fake_binder.h"
#include "report/expr/value.h"

namespace vantorel::report::expr {
namespace {

Value N(const char* text) { return Value::Number(*Decimal::Parse(text)); }

struct FormatCase {
  const char* name;
  Value value;
  const char* pattern;
  const char* expected;
};

const FormatCase kNumberCases[] = {
    {"WholeNumber", N("1234.5"), "0", "1235"},
    {"TwoDecimals", N("1234.5"), "0.00", "1234.50"},
    {"Thousands", N("1234567.891"), "#,##0.00", "1,234,567.89"},
    {"ThousandsSmall", N("999"), "#,##0.00", "999.00"},
    {"IndianLakh", N("105630"), "#,##,##0.00", "1,05,630.00"},
    {"IndianCrore", N("72223867.74"), "#,##,##0.00", "7,22,23,867.74"},
    {"IndianTenMillion", N("1e7"), "#,##,##0.00", "1,00,00,000.00"},
    {"IndianLargeCrore", N("1234567890123.45"), "#,##,##0.00", "12,34,56,78,90,123.45"},
    {"IndianNegative", N("-105630.5"), "#,##,##0.00", "-1,05,630.50"},
    {"IndianSmallNegative", N("-999.99"), "#,##,##0.00", "-999.99"},
    {"IndianThousand", N("1000"), "#,##,##0", "1,000"},
    {"IndianZero", N("0"), "#,##,##0.00", "0.00"},
    {"NegativeThousands", N("-1234"), "#,##0.00", "-1,234.00"},
    {"Zero", N("0"), "0.00", "0.00"},
    {"HalfPaisaRoundsUp", N("0.005"), "0.00", "0.01"},
    {"HalfPaisaFromDouble", Value::Number(0.005), "0.00", "0.01"},
    {"NegativeHalfAwayFromZero", N("-0.005"), "0.00", "-0.01"},
    {"RoundsToZeroLosesSign", N("-0.004"), "0.00", "0.00"},
    {"TwoPointFiveRoundsUp", N("2.5"), "0", "3"},
    {"OptionalDecimals", N("5.1"), "#,##0.###", "5.1"},
    {"OptionalDecimalsNone", N("5"), "#,##0.###", "5"},
    {"OptionalDecimalsRounded", N("1234.56789"), "#,##0.###", "1,234.568"},
    {"MixedDecimals", N("5.1"), "0.0#", "5.1"},
    {"MixedDecimalsFull", N("5.123"), "0.0#", "5.12"},
    {"HashOnlyZero", N("0.5"), "#.##", ".5"},
    {"LeadingZeros", N("7"), "000", "007"},
    {"RupeePrefix", N("105630"), "₹ #,##,##0.00", "₹ 1,05,630.00"},
    {"RupeePrefixNegative", N("-5"), "₹ #,##,##0.00", "-₹ 5.00"},
    {"QuotedPrefix", N("5"), "\"Rs. \"0.00", "Rs. 5.00"},
    {"PlainPrefixWithPoint", N("5"), "Rs. 0.00", "Rs. 5.00"},
    {"Suffix", N("5"), "0.00 \"only\"", "5.00 only"},
    {"Percent", N("0.125"), "0.0%", "12.5%"},
    {"PercentWithBlank", N("0.5"), "0 %", "50 %"},
    {"QuotedPercentDoesNotScale", N("12.5"), "0.0\"%\"", "12.5%"},
    {"EscapedPercentDoesNotScale", N("12.5"), "0.0\\%", "12.5%"},
    {"NegativeSection", N("-1234.5"), "#,##0.00;(#,##0.00)", "(1,234.50)"},
    {"ZeroSection", N("0"), "#,##0.00;(#,##0.00);\"-\"", "-"},
    {"PositiveWithSections", N("12"), "0.00;(0.00);-", "12.00"},
    {"DoubleHuge", Value::Number(1.5e25), "#,##0", "15,000,000,000,000,000,000,000,000"},
    {"DoubleHugeIndian", Value::Number(1.5e25), "#,##,##0",
     "1,50,00,00,00,00,00,00,00,00,00,00,000"},
    {"IntegerNoGrouping", N("1234567"), "0", "1234567"},
    {"TrailingCommaIgnored", N("1234"), "#,##0,", "1,234"},
    {"NotANumberPattern", N("12.50"), "dd-mm-yyyy", "12.50"},
    {"EmptyPattern", N("12.50"), "", "12.50"},
    {"ManyDecimals", N("1.5"), "0.000000", "1.500000"},
};

const FormatCase kDateCases[] = {
    {"DayMonthYear", Value::FromDate(Date::FromYmd(2024, 3, 5)), "dd-mm-yyyy", "05-03-2024"},
    {"Short", Value::FromDate(Date::FromYmd(2024, 3, 5)), "d/m/yy", "5/3/24"},
    {"MonthName", Value::FromDate(Date::FromYmd(2024, 3, 31)), "dd mmm yyyy", "31 Mar 2024"},
    {"FullMonthName", Value::FromDate(Date::FromYmd(2024, 9, 1)), "d mmmm yyyy",
     "1 September 2024"},
    {"DayName", Value::FromDate(Date::FromYmd(2024, 3, 31)), "ddd, dd-mm-yyyy", "Sun, 31-03-2024"},
    {"FullDayName", Value::FromDate(Date::FromYmd(2024, 4, 1)), "dddd", "Monday"},
    {"DayZeroIsSaturday", Value::FromDate(Date{0}), "dddd", "Saturday"},
    {"UpperCaseLetters", Value::FromDate(Date::FromYmd(2024, 3, 5)), "DD/MM/YYYY", "05/03/2024"},
    {"Time", Value::FromDate(*Date::FromIso("2024-03-31 14:05:09")), "hh:nn:ss", "14:05:09"},
    {"TwelveHour", Value::FromDate(*Date::FromIso("2024-03-31 14:05")), "h:nn am/pm", "2:05 pm"},
    {"TwelveHourUpper", Value::FromDate(*Date::FromIso("2024-03-31 00:30")), "hh:nn AM/PM",
     "12:30 AM"},
    {"QuotedText", Value::FromDate(Date::FromYmd(2024, 3, 5)), "\"Dated\" dd.mm.yyyy",
     "Dated 05.03.2024"},
    {"EscapedLetter", Value::FromDate(Date::FromYmd(2024, 3, 5)), "yyyy\\Tmm", "2024T03"},
    {"NumberPatternFallsBack", Value::FromDate(Date::FromYmd(2024, 3, 5)), "#,##0.00",
     "05-03-2024"},
};

const FormatCase kOtherCases[] = {
    {"NullIsEmpty", Value(), "#,##0.00", ""},
    {"NullDateIsEmpty", Value(), "dd-mm-yyyy", ""},
    {"BoolTrue", Value::Bool(true), "Yes;No", "Yes"},
    {"BoolFalse", Value::Bool(false), "Yes;No", "No"},
    {"BoolQuoted", Value::Bool(false), "\"Paid\";\"Due; pay now\"", "Due; pay now"},
    {"BoolOneSection", Value::Bool(true), "Yes", "True"},
    {"TextUnchanged", Value::Text("12.5"), "0.00", "12.5"},
};

class Format : public ::testing::TestWithParam<FormatCase> {};

TEST_P(Format, Pattern) {
  EXPECT_EQ(FormatValue(GetParam().value, GetParam().pattern), GetParam().expected);
}

// Patterns are read once and kept, a few at a time: whatever was formatted before, with however
// many other patterns in between, a pattern formats as it did the first time.
TEST(FormatPatterns, FormatAlikeWhateverCameBefore) {
  const std::string long_pattern = "\"" + std::string(300, 'x') + "\" #,##0.00;(#,##0.00);nil";
  const std::string long_expected = std::string(300, 'x') + " 1,234.50";
  for (int round = 0; round < 3; ++round) {
    for (const FormatCase& c : kNumberCases) {
      EXPECT_EQ(FormatValue(c.value, c.pattern), c.expected) << c.name << ", round " << round;
    }
    EXPECT_EQ(FormatValue(N("-5"), "0.0;(0.0);nil"), "(5.0)");
    EXPECT_EQ(FormatValue(N("0"), "0.0;(0.0);nil"), "nil");
    EXPECT_EQ(FormatValue(N("1234.5"), long_pattern), long_expected);
    EXPECT_EQ(FormatValue(N("-2"), long_pattern), "(2.00)");
    EXPECT_EQ(FormatValue(N("0"), long_pattern), "nil");
  }
}

INSTANTIATE_TEST_SUITE_P(Numbers, Format, ::testing::ValuesIn(kNumberCases), testing::CaseName());
INSTANTIATE_TEST_SUITE_P(Dates, Format, ::testing::ValuesIn(kDateCases), testing::CaseName());
INSTANTIATE_TEST_SUITE_P(Others, Format, ::testing::ValuesIn(kOtherCases), testing::CaseName());

}  // namespace
}  // namespace vantorel::report::expr
