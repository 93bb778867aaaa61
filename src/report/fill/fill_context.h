// The values expressions see while a report fills: the current row of every query, template
// variables, page and line numbers, and aggregates. A value not known yet (total pages, a total
// whose rows have not all printed) marks the evaluation as deferred; the fill then evaluates that
// text again at the end from a snapshot of this moment.
//
// Thread-safety: belongs to one fill.
#ifndef VANTOREL_REPORT_FILL_FILL_CONTEXT_H_
#define VANTOREL_REPORT_FILL_FILL_CONTEXT_H_

#include <memory>
#include <vector>

#include "report/compile/compiled_report.h"
#include "report/expr/expression.h"
#include "report/fill/aggregates.h"
#include "report/fill/fill.h"
#include "report/fill/query_cursor.h"

namespace vantorel::report {

// Everything a deferred text needs to be evaluated later as it would have been now.
struct Snapshot {
  std::vector<std::vector<data::Value>> rows;  // per query: its current row (empty: none)
  AggregateTracker::Snapshot aggregates;
  int page = 1;
  int line = 0;
};

class FillContext final : public expr::Context {
 public:
  FillContext(const RunTables& tables, std::vector<QueryCursor>& cursors,
              const AggregateTracker& aggregates, const FillServices& services,
              std::vector<expr::Value> variables);

  expr::Value Field(int id) const override;
  expr::Value Variable(int id) const override;
  expr::Value System(expr::SystemValue which) const override;
  expr::Value Aggregate(int id) const override;

  int page = 1;
  int line = 0;
  int total_pages = 0;  // known once the fill is over

  // Set by an evaluation that met a value not known yet; the caller clears it.
  mutable bool deferred = false;
  // Set while a rich text is evaluated: texts from the database and variables are protected
  // from being read as its markup.
  bool markup = false;

  // The state a text reading "fields" (field ids) needs to be evaluated later, at the end of
  // the fill: those fields' values now, the aggregates' instances, the page and line.
  std::shared_ptr<Snapshot> Take(const std::vector<int>& fields) const;
  // Evaluates from "snapshot" (rows, aggregates, numbers) instead of the live state.
  void UseSnapshot(const Snapshot* snapshot);

 private:
  const data::Value& Raw(int id) const;

  const RunTables& tables_;
  std::vector<QueryCursor>& cursors_;
  const AggregateTracker& aggregates_;
  const FillServices& services_;
  std::vector<expr::Value> variables_;
  const Snapshot* snapshot_ = nullptr;
  // Column of each field in its query, with the cursor generation it was found in.
  mutable std::vector<std::pair<int, int>> columns_;
  // Each field's value as an expression value, with the cursor's row serial it was read at: a
  // row's amounts are read by several texts and totals, and converted once.
  struct FieldValue {
    uint64_t row_serial = 0;
    expr::Value value;
  };
  mutable std::vector<FieldValue> values_;
};

// A database value as an expression value: decimals stay exact, doubles keep their short form.
expr::Value ToExprValue(const data::Value& value);

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_FILL_FILL_CONTEXT_H_
