#include "report/expr/operators.h"

#include <charconv>
#include <cmath>
#include <string>

#include "report/expr/int128.h"

namespace vantorel::report::expr {
namespace {

using Kind = Value::Kind;

std::string_view TrimBlanks(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) return {};
  const size_t last = text.find_last_not_of(" \t\r\n");
  return text.substr(first, last - first + 1);
}

// Automation dates count whole days backwards before day 0 while the time of day still counts
// forwards; arithmetic works on a plain timeline of days instead.
double ToTimeline(double serial) {
  if (serial >= 0) return serial;
  const double whole = std::trunc(serial);
  return whole + (whole - serial);
}

double FromTimeline(double days) {
  if (days >= 0) return days;
  const double whole = std::floor(days);
  return whole - (days - whole);
}

enum class Arith { kAdd, kSubtract, kMultiply, kDivide, kModulo };

std::optional<Decimal> DecimalModulo(const Decimal& a, const Decimal& b) {
  const int scale = std::max(a.scale(), b.scale());
  Int128 x = 0, y = 0;
  if (!CheckedScaleUp(a.mantissa(), scale - a.scale(), x) ||
      !CheckedScaleUp(b.mantissa(), scale - b.scale(), y) || y == 0) {
    return std::nullopt;
  }
  return Decimal::FromMantissa(x % y, scale);
}

// Both operands are numbers. Decimals stay exact where they can; otherwise the double result is
// kept (as a decimal again when it has a short form), and a non-finite one is null.
Value NumberArith(Arith op, const Value& a, const Value& b) {
  if (a.kind() == Kind::kDecimal && b.kind() == Kind::kDecimal) {
    const Decimal& x = a.decimal();
    const Decimal& y = b.decimal();
    std::optional<Decimal> exact;
    switch (op) {
      case Arith::kAdd:
        exact = Decimal::Add(x, y);
        break;
      case Arith::kSubtract:
        exact = Decimal::Subtract(x, y);
        break;
      case Arith::kMultiply:
        exact = Decimal::Multiply(x, y);
        break;
      case Arith::kDivide:
        if (y.mantissa() == 0) return Value();
        exact = Decimal::Divide(x, y);
        break;
      case Arith::kModulo:
        if (y.mantissa() == 0) return Value();
        exact = DecimalModulo(x, y);
        break;
    }
    if (exact) return Value::Number(*exact);
  }
  const double x = a.number();
  const double y = b.number();
  switch (op) {
    case Arith::kAdd:
      return Value::Number(x + y);
    case Arith::kSubtract:
      return Value::Number(x - y);
    case Arith::kMultiply:
      return Value::Number(x * y);
    case Arith::kDivide:
      return y == 0 ? Value() : Value::Number(x / y);
    case Arith::kModulo:
      return y == 0 ? Value() : Value::Number(std::fmod(x, y));
  }
  return Value();
}

Value NumericOnly(Arith op, const Value& a, const Value& b) {
  if (a.is_number() && b.is_number()) return NumberArith(op, a, b);
  const Value x = ToNumber(a);
  const Value y = ToNumber(b);
  if (x.is_null() || y.is_null()) return Value();
  return NumberArith(op, x, y);
}

int CompareNumbers(const Value& a, const Value& b) {
  if (a.kind() == Kind::kDecimal && b.kind() == Kind::kDecimal) {
    return Decimal::Compare(a.decimal(), b.decimal());
  }
  // A double against a decimal: by the double's shortest decimal form when it has one.
  const Value& d = a.kind() == Kind::kDouble ? b : a;
  const Value& x = a.kind() == Kind::kDouble ? a : b;
  if (d.kind() == Kind::kDecimal) {
    if (const auto exact = Decimal::FromDouble(x.number())) {
      const int c = Decimal::Compare(d.decimal(), *exact);
      return a.kind() == Kind::kDecimal ? c : -c;
    }
  }
  const double p = a.number();
  const double q = b.number();
  return (p > q) - (p < q);
}

int CompareTexts(std::string_view a, std::string_view b) {
  const int c = a.compare(b);
  return (c > 0) - (c < 0);
}

int CompareDates(Date a, Date b) {
  const double p = ToTimeline(a.serial);
  const double q = ToTimeline(b.serial);
  return (p > q) - (p < q);
}

}  // namespace

std::optional<Value> ParseNumber(std::string_view text) {
  text = TrimBlanks(text);
  if (text.empty()) return std::nullopt;
  if (const auto exact = Decimal::Parse(text)) return Value::Number(*exact);
  if (text[0] == '+') text.remove_prefix(1);
  double value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size() ||
      !std::isfinite(value)) {
    return std::nullopt;
  }
  return Value::Number(value);
}

Value ToNumber(const Value& value) {
  if (value.is_number()) return value;
  if (value.kind() == Kind::kText) {
    if (auto number = ParseNumber(value.text())) return std::move(*number);
  }
  return Value();
}

std::optional<int64_t> ToInteger(const Value& value) {
  const Value number = ToNumber(value);
  if (number.is_null()) return std::nullopt;
  const double x = std::trunc(number.number());
  if (!(std::fabs(x) <= 9007199254740992.0)) return std::nullopt;
  return static_cast<int64_t>(x);
}

std::optional<Date> ToDate(const Value& value) {
  if (value.kind() == Kind::kDate) return value.date();
  if (value.kind() == Kind::kText) return Date::FromIso(TrimBlanks(value.text()));
  return std::nullopt;
}

std::optional<bool> Truth(const Value& value) {
  switch (value.kind()) {
    case Kind::kBool:
      return value.boolean();
    case Kind::kDecimal:
      return value.decimal().mantissa() != 0;
    case Kind::kDouble:
      return value.number() != 0;
    default:
      return std::nullopt;
  }
}

Value AddDays(Date date, double days) {
  if (!std::isfinite(days)) return Value();
  return Value::FromDate(Date{FromTimeline(ToTimeline(date.serial) + days)});
}

double DaysFrom(Date from, Date to) { return ToTimeline(to.serial) - ToTimeline(from.serial); }

int64_t CalendarDaysFrom(Date from, Date to) {
  return static_cast<int64_t>(std::floor(ToTimeline(to.serial)) -
                              std::floor(ToTimeline(from.serial)));
}

Value Negate(const Value& a) {
  const Value x = ToNumber(a);
  if (x.kind() == Kind::kDecimal) {
    return Value::Number(Decimal::FromMantissa(-x.decimal().mantissa(), x.decimal().scale()));
  }
  if (x.kind() == Kind::kDouble) return Value::Number(-x.number());
  return Value();
}

Value Add(const Value& a, const Value& b) {
  if (a.is_null() || b.is_null()) return Value();
  if (a.is_number() && b.is_number()) return NumberArith(Arith::kAdd, a, b);
  if (a.kind() == Kind::kText && b.kind() == Kind::kText) return Value::Text(a.text() + b.text());
  const Value x = ToNumber(a);
  const Value y = ToNumber(b);
  if (a.kind() == Kind::kDate && !y.is_null()) return AddDays(a.date(), y.number());
  if (b.kind() == Kind::kDate && !x.is_null()) return AddDays(b.date(), x.number());
  if (!x.is_null() && !y.is_null()) return NumberArith(Arith::kAdd, x, y);
  // A text that is not a number joins the other side as text.
  if (a.kind() == Kind::kText || b.kind() == Kind::kText) return Concat(a, b);
  return Value();
}

Value Subtract(const Value& a, const Value& b) {
  if (a.kind() == Kind::kDate) {
    if (b.kind() == Kind::kDate) return Value::Number(DaysFrom(b.date(), a.date()));
    const Value y = ToNumber(b);
    return y.is_null() ? Value() : AddDays(a.date(), -y.number());
  }
  return NumericOnly(Arith::kSubtract, a, b);
}

Value Multiply(const Value& a, const Value& b) { return NumericOnly(Arith::kMultiply, a, b); }

Value Divide(const Value& a, const Value& b) { return NumericOnly(Arith::kDivide, a, b); }

Value Modulo(const Value& a, const Value& b) { return NumericOnly(Arith::kModulo, a, b); }

Value Concat(const Value& a, const Value& b) {
  return Value::Text(DisplayText(a) + DisplayText(b));
}

std::optional<int> Compare(const Value& a, const Value& b) {
  if (a.is_null() || b.is_null()) return std::nullopt;
  if (a.is_number() && b.is_number()) return CompareNumbers(a, b);
  if (a.kind() == b.kind()) {
    switch (a.kind()) {
      case Kind::kText:
        return CompareTexts(a.text(), b.text());
      case Kind::kDate:
        return CompareDates(a.date(), b.date());
      case Kind::kBool:
        return static_cast<int>(a.boolean()) - static_cast<int>(b.boolean());
      default:
        return std::nullopt;
    }
  }
  // A number or a date against a text: as numbers or dates when the text is one, else as texts.
  const bool text_first = a.kind() == Kind::kText;
  const Value& text = text_first ? a : b;
  const Value& other = text_first ? b : a;
  if (text.kind() != Kind::kText) return std::nullopt;
  std::optional<int> c;
  if (other.is_number()) {
    const Value number = ToNumber(text);
    if (!number.is_null()) c = CompareNumbers(other, number);
  } else if (other.kind() == Kind::kDate) {
    if (const auto date = ToDate(text)) c = CompareDates(other.date(), *date);
  } else {
    return std::nullopt;
  }
  if (!c) c = CompareTexts(DisplayText(other), text.text());
  return text_first ? -*c : *c;
}

}  // namespace vantorel::report::expr
