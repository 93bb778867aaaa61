// The prepared document: pages of positioned draw items, what the fill stage produces and every
// output (PDF, PNG, printer, preview window) draws without filling again. Plain value types: a
// page can be copied, compared, serialised and drawn on any thread.
//
// Compactness matters — a 100,000-row register is a few hundred thousand items — so items keep
// floats and refer to the document's shared tables of text styles, images and barcode symbols by
// index instead of carrying them.
#ifndef VANTOREL_REPORT_DOCUMENT_DOCUMENT_H_
#define VANTOREL_REPORT_DOCUMENT_DOCUMENT_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "report/values/geometry.h"
#include "report/values/metadata.h"
#include "report/values/style.h"

namespace vantorel::report {

// Hashes what operator== compares, for tables that find a style among many.
struct TextStyleHash {
  size_t operator()(const TextStyle& style) const;
};

// A decoded picture, shared by every item that shows it. JPEG files keep their bytes so a PDF can
// embed them unchanged; opaque pictures of other formats with more than two colours carry a JPEG
// twin (quality 100, no chroma subsampling) made once when loaded, which PDFs embed instead of
// recompressing their pixels for every document.
struct ImageData {
  std::string source;           // the file it came from, for messages and the PDF's bookkeeping
  int width = 0, height = 0;    // pixels
  int stride = 0;               // bytes per row of "pixels"
  std::vector<uint8_t> pixels;  // premultiplied ARGB32, native endian (Cairo's layout)
  bool has_alpha = false;
  std::string jpeg;  // JPEG bytes for PDFs: the file's own, or the twin; may be empty
  double dpi_x = 96, dpi_y = 96;
};

// A barcode or QR code as dark rectangles in symbol units (0..width, 0..height); the item scales
// it into its box.
struct BarcodeSymbol {
  std::string symbology;  // "qr", "code128", …: what was asked for
  std::string data;       // what the symbol encodes
  float width = 0, height = 0;
  std::vector<RectF> bars;
  std::string text;       // the human-readable line, when the symbology shows one
  float text_height = 0;  // symbol units reserved under the bars for "text"
};

struct TextItem {
  RectF box;
  uint32_t style = 0;  // index into Document::styles
  std::string text;    // UTF-8; the final text, expressions already evaluated
  friend bool operator==(const TextItem&, const TextItem&) = default;
};

struct LineItem {
  PointF from, to;
  Stroke stroke;
  friend bool operator==(const LineItem&, const LineItem&) = default;
};

struct RectItem {
  RectF box;
  Color fill = Color::None();
  Stroke stroke;  // width 0: no outline
  float corner_radius = 0;
  friend bool operator==(const RectItem&, const RectItem&) = default;
};

struct ImageItem {
  RectF box;
  uint32_t image = 0;  // index into Document::images
  ImageFit fit = ImageFit::kContain;
  friend bool operator==(const ImageItem&, const ImageItem&) = default;
};

struct BarcodeItem {
  RectF box;
  uint32_t symbol = 0;  // index into Document::barcodes
  Color color = Color::Black();
  Color background = Color::None();
  friend bool operator==(const BarcodeItem&, const BarcodeItem&) = default;
};

struct GroupItem;

using Item = std::variant<TextItem, LineItem, RectItem, ImageItem, BarcodeItem, GroupItem>;

// Items drawn inside a clip rectangle.
struct GroupItem {
  RectF clip;
  std::vector<Item> items;
  friend bool operator==(const GroupItem&, const GroupItem&);
};

struct Page {
  SizeF size;  // points
  std::vector<Item> items;
  friend bool operator==(const Page&, const Page&) = default;
};

// A text that does not fit its box, which could not grow to hold it (a text that does not
// stretch, a band that does not, a line that does not wrap): part of it is cut off, or runs
// outside the box when it does not clip. Recorded by the fill, so that whoever prints a
// document can be told (`vantorel render` warns of each).
struct Overflow {
  std::string object;   // the text object's name; empty when it has none
  int line = 0;         // the text object's line in the template file
  std::string band;     // the band it is in: "data band \"Rows\"", "page footer"…
  size_t page = 0;      // the page it is on, from 1
  std::string text;     // the text as printed
  bool across = false;  // too wide (a line longer than the box) rather than too tall
  float needed = 0;     // points: the box's height (width when "across") the text needs
  float available = 0;  // points: the box's height (width) as it is
  friend bool operator==(const Overflow&, const Overflow&) = default;
};

struct Document {
  Metadata metadata;
  std::vector<Page> pages;
  std::vector<Overflow> overflows;  // in the order the fill met them
  std::vector<TextStyle> styles;
  std::vector<std::shared_ptr<const ImageData>> images;
  std::vector<std::shared_ptr<const BarcodeSymbol>> barcodes;

  // The index of "style" in the style table, adding it when new.
  uint32_t InternStyle(const TextStyle& style);
  uint32_t AddImage(std::shared_ptr<const ImageData> image);
  uint32_t AddBarcode(std::shared_ptr<const BarcodeSymbol> symbol);
};

inline bool operator==(const GroupItem& a, const GroupItem& b) {
  return a.clip == b.clip && a.items == b.items;
}

// Appends the pages of "more" to "into", renumbering their styles, pictures and barcodes into
// the tables of "into", and its overflows' pages.
void AppendPages(Document& into, Document&& more);

// Where a text item's lines begin once laid out: byte offsets into its text, the first 0. The
// document stage does not lay text out; the renderer, which does, supplies them.
using LineStarts =
    std::function<std::vector<uint32_t>(const TextItem& item, const TextStyle& style)>;

// The document as stable text for golden tests and reviews: its tables (styles, pictures by file
// name and a hash of their pixels, barcode symbols with their data), then one line per page and
// item, positions in points to two decimals. A text laid out on more than one line by
// "line_starts" shows its lines on lines of their own below it, so a moved line break is a
// changed line in a diff; without "line_starts" each text shows whole on its item's line.
std::string Serialize(const Document& document, const LineStarts& line_starts = {});

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_DOCUMENT_DOCUMENT_H_
