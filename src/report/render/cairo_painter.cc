#include "report/render/cairo_painter.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "report/render/draw_parts.h"

namespace vantorel::report::render {
namespace {

// Enough to gather a dense page in a few batches, few enough that the overlap checks stay cheap.
constexpr size_t kMaxPending = 4096;

bool Intersects(const RectF& a, const RectF& b) {
  return a.x < b.right() && b.x < a.right() && a.y < b.bottom() && b.y < a.bottom();
}

RectF Union(const RectF& a, const RectF& b) {
  const float x = std::min(a.x, b.x), y = std::min(a.y, b.y);
  return {x, y, std::max(a.right(), b.right()) - x, std::max(a.bottom(), b.bottom()) - y};
}

bool Opaque(const Color& c) { return c.a == 255; }

// True when "run"'s clusters account for exactly its text and glyphs, as Cairo insists; a run
// that does not is drawn without its text rather than putting the context in an error state.
bool ClustersCover(const text::GlyphRun& run) {
  size_t bytes = 0, glyphs = 0;
  for (const cairo_text_cluster_t& cluster : run.clusters) {
    bytes += static_cast<size_t>(cluster.num_bytes);
    glyphs += static_cast<size_t>(cluster.num_glyphs);
  }
  return bytes == run.utf8.size() && glyphs == run.glyphs.size();
}

// Glyphs this many font sizes outside a clip are safe from Cairo dropping them (it drops at ten).
constexpr float kGlyphDropDistance = 8;

// Draws the runs directly on the context, in whatever transformation it has.
void PaintRuns(cairo_t* cr, const text::LaidOutText& laid_out, const TextStyle& style) {
  for (const text::GlyphRun& run : laid_out.runs) {
    const Color& color = run.has_color ? run.color : style.color;
    if (run.glyphs.empty() || !color.visible()) continue;
    SetColor(cr, color);
    cairo_set_scaled_font(cr, run.font.get());
    cairo_show_text_glyphs(cr, run.utf8.data(), static_cast<int>(run.utf8.size()),
                           run.glyphs.data(), static_cast<int>(run.glyphs.size()),
                           run.clusters.data(), static_cast<int>(run.clusters.size()),
                           run.cluster_flags);
  }
  ForEachDecoration(laid_out, style, [&](const RectF& r, const Color& color) {
    SetColor(cr, color);
    cairo_rectangle(cr, r.x, r.y, r.width, r.height);
    cairo_fill(cr);
  });
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

// The modules of a 2D symbol (QR, Data Matrix, PDF417) lie in runs of a few heights. Each run is
// stroked along its middle with butt caps, one stroke per height: the very same rectangles with
// half the coordinates of filled ones, which for a dense QR code halves its share of a PDF's
// size and of the time to write it.
void StrokeRuns(cairo_t* cr, const BarcodeSymbol& symbol, double x, double y, double sx,
                double sy) {
  std::vector<float> heights;
  for (const RectF& bar : symbol.bars) {
    if (std::find(heights.begin(), heights.end(), bar.height) == heights.end()) {
      heights.push_back(bar.height);
    }
  }
  cairo_set_line_cap(cr, CAIRO_LINE_CAP_BUTT);
  cairo_set_dash(cr, nullptr, 0, 0);
  for (const float height : heights) {
    cairo_set_line_width(cr, height * sy);
    for (const RectF& bar : symbol.bars) {
      if (bar.height != height || bar.width <= 0) continue;
      const double middle = y + (bar.y + height / 2) * sy;
      cairo_move_to(cr, x + bar.x * sx, middle);
      cairo_line_to(cr, x + bar.right() * sx, middle);
    }
    cairo_stroke(cr);
  }
}

}  // namespace

CairoPainter::Batch& CairoPainter::BatchFor(Kind kind, const Color& color, const Stroke* stroke,
                                            cairo_line_cap_t cap, cairo_scaled_font_t* font,
                                            const RectF& bounds) {
  const auto matches = [&](const Batch& b) {
    if (b.kind != kind || !(b.color == color)) return false;
    if (kind == Kind::kStroke) return b.stroke == *stroke && b.cap == cap;
    if (kind == Kind::kText) return b.font.get() == font;
    return true;
  };
  for (size_t i = batches_.size(); i-- > 0;) {
    if (!matches(batches_[i])) continue;
    bool blocked = false;
    for (size_t j = i + 1; j < batches_.size() && !blocked; ++j) {
      const Batch& later = batches_[j];
      if (!Intersects(later.extent, bounds)) continue;
      blocked = std::any_of(later.bounds.begin(), later.bounds.end(),
                            [&](const RectF& b) { return Intersects(b, bounds); });
    }
    if (!blocked) return batches_[i];
    break;
  }
  Batch& batch = batches_.emplace_back();
  batch.kind = kind;
  batch.color = color;
  if (stroke != nullptr) batch.stroke = *stroke;
  batch.cap = cap;
  batch.font = ScaledFont(font);
  batch.extent = bounds;
  return batch;
}

void CairoPainter::Fill(const RectF& box, float radius, const Color& color) {
  if (!color.visible() || box.width <= 0 || box.height <= 0) return;
  if (!Opaque(color)) {
    Flush();
    RoundedRectangle(cr_, box.x, box.y, box.width, box.height, radius);
    SetColor(cr_, color);
    cairo_fill(cr_);
    return;
  }
  Batch& batch = BatchFor(Kind::kFill, color, nullptr, CAIRO_LINE_CAP_BUTT, nullptr, box);
  batch.shapes.push_back({box, radius, false});
  batch.bounds.push_back(box);
  batch.extent = Union(batch.extent, box);
  if (++pending_ > kMaxPending) Flush();
}

void CairoPainter::StrokeShape(const Shape& shape, const Stroke& stroke, cairo_line_cap_t cap,
                               const RectF& bounds) {
  if (!Opaque(stroke.color)) {
    Flush();
    Batch single{Kind::kStroke, stroke.color, stroke, cap, {}, {shape}, {}, {}, {}, {}, bounds};
    Paint(single);
    return;
  }
  Batch& batch = BatchFor(Kind::kStroke, stroke.color, &stroke, cap, nullptr, bounds);
  batch.shapes.push_back(shape);
  batch.bounds.push_back(bounds);
  batch.extent = Union(batch.extent, bounds);
  if (++pending_ > kMaxPending) Flush();
}

void CairoPainter::ShowRun(const text::GlyphRun& run, float x, float y, const Color& color,
                           const RectF& bounds) {
  if (run.glyphs.empty() || !color.visible()) return;
  const bool with_text = ClustersCover(run);
  if (!Opaque(color) || run.cluster_flags != 0 || !with_text) {
    Flush();
    cairo_save(cr_);
    cairo_translate(cr_, x, y);
    cairo_set_scaled_font(cr_, run.font.get());
    SetColor(cr_, color);
    if (with_text) {
      cairo_show_text_glyphs(cr_, run.utf8.data(), static_cast<int>(run.utf8.size()),
                             run.glyphs.data(), static_cast<int>(run.glyphs.size()),
                             run.clusters.data(), static_cast<int>(run.clusters.size()),
                             run.cluster_flags);
    } else {
      cairo_show_glyphs(cr_, run.glyphs.data(), static_cast<int>(run.glyphs.size()));
    }
    cairo_restore(cr_);
    return;
  }
  Batch& batch = BatchFor(Kind::kText, color, nullptr, CAIRO_LINE_CAP_BUTT, run.font.get(), bounds);
  for (const cairo_glyph_t& glyph : run.glyphs) {
    batch.glyphs.push_back({glyph.index, glyph.x + x, glyph.y + y});
  }
  batch.utf8 += run.utf8;
  batch.clusters.insert(batch.clusters.end(), run.clusters.begin(), run.clusters.end());
  batch.bounds.push_back(bounds);
  batch.extent = Union(batch.extent, bounds);
  if (++pending_ > kMaxPending) Flush();
}

void CairoPainter::Paint(const Batch& batch) {
  switch (batch.kind) {
    case Kind::kFill:
      for (const Shape& s : batch.shapes) {
        RoundedRectangle(cr_, s.box.x, s.box.y, s.box.width, s.box.height, s.radius);
      }
      SetColor(cr_, batch.color);
      cairo_fill(cr_);
      break;
    case Kind::kStroke:
      ApplyStroke(cr_, batch.stroke);
      cairo_set_line_cap(cr_, batch.cap);
      for (const Shape& s : batch.shapes) {
        if (s.segment) {
          cairo_move_to(cr_, s.box.x, s.box.y);
          cairo_line_to(cr_, s.box.right(), s.box.bottom());
        } else {
          RoundedRectangle(cr_, s.box.x, s.box.y, s.box.width, s.box.height, s.radius);
        }
      }
      cairo_stroke(cr_);
      break;
    case Kind::kText:
      cairo_set_scaled_font(cr_, batch.font.get());
      SetColor(cr_, batch.color);
      // With the text and its clusters the PDF gets exact Unicode for every glyph (conjuncts
      // and ligatures included), so copying and searching the text works.
      cairo_show_text_glyphs(cr_, batch.utf8.data(), static_cast<int>(batch.utf8.size()),
                             batch.glyphs.data(), static_cast<int>(batch.glyphs.size()),
                             batch.clusters.data(), static_cast<int>(batch.clusters.size()),
                             cairo_text_cluster_flags_t(0));
      break;
  }
}

void CairoPainter::Flush() {
  for (const Batch& batch : batches_) Paint(batch);
  batches_.clear();
  pending_ = 0;
}

void CairoPainter::ShowTurnedText(const text::LaidOutText& laid_out, const TextStyle& style,
                                  const RectF& box, int rotation, bool clip, float y) {
  Flush();
  cairo_t* cr = cr_;
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
                       (rotation != 0 || TextOutside(laid_out, box, inner_x, inner_y + y,
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

void CairoPainter::BeginGroup(const RectF& clip) {
  Flush();
  cairo_save(cr_);
  if (clip.width > 0 && clip.height > 0) {
    cairo_rectangle(cr_, clip.x, clip.y, clip.width, clip.height);
    cairo_clip(cr_);
  }
}

void CairoPainter::EndGroup() {
  Flush();
  cairo_restore(cr_);
}

void CairoPainter::DrawImage(const ImageItem& item, const std::shared_ptr<const ImageData>& image) {
  const RectF& box = item.box;
  if (box.width <= 0 || box.height <= 0) return;
  cairo_surface_t* surface = ImageSurface(image);
  if (surface == nullptr) return;
  Flush();
  const ImagePlacement place = PlaceImage(item, *image);
  cairo_t* cr = cr_;
  cairo_save(cr);
  if (place.clip) {
    cairo_rectangle(cr, box.x, box.y, box.width, box.height);
    cairo_clip(cr);
  }
  cairo_translate(cr, place.x, place.y);
  cairo_scale(cr, place.sx, place.sy);
  cairo_set_source_surface(cr, surface, 0, 0);
  // On pixel surfaces edge pixels repeat outwards, so a scaled picture keeps crisp edges instead
  // of fading into the transparent outside. Vector surfaces place the image as it is: a padded
  // pattern would make Cairo re-encode the picture for every PDF instead of embedding its JPEG.
  if (cairo_surface_get_type(cairo_get_target(cr)) == CAIRO_SURFACE_TYPE_IMAGE) {
    cairo_pattern_set_extend(cairo_get_source(cr), CAIRO_EXTEND_PAD);
  }
  cairo_rectangle(cr, 0, 0, image->width, image->height);
  cairo_fill(cr);
  cairo_restore(cr);
}

void CairoPainter::DrawBars(const BarcodeSymbol& symbol, double x, double y, double sx, double sy,
                            const Color& color) {
  // Hundreds of modules: painted straight away rather than batched.
  Flush();
  SetColor(cr_, color);
  if (symbol.text.empty()) {
    StrokeRuns(cr_, symbol, x, y, sx, sy);
    return;
  }
  for (const RectF& bar : symbol.bars) {
    cairo_rectangle(cr_, x + bar.x * sx, y + bar.y * sy, bar.width * sx, bar.height * sy);
  }
  cairo_fill(cr_);
}

}  // namespace vantorel::report::render
