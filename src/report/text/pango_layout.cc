// The general path: a PangoLayout (font fallback, Devanagari and other complex scripts, rich
// text, tabs) converted into glyph runs of our own form so drawing is the same for every text.
#include <pango/pangocairo.h>

#include <algorithm>
#include <memory>

#include "report/text/layout_paths.h"

namespace vantorel::report::text {
namespace {

struct AttrListUnref {
  void operator()(PangoAttrList* list) const { pango_attr_list_unref(list); }
};
struct FontDescriptionFree {
  void operator()(PangoFontDescription* description) const {
    pango_font_description_free(description);
  }
};

void Insert(PangoAttrList* list, PangoAttribute* attribute, uint32_t begin, uint32_t end) {
  attribute->start_index = begin;
  attribute->end_index = end;
  pango_attr_list_insert(list, attribute);
}

PangoAttrList* Attributes(const PlainText& plain, const TextStyle& style) {
  PangoAttrList* list = pango_attr_list_new();
  // A break inside a word is for codes and numbers too long for their box; a hyphen there would
  // read as part of the value.
  pango_attr_list_insert(list, pango_attr_insert_hyphens_new(FALSE));
  // Pango would break "VSI/" | "24-25/0007"; a sign and the digit after it are kept together as
  // the fast path keeps them (neither a line break nor, for an overlong word, a split).
  for (size_t i = plain.text.find_first_of("-/"); i != std::string::npos;
       i = plain.text.find_first_of("-/", i + 1)) {
    if (!NumberJoinsAt(plain.text, i + 1)) continue;
    size_t digit_end = i + 1;
    NextCodePoint(plain.text, digit_end);
    Insert(list, pango_attr_allow_breaks_new(FALSE), static_cast<uint32_t>(i),
           static_cast<uint32_t>(digit_end));
  }
  if (style.char_spacing != 0) {
    pango_attr_list_insert(
        list, pango_attr_letter_spacing_new(static_cast<int>(style.char_spacing * PANGO_SCALE)));
  }
  for (const RichSpan& span : plain.spans) {
    if (span.bold) Insert(list, pango_attr_weight_new(PANGO_WEIGHT_BOLD), span.begin, span.end);
    if (span.italic) Insert(list, pango_attr_style_new(PANGO_STYLE_ITALIC), span.begin, span.end);
    if (span.underline) {
      Insert(list, pango_attr_underline_new(PANGO_UNDERLINE_SINGLE), span.begin, span.end);
    }
    if (span.has_color) {
      Insert(list,
             pango_attr_foreground_new(static_cast<guint16>(span.color.r * 257),
                                       static_cast<guint16>(span.color.g * 257),
                                       static_cast<guint16>(span.color.b * 257)),
             span.begin, span.end);
    }
    if (span.size > 0) {
      Insert(list, pango_attr_size_new_absolute(static_cast<int>(span.size * PANGO_SCALE)),
             span.begin, span.end);
    }
    if (!span.face.empty()) {
      Insert(list, pango_attr_family_new(span.face.c_str()), span.begin, span.end);
    }
  }
  return list;
}

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

uint32_t SourceOffset(const PlainText& plain, size_t plain_offset) {
  return plain.source.empty() ? static_cast<uint32_t>(plain_offset) : plain.source[plain_offset];
}

// The colour and decorations Pango attached to a run (they do not change shaping, so Pango keeps
// them beside the item).
void ReadRunAttributes(const PangoItem* item, GlyphRun& run) {
  for (GSList* node = item->analysis.extra_attrs; node != nullptr; node = node->next) {
    const auto* attribute = static_cast<const PangoAttribute*>(node->data);
    switch (attribute->klass->type) {
      case PANGO_ATTR_FOREGROUND: {
        const PangoColor& c = reinterpret_cast<const PangoAttrColor*>(attribute)->color;
        run.has_color = true;
        run.color = {static_cast<uint8_t>(c.red >> 8), static_cast<uint8_t>(c.green >> 8),
                     static_cast<uint8_t>(c.blue >> 8), 255};
        break;
      }
      case PANGO_ATTR_UNDERLINE:
        run.underline =
            reinterpret_cast<const PangoAttrInt*>(attribute)->value != PANGO_UNDERLINE_NONE;
        break;
      case PANGO_ATTR_STRIKETHROUGH:
        run.strikeout = reinterpret_cast<const PangoAttrInt*>(attribute)->value != 0;
        break;
      default:
        break;
    }
  }
}

// Converts one Pango run at pen position "x" on a line with baseline "baseline".
GlyphRun ConvertRun(const PangoGlyphItem* glyph_item, const std::string& text, float x,
                    float baseline) {
  const PangoItem* item = glyph_item->item;
  const PangoGlyphString* glyphs = glyph_item->glyphs;
  GlyphRun run;
  run.font = ScaledFont(pango_cairo_font_get_scaled_font(PANGO_CAIRO_FONT(item->analysis.font)));
  run.utf8.assign(text, static_cast<size_t>(item->offset), static_cast<size_t>(item->length));
  ReadRunAttributes(item, run);

  // Positions in visual order.
  std::vector<float> pen(static_cast<size_t>(glyphs->num_glyphs));
  float cursor = x;
  for (int g = 0; g < glyphs->num_glyphs; ++g) {
    pen[static_cast<size_t>(g)] = cursor;
    cursor += static_cast<float>(glyphs->glyphs[g].geometry.width) / PANGO_SCALE;
  }
  run.x0 = x;
  run.x1 = cursor;
  run.baseline = baseline;

  // Clusters in text order; a right-to-left run lists its glyphs backwards.
  const bool backward = (item->analysis.level & 1) != 0;
  if (backward) run.cluster_flags = CAIRO_TEXT_CLUSTER_FLAG_BACKWARD;
  const int n = glyphs->num_glyphs;
  std::vector<int> order(static_cast<size_t>(n));
  for (int k = 0; k < n; ++k) order[static_cast<size_t>(k)] = backward ? n - 1 - k : k;

  int k = 0;
  while (k < n) {
    const int cluster_start = glyphs->log_clusters[order[static_cast<size_t>(k)]];
    int glyph_count = 0;
    int k_end = k;
    while (k_end < n && glyphs->log_clusters[order[static_cast<size_t>(k_end)]] == cluster_start) {
      ++k_end;
    }
    // A following cluster of zero-width glyphs (a vowel sign or other combining mark) joins this
    // one, so the PDF maps base and marks to their text together: text extraction then reads
    // "दे" as one piece instead of seeing a gap where the mark sits over its consonant.
    while (k_end < n && glyphs->glyphs[order[static_cast<size_t>(k_end)]].geometry.width == 0 &&
           glyphs->glyphs[order[static_cast<size_t>(k_end)]].glyph != PANGO_GLYPH_EMPTY) {
      const int next = glyphs->log_clusters[order[static_cast<size_t>(k_end)]];
      while (k_end < n && glyphs->log_clusters[order[static_cast<size_t>(k_end)]] == next) ++k_end;
    }
    for (int j = k; j < k_end; ++j) {
      const int g = order[static_cast<size_t>(j)];
      const PangoGlyphInfo& info = glyphs->glyphs[g];
      if (info.glyph == PANGO_GLYPH_EMPTY) continue;
      const unsigned long index =
          (info.glyph & PANGO_GLYPH_UNKNOWN_FLAG) != 0 ? 0 : static_cast<unsigned long>(info.glyph);
      run.glyphs.push_back(
          {index,
           pen[static_cast<size_t>(g)] + static_cast<double>(info.geometry.x_offset) / PANGO_SCALE,
           baseline + static_cast<double>(info.geometry.y_offset) / PANGO_SCALE});
      ++glyph_count;
    }
    const int next_start =
        k_end < n ? glyphs->log_clusters[order[static_cast<size_t>(k_end)]] : item->length;
    const int bytes = next_start - cluster_start;
    if (bytes > 0 || glyph_count > 0) run.clusters.push_back({bytes, glyph_count});
    k = k_end;
  }
  // Backward runs were walked from the text's start, so glyphs must go back to visual order.
  if (backward) std::reverse(run.glyphs.begin(), run.glyphs.end());
  return run;
}

// The advance of the blanks that end a line, which do not count towards its width.
float TrailingBlankWidth(const PangoLayoutLine* line, const std::string& text) {
  float width = 0;
  std::vector<const PangoGlyphItem*> runs;
  for (GSList* node = line->runs; node != nullptr; node = node->next) {
    runs.push_back(static_cast<const PangoGlyphItem*>(node->data));
  }
  for (auto run = runs.rbegin(); run != runs.rend(); ++run) {
    const PangoGlyphString* glyphs = (*run)->glyphs;
    for (int g = glyphs->num_glyphs - 1; g >= 0; --g) {
      const size_t byte =
          static_cast<size_t>((*run)->item->offset) + static_cast<size_t>(glyphs->log_clusters[g]);
      if (byte >= text.size() || !IsBlank(text[byte])) return width;
      width += static_cast<float>(glyphs->glyphs[g].geometry.width) / PANGO_SCALE;
    }
  }
  return width;
}

}  // namespace

LaidOutText LayOutWithPango(const PlainText& plain, const TextStyle& style, const FontInfo& primary,
                            const LineGeometry& geometry) {
  ThreadFonts& fonts = ThreadFonts::Current();
  PangoLayout* layout = fonts.layout();
  const std::unique_ptr<PangoFontDescription, FontDescriptionFree> description(
      ThreadFonts::Describe(style.font_family, style.bold, style.italic, style.size));
  pango_layout_set_font_description(layout, description.get());
  const std::unique_ptr<PangoAttrList, AttrListUnref> attributes(Attributes(plain, style));
  pango_layout_set_attributes(layout, attributes.get());
  pango_layout_set_text(layout, plain.text.data(), static_cast<int>(plain.text.size()));
  pango_layout_set_alignment(layout, PANGO_ALIGN_LEFT);
  pango_layout_set_justify(layout, style.halign == HAlign::kJustify);
  if (style.wrap && geometry.bounded()) {
    pango_layout_set_width(layout, PangoUnits(geometry.width()));
    pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
  } else {
    pango_layout_set_width(layout, -1);
  }

  LaidOutText out;
  out.underline = primary.underline;
  out.strikeout = primary.strikeout;
  for (GSList* node = pango_layout_get_lines_readonly(layout); node != nullptr; node = node->next) {
    const auto* line = static_cast<const PangoLayoutLine*>(node->data);
    PangoRectangle logical;
    pango_layout_line_get_extents(const_cast<PangoLayoutLine*>(line), nullptr, &logical);
    const float ascent = static_cast<float>(-logical.y) / PANGO_SCALE;
    const float descent = static_cast<float>(logical.y + logical.height) / PANGO_SCALE;
    float width = static_cast<float>(logical.width) / PANGO_SCALE;
    width -= TrailingBlankWidth(line, plain.text);
    const size_t begin = static_cast<size_t>(line->start_index);
    const size_t end = begin + static_cast<size_t>(line->length);
    const TextLine& placed = geometry.Add(out, ascent, descent, std::max(0.0f, width),
                                          SourceOffset(plain, begin), SourceOffset(plain, end));
    float x = placed.left + static_cast<float>(logical.x) / PANGO_SCALE;
    for (GSList* r = line->runs; r != nullptr; r = r->next) {
      const auto* glyph_item = static_cast<const PangoGlyphItem*>(r->data);
      GlyphRun run = ConvertRun(glyph_item, plain.text, x, placed.baseline);
      x = run.x1;
      if (!run.glyphs.empty() || !run.utf8.empty()) out.runs.push_back(std::move(run));
    }
  }
  return out;
}

}  // namespace vantorel::report::text
