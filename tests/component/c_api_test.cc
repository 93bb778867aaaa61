#include "vantorel/vantorel.h"

#include <stdlib.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/atomic_file.h"
#include "support/test_support.h"

namespace {

using ::testing::HasSubstr;

constexpr int32_t kUnknownName = static_cast<int32_t>(0x80020006u);
constexpr int32_t kBadParamCount = static_cast<int32_t>(0x8002000Eu);
constexpr int32_t kTypeMismatch = static_cast<int32_t>(0x80020005u);
constexpr int32_t kBadVarType = static_cast<int32_t>(0x80020008u);
constexpr int32_t kPointer = static_cast<int32_t>(0x80004003u);

vantorel_value Text(const char* text) {
  vantorel_value value{};
  value.type = VANTOREL_STRING;
  value.str = text;
  return value;
}

vantorel_value Short(int16_t number) {
  vantorel_value value{};
  value.type = VANTOREL_I2;
  value.i2 = number;
  return value;
}

class CApiTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(r_, nullptr); }
  void TearDown() override {
    vantorel_destroy(r_);
    vantorel_set_message_box_handler(nullptr, nullptr);
  }

  vantorel_repoter* r_ = vantorel_create();
};

TEST_F(CApiTest, PropertiesRoundTripWithTheirTypes) {
  const vantorel_value path = Text("/srv/रिपोर्ट/₹/");
  ASSERT_EQ(vantorel_set_property(r_, "ReportPath", &path), 0);
  vantorel_value out{};
  ASSERT_EQ(vantorel_get_property(r_, "reportpath", &out), 0);
  EXPECT_EQ(out.type, VANTOREL_STRING);
  EXPECT_STREQ(out.str, "/srv/रिपोर्ट/₹/");

  vantorel_value mode{};
  mode.type = VANTOREL_BOOL;
  mode.boolean = 1;  // not the standard true, and kept as given
  ASSERT_EQ(vantorel_set_property(r_, "DesigbeMode", &mode), 0);
  ASSERT_EQ(vantorel_get_property(r_, "DesigbeMode", &out), 0);
  EXPECT_EQ(out.type, VANTOREL_BOOL);
  EXPECT_EQ(out.boolean, 1);

  const vantorel_value firm = Text("12");
  ASSERT_EQ(vantorel_set_property(r_, "FirmID", &firm), 0);
  ASSERT_EQ(vantorel_get_property(r_, "FirmID", &out), 0);
  EXPECT_EQ(out.type, VANTOREL_UI1);
  EXPECT_EQ(out.ui1, 12);
}

TEST_F(CApiTest, UnknownNamesFailWithTheirStatus) {
  const vantorel_value value = Short(1);
  EXPECT_EQ(vantorel_set_property(r_, "NoSuchProperty", &value), kUnknownName);
  EXPECT_EQ(vantorel_last_error_number(r_), kUnknownName);
  EXPECT_THAT(vantorel_last_error_text(r_), HasSubstr("NoSuchProperty"));
  EXPECT_EQ(vantorel_invoke(r_, "SetVars", nullptr, 0), 0);
  EXPECT_EQ(vantorel_last_error_number(r_), 0);
  EXPECT_STREQ(vantorel_last_error_text(r_), "");
}

TEST_F(CApiTest, InvokeChecksCountsAndTypes) {
  EXPECT_EQ(vantorel_invoke(r_, "ReceiptPrint", nullptr, 0), kBadParamCount);
  const vantorel_value word = Text("twelve");
  EXPECT_EQ(vantorel_invoke(r_, "ReceiptPrint", &word, 1), kTypeMismatch);
  vantorel_value odd{};
  odd.type = 99;
  EXPECT_EQ(vantorel_invoke(r_, "ReceiptPrint", &odd, 1), kBadVarType);
  EXPECT_EQ(vantorel_invoke(r_, "ReceiptPrint", nullptr, 1), kPointer);
}

TEST_F(CApiTest, NullHandleAndNamesAreRefused) {
  vantorel_value out{};
  EXPECT_EQ(vantorel_get_property(nullptr, "LastMsg", &out), kPointer);
  EXPECT_EQ(vantorel_get_property(r_, nullptr, &out), kPointer);
  EXPECT_EQ(vantorel_invoke(nullptr, "SetVars", nullptr, 0), kPointer);
  EXPECT_EQ(vantorel_last_error_number(nullptr), 0);
  EXPECT_STREQ(vantorel_last_error_text(nullptr), "");
  vantorel_destroy(nullptr);
}

TEST_F(CApiTest, MethodFailuresCarryTheirNumberAndText) {
  std::vector<vantorel_value> args = {Short(0), {}, {}, Text("")};
  args[1].type = VANTOREL_R8;
  args[2].type = VANTOREL_BOOL;
  const int32_t status = vantorel_invoke(r_, "Apro_WsPrintPurRet", args.data(), 4);
  if (status != 0) {
    EXPECT_EQ(status, static_cast<int32_t>(0x80004001u));
    EXPECT_EQ(vantorel_last_error_number(r_), static_cast<int32_t>(0x80004001u));
    EXPECT_THAT(vantorel_last_error_text(r_), HasSubstr("Apro_WsPrintPurRet"));
  }
}

TEST_F(CApiTest, OptionalArgumentsMayBeLeftOffOrMissing) {
  vantorel_value missing{};
  missing.type = VANTOREL_MISSING;
  const vantorel_value args[] = {Short(0), missing};
  for (const int count : {1, 2}) {
    // Binding succeeds either way: the method itself runs (and names itself while not built).
    if (vantorel_invoke(r_, "Challan_Customer", args, count) != 0) {
      EXPECT_THAT(vantorel_last_error_text(r_), HasSubstr("Challan_Customer")) << count;
    }
  }
  EXPECT_EQ(vantorel_invoke(r_, "SuperReport", args, 2), kBadParamCount);
}

TEST_F(CApiTest, MessageBoxesReachTheHandler) {
  std::vector<std::pair<std::string, int>> shown;
  vantorel_set_message_box_handler(
      [](void* user, const char* text, int icon) {
        static_cast<std::vector<std::pair<std::string, int>>*>(user)->emplace_back(text, icon);
      },
      &shown);
  const std::string folder = std::filesystem::temp_directory_path().string() + "/";
  const vantorel_value path = Text(folder.c_str());
  ASSERT_EQ(vantorel_set_property(r_, "ReportPath", &path), 0);
  ASSERT_EQ(vantorel_invoke(r_, "SetVars", nullptr, 0), 0);
  const vantorel_value name = Text("vantorel-no-such-template");
  EXPECT_EQ(vantorel_invoke(r_, "SuperReport", &name, 1), 0);
  ASSERT_EQ(shown.size(), 1u);
  EXPECT_THAT(shown[0].first, HasSubstr("vantorel-no-such-template.fr3"));
  EXPECT_EQ(shown[0].second, VANTOREL_ICON_NONE);
}

// A host that ends on a signal can remove what was being written; a finished file stays.
TEST(CApiFiles, TheHostCanRemoveFilesStillBeingWritten) {
  vantorel::testing::TempDir folder;
  const std::string done = (folder.path() / "done.pdf").string();
  {
    vantorel::AtomicFile file(done, "");
    file.Write("finished");
    file.Commit();
  }
  vantorel::AtomicFile pending((folder.path() / "pending.pdf").string(), "");
  pending.Write("half a document");
  const auto temporary = folder.path() / pending.temporary_name();
  ASSERT_TRUE(std::filesystem::exists(temporary));
  vantorel_remove_pending_files();
  EXPECT_FALSE(std::filesystem::exists(temporary));
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "pending.pdf"));
  EXPECT_TRUE(std::filesystem::exists(done));
}

}  // namespace
