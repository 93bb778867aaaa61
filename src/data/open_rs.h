// OpenRs: (re)opens a caller's recordset on SQL text with a connection string. Failures are
// shown, not thrown: a message box "Function OpenRs, ErrNo : <number> , <description>, <system
// code>" (no icon), after which the recordset is closed and the caller goes on.
#ifndef VANTOREL_DATA_OPEN_RS_H_
#define VANTOREL_DATA_OPEN_RS_H_

#include <string>

#include "data/recordset.h"

namespace vantorel::data {

// Closes "rs" first when it is open, then opens it on "sql" (keyset, read-only, unspecified
// command). Traced as {"op":"OpenRs","sql":…}.
void OpenRs(const std::string& sql, Recordset& rs, const std::string& connection_string);

}  // namespace vantorel::data

#endif  // VANTOREL_DATA_OPEN_RS_H_
