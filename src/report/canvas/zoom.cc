#include "report/canvas/zoom.h"

#include <algorithm>

namespace vantorel::report::canvas {

double ZoomIn(double zoom) {
  for (double step : kZoomSteps) {
    if (step > zoom + 1e-6) return step;
  }
  return kZoomSteps[kZoomStepCount - 1];
}

double ZoomOut(double zoom) {
  for (size_t i = kZoomStepCount; i-- > 0;) {
    if (kZoomSteps[i] < zoom - 1e-6) return kZoomSteps[i];
  }
  return kZoomSteps[0];
}

double FitZoom(ZoomMode mode, SizeF page, double view_width, double view_height, double margin) {
  const double smallest = kZoomSteps[0] / 10;
  if (page.width <= 0 || page.height <= 0) return 1.0;
  const double width = (view_width - 2 * margin) / (page.width * kPixelsPerPoint);
  const double height = (view_height - 2 * margin) / (page.height * kPixelsPerPoint);
  switch (mode) {
    case ZoomMode::kFixed:
      return 1.0;
    case ZoomMode::kFitWidth:
      return std::max(width, smallest);
    case ZoomMode::kFitPage:
      return std::max(std::min(width, height), smallest);
  }
  return 1.0;
}

}  // namespace vantorel::report::canvas
