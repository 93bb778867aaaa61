// Stretches of text that read wrong when a line breaks inside them: a PIN code with the dash
// before it and the place name before that, a short phrase in round brackets, and the "ONLY"
// that closes an amount in words with the word before it.
#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

#include "report/text/layout_paths.h"

namespace vantorel::report::text {
namespace {

bool IsAsciiDigit(char c) { return c >= '0' && c <= '9'; }

bool IsAsciiAlnum(char c) {
  return IsAsciiDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// A byte of a place name: ASCII letters, digits and dots, and any byte of a character beyond
// ASCII (names written in other scripts).
bool IsNameByte(char c) { return IsAsciiAlnum(c) || c == '.' || static_cast<uint8_t>(c) >= 0x80; }

// An en dash, which Pango 1.50 lets a line break after even where its breaks are switched off:
// a stretch holding one cannot be kept whole alike on both paths.
constexpr std::string_view kEnDash = "\u2013";

// The length of the dash at byte "i" (hyphen-minus or em dash), or 0.
size_t DashAt(std::string_view text, size_t i) {
  if (text[i] == '-') return 1;
  if (text.compare(i, 3, "\u2014") == 0) return 3;
  return 0;
}

// A place name, blanks, a dash, blanks and a six-digit PIN code ("Pune - 411013"), the dash at
// "dash" of length "length": the span from the name to the code's end, or an empty span.
KeptSpan PinCodeAt(std::string_view text, size_t dash, size_t length) {
  size_t code = dash + length;
  while (code < text.size() && text[code] == ' ') ++code;
  if (code + 6 > text.size() || text[code] == '0') return {};
  for (size_t k = code; k < code + 6; ++k) {
    if (!IsAsciiDigit(text[k])) return {};
  }
  const size_t end = code + 6;
  if (end < text.size() && IsAsciiAlnum(text[end])) return {};
  size_t begin = dash;
  while (begin > 0 && text[begin - 1] == ' ') --begin;
  // The name before it, so that it never ends a line with the code on the next.
  constexpr size_t kLongestName = 40;
  const size_t blanks = begin;
  while (begin > 0 && blanks - begin < kLongestName && IsNameByte(text[begin - 1])) --begin;
  if (begin > 0 && IsNameByte(text[begin - 1])) begin = blanks;  // too long to be a name
  return {begin, end};
}

// A phrase of at most kLongestPhrase characters in round brackets with no brackets inside:
// the span from the opening bracket at "open" to just past the closing one, or an empty span.
KeptSpan BracketedAt(std::string_view text, size_t open) {
  constexpr size_t kLongestPhrase = 24;
  size_t characters = 0;
  for (size_t i = open + 1; i < text.size(); ++i) {
    const char c = text[i];
    if (c == ')') return characters > 0 ? KeptSpan{open, i + 1} : KeptSpan{};
    if (c == '(' || c == '\n' || c == '\r' || text.compare(i, 3, kEnDash) == 0) return {};
    if ((static_cast<uint8_t>(c) & 0xC0) != 0x80 && ++characters > kLongestPhrase) return {};
  }
  return {};
}

// The "ONLY" closing an amount in words ("… NINETY ONLY", "… FIVE THOUSAND ONLY)") with the word
// before it, so that it never stands alone on the last line; an empty span when the text does
// not end so.
KeptSpan ClosingOnly(std::string_view text) {
  size_t end = text.size();
  while (end > 0 && std::string_view(" .)").find(text[end - 1]) != std::string_view::npos) --end;
  constexpr std::string_view kOnly = "ONLY";
  if (end < kOnly.size() + 2 || text.substr(end - kOnly.size(), kOnly.size()) != kOnly ||
      text[end - kOnly.size() - 1] != ' ') {
    return {};
  }
  size_t begin = end - kOnly.size() - 1;
  while (begin > 0 && text[begin - 1] == ' ') --begin;
  const size_t word_end = begin;
  while (begin > 0 && text[begin - 1] != ' ' && text[begin - 1] != '\n') --begin;
  if (begin == word_end) return {};
  return {begin, text.size()};
}

}  // namespace

std::vector<KeptSpan> FindKeptSpans(std::string_view text) {
  std::vector<KeptSpan> found;
  for (size_t i = 0; i < text.size(); ++i) {
    KeptSpan span;
    if (text[i] == '(') {
      span = BracketedAt(text, i);
    } else if (const size_t dash = DashAt(text, i); dash > 0) {
      span = PinCodeAt(text, i, dash);
    }
    if (span.end > span.begin) found.push_back(span);
  }
  if (const KeptSpan only = ClosingOnly(text); only.end > only.begin) found.push_back(only);
  // In order, spans that overlap made one.
  std::sort(found.begin(), found.end(),
            [](const KeptSpan& a, const KeptSpan& b) { return a.begin < b.begin; });
  std::vector<KeptSpan> spans;
  for (const KeptSpan& span : found) {
    if (!spans.empty() && span.begin < spans.back().end) {
      spans.back().end = std::max(spans.back().end, span.end);
    } else {
      spans.push_back(span);
    }
  }
  return spans;
}

}  // namespace vantorel::report::text
