#include "report/expr/expression.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "report/expr/fake_binder.h"

namespace vantorel::report::expr {
namespace {

using testing::Describe;
using testing::FakeBinder;
using testing::FakeContext;

Value N(const char* text) { return Value::Number(*Decimal::Parse(text)); }

// A binder and context with a small invoice: the fields and variables the tables use.
class Invoice {
 public:
  Invoice() {
    Field("Q.amt", N("1234.50"));
    Field("Q.qty", Value::Integer(2));
    Field("Q.rate", Value::Number(0.1));
    Field("Q.name", Value::Text("Ravi Kumar"));
    Field("Q.none", Value());
    Field("Q.dt", Value::FromDate(Date::FromYmd(2024, 3, 31)));
    Field("Q.flag", Value::Bool(true));
    Field("Q.numtext", Value::Text(" 12.5 "));
    Field("Q.Total Amount", Value::Integer(500));
    Field("Q.2wheeler", Value::Text("yes"));
    Field("Q_INV.cname", Value::Text("Hero Splendor+"));
    Variable("Company", Value::Text("Vantorel Motors"));
    Variable("Report.Title", Value::Text("Sales Register"));
    Variable("Discount", Value());
    context.system[SystemValue::kPage] = Value::Integer(3);
    context.system[SystemValue::kTotalPages] = Value::Integer(10);
    context.system[SystemValue::kDate] = Value::FromDate(Date::FromYmd(2024, 4, 1));
    context.system[SystemValue::kTime] = Value::FromDate(*Date::FromIso("1899-12-30 10:30"));
    context.system[SystemValue::kNow] = Value::FromDate(*Date::FromIso("2024-04-01 10:30"));
    context.system[SystemValue::kLine] = Value::Integer(7);
    context.system[SystemValue::kCopy] = Value::Integer(1);
  }

  Value Eval(const std::string& source) {
    return Expression::Compile(source, binder)->Evaluate(context);
  }

  FakeBinder binder;
  FakeContext context;

 private:
  void Field(const std::string& name, Value value) {
    context.fields[binder.AddField(name)] = std::move(value);
  }
  void Variable(const std::string& name, Value value) {
    context.variables[binder.AddVariable(name)] = std::move(value);
  }
};

struct Case {
  const char* name;
  const char* source;
  const char* expected;  // Describe() of the value
};

class Evaluates : public ::testing::TestWithParam<Case> {};

TEST_P(Evaluates, To) {
  Invoice invoice;
  EXPECT_EQ(Describe(invoice.Eval(GetParam().source)), GetParam().expected) << GetParam().source;
}

const Case kLiterals[] = {
    {"Integer", "123", "123"},
    {"DecimalKeepsScale", "12.50", "12.50"},
    {"Exponent", "1e3", "1000"},
    {"LeadingPoint", ".5", "0.5"},
    {"BeyondDecimalsIsDouble", "1e40", "double 1e+40"},
    {"DoubleQuotedText", "\"abc\"", "'abc'"},
    {"SingleQuotedText", "'abc'", "'abc'"},
    {"DoubledQuote", R"("He said ""hi""")", R"('He said "hi"')"},
    {"DoubledApostrophe", "'Ravi''s bike'", "'Ravi's bike'"},
    {"OtherQuoteInside", R"("it's")", "'it's'"},
    {"BackslashIsOrdinary", R"("C:\Logos\a.png")", R"('C:\Logos\a.png')"},
    {"TrailingBackslash", R"("C:\Logos\")", R"('C:\Logos\')"},
    {"EmptyText", "''", "''"},
    {"UnicodeText", "\"₹ पचास\"", "'₹ पचास'"},
    {"True", "true", "true"},
    {"FalseAnyCase", "FALSE", "false"},
    {"Null", "null", "null"},
    {"Date", "#2024-03-31#", "date 31-03-2024"},
    {"DateTime", "#2024-03-31 10:30#", "date 31-03-2024 10:30"},
    {"Blanks", " \t 1 \r\n ", "1"},
};
INSTANTIATE_TEST_SUITE_P(Literals, Evaluates, ::testing::ValuesIn(kLiterals), testing::CaseName());

const Case kNames[] = {
    {"Field", "Q.amt", "1234.50"},
    {"FieldOfAnotherQuery", "Q_INV.cname", "'Hero Splendor+'"},
    {"QuotedField", "Q.\"Total Amount\"", "500"},
    {"FieldStartingWithDigit", "Q.2wheeler", "'yes'"},
    {"CategoryVariable", "Report.Title", "'Sales Register'"},
    {"BareVariable", "Company", "'Vantorel Motors'"},
    {"Page", "Page", "3"},
    {"TotalPagesAnyCase", "totalpages", "10"},
    {"SystemDate", "Date", "date 01-04-2024"},
    {"Time", "Time", "date 30-12-1899 10:30"},
    {"Now", "NOW", "date 01-04-2024 10:30"},
    {"Line", "Line", "7"},
    {"Copy", "Copy", "1"},
};
INSTANTIATE_TEST_SUITE_P(Names, Evaluates, ::testing::ValuesIn(kNames), testing::CaseName());

const Case kArithmetic[] = {
    {"Add", "1 + 2", "3"},
    {"AddDecimalsExactly", "0.1 + 0.2", "0.3"},
    {"AddKeepsScale", "12.50 + 1", "13.50"},
    {"AddDoubleField", "Q.rate + 0.2", "0.3"},
    {"Subtract", "5 - 7.25", "-2.25"},
    {"Multiply", "Q.qty * Q.amt", "2469.00"},
    {"DivideExact", "10 / 4", "2.5"},
    {"DivideKeepsDividendScale", "Q.amt / 2", "617.25"},
    {"DivideNonTerminating", "1 / 3", "0.3333333333333333"},
    {"DivideByZero", "1 / 0", "null"},
    {"DivideByZeroDecimal", "1.5 / 0.00", "null"},
    {"Mod", "7 mod 3", "1"},
    {"ModAnyCase", "7 MOD 3", "1"},
    {"ModNegative", "-7 mod 3", "-1"},
    {"ModDecimal", "7.5 mod 2", "1.5"},
    {"ModZero", "7 mod 0", "null"},
    {"Negate", "-Q.amt", "-1234.50"},
    {"NegateText", "-'12'", "-12"},
    {"PlusMakesNumber", "+'12'", "12"},
    {"PlusOnWord", "+'abc'", "null"},
    {"DoubleNegation", "- -3", "3"},
    {"DoubleTimesNumber", "1e40 * 2", "double 2e+40"},
    {"DoublePlusDecimal", "1e40 + 0.5", "double 1e+40"},
    {"DoubleOverflowIsNull", "1e300 * 1e300", "null"},
    {"DecimalOverflowFallsBackToDouble",
     "99999999999999999999999999999999999999 + 99999999999999999999999999999999999999",
     "double 2e+38"},
    {"TextPlusText", "'ab' + 'cd'", "'abcd'"},
    {"NumberPlusNumericText", "1 + '2'", "3"},
    {"NumberPlusPaddedNumericText", "1 + Q.numtext", "13.5"},
    {"NumberPlusWord", "1 + 'a'", "'1a'"},
    {"WordPlusNumber", "'No. ' + 5", "'No. 5'"},
    {"TextMinusNumber", "'10' - 3", "7"},
    {"WordMinusNumber", "'a' - 3", "null"},
    {"TextTimesNumber", "'2.5' * 2", "5.0"},
    {"DatePlusDays", "#2024-03-31# + 1", "date 01-04-2024"},
    {"DaysPlusDate", "30 + #2024-03-01#", "date 31-03-2024"},
    {"DatePlusHalfDay", "#2024-03-31# + 0.5", "date 31-03-2024 12:00"},
    {"DateMinusDays", "#2024-03-01# - 1", "date 29-02-2024"},
    {"DateMinusDate", "#2024-03-31# - #2024-03-01#", "30"},
    {"DateTimeDifference", "#2024-03-31 12:00# - #2024-03-31#", "0.5"},
    {"DatePlusDate", "#2024-03-31# + #2024-03-01#", "null"},
    {"DatePlusWord", "#2024-03-31# + ' due'", "'31-03-2024 due'"},
    {"DateTimesNumber", "#2024-03-31# * 2", "null"},
    {"DateOutOfRange", "#9999-12-31# + 1", "null"},
    {"BooleanArithmetic", "true + 1", "null"},
    {"Concat", "'Page ' & 3", "'Page 3'"},
    {"ConcatKeepsScale", "Q.amt & ''", "'1234.50'"},
    {"ConcatDate", "'On ' & #2024-03-31#", "'On 31-03-2024'"},
    {"ConcatBoolean", "'Paid: ' & true", "'Paid: True'"},
};
INSTANTIATE_TEST_SUITE_P(Arithmetic, Evaluates, ::testing::ValuesIn(kArithmetic),
                         testing::CaseName());

const Case kComparisons[] = {
    {"Equal", "1 = 1.00", "true"},
    {"NotEqual", "1 <> 2", "true"},
    {"Less", "1 < 2", "true"},
    {"LessEqual", "2 <= 2", "true"},
    {"Greater", "1 > 2", "false"},
    {"GreaterEqual", "1 >= 2", "false"},
    {"DecimalAgainstDouble", "1e40 > 5", "true"},
    {"DoubleFieldAgainstDecimal", "Q.rate = 0.1", "true"},
    {"TextsBinary", "'a' < 'b'", "true"},
    {"TextsCaseSensitive", "'a' = 'A'", "false"},
    {"UpperCaseSortsFirst", "'Z' < 'a'", "true"},
    {"TextsEqual", "Q.name = 'Ravi Kumar'", "true"},
    {"NumberAgainstNumericText", "10 = '10.0'", "true"},
    {"NumberAgainstNumericTextNumerically", "9 < '10'", "true"},
    {"NumericTextAgainstNumber", "'10' > 9", "true"},
    {"NumberAgainstWordAsTexts", "10 < 'abc'", "true"},
    {"WordAgainstNumberAsTexts", "'abc' > 10", "true"},
    {"Dates", "#2024-03-31# > #2024-03-01#", "true"},
    {"DateAgainstIsoText", "#2024-03-31# = '2024-03-31'", "true"},
    {"OldDates", "#1899-12-29 18:00# > #1899-12-29 06:00#", "true"},
    {"Booleans", "false < true", "true"},
    {"DateAgainstNumber", "#2024-03-31# = 5", "null"},
    {"BooleanAgainstNumber", "true = 1", "null"},
};
INSTANTIATE_TEST_SUITE_P(Comparisons, Evaluates, ::testing::ValuesIn(kComparisons),
                         testing::CaseName());

const Case kLogic[] = {
    {"And", "true and false", "false"},
    {"AndAnyCase", "TRUE AND true", "true"},
    {"Or", "true or false", "true"},
    {"OrFalse", "false or false", "false"},
    {"Not", "not true", "false"},
    {"NotZero", "not 0", "true"},
    {"NumbersAreConditions", "2 and 1", "true"},
    {"TextIsNoCondition", "'x' and true", "null"},
    {"TextCannotDecideOr", "'x' or false", "null"},
    {"NotText", "not 'x'", "null"},
};
INSTANTIATE_TEST_SUITE_P(Logic, Evaluates, ::testing::ValuesIn(kLogic), testing::CaseName());

const Case kPrecedence[] = {
    {"MultiplyBeforeAdd", "1 + 2 * 3", "7"},
    {"Parentheses", "(1 + 2) * 3", "9"},
    {"NestedParentheses", "((2))", "2"},
    {"UnaryMinusBeforeMultiply", "-2 * 3", "-6"},
    {"UnaryMinusOnParentheses", "-(2 + 3)", "-5"},
    {"ModLikeMultiply", "10 - 7 mod 4", "7"},
    {"SubtractLeftToRight", "10 - 4 - 3", "3"},
    {"DivideLeftToRight", "100 / 10 / 5", "2"},
    {"AddBeforeConcat", "'a' & 1 + 2", "'a3'"},
    {"ConcatBeforeComparison", "'a' & 'b' = 'ab'", "true"},
    {"ComparisonBeforeAnd", "1 < 2 and 3 > 4", "false"},
    {"AndBeforeOr", "true or false and false", "true"},
    {"AndBeforeOrLeft", "false and true or true", "true"},
    {"NotBelowComparison", "not 1 = 2", "true"},
    {"NotAboveAnd", "not false and false", "false"},
    {"NotInsideComparison", "false = not true", "true"},
    {"NotNot", "not not true", "true"},
};
INSTANTIATE_TEST_SUITE_P(Precedence, Evaluates, ::testing::ValuesIn(kPrecedence),
                         testing::CaseName());

// Null in every operator.
const Case kNullOperators[] = {
    {"Add", "null + 1", "null"},
    {"AddRight", "1 + null", "null"},
    {"AddText", "'a' + null", "null"},
    {"AddField", "Q.none + 1", "null"},
    {"Subtract", "null - 1", "null"},
    {"SubtractFromDate", "#2024-03-31# - null", "null"},
    {"Multiply", "null * 2", "null"},
    {"Divide", "null / 2", "null"},
    {"DivideBy", "2 / null", "null"},
    {"Modulo", "null mod 2", "null"},
    {"Negate", "-null", "null"},
    {"Plus", "+null", "null"},
    {"ConcatLeft", "null & 'a'", "'a'"},
    {"ConcatBoth", "'a' & null & 'b'", "'ab'"},
    {"ConcatOnlyNull", "null & null", "''"},
    {"Equal", "null = null", "null"},
    {"NotEqual", "null <> 1", "null"},
    {"Less", "null < 1", "null"},
    {"LessEqual", "null <= 1", "null"},
    {"Greater", "'a' > null", "null"},
    {"GreaterEqual", "Q.none >= 0", "null"},
    {"Not", "not null", "null"},
    {"FalseAndNull", "false and null", "false"},
    {"NullAndFalse", "null and false", "false"},
    {"TrueAndNull", "true and null", "null"},
    {"NullAndNull", "null and null", "null"},
    {"TrueOrNull", "true or null", "true"},
    {"NullOrTrue", "null or true", "true"},
    {"FalseOrNull", "false or null", "null"},
    {"NullOrNull", "null or null", "null"},
    {"IifNullTakesElse", "IIF(null, 1, 2)", "2"},
    {"IifNullComparisonTakesElse", "IIF(Q.none > 5, 'big', 'small')", "'small'"},
};
INSTANTIATE_TEST_SUITE_P(NullOperators, Evaluates, ::testing::ValuesIn(kNullOperators),
                         testing::CaseName());

const Case kFunctions[] = {
    {"IifTrue", "IIF(true, 'a', 'b')", "'a'"},
    {"IifComparison", "IIF(1 > 2, 'a', 'b')", "'b'"},
    {"IifZeroIsFalse", "IIF(0, 'a', 'b')", "'b'"},
    {"IifTextIsNoCondition", "IIF('x', 'a', 'b')", "'b'"},
    {"IifAnyCase", "iif(Q.flag, 1, 2)", "1"},
    {"IsNullOfNull", "IsNull(Q.none)", "true"},
    {"IsNullOfEmptyText", "IsNull('')", "false"},
    {"IsNullOfZero", "ISNULL(0)", "false"},
    {"Coalesce", "Coalesce(Q.none, Discount, 0)", "0"},
    {"CoalesceFirst", "Coalesce(1, 2)", "1"},
    {"CoalesceAllNull", "Coalesce(null, Q.none)", "null"},
    {"Nvl", "Nvl(Q.none, 'x')", "'x'"},
    {"NvlNotNull", "Nvl(Q.name, 'x')", "'Ravi Kumar'"},
    {"FormatIndian", "Format(Q.amt, '#,##,##0.00')", "'1,234.50'"},
    {"FormatEmptyPattern", "Format(1234.5, '')", "'1234.5'"},
    {"FormatDateValue", "Format(#2024-03-31#, 'dd mmm yyyy')", "'31 Mar 2024'"},
    {"FormatBoolean", "Format(true, 'Yes;No')", "'Yes'"},
    {"FormatDate", "FormatDate(#2024-03-31#, 'dd/mm/yy')", "'31/03/24'"},
    {"FormatDateOfIsoText", "FormatDate('2024-03-31', 'dd.mm.yyyy')", "'31.03.2024'"},
    {"FormatDateOfNumber", "FormatDate(5, 'dd')", "'5'"},
    {"StrKeepsScale", "Str(12.50)", "'12.50'"},
    {"StrDate", "Str(#2024-03-31#)", "'31-03-2024'"},
    {"StrBoolean", "Str(true)", "'True'"},
    {"ValLeadingNumber", "Val('12abc')", "12"},
    {"ValBlanksAndSign", "Val('  -3.5 kg')", "-3.5"},
    {"ValNoNumber", "Val('abc')", "0"},
    {"ValStopsAtComma", "Val('1,234')", "1"},
    {"ValExponent", "Val('1e3x')", "1000"},
    {"ValLeadingPoint", "Val('.5')", "0.5"},
    {"ValOfNumber", "Val(7.5)", "7.5"},
    {"ToNumber", "ToNumber(' 12.5 ')", "12.5"},
    {"ToNumberOfWord", "ToNumber('12abc')", "null"},
    {"ToNumberOfNumber", "ToNumber(3)", "3"},
    {"ToNumberOfBoolean", "ToNumber(true)", "null"},
    {"Upper", "Upper('abc xyz')", "'ABC XYZ'"},
    {"UpperLeavesOtherScripts", "Upper('हीरो bike')", "'हीरो BIKE'"},
    {"Lower", "Lower('ABC')", "'abc'"},
    {"UpperOfNumber", "Upper(12.5)", "'12.5'"},
    {"Trim", "Trim('  a b  ')", "'a b'"},
    {"TrimTabsAndNewLines", "Trim(Chr(9) & 'a' & Chr(10))", "'a'"},
    {"LTrim", "LTrim('  a ')", "'a '"},
    {"RTrim", "RTrim('  a ')", "'  a'"},
    {"TrimOfNumber", "Trim(12)", "'12'"},
    {"Left", "Left('Hello', 2)", "'He'"},
    {"LeftCountsCharacters", "Left('हीरो होंडा', 4)", "'हीरो'"},
    {"LeftMoreThanLength", "Left('Hi', 10)", "'Hi'"},
    {"LeftZero", "Left('Hi', 0)", "''"},
    {"LeftNegative", "Left('Hi', -1)", "null"},
    {"LeftTruncatesCount", "Left('Hello', 2.9)", "'He'"},
    {"LeftCountAsText", "Left('Hello', '3')", "'Hel'"},
    {"Right", "Right('Hello', 3)", "'llo'"},
    {"RightCountsCharacters", "Right('₹500', 4)", "'₹500'"},
    {"RightMoreThanLength", "Right('Hi', 5)", "'Hi'"},
    {"Mid", "Mid('Hello', 2, 3)", "'ell'"},
    {"MidToEnd", "Mid('Hello', 2)", "'ello'"},
    {"MidPastEnd", "Mid('Hello', 9)", "''"},
    {"MidStartZero", "Mid('Hello', 0)", "null"},
    {"MidNegativeLength", "Mid('Hello', 1, -1)", "null"},
    {"MidCountsCharacters", "Mid('₹500', 2)", "'500'"},
    {"Len", "Len('Hello')", "5"},
    {"LenCountsCharacters", "Len('₹500')", "4"},
    {"LenEmpty", "Len('')", "0"},
    {"LenOfNumber", "Len(123.40)", "6"},
    {"Replace", "Replace('a-b-c', '-', '/')", "'a/b/c'"},
    {"ReplaceEmptyFind", "Replace('abc', '', 'x')", "'abc'"},
    {"ReplaceWithLonger", "Replace('aa', 'a', 'aa')", "'aaaa'"},
    {"InStr", "InStr('Hello', 'l')", "3"},
    {"InStrAbsent", "InStr('Hello', 'z')", "0"},
    {"InStrCountsCharacters", "InStr('₹500', '5')", "2"},
    {"InStrEmpty", "InStr('Hello', '')", "1"},
    {"RoundHalfUp", "Round(2.5)", "3"},
    {"RoundHalfAwayFromZero", "Round(-2.5)", "-3"},
    {"RoundExactOnDecimals", "Round(1.005, 2)", "1.01"},
    {"RoundTwoPlaces", "Round(1234.5678, 2)", "1234.57"},
    {"RoundToHundreds", "Round(1250, -2)", "1300"},
    {"RoundQuotient", "Round(1 / 3, 4)", "0.3333"},
    {"RoundAlreadyShort", "Round(1.5, 2)", "1.5"},
    {"RoundHugeDouble", "Round(1e40, 2)", "double 1e+40"},
    {"RoundText", "Round('2.345', 2)", "2.35"},
    {"RoundWord", "Round('abc')", "null"},
    {"Abs", "Abs(-5.50)", "5.50"},
    {"AbsPositive", "Abs(3)", "3"},
    {"AbsDouble", "Abs(-1e40)", "double 1e+40"},
    {"IntTowardsMinusInfinity", "Int(-2.5)", "-3"},
    {"IntPositive", "Int(2.5)", "2"},
    {"Trunc", "Trunc(-2.5)", "-2"},
    {"Ceil", "Ceil(2.1)", "3"},
    {"CeilNegative", "Ceil(-2.1)", "-2"},
    {"Floor", "Floor(-2.1)", "-3"},
    {"FloorWhole", "Floor(2.00)", "2"},
    {"Least", "Least(3, 1, 2)", "1"},
    {"Greatest", "Greatest(3, 1, 2)", "3"},
    {"LeastOne", "Least(7)", "7"},
    {"LeastTexts", "Least('b', 'a')", "'a'"},
    {"GreatestDates", "Greatest(#2024-01-01#, #2024-03-31#)", "date 31-03-2024"},
    {"LeastKeepsTheValue", "Least('10', 9)", "9"},
    {"LeastIncomparable", "Least(1, #2024-01-01#)", "null"},
    {"JoinTextDropsRepeatsAndBlanks",
     "JoinText(', ', 'Bhigwan Road', 'Baramati', null, ' ', 'BARAMATI ', 'Pune')",
     "'Bhigwan Road, Baramati, Pune'"},
    {"MonthYear", "MonthYear(7, 2024)", "'Jul 2024'"},
    {"MonthYearFromTexts", "MonthYear('12', '2025')", "'Dec 2025'"},
    {"MonthYearOutOfRange", "MonthYear(13, 2024)", "null"},
    {"JoinTextOfNothing", "JoinText(', ', null, '')", "''"},
    {"JoinTextNumbers", "JoinText('-', 411, 13)", "'411-13'"},
    {"Year", "Year(#2024-03-31#)", "2024"},
    {"Month", "Month(#2024-03-31#)", "3"},
    {"Day", "Day(#2024-03-31#)", "31"},
    {"YearOfIsoText", "Year('2024-03-31')", "2024"},
    {"YearOfNumber", "Year(5)", "null"},
    {"DayOfOldDate", "Day(#1899-12-29 06:00#)", "29"},
    {"DateAdd", "DateAdd(#2024-03-31#, 1)", "date 01-04-2024"},
    {"DateAddBack", "DateAdd(#2024-03-31#, -31)", "date 29-02-2024"},
    {"DateAddFraction", "DateAdd(#2024-03-31#, 0.5)", "date 31-03-2024 12:00"},
    {"DateAddAcrossDayZero", "DateAdd(#1899-12-30 06:00#, -1)", "date 29-12-1899 06:00"},
    {"DateAddWord", "DateAdd(#2024-03-31#, 'x')", "null"},
    {"DaysBetween", "DaysBetween(#2024-03-01#, #2024-03-31#)", "30"},
    {"DaysBetweenCalendarDays", "DaysBetween(#2024-03-31 23:00#, #2024-04-01 01:00#)", "1"},
    {"DaysBetweenBackwards", "DaysBetween(#2024-03-31#, #2024-03-01#)", "-30"},
    {"DaysBetweenIsoTexts", "DaysBetween('2024-01-01', '2025-01-01')", "366"},
    {"Today", "Today()", "date 01-04-2024"},
    {"AmountInWords", "AmountInWords(105000.5)", "'ONE LAC FIVE THOUSAND & PAISA FIFTY ONLY '"},
    {"AmountInWordsOfText", "AmountInWords('5')", "'FIVE ONLY'"},
    {"AmountInWordsOfWord", "AmountInWords('five')", "null"},
    {"Chr", "Chr(65)", "'A'"},
    {"ChrRupee", "Chr(8377)", "'₹'"},
    {"ChrNegative", "Chr(-1)", "null"},
    {"ChrZero", "Chr(0)", "null"},
    {"ChrSurrogate", "Chr(55296)", "null"},
    {"ChrBeyondUnicode", "Chr(1114112)", "null"},
    {"NamesIgnoreCase", "uPPER('a') & lower('B')", "'Ab'"},
};
INSTANTIATE_TEST_SUITE_P(Functions, Evaluates, ::testing::ValuesIn(kFunctions),
                         testing::CaseName());

// Null in every function: null in, null out, except where the function is about null (IsNull,
// Coalesce, Nvl, IIF) or makes display text (Format, FormatDate and Str give "").
const Case kNullFunctions[] = {
    {"IsNull", "IsNull(null)", "true"},
    {"Coalesce", "Coalesce(null, null, 3)", "3"},
    {"CoalesceOne", "Coalesce(null)", "null"},
    {"Nvl", "Nvl(null, 'x')", "'x'"},
    {"NvlBothNull", "Nvl(null, null)", "null"},
    {"IifBranch", "IIF(true, null, 1)", "null"},
    {"Format", "Format(null, '0.00')", "''"},
    {"FormatNullPattern", "Format(12.5, null)", "'12.5'"},
    {"FormatDate", "FormatDate(null, 'dd')", "''"},
    {"Str", "Str(null)", "''"},
    {"Val", "Val(null)", "null"},
    {"ToNumber", "ToNumber(null)", "null"},
    {"Upper", "Upper(null)", "null"},
    {"Lower", "Lower(null)", "null"},
    {"Trim", "Trim(null)", "null"},
    {"LTrim", "LTrim(null)", "null"},
    {"RTrim", "RTrim(null)", "null"},
    {"Left", "Left(null, 1)", "null"},
    {"LeftCount", "Left('a', null)", "null"},
    {"Right", "Right(null, 1)", "null"},
    {"RightCount", "Right('a', null)", "null"},
    {"Mid", "Mid(null, 1)", "null"},
    {"MidStart", "Mid('abc', null)", "null"},
    {"MidLength", "Mid('abc', 1, null)", "null"},
    {"Len", "Len(null)", "null"},
    {"Replace", "Replace(null, 'a', 'b')", "null"},
    {"ReplaceFind", "Replace('a', null, 'b')", "null"},
    {"ReplaceWith", "Replace('a', 'a', null)", "null"},
    {"InStr", "InStr(null, 'a')", "null"},
    {"InStrFind", "InStr('a', null)", "null"},
    {"Round", "Round(null)", "null"},
    {"RoundPlaces", "Round(1.5, null)", "null"},
    {"Abs", "Abs(null)", "null"},
    {"Int", "Int(null)", "null"},
    {"Trunc", "Trunc(null)", "null"},
    {"Ceil", "Ceil(null)", "null"},
    {"Floor", "Floor(null)", "null"},
    {"Least", "Least(1, null)", "null"},
    {"Greatest", "Greatest(null, 1)", "null"},
    {"Year", "Year(null)", "null"},
    {"Month", "Month(null)", "null"},
    {"Day", "Day(null)", "null"},
    {"DateAdd", "DateAdd(null, 1)", "null"},
    {"DateAddDays", "DateAdd(#2024-03-31#, null)", "null"},
    {"DaysBetween", "DaysBetween(null, #2024-03-31#)", "null"},
    {"DaysBetweenTo", "DaysBetween(#2024-03-31#, null)", "null"},
    {"AmountInWords", "AmountInWords(null)", "null"},
    {"Chr", "Chr(null)", "null"},
};
INSTANTIATE_TEST_SUITE_P(NullFunctions, Evaluates, ::testing::ValuesIn(kNullFunctions),
                         testing::CaseName());

struct ErrorCase {
  const char* name;
  const char* source;
  size_t offset;
  const char* message;  // a part of the message
  const char* hint;     // a part of the hint
};

class CompileError : public ::testing::TestWithParam<ErrorCase> {};

TEST_P(CompileError, ReportsWhereAndWhy) {
  Invoice invoice;
  try {
    Expression::Compile(GetParam().source, invoice.binder);
    FAIL() << "compiled: " << GetParam().source;
  } catch (const ExprError& e) {
    EXPECT_EQ(e.offset(), GetParam().offset) << e.message();
    EXPECT_THAT(e.message(), ::testing::HasSubstr(GetParam().message));
    EXPECT_THAT(e.hint(), ::testing::HasSubstr(GetParam().hint));
    EXPECT_EQ(std::string(e.what()), e.message());
  }
}

const ErrorCase kErrors[] = {
    {"Empty", "", 0, "the expression is empty", "Q.field"},
    {"Blank", "   ", 0, "the expression is empty", ""},
    {"UnknownFunction", "Trm(Q.name)", 0, "unknown function 'Trm'", "did you mean Trim?"},
    {"UnknownFunctionLater", "1 + Uper(Q.name)", 4, "unknown function 'Uper'",
     "did you mean Upper?"},
    {"FunctionFromAnotherLanguage", "Length('a')", 0, "unknown function", "did you mean Len?"},
    {"AggregateMisspelt", "Summ(Q.amt)", 0, "unknown function", "did you mean Sum?"},
    {"NothingClose", "Frobnicate(1)", 0, "unknown function", "docs/expressions.md"},
    {"TooFewArguments", "Left('abc')", 0, "Left takes 2 arguments, not 1", "Left(text, count)"},
    {"TooManyArguments", "Len('a', 'b')", 0, "Len takes 1 argument, not 2", "Len(text)"},
    {"ArgumentRange", "Mid('a')", 0, "Mid takes 2 or 3 arguments, not 1",
     "Mid(text, start[, count])"},
    {"TodayTakesNone", "Today(1)", 0, "Today takes 0 arguments, not 1", "Today()"},
    {"CoalesceNeedsOne", "Coalesce()", 0, "at least 1 argument", "Coalesce("},
    {"IifNeedsThree", "IIF(true, 1)", 0, "IIF takes 3 arguments", "IIF(condition, then, else)"},
    {"SystemValueCalled", "Page()", 0, "Page is a value, not a function", "without parentheses"},
    {"DateCalled", "Date()", 0, "Date is a value", "Today()"},
    {"UnclosedText", "'abc", 0, "the text is not closed", "twice"},
    {"UnclosedTextLater", "1 & \"abc", 4, "the text is not closed", "end it with \""},
    {"QuoteDoubledAtEnd", "'abc''", 0, "the text is not closed", ""},
    {"NotADate", "#2024-02-30#", 0, "#2024-02-30# is not a date", "#yyyy-mm-dd#"},
    {"UnclosedDate", "#2024-02-03", 0, "the date is not closed", ""},
    {"MissingCloseParen", "(1 + 2", 6, "expected ')' before the end", "offset 0"},
    {"ExtraCloseParen", "1 + 2)", 5, "unexpected ')'", "no '('"},
    {"MissingOperand", "1 +", 3, "ends too early", ""},
    {"OperatorFirst", "* 2", 0, "expected a value before '*'", ""},
    {"TwoValues", "1 2", 2, "expected an operator before '2'", "+ or &"},
    {"MissingComma", "Left('a' 1)", 9, "expected ',' or ')' before '1'", "Left"},
    {"TrailingComma", "Left('a', )", 10, "expected a value before ')'", ""},
    {"BangEquals", "1 != 2", 2, "unexpected '!'", "<>"},
    {"DoubleEquals", "1 == 2", 2, "unexpected '=='", "single ="},
    {"AndAnd", "true && false", 5, "unexpected '&&'", "and"},
    {"OrOr", "true || false", 5, "unexpected '|'", "or"},
    {"Brackets", "[Q.amt]", 0, "unexpected '['", "square brackets"},
    {"QuestionMark", "Q.flag ? 1 : 2", 7, "unexpected '?'", "IIF"},
    {"PercentSign", "5 % 2", 2, "unexpected '%'", "mod"},
    {"UnknownField", "Q.nope", 0, "no field Q.nope", "check the query's columns"},
    {"UnknownFieldLater", "1 + Q.nope", 4, "no field Q.nope", ""},
    {"FieldCaseIsKept", "q.amt", 0, "no field q.amt", ""},
    {"UnknownVariable", "1 + Nope", 4, "no variable Nope", "define it"},
    {"DottedCall", "Q.amt(1)", 0, "Q.amt is not a function", ""},
    {"ThreeParts", "a.b.c", 3, "at most two parts", ""},
    {"NothingAfterDot", "Q. + 1", 1, "a name must follow 'Q.'", ""},
    {"NumberOutOfRange", "1e999", 0, "out of range", ""},
    {"NestedAggregate", "Sum(1 + Count())", 8, "cannot contain another aggregate", ""},
    {"MinOfTwoValues", "Min(Q.amt, Q.qty)", 11, "the second argument of Min is a scope",
     "Least(a, b)"},
    {"MaxOfTwoValues", "Max(1, 2)", 7, "scope", "Greatest(a, b)"},
    {"SumWithNonScope", "Sum(Q.amt, 2)", 11, "scope", "\"group\""},
    {"SumOfThree", "Sum(1, 2, 3)", 0, "Sum takes 1 or 2 arguments, not 3", ""},
    {"SumOfNothing", "Sum()", 0, "Sum takes 1 or 2 arguments, not 0", ""},
    {"CountOfThree", "Count(1, 2, 3)", 0, "Count takes 0, 1 or 2 arguments", ""},
    {"FieldInsideAggregate", "Sum(Q.nope)", 4, "no field Q.nope", ""},
};
INSTANTIATE_TEST_SUITE_P(Table, CompileError, ::testing::ValuesIn(kErrors), testing::CaseName());

TEST(CompileErrorLimits, DeepNestingIsAnErrorNotACrash) {
  Invoice invoice;
  const std::string source = std::string(200, '(') + "1" + std::string(200, ')');
  try {
    Expression::Compile(source, invoice.binder);
    FAIL();
  } catch (const ExprError& e) {
    EXPECT_THAT(e.message(), ::testing::HasSubstr("nested too deeply"));
    EXPECT_LT(e.offset(), 200u);
  }
}

TEST(CompileErrorLimits, VeryLongChainsAreAnError) {
  Invoice invoice;
  std::string source = "1";
  for (int i = 0; i < 500; ++i) source += " + Q.amt";
  EXPECT_THROW(Expression::Compile(source, invoice.binder), ExprError);
}

TEST(CompileErrorLimits, ModeratelyLongExpressionsCompile) {
  Invoice invoice;
  std::string source = "0";
  for (int i = 0; i < 150; ++i) source += " + Q.qty";
  EXPECT_EQ(Describe(invoice.Eval(source)), "300");
  const std::string nested = std::string(40, '(') + "1" + std::string(40, ')');
  EXPECT_EQ(Describe(invoice.Eval(nested)), "1");
}

TEST(Binding, QualifiedNameFallsBackToVariable) {
  Invoice invoice;
  EXPECT_EQ(Describe(invoice.Eval("Report.Title")), "'Sales Register'");
  const auto expression = Expression::Compile("Report.Title & Q.name", invoice.binder);
  EXPECT_EQ(expression->fields().size(), 1u) << "only Q.name is a field";
}

TEST(Binding, FieldsAreListedOnceInOrder) {
  Invoice invoice;
  const int amt = invoice.binder.AddField("Q.amt");
  const int qty = invoice.binder.AddField("Q.qty");
  const auto expression = Expression::Compile("Q.qty * Q.amt + Q.qty", invoice.binder);
  EXPECT_EQ(expression->fields(), (std::vector<int>{qty, amt}));
}

TEST(Binding, ConstantsFoldAndKnowIt) {
  Invoice invoice;
  const auto constant = Expression::Compile("Upper('a') & 'b' & Round(1 / 3, 2)", invoice.binder);
  EXPECT_TRUE(constant->IsConstant());
  EXPECT_EQ(Describe(constant->Evaluate(invoice.context)), "'Ab0.33'");
  EXPECT_FALSE(Expression::Compile("Q.amt + 1", invoice.binder)->IsConstant());
  EXPECT_FALSE(Expression::Compile("Company", invoice.binder)->IsConstant());
  EXPECT_FALSE(Expression::Compile("Page", invoice.binder)->IsConstant());
  EXPECT_FALSE(Expression::Compile("Today()", invoice.binder)->IsConstant());
  EXPECT_FALSE(Expression::Compile("IIF(true, 1, Q.amt)", invoice.binder)->IsConstant());
  EXPECT_FALSE(Expression::Compile("Sum(1)", invoice.binder)->IsConstant());
}

TEST(Binding, UsesSystemValues) {
  Invoice invoice;
  const auto pages = Expression::Compile("'Page ' & Page & ' of ' & TotalPages", invoice.binder);
  EXPECT_TRUE(pages->Uses(SystemValue::kPage));
  EXPECT_TRUE(pages->Uses(SystemValue::kTotalPages));
  EXPECT_FALSE(pages->Uses(SystemValue::kDate));
  EXPECT_TRUE(Expression::Compile("Today()", invoice.binder)->Uses(SystemValue::kDate));
  EXPECT_FALSE(Expression::Compile("Q.amt", invoice.binder)->Uses(SystemValue::kPage));
}

TEST(Binding, KeepsTheSource) {
  Invoice invoice;
  EXPECT_EQ(Expression::Compile(" Q.amt * 2 ", invoice.binder)->source(), " Q.amt * 2 ");
}

// A context that counts the fields read, to show which branches are skipped.
class CountingContext : public FakeContext {
 public:
  Value Field(int id) const override {
    ++reads;
    return FakeContext::Field(id);
  }
  mutable int reads = 0;
};

TEST(Evaluation, OnlyTheChosenBranchIsEvaluated) {
  Invoice invoice;
  CountingContext context;
  context.fields = invoice.context.fields;
  auto reads = [&](const char* source) {
    context.reads = 0;
    Expression::Compile(source, invoice.binder)->Evaluate(context);
    return context.reads;
  };
  EXPECT_EQ(reads("IIF(true, Q.amt, Q.qty + Q.qty)"), 1);
  EXPECT_EQ(reads("IIF(false, Q.amt, Q.qty + Q.qty)"), 2);
  EXPECT_EQ(reads("false and Q.flag"), 0);
  EXPECT_EQ(reads("true or Q.flag"), 0);
  EXPECT_EQ(reads("Coalesce(1, Q.amt)"), 0);
}

class ThrowingContext : public FakeContext {
 public:
  Value Field(int) const override { throw std::runtime_error("broken data"); }
};

TEST(Evaluation, NeverThrows) {
  Invoice invoice;
  const auto expression = Expression::Compile("Q.amt + 1", invoice.binder);
  EXPECT_TRUE(expression->Evaluate(ThrowingContext()).is_null());
}

TEST(Evaluation, ExactMoneySumThroughExpressions) {
  Invoice invoice;
  const int total_id = invoice.binder.AddVariable("Total");
  const auto add = Expression::Compile("Total + Q.amt", invoice.binder);
  // Running total = total + amount, 3,000 times, as a report variable would accumulate.
  Value total = Value::Integer(0);
  int64_t paise = 0;
  for (int i = 0; i < 3000; ++i) {
    const int64_t amount = 123456 + i % 997;
    invoice.context.variables[total_id] = total;
    invoice.context.fields[invoice.binder.AddField("Q.amt")] =
        Value::Number(Decimal::FromMantissa(amount, 2));
    total = add->Evaluate(invoice.context);
    paise += amount;
  }
  EXPECT_EQ(total.kind(), Value::Kind::kDecimal);
  EXPECT_EQ(total.decimal().mantissa(), static_cast<Int128>(paise));
  EXPECT_EQ(total.decimal().scale(), 2);
}

TEST(Aggregates, BindTheArgumentAsItsOwnExpression) {
  Invoice invoice;
  invoice.context.aggregates[1000] = N("99.50");
  const auto sum = Expression::Compile("Sum(Q.amt * Q.qty)", invoice.binder);
  ASSERT_EQ(invoice.binder.aggregates.size(), 1u);
  const auto& call = invoice.binder.aggregates[0];
  EXPECT_EQ(call.kind, AggregateKind::kSum);
  EXPECT_EQ(call.scope, "");
  ASSERT_NE(call.argument, nullptr);
  EXPECT_EQ(call.argument->source(), "Q.amt * Q.qty");
  EXPECT_EQ(Describe(call.argument->Evaluate(invoice.context)), "2469.00");
  EXPECT_EQ(Describe(sum->Evaluate(invoice.context)), "99.50");
  EXPECT_TRUE(sum->fields().empty()) << "fields inside aggregates are the argument's";
  EXPECT_EQ(call.argument->fields().size(), 2u);
}

struct AggregateCase {
  const char* name;
  const char* source;
  AggregateKind kind;
  const char* argument;  // its source, or "" for none
  const char* scope;
};

class AggregateCall : public ::testing::TestWithParam<AggregateCase> {};

TEST_P(AggregateCall, Binds) {
  Invoice invoice;
  Expression::Compile(GetParam().source, invoice.binder);
  ASSERT_EQ(invoice.binder.aggregates.size(), 1u);
  const auto& call = invoice.binder.aggregates[0];
  EXPECT_EQ(call.kind, GetParam().kind);
  EXPECT_EQ(call.argument ? call.argument->source() : "", GetParam().argument);
  EXPECT_EQ(call.scope, GetParam().scope);
}

const AggregateCase kAggregates[] = {
    {"Sum", "Sum(Q.amt)", AggregateKind::kSum, "Q.amt", ""},
    {"SumAnyCase", "SUM(Q.amt)", AggregateKind::kSum, "Q.amt", ""},
    {"SumScopeName", "Sum(Q.amt, group)", AggregateKind::kSum, "Q.amt", "group"},
    {"SumScopeText", "Sum(Q.amt, 'MasterData1')", AggregateKind::kSum, "Q.amt", "MasterData1"},
    {"SumParenthesised", "Sum( (Q.amt) )", AggregateKind::kSum, "(Q.amt)", ""},
    {"SumScopeSystemWord", "Sum(Q.amt, Page)", AggregateKind::kSum, "Q.amt", "Page"},
    {"CountRows", "Count()", AggregateKind::kCount, "", ""},
    {"CountRowsInScope", "Count('group')", AggregateKind::kCount, "", "group"},
    {"CountValues", "Count(Q.amt)", AggregateKind::kCount, "Q.amt", ""},
    {"CountValuesInScope", "Count(Q.amt, report)", AggregateKind::kCount, "Q.amt", "report"},
    {"Avg", "Avg(Q.amt)", AggregateKind::kAvg, "Q.amt", ""},
    {"Min", "Min(Q.dt)", AggregateKind::kMin, "Q.dt", ""},
    {"MaxInScope", "Max(Q.dt, \"page\")", AggregateKind::kMax, "Q.dt", "page"},
};
INSTANTIATE_TEST_SUITE_P(Table, AggregateCall, ::testing::ValuesIn(kAggregates),
                         testing::CaseName());

TEST(Aggregates, SeveralInOneExpression) {
  Invoice invoice;
  invoice.context.aggregates[1000] = Value::Integer(10);
  invoice.context.aggregates[1001] = Value::Integer(4);
  const auto average = Expression::Compile("Q.qty + Sum(Q.amt) / Count()", invoice.binder);
  EXPECT_EQ(invoice.binder.aggregates.size(), 2u);
  EXPECT_EQ(Describe(average->Evaluate(invoice.context)), "4.5");
  EXPECT_EQ(average->fields().size(), 1u);
}

TEST(Aggregates, NullAggregateIsNull) {
  Invoice invoice;
  EXPECT_EQ(Describe(invoice.Eval("Sum(Q.amt) + 1")), "null");
  EXPECT_EQ(Describe(invoice.Eval("Nvl(Sum(Q.amt), 0)")), "0");
}

}  // namespace
}  // namespace vantorel::report::expr
