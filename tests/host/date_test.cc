#include <gtest/gtest.h>

#include "vantorel/types.h"

namespace vantorel {
namespace {

TEST(Date, DayZeroIsThirtiethDecember1899) {
  EXPECT_EQ(Date::FromYmd(1899, 12, 30).serial, 0);
  EXPECT_EQ(Date::FromYmd(1900, 1, 1).serial, 2);
  EXPECT_EQ(Date::FromYmd(2024, 3, 31).serial, 45382);
}

TEST(Date, PartsRoundTrip) {
  for (int year : {100, 1899, 1900, 2000, 2024, 9999}) {
    for (int month : {1, 2, 12}) {
      const Date date = Date::FromYmd(year, month, 28);
      const Date::Parts parts = date.ToParts();
      EXPECT_EQ(parts.year, year);
      EXPECT_EQ(parts.month, month);
      EXPECT_EQ(parts.day, 28);
    }
  }
}

TEST(Date, TimeBeforeDayZeroCountsForwards) {
  // -1.25 is 29 December 1899 at 06:00.
  const Date::Parts parts = Date{-1.25}.ToParts();
  EXPECT_EQ(parts.day, 29);
  EXPECT_EQ(parts.hour, 6);
  EXPECT_EQ(Date::FromParts({1899, 12, 29, 6, 0, 0}).serial, -1.25);
}

TEST(Date, ValidRangeIsYear100To9999) {
  EXPECT_TRUE(Date::FromYmd(100, 1, 1).IsValid());
  EXPECT_TRUE(Date::FromYmd(9999, 12, 31).IsValid());
  EXPECT_FALSE(Date::FromYmd(99, 12, 31).IsValid());
  EXPECT_FALSE(Date{3e6}.IsValid());
  EXPECT_FALSE(Date{std::numeric_limits<double>::quiet_NaN()}.IsValid());
}

TEST(Date, IsoTexts) {
  EXPECT_EQ(Date::FromIso("2024-03-31")->ToIso(), "2024-03-31");
  EXPECT_EQ(Date::FromIso("2024-02-29 10:30")->ToParts().minute, 30);
  EXPECT_EQ(Date::FromIso("2024-02-29T10:30:15.123")->ToParts().second, 15);
  EXPECT_FALSE(Date::FromIso("2023-02-29"));
  EXPECT_FALSE(Date::FromIso("2024/03/31"));
  EXPECT_FALSE(Date::FromIso("2024-03-31x"));
  EXPECT_FALSE(Date::FromIso("2024-13-01"));
}

}  // namespace
}  // namespace vantorel
