// One value read from the database: NULL, an integer, a double, an exact decimal (kept as its
// digits), a text, a date or date-time, a boolean or bytes. Decimals are never passed through a
// C double, so money read from the database stays exact.
//
// Thread-safety: a plain value.
#ifndef VANTOREL_DATA_VALUE_H_
#define VANTOREL_DATA_VALUE_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "vantorel/types.h"

namespace vantorel::data {

class Value {
 public:
  enum class Kind { kNull, kInteger, kReal, kDecimal, kText, kDate, kDateTime, kBoolean, kBlob };

  Value() = default;  // NULL
  static Value Integer(int64_t value);
  static Value Real(double value);
  // "digits": an optional minus sign, digits, optionally a full stop and more digits.
  static Value Decimal(std::string digits);
  static Value Text(std::string utf8);
  static Value FromDate(Date date);      // a calendar date, no time of day
  static Value FromDateTime(Date date);  // a date with a time of day
  static Value Boolean(bool value);
  static Value Blob(std::string bytes);

  Kind kind() const { return kind_; }
  bool is_null() const { return kind_ == Kind::kNull; }
  int64_t integer() const { return integer_; }       // kInteger, kBoolean (0 or 1)
  double real() const { return real_; }              // kReal, kDate, kDateTime (date serial)
  const std::string& text() const { return text_; }  // kText, kDecimal digits, kBlob bytes
  Date date() const { return Date{real_}; }

  friend bool operator==(const Value&, const Value&) = default;

 private:
  Kind kind_ = Kind::kNull;
  int64_t integer_ = 0;
  double real_ = 0;
  std::string text_;
};

// The value as text, the way the host's string conversion writes it: integers and decimals as
// their digits, doubles in shortest round-trip form, dates as "YYYY-MM-DD" (with " HH:MM:SS" when
// they carry a time), booleans as "True"/"False". NULL cannot be converted: throws error 94
// ("Invalid use of Null").
std::string ToText(const Value& value);

// The value as a double, the way a direct double conversion reads it: numbers as they are, texts
// that are whole numbers (blanks around allowed), booleans as -1/0, dates as their serial. NULL
// throws error 94, a text that is not a number throws error 13 (type mismatch).
double ToDouble(const Value& value);

// The value of the number at the start of "text", locale-independent: leading blanks, tabs and
// line feeds are skipped, blanks between digits are ignored, then an optional sign, digits, a full
// stop and digits, and an exponent (E or D) are read as far as they go; "&H" and "&O" read hex and
// octal. A text that does not start with a number gives 0 ("12abc" gives 12).
double Val(std::string_view text);

}  // namespace vantorel::data

#endif  // VANTOREL_DATA_VALUE_H_
