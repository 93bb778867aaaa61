// The general path: a PangoLayout (font fallback, Devanagari and other complex scripts, rich
// text, tabs) converted into glyph runs of our own form so drawing is the same for every text.
#include <pango/pangocairo.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "report/text/layout_paths.h"
#include "unicode/utf8.h"

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

// The attributes of bytes [begin, end) of "plain", at offsets from "begin"; no line breaks
// inside the stretches "kept" (in order).
PangoAttrList* Attributes(const PlainText& plain, const TextStyle& style, size_t begin, size_t end,
                          const std::vector<KeptSpan>& kept) {
  PangoAttrList* list = pango_attr_list_new();
  const auto insert = [&](PangoAttribute* attribute, size_t from, size_t to) {
    from = std::max(from, begin);
    to = std::min(to, end);
    if (from >= to) {
      pango_attribute_destroy(attribute);
      return;
    }
    Insert(list, attribute, static_cast<uint32_t>(from - begin), static_cast<uint32_t>(to - begin));
  };
  // A break inside a word is for codes and numbers too long for their box; a hyphen there would
  // read as part of the value.
  pango_attr_list_insert(list, pango_attr_insert_hyphens_new(FALSE));
  // Pango would break "VSI/" | "24-25/0007"; a sign and the digit after it are kept together as
  // the fast path keeps them (neither a line break nor, for an overlong word, a split).
  const std::string_view text = std::string_view(plain.text).substr(0, end);
  for (size_t i = text.find_first_of("-/", begin); i != std::string_view::npos;
       i = text.find_first_of("-/", i + 1)) {
    if (!NumberJoinsAt(plain.text, i + 1)) continue;
    size_t digit_end = i + 1;
    unicode::NextCodePoint(plain.text, digit_end);
    insert(pango_attr_allow_breaks_new(FALSE), i, digit_end);
  }
  const auto first_kept =
      std::upper_bound(kept.begin(), kept.end(), begin,
                       [](size_t offset, const KeptSpan& span) { return offset < span.end; });
  for (auto span = first_kept; span != kept.end() && span->begin < end; ++span) {
    insert(pango_attr_allow_breaks_new(FALSE), span->begin, span->end);
  }
  if (style.char_spacing != 0) {
    pango_attr_list_insert(
        list, pango_attr_letter_spacing_new(static_cast<int>(style.char_spacing * PANGO_SCALE)));
  }
  // Spans are in order and do not overlap: the first that reaches past "begin" is found by halves.
  const auto first =
      std::upper_bound(plain.spans.begin(), plain.spans.end(), begin,
                       [](size_t offset, const RichSpan& span) { return offset < span.end; });
  for (auto span = first; span != plain.spans.end() && span->begin < end; ++span) {
    if (span->bold) insert(pango_attr_weight_new(PANGO_WEIGHT_BOLD), span->begin, span->end);
    if (span->italic) insert(pango_attr_style_new(PANGO_STYLE_ITALIC), span->begin, span->end);
    if (span->underline) {
      insert(pango_attr_underline_new(PANGO_UNDERLINE_SINGLE), span->begin, span->end);
    }
    if (span->has_color) {
      insert(pango_attr_foreground_new(static_cast<guint16>(span->color.r * 257),
                                       static_cast<guint16>(span->color.g * 257),
                                       static_cast<guint16>(span->color.b * 257)),
             span->begin, span->end);
    }
    if (span->size > 0) {
      insert(pango_attr_size_new_absolute(static_cast<int>(span->size * PANGO_SCALE)), span->begin,
             span->end);
    }
    if (!span->face.empty()) {
      insert(pango_attr_family_new(span->face.c_str()), span->begin, span->end);
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
GlyphRun ConvertRun(const PangoGlyphItem* glyph_item, std::string_view text, float x,
                    float baseline) {
  const PangoItem* item = glyph_item->item;
  const PangoGlyphString* glyphs = glyph_item->glyphs;
  GlyphRun run;
  run.font = ScaledFont(pango_cairo_font_get_scaled_font(PANGO_CAIRO_FONT(item->analysis.font)));
  run.utf8.assign(
      text.substr(static_cast<size_t>(item->offset), static_cast<size_t>(item->length)));
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
float TrailingBlankWidth(const PangoLayoutLine* line, std::string_view text) {
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

// Where a window of a long text may start (see LayOutWithPango).
enum class WindowStarts {
  kNowhere,     // right-to-left text: a paragraph's direction may come from far before a line
  kAnyLine,     // Latin and characters common to all scripts only
  kScriptLine,  // other scripts: at a line that starts with a character of a script of its own
};

bool IsRightToLeft(int32_t c) {
  return (c >= 0x0590 && c <= 0x08FF) || (c >= 0xFB1D && c <= 0xFDFF) ||
         (c >= 0xFE70 && c <= 0xFEFF) || (c >= 0x10800 && c <= 0x10FFF) ||
         (c >= 0x1E800 && c <= 0x1EFFF) || c == 0x200F || c == 0x202B || c == 0x202E || c == 0x2067;
}

// True when "c" belongs to a script of its own, rather than taking the script of the text
// around it as digits, spaces, punctuation and marks do.
bool HasOwnScript(int32_t c) {
  if (c < 0) return false;
  const GUnicodeScript script = g_unichar_get_script(static_cast<gunichar>(c));
  return script != G_UNICODE_SCRIPT_COMMON && script != G_UNICODE_SCRIPT_INHERITED &&
         script != G_UNICODE_SCRIPT_UNKNOWN;
}

WindowStarts HowWindowsStart(std::string_view text) {
  WindowStarts starts = WindowStarts::kAnyLine;
  for (size_t i = 0; i < text.size();) {
    if (static_cast<uint8_t>(text[i]) < 0x80) {
      ++i;
      continue;
    }
    const int32_t c = unicode::NextCodePoint(text, i);
    if (IsRightToLeft(c)) return WindowStarts::kNowhere;
    if (HasOwnScript(c) &&
        g_unichar_get_script(static_cast<gunichar>(c)) != G_UNICODE_SCRIPT_LATIN) {
      starts = WindowStarts::kScriptLine;
    }
  }
  return starts;
}

// Whether a window may start at byte "at" of "text", a line start.
bool WindowMayStartAt(std::string_view text, size_t at, WindowStarts starts) {
  if (starts == WindowStarts::kAnyLine) return true;
  // Each paragraph starts afresh.
  if (at > 0 && (text[at - 1] == '\n' || text[at - 1] == '\r')) return true;
  size_t i = at;
  if (static_cast<uint8_t>(text[i]) < 0x80) {
    return (text[i] >= 'A' && text[i] <= 'Z') || (text[i] >= 'a' && text[i] <= 'z');
  }
  return HasOwnScript(unicode::NextCodePoint(text, i));
}

// Gives "layout" bytes [begin, end) of "plain" and the style's attributes for them.
void SetPiece(PangoLayout* layout, const PlainText& plain, const TextStyle& style, size_t begin,
              size_t end, const std::vector<KeptSpan>& kept) {
  const std::unique_ptr<PangoAttrList, AttrListUnref> attributes(
      Attributes(plain, style, begin, end, kept));
  pango_layout_set_attributes(layout, attributes.get());
  pango_layout_set_text(layout, plain.text.data() + begin, static_cast<int>(end - begin));
}

// Adds the first "count" lines of "layout", which holds "plain" from byte "begin" on, to "out".
void AddLines(PangoLayout* layout, const PlainText& plain, size_t begin, size_t count,
              const LineGeometry& geometry, LaidOutText& out) {
  const std::string_view piece(plain.text.data() + begin, plain.text.size() - begin);
  GSList* node = pango_layout_get_lines_readonly(layout);
  for (size_t n = 0; n < count && node != nullptr; ++n, node = node->next) {
    const auto* line = static_cast<const PangoLayoutLine*>(node->data);
    PangoRectangle logical;
    pango_layout_line_get_extents(const_cast<PangoLayoutLine*>(line), nullptr, &logical);
    const float ascent = static_cast<float>(-logical.y) / PANGO_SCALE;
    const float descent = static_cast<float>(logical.y + logical.height) / PANGO_SCALE;
    float width = static_cast<float>(logical.width) / PANGO_SCALE;
    width -= TrailingBlankWidth(line, piece);
    const size_t start = begin + static_cast<size_t>(line->start_index);
    const size_t end = start + static_cast<size_t>(line->length);
    const TextLine& placed = geometry.Add(out, ascent, descent, std::max(0.0f, width),
                                          SourceOffset(plain, start), SourceOffset(plain, end));
    float x = placed.left + static_cast<float>(logical.x) / PANGO_SCALE;
    for (GSList* r = line->runs; r != nullptr; r = r->next) {
      const auto* glyph_item = static_cast<const PangoGlyphItem*>(r->data);
      GlyphRun run = ConvertRun(glyph_item, piece, x, placed.baseline);
      x = run.x1;
      if (!run.glyphs.empty() || !run.utf8.empty()) out.runs.push_back(std::move(run));
    }
  }
}

// The stretches of "plain" kept whole that fit on a line of "width" points, each measured on
// its own with its attributes, as Pango measures a line.
std::vector<KeptSpan> KeptFitting(const PlainText& plain, const TextStyle& style,
                                  const PangoFontDescription* description, PangoLayout* layout,
                                  float width) {
  std::vector<KeptSpan> kept = FindKeptSpans(plain.text);
  if (kept.empty()) return kept;
  PangoLayout* measure = pango_layout_new(pango_layout_get_context(layout));
  pango_layout_set_font_description(measure, description);
  std::erase_if(kept, [&](const KeptSpan& span) {
    SetPiece(measure, plain, style, span.begin, span.end, {});
    PangoRectangle logical;
    pango_layout_get_extents(measure, nullptr, &logical);
    return logical.width > PangoUnits(width);
  });
  g_object_unref(measure);
  return kept;
}

}  // namespace

LaidOutText LayOutWithPango(const PlainText& plain, const TextStyle& style, const FontInfo& primary,
                            const LineGeometry& geometry) {
  ThreadFonts& fonts = ThreadFonts::Current();
  PangoLayout* layout = fonts.layout();
  const std::unique_ptr<PangoFontDescription, FontDescriptionFree> description(
      ThreadFonts::Describe(style.font_family, style.bold, style.italic, style.size));
  pango_layout_set_font_description(layout, description.get());
  pango_layout_set_alignment(layout, PANGO_ALIGN_LEFT);
  pango_layout_set_justify(layout, style.halign == HAlign::kJustify);
  const bool wraps = style.wrap && geometry.bounded();
  if (wraps) {
    pango_layout_set_width(layout, PangoUnits(geometry.width()));
    pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
  } else {
    pango_layout_set_width(layout, -1);
  }
  const std::vector<KeptSpan> kept =
      wraps ? KeptFitting(plain, style, description.get(), layout, geometry.width())
            : std::vector<KeptSpan>();

  LaidOutText out;
  out.underline = primary.underline;
  out.strikeout = primary.strikeout;
  const size_t size = plain.text.size();
  // Pango's time for a paragraph grows with the square of its length (for each line it looks
  // through the rest of the paragraph for a place to break), so a long text that wraps is laid
  // out a window at a time: each window starts at a line start and keeps its lines but the last
  // few, which the window's end may have changed; the next window starts where they did. A
  // line's breaks depend only on the text near it, so the lines are those of the whole text —
  // but for the script of common characters (digits, punctuation), which comes from the text
  // before them: in text of scripts other than Latin a window starts at a line whose first
  // character has a script of its own where it can (where no line can, its common characters
  // take their script as they do on the next page, whose text also starts at a line), and
  // right-to-left text is laid out whole.
  constexpr size_t kSettledLines = 4;
  // About sixteen lines, at 0.4 em a character.
  const size_t window =
      std::max<size_t>(512, static_cast<size_t>(16 * std::max(1.0f, geometry.width()) /
                                                std::max(0.1f, style.size * 0.4f)));
  const WindowStarts starts = wraps && size > std::max<size_t>(4096, 2 * window)
                                  ? HowWindowsStart(plain.text)
                                  : WindowStarts::kNowhere;
  if (starts == WindowStarts::kNowhere) {
    SetPiece(layout, plain, style, 0, size, kept);
    AddLines(layout, plain, 0, SIZE_MAX, geometry, out);
    return out;
  }
  size_t begin = 0;
  size_t length = window;
  while (begin < size) {
    size_t end = std::min(size, begin + length);
    while (end < size && (static_cast<uint8_t>(plain.text[end]) & 0xC0) == 0x80) ++end;
    SetPiece(layout, plain, style, begin, end, kept);
    // Letters and digits only: no word to keep whole, so breaking between characters straight
    // away gives the same lines without first looking for a space to the window's end.
    const bool one_word = std::all_of(plain.text.begin() + static_cast<ptrdiff_t>(begin),
                                      plain.text.begin() + static_cast<ptrdiff_t>(end), [](char c) {
                                        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') ||
                                               (c >= 'a' && c <= 'z');
                                      });
    pango_layout_set_wrap(layout, one_word ? PANGO_WRAP_CHAR : PANGO_WRAP_WORD_CHAR);
    const size_t lines = static_cast<size_t>(pango_layout_get_line_count(layout));
    if (end == size) {
      AddLines(layout, plain, begin, lines, geometry, out);
      break;
    }
    if (lines <= kSettledLines) {
      length *= 2;
      continue;
    }
    // The line the next window starts with.
    std::vector<size_t> line_begins;
    for (GSList* node = pango_layout_get_lines_readonly(layout); node != nullptr;
         node = node->next) {
      line_begins.push_back(
          begin +
          static_cast<size_t>(static_cast<const PangoLayoutLine*>(node->data)->start_index));
    }
    size_t next = lines - kSettledLines;
    while (next > 1 && !WindowMayStartAt(plain.text, line_begins[next], starts)) --next;
    if (!WindowMayStartAt(plain.text, line_begins[next], starts)) next = lines - kSettledLines;
    AddLines(layout, plain, begin, next, geometry, out);
    begin = line_begins[next];
    length = window;
  }
  return out;
}

}  // namespace vantorel::report::text
