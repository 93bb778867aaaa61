#include <algorithm>
#include <charconv>
#include <cmath>

#include "report/expr/int128.h"
#include "report/expr/value.h"

namespace vantorel::report::expr {
namespace {

constexpr int kMaxScale = 18;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Drops trailing zero decimals while the scale is above "limit".
void StripZeros(Int128& mantissa, int& scale, int limit) {
  while (scale > limit && mantissa % 10 == 0) {
    mantissa /= 10;
    --scale;
  }
}

}  // namespace

Decimal Decimal::FromInt(int64_t value) { return FromMantissa(value, 0); }

Decimal Decimal::FromMantissa(Int128 mantissa, int scale) {
  Decimal d;
  d.mantissa_ = std::max(mantissa, -kInt128Max);
  d.scale_ = std::clamp(scale, 0, kMaxScale);
  return d;
}

std::optional<Decimal> Decimal::Parse(std::string_view text) {
  size_t i = 0;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
  const size_t int_begin = i;
  while (i < text.size() && IsDigit(text[i])) ++i;
  const std::string_view int_digits = text.substr(int_begin, i - int_begin);
  std::string_view frac_digits;
  if (i < text.size() && text[i] == '.') {
    const size_t frac_begin = ++i;
    while (i < text.size() && IsDigit(text[i])) ++i;
    frac_digits = text.substr(frac_begin, i - frac_begin);
  }
  if (int_digits.empty() && frac_digits.empty()) return std::nullopt;
  int exponent = 0;
  if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
    ++i;
    bool exp_negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) exp_negative = text[i++] == '-';
    if (i == text.size() || !IsDigit(text[i])) return std::nullopt;
    while (i < text.size() && IsDigit(text[i])) {
      exponent = std::min(exponent * 10 + (text[i] - '0'), 100000);
      ++i;
    }
    if (exp_negative) exponent = -exponent;
  }
  if (i != text.size()) return std::nullopt;

  // The digits read as one run: int_digits followed by frac_digits.
  const size_t count = int_digits.size() + frac_digits.size();
  auto digit = [&](size_t k) {
    return k < int_digits.size() ? int_digits[k] : frac_digits[k - int_digits.size()];
  };
  size_t first = 0;
  while (first < count && digit(first) == '0') ++first;
  int64_t scale = static_cast<int64_t>(frac_digits.size()) - exponent;
  if (first == count) return FromMantissa(0, static_cast<int>(std::clamp<int64_t>(scale, 0, 18)));
  size_t last = count;
  while (scale > kMaxScale && digit(last - 1) == '0') {
    --last;
    --scale;
  }
  if (scale > kMaxScale) return std::nullopt;
  const int64_t extra_zeros = scale < 0 ? -scale : 0;
  if (static_cast<int64_t>(last - first) + extra_zeros > 39) return std::nullopt;
  Int128 mantissa = 0;
  for (size_t k = first; k < last; ++k) {
    if (!CheckedMul(mantissa, 10, mantissa) || !CheckedAdd(mantissa, digit(k) - '0', mantissa)) {
      return std::nullopt;
    }
  }
  if (!CheckedScaleUp(mantissa, static_cast<int>(extra_zeros), mantissa)) return std::nullopt;
  return FromMantissa(negative ? -mantissa : mantissa,
                      static_cast<int>(std::max<int64_t>(scale, 0)));
}

std::optional<Decimal> Decimal::FromDouble(double value) {
  if (!std::isfinite(value) || std::fabs(value) > 1e20) return std::nullopt;
  char buffer[64];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  if (result.ec != std::errc()) return std::nullopt;
  return Parse(std::string_view(buffer, static_cast<size_t>(result.ptr - buffer)));
}

double Decimal::ToDouble() const {
  // Below 2^53 both operands are exact doubles, so one division rounds correctly.
  if (Abs128(mantissa_) < (static_cast<Int128>(1) << 53)) {
    return static_cast<double>(static_cast<int64_t>(mantissa_)) /
           static_cast<double>(static_cast<int64_t>(kPow10[scale_]));
  }
  const std::string text = ToString();
  double value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

std::string Decimal::ToString() const {
  std::string digits = Digits(Abs128(mantissa_));
  if (digits.size() <= static_cast<size_t>(scale_)) {
    digits.insert(0, static_cast<size_t>(scale_) + 1 - digits.size(), '0');
  }
  if (scale_ > 0) digits.insert(digits.size() - static_cast<size_t>(scale_), 1, '.');
  if (mantissa_ < 0) digits.insert(0, 1, '-');
  return digits;
}

Decimal Decimal::Round(int decimals) const {
  if (decimals >= scale_) return *this;
  if (decimals >= 0) return FromMantissa(DivPow10Rounded(mantissa_, scale_ - decimals), decimals);
  const int up = -decimals;
  Int128 result = 0;
  if (up >= static_cast<int>(kPow10.size()) ||
      !CheckedScaleUp(DivPow10Rounded(mantissa_, scale_ + up), up, result)) {
    // Rounding away from zero would leave the mantissa's range; round towards zero instead.
    const int drop = std::min(scale_ + up, static_cast<int>(kPow10.size()) - 1);
    result = mantissa_ / kPow10[drop];
    if (!CheckedScaleUp(result, up, result)) result = 0;
  }
  return FromMantissa(result, 0);
}

std::optional<Decimal> Decimal::Add(const Decimal& a, const Decimal& b) {
  const int scale = std::max(a.scale_, b.scale_);
  Int128 x = 0, y = 0, sum = 0;
  if (!CheckedScaleUp(a.mantissa_, scale - a.scale_, x) ||
      !CheckedScaleUp(b.mantissa_, scale - b.scale_, y) || !CheckedAdd(x, y, sum)) {
    return std::nullopt;
  }
  return FromMantissa(sum, scale);
}

std::optional<Decimal> Decimal::Subtract(const Decimal& a, const Decimal& b) {
  return Add(a, FromMantissa(-b.mantissa_, b.scale_));
}

std::optional<Decimal> Decimal::Multiply(const Decimal& a, const Decimal& b) {
  Int128 product = 0;
  int scale = a.scale_ + b.scale_;
  if (scale > kMaxScale || !CheckedMul(a.mantissa_, b.mantissa_, product)) {
    // Trailing zero decimals carry no value; drop them and try again.
    Int128 x = a.mantissa_, y = b.mantissa_;
    int sx = a.scale_, sy = b.scale_;
    StripZeros(x, sx, 0);
    StripZeros(y, sy, 0);
    if (!CheckedMul(x, y, product)) return std::nullopt;
    scale = sx + sy;
    StripZeros(product, scale, kMaxScale);
    if (scale > kMaxScale) return std::nullopt;
    // Give back as many of the written decimals as fit.
    const int wanted = std::min(a.scale_ + b.scale_, kMaxScale);
    Int128 widened = 0;
    if (scale < wanted && CheckedScaleUp(product, wanted - scale, widened)) {
      product = widened;
      scale = wanted;
    }
  }
  return FromMantissa(product, scale);
}

std::optional<Decimal> Decimal::Divide(const Decimal& a, const Decimal& b) {
  if (b.mantissa_ == 0) return std::nullopt;
  // a / b = (ma × 10^sb) / (mb × 10^sa), an integer quotient n / d.
  Int128 n = a.mantissa_, d = b.mantissa_;
  if (b.scale_ >= a.scale_) {
    if (!CheckedScaleUp(n, b.scale_ - a.scale_, n)) return std::nullopt;
  } else if (!CheckedScaleUp(d, a.scale_ - b.scale_, d)) {
    return std::nullopt;
  }
  const bool negative = (n < 0) != (d < 0);
  n = Abs128(n);
  d = Abs128(d);
  // The quotient keeps at least the decimals the dividend has beyond the divisor's (100.00 / 4 is
  // 25.00), and takes more only as far as needed to be exact.
  const int min_scale = std::max(0, a.scale_ - b.scale_);
  Int128 quotient = n / d;
  Int128 remainder = n % d;
  int scale = 0;
  while ((remainder != 0 || scale < min_scale) && scale < kMaxScale) {
    Int128 shifted = 0;
    if (!CheckedMul(remainder, 10, shifted) || !CheckedMul(quotient, 10, quotient) ||
        !CheckedAdd(quotient, shifted / d, quotient)) {
      return std::nullopt;
    }
    remainder = shifted % d;
    ++scale;
  }
  if (remainder != 0) return std::nullopt;
  return FromMantissa(negative ? -quotient : quotient, scale);
}

int Decimal::Compare(const Decimal& a, const Decimal& b) {
  const int sign_a = (a.mantissa_ > 0) - (a.mantissa_ < 0);
  const int sign_b = (b.mantissa_ > 0) - (b.mantissa_ < 0);
  if (sign_a != sign_b) return sign_a < sign_b ? -1 : 1;
  Int128 x = 0, y = 0;
  const int scale = std::max(a.scale_, b.scale_);
  if (CheckedScaleUp(a.mantissa_, scale - a.scale_, x) &&
      CheckedScaleUp(b.mantissa_, scale - b.scale_, y)) {
    return (x > y) - (x < y);
  }
  // Same sign: whole parts first, then the fractions brought to 18 decimals (they always fit).
  const Int128 whole_a = a.mantissa_ / kPow10[a.scale_];
  const Int128 whole_b = b.mantissa_ / kPow10[b.scale_];
  if (whole_a != whole_b) return whole_a < whole_b ? -1 : 1;
  const Int128 frac_a = a.mantissa_ % kPow10[a.scale_] * kPow10[kMaxScale - a.scale_];
  const Int128 frac_b = b.mantissa_ % kPow10[b.scale_] * kPow10[kMaxScale - b.scale_];
  return (frac_a > frac_b) - (frac_a < frac_b);
}

}  // namespace vantorel::report::expr
