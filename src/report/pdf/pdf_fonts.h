// The fonts of one PDF: every font file a document's text uses becomes one composite font
// (Type 0, two-byte glyph ids, CIDFontType2), embedded as a subset of the glyphs shown with
// their own ids kept, their widths, and a Unicode map so the text extracts as it was written.
// A glyph that must extract as something other than its first use (a conjunct, a ligature, a
// glyph shown for different texts) is marked on the page instead (see PdfPainter).
//
// Thread-safety: one PdfFonts per PDF being written; the font files behind them are read once
// per process and shared.
#ifndef VANTOREL_REPORT_PDF_PDF_FONTS_H_
#define VANTOREL_REPORT_PDF_PDF_FONTS_H_

#include <cairo.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "report/pdf/pdf_file.h"
#include "report/text/handles.h"

namespace vantorel::report::pdf {

struct FontFace;  // a font file's face, read once per process

// A font as the page uses it: its resource and the text matrix that draws its glyphs at their
// size (text space y up, page space y down).
struct FontUse {
  uint32_t index = 0;  // shown as /F<index>
  uint32_t object = 0;
  double a = 0, b = 0, c = 0, d = 0;  // the text matrix, less its translation
};

class PdfFonts {
 public:
  explicit PdfFonts(PdfFile& file) : file_(file) {}
  ~PdfFonts();
  PdfFonts(const PdfFonts&) = delete;
  PdfFonts& operator=(const PdfFonts&) = delete;

  // The font for Cairo scaled font "font"; false when its face cannot be embedded (not a
  // TrueType or OpenType file).
  bool Use(cairo_scaled_font_t* font, FontUse& use);

  // The advance of glyph "glyph" of font "index", in thousandths of the font size.
  double Width(uint32_t index, uint32_t glyph);

  // Notes that glyph "glyph" of font "index" is shown for "text". True when the font's Unicode
  // map says "text" for it (newly or already); false when it says something else.
  bool Map(uint32_t index, uint32_t glyph, std::string_view text);

  // Notes that glyph "glyph" of font "index" is shown, whatever it stands for.
  void Show(uint32_t index, uint32_t glyph);

  // Writes every font used, subset to its glyphs shown.
  void WriteAll();

 private:
  struct Embedded {
    std::shared_ptr<const FontFace> face;
    uint32_t object = 0;
    // By glyph id: shown at all, the UTF-8 it extracts as (when "mapped"), its advance.
    std::vector<bool> shown, mapped;
    std::vector<std::string> unicode;
    std::vector<float> widths;  // negative: not looked up yet
  };

  struct ScaledUse {
    ScaledFont keep;  // held, so no other font takes this address while the PDF is made
    FontUse use;      // object 0: the font cannot be embedded
  };

  void WriteFont(const Embedded& font);

  PdfFile& file_;
  std::vector<Embedded> fonts_;
  std::unordered_map<const void*, uint32_t> by_face_;  // FontFace → index
  std::unordered_map<cairo_scaled_font_t*, ScaledUse> by_scaled_;
};

}  // namespace vantorel::report::pdf

#endif  // VANTOREL_REPORT_PDF_PDF_FONTS_H_
