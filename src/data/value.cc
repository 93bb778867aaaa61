#include "data/value.h"

#include <charconv>
#include <cmath>
#include <system_error>
#include <utility>

#include "vantorel/error.h"

namespace vantorel::data {
namespace {

constexpr char kSource[] = "Vantorel.CRepoter";

Error InvalidUseOfNull() {
  return Error(errnum::kInvalidUseOfNull, kSource, "Invalid use of Null");
}

Error TypeMismatch(const std::string& what) {
  return Error(errnum::kTypeMismatch, kSource, "Type mismatch: " + what);
}

// Shortest text that reads back as "value": plain digits for the magnitudes amounts and counts
// have, an exponent ("1E+20", as the host writes it) only for very large or very small numbers.
std::string FormatDouble(double value) {
  if (value == 0) return "0";
  char buffer[400];
  const double magnitude = std::fabs(value);
  const bool scientific = magnitude >= 1e15 || magnitude < 1e-5;
  const auto result =
      std::to_chars(buffer, buffer + sizeof buffer, value,
                    scientific ? std::chars_format::scientific : std::chars_format::fixed);
  std::string text(buffer, result.ptr);
  if (const size_t e = text.find('e'); e != std::string::npos) text[e] = 'E';
  return text;
}

std::string TwoDigits(int value) {
  std::string text(2, '0');
  text[0] = static_cast<char>('0' + value / 10 % 10);
  text[1] = static_cast<char>('0' + value % 10);
  return text;
}

std::string FormatDate(Date date, bool with_time) {
  if (!date.IsValid()) throw Error(errnum::kOverflow, kSource, "Overflow: not a valid date");
  std::string text = date.ToIso();
  if (with_time) {
    const Date::Parts parts = date.ToParts();
    text +=
        ' ' + TwoDigits(parts.hour) + ':' + TwoDigits(parts.minute) + ':' + TwoDigits(parts.second);
  }
  return text;
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n'; }

// "&H…" / "&O…" after the ampersand: the host runtime reads up to four hex digits as a 16-bit
// integer and up to eight as a 32-bit one, so "&HFFFF" is -1.
double ValRadix(std::string_view text, size_t pos) {
  while (pos < text.size() && IsBlank(text[pos])) ++pos;
  if (pos >= text.size()) return 0;
  const char marker = static_cast<char>(text[pos] | 0x20);
  int radix = 0;
  if (marker == 'h') radix = 16;
  if (marker == 'o') radix = 8;
  if (radix == 0) return 0;
  uint64_t value = 0;
  int digits = 0;
  for (++pos; pos < text.size(); ++pos) {
    const char c = text[pos];
    if (IsBlank(c)) continue;
    int digit = -1;
    if (c >= '0' && c <= '7') digit = c - '0';
    if (radix == 16) {
      if (c >= '8' && c <= '9') digit = c - '0';
      if ((c | 0x20) >= 'a' && (c | 0x20) <= 'f') digit = (c | 0x20) - 'a' + 10;
    }
    if (digit < 0) break;
    value = value * static_cast<uint64_t>(radix) + static_cast<uint64_t>(digit);
    if (value > 0xFFFFFFFFull) {
      throw Error(errnum::kOverflow, kSource, "Overflow: the number is too large");
    }
    ++digits;
  }
  if (digits == 0) return 0;
  if (value <= 0xFFFF) return static_cast<int16_t>(static_cast<uint16_t>(value));
  return static_cast<int32_t>(static_cast<uint32_t>(value));
}

}  // namespace

Value Value::Integer(int64_t value) {
  Value v;
  v.kind_ = Kind::kInteger;
  v.integer_ = value;
  return v;
}

Value Value::Real(double value) {
  Value v;
  v.kind_ = Kind::kReal;
  v.real_ = value;
  return v;
}

Value Value::Decimal(std::string digits) {
  Value v;
  v.kind_ = Kind::kDecimal;
  v.text_ = std::move(digits);
  return v;
}

Value Value::Text(std::string utf8) {
  Value v;
  v.kind_ = Kind::kText;
  v.text_ = std::move(utf8);
  return v;
}

Value Value::FromDate(Date date) {
  Value v;
  v.kind_ = Kind::kDate;
  v.real_ = date.serial;
  return v;
}

Value Value::FromDateTime(Date date) {
  Value v;
  v.kind_ = Kind::kDateTime;
  v.real_ = date.serial;
  return v;
}

Value Value::Boolean(bool value) {
  Value v;
  v.kind_ = Kind::kBoolean;
  v.integer_ = value ? 1 : 0;
  return v;
}

Value Value::Blob(std::string bytes) {
  Value v;
  v.kind_ = Kind::kBlob;
  v.text_ = std::move(bytes);
  return v;
}

std::string ToText(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::kNull:
      throw InvalidUseOfNull();
    case Value::Kind::kInteger: {
      char buffer[24];
      return std::string(buffer,
                         std::to_chars(buffer, buffer + sizeof buffer, value.integer()).ptr);
    }
    case Value::Kind::kReal:
      return FormatDouble(value.real());
    case Value::Kind::kDecimal:
    case Value::Kind::kText:
    case Value::Kind::kBlob:
      return value.text();
    case Value::Kind::kDate:
      return FormatDate(value.date(), false);
    case Value::Kind::kDateTime:
      return FormatDate(value.date(), true);
    case Value::Kind::kBoolean:
      return value.integer() != 0 ? "True" : "False";
  }
  return {};
}

double ToDouble(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::kNull:
      throw InvalidUseOfNull();
    case Value::Kind::kInteger:
      return static_cast<double>(value.integer());
    case Value::Kind::kReal:
    case Value::Kind::kDate:
    case Value::Kind::kDateTime:
      return value.real();
    case Value::Kind::kBoolean:
      return value.integer() != 0 ? -1 : 0;
    case Value::Kind::kBlob:
      throw TypeMismatch("binary data is not a number");
    case Value::Kind::kDecimal:
    case Value::Kind::kText:
      break;
  }
  // The whole text must be one number; only blanks may surround it.
  std::string_view text = value.text();
  while (!text.empty() && (IsBlank(text.front()) || text.front() == '\r')) text.remove_prefix(1);
  while (!text.empty() && (IsBlank(text.back()) || text.back() == '\r')) text.remove_suffix(1);
  bool negative = false;
  if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  // from_chars would also take "inf" and "nan", which are not numbers to the host.
  if (text.empty() || !((text.front() >= '0' && text.front() <= '9') || text.front() == '.')) {
    throw TypeMismatch("\"" + value.text() + "\" is not a number");
  }
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (end != text.data() + text.size() || error == std::errc::invalid_argument) {
    throw TypeMismatch("\"" + value.text() + "\" is not a number");
  }
  if (error == std::errc::result_out_of_range) {
    throw Error(errnum::kOverflow, kSource, "Overflow: the number is too large");
  }
  return negative ? -number : number;
}

double Val(std::string_view text) {
  size_t pos = 0;
  while (pos < text.size() && IsBlank(text[pos])) ++pos;
  if (pos < text.size() && text[pos] == '&') return ValRadix(text, pos + 1);

  // Gather sign, mantissa and exponent without the blanks the host runtime ignores.
  std::string number;
  bool negative = false;
  if (pos < text.size() && (text[pos] == '+' || text[pos] == '-')) {
    negative = text[pos] == '-';
    ++pos;
  }
  bool seen_point = false;
  bool seen_digit = false;
  for (; pos < text.size(); ++pos) {
    const char c = text[pos];
    if (IsBlank(c)) continue;
    if (c >= '0' && c <= '9') {
      number += c;
      seen_digit = true;
    } else if (c == '.' && !seen_point) {
      number += c;
      seen_point = true;
    } else {
      break;
    }
  }
  if (!seen_digit) return 0;
  if (pos < text.size() &&
      (text[pos] == 'E' || text[pos] == 'e' || text[pos] == 'D' || text[pos] == 'd')) {
    std::string exponent = "e";
    size_t p = pos + 1;
    while (p < text.size() && IsBlank(text[p])) ++p;
    if (p < text.size() && (text[p] == '+' || text[p] == '-')) exponent += text[p++];
    bool exponent_digits = false;
    for (; p < text.size(); ++p) {
      if (IsBlank(text[p])) continue;
      if (text[p] < '0' || text[p] > '9') break;
      exponent += text[p];
      exponent_digits = true;
    }
    if (exponent_digits) number += exponent;
  }
  double result = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), result);
  (void)end;
  if (error == std::errc::result_out_of_range) {
    // Too small rounds to zero; too large is the runtime's overflow.
    const size_t e = number.find('e');
    if (e != std::string::npos && e + 1 < number.size() && number[e + 1] == '-') return 0;
    throw Error(errnum::kOverflow, kSource, "Overflow: the number is too large");
  }
  if (result == 0) return 0;
  return negative ? -result : result;
}

}  // namespace vantorel::data
