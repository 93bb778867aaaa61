// The pieces DrawPage is made of, one per kind of item, and the stroke rules they share.
//
// Thread-safety: the image surface cache is per thread; everything else works only on the
// context it is given.
#ifndef VANTOREL_REPORT_RENDER_DRAW_PARTS_H_
#define VANTOREL_REPORT_RENDER_DRAW_PARTS_H_

#include <cairo.h>

#include <memory>
#include <string_view>

#include "report/document/document.h"
#include "report/render/painter.h"
#include "report/text/layout.h"

namespace vantorel::report::render {

inline void SetColor(cairo_t* cr, const Color& c) {
  if (c.a == 255) {
    cairo_set_source_rgb(cr, c.r / 255.0, c.g / 255.0, c.b / 255.0);
  } else {
    cairo_set_source_rgba(cr, c.r / 255.0, c.g / 255.0, c.b / 255.0, c.a / 255.0);
  }
}

// True when "stroke" paints anything.
inline bool Visible(const Stroke& stroke) { return stroke.width > 0 && stroke.color.visible(); }

// The dash pattern of "stroke" (lengths in points) into "dashes"; returns how many, 0 for a solid
// line.
int DashPattern(const Stroke& stroke, double dashes[4]);

// Sets width, colour and dash pattern; a double stroke is drawn as two lines by the callers,
// each as wide as the stroke, their centres one stroke width either side of the given line.
void ApplyStroke(cairo_t* cr, const Stroke& stroke);

// Adds a rectangle with rounded corners (radius clamped to half the shorter side) to the path.
void RoundedRectangle(cairo_t* cr, double x, double y, double width, double height, double radius);

// Strokes the sides of "box" named by "sides" (BorderSide bits).
void StrokeBorders(Painter& painter, const RectF& box, uint8_t sides, const Stroke& stroke);

void DrawTextBox(Painter& painter, const TextStyle& style, const RectF& box, std::string_view text);

void DrawBarcode(Painter& painter, const BarcodeItem& item, const BarcodeSymbol& symbol);

// Upright, unclipped text: its runs and decorations at ("x", "y") on the page.
void PaintText(Painter& painter, const text::LaidOutText& laid_out, const TextStyle& style, float x,
               float y);

// True when "laid_out", placed at ("x", "y") within "box" (page coordinates, unrotated), puts
// any line box outside "box" inflated by "margin". The padding is inside the box, so text may
// use it before it counts as overflowing.
bool TextOutside(const text::LaidOutText& laid_out, const RectF& box, float x, float y,
                 float margin);

// The decoration lines of "laid_out" as rectangles in its frame, with the colour of each.
template <typename Visit>
void ForEachDecoration(const text::LaidOutText& laid_out, const TextStyle& style, Visit&& visit) {
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

// The Cairo surface for "image", made once per image and thread and kept in a small cache: the
// pixels are shared, not copied, a JPEG carries its original bytes for PDF pass-through, and a
// unique id lets a PDF embed the image once however many pages show it. Null for an empty or
// malformed image.
cairo_surface_t* ImageSurface(const std::shared_ptr<const ImageData>& image);

}  // namespace vantorel::report::render

#endif  // VANTOREL_REPORT_RENDER_DRAW_PARTS_H_
