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
// Glyphs this many font sizes outside a clip are safe from Cairo dropping them (it drops at ten).
constexpr float kGlyphDropDistance = 8;

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

// The decoration lines of "laid_out" as rectangles in its frame, with the colour of each.
template <typename Visit>
void ForEachDecoration(const LaidOutText& laid_out, const TextStyle& style, Visit&& visit) {
  const auto add = [&](float x0, float x1, float baseline, const text::DecorationLine& line,
                       const Color& color) {
    if (x1 > x0 && line.thickness > 0 && color.visible()) {
      visit(RectF{x0, baseline + line.offset, x1 - x0, line.thickness}, color);
    }
  };
  for (const text::GlyphRun& run : laid_out.runs) {
    const Color& color = run.has_color ? run.color : style.color;
    if (run.underline) add(run.x0, run.x1, run.baseline, laid_out.underline, color);
    if (run.strikeout) add(run.x0, run.x1, run.baseline, laid_out.strikeout, color);
  }
  if (style.underline || style.strikeout) {
    for (const text::TextLine& line : laid_out.lines) {
      const float x1 = line.left + line.width;
      if (style.underline) add(line.left, x1, line.baseline, laid_out.underline, style.color);
      if (style.strikeout) add(line.left, x1, line.baseline, laid_out.strikeout, style.color);
    }
  }
}

// Upright, unclipped text: its runs and decorations go into the painter's batches.
void PaintText(render::Painter& painter, const LaidOutText& laid_out, const TextStyle& style,
               float x, float y) {
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

// Draws the runs directly on the context, in whatever transformation it has.
void PaintRuns(cairo_t* cr, const LaidOutText& laid_out, const TextStyle& style) {
  for (const text::GlyphRun& run : laid_out.runs) {
    const Color& color = run.has_color ? run.color : style.color;
    if (run.glyphs.empty() || !color.visible()) continue;
    render::SetColor(cr, color);
    cairo_set_scaled_font(cr, run.font.get());
    cairo_show_text_glyphs(cr, run.utf8.data(), static_cast<int>(run.utf8.size()),
                           run.glyphs.data(), static_cast<int>(run.glyphs.size()),
                           run.clusters.data(), static_cast<int>(run.clusters.size()),
                           run.cluster_flags);
  }
  ForEachDecoration(laid_out, style, [&](const RectF& r, const Color& color) {
    render::SetColor(cr, color);
    cairo_rectangle(cr, r.x, r.y, r.width, r.height);
    cairo_fill(cr);
  });
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

bool IsVector(cairo_surface_t* surface) {
  switch (cairo_surface_get_type(surface)) {
    case CAIRO_SURFACE_TYPE_PDF:
    case CAIRO_SURFACE_TYPE_PS:
    case CAIRO_SURFACE_TYPE_SVG:
    case CAIRO_SURFACE_TYPE_RECORDING:
      return true;
    default:
      return false;
  }
}

// True when "laid_out", placed at ("x", "y") within "box" (page coordinates, unrotated), puts
// any line box outside "box" inflated by "margin". The padding is inside the box, so text may
// use it before it counts as overflowing.
bool Outside(const LaidOutText& laid_out, const RectF& box, float x, float y, float margin) {
  if (y < box.y - margin - kSlack || y + laid_out.size.height > box.bottom() + margin + kSlack) {
    return true;
  }
  return std::any_of(laid_out.lines.begin(), laid_out.lines.end(), [&](const text::TextLine& l) {
    return x + l.left < box.x - margin - kSlack ||
           x + l.left + l.width > box.right() + margin + kSlack;
  });
}

void PaintTransformed(cairo_t* cr, const LaidOutText& laid_out, const TextStyle& style,
                      const RectF& box, int rotation, bool clip, float y) {
  const Padding& pad = style.padding;
  const float inner_x = box.x + pad.left;
  const float inner_y = box.y + pad.top;
  const float inner_width = std::max(0.0f, box.width - pad.left - pad.right);
  const float inner_height = std::max(0.0f, box.height - pad.top - pad.bottom);
  cairo_save(cr);
  // Cairo drops glyphs lying more than ten font sizes outside the clip, which would take clipped
  // text out of a PDF's text layer too. On vector surfaces such text is drawn unclipped into a
  // group (a form in the PDF) painted through the clip, so every glyph stays in the file: hidden
  // data must not rely on clipping. A group costs as much as dozens of texts, hence only then.
  const bool grouped = clip && IsVector(cairo_get_target(cr)) &&
                       (rotation != 0 || Outside(laid_out, box, inner_x, inner_y + y,
                                                 kGlyphDropDistance * style.size));
  if (grouped) {
    cairo_push_group(cr);
  } else if (clip) {
    cairo_rectangle(cr, box.x, box.y, box.width, box.height);
    cairo_clip(cr);
  }
  cairo_save(cr);
  constexpr double kQuarterTurn = std::numbers::pi / 2;
  if (rotation == 90) {
    cairo_translate(cr, inner_x, inner_y + inner_height);
    cairo_rotate(cr, -kQuarterTurn);
  } else if (rotation == 270) {
    cairo_translate(cr, inner_x + inner_width, inner_y);
    cairo_rotate(cr, kQuarterTurn);
  } else if (rotation == 180) {
    cairo_translate(cr, inner_x + inner_width, inner_y + inner_height);
    cairo_rotate(cr, 2 * kQuarterTurn);
  } else {
    cairo_translate(cr, inner_x, inner_y);
  }
  cairo_translate(cr, 0, y);
  PaintRuns(cr, laid_out, style);
  cairo_restore(cr);
  if (grouped) {
    cairo_pop_group_to_source(cr);
    cairo_rectangle(cr, box.x, box.y, box.width, box.height);
    cairo_clip(cr);
    cairo_paint(cr);
  }
  cairo_restore(cr);
}

}  // namespace

namespace render {

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
        (rotation != 0 ? Outside(*laid_out, {0, 0, frame_width, frame_height}, 0, y, 0)
                       : Outside(*laid_out, box, inner_x, inner_y + y, 0));
    if (rotation == 0 && !clip) {
      PaintText(painter, *laid_out, style, inner_x, inner_y + y);
    } else {
      painter.Flush();
      PaintTransformed(painter.cr(), *laid_out, style, box, rotation, clip, y);
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
