// Named query parameters (":name") turned into positional ones ("?"), so every backend binds the
// same way.
//
// Thread-safety: pure functions.
#ifndef VANTOREL_DATA_SQL_PARAMS_H_
#define VANTOREL_DATA_SQL_PARAMS_H_

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "data/connection.h"

namespace vantorel::data {

struct PositionalSql {
  std::string sql;                 // ":name" placeholders replaced by "?"
  std::vector<std::string> names;  // the name of each "?", in order (repeats included)
};

// Rewrites the ":name" placeholders of "sql". Text inside '…' strings, "…" / […] / `…`
// identifiers and -- or /* */ comments is left alone, as are "::" casts and a colon followed by a
// digit.
PositionalSql ToPositional(std::string_view sql);

// The parameter called "name", compared without case; nullptr when "params" has none (it is then
// bound as NULL).
const ParamValue* FindParam(const std::map<std::string, ParamValue>& params, std::string_view name);

}  // namespace vantorel::data

#endif  // VANTOREL_DATA_SQL_PARAMS_H_
