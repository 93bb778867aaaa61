// Barcodes: the symbol's bars filled as one path, scaled into the box, with the human-readable
// line under linear symbols.
#include <algorithm>
#include <cmath>
#include <vector>

#include "report/render/draw_page.h"
#include "report/render/draw_parts.h"

namespace vantorel::report::render {
namespace {

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

void DrawBarcode(Painter& painter, const BarcodeItem& item, const BarcodeSymbol& symbol) {
  const RectF& box = item.box;
  painter.Fill(box, 0, item.background);
  if (symbol.width <= 0 || symbol.height <= 0 || box.width <= 0 || box.height <= 0) return;
  double sx = box.width / symbol.width, sy = box.height / symbol.height;
  double x = box.x, y = box.y;
  // A square symbol (QR, square Data Matrix) stays square, centred; a scanner needs square
  // modules. Linear symbols stretch to their box.
  if (symbol.text.empty() && std::abs(symbol.width - symbol.height) < 1e-3f) {
    sx = sy = std::min(sx, sy);
    x += (box.width - symbol.width * sx) / 2;
    y += (box.height - symbol.height * sy) / 2;
  }
  if (item.color.visible() && !symbol.bars.empty()) {
    // Hundreds of modules: painted straight away rather than batched.
    painter.Flush();
    cairo_t* cr = painter.cr();
    SetColor(cr, item.color);
    if (symbol.text.empty()) {
      StrokeRuns(cr, symbol, x, y, sx, sy);
    } else {
      for (const RectF& bar : symbol.bars) {
        cairo_rectangle(cr, x + bar.x * sx, y + bar.y * sy, bar.width * sx, bar.height * sy);
      }
      cairo_fill(cr);
    }
  }
  if (symbol.text.empty() || symbol.text_height <= 0) return;
  const RectF band{
      static_cast<float>(x), static_cast<float>(y + (symbol.height - symbol.text_height) * sy),
      static_cast<float>(symbol.width * sx), static_cast<float>(symbol.text_height * sy)};
  TextStyle style;
  style.font_family = "Liberation Mono";
  // Liberation Mono advances 0.6 em per character; the line fits the band both ways.
  const float by_width = band.width / (0.6f * static_cast<float>(symbol.text.size()));
  style.size = std::max(1.0f, std::min(band.height * 0.9f, by_width));
  style.color = item.color;
  style.halign = HAlign::kCenter;
  style.valign = VAlign::kMiddle;
  style.wrap = false;
  style.clip = false;
  style.padding = {0, 0, 0, 0};
  DrawTextBox(painter, style, band, symbol.text);
}

}  // namespace vantorel::report::render
