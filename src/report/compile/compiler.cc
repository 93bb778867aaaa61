// Turns the design into the compiled report: resolves styles, binds every expression to the
// report's tables and checks names, collecting all problems before failing.
#include <algorithm>
#include <cctype>
#include <functional>
#include <unordered_map>

#include "report/compile/compiled_report.h"
#include "report/expr/text_util.h"
#include "report/template/library.h"

namespace vantorel::report {
namespace {

bool SameName(std::string_view a, std::string_view b) { return expr::EqualsIgnoreCase(a, b); }

// A field's key in the binder's index: its query and its name in upper case.
std::string FieldKey(int query, std::string_view name) {
  std::string key = std::to_string(query);
  key += ':';
  key += expr::AsciiUpper(name);
  return key;
}

// Binds names for one object at a time: "place" says where the object sits.
class ReportBinder final : public expr::Binder {
 public:
  ReportBinder(const CompiledReport& report, std::vector<FieldSpec>& fields,
               std::vector<AggregateSpec>& aggregates, const std::vector<std::string>& data_names)
      : report_(report), fields_(fields), aggregates_(aggregates), data_names_(data_names) {}

  BandPlace place;

  int Field(std::string_view query, std::string_view field) override {
    const int index = report_.FindQuery(query);
    if (index < 0) {
      std::string known;
      for (const CompiledQuery& q : report_.queries) known += (known.empty() ? "" : ", ") + q.name;
      throw expr::ExprError(0, "the template has no query \"" + std::string(query) + "\"",
                            known.empty() ? "declare it with <query>" : "its queries: " + known);
    }
    // Indexed, since a large template reads hundreds of fields from thousands of texts.
    for (; indexed_ < fields_.size(); ++indexed_) {
      field_index_.emplace(FieldKey(fields_[indexed_].query, fields_[indexed_].name),
                           static_cast<int>(indexed_));
    }
    const auto [it, added] =
        field_index_.emplace(FieldKey(index, field), static_cast<int>(fields_.size()));
    if (added) {
      fields_.push_back({index, std::string(field)});
      ++indexed_;
    }
    return it->second;
  }

  int Variable(std::string_view category, std::string_view name) override {
    const int index = report_.FindVariable(category, name);
    if (index < 0) {
      const std::string full =
          category.empty() ? std::string(name) : std::string(category) + "." + std::string(name);
      throw expr::ExprError(0, "\"" + full + "\" is neither a field nor a variable",
                            "declare it with <variable category=\"…\" name=\"…\"/>");
    }
    return index;
  }

  int Aggregate(expr::AggregateKind kind, std::shared_ptr<const expr::Expression> argument,
                std::string_view scope) override {
    AggregateSpec spec;
    spec.kind = kind;
    spec.argument = argument;
    spec.data = -1;
    const std::string scope_name = expr::AsciiUpper(scope);
    const bool named_scope = scope_name == "REPORT" || scope_name == "PAGE" ||
                             scope_name == "GROUP" || scope_name == "RUNNING" ||
                             scope_name == "BAND" || scope_name.empty();
    if (!named_scope) {
      for (size_t i = 0; i < data_names_.size(); ++i) {
        if (!data_names_[i].empty() && SameName(data_names_[i], scope))
          spec.data = static_cast<int>(i);
      }
      if (spec.data < 0) {
        throw expr::ExprError(0, "\"" + std::string(scope) + "\" is not a scope or a data band",
                              "use \"report\", \"page\", \"group\", \"band\", \"running\" or the "
                              "name of a data band");
      }
    }
    if (spec.data < 0 && argument) {
      // The band whose query the argument reads.
      for (int field : argument->fields()) {
        const int data =
            report_.queries[static_cast<size_t>(fields_[static_cast<size_t>(field)].query)].data;
        if (data >= 0) {
          spec.data = data;
          break;
        }
      }
    }
    if (spec.data < 0) spec.data = place.data;
    if (spec.data < 0 && report_.data_count > 0) spec.data = 0;
    if (spec.data < 0) {
      throw expr::ExprError(0, "there is no data band to aggregate over",
                            "aggregates sum the rows of a <data> band");
    }
    const bool own_band = place.data == spec.data;
    if (scope_name == "REPORT") {
      spec.scope = AggregateScope::kReport;
    } else if (scope_name == "PAGE") {
      spec.scope = AggregateScope::kPage;
    } else if (scope_name == "GROUP") {
      spec.scope = AggregateScope::kGroup;
      spec.group_level = own_band ? std::max(place.group_level, 0) : 0;
    } else if (scope_name == "BAND") {
      spec.scope = AggregateScope::kBand;
    } else if (scope_name == "RUNNING") {
      spec.scope = AggregateScope::kRunning;
      spec.group_level = InnermostGroup(spec.data);
    } else {
      switch (place.kind) {
        case BandKind::kPageHeader:
        case BandKind::kPageFooter:
          spec.scope = AggregateScope::kPage;
          break;
        case BandKind::kGroupHeader:
        case BandKind::kGroupFooter:
          spec.scope = own_band ? AggregateScope::kGroup : AggregateScope::kReport;
          spec.group_level = own_band ? place.group_level : -1;
          break;
        case BandKind::kDataHeader:
        case BandKind::kDataFooter:
          spec.scope = own_band ? AggregateScope::kBand : AggregateScope::kReport;
          break;
        case BandKind::kData:
        case BandKind::kChild:
          spec.scope = own_band ? AggregateScope::kRunning : AggregateScope::kReport;
          spec.group_level = own_band ? InnermostGroup(spec.data) : -1;
          break;
        default:
          spec.scope = AggregateScope::kReport;
      }
    }
    // The same aggregate written in several texts is kept once: a register's running balance
    // appears in a few of each row's texts and would otherwise be summed once for each of them.
    for (; aggregates_indexed_ < aggregates_.size(); ++aggregates_indexed_) {
      aggregate_index_.emplace(AggregateKey(aggregates_[aggregates_indexed_]),
                               static_cast<int>(aggregates_indexed_));
    }
    const auto [it, added] =
        aggregate_index_.emplace(AggregateKey(spec), static_cast<int>(aggregates_.size()));
    if (added) {
      aggregates_.push_back(std::move(spec));
      ++aggregates_indexed_;
    }
    return it->second;
  }

 private:
  // Running totals start again with each group of the innermost level.
  int InnermostGroup(int data) const {
    return data >= 0 && static_cast<size_t>(data) < report_.data_groups.size()
               ? report_.data_groups[static_cast<size_t>(data)] - 1
               : -1;
  }

  // What makes two aggregates one: kind, rows, resets and the argument's text (an argument
  // holds no aggregate, and its names bind alike wherever it is written).
  static std::string AggregateKey(const AggregateSpec& spec) {
    std::string key = std::to_string(static_cast<int>(spec.kind)) + ':' +
                      std::to_string(static_cast<int>(spec.scope)) + ':' +
                      std::to_string(spec.data) + ':' + std::to_string(spec.group_level);
    key += spec.argument ? "=" + spec.argument->source() : std::string("#");
    return key;
  }

  const CompiledReport& report_;
  std::vector<FieldSpec>& fields_;
  std::vector<AggregateSpec>& aggregates_;
  const std::vector<std::string>& data_names_;
  std::unordered_map<std::string, int> field_index_;      // FieldKey → first field of that key
  size_t indexed_ = 0;                                    // fields_ entries in field_index_
  std::unordered_map<std::string, int> aggregate_index_;  // AggregateKey → its aggregate
  size_t aggregates_indexed_ = 0;                         // aggregates_ entries in the index
};

class Compiler {
 public:
  Compiler(const Template& design, std::string file) : design_(design), file_(std::move(file)) {}

  std::shared_ptr<CompiledReport> Run() {
    report_ = std::make_shared<CompiledReport>();
    CompiledReport& r = *report_;
    r.file = file_;
    r.name = design_.name;
    r.info = design_.info;
    r.page = design_.page;
    r.copies = design_.copies;
    if (r.copies.per_sheet > 1 && r.page.roll) {
      AddProblem(r.copies.line, "copies cannot share a sheet of roll paper",
                 "drop \"per-sheet\" or print on cut sheets");
    }

    for (const Database& declared : design_.databases) {
      const std::string& database = declared.name;
      if (r.FindDatabase(database) >= 0)
        AddProblem(0, "database \"" + database + "\" is declared twice");
      r.databases.push_back(database);
      Register(database,
               {ComponentEntry::Kind::kDatabase, static_cast<int>(r.databases.size() - 1)}, 0);
    }
    for (const Query& query : design_.queries) {
      CompiledQuery compiled;
      compiled.name = query.name;
      compiled.sql = query.sql;
      if (query.database.empty()) {
        compiled.database = r.databases.empty() ? -1 : 0;
      } else {
        compiled.database = r.FindDatabase(query.database);
        if (compiled.database < 0) {
          AddProblem(query.line,
                     "query \"" + query.name + "\" uses database \"" + query.database +
                         "\", which the template does not declare",
                     "add <database name=\"" + query.database + "\"/>");
        }
      }
      if (compiled.database < 0 && query.database.empty()) {
        AddProblem(query.line, "query \"" + query.name + "\" has no database to run on",
                   "declare <database name=\"DMSDB\"/>");
      }
      r.queries.push_back(std::move(compiled));
      Register(query.name, {ComponentEntry::Kind::kQuery, static_cast<int>(r.queries.size() - 1)},
               query.line);
    }
    for (const Variable& variable : design_.variables) {
      if (r.FindVariable(variable.category, variable.name) >= 0 && !variable.category.empty()) {
        AddProblem(variable.line, "variable \"" + variable.category + "." + variable.name +
                                      "\" is declared twice");
      }
      r.variables.push_back({variable.category, variable.name, variable.value});
    }
    ResolveStyles();

    // Data bands get their indices (and names) first, so aggregates can name any of them.
    for (const DataBand& data : design_.data) NumberData(data);
    r.data_count = static_cast<int>(data_names_.size());

    binder_ = std::make_unique<ReportBinder>(r, r.fields, r.aggregates, data_names_);
    // Query parameters whose value comes from another query (details of a master row).
    for (size_t q = 0; q < design_.queries.size(); ++q) {
      for (const QueryParam& param : design_.queries[q].params) {
        CompiledParam compiled{param.name, param.type, param.default_value, nullptr};
        if (!param.value.empty()) {
          binder_->place = {};
          compiled.value = CompileExpression(param.value, param.line,
                                             "the value of parameter \"" + param.name + "\"");
        }
        r.queries[q].params.push_back(std::move(compiled));
      }
    }
    int data_index = 0;
    for (const DataBand& data : design_.data) r.data.push_back(CompileData(data, data_index));
    if (design_.page_header)
      r.page_header = CompileBand(*design_.page_header, {BandKind::kPageHeader});
    if (design_.page_footer)
      r.page_footer = CompileBand(*design_.page_footer, {BandKind::kPageFooter});
    if (design_.title) r.title = CompileBand(*design_.title, {BandKind::kTitle});
    if (design_.summary) r.summary = CompileBand(*design_.summary, {BandKind::kSummary});
    if (design_.column_header) {
      r.column_header = CompileBand(*design_.column_header, {BandKind::kColumnHeader});
    }
    if (design_.column_footer) {
      r.column_footer = CompileBand(*design_.column_footer, {BandKind::kColumnFooter});
    }
    if (!problems_.empty()) throw TemplateError(std::move(problems_));
    IndexMemos();
    return report_;
  }

 private:
  void AddProblem(int line, std::string message, std::string hint = {}) {
    problems_.push_back({file_, line, std::move(message), std::move(hint)});
  }

  void Register(const std::string& name, ComponentEntry entry, int line) {
    if (name.empty()) return;
    const std::string key = expr::AsciiUpper(name);
    if (report_->components.count(key)) {
      AddProblem(line, "the name \"" + name + "\" is used twice",
                 "every component needs its own name");
      return;
    }
    report_->components[key] = entry;
  }

  void ResolveStyles() {
    // By name, as problems without a line are listed.
    std::vector<std::string> names;
    for (const Style& style : design_.styles) names.push_back(style.name);
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    for (const std::string& name : names) {
      std::vector<std::string> chain;
      std::string current = name;
      while (!current.empty()) {
        if (std::find(chain.begin(), chain.end(), current) != chain.end()) {
          AddProblem(0, "style \"" + name + "\" is based on itself", "break the based-on chain");
          break;
        }
        chain.push_back(current);
        const Style* style = design_.FindStyle(current);
        if (style == nullptr) {
          AddProblem(0, "style \"" + chain[chain.size() - 2] + "\" is based on \"" + current +
                            "\", which does not exist");
          break;
        }
        current = style->spec.based_on;
      }
    }
  }

  static void Apply(const StyleSpec& spec, TextStyle& style) {
    if (spec.font) style.font_family = *spec.font;
    if (spec.size) style.size = *spec.size;
    if (spec.bold) style.bold = *spec.bold;
    if (spec.italic) style.italic = *spec.italic;
    if (spec.underline) style.underline = *spec.underline;
    if (spec.strikeout) style.strikeout = *spec.strikeout;
    if (spec.color) style.color = *spec.color;
    if (spec.fill) style.fill = *spec.fill;
    if (spec.halign) style.halign = *spec.halign;
    if (spec.valign) style.valign = *spec.valign;
    if (spec.wrap) style.wrap = *spec.wrap;
    if (spec.clip) style.clip = *spec.clip;
    if (spec.rich) style.rich = *spec.rich;
    if (spec.rotation) style.rotation = *spec.rotation;
    if (spec.line_spacing) style.line_spacing = *spec.line_spacing;
    if (spec.char_spacing) style.char_spacing = *spec.char_spacing;
    if (spec.borders) style.borders = *spec.borders;
    if (spec.border_width) style.border.width = *spec.border_width;
    if (spec.border_color) style.border.color = *spec.border_color;
    if (spec.border_style) style.border.style = *spec.border_style;
    if (spec.padding) style.padding = *spec.padding;
  }

  void ApplyNamed(const std::string& name, TextStyle& style, int depth = 0) {
    const Style* named = design_.FindStyle(name);
    if (named == nullptr || depth > 16) return;
    if (!named->spec.based_on.empty()) ApplyNamed(named->spec.based_on, style, depth + 1);
    Apply(named->spec, style);
  }

  uint32_t StyleOf(const TextObject& text) {
    TextStyle style;
    if (!text.style_name.empty()) {
      if (design_.FindStyle(text.style_name) == nullptr) {
        AddProblem(text.line, "style \"" + text.style_name + "\" does not exist",
                   "define it with <style name=\"" + text.style_name + "\" …/>");
      }
      ApplyNamed(text.style_name, style);
    }
    Apply(text.style, style);
    const auto [it, added] =
        style_index_.emplace(style, static_cast<uint32_t>(report_->styles.size()));
    if (added) report_->styles.push_back(style);
    return it->second;
  }

  void NumberData(const DataBand& data) {
    const int index = static_cast<int>(data_names_.size());
    data_names_.push_back(data.band.name);
    report_->data_groups.push_back(static_cast<int>(data.groups.size()));
    if (!data.query.empty()) {
      const int query = report_->FindQuery(data.query);
      if (query < 0) {
        AddProblem(data.band.line, "data band \"" + data.band.name + "\" uses query \"" +
                                       data.query + "\", which the template does not declare");
      } else if (report_->queries[static_cast<size_t>(query)].data >= 0) {
        AddProblem(data.band.line, "query \"" + data.query + "\" drives two data bands",
                   "give each data band its own query");
      } else {
        report_->queries[static_cast<size_t>(query)].data = index;
      }
    }
    for (const DataBand& detail : data.details) NumberData(detail);
  }

  // Attributes hold plain expressions; "[Q.id]", written as in a text, is accepted too.
  static std::string Unbracketed(const std::string& source) {
    const size_t first = source.find_first_not_of(" \t");
    const size_t last = source.find_last_not_of(" \t");
    if (first == std::string::npos || source[first] != '[' || source[last] != ']') return source;
    int depth = 0;
    for (size_t i = first; i <= last; ++i) {
      if (source[i] == '[') ++depth;
      if (source[i] == ']' && --depth == 0 && i != last) return source;  // "[a] + [b]"
    }
    return source.substr(first + 1, last - first - 1);
  }

  ExpressionPtr CompileExpression(const std::string& written, int line, const std::string& what) {
    const std::string source = Unbracketed(written);
    try {
      return expr::Expression::Compile(source, *binder_);
    } catch (const expr::ExprError& error) {
      AddProblem(
          line,
          what + ": " + error.message() + " " + expr::DescribePosition(source, error.offset()),
          error.hint());
      return nullptr;
    }
  }

  TextTemplatePtr CompileTextTemplate(const std::string& source, int line,
                                      const std::string& what) {
    try {
      return expr::TextTemplate::Compile(source, *binder_, false);
    } catch (const expr::ExprError& error) {
      AddProblem(
          line,
          what + ": " + error.message() + " at character " + std::to_string(error.offset() + 1),
          error.hint());
      return nullptr;
    }
  }

  ExpressionPtr PrintWhen(const std::string& source, int line) {
    if (source.empty()) return nullptr;
    return CompileExpression(source, line, "print-when");
  }

  CompiledObject CompileObject(const DesignObject& object) {
    return std::visit(
        [&](const auto& o) -> CompiledObject {
          using T = std::decay_t<decltype(o)>;
          Register(o.name, {ComponentEntry::Kind::kOther, -1}, o.line);
          if constexpr (std::is_same_v<T, TextObject>) {
            CompiledText text;
            text.name = o.name;
            text.box = o.box;
            text.print_when = PrintWhen(o.print_when, o.line);
            text.text = CompileTextTemplate(o.text, o.line, "text \"" + o.name + "\"");
            text.source_text = o.text;
            text.format = o.format;
            text.style = StyleOf(o);
            text.stretch = o.stretch;
            text.shrink = o.shrink;
            text.hide_zero = o.hide_zero;
            text.trim = o.trim;
            text.line = o.line;
            if (text.text && text.text->Uses(expr::SystemValue::kTotalPages)) {
              report_->uses_total_pages = true;
            }
            if (!o.name.empty())
              report_->components[expr::AsciiUpper(o.name)].kind = ComponentEntry::Kind::kMemo;
            return text;
          } else if constexpr (std::is_same_v<T, PictureObject>) {
            CompiledPicture picture{o.name,
                                    o.box,
                                    PrintWhen(o.print_when, o.line),
                                    CompileTextTemplate(o.source, o.line, "picture source"),
                                    o.fit,
                                    o.borders,
                                    o.border};
            return picture;
          } else if constexpr (std::is_same_v<T, BarcodeObject>) {
            CompiledBarcode barcode;
            barcode.name = o.name;
            barcode.box = o.box;
            barcode.print_when = PrintWhen(o.print_when, o.line);
            barcode.data = CompileTextTemplate(o.data, o.line, "barcode data");
            const auto symbology = SymbologyFromName(o.type);
            if (!symbology) {
              AddProblem(o.line, "barcode type \"" + o.type + "\" is not known",
                         "qr, code128, code39, ean13, ean8, upca, itf, datamatrix or pdf417");
            }
            barcode.symbology = symbology.value_or(Symbology::kQr);
            barcode.options.qr_level = o.qr_level;
            barcode.options.show_text = o.show_text;
            barcode.color = o.color;
            barcode.background = o.background;
            return barcode;
          } else if constexpr (std::is_same_v<T, PartUse>) {
            AddProblem(o.line, "part \"" + o.part + "\" is used but was not taken from a library",
                       "a template with <use> is compiled through CompileTemplate");
            return CompiledRect{};
          } else if constexpr (std::is_same_v<T, LineObject>) {
            return CompiledLine{o.name,   o.from,          o.to, PrintWhen(o.print_when, o.line),
                                o.stroke, o.grow_with_band};
          } else {
            return CompiledRect{o.name,          o.box,    PrintWhen(o.print_when, o.line),
                                o.fill,          o.stroke, o.corner_radius,
                                o.grow_with_band};
          }
        },
        object);
  }

  CompiledBand CompileBand(const Band& band, BandPlace place) {
    CompiledBand compiled;
    compiled.kind = band.kind;
    compiled.name = band.name;
    compiled.place = place;
    compiled.height = band.height;
    compiled.stretch = band.stretch;
    compiled.keep_together = band.keep_together;
    compiled.start_new_page = band.start_new_page;
    compiled.repeat = band.repeat;
    compiled.print_on_first_page = band.print_on_first_page;
    compiled.print_on_last_page = band.print_on_last_page;
    compiled.print_if_empty = band.print_if_empty;
    compiled.line = band.line;
    const BandPlace saved = binder_->place;
    binder_->place = place;
    compiled.print_when = PrintWhen(band.print_when, band.line);
    for (const DesignObject& object : band.objects) {
      compiled.objects.push_back(CompileObject(object));
    }
    for (const Band& child : band.children) {
      BandPlace child_place = place;
      child_place.kind = place.kind == BandKind::kData ? BandKind::kChild : place.kind;
      compiled.children.push_back(CompileBand(child, child_place));
    }
    binder_->place = saved;
    return compiled;
  }

  CompiledData CompileData(const DataBand& data, int& next_index) {
    CompiledData compiled;
    compiled.index = next_index++;
    compiled.query = data.query.empty() ? -1 : report_->FindQuery(data.query);
    compiled.rows = data.rows;
    Register(data.band.name, {ComponentEntry::Kind::kOther, -1}, data.band.line);
    compiled.band = CompileBand(data.band, {BandKind::kData, compiled.index, -1});
    if (data.header)
      compiled.header = CompileBand(*data.header, {BandKind::kDataHeader, compiled.index, -1});
    if (data.footer)
      compiled.footer = CompileBand(*data.footer, {BandKind::kDataFooter, compiled.index, -1});
    for (size_t level = 0; level < data.groups.size(); ++level) {
      const Group& group = data.groups[level];
      CompiledGroup g;
      g.name = group.name;
      Register(group.name, {ComponentEntry::Kind::kOther, -1}, group.line);
      binder_->place = {BandKind::kGroupHeader, compiled.index, static_cast<int>(level)};
      g.condition = CompileExpression(group.condition, group.line, "group condition");
      g.keep_together = group.keep_together;
      g.start_new_page = group.start_new_page;
      g.repeat_header = group.repeat_header;
      if (group.header) {
        g.header = CompileBand(*group.header,
                               {BandKind::kGroupHeader, compiled.index, static_cast<int>(level)});
      }
      if (group.footer) {
        g.footer = CompileBand(*group.footer,
                               {BandKind::kGroupFooter, compiled.index, static_cast<int>(level)});
      }
      compiled.groups.push_back(std::move(g));
    }
    for (const DataBand& detail : data.details) {
      compiled.details.push_back(CompileData(detail, next_index));
    }
    return compiled;
  }

  // Memos are numbered in a final pass, once no vector moves any more.
  void IndexMemos() {
    CompiledReport& r = *report_;
    std::function<void(const CompiledBand&)> band = [&](const CompiledBand& b) {
      for (const CompiledObject& object : b.objects) {
        if (const auto* text = std::get_if<CompiledText>(&object)) {
          const_cast<CompiledText*>(text)->memo = static_cast<int>(r.memos.size());
          r.memos.push_back(text);
          r.memo_places.push_back(b.place);
          if (!text->name.empty()) r.components[expr::AsciiUpper(text->name)].index = text->memo;
        }
      }
      for (const CompiledBand& child : b.children) band(child);
    };
    std::function<void(const CompiledData&)> data = [&](const CompiledData& d) {
      band(d.band);
      if (d.header) band(*d.header);
      if (d.footer) band(*d.footer);
      for (const CompiledGroup& g : d.groups) {
        if (g.header) band(*g.header);
        if (g.footer) band(*g.footer);
      }
      for (const CompiledData& detail : d.details) data(detail);
    };
    for (const auto* single : {&r.page_header, &r.page_footer, &r.title, &r.summary,
                               &r.column_header, &r.column_footer}) {
      if (*single) band(**single);
    }
    for (const CompiledData& d : r.data) data(d);
  }

  const Template& design_;
  std::string file_;
  std::shared_ptr<CompiledReport> report_;
  std::unique_ptr<ReportBinder> binder_;
  std::vector<std::string> data_names_;
  std::vector<Problem> problems_;
  std::unordered_map<TextStyle, uint32_t, TextStyleHash> style_index_;  // into report_->styles
};

// Run-time texts bind against the compiled report's place for their memo.
class RunBinder final : public expr::Binder {
 public:
  RunBinder(const CompiledReport& report, RunTables& tables, BandPlace place)
      : names_(DataNames(report)), inner_(report, tables.fields, tables.aggregates, names_) {
    inner_.place = place;
  }
  int Field(std::string_view query, std::string_view field) override {
    return inner_.Field(query, field);
  }
  int Variable(std::string_view category, std::string_view name) override {
    return inner_.Variable(category, name);
  }
  int Aggregate(expr::AggregateKind kind, std::shared_ptr<const expr::Expression> argument,
                std::string_view scope) override {
    return inner_.Aggregate(kind, std::move(argument), scope);
  }

 private:
  static std::vector<std::string> DataNames(const CompiledReport& report) {
    std::vector<std::string> names(static_cast<size_t>(report.data_count));
    std::function<void(const CompiledData&)> walk = [&](const CompiledData& d) {
      names[static_cast<size_t>(d.index)] = d.band.name;
      for (const CompiledData& detail : d.details) walk(detail);
    };
    for (const CompiledData& d : report.data) walk(d);
    return names;
  }
  std::vector<std::string> names_;
  ReportBinder inner_;
};

}  // namespace

const ComponentEntry* CompiledReport::Find(std::string_view wanted) const {
  const auto it = components.find(expr::AsciiUpper(wanted));
  return it == components.end() ? nullptr : &it->second;
}

int CompiledReport::FindQuery(std::string_view wanted) const {
  for (size_t i = 0; i < queries.size(); ++i) {
    if (SameName(queries[i].name, wanted)) return static_cast<int>(i);
  }
  return -1;
}

int CompiledReport::FindDatabase(std::string_view wanted) const {
  for (size_t i = 0; i < databases.size(); ++i) {
    if (SameName(databases[i], wanted)) return static_cast<int>(i);
  }
  return -1;
}

int CompiledReport::FindVariable(std::string_view category, std::string_view wanted) const {
  for (size_t i = 0; i < variables.size(); ++i) {
    if (SameName(variables[i].name, wanted) &&
        (category.empty() || SameName(variables[i].category, category))) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

std::shared_ptr<const CompiledReport> Compile(const Template& design, const std::string& file) {
  return Compiler(design, file).Run();
}

std::shared_ptr<const CompiledReport> CompileTemplate(std::string_view xml,
                                                      const std::string& file) {
  std::vector<Problem> problems;
  const Template read = ParseTemplate(xml, file, problems);
  const size_t read_problems = problems.size();
  const Template design = ExpandParts(read, file, problems);
  std::shared_ptr<const CompiledReport> report;
  // Parts that could not be put in would only add problems that follow from theirs.
  if (problems.size() == read_problems) {
    try {
      report = Compile(design, file);
    } catch (const TemplateError& error) {
      problems.insert(problems.end(), error.problems().begin(), error.problems().end());
    }
  }
  if (!problems.empty()) {
    std::stable_sort(problems.begin(), problems.end(),
                     [](const Problem& a, const Problem& b) { return a.line < b.line; });
    throw TemplateError(std::move(problems));
  }
  return report;
}

std::shared_ptr<const CompiledReport> CompileTemplateFile(const std::string& path) {
  return CompileTemplate(ReadTemplateFile(path), path);
}

TextTemplatePtr CompileRunText(const CompiledReport& report, int memo, const std::string& text,
                               RunTables& tables) {
  const BandPlace place = memo >= 0 && static_cast<size_t>(memo) < report.memo_places.size()
                              ? report.memo_places[static_cast<size_t>(memo)]
                              : BandPlace{};
  RunBinder binder(report, tables, place);
  return expr::TextTemplate::Compile(text, binder, true);
}

ExpressionPtr CompileRunExpression(const CompiledReport& report, const std::string& text,
                                   RunTables& tables) {
  RunBinder binder(report, tables, BandPlace{});
  try {
    return expr::Expression::Compile(text, binder);
  } catch (const expr::ExprError&) {
    return nullptr;
  }
}

}  // namespace vantorel::report
