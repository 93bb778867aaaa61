// The SQL habits of the dealership database that SQLite lacks, bridged on SQLite connections:
// left(…)/right(…) calls, cast(… as date|datetime), year-first date literals written with '/' or
// '.', and isnull(…). docs/data-access.md lists every rewrite with examples.
//
// Thread-safety: TranslateForSqlite is a pure function; RegisterSqliteFunctions works on one
// connection, which belongs to one thread.
#ifndef VANTOREL_DATA_SQLITE_DIALECT_H_
#define VANTOREL_DATA_SQLITE_DIALECT_H_

#include <optional>
#include <string>
#include <string_view>

struct sqlite3;

namespace vantorel::data {

// "sql" with the rewrites applied; text in comments and quoted identifiers is never changed.
std::string TranslateForSqlite(std::string_view sql);

// "2024/03/31", "2024.3.31" or "2024-03-31", optionally followed by a time ("10:30" or
// "10:30:15", after a blank or 'T'), as ISO "2024-03-31" (with " 10:30:00" when "keep_time" and
// a time is there); nullopt for anything else, impossible dates included.
std::optional<std::string> NormaliseYearFirstDate(std::string_view text, bool keep_time);

// Registers the functions the rewritten SQL calls (vt_left, vt_right, vt_date) and a few the
// dealership SQL uses directly (len, getdate, year, month, day). Returns an SQLite result code.
int RegisterSqliteFunctions(sqlite3* db);

}  // namespace vantorel::data

#endif  // VANTOREL_DATA_SQLITE_DIALECT_H_
