#include "report/text/text_layout.h"

#include <gtest/gtest.h>
#include <pango/pangocairo.h>

#include <cmath>
#include <string>
#include <thread>
#include <vector>

#include "report/text/fonts.h"
#include "report/text/layout.h"
#include "report/text/layout_paths.h"

namespace vantorel::report::text {
namespace {

constexpr char kPangram[] = "The quick brown fox jumps over the lazy dog";
constexpr char kDevanagari[] = "श्री गणेश मोटर्स";

TextStyle Style(float size = 10) {
  TextStyle style;
  style.size = size;
  return style;
}

std::string FamilyOf(PangoFont* font) {
  PangoFontDescription* description = pango_font_describe(font);
  std::string family = pango_font_description_get_family(description);
  pango_font_description_free(description);
  return family;
}

float LineHeight(const TextStyle& style) {
  const FontInfo& font =
      ThreadFonts::Current().Primary(style.font_family, style.bold, style.italic, style.size);
  return font.ascent + font.descent;
}

TEST(FontsTest, AliasesPickOurFonts) {
  ThreadFonts& fonts = ThreadFonts::Current();
  const struct {
    const char* asked;
    const char* expected;
  } kCases[] = {
      {"Arial", "Liberation Sans"},         {"Helvetica", "Liberation Sans"},
      {"MS Sans Serif", "Liberation Sans"}, {"Tahoma", "Liberation Sans"},
      {"Verdana", "Liberation Sans"},       {"Calibri", "Liberation Sans"},
      {"sans-serif", "Liberation Sans"},    {"Times New Roman", "Liberation Serif"},
      {"Times", "Liberation Serif"},        {"serif", "Liberation Serif"},
      {"Courier New", "Liberation Mono"},   {"Courier", "Liberation Mono"},
      {"monospace", "Liberation Mono"},     {"No Such Family", "Liberation Sans"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(FamilyOf(fonts.Primary(c.asked, false, false, 10).font.get()), c.expected) << c.asked;
  }
  EXPECT_EQ(FamilyOf(fonts.Primary("Arial", true, true, 10).font.get()), "Liberation Sans");
}

TEST(FontsTest, RupeeAndDevanagariFallBackToNoto) {
  const TextStyle style = Style();
  const auto laid_out = LayOut("₹ 1,05,630.00", style, 0);
  EXPECT_FALSE(laid_out->fast_path) << "Liberation Sans has no rupee sign";
  for (const GlyphRun& run : laid_out->runs) {
    for (const cairo_glyph_t& glyph : run.glyphs) EXPECT_NE(glyph.index, 0u) << run.utf8;
  }
  const auto hindi = LayOut(kDevanagari, style, 0);
  ASSERT_FALSE(hindi->runs.empty());
  size_t glyphs = 0;
  for (const GlyphRun& run : hindi->runs) {
    for (const cairo_glyph_t& glyph : run.glyphs) EXPECT_NE(glyph.index, 0u) << run.utf8;
    glyphs += run.glyphs.size();
  }
  // Conjuncts and vowel signs shape into fewer glyphs than code points.
  EXPECT_LT(glyphs, std::string_view(kDevanagari).size() / 3);
}

TEST(MeasureTextTest, EmptyTextIsNothing) {
  const SizeF size = MeasureText("", Style(), 100);
  EXPECT_EQ(size.width, 0);
  EXPECT_EQ(size.height, 0);
}

TEST(MeasureTextTest, OneLineIsTheFontsLineHeight) {
  const TextStyle style = Style();
  const SizeF size = MeasureText("Invoice", style, 200);
  EXPECT_GT(size.width, 25);
  EXPECT_LT(size.width, 40);
  EXPECT_FLOAT_EQ(size.height, LineHeight(style));
  EXPECT_NEAR(size.height, 11.17, 0.01);  // Liberation Sans: ascent 0.905 + descent 0.212 em
}

TEST(MeasureTextTest, WrapsAtSpacesWithinTheWidth) {
  const TextStyle style = Style();
  const auto laid_out = LayOut(kPangram, style, 100);
  ASSERT_GT(laid_out->lines.size(), 1u);
  for (const TextLine& line : laid_out->lines) EXPECT_LE(line.width, 100.01f);
  EXPECT_FLOAT_EQ(laid_out->size.height,
                  LineHeight(style) * static_cast<float>(laid_out->lines.size()));
  // Lines end at word boundaries: every line but the first starts after a space.
  const std::string_view text = kPangram;
  for (size_t i = 1; i < laid_out->lines.size(); ++i) {
    EXPECT_EQ(text[laid_out->lines[i].begin - 1], ' ');
  }
}

TEST(MeasureTextTest, BreaksAWordLongerThanTheLine) {
  const auto laid_out = LayOut("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789", Style(), 50);
  EXPECT_GT(laid_out->lines.size(), 3u);
  for (const TextLine& line : laid_out->lines) {
    EXPECT_LE(line.width, 50.01f);
    EXPECT_GT(line.width, 30);
  }
}

TEST(MeasureTextTest, NoWrapKeepsOneLine) {
  TextStyle style = Style();
  style.wrap = false;
  const SizeF size = MeasureText(kPangram, style, 50);
  EXPECT_GT(size.width, 150);
  EXPECT_FLOAT_EQ(size.height, LineHeight(style));
}

TEST(MeasureTextTest, ExplicitLineBreaks) {
  const TextStyle style = Style();
  const float line = LineHeight(style);
  EXPECT_FLOAT_EQ(MeasureText("one\ntwo\nthree", style, 200).height, 3 * line);
  EXPECT_FLOAT_EQ(MeasureText("one\r\ntwo", style, 200).height, 2 * line);
  EXPECT_FLOAT_EQ(MeasureText("one\rtwo", style, 200).height, 2 * line);
  EXPECT_FLOAT_EQ(MeasureText("one\n\nthree", style, 200).height, 3 * line);
  EXPECT_FLOAT_EQ(MeasureText("trailing\n", style, 200).height, 2 * line);
}

TEST(MeasureTextTest, LineSpacingMultipliesTheDistanceBetweenLines) {
  TextStyle style = Style();
  const float line = LineHeight(style);
  style.line_spacing = 1.5f;
  EXPECT_FLOAT_EQ(MeasureText("a\nb\nc", style, 200).height, 2 * 1.5f * line + line);
  EXPECT_FLOAT_EQ(MeasureText("single", style, 200).height, line);
}

TEST(MeasureTextTest, CharacterSpacingWidens) {
  TextStyle style = Style();
  const float plain = MeasureText("ABCDE", style, 0).width;
  style.char_spacing = 2;
  EXPECT_NEAR(MeasureText("ABCDE", style, 0).width, plain + 4 * 2, 0.01);
}

TEST(MeasureTextTest, BiggerAndBolderIsWider) {
  TextStyle style = Style();
  const float regular = MeasureText("Total Amount", style, 0).width;
  style.bold = true;
  EXPECT_GT(MeasureText("Total Amount", style, 0).width, regular);
  style = Style(20);
  EXPECT_NEAR(MeasureText("Total Amount", style, 0).width, 2 * regular, 0.05);
}

TEST(LayOutTest, AlignsWithinTheWidth) {
  TextStyle style = Style();
  const float width = MeasureText("Total", style, 200).width;
  style.halign = HAlign::kCenter;
  EXPECT_NEAR(LayOut("Total", style, 200)->lines[0].left, (200 - width) / 2, 0.01);
  style.halign = HAlign::kRight;
  EXPECT_NEAR(LayOut("Total", style, 200)->lines[0].left, 200 - width, 0.01);
  // Trailing spaces do not push right-aligned text left.
  EXPECT_NEAR(LayOut("Total   ", style, 200)->lines[0].left, 200 - width, 0.01);
}

TEST(LayOutTest, JustifyStretchesAllButTheLastLine) {
  TextStyle style = Style();
  style.halign = HAlign::kJustify;
  const std::string text = std::string(kPangram) + " " + kPangram;
  for (const bool fast : {true, false}) {
    const FontInfo& font = ThreadFonts::Current().Primary(style.font_family, false, false, 10);
    const LineGeometry geometry(style, 120, true);
    const LaidOutText laid_out = fast ? LayOutFast(text, style, font, geometry)
                                      : LayOutWithPango(ValidUtf8(text), style, font, geometry);
    ASSERT_GT(laid_out.lines.size(), 2u);
    for (size_t i = 0; i + 1 < laid_out.lines.size(); ++i) {
      EXPECT_NEAR(laid_out.lines[i].width, 120, 0.05) << "fast=" << fast << " line " << i;
    }
    EXPECT_LT(laid_out.lines.back().width, 119) << "fast=" << fast;
    // The stretched line's last glyph ends at the right edge.
    const GlyphRun& run = laid_out.runs.front();
    EXPECT_GT(run.glyphs.back().x, 0);
  }
}

TEST(LayOutTest, FastPathAndPangoAgreeOnPlainLatin) {
  const char* kTexts[] = {"Tax Invoice", "AVERAGE VALUE 1,05,630.00", kPangram, "Wave Type AV Yo",
                          "naïve café — “quoted” ©"};
  for (const char* family : {"Arial", "Times New Roman", "Courier New"}) {
    for (const bool bold : {false, true}) {
      TextStyle style = Style(9.5f);
      style.font_family = family;
      style.bold = bold;
      const FontInfo& font = ThreadFonts::Current().Primary(family, bold, false, 9.5f);
      for (const char* text : kTexts) {
        ASSERT_TRUE(CanLayOutFast(text, font)) << text;
        const LineGeometry geometry(style, 0, false);
        const LaidOutText fast = LayOutFast(text, style, font, geometry);
        const LaidOutText pango = LayOutWithPango(ValidUtf8(text), style, font, geometry);
        EXPECT_NEAR(fast.size.width, pango.size.width, 0.5) << family << ": " << text;
        EXPECT_FLOAT_EQ(fast.size.height, pango.size.height) << family << ": " << text;
      }
    }
  }
}

// "text" in a new buffer set up as the fast path sets it up before shaping.
hb_buffer_t* BufferOf(const std::string& text) {
  hb_buffer_t* buffer = hb_buffer_create();
  hb_buffer_add_utf8(buffer, text.data(), static_cast<int>(text.size()), 0,
                     static_cast<int>(text.size()));
  hb_buffer_set_direction(buffer, HB_DIRECTION_LTR);
  hb_buffer_set_language(buffer, hb_language_from_string("en", 2));
  hb_buffer_guess_segment_properties(buffer);
  hb_buffer_set_flags(buffer, hb_buffer_flags_t(HB_BUFFER_FLAG_BOT | HB_BUFFER_FLAG_EOT));
  return buffer;
}

TEST(LayOutTest, NumbersShapeAsHarfBuzzShapesThem) {
  const std::string kSigns = "0123456789 ,.-/:()%+*#&'\"=_[]@!?;<>";
  uint32_t seed = 12345;
  const auto next = [&seed] { return seed = seed * 1103515245 + 12345; };
  for (const char* family : {"Arial", "Times New Roman", "Courier New", "DejaVu Sans"}) {
    for (const bool bold : {false, true}) {
      for (const bool italic : {false, true}) {
        const FontInfo& font = ThreadFonts::Current().Primary(family, bold, italic, 9);
        EXPECT_TRUE(font.plain_without_letters['0'] || family == std::string("DejaVu Sans"))
            << family;
        std::vector<std::string> texts = {"2,05,630.00", "1,05,630.00", "22-02-2030",
                                          "-12.50",      "(1,200.00)",  "11/11/11",
                                          "1 1 1",       "Tax 18%",     "AV To"};
        for (int i = 0; i < 400; ++i) {
          std::string text;
          for (uint32_t n = 1 + (next() >> 16) % 14; n > 0; --n) {
            text += kSigns[(next() >> 16) % kSigns.size()];
          }
          texts.push_back(text);
        }
        for (const std::string& text : texts) {
          hb_buffer_t* ours = BufferOf(text);
          hb_buffer_t* theirs = BufferOf(text);
          const bool taken = ShapeWithoutLookups(ours, font);
          hb_shape(font.hb, theirs, nullptr, 0);
          if (taken) {
            unsigned count = 0, their_count = 0;
            const hb_glyph_info_t* info = hb_buffer_get_glyph_infos(ours, &count);
            const hb_glyph_info_t* their_info = hb_buffer_get_glyph_infos(theirs, &their_count);
            const hb_glyph_position_t* pos = hb_buffer_get_glyph_positions(ours, &count);
            const hb_glyph_position_t* their_pos =
                hb_buffer_get_glyph_positions(theirs, &their_count);
            ASSERT_EQ(count, their_count) << family << ": " << text;
            for (unsigned g = 0; g < count; ++g) {
              EXPECT_EQ(info[g].codepoint, their_info[g].codepoint) << family << ": " << text;
              EXPECT_EQ(info[g].cluster, their_info[g].cluster) << family << ": " << text;
              EXPECT_EQ(pos[g].x_advance, their_pos[g].x_advance) << family << ": " << text;
              EXPECT_EQ(pos[g].y_advance, their_pos[g].y_advance) << family << ": " << text;
              EXPECT_EQ(pos[g].x_offset, their_pos[g].x_offset) << family << ": " << text;
              EXPECT_EQ(pos[g].y_offset, their_pos[g].y_offset) << family << ": " << text;
            }
          }
          hb_buffer_destroy(ours);
          hb_buffer_destroy(theirs);
        }
      }
    }
  }
}

TEST(LayOutTest, FastPathTakesPlainTextOnly) {
  const FontInfo& font = ThreadFonts::Current().Primary("Arial", false, false, 10);
  EXPECT_TRUE(CanLayOutFast("Rs. 1,234.50 (Net)", font));
  EXPECT_TRUE(CanLayOutFast("line one\nline two", font));
  EXPECT_FALSE(CanLayOutFast(kDevanagari, font));
  EXPECT_FALSE(CanLayOutFast("₹ 100", font));
  EXPECT_FALSE(CanLayOutFast("tab\there", font));
  EXPECT_FALSE(CanLayOutFast("bad \xff utf-8", font));
  TextStyle rich = Style();
  rich.rich = true;
  EXPECT_FALSE(LayOut("<b>Total</b>", rich, 0)->fast_path);
  EXPECT_TRUE(LayOut("Total", rich, 0)->fast_path) << "rich text without markup is plain";
}

TEST(LayOutTest, GlyphRunsCoverTheirTextExactly) {
  for (const char* text : {"plain words here", "₹ 1,05,630.00", kDevanagari, "a\nb\r\nc"}) {
    const auto laid_out = LayOut(text, Style(), 60);
    for (const GlyphRun& run : laid_out->runs) {
      int bytes = 0, glyphs = 0;
      for (const cairo_text_cluster_t& cluster : run.clusters) {
        bytes += cluster.num_bytes;
        glyphs += cluster.num_glyphs;
      }
      EXPECT_EQ(static_cast<size_t>(bytes), run.utf8.size()) << text;
      EXPECT_EQ(static_cast<size_t>(glyphs), run.glyphs.size()) << text;
    }
  }
}

TEST(LayOutTest, DevanagariWrapsThroughPango) {
  const TextStyle style = Style(12);
  const auto one_line = LayOut(kDevanagari, style, 0);
  EXPECT_FALSE(one_line->fast_path);
  EXPECT_EQ(one_line->lines.size(), 1u);
  const auto wrapped = LayOut(kDevanagari, style, one_line->size.width * 0.6f);
  EXPECT_EQ(wrapped->lines.size(), 2u);
  // Noto Sans Devanagari's lines are taller than Liberation Sans's.
  EXPECT_GT(one_line->size.height, LineHeight(style));
}

TEST(LayOutTest, RichTextStylesRuns) {
  TextStyle style = Style();
  style.rich = true;
  const float plain = MeasureText("Total Amount", Style(), 0).width;
  EXPECT_GT(MeasureText("<b>Total Amount</b>", style, 0).width, plain);
  EXPECT_NEAR(MeasureText("<font size=\"20\">Total Amount</font>", style, 0).width, 2 * plain, 0.1);
  EXPECT_FLOAT_EQ(MeasureText("one<br/>two<BR>three", style, 200).height, 3 * LineHeight(Style()));

  const auto colored = LayOut("Net <font color=\"#ff0000\">Due</font> <u>now</u>", style, 0);
  bool red = false, underlined = false;
  for (const GlyphRun& run : colored->runs) {
    if (run.utf8 == "Due") red = run.has_color && run.color == Color{255, 0, 0, 255};
    if (run.utf8 == "now") underlined = run.underline;
  }
  EXPECT_TRUE(red);
  EXPECT_TRUE(underlined);
}

TEST(LayOutTest, RichTextShowsWhatIsNotMarkup) {
  TextStyle style = Style();
  style.rich = true;
  const auto laid_out = LayOut("a < b & <x>c</x> &lt;d&gt;", style, 0);
  std::string shown;
  for (const GlyphRun& run : laid_out->runs) shown += run.utf8;
  EXPECT_EQ(shown, "a < b & <x>c</x> <d>");
}

TEST(LayOutTest, SurvivesBadInput) {
  const TextStyle style = Style();
  EXPECT_GT(MeasureText(std::string("nul\0inside", 10), style, 100).width, 0);
  EXPECT_GT(MeasureText("bad \xff\xfe utf-8 \xe0\x80", style, 100).width, 0);
  EXPECT_EQ(MeasureText("zero size", Style(0), 100).height, 0);
}

TEST(FitInBoxTest, TextTallerThanItsBoxNeedsItsLinesAndPadding) {
  TextStyle style = Style();
  const float line = LineHeight(style);
  const float pad = style.padding.top + style.padding.bottom;
  EXPECT_TRUE(FitInBox("Tax Invoice", style, {100, line + pad}).fits);
  const BoxFit two = FitInBox("first line\nsecond line", style, {100, line + pad});
  EXPECT_FALSE(two.fits);
  EXPECT_FALSE(two.across);
  EXPECT_FLOAT_EQ(two.needed, 2 * line + pad);
  EXPECT_FLOAT_EQ(two.available, line + pad);
  EXPECT_TRUE(FitInBox("Tax Invoice", style, {100, line + style.padding.top}).fits)
      << "the bottom padding may take text before any of it is cut";
}

TEST(FitInBoxTest, LineThatDoesNotWrapIsTooWide) {
  TextStyle style = Style();
  style.wrap = false;
  const float width = MeasureText(kPangram, style, 0).width;
  const BoxFit fit = FitInBox(kPangram, style, {width / 2, 40});
  EXPECT_FALSE(fit.fits);
  EXPECT_TRUE(fit.across);
  EXPECT_FLOAT_EQ(fit.needed, width + style.padding.left + style.padding.right);
  EXPECT_TRUE(
      FitInBox(kPangram, style, {width + style.padding.left + style.padding.right, 40}).fits);
}

// Short plain texts are judged without a layout; the judgement must be the layout's.
TEST(FitInBoxTest, QuickJudgementAgreesWithTheLayout) {
  const char* kTexts[] = {"1",      "99",         "Pune",        "MDVSR1SDXRH159477",
                          "WWWWWW", "Mmm, mmm!",  "1,05,630.00", "Жук",
                          "₹ 500",  "@@@ %%% —…", "a b c d e f", "Helmet"};
  int compared = 0;
  for (const char* family : {"Liberation Sans", "Liberation Mono", "DejaVu Sans"}) {
    for (const float size : {6.0f, 9.0f, 14.0f}) {
      TextStyle style = Style(size);
      style.font_family = family;
      const float line = LineHeight(style);
      for (const char* text : kTexts) {
        const SizeF natural = MeasureText(text, style, 0);
        for (const float share : {0.5f, 0.9f, 1.0f, 1.1f, 1.3f, 2.0f}) {
          for (const float tall : {0.8f, 1.0f, 1.5f}) {
            const float frame = natural.width * share;
            const SizeF box{frame + style.padding.left + style.padding.right,
                            line * tall + style.padding.top + style.padding.bottom};
            const SizeF laid_out = MeasureText(text, style, frame);
            const bool expected = laid_out.height <= box.height - style.padding.top + 0.01f &&
                                  laid_out.width <= frame + style.padding.right + 0.01f;
            EXPECT_EQ(FitInBox(text, style, box).fits, expected)
                << family << " " << size << " \"" << text << "\" in " << box.width << "x"
                << box.height;
            ++compared;
          }
        }
      }
    }
  }
  EXPECT_EQ(compared, 3 * 3 * 12 * 6 * 3);
}

TEST(FitTextTest, SplitsAtALineBoundary) {
  const TextStyle style = Style();
  const std::string text = "first line\nsecond line\nthird line\nfourth line";
  const float line = LineHeight(style);
  EXPECT_EQ(FitText(text, style, 200, 100), text.size());
  EXPECT_EQ(FitText(text, style, 200, line / 2), 0u);
  const size_t offset = FitText(text, style, 200, 2 * line + 1);
  EXPECT_EQ(text.substr(0, offset), "first line\nsecond line\n");
  EXPECT_EQ(FitText(text, style, 200, 2 * line), offset) << "an exact fit fits";
}

TEST(FitTextTest, SplitsWrappedTextBetweenWords) {
  const TextStyle style = Style();
  const std::string text = std::string(kPangram) + " " + kPangram;
  const size_t offset = FitText(text, style, 80, LineHeight(style) * 2.5f);
  ASSERT_GT(offset, 0u);
  ASSERT_LT(offset, text.size());
  EXPECT_EQ(text[offset - 1], ' ');
  EXPECT_FLOAT_EQ(MeasureText(text.substr(0, offset), style, 80).height, 2 * LineHeight(style));
}

TEST(FitTextTest, ReportsOffsetsInTheMarkup) {
  TextStyle style = Style();
  style.rich = true;
  const std::string text = "<b>first</b><br/><i>second</i>";
  const size_t offset = FitText(text, style, 200, LineHeight(Style()) + 1);
  EXPECT_EQ(text.substr(offset), "<i>second</i>");
}

// A long text is fitted from a prefix of it; the cut is where the whole text's lines put it.
TEST(FitTextTest, LongTextsSplitWhereTheirWholeLayoutDoes) {
  std::string prose, digits, rupees;
  for (int i = 0; prose.size() < 100000; ++i) {
    prose += i % 7 == 0 ? "received " : i % 11 == 0 ? "VSI/24-25/0007\n" : "balance of ";
  }
  for (int i = 0; digits.size() < 100000; ++i) digits += static_cast<char>('0' + i * 7 % 10);
  rupees = "₹ " + prose;
  for (const std::string* text : {&prose, &digits, &rupees}) {
    const TextStyle style = Style(9);
    const auto whole = LayOut(*text, style, 300);
    EXPECT_EQ(whole->fast_path, text != &rupees);
    for (const float height : {0.0f, 5.0f, 40.0f, 700.0f, 3000.0f}) {
      size_t fitting = 0;
      while (fitting < whole->lines.size() &&
             whole->lines[fitting].top + whole->lines[fitting].height <= height + 0.01f) {
        ++fitting;
      }
      const size_t expected = fitting == 0 ? 0 : whole->lines[fitting].begin;
      EXPECT_EQ(FitText(*text, style, 300, height), expected)
          << text->substr(0, 10) << " in " << height;
    }
  }
}

// MeasureHeight answers as MeasureText does, whichever way it takes.
TEST(MeasureHeightTest, IsMeasureTextsHeight) {
  TextStyle spaced = Style(9);
  spaced.char_spacing = 1.5f;
  spaced.line_spacing = 1.4f;
  TextStyle rich = Style();
  rich.rich = true;
  TextStyle unwrapped = Style(11);
  unwrapped.wrap = false;
  TextStyle bold = Style(12);
  bold.bold = true;
  bold.font_family = "Times New Roman";
  const struct {
    std::string_view text;
    TextStyle style;
    float width;
  } cases[] = {
      {"", Style(), 100},
      {"   ", Style(), 100},
      {"12,34,567.00 Dr", Style(), 100},
      {"12,34,567.00 Dr", Style(), 20},
      {"By Cash received from Mr Abhijit Sandeep Chavan against invoice 2024/117", Style(), 120},
      {"By Cash received from Mr Abhijit Sandeep Chavan", Style(), 400},
      {"one\ntwo", Style(), 400},
      {"one\r\ntwo", Style(), 400},
      {"tab\tstop", Style(), 400},
      {"Caf\u00e9 au lait 12", Style(), 400},
      {"Total <b>Amount</b>", rich, 400},
      {"Kept on one line however long the text is", unwrapped, 30},
      {"Spaced out letters", spaced, 60},
      {"Spaced out letters", spaced, 400},
      {"Shivneri Motors", bold, 200},
      {"\u0936\u093f\u0935\u0928\u0947\u0930\u0940 \u092e\u094b\u091f\u0930\u094d\u0938", Style(),
       200},
      {"Rupee \u20b9 105", Style(), 200},
      {"W", Style(0), 100},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(MeasureHeight(c.text, c.style, c.width), MeasureText(c.text, c.style, c.width).height)
        << "\"" << c.text << "\" in " << c.width;
  }
}

TEST(MeasureHeightTest, ALineThatSurelyFitsIsNotLaidOut) {
  ClearLayoutCache();
  EXPECT_EQ(MeasureHeight("12,34,567.00 Dr", Style(), 100), LineHeight(Style()));
  EXPECT_EQ(GetLayoutCacheStats().misses, 0u);
  EXPECT_EQ(GetLayoutCacheStats().entries, 0u);
  MeasureHeight("12,34,567.00 Dr", Style(), 20);
  EXPECT_EQ(GetLayoutCacheStats().misses, 1u) << "one that may wrap is laid out";
}

TEST(LayoutCacheTest, MeasureFitAndDrawShareOneLayout) {
  ClearLayoutCache();
  const TextStyle style = Style();
  MeasureText("Chassis No", style, 80);
  EXPECT_EQ(GetLayoutCacheStats().misses, 1u);
  MeasureText("Chassis No", style, 80);
  FitText("Chassis No", style, 80, 100);
  const auto first = LayOut("Chassis No", style, 80);
  EXPECT_EQ(GetLayoutCacheStats().hits, 3u);
  EXPECT_EQ(GetLayoutCacheStats().entries, 1u);
  // Colour, borders and rotation do not change the layout; width and font do.
  TextStyle painted = style;
  painted.color = {200, 0, 0, 255};
  painted.borders = kBorderLeft;
  painted.rotation = 90;
  EXPECT_EQ(LayOut("Chassis No", painted, 80), first);
  EXPECT_NE(LayOut("Chassis No", style, 81), first);
  TextStyle bold = style;
  bold.bold = true;
  EXPECT_NE(LayOut("Chassis No", bold, 80), first);
}

TEST(LayoutCacheTest, StaysWithinItsBudget) {
  ClearLayoutCache();
  SetLayoutCacheBudget(64 * 1024);
  for (int i = 0; i < 2000; ++i) MeasureText("Row " + std::to_string(i), Style(), 100);
  const LayoutCacheStats stats = GetLayoutCacheStats();
  EXPECT_LE(stats.bytes, 64u * 1024);
  EXPECT_GT(stats.entries, 50u);
  SetLayoutCacheBudget(size_t{32} << 20);
}

TEST(LayoutCacheTest, EachThreadHasItsOwn) {
  ClearLayoutCache();
  MeasureText("shared?", Style(), 100);
  std::shared_ptr<const LaidOutText> other;
  std::thread([&] { other = LayOut("shared?", Style(), 100); }).join();
  EXPECT_EQ(GetLayoutCacheStats().entries, 1u);
  // Made by a thread that has finished, and still usable: its fonts are counted references.
  ASSERT_TRUE(other);
  EXPECT_EQ(cairo_scaled_font_status(other->runs.front().font.get()), CAIRO_STATUS_SUCCESS);
  EXPECT_EQ(other->size, LayOut("shared?", Style(), 100)->size);
}

}  // namespace
}  // namespace vantorel::report::text
