// Turns one band into a block of positioned items for the current row: evaluates its objects'
// texts and conditions, grows stretching texts to fit, moves objects below a grown one down,
// sizes band-height objects, loads pictures and encodes barcodes.
//
// Thread-safety: belongs to one fill.
#ifndef VANTOREL_REPORT_FILL_BAND_RENDERER_H_
#define VANTOREL_REPORT_FILL_BAND_RENDERER_H_

#include <map>
#include <memory>
#include <optional>
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
  const CompiledText* object = nullptr;  // where it came from, for an overflow
  const CompiledBand* band = nullptr;
};

struct BandBlock {
  float height = 0;
  std::vector<Item> items;  // relative to the block's top left
  std::vector<DeferredText> deferred;
  bool uses_page = false;  // reads the page number: render again if it moves to another page
  std::vector<Overflow> overflows;  // texts that do not fit their boxes; pages set when placed
};

// An Overflow of "text" in "band", when the text "item" shows does not fit its box; the page is
// left to whoever places it.
std::optional<Overflow> FindOverflow(const TextItem& item, const TextStyle& style,
                                     const CompiledText& text, const CompiledBand& band);

// A block taller than a page, cut into page-sized pieces one page at a time: the pieces repeated
// BandRenderer::Split calls give. Objects below a cut wait untouched — owing the cuts made
// meanwhile, which they make up in the same order when a cut comes near them — so a band of
// thousands of objects over hundreds of pages costs what its objects cost, not objects × pages.
//
// Thread-safety: belongs to one fill.
class BlockCutter {
 public:
  explicit BlockCutter(BandBlock block);

  // The height of what is left.
  float height() const { return height_; }
  // True when nothing is left: no objects and no height.
  bool empty() const;

  // The piece of what is left that fits "height"; what is left then starts below it.
  BandBlock Cut(float height, const Document& document);

  // What is left, as one block.
  BandBlock Rest();

 private:
  struct Entry {
    size_t index;  // in the block as rendered
    Item item;
    size_t cuts_made = 0;  // of cuts_, applied to it
  };

  void CatchUp(Entry& entry) const;

  std::vector<Entry> near_;     // at or above the next cut, by index
  std::vector<Entry> waiting_;  // below, by top: the first waiting_front_ have come near
  size_t waiting_front_ = 0;
  std::vector<float> cuts_;                            // the heights cut off so far
  std::vector<std::optional<DeferredText>> deferred_;  // by index
  float height_;
  bool uses_page_;
  std::vector<Overflow> overflows_;  // go with the first piece
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
