// UTF-8 decoding and encoding, and the UTF-16 conversions of the binary interface and ODBC.
#include "unicode/utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace vantorel::unicode {
namespace {

TEST(Utf8, DecodesCodePointByCodePoint) {
  const std::string text = "a₹\xed\xa0\x80";
  size_t i = 0;
  EXPECT_EQ(NextCodePoint(text, i), 'a');
  EXPECT_EQ(NextCodePoint(text, i), 0x20B9);
  EXPECT_EQ(i, 4u);
  EXPECT_EQ(NextCodePoint(text, i), -1) << "surrogates are not UTF-8";
  EXPECT_EQ(i, 5u) << "the lead byte alone is the malformed part";
}

TEST(Utf8, ATruncatedSequenceIsOneMalformedPart) {
  const std::string text = "\xE2\x82";
  size_t i = 0;
  EXPECT_EQ(NextCodePoint(text, i), -1);
  EXPECT_EQ(i, 2u);
}

TEST(Utf8, EncodesEveryLength) {
  std::string out;
  for (const char32_t code : {U'A', U'é', U'₹', U'😀'}) AppendUtf8(out, code);
  EXPECT_EQ(out, "Aé₹😀");
  size_t i = 0;
  std::u32string back;
  while (i < out.size()) back += static_cast<char32_t>(NextCodePoint(out, i));
  EXPECT_EQ(back, U"Aé₹😀");
}

TEST(Utf8, SurrogatePairsCrossBothWays) {
  EXPECT_EQ(Utf8ToUtf16("\xF0\x9F\x98\x80"), u"\xD83D\xDE00");
  EXPECT_EQ(Utf16ToUtf8(u"\xD83D\xDE00"), "\xF0\x9F\x98\x80");
}

TEST(Utf8, LoneSurrogatesBecomeReplacementCharacters) {
  EXPECT_EQ(Utf16ToUtf8(std::u16string{0xD800, u'a'}), "\uFFFDa");
  EXPECT_EQ(Utf16ToUtf8(std::u16string{u'a', 0xDC00}), "a\uFFFD");
  EXPECT_EQ(Utf16ToUtf8(std::u16string{0xDC00, 0xD800}), "\uFFFD\uFFFD");
}

TEST(Utf8, InvalidUtf8BecomesOneReplacementPerMaximalSubpart) {
  struct Case {
    const char* input;
    std::u16string expected;
  };
  const Case cases[] = {
      {"\xC0\xAF", u"\uFFFD\uFFFD"},                      // overlong lead, then a stray byte
      {"\xE0\x80\x80", u"\uFFFD\uFFFD\uFFFD"},            // overlong three-byte form
      {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},            // an encoded surrogate
      {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // above U+10FFFF
      {"\xE2\x82"
       "A",
       u"\uFFFDA"},  // truncated euro sign
      {"a\xFF"
       "b",
       u"a\uFFFDb"},
      {"\xE2\x82\xB9", u"\u20B9"},  // the rupee sign itself is fine
  };
  for (const Case& c : cases) EXPECT_EQ(Utf8ToUtf16(c.input), c.expected) << c.input;
}

TEST(Utf8, DevanagariRoundTrips) {
  const std::string text = "श्री गणेश मोटर्स — ₹ १,०५,६३०.००";
  EXPECT_EQ(Utf16ToUtf8(Utf8ToUtf16(text)), text);
}

}  // namespace
}  // namespace vantorel::unicode
