#include "report/render/draw_page.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "report/render/draw_parts.h"

namespace vantorel::report {
namespace render {
namespace {

void DrawLine(cairo_t* cr, const LineItem& line) {
  if (Visible(line.stroke)) StrokeSegment(cr, line.from, line.to, line.stroke);
}

void DrawRect(cairo_t* cr, const RectItem& rect) {
  const RectF& b = rect.box;
  if (rect.fill.visible()) {
    RoundedRectangle(cr, b.x, b.y, b.width, b.height, rect.corner_radius);
    SetColor(cr, rect.fill);
    cairo_fill(cr);
  }
  if (!Visible(rect.stroke)) return;
  ApplyStroke(cr, rect.stroke);
  if (rect.stroke.style == LineStyle::kDouble) {
    const double w = rect.stroke.width;
    RoundedRectangle(cr, b.x - w, b.y - w, b.width + 2 * w, b.height + 2 * w,
                     rect.corner_radius > 0 ? rect.corner_radius + w : 0);
    if (b.width > 2 * w && b.height > 2 * w) {
      RoundedRectangle(cr, b.x + w, b.y + w, b.width - 2 * w, b.height - 2 * w,
                       std::max(0.0, rect.corner_radius - w));
    }
  } else {
    RoundedRectangle(cr, b.x, b.y, b.width, b.height, rect.corner_radius);
  }
  cairo_stroke(cr);
}

void DrawItems(cairo_t* cr, const Document& document, const std::vector<Item>& items);

void DrawGroup(cairo_t* cr, const Document& document, const GroupItem& group) {
  cairo_save(cr);
  // An empty clip rectangle means the group only groups.
  if (group.clip.width > 0 && group.clip.height > 0) {
    cairo_rectangle(cr, group.clip.x, group.clip.y, group.clip.width, group.clip.height);
    cairo_clip(cr);
  }
  DrawItems(cr, document, group.items);
  cairo_restore(cr);
}

void DrawItems(cairo_t* cr, const Document& document, const std::vector<Item>& items) {
  for (const Item& item : items) {
    if (const auto* text = std::get_if<TextItem>(&item)) {
      // An item pointing past the style table is a broken document; draw what we can.
      if (text->style < document.styles.size()) {
        DrawTextBox(cr, document.styles[text->style], text->box, text->text);
      }
    } else if (const auto* line = std::get_if<LineItem>(&item)) {
      DrawLine(cr, *line);
    } else if (const auto* rect = std::get_if<RectItem>(&item)) {
      DrawRect(cr, *rect);
    } else if (const auto* image = std::get_if<ImageItem>(&item)) {
      if (image->image < document.images.size() && document.images[image->image]) {
        DrawImage(cr, *image, document.images[image->image]);
      }
    } else if (const auto* barcode = std::get_if<BarcodeItem>(&item)) {
      if (barcode->symbol < document.barcodes.size() && document.barcodes[barcode->symbol]) {
        DrawBarcode(cr, *barcode, *document.barcodes[barcode->symbol]);
      }
    } else if (const auto* group = std::get_if<GroupItem>(&item)) {
      DrawGroup(cr, document, *group);
    }
  }
}

}  // namespace

void ApplyStroke(cairo_t* cr, const Stroke& stroke) {
  const double w = stroke.width;
  SetColor(cr, stroke.color);
  cairo_set_line_width(cr, w);
  cairo_set_line_join(cr, CAIRO_LINE_JOIN_MITER);
  // Dash lengths follow the width so a thick dashed rule still reads as dashed.
  const double unit = std::max(w, 0.5);
  switch (stroke.style) {
    case LineStyle::kDash: {
      const double dashes[] = {3 * unit, 2 * unit};
      cairo_set_dash(cr, dashes, 2, 0);
      break;
    }
    case LineStyle::kDot: {
      const double dashes[] = {unit, unit};
      cairo_set_dash(cr, dashes, 2, 0);
      break;
    }
    case LineStyle::kDashDot: {
      const double dashes[] = {3 * unit, 2 * unit, unit, 2 * unit};
      cairo_set_dash(cr, dashes, 4, 0);
      break;
    }
    case LineStyle::kSolid:
    case LineStyle::kDouble:
      cairo_set_dash(cr, nullptr, 0, 0);
      break;
  }
}

void StrokeSegment(cairo_t* cr, PointF from, PointF to, const Stroke& stroke) {
  ApplyStroke(cr, stroke);
  if (stroke.style == LineStyle::kDouble) {
    const double dx = to.x - from.x, dy = to.y - from.y;
    const double length = std::hypot(dx, dy);
    if (length == 0) return;
    const double nx = -dy / length * stroke.width, ny = dx / length * stroke.width;
    for (const double side : {-1.0, 1.0}) {
      cairo_move_to(cr, from.x + side * nx, from.y + side * ny);
      cairo_line_to(cr, to.x + side * nx, to.y + side * ny);
    }
  } else {
    cairo_move_to(cr, from.x, from.y);
    cairo_line_to(cr, to.x, to.y);
  }
  cairo_stroke(cr);
}

void RoundedRectangle(cairo_t* cr, double x, double y, double width, double height,
                      double radius) {
  radius = std::min({radius, width / 2, height / 2});
  if (radius <= 0) {
    cairo_rectangle(cr, x, y, width, height);
    return;
  }
  constexpr double kPi = std::numbers::pi;
  cairo_new_sub_path(cr);
  cairo_arc(cr, x + width - radius, y + radius, radius, -kPi / 2, 0);
  cairo_arc(cr, x + width - radius, y + height - radius, radius, 0, kPi / 2);
  cairo_arc(cr, x + radius, y + height - radius, radius, kPi / 2, kPi);
  cairo_arc(cr, x + radius, y + radius, radius, kPi, 3 * kPi / 2);
  cairo_close_path(cr);
}

void StrokeBorders(cairo_t* cr, const RectF& box, uint8_t sides, const Stroke& stroke) {
  if (sides == 0 || !Visible(stroke)) return;
  constexpr uint8_t kAll = kBorderLeft | kBorderTop | kBorderRight | kBorderBottom;
  if ((sides & kAll) == kAll) {
    RectItem rect;
    rect.box = box;
    rect.stroke = stroke;
    DrawRect(cr, rect);
    return;
  }
  const float l = box.x, t = box.y, r = box.right(), b = box.bottom();
  const struct {
    uint8_t side;
    PointF from, to;
  } kSides[] = {{kBorderLeft, {l, t}, {l, b}},
                {kBorderTop, {l, t}, {r, t}},
                {kBorderRight, {r, t}, {r, b}},
                {kBorderBottom, {l, b}, {r, b}}};
  if (stroke.style == LineStyle::kDouble) {
    for (const auto& s : kSides) {
      if ((sides & s.side) != 0) StrokeSegment(cr, s.from, s.to, stroke);
    }
    return;
  }
  // One path for all sides; square caps close the corners where two sides meet.
  ApplyStroke(cr, stroke);
  cairo_set_line_cap(cr, CAIRO_LINE_CAP_SQUARE);
  for (const auto& s : kSides) {
    if ((sides & s.side) == 0) continue;
    cairo_move_to(cr, s.from.x, s.from.y);
    cairo_line_to(cr, s.to.x, s.to.y);
  }
  cairo_stroke(cr);
  cairo_set_line_cap(cr, CAIRO_LINE_CAP_BUTT);
}

}  // namespace render

void DrawPage(cairo_t* cr, const Document& document, const Page& page) {
  cairo_save(cr);
  render::DrawItems(cr, document, page.items);
  cairo_restore(cr);
}

}  // namespace vantorel::report
