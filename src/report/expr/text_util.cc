#include "report/expr/text_util.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <vector>

#include "unicode/utf8.h"

namespace vantorel::report::expr {

void AppendPadded(std::string& out, int64_t value, int width) {
  char buffer[24];
  const uint64_t magnitude =
      value < 0 ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, magnitude);
  const int digits = static_cast<int>(result.ptr - buffer);
  if (value < 0) out += '-';
  if (digits < width) out.append(static_cast<size_t>(width - digits), '0');
  out.append(buffer, result.ptr);
}

std::string ShortestPlainDigits(double value) {
  // Fixed notation of std::to_chars writes every digit of a large binary value
  // (15000000000000000905969664); the shortest scientific form has only the digits that matter.
  if (!std::isfinite(value)) return {};
  char buffer[64];
  const auto result =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific);
  if (result.ec != std::errc()) return {};
  const std::string_view text(buffer, static_cast<size_t>(result.ptr - buffer));
  const size_t e = text.find('e');
  if (e == std::string_view::npos || e + 1 >= text.size()) return {};
  std::string digits;
  bool negative = false;
  for (const char c : text.substr(0, e)) {
    if (c == '-') negative = true;
    if (c >= '0' && c <= '9') digits += c;
  }
  int exponent = 0;
  std::from_chars(text.data() + e + (text[e + 1] == '+' ? 2 : 1), text.data() + text.size(),
                  exponent);
  // The point goes after digit number exponent + 1.
  const int point = exponent + 1;
  std::string out = negative ? "-" : "";
  const int count = static_cast<int>(digits.size());
  if (point <= 0) {
    out += "0.";
    out.append(static_cast<size_t>(-point), '0');
    out += digits;
  } else if (point >= count) {
    out += digits;
    out.append(static_cast<size_t>(point - count), '0');
  } else {
    out.append(digits, 0, static_cast<size_t>(point));
    out += '.';
    out.append(digits, static_cast<size_t>(point), std::string::npos);
  }
  return out;
}

std::string DoubleText(double value) {
  const double magnitude = std::fabs(value);
  if (magnitude == 0) return "0";
  if (magnitude >= 1e-6 && magnitude < 1e21) return ShortestPlainDigits(value);
  char buffer[64];
  const auto result =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific);
  if (result.ec != std::errc()) return {};
  return std::string(buffer, result.ptr);
}

std::string AsciiUpper(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) c = AsciiUpper(c);
  return upper;
}

size_t EditDistance(std::string_view a, std::string_view b) {
  std::vector<size_t> row(b.size() + 1);
  for (size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (size_t i = 1; i <= a.size(); ++i) {
    size_t diagonal = row[0];
    row[0] = i;
    for (size_t j = 1; j <= b.size(); ++j) {
      const size_t above = row[j];
      const size_t cost = AsciiLower(a[i - 1]) == AsciiLower(b[j - 1]) ? 0 : 1;
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + cost});
      diagonal = above;
    }
  }
  return row[b.size()];
}

bool EqualsIgnoreCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (AsciiLower(a[i]) != AsciiLower(b[i])) return false;
  }
  return true;
}

bool StartsWithIgnoreCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && EqualsIgnoreCase(text.substr(0, prefix.size()), prefix);
}

size_t CharCount(std::string_view text) {
  size_t count = 0;
  for (const char c : text) count += IsContinuationByte(c) ? 0 : 1;
  return count;
}

size_t ByteOffsetOfChar(std::string_view text, size_t index) {
  size_t seen = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    if (IsContinuationByte(text[i])) continue;
    if (seen == index) return i;
    ++seen;
  }
  return text.size();
}

bool AppendUtf8(std::string& out, int64_t code_point) {
  if (code_point < 0 || code_point > 0x10FFFF || (code_point >= 0xD800 && code_point <= 0xDFFF)) {
    return false;
  }
  unicode::AppendUtf8(out, static_cast<char32_t>(code_point));
  return true;
}

std::optional<size_t> ClosingBracket(std::string_view text, size_t open, bool quotes) {
  int depth = 0;
  char quote = 0;
  for (size_t i = open; i < text.size(); ++i) {
    const char c = text[i];
    if (quote != 0) {
      if (c == quote) {
        if (i + 1 < text.size() && text[i + 1] == quote) {
          ++i;
        } else {
          quote = 0;
        }
      }
    } else if (quotes && (c == '"' || c == '\'')) {
      quote = c;
    } else if (c == '[') {
      ++depth;
    } else if (c == ']' && --depth == 0) {
      return i;
    }
  }
  return std::nullopt;
}

std::string DescribePosition(std::string_view source, size_t offset) {
  constexpr size_t kShown = 60;
  offset = std::min(offset, source.size());
  if (source.size() <= kShown) {
    return "at character " + std::to_string(offset + 1) + " of \"" + std::string(source) + "\"";
  }
  size_t line = 1, line_start = 0;
  for (size_t i = 0; i < offset; ++i) {
    if (source[i] == '\n') ++line, line_start = i + 1;
  }
  // The excerpt starts and ends on character boundaries, never inside a UTF-8 sequence.
  size_t begin = offset > kShown / 2 ? offset - kShown / 2 : 0;
  while (begin > 0 && IsContinuationByte(source[begin])) --begin;
  size_t end = std::min(source.size(), begin + kShown);
  while (end < source.size() && IsContinuationByte(source[end])) ++end;
  std::string excerpt = begin > 0 ? "\u2026" : "";
  excerpt.append(source.substr(begin, end - begin));
  if (end < source.size()) excerpt += "\u2026";
  return "at line " + std::to_string(line) + ", column " +
         std::to_string(CharCount(source.substr(line_start, offset - line_start)) + 1) +
         " of the expression, near \"" + excerpt + "\"";
}

}  // namespace vantorel::report::expr
