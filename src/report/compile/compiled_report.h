// The compiled report: a template validated and made read-only, with styles resolved, lengths in
// points and every expression parsed and bound to the report's tables of fields, variables and
// aggregates. One compiled report serves any number of fills; what a print run changes (memo
// texts, query SQL, parameter and variable values) lives in the fill's run settings.
//
// Thread-safety: immutable once compiled.
#ifndef VANTOREL_REPORT_COMPILE_COMPILED_REPORT_H_
#define VANTOREL_REPORT_COMPILE_COMPILED_REPORT_H_

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "report/barcode/barcode.h"
#include "report/document/document.h"
#include "report/expr/expression.h"
#include "report/template/design.h"
#include "report/template/template_io.h"

namespace vantorel::report {

using ExpressionPtr = std::shared_ptr<const expr::Expression>;
using TextTemplatePtr = std::shared_ptr<const expr::TextTemplate>;

// Where an object sits, which decides the defaults of its aggregates.
struct BandPlace {
  BandKind kind = BandKind::kTitle;
  int data = -1;         // the data band it belongs to (its row, header, footer or group), or -1
  int group_level = -1;  // for group headers and footers: the group's level in its data band
};

struct CompiledText {
  std::string name;
  RectF box;
  ExpressionPtr print_when;
  TextTemplatePtr text;
  std::string source_text;  // as the template wrote it
  std::string format;
  uint32_t style = 0;  // index into CompiledReport::styles
  StretchMode stretch = StretchMode::kNone;
  bool shrink = false;
  bool hide_zero = false;
  bool trim = false;
  int memo = -1;  // index among the report's memos, for texts set at run time
  int line = 0;   // in the template file
};

struct CompiledPicture {
  std::string name;
  RectF box;
  ExpressionPtr print_when;
  TextTemplatePtr source;
  ImageFit fit = ImageFit::kContain;
  uint8_t borders = 0;
  Stroke border;
};

struct CompiledBarcode {
  std::string name;
  RectF box;
  ExpressionPtr print_when;
  TextTemplatePtr data;
  Symbology symbology = Symbology::kQr;
  BarcodeOptions options;
  Color color = Color::Black();
  Color background = Color::None();
};

struct CompiledLine {
  std::string name;
  PointF from, to;
  ExpressionPtr print_when;
  Stroke stroke;
  bool grow_with_band = false;
};

struct CompiledRect {
  std::string name;
  RectF box;
  ExpressionPtr print_when;
  Color fill = Color::None();
  Stroke stroke;
  float corner_radius = 0;
  bool grow_with_band = false;
};

using CompiledObject =
    std::variant<CompiledText, CompiledPicture, CompiledBarcode, CompiledLine, CompiledRect>;

struct CompiledBand {
  BandKind kind = BandKind::kTitle;
  std::string name;
  BandPlace place;
  float height = 0;
  bool stretch = false;
  bool keep_together = false;
  bool start_new_page = false;
  bool repeat = false;
  bool print_on_first_page = true;
  bool print_on_last_page = true;
  bool print_if_empty = false;
  ExpressionPtr print_when;
  std::vector<CompiledObject> objects;
  std::vector<CompiledBand> children;
  int line = 0;  // in the template file
};

struct CompiledGroup {
  std::string name;
  ExpressionPtr condition;
  bool keep_together = false;
  bool start_new_page = false;
  bool repeat_header = false;
  std::optional<CompiledBand> header;
  std::optional<CompiledBand> footer;
};

struct CompiledData {
  int index = 0;  // among all data bands, in template order (details included)
  CompiledBand band;
  int query = -1;
  int rows = 1;
  std::vector<CompiledGroup> groups;
  std::optional<CompiledBand> header;
  std::optional<CompiledBand> footer;
  std::vector<CompiledData> details;
};

struct CompiledParam {
  std::string name;
  ParamType type = ParamType::kText;
  std::string default_value;
  ExpressionPtr value;  // evaluated when the query runs; null: the default or the value set
};

struct CompiledQuery {
  std::string name;
  int database = -1;
  std::string sql;
  std::vector<CompiledParam> params;
  int data = -1;  // the data band it drives, if any
};

struct FieldSpec {
  int query = 0;
  std::string name;
};

struct VariableSpec {
  std::string category;
  std::string name;
  std::string value;  // expression text
};

enum class AggregateScope { kReport, kPage, kGroup, kBand, kRunning };

struct AggregateSpec {
  expr::AggregateKind kind = expr::AggregateKind::kSum;
  ExpressionPtr argument;  // null: count rows
  int data = 0;            // the data band whose rows it runs over
  AggregateScope scope = AggregateScope::kReport;
  int group_level = -1;  // kGroup and kRunning: the group level that resets it (-1: none)
};

// A named component of the template, as the engine port finds it.
struct ComponentEntry {
  enum class Kind { kMemo, kQuery, kDatabase, kOther } kind = Kind::kOther;
  int index = -1;  // memo, query or database index
};

struct CompiledReport {
  std::string file;
  std::string name;
  Metadata info;
  PageSetup page;
  CopySetup copies;
  std::vector<TextStyle> styles;
  std::vector<std::string> databases;
  std::vector<CompiledQuery> queries;
  std::vector<VariableSpec> variables;
  std::vector<FieldSpec> fields;
  std::vector<AggregateSpec> aggregates;
  std::optional<CompiledBand> page_header, page_footer, title, summary, column_header,
      column_footer;
  std::vector<CompiledData> data;
  int data_count = 0;            // data bands including details
  std::vector<int> data_groups;  // per data band: how many group levels it has
  // Memos by index (pointers into the bands above) with the place each sits in.
  std::vector<const CompiledText*> memos;
  std::vector<BandPlace> memo_places;
  std::map<std::string, ComponentEntry> components;  // by upper-cased name
  bool uses_total_pages = false;

  // The component named "name" (any case), or nullptr.
  const ComponentEntry* Find(std::string_view name) const;
  int FindQuery(std::string_view name) const;
  int FindDatabase(std::string_view name) const;
  int FindVariable(std::string_view category, std::string_view name) const;
};

// Tables a print run may extend when it compiles texts set at run time.
struct RunTables {
  std::vector<FieldSpec> fields;
  std::vector<AggregateSpec> aggregates;
};

// Validates and compiles "design"; throws TemplateError with every problem found.
std::shared_ptr<const CompiledReport> Compile(const Template& design, const std::string& file);

// Reads and compiles template text: the reader's and the compiler's problems reported together.
// Throws TemplateError.
std::shared_ptr<const CompiledReport> CompileTemplate(std::string_view xml,
                                                      const std::string& file);
std::shared_ptr<const CompiledReport> CompileTemplateFile(const std::string& path);

// Compiles a text set at run time for memo "memo" (brackets that are not valid expressions stay
// literal), binding new fields and aggregates into "tables".
TextTemplatePtr CompileRunText(const CompiledReport& report, int memo, const std::string& text,
                               RunTables& tables);

// Compiles a variable's value expression set at run time; nullptr when it is not an expression
// (the fill then uses the raw text).
ExpressionPtr CompileRunExpression(const CompiledReport& report, const std::string& text,
                                   RunTables& tables);

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_COMPILE_COMPILED_REPORT_H_
