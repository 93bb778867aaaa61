// Where lines break: the same places on both ways of laying text out, and never inside a date or
// a document number after its hyphens and slashes, a PIN code after its dash or a short phrase in
// brackets.
#include <gtest/gtest.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <utility>
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

std::vector<std::string> KeptTexts(std::string_view text) {
  std::vector<std::string> kept;
  for (const KeptSpan& span : FindKeptSpans(text)) {
    kept.emplace_back(text.substr(span.begin, span.end - span.begin));
  }
  return kept;
}

TEST(LineBreakTest, PinCodesAndShortBracketsAreKeptWhole) {
  using Kept = std::vector<std::string>;
  EXPECT_EQ(KeptTexts("Flat 206, Wanowrie, Pune - 411013"), Kept{"Pune - 411013"});
  EXPECT_EQ(KeptTexts("Pune-411013, Maharashtra"), Kept{"Pune-411013"});
  EXPECT_EQ(KeptTexts("Nashik \u2014 422001"), Kept{"Nashik \u2014 422001"});
  EXPECT_EQ(KeptTexts("Dist. Satara  -  415001."), Kept{"Satara  -  415001"});
  EXPECT_EQ(KeptTexts("- 411013"), Kept{"- 411013"});
  EXPECT_EQ(KeptTexts("Vayu Sakhi 110 (Candy Yellow)"), Kept{"(Candy Yellow)"});
  EXPECT_EQ(KeptTexts("(Matt Grey) and (Pearl White)"), (Kept{"(Matt Grey)", "(Pearl White)"}));
  EXPECT_EQ(KeptTexts("Colour (Pune - 411013)"), Kept{"(Pune - 411013)"}) << "one stretch";
  EXPECT_EQ(KeptTexts("(24 characters, at most)"), Kept{"(24 characters, at most)"});
  EXPECT_EQ(KeptTexts("(\u0936\u094d\u0930\u0940 \u0917\u0923\u0947\u0936)").size(), 1u)
      << "characters, not bytes, count";
  // Not PIN codes, nor short bracketed phrases.
  EXPECT_EQ(KeptTexts("Plot 12 - 4110"), Kept{});
  EXPECT_EQ(KeptTexts("Ref 12 - 4110134"), Kept{});
  EXPECT_EQ(KeptTexts("Code - 011013"), Kept{});
  EXPECT_EQ(KeptTexts("Pune - 411013A"), Kept{});
  EXPECT_EQ(KeptTexts("(25 characters, not fewer.)"), Kept{});
  EXPECT_EQ(KeptTexts("Nashik \u2013 422001"), Kept{}) << "Pango breaks after an en dash";
  EXPECT_EQ(KeptTexts("(Mon \u2013 Sat)"), Kept{});
  EXPECT_EQ(KeptTexts("(a (b) c)"), Kept{"(b)"});
  EXPECT_EQ(KeptTexts("(unclosed"), Kept{});
  EXPECT_EQ(KeptTexts("()"), Kept{});
  EXPECT_EQ(KeptTexts("(two\nlines)"), Kept{});
}

TEST(LineBreakTest, TheOnlyClosingAnAmountInWordsKeepsTheWordBeforeIt) {
  using Kept = std::vector<std::string>;
  EXPECT_EQ(KeptTexts("AMOUNT IN WORDS EIGHTY FOUR THOUSAND NINE HUNDRED NINETY ONLY"),
            Kept{"NINETY ONLY"});
  EXPECT_EQ(KeptTexts("(AMOUNT IN WORDS RUPEES FIVE THOUSAND ONLY)"), Kept{"THOUSAND ONLY)"});
  EXPECT_EQ(KeptTexts("RUPEES : TEN ONLY."), Kept{"TEN ONLY."});
  EXPECT_EQ(KeptTexts("ONLY"), Kept{}) << "no word before it";
  EXPECT_EQ(KeptTexts("FOR OFFICE USE ONLY, PLEASE"), Kept{}) << "not the closing word";
  // In a box that fits all but the last word, the last line holds two words.
  TextStyle style;
  style.size = 9;
  const std::string words = "AMOUNT IN WORDS EIGHTY FOUR THOUSAND NINE HUNDRED NINETY ONLY";
  const float width =
      text::MeasureText("AMOUNT IN WORDS EIGHTY FOUR THOUSAND NINE HUNDRED NINETY", style, 0)
          .width +
      1;
  for (const bool fast : {true, false}) {
    const std::vector<std::string> lines =
        fast ? FastLines(words, style, width) : PangoLines(words, style, width);
    ASSERT_EQ(lines.size(), 2u) << (fast ? "fast" : "pango");
    EXPECT_EQ(lines.back(), "NINETY ONLY") << (fast ? "fast" : "pango");
  }
}

TEST(LineBreakTest, NarrowBoxesKeepPinCodesAndShortBracketsWhole) {
  const TextStyle style = Style();
  const auto width = [&](std::string_view text) { return MeasureText(text, style, 0).width; };
  for (const bool fast : {true, false}) {
    const auto lines = [&](std::string_view text, float box) {
      return fast ? FastLines(text, style, box) : PangoLines(text, style, box);
    };
    SCOPED_TRACE(fast ? "fast path" : "Pango");
    // Room for "Wanowrie, Pune - " but not the code: the place and its code go down together.
    const std::string address = "Wanowrie, Pune - 411013";
    EXPECT_EQ(lines(address, width("Wanowrie, Pune - 4110")),
              (std::vector<std::string>{"Wanowrie, ", "Pune - 411013"}));
    // Room for "Wanowrie, Pune " only: the dash does not start a line either.
    EXPECT_EQ(lines(address, width("Wanowrie, Pune ") + 1),
              (std::vector<std::string>{"Wanowrie, ", "Pune - 411013"}));
    // Room for the opening word of the colour only.
    const std::string model = "Vayu Sakhi 110 (Candy Yellow)";
    EXPECT_EQ(lines(model, width("Vayu Sakhi 110 (Candy Yel")),
              (std::vector<std::string>{"Vayu Sakhi 110 ", "(Candy Yellow)"}));
    EXPECT_EQ(lines("Shine (Matt Grey)", width("Shine (Matt ") + 1),
              (std::vector<std::string>{"Shine ", "(Matt Grey)"}));
    // A stretch wider than its line breaks as any text would, at its blank.
    EXPECT_EQ(lines("(Candy Yellow)", width("(Candy Yel")),
              (std::vector<std::string>{"(Candy ", "Yellow)"}));
    const float narrow = std::max(width("Wanowrie, "), width("Pune - ")) + 1;
    ASSERT_LT(narrow, width("Pune - 411013"));
    EXPECT_EQ(lines(address, narrow),
              (std::vector<std::string>{"Wanowrie, ", "Pune - ", "411013"}));
    // Rich text goes through Pango and keeps them as well.
    if (!fast) {
      TextStyle rich = style;
      rich.rich = true;
      const std::string markup = "<b>Shine</b> (Matt Grey)";
      EXPECT_EQ(LinesOf(*LayOut(markup, rich, width("Shine (Matt ") + 1), markup),
                (std::vector<std::string>{"<b>Shine</b> ", "(Matt Grey)"}));
    }
  }
}

// Both ways keep the same stretches whole, whichever fonts and widths.
TEST(LineBreakTest, FastPathAndPangoKeepTheSameStretchesWhole) {
  const char* kWords[] = {"Pune - 411013",
                          "(Candy Yellow)",
                          "(Matt Grey)",
                          "Nashik \u2014 422001",
                          "Flat",
                          "No.",
                          "206,",
                          "Gulmohar",
                          "Park,",
                          "Shine",
                          "110",
                          "Pune-411013",
                          "- 411013",
                          "(Net)",
                          "a",
                          "Wanowrie,",
                          "(A-1 b)",
                          "(x/y z)",
                          "(22-02-2030)",
                          "(Mon \u2013 Sat)",
                          "(\u00e9t\u00e9 b)",
                          "Satara -",
                          "411013",
                          "(no 1)"};
  uint32_t seed = 4242;
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
      for (int n = 0; n < 100; ++n) {
        std::string text;
        const int words = 2 + static_cast<int>(next() % 8);
        for (int w = 0; w < words; ++w) {
          if (w > 0) text += " ";
          text += kWords[next() % std::size(kWords)];
        }
        const float natural = MeasureText(text, style, 0).width;
        for (const float share : {0.2f, 0.35f, 0.5f, 0.7f}) {
          const float width = std::max(3 * style.size, std::round(natural * share));
          EXPECT_EQ(FastLines(text, style, width), PangoLines(text, style, width))
              << family << (bold ? " bold" : "") << " at " << width << ": " << text;
          ++compared;
        }
      }
    }
  }
  EXPECT_EQ(compared, 3 * 2 * 100 * 4);
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

// Pango lays a long text out a window at a time; the lines must still be the whole text's, as
// our own breaker, which takes the whole text at once, finds them.
TEST(LineBreakTest, LongTextsBreakAlikeInWindows) {
  uint32_t seed = 777;
  const auto next = [&] {
    seed = seed * 1103515245u + 12345u;
    return (seed >> 16) & 0x7fff;
  };
  const char* kWords[] = {"received", "towards",     "22-02-2030", "VSI/24-25/0007", "the",
                          "balance",  "1,05,630.00", "of",         "Two-wheeler",    "a"};
  std::string prose, mixed;
  while (prose.size() < 40000) {
    prose += kWords[next() % std::size(kWords)];
    prose += next() % 50 == 0 ? "\n" : " ";
  }
  while (mixed.size() < 40000) {
    mixed += next() % 3 == 0 ? std::string(next() % 700, 'x') : kWords[next() % std::size(kWords)];
    mixed += ' ';
  }
  for (const std::string* text : {&prose, &mixed}) {
    for (const float width : {90.0f, 300.0f}) {
      TextStyle style = Style(9);
      for (const HAlign align : {HAlign::kLeft, HAlign::kJustify}) {
        style.halign = align;
        const std::vector<std::string> fast = FastLines(*text, style, width);
        const std::vector<std::string> pango = PangoLines(*text, style, width);
        EXPECT_GT(fast.size(), 100u);
        const auto [f, p] = std::mismatch(fast.begin(), fast.end(), pango.begin(), pango.end());
        EXPECT_TRUE(f == fast.end() && p == pango.end())
            << "line " << f - fast.begin() << ": \"" << (f == fast.end() ? "" : *f)
            << "\" against \"" << (p == pango.end() ? "" : *p) << "\" at " << width;
      }
    }
  }
}

// The lines of "text" as one PangoLayout of the whole text makes them, set up as the Pango path
// sets up its own.
std::vector<std::string> WholePangoLines(const std::string& text, const TextStyle& style,
                                         float width) {
  PangoLayout* layout = ThreadFonts::Current().layout();
  PangoFontDescription* description =
      ThreadFonts::Describe(style.font_family, style.bold, style.italic, style.size);
  pango_layout_set_font_description(layout, description);
  pango_font_description_free(description);
  PangoAttrList* attributes = pango_attr_list_new();
  pango_attr_list_insert(attributes, pango_attr_insert_hyphens_new(FALSE));
  pango_layout_set_attributes(layout, attributes);
  pango_attr_list_unref(attributes);
  pango_layout_set_text(layout, text.data(), static_cast<int>(text.size()));
  pango_layout_set_alignment(layout, PANGO_ALIGN_LEFT);
  pango_layout_set_justify(layout, FALSE);
  pango_layout_set_width(layout, PangoUnits(width));
  pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
  std::vector<std::string> lines;
  for (GSList* node = pango_layout_get_lines_readonly(layout); node != nullptr; node = node->next) {
    const auto* line = static_cast<const PangoLayoutLine*>(node->data);
    lines.push_back(
        text.substr(static_cast<size_t>(line->start_index), static_cast<size_t>(line->length)));
  }
  return lines;
}

// Where our breaker and Pango's may differ (a long run of digits split between characters, a
// script only Pango shapes), the windows still give exactly the lines of one whole layout —
// also where a window starts among digits that take their script from a word before it.
TEST(LineBreakTest, PangoWindowsKeepTheWholeTextsLines) {
  uint32_t seed = 99;
  const auto next = [&] {
    seed = seed * 1103515245u + 12345u;
    return (seed >> 16) & 0x7fff;
  };
  const auto text_of = [&](std::initializer_list<const char*> words) {
    std::string text;
    while (text.size() < 12000) {
      text +=
          next() % 5 == 0 ? std::string(next() % 300, '7') : words.begin()[next() % words.size()];
      text += next() % 40 == 0 ? "\n" : " ";
    }
    return text;
  };
  std::string digits;
  while (digits.size() < 12000) digits += static_cast<char>('0' + next() % 10);
  const std::string latin = text_of({"₹", "1,05,630.00", "received", "towards", "(Net)", "a"});
  const std::string hindi = text_of({"श्री", "गणेश", "मोटर्स", "₹", "1,05,630.00", "received", "a"});
  for (const std::string* text : {&std::as_const(digits), &latin, &hindi}) {
    for (const float width : {90.0f, 300.0f}) {
      const TextStyle style = Style(9);
      const std::vector<std::string> whole = WholePangoLines(*text, style, width);
      const std::vector<std::string> windows = PangoLines(*text, style, width);
      EXPECT_GT(whole.size(), 30u);
      const auto [w, p] = std::mismatch(whole.begin(), whole.end(), windows.begin(), windows.end());
      EXPECT_TRUE(w == whole.end() && p == windows.end())
          << "line " << w - whole.begin() << ": \"" << (w == whole.end() ? "" : *w)
          << "\" against \"" << (p == windows.end() ? "" : *p) << "\" in " << text->substr(0, 12)
          << " at " << width;
    }
  }
}

}  // namespace
}  // namespace vantorel::report::text
