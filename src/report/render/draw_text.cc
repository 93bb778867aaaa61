// Text boxes: fill, the laid-out text placed in the box less its padding, borders.
#include <algorithm>
#include <numbers>

#include "report/render/draw_page.h"
#include "report/render/draw_parts.h"
#include "report/render/painter.h"
#include "report/render/text_lines.h"
#include "report/text/layout.h"

namespace vantorel::report {
namespace {

using text::LaidOutText;

// Allowance for float rounding when deciding whether text overflows its box.
constexpr float kSlack = 0.01f;

// Where the glyphs of "laid_out" may put ink, relative to its origin: the line boxes, widened
// by a tenth of the font size for overhangs.
RectF InkBounds(const LaidOutText& laid_out, float size) {
  float left = 0, right = 0;
  for (const text::TextLine& line : laid_out.lines) {
    left = std::min(left, line.left);
    right = std::max(right, line.left + line.width);
  }
  const float margin = size / 10;
  return {left - margin, -margin, right - left + 2 * margin, laid_out.size.height + 2 * margin};
}

int Rotation(const TextStyle& style) { return ((style.rotation % 360) + 360) % 360; }

// The line width a text box lays its text out in: the box less its padding; rotated text runs
// along the box's height, so its lines are as long as the box is tall.
float FrameWidth(const TextStyle& style, const RectF& box) {
  const Padding& pad = style.padding;
  const int rotation = Rotation(style);
  return rotation == 90 || rotation == 270 ? std::max(0.0f, box.height - pad.top - pad.bottom)
                                           : std::max(0.0f, box.width - pad.left - pad.right);
}

}  // namespace

namespace render {

void PaintText(Painter& painter, const LaidOutText& laid_out, const TextStyle& style, float x,
               float y) {
  RectF bounds = InkBounds(laid_out, style.size);
  bounds.x += x;
  bounds.y += y;
  for (const text::GlyphRun& run : laid_out.runs) {
    painter.ShowRun(run, x, y, run.has_color ? run.color : style.color, bounds);
  }
  ForEachDecoration(laid_out, style, [&](RectF r, const Color& color) {
    r.x += x;
    r.y += y;
    painter.Fill(r, 0, color);
  });
}

bool TextOutside(const LaidOutText& laid_out, const RectF& box, float x, float y, float margin) {
  if (y < box.y - margin - kSlack || y + laid_out.size.height > box.bottom() + margin + kSlack) {
    return true;
  }
  return std::any_of(laid_out.lines.begin(), laid_out.lines.end(), [&](const text::TextLine& l) {
    return x + l.left < box.x - margin - kSlack ||
           x + l.left + l.width > box.right() + margin + kSlack;
  });
}

void DrawTextBox(Painter& painter, const TextStyle& style, const RectF& box,
                 std::string_view text) {
  painter.Fill(box, 0, style.fill);
  if (!text.empty()) {
    const Padding& pad = style.padding;
    const float inner_x = box.x + pad.left;
    const float inner_y = box.y + pad.top;
    const float inner_width = std::max(0.0f, box.width - pad.left - pad.right);
    const float inner_height = std::max(0.0f, box.height - pad.top - pad.bottom);
    const int rotation = Rotation(style);
    const bool sideways = rotation == 90 || rotation == 270;
    const float frame_width = FrameWidth(style, box);
    const float frame_height = sideways ? inner_width : inner_height;

    const auto laid_out = text::LayOut(text, style, frame_width);
    float y = 0;
    // Text taller than its box starts at the top whatever the alignment, so its first lines
    // show.
    if (laid_out->size.height < frame_height) {
      if (style.valign == VAlign::kMiddle) y = (frame_height - laid_out->size.height) / 2;
      if (style.valign == VAlign::kBottom) y = frame_height - laid_out->size.height;
    }
    // Clipping costs a save, a path and a restore in every output, so only text that needs it
    // gets it: text whose line boxes reach outside the box (rotated text is checked against its
    // padded frame).
    const bool clip =
        style.clip &&
        (rotation != 0 ? TextOutside(*laid_out, {0, 0, frame_width, frame_height}, 0, y, 0)
                       : TextOutside(*laid_out, box, inner_x, inner_y + y, 0));
    if (rotation == 0 && !clip) {
      PaintText(painter, *laid_out, style, inner_x, inner_y + y);
    } else {
      painter.ShowTurnedText(*laid_out, style, box, rotation, clip, y);
    }
  }
  StrokeBorders(painter, box, style.borders, style.border);
}

}  // namespace render

std::vector<uint32_t> TextLineStarts(const TextStyle& style, const RectF& box,
                                     std::string_view text) {
  std::vector<uint32_t> starts;
  if (text.empty()) return starts;
  for (const text::TextLine& line : text::LayOut(text, style, FrameWidth(style, box))->lines) {
    starts.push_back(line.begin);
  }
  return starts;
}

}  // namespace vantorel::report
