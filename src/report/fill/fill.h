// Filling a compiled report: runs its queries, fills its bands in order, paginates, and produces
// the prepared document. Work is linear in the number of rows; memory holds the document being
// built and one row (plus a look-ahead row) per open query, never a whole result set.
//
// Thread-safety: one fill runs on one thread; different fills may run at once.
#ifndef VANTOREL_REPORT_FILL_FILL_H_
#define VANTOREL_REPORT_FILL_FILL_H_

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "data/connection.h"
#include "report/compile/compiled_report.h"
#include "report/document/document.h"

namespace vantorel::report {

// What a print run changed in the template before filling.
struct RunSettings {
  std::map<int, std::string> memo_texts;  // memo index → text set at run time
  std::map<int, std::string> query_sql;   // query index → SQL set at run time
  // query index → parameter name (upper case) → value set at run time
  std::map<int, std::map<std::string, data::ParamValue>> parameters;
  std::map<int, std::string> variables;  // variable index → value expression set at run time
};

struct FillServices {
  // The open connection of database "index"; throws vantorel::Error when it has none.
  std::function<data::Connection&(int index)> connection;
  Date today;             // the value of [Date]
  Date now;               // the value of [Now]: today with the time of day
  std::string time = "";  // the value of [Time] ("HH:MM")
  int copy = 1;            // the value of [Copy]; Fill sets it for each copy
  std::string copy_label;  // the value of [CopyLabel]
};

// Sets [Now] to "now" (a platform's Now()), [Date] to its day and [Time] to its hour and minute.
void SetClock(FillServices& services, Date now);

struct FillResult {
  Document document;
  std::vector<std::string> warnings;  // pictures or barcodes that could not be made, and why
};

// Fills "report". Throws vantorel::Error for database failures (with the query's name).
FillResult Fill(const CompiledReport& report, const RunSettings& settings,
                const FillServices& services);

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_FILL_FILL_H_
