// Turns one band into a block of positioned items for the current row: evaluates its objects'
// texts and conditions, grows stretching texts to fit, moves objects below a grown one down,
// sizes band-height objects, loads pictures and encodes barcodes.
//
// Thread-safety: belongs to one fill.
#ifndef VANTOREL_REPORT_FILL_BAND_RENDERER_H_
#define VANTOREL_REPORT_FILL_BAND_RENDERER_H_

#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "report/compile/compiled_report.h"
#include "report/document/document.h"
#include "report/fill/fill_context.h"

namespace vantorel::report {

// A text whose value is known only at the end of the fill.
struct DeferredText {
  size_t item = 0;  // index in the block's (later the page's) items
  TextTemplatePtr text;
  std::string format;
  bool hide_zero = false;
  bool rich = false;
  std::shared_ptr<Snapshot> snapshot;
};

struct BandBlock {
  float height = 0;
  std::vector<Item> items;  // relative to the block's top left
  std::vector<DeferredText> deferred;
  bool uses_page = false;  // reads the page number: render again if it moves to another page
};

class BandRenderer {
 public:
  BandRenderer(const CompiledReport& report, const std::vector<TextTemplatePtr>& memo_texts,
               FillContext& context, Document& document, std::vector<std::string>& warnings);

  // The band as a block for the current row; an empty optional when its print-when says no.
  std::optional<BandBlock> Render(const CompiledBand& band);

  // The text a template gives, formatted, with hide-zero applied; in a rich text, data is
  // protected from being read as markup.
  std::string TextOf(const expr::TextTemplate& text, const std::string& format, bool hide_zero,
                     bool rich);

  // Splits a block too tall for "height" into a first part that fits and the rest, cutting
  // texts at a line boundary. Objects entirely below the cut move to the rest.
  static BandBlock Split(BandBlock& block, float height, const Document& document);

  // The lowest point any of the block's items reaches; 0 when it has none.
  static float ContentBottom(const BandBlock& block);

 private:
  uint32_t DocumentStyle(uint32_t report_style);
  // The document's index of "image", added on first use.
  uint32_t DocumentImage(const std::shared_ptr<const ImageData>& image);
  bool Visible(const ExpressionPtr& print_when);
  bool UsesPage(const CompiledBand& band);

  const CompiledReport& report_;
  const std::vector<TextTemplatePtr>& memo_texts_;
  FillContext& context_;
  Document& document_;
  std::vector<std::string>& warnings_;
  std::vector<int64_t> styles_;  // report style → document style, -1 until used
  std::map<const CompiledBand*, bool> uses_page_;
  std::unordered_map<const ImageData*, uint32_t> images_;  // into document_.images
};

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_FILL_BAND_RENDERER_H_
