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
#include <utility>
#include <vector>

#include "data/connection.h"
#include "report/compile/compiled_report.h"
#include "report/document/document.h"

namespace vantorel::report {

// What a print run changed in the template before filling, held by component name (upper case)
// so that settings made before a template was edited still find their components. Names are
// resolved to the compiled report's indexes when the fill starts; a name the report does not
// have is ignored.
struct RunSettings {
  std::map<std::string, std::string> memo_texts;  // memo name → text set at run time
  std::map<std::string, std::string> query_sql;   // query name → SQL set at run time
  // query name → parameter name → value set at run time
  std::map<std::string, std::map<std::string, data::ParamValue>> parameters;
  // (category, name) → value expression set at run time; an empty category matches any
  std::map<std::pair<std::string, std::string>, std::string> variables;
};

struct FillServices {
  // The open connection of database "index"; throws vantorel::Error when it has none.
  std::function<data::Connection&(int index)> connection;
  Date today;              // the value of [Date]
  Date now;                // the value of [Now]: today with the time of day
  std::string time = "";   // the value of [Time] ("HH:MM")
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
