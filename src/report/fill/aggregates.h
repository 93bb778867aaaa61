// The running state of a fill's aggregates (Sum, Count, Avg, Min, Max): accumulates rows as they
// print, resets at the start of each group, band instance or page, and keeps the final value of
// every finished instance, so a total printed before its rows (in a title or a group header) can
// be filled in at the end.
//
// Thread-safety: belongs to one fill.
#ifndef VANTOREL_REPORT_FILL_AGGREGATES_H_
#define VANTOREL_REPORT_FILL_AGGREGATES_H_

#include <optional>
#include <utility>
#include <vector>

#include "report/compile/compiled_report.h"
#include "report/expr/expression.h"

namespace vantorel::report {

class AggregateTracker {
 public:
  AggregateTracker(const std::vector<AggregateSpec>& specs, int data_count);

  void StartBand(int data);
  void EndBand(int data);
  void StartGroup(int data, int level);
  void EndGroup(int data, int level);
  void StartPage(int page);
  void EndPage();
  // All data bands are done: report totals are final.
  void EndReport();

  // Adds the current row of data band "data" to its aggregates, all but those of page scope:
  // page totals count a row on the page where it lands (TakePageRow, AddPageRow).
  void Row(int data, const expr::Context& context);

  // What the current row of data band "data" adds to page totals, read while the row is current
  // and added once the row has landed: a row held back to go with a footer may land on the next
  // page.
  struct PageRow {
    std::vector<std::pair<size_t, expr::Value>> values;  // aggregate id → the row's value
    std::vector<size_t> counted;                         // row counts (Count without argument)
  };
  PageRow TakePageRow(int data, const expr::Context& context) const;
  void AddPageRow(const PageRow& row);

  // The value so far of aggregate "id" in its current instance.
  expr::Value Current(int id) const;
  // True when the current instance of "id" is finished (running totals always are).
  bool IsComplete(int id) const;

  // Which instance each aggregate is in now, to look up final values later.
  using Snapshot = std::vector<int>;
  Snapshot Take() const;
  // The final value of "id" in the instance "snapshot" recorded; the current value when that
  // instance never finished.
  expr::Value Final(int id, const Snapshot& snapshot) const;

 private:
  struct Accumulator {
    int64_t count = 0;
    bool exact = true;
    expr::Decimal sum;
    double sum_double = 0;
    expr::Value min, max;
    void Add(const expr::Value& value, expr::AggregateKind kind);
    expr::Value Result(expr::AggregateKind kind) const;
  };
  struct State {
    Accumulator current;
    int instance = 0;
    bool complete = false;
    std::vector<std::optional<expr::Value>> finals;  // by instance, once finished
  };

  void Reset(size_t id, int instance);
  void Finish(size_t id);

  const std::vector<AggregateSpec>& specs_;
  std::vector<State> states_;
  std::vector<std::vector<size_t>> by_data_;  // data band → aggregate ids
  int page_ = 0;
};

// Orders two values the way Min and Max compare them: numbers by value, dates by day, texts
// bytewise, booleans false first; values of different kinds by kind. Nulls are never compared.
int CompareValues(const expr::Value& a, const expr::Value& b);

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_FILL_AGGREGATES_H_
