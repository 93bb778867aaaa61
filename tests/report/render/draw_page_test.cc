#include "report/render/draw_page.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "report/barcode/barcode.h"
#include "report/render/draw_parts.h"
#include "report/render/pixel_compare.h"
#include "report/render/text_lines.h"
#include "report/text/text_layout.h"

namespace vantorel::report {
namespace {

using testing::FindInk;
using testing::IsInk;
using testing::PixelAt;
using testing::RenderPage;

constexpr Color kRed = {255, 0, 0, 255};
constexpr Color kBlue = {0, 0, 255, 255};
constexpr Color kGreen = {0, 160, 0, 255};

Page Sheet(float width = 200, float height = 200) { return Page{{width, height}, {}}; }

// A 4 × 2 picture: left half red, right half blue, opaque.
std::shared_ptr<const ImageData> TwoColourImage() {
  auto image = std::make_shared<ImageData>();
  image->source = "two-colour";
  image->width = 4;
  image->height = 2;
  image->stride = 16;
  image->pixels.resize(32);
  auto* pixels = reinterpret_cast<uint32_t*>(image->pixels.data());
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 4; ++x) pixels[y * 4 + x] = x < 2 ? 0xFFFF0000u : 0xFF0000FFu;
  }
  return image;
}

bool Near(const Color& a, const Color& b, int tolerance = 8) {
  return std::abs(a.r - b.r) <= tolerance && std::abs(a.g - b.g) <= tolerance &&
         std::abs(a.b - b.b) <= tolerance;
}

TEST(DrawPageTest, FilledRectangleIsItsColour) {
  Document document;
  Page page = Sheet();
  page.items.push_back(RectItem{{50, 50, 100, 60}, kRed, Stroke{0}, 0});
  const auto surface = RenderPage(document, page);
  EXPECT_EQ(PixelAt(surface.get(), 100, 80), kRed);
  EXPECT_EQ(PixelAt(surface.get(), 40, 80), Color::White());
  EXPECT_EQ(PixelAt(surface.get(), 100, 115), Color::White());
}

TEST(DrawPageTest, RoundedCornersLeaveTheCornerEmpty) {
  Document document;
  Page page = Sheet();
  page.items.push_back(RectItem{{50, 50, 100, 60}, kRed, Stroke{0}, 15});
  const auto surface = RenderPage(document, page);
  EXPECT_EQ(PixelAt(surface.get(), 51, 51), Color::White());
  EXPECT_EQ(PixelAt(surface.get(), 65, 51), kRed);
}

TEST(DrawPageTest, StrokedRectangleHasAnOutlineOnly) {
  Document document;
  Page page = Sheet();
  page.items.push_back(RectItem{{50, 50, 100, 60}, Color::None(), Stroke{2, kBlue}, 0});
  const auto surface = RenderPage(document, page);
  EXPECT_EQ(PixelAt(surface.get(), 100, 50), kBlue);
  EXPECT_EQ(PixelAt(surface.get(), 150, 80), kBlue);
  EXPECT_EQ(PixelAt(surface.get(), 100, 80), Color::White());
}

TEST(DrawPageTest, TranslucentFillBlends) {
  Document document;
  Page page = Sheet();
  page.items.push_back(RectItem{{0, 0, 100, 100}, Color{255, 0, 0, 128}, Stroke{0}, 0});
  const Color c = PixelAt(RenderPage(document, page).get(), 50, 50);
  EXPECT_EQ(c.r, 255);
  EXPECT_NEAR(c.g, 127, 2);
  EXPECT_NEAR(c.b, 127, 2);
}

TEST(DrawPageTest, LinesSolidDashedAndDouble) {
  Document document;
  Page page = Sheet();
  page.items.push_back(LineItem{{10, 20}, {190, 20}, Stroke{2, Color::Black()}});
  page.items.push_back(LineItem{{10, 60}, {190, 60}, Stroke{2, Color::Black(), LineStyle::kDash}});
  page.items.push_back(
      LineItem{{10, 100}, {190, 100}, Stroke{2, Color::Black(), LineStyle::kDouble}});
  const auto surface = RenderPage(document, page);
  for (int x = 10; x < 190; x += 7) EXPECT_TRUE(IsInk(PixelAt(surface.get(), x, 20))) << x;
  // Dashes: 6 pt on, 4 pt off.
  EXPECT_TRUE(IsInk(PixelAt(surface.get(), 13, 60)));
  EXPECT_FALSE(IsInk(PixelAt(surface.get(), 18, 60)));
  EXPECT_TRUE(IsInk(PixelAt(surface.get(), 23, 60)));
  // Double: two 2 pt lines centred 2 pt either side, white between them.
  EXPECT_TRUE(IsInk(PixelAt(surface.get(), 100, 97)));
  EXPECT_FALSE(IsInk(PixelAt(surface.get(), 100, 100)));
  EXPECT_TRUE(IsInk(PixelAt(surface.get(), 100, 102)));
}

TEST(DrawPageTest, TextInkStaysInsideAClippedBox) {
  Document document;
  TextStyle style;
  style.size = 14;
  style.wrap = false;
  const uint32_t clipped = document.InternStyle(style);
  style.clip = false;
  const uint32_t unclipped = document.InternStyle(style);
  Page page = Sheet(300, 100);
  page.items.push_back(TextItem{{10, 10, 60, 20}, clipped, "A long unbreakable line of text"});
  page.items.push_back(TextItem{{10, 50, 60, 20}, unclipped, "A long unbreakable line of text"});
  const auto surface = RenderPage(document, page, 2);
  const auto inside = FindInk(surface.get(), 20, 20, 140, 60);
  ASSERT_TRUE(inside);
  EXPECT_FALSE(FindInk(surface.get(), 140, 0, 600, 45)) << "clipped text drawn outside its box";
  EXPECT_TRUE(FindInk(surface.get(), 140, 100, 600, 140)) << "unclipped text should overflow";
}

TEST(DrawPageTest, VerticalAlignment) {
  Document document;
  TextStyle style;
  style.size = 10;
  const uint32_t top = document.InternStyle(style);
  style.valign = VAlign::kMiddle;
  const uint32_t middle = document.InternStyle(style);
  style.valign = VAlign::kBottom;
  const uint32_t bottom = document.InternStyle(style);
  Page page = Sheet(300, 100);
  page.items.push_back(TextItem{{0, 0, 100, 100}, top, "Top"});
  page.items.push_back(TextItem{{100, 0, 100, 100}, middle, "Mid"});
  page.items.push_back(TextItem{{200, 0, 100, 100}, bottom, "Bot"});
  const auto surface = RenderPage(document, page);
  const auto t = FindInk(surface.get(), 0, 0, 100, 100);
  const auto m = FindInk(surface.get(), 100, 0, 200, 100);
  const auto b = FindInk(surface.get(), 200, 0, 300, 100);
  ASSERT_TRUE(t && m && b);
  EXPECT_LT(t->bottom, 15);
  EXPECT_NEAR((m->top + m->bottom) / 2.0, 50, 4);
  EXPECT_GT(b->top, 85);
}

TEST(DrawPageTest, TextTallerThanItsBoxStartsAtTheTop) {
  Document document;
  TextStyle style;
  style.size = 10;
  style.valign = VAlign::kBottom;
  const uint32_t index = document.InternStyle(style);
  Page page = Sheet(200, 100);
  page.items.push_back(TextItem{{20, 20, 100, 30}, index, "ONE\nTWO\nTHREE\nFOUR\nFIVE"});
  const auto surface = RenderPage(document, page);
  const auto ink = FindInk(surface.get());
  ASSERT_TRUE(ink);
  EXPECT_LT(ink->top, 25);
  EXPECT_LE(ink->bottom, 50);
}

TEST(DrawPageTest, RotatedTextRunsAlongTheBoxHeight) {
  Document document;
  TextStyle style;
  style.size = 12;
  style.rotation = 90;
  const uint32_t up = document.InternStyle(style);
  style.rotation = 270;
  const uint32_t down = document.InternStyle(style);
  Page page = Sheet(200, 200);
  page.items.push_back(TextItem{{10, 10, 30, 180}, up, "Rotated heading"});
  page.items.push_back(TextItem{{100, 10, 30, 180}, down, "Rotated heading"});
  const auto surface = RenderPage(document, page);
  for (const int x0 : {10, 100}) {
    const auto ink = FindInk(surface.get(), x0, 10, x0 + 30, 190);
    ASSERT_TRUE(ink);
    EXPECT_GT(ink->bottom - ink->top, 60) << x0;
    EXPECT_LT(ink->right - ink->left, 16) << x0;
  }
  // 90° reads upwards from the bottom; 270° reads downwards from the top.
  EXPECT_GT(FindInk(surface.get(), 10, 10, 40, 190)->bottom, 170);
  EXPECT_LT(FindInk(surface.get(), 100, 10, 130, 190)->top, 20);
}

TEST(DrawPageTest, TextBoxFillAndBorders) {
  Document document;
  TextStyle style;
  style.fill = {255, 255, 0, 255};
  style.borders = kBorderLeft | kBorderBottom;
  style.border = Stroke{2, kBlue};
  const uint32_t index = document.InternStyle(style);
  Page page = Sheet();
  page.items.push_back(TextItem{{50, 50, 100, 50}, index, ""});
  const auto surface = RenderPage(document, page);
  EXPECT_EQ(PixelAt(surface.get(), 100, 75), (Color{255, 255, 0, 255}));
  EXPECT_EQ(PixelAt(surface.get(), 50, 75), kBlue);
  EXPECT_EQ(PixelAt(surface.get(), 100, 100), kBlue);
  EXPECT_EQ(PixelAt(surface.get(), 149, 75), (Color{255, 255, 0, 255})) << "no right border";
  EXPECT_EQ(PixelAt(surface.get(), 100, 50), (Color{255, 255, 0, 255})) << "no top border";
}

TEST(DrawPageTest, TextColourAndDecorations) {
  Document document;
  TextStyle style;
  style.size = 20;
  style.color = kRed;
  style.underline = true;
  const uint32_t index = document.InternStyle(style);
  Page page = Sheet(200, 60);
  page.items.push_back(TextItem{{10, 10, 180, 40}, index, "HHHH"});
  const auto surface = RenderPage(document, page);
  const auto ink = FindInk(surface.get());
  ASSERT_TRUE(ink);
  // The underline: a red row spanning the word just below the baseline.
  int red_row = -1;
  for (int y = ink->bottom; y > ink->top; --y) {
    if (Near(PixelAt(surface.get(), (ink->left + ink->right) / 2, y), kRed, 40)) {
      red_row = y;
      break;
    }
  }
  ASSERT_GT(red_row, 0);
  EXPECT_TRUE(Near(PixelAt(surface.get(), (ink->left + ink->right) / 2, red_row), kRed, 40));
}

TEST(DrawPageTest, ImageFits) {
  Document document;
  const uint32_t image = document.AddImage(TwoColourImage());
  Page page = Sheet(400, 100);
  page.items.push_back(ImageItem{{0, 0, 100, 100}, image, ImageFit::kContain});
  page.items.push_back(ImageItem{{100, 0, 100, 100}, image, ImageFit::kStretch});
  page.items.push_back(ImageItem{{200, 0, 100, 100}, image, ImageFit::kCover});
  page.items.push_back(ImageItem{{300, 0, 100, 100}, image, ImageFit::kCenter});
  const auto surface = RenderPage(document, page);
  // Contain: 100 × 50, centred vertically.
  EXPECT_EQ(PixelAt(surface.get(), 50, 10), Color::White());
  EXPECT_TRUE(Near(PixelAt(surface.get(), 20, 50), kRed));
  EXPECT_TRUE(Near(PixelAt(surface.get(), 80, 50), kBlue));
  // Stretch: the whole box.
  EXPECT_TRUE(Near(PixelAt(surface.get(), 120, 5), kRed));
  EXPECT_TRUE(Near(PixelAt(surface.get(), 180, 95), kBlue));
  // Cover: 200 × 100 centred and clipped: the middle 100 pt show the inner halves.
  EXPECT_TRUE(Near(PixelAt(surface.get(), 210, 5), kRed));
  EXPECT_TRUE(Near(PixelAt(surface.get(), 290, 95), kBlue));
  EXPECT_FALSE(IsInk(PixelAt(surface.get(), 305, 50))) << "cover must not spill";
  // Center: 4 × 2 pixels at 96 dpi are 3 × 1.5 pt, centred.
  const auto natural = FindInk(surface.get(), 300, 0, 400, 100);
  ASSERT_TRUE(natural);
  EXPECT_NEAR(natural->left, 348, 1);
  EXPECT_LE(natural->right - natural->left, 4);
}

TEST(DrawPageTest, ImageSurfaceIsMadeOncePerImage) {
  const auto image = TwoColourImage();
  cairo_surface_t* first = render::ImageSurface(image);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(render::ImageSurface(image), first);
  const unsigned char* id = nullptr;
  unsigned long length = 0;
  cairo_surface_get_mime_data(first, CAIRO_MIME_TYPE_UNIQUE_ID, &id, &length);
  EXPECT_GT(length, 0u);
}

TEST(DrawPageTest, MalformedImageDrawsNothing) {
  Document document;
  auto broken = std::make_shared<ImageData>();
  broken->width = 100;
  broken->height = 100;
  broken->stride = 400;  // and no pixels
  const uint32_t index = document.AddImage(broken);
  Page page = Sheet();
  page.items.push_back(ImageItem{{0, 0, 100, 100}, index, ImageFit::kStretch});
  page.items.push_back(ImageItem{{0, 0, 100, 100}, 7, ImageFit::kStretch});
  EXPECT_FALSE(FindInk(RenderPage(document, page).get()));
}

TEST(DrawPageTest, BarcodeBarsFillTheirBox) {
  Document document;
  auto symbol = std::make_shared<BarcodeSymbol>();
  symbol->width = 10;
  symbol->height = 10;
  symbol->text = "X";  // not square-kept: stretched
  symbol->bars = {{0, 0, 2, 10}, {6, 0, 1, 10}};
  const uint32_t index = document.AddBarcode(symbol);
  Page page = Sheet();
  page.items.push_back(BarcodeItem{{0, 0, 100, 50}, index, kGreen, Color::None()});
  const auto surface = RenderPage(document, page);
  EXPECT_EQ(PixelAt(surface.get(), 10, 25), kGreen);
  EXPECT_EQ(PixelAt(surface.get(), 40, 25), Color::White());
  EXPECT_EQ(PixelAt(surface.get(), 65, 25), kGreen);
}

TEST(DrawPageTest, QrCodeStaysSquareAndCentred) {
  Document document;
  const uint32_t index = document.AddBarcode(Encode(Symbology::kQr, "VANTOREL"));
  Page page = Sheet(300, 100);
  page.items.push_back(BarcodeItem{{0, 0, 300, 100}, index, Color::Black(), Color::None()});
  const auto surface = RenderPage(document, page);
  const auto ink = FindInk(surface.get());
  ASSERT_TRUE(ink);
  EXPECT_NEAR(ink->right - ink->left, ink->bottom - ink->top, 2);
  EXPECT_NEAR((ink->left + ink->right) / 2.0, 150, 2);
  // The finder pattern's corner module is dark.
  EXPECT_TRUE(IsInk(PixelAt(surface.get(), ink->left + 1, ink->top + 1)));
}

TEST(DrawPageTest, LinearBarcodeShowsItsText) {
  Document document;
  const uint32_t index = document.AddBarcode(Encode(Symbology::kEan13, "590123412345"));
  Page page = Sheet(200, 100);
  page.items.push_back(BarcodeItem{{10, 10, 180, 80}, index, Color::Black(), Color::None()});
  const auto surface = RenderPage(document, page);
  // Bars above, digits below: a white gap row separates the bars from the digits' tops.
  const auto bars = FindInk(surface.get(), 10, 10, 190, 60);
  const auto digits = FindInk(surface.get(), 10, 82, 190, 90);
  EXPECT_TRUE(bars);
  EXPECT_TRUE(digits);
}

TEST(DrawPageTest, GroupsClipTheirItems) {
  Document document;
  Page page = Sheet();
  GroupItem group;
  group.clip = {50, 50, 50, 50};
  group.items.push_back(RectItem{{0, 0, 200, 200}, kRed, Stroke{0}, 0});
  page.items.push_back(group);
  const auto surface = RenderPage(document, page);
  EXPECT_EQ(PixelAt(surface.get(), 75, 75), kRed);
  EXPECT_EQ(PixelAt(surface.get(), 25, 25), Color::White());
  EXPECT_EQ(PixelAt(surface.get(), 125, 125), Color::White());
  const auto ink = FindInk(surface.get());
  ASSERT_TRUE(ink);
  EXPECT_EQ(ink->left, 50);
  EXPECT_EQ(ink->right, 99);
}

TEST(DrawPageTest, LaterItemsPaintOverEarlierOnes) {
  Document document;
  Page page = Sheet();
  page.items.push_back(RectItem{{0, 0, 100, 100}, kRed, Stroke{0}, 0});
  page.items.push_back(RectItem{{50, 50, 100, 100}, kBlue, Stroke{0}, 0});
  const auto surface = RenderPage(document, page);
  EXPECT_EQ(PixelAt(surface.get(), 75, 75), kBlue);
  EXPECT_EQ(PixelAt(surface.get(), 25, 25), kRed);
}

TEST(DrawPageTest, BatchingKeepsWhatCoversWhat) {
  Document document;
  TextStyle style;
  style.size = 20;
  const uint32_t index = document.InternStyle(style);
  Page page = Sheet(300, 100);
  // Same colour before and after the text: the second fill covers the text, so it must not be
  // gathered into the first fill's batch, which is painted before the text.
  page.items.push_back(RectItem{{0, 0, 100, 100}, kRed, Stroke{0}, 0});
  page.items.push_back(TextItem{{10, 10, 280, 40}, index, "HIDDEN TEXT HERE"});
  page.items.push_back(RectItem{{0, 0, 100, 100}, kRed, Stroke{0}, 0});
  page.items.push_back(RectItem{{200, 60, 50, 30}, kRed, Stroke{0}, 0});
  const auto surface = RenderPage(document, page);
  for (int y = 0; y < 100; y += 3) {
    for (int x = 0; x < 100; x += 3) ASSERT_EQ(PixelAt(surface.get(), x, y), kRed) << x << "," << y;
  }
  EXPECT_TRUE(FindInk(surface.get(), 100, 10, 290, 50)) << "the rest of the text shows";
  EXPECT_EQ(PixelAt(surface.get(), 225, 75), kRed);
}

TEST(DrawPageTest, BrokenReferencesAreSkipped) {
  Document document;
  Page page = Sheet();
  page.items.push_back(TextItem{{0, 0, 100, 100}, 42, "no such style"});
  page.items.push_back(BarcodeItem{{0, 0, 100, 100}, 3, Color::Black(), Color::None()});
  const auto surface = RenderPage(document, page);
  EXPECT_FALSE(FindInk(surface.get()));
}

TEST(TextLineStartsTest, AWrappedTextBreaksBetweenWordsAndCoversItAll) {
  const std::string text = "Received with thanks from Ramesh Dattatray Patil";
  const TextStyle style;
  const std::vector<uint32_t> starts = TextLineStarts(style, {0, 0, 80, 100}, text);
  ASSERT_GE(starts.size(), 3u);
  EXPECT_EQ(starts[0], 0u);
  for (size_t i = 1; i < starts.size(); ++i) {
    EXPECT_GT(starts[i], starts[i - 1]);
    EXPECT_EQ(text[starts[i] - 1], ' ') << "line " << i << " starts inside a word";
  }
  EXPECT_EQ(TextLineStarts(style, {0, 0, 400, 100}, text), std::vector<uint32_t>{0})
      << "a wide box takes it on one line";
  EXPECT_TRUE(TextLineStarts(style, {0, 0, 80, 100}, "").empty());
}

TEST(TextLineStartsTest, PaddingNarrowsTheLines) {
  const std::string text = "Helmet Crash guard";
  TextStyle style;
  style.padding = {0, 0, 0, 0};
  const float width = text::MeasureText(text, style, 1000).width;
  EXPECT_EQ(TextLineStarts(style, {0, 0, width + 1, 50}, text).size(), 1u);
  style.padding = {3, 0, 3, 0};
  EXPECT_EQ(TextLineStarts(style, {0, 0, width + 1, 50}, text).size(), 2u);
}

TEST(TextLineStartsTest, RotatedTextBreaksAlongTheBoxHeight) {
  const std::string text = "Received with thanks from Ramesh Dattatray Patil";
  TextStyle style;
  style.rotation = 90;
  EXPECT_EQ(TextLineStarts(style, {0, 0, 80, 400}, text).size(), 1u);
  EXPECT_GE(TextLineStarts(style, {0, 0, 400, 80}, text).size(), 3u);
}

}  // namespace
}  // namespace vantorel::report
