// The preview without a desktop: what a server or a CI machine sees. These cases need no X
// server; the ones with a window are in preview_window_test.cc.
#include "report/preview/preview.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "host/messages.h"
#include "report/preview/gui_module.h"
#include "report/print/sample_document.h"
#include "support/shell.h"
#include "vantorel/error.h"
#include "vantorel/platform.h"

namespace vantorel::report {
namespace {

using vantorel::testing::Shell;

// The description ShowPreview throws with, or a failed expectation when it shows a window.
std::string PreviewError() {
  try {
    ShowPreview(testing::SampleDocument(1, "Headless"), PreviewSettings{});
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errnum::kEngineFailure);
    return error.description();
  }
  ADD_FAILURE() << "ShowPreview showed a window";
  return "";
}

class PreviewWithoutDesktop : public ::testing::Test {
 protected:
  void SetUp() override {
    ::unsetenv("DISPLAY");
    ::unsetenv("WAYLAND_DISPLAY");
    ::unsetenv("VANTOREL_GUI_MODULE");
  }
};

TEST_F(PreviewWithoutDesktop, ShowingThrowsAndSaysHowToOutputInstead) {
  const std::string text = PreviewError();
  EXPECT_NE(text.find("No display is available"), std::string::npos) << text;
  EXPECT_NE(text.find("RptPDF"), std::string::npos) << text;
  EXPECT_NE(text.find("RptPrint"), std::string::npos) << text;
  EXPECT_FALSE(PreviewAvailable());
}

TEST_F(PreviewWithoutDesktop, ADisplayThatCannotBeOpenedCountsAsNone) {
  ::setenv("DISPLAY", ":4093", 1);  // no server there
  const std::string text = PreviewError();
  EXPECT_NE(text.find("No display is available"), std::string::npos) << text;
  EXPECT_FALSE(PreviewAvailable());
}

TEST_F(PreviewWithoutDesktop, MessageBoxesStayOneLineOnStderr) {
  ::testing::internal::CaptureStderr();
  SystemPlatform()->ShowMessage("Challan Id [12] not found", MessageIcon::kCritical);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(),
            "vantorel: error: Challan Id [12] not found\n");
}

TEST_F(PreviewWithoutDesktop, MessageBoxesFallBackToStderrWhenTheDisplayCannotBeOpened) {
  ::setenv("DISPLAY", ":4093", 1);
  ::testing::internal::CaptureStderr();
  SystemPlatform()->ShowMessage("Receipt [7] not found", MessageIcon::kNone);
  SystemPlatform()->ShowMessage("second", MessageIcon::kNone);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(),
            "vantorel: Receipt [7] not found\nvantorel: second\n");
}

TEST_F(PreviewWithoutDesktop, AMissingModuleNamedByTheEnvironmentIsReported) {
  ::setenv("DISPLAY", ":4093", 1);
  ::setenv("VANTOREL_GUI_MODULE", "/nonexistent/libvantorel-gui.so", 1);
  const std::string text = PreviewError();
  EXPECT_NE(text.find("VANTOREL_GUI_MODULE names /nonexistent/libvantorel-gui.so"),
            std::string::npos)
      << text;
}

TEST_F(PreviewWithoutDesktop, ALibraryThatIsNotTheModuleIsRefused) {
  ::setenv("DISPLAY", ":4093", 1);
  ::setenv("VANTOREL_GUI_MODULE", VANTOREL_SHARED_LIBRARY, 1);  // a library, but not the module
  const std::string text = PreviewError();
  EXPECT_NE(text.find("is not a Vantorel window module"), std::string::npos) << text;
}

TEST_F(PreviewWithoutDesktop, TheModuleIsFoundInTheBuildTree) {
  ::setenv("DISPLAY", ":4093", 1);
  EXPECT_EQ(LoadGuiModule().path, std::string(VANTOREL_GUI_MODULE_FILE));
}

TEST(GuiSeparation, OnlyTheModuleLinksGtk) {
  const std::string engine = Shell("readelf -d '" VANTOREL_SHARED_LIBRARY "'");
  ASSERT_NE(engine.find("NEEDED"), std::string::npos) << engine;
  EXPECT_EQ(engine.find("libgtk"), std::string::npos) << engine;
  EXPECT_EQ(engine.find("libgdk-3"), std::string::npos) << engine;
  EXPECT_NE(Shell("readelf -d '" VANTOREL_GUI_MODULE_FILE "'").find("libgtk-3"), std::string::npos);
}

TEST(GuiSeparation, TheModuleExportsOnlyItsEntryPoints) {
  const std::string exported =
      Shell("nm -D --defined-only '" VANTOREL_GUI_MODULE_FILE "' | awk '{print $3}'");
  EXPECT_EQ(exported,
            "vantorel_gui_available\nvantorel_gui_describe_toolbar\n"
            "vantorel_gui_interface_version\nvantorel_gui_message_box\n"
            "vantorel_gui_show_preview\nvantorel_gui_status\n");
}

}  // namespace
}  // namespace vantorel::report
