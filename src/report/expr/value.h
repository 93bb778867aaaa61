// Values of report expressions: null (SQL NULL), booleans, numbers, texts and dates. Numbers are
// exact decimals whenever they can be (database decimals, literals, sums and products of them),
// so a total of thousands of amounts never drifts; results that cannot be exact (a division that
// does not terminate within the decimal's precision, a square root) are doubles.
//
// Thread-safety: plain values.
#ifndef VANTOREL_REPORT_EXPR_VALUE_H_
#define VANTOREL_REPORT_EXPR_VALUE_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vantorel/types.h"

namespace vantorel::report::expr {

// 128-bit integers are a compiler extension; naming the type once keeps -Wpedantic quiet.
__extension__ typedef __int128 Int128;

// A fixed-point decimal: mantissa × 10^-scale, scale 0..18, with a 128-bit mantissa.
class Decimal {
 public:
  Decimal() = default;
  static Decimal FromInt(int64_t value);
  // mantissa × 10^-scale; "scale" must be 0..18 and "mantissa" must not be the most negative
  // 128-bit value (arithmetic keeps mantissas symmetric so negation never overflows).
  static Decimal FromMantissa(Int128 mantissa, int scale);
  // Decimal text: optional sign, digits, optional "." and digits, optional exponent. nullopt when
  // it is not such a text or does not fit.
  static std::optional<Decimal> Parse(std::string_view text);
  // The shortest decimal that reads back as "value" (so 0.1 is exactly 0.1); nullopt for values
  // that do not fit (infinities, NaN, magnitudes beyond 10^20).
  static std::optional<Decimal> FromDouble(double value);

  Int128 mantissa() const { return mantissa_; }
  int scale() const { return scale_; }
  double ToDouble() const;
  // Plain digits with exactly "scale()" decimals ("60000.00", "-5", "0.07").
  std::string ToString() const;
  // Rounded half away from zero to "decimals" places (negative: to tens, hundreds, ...); a value
  // with at most that many decimals is returned unchanged.
  Decimal Round(int decimals) const;

  // Exact arithmetic; nullopt on overflow of the mantissa or the scale.
  static std::optional<Decimal> Add(const Decimal& a, const Decimal& b);
  static std::optional<Decimal> Subtract(const Decimal& a, const Decimal& b);
  static std::optional<Decimal> Multiply(const Decimal& a, const Decimal& b);
  // Exact when the quotient terminates within 18 decimals; nullopt otherwise or on division by 0.
  static std::optional<Decimal> Divide(const Decimal& a, const Decimal& b);
  static int Compare(const Decimal& a, const Decimal& b);  // -1, 0, 1

 private:
  Int128 mantissa_ = 0;
  int scale_ = 0;
};

class Value {
 public:
  enum class Kind : uint8_t { kNull, kBool, kDecimal, kDouble, kText, kDate };

  Value() = default;  // null
  static Value Bool(bool value);
  static Value Number(Decimal value);
  // Kept exact (a Decimal) when FromDouble can represent it; an infinity or NaN gives null.
  static Value Number(double value);
  static Value Integer(int64_t value);
  static Value Text(std::string utf8);
  static Value FromDate(Date value);  // null when !value.IsValid()

  Kind kind() const { return kind_; }
  bool is_null() const { return kind_ == Kind::kNull; }
  bool is_number() const { return kind_ == Kind::kDecimal || kind_ == Kind::kDouble; }
  bool boolean() const { return boolean_; }
  const Decimal& decimal() const { return decimal_; }
  double number() const;  // any number as a double; 0 for other kinds
  const std::string& text() const { return text_; }
  Date date() const { return Date{real_}; }

  // Same kind and same value; decimals compare by value (1.50 == 1.5), so tests that pin a
  // scale compare DisplayText.
  friend bool operator==(const Value& a, const Value& b);

 private:
  Kind kind_ = Kind::kNull;
  bool boolean_ = false;
  Decimal decimal_;
  double real_ = 0;  // kDouble value or kDate serial
  std::string text_;
};

// The text a value shows when a template gives no display format: null is empty, numbers their
// plain digits (a decimal keeps its scale: 60000.00), dates "dd-mm-yyyy" (with " HH:MM" when they
// carry a time), booleans "True"/"False".
std::string DisplayText(const Value& value);

// Formats "value" with a display pattern. Numbers: "0", "0.00", "#,##0.00" (groups of three),
// "#,##,##0.00" (Indian: lakh and crore groups), a leading or trailing literal such as "₹ " or
// " %", and "-" handling as in spreadsheet formats. Dates: d dd m mm mmm mmmm yy yyyy hh nn ss
// ("dd-mm-yyyy", "dd mmm yyyy"). A null value formats as the empty text. A pattern that does not
// suit the value's kind falls back to DisplayText.
std::string FormatValue(const Value& value, std::string_view pattern);

}  // namespace vantorel::report::expr

#endif  // VANTOREL_REPORT_EXPR_VALUE_H_
