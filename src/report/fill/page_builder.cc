// Placing rendered bands on pages.
#include "report/fill/page_builder.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <type_traits>
#include <variant>

namespace vantorel::report {
namespace {

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

}  // namespace

PageBuilder::PageBuilder(const CompiledReport& report, const PageSetup& page, FillContext& context,
                         AggregateTracker& aggregates, BandRenderer& renderer, Document& document)
    : report_(report),
      page_(page),
      context_(context),
      aggregates_(aggregates),
      renderer_(renderer),
      document_(document) {}

float PageBuilder::PageHeight() const {
  return page_.roll ? std::numeric_limits<float>::max() / 4 : page_.size.height;
}

float PageBuilder::BodyLimit() const {
  float limit = PageHeight() - page_.margin_bottom;
  if (report_.page_footer) limit -= report_.page_footer->height;
  if (report_.column_footer) limit -= report_.column_footer->height;
  return limit;
}

// Where the body starts on a page after the first: below the page and column headers.
float PageBuilder::NextPageTop() const {
  float top = page_.margin_top;
  if (report_.page_header) top += report_.page_header->height;
  if (report_.column_header) top += report_.column_header->height;
  return top;
}

float PageBuilder::ColumnWidth() const {
  const PageSetup& page = page_;
  const float content = page.size.width - page.margin_left - page.margin_right;
  return (content - page.column_gap * static_cast<float>(page.columns - 1)) /
         static_cast<float>(page.columns);
}

float PageBuilder::ColumnX(int column) const {
  return page_.margin_left + static_cast<float>(column) * (ColumnWidth() + page_.column_gap);
}

void PageBuilder::NewPage(bool first) {
  if (!first) ClosePage(false);
  EndCellRow();
  Page page;
  page.size = page_.size;
  document_.pages.push_back(std::move(page));
  page_number_ = static_cast<int>(document_.pages.size());
  context_.page = page_number_;
  aggregates_.StartPage(page_number_);
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
void PageBuilder::StartColumn() {
  if (report_.column_header) PlaceBand(*report_.column_header, Flow::kColumn, true);
  for (const CompiledBand* band : std::vector<const CompiledBand*>(repeats_)) {
    PlaceBand(*band, Flow::kColumn, true);
  }
}

void PageBuilder::ClosePage(bool last) {
  EndCellRow();
  aggregates_.EndPage();
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

void PageBuilder::Hold() {
  if (hold_depth_++ == 0) {
    held_.clear();
    held_repeats_ = repeats_;
  }
}

void PageBuilder::Release() {
  if (--hold_depth_ > 0) return;
  std::vector<Held> blocks = std::move(held_);
  held_.clear();
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
      aggregates_.AddPageRow(*held.page_row);
      continue;
    }
    if (!held.block.items.empty() || held.block.height > 0) page_has_body_ = true;
    // Not rendered again for a page it moves to: its row is long past.
    Place(std::move(held.block), held.flow, nullptr);
  }
}

void PageBuilder::OpenCarry() {
  Hold();
  carry_open_ = true;
}

void PageBuilder::ReleaseCarry() {
  if (!carry_open_) return;
  carry_open_ = false;
  Release();
}

void PageBuilder::CountRow(AggregateTracker::PageRow row) {
  if (row.values.empty() && row.counted.empty()) return;
  if (hold_depth_ > 0) {
    held_.push_back({BandBlock{}, Flow::kColumn, nullptr, std::move(row)});
  } else {
    aggregates_.AddPageRow(row);
  }
}

void PageBuilder::StopRepeating(const CompiledBand& header) {
  if (!repeats_.empty() && repeats_.back() == &header) repeats_.pop_back();
}

void PageBuilder::KeepRepeats(size_t count) { repeats_.resize(std::min(repeats_.size(), count)); }

void PageBuilder::PlaceBand(const CompiledBand& band, Flow flow, bool repeat) {
  std::optional<BandBlock> block = renderer_.Render(band);
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
void PageBuilder::PlaceAt(const CompiledBand& band, float x, float y) {
  std::optional<BandBlock> block = renderer_.Render(band);
  if (!block) return;
  Emit(std::move(*block), x, y);
}

void PageBuilder::NextColumnOrPage() {
  if (page_.columns > 1 && !page_.columns_across && column_ + 1 < page_.columns) {
    ++column_;
    y_ = column_top_;
    StartColumn();
    return;
  }
  NewPage(false);
}

void PageBuilder::Place(BandBlock block, Flow flow, const CompiledBand* band) {
  if (hold_depth_ > 0) {
    held_.push_back({std::move(block), flow, band});
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
      if (std::optional<BandBlock> again = renderer_.Render(*band)) block = std::move(*again);
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
      BandBlock part = cutter.Cut(room, document_);
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
void PageBuilder::PlaceCell(BandBlock block, const CompiledBand* band) {
  if (column_ == 0 && y_ + block.height > BodyLimit() + 0.01f && page_has_body_) {
    NewPage(false);
    if (block.uses_page && band != nullptr) {
      if (std::optional<BandBlock> again = renderer_.Render(*band)) block = std::move(*again);
    }
  }
  cell_row_height_ = std::max(cell_row_height_, block.height);
  Emit(std::move(block), ColumnX(column_), y_);
  page_has_body_ = true;
  if (++column_ >= page_.columns) EndCellRow();
}

void PageBuilder::EndCellRow() {
  if (cell_row_height_ <= 0 && column_ == 0) return;
  if (page_.columns_across) {
    y_ += cell_row_height_;
    column_ = 0;
  }
  cell_row_height_ = 0;
}

void PageBuilder::Emit(BandBlock block, float x, float y) {
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
    deferred_.push_back({document_.pages.size() - 1, std::move(deferred)});
  }
  for (Overflow& overflow : block.overflows) {
    overflow.page = document_.pages.size();
    document_.overflows.push_back(std::move(overflow));
  }
}

// A page header that must not print on the last page comes off it again.
void PageBuilder::DropLastPageHeader() {
  Document& document = document_;
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
}

void PageBuilder::Finish() {
  Document& document = document_;
  DropLastPageHeader();
  context_.total_pages = static_cast<int>(document.pages.size());
  for (const PlacedDeferred& entry : deferred_) {
    context_.UseSnapshot(entry.text.snapshot.get());
    std::string text = entry.text.text ? renderer_.TextOf(*entry.text.text, entry.text.format,
                                                          entry.text.hide_zero, entry.text.rich)
                                       : std::string();
    Item& item = document.pages[entry.page].items[entry.text.item];
    auto* text_item = std::get_if<TextItem>(&item);
    if (text_item == nullptr) continue;
    text_item->text = std::move(text);
    if (entry.text.object != nullptr && entry.text.band != nullptr) {
      std::optional<Overflow> overflow = FindOverflow(*text_item, document.styles[text_item->style],
                                                      *entry.text.object, *entry.text.band);
      if (overflow) {
        overflow->page = entry.page + 1;
        document.overflows.push_back(std::move(*overflow));
      }
    }
  }
  context_.UseSnapshot(nullptr);
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

}  // namespace vantorel::report
