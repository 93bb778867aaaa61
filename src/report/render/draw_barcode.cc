// Barcodes: the symbol's bars filled as one path, scaled into the box, with the human-readable
// line under linear symbols.
#include <algorithm>
#include <cmath>
#include <vector>

#include "report/render/draw_page.h"
#include "report/render/draw_parts.h"

namespace vantorel::report::render {
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
    painter.DrawBars(symbol, x, y, sx, sy, item.color);
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
