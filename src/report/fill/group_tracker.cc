// Group breaks of a data band.
#include "report/fill/group_tracker.h"

namespace vantorel::report {
namespace {

bool SameKey(const expr::Value& a, const expr::Value& b) {
  if (a.is_null() || b.is_null()) return a.is_null() && b.is_null();
  return CompareValues(a, b) == 0;
}

}  // namespace

GroupTracker::GroupTracker(const CompiledData& data, FillContext& context,
                           AggregateTracker& aggregates, PageBuilder& pages)
    : data_(data),
      context_(context),
      aggregates_(aggregates),
      pages_(pages),
      keys_(data.groups.size()) {}

int GroupTracker::Start(size_t from, bool after_rows) {
  int held_headers = 0;
  for (size_t level = from; level < levels(); ++level) {
    const CompiledGroup& group = data_.groups[level];
    aggregates_.StartGroup(data_.index, static_cast<int>(level));
    keys_[level] = group.condition ? group.condition->Evaluate(context_) : expr::Value();
    // Every group but the first begins a page of its own.
    if (group.start_new_page && after_rows && pages_.page_has_body()) pages_.NewPage(false);
    if (group.keep_together) pages_.Hold();
    if (group.header) {
      pages_.Hold();
      ++held_headers;
      pages_.PlaceBand(*group.header, Flow::kColumn);
      if (group.repeat_header) pages_.Repeat(*group.header);
    }
  }
  return held_headers;
}

void GroupTracker::End(size_t down_to) {
  for (size_t level = levels(); level-- > down_to;) {
    const CompiledGroup& group = data_.groups[level];
    aggregates_.EndGroup(data_.index, static_cast<int>(level));
    if (group.footer) pages_.PlaceBand(*group.footer, Flow::kColumn);
    if (group.repeat_header && group.header) pages_.StopRepeating(*group.header);
    if (group.keep_together) pages_.Release();
  }
}

size_t GroupTracker::NextChange(QueryCursor& cursor) const {
  size_t changed = levels();
  if (levels() == 0) return changed;
  cursor.PeekNext([&] {
    for (size_t level = 0; level < levels(); ++level) {
      const CompiledGroup& group = data_.groups[level];
      const expr::Value key = group.condition ? group.condition->Evaluate(context_) : expr::Value();
      if (!SameKey(key, keys_[level])) {
        changed = level;
        break;
      }
    }
    return 0;
  });
  return changed;
}

bool GroupTracker::FootersFollow(size_t changed, bool last, bool trailing) const {
  const auto prints_after = [](const std::optional<CompiledBand>& footer) {
    return footer && !footer->start_new_page;
  };
  for (size_t level = changed; level < levels(); ++level) {
    if (prints_after(data_.groups[level].footer)) return true;
  }
  return last && (trailing || prints_after(data_.footer));
}

}  // namespace vantorel::report
