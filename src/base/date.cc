#include <cmath>
#include <cstdio>

#include "vantorel/types.h"

namespace vantorel {
namespace {

// Days from 1970-01-01 to a proleptic Gregorian date, and back (Howard Hinnant's algorithms).
int64_t DaysFromCivil(int64_t y, unsigned m, unsigned d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<int64_t>(doe) - 719468;
}

void CivilFromDays(int64_t z, int& year, int& month, int& day) {
  z += 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const unsigned doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int64_t y = static_cast<int64_t>(yoe) + era * 400;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  day = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  year = static_cast<int>(y + (month <= 2));
}

// 1899-12-30, day 0 of automation dates, counted from 1970-01-01.
constexpr int64_t kEpochOffset = -25569;
constexpr double kMinSerial = -657434.0;       // 0100-01-01
constexpr double kMaxSerial = 2958465.999999;  // 9999-12-31 23:59:59

bool ParseDigits(std::string_view text, size_t pos, size_t count, int& out) {
  if (pos + count > text.size()) return false;
  out = 0;
  for (size_t i = pos; i < pos + count; ++i) {
    if (text[i] < '0' || text[i] > '9') return false;
    out = out * 10 + (text[i] - '0');
  }
  return true;
}

int DaysInMonth(int year, int month) {
  static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return month == 2 && leap ? 29 : kDays[month - 1];
}

}  // namespace

Date Date::FromYmd(int year, int month, int day) {
  return Date{static_cast<double>(
      DaysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day)) -
      kEpochOffset)};
}

Date Date::FromParts(const Parts& parts) {
  const double days = FromYmd(parts.year, parts.month, parts.day).serial;
  const double time = (parts.hour * 3600.0 + parts.minute * 60.0 + parts.second) / 86400.0;
  // Before day 0 the whole part counts backwards while the time still counts forwards.
  return Date{days < 0 ? days - time : days + time};
}

std::optional<Date> Date::FromIso(std::string_view text) {
  Parts p;
  if (text.size() < 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
  if (!ParseDigits(text, 0, 4, p.year) || !ParseDigits(text, 5, 2, p.month) ||
      !ParseDigits(text, 8, 2, p.day)) {
    return std::nullopt;
  }
  if (p.year < 100 || p.month < 1 || p.month > 12 || p.day < 1 ||
      p.day > DaysInMonth(p.year, p.month)) {
    return std::nullopt;
  }
  if (text.size() > 10) {
    if ((text[10] != ' ' && text[10] != 'T') || text.size() < 16 || text[13] != ':') {
      return std::nullopt;
    }
    if (!ParseDigits(text, 11, 2, p.hour) || !ParseDigits(text, 14, 2, p.minute)) {
      return std::nullopt;
    }
    size_t end = 16;
    if (text.size() >= 19 && text[16] == ':') {
      if (!ParseDigits(text, 17, 2, p.second)) return std::nullopt;
      end = 19;
      // Fractions of a second, as databases write them, are dropped.
      if (end < text.size() && text[end] == '.') {
        ++end;
        while (end < text.size() && text[end] >= '0' && text[end] <= '9') ++end;
      }
    }
    if (end != text.size() || p.hour > 23 || p.minute > 59 || p.second > 59) return std::nullopt;
  }
  return FromParts(p);
}

bool Date::IsValid() const {
  return std::isfinite(serial) && serial >= kMinSerial && serial <= kMaxSerial;
}

Date::Parts Date::ToParts() const {
  Parts p;
  const double whole = std::trunc(serial);
  CivilFromDays(static_cast<int64_t>(whole) + kEpochOffset, p.year, p.month, p.day);
  // Round to the nearest second so 0.5 days is exactly 12:00:00.
  int64_t seconds = std::llround(std::fabs(serial - whole) * 86400.0);
  if (seconds >= 86400) seconds = 86399;
  p.hour = static_cast<int>(seconds / 3600);
  p.minute = static_cast<int>(seconds / 60 % 60);
  p.second = static_cast<int>(seconds % 60);
  return p;
}

std::string Date::ToIso() const {
  const Parts p = ToParts();
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d", p.year, p.month, p.day);
  return buffer;
}

}  // namespace vantorel
