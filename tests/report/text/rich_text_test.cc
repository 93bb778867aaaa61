#include "report/text/rich_text.h"

#include <gtest/gtest.h>

namespace vantorel::report::text {
namespace {

TEST(RichTextTest, TagsBecomeSpans) {
  const PlainText plain = ParseRichText("Net <b>Total</b> <i>due</i>");
  EXPECT_EQ(plain.text, "Net Total due");
  ASSERT_EQ(plain.spans.size(), 2u);
  EXPECT_EQ(plain.text.substr(plain.spans[0].begin, plain.spans[0].end - plain.spans[0].begin),
            "Total");
  EXPECT_TRUE(plain.spans[0].bold);
  EXPECT_TRUE(plain.spans[1].italic);
  EXPECT_FALSE(plain.spans[1].bold);
}

TEST(RichTextTest, FontTagsNest) {
  const PlainText plain = ParseRichText(
      "<font color=\"#0000ff\" size=\"14\" face=\"Times New Roman\">a<font color=red>b</font>c"
      "</font>d");
  EXPECT_EQ(plain.text, "abcd");
  ASSERT_EQ(plain.spans.size(), 3u);
  EXPECT_EQ(plain.spans[0].color, (Color{0, 0, 255, 255}));
  EXPECT_EQ(plain.spans[0].size, 14);
  EXPECT_EQ(plain.spans[0].face, "Times New Roman");
  EXPECT_EQ(plain.spans[1].color, (Color{255, 0, 0, 255}));
  EXPECT_EQ(plain.spans[1].size, 14) << "inner font keeps what it does not set";
  EXPECT_EQ(plain.spans[2].color, (Color{0, 0, 255, 255}));
}

TEST(RichTextTest, BreaksAndEntities) {
  EXPECT_EQ(ParseRichText("a<br>b<br/>c<BR />d").text, "a\nb\nc\nd");
  EXPECT_EQ(ParseRichText("&amp;&lt;&gt;&quot;&apos;&#8377;&#x20B9;").text, "&<>\"'₹₹");
  EXPECT_EQ(ParseRichText("&nbsp;").text, "\u00a0");
}

TEST(RichTextTest, WhatIsNotMarkupStaysText) {
  EXPECT_EQ(ParseRichText("a < b").text, "a < b");
  EXPECT_EQ(ParseRichText("AT&T &unknown; &#0; &#xD800;").text, "AT&T &unknown; &#0; &#xD800;");
  EXPECT_EQ(ParseRichText("<script>x</script>").text, "<script>x</script>");
  EXPECT_EQ(ParseRichText("<b unclosed").text, "<b unclosed");
  EXPECT_EQ(ParseRichText("</b>stray close").text, "stray close");
}

TEST(RichTextTest, MapsTextBackToTheSource) {
  const std::string source = "<b>ab</b>&amp;c";
  const PlainText plain = ParseRichText(source);
  ASSERT_EQ(plain.text, "ab&c");
  ASSERT_EQ(plain.source.size(), plain.text.size() + 1);
  EXPECT_EQ(plain.source[0], 0u) << "the opening tag goes with its text";
  EXPECT_EQ(plain.source[1], 4u);
  EXPECT_EQ(plain.source[2], 9u) << "the closing tag stays with what it closes";
  EXPECT_EQ(plain.source[3], 14u);
  EXPECT_EQ(plain.source[4], source.size());
}

TEST(RichTextTest, InvalidUtf8IsReplaced) {
  const PlainText plain = ValidUtf8("a\xffz\xe2\x82");
  EXPECT_EQ(plain.text, "a\uFFFDz\uFFFD") << "a truncated sequence is one character";
  EXPECT_EQ(plain.source[1], 1u);
  EXPECT_EQ(plain.source.back(), 5u);
}

}  // namespace
}  // namespace vantorel::report::text
