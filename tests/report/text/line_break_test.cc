// Where lines break: the same places on both ways of laying text out, and never inside a date or
// a document number after its hyphens and slashes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "report/text/fonts.h"
#include "report/text/layout.h"
#include "report/text/layout_paths.h"
#include "report/text/text_layout.h"

namespace vantorel::report::text {
namespace {

TextStyle Style(float size = 10) {
  TextStyle style;
  style.size = size;
  return style;
}

std::vector<std::string> LinesOf(const LaidOutText& laid_out, std::string_view text) {
  std::vector<std::string> lines;
  for (const TextLine& line : laid_out.lines) {
    lines.emplace_back(text.substr(line.begin, line.end - line.begin));
  }
  return lines;
}

std::vector<std::string> FastLines(std::string_view text, const TextStyle& style, float width) {
  const FontInfo& font =
      ThreadFonts::Current().Primary(style.font_family, style.bold, style.italic, style.size);
  EXPECT_TRUE(CanLayOutFast(text, font)) << text;
  return LinesOf(LayOutFast(text, style, font, LineGeometry(style, width, width > 0)), text);
}

std::vector<std::string> PangoLines(std::string_view text, const TextStyle& style, float width) {
  const FontInfo& font =
      ThreadFonts::Current().Primary(style.font_family, style.bold, style.italic, style.size);
  return LinesOf(
      LayOutWithPango(ValidUtf8(text), style, font, LineGeometry(style, width, width > 0)), text);
}

TEST(LineBreakTest, DatesAndNumbersStayWhole) {
  const TextStyle style = Style();
  const float date = MeasureText("22-02-2030", style, 0).width;
  const float number = MeasureText("VSI/24-25/0007", style, 0).width;
  for (const bool fast : {true, false}) {
    const auto lines = [&](std::string_view text, float width) {
      return fast ? FastLines(text, style, width) : PangoLines(text, style, width);
    };
    SCOPED_TRACE(fast ? "fast path" : "Pango");
    // Room for the whole date on a line, and for "Due 22-02-": the date moves down whole.
    ASSERT_LT(MeasureText("Due 22-02-", style, 0).width, date);
    EXPECT_EQ(lines("Due 22-02-2030", date + 1), (std::vector<std::string>{"Due ", "22-02-2030"}));
    ASSERT_LT(MeasureText("Bill VSI/24-", style, 0).width, number);
    EXPECT_EQ(lines("Bill VSI/24-25/0007 dated", number + 1),
              (std::vector<std::string>{"Bill ", "VSI/24-25/0007 ", "dated"}));
    ASSERT_LT(MeasureText("No. VSI/", style, 0).width, number);
    EXPECT_EQ(lines("No. VSI/24-25/0007", number + 1),
              (std::vector<std::string>{"No. ", "VSI/24-25/0007"}));
    EXPECT_EQ(lines("see a /b", MeasureText("see a /", style, 0).width - 1),
              (std::vector<std::string>{"see ", "a /b"}))
        << "never a break before a slash";
    // A hyphen or a slash before a letter still lets the line break.
    EXPECT_EQ(lines("Two-wheeler and/or", MeasureText("Two-wheeler and/", style, 0).width + 1),
              (std::vector<std::string>{"Two-wheeler and/", "or"}));
    EXPECT_EQ(lines("Two-wheeler", MeasureText("wheeler", style, 0).width + 1),
              (std::vector<std::string>{"Two-", "wheeler"}));
    // Alone on a line too narrow for it, a number is split, but never right after its signs.
    for (const float width : {date * 0.3f, date * 0.55f, date * 0.8f, number * 0.4f}) {
      for (const char* text : {"22-02-2030", "VSI/24-25/0007"}) {
        const auto split = lines(text, width);
        EXPECT_GT(split.size(), 1u) << text;
        for (size_t i = 0; i + 1 < split.size(); ++i) {
          const char last = split[i].back();
          EXPECT_FALSE(last == '-' || last == '/') << text << " at " << width << ": " << split[i];
        }
      }
    }
  }
}

// Rich text and font fallback go through Pango; the number stays whole there too.
TEST(LineBreakTest, NumbersStayWholeInRichTextAndFallback) {
  const float number = MeasureText("VSI/24-25/0007", Style(), 0).width;
  TextStyle rich = Style();
  rich.rich = true;
  const std::string markup = "<b>Bill</b> VSI/24-25/0007 dated";
  const auto laid_out = LayOut(markup, rich, number + 1);
  EXPECT_FALSE(laid_out->fast_path);
  EXPECT_EQ(LinesOf(*laid_out, markup),
            (std::vector<std::string>{"<b>Bill</b> ", "VSI/24-25/0007 ", "dated"}));
  const std::string rupee = "₹ VSI/24-25/0007";
  const auto fallback = LayOut(rupee, Style(), number + 1);
  EXPECT_FALSE(fallback->fast_path);
  EXPECT_EQ(LinesOf(*fallback, rupee), (std::vector<std::string>{"₹ ", "VSI/24-25/0007"}));
}

// Both ways must break plain text at the same places: a rich text's tail that FitText moved to
// the next page may take the other way.
TEST(LineBreakTest, FastPathAndPangoBreakAlike) {
  const char* kWords[] = {"Tax",
                          "Invoice",
                          "22-02-2030",
                          "VSI/24-25/0007",
                          "and/or",
                          "Two-wheeler",
                          "Rs.1,05,630.00",
                          "(Net)",
                          "No.12/2024",
                          "A-1",
                          "1-A",
                          "x/y/z",
                          "e.g.",
                          "\"quoted\"",
                          "30%",
                          "KA-01-HH-1234",
                          "-5",
                          "a--b",
                          "end.",
                          "Hello,",
                          "ABCDEFGHIJKLMNOPQRSTUVWXYZ",
                          "naïve",
                          "café—bar",
                          "x – y",
                          "HSN:8711",
                          "[tag]",
                          "q?",
                          "#12",
                          "9/11",
                          "/slash"};
  uint32_t seed = 12345;
  const auto next = [&] {
    seed = seed * 1103515245u + 12345u;
    return (seed >> 16) & 0x7fff;
  };
  int compared = 0;
  for (const char* family : {"Arial", "Times New Roman", "Courier New"}) {
    for (const bool bold : {false, true}) {
      TextStyle style = Style(bold ? 11.5f : 9);
      style.font_family = family;
      style.bold = bold;
      style.char_spacing = bold ? 0.7f : 0;
      for (int n = 0; n < 200; ++n) {
        std::string text;
        const int words = 2 + static_cast<int>(next() % 10);
        for (int w = 0; w < words; ++w) {
          if (w > 0) text += next() % 7 == 0 ? "  " : " ";
          text += kWords[next() % std::size(kWords)];
        }
        const float natural = MeasureText(text, style, 0).width;
        for (const float share : {0.15f, 0.3f, 0.45f, 0.6f, 0.8f}) {
          // Boxes narrower than a few letters split words where Pango decides by shaping anew.
          const float width = std::max(3 * style.size, std::round(natural * share));
          EXPECT_EQ(FastLines(text, style, width), PangoLines(text, style, width))
              << family << (bold ? " bold" : "") << " at " << width << ": " << text;
          ++compared;
        }
      }
    }
  }
  EXPECT_EQ(compared, 3 * 2 * 200 * 5);
}

}  // namespace
}  // namespace vantorel::report::text
