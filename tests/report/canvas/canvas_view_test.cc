#include "report/canvas/canvas_view.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <utility>
#include <vector>

namespace vantorel::report::canvas {
namespace {

// Two pages of 300 × 400 points: 400 × 533⅓ pixels at 100%.
const std::vector<SizeF> kTwoPages = {{300, 400}, {300, 400}};
constexpr double kPageWidth = 400;
constexpr double kPageHeight = 400 * kPixelsPerPoint;

CanvasView Sized(PageFlow flow, double width, double height, std::vector<SizeF> pages = kTwoPages) {
  CanvasView view(std::move(pages), flow);
  view.Resize(width, height);
  return view;
}

TEST(CanvasView, OnePageFlowCentresTheCurrentPageBelowAMargin) {
  const CanvasView view = Sized(PageFlow::kOnePage, 600, 500);
  EXPECT_EQ(view.PageRect(0), (PixelRect{100, kPageMargin, kPageWidth, kPageHeight}));
  EXPECT_TRUE(view.PageRect(1).empty());
  EXPECT_EQ(view.content_width(), 432);
  EXPECT_EQ(view.content_height(), std::ceil(kPageHeight + 32));
  EXPECT_EQ(view.canvas_width(), 600);  // the view is wider than the page and its margins
}

TEST(CanvasView, ContinuousFlowPutsThePagesOneUnderAnother) {
  const CanvasView view = Sized(PageFlow::kContinuous, 600, 500);
  EXPECT_EQ(view.PageRect(0).y, 16);
  EXPECT_EQ(view.PageRect(1).y, 16 + 534 + 16);
  EXPECT_EQ(view.PageRect(1).x, 100);
  EXPECT_EQ(view.content_height(), 16 + 534 + 16 + 534 + 16);
  EXPECT_EQ(view.PagesInRows(0, 100), (std::pair<size_t, size_t>{0, 1}));
  EXPECT_EQ(view.PagesInRows(500, 600), (std::pair<size_t, size_t>{0, 2}));
  EXPECT_EQ(view.PagesInRows(700, 800), (std::pair<size_t, size_t>{1, 2}));
}

TEST(CanvasView, APagePointIsFoundUnderAViewPixel) {
  CanvasView view = Sized(PageFlow::kContinuous, 600, 500);
  view.ScrollTo(0, 300);
  const std::optional<PagePoint> point = view.PageAt(100 + 40, 566 - 300 + 20);
  ASSERT_TRUE(point.has_value());
  EXPECT_EQ(point->page, 1u);
  EXPECT_NEAR(point->x, 30, 1e-9);
  EXPECT_NEAR(point->y, 15, 1e-9);
  EXPECT_FALSE(view.PageAt(50, 100).has_value());             // the grey beside the pages
  EXPECT_FALSE(view.PageAt(200, 566 - 300 - 8).has_value());  // between them
}

TEST(CanvasView, ZoomingAroundAPointKeepsThatPlaceUnderIt) {
  CanvasView view = Sized(PageFlow::kContinuous, 500, 400);
  view.ScrollTo(0, 300);
  const double x = 310, y = 350;
  const std::optional<PagePoint> before = view.PageAt(x, y);
  ASSERT_TRUE(before.has_value());
  view.ZoomBy(1, x, y);
  EXPECT_DOUBLE_EQ(view.zoom(), 1.25);
  const std::optional<PagePoint> after = view.PageAt(x, y);
  ASSERT_TRUE(after.has_value());
  EXPECT_EQ(after->page, before->page);
  EXPECT_NEAR(after->x, before->x, 1e-9);
  EXPECT_NEAR(after->y, before->y, 1e-9);
}

TEST(CanvasView, ZoomingBetweenPagesKeepsTheDistanceFromThePageAbove) {
  CanvasView view = Sized(PageFlow::kContinuous, 500, 400);
  view.ScrollTo(0, 300);
  const double row = 566 - 8 - 300;  // 8 pixels above the second page
  const double below = 566 - 8 - view.PageRect(0).bottom();
  view.ZoomBy(1, 250, row);
  EXPECT_DOUBLE_EQ(view.zoom(), 1.25);
  EXPECT_NEAR(view.PageRect(0).bottom() + below - view.scroll_y(), row, 1e-9);
}

TEST(CanvasView, ZoomingAroundAPointStopsAtTheCanvasEdges) {
  CanvasView view = Sized(PageFlow::kOnePage, 1000, 800);
  view.ZoomBy(-1, 900, 700);  // the page shrinks; there is nothing to scroll to
  EXPECT_DOUBLE_EQ(view.zoom(), 0.75);
  EXPECT_EQ(view.scroll_x(), 0);
  EXPECT_EQ(view.scroll_y(), 0);
}

TEST(CanvasView, StepsWithoutAPointerKeepTheTopOfThePageInView) {
  CanvasView view = Sized(PageFlow::kOnePage, 1000, 700);
  view.ZoomBy(1);
  EXPECT_DOUBLE_EQ(view.zoom(), 1.25);
  EXPECT_EQ(view.scroll_x(), 0);
  EXPECT_EQ(view.scroll_y(), 0);
  view.ZoomBy(-1);
  EXPECT_EQ(view.scroll_y(), 0);  // the margin above the page does not zoom
  view.ZoomBy(1);
  for (int step = 0; step < 6; ++step) view.ZoomBy(1);
  EXPECT_DOUBLE_EQ(view.zoom(), 4.0);  // the largest step, and no further
  view.SetZoom(ZoomMode::kFixed, 1.0);
  for (int step = 0; step < 3; ++step) view.ZoomBy(-1);
  EXPECT_DOUBLE_EQ(view.zoom(), 0.5);
}

TEST(CanvasView, FittingFollowsTheViewsSize) {
  CanvasView view = Sized(PageFlow::kOnePage, 500, 400);
  view.SetZoom(ZoomMode::kFitWidth, 0);
  EXPECT_NEAR(view.PageRect(0).width, 500 - 2 * kPageMargin, 1e-9);
  view.Resize(800, 400);
  EXPECT_NEAR(view.PageRect(0).width, 800 - 2 * kPageMargin, 1e-9);
  view.SetZoom(ZoomMode::kFitPage, 0);
  EXPECT_NEAR(view.PageRect(0).height, 400 - 2 * kPageMargin, 1e-9);
  EXPECT_EQ(view.zoom_mode(), ZoomMode::kFitPage);
  view.SetZoom(ZoomMode::kFixed, 2.0);
  view.Resize(300, 300);
  EXPECT_DOUBLE_EQ(view.zoom(), 2.0);  // a fixed zoom stays
}

TEST(CanvasView, ContinuousFlowFitsTheLargestPage) {
  CanvasView view = Sized(PageFlow::kContinuous, 500, 400, {{300, 400}, {600, 200}});
  view.SetZoom(ZoomMode::kFitWidth, 0);
  EXPECT_NEAR(view.PageRect(1).width, 500 - 2 * kPageMargin, 1e-9);
  EXPECT_NEAR(view.PageRect(0).width, (500 - 2 * kPageMargin) / 2, 1e-9);
}

TEST(CanvasView, ScrollingStopsAtTheCanvasEdges) {
  CanvasView view = Sized(PageFlow::kContinuous, 600, 500);
  view.ScrollTo(-50, 5000);
  EXPECT_EQ(view.scroll_x(), 0);
  EXPECT_EQ(view.scroll_y(), view.content_height() - 500);
}

TEST(CanvasView, ThePageShownInContinuousFlowIsTheOneAtTheMiddleOfTheView) {
  CanvasView view = Sized(PageFlow::kContinuous, 600, 500);
  EXPECT_EQ(view.page(), 0u);
  view.ScrollTo(0, 566 - 250 - 1);  // the middle row is just above the second page
  EXPECT_EQ(view.page(), 0u);
  view.ScrollTo(0, 566 - 250);
  EXPECT_EQ(view.page(), 1u);
}

TEST(CanvasView, ShowingAPageScrollsToItsTop) {
  CanvasView view = Sized(PageFlow::kContinuous, 600, 300);
  view.ShowPage(1);
  EXPECT_EQ(view.page(), 1u);
  EXPECT_EQ(view.scroll_y(), 566 - kPageMargin);
  view.ShowPage(7);  // past the last page: the last page
  EXPECT_EQ(view.page(), 1u);
  view.ShowPage(0);
  EXPECT_EQ(view.scroll_y(), 0);
  EXPECT_EQ(view.page(), 0u);
}

TEST(CanvasView, TheLastPageCountsAsShownWhenTheCanvasEndsBeforeItsTop) {
  CanvasView view = Sized(PageFlow::kContinuous, 600, 1000);
  view.ShowPage(1);
  EXPECT_EQ(view.scroll_y(), view.content_height() - 1000);
  EXPECT_EQ(view.page(), 1u);
}

TEST(CanvasView, TurningPagesInOnePageFlowStartsAtTheTopAndKeepsTheHorizontalScroll) {
  CanvasView view = Sized(PageFlow::kOnePage, 300, 300);
  view.ScrollTo(40, 100);
  view.ShowPage(1);
  EXPECT_EQ(view.page(), 1u);
  EXPECT_EQ(view.scroll_x(), 40);
  EXPECT_EQ(view.scroll_y(), 0);
  EXPECT_TRUE(view.PageRect(0).empty());
  EXPECT_FALSE(view.PageRect(1).empty());
}

TEST(CanvasView, ABoxOutOfViewComesToAThirdOfTheView) {
  CanvasView view = Sized(PageFlow::kOnePage, 600, 300);
  view.ScrollIntoView(1, {30, 250, 100, 12});
  EXPECT_EQ(view.page(), 1u);
  EXPECT_DOUBLE_EQ(view.scroll_y(), kPageMargin + 250 * kPixelsPerPoint - 100);
  const double scrolled = view.scroll_y();
  view.ScrollIntoView(1, {30, 260, 100, 12});  // already in view: nothing moves
  EXPECT_EQ(view.scroll_y(), scrolled);
}

TEST(CanvasView, ADocumentWithoutPagesShowsNothing) {
  CanvasView view = Sized(PageFlow::kContinuous, 600, 500, {});
  view.ZoomBy(1, 10, 10);
  view.ShowPage(3);
  view.ScrollIntoView(0, {0, 0, 10, 10});
  EXPECT_EQ(view.page(), 0u);
  EXPECT_EQ(view.content_height(), 0);
  EXPECT_FALSE(view.PageAt(10, 10).has_value());
  EXPECT_EQ(view.PagesInRows(0, 500), (std::pair<size_t, size_t>{0, 0}));
}

}  // namespace
}  // namespace vantorel::report::canvas
