// Where the pages of a page canvas lie and which part of them shows: the zoom, the scroll
// position and the page shown. Computed without a display, so the widget (page_canvas.h) only
// hands it GTK's sizes and scroll positions and copies its answers back, and so that all of it
// can be tested headless.
//
// Three kinds of coordinates: canvas pixels run over everything that scrolls, from its top left
// corner; view pixels over the part that shows, so a view point is the canvas point less the
// scroll position; page points (1/72 inch) from a page's top left corner.
//
// Thread-safety: a value; one object is used by one thread at a time.
#ifndef VANTOREL_REPORT_CANVAS_CANVAS_VIEW_H_
#define VANTOREL_REPORT_CANVAS_CANVAS_VIEW_H_

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "report/canvas/zoom.h"
#include "report/values/geometry.h"

namespace vantorel::report::canvas {

// How the pages lie on the canvas.
enum class PageFlow {
  kOnePage,     // the current page alone, and turning pages replaces it
  kContinuous,  // every page, one under another, scrolled through
};

// Pixels of background around the pages, and between them in continuous flow.
inline constexpr double kPageMargin = 16;

// A rectangle of canvas or view pixels.
struct PixelRect {
  double x = 0, y = 0, width = 0, height = 0;
  double right() const { return x + width; }
  double bottom() const { return y + height; }
  bool empty() const { return width <= 0 || height <= 0; }
  bool Contains(double px, double py) const {
    return !empty() && px >= x && px < right() && py >= y && py < bottom();
  }
  friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

// A place on a page: its index and the point, in points from its top left corner.
struct PagePoint {
  size_t page = 0;
  double x = 0, y = 0;
  friend bool operator==(const PagePoint&, const PagePoint&) = default;
};

class CanvasView {
 public:
  // A canvas over pages of "page_sizes" (points) in "flow", at 100%, showing the first page from
  // its top left corner. The view has no size until Resize.
  explicit CanvasView(std::vector<SizeF> page_sizes = {}, PageFlow flow = PageFlow::kOnePage);

  PageFlow flow() const { return flow_; }
  size_t page_count() const { return sizes_.size(); }

  // The page shown, 0 without pages. In one-page flow the current page. In continuous flow the
  // page at the middle of the view, or the page ShowPage went to when the canvas could not scroll
  // it to the top (the last pages of a document).
  size_t page() const { return page_; }

  ZoomMode zoom_mode() const { return mode_; }
  double zoom() const { return zoom_; }
  // Pixels per point at the current zoom.
  double scale() const { return zoom_ * kPixelsPerPoint; }

  double view_width() const { return view_width_; }
  double view_height() const { return view_height_; }
  double scroll_x() const { return scroll_x_; }
  double scroll_y() const { return scroll_y_; }

  // What the pages and their margins take, in whole pixels: the size a widget asks for.
  double content_width() const { return content_width_; }
  double content_height() const { return content_height_; }
  // The canvas: the content, and at least the view; narrower pages are centred on it.
  double canvas_width() const;
  double canvas_height() const;

  // Where page "page" lies on the canvas. Empty for a page that is not laid out: in one-page
  // flow every page but the current one, and any index past the last page.
  PixelRect PageRect(size_t page) const;

  // The laid-out pages that reach into canvas rows "top" to "bottom": the first and one past the
  // last, as for a loop that draws what shows.
  std::pair<size_t, size_t> PagesInRows(double top, double bottom) const;

  // The page under view pixel ("x", "y") and the point of it there, or nothing over the
  // background.
  std::optional<PagePoint> PageAt(double x, double y) const;

  // The view is now "width" × "height" pixels. A fitting zoom follows it; the place at the view's
  // top left corner stays there.
  void Resize(double width, double height);

  // Zooms to "zoom" (kFixed) or to fit (the other modes, which ignore "zoom"), keeping the place
  // under view pixel ("anchor_x", "anchor_y") under it, as far as the canvas can scroll. The
  // margins around the pages do not zoom: at the top left corner of a view showing the top of a
  // page, the top of the page stays in view.
  void SetZoom(ZoomMode mode, double zoom, double anchor_x = 0, double anchor_y = 0);

  // One zoom step in ("direction" > 0) or out, around view pixel ("anchor_x", "anchor_y").
  void ZoomBy(int direction, double anchor_x = 0, double anchor_y = 0);

  // Scrolls so that canvas pixel ("x", "y") is at the view's top left corner, as far as the
  // canvas reaches.
  void ScrollTo(double x, double y);

  // Shows page "page" (the last one when past it) from its top; the horizontal scroll stays.
  void ShowPage(size_t page);

  // Scrolls as little as brings "box" of page "page" (points) into view: a box out of view
  // comes to a third of the view from its top (or left) edge. In one-page flow turns to that
  // page first.
  void ScrollIntoView(size_t page, RectF box);

 private:
  // A place on the canvas relative to a page, for keeping it in view while the zoom changes.
  struct Place;
  Place PlaceAt(double canvas_x, double canvas_y) const;
  // Scrolls so that "place" is at view pixel ("x", "y"), as far as the canvas reaches.
  void ScrollToPlace(const Place& place, double x, double y);

  // Recomputes a fitting zoom and the pages' places.
  void Layout();
  void Clamp();
  // In continuous flow, the page at the middle of the view becomes the page shown.
  void FollowScroll();
  // The page whose place a canvas row "y" belongs to, for keeping it still while zooming.
  size_t PageAtRow(double y) const;
  // The page size a fitting zoom fits: the current page's, or in continuous flow the largest.
  SizeF FitSize() const;

  std::vector<SizeF> sizes_;
  PageFlow flow_ = PageFlow::kOnePage;
  size_t page_ = 0;
  ZoomMode mode_ = ZoomMode::kFixed;
  double zoom_ = 1.0;
  double view_width_ = 0;
  double view_height_ = 0;
  double scroll_x_ = 0;
  double scroll_y_ = 0;
  double content_width_ = 0;
  double content_height_ = 0;
  std::vector<double> tops_;  // continuous flow: each page's top on the canvas
};

}  // namespace vantorel::report::canvas

#endif  // VANTOREL_REPORT_CANVAS_CANVAS_VIEW_H_
