// The preview window and the desktop message box on a virtual X display (the "xvfb" fixture,
// tests/support/xvfb.sh), driven as a user would and watched through screenshots and what the
// window shows.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "report/preview/desktop_user.h"
#include "report/preview/gui_module.h"
#include "report/preview/preview.h"
#include "report/print/sample_document.h"
#include "vantorel/platform.h"

namespace vantorel::report {
namespace {

namespace fs = std::filesystem;
using testing::DifferentPixels;
using testing::Image;
using testing::StatusStartsWith;
using testing::User;
using testing::WaitFor;
using testing::WindowStatus;

using PreviewWindowTest = testing::DesktopTest;

TEST_F(PreviewWindowTest, PagesTurnFindJumpsToTheMatchAndEscapeCloses) {
  const Document document = testing::SampleDocument(3, "Sales register");
  PreviewSettings settings;
  settings.title = title_;
  settings.allow_export = true;

  bool found = false;
  std::vector<std::string> seen;  // the window's status after each step
  Image first_page, second_page;
  std::thread user_thread([&] {
    User user(title_, shots_);
    found = user.FindWindow();
    if (!found) return;
    auto step = [&](const std::string& keys, const std::string& expected) {
      if (!keys.empty()) user.Keys(keys);
      WaitFor([&] { return StatusStartsWith(expected); });
      seen.push_back(WindowStatus());
    };
    step("", "page 1 / 3");
    first_page = user.Screenshot("page1.png");
    step("Next", "page 2 / 3");
    second_page = user.Screenshot("page2.png");
    step("End", "page 3 / 3");
    step("Prior", "page 2 / 3");
    step("Home", "page 1 / 3");
    step("plus", "page 1 / 3; zoom 125%");
    step("minus", "page 1 / 3; zoom 100%");
    user.Keys("ctrl+f");
    user.Type("INVOICE 205");
    WaitFor([] { return WindowStatus().find("find 1 / 1") != std::string::npos; });
    seen.push_back(WindowStatus());
    user.Screenshot("find.png");
    if (const char* keep = std::getenv("VANTOREL_PREVIEW_SCREENSHOT")) {
      fs::copy_file(shots_ / "find.png", keep, fs::copy_options::overwrite_existing);
    }
  });
  ShowPreview(document, settings);  // returns once the user has closed the window
  user_thread.join();

  ASSERT_TRUE(found) << "the preview window did not appear";
  const std::vector<std::string> expected = {
      "page 1 / 3; zoom 100%; find 0 / 0", "page 2 / 3; zoom 100%; find 0 / 0",
      "page 3 / 3; zoom 100%; find 0 / 0", "page 2 / 3; zoom 100%; find 0 / 0",
      "page 1 / 3; zoom 100%; find 0 / 0", "page 1 / 3; zoom 125%; find 0 / 0",
      "page 1 / 3; zoom 100%; find 0 / 0", "page 2 / 3; zoom 100%; find 1 / 1"};
  EXPECT_EQ(seen, expected);
  ASSERT_GT(first_page.width, 400);
  EXPECT_GT(DifferentPixels(first_page, second_page), 200u);
  EXPECT_EQ(WindowStatus(), "");  // the window is gone
}

TEST_F(PreviewWindowTest, TheToolbarOffersExportOnlyWhenAllowed) {
  const Document document = testing::SampleDocument(1, "Toolbar");
  auto toolbar = [&](const PreviewSettings& settings) {
    char names[512] = "";
    EXPECT_EQ(LoadGuiModule().describe_toolbar(&document, &settings, names, sizeof names), 0)
        << names;
    return std::string(names);
  };
  PreviewSettings settings;
  EXPECT_EQ(toolbar(settings),
            "first,previous,page,next,last,zoom-out,zoom,zoom-in,print,find,find-previous,"
            "find-next,close");
  settings.allow_export = true;
  EXPECT_EQ(toolbar(settings),
            "first,previous,page,next,last,zoom-out,zoom,zoom-in,print,export,find,"
            "find-previous,find-next,close");
  settings.allow_print = false;
  settings.allow_find = false;
  settings.allow_export = false;
  EXPECT_EQ(toolbar(settings), "first,previous,page,next,last,zoom-out,zoom,zoom-in,close");
}

TEST_F(PreviewWindowTest, MessageBoxesAreDialogsOnTheDesktop) {
  bool found = false;
  bool closed = false;
  Image dialog;
  std::thread user_thread([&] {
    User user("Vantorel", shots_);
    found = user.FindWindow();
    if (!found) return;
    dialog = user.Screenshot("message.png");
    closed = user.Close("Return");  // the OK button
  });
  ::testing::internal::CaptureStderr();
  SystemPlatform()->ShowMessage("Challan Id [12] not found", MessageIcon::kCritical);
  const std::string stderr_text = ::testing::internal::GetCapturedStderr();
  user_thread.join();

  ASSERT_TRUE(found) << "no dialog appeared";
  EXPECT_TRUE(closed) << "Return did not close the dialog";
  EXPECT_GT(dialog.width, 100);
  EXPECT_EQ(stderr_text.find("vantorel:"), std::string::npos) << stderr_text;
}

TEST_F(PreviewWindowTest, TheWindowOpensInAHostOfTheSharedLibrary) {
  // The engine's shared library, loaded the way hosts load it, with its symbols global: the
  // window module keeps to its own copy of the engine code and must not trip over that one.
  void* engine = dlopen(VANTOREL_SHARED_LIBRARY, RTLD_NOW | RTLD_GLOBAL);
  ASSERT_NE(engine, nullptr) << dlerror();
  PreviewSettings settings;
  settings.title = title_;
  bool found = false;
  std::thread user_thread([&] {
    User user(title_, shots_);
    found = user.FindWindow();
    if (found) WaitFor([] { return StatusStartsWith("page 1 / 2"); });
  });
  ShowPreview(testing::SampleDocument(2, "Shared library host"), settings);
  user_thread.join();
  EXPECT_TRUE(found);
}

TEST_F(PreviewWindowTest, TheWindowIsAvailable) { EXPECT_TRUE(PreviewAvailable()); }

}  // namespace
}  // namespace vantorel::report
