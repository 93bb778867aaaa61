// The queries of one fill: a cursor for each, opened with the SQL and parameters the run set or
// the template's, and the rows a data band walks. A query that no detail band reruns is opened
// once, before the first band, on its first row, so any band can show its fields; its data band
// then starts from that row.
//
// Thread-safety: belongs to one fill.
#ifndef VANTOREL_REPORT_FILL_REPORT_QUERIES_H_
#define VANTOREL_REPORT_FILL_REPORT_QUERIES_H_

#include <map>
#include <string>
#include <vector>

#include "data/connection.h"
#include "report/compile/compiled_report.h"
#include "report/expr/expression.h"
#include "report/fill/fill.h"
#include "report/fill/query_cursor.h"

namespace vantorel::report {

class ReportQueries {
 public:
  // "sql" and "parameters" (names upper case) are what the run set, by query index.
  ReportQueries(const CompiledReport& report, const std::map<int, std::string>& sql,
                const std::map<int, std::map<std::string, data::ParamValue>>& parameters,
                const FillServices& services);

  // The cursors, by query index, for the values expressions read.
  std::vector<QueryCursor>& cursors() { return cursors_; }
  QueryCursor& cursor(int q) { return cursors_[static_cast<size_t>(q)]; }

  // Opens every query no detail band reruns on its first row; "context" evaluates parameters.
  void OpenOnce(const expr::Context& context);

  // Runs query "q" afresh unless it was opened once; parameters set by the run win, then the
  // template's value expression, then its default. Throws vantorel::Error naming the query.
  void OpenForBand(int q, const expr::Context& context);

  // Whether query "q" has a row for its band to start from.
  bool HasRows(int q) const;
  // The next row of query "q": the row it was opened on once, then the cursor's rows.
  bool NextRow(int q);
  // Whether a row follows the current one.
  bool HasMoreRows(int q) const { return cursors_[static_cast<size_t>(q)].has_next(); }

 private:
  void Open(int q, const expr::Context& context);

  const CompiledReport& report_;
  const std::map<int, std::string>& sql_;
  const std::map<int, std::map<std::string, data::ParamValue>>& parameters_;
  const FillServices& services_;
  std::vector<QueryCursor> cursors_;
  std::vector<bool> primed_;  // opened once, its first row not yet taken
};

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_FILL_REPORT_QUERIES_H_
