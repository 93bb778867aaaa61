// The fonts every text goes through: one private fontconfig configuration for the process (the
// fonts we install, our aliases, nothing else from the machine) and, per thread, a Pango font map
// and context set for deterministic layout (72 dpi, no hinting, hint metrics off, unrounded glyph
// positions).
//
// Thread-safety: FontConfig() may be called from any thread and returns an immutable
// configuration. ThreadFonts::Current() is the calling thread's own object; it must not be
// handed to another thread.
#ifndef VANTOREL_REPORT_TEXT_FONTS_H_
#define VANTOREL_REPORT_TEXT_FONTS_H_

#include <fontconfig/fontconfig.h>
#include <hb.h>
#include <pango/pango.h>

#include <array>
#include <bitset>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "report/text/handles.h"
#include "report/text/layout.h"

namespace vantorel::report::text {

// The folders the private configuration reads fonts from, in order. VANTOREL_FONT_DIR, when set,
// adds one more at the end.
inline constexpr const char* kFontDirs[] = {
    "/usr/share/fonts/truetype/liberation2",
    "/usr/share/fonts/truetype/noto",
    "/usr/share/fonts/truetype/dejavu",
};

// The process's private font configuration, built on first use and never changed afterwards.
FcConfig* FontConfig();

// One family, weight, slant and size as the fast layout path uses it: the font Pango would pick
// first for the family, its HarfBuzz font (for shaping) and its Cairo scaled font (for drawing).
struct FontInfo {
  GObjectPtr<PangoFont> font;
  hb_font_t* hb = nullptr;  // owned by "font"; its scale is points × PANGO_SCALE
  ScaledFont scaled;
  float ascent = 0;   // points above the baseline Pango gives a line of this font
  float descent = 0;  // points below it
  DecorationLine underline;
  DecorationLine strikeout;
  std::bitset<128> ascii;                  // which ASCII characters the font has, looked up once
  std::array<float, 128> ascii_advance{};  // their advances in points, kerning aside
  // ASCII characters that shape as their own glyph at its own advance in a text without
  // letters: no substitution or positioning HarfBuzz applies to such a text touches them, and
  // the font has no layout tables but GSUB, GPOS and a plain 'kern' table. Digits, dates and
  // amounts mostly are so in our fonts, and are shaped without HarfBuzz (ShapeWithoutLookups).
  std::bitset<128> plain_without_letters;
  // Pairs of those characters (first × 128 + second) that the font's old 'kern' table kerns.
  std::bitset<128 * 128> kerned_pairs;
  bool IsCovered(uint32_t code_point) const;
};

class ThreadFonts {
 public:
  // The calling thread's fonts, created on first use.
  static ThreadFonts& Current();

  ThreadFonts(const ThreadFonts&) = delete;
  ThreadFonts& operator=(const ThreadFonts&) = delete;

  PangoContext* context() const { return context_.get(); }

  // The thread's one reusable layout; callers set everything they rely on.
  PangoLayout* layout() const { return layout_.get(); }

  // A new font description for the arguments; the caller frees it.
  static PangoFontDescription* Describe(std::string_view family, bool bold, bool italic,
                                        float size);

  // The font for "family" (a name or a comma-separated list) at "size" points. Cached for the
  // thread's lifetime.
  const FontInfo& Primary(std::string_view family, bool bold, bool italic, float size);

  // Underline and strikeout metrics of any Pango font of this thread. Cached.
  std::pair<DecorationLine, DecorationLine> Decorations(PangoFont* font);

 private:
  ThreadFonts();

  // A new FontInfo for the arguments.
  std::unique_ptr<FontInfo> LoadFont(std::string_view family, bool bold, bool italic, float size);

  // Declared first so it goes last: the fonts below hold references into it.
  GObjectPtr<PangoFontMap> map_;
  GObjectPtr<PangoContext> context_;
  GObjectPtr<PangoLayout> layout_;
  std::unordered_map<std::string, std::unique_ptr<FontInfo>> fonts_;  // family, style, size bits
  // The font of the last Primary call and its arguments.
  const FontInfo* last_ = nullptr;
  std::string last_family_;
  bool last_bold_ = false;
  bool last_italic_ = false;
  float last_size_ = 0;
  struct FontDecorations {
    GObjectPtr<PangoFont> font;  // held so the key cannot be reused by another font
    std::pair<DecorationLine, DecorationLine> lines;
  };
  std::unordered_map<PangoFont*, FontDecorations> decorations_;
};

}  // namespace vantorel::report::text

#endif  // VANTOREL_REPORT_TEXT_FONTS_H_
