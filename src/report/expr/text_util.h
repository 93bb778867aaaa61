// Small text helpers of the expression module: numbers written with std::to_chars (never the C
// locale), ASCII case, and UTF-8 character counting.
//
// Thread-safety: pure functions.
#ifndef VANTOREL_REPORT_EXPR_TEXT_UTIL_H_
#define VANTOREL_REPORT_EXPR_TEXT_UTIL_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vantorel::report::expr {

// "value" in decimal with at least "width" digits (zero padded); a minus sign for negatives.
void AppendPadded(std::string& out, int64_t value, int width);

// The shortest digits that read back as "value", written out without an exponent
// ("15000000000000000000000000" for 1.5e25, "0.0000001" for 1e-7).
std::string ShortestPlainDigits(double value);

// A double in shortest round-trip form: plain digits between 1e-6 and 1e21, otherwise with an
// exponent ("1.5e+25").
std::string DoubleText(double value);

inline char AsciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }
inline char AsciiUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }
std::string AsciiUpper(std::string_view text);
bool EqualsIgnoreCase(std::string_view a, std::string_view b);
// Edit distance ignoring ASCII case, for "did you mean" hints.
size_t EditDistance(std::string_view a, std::string_view b);
bool StartsWithIgnoreCase(std::string_view text, std::string_view prefix);

// UTF-8 characters are counted by their lead bytes, so a malformed sequence never makes a
// position run past the text.
inline bool IsContinuationByte(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }
size_t CharCount(std::string_view text);
// The byte offset where character "index" (0-based) starts; text.size() when past the end.
size_t ByteOffsetOfChar(std::string_view text, size_t index);
// Appends the UTF-8 form of "code_point"; false (and nothing appended) for a value that is not a
// Unicode scalar value.
bool AppendUtf8(std::string& out, int64_t code_point);

// Where "offset" lies in "source", for a message: "at character N of "…"" when the source is
// short, else "at line L, column C of the expression, near "…"" with an excerpt of at most
// about 60 characters around it, so a 200 KB expression does not become a 200 KB message.
std::string DescribePosition(std::string_view source, size_t offset);

// The "]" that closes the "[" at "open" in a text with [expressions]: brackets nest, and inside
// quotes ("]" or ']', a doubled quote standing for itself) they do not count. Without "quotes"
// every bracket counts (for run-time texts such as "[Don't print]" whose apostrophe never
// closes).
std::optional<size_t> ClosingBracket(std::string_view text, size_t open, bool quotes);

}  // namespace vantorel::report::expr

#endif  // VANTOREL_REPORT_EXPR_TEXT_UTIL_H_
