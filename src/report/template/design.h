// The design of a report as its template file says it: page setup, database connections,
// queries, variables, styles and bands holding objects. A mutable model, as read from and
// written to the ".fr3" XML (docs/template-format.md); the compile stage validates it into a
// read-only form.
//
// Thread-safety: plain values.
#ifndef VANTOREL_REPORT_TEMPLATE_DESIGN_H_
#define VANTOREL_REPORT_TEMPLATE_DESIGN_H_

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "report/values/geometry.h"
#include "report/values/metadata.h"
#include "report/values/style.h"

namespace vantorel::report {

constexpr int kTemplateFormatVersion = 1;

// A comment of the template file, kept with the element it precedes.
struct Note {
  std::string text;                // between "<!--" and "-->"
  bool blank_line_before = false;  // an empty line separates it from what precedes it
};

// An attribute as the template file wrote it.
struct WrittenAttribute {
  std::string name;
  std::string text;  // the value as written ("12mm", "A4", "True", "gray")
  std::string key;   // the value it stood for, formatted in points; while the model still holds
                     // that value the writer writes "text" back unchanged
};

// What the template file wrote about an element beyond its meaning: the attributes it gave, in
// their order and spelling, its comments and spacing. Saving an edited design keeps all of it,
// so the file changes only where the design did. A design made in code leaves it empty and gets
// the writer's own layout (docs/template-format.md).
struct Written {
  std::vector<WrittenAttribute> attributes;  // in the order written
  std::vector<Note> notes;                   // comments just before the element
  bool blank_line_before = false;
  std::vector<std::string> order;   // the names of its child elements, in the order written
  std::vector<Note> closing_notes;  // comments before its end tag
  bool cdata = false;               // its text (a <text>, an <sql>) is one CDATA section

  // Forgets that the file gave attribute "name", so the writer leaves it out when the design
  // holds its default.
  void Forget(std::string_view name);
};

// A text style as a template writes it: every field optional, so a named style, the object's
// own attributes and the defaults combine.
struct StyleSpec {
  std::string based_on;
  std::optional<std::string> font;
  std::optional<float> size;
  std::optional<bool> bold, italic, underline, strikeout;
  std::optional<Color> color, fill;
  std::optional<HAlign> halign;
  std::optional<VAlign> valign;
  std::optional<bool> wrap, clip, rich;
  std::optional<int16_t> rotation;
  std::optional<float> line_spacing, char_spacing;
  std::optional<uint8_t> borders;
  std::optional<float> border_width;
  std::optional<Color> border_color;
  std::optional<LineStyle> border_style;
  std::optional<Padding> padding;
};

// How an object grows with its band: not at all, to fit its own content, to the band's final
// height (table cells whose borders must line up when a neighbour grows), or both (cells that
// may wrap themselves).
enum class StretchMode { kNone, kGrow, kBand, kCell };

struct ObjectCommon {
  std::string name;
  RectF box;               // points, relative to the band's top left
  std::string print_when;  // expression; empty: always
  int line = 0;            // in the template file
  Written written;
};

struct TextObject : ObjectCommon {
  std::string text;        // literal text with [expressions]
  std::string style_name;  // a named style, or empty
  StyleSpec style;         // the object's own attributes
  std::string format;      // display format of a single-expression text
  StretchMode stretch = StretchMode::kNone;
  bool shrink = false;     // may become shorter than its height when the text is short
  bool hide_zero = false;  // a single-expression text whose value is zero prints nothing
  bool trim = false;       // blanks before and after what it prints are dropped
};

struct PictureObject : ObjectCommon {
  std::string source;  // a text template giving the file path ("[Company.logo]")
  ImageFit fit = ImageFit::kContain;
  uint8_t borders = 0;
  Stroke border;
};

struct BarcodeObject : ObjectCommon {
  std::string type = "qr";
  std::string data;  // a text template
  char qr_level = 'M';
  bool show_text = true;
  Color color = Color::Black();
  Color background = Color::None();
};

struct LineObject : ObjectCommon {
  PointF from, to;  // relative to the band
  Stroke stroke;
  bool grow_with_band = false;  // a vertical line that spans the band grows with it
};

struct RectObject : ObjectCommon {
  Color fill = Color::None();
  Stroke stroke;
  float corner_radius = 0;
  bool grow_with_band = false;
};

// A part of the house library placed in a band: the part's objects, moved by "box"'s left and
// top, with its parameters set to "arguments". Expanded before compiling (library.h).
struct PartUse : ObjectCommon {
  std::string part;
  // Parameter name and value, in the order written; a value is text put where the part writes
  // ${name}.
  std::vector<std::pair<std::string, std::string>> arguments;

  // The argument named "wanted", or nullptr.
  const std::string* Argument(std::string_view wanted) const;
};

using DesignObject =
    std::variant<TextObject, PictureObject, BarcodeObject, LineObject, RectObject, PartUse>;

enum class BandKind {
  kPageHeader,
  kPageFooter,
  kTitle,
  kSummary,
  kColumnHeader,
  kColumnFooter,
  kData,
  kDataHeader,
  kDataFooter,
  kGroupHeader,
  kGroupFooter,
  kChild,
};

// The element name of a band kind ("pageHeader", "data", …).
const char* BandElementName(BandKind kind);

struct Band {
  BandKind kind = BandKind::kData;
  std::string name;
  float height = 0;     // points
  bool stretch = true;  // grows to hold stretching objects; false: a fixed box
  bool keep_together = false;
  bool start_new_page = false;
  bool repeat = false;              // headers: print again at the top of each new page
  bool print_on_first_page = true;  // page header and footer
  bool print_on_last_page = true;   // page header and footer
  bool print_if_empty = false;      // data headers and footers when the query has no rows
  std::string print_when;
  std::vector<DesignObject> objects;
  std::vector<Band> children;  // child bands, printed right after this one
  int line = 0;
  Written written;
};

struct Group {
  std::string name;
  std::string condition;  // expression; a new group starts when its value changes
  bool keep_together = false;
  bool start_new_page = false;
  bool repeat_header = false;
  std::optional<Band> header;
  std::optional<Band> footer;
  int line = 0;
  Written written;
};

struct DataBand {
  Band band;                  // kind kData
  std::string query;          // empty: the band prints once
  int rows = 1;               // times a query-less band prints
  std::vector<Group> groups;  // outermost first
  std::optional<Band> header;
  std::optional<Band> footer;
  std::vector<DataBand> details;  // printed after each row, for that row
};

enum class ParamType { kInteger, kNumber, kText, kDate };

struct QueryParam {
  std::string name;
  ParamType type = ParamType::kText;
  std::string default_value;  // as text in the type's form ("12", "2024-03-31"); empty: NULL
  std::string value;          // expression evaluated when the query runs, e.g. "[Q_INV.id]"
  int line = 0;
  Written written;
};

struct Query {
  std::string name;
  std::string database;  // empty: the template's first database
  std::string sql;
  std::vector<QueryParam> params;
  int line = 0;
  Written written;
  Written sql_written;
};

struct Variable {
  std::string category;
  std::string name;
  std::string value;  // an expression ("\"C:\\Logos\\firm.png\"")
  int line = 0;
  Written written;
};

struct Database {
  std::string name;
  int line = 0;
  Written written;
};

struct Style {
  std::string name;
  StyleSpec spec;
  int line = 0;
  Written written;
};

struct PageSetup {
  SizeF size{static_cast<float>(Mm(210)), static_cast<float>(Mm(297))};
  bool landscape = false;
  bool roll = false;  // roll paper: one page as tall as its content
  float margin_left = static_cast<float>(Mm(10)), margin_top = static_cast<float>(Mm(10));
  float margin_right = static_cast<float>(Mm(10)), margin_bottom = static_cast<float>(Mm(10));
  int columns = 1;
  float column_gap = 0;
  bool columns_across = false;  // label sheets: fill rows left to right before moving down
  std::string printer;          // a CUPS queue; empty: the default queue
};

// How many copies of the whole document print, and how many share one sheet: with "per_sheet"
// above 1 the sheet is cut into that many equal slots, top to bottom, one copy in each.
struct CopySetup {
  int count = 1;
  int per_sheet = 1;
  std::vector<std::string> labels;  // [CopyLabel] of copy 1, 2…; a copy without one has ""
  int line = 0;                     // in the template file; 0: the template has no <copies>
  Written written;
  std::vector<Written> labels_written;  // of each <copy>
};

inline constexpr int kMaxCopies = 10;
inline constexpr int kMaxCopiesPerSheet = 4;

// The house library a template takes its shared parts and styles from: a file in the template's
// own folder.
struct LibraryRef {
  std::string file;  // a file name, no folder
  int line = 0;      // 0: the template uses no library
  Written written;
  // The library's styles, read with the template: whether a text is rich, which decides how its
  // content is read and written, may come from one of them. Not written back.
  std::vector<Style> styles;

  // The style named "wanted", or nullptr.
  const Style* FindStyle(std::string_view wanted) const;
};

struct Template {
  int version = kTemplateFormatVersion;
  std::string name;
  Metadata info;
  PageSetup page;
  CopySetup copies;
  LibraryRef library;
  std::vector<Database> databases;
  std::vector<Query> queries;
  std::vector<Variable> variables;
  std::vector<Style> styles;  // in the order written
  std::optional<Band> page_header, page_footer, title, summary, column_header, column_footer;
  std::vector<DataBand> data;
  bool has_page = false;  // the template has a <page> (else A4 portrait, 10 mm margins)
  Written written;        // of <report>; its notes are the comments before it
  Written info_written, page_written;

  // The style named "wanted" (exact case, as styles are referred to), or nullptr.
  const Style* FindStyle(std::string_view wanted) const;
};

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_TEMPLATE_DESIGN_H_
