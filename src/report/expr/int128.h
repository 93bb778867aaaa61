// Checked 128-bit integer helpers for Decimal and the number formats. Mantissas stay within
// ±kInt128Max so negating one never overflows.
//
// Thread-safety: pure functions and constants.
#ifndef VANTOREL_REPORT_EXPR_INT128_H_
#define VANTOREL_REPORT_EXPR_INT128_H_

#include <array>
#include <string>

#include "report/expr/value.h"

namespace vantorel::report::expr {

__extension__ typedef unsigned __int128 UInt128;

inline constexpr Int128 kInt128Max = static_cast<Int128>(~static_cast<UInt128>(0) >> 1);

// 10^0 .. 10^38, all of which fit.
inline constexpr std::array<Int128, 39> kPow10 = [] {
  std::array<Int128, 39> table{};
  Int128 p = 1;
  for (auto& entry : table) {
    entry = p;
    if (p <= kInt128Max / 10) p *= 10;
  }
  return table;
}();

inline Int128 Abs128(Int128 v) { return v < 0 ? -v : v; }

// The checked operations return false on overflow and leave "out" unspecified. They are written
// out by hand because clang lowers __builtin_mul_overflow on 128 bits to a compiler-rt routine
// that libgcc does not provide.
inline bool CheckedAdd(Int128 a, Int128 b, Int128& out) {
  if ((b > 0 && a > kInt128Max - b) || (b < 0 && a < -kInt128Max - b)) return false;
  out = a + b;
  return true;
}

inline bool CheckedMul(Int128 a, Int128 b, Int128& out) {
  // Two factors below 2^63 cannot overflow; only larger ones pay for a 128-bit division.
  constexpr Int128 k63 = static_cast<Int128>(1) << 63;
  if (a > -k63 && a < k63 && b > -k63 && b < k63) {
    out = a * b;
    return true;
  }
  if (a != 0 && b != 0 && Abs128(b) > kInt128Max / Abs128(a)) return false;
  out = a * b;
  return true;
}

// a × 10^exponent for exponent ≥ 0.
inline bool CheckedScaleUp(Int128 a, int exponent, Int128& out) {
  if (exponent < 0) return false;
  if (exponent >= static_cast<int>(kPow10.size())) {
    out = 0;
    return a == 0;
  }
  return CheckedMul(a, kPow10[exponent], out);
}

// a / 10^exponent rounded half away from zero, for exponent ≥ 0.
inline Int128 DivPow10Rounded(Int128 a, int exponent) {
  if (exponent <= 0) return a;
  if (exponent >= static_cast<int>(kPow10.size())) return 0;
  const Int128 divisor = kPow10[exponent];
  Int128 q = a / divisor;
  const Int128 r = Abs128(a % divisor);
  if (r >= divisor - r) q += a < 0 ? -1 : 1;  // r ≥ divisor / 2, without the halving's loss
  return q;
}

// Decimal digits of a non-negative value.
inline std::string Digits(Int128 v) {
  char buffer[48];
  char* p = buffer + sizeof buffer;
  auto u = static_cast<UInt128>(v);
  do {
    *--p = static_cast<char>('0' + static_cast<int>(u % 10));
    u /= 10;
  } while (u != 0);
  return std::string(p, buffer + sizeof buffer);
}

}  // namespace vantorel::report::expr

#endif  // VANTOREL_REPORT_EXPR_INT128_H_
