#include "report/text/fonts.h"

#include <hb-ot.h>
#include <pango/pangocairo.h>
#include <pango/pangofc-fontmap.h>

#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <stdexcept>
#include <tuple>
#include <vector>

namespace vantorel::report::text {
namespace {

// Aliases in three steps, the order fontconfig's own configuration uses: named families get
// their metric-compatible replacement and a generic family, any other family gets sans-serif,
// then each generic family expands to our fonts, Devanagari and the rupee sign included.
constexpr char kConfigXml[] = R"(<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd">
<fontconfig>
  <cachedir>/var/cache/fontconfig</cachedir>
  <cachedir prefix="xdg">fontconfig</cachedir>
  <alias binding="same"><family>Arial</family>
    <prefer><family>Liberation Sans</family></prefer><default><family>sans-serif</family></default></alias>
  <alias binding="same"><family>Helvetica</family>
    <prefer><family>Liberation Sans</family></prefer><default><family>sans-serif</family></default></alias>
  <alias binding="same"><family>MS Sans Serif</family>
    <prefer><family>Liberation Sans</family></prefer><default><family>sans-serif</family></default></alias>
  <alias binding="same"><family>Tahoma</family>
    <prefer><family>Liberation Sans</family></prefer><default><family>sans-serif</family></default></alias>
  <alias binding="same"><family>Verdana</family>
    <prefer><family>Liberation Sans</family></prefer><default><family>sans-serif</family></default></alias>
  <alias binding="same"><family>Calibri</family>
    <prefer><family>Liberation Sans</family></prefer><default><family>sans-serif</family></default></alias>
  <alias binding="same"><family>Times New Roman</family>
    <prefer><family>Liberation Serif</family></prefer><default><family>serif</family></default></alias>
  <alias binding="same"><family>Times</family>
    <prefer><family>Liberation Serif</family></prefer><default><family>serif</family></default></alias>
  <alias binding="same"><family>Liberation Serif</family><default><family>serif</family></default></alias>
  <alias binding="same"><family>Noto Serif</family><default><family>serif</family></default></alias>
  <alias binding="same"><family>DejaVu Serif</family><default><family>serif</family></default></alias>
  <alias binding="same"><family>Courier New</family>
    <prefer><family>Liberation Mono</family></prefer><default><family>monospace</family></default></alias>
  <alias binding="same"><family>Courier</family>
    <prefer><family>Liberation Mono</family></prefer><default><family>monospace</family></default></alias>
  <alias binding="same"><family>Liberation Mono</family><default><family>monospace</family></default></alias>
  <alias binding="same"><family>DejaVu Sans Mono</family><default><family>monospace</family></default></alias>
  <match target="pattern">
    <test qual="all" name="family" compare="not_eq"><string>sans-serif</string></test>
    <test qual="all" name="family" compare="not_eq"><string>serif</string></test>
    <test qual="all" name="family" compare="not_eq"><string>monospace</string></test>
    <edit name="family" mode="append_last"><string>sans-serif</string></edit>
  </match>
  <alias binding="same"><family>sans-serif</family>
    <prefer><family>Liberation Sans</family><family>Noto Sans Devanagari</family><family>DejaVu Sans</family></prefer></alias>
  <alias binding="same"><family>serif</family>
    <prefer><family>Liberation Serif</family><family>Noto Serif Devanagari</family><family>DejaVu Serif</family></prefer></alias>
  <alias binding="same"><family>monospace</family>
    <prefer><family>Liberation Mono</family><family>DejaVu Sans Mono</family><family>Noto Sans Devanagari</family></prefer></alias>
</fontconfig>
)";

struct FcConfigDeleter {
  void operator()(FcConfig* config) const { ::FcConfigDestroy(config); }
};

FcConfig* BuildConfig() {
  std::unique_ptr<FcConfig, FcConfigDeleter> config(FcConfigCreate());
  if (!config || !FcConfigParseAndLoadFromMemory(
                     config.get(), reinterpret_cast<const FcChar8*>(kConfigXml), FcTrue)) {
    throw std::runtime_error("cannot build the private font configuration");
  }
  // A missing folder is not fatal: the aliases fall through to whatever fonts remain.
  for (const char* dir : kFontDirs) {
    FcConfigAppFontAddDir(config.get(), reinterpret_cast<const FcChar8*>(dir));
  }
  if (const char* extra = std::getenv("VANTOREL_FONT_DIR"); extra != nullptr && *extra != '\0') {
    FcConfigAppFontAddDir(config.get(), reinterpret_cast<const FcChar8*>(extra));
  }
  return config.release();
}

}  // namespace

FcConfig* FontConfig() {
  // Built once and kept for the life of the process: font maps on every thread refer to it.
  static FcConfig* const config = BuildConfig();
  return config;
}

bool FontInfo::IsCovered(uint32_t code_point) const {
  hb_codepoint_t glyph = 0;
  return hb_font_get_nominal_glyph(hb, code_point, &glyph) != 0;
}

namespace {

// FontInfo::plain_without_letters of "font": the glyphs of the lookups HarfBuzz's plan for a text
// of digits and signs applies (its script is then unset) are left out, and so is everything when
// the font has kerning or layout tables HarfBuzz reads besides GSUB and GPOS.
void FindPlainWithoutLetters(FontInfo& font) {
  std::bitset<128>& plain = font.plain_without_letters;
  std::vector<std::pair<hb_codepoint_t, hb_codepoint_t>> kerned;
  hb_face_t* face = hb_font_get_face(font.hb);
  if (!hb_ot_layout_has_positioning(face)) return;
  for (hb_tag_t table : {HB_TAG('k', 'e', 'r', 'x'), HB_TAG('m', 'o', 'r', 'x'),
                         HB_TAG('m', 'o', 'r', 't'), HB_TAG('t', 'r', 'a', 'k')}) {
    hb_blob_t* blob = hb_face_reference_table(face, table);
    const unsigned length = hb_blob_get_length(blob);
    hb_blob_destroy(blob);
    if (length > 0) return;
  }
  hb_set_t* touched = hb_set_create();
  // HarfBuzz kerns a text without letters by the old 'kern' table, when the font has one: its
  // kerned pairs are kept apart. Only the plain pair lists of OpenType's table are read.
  hb_blob_t* kern = hb_face_reference_table(face, HB_TAG('k', 'e', 'r', 'n'));
  unsigned kern_length = 0;
  const auto* bytes = reinterpret_cast<const uint8_t*>(hb_blob_get_data(kern, &kern_length));
  const auto u16 = [&](size_t at) {
    return at + 2 <= kern_length ? static_cast<unsigned>(bytes[at] << 8 | bytes[at + 1]) : 0u;
  };
  bool readable = kern_length == 0 || (kern_length >= 4 && u16(0) == 0);
  size_t at = 4;
  for (unsigned t = 0; readable && kern_length > 0 && t < u16(2); ++t) {
    const unsigned length = u16(at + 2), coverage = u16(at + 4);
    if (coverage >> 8 != 0 || length < 14 || at + length > kern_length) {
      readable = false;
      break;
    }
    const unsigned pairs = u16(at + 6);
    for (unsigned p = 0; p < pairs && at + 14 + p * 6 + 6 <= at + length; ++p) {
      const size_t pair = at + 14 + p * 6;
      if (u16(pair + 4) != 0) kerned.emplace_back(u16(pair), u16(pair + 2));
    }
    at += length;
  }
  hb_blob_destroy(kern);
  if (!readable) {
    hb_set_destroy(touched);
    return;
  }
  hb_buffer_t* buffer = hb_buffer_create();
  hb_buffer_add_utf8(buffer, "0", 1, 0, 1);
  hb_buffer_set_direction(buffer, HB_DIRECTION_LTR);
  hb_buffer_set_language(buffer, hb_language_from_string("en", 2));
  hb_buffer_guess_segment_properties(buffer);
  hb_segment_properties_t properties;
  hb_buffer_get_segment_properties(buffer, &properties);
  hb_buffer_destroy(buffer);
  hb_shape_plan_t* plan = hb_shape_plan_create_cached(face, &properties, nullptr, 0, nullptr);
  hb_set_t* lookups = hb_set_create();
  for (hb_tag_t table : {HB_OT_TAG_GSUB, HB_OT_TAG_GPOS}) {
    hb_set_clear(lookups);
    hb_ot_shape_plan_collect_lookups(plan, table, lookups);
    hb_codepoint_t lookup = HB_SET_VALUE_INVALID;
    while (hb_set_next(lookups, &lookup)) {
      hb_ot_layout_lookup_collect_glyphs(face, table, lookup, touched, touched, touched, touched);
    }
  }
  std::array<hb_codepoint_t, 128> glyphs{};
  for (uint32_t c = 0x20; c < 0x7F; ++c) {
    const bool letter = (c | 0x20) >= 'a' && (c | 0x20) <= 'z';
    plain[c] = !letter && font.ascii[c] && hb_font_get_nominal_glyph(font.hb, c, &glyphs[c]) &&
               !hb_set_has(touched, glyphs[c]);
  }
  for (const auto& [left, right] : kerned) {
    for (uint32_t a = 0x20; a < 0x7F; ++a) {
      if (!plain[a] || glyphs[a] != left) continue;
      for (uint32_t b = 0x20; b < 0x7F; ++b) {
        if (plain[b] && glyphs[b] == right) font.kerned_pairs[a * 128 + b] = true;
      }
    }
  }
  hb_set_destroy(lookups);
  hb_set_destroy(touched);
  hb_shape_plan_destroy(plan);
}

}  // namespace

ThreadFonts& ThreadFonts::Current() {
  thread_local ThreadFonts fonts;
  return fonts;
}

ThreadFonts::ThreadFonts() : map_(pango_cairo_font_map_new()) {
  pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(map_.get()), FontConfig());
  context_.reset(pango_font_map_create_context(map_.get()));
  pango_cairo_context_set_resolution(context_.get(), 72);
  cairo_font_options_t* options = cairo_font_options_create();
  cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
  pango_cairo_context_set_font_options(context_.get(), options);
  cairo_font_options_destroy(options);
  // Unrounded positions: the same advances at every resolution, and the same as our own shaping.
  pango_context_set_round_glyph_positions(context_.get(), FALSE);
  pango_context_set_language(context_.get(), pango_language_from_string("en"));
  pango_context_set_base_dir(context_.get(), PANGO_DIRECTION_LTR);
  layout_.reset(pango_layout_new(context_.get()));
  pango_layout_set_auto_dir(layout_.get(), FALSE);
}

PangoFontDescription* ThreadFonts::Describe(std::string_view family, bool bold, bool italic,
                                            float size) {
  PangoFontDescription* description = pango_font_description_new();
  const std::string name(family.empty() ? std::string_view("sans-serif") : family);
  pango_font_description_set_family(description, name.c_str());
  pango_font_description_set_weight(description, bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
  pango_font_description_set_style(description, italic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
  pango_font_description_set_absolute_size(description, size > 0 ? size * PANGO_SCALE : 1);
  return description;
}

const FontInfo& ThreadFonts::Primary(std::string_view family, bool bold, bool italic, float size) {
  // Called for every text measured, fitted and drawn, nearly always for the font of the call
  // before: that one is answered without building a key.
  if (last_ != nullptr && last_bold_ == bold && last_italic_ == italic && last_size_ == size &&
      last_family_ == family) {
    return *last_;
  }
  std::string key(family);
  key += '\0';
  key += static_cast<char>(bold | italic << 1);
  char size_bytes[sizeof size];
  std::memcpy(size_bytes, &size, sizeof size);
  key.append(size_bytes, sizeof size);
  auto found = fonts_.find(key);
  if (found == fonts_.end()) {
    found = fonts_.emplace(std::move(key), LoadFont(family, bold, italic, size)).first;
  }
  last_ = found->second.get();
  last_family_.assign(family);
  last_bold_ = bold;
  last_italic_ = italic;
  last_size_ = size;
  return *last_;
}

std::unique_ptr<FontInfo> ThreadFonts::LoadFont(std::string_view family, bool bold, bool italic,
                                                float size) {
  auto info = std::make_unique<FontInfo>();
  PangoFontDescription* description = Describe(family, bold, italic, size);
  info->font.reset(pango_font_map_load_font(map_.get(), context_.get(), description));
  pango_font_description_free(description);
  if (!info->font) throw std::runtime_error("no font available for " + std::string(family));
  info->hb = pango_font_get_hb_font(info->font.get());
  info->scaled = ScaledFont(pango_cairo_font_get_scaled_font(PANGO_CAIRO_FONT(info->font.get())));
  // Pango gives a line of one font the ascent and descent of the font's Cairo extents.
  cairo_font_extents_t extents;
  cairo_scaled_font_extents(info->scaled.get(), &extents);
  info->ascent = static_cast<float>(extents.ascent);
  info->descent = static_cast<float>(extents.descent);
  std::tie(info->underline, info->strikeout) = Decorations(info->font.get());
  for (uint32_t c = 0x20; c < 0x7F; ++c) {
    info->ascii[c] = info->IsCovered(c);
    hb_codepoint_t glyph = 0;
    if (info->ascii[c] && hb_font_get_nominal_glyph(info->hb, c, &glyph)) {
      info->ascii_advance[c] =
          static_cast<float>(hb_font_get_glyph_h_advance(info->hb, glyph)) / PANGO_SCALE;
    }
  }
  FindPlainWithoutLetters(*info);
  return info;
}

std::pair<DecorationLine, DecorationLine> ThreadFonts::Decorations(PangoFont* font) {
  auto found = decorations_.find(font);
  if (found != decorations_.end()) return found->second.lines;
  PangoFontMetrics* metrics = pango_font_get_metrics(font, nullptr);
  const auto points = [](int units) { return static_cast<float>(units) / PANGO_SCALE; };
  // Pango measures both positions upwards to the line's top edge.
  DecorationLine underline{-points(pango_font_metrics_get_underline_position(metrics)),
                           points(pango_font_metrics_get_underline_thickness(metrics))};
  DecorationLine strikeout{-points(pango_font_metrics_get_strikethrough_position(metrics)),
                           points(pango_font_metrics_get_strikethrough_thickness(metrics))};
  pango_font_metrics_unref(metrics);
  FontDecorations entry{GObjectPtr<PangoFont>(PANGO_FONT(g_object_ref(font))),
                        {underline, strikeout}};
  decorations_.emplace(font, std::move(entry));
  return {underline, strikeout};
}

}  // namespace vantorel::report::text
