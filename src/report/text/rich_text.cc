#include "report/text/rich_text.h"

#include <pango/pango.h>

#include <algorithm>
#include <charconv>
#include <optional>

#include "unicode/utf8.h"

namespace vantorel::report::text {
namespace {

constexpr uint32_t kReplacement = 0xFFFD;

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                            [](char x, char y) { return Lower(x) == Lower(y); });
}

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
bool IsNameChar(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
}

struct Attribute {
  std::string_view name, value;
};

struct Tag {
  std::string_view name;
  bool closing = false;
  std::vector<Attribute> attributes;
  size_t end = 0;  // one past '>'
};

// The tag starting at "start" ('<'), or nullopt when the text there is not a well-formed tag.
std::optional<Tag> ReadTag(std::string_view s, size_t start) {
  Tag tag;
  size_t i = start + 1;
  if (i < s.size() && s[i] == '/') {
    tag.closing = true;
    ++i;
  }
  const size_t name_start = i;
  while (i < s.size() && IsNameChar(s[i])) ++i;
  if (i == name_start) return std::nullopt;
  tag.name = s.substr(name_start, i - name_start);
  for (;;) {
    while (i < s.size() && IsSpace(s[i])) ++i;
    if (i >= s.size()) return std::nullopt;
    if (s[i] == '>') {
      tag.end = i + 1;
      return tag;
    }
    if (s[i] == '/' && i + 1 < s.size() && s[i + 1] == '>') {
      tag.end = i + 2;
      return tag;
    }
    if (tag.closing) return std::nullopt;
    const size_t attribute_start = i;
    while (i < s.size() && IsNameChar(s[i])) ++i;
    if (i == attribute_start) return std::nullopt;
    Attribute attribute{s.substr(attribute_start, i - attribute_start), {}};
    while (i < s.size() && IsSpace(s[i])) ++i;
    if (i < s.size() && s[i] == '=') {
      ++i;
      while (i < s.size() && IsSpace(s[i])) ++i;
      if (i >= s.size()) return std::nullopt;
      if (s[i] == '"' || s[i] == '\'') {
        const size_t close = s.find(s[i], i + 1);
        if (close == std::string_view::npos) return std::nullopt;
        attribute.value = s.substr(i + 1, close - i - 1);
        i = close + 1;
      } else {
        const size_t value_start = i;
        while (i < s.size() && !IsSpace(s[i]) && s[i] != '>' && s[i] != '/') ++i;
        attribute.value = s.substr(value_start, i - value_start);
      }
    }
    tag.attributes.push_back(attribute);
  }
}

// The entity starting at "start" ('&'): its code point and the byte after ';'.
std::optional<std::pair<uint32_t, size_t>> ReadEntity(std::string_view s, size_t start) {
  const size_t semicolon = s.find(';', start + 1);
  if (semicolon == std::string_view::npos || semicolon - start > 10) return std::nullopt;
  const std::string_view name = s.substr(start + 1, semicolon - start - 1);
  static constexpr std::pair<std::string_view, uint32_t> kNamed[] = {
      {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}, {"nbsp", 0xA0}};
  for (const auto& [entity, code] : kNamed) {
    if (name == entity) return std::pair{code, semicolon + 1};
  }
  if (name.size() < 2 || name[0] != '#') return std::nullopt;
  const bool hex = name[1] == 'x' || name[1] == 'X';
  const std::string_view digits = name.substr(hex ? 2 : 1);
  uint32_t code = 0;
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), code, hex ? 16 : 10);
  if (error != std::errc() || end != digits.data() + digits.size() || code == 0 ||
      code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
    return std::nullopt;
  }
  return std::pair{code, semicolon + 1};
}

// The characters ProtectFromMarkup stands in for, from U+E000 on.
constexpr int32_t kProtected = 0xE000;
constexpr int32_t kProtectedAs[] = {'&', '<', '>'};

struct FontState {
  bool has_color = false;
  Color color;
  float size = 0;
  std::string face;
};

class RichReader {
 public:
  explicit RichReader(std::string_view markup) : markup_(markup) {}

  PlainText Read() {
    size_t i = 0;
    while (i < markup_.size()) {
      const char c = markup_[i];
      if (c == '<') {
        if (const auto tag = ReadTag(markup_, i); tag && Apply(*tag)) {
          i = tag->end;
          if (tag->closing) share_start_ = i;
          continue;
        }
      } else if (c == '&') {
        if (const auto entity = ReadEntity(markup_, i)) {
          Append(entity->first);
          i = share_start_ = entity->second;
          continue;
        }
      }
      int32_t code = unicode::NextCodePoint(markup_, i);
      if (code >= kProtected && code < kProtected + 3) code = kProtectedAs[code - kProtected];
      Append(code <= 0 ? kReplacement : static_cast<uint32_t>(code));
      share_start_ = i;
    }
    out_.source.push_back(static_cast<uint32_t>(markup_.size()));
    return std::move(out_);
  }

 private:
  // Applies a tag we know; false leaves an unknown one to be shown as text.
  bool Apply(const Tag& tag) {
    const auto adjust = [&](int& depth) {
      depth = tag.closing ? std::max(0, depth - 1) : depth + 1;
      return true;
    };
    if (EqualsIgnoringCase(tag.name, "b")) return adjust(bold_);
    if (EqualsIgnoringCase(tag.name, "i")) return adjust(italic_);
    if (EqualsIgnoringCase(tag.name, "u")) return adjust(underline_);
    if (EqualsIgnoringCase(tag.name, "br")) {
      if (!tag.closing) {
        Append('\n');
        share_start_ = tag.end;
      }
      return true;
    }
    if (!EqualsIgnoringCase(tag.name, "font")) return false;
    if (tag.closing) {
      if (fonts_beyond_limit_ > 0) {
        --fonts_beyond_limit_;
      } else if (fonts_.size() > 1) {
        fonts_.pop_back();
      }
      return true;
    }
    // Each level copies its font (face included), so nesting is bounded: deeper tags keep the
    // font of the deepest level kept.
    if (fonts_.size() > kMaxFontNesting) {
      ++fonts_beyond_limit_;
      return true;
    }
    FontState font = fonts_.back();
    for (const Attribute& attribute : tag.attributes) {
      const std::string value(attribute.value);
      if (EqualsIgnoringCase(attribute.name, "color")) {
        PangoColor color;
        if (pango_color_parse(&color, value.c_str())) {
          font.has_color = true;
          font.color = {static_cast<uint8_t>(color.red >> 8),
                        static_cast<uint8_t>(color.green >> 8),
                        static_cast<uint8_t>(color.blue >> 8), 255};
        }
      } else if (EqualsIgnoringCase(attribute.name, "size")) {
        float size = 0;
        const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), size);
        if (error == std::errc() && size > 0 && size < 1000) font.size = size;
      } else if (EqualsIgnoringCase(attribute.name, "face")) {
        font.face = value;
      }
    }
    fonts_.push_back(std::move(font));
    return true;
  }

  void Append(uint32_t code) {
    const size_t begin = out_.text.size();
    unicode::AppendUtf8(out_.text, code);
    out_.source.resize(out_.text.size(), static_cast<uint32_t>(share_start_));
    const FontState& font = fonts_.back();
    RichSpan span{static_cast<uint32_t>(begin),
                  static_cast<uint32_t>(out_.text.size()),
                  bold_ > 0,
                  italic_ > 0,
                  underline_ > 0,
                  font.has_color,
                  font.color,
                  font.size,
                  font.face};
    if (!span.bold && !span.italic && !span.underline && !span.has_color && span.size == 0 &&
        span.face.empty()) {
      return;
    }
    if (!out_.spans.empty()) {
      RichSpan& last = out_.spans.back();
      if (last.end == span.begin && last.bold == span.bold && last.italic == span.italic &&
          last.underline == span.underline && last.has_color == span.has_color &&
          last.color == span.color && last.size == span.size && last.face == span.face) {
        last.end = span.end;
        return;
      }
    }
    out_.spans.push_back(std::move(span));
  }

  std::string_view markup_;
  size_t share_start_ = 0;  // where the next character's share of the source begins
  PlainText out_;
  int bold_ = 0, italic_ = 0, underline_ = 0;
  std::vector<FontState> fonts_{FontState{}};
  size_t fonts_beyond_limit_ = 0;
};

}  // namespace

PlainText ParseRichText(std::string_view markup) { return RichReader(markup).Read(); }

PlainText ValidUtf8(std::string_view text) {
  PlainText out;
  out.text.reserve(text.size());
  out.source.reserve(text.size() + 1);
  size_t i = 0;
  while (i < text.size()) {
    const size_t start = i;
    const int32_t code = unicode::NextCodePoint(text, i);
    if (code <= 0) {  // NUL too: Pango takes text as C strings in places
      unicode::AppendUtf8(out.text, kReplacement);
    } else {
      out.text.append(text.substr(start, i - start));
    }
    out.source.resize(out.text.size(), static_cast<uint32_t>(start));
  }
  out.source.push_back(static_cast<uint32_t>(text.size()));
  return out;
}

std::string ProtectFromMarkup(std::string_view value) {
  if (value.find_first_of("&<>") == std::string_view::npos) return std::string(value);
  std::string out;
  out.reserve(value.size() + 8);
  for (const char c : value) {
    if (c == '&' || c == '<' || c == '>') {
      unicode::AppendUtf8(out, static_cast<uint32_t>(kProtected + (c == '&'   ? 0
                                                                   : c == '<' ? 1
                                                                              : 2)));
    } else {
      out += c;
    }
  }
  return out;
}

}  // namespace vantorel::report::text
