#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include "report/expr/fake_binder.h"
#include "report/expr/value.h"

namespace vantorel::report::expr {
namespace {

Decimal D(const char* text) {
  const auto d = Decimal::Parse(text);
  EXPECT_TRUE(d.has_value()) << text;
  return d.value_or(Decimal());
}

std::string Text(const std::optional<Decimal>& d) { return d ? d->ToString() : "nullopt"; }

struct ParseCase {
  const char* name;
  const char* text;
  const char* expected;  // ToString, or "nullopt"
};

const ParseCase kParseCases[] = {
    {"Integer", "123", "123"},
    {"KeepsScale", "60000.00", "60000.00"},
    {"Negative", "-5", "-5"},
    {"PlusSign", "+7.5", "7.5"},
    {"LeadingPoint", ".07", "0.07"},
    {"TrailingPoint", "5.", "5"},
    {"Exponent", "1e3", "1000"},
    {"NegativeExponent", "125e-2", "1.25"},
    {"ExponentWithFraction", "1.5E+2", "150"},
    {"EighteenDecimals", "0.123456789012345678", "0.123456789012345678"},
    {"NineteenDecimalsDoNotFit", "0.1234567890123456789", "nullopt"},
    {"TrailingZerosBeyondEighteenDrop", "1.50000000000000000000000", "1.500000000000000000"},
    {"ZeroWithHugeScale", "0.000000000000000000000000", "0.000000000000000000"},
    {"ThirtyEightDigits", "12345678901234567890123456789012345678",
     "12345678901234567890123456789012345678"},
    {"TooManyDigits", "999999999999999999999999999999999999999999", "nullopt"},
    {"Empty", "", "nullopt"},
    {"JustASign", "-", "nullopt"},
    {"JustAPoint", ".", "nullopt"},
    {"Letters", "12abc", "nullopt"},
    {"Blank", " 12", "nullopt"},
    {"ExponentWithoutDigits", "1e", "nullopt"},
    {"TwoPoints", "1.2.3", "nullopt"},
};

class DecimalParse : public ::testing::TestWithParam<ParseCase> {};

TEST_P(DecimalParse, ReadsExactly) {
  EXPECT_EQ(Text(Decimal::Parse(GetParam().text)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, DecimalParse, ::testing::ValuesIn(kParseCases),
                         testing::CaseName());

TEST(Decimal, FromDoubleIsTheShortestForm) {
  EXPECT_EQ(Text(Decimal::FromDouble(0.1)), "0.1");
  EXPECT_EQ(Text(Decimal::FromDouble(1234.56)), "1234.56");
  EXPECT_EQ(Text(Decimal::FromDouble(0.1 + 0.2)), "0.30000000000000004");
  EXPECT_EQ(Text(Decimal::FromDouble(-2.5)), "-2.5");
  EXPECT_EQ(Text(Decimal::FromDouble(1e20)), "100000000000000000000");
  EXPECT_EQ(Text(Decimal::FromDouble(-0.0)), "0");
}

TEST(Decimal, FromDoubleRejectsWhatDoesNotFit) {
  EXPECT_FALSE(Decimal::FromDouble(1e21).has_value());
  EXPECT_FALSE(Decimal::FromDouble(1e-19).has_value());
  EXPECT_FALSE(Decimal::FromDouble(std::numeric_limits<double>::infinity()).has_value());
  EXPECT_FALSE(Decimal::FromDouble(std::nan("")).has_value());
}

TEST(Decimal, ToDouble) {
  EXPECT_EQ(D("0.1").ToDouble(), 0.1);
  EXPECT_EQ(D("-1234.56").ToDouble(), -1234.56);
  EXPECT_EQ(D("12345678901234567890123.5").ToDouble(), 12345678901234567890123.5);
}

TEST(Decimal, FromIntAndMantissa) {
  EXPECT_EQ(Decimal::FromInt(-42).ToString(), "-42");
  EXPECT_EQ(Decimal::FromMantissa(705, 2).ToString(), "7.05");
  EXPECT_EQ(Decimal::FromMantissa(7, 3).ToString(), "0.007");
  EXPECT_EQ(Decimal::FromMantissa(-7, 3).ToString(), "-0.007");
}

struct RoundCase {
  const char* name;
  const char* value;
  int decimals;
  const char* expected;
};

const RoundCase kRoundCases[] = {
    {"HalfUp", "0.005", 2, "0.01"},
    {"HalfAwayFromZeroNegative", "-0.005", 2, "-0.01"},
    {"BelowHalf", "0.0049", 2, "0.00"},
    {"TwoPointFive", "2.5", 0, "3"},
    {"MinusTwoPointFive", "-2.5", 0, "-3"},
    {"AlreadyShort", "1.5", 2, "1.5"},
    {"ToTens", "1234.5", -1, "1230"},
    {"ToHundredsUp", "1250", -2, "1300"},
    {"ToThousandsNegative", "-1500", -3, "-2000"},
    {"FarBeyond", "1234", -40, "0"},
    {"CarryThroughNines", "9.999", 2, "10.00"},
};

class DecimalRound : public ::testing::TestWithParam<RoundCase> {};

TEST_P(DecimalRound, HalfAwayFromZero) {
  EXPECT_EQ(D(GetParam().value).Round(GetParam().decimals).ToString(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, DecimalRound, ::testing::ValuesIn(kRoundCases),
                         testing::CaseName());

TEST(Decimal, AddKeepsTheLargerScale) {
  EXPECT_EQ(Text(Decimal::Add(D("1.5"), D("2.25"))), "3.75");
  EXPECT_EQ(Text(Decimal::Add(D("60000.00"), D("5"))), "60005.00");
  EXPECT_EQ(Text(Decimal::Subtract(D("1"), D("0.01"))), "0.99");
  EXPECT_EQ(Text(Decimal::Subtract(D("0.1"), D("0.3"))), "-0.2");
}

TEST(Decimal, AddOverflowIsNullopt) {
  const Decimal big = D("99999999999999999999999999999999999999");
  EXPECT_FALSE(Decimal::Add(big, big).has_value());
  // Bringing a huge integer to 18 decimals does not fit either.
  EXPECT_FALSE(Decimal::Add(D("1e30"), D("0.000000000000000001")).has_value());
}

TEST(Decimal, MultiplyAddsScales) {
  EXPECT_EQ(Text(Decimal::Multiply(D("2.000"), D("1234.50"))), "2469.00000");
  EXPECT_EQ(Text(Decimal::Multiply(D("-1.5"), D("1.5"))), "-2.25");
  EXPECT_EQ(Text(Decimal::Multiply(D("0.1"), D("0.1"))), "0.01");
}

TEST(Decimal, MultiplyDropsZeroDecimalsToFit) {
  EXPECT_EQ(Text(Decimal::Multiply(D("1.0000000000"), D("2.0000000000"))), "2.000000000000000000");
  EXPECT_EQ(Text(Decimal::Multiply(D("0.5000000000"), D("0.0000000020"))), "0.000000001000000000");
}

TEST(Decimal, MultiplyThatNeedsMoreThanEighteenDecimalsIsNullopt) {
  EXPECT_FALSE(Decimal::Multiply(D("0.0000000001"), D("0.0000000001")).has_value());
  EXPECT_FALSE(Decimal::Multiply(D("0.0000000001"), D("0.000000001")).has_value());
  EXPECT_FALSE(Decimal::Multiply(D("1e30"), D("1e30")).has_value());
}

TEST(Decimal, DivideExactWhenItTerminates) {
  EXPECT_EQ(Text(Decimal::Divide(D("10"), D("4"))), "2.5");
  EXPECT_EQ(Text(Decimal::Divide(D("100.00"), D("4"))), "25.00");
  EXPECT_EQ(Text(Decimal::Divide(D("7.50"), D("2.50"))), "3");
  EXPECT_EQ(Text(Decimal::Divide(D("1"), D("8"))), "0.125");
  EXPECT_EQ(Text(Decimal::Divide(D("-9"), D("0.3"))), "-30");
  EXPECT_EQ(Text(Decimal::Divide(D("1"), D("1024"))), "0.0009765625");
}

TEST(Decimal, DivideThatDoesNotTerminateOrByZeroIsNullopt) {
  EXPECT_FALSE(Decimal::Divide(D("1"), D("3")).has_value());
  EXPECT_FALSE(Decimal::Divide(D("1"), D("0")).has_value());
  EXPECT_FALSE(Decimal::Divide(D("0"), D("0.00")).has_value());
}

TEST(Decimal, CompareByValue) {
  EXPECT_EQ(Decimal::Compare(D("1.50"), D("1.5")), 0);
  EXPECT_EQ(Decimal::Compare(D("-1.5"), D("-1.2")), -1);
  EXPECT_EQ(Decimal::Compare(D("2"), D("1.999999999999999999")), 1);
  EXPECT_EQ(Decimal::Compare(D("-0.01"), D("0")), -1);
  EXPECT_EQ(Decimal::Compare(D("0"), D("0.000")), 0);
  EXPECT_EQ(Decimal::Compare(D("99999999999999999999999999999999999999"), D("0.5")), 1);
}

// 3,000 invoice amounts added as decimals give exactly the total integer paise give.
TEST(Decimal, ThreeThousandAmountsAddWithoutDrift) {
  Decimal total = Decimal::FromInt(0);
  int64_t paise = 0;
  for (int i = 0; i < 3000; ++i) {
    const int64_t amount_paise = 123456 + (i * 7919) % 100000;  // 1234.56 upwards
    const std::string text = std::to_string(amount_paise / 100) + "." +
                             (amount_paise % 100 < 10 ? "0" : "") +
                             std::to_string(amount_paise % 100);
    total = Decimal::Add(total, D(text.c_str())).value();
    paise += amount_paise;
  }
  const std::string expected = std::to_string(paise / 100) + "." + (paise % 100 < 10 ? "0" : "") +
                               std::to_string(paise % 100);
  EXPECT_EQ(total.ToString(), expected);
  EXPECT_EQ(total.scale(), 2);
  // The same through Value::Number(double) per amount stays exact as well.
  Decimal via_values = Decimal::FromInt(0);
  for (int i = 0; i < 3000; ++i) {
    const double amount = 1234.56;
    via_values = Decimal::Add(via_values, Value::Number(amount).decimal()).value();
  }
  EXPECT_EQ(via_values.ToString(), "3703680.00");
}

TEST(Value, NumberFromDoubleIsExactWhenShort) {
  EXPECT_EQ(Value::Number(0.1).kind(), Value::Kind::kDecimal);
  EXPECT_EQ(Value::Number(0.1).decimal().ToString(), "0.1");
  EXPECT_EQ(Value::Number(1e25).kind(), Value::Kind::kDouble);
  EXPECT_TRUE(Value::Number(std::numeric_limits<double>::infinity()).is_null());
  EXPECT_TRUE(Value::Number(std::nan("")).is_null());
}

TEST(Value, InvalidDateIsNull) {
  EXPECT_TRUE(Value::FromDate(Date{1e9}).is_null());
  EXPECT_EQ(Value::FromDate(Date::FromYmd(2024, 3, 31)).kind(), Value::Kind::kDate);
}

TEST(Value, EqualityIsByKindAndValue) {
  EXPECT_EQ(Value(), Value());
  EXPECT_EQ(Value::Number(D("1.50")), Value::Number(D("1.5")));
  EXPECT_FALSE(Value::Number(D("1")) == Value::Text("1"));
  EXPECT_EQ(Value::Text("a"), Value::Text("a"));
  EXPECT_FALSE(Value::Bool(true) == Value::Bool(false));
  EXPECT_EQ(Value::Number(2.5).number(), 2.5);
  EXPECT_EQ(Value::Text("2").number(), 0);
}

struct DisplayCase {
  const char* name;
  Value value;
  const char* expected;
};

const DisplayCase kDisplayCases[] = {
    {"Null", Value(), ""},
    {"True", Value::Bool(true), "True"},
    {"False", Value::Bool(false), "False"},
    {"DecimalKeepsScale", Value::Number(*Decimal::Parse("60000.00")), "60000.00"},
    {"NegativeDecimal", Value::Number(*Decimal::Parse("-0.07")), "-0.07"},
    {"Integer", Value::Integer(105630), "105630"},
    {"ShortDouble", Value::Number(2.5), "2.5"},
    {"HugeDouble", Value::Number(1.5e25), "1.5e+25"},
    {"LargeDoublePlain", Value::Number(1.5e20), "150000000000000000000"},
    {"Text", Value::Text("Ravi & Sons"), "Ravi & Sons"},
    {"Date", Value::FromDate(Date::FromYmd(2024, 3, 31)), "31-03-2024"},
    {"DateTime", Value::FromDate(*Date::FromIso("2024-03-31 10:30")), "31-03-2024 10:30"},
    {"OldDate", Value::FromDate(Date::FromYmd(1899, 12, 29)), "29-12-1899"},
};

class Display : public ::testing::TestWithParam<DisplayCase> {};

TEST_P(Display, Text) { EXPECT_EQ(DisplayText(GetParam().value), GetParam().expected); }

INSTANTIATE_TEST_SUITE_P(Table, Display, ::testing::ValuesIn(kDisplayCases), testing::CaseName());

}  // namespace
}  // namespace vantorel::report::expr
