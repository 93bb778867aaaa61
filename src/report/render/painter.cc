#include "report/render/painter.h"

#include <algorithm>
#include <cmath>

#include "report/render/draw_parts.h"

namespace vantorel::report::render {
namespace {

RectF Inflated(const RectF& r, float by) {
  return {r.x - by, r.y - by, r.width + 2 * by, r.height + 2 * by};
}

// A segment's box, widened by the stroke's width to cover caps and joins.
RectF SegmentBounds(PointF from, PointF to, float width) {
  const RectF box{std::min(from.x, to.x), std::min(from.y, to.y), std::abs(to.x - from.x),
                  std::abs(to.y - from.y)};
  return Inflated(box, width);
}

}  // namespace

void Painter::StrokeSegment(PointF from, PointF to, const Stroke& stroke, cairo_line_cap_t cap) {
  if (!Visible(stroke)) return;
  const auto add = [&](PointF a, PointF b) {
    StrokeShape({{a.x, a.y, b.x - a.x, b.y - a.y}, 0, true}, stroke, cap,
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
    StrokeShape({box, radius, false}, stroke, CAIRO_LINE_CAP_BUTT, Inflated(box, w));
    return;
  }
  const RectF outer = Inflated(box, w);
  StrokeShape({outer, radius > 0 ? radius + w : 0, false}, stroke, CAIRO_LINE_CAP_BUTT,
              Inflated(outer, w));
  if (box.width > 2 * w && box.height > 2 * w) {
    StrokeShape({Inflated(box, -w), std::max(0.0f, radius - w), false}, stroke, CAIRO_LINE_CAP_BUTT,
                box);
  }
}

ImagePlacement PlaceImage(const ImageItem& item, const ImageData& image) {
  const RectF& box = item.box;
  const double iw = image.width, ih = image.height;
  ImagePlacement place;
  place.sx = box.width / iw;
  place.sy = box.height / ih;
  switch (item.fit) {
    case ImageFit::kContain:
      place.sx = place.sy = std::min(place.sx, place.sy);
      break;
    case ImageFit::kStretch:
      break;
    case ImageFit::kCover:
      place.sx = place.sy = std::max(place.sx, place.sy);
      place.clip = true;
      break;
    case ImageFit::kCenter:
      // Natural size: the pixels at the image's own resolution.
      place.sx = image.dpi_x > 0 ? 72.0 / image.dpi_x : 0.75;
      place.sy = image.dpi_y > 0 ? 72.0 / image.dpi_y : 0.75;
      place.clip = true;
      break;
  }
  place.x = box.x + (box.width - iw * place.sx) / 2;
  place.y = box.y + (box.height - ih * place.sy) / 2;
  return place;
}

}  // namespace vantorel::report::render
