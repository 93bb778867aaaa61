// How boxes, lines and texts look: alignment, strokes, padding, text styles and picture fitting.
// Plain values shared by the design model, which reads them from a template, and the prepared
// document, which draws with them.
#ifndef VANTOREL_REPORT_VALUES_STYLE_H_
#define VANTOREL_REPORT_VALUES_STYLE_H_

#include <cstdint>
#include <string>

#include "report/values/geometry.h"

namespace vantorel::report {

enum class HAlign : uint8_t { kLeft, kCenter, kRight, kJustify };
enum class VAlign : uint8_t { kTop, kMiddle, kBottom };
enum class LineStyle : uint8_t { kSolid, kDash, kDot, kDashDot, kDouble };

struct Stroke {
  float width = 0.5f;  // points; 0 draws nothing
  Color color = Color::Black();
  LineStyle style = LineStyle::kSolid;
  friend bool operator==(const Stroke&, const Stroke&) = default;
};

// Which sides of a box get a border line.
enum BorderSide : uint8_t { kBorderLeft = 1, kBorderTop = 2, kBorderRight = 4, kBorderBottom = 8 };

struct Padding {
  float left = 1.5f, top = 1.0f, right = 1.5f, bottom = 1.0f;
  friend bool operator==(const Padding&, const Padding&) = default;
};

// How a text box looks. Shared by many items through the document's style table.
struct TextStyle {
  std::string font_family = "Liberation Sans";
  float size = 10;  // points
  bool bold = false;
  bool italic = false;
  bool underline = false;
  bool strikeout = false;
  Color color = Color::Black();
  Color fill = Color::None();
  HAlign halign = HAlign::kLeft;
  VAlign valign = VAlign::kTop;
  bool wrap = true;        // break lines at the box width
  bool clip = true;        // paint nothing outside the box (text stays in the PDF text layer)
  bool rich = false;       // the text is simple markup: <b> <i> <u> <br/> <font color size face>
  int16_t rotation = 0;    // 0, 90 or 270 degrees, counter-clockwise
  float line_spacing = 1;  // multiple of the font's line height
  float char_spacing = 0;  // extra points between characters
  uint8_t borders = 0;     // BorderSide bits
  Stroke border;
  Padding padding;
  friend bool operator==(const TextStyle&, const TextStyle&) = default;
};

enum class ImageFit : uint8_t { kContain, kStretch, kCenter, kCover };

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_VALUES_STYLE_H_
