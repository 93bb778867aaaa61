// What the window tests share: a virtual display from the "xvfb" fixture, a user at the
// keyboard (xdotool), screenshots (ImageMagick's import) and what the open window shows.
//
// GTK runs on the thread that initialised it, so a test shows its window on its own thread and a
// helper thread plays the user. The User presses Escape when it goes away, so the window closes
// even when a check fails; ctest's timeout catches a window that never appeared.
#ifndef VANTOREL_TESTS_REPORT_PREVIEW_DESKTOP_USER_H_
#define VANTOREL_TESTS_REPORT_PREVIEW_DESKTOP_USER_H_

#include <cairo.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "report/preview/gui_module.h"
#include "support/shell.h"

namespace vantorel::report::testing {

namespace fs = std::filesystem;

// What "command" wrote, without the line break at its end.
inline std::string Shell(const std::string& command) {
  std::string output = vantorel::testing::Shell(command);
  while (!output.empty() && (output.back() == '\n' || output.back() == ' ')) output.pop_back();
  return output;
}

// Polls "condition" until it holds or "seconds" have passed; whether it held.
inline std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < text.size()) {
    const size_t end = std::min(text.find('\n', start), text.size());
    if (end > start) lines.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return lines;
}

inline bool WaitFor(const std::function<bool()>& condition, double seconds = 10) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return true;
}

// What the open preview window shows: "page 2 / 3; zoom 100%; find 0 / 0".
inline std::string WindowStatus() {
  char status[256] = "";
  LoadGuiModule().status(status, sizeof status);
  return status;
}

inline bool StatusStartsWith(const std::string& prefix) {
  return WindowStatus().rfind(prefix, 0) == 0;
}

struct Image {
  int width = 0, height = 0;
  std::vector<uint32_t> pixels;
};

inline Image ReadPng(const fs::path& file) {
  Image image;
  cairo_surface_t* surface = cairo_image_surface_create_from_png(file.c_str());
  if (cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS) {
    image.width = cairo_image_surface_get_width(surface);
    image.height = cairo_image_surface_get_height(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    const unsigned char* data = cairo_image_surface_get_data(surface);
    for (int y = 0; y < image.height; ++y) {
      const auto* row = reinterpret_cast<const uint32_t*>(data + y * stride);
      image.pixels.insert(image.pixels.end(), row, row + image.width);
    }
  }
  cairo_surface_destroy(surface);
  return image;
}

inline size_t DifferentPixels(const Image& a, const Image& b) {
  if (a.width != b.width || a.height != b.height) return static_cast<size_t>(-1);
  size_t count = 0;
  for (size_t i = 0; i < a.pixels.size(); ++i) count += a.pixels[i] != b.pixels[i];
  return count;
}

// One top-level window, found by its exact title, and the user's hands on it.
class User {
 public:
  User(std::string title, fs::path shots) : title_(std::move(title)), shots_(std::move(shots)) {}

  // Closes the window; when it was never found, whatever windows are on the display, so that
  // the test fails instead of waiting for a window nobody closes.
  ~User() {
    if (!id_.empty()) {
      if (!Gone()) Close("Escape");
    } else {
      for (const std::string& id :
           Lines(Shell("xdotool search --onlyvisible --name . 2>/dev/null"))) {
        Shell("timeout 10 xdotool windowfocus --sync " + id + " key Escape");
      }
    }
  }

  // Waits until the window is on screen.
  bool FindWindow() {
    id_ = Shell("timeout 20 xdotool search --sync --onlyvisible --name '^" + title_ +
                "$' 2>/dev/null | head -n 1");
    return !id_.empty();
  }

  // Gives the window the keyboard and presses "keys" ("Next", "ctrl+f", …).
  void Keys(const std::string& keys) const {
    Shell("timeout 10 xdotool windowfocus --sync " + id_ + " key --clearmodifiers " + keys);
  }

  void Type(const std::string& text) const {
    Shell("timeout 10 xdotool type --delay 20 '" + text + "'");
  }

  // A screenshot of the window, saved as "name" in the shots folder.
  Image Screenshot(const std::string& name) const {
    std::this_thread::sleep_for(std::chrono::milliseconds(300));  // let GTK finish painting
    const fs::path file = shots_ / name;
    Shell("timeout 20 import -window " + id_ + " '" + file.string() + "'");
    return ReadPng(file);
  }

  // Presses "keys" until the window is gone: on a busy machine a key pressed while the window
  // is still being mapped can be lost. False when it stays after every try.
  bool Close(const std::string& keys, int tries = 4) const {
    for (int i = 0; i < tries; ++i) {
      Keys(keys);
      if (WaitFor([&] { return Gone(); }, 5)) return true;
    }
    return false;
  }

  bool Gone() const {
    return Shell("xdotool search --onlyvisible --name '^" + title_ + "$' 2>/dev/null").empty();
  }

 private:
  std::string title_;
  fs::path shots_;
  std::string id_;
};

// Puts the test on the display whose xvfb.sh folder is "xvfb_dir".
class DesktopTest : public ::testing::Test {
 protected:
  explicit DesktopTest(fs::path xvfb_dir = VANTOREL_XVFB_DIR) : xvfb_dir_(std::move(xvfb_dir)) {}

  void SetUp() override {
    std::ifstream file(xvfb_dir_ / "display");
    std::string display;
    ASSERT_TRUE(file >> display) << "no X display: run through ctest, whose xvfb_start fixture "
                                    "starts one (tests/support/xvfb.sh)";
    ::setenv("DISPLAY", display.c_str(), 1);
    ::unsetenv("WAYLAND_DISPLAY");
    ::unsetenv("VANTOREL_GUI_MODULE");
    // Quiet, quick GTK: no accessibility bus, no desktop settings store.
    ::setenv("NO_AT_BRIDGE", "1", 1);
    ::setenv("GSETTINGS_BACKEND", "memory", 1);
    shots_ = fs::temp_directory_path() / ("vantorel-preview-" + std::to_string(::getpid()));
    fs::create_directories(shots_);
    title_ = "Vantorel preview test " + std::to_string(::getpid());
  }

  void TearDown() override { fs::remove_all(shots_); }

  fs::path xvfb_dir_;
  fs::path shots_;
  std::string title_;
};

}  // namespace vantorel::report::testing

#endif  // VANTOREL_TESTS_REPORT_PREVIEW_DESKTOP_USER_H_
