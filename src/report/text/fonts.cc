#include "report/text/fonts.h"

#include <pango/pangocairo.h>
#include <pango/pangofc-fontmap.h>

#include <cstdlib>
#include <stdexcept>
#include <tuple>

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
  std::string key(family);
  key += bold ? "|b" : "|-";
  key += italic ? "i|" : "-|";
  key += std::to_string(size);
  auto found = fonts_.find(key);
  if (found != fonts_.end()) return *found->second;

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
  return *fonts_.emplace(std::move(key), std::move(info)).first->second;
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
