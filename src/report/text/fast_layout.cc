// The fast path: plain text in one font, shaped a paragraph at a time with HarfBuzz through the
// very hb_font Pango would use, then wrapped greedily. Shaping matches Pango's exactly; only the
// break rules are our own (spaces, and hyphens between letters), which is harmless because a
// given text always takes the same path.
#include <hb.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "report/text/layout_paths.h"

namespace vantorel::report::text {
namespace {

// Scripts the fast path takes: Latin (with its punctuation and symbols), Greek and Cyrillic —
// no combining marks, no bidirectional text, nothing that reorders or joins.
bool IsSimpleCodePoint(uint32_t c) {
  if (c < 0x80) return c >= 0x20 && c != 0x7F;
  if (c >= 0xA0 && c <= 0x24F) return c != 0xAD;  // a soft hyphen shows only at a break
  if (c >= 0x370 && c <= 0x3FF) return true;
  if (c >= 0x400 && c <= 0x482) return true;
  if (c >= 0x48A && c <= 0x4FF) return true;
  if (c >= 0x2010 && c <= 0x2027) return true;
  if (c >= 0x2030 && c <= 0x205E) return true;
  if (c >= 0x20A0 && c <= 0x20CF) return true;
  if (c >= 0x2100 && c <= 0x214F) return true;
  return false;
}

bool IsLetterOrDigit(uint8_t c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c >= 0x80;
}

struct Cluster {
  uint32_t begin, end;  // bytes of the text
  uint32_t first_glyph, glyph_count;
  float advance;     // points, character spacing included
  bool space;        // a break may follow; hangs at a line's end
  bool break_after;  // a hyphen between letters
};

struct Shaper {
  Shaper() : buffer(hb_buffer_create()) {}
  ~Shaper() { hb_buffer_destroy(buffer); }
  Shaper(const Shaper&) = delete;
  Shaper& operator=(const Shaper&) = delete;
  hb_buffer_t* buffer;
};

// Pango switches standard ligatures off when letters are spaced; so do we.
constexpr hb_feature_t kNoLigatures[] = {
    {HB_TAG('l', 'i', 'g', 'a'), 0, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END},
    {HB_TAG('c', 'l', 'i', 'g'), 0, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END},
    {HB_TAG('d', 'l', 'i', 'g'), 0, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END},
};

}  // namespace

bool CanLayOutFast(std::string_view text, const FontInfo& font) {
  size_t i = 0;
  while (i < text.size()) {
    const auto byte = static_cast<uint8_t>(text[i]);
    if (byte < 0x80) {
      if (byte == '\n' || byte == '\r') {
        ++i;
        continue;
      }
      if (byte < 0x20 || byte == 0x7F || !font.ascii[byte]) return false;
      ++i;
      continue;
    }
    const int32_t c = NextCodePoint(text, i);
    if (c < 0 || !IsSimpleCodePoint(static_cast<uint32_t>(c)) ||
        !font.IsCovered(static_cast<uint32_t>(c))) {
      return false;
    }
  }
  return true;
}

LaidOutText LayOutFast(std::string_view text, const TextStyle& style, const FontInfo& font,
                       const LineGeometry& geometry) {
  thread_local Shaper shaper;
  thread_local std::vector<float> advances;  // of the current paragraph's glyphs, points
  thread_local std::vector<Cluster> clusters;
  static const hb_language_t kEnglish = hb_language_from_string("en", 2);
  hb_buffer_t* buffer = shaper.buffer;
  constexpr float kUnit = 1.0f / PANGO_SCALE;  // Pango scales its hb_font to PANGO_SCALE per point
  const float spacing = style.char_spacing;
  const float available =
      geometry.bounded() && style.wrap ? geometry.width() : std::numeric_limits<float>::infinity();

  LaidOutText out;
  out.fast_path = true;
  out.underline = font.underline;
  out.strikeout = font.strikeout;
  GlyphRun run;
  run.font = font.scaled;
  run.utf8.assign(text);

  size_t paragraph = 0;
  while (paragraph <= text.size()) {
    size_t paragraph_end = text.find_first_of("\r\n", paragraph);
    if (paragraph_end == std::string_view::npos) paragraph_end = text.size();

    clusters.clear();
    advances.clear();
    const size_t glyph_base = run.glyphs.size();
    if (paragraph_end > paragraph) {
      hb_buffer_clear_contents(buffer);
      hb_buffer_add_utf8(buffer, text.data(), static_cast<int>(text.size()),
                         static_cast<unsigned>(paragraph),
                         static_cast<int>(paragraph_end - paragraph));
      hb_buffer_set_direction(buffer, HB_DIRECTION_LTR);
      hb_buffer_set_language(buffer, kEnglish);
      hb_buffer_guess_segment_properties(buffer);
      hb_buffer_set_flags(buffer, hb_buffer_flags_t(HB_BUFFER_FLAG_BOT | HB_BUFFER_FLAG_EOT));
      hb_shape(font.hb, buffer, spacing != 0 ? kNoLigatures : nullptr, spacing != 0 ? 3 : 0);

      unsigned count = 0;
      const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(buffer, &count);
      const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer, &count);
      run.glyphs.reserve(run.glyphs.size() + count);
      for (unsigned g = 0; g < count; ++g) {
        // Offsets now, positions once the line is known.
        run.glyphs.push_back(
            {infos[g].codepoint, positions[g].x_offset * kUnit, -positions[g].y_offset * kUnit});
        const uint32_t cluster = infos[g].cluster;
        const float advance = positions[g].x_advance * kUnit;
        advances.push_back(advance);
        if (clusters.empty() || clusters.back().begin != cluster) {
          if (!clusters.empty()) clusters.back().end = cluster;
          const auto byte = static_cast<uint8_t>(text[cluster]);
          clusters.push_back({cluster, static_cast<uint32_t>(paragraph_end),
                              static_cast<uint32_t>(glyph_base + g), 0, spacing, byte == ' ',
                              false});
        }
        clusters.back().glyph_count++;
        clusters.back().advance += advance;
      }
      for (size_t k = 1; k + 1 < clusters.size(); ++k) {
        Cluster& c = clusters[k];
        if (text[c.begin] == '-' && c.end - c.begin == 1 &&
            IsLetterOrDigit(static_cast<uint8_t>(text[clusters[k - 1].end - 1])) &&
            IsLetterOrDigit(static_cast<uint8_t>(text[clusters[k + 1].begin]))) {
          c.break_after = true;
        }
      }
    }
    for (const Cluster& c : clusters) {
      run.clusters.push_back({static_cast<int>(c.end - c.begin), static_cast<int>(c.glyph_count)});
    }

    // Greedy wrapping over the paragraph's clusters.
    size_t start = 0;
    do {
      float x = 0;
      size_t break_at = 0;  // 0: no break opportunity yet on this line
      size_t end = start;
      for (; end < clusters.size(); ++end) {
        const Cluster& c = clusters[end];
        if (c.space) {
          x += c.advance;
          break_at = end + 1;
          continue;
        }
        if (end > start && x + c.advance - spacing > available + 0.01f) {
          if (break_at > start) end = break_at;
          break;
        }
        x += c.advance;
        if (c.break_after) break_at = end + 1;
      }
      const bool last_line = end >= clusters.size();
      size_t content_end = end;
      while (content_end > start && clusters[content_end - 1].space) --content_end;
      float width = 0;
      size_t interior_spaces = 0;
      for (size_t k = start; k < content_end; ++k) {
        width += clusters[k].advance;
        if (clusters[k].space) ++interior_spaces;
      }
      if (content_end > start) width -= spacing;  // spacing goes between characters

      const uint32_t begin =
          clusters.empty() ? static_cast<uint32_t>(paragraph) : clusters[start].begin;
      const uint32_t line_end = end > start ? clusters[end - 1].end : begin;
      float stretch = 0;
      if (style.halign == HAlign::kJustify && !last_line && interior_spaces > 0 &&
          std::isfinite(available) && available > width) {
        stretch = (available - width) / static_cast<float>(interior_spaces);
        width = available;
      }
      const TextLine& line = geometry.Add(out, font.ascent, font.descent, width, begin, line_end);
      float pen = line.left;
      for (size_t k = start; k < end; ++k) {
        const Cluster& c = clusters[k];
        float glyph_pen = pen;
        for (uint32_t g = c.first_glyph; g < c.first_glyph + c.glyph_count; ++g) {
          cairo_glyph_t& glyph = run.glyphs[g];
          glyph.x += glyph_pen;
          glyph.y += line.baseline;
          glyph_pen += advances[g - glyph_base];
        }
        pen += c.advance + (c.space && k < content_end ? stretch : 0);
      }
      start = end;
    } while (start < clusters.size());

    if (paragraph_end >= text.size()) break;
    // The line break itself: a cluster with no glyphs, so every byte stays mapped.
    const size_t next =
        text.compare(paragraph_end, 2, "\r\n") == 0 ? paragraph_end + 2 : paragraph_end + 1;
    run.clusters.push_back({static_cast<int>(next - paragraph_end), 0});
    paragraph = next;
  }
  if (!run.glyphs.empty()) out.runs.push_back(std::move(run));
  return out;
}

}  // namespace vantorel::report::text
