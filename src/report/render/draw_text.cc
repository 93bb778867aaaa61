// Text boxes: fill, the laid-out text placed in the box less its padding, borders.
#include <algorithm>
#include <numbers>

#include "report/render/draw_page.h"
#include "report/render/draw_parts.h"
#include "report/text/layout.h"

namespace vantorel::report {
namespace {

using text::LaidOutText;

// Allowance for float rounding when deciding whether text overflows its box.
constexpr float kSlack = 0.01f;

void FillDecoration(cairo_t* cr, double x0, double x1, double baseline,
                    const text::DecorationLine& line) {
  if (x1 <= x0 || line.thickness <= 0) return;
  cairo_rectangle(cr, x0, baseline + line.offset, x1 - x0, line.thickness);
  cairo_fill(cr);
}

void PaintText(cairo_t* cr, const LaidOutText& laid_out, const TextStyle& style) {
  const Color* current = nullptr;
  for (const text::GlyphRun& run : laid_out.runs) {
    if (run.glyphs.empty()) continue;
    const Color& color = run.has_color ? run.color : style.color;
    if (!color.visible()) continue;
    if (current == nullptr || !(*current == color)) {
      render::SetColor(cr, color);
      current = &color;
    }
    cairo_set_scaled_font(cr, run.font.get());
    // With the text and its clusters the PDF gets exact Unicode for every glyph (conjuncts and
    // ligatures included), so copying and searching the text works.
    cairo_show_text_glyphs(cr, run.utf8.data(), static_cast<int>(run.utf8.size()),
                           run.glyphs.data(), static_cast<int>(run.glyphs.size()),
                           run.clusters.data(), static_cast<int>(run.clusters.size()),
                           run.cluster_flags);
    if (run.underline) FillDecoration(cr, run.x0, run.x1, run.baseline, laid_out.underline);
    if (run.strikeout) FillDecoration(cr, run.x0, run.x1, run.baseline, laid_out.strikeout);
  }
  if ((style.underline || style.strikeout) && style.color.visible()) {
    render::SetColor(cr, style.color);
    for (const text::TextLine& line : laid_out.lines) {
      const double x1 = line.left + line.width;
      if (style.underline) FillDecoration(cr, line.left, x1, line.baseline, laid_out.underline);
      if (style.strikeout) FillDecoration(cr, line.left, x1, line.baseline, laid_out.strikeout);
    }
  }
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

bool Overflows(const LaidOutText& laid_out, float width, float height) {
  if (laid_out.size.height > height + kSlack) return true;
  return std::any_of(laid_out.lines.begin(), laid_out.lines.end(), [&](const text::TextLine& l) {
    return l.left < -kSlack || l.left + l.width > width + kSlack;
  });
}

}  // namespace

void DrawTextBox(cairo_t* cr, const TextStyle& style, const RectF& box, std::string_view text) {
  if (style.fill.visible()) {
    render::SetColor(cr, style.fill);
    cairo_rectangle(cr, box.x, box.y, box.width, box.height);
    cairo_fill(cr);
  }
  if (!text.empty()) {
    const Padding& pad = style.padding;
    const float inner_x = box.x + pad.left;
    const float inner_y = box.y + pad.top;
    const float inner_width = std::max(0.0f, box.width - pad.left - pad.right);
    const float inner_height = std::max(0.0f, box.height - pad.top - pad.bottom);
    const int rotation = ((style.rotation % 360) + 360) % 360;
    const bool sideways = rotation == 90 || rotation == 270;
    // Rotated text runs along the box's height: its lines are as long as the box is tall.
    const float frame_width = sideways ? inner_height : inner_width;
    const float frame_height = sideways ? inner_width : inner_height;

    const auto laid_out = text::LayOut(text, style, frame_width);
    float y = 0;
    // Text taller than its box starts at the top whatever the alignment, so its first lines
    // show.
    if (laid_out->size.height < frame_height) {
      if (style.valign == VAlign::kMiddle) y = (frame_height - laid_out->size.height) / 2;
      if (style.valign == VAlign::kBottom) y = frame_height - laid_out->size.height;
    }

    cairo_save(cr);
    // Clipping costs a save, a path and a restore in every output, so only text that needs it
    // gets it.
    const bool clip = style.clip && Overflows(*laid_out, frame_width, frame_height);
    // Cairo drops glyphs lying more than ten font sizes outside the clip, which would take
    // clipped text out of a PDF's text layer too. On vector surfaces the text is drawn unclipped
    // into a group (a form in the PDF) and the group is painted through the clip; every glyph
    // stays in the file, as hidden data must not rely on clipping.
    const bool grouped = clip && IsVector(cairo_get_target(cr));
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
    PaintText(cr, *laid_out, style);
    cairo_restore(cr);
    if (grouped) {
      cairo_pop_group_to_source(cr);
      cairo_rectangle(cr, box.x, box.y, box.width, box.height);
      cairo_clip(cr);
      cairo_paint(cr);
    }
    cairo_restore(cr);
  }
  render::StrokeBorders(cr, box, style.borders, style.border);
}

}  // namespace vantorel::report
