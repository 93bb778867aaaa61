// The fill: bands in order (title, data bands with their groups, headers, footers and details,
// summary) placed on pages with page headers and footers, repeated headers, keep-together,
// columns, page breaks and texts completed at the end (total pages, totals printed above their
// rows).
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <iterator>
#include <limits>
#include <map>
#include <type_traits>
#include <variant>

#include "report/expr/text_util.h"
#include "report/fill/band_renderer.h"
#include "report/fill/fill.h"
#include "report/fill/fill_context.h"
#include "report/fill/query_cursor.h"
#include "vantorel/error.h"

namespace vantorel::report {
namespace {

// The run's settings with component names resolved to the report's indexes.
struct BoundSettings {
  std::map<int, std::string> memo_texts;
  std::map<int, std::string> query_sql;
  std::map<int, std::map<std::string, data::ParamValue>> parameters;  // parameter names upper case
  std::map<int, std::string> variables;
};

BoundSettings Bind(const CompiledReport& report, const RunSettings& settings) {
  BoundSettings bound;
  for (const auto& [name, text] : settings.memo_texts) {
    const ComponentEntry* entry = report.Find(name);
    if (entry != nullptr && entry->kind == ComponentEntry::Kind::kMemo && entry->index >= 0) {
      bound.memo_texts[entry->index] = text;
    }
  }
  for (const auto& [name, sql] : settings.query_sql) {
    if (const int query = report.FindQuery(name); query >= 0) bound.query_sql[query] = sql;
  }
  for (const auto& [name, values] : settings.parameters) {
    const int query = report.FindQuery(name);
    if (query < 0) continue;
    for (const auto& [parameter, value] : values) {
      bound.parameters[query][expr::AsciiUpper(parameter)] = value;
    }
  }
  for (const auto& [key, value] : settings.variables) {
    const int variable = report.FindVariable(key.first, key.second);
    if (variable >= 0) bound.variables[variable] = value;
  }
  return bound;
}

data::ParamValue ToParam(const expr::Value& value) {
  switch (value.kind()) {
    case expr::Value::Kind::kNull:
      return std::monostate{};
    case expr::Value::Kind::kBool:
      return int64_t{value.boolean() ? 1 : 0};
    case expr::Value::Kind::kDecimal:
      if (value.decimal().scale() == 0 && value.decimal().mantissa() <= INT64_MAX &&
          value.decimal().mantissa() >= INT64_MIN) {
        return static_cast<int64_t>(value.decimal().mantissa());
      }
      return value.number();
    case expr::Value::Kind::kDouble:
      return value.number();
    case expr::Value::Kind::kText:
      return value.text();
    case expr::Value::Kind::kDate:
      return value.date();
  }
  return std::monostate{};
}

data::ParamValue DefaultParam(const CompiledParam& param) {
  if (param.default_value.empty()) return std::monostate{};
  const std::string& text = param.default_value;
  switch (param.type) {
    case ParamType::kInteger: {
      char* end = nullptr;
      const long long value = std::strtoll(text.c_str(), &end, 10);
      if (end != nullptr && *end == '\0') return static_cast<int64_t>(value);
      return text;
    }
    case ParamType::kNumber: {
      if (auto decimal = expr::Decimal::Parse(text)) return decimal->ToDouble();
      return text;
    }
    case ParamType::kDate:
      if (auto date = Date::FromIso(text)) return *date;
      return text;
    case ParamType::kText:
      return text;
  }
  return text;
}

bool SameKey(const expr::Value& a, const expr::Value& b) {
  if (a.is_null() || b.is_null()) return a.is_null() && b.is_null();
  return CompareValues(a, b) == 0;
}

bool ReadsTotalPages(const ExpressionPtr& condition) {
  return condition && condition->Uses(expr::SystemValue::kTotalPages);
}

bool ReadsTotalPages(const CompiledBand& band) {
  if (ReadsTotalPages(band.print_when)) return true;
  for (const CompiledObject& object : band.objects) {
    const bool reads =
        std::visit([](const auto& o) { return ReadsTotalPages(o.print_when); }, object);
    if (reads) return true;
  }
  for (const CompiledBand& child : band.children) {
    if (ReadsTotalPages(child)) return true;
  }
  return false;
}

bool ReadsTotalPages(const std::optional<CompiledBand>& band) {
  return band && ReadsTotalPages(*band);
}

bool ReadsTotalPages(const CompiledData& data) {
  if (ReadsTotalPages(data.band) || ReadsTotalPages(data.header) || ReadsTotalPages(data.footer)) {
    return true;
  }
  for (const CompiledGroup& group : data.groups) {
    if (ReadsTotalPages(group.header) || ReadsTotalPages(group.footer)) return true;
  }
  for (const CompiledData& detail : data.details) {
    if (ReadsTotalPages(detail)) return true;
  }
  return false;
}

// Whether a print-when reads [TotalPages]: such a report is laid out twice, the first time to
// count its pages.
bool ConditionsReadTotalPages(const CompiledReport& report) {
  for (const auto* band : {&report.page_header, &report.page_footer, &report.title, &report.summary,
                           &report.column_header, &report.column_footer}) {
    if (ReadsTotalPages(*band)) return true;
  }
  for (const CompiledData& data : report.data) {
    if (ReadsTotalPages(data)) return true;
  }
  return false;
}

struct PlacedDeferred {
  size_t page;
  DeferredText text;
};

class Filler {
 public:
  // Lays "report" out on pages of "page" (the report's own, or one copy's slot of a sheet).
  Filler(const CompiledReport& report, const BoundSettings& settings, const FillServices& services,
         const PageSetup& page)
      : report_(report),
        page_(page),
        settings_(settings),
        services_(services),
        tables_{report.fields, report.aggregates},
        cursors_(report.queries.size()),
        primed_(report.queries.size(), false),
        memo_texts_(report.memos.size()) {}

  // "total_pages": the page count of an earlier layout of the same run, or 0.
  FillResult Run(int total_pages = 0) {
    // Texts set at run time bind first: they may add fields and aggregates to the run's tables.
    for (const auto& [memo, text] : settings_.memo_texts) {
      if (memo >= 0 && static_cast<size_t>(memo) < memo_texts_.size()) {
        memo_texts_[static_cast<size_t>(memo)] = CompileRunText(report_, memo, text, tables_);
      }
    }
    std::vector<ExpressionPtr> variable_expressions(report_.variables.size());
    std::vector<std::string> variable_texts(report_.variables.size());
    for (size_t v = 0; v < report_.variables.size(); ++v) {
      const auto set = settings_.variables.find(static_cast<int>(v));
      variable_texts[v] =
          set != settings_.variables.end() ? set->second : report_.variables[v].value;
      variable_expressions[v] = CompileRunExpression(report_, variable_texts[v], tables_);
    }
    tracker_ = std::make_unique<AggregateTracker>(tables_.aggregates, report_.data_count);
    context_ = std::make_unique<FillContext>(report_, tables_, cursors_, *tracker_, services_,
                                             std::vector<expr::Value>(report_.variables.size()));
    // Variables are constants of the run: evaluated once, before any row is read.
    std::vector<expr::Value> variables(report_.variables.size());
    for (size_t v = 0; v < variables.size(); ++v) {
      variables[v] = variable_expressions[v] ? variable_expressions[v]->Evaluate(*context_)
                                             : expr::Value::Text(variable_texts[v]);
    }
    context_ = std::make_unique<FillContext>(report_, tables_, cursors_, *tracker_, services_,
                                             std::move(variables));
    context_->total_pages = total_pages;
    renderer_ = std::make_unique<BandRenderer>(report_, memo_texts_, *context_, result_.document,
                                               result_.warnings);
    result_.document.metadata = report_.info;
    if (result_.document.metadata.title.empty()) result_.document.metadata.title = report_.name;
    if (result_.document.metadata.creator.empty()) result_.document.metadata.creator = "Vantorel";

    // Queries that no detail band reruns are opened once, on their first row, so any band can
    // show their fields.
    std::vector<bool> detail_query(report_.queries.size(), false);
    for (const CompiledData& data : report_.data) MarkDetails(data, detail_query, false);
    for (size_t q = 0; q < report_.queries.size(); ++q) {
      if (!detail_query[q]) {
        OpenQuery(static_cast<int>(q));
        cursors_[q].Next();
        primed_[q] = true;
      }
    }

    NewPage(/*first=*/true);
    // The last row of the data goes with the summary: a grand total never sits alone on a page.
    const bool summary_follows = report_.summary && !report_.summary->start_new_page;
    for (const CompiledData& data : report_.data) FillData(data, summary_follows);
    tracker_->EndReport();
    if (report_.summary) PlaceBand(*report_.summary, Flow::kFullWidth);
    ReleaseCarry();
    ClosePage(/*last=*/true);
    Finish();
    return std::move(result_);
  }

 private:
  enum class Flow { kFullWidth, kColumn, kCell };

  void MarkDetails(const CompiledData& data, std::vector<bool>& detail, bool nested) {
    if (nested && data.query >= 0) detail[static_cast<size_t>(data.query)] = true;
    for (const CompiledData& child : data.details) MarkDetails(child, detail, true);
  }

  void OpenQuery(int q) {
    const CompiledQuery& query = report_.queries[static_cast<size_t>(q)];
    const auto sql_it = settings_.query_sql.find(q);
    const std::string& sql = sql_it != settings_.query_sql.end() ? sql_it->second : query.sql;
    std::map<std::string, data::ParamValue> params;
    const auto set = settings_.parameters.find(q);
    for (const CompiledParam& param : query.params) {
      const std::string key = expr::AsciiUpper(param.name);
      if (set != settings_.parameters.end() && set->second.count(key)) {
        params[param.name] = set->second.at(key);
      } else if (param.value) {
        params[param.name] = ToParam(param.value->Evaluate(*context_));
      } else {
        params[param.name] = DefaultParam(param);
      }
    }
    if (query.database < 0) {
      throw Error(errnum::kEngineFailure, "Vantorel report engine",
                  "query \"" + query.name + "\" has no database to run on");
    }
    try {
      cursors_[static_cast<size_t>(q)].Open(services_.connection(query.database), sql, params);
    } catch (const Error& error) {
      throw Error(error.number(), error.source(),
                  "query \"" + query.name + "\": " + error.description(), error.system_code());
    }
    primed_[static_cast<size_t>(q)] = false;
  }

  // The next row of query "q": the primed first row once, then the cursor's rows.
  bool NextRow(int q) {
    if (primed_[static_cast<size_t>(q)]) {
      primed_[static_cast<size_t>(q)] = false;
      return cursors_[static_cast<size_t>(q)].has_current();
    }
    return cursors_[static_cast<size_t>(q)].Next();
  }

  bool HasRows(int q) const {
    const QueryCursor& cursor = cursors_[static_cast<size_t>(q)];
    return primed_[static_cast<size_t>(q)] ? cursor.has_current() : cursor.has_next();
  }

  bool HasMoreRows(int q) const { return cursors_[static_cast<size_t>(q)].has_next(); }

  // Fills one data band. "trailing": a footer of an outer band or the summary prints right after
  // this band ends, so its last row is held to go with it.
  void FillData(const CompiledData& data, bool trailing) {
    if (data.query >= 0 && !primed_[static_cast<size_t>(data.query)]) OpenQuery(data.query);
    tracker_->StartBand(data.index);
    const bool empty = data.query >= 0 ? !HasRows(data.query) : data.rows <= 0;
    if (empty) {
      if (data.header && data.header->print_if_empty) {
        ReleaseCarry();
        PlaceBand(*data.header, Flow::kColumn);
      }
      tracker_->EndBand(data.index);
      if (data.footer && data.footer->print_if_empty) PlaceBand(*data.footer, Flow::kColumn);
      return;
    }
    // What an earlier band held back goes out before this band's first header or row.
    ReleaseCarry();
    const size_t repeat_mark = repeats_.size();
    // Headers wait for the first row under them, so none is left alone at the foot of a page.
    int waiting = 0;
    auto hold = [&] {
      BeginBuffer();
      ++waiting;
    };
    if (data.header) {
      hold();
      PlaceBand(*data.header, Flow::kColumn);
      if (data.header->repeat) repeats_.push_back(&*data.header);
    }
    const int saved_line = context_->line;
    const size_t levels = data.groups.size();
    std::vector<expr::Value> keys(levels);
    int line = 0;
    bool more = data.query >= 0 ? NextRow(data.query) : true;
    int static_rows = 1;
    auto start_groups = [&](size_t from) {
      for (size_t level = from; level < levels; ++level) {
        const CompiledGroup& group = data.groups[level];
        tracker_->StartGroup(data.index, static_cast<int>(level));
        keys[level] = group.condition ? group.condition->Evaluate(*context_) : expr::Value();
        // Every group but the first begins a page of its own.
        if (group.start_new_page && line > 0 && page_has_body_) NewPage(false);
        if (group.keep_together) BeginBuffer();
        if (group.header) {
          hold();
          PlaceBand(*group.header, Flow::kColumn);
          if (group.repeat_header) repeats_.push_back(&*group.header);
        }
      }
    };
    auto end_groups = [&](size_t down_to) {
      for (size_t level = levels; level-- > down_to;) {
        const CompiledGroup& group = data.groups[level];
        tracker_->EndGroup(data.index, static_cast<int>(level));
        if (group.footer) PlaceBand(*group.footer, Flow::kColumn);
        if (group.repeat_header && group.header && !repeats_.empty() &&
            repeats_.back() == &*group.header) {
          repeats_.pop_back();
        }
        if (group.keep_together) EndBuffer();
      }
    };
    const bool across = page_.columns > 1 && page_.columns_across;
    start_groups(0);
    while (more) {
      context_->line = ++line;
      tracker_->Row(data.index, *context_);
      const bool last = data.query >= 0 ? !HasMoreRows(data.query) : static_rows >= data.rows;
      // The groups the next row starts (from the outermost that changes); all of them after the
      // last row.
      const size_t changed = last ? 0 : data.query >= 0 ? NextGroupChange(data, keys) : levels;
      ReleaseCarry();
      // A row that footers follow waits for them, so no footer (nor the summary) begins a page
      // without a row of its own above it.
      const bool carried = !across && FootersFollow(data, changed, last, trailing);
      if (carried) OpenCarry();
      if (data.band.keep_together) BeginBuffer();
      PlaceBand(data.band, across ? Flow::kCell : Flow::kColumn);
      for (; waiting > 0; --waiting) EndBuffer();
      CountOnPage(data.index);
      for (const CompiledData& detail : data.details) FillData(detail, carried);
      if (data.band.keep_together) EndBuffer();
      if (last) break;
      end_groups(changed);
      // Placed while their row is still current: headers repeated above them show its fields.
      ReleaseCarry();
      more = data.query >= 0 ? NextRow(data.query) : ++static_rows <= data.rows;
      start_groups(changed);
    }
    end_groups(0);
    EndCellRow();
    tracker_->EndBand(data.index);
    repeats_.resize(std::min(repeats_.size(), repeat_mark));
    if (data.footer) PlaceBand(*data.footer, Flow::kColumn);
    if (!trailing) ReleaseCarry();
    context_->line = saved_line;
  }

  // The outermost group level whose key the next row of "data" changes; the number of levels
  // when it changes none.
  size_t NextGroupChange(const CompiledData& data, const std::vector<expr::Value>& keys) {
    const size_t levels = data.groups.size();
    size_t changed = levels;
    if (levels == 0) return changed;
    cursors_[static_cast<size_t>(data.query)].PeekNext([&] {
      for (size_t level = 0; level < levels; ++level) {
        const CompiledGroup& group = data.groups[level];
        const expr::Value key =
            group.condition ? group.condition->Evaluate(*context_) : expr::Value();
        if (!SameKey(key, keys[level])) {
          changed = level;
          break;
        }
      }
      return 0;
    });
    return changed;
  }

  // Whether footers print right after the current row: those of the groups that end with it
  // (from level "changed" in), and after the band's last row its own footer, or what follows
  // the band ("trailing"). A footer that starts a page of its own needs no row with it.
  static bool FootersFollow(const CompiledData& data, size_t changed, bool last, bool trailing) {
    const auto prints_after = [](const std::optional<CompiledBand>& footer) {
      return footer && !footer->start_new_page;
    };
    for (size_t level = changed; level < data.groups.size(); ++level) {
      if (prints_after(data.groups[level].footer)) return true;
    }
    return last && (trailing || prints_after(data.footer));
  }

  // Adds the current row of "data" to the page totals of the page it lands on: now, or when
  // the blocks held back with it are placed.
  void CountOnPage(int data) {
    AggregateTracker::PageRow row = tracker_->TakePageRow(data, *context_);
    if (row.values.empty() && row.counted.empty()) return;
    if (buffer_depth_ > 0) {
      buffer_.push_back({BandBlock{}, Flow::kColumn, nullptr, std::move(row)});
    } else {
      tracker_->AddPageRow(row);
    }
  }

  // --- pages ------------------------------------------------------------------------------

  float PageHeight() const {
    return page_.roll ? std::numeric_limits<float>::max() / 4 : page_.size.height;
  }

  float BodyLimit() const {
    float limit = PageHeight() - page_.margin_bottom;
    if (report_.page_footer) limit -= report_.page_footer->height;
    if (report_.column_footer) limit -= report_.column_footer->height;
    return limit;
  }

  // Where the body starts on a page after the first: below the page and column headers.
  float NextPageTop() const {
    float top = page_.margin_top;
    if (report_.page_header) top += report_.page_header->height;
    if (report_.column_header) top += report_.column_header->height;
    return top;
  }

  float ColumnWidth() const {
    const PageSetup& page = page_;
    const float content = page.size.width - page.margin_left - page.margin_right;
    return (content - page.column_gap * static_cast<float>(page.columns - 1)) /
           static_cast<float>(page.columns);
  }

  float ColumnX(int column) const {
    return page_.margin_left + static_cast<float>(column) * (ColumnWidth() + page_.column_gap);
  }

  void NewPage(bool first) {
    if (!first) ClosePage(false);
    EndCellRow();
    Page page;
    page.size = page_.size;
    result_.document.pages.push_back(std::move(page));
    page_number_ = static_cast<int>(result_.document.pages.size());
    context_->page = page_number_;
    tracker_->StartPage(page_number_);
    y_ = page_.margin_top;
    column_ = 0;
    page_has_body_ = false;
    header_range_ = {0, 0};
    if (first && report_.title) PlaceBand(*report_.title, Flow::kFullWidth);
    if (report_.page_header && (!first || report_.page_header->print_on_first_page)) {
      const size_t begin = CurrentPage().items.size();
      PlaceBand(*report_.page_header, Flow::kFullWidth);
      header_range_ = {begin, CurrentPage().items.size()};
    }
    page_headers_.push_back(header_range_);
    column_top_ = y_;
    StartColumn();
  }

  // Column header and repeated headers at the top of a column.
  void StartColumn() {
    if (report_.column_header) PlaceBand(*report_.column_header, Flow::kColumn, true);
    for (const CompiledBand* band : std::vector<const CompiledBand*>(repeats_)) {
      PlaceBand(*band, Flow::kColumn, true);
    }
  }

  void ClosePage(bool last) {
    EndCellRow();
    tracker_->EndPage();
    Page& page = CurrentPage();
    if (page_.roll) {
      float height = y_ + page_.margin_bottom;
      if (report_.page_footer) height += report_.page_footer->height;
      if (report_.column_footer) height += report_.column_footer->height;
      page.size.height = height;
    }
    const float footer_top = page.size.height - page_.margin_bottom -
                             (report_.page_footer ? report_.page_footer->height : 0);
    if (report_.column_footer) {
      y_ = footer_top - report_.column_footer->height;
      PlaceAt(*report_.column_footer, page_.margin_left, y_);
    }
    if (report_.page_footer && (page_number_ > 1 || report_.page_footer->print_on_first_page) &&
        (!last || report_.page_footer->print_on_last_page)) {
      PlaceAt(*report_.page_footer, page_.margin_left, footer_top);
    }
  }

  Page& CurrentPage() { return result_.document.pages.back(); }

  // --- placing blocks -------------------------------------------------------------------

  void BeginBuffer() {
    if (buffer_depth_++ == 0) {
      buffer_.clear();
      held_repeats_ = repeats_;
    }
  }

  // Places what was held as one: moved on together when it does not fit where it would land
  // but does on a fresh column or page, else in order as usual. Nothing is placed until the
  // outermost hold ends.
  void EndBuffer() {
    if (--buffer_depth_ > 0) return;
    std::vector<Held> blocks = std::move(buffer_);
    buffer_.clear();
    // Like a single band, the last one may leave its empty foot off the page.
    float total = 0;
    float extent = 0;
    for (const Held& held : blocks) {
      if (held.page_row) continue;
      extent = total + BandRenderer::ContentBottom(held.block);
      total += held.block.height;
    }
    // The headers that repeat above them on a fresh page: those that repeated when the first of
    // them was placed (a group's header above its last row and footer, the data band's header
    // above the last rows and the summary), and any since, except headers among the held blocks,
    // which start the page themselves.
    std::vector<const CompiledBand*> repeats = held_repeats_;
    for (const CompiledBand* band : repeats_) {
      if (std::find(repeats.begin(), repeats.end(), band) == repeats.end()) repeats.push_back(band);
    }
    std::erase_if(repeats, [&](const CompiledBand* band) {
      return std::any_of(blocks.begin(), blocks.end(),
                         [&](const Held& held) { return held.band == band; });
    });
    float fresh_top = std::min(column_top_, NextPageTop());
    for (const CompiledBand* band : repeats) fresh_top += band->height;
    if (y_ + extent > BodyLimit() + 0.01f && page_has_body_ &&
        extent <= BodyLimit() - fresh_top + 0.01f) {
      std::swap(repeats_, repeats);
      NextColumnOrPage();
      std::swap(repeats_, repeats);
    }
    for (Held& held : blocks) {
      if (held.page_row) {
        tracker_->AddPageRow(*held.page_row);
        continue;
      }
      if (!held.block.items.empty() || held.block.height > 0) page_has_body_ = true;
      // Not rendered again for a page it moves to: its row is long past.
      Place(std::move(held.block), held.flow, nullptr);
    }
  }

  // Holds back a row for the footers that follow it; ReleaseCarry places them all.
  void OpenCarry() {
    BeginBuffer();
    carry_open_ = true;
  }

  void ReleaseCarry() {
    if (!carry_open_) return;
    carry_open_ = false;
    EndBuffer();
  }

  void PlaceBand(const CompiledBand& band, Flow flow, bool repeat = false) {
    std::optional<BandBlock> block = renderer_->Render(band);
    if (!block) return;
    if (band.start_new_page && page_has_body_ && !repeat) {
      ReleaseCarry();
      NewPage(false);
    }
    // An empty band of no height (one that only walks rows) puts nothing on the page.
    const bool content = !block->items.empty() || block->height > 0;
    Place(std::move(*block), flow, &band);
    for (const CompiledBand& child : band.children) PlaceBand(child, flow, repeat);
    if (content && !repeat && band.kind != BandKind::kPageHeader &&
        band.kind != BandKind::kColumnHeader) {
      page_has_body_ = true;
    }
  }

  // Places a band at a fixed spot (page footer, column footer).
  void PlaceAt(const CompiledBand& band, float x, float y) {
    std::optional<BandBlock> block = renderer_->Render(band);
    if (!block) return;
    Emit(std::move(*block), x, y);
  }

  void NextColumnOrPage() {
    if (page_.columns > 1 && !page_.columns_across && column_ + 1 < page_.columns) {
      ++column_;
      y_ = column_top_;
      StartColumn();
      return;
    }
    NewPage(false);
  }

  void Place(BandBlock block, Flow flow, const CompiledBand* band) {
    if (buffer_depth_ > 0) {
      buffer_.push_back({std::move(block), flow, band});
      return;
    }
    if (flow == Flow::kCell) {
      PlaceCell(std::move(block), band);
      return;
    }
    EndCellRow();
    if (y_ + block.height > BodyLimit() + 0.01f &&
        y_ + BandRenderer::ContentBottom(block) <= BodyLimit() + 0.01f) {
      // Only empty space at its foot runs past the page: the band stays here, the space goes.
      const float x = flow == Flow::kFullWidth ? page_.margin_left : ColumnX(column_);
      Emit(std::move(block), x, y_);
      y_ = BodyLimit();
      return;
    }
    if (y_ + block.height > BodyLimit() + 0.01f && page_has_body_) {
      NextColumnOrPage();
      // Page numbers shown in the band belong to the page it lands on.
      if (block.uses_page && band != nullptr) {
        if (std::optional<BandBlock> again = renderer_->Render(*band)) block = std::move(*again);
      }
    }
    // Taller than the room left on a fresh page: print what fits and continue overleaf.
    if (y_ + block.height > BodyLimit() + 0.01f) {
      BlockCutter cutter(std::move(block));
      while (y_ + cutter.height() > BodyLimit() + 0.01f) {
        const float room = BodyLimit() - y_;
        if (room < 1) {
          NextColumnOrPage();
          continue;
        }
        BandBlock part = cutter.Cut(room, result_.document);
        const float x = flow == Flow::kFullWidth ? page_.margin_left : ColumnX(column_);
        Emit(std::move(part), x, y_);
        y_ = BodyLimit();
        NextColumnOrPage();
        if (cutter.empty()) return;
      }
      block = cutter.Rest();
    }
    const float x = flow == Flow::kFullWidth ? page_.margin_left : ColumnX(column_);
    const float height = block.height;
    Emit(std::move(block), x, y_);
    y_ += height;
  }

  // Label sheets: rows of cells, left to right, then down.
  void PlaceCell(BandBlock block, const CompiledBand* band) {
    if (column_ == 0 && y_ + block.height > BodyLimit() + 0.01f && page_has_body_) {
      NewPage(false);
      if (block.uses_page && band != nullptr) {
        if (std::optional<BandBlock> again = renderer_->Render(*band)) block = std::move(*again);
      }
    }
    cell_row_height_ = std::max(cell_row_height_, block.height);
    Emit(std::move(block), ColumnX(column_), y_);
    page_has_body_ = true;
    if (++column_ >= page_.columns) EndCellRow();
  }

  void EndCellRow() {
    if (cell_row_height_ <= 0 && column_ == 0) return;
    if (page_.columns_across) {
      y_ += cell_row_height_;
      column_ = 0;
    }
    cell_row_height_ = 0;
  }

  void Emit(BandBlock block, float x, float y) {
    Page& page = CurrentPage();
    const size_t base = page.items.size();
    for (Item& item : block.items) {
      if (auto* line = std::get_if<LineItem>(&item)) {
        line->from.x += x;
        line->to.x += x;
        line->from.y += y;
        line->to.y += y;
      } else {
        RectF* box = nullptr;
        if (auto* t = std::get_if<TextItem>(&item)) box = &t->box;
        if (auto* r = std::get_if<RectItem>(&item)) box = &r->box;
        if (auto* i = std::get_if<ImageItem>(&item)) box = &i->box;
        if (auto* b = std::get_if<BarcodeItem>(&item)) box = &b->box;
        if (auto* g = std::get_if<GroupItem>(&item)) box = &g->clip;
        if (box != nullptr) {
          box->x += x;
          box->y += y;
        }
      }
      page.items.push_back(std::move(item));
    }
    for (DeferredText& deferred : block.deferred) {
      deferred.item += base;
      deferred_.push_back({result_.document.pages.size() - 1, std::move(deferred)});
    }
    for (Overflow& overflow : block.overflows) {
      overflow.page = result_.document.pages.size();
      result_.document.overflows.push_back(std::move(overflow));
    }
  }

  // --- the end ------------------------------------------------------------------------------

  void Finish() {
    Document& document = result_.document;
    // A page header that must not print on the last page comes off it again.
    if (report_.page_header && !report_.page_header->print_on_last_page &&
        document.pages.size() > 1) {
      const auto [begin, end] = page_headers_.back();
      auto& items = document.pages.back().items;
      if (end > begin) {
        items.erase(items.begin() + static_cast<ptrdiff_t>(begin),
                    items.begin() + static_cast<ptrdiff_t>(end));
        const size_t last = document.pages.size() - 1;
        std::vector<PlacedDeferred> kept;
        for (PlacedDeferred& entry : deferred_) {
          if (entry.page == last && entry.text.item >= begin && entry.text.item < end) continue;
          if (entry.page == last && entry.text.item >= end) entry.text.item -= end - begin;
          kept.push_back(std::move(entry));
        }
        deferred_ = std::move(kept);
      }
    }
    context_->total_pages = static_cast<int>(document.pages.size());
    for (const PlacedDeferred& entry : deferred_) {
      context_->UseSnapshot(entry.text.snapshot.get());
      std::string text = entry.text.text ? renderer_->TextOf(*entry.text.text, entry.text.format,
                                                             entry.text.hide_zero, entry.text.rich)
                                         : std::string();
      Item& item = document.pages[entry.page].items[entry.text.item];
      auto* text_item = std::get_if<TextItem>(&item);
      if (text_item == nullptr) continue;
      text_item->text = std::move(text);
      if (entry.text.object != nullptr && entry.text.band != nullptr) {
        std::optional<Overflow> overflow = FindOverflow(
            *text_item, document.styles[text_item->style], *entry.text.object, *entry.text.band);
        if (overflow) {
          overflow->page = entry.page + 1;
          document.overflows.push_back(std::move(*overflow));
        }
      }
    }
    context_->UseSnapshot(nullptr);
  }

  const CompiledReport& report_;
  const PageSetup page_;
  const BoundSettings& settings_;
  const FillServices& services_;
  RunTables tables_;
  std::vector<QueryCursor> cursors_;
  std::vector<bool> primed_;
  std::vector<TextTemplatePtr> memo_texts_;
  std::unique_ptr<AggregateTracker> tracker_;
  std::unique_ptr<FillContext> context_;
  std::unique_ptr<BandRenderer> renderer_;
  FillResult result_;

  int page_number_ = 0;
  float y_ = 0;
  float column_top_ = 0;
  int column_ = 0;
  float cell_row_height_ = 0;
  bool page_has_body_ = false;
  std::pair<size_t, size_t> header_range_{0, 0};
  std::vector<std::pair<size_t, size_t>> page_headers_;
  std::vector<const CompiledBand*> repeats_;
  // Blocks held back to be placed together (keep-together, a header with its first row, a row
  // with the footers after it), and the page totals of their rows, added where they land.
  struct Held {
    BandBlock block;
    Flow flow;
    const CompiledBand* band;
    std::optional<AggregateTracker::PageRow> page_row = std::nullopt;
  };
  int buffer_depth_ = 0;
  std::vector<Held> buffer_;
  std::vector<const CompiledBand*> held_repeats_;  // the repeating headers when holding began
  bool carry_open_ = false;
  std::vector<PlacedDeferred> deferred_;
};

}  // namespace

void SetClock(FillServices& services, Date now) {
  Date::Parts parts = now.ToParts();
  char time[8];
  std::snprintf(time, sizeof time, "%02d:%02d", parts.hour, parts.minute);
  services.time = time;
  services.now = now;
  parts.hour = parts.minute = parts.second = 0;
  services.today = Date::FromParts(parts);
}

namespace {

// One copy of the report on pages of "page"; laid out again knowing the page count when a
// condition reads it (a condition may change the count, so until it holds).
FillResult FillCopy(const CompiledReport& report, const BoundSettings& settings,
                    const FillServices& services, const PageSetup& page) {
  FillResult result = Filler(report, settings, services, page).Run();
  if (!ConditionsReadTotalPages(report)) return result;
  for (int pass = 0; pass < 3; ++pass) {
    const size_t pages = result.document.pages.size();
    result = Filler(report, settings, services, page).Run(static_cast<int>(pages));
    if (result.document.pages.size() == pages) break;
  }
  return result;
}

void ShiftDown(std::vector<Item>& items, float dy) {
  for (Item& item : items) {
    std::visit(
        [&](auto& i) {
          using T = std::decay_t<decltype(i)>;
          if constexpr (std::is_same_v<T, LineItem>) {
            i.from.y += dy;
            i.to.y += dy;
          } else if constexpr (std::is_same_v<T, GroupItem>) {
            i.clip.y += dy;
            ShiftDown(i.items, dy);
          } else {
            i.box.y += dy;
          }
        },
        item);
  }
}

// Copies that share sheets: page n of each copy in its slot, top to bottom, on sheet n of their
// group. "first_pages" holds where each copy's pages start in "document".
void ShareSheets(Document& document, const std::vector<size_t>& first_pages, int per_sheet,
                 SizeF sheet_size, float slot_height) {
  std::vector<Page> copy_pages = std::move(document.pages);
  document.pages.clear();
  const size_t copies = first_pages.size();
  const auto pages_of = [&](size_t copy) {
    const size_t end = copy + 1 < copies ? first_pages[copy + 1] : copy_pages.size();
    return end - first_pages[copy];
  };
  std::vector<size_t> sheet_of(copy_pages.size());  // a copy's page → the sheet it is on
  for (size_t group = 0; group < copies; group += static_cast<size_t>(per_sheet)) {
    const size_t group_end = std::min(copies, group + static_cast<size_t>(per_sheet));
    size_t sheets = 0;
    for (size_t copy = group; copy < group_end; ++copy) sheets = std::max(sheets, pages_of(copy));
    for (size_t n = 0; n < sheets; ++n) {
      Page sheet;
      sheet.size = sheet_size;
      for (size_t copy = group; copy < group_end; ++copy) {
        if (n >= pages_of(copy)) continue;
        sheet_of[first_pages[copy] + n] = document.pages.size();
        std::vector<Item>& items = copy_pages[first_pages[copy] + n].items;
        ShiftDown(items, static_cast<float>(copy - group) * slot_height);
        std::move(items.begin(), items.end(), std::back_inserter(sheet.items));
      }
      document.pages.push_back(std::move(sheet));
    }
  }
  for (Overflow& overflow : document.overflows) overflow.page = sheet_of[overflow.page - 1] + 1;
}

}  // namespace

FillResult Fill(const CompiledReport& report, const RunSettings& run_settings,
                const FillServices& services) {
  const BoundSettings settings = Bind(report, run_settings);
  const CopySetup& copies = report.copies;
  if (copies.count <= 1 && copies.per_sheet <= 1) {
    return FillCopy(report, settings, services, report.page);
  }
  // Each copy is a whole document with its own page numbers; one that shares a sheet is laid
  // out on its slot of the sheet.
  PageSetup slot = report.page;
  slot.size.height /= static_cast<float>(copies.per_sheet);
  FillResult result;
  std::vector<size_t> first_pages;
  for (int copy = 1; copy <= copies.count; ++copy) {
    FillServices copy_services = services;
    copy_services.copy = copy;
    const size_t label = static_cast<size_t>(copy - 1);
    copy_services.copy_label = label < copies.labels.size() ? copies.labels[label] : "";
    FillResult one = FillCopy(report, settings, copy_services, slot);
    first_pages.push_back(result.document.pages.size());
    if (copy == 1) {
      result = std::move(one);
      continue;
    }
    AppendPages(result.document, std::move(one.document));
    for (std::string& warning : one.warnings) {
      if (std::find(result.warnings.begin(), result.warnings.end(), warning) ==
          result.warnings.end()) {
        result.warnings.push_back(std::move(warning));
      }
    }
  }
  if (copies.per_sheet > 1) {
    ShareSheets(result.document, first_pages, copies.per_sheet, report.page.size, slot.size.height);
  }
  return result;
}

}  // namespace vantorel::report
