// Print… in the preview window, against the private CUPS server of the "cups" fixture and on the
// virtual display of the "xvfb" fixture.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "report/preview/desktop_user.h"
#include "report/preview/preview.h"
#include "report/print/sample_document.h"

namespace vantorel::report {
namespace {

namespace fs = std::filesystem;
using testing::Image;
using testing::Shell;
using testing::User;
using testing::WaitFor;

// The display is the test's own, started and stopped around each case: the cases need the
// "cups" fixture, and a ctest case takes a single fixture here.
class PreviewPrintTest : public testing::DesktopTest {
 protected:
  PreviewPrintTest() : DesktopTest(kXvfbDir) {}

  void SetUp() override {
    Shell(kXvfbScript + " start '" + kXvfbDir.string() + "' :96 >/dev/null");
    DesktopTest::SetUp();
    std::ifstream server(fs::path(VANTOREL_CUPS_DIR) / "server");
    std::string address;
    ASSERT_TRUE(server >> address) << "no CUPS server: run through ctest (cups_start fixture)";
    ::setenv("CUPS_SERVER", address.c_str(), 1);
  }

  void TearDown() override {
    DesktopTest::TearDown();
    Shell(kXvfbScript + " stop '" + kXvfbDir.string() + "'");
  }

  static inline const fs::path kXvfbDir = fs::path(VANTOREL_BUILD_DIR) / "xvfb-print";
  static inline const std::string kXvfbScript = VANTOREL_SOURCE_DIR "/tests/support/xvfb.sh";

  // The PDFs cups-pdf wrote whose names hold "title".
  static int PrintedFiles(const std::string& title) {
    int count = 0;
    for (const auto& entry : fs::directory_iterator(fs::path(VANTOREL_CUPS_DIR) / "out")) {
      count += entry.path().filename().string().find(title) != std::string::npos;
    }
    return count;
  }
};

TEST_F(PreviewPrintTest, CtrlPPrintsToTheSettingsQueue) {
  const std::string title = "vt-preview-print-" + std::to_string(::getpid());
  PreviewSettings settings;
  settings.title = title;
  settings.printer = "VIRTUAL_PDF";
  bool found = false, printed = false;
  std::thread user_thread([&] {
    User user(title, shots_);
    found = user.FindWindow();
    if (!found) return;
    user.Keys("ctrl+p");
    printed = WaitFor([&] { return PrintedFiles(title) == 1; }, 30);
  });
  ShowPreview(testing::SampleDocument(2, "Printed from the preview"), settings);
  user_thread.join();
  ASSERT_TRUE(found);
  EXPECT_TRUE(printed);
}

TEST_F(PreviewPrintTest, APrintFailureIsShownInADialog) {
  PreviewSettings settings;
  settings.title = title_;
  settings.printer = "STOPPED_PDF";
  bool found = false, dialog_shown = false, dialog_closed = false;
  Image dialog;
  std::thread user_thread([&] {
    User user(title_, shots_);
    found = user.FindWindow();
    if (!found) return;
    user.Keys("ctrl+p");
    User error_dialog("Vantorel", shots_);
    dialog_shown = error_dialog.FindWindow();
    if (!dialog_shown) return;
    dialog = error_dialog.Screenshot("print-error.png");
    dialog_closed = error_dialog.Close("Return");
  });
  ShowPreview(testing::SampleDocument(1, "Stopped queue"), settings);
  user_thread.join();
  ASSERT_TRUE(found);
  EXPECT_TRUE(dialog_shown);
  EXPECT_TRUE(dialog_closed);
  EXPECT_GT(dialog.width, 100);
  EXPECT_EQ(Shell("lpstat -o STOPPED_PDF"), "");  // the job was cancelled, not left queued
}

}  // namespace
}  // namespace vantorel::report
