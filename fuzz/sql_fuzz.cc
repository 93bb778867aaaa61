// Fuzzes the SQL the SQLite backend rewrites: named parameters to positional ones, then the
// dialect bridge (left/right, cast to date, regional date literals). Both take any text; the
// rewritten SQL is prepared (never run) on an in-memory database with the bridge's functions,
// so a rewrite that SQLite cannot even tokenise still fails cleanly.
#include <sqlite3.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "data/sql_params.h"
#include "data/sqlite_dialect.h"

namespace {

sqlite3* Database() {
  static sqlite3* db = [] {
    sqlite3* handle = nullptr;
    sqlite3_open_v2(":memory:", &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    sqlite3_exec(handle, "create table t (a text, b numeric(12,2), d date)", nullptr, nullptr,
                 nullptr);
    vantorel::data::RegisterSqliteFunctions(handle);
    return handle;
  }();
  return db;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view sql(reinterpret_cast<const char*>(data), size);
  const vantorel::data::PositionalSql positional = vantorel::data::ToPositional(sql);
  const std::string translated = vantorel::data::TranslateForSqlite(positional.sql);
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(Database(), translated.c_str(), static_cast<int>(translated.size()),
                     &statement, nullptr);
  sqlite3_finalize(statement);
  vantorel::data::NormaliseYearFirstDate(sql, true);
  vantorel::data::NormaliseYearFirstDate(sql, false);
  return 0;
}
