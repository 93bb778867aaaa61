// The painter for Cairo surfaces (PNG pages, the printer, the screen): it gathers opaque fills,
// strokes and glyph runs into batches — all fills of one colour, all strokes of one style, all
// glyphs of one font and colour — and paints each batch with one Cairo call. A report page is
// hundreds of small cells of the same few styles, and Cairo's PDF output costs several microseconds
// per call whatever its size, so this is most of the drawing time saved.
//
// Order is kept where it shows: a shape joins an earlier batch only when it overlaps nothing
// that batches opened after that one hold; otherwise it opens a new batch, painted later. Shapes
// that blend (translucent colours) are never batched, and anything else (images, clipped or
// rotated text) flushes the batches and paints directly. Glyphs are taken to lie within their
// line boxes widened by a tenth of the font size.
//
// Thread-safety: one painter per context and thread.
#ifndef VANTOREL_REPORT_RENDER_CAIRO_PAINTER_H_
#define VANTOREL_REPORT_RENDER_CAIRO_PAINTER_H_

#include <cairo.h>

#include <string>
#include <vector>

#include "report/document/document.h"
#include "report/render/painter.h"
#include "report/text/handles.h"
#include "report/text/layout.h"

namespace vantorel::report::render {

class CairoPainter final : public Painter {
 public:
  explicit CairoPainter(cairo_t* cr) : cr_(cr) {}
  ~CairoPainter() override { Flush(); }

  void Fill(const RectF& box, float radius, const Color& color) override;
  void ShowRun(const text::GlyphRun& run, float x, float y, const Color& color,
               const RectF& bounds) override;
  void ShowTurnedText(const text::LaidOutText& laid_out, const TextStyle& style, const RectF& box,
                      int rotation, bool clip, float y) override;
  void BeginGroup(const RectF& clip) override;
  void EndGroup() override;
  void DrawImage(const ImageItem& item, const std::shared_ptr<const ImageData>& image) override;
  void DrawBars(const BarcodeSymbol& symbol, double x, double y, double sx, double sy,
                const Color& color) override;

  // Paints every pending batch, in order.
  void Flush() override;

 protected:
  void StrokeShape(const Shape& shape, const Stroke& stroke, cairo_line_cap_t cap,
                   const RectF& bounds) override;

 private:
  enum class Kind : uint8_t { kFill, kStroke, kText };

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

  cairo_t* cr_;
  std::vector<Batch> batches_;
  size_t pending_ = 0;
};

}  // namespace vantorel::report::render

#endif  // VANTOREL_REPORT_RENDER_CAIRO_PAINTER_H_
