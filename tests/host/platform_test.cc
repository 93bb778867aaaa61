#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <fstream>

#include "host/messages.h"
#include "host/native_path.h"
#include "support/test_support.h"
#include "vantorel/error.h"
#include "vantorel/platform.h"

namespace vantorel {
namespace {

TEST(SystemPlatform, FileAttributesSetTheDirectoryBitForFolders) {
  testing::TempDir dir;
  const std::string file = dir.Write("challancus.fr3", "x");
  EXPECT_TRUE(SystemPlatform()->FileAttributes(dir.path().string()) & kAttributeDirectory);
  EXPECT_FALSE(SystemPlatform()->FileAttributes(file) & kAttributeDirectory);
}

TEST(SystemPlatform, MissingFileIsErrorFiftyThreeWithThePlatformText) {
  testing::TempDir dir;
  try {
    SystemPlatform()->FileAttributes(dir.folder() + "nothing.fr3");
    FAIL() << "expected an error";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errnum::kFileNotFound);
    EXPECT_NE(error.description().find(std::strerror(ENOENT)), std::string::npos);
    EXPECT_NE(error.description().find("nothing.fr3"), std::string::npos);
  }
}

TEST(SystemPlatform, BackslashesInHostPathsAreSeparators) {
  testing::TempDir dir;
  dir.Write("reports/challancus.fr3", "x");
  const std::string host_path = dir.path().string() + "\\reports\\challancus.fr3";
  EXPECT_EQ(SystemPlatform()->FileAttributes(host_path) & kAttributeDirectory, 0u);
  EXPECT_EQ(NativePath("C:\\App\\export.pdf"), "C:/App/export.pdf");
}

TEST(SystemPlatform, EnvironmentIsMatchedWithoutCase) {
  ::setenv("VANTOREL_TEST_Temp", "/var/tmp/dealer", 1);
  EXPECT_EQ(SystemPlatform()->Environment("vantorel_test_temp"), "/var/tmp/dealer");
  EXPECT_EQ(SystemPlatform()->Environment("VANTOREL_TEST_Temp"), "/var/tmp/dealer");
  ::unsetenv("VANTOREL_TEST_Temp");
  EXPECT_FALSE(SystemPlatform()->Environment("vantorel_test_temp"));
}

TEST(SystemPlatform, RegionalDatesFallBackToDayMonthYearInTheCLocale) {
  const char* saved = std::getenv("LC_ALL");
  const std::string previous = saved ? saved : "";
  ::setenv("LC_ALL", "C", 1);
  const RegionalDateSettings regional = SystemPlatform()->RegionalDates();
  EXPECT_EQ(regional.separator, '/');
  EXPECT_EQ(regional.short_date, "dd/mm/yyyy");
  if (saved) {
    ::setenv("LC_ALL", previous.c_str(), 1);
  } else {
    ::unsetenv("LC_ALL");
  }
}

TEST(SystemPlatform, TodayIsAValidDate) { EXPECT_TRUE(SystemPlatform()->Today().IsValid()); }

TEST(SystemPlatform, NowIsTodayWithATimeOfDay) {
  const Date today = SystemPlatform()->Today();
  const Date now = SystemPlatform()->Now();
  // The two readings may straddle midnight.
  EXPECT_GE(now.serial, today.serial);
  EXPECT_LT(now.serial, today.serial + 2);
}

TEST(RecordingPlatform, NowIsThePinnedDayAtThePinnedTime) {
  RecordingPlatform platform;
  platform.SetToday(Date::FromYmd(2024, 4, 15));
  EXPECT_EQ(platform.Now(), *Date::FromIso("2024-04-15 10:30"));
  platform.SetTimeOfDay(14, 5);
  EXPECT_EQ(platform.Now(), *Date::FromIso("2024-04-15 14:05"));
  EXPECT_EQ(platform.Today(), Date::FromYmd(2024, 4, 15));
}

TEST(MessageBoxes, HandlerReceivesTextAndIcon) {
  std::string seen;
  MessageIcon icon = MessageIcon::kNone;
  SetMessageBoxHandler([&](const std::string& text, MessageIcon i) {
    seen = text;
    icon = i;
  });
  ShowMessage("Challan Id [12] not found", MessageIcon::kCritical);
  SetMessageBoxHandler(nullptr);
  EXPECT_EQ(seen, "Challan Id [12] not found");
  EXPECT_EQ(icon, MessageIcon::kCritical);
}

TEST(MessageBoxes, DefaultIsOneLineOnStderr) {
  ::testing::internal::CaptureStderr();
  ShowMessage("first line\nsecond line", MessageIcon::kNone);
  const std::string err = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(err, "vantorel: first line second line\n");
}

TEST(MessageBoxes, RecordingPlatformRecordsInsteadOfShowing) {
  testing::PlatformScope platform;
  ShowMessage("Report File [x] not found..", MessageIcon::kCritical);
  ASSERT_EQ(platform->messages().size(), 1u);
  EXPECT_EQ(platform->messages()[0].text, "Report File [x] not found..");
}

}  // namespace
}  // namespace vantorel
