// The fill: the bands in order — title, data bands row by row with their groups, headers,
// footers and details, summary — over the report's queries (report_queries.h), with group breaks
// followed by a GroupTracker and the blocks placed on pages by a PageBuilder; then the copies of
// the report, each a document of its own, and the sheets they share.
#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <variant>

#include "report/expr/text_util.h"
#include "report/fill/band_renderer.h"
#include "report/fill/fill.h"
#include "report/fill/fill_context.h"
#include "report/fill/group_tracker.h"
#include "report/fill/page_builder.h"
#include "report/fill/report_queries.h"

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
        queries_(report, settings.query_sql, settings.parameters, services),
        memo_texts_(report.memos.size()) {}

  // "total_pages": the page count of an earlier layout of the same run, or 0.
  FillResult Run(int total_pages = 0) {
    Prepare(total_pages);
    queries_.OpenOnce(*context_);
    pages_->NewPage(/*first=*/true);
    // The last row of the data goes with the summary: a grand total never sits alone on a page.
    const bool summary_follows = report_.summary && !report_.summary->start_new_page;
    for (const CompiledData& data : report_.data) FillData(data, summary_follows);
    tracker_->EndReport();
    if (report_.summary) pages_->PlaceBand(*report_.summary, Flow::kFullWidth);
    pages_->ReleaseCarry();
    pages_->ClosePage(/*last=*/true);
    pages_->Finish();
    return std::move(result_);
  }

 private:
  // Binds the texts and variables the run set, evaluates the variables and makes the fill's
  // parts.
  void Prepare(int total_pages) {
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
    context_ = std::make_unique<FillContext>(tables_, queries_.cursors(), *tracker_, services_,
                                             std::vector<expr::Value>(report_.variables.size()));
    // Variables are constants of the run: evaluated once, before any row is read.
    std::vector<expr::Value> variables(report_.variables.size());
    for (size_t v = 0; v < variables.size(); ++v) {
      variables[v] = variable_expressions[v] ? variable_expressions[v]->Evaluate(*context_)
                                             : expr::Value::Text(variable_texts[v]);
    }
    context_ = std::make_unique<FillContext>(tables_, queries_.cursors(), *tracker_, services_,
                                             std::move(variables));
    context_->total_pages = total_pages;
    renderer_ = std::make_unique<BandRenderer>(report_, memo_texts_, *context_, result_.document,
                                               result_.warnings);
    pages_ = std::make_unique<PageBuilder>(report_, page_, *context_, *tracker_, *renderer_,
                                           result_.document);
    result_.document.metadata = report_.info;
    if (result_.document.metadata.title.empty()) result_.document.metadata.title = report_.name;
    if (result_.document.metadata.creator.empty()) result_.document.metadata.creator = "Vantorel";
  }

  // Fills one data band. "trailing": a footer of an outer band or the summary prints right after
  // this band ends, so its last row is held to go with it.
  void FillData(const CompiledData& data, bool trailing) {
    if (data.query >= 0) queries_.OpenForBand(data.query, *context_);
    tracker_->StartBand(data.index);
    const bool empty = data.query >= 0 ? !queries_.HasRows(data.query) : data.rows <= 0;
    if (empty) {
      FillEmptyData(data);
      return;
    }
    // What an earlier band held back goes out before this band's first header or row.
    pages_->ReleaseCarry();
    const size_t repeat_mark = pages_->repeat_count();
    // Headers wait for the first row under them, so none is left alone at the foot of a page.
    int waiting = 0;
    if (data.header) {
      pages_->Hold();
      ++waiting;
      pages_->PlaceBand(*data.header, Flow::kColumn);
      if (data.header->repeat) pages_->Repeat(*data.header);
    }
    const int saved_line = context_->line;
    GroupTracker groups(data, *context_, *tracker_, *pages_);
    int line = 0;
    bool more = data.query >= 0 ? queries_.NextRow(data.query) : true;
    int static_rows = 1;
    const bool across = page_.columns > 1 && page_.columns_across;
    waiting += groups.Start(0, /*after_rows=*/false);
    while (more) {
      context_->line = ++line;
      tracker_->Row(data.index, *context_);
      const bool last =
          data.query >= 0 ? !queries_.HasMoreRows(data.query) : static_rows >= data.rows;
      // The groups the next row starts (from the outermost that changes); all of them after the
      // last row.
      const size_t changed = last              ? 0
                             : data.query >= 0 ? groups.NextChange(queries_.cursor(data.query))
                                               : groups.levels();
      pages_->ReleaseCarry();
      // A row that footers follow waits for them, so no footer (nor the summary) begins a page
      // without a row of its own above it.
      const bool carried = !across && groups.FootersFollow(changed, last, trailing);
      if (carried) pages_->OpenCarry();
      if (data.band.keep_together) pages_->Hold();
      pages_->PlaceBand(data.band, across ? Flow::kCell : Flow::kColumn);
      for (; waiting > 0; --waiting) pages_->Release();
      // Page totals count the row on the page where it lands.
      pages_->CountRow(tracker_->TakePageRow(data.index, *context_));
      for (const CompiledData& detail : data.details) FillData(detail, carried);
      if (data.band.keep_together) pages_->Release();
      if (last) break;
      groups.End(changed);
      // Placed while their row is still current: headers repeated above them show its fields.
      pages_->ReleaseCarry();
      more = data.query >= 0 ? queries_.NextRow(data.query) : ++static_rows <= data.rows;
      waiting += groups.Start(changed, /*after_rows=*/true);
    }
    groups.End(0);
    pages_->EndCellRow();
    tracker_->EndBand(data.index);
    pages_->KeepRepeats(repeat_mark);
    if (data.footer) pages_->PlaceBand(*data.footer, Flow::kColumn);
    if (!trailing) pages_->ReleaseCarry();
    context_->line = saved_line;
  }

  // A data band without rows: only its header and footer, and those only when they print so.
  void FillEmptyData(const CompiledData& data) {
    if (data.header && data.header->print_if_empty) {
      pages_->ReleaseCarry();
      pages_->PlaceBand(*data.header, Flow::kColumn);
    }
    tracker_->EndBand(data.index);
    if (data.footer && data.footer->print_if_empty) {
      pages_->PlaceBand(*data.footer, Flow::kColumn);
    }
  }

  const CompiledReport& report_;
  const PageSetup page_;
  const BoundSettings& settings_;
  const FillServices& services_;
  RunTables tables_;
  ReportQueries queries_;
  std::vector<TextTemplatePtr> memo_texts_;
  std::unique_ptr<AggregateTracker> tracker_;
  std::unique_ptr<FillContext> context_;
  std::unique_ptr<BandRenderer> renderer_;
  std::unique_ptr<PageBuilder> pages_;
  FillResult result_;
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
