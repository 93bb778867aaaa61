// Lengths, points, rectangles and colours, shared by the design model and the prepared document.
// Lengths are in points (1/72 inch), the unit of PDF and of our 72-dpi layout; templates speak
// millimetres and convert.
#ifndef VANTOREL_REPORT_VALUES_GEOMETRY_H_
#define VANTOREL_REPORT_VALUES_GEOMETRY_H_

#include <cstdint>

namespace vantorel::report {

constexpr double kPointsPerMm = 72.0 / 25.4;
constexpr double Mm(double mm) { return mm * kPointsPerMm; }

// Floats keep items compact; page coordinates never need more than float precision.
struct PointF {
  float x = 0, y = 0;
  friend bool operator==(const PointF&, const PointF&) = default;
};

struct RectF {
  float x = 0, y = 0, width = 0, height = 0;
  float right() const { return x + width; }
  float bottom() const { return y + height; }
  friend bool operator==(const RectF&, const RectF&) = default;
};

struct SizeF {
  float width = 0, height = 0;
  friend bool operator==(const SizeF&, const SizeF&) = default;
};

// sRGB colour; alpha 0 is "none" (nothing painted).
struct Color {
  uint8_t r = 0, g = 0, b = 0, a = 255;
  bool visible() const { return a != 0; }
  static constexpr Color None() { return {0, 0, 0, 0}; }
  static constexpr Color Black() { return {0, 0, 0, 255}; }
  static constexpr Color White() { return {255, 255, 255, 255}; }
  friend bool operator==(const Color&, const Color&) = default;
};

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_VALUES_GEOMETRY_H_
