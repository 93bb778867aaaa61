// What the preview window computes without GTK: finding text in a prepared document, and the
// zoom steps and fitting of the page canvas it shows the pages in, under the names the window
// has always used. Kept apart from the window so it can be tested without a display.
//
// Thread-safety: plain functions over values; safe from any thread.
#ifndef VANTOREL_REPORT_PREVIEW_VIEW_MODEL_H_
#define VANTOREL_REPORT_PREVIEW_VIEW_MODEL_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "report/canvas/zoom.h"
#include "report/document/document.h"

namespace vantorel::report::preview {

using canvas::FitZoom;
using canvas::kPixelsPerPoint;
using canvas::kZoomStepCount;
using canvas::kZoomSteps;
using canvas::ZoomIn;
using canvas::ZoomMode;
using canvas::ZoomOut;

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
