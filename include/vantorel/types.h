// The automation value types that cross the component's interface: 16-bit booleans and dates.
//
// Thread-safety: plain values.
#ifndef VANTOREL_TYPES_H_
#define VANTOREL_TYPES_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vantorel/export.h"

namespace vantorel {

// A 16-bit automation boolean: true is all bits set (-1), false is 0. Stored as given, so a host
// that writes 1 reads back 1.
using VBool = int16_t;
constexpr VBool kTrue = -1;
constexpr VBool kFalse = 0;

// The output flags count as set only when they hold exactly true.
constexpr bool IsExactlyTrue(VBool value) { return value == kTrue; }

// An automation date: days since 30 December 1899, the fraction being the time of day. For dates
// before 1899-12-30 the whole part counts backwards while the fraction still counts forwards
// (-1.25 is 29 December 1899, 06:00), as the automation standard defines it.
struct VANTOREL_EXPORT Date {
  double serial = 0;

  struct Parts {
    int year = 1899, month = 12, day = 30;
    int hour = 0, minute = 0, second = 0;
  };

  static Date FromYmd(int year, int month, int day);
  static Date FromParts(const Parts& parts);
  // "YYYY-MM-DD", optionally followed by " HH:MM[:SS]" or "THH:MM[:SS]"; nothing else.
  static std::optional<Date> FromIso(std::string_view text);

  // Finite and between 1 January 100 and 31 December 9999, the range of automation dates.
  bool IsValid() const;
  // Calendar parts; requires IsValid().
  Parts ToParts() const;
  // "YYYY-MM-DD"; requires IsValid().
  std::string ToIso() const;

  friend bool operator==(const Date&, const Date&) = default;
};

}  // namespace vantorel

#endif  // VANTOREL_TYPES_H_
