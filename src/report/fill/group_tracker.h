// The groups of one data band while it fills: starts them for a row (their aggregates, a new page
// where a group asks for one, keep-together, headers held back to go with the first row under
// them), tells from the look-ahead row which groups the next row changes, and ends them (footers,
// repeated headers dropped, keep-together released).
//
// Thread-safety: belongs to one fill.
#ifndef VANTOREL_REPORT_FILL_GROUP_TRACKER_H_
#define VANTOREL_REPORT_FILL_GROUP_TRACKER_H_

#include <cstddef>
#include <vector>

#include "report/compile/compiled_report.h"
#include "report/expr/expression.h"
#include "report/fill/aggregates.h"
#include "report/fill/fill_context.h"
#include "report/fill/page_builder.h"
#include "report/fill/query_cursor.h"

namespace vantorel::report {

class GroupTracker {
 public:
  GroupTracker(const CompiledData& data, FillContext& context, AggregateTracker& aggregates,
               PageBuilder& pages);

  size_t levels() const { return data_.groups.size(); }

  // Starts the groups from level "from" in with the current row; "after_rows": rows of the band
  // have printed before it, so a group that starts a new page does. Returns how many holds it
  // began for headers, which the caller releases once the row is placed.
  int Start(size_t from, bool after_rows);

  // Ends the groups from the innermost out to level "down_to", printing their footers.
  void End(size_t down_to);

  // The outermost group level whose key the look-ahead row of "cursor" changes; levels() when it
  // changes none.
  size_t NextChange(QueryCursor& cursor) const;

  // Whether footers print right after the current row: those of the groups that end with it
  // (from level "changed" in), and after the band's last row its own footer, or what follows
  // the band ("trailing"). A footer that starts a page of its own needs no row with it.
  bool FootersFollow(size_t changed, bool last, bool trailing) const;

 private:
  const CompiledData& data_;
  FillContext& context_;
  AggregateTracker& aggregates_;
  PageBuilder& pages_;
  std::vector<expr::Value> keys_;  // by level: the key of the group being filled
};

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_FILL_GROUP_TRACKER_H_
