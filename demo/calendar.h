// Calendar dates for the demo data: a day number with civil-date conversions, so the generator
// can add days and compare dates without any time-zone or locale dependence.
//
// Thread-safety: a plain value.
#ifndef VANTOREL_DEMO_CALENDAR_H_
#define VANTOREL_DEMO_CALENDAR_H_

#include <compare>
#include <cstdio>
#include <string>

namespace vantorel::demo {

class Day {
 public:
  Day() = default;

  static constexpr Day FromYmd(int year, int month, int day) {
    // Days from 1970-01-01 to the civil date (proleptic Gregorian calendar).
    const int y = month <= 2 ? year - 1 : year;
    const int era = (y >= 0 ? y : y - 399) / 400;
    const int yoe = y - era * 400;
    const int doy = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const int doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return Day(era * 146097 + doe - 719468);
  }

  int year() const { return Civil().year; }
  int month() const { return Civil().month; }
  int day() const { return Civil().day; }
  // 0 is Sunday.
  int weekday() const { return ((serial_ % 7) + 11) % 7; }
  int serial() const { return serial_; }

  Day Plus(int days) const { return Day(serial_ + days); }
  int DaysSince(Day other) const { return serial_ - other.serial_; }
  Day FirstOfMonth() const { return FromYmd(year(), month(), 1); }
  // The same day "months" later, clipped to the end of a shorter month.
  Day PlusMonths(int months) const {
    const Ymd c = Civil();
    const int index = c.year * 12 + (c.month - 1) + months;
    const int y = index / 12;
    const int m = index % 12 + 1;
    const int last = FromYmd(m == 12 ? y + 1 : y, m == 12 ? 1 : m + 1, 1).Plus(-1).day();
    return FromYmd(y, m, c.day < last ? c.day : last);
  }

  // "2024-04-01".
  std::string Iso() const {
    char text[48];
    const Ymd c = Civil();
    std::snprintf(text, sizeof text, "%04d-%02d-%02d", c.year, c.month, c.day);
    return text;
  }
  // "01/04/2024", as Indian documents write dates.
  std::string Dmy() const {
    char text[48];
    const Ymd c = Civil();
    std::snprintf(text, sizeof text, "%02d/%02d/%04d", c.day, c.month, c.year);
    return text;
  }
  // The financial year (April to March) as "24-25".
  std::string FinancialYear() const {
    const int start = month() >= 4 ? year() : year() - 1;
    char text[32];
    std::snprintf(text, sizeof text, "%02d-%02d", start % 100, (start + 1) % 100);
    return text;
  }
  // The financial year as "2024-25".
  std::string LongFinancialYear() const {
    const int start = month() >= 4 ? year() : year() - 1;
    return std::to_string(start) + "-" + std::to_string((start + 1) % 100);
  }

  friend auto operator<=>(Day, Day) = default;

 private:
  struct Ymd {
    int year, month, day;
  };
  explicit constexpr Day(int serial) : serial_(serial) {}

  Ymd Civil() const {
    const int z = serial_ + 719468;
    const int era = (z >= 0 ? z : z - 146096) / 146097;
    const int doe = z - era * 146097;
    const int yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const int doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const int mp = (5 * doy + 2) / 153;
    const int d = doy - (153 * mp + 2) / 5 + 1;
    const int m = mp < 10 ? mp + 3 : mp - 9;
    return {yoe + era * 400 + (m <= 2 ? 1 : 0), m, d};
  }

  int serial_ = 0;
};

}  // namespace vantorel::demo

#endif  // VANTOREL_DEMO_CALENDAR_H_
