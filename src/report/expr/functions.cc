#include "report/expr/functions.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "report/expr/int128.h"
#include "report/expr/operators.h"
#include "report/expr/text_util.h"
#include "words/amount_in_words.h"

namespace vantorel::report::expr {
namespace {

using Kind = Value::Kind;

constexpr FunctionInfo kFunctions[] = {
    {"IIF", Function::kIif, 3, 3, "IIF(condition, then, else)"},
    {"IsNull", Function::kIsNull, 1, 1, "IsNull(value)"},
    {"Coalesce", Function::kCoalesce, 1, kAnyNumber, "Coalesce(value, value, ...)"},
    {"Nvl", Function::kCoalesce, 2, 2, "Nvl(value, replacement)"},
    {"Format", Function::kFormat, 2, 2, "Format(value, pattern)"},
    {"FormatDate", Function::kFormatDate, 2, 2, "FormatDate(date, pattern)"},
    {"Str", Function::kStr, 1, 1, "Str(value)"},
    {"Val", Function::kVal, 1, 1, "Val(text)"},
    {"ToNumber", Function::kToNumber, 1, 1, "ToNumber(value)"},
    {"Upper", Function::kUpper, 1, 1, "Upper(text)"},
    {"Lower", Function::kLower, 1, 1, "Lower(text)"},
    {"Trim", Function::kTrim, 1, 1, "Trim(text)"},
    {"LTrim", Function::kLTrim, 1, 1, "LTrim(text)"},
    {"RTrim", Function::kRTrim, 1, 1, "RTrim(text)"},
    {"Left", Function::kLeft, 2, 2, "Left(text, count)"},
    {"Right", Function::kRight, 2, 2, "Right(text, count)"},
    {"Mid", Function::kMid, 2, 3, "Mid(text, start[, count])"},
    {"Len", Function::kLen, 1, 1, "Len(text)"},
    {"Replace", Function::kReplace, 3, 3, "Replace(text, find, replacement)"},
    {"InStr", Function::kInStr, 2, 2, "InStr(text, find)"},
    {"Round", Function::kRound, 1, 2, "Round(number[, decimals])"},
    {"Abs", Function::kAbs, 1, 1, "Abs(number)"},
    {"Int", Function::kInt, 1, 1, "Int(number)"},
    {"Trunc", Function::kTrunc, 1, 1, "Trunc(number)"},
    {"Ceil", Function::kCeil, 1, 1, "Ceil(number)"},
    {"Floor", Function::kFloor, 1, 1, "Floor(number)"},
    {"Least", Function::kLeast, 1, kAnyNumber, "Least(value, value, ...)"},
    {"Greatest", Function::kGreatest, 1, kAnyNumber, "Greatest(value, value, ...)"},
    {"JoinText", Function::kJoinText, 2, kAnyNumber, "JoinText(separator, text, text, ...)"},
    {"Year", Function::kYear, 1, 1, "Year(date)"},
    {"Month", Function::kMonth, 1, 1, "Month(date)"},
    {"Day", Function::kDay, 1, 1, "Day(date)"},
    {"DateAdd", Function::kDateAdd, 2, 2, "DateAdd(date, days)"},
    {"DaysBetween", Function::kDaysBetween, 2, 2, "DaysBetween(from, to)"},
    {"Today", Function::kToday, 0, 0, "Today()"},
    {"AmountInWords", Function::kAmountInWords, 1, 1, "AmountInWords(amount)"},
    {"Chr", Function::kChr, 1, 1, "Chr(code)"},
    {"MonthYear", Function::kMonthYear, 2, 2, "MonthYear(month, year)"},
};

// Names other languages use for our functions, suggested in hints.
struct Alias {
  std::string_view name, ours;
};
constexpr Alias kAliases[] = {
    {"if", "IIF"},        {"length", "Len"},       {"substr", "Mid"},
    {"substring", "Mid"}, {"ucase", "Upper"},      {"lcase", "Lower"},
    {"cstr", "Str"},      {"cdbl", "ToNumber"},    {"ifnull", "Nvl"},
    {"nz", "Nvl"},        {"isnothing", "IsNull"}, {"concat", "&"},
    {"ceiling", "Ceil"},  {"fix", "Trunc"},        {"datediff", "DaysBetween"},
};

constexpr std::string_view kAggregateNames[] = {"Sum", "Count", "Avg", "Min", "Max"};

constexpr std::string_view kBlanks = " \t\r\n";

std::string_view TrimLeft(std::string_view s) {
  const size_t first = s.find_first_not_of(kBlanks);
  return first == std::string_view::npos ? std::string_view() : s.substr(first);
}

std::string_view TrimRight(std::string_view s) {
  const size_t last = s.find_last_not_of(kBlanks);
  return last == std::string_view::npos ? std::string_view() : s.substr(0, last + 1);
}

// The number at the start of "text": blanks, a sign, digits, a point and digits, an exponent.
Value LeadingNumber(std::string_view text) {
  text = TrimLeft(text);
  size_t i = 0;
  auto digits = [&] {
    const size_t begin = i;
    while (i < text.size() && text[i] >= '0' && text[i] <= '9') ++i;
    return i - begin;
  };
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
  size_t count = digits();
  if (i < text.size() && text[i] == '.') {
    ++i;
    count += digits();
  }
  if (count == 0) return Value::Integer(0);
  const size_t mantissa_end = i;
  if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
    ++i;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
    if (digits() == 0) i = mantissa_end;
  }
  std::string_view number = text.substr(0, i);
  if (!number.empty() && number.back() == '.') number.remove_suffix(1);
  auto value = ParseNumber(number);
  return value ? std::move(*value) : Value::Integer(0);
}

Value WholeNumber(const Value& number, int direction) {
  // direction: -1 floor, 0 towards zero, 1 ceiling.
  if (number.kind() == Kind::kDecimal) {
    const Decimal& d = number.decimal();
    const Int128 divisor = kPow10[d.scale()];
    Int128 q = d.mantissa() / divisor;
    const Int128 r = d.mantissa() % divisor;
    if (direction < 0 && r < 0) --q;
    if (direction > 0 && r > 0) ++q;
    return Value::Number(Decimal::FromMantissa(q, 0));
  }
  const double x = number.number();
  return Value::Number(direction < 0   ? std::floor(x)
                       : direction > 0 ? std::ceil(x)
                                       : std::trunc(x));
}

Value RoundNumber(const Value& number, int64_t decimals) {
  const int places = static_cast<int>(std::clamp<int64_t>(decimals, -40, 40));
  if (number.kind() == Kind::kDecimal) return Value::Number(number.decimal().Round(places));
  const double x = number.number();
  // Doubles that have no decimal form are beyond 10^20 (already whole) or tiny.
  if (std::fabs(x) >= 9007199254740992.0 && places >= 0) return number;
  const double scale = std::pow(10.0, places);
  return Value::Number(std::round(x * scale) / scale);
}

Value DatePart(const Value& value, Function which) {
  const auto date = ToDate(value);
  if (!date) return Value();
  const Date::Parts p = date->ToParts();
  return Value::Integer(which == Function::kYear    ? p.year
                        : which == Function::kMonth ? p.month
                                                    : p.day);
}

std::string AsText(const Value& value) { return DisplayText(value); }

Value Substring(const std::string& text, size_t first_char, size_t char_count) {
  const size_t begin = ByteOffsetOfChar(text, first_char);
  const std::string_view rest = std::string_view(text).substr(begin);
  const size_t end = ByteOffsetOfChar(rest, char_count);
  return Value::Text(std::string(rest.substr(0, end)));
}

Value Replace(const std::string& text, const std::string& find, const std::string& with) {
  if (find.empty()) return Value::Text(text);
  std::string out;
  size_t pos = 0;
  for (size_t hit; (hit = text.find(find, pos)) != std::string::npos; pos = hit + find.size()) {
    out.append(text, pos, hit - pos);
    out += with;
  }
  out.append(text, pos, std::string::npos);
  return Value::Text(std::move(out));
}

}  // namespace

const FunctionInfo* FindFunction(std::string_view name) {
  for (const FunctionInfo& info : kFunctions) {
    if (EqualsIgnoreCase(info.name, name)) return &info;
  }
  return nullptr;
}

std::string ClosestName(std::string_view name) {
  for (const Alias& alias : kAliases) {
    if (EqualsIgnoreCase(alias.name, name)) return std::string(alias.ours);
  }
  std::string_view best;
  size_t best_distance = 3;
  auto consider = [&](std::string_view candidate) {
    const size_t d = EditDistance(name, candidate);
    if (d < best_distance && d < name.size()) {
      best = candidate;
      best_distance = d;
    }
  };
  for (const FunctionInfo& info : kFunctions) consider(info.name);
  for (const std::string_view aggregate : kAggregateNames) consider(aggregate);
  return std::string(best);
}

Value CallPlain(Function function, const Value* args, int count) {
  // The display functions show null as an empty text and IsNull answers for it; every other
  // function gives null when an argument is null.
  switch (function) {
    case Function::kIsNull:
      return Value::Bool(args[0].is_null());
    case Function::kStr:
      return Value::Text(DisplayText(args[0]));
    case Function::kFormat:
      return Value::Text(FormatValue(args[0], DisplayText(args[1])));
    case Function::kFormatDate: {
      if (args[0].is_null()) return Value::Text({});
      const auto date = ToDate(args[0]);
      return Value::Text(date ? FormatValue(Value::FromDate(*date), DisplayText(args[1]))
                              : DisplayText(args[0]));
    }
    default:
      break;
  }
  for (int i = 0; i < count; ++i) {
    if (args[i].is_null()) return Value();
  }

  switch (function) {
    case Function::kVal:
      return args[0].is_number() ? args[0] : LeadingNumber(AsText(args[0]));
    case Function::kToNumber:
      return ToNumber(args[0]);
    case Function::kUpper:
    case Function::kLower: {
      std::string text = AsText(args[0]);
      for (char& c : text) c = function == Function::kUpper ? AsciiUpper(c) : AsciiLower(c);
      return Value::Text(std::move(text));
    }
    case Function::kTrim:
      return Value::Text(std::string(TrimRight(TrimLeft(AsText(args[0])))));
    case Function::kLTrim:
      return Value::Text(std::string(TrimLeft(AsText(args[0]))));
    case Function::kRTrim:
      return Value::Text(std::string(TrimRight(AsText(args[0]))));
    case Function::kLeft:
    case Function::kRight: {
      const auto n = ToInteger(args[1]);
      if (!n || *n < 0) return Value();
      const std::string text = AsText(args[0]);
      const size_t length = CharCount(text);
      const auto take = std::min(static_cast<size_t>(*n), length);
      return Substring(text, function == Function::kLeft ? 0 : length - take, take);
    }
    case Function::kMid: {
      const auto start = ToInteger(args[1]);
      const auto n = count == 3 ? ToInteger(args[2]) : std::optional<int64_t>(INT64_MAX);
      if (!start || *start < 1 || !n || *n < 0) return Value();
      return Substring(AsText(args[0]), static_cast<size_t>(*start - 1), static_cast<size_t>(*n));
    }
    case Function::kLen:
      return Value::Integer(static_cast<int64_t>(CharCount(AsText(args[0]))));
    case Function::kReplace:
      return Replace(AsText(args[0]), AsText(args[1]), AsText(args[2]));
    case Function::kInStr: {
      const std::string text = AsText(args[0]);
      const size_t hit = text.find(AsText(args[1]));
      if (hit == std::string::npos) return Value::Integer(0);
      return Value::Integer(static_cast<int64_t>(CharCount(std::string_view(text).substr(0, hit))) +
                            1);
    }
    case Function::kRound: {
      const Value x = ToNumber(args[0]);
      const auto decimals = count == 2 ? ToInteger(args[1]) : std::optional<int64_t>(0);
      if (x.is_null() || !decimals) return Value();
      return RoundNumber(x, *decimals);
    }
    case Function::kAbs: {
      Value x = ToNumber(args[0]);
      if (x.kind() == Kind::kDecimal && x.decimal().mantissa() < 0) return Negate(x);
      if (x.kind() == Kind::kDouble) return Value::Number(std::fabs(x.number()));
      return x;
    }
    case Function::kInt:
    case Function::kFloor:
    case Function::kTrunc:
    case Function::kCeil: {
      const Value x = ToNumber(args[0]);
      if (x.is_null()) return Value();
      const int direction = function == Function::kCeil ? 1 : function == Function::kTrunc ? 0 : -1;
      return WholeNumber(x, direction);
    }
    case Function::kYear:
    case Function::kMonth:
    case Function::kDay:
      return DatePart(args[0], function);
    case Function::kDateAdd: {
      const auto date = ToDate(args[0]);
      const Value days = ToNumber(args[1]);
      if (!date || days.is_null()) return Value();
      return AddDays(*date, days.number());
    }
    case Function::kDaysBetween: {
      const auto from = ToDate(args[0]);
      const auto to = ToDate(args[1]);
      if (!from || !to) return Value();
      return Value::Integer(CalendarDaysFrom(*from, *to));
    }
    case Function::kAmountInWords: {
      const Value x = ToNumber(args[0]);
      if (x.is_null()) return Value();
      try {
        return Value::Text(AmountInWords(x.number()));
      } catch (...) {
        return Value();
      }
    }
    case Function::kChr: {
      const auto code = ToInteger(args[0]);
      std::string text;
      if (!code || *code == 0 || !AppendUtf8(text, *code)) return Value();
      return Value::Text(std::move(text));
    }
    case Function::kMonthYear: {
      // A vehicle's month of manufacture as its papers write it: "Jul 2024".
      static constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
      const auto month = ToInteger(args[0]);
      const auto year = ToInteger(args[1]);
      if (!month || !year || *month < 1 || *month > 12) return Value();
      return Value::Text(std::string(kMonths[*month - 1]) + " " + std::to_string(*year));
    }
    default:
      return Value();
  }
}

}  // namespace vantorel::report::expr
