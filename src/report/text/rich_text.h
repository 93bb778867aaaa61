// The small markup of rich text boxes — <b> <i> <u> <br/> <font color="" size="" face=""> and the
// entities &amp; &lt; &gt; &quot; &apos; &nbsp; &#N; &#xN; — read into plain text plus styled
// spans. Anything else is text: an unknown or malformed tag is shown as written, never dropped
// and never passed to Pango's markup parser.
//
// Thread-safety: pure functions.
#ifndef VANTOREL_REPORT_TEXT_RICH_TEXT_H_
#define VANTOREL_REPORT_TEXT_RICH_TEXT_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "report/values/geometry.h"

namespace vantorel::report::text {

struct RichSpan {
  uint32_t begin = 0, end = 0;  // bytes of PlainText::text
  bool bold = false;
  bool italic = false;
  bool underline = false;
  bool has_color = false;
  Color color;
  float size = 0;    // points; 0 keeps the style's size
  std::string face;  // empty keeps the style's family
};

struct PlainText {
  std::string text;
  // source[i] is where the source's share of text bytes i… begins: the markup of byte i itself,
  // with the opening tags just before it (closing tags stay with what they close);
  // source[text.size()] is the source's size. Lets a line boundary be reported in the caller's
  // text so that each side keeps its own markup.
  std::vector<uint32_t> source;
  std::vector<RichSpan> spans;  // only spans with some styling, in order, not overlapping
};

// How deeply <font> tags nest; deeper ones are read as tags but change nothing.
inline constexpr size_t kMaxFontNesting = 32;

// Reads "markup". Never fails.
PlainText ParseRichText(std::string_view markup);

// "text" with invalid UTF-8 sequences replaced by U+FFFD, keeping the byte map to the source.
PlainText ValidUtf8(std::string_view text);

// A value shown in a rich text: its "&", "<" and ">" stand in the markup as the private-use
// characters U+E000, U+E001 and U+E002, so they print as themselves instead of being read as
// markup, and functions applied to the value (Upper, Left…) still see one character for each.
std::string ProtectFromMarkup(std::string_view value);

// True when "text" holds no '<', no '&' and no protected character: rich text that is plain
// after all.
inline bool HasMarkup(std::string_view text) {
  return text.find_first_of("<&") != std::string_view::npos ||
         text.find("\xEE\x80\x80") != std::string_view::npos ||
         text.find("\xEE\x80\x81") != std::string_view::npos ||
         text.find("\xEE\x80\x82") != std::string_view::npos;
}

}  // namespace vantorel::report::text

#endif  // VANTOREL_REPORT_TEXT_RICH_TEXT_H_
