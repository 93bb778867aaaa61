#include "report/fill/band_renderer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "report/barcode/barcode.h"
#include "report/fill/push_down.h"
#include "report/image/image_loader.h"
#include "report/text/text_layout.h"
#include "vantorel/error.h"

namespace vantorel::report {
namespace {

constexpr float kEpsilon = 0.01f;

bool Truthy(const expr::Value& value) {
  switch (value.kind()) {
    case expr::Value::Kind::kBool:
      return value.boolean();
    case expr::Value::Kind::kDecimal:
    case expr::Value::Kind::kDouble:
      return value.number() != 0;
    case expr::Value::Kind::kText:
      return !value.text().empty();
    case expr::Value::Kind::kDate:
      return true;
    case expr::Value::Kind::kNull:
      return false;
  }
  return false;
}

RectF* BoxOf(Item& item) {
  if (auto* t = std::get_if<TextItem>(&item)) return &t->box;
  if (auto* r = std::get_if<RectItem>(&item)) return &r->box;
  if (auto* i = std::get_if<ImageItem>(&item)) return &i->box;
  if (auto* b = std::get_if<BarcodeItem>(&item)) return &b->box;
  if (auto* g = std::get_if<GroupItem>(&item)) return &g->clip;
  return nullptr;
}

// The vertical extent of any item.
std::pair<float, float> Span(const Item& item) {
  if (const auto* line = std::get_if<LineItem>(&item)) {
    return {std::min(line->from.y, line->to.y), std::max(line->from.y, line->to.y)};
  }
  RectF* box = BoxOf(const_cast<Item&>(item));
  return {box->y, box->bottom()};
}

void MoveY(Item& item, float dy) {
  if (auto* line = std::get_if<LineItem>(&item)) {
    line->from.y += dy;
    line->to.y += dy;
  } else if (RectF* box = BoxOf(item)) {
    box->y += dy;
  }
}

// What a band is called in messages: its kind, and its name when it has one.
std::string BandLabel(const CompiledBand& band) {
  const char* kind = "band";
  switch (band.kind) {
    case BandKind::kPageHeader:
      kind = "page header";
      break;
    case BandKind::kPageFooter:
      kind = "page footer";
      break;
    case BandKind::kTitle:
      kind = "title";
      break;
    case BandKind::kSummary:
      kind = "summary";
      break;
    case BandKind::kColumnHeader:
      kind = "column header";
      break;
    case BandKind::kColumnFooter:
      kind = "column footer";
      break;
    case BandKind::kData:
      kind = "data band";
      break;
    case BandKind::kDataHeader:
      kind = "data header";
      break;
    case BandKind::kDataFooter:
      kind = "data footer";
      break;
    case BandKind::kGroupHeader:
      kind = "group header";
      break;
    case BandKind::kGroupFooter:
      kind = "group footer";
      break;
    case BandKind::kChild:
      kind = "child band";
      break;
  }
  return band.name.empty() ? kind : std::string(kind) + " \"" + band.name + "\"";
}

}  // namespace

std::optional<Overflow> FindOverflow(const TextItem& item, const TextStyle& style,
                                     const CompiledText& text, const CompiledBand& band) {
  const text::BoxFit fit = text::FitInBox(item.text, style, {item.box.width, item.box.height});
  if (fit.fits) return std::nullopt;
  return Overflow{text.name, text.line,  BandLabel(band), 0,
                  item.text, fit.across, fit.needed,      fit.available};
}

BandRenderer::BandRenderer(const CompiledReport& report,
                           const std::vector<TextTemplatePtr>& memo_texts, FillContext& context,
                           Document& document, std::vector<std::string>& warnings)
    : report_(report),
      memo_texts_(memo_texts),
      context_(context),
      document_(document),
      warnings_(warnings),
      styles_(report.styles.size(), -1) {}

uint32_t BandRenderer::DocumentStyle(uint32_t report_style) {
  int64_t& slot = styles_[report_style];
  if (slot < 0) {
    // The compiler merged equal styles and only this renderer adds styles to the fill's document,
    // so a style used for the first time is new there: appended without searching.
    slot = static_cast<int64_t>(document_.styles.size());
    document_.styles.push_back(report_.styles[report_style]);
  }
  return static_cast<uint32_t>(slot);
}

uint32_t BandRenderer::DocumentImage(const std::shared_ptr<const ImageData>& image) {
  const auto [it, added] =
      images_.emplace(image.get(), static_cast<uint32_t>(document_.images.size()));
  if (added) document_.images.push_back(image);
  return it->second;
}

bool BandRenderer::Visible(const ExpressionPtr& print_when) {
  return !print_when || Truthy(print_when->Evaluate(context_));
}

bool BandRenderer::UsesPage(const CompiledBand& band) {
  const auto it = uses_page_.find(&band);
  if (it != uses_page_.end()) return it->second;
  bool uses = false;
  for (const CompiledObject& object : band.objects) {
    if (const auto* text = std::get_if<CompiledText>(&object)) {
      const TextTemplatePtr& source =
          text->memo >= 0 && memo_texts_[static_cast<size_t>(text->memo)]
              ? memo_texts_[static_cast<size_t>(text->memo)]
              : text->text;
      if (source && source->Uses(expr::SystemValue::kPage)) uses = true;
    }
  }
  uses_page_[&band] = uses;
  return uses;
}

std::string BandRenderer::TextOf(const expr::TextTemplate& text, const std::string& format,
                                 bool hide_zero, bool rich) {
  if (hide_zero) {
    if (const auto single = text.single()) {
      const expr::Value value = single->Evaluate(context_);
      if (value.is_number() && value.number() == 0) return {};
    }
  }
  context_.markup = rich;
  std::string shown = text.Evaluate(context_, format);
  context_.markup = false;
  return shown;
}

std::optional<BandBlock> BandRenderer::Render(const CompiledBand& band) {
  if (!Visible(band.print_when)) return std::nullopt;
  BandBlock block;
  block.uses_page = UsesPage(band);

  struct Placed {
    size_t item;
    float top, height;  // as designed
    float delta = 0;    // growth of the object itself
    float shift = 0;    // how far objects above pushed it down
    float left, right;
    bool to_band = false;  // sized to the band's final height
  };
  std::vector<Placed> placed;
  placed.reserve(band.objects.size());
  // Texts whose box is final once the band's height is known, to be checked then.
  std::vector<std::pair<size_t, const CompiledText*>> checked;

  for (const CompiledObject& object : band.objects) {
    if (const auto* text = std::get_if<CompiledText>(&object)) {
      if (!Visible(text->print_when)) continue;
      const TextTemplatePtr& source =
          text->memo >= 0 && memo_texts_[static_cast<size_t>(text->memo)]
              ? memo_texts_[static_cast<size_t>(text->memo)]
              : text->text;
      TextItem item{text->box, DocumentStyle(text->style), {}};
      const TextStyle& style = report_.styles[text->style];
      context_.deferred = false;
      if (source) item.text = TextOf(*source, text->format, text->hide_zero, style.rich);
      if (text->trim) {
        const size_t first = item.text.find_first_not_of(" \t\r\n");
        item.text =
            first == std::string::npos
                ? std::string()
                : item.text.substr(first, item.text.find_last_not_of(" \t\r\n") + 1 - first);
      }
      const bool deferred = context_.deferred;
      context_.deferred = false;
      if (deferred) {
        item.text.clear();
        block.deferred.push_back({block.items.size(), source, text->format, text->hide_zero,
                                  style.rich, context_.Take(source->fields()), text, &band});
      } else {
        checked.push_back({block.items.size(), text});
      }
      Placed p{block.items.size(), text->box.y, text->box.height};
      p.left = text->box.x;
      p.right = text->box.right();
      if (band.stretch && !deferred && style.rotation == 0 &&
          (text->stretch == StretchMode::kGrow || text->stretch == StretchMode::kCell ||
           text->shrink)) {
        const float width = text->box.width - style.padding.left - style.padding.right;
        const float need = text::MeasureHeight(item.text, style, std::max(width, 1.0f)) +
                           style.padding.top + style.padding.bottom;
        const bool grows =
            text->stretch == StretchMode::kGrow || text->stretch == StretchMode::kCell;
        if ((grows && need > text->box.height) || (text->shrink && need < text->box.height)) {
          p.delta = need - text->box.height;
          item.box.height = need;
        }
      }
      p.to_band = band.stretch &&
                  (text->stretch == StretchMode::kBand || text->stretch == StretchMode::kCell);
      block.items.emplace_back(std::move(item));
      placed.push_back(p);
    } else if (const auto* picture = std::get_if<CompiledPicture>(&object)) {
      if (!Visible(picture->print_when) || !picture->source) continue;
      const std::string path = picture->source->Evaluate(context_, {});
      if (path.empty()) continue;
      std::shared_ptr<const ImageData> image;
      try {
        image = LoadImage(path);
      } catch (const Error& error) {
        warnings_.push_back("picture \"" + picture->name + "\": " + error.description());
        continue;
      }
      placed.push_back({block.items.size(), picture->box.y, picture->box.height, 0, 0,
                        picture->box.x, picture->box.right()});
      block.items.emplace_back(ImageItem{picture->box, DocumentImage(image), picture->fit});
      if (picture->borders != 0 && picture->border.width > 0) {
        // A picture's frame is a rectangle drawn over it.
        placed.push_back({block.items.size(), picture->box.y, picture->box.height, 0, 0,
                          picture->box.x, picture->box.right()});
        block.items.emplace_back(RectItem{picture->box, Color::None(), picture->border, 0});
      }
    } else if (const auto* barcode = std::get_if<CompiledBarcode>(&object)) {
      if (!Visible(barcode->print_when) || !barcode->data) continue;
      const std::string data = barcode->data->Evaluate(context_, {});
      if (data.empty()) continue;
      std::shared_ptr<const BarcodeSymbol> symbol;
      try {
        symbol = Encode(barcode->symbology, data, barcode->options);
      } catch (const Error& error) {
        warnings_.push_back("barcode \"" + barcode->name + "\": " + error.description());
        continue;
      }
      placed.push_back({block.items.size(), barcode->box.y, barcode->box.height, 0, 0,
                        barcode->box.x, barcode->box.right()});
      block.items.emplace_back(BarcodeItem{barcode->box, document_.AddBarcode(std::move(symbol)),
                                           barcode->color, barcode->background});
    } else if (const auto* line = std::get_if<CompiledLine>(&object)) {
      if (!Visible(line->print_when)) continue;
      Placed p{block.items.size(), std::min(line->from.y, line->to.y),
               std::abs(line->to.y - line->from.y)};
      p.left = std::min(line->from.x, line->to.x);
      p.right = std::max(line->from.x, line->to.x);
      // A vertical line from the band's top to its foot is a column rule: it reaches the foot of
      // a row that grows, as one marked grow-with-band does.
      const bool spans_band = p.top <= kEpsilon && p.top + p.height >= band.height - kEpsilon;
      p.to_band =
          band.stretch && (line->grow_with_band || spans_band) && line->from.x == line->to.x;
      placed.push_back(p);
      block.items.emplace_back(LineItem{line->from, line->to, line->stroke});
    } else if (const auto* rect = std::get_if<CompiledRect>(&object)) {
      if (!Visible(rect->print_when)) continue;
      Placed p{block.items.size(), rect->box.y, rect->box.height};
      p.left = rect->box.x;
      p.right = rect->box.right();
      p.to_band = band.stretch && rect->grow_with_band;
      placed.push_back(p);
      block.items.emplace_back(RectItem{rect->box, rect->fill, rect->stroke, rect->corner_radius});
    }
  }

  // Objects below a grown object move down with it, in the order they stand in the band.
  std::vector<size_t> order(placed.size());
  for (size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::stable_sort(order.begin(), order.end(),
                   [&](size_t a, size_t b) { return placed[a].top < placed[b].top; });
  std::vector<PushBox> boxes(order.size());
  for (size_t i = 0; i < order.size(); ++i) {
    const Placed& p = placed[order[i]];
    boxes[i] = {p.top, p.height, p.left, p.right, p.delta};
  }
  const std::vector<float> shifts = PushDown(boxes);
  float height = band.height;
  for (size_t i = 0; i < order.size(); ++i) {
    Placed& p = placed[order[i]];
    p.shift = shifts[i];
    if (p.shift > 0) MoveY(block.items[p.item], p.shift);
    const float gap = std::max(0.0f, band.height - (p.top + p.height));
    height = std::max(height, p.top + p.shift + p.height + p.delta + gap);
  }
  // Objects that follow the band's height now that it is known: their foot keeps its distance
  // from the band's foot.
  for (const Placed& p : placed) {
    if (!p.to_band) continue;
    const float gap = std::max(0.0f, band.height - (p.top + p.height));
    const float foot = height - gap;
    Item& item = block.items[p.item];
    if (auto* line = std::get_if<LineItem>(&item)) {
      (line->from.y < line->to.y ? line->to.y : line->from.y) = foot;
    } else if (RectF* box = BoxOf(item)) {
      box->height = std::max(box->height, foot - box->y);
    }
  }
  block.height = height;
  for (const auto& [index, text] : checked) {
    const auto& item = std::get<TextItem>(block.items[index]);
    if (auto overflow = FindOverflow(item, report_.styles[text->style], *text, band)) {
      block.overflows.push_back(std::move(*overflow));
    }
  }
  return block;
}

float BandRenderer::ContentBottom(const BandBlock& block) {
  float bottom = 0;
  for (const Item& item : block.items) bottom = std::max(bottom, Span(item).second);
  return bottom;
}

BandBlock BandRenderer::Split(BandBlock& block, float height, const Document& document) {
  BandBlock rest;
  std::vector<Item> first;
  std::vector<size_t> moved(block.items.size(), SIZE_MAX);  // old index → index in rest
  std::vector<size_t> kept(block.items.size(), SIZE_MAX);   // old index → index in first
  for (size_t i = 0; i < block.items.size(); ++i) {
    Item& item = block.items[i];
    const auto [top, bottom] = Span(item);
    if (bottom <= height + kEpsilon) {
      kept[i] = first.size();
      first.push_back(std::move(item));
      continue;
    }
    if (top >= height - kEpsilon) {
      MoveY(item, -height);
      moved[i] = rest.items.size();
      rest.items.push_back(std::move(item));
      continue;
    }
    // The item crosses the cut.
    if (auto* text = std::get_if<TextItem>(&item)) {
      const TextStyle& style = document.styles[text->style];
      const float width =
          std::max(1.0f, text->box.width - style.padding.left - style.padding.right);
      const float room = height - text->box.y - style.padding.top - style.padding.bottom;
      const size_t cut = room > 0 ? text::FitText(text->text, style, width, room) : 0;
      // The line breaks and spaces at the cut go with the page break.
      const size_t tail_begin =
          std::min(text->text.find_first_not_of("\n ", cut), text->text.size());
      TextItem tail{text->box, text->style, text->text.substr(tail_begin)};
      tail.box.y = 0;
      tail.box.height = text->box.bottom() - height;
      text->text.resize(cut);
      // The line break at the cut is the page break now.
      while (!text->text.empty() && (text->text.back() == ' ' || text->text.back() == '\n')) {
        text->text.pop_back();
      }
      text->box.height = height - text->box.y;
      kept[i] = first.size();
      first.push_back(std::move(item));
      moved[i] = rest.items.size();
      rest.items.emplace_back(std::move(tail));
    } else if (auto* line = std::get_if<LineItem>(&item)) {
      LineItem tail = *line;
      float& low = line->from.y > line->to.y ? line->from.y : line->to.y;
      float& tail_high = tail.from.y < tail.to.y ? tail.from.y : tail.to.y;
      float& tail_low = tail.from.y < tail.to.y ? tail.to.y : tail.from.y;
      tail_low -= height;
      tail_high = 0;
      low = height;
      kept[i] = first.size();
      first.push_back(std::move(item));
      rest.items.emplace_back(tail);
    } else if (auto* rect = std::get_if<RectItem>(&item)) {
      RectItem tail = *rect;
      tail.box.y = 0;
      tail.box.height = rect->box.bottom() - height;
      rect->box.height = height - rect->box.y;
      kept[i] = first.size();
      first.push_back(std::move(item));
      rest.items.emplace_back(tail);
    } else {
      // Pictures and barcodes are not cut: they go whole to the next part.
      MoveY(item, -top);
      moved[i] = rest.items.size();
      rest.items.push_back(std::move(item));
    }
  }
  std::vector<DeferredText> first_deferred;
  for (DeferredText& deferred : block.deferred) {
    if (kept[deferred.item] != SIZE_MAX) {
      first_deferred.push_back(deferred);
      first_deferred.back().item = kept[deferred.item];
    } else if (moved[deferred.item] != SIZE_MAX) {
      rest.deferred.push_back(deferred);
      rest.deferred.back().item = moved[deferred.item];
    }
  }
  rest.height = std::max(0.0f, block.height - height);
  rest.uses_page = block.uses_page;
  block.items = std::move(first);
  block.deferred = std::move(first_deferred);
  block.height = height;
  return rest;
}

BlockCutter::BlockCutter(BandBlock block)
    : deferred_(block.items.size()),
      height_(block.height),
      uses_page_(block.uses_page),
      overflows_(std::move(block.overflows)) {
  waiting_.reserve(block.items.size());
  for (size_t i = 0; i < block.items.size(); ++i) {
    waiting_.push_back({i, std::move(block.items[i])});
  }
  std::stable_sort(waiting_.begin(), waiting_.end(), [](const Entry& a, const Entry& b) {
    return Span(a.item).first < Span(b.item).first;
  });
  for (DeferredText& deferred : block.deferred) {
    const size_t index = deferred.item;
    deferred_[index] = std::move(deferred);
  }
}

bool BlockCutter::empty() const {
  return near_.empty() && waiting_front_ == waiting_.size() && height_ <= 0;
}

void BlockCutter::CatchUp(Entry& entry) const {
  // One cut at a time, as Split would have moved it, so the position comes out the same.
  for (; entry.cuts_made < cuts_.size(); ++entry.cuts_made) {
    MoveY(entry.item, -cuts_[entry.cuts_made]);
  }
}

BandBlock BlockCutter::Cut(float height, const Document& document) {
  // Objects whose top reaches the cut take part in it; those below would only move up.
  const size_t first_new = near_.size();
  while (waiting_front_ < waiting_.size()) {
    Entry& entry = waiting_[waiting_front_];
    CatchUp(entry);
    if (Span(entry.item).first > height + kEpsilon) break;
    near_.push_back(std::move(entry));
    ++waiting_front_;
  }
  const auto by_index = [](const Entry& a, const Entry& b) { return a.index < b.index; };
  std::sort(near_.begin() + static_cast<ptrdiff_t>(first_new), near_.end(), by_index);
  std::inplace_merge(near_.begin(), near_.begin() + static_cast<ptrdiff_t>(first_new), near_.end(),
                     by_index);

  BandBlock part;
  part.height = height_;
  part.uses_page = uses_page_;
  part.overflows = std::exchange(overflows_, {});
  // Which objects leave something for the rest: all but those that fit whole.
  std::vector<size_t> continuing;
  for (Entry& entry : near_) {
    if (Span(entry.item).second > height + kEpsilon) continuing.push_back(entry.index);
    if (deferred_[entry.index]) {
      part.deferred.push_back(std::move(*deferred_[entry.index]));
      part.deferred.back().item = part.items.size();
      deferred_[entry.index].reset();
    }
    part.items.push_back(std::move(entry.item));
  }
  BandBlock rest = BandRenderer::Split(part, height, document);
  near_.clear();
  for (size_t k = 0; k < rest.items.size(); ++k) {
    near_.push_back({continuing[k], std::move(rest.items[k]), cuts_.size() + 1});
  }
  for (DeferredText& deferred : rest.deferred) {
    const size_t index = continuing[deferred.item];
    deferred_[index] = std::move(deferred);
  }
  cuts_.push_back(height);
  height_ = rest.height;
  return part;
}

BandBlock BlockCutter::Rest() {
  for (; waiting_front_ < waiting_.size(); ++waiting_front_) {
    CatchUp(waiting_[waiting_front_]);
    near_.push_back(std::move(waiting_[waiting_front_]));
  }
  std::sort(near_.begin(), near_.end(),
            [](const Entry& a, const Entry& b) { return a.index < b.index; });
  BandBlock block;
  block.height = height_;
  block.uses_page = uses_page_;
  block.overflows = std::exchange(overflows_, {});
  for (Entry& entry : near_) {
    if (deferred_[entry.index]) {
      block.deferred.push_back(std::move(*deferred_[entry.index]));
      block.deferred.back().item = block.items.size();
    }
    block.items.push_back(std::move(entry.item));
  }
  near_.clear();
  return block;
}

}  // namespace vantorel::report
