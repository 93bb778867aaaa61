// The painter that writes a page's PDF content stream directly: text as glyph ids of the
// embedded fonts placed with their advances, shapes as paths, pictures as image objects written
// once per document. It keeps the graphics state it set, so a table of thousands of cells of a
// few styles costs a few bytes a cell.
//
// Thread-safety: one painter per page, one PdfResources per document, on one thread.
#ifndef VANTOREL_REPORT_PDF_PDF_PAINTER_H_
#define VANTOREL_REPORT_PDF_PDF_PAINTER_H_

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "report/pdf/pdf_file.h"
#include "report/pdf/pdf_fonts.h"
#include "report/render/painter.h"

namespace vantorel::report::pdf {

// What the pages of one document share: the file, its fonts, its pictures and its transparency
// states, each written once.
class PdfResources {
 public:
  explicit PdfResources(PdfFile& file) : file_(file), fonts_(file) {}

  PdfFile& file() { return file_; }
  PdfFonts& fonts() { return fonts_; }

  // The image object for "image", written on first use; 0 when it cannot be embedded.
  uint32_t Image(const std::shared_ptr<const ImageData>& image);

  // The graphics state object setting fill ("stroking" false) or stroke opacity "alpha".
  uint32_t Opacity(uint8_t alpha, bool stroking);

  // Writes what is written last: the fonts and the graphics states.
  void WriteAll();

 private:
  PdfFile& file_;
  PdfFonts fonts_;
  std::unordered_map<const ImageData*, uint32_t> images_;
  std::vector<std::shared_ptr<const ImageData>> kept_;  // so no address is reused meanwhile
  std::map<uint16_t, uint32_t> opacities_;              // alpha | stroking << 8 → object
};

class PdfPainter final : public render::Painter {
 public:
  // A page "height" points tall: the content puts the origin at its top left, y down.
  PdfPainter(PdfResources& resources, double height);

  void Fill(const RectF& box, float radius, const Color& color) override;
  void ShowRun(const text::GlyphRun& run, float x, float y, const Color& color,
               const RectF& bounds) override;
  void ShowTurnedText(const text::LaidOutText& laid_out, const TextStyle& style, const RectF& box,
                      int rotation, bool clip, float y) override;
  void BeginGroup(const RectF& clip) override;
  void EndGroup() override;
  void DrawImage(const ImageItem& item, const std::shared_ptr<const ImageData>& image) override;
  void DrawBars(const BarcodeSymbol& symbol, double x, double y, double sx, double sy,
                const Color& color) override;
  void Flush() override;

  // The content stream so far (call Flush first).
  const std::string& content() const { return out_; }

  // The page's resource dictionary entries, without brackets.
  std::string Resources() const;

 protected:
  void StrokeShape(const Shape& shape, const Stroke& stroke, cairo_line_cap_t cap,
                   const RectF& bounds) override;

 private:
  // The graphics state this content has set; negative or absent: not known, set it again.
  struct State {
    int fill = -1, stroke = -1;  // packed RGB
    uint8_t fill_alpha = 255, stroke_alpha = 255;
    float width = -1;
    int dash = -1;  // LineStyle, with the width it was set for
    float dash_width = -1;
    int cap = -1;
  };

  void Save();
  void Restore();
  void LeaveText();
  void CloseArray();
  void SetFill(const Color& color);
  void SetStroke(const Stroke& stroke, cairo_line_cap_t cap);
  void SetOpacity(uint8_t alpha, bool stroking);
  void AddPath(const RectF& box, float radius);
  void Number(double value) {
    AppendNumber(out_, value);
    out_ += ' ';
  }
  void Glyph(const FontUse& font, uint32_t glyph, double x, double y);
  void MarkedText(const std::string& utf8);

  PdfResources& resources_;
  std::string out_;
  State state_;
  std::vector<State> saved_;
  std::set<uint32_t> fonts_, images_, opacities_;

  // Text object state.
  bool in_text_ = false;
  bool in_array_ = false;   // within "[…]TJ"
  bool in_string_ = false;  // within "(…)" of that array
  int font_ = -1;           // the font selected with Tf
  bool in_line_ = false;    // a text matrix is set for the glyphs that follow
  FontUse line_font_;
  double line_x_ = 0, line_y_ = 0;
  double pen_ = 0;  // thousandths of the font size from the line's origin
};

}  // namespace vantorel::report::pdf

#endif  // VANTOREL_REPORT_PDF_PDF_PAINTER_H_
