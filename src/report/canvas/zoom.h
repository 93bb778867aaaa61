// How far a page canvas magnifies a page: the zoom steps it offers and the zoom that fits a page
// into the visible area. 100% shows a page at its paper size on a 96-dpi screen.
//
// Thread-safety: plain functions over values; safe from any thread.
#ifndef VANTOREL_REPORT_CANVAS_ZOOM_H_
#define VANTOREL_REPORT_CANVAS_ZOOM_H_

#include <cstddef>

#include "report/values/geometry.h"

namespace vantorel::report::canvas {

// Screen pixels per point at 100%.
inline constexpr double kPixelsPerPoint = 96.0 / 72.0;

// The zoom levels offered, as fractions of 100%.
inline constexpr double kZoomSteps[] = {0.5, 0.75, 1.0, 1.25, 1.5, 2.0, 3.0, 4.0};
inline constexpr size_t kZoomStepCount = sizeof(kZoomSteps) / sizeof(kZoomSteps[0]);

// A fixed zoom, or one that follows the visible area: a page's width fills it, or all of a page
// fits in it.
enum class ZoomMode { kFixed, kFitWidth, kFitPage };

// The next step above (below) "zoom", or the largest (smallest) step when there is none.
double ZoomIn(double zoom);
double ZoomOut(double zoom);

// The zoom that fits a page of "page" points into a view of "view_width" × "view_height"
// pixels less "margin" pixels on every side: its width for kFitWidth, all of it for kFitPage;
// 1 for kFixed. Never below a tenth of the smallest step, so a tiny window still shows
// something.
double FitZoom(ZoomMode mode, SizeF page, double view_width, double view_height, double margin);

}  // namespace vantorel::report::canvas

#endif  // VANTOREL_REPORT_CANVAS_ZOOM_H_
