// The page canvas on its own, in a plain window on the virtual X display (the "xvfb" fixture,
// tests/support/xvfb.sh): scrolled and zoomed with the mouse and keys as a user would, and
// watched through screenshots and what the canvas reports.
#include "report/canvas/page_canvas.h"

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <string>
#include <thread>

#include "report/preview/desktop_user.h"

namespace vantorel::report::canvas {
namespace {

using report::testing::Image;
using report::testing::Shell;
using report::testing::User;
using report::testing::WaitFor;

constexpr uint32_t kBlack = 0xff000000;
constexpr uint32_t kWhite = 0xffffffff;

// Two pages of 300 × 400 points, each with a black box: 120 × 60 points at (60, 90) on the
// first, 90 × 90 points at (150, 30) on the second.
Document BoxDocument() {
  Document document;
  for (const RectF box : {RectF{60, 90, 120, 60}, RectF{150, 30, 90, 90}}) {
    Page page;
    page.size = {300, 400};
    RectItem item;
    item.box = box;
    item.fill = Color::Black();
    item.stroke.width = 0;
    page.items.push_back(item);
    document.pages.push_back(page);
  }
  return document;
}

// A plain window of 500 × 400 pixels holding nothing but a canvas in continuous flow, with the
// keys a window would give it: + and − zoom by steps, w and p fit the width and the page, Home
// and End show the first and last pages, Escape closes. What the canvas shows is kept as
// "page 1 / 2; zoom 100%; scroll 0,0" for the user's thread.
class CanvasWindow {
 public:
  CanvasWindow(const Document& document, const std::string& title)
      : canvas_(document, PageFlow::kContinuous) {
    window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_title(GTK_WINDOW(window_), title.c_str());
    gtk_window_set_default_size(GTK_WINDOW(window_), 500, 400);
    gtk_container_add(GTK_CONTAINER(window_), canvas_.widget());
    g_signal_connect(window_, "destroy", G_CALLBACK(+[](GtkWidget*, gpointer loop) {
                       g_main_loop_quit(static_cast<GMainLoop*>(loop));
                     }),
                     loop_);
    g_signal_connect(window_, "key-press-event",
                     G_CALLBACK(+[](GtkWidget*, GdkEventKey* event, gpointer data) {
                       return static_cast<CanvasWindow*>(data)->OnKey(event->keyval);
                     }),
                     this);
    canvas_.SetOnChanged([this] { Report(); });
    // Scrolling within a page is no change to the canvas's users; the test wants it all the same.
    GtkScrolledWindow* scrolled = GTK_SCROLLED_WINDOW(canvas_.widget());
    for (GtkAdjustment* adjustment : {gtk_scrolled_window_get_hadjustment(scrolled),
                                      gtk_scrolled_window_get_vadjustment(scrolled)}) {
      g_signal_connect(adjustment, "value-changed", G_CALLBACK(+[](GtkAdjustment*, gpointer data) {
                         static_cast<CanvasWindow*>(data)->Report();
                       }),
                       this);
    }
    Report();
  }

  ~CanvasWindow() { g_main_loop_unref(loop_); }

  CanvasWindow(const CanvasWindow&) = delete;
  CanvasWindow& operator=(const CanvasWindow&) = delete;

  // Shows the window and runs until it is closed.
  void Run() {
    gtk_widget_show_all(window_);
    canvas_.GrabFocus();
    g_main_loop_run(loop_);
    window_ = nullptr;
    // Sends the closing to the display now, so the user sees the window go.
    for (int round = 0; round < 100 && gtk_events_pending(); ++round) gtk_main_iteration_do(FALSE);
    gdk_display_flush(gdk_display_get_default());
  }

  std::string Status() const {
    std::lock_guard lock(mutex_);
    return status_;
  }

 private:
  gboolean OnKey(guint key) {
    switch (key) {
      case GDK_KEY_plus:
        canvas_.ZoomBy(1);
        break;
      case GDK_KEY_minus:
        canvas_.ZoomBy(-1);
        break;
      case GDK_KEY_w:
        canvas_.SetZoom(ZoomMode::kFitWidth);
        break;
      case GDK_KEY_p:
        canvas_.SetZoom(ZoomMode::kFitPage);
        break;
      case GDK_KEY_Home:
        canvas_.ShowPage(0);
        break;
      case GDK_KEY_End:
        canvas_.ShowPage(canvas_.page_count() - 1);
        break;
      case GDK_KEY_Escape:
        gtk_widget_destroy(window_);
        break;
      default:
        return FALSE;
    }
    return TRUE;
  }

  void Report() {
    const CanvasView& view = canvas_.view();
    char text[128];
    std::snprintf(text, sizeof text, "page %zu / %zu; zoom %ld%%; scroll %ld,%ld", view.page() + 1,
                  view.page_count(), std::lround(view.zoom() * 100), std::lround(view.scroll_x()),
                  std::lround(view.scroll_y()));
    std::lock_guard lock(mutex_);
    status_ = text;
  }

  PageCanvas canvas_;
  GtkWidget* window_ = nullptr;
  GMainLoop* loop_ = g_main_loop_new(nullptr, FALSE);
  mutable std::mutex mutex_;
  std::string status_;  // guarded by mutex_
};

uint32_t At(const Image& image, int x, int y) {
  if (x < 0 || y < 0 || x >= image.width || y >= image.height) return 0;
  return image.pixels[static_cast<size_t>(y) * image.width + x];
}

// The last black pixel from ("x", "y") on, going ("dx", "dy") a pixel at a time: where the
// black box there ends.
int BoxEdge(const Image& image, int x, int y, int dx, int dy) {
  while (At(image, x + dx, y + dy) == kBlack) {
    x += dx;
    y += dy;
  }
  return dx != 0 ? x : y;
}

// The scroll position in a status ("…; scroll 31,412").
void ScrollOf(const std::string& status, long& x, long& y) {
  x = y = -1;
  std::sscanf(status.c_str() + status.find("scroll "), "scroll %ld,%ld", &x, &y);
}

using PageCanvasTest = report::testing::DesktopTest;

TEST_F(PageCanvasTest, ScrollsZoomsAroundThePointerAndDrawsThePagesWhereItSays) {
  gtk_disable_setlocale();
  ASSERT_TRUE(gtk_init_check(nullptr, nullptr)) << "GTK cannot open the display";
  const Document document = BoxDocument();
  CanvasWindow window(document, title_);

  bool found = false;
  std::string first, scrolled, zoomed, stepped, fit_width, fit_page;
  Image first_shot, scrolled_shot, zoomed_shot, fit_width_shot, fit_page_shot;
  long scroll_x = -1, scroll_y = -1, zoomed_x = -1, zoomed_y = -1;
  std::thread user_thread([&] {
    User user(title_, shots_);
    found = user.FindWindow();
    if (!found) return;
    const std::string id =
        Shell("xdotool search --onlyvisible --name '^" + title_ + "$' | head -n 1");
    auto mouse = [&](const std::string& actions) { Shell("timeout 10 xdotool " + actions); };
    auto wait_for = [&](const std::string& part) {
      WaitFor([&] { return window.Status().find(part) != std::string::npos; });
      return window.Status();
    };

    first = wait_for("page 1 / 2; zoom 100%; scroll 0,0");
    first_shot = user.Screenshot("first.png");

    // The wheel scrolls, a notch at a time, until the second page is the one shown.
    mouse("mousemove --window " + id + " 250 200");
    for (int notch = 0; notch < 30 && window.Status().rfind("page 2", 0) != 0; ++notch) {
      mouse("click 5");
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    scrolled = wait_for("page 2 / 2");
    ScrollOf(scrolled, scroll_x, scroll_y);
    scrolled_shot = user.Screenshot("scrolled.png");

    // Ctrl + wheel over the middle of the second page's box: one step in, around that point.
    const long box_y = 566 + 100 - scroll_y;
    mouse("mousemove --window " + id + " 310 " + std::to_string(box_y));
    mouse("keydown ctrl click 4 keyup ctrl");
    zoomed = wait_for("zoom 125%");
    ScrollOf(zoomed, zoomed_x, zoomed_y);
    zoomed_shot = user.Screenshot("zoomed.png");

    user.Keys("minus");
    wait_for("zoom 100%");
    user.Keys("plus");
    wait_for("zoom 125%");
    user.Keys("minus");
    stepped = wait_for("zoom 100%");

    user.Keys("Home");
    wait_for("page 1 / 2");
    user.Keys("w");
    fit_width = wait_for("zoom 117%");
    fit_width_shot = user.Screenshot("fit-width.png");
    user.Keys("p");
    fit_page = wait_for("zoom 69%");
    fit_page_shot = user.Screenshot("fit-page.png");
  });
  window.Run();  // until the user has closed the window
  user_thread.join();

  ASSERT_TRUE(found) << "the window did not appear";
  EXPECT_EQ(first, "page 1 / 2; zoom 100%; scroll 0,0");

  // At 100% the first page is 400 × 533⅓ pixels, centred in the 500 pixels of the window, 16
  // below its top; its box 160 × 80 pixels at (80, 120) on it.
  ASSERT_EQ(first_shot.width, 500);
  ASSERT_EQ(first_shot.height, 400);
  const uint32_t grey = At(first_shot, 2, 2);
  EXPECT_NE(grey, kWhite);
  EXPECT_NE(grey, kBlack);
  EXPECT_EQ(At(first_shot, 210, 176), kBlack);
  EXPECT_EQ(BoxEdge(first_shot, 210, 176, -1, 0), 130);
  EXPECT_EQ(BoxEdge(first_shot, 210, 176, 1, 0), 289);
  EXPECT_EQ(BoxEdge(first_shot, 210, 176, 0, -1), 136);
  EXPECT_EQ(BoxEdge(first_shot, 210, 176, 0, 1), 215);
  EXPECT_EQ(At(first_shot, 60, 30), kWhite);  // the page
  EXPECT_EQ(At(first_shot, 30, 200), grey);   // left of it

  // Scrolled: the second page starts 566 pixels down the canvas; its box is 120 pixels square
  // at (200, 40) on it.
  EXPECT_GE(scroll_y, 566 - 200) << scrolled;
  EXPECT_EQ(scroll_x, 0) << scrolled;
  const int box_top = static_cast<int>(566 + 40 - scroll_y);
  EXPECT_EQ(At(scrolled_shot, 310, box_top + 60), kBlack) << scrolled;
  EXPECT_EQ(BoxEdge(scrolled_shot, 310, box_top + 60, -1, 0), 250);
  EXPECT_EQ(BoxEdge(scrolled_shot, 310, box_top + 60, 1, 0), 369);
  EXPECT_NEAR(BoxEdge(scrolled_shot, 310, box_top + 60, 0, -1), box_top, 1);

  // Zoomed in around the middle of the box: it stays under the pointer and grows to 150 pixels.
  const int pointer_y = box_top + 60;
  EXPECT_EQ(At(zoomed_shot, 310, pointer_y), kBlack) << zoomed;
  EXPECT_NEAR(BoxEdge(zoomed_shot, 310, pointer_y, -1, 0), 310 - 75, 2) << zoomed;
  EXPECT_NEAR(BoxEdge(zoomed_shot, 310, pointer_y, 1, 0), 310 + 74, 2) << zoomed;
  EXPECT_NEAR(BoxEdge(zoomed_shot, 310, pointer_y, 0, -1), pointer_y - 75, 2) << zoomed;
  EXPECT_NEAR(BoxEdge(zoomed_shot, 310, pointer_y, 0, 1), pointer_y + 74, 2) << zoomed;
  EXPECT_GT(zoomed_x, 0) << zoomed;  // the page is wider than the window now
  EXPECT_NE(stepped.find("zoom 100%"), std::string::npos) << stepped;

  // Fit width: the page fills the window's width less 16 pixels each side.
  EXPECT_EQ(fit_width.substr(0, 21), "page 1 / 2; zoom 117%");
  EXPECT_EQ(At(fit_width_shot, 17, 300), kWhite);
  EXPECT_EQ(At(fit_width_shot, 482, 300), kWhite);
  EXPECT_EQ(At(fit_width_shot, 8, 300), grey);
  EXPECT_EQ(At(fit_width_shot, 492, 300), grey);

  // Fit page: all of the page's 400 points of height in the 400 pixels less the margins, so it
  // is 276 pixels wide, centred.
  EXPECT_EQ(fit_page.substr(0, 20), "page 1 / 2; zoom 69%");
  EXPECT_EQ(At(fit_page_shot, 105, 100), grey);
  EXPECT_EQ(At(fit_page_shot, 118, 100), kWhite);
  EXPECT_EQ(At(fit_page_shot, 383, 100), kWhite);
  EXPECT_EQ(At(fit_page_shot, 395, 100), grey);
  EXPECT_EQ(At(fit_page_shot, 250, 392), grey);  // below it: the page ends 384 pixels down
}

}  // namespace
}  // namespace vantorel::report::canvas
