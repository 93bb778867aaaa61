// The fast path: plain text in one font, shaped a paragraph at a time with HarfBuzz through the
// very hb_font Pango would use, then wrapped greedily. Shaping matches Pango's exactly, and so do
// the places a line may break: Pango's own rules (UAX #14) with the same adjustment the Pango
// path makes (NumberJoinsAt, FindKeptSpans), so a text wraps alike whichever way it goes.
#include <glib.h>
#include <hb.h>
#include <pango/pango.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "report/text/layout_paths.h"
#include "unicode/utf8.h"

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

struct Cluster {
  uint32_t begin, end;  // bytes of the text
  uint32_t first_glyph, glyph_count;
  float advance;      // points, character spacing included
  int64_t units;      // the same in Pango units, as Pango adds them up
  int64_t cut_units;  // the same when a line ends with this cluster: no kerning with the next
  bool space;         // hangs at a line's end
  bool break_before;  // a line may start here
  bool split_before;  // a word too long for its line may be split here
};

// Marks where the paragraph "text[begin, end)" may break, by Pango's rules and our adjustments:
// never inside a number after its signs, nor inside a stretch kept whole that fits in
// "available" units. Only needed when the paragraph is wider than its line.
void MarkBreaks(std::string_view text, size_t begin, size_t end, int64_t available,
                std::vector<Cluster>& clusters) {
  thread_local std::vector<PangoLogAttr> attributes;
  static PangoLanguage* const kEnglish = pango_language_from_string("en");
  const char* paragraph = text.data() + begin;
  const int length = static_cast<int>(end - begin);
  attributes.resize(static_cast<size_t>(g_utf8_strlen(paragraph, length)) + 1);
  pango_get_log_attrs(paragraph, length, 0, kEnglish, attributes.data(),
                      static_cast<int>(attributes.size()));
  // The kept stretches that fit on a line, measured as lines are: their clusters' widths.
  std::vector<KeptSpan> kept = FindKeptSpans(text.substr(begin, end - begin));
  std::erase_if(kept, [&](KeptSpan& span) {
    span.begin += begin;
    span.end += begin;
    const auto first =
        std::lower_bound(clusters.begin(), clusters.end(), span.begin,
                         [](const Cluster& c, size_t offset) { return c.begin < offset; });
    int64_t width = 0;
    for (auto c = first; c != clusters.end() && c->begin < span.end; ++c) width += c->units;
    return width > available;
  });
  size_t k = 0;  // the cluster holding the current character
  size_t s = 0;  // the first kept stretch not yet behind the current character
  size_t i = begin;
  for (const PangoLogAttr& attribute : attributes) {
    if (i >= end) break;
    while (k + 1 < clusters.size() && clusters[k + 1].begin <= i) ++k;
    while (s < kept.size() && kept[s].end <= i) ++s;
    if (clusters[k].begin == i && k > 0) {
      const bool joined =
          NumberJoinsAt(text, i) || (s < kept.size() && kept[s].begin < i && i < kept[s].end);
      clusters[k].break_before = attribute.is_line_break && !joined;
      clusters[k].split_before = attribute.is_char_break && !joined;
    }
    unicode::NextCodePoint(text, i);
  }
}

// Where the line starting at cluster "start" may end, chosen as Pango chooses: among the places a
// line may break ("split": a word may be split), the last where the text before it, shaped
// alone, fits in "available" with one space just before it hanging outside; failing that, the
// narrowest. "em" bounds what hanging and kerning take back, so the search stops once past it.
// Without splitting, nothing past that point can fit and the caller splits instead: so the search
// stops there too, rather than running on through a long word to the paragraph's end for every
// line of it.
struct LineEnd {
  size_t end;  // "start" when there is no place at all
  bool fits;
};

LineEnd LastFit(const std::vector<Cluster>& clusters, size_t start, int64_t available, int64_t em,
                bool split) {
  LineEnd best{start, false};
  int64_t best_width = 0;
  int64_t width = 0;  // of clusters [start, p), letter spacing after each as Pango counts it
  for (size_t p = start + 1; p <= clusters.size(); ++p) {
    const Cluster& last = clusters[p - 1];
    width += last.units;
    const int64_t hanging = last.space ? last.units : 0;
    if (width - hanging > available + em && (best.end != start || !split)) break;
    if (p < clusters.size() && !(split ? clusters[p].split_before : clusters[p].break_before)) {
      continue;
    }
    const int64_t cut = width - last.units + last.cut_units - hanging;
    if (best.end == start || cut <= available || cut < best_width) {
      best = {p, cut <= available};
      best_width = cut;
    }
  }
  return best;
}

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

bool NumberJoinsAt(std::string_view text, size_t i) {
  if (i == 0 || i >= text.size() || (text[i - 1] != '-' && text[i - 1] != '/')) return false;
  const int32_t c = unicode::NextCodePoint(text, i);
  return c > 0 && g_unichar_isdigit(static_cast<gunichar>(c));
}

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
    const int32_t c = unicode::NextCodePoint(text, i);
    if (c < 0 || !IsSimpleCodePoint(static_cast<uint32_t>(c)) ||
        !font.IsCovered(static_cast<uint32_t>(c))) {
      return false;
    }
  }
  return true;
}

bool ShapeWithoutLookups(hb_buffer_t* buffer, const FontInfo& font) {
  unsigned count = 0;
  hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(buffer, &count);
  for (unsigned i = 0; i < count; ++i) {
    const uint32_t c = infos[i].codepoint;
    if (c >= 0x80 || !font.plain_without_letters[c]) return false;
    if (i > 0 && font.kerned_pairs[infos[i - 1].codepoint * 128 + c]) return false;
  }
  hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer, &count);
  for (unsigned i = 0; i < count; ++i) {
    hb_codepoint_t glyph = 0;
    hb_font_get_nominal_glyph(font.hb, infos[i].codepoint, &glyph);
    infos[i].codepoint = glyph;
    positions[i] = {};
    positions[i].x_advance = hb_font_get_glyph_h_advance(font.hb, glyph);
  }
  hb_buffer_set_content_type(buffer, HB_BUFFER_CONTENT_TYPE_GLYPHS);
  return true;
}

LaidOutText LayOutFast(std::string_view text, const TextStyle& style, const FontInfo& font,
                       const LineGeometry& geometry) {
  thread_local Shaper shaper;
  thread_local std::vector<float> advances;  // of the current paragraph's glyphs, points
  thread_local std::vector<Cluster> clusters;
  thread_local std::vector<hb_position_t> glyph_units;  // the same in Pango units
  static const hb_language_t kEnglish = hb_language_from_string("en", 2);
  hb_buffer_t* buffer = shaper.buffer;
  constexpr float kUnit = 1.0f / PANGO_SCALE;  // Pango scales its hb_font to PANGO_SCALE per point
  const float spacing = style.char_spacing;
  const int64_t spacing_units = static_cast<int>(spacing * PANGO_SCALE);  // as Pango's attribute
  const bool wraps = geometry.bounded() && style.wrap;
  const float available = wraps ? geometry.width() : std::numeric_limits<float>::infinity();
  const int64_t available_units = wraps ? PangoUnits(available) : 0;
  const int64_t em = PangoUnits(style.size);

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
    glyph_units.clear();
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
      // Numbers and dates, most of a register's texts, need none of HarfBuzz's shaping.
      if (spacing != 0 || !ShapeWithoutLookups(buffer, font)) {
        hb_shape(font.hb, buffer, spacing != 0 ? kNoLigatures : nullptr, spacing != 0 ? 3 : 0);
      }

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
                              static_cast<uint32_t>(glyph_base + g), 0, spacing, spacing_units,
                              spacing_units, byte == ' ', false, true});
        }
        clusters.back().glyph_count++;
        clusters.back().advance += advance;
        clusters.back().units += positions[g].x_advance;
        glyph_units.push_back(positions[g].x_advance);
      }
    }
    int64_t natural = 0;
    for (const Cluster& c : clusters) natural += c.units;
    const bool fits = !wraps || natural <= available_units;
    if (!fits) {
      MarkBreaks(text, paragraph, paragraph_end, available_units, clusters);
      for (Cluster& c : clusters) {  // what kerning with the next character added to the last glyph
        const uint32_t last = c.first_glyph + c.glyph_count - 1;
        c.cut_units = c.units - glyph_units[last - glyph_base] +
                      hb_font_get_glyph_h_advance(font.hb, run.glyphs[last].index);
      }
    }
    for (const Cluster& c : clusters) {
      run.clusters.push_back({static_cast<int>(c.end - c.begin), static_cast<int>(c.glyph_count)});
    }

    // Greedy wrapping over the paragraph's clusters: a line ends at the last break that fits; a
    // word longer than the line is split at the last place that fits (at least one character).
    size_t start = 0;
    int64_t rest = natural;  // of clusters [start, end of paragraph)
    do {
      size_t end = clusters.size();
      // The rest of the paragraph fits when its last space hangs.
      if (!fits && rest - (clusters.back().space ? clusters.back().units : 0) > available_units) {
        LineEnd fit = LastFit(clusters, start, available_units, em, false);
        if (!fit.fits) fit = LastFit(clusters, start, available_units, em, true);
        end = fit.end;
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
        rest -= c.units;
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
