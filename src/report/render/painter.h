// What the drawing of a page draws on: fills, strokes, glyph runs, turned or clipped text,
// pictures, barcode bars and clipped groups. DrawPage walks a page's items onto a Painter; the
// Cairo painter serves the PNG pages, the printer and the screen, the PDF painter writes a PDF's
// page content directly.
//
// Thread-safety: one painter per page being drawn and thread.
#ifndef VANTOREL_REPORT_RENDER_PAINTER_H_
#define VANTOREL_REPORT_RENDER_PAINTER_H_

#include <cairo.h>

#include <memory>

#include "report/document/document.h"
#include "report/text/layout.h"

namespace vantorel::report::render {

class Painter {
 public:
  Painter() = default;
  Painter(const Painter&) = delete;
  Painter& operator=(const Painter&) = delete;
  virtual ~Painter() = default;

  // Fills "box" (with rounded corners when "radius" > 0).
  virtual void Fill(const RectF& box, float radius, const Color& color) = 0;

  // Strokes the segment "from"–"to"; a double stroke adds its two lines.
  void StrokeSegment(PointF from, PointF to, const Stroke& stroke,
                     cairo_line_cap_t cap = CAIRO_LINE_CAP_BUTT);

  // Strokes the outline of "box" (rounded when "radius" > 0); a double stroke adds an outer and
  // an inner outline.
  void StrokeBox(const RectF& box, float radius, const Stroke& stroke);

  // Shows "run" with its frame origin at ("x", "y") on the page. "bounds" holds its ink.
  virtual void ShowRun(const text::GlyphRun& run, float x, float y, const Color& color,
                       const RectF& bounds) = 0;

  // Shows "laid_out" in "box" turned by "rotation" degrees (0, 90, 180 or 270) and, when "clip",
  // clipped to the box; "y" is its offset down the padded frame. Every glyph stays in a
  // vector output's text layer, clipped or not.
  virtual void ShowTurnedText(const text::LaidOutText& laid_out, const TextStyle& style,
                              const RectF& box, int rotation, bool clip, float y) = 0;

  // Items drawn between these two are clipped to "clip" (an empty one does not clip).
  virtual void BeginGroup(const RectF& clip) = 0;
  virtual void EndGroup() = 0;

  virtual void DrawImage(const ImageItem& item, const std::shared_ptr<const ImageData>& image) = 0;

  // The bars of "symbol", scaled by ("sx", "sy") and placed at ("x", "y").
  virtual void DrawBars(const BarcodeSymbol& symbol, double x, double y, double sx, double sy,
                        const Color& color) = 0;

  // Paints whatever the painter holds back.
  virtual void Flush() {}

 protected:
  struct Shape {
    RectF box;  // a rectangle, or a segment from (x, y) to (x + width, y + height)
    float radius;
    bool segment;
  };

  // Strokes one outline or segment; "bounds" holds its ink.
  virtual void StrokeShape(const Shape& shape, const Stroke& stroke, cairo_line_cap_t cap,
                           const RectF& bounds) = 0;
};

// Where a picture goes in its item's box: the scale of its pixels, its top left, and whether it
// must be clipped to the box.
struct ImagePlacement {
  double sx = 1, sy = 1;
  double x = 0, y = 0;
  bool clip = false;
};
ImagePlacement PlaceImage(const ImageItem& item, const ImageData& image);

}  // namespace vantorel::report::render

#endif  // VANTOREL_REPORT_RENDER_PAINTER_H_
