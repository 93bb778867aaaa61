#include "report/render/draw_page.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "report/render/cairo_painter.h"
#include "report/render/draw_parts.h"

namespace vantorel::report {
namespace render {
namespace {

void DrawRect(Painter& painter, const RectItem& rect) {
  painter.Fill(rect.box, rect.corner_radius, rect.fill);
  painter.StrokeBox(rect.box, rect.corner_radius, rect.stroke);
}

void DrawItems(Painter& painter, const Document& document, const std::vector<Item>& items);

void DrawGroup(Painter& painter, const Document& document, const GroupItem& group) {
  // An empty clip rectangle means the group only groups.
  painter.BeginGroup(group.clip);
  DrawItems(painter, document, group.items);
  painter.EndGroup();
}

void DrawItems(Painter& painter, const Document& document, const std::vector<Item>& items) {
  for (const Item& item : items) {
    if (const auto* text = std::get_if<TextItem>(&item)) {
      // An item pointing past the style table is a broken document; draw what we can.
      if (text->style < document.styles.size()) {
        DrawTextBox(painter, document.styles[text->style], text->box, text->text);
      }
    } else if (const auto* line = std::get_if<LineItem>(&item)) {
      painter.StrokeSegment(line->from, line->to, line->stroke);
    } else if (const auto* rect = std::get_if<RectItem>(&item)) {
      DrawRect(painter, *rect);
    } else if (const auto* image = std::get_if<ImageItem>(&item)) {
      if (image->image < document.images.size() && document.images[image->image]) {
        painter.DrawImage(*image, document.images[image->image]);
      }
    } else if (const auto* barcode = std::get_if<BarcodeItem>(&item)) {
      if (barcode->symbol < document.barcodes.size() && document.barcodes[barcode->symbol]) {
        DrawBarcode(painter, *barcode, *document.barcodes[barcode->symbol]);
      }
    } else if (const auto* group = std::get_if<GroupItem>(&item)) {
      DrawGroup(painter, document, *group);
    }
  }
}

}  // namespace

int DashPattern(const Stroke& stroke, double dashes[4]) {
  // Dash lengths follow the width so a thick dashed rule still reads as dashed.
  const double unit = std::max(static_cast<double>(stroke.width), 0.5);
  switch (stroke.style) {
    case LineStyle::kDash:
      dashes[0] = 3 * unit, dashes[1] = 2 * unit;
      return 2;
    case LineStyle::kDot:
      dashes[0] = unit, dashes[1] = unit;
      return 2;
    case LineStyle::kDashDot:
      dashes[0] = 3 * unit, dashes[1] = 2 * unit, dashes[2] = unit, dashes[3] = 2 * unit;
      return 4;
    case LineStyle::kSolid:
    case LineStyle::kDouble:
      break;
  }
  return 0;
}

void ApplyStroke(cairo_t* cr, const Stroke& stroke) {
  SetColor(cr, stroke.color);
  cairo_set_line_width(cr, stroke.width);
  cairo_set_line_join(cr, CAIRO_LINE_JOIN_MITER);
  double dashes[4];
  const int count = DashPattern(stroke, dashes);
  cairo_set_dash(cr, count > 0 ? dashes : nullptr, count, 0);
}

void RoundedRectangle(cairo_t* cr, double x, double y, double width, double height, double radius) {
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

void StrokeBorders(Painter& painter, const RectF& box, uint8_t sides, const Stroke& stroke) {
  if (sides == 0 || !Visible(stroke)) return;
  constexpr uint8_t kAll = kBorderLeft | kBorderTop | kBorderRight | kBorderBottom;
  if ((sides & kAll) == kAll) {
    painter.StrokeBox(box, 0, stroke);
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
  // Square caps close the corners where two single lines meet.
  const cairo_line_cap_t cap =
      stroke.style == LineStyle::kDouble ? CAIRO_LINE_CAP_BUTT : CAIRO_LINE_CAP_SQUARE;
  for (const auto& s : kSides) {
    if ((sides & s.side) != 0) painter.StrokeSegment(s.from, s.to, stroke, cap);
  }
}

}  // namespace render

void DrawPage(render::Painter& painter, const Document& document, const Page& page) {
  render::DrawItems(painter, document, page.items);
  painter.Flush();
}

void DrawPage(cairo_t* cr, const Document& document, const Page& page) {
  cairo_save(cr);
  {
    render::CairoPainter painter(cr);
    render::DrawItems(painter, document, page.items);
  }
  cairo_restore(cr);
}

void DrawTextBox(cairo_t* cr, const TextStyle& style, const RectF& box, std::string_view text) {
  render::CairoPainter painter(cr);
  render::DrawTextBox(painter, style, box, text);
}

}  // namespace vantorel::report
