#include "host/date_format.h"

#include <gtest/gtest.h>

namespace vantorel {
namespace {

const Date kEndOfYear = Date::FromYmd(2024, 3, 31);

TEST(FormatDate, DocumentPictures) {
  EXPECT_EQ(FormatDate(kEndOfYear, "dd-mm-yyyy", '/'), "31-03-2024");
  EXPECT_EQ(FormatDate(kEndOfYear, "YYYY/MM/DD", '/'), "2024/03/31");
  EXPECT_EQ(FormatDate(kEndOfYear, "yyyy/mm/dd", '.'), "2024.03.31");
  EXPECT_EQ(FormatDate(kEndOfYear, "dd/mm/yyyy", '-'), "31-03-2024");
  EXPECT_EQ(FormatDate(Date::FromYmd(2023, 4, 1), "d/m/yy", '/'), "1/4/23");
}

TEST(ShortDateText, AddsTheTimeOnlyWhenThereIsOne) {
  const RegionalDateSettings regional;  // dd/mm/yyyy with "/"
  EXPECT_EQ(ShortDateText(Date::FromYmd(2024, 4, 1), regional), "01/04/2024");
  EXPECT_EQ(ShortDateText(Date::FromParts({2024, 4, 1, 10, 5, 0}), regional),
            "01/04/2024 10:05:00");
}

TEST(RegionalFromDateFormat, NumericFormsGiveSeparatorAndPicture) {
  const auto british = RegionalFromDateFormat("%d/%m/%y");
  ASSERT_TRUE(british);
  EXPECT_EQ(british->separator, '/');
  EXPECT_EQ(british->short_date, "dd/mm/yyyy");

  const auto german = RegionalFromDateFormat("%d.%m.%Y");
  ASSERT_TRUE(german);
  EXPECT_EQ(german->separator, '.');
  EXPECT_EQ(german->short_date, "dd/mm/yyyy");

  const auto american = RegionalFromDateFormat("%m/%d/%Y");
  ASSERT_TRUE(american);
  EXPECT_EQ(american->short_date, "mm/dd/yyyy");

  const auto iso = RegionalFromDateFormat("%Y-%m-%d");
  ASSERT_TRUE(iso);
  EXPECT_EQ(iso->separator, '-');
  EXPECT_EQ(FormatDate(kEndOfYear, iso->short_date, iso->separator), "2024-03-31");
}

TEST(RegionalFromDateFormat, FormsWithNamesGiveNone) {
  EXPECT_FALSE(RegionalFromDateFormat("%A %d %B %Y"));
  EXPECT_FALSE(RegionalFromDateFormat("%d %b %Y"));
  EXPECT_FALSE(RegionalFromDateFormat(""));
}

}  // namespace
}  // namespace vantorel
