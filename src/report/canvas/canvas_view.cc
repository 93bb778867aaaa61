#include "report/canvas/canvas_view.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vantorel::report::canvas {
namespace {

// Where a canvas row (or column) lies along one axis of a page: on it, in points; or in the
// margin before or after it, in pixels, as the margins do not zoom. So zooming at the top left
// corner of a view that shows the top of a page keeps showing the top of the page.
struct AxisPlace {
  enum Side { kBefore, kOn, kAfter } side = kOn;
  double distance = 0;
};

AxisPlace PlaceOnAxis(double position, double start, double length, double scale) {
  if (position < start) return {AxisPlace::kBefore, start - position};
  if (position > start + length) return {AxisPlace::kAfter, position - start - length};
  return {AxisPlace::kOn, (position - start) / scale};
}

double PositionOnAxis(const AxisPlace& place, double start, double length, double scale) {
  switch (place.side) {
    case AxisPlace::kBefore:
      return start - place.distance;
    case AxisPlace::kAfter:
      return start + length + place.distance;
    case AxisPlace::kOn:
      break;
  }
  return start + place.distance * scale;
}

}  // namespace

struct CanvasView::Place {
  size_t page = 0;
  AxisPlace x, y;
};

CanvasView::CanvasView(std::vector<SizeF> page_sizes, PageFlow flow)
    : sizes_(std::move(page_sizes)), flow_(flow) {
  Layout();
}

double CanvasView::canvas_width() const { return std::max(view_width_, content_width_); }

double CanvasView::canvas_height() const { return std::max(view_height_, content_height_); }

PixelRect CanvasView::PageRect(size_t page) const {
  if (page >= sizes_.size()) return {};
  if (flow_ == PageFlow::kOnePage && page != page_) return {};
  const double width = sizes_[page].width * scale();
  const double height = sizes_[page].height * scale();
  // Whole pixels, so the page's edges stay sharp.
  const double x = std::floor(std::max(kPageMargin, (canvas_width() - width) / 2));
  const double y = flow_ == PageFlow::kOnePage ? kPageMargin : tops_[page];
  return {x, y, width, height};
}

std::pair<size_t, size_t> CanvasView::PagesInRows(double top, double bottom) const {
  if (sizes_.empty()) return {0, 0};
  if (flow_ == PageFlow::kOnePage) return {page_, page_ + 1};
  const auto end = std::lower_bound(tops_.begin(), tops_.end(), bottom);
  return {PageAtRow(top), static_cast<size_t>(end - tops_.begin())};
}

std::optional<PagePoint> CanvasView::PageAt(double x, double y) const {
  if (sizes_.empty()) return std::nullopt;
  const double canvas_x = scroll_x_ + x;
  const double canvas_y = scroll_y_ + y;
  const size_t page = PageAtRow(canvas_y);
  const PixelRect place = PageRect(page);
  if (!place.Contains(canvas_x, canvas_y)) return std::nullopt;
  return PagePoint{page, (canvas_x - place.x) / scale(), (canvas_y - place.y) / scale()};
}

void CanvasView::Resize(double width, double height) {
  if (width == view_width_ && height == view_height_) return;
  const Place corner = PlaceAt(scroll_x_, scroll_y_);
  view_width_ = width;
  view_height_ = height;
  Layout();
  ScrollToPlace(corner, 0, 0);
}

void CanvasView::SetZoom(ZoomMode mode, double zoom, double anchor_x, double anchor_y) {
  const Place anchor = PlaceAt(scroll_x_ + anchor_x, scroll_y_ + anchor_y);
  mode_ = mode;
  if (mode == ZoomMode::kFixed && zoom > 0) zoom_ = zoom;
  Layout();
  ScrollToPlace(anchor, anchor_x, anchor_y);
}

void CanvasView::ZoomBy(int direction, double anchor_x, double anchor_y) {
  SetZoom(ZoomMode::kFixed, direction > 0 ? ZoomIn(zoom_) : ZoomOut(zoom_), anchor_x, anchor_y);
}

void CanvasView::ScrollTo(double x, double y) {
  scroll_x_ = x;
  scroll_y_ = y;
  Clamp();
  FollowScroll();
}

void CanvasView::ShowPage(size_t page) {
  if (sizes_.empty()) return;
  page_ = std::min(page, sizes_.size() - 1);
  Layout();
  scroll_y_ = PageRect(page_).y - kPageMargin;
  Clamp();
}

void CanvasView::ScrollIntoView(size_t page, RectF box) {
  if (page >= sizes_.size()) return;
  if (flow_ == PageFlow::kOnePage && page != page_) ShowPage(page);
  const PixelRect place = PageRect(page);
  const double top = place.y + box.y * scale();
  const double bottom = place.y + box.bottom() * scale();
  if (top < scroll_y_ || bottom > scroll_y_ + view_height_) {
    scroll_y_ = std::max(0.0, top - view_height_ / 3);
  }
  const double left = place.x + box.x * scale();
  const double right = place.x + box.right() * scale();
  if (left < scroll_x_ || right > scroll_x_ + view_width_) {
    scroll_x_ = std::max(0.0, left - view_width_ / 3);
  }
  Clamp();
  page_ = page;
}

CanvasView::Place CanvasView::PlaceAt(double canvas_x, double canvas_y) const {
  Place place;
  place.page = PageAtRow(canvas_y);
  const PixelRect page = PageRect(place.page);
  place.x = PlaceOnAxis(canvas_x, page.x, page.width, scale());
  place.y = PlaceOnAxis(canvas_y, page.y, page.height, scale());
  return place;
}

void CanvasView::ScrollToPlace(const Place& place, double x, double y) {
  const PixelRect page = PageRect(place.page);
  scroll_x_ = PositionOnAxis(place.x, page.x, page.width, scale()) - x;
  scroll_y_ = PositionOnAxis(place.y, page.y, page.height, scale()) - y;
  Clamp();
  FollowScroll();
}

void CanvasView::Layout() {
  if (sizes_.empty()) {
    content_width_ = content_height_ = 0;
    return;
  }
  if (mode_ != ZoomMode::kFixed && view_width_ > 0) {
    zoom_ = FitZoom(mode_, FitSize(), view_width_, view_height_, kPageMargin);
  }
  const double scale = this->scale();
  if (flow_ == PageFlow::kOnePage) {
    const SizeF size = sizes_[page_];
    content_width_ = std::ceil(size.width * scale + 2 * kPageMargin);
    content_height_ = std::ceil(size.height * scale + 2 * kPageMargin);
    return;
  }
  tops_.resize(sizes_.size());
  double top = kPageMargin;
  double widest = 0;
  for (size_t i = 0; i < sizes_.size(); ++i) {
    tops_[i] = top;
    top += std::ceil(sizes_[i].height * scale) + kPageMargin;
    widest = std::max(widest, static_cast<double>(sizes_[i].width));
  }
  content_width_ = std::ceil(widest * scale + 2 * kPageMargin);
  content_height_ = top;
}

void CanvasView::Clamp() {
  scroll_x_ = std::clamp(scroll_x_, 0.0, std::max(0.0, canvas_width() - view_width_));
  scroll_y_ = std::clamp(scroll_y_, 0.0, std::max(0.0, canvas_height() - view_height_));
}

void CanvasView::FollowScroll() {
  if (flow_ == PageFlow::kContinuous && !sizes_.empty()) {
    page_ = PageAtRow(scroll_y_ + view_height_ / 2);
  }
}

size_t CanvasView::PageAtRow(double y) const {
  if (flow_ == PageFlow::kOnePage || tops_.empty()) return page_;
  const auto after = std::upper_bound(tops_.begin(), tops_.end(), y);
  return after == tops_.begin() ? 0 : static_cast<size_t>(after - tops_.begin()) - 1;
}

SizeF CanvasView::FitSize() const {
  if (flow_ == PageFlow::kOnePage) return sizes_[page_];
  SizeF largest;
  for (const SizeF& size : sizes_) {
    largest.width = std::max(largest.width, size.width);
    largest.height = std::max(largest.height, size.height);
  }
  return largest;
}

}  // namespace vantorel::report::canvas
