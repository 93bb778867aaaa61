// UTF-8 as every part of the component reads and writes it: one decoder, one encoder, and the
// UTF-16 conversions the binary interface and ODBC's wide calls need.
//
// A malformed sequence stands for one U+FFFD per maximal subpart (the longest start of a valid
// sequence, or else one byte), as Unicode advises, so "\xE2\x82A" is U+FFFD and "A". Overlong
// forms, encoded surrogates and values above U+10FFFF are malformed.
#ifndef VANTOREL_UNICODE_UTF8_H_
#define VANTOREL_UNICODE_UTF8_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vantorel::unicode {

constexpr char32_t kReplacement = 0xFFFD;

namespace detail {

inline bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
inline bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

}  // namespace detail

// The code point at "i" in "text" (i < text.size()), moving "i" past it; -1, with "i" past the
// malformed part, where "text" is not UTF-8 there.
inline int32_t NextCodePoint(std::string_view text, size_t& i) {
  const auto byte = [&](size_t at) { return static_cast<unsigned char>(text[at]); };
  const unsigned char lead = byte(i);
  if (lead < 0x80) {
    ++i;
    return lead;
  }
  // The length of the sequence and the range its second byte must be in (which rules out
  // overlong forms, surrogates and values above U+10FFFF).
  size_t length = 0;
  unsigned char low = 0x80, high = 0xBF;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;
  }
  if (length == 0) {
    ++i;
    return -1;
  }
  char32_t code = lead & (0x7F >> length);
  size_t used = 1;
  for (; used < length && i + used < text.size(); ++used) {
    const unsigned char next = byte(i + used);
    if (next < (used == 1 ? low : 0x80) || next > (used == 1 ? high : 0xBF)) break;
    code = (code << 6) | (next & 0x3F);
  }
  i += used;
  return used == length ? static_cast<int32_t>(code) : -1;
}

// Appends "code" (a code point; not a surrogate, at most U+10FFFF) in UTF-8.
inline void AppendUtf8(std::string& out, char32_t code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | (code >> 6));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    out += static_cast<char>(0xE0 | (code >> 12));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (code >> 18));
    out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  }
}

// UTF-16 from UTF-8 and back; a malformed part or an unpaired surrogate becomes U+FFFD.
inline std::u16string Utf8ToUtf16(std::string_view text) {
  std::u16string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size();) {
    const int32_t code = NextCodePoint(text, i);
    if (code < 0) {
      out += static_cast<char16_t>(kReplacement);
    } else if (code < 0x10000) {
      out += static_cast<char16_t>(code);
    } else {
      out += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
      out += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
    }
  }
  return out;
}

inline std::string Utf16ToUtf8(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    const char32_t unit = text[i];
    if (detail::IsHighSurrogate(unit) && i + 1 < text.size() &&
        detail::IsLowSurrogate(text[i + 1])) {
      AppendUtf8(out, 0x10000 + ((unit - 0xD800) << 10) + (text[i + 1] - 0xDC00));
      ++i;
    } else if (detail::IsHighSurrogate(unit) || detail::IsLowSurrogate(unit)) {
      AppendUtf8(out, kReplacement);
    } else {
      AppendUtf8(out, unit);
    }
  }
  return out;
}

}  // namespace vantorel::unicode

#endif  // VANTOREL_UNICODE_UTF8_H_
