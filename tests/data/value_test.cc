#include "data/value.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "data/temp_database.h"
#include "vantorel/error.h"

namespace vantorel::data {
namespace {

using testing::ErrorNumberOf;

TEST(DataValue, DefaultIsNull) {
  EXPECT_TRUE(Value().is_null());
  EXPECT_EQ(Value().kind(), Value::Kind::kNull);
}

TEST(DataValue, FactoriesKeepKindAndPayload) {
  EXPECT_EQ(Value::Integer(-7).integer(), -7);
  EXPECT_EQ(Value::Real(2.5).real(), 2.5);
  EXPECT_EQ(Value::Decimal("60000.10").kind(), Value::Kind::kDecimal);
  EXPECT_EQ(Value::Decimal("60000.10").text(), "60000.10");
  EXPECT_EQ(Value::Text("abc").text(), "abc");
  EXPECT_EQ(Value::FromDate(Date::FromYmd(2024, 3, 31)).date(), Date::FromYmd(2024, 3, 31));
  EXPECT_EQ(Value::FromDateTime(Date{1.5}).kind(), Value::Kind::kDateTime);
  EXPECT_EQ(Value::Boolean(true).integer(), 1);
  EXPECT_EQ(Value::Blob(std::string("\0\1", 2)).text().size(), 2u);
  EXPECT_NE(Value::Integer(1), Value::Boolean(true));
}

struct TextCase {
  const char* name;
  Value value;
  const char* text;
};

class DataValueToText : public ::testing::TestWithParam<TextCase> {};

TEST_P(DataValueToText, WritesTheHostsText) {
  EXPECT_EQ(ToText(GetParam().value), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, DataValueToText,
    ::testing::Values(TextCase{"Integer", Value::Integer(60000), "60000"},
                      TextCase{"NegativeInteger", Value::Integer(-42), "-42"},
                      TextCase{"RealShortest", Value::Real(1250.5), "1250.5"},
                      TextCase{"RealTenth", Value::Real(0.1), "0.1"},
                      TextCase{"RealWhole", Value::Real(100000000.0), "100000000"},
                      TextCase{"RealZero", Value::Real(-0.0), "0"},
                      TextCase{"RealHuge", Value::Real(1e20), "1E+20"},
                      TextCase{"RealTiny", Value::Real(1.5e-7), "1.5E-07"},
                      TextCase{"DecimalKeepsScale", Value::Decimal("60000.10"), "60000.10"},
                      TextCase{"Text", Value::Text(" y "), " y "},
                      TextCase{"DevanagariText", Value::Text("सुनीता ₹"), "सुनीता ₹"},
                      TextCase{"Date", Value::FromDate(Date::FromYmd(2024, 3, 31)), "2024-03-31"},
                      TextCase{"DateTime",
                               Value::FromDateTime(Date::FromParts({2024, 3, 31, 10, 30, 15})),
                               "2024-03-31 10:30:15"},
                      TextCase{"True", Value::Boolean(true), "True"},
                      TextCase{"False", Value::Boolean(false), "False"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(DataValue, NonFiniteRealsStillHaveText) {
  EXPECT_EQ(ToText(Value::Real(HUGE_VAL)), "inf");
  EXPECT_EQ(ToText(Value::Real(-HUGE_VAL)), "-inf");
}

TEST(DataValue, NullCannotBeText) {
  try {
    ToText(Value());
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errnum::kInvalidUseOfNull);
    EXPECT_EQ(error.description(), "Invalid use of Null");
  }
}

TEST(DataValue, InvalidDateCannotBeText) {
  EXPECT_EQ(ErrorNumberOf([] { ToText(Value::FromDate(Date{1e9})); }), errnum::kOverflow);
}

struct DoubleCase {
  const char* name;
  Value value;
  double expected;
};

class DataValueToDouble : public ::testing::TestWithParam<DoubleCase> {};

TEST_P(DataValueToDouble, ReadsTheNumber) {
  EXPECT_EQ(ToDouble(GetParam().value), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, DataValueToDouble,
    ::testing::Values(DoubleCase{"Integer", Value::Integer(-3), -3},
                      DoubleCase{"Real", Value::Real(2.25), 2.25},
                      DoubleCase{"Decimal", Value::Decimal("60000.10"), 60000.10},
                      DoubleCase{"NegativeDecimal", Value::Decimal("-0.5"), -0.5},
                      DoubleCase{"WholeNumberText", Value::Text("1250.50"), 1250.5},
                      DoubleCase{"BlanksAround", Value::Text("  42 \t"), 42},
                      DoubleCase{"SignedText", Value::Text("-7.5"), -7.5},
                      DoubleCase{"PlusSign", Value::Text("+8"), 8},
                      DoubleCase{"Exponent", Value::Text("1.5e3"), 1500},
                      DoubleCase{"True", Value::Boolean(true), -1},
                      DoubleCase{"False", Value::Boolean(false), 0},
                      DoubleCase{"DateSerial", Value::FromDate(Date::FromYmd(2024, 3, 31)),
                                 Date::FromYmd(2024, 3, 31).serial}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(DataValue, NullCannotBeDouble) {
  EXPECT_EQ(ErrorNumberOf([] { ToDouble(Value()); }), errnum::kInvalidUseOfNull);
}

TEST(DataValue, TextThatIsNotWhollyANumberIsATypeMismatch) {
  for (const char* text : {"12abc", "abc", "", "  ", "1,250.50", "inf", "nan", "1 2"}) {
    EXPECT_EQ(ErrorNumberOf([&] { ToDouble(Value::Text(text)); }), errnum::kTypeMismatch)
        << '"' << text << '"';
  }
}

TEST(DataValue, BlobIsNotADouble) {
  EXPECT_EQ(ErrorNumberOf([] { ToDouble(Value::Blob("x")); }), errnum::kTypeMismatch);
}

struct ValCase {
  const char* text;
  double expected;
};

class DataVal : public ::testing::TestWithParam<ValCase> {};

TEST_P(DataVal, ReadsTheLeadingNumber) {
  EXPECT_EQ(Val(GetParam().text), GetParam().expected) << '"' << GetParam().text << '"';
}

INSTANTIATE_TEST_SUITE_P(
    Table, DataVal,
    ::testing::Values(ValCase{"12abc", 12}, ValCase{"abc", 0}, ValCase{"", 0},
                      ValCase{" 1 2 3", 123}, ValCase{"1250.50", 1250.5}, ValCase{"  \t\n42", 42},
                      ValCase{"-12.5", -12.5}, ValCase{"+5", 5}, ValCase{"- 5", -5},
                      ValCase{".5", 0.5}, ValCase{"1.2.3", 1.2}, ValCase{"1,250", 1},
                      ValCase{"1e3", 1000}, ValCase{"1E+3x", 1000}, ValCase{"2.5e-1", 0.25},
                      ValCase{"1d2", 100}, ValCase{"1e", 1}, ValCase{"1 e 2", 100},
                      ValCase{"-0", 0}, ValCase{"&H10", 16}, ValCase{"&hff", 255},
                      ValCase{"&HFFFF", -1}, ValCase{"&H10000", 65536}, ValCase{"&O17", 15},
                      ValCase{"&X1", 0}, ValCase{"&H", 0}, ValCase{"\r5", 0}, ValCase{"1e-400", 0},
                      ValCase{"60000.10 only", 60000.1}, ValCase{"₹500", 0}));

TEST(DataVal, HugeNumbersOverflow) {
  EXPECT_EQ(ErrorNumberOf([] { Val("1e400"); }), errnum::kOverflow);
  EXPECT_EQ(ErrorNumberOf([] { Val("&H1FFFFFFFF"); }), errnum::kOverflow);
}

TEST(DataVal, ToTextThenValRoundTripsAmounts) {
  for (const Value& amount :
       {Value::Decimal("60000.10"), Value::Real(125000.5), Value::Integer(99)}) {
    EXPECT_EQ(Val(ToText(amount)), ToDouble(amount));
  }
}

}  // namespace
}  // namespace vantorel::data
