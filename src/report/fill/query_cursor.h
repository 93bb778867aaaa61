// One query of a fill: runs its SQL with typed parameters and walks the rows forwards, holding
// the current row and the next one (group footers print with the last row of their group, so the
// fill looks one row ahead).
//
// Thread-safety: belongs to one fill.
#ifndef VANTOREL_REPORT_FILL_QUERY_CURSOR_H_
#define VANTOREL_REPORT_FILL_QUERY_CURSOR_H_

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "data/connection.h"

namespace vantorel::report {

class QueryCursor {
 public:
  // Runs "sql" and reads the first row into the look-ahead; Next() makes it current.
  void Open(data::Connection& connection, const std::string& sql,
            const std::map<std::string, data::ParamValue>& params);
  bool is_open() const { return cursor_ != nullptr || opened_; }
  // Moves to the next row; false (and the current row kept) at the end.
  bool Next();
  bool has_current() const { return has_current_; }
  bool has_next() const { return has_next_; }
  // Makes the look-ahead row current for the duration of "look", then restores.
  template <typename F>
  auto PeekNext(F&& look) {
    std::swap(current_, next_);
    row_serial_ = NewRowSerial();
    struct Restore {
      QueryCursor* self;
      ~Restore() {
        std::swap(self->current_, self->next_);
        self->row_serial_ = NewRowSerial();
      }
    } restore{this};
    return look();
  }
  // The column of "name" (any case), or -1. The query's parameters read as columns after its
  // own, so "[Q.fromdate]" shows the value the query ran with.
  int Column(std::string_view name) const;
  // The current row's value of "column"; NULL when there is no current row. A parameter's
  // value is there with or without rows.
  const data::Value& Get(int column) const;
  bool IsParameter(int column) const {
    return column >= 0 && static_cast<size_t>(column) >= width_;
  }
  // Bumped at every Open, so cached column numbers know when to look again.
  int generation() const { return generation_; }
  // Changes whenever what Get answers may change (a new run, the next row, a look ahead) and is
  // never the same for two rows of any cursor in the process, so values worked out from the
  // current row can be kept until it changes. Never 0.
  uint64_t row_serial() const { return row_serial_; }

 private:
  static uint64_t NewRowSerial();
  void ReadAhead();

  std::unique_ptr<data::Cursor> cursor_;
  bool opened_ = false;
  std::map<std::string, int> columns_;  // upper-cased name → index
  std::vector<data::Value> current_, next_;
  size_t width_ = 0;                     // the query's own columns
  std::vector<data::Value> parameters_;  // columns from width_ on
  bool has_current_ = false;
  bool has_next_ = false;
  int generation_ = 0;
  uint64_t row_serial_ = NewRowSerial();
};

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_FILL_QUERY_CURSOR_H_
