// What the preview window computes without GTK: zoom steps and fitting a page into the visible
// area, and finding text in a prepared document. Kept apart from the window so it can be tested
// without a display.
//
// Thread-safety: plain functions over values; safe from any thread.
#ifndef VANTOREL_REPORT_PREVIEW_VIEW_MODEL_H_
#define VANTOREL_REPORT_PREVIEW_VIEW_MODEL_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "report/document/document.h"

namespace vantorel::report::preview {

// A page at 100% shows at its paper size on a 96-dpi screen.
inline constexpr double kPixelsPerPoint = 96.0 / 72.0;

// The zoom levels the window offers, as fractions of 100%.
inline constexpr double kZoomSteps[] = {0.5, 0.75, 1.0, 1.25, 1.5, 2.0, 3.0, 4.0};
inline constexpr size_t kZoomStepCount = sizeof(kZoomSteps) / sizeof(kZoomSteps[0]);

enum class ZoomMode { kFixed, kFitWidth, kFitPage };

// The next step above (below) "zoom", or the largest (smallest) step when there is none.
double ZoomIn(double zoom);
double ZoomOut(double zoom);

// The zoom that fits a page of "page" points into a view of "view_width" × "view_height"
// pixels less "margin" pixels on every side: its width for kFitWidth, all of it for kFitPage.
// Never below a tenth of the smallest step, so a tiny window still shows something.
double FitZoom(ZoomMode mode, SizeF page, double view_width, double view_height, double margin);

// A text box that contains what the user looks for.
struct Match {
  size_t page = 0;
  RectF box;
  friend bool operator==(const Match&, const Match&) = default;
};

// Every text item of "document" whose text contains "needle", regardless of case (Unicode case
// folding, so "ÉCHÉANCE" finds "échéance"), page by page in drawing order, groups included.
// An empty needle finds nothing.
std::vector<Match> FindText(const Document& document, std::string_view needle);

// The index of the first match on "page" or a later one, wrapping to the first match; 0 when
// "matches" is empty.
size_t FirstMatchFrom(const std::vector<Match>& matches, size_t page);

}  // namespace vantorel::report::preview

#endif  // VANTOREL_REPORT_PREVIEW_VIEW_MODEL_H_
