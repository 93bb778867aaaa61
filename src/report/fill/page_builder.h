// Places the blocks of rendered bands on the pages of the document being filled: starts and closes
// pages with their title, page and column headers and footers, moves on to the next column or
// page when a block does not fit, cuts blocks taller than a page, lays label cells across,
// repeats headers at the top of each column, holds blocks back to be placed together
// (keep-together, a header with its first row, a row with the footers after it), and at the end
// completes the texts whose values were not known when they were placed. Also puts the pages of
// copies that share a sheet on their sheets.
//
// Thread-safety: belongs to one fill.
#ifndef VANTOREL_REPORT_FILL_PAGE_BUILDER_H_
#define VANTOREL_REPORT_FILL_PAGE_BUILDER_H_

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "report/compile/compiled_report.h"
#include "report/document/document.h"
#include "report/fill/aggregates.h"
#include "report/fill/band_renderer.h"
#include "report/fill/fill_context.h"

namespace vantorel::report {

// How a band uses the width of the page.
enum class Flow {
  kFullWidth,  // from margin to margin (title, summary, page header and footer)
  kColumn,     // in the current column
  kCell,       // in the next cell of a row of labels laid across
};

class PageBuilder {
 public:
  // Lays bands out on pages of "page" in "document"; the page number is kept in "context" and
  // page totals in "aggregates".
  PageBuilder(const CompiledReport& report, const PageSetup& page, FillContext& context,
              AggregateTracker& aggregates, BandRenderer& renderer, Document& document);

  PageBuilder(const PageBuilder&) = delete;
  PageBuilder& operator=(const PageBuilder&) = delete;

  // Closes the current page (unless "first") and starts the next: title on the first, page
  // header, column header and repeated headers.
  void NewPage(bool first);
  // Places the column and page footers; "last": the report ends on this page.
  void ClosePage(bool last);

  // Renders "band" for the current row and places it with its child bands; a band that starts a
  // new page does so. "repeat": a header repeated at the top of a column.
  void PlaceBand(const CompiledBand& band, Flow flow, bool repeat = false);
  // Ends a row of label cells, so what follows goes below it.
  void EndCellRow();

  // Holds back what is placed from now until the matching Release, to be placed as one: moved on
  // together when it does not fit where it would land but does on a fresh column or page.
  // Holds nest; nothing is placed until the outermost ends.
  void Hold();
  void Release();
  // Holds back a row for the footers that follow it; ReleaseCarry places them all. Does nothing
  // when no carry is open.
  void OpenCarry();
  void ReleaseCarry();

  // Adds a row's page totals on the page the row lands on: now, or when what is held is placed.
  void CountRow(AggregateTracker::PageRow row);

  // Whether the current page holds anything besides headers.
  bool page_has_body() const { return page_has_body_; }

  // The headers repeated at the top of every column while their band or group lasts.
  size_t repeat_count() const { return repeats_.size(); }
  void Repeat(const CompiledBand& header) { repeats_.push_back(&header); }
  // Stops repeating "header" when it is the last one repeated.
  void StopRepeating(const CompiledBand& header);
  // Stops repeating the headers after the first "count".
  void KeepRepeats(size_t count);

  // Completes the texts placed before their values were known (total pages, totals printed
  // above their rows) and takes the page header off the last page when it must not print there.
  void Finish();

 private:
  struct PlacedDeferred {
    size_t page;
    DeferredText text;
  };
  struct Held {
    BandBlock block;
    Flow flow;
    const CompiledBand* band;
    std::optional<AggregateTracker::PageRow> page_row = std::nullopt;
  };

  float PageHeight() const;
  float BodyLimit() const;
  float NextPageTop() const;
  float ColumnWidth() const;
  float ColumnX(int column) const;
  void StartColumn();
  Page& CurrentPage() { return document_.pages.back(); }
  void PlaceAt(const CompiledBand& band, float x, float y);
  void NextColumnOrPage();
  void Place(BandBlock block, Flow flow, const CompiledBand* band);
  void PlaceCell(BandBlock block, const CompiledBand* band);
  void Emit(BandBlock block, float x, float y);
  void DropLastPageHeader();

  const CompiledReport& report_;
  const PageSetup page_;
  FillContext& context_;
  AggregateTracker& aggregates_;
  BandRenderer& renderer_;
  Document& document_;

  int page_number_ = 0;
  float y_ = 0;
  float column_top_ = 0;
  int column_ = 0;
  float cell_row_height_ = 0;
  bool page_has_body_ = false;
  std::pair<size_t, size_t> header_range_{0, 0};
  std::vector<std::pair<size_t, size_t>> page_headers_;  // each page's header items
  std::vector<const CompiledBand*> repeats_;
  int hold_depth_ = 0;
  std::vector<Held> held_;
  std::vector<const CompiledBand*> held_repeats_;  // the repeating headers when holding began
  bool carry_open_ = false;
  std::vector<PlacedDeferred> deferred_;
};

// Copies that share sheets: page n of each copy in its slot, top to bottom, on sheet n of their
// group of "per_sheet" copies. "first_pages" holds where each copy's pages start in "document".
void ShareSheets(Document& document, const std::vector<size_t>& first_pages, int per_sheet,
                 SizeF sheet_size, float slot_height);

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_FILL_PAGE_BUILDER_H_
