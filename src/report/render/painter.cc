#include "report/render/painter.h"

#include <algorithm>
#include <cmath>

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

RectF Inflated(const RectF& r, float by) {
  return {r.x - by, r.y - by, r.width + 2 * by, r.height + 2 * by};
}

// A segment's box, widened by the stroke's width to cover caps and joins.
RectF SegmentBounds(PointF from, PointF to, float width) {
  const RectF box{std::min(from.x, to.x), std::min(from.y, to.y), std::abs(to.x - from.x),
                  std::abs(to.y - from.y)};
  return Inflated(box, width);
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

}  // namespace

Painter::Batch& Painter::BatchFor(Kind kind, const Color& color, const Stroke* stroke,
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

void Painter::Fill(const RectF& box, float radius, const Color& color) {
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

void Painter::AddStrokeShape(const Shape& shape, const Stroke& stroke, cairo_line_cap_t cap,
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

void Painter::StrokeSegment(PointF from, PointF to, const Stroke& stroke, cairo_line_cap_t cap) {
  if (!Visible(stroke)) return;
  const auto add = [&](PointF a, PointF b) {
    AddStrokeShape({{a.x, a.y, b.x - a.x, b.y - a.y}, 0, true}, stroke, cap,
                   SegmentBounds(a, b, stroke.width));
  };
  if (stroke.style != LineStyle::kDouble) {
    add(from, to);
    return;
  }
  const float dx = to.x - from.x, dy = to.y - from.y;
  const float length = std::hypot(dx, dy);
  if (length == 0) return;
  const float nx = -dy / length * stroke.width, ny = dx / length * stroke.width;
  add({from.x - nx, from.y - ny}, {to.x - nx, to.y - ny});
  add({from.x + nx, from.y + ny}, {to.x + nx, to.y + ny});
}

void Painter::StrokeBox(const RectF& box, float radius, const Stroke& stroke) {
  if (!Visible(stroke)) return;
  const float w = stroke.width;
  if (stroke.style != LineStyle::kDouble) {
    AddStrokeShape({box, radius, false}, stroke, CAIRO_LINE_CAP_BUTT, Inflated(box, w));
    return;
  }
  const RectF outer = Inflated(box, w);
  AddStrokeShape({outer, radius > 0 ? radius + w : 0, false}, stroke, CAIRO_LINE_CAP_BUTT,
                 Inflated(outer, w));
  if (box.width > 2 * w && box.height > 2 * w) {
    AddStrokeShape({Inflated(box, -w), std::max(0.0f, radius - w), false}, stroke,
                   CAIRO_LINE_CAP_BUTT, box);
  }
}

void Painter::ShowRun(const text::GlyphRun& run, float x, float y, const Color& color,
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

void Painter::Paint(const Batch& batch) {
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

void Painter::Flush() {
  for (const Batch& batch : batches_) Paint(batch);
  batches_.clear();
  pending_ = 0;
}

}  // namespace vantorel::report::render
