#include "report/expr/value.h"

#include <charconv>
#include <cmath>

#include "report/expr/text_util.h"

namespace vantorel::report::expr {

Value Value::Bool(bool value) {
  Value v;
  v.kind_ = Kind::kBool;
  v.boolean_ = value;
  return v;
}

Value Value::Number(Decimal value) {
  Value v;
  v.kind_ = Kind::kDecimal;
  v.decimal_ = value;
  return v;
}

Value Value::Number(double value) {
  if (const auto exact = Decimal::FromDouble(value)) return Number(*exact);
  Value v;
  if (!std::isfinite(value)) return v;
  v.kind_ = Kind::kDouble;
  v.real_ = value;
  return v;
}

Value Value::Integer(int64_t value) { return Number(Decimal::FromInt(value)); }

Value Value::Text(std::string utf8) {
  Value v;
  v.kind_ = Kind::kText;
  v.text_ = std::move(utf8);
  return v;
}

Value Value::FromDate(Date value) {
  Value v;
  if (!value.IsValid()) return v;
  v.kind_ = Kind::kDate;
  v.real_ = value.serial;
  return v;
}

double Value::number() const {
  if (kind_ == Kind::kDecimal) return decimal_.ToDouble();
  if (kind_ == Kind::kDouble) return real_;
  return 0;
}

bool operator==(const Value& a, const Value& b) {
  if (a.kind_ != b.kind_) return false;
  switch (a.kind_) {
    case Value::Kind::kNull:
      return true;
    case Value::Kind::kBool:
      return a.boolean_ == b.boolean_;
    case Value::Kind::kDecimal:
      return Decimal::Compare(a.decimal_, b.decimal_) == 0;
    case Value::Kind::kDouble:
    case Value::Kind::kDate:
      return a.real_ == b.real_;
    case Value::Kind::kText:
      return a.text_ == b.text_;
  }
  return false;
}

std::string DisplayText(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::kNull:
      return {};
    case Value::Kind::kBool:
      return value.boolean() ? "True" : "False";
    case Value::Kind::kDecimal:
      return value.decimal().ToString();
    case Value::Kind::kDouble:
      return DoubleText(value.number());
    case Value::Kind::kText:
      return value.text();
    case Value::Kind::kDate: {
      const Date::Parts p = value.date().ToParts();
      std::string text;
      AppendPadded(text, p.day, 2);
      text += '-';
      AppendPadded(text, p.month, 2);
      text += '-';
      AppendPadded(text, p.year, 4);
      if (p.hour != 0 || p.minute != 0 || p.second != 0) {
        text += ' ';
        AppendPadded(text, p.hour, 2);
        text += ':';
        AppendPadded(text, p.minute, 2);
      }
      return text;
    }
  }
  return {};
}

}  // namespace vantorel::report::expr
