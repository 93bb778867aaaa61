#include "report/text/text_layout.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <list>
#include <string>
#include <unordered_map>

#include "report/text/fonts.h"
#include "report/text/layout.h"
#include "report/text/layout_paths.h"

namespace vantorel::report::text {
namespace {

constexpr size_t kDefaultBudget = size_t{32} << 20;

size_t ApproximateBytes(const LaidOutText& text, size_t key_size) {
  size_t bytes = sizeof(LaidOutText) + key_size + 96;  // 96: list, index and control blocks
  bytes += text.lines.capacity() * sizeof(TextLine);
  for (const GlyphRun& run : text.runs) {
    bytes += sizeof(GlyphRun) + run.glyphs.capacity() * sizeof(cairo_glyph_t) +
             run.utf8.capacity() + run.clusters.capacity() * sizeof(cairo_text_cluster_t);
  }
  return bytes;
}

// Everything that changes where glyphs go — not colour, decorations, fill, borders, rotation or
// clipping, which are applied when drawing.
void AppendKey(std::string& key, std::string_view text, const TextStyle& style, float width) {
  const float numbers[] = {width, style.size, style.line_spacing, style.char_spacing};
  const char flags[] = {
      static_cast<char>(style.bold | style.italic << 1 | style.wrap << 2 | style.rich << 3),
      static_cast<char>(style.halign)};
  key.reserve(sizeof numbers + sizeof flags + style.font_family.size() + 1 + text.size());
  key.append(reinterpret_cast<const char*>(numbers), sizeof numbers);
  key.append(flags, sizeof flags);
  key.append(style.font_family);
  key += '\0';
  key.append(text);
}

class LayoutCache {
 public:
  std::shared_ptr<const LaidOutText> Find(const std::string& key) {
    const auto found = index_.find(key);
    if (found == index_.end()) {
      ++stats_.misses;
      return nullptr;
    }
    ++stats_.hits;
    entries_.splice(entries_.begin(), entries_, found->second);
    return found->second->value;
  }

  void Insert(std::string key, const std::shared_ptr<const LaidOutText>& value) {
    if (budget_ == 0 || value->bytes > budget_ / 4) return;
    entries_.push_front({std::move(key), value});
    index_.emplace(entries_.front().key, entries_.begin());
    bytes_ += value->bytes;
    while (bytes_ > budget_) {
      const Entry& oldest = entries_.back();
      bytes_ -= oldest.value->bytes;
      index_.erase(oldest.key);
      entries_.pop_back();
    }
  }

  LayoutCacheStats Stats() const {
    LayoutCacheStats stats = stats_;
    stats.entries = entries_.size();
    stats.bytes = bytes_;
    return stats;
  }

  void Clear() {
    index_.clear();
    entries_.clear();
    bytes_ = 0;
    stats_ = {};
  }

  void SetBudget(size_t budget) {
    budget_ = budget;
    if (budget_ == 0) Clear();
  }

 private:
  struct Entry {
    std::string key;
    std::shared_ptr<const LaidOutText> value;
  };
  std::list<Entry> entries_;  // most recently used first
  std::unordered_map<std::string_view, std::list<Entry>::iterator> index_;
  size_t bytes_ = 0;
  size_t budget_ = kDefaultBudget;
  LayoutCacheStats stats_;
};

LayoutCache& Cache() {
  thread_local LayoutCache cache;
  return cache;
}

LaidOutText LayOutUncached(std::string_view text, const TextStyle& style, float width) {
  const LineGeometry geometry(style, width, width > 0);
  if (text.empty() || !(style.size > 0)) return {};
  const FontInfo& font =
      ThreadFonts::Current().Primary(style.font_family, style.bold, style.italic, style.size);
  const bool markup = style.rich && HasMarkup(text);
  if (!markup && CanLayOutFast(text, font)) return LayOutFast(text, style, font, geometry);
  return LayOutWithPango(markup ? ParseRichText(text) : ValidUtf8(text), style, font, geometry);
}

// True when "text" surely lays out as one line no wider than "width" and no taller than
// "height", known without laying it out: plain text of the fast path's characters whose
// advances, with room to spare for kerning (and 1.25 em for a character beyond ASCII, wider than
// any glyph the fast path takes), come within the width. Most cells of a table are so, and are
// then checked for fit at the cost of a glance rather than a layout.
bool FitsOnOneLine(std::string_view text, const TextStyle& style, float width, float height) {
  if (style.rich || !(style.size > 0)) return false;
  const FontInfo& font =
      ThreadFonts::Current().Primary(style.font_family, style.bold, style.italic, style.size);
  if (font.ascent + font.descent > height) return false;
  float advances = 0;
  size_t characters = 0;
  bool ascii = true;
  for (const char c : text) {
    const auto byte = static_cast<uint8_t>(c);
    if (byte < 0x80) {
      // A line break, a control character or one the font lacks: not the fast path's one line.
      // The same test as CanLayOutFast's for ASCII, made here in the same pass.
      if (byte < 0x20 || byte == 0x7F || !font.ascii[byte]) return false;
      ++characters;
      advances += font.ascii_advance[byte];
      continue;
    }
    ascii = false;
    if ((byte & 0xC0) == 0x80) continue;
    ++characters;
    advances += 1.25f * style.size;
  }
  const float widest = advances * 1.05f + 0.25f * style.size +
                       static_cast<float>(characters) * std::max(0.0f, style.char_spacing);
  return widest <= width && (ascii || CanLayOutFast(text, font));
}

}  // namespace

TextLine& LineGeometry::Add(LaidOutText& out, float ascent, float descent, float width,
                            uint32_t begin, uint32_t end) const {
  TextLine line;
  if (!out.lines.empty()) {
    const TextLine& previous = out.lines.back();
    line.top = previous.top + previous.height * style_.line_spacing;
  }
  line.height = ascent + descent;
  line.baseline = line.top + ascent;
  line.width = width;
  if (width_ > 0) {
    switch (style_.halign) {
      case HAlign::kCenter:
        line.left = (width_ - width) / 2;
        break;
      case HAlign::kRight:
        line.left = width_ - width;
        break;
      case HAlign::kLeft:
      case HAlign::kJustify:
        break;
    }
  }
  line.begin = begin;
  line.end = end;
  out.size.width = std::max(out.size.width, width);
  out.size.height = line.top + line.height;
  out.lines.push_back(line);
  return out.lines.back();
}

std::shared_ptr<const LaidOutText> LayOut(std::string_view text, const TextStyle& style,
                                          float width) {
  thread_local std::string key;
  key.clear();
  AppendKey(key, text, style, width);
  LayoutCache& cache = Cache();
  if (auto found = cache.Find(key)) return found;
  auto laid_out = std::make_shared<LaidOutText>(LayOutUncached(text, style, width));
  laid_out->bytes = ApproximateBytes(*laid_out, key.size());
  cache.Insert(key, laid_out);
  return laid_out;
}

LayoutCacheStats GetLayoutCacheStats() { return Cache().Stats(); }

void ClearLayoutCache() { Cache().Clear(); }

void SetLayoutCacheBudget(size_t bytes) { Cache().SetBudget(bytes); }

SizeF MeasureText(std::string_view text, const TextStyle& style, float width) {
  return LayOut(text, style, width)->size;
}

float MeasureHeight(std::string_view text, const TextStyle& style, float width) {
  if (!text.empty() && FitsOnOneLine(text, style, width, std::numeric_limits<float>::infinity())) {
    const FontInfo& font =
        ThreadFonts::Current().Primary(style.font_family, style.bold, style.italic, style.size);
    return font.ascent + font.descent;
  }
  return LayOut(text, style, width)->size.height;
}

BoxFit FitInBox(std::string_view text, const TextStyle& style, SizeF size) {
  constexpr float kSlack = 0.01f;  // float rounding, as the renderer allows
  BoxFit fit;
  if (text.empty()) return fit;
  const Padding& pad = style.padding;
  const int rotation = ((style.rotation % 360) + 360) % 360;
  const bool sideways = rotation == 90 || rotation == 270;
  const float pad_across = sideways ? pad.top + pad.bottom : pad.left + pad.right;
  const float pad_down = sideways ? pad.left + pad.right : pad.top + pad.bottom;
  const float box_across = sideways ? size.height : size.width;
  const float box_down = sideways ? size.width : size.height;
  const float frame_width = std::max(0.0f, box_across - pad_across);
  const float room_down = rotation == 0 ? box_down - pad.top : box_down - pad_down;
  if (FitsOnOneLine(text, style, frame_width, room_down)) return fit;
  const auto laid_out = LayOut(text, style, frame_width);
  if (laid_out->size.height > room_down + kSlack) {
    return {false, false, laid_out->size.height + pad_down, box_down};
  }
  float left = 0, right = 0;
  for (const TextLine& line : laid_out->lines) {
    left = std::min(left, line.left);
    right = std::max(right, line.left + line.width);
  }
  const float room_left = rotation == 0 ? pad.left : 0;
  const float room_right = rotation == 0 ? frame_width + pad.right : frame_width;
  if (left < -room_left - kSlack || right > room_right + kSlack) {
    return {false, true, right - left + pad_across, box_across};
  }
  return fit;
}

size_t FitText(std::string_view text, const TextStyle& style, float width, float height) {
  // A text that runs over many pages is fitted once per page: laying all the rest out each time
  // would cost the square of its length. Only a prefix is laid out — enough for the lines that
  // fit and a few more, so that the line where it ends is the one the whole text has.
  constexpr size_t kSettledLines = 4;
  // A first guess of the prefix, doubled while too short: lines of at least 0.9 em, characters
  // of 0.4 em (Latin text averages about half an em).
  const double line_count = std::max(0.0, static_cast<double>(height)) /
                                std::max(0.1, static_cast<double>(style.size) * 0.9) +
                            kSettledLines + 1;
  const double line_bytes = std::max(1.0, static_cast<double>(width)) /
                            std::max(0.1, static_cast<double>(style.size) * 0.4);
  size_t prefix = static_cast<size_t>(std::min(line_count * line_bytes, 1e12));
  prefix = std::max<size_t>(prefix, 4096);
  constexpr float kTolerance = 0.01f;  // float rounding of heights that were summed elsewhere
  for (;;) {
    while (prefix < text.size() && (static_cast<uint8_t>(text[prefix]) & 0xC0) == 0x80) ++prefix;
    const bool whole = prefix >= text.size();
    const auto laid_out = whole ? LayOut(text, style, width)
                                : std::make_shared<const LaidOutText>(
                                      LayOutUncached(text.substr(0, prefix), style, width));
    const std::vector<TextLine>& lines = laid_out->lines;
    size_t fitting = 0;
    while (fitting < lines.size() &&
           lines[fitting].top + lines[fitting].height <= height + kTolerance) {
      ++fitting;
    }
    if (whole) {
      if (fitting == lines.size()) return text.size();
      if (fitting == 0) return 0;
      return std::min<size_t>(lines[fitting].begin, text.size());
    }
    if (fitting + kSettledLines < lines.size()) {
      return fitting == 0 ? 0 : lines[fitting].begin;
    }
    prefix *= 2;
  }
}

}  // namespace vantorel::report::text
