// The painter DrawPage draws through: it gathers opaque fills, strokes and glyph runs into
// batches — all fills of one colour, all strokes of one style, all glyphs of one font and colour —
// and paints each batch with one Cairo call. A report page is hundreds of small cells of the same
// few styles, and Cairo's PDF output costs several microseconds per call whatever its size, so
// this is most of the drawing time saved.
//
// Order is kept where it shows: a shape joins an earlier batch only when it overlaps nothing
// that batches opened after that one hold; otherwise it opens a new batch, painted later. Shapes
// that blend (translucent colours) are never batched, and anything else (images, clipped or
// rotated text) flushes the batches and paints directly. Glyphs are taken to lie within their
// line boxes widened by a tenth of the font size.
//
// Thread-safety: one painter per context and thread.
#ifndef VANTOREL_REPORT_RENDER_PAINTER_H_
#define VANTOREL_REPORT_RENDER_PAINTER_H_

#include <cairo.h>

#include <string>
#include <vector>

#include "report/document/document.h"
#include "report/text/handles.h"
#include "report/text/layout.h"

namespace vantorel::report::render {

class Painter {
 public:
  explicit Painter(cairo_t* cr) : cr_(cr) {}
  Painter(const Painter&) = delete;
  Painter& operator=(const Painter&) = delete;
  ~Painter() { Flush(); }

  // The context, for drawing directly; call Flush first.
  cairo_t* cr() const { return cr_; }

  // Fills "box" (with rounded corners when "radius" > 0).
  void Fill(const RectF& box, float radius, const Color& color);

  // Strokes the segment "from"–"to"; a double stroke adds its two lines.
  void StrokeSegment(PointF from, PointF to, const Stroke& stroke,
                     cairo_line_cap_t cap = CAIRO_LINE_CAP_BUTT);

  // Strokes the outline of "box" (rounded when "radius" > 0); a double stroke adds an outer and
  // an inner outline.
  void StrokeBox(const RectF& box, float radius, const Stroke& stroke);

  // Shows "run" with its frame origin at ("x", "y") on the page. "bounds" holds its ink.
  void ShowRun(const text::GlyphRun& run, float x, float y, const Color& color,
               const RectF& bounds);

  // Paints every pending batch, in order.
  void Flush();

 private:
  enum class Kind : uint8_t { kFill, kStroke, kText };

  struct Shape {
    RectF box;  // a rectangle, or a segment from (x, y) to (x + width, y + height)
    float radius;
    bool segment;
  };

  struct Batch {
    Kind kind;
    Color color;
    Stroke stroke;
    cairo_line_cap_t cap = CAIRO_LINE_CAP_BUTT;
    ScaledFont font;
    std::vector<Shape> shapes;
    std::vector<cairo_glyph_t> glyphs;
    std::string utf8;
    std::vector<cairo_text_cluster_t> clusters;
    std::vector<RectF> bounds;  // of each shape or run, for the overlap rule
    RectF extent;               // the union of "bounds"
  };

  // The batch "bounds" may join: the latest one matching the key when nothing opened after it
  // overlaps "bounds", else a new one at the end.
  Batch& BatchFor(Kind kind, const Color& color, const Stroke* stroke, cairo_line_cap_t cap,
                  cairo_scaled_font_t* font, const RectF& bounds);
  void Paint(const Batch& batch);
  void AddStrokeShape(const Shape& shape, const Stroke& stroke, cairo_line_cap_t cap,
                      const RectF& bounds);

  cairo_t* cr_;
  std::vector<Batch> batches_;
  size_t pending_ = 0;
};

}  // namespace vantorel::report::render

#endif  // VANTOREL_REPORT_RENDER_PAINTER_H_
