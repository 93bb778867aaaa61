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

// Sets width, colour and dash pattern; a double stroke is drawn as two lines by the callers,
// each as wide as the stroke, their centres one stroke width either side of the given line.
void ApplyStroke(cairo_t* cr, const Stroke& stroke);

// Adds a rectangle with rounded corners (radius clamped to half the shorter side) to the path.
void RoundedRectangle(cairo_t* cr, double x, double y, double width, double height, double radius);

// Strokes the sides of "box" named by "sides" (BorderSide bits).
void StrokeBorders(Painter& painter, const RectF& box, uint8_t sides, const Stroke& stroke);

void DrawTextBox(Painter& painter, const TextStyle& style, const RectF& box, std::string_view text);

void DrawImage(cairo_t* cr, const ImageItem& item, const std::shared_ptr<const ImageData>& image);

void DrawBarcode(Painter& painter, const BarcodeItem& item, const BarcodeSymbol& symbol);

// The Cairo surface for "image", made once per image and thread and kept in a small cache: the
// pixels are shared, not copied, a JPEG carries its original bytes for PDF pass-through, and a
// unique id lets a PDF embed the image once however many pages show it. Null for an empty or
// malformed image.
cairo_surface_t* ImageSurface(const std::shared_ptr<const ImageData>& image);

}  // namespace vantorel::report::render

#endif  // VANTOREL_REPORT_RENDER_DRAW_PARTS_H_
