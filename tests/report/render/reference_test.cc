// Whole scenes compared with reference PNGs, for the drawing details the pixel probes in
// draw_page_test.cc do not pin. To regenerate after an intended change:
//   VANTOREL_UPDATE_REFERENCE=1 ctest -R ReferenceTest
// then look at the PNGs under tests/report/render/reference/ before committing them.
#include <gtest/gtest.h>

#include "report/barcode/barcode.h"
#include "report/render/draw_page.h"
#include "report/render/pixel_compare.h"

namespace vantorel::report {
namespace {

using testing::MatchesReference;
using testing::RenderPage;

TEST(ReferenceTest, TextStyles) {
  Document document;
  TextStyle title;
  title.size = 16;
  title.bold = true;
  title.halign = HAlign::kCenter;
  title.fill = {230, 230, 250, 255};
  title.borders = kBorderBottom;
  title.border = Stroke{1.5f, {40, 40, 120, 255}, LineStyle::kDouble};
  TextStyle body;
  body.size = 9;
  body.halign = HAlign::kJustify;
  body.font_family = "Times New Roman";
  TextStyle amount;
  amount.size = 11;
  amount.halign = HAlign::kRight;
  amount.borders = kBorderLeft | kBorderTop | kBorderRight | kBorderBottom;
  amount.border = Stroke{0.5f, Color::Black(), LineStyle::kDash};
  TextStyle hindi;
  hindi.size = 14;
  hindi.color = {150, 0, 0, 255};
  TextStyle rich;
  rich.size = 10;
  rich.rich = true;
  TextStyle side;
  side.size = 10;
  side.rotation = 90;
  side.valign = VAlign::kMiddle;
  side.halign = HAlign::kCenter;
  side.fill = {220, 240, 220, 255};

  Page page{{300, 200}, {}};
  page.items.push_back(TextItem{{30, 5, 265, 24}, document.InternStyle(title), "TAX INVOICE"});
  page.items.push_back(TextItem{
      {30, 32, 150, 70},
      document.InternStyle(body),
      "Received with thanks the sum of rupees one lac five thousand six hundred thirty only "
      "towards the purchase of one motorcycle, subject to the terms overleaf."});
  page.items.push_back(TextItem{{185, 32, 110, 18}, document.InternStyle(amount), "₹ 1,05,630.00"});
  page.items.push_back(TextItem{{185, 54, 110, 24}, document.InternStyle(hindi), "श्री गणेश मोटर्स"});
  page.items.push_back(TextItem{{30, 110, 265, 40},
                                document.InternStyle(rich),
                                "Net <b>payable</b> <i>by</i> <u>31/03/2025</u>: "
                                "<font color=\"#0060c0\" size=\"13\">₹ 5,000</font>"});
  page.items.push_back(TextItem{{5, 5, 20, 190}, document.InternStyle(side), "Customer copy"});
  const auto surface = RenderPage(document, page, 2);
  EXPECT_TRUE(MatchesReference(surface.get(), "text_styles.png"));
}

TEST(ReferenceTest, Shapes) {
  Document document;
  Page page{{200, 120}, {}};
  const LineStyle styles[] = {LineStyle::kSolid, LineStyle::kDash, LineStyle::kDot,
                              LineStyle::kDashDot, LineStyle::kDouble};
  float y = 10;
  for (const LineStyle style : styles) {
    page.items.push_back(LineItem{{10, y}, {90, y}, Stroke{1.5f, {0, 0, 0, 255}, style}});
    y += 12;
  }
  page.items.push_back(LineItem{{100, 10}, {190, 60}, Stroke{3, {200, 0, 0, 255}}});
  page.items.push_back(
      RectItem{{10, 70, 50, 40}, {255, 200, 0, 255}, Stroke{1, {0, 0, 0, 255}}, 0});
  page.items.push_back(
      RectItem{{70, 70, 50, 40}, {0, 120, 255, 160}, Stroke{2, {0, 0, 120, 255}}, 10});
  page.items.push_back(RectItem{
      {130, 70, 60, 40}, Color::None(), Stroke{1, {0, 100, 0, 255}, LineStyle::kDouble}, 6});
  const auto surface = RenderPage(document, page, 2);
  EXPECT_TRUE(MatchesReference(surface.get(), "shapes.png"));
}

TEST(ReferenceTest, CodesAndPictures) {
  Document document;
  auto image = std::make_shared<ImageData>();
  image->width = 16;
  image->height = 8;
  image->stride = 64;
  image->has_alpha = true;
  image->pixels.resize(512);
  auto* pixels = reinterpret_cast<uint32_t*>(image->pixels.data());
  for (int y = 0; y < 8; ++y) {
    for (int x = 0; x < 16; ++x) {
      // A gradient of half-transparent green over a transparent right edge, premultiplied.
      const uint32_t a = x < 12 ? 200 : 0;
      const uint32_t g = static_cast<uint32_t>(x * 16) * a / 255;
      pixels[y * 16 + x] = a << 24 | (y * 30 * a / 255) << 16 | g << 8;
    }
  }
  const uint32_t picture = document.AddImage(image);
  const uint32_t qr = document.AddBarcode(
      Encode(Symbology::kQr, "upi://pay?pa=ganesh@bank&pn=Shri%20Ganesh%20Motors&am=105630.00"));
  const uint32_t code128 = document.AddBarcode(Encode(Symbology::kCode128, "INV/2024-25/00421"));
  Page page{{240, 120}, {}};
  page.items.push_back(BarcodeItem{{10, 10, 80, 80}, qr, Color::Black(), Color::White()});
  page.items.push_back(BarcodeItem{{100, 10, 130, 45}, code128, {0, 0, 80, 255}, Color::None()});
  page.items.push_back(ImageItem{{100, 65, 60, 45}, picture, ImageFit::kContain});
  page.items.push_back(ImageItem{{170, 65, 60, 45}, picture, ImageFit::kCover});
  const auto surface = RenderPage(document, page, 2);
  EXPECT_TRUE(MatchesReference(surface.get(), "codes_and_pictures.png"));
}

}  // namespace
}  // namespace vantorel::report
