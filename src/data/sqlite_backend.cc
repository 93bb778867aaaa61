#include "data/sqlite_backend.h"

#include <sqlite3.h>
#include <sys/stat.h>

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "data/sql_params.h"
#include "data/sqlite_dialect.h"
#include "host/native_path.h"
#include "vantorel/error.h"

namespace vantorel::data {
namespace {

constexpr char kSource[] = "SQLite";
constexpr int kBusyTimeoutMs = 5000;

std::string Upper(const char* text) {
  std::string upper = text == nullptr ? "" : text;
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return upper;
}

bool Contains(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

bool IsDecimalType(const std::string& declared) {
  return Contains(declared, "DEC") || Contains(declared, "NUMERIC") || Contains(declared, "MONEY");
}

bool IsDecimalText(std::string_view text) {
  size_t pos = !text.empty() && text[0] == '-' ? 1 : 0;
  size_t digits = 0;
  while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9') ++pos, ++digits;
  if (pos < text.size() && text[pos] == '.') {
    ++pos;
    while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9') ++pos, ++digits;
  }
  return digits > 0 && pos == text.size();
}

// The scale a column declares ("NUMERIC(12,2)" → 2), or -1.
int DeclaredScale(const std::string& declared) {
  const size_t comma = declared.find(',');
  if (comma == std::string::npos) return -1;
  int scale = 0;
  const char* begin = declared.data() + comma + 1;
  while (*begin == ' ') ++begin;
  const auto [end, ec] = std::from_chars(begin, declared.data() + declared.size(), scale);
  return ec == std::errc() && scale >= 0 && scale <= 18 ? scale : -1;
}

// SQLite keeps no scale: 60000.10 comes back as 60000.1, and a value computed in SQL as
// 1.0799999999999998. The column's declared scale says what the amount is: pad or round (half
// away from zero) the digits to it.
std::string WithScale(std::string digits, int scale) {
  if (scale < 0) return digits;
  const size_t point = digits.find('.');
  const size_t have = point == std::string::npos ? 0 : digits.size() - point - 1;
  if (have > static_cast<size_t>(scale)) {
    const bool up = digits[point + static_cast<size_t>(scale) + 1] >= '5';
    digits.resize(point + static_cast<size_t>(scale) + (scale > 0 ? 1 : 0));
    if (up) {
      // Carry the rounding leftwards through nines.
      size_t i = digits.size();
      while (i > 0) {
        --i;
        if (digits[i] == '.') continue;
        if (digits[i] == '-') {
          digits.insert(i + 1, "1");
          break;
        }
        if (digits[i] != '9') {
          ++digits[i];
          break;
        }
        digits[i] = '0';
        if (i == 0) digits.insert(0, "1");
      }
    }
    if (digits.find_first_not_of("-0.") == std::string::npos && digits[0] == '-')
      digits.erase(0, 1);
    return digits;
  }
  if (point == std::string::npos && scale > 0) digits += '.';
  digits.append(static_cast<size_t>(scale) - have, '0');
  return digits;
}

std::string ShortestFixed(double value) {
  char buffer[400];
  const auto result =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed);
  return std::string(buffer, result.ptr);
}

// What a column's declared type says about reading its values, worked out once per statement
// rather than once per value.
struct ColumnKind {
  bool boolean = false;
  bool decimal = false;
  bool date = false;
  int scale = -1;  // DeclaredScale, for decimal columns
};

ColumnKind KindOf(const std::string& declared) {
  ColumnKind kind;
  kind.boolean = Contains(declared, "BOOL");
  kind.decimal = IsDecimalType(declared);
  kind.date = Contains(declared, "DATE") || Contains(declared, "TIME");
  kind.scale = DeclaredScale(declared);
  return kind;
}

Value ReadColumn(sqlite3_stmt* statement, int column, const ColumnKind& kind) {
  switch (sqlite3_column_type(statement, column)) {
    case SQLITE_NULL:
      return Value();
    case SQLITE_INTEGER: {
      const sqlite3_int64 number = sqlite3_column_int64(statement, column);
      if (kind.boolean) return Value::Boolean(number != 0);
      if (kind.decimal) {
        char buffer[24];
        return Value::Decimal(WithScale(
            std::string(buffer, std::to_chars(buffer, buffer + sizeof buffer, number).ptr),
            kind.scale));
      }
      return Value::Integer(number);
    }
    case SQLITE_FLOAT: {
      const double number = sqlite3_column_double(statement, column);
      // The shortest digits that read back as the stored double are the amount that was written.
      if (kind.decimal && std::isfinite(number)) {
        return Value::Decimal(WithScale(ShortestFixed(number), kind.scale));
      }
      return Value::Real(number);
    }
    case SQLITE_TEXT: {
      const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
      std::string text(bytes, static_cast<size_t>(sqlite3_column_bytes(statement, column)));
      if (kind.date) {
        const std::optional<std::string> iso = NormaliseYearFirstDate(text, true);
        if (const std::optional<Date> date = iso ? Date::FromIso(*iso) : std::nullopt) {
          return iso->size() == 10 ? Value::FromDate(*date) : Value::FromDateTime(*date);
        }
      }
      if (kind.decimal && IsDecimalText(text)) {
        return Value::Decimal(WithScale(std::move(text), kind.scale));
      }
      return Value::Text(std::move(text));
    }
    default: {
      const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, column));
      const auto size = static_cast<size_t>(sqlite3_column_bytes(statement, column));
      return Value::Blob(bytes == nullptr ? std::string() : std::string(bytes, size));
    }
  }
}

// Statements reused on this thread since its kept connections' handle was made.
thread_local int t_statements_reused = 0;

// A statement prepared for a query's SQL, with the names of its parameters in order and, once it
// has run, its columns as they were read then and SQLite's count of its re-preparations (a
// statement is prepared again, and its columns may change, when the schema changes).
struct Prepared {
  sqlite3_stmt* statement = nullptr;
  std::vector<std::string> names;
  std::vector<Column> columns;
  std::vector<ColumnKind> kinds;  // beside columns
  int reprepared = -1;
};

class Database {
 public:
  explicit Database(sqlite3* db) : db_(db) {}
  ~Database() {
    for (auto& [sql, prepared] : idle_) sqlite3_finalize(prepared.statement);
    sqlite3_close_v2(db_);
  }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  sqlite3* get() const { return db_; }

  // The statement prepared before for "sql" and not in use now, taken out of the idle ones (it
  // is reset and its bindings cleared); nullopt when there is none. A print runs the same few
  // queries every time, and preparing them again (views expanded, plans made) costs more than
  // most queries take to run.
  std::optional<Prepared> TakePrepared(const std::string& sql) {
    const auto found = idle_.find(sql);
    if (found == idle_.end()) return std::nullopt;
    Prepared prepared = std::move(found->second);
    idle_.erase(found);
    sqlite3_clear_bindings(prepared.statement);
    ++t_statements_reused;
    return prepared;
  }

  // Takes back a statement that is done with, reset, for the next run of "sql"; it is finalized
  // instead when one for "sql" is idle already, when the SQL is too long to keep as a key or
  // when enough are kept. Never throws.
  void KeepPrepared(std::string sql, Prepared&& prepared) noexcept {
    constexpr size_t kMostKept = 64;
    constexpr size_t kLongestSql = 16384;
    sqlite3_reset(prepared.statement);
    try {
      if (sql.size() <= kLongestSql && idle_.size() < kMostKept &&
          idle_.try_emplace(std::move(sql), std::move(prepared)).second) {
        return;
      }
    } catch (...) {
    }
    sqlite3_finalize(prepared.statement);
  }

  // The error of the last failed call on this connection; a statement the read-only guard
  // refused says what it refused.
  Error LastError(int32_t number) const {
    if (!refused_.empty()) return Refused(number, refused_);
    return Error(number, kSource, sqlite3_errmsg(db_), sqlite3_extended_errcode(db_));
  }

  static Error Refused(int32_t number, const std::string& what) {
    return Error(number, kSource,
                 "The database is open for reading only: " + what + " is not allowed", SQLITE_AUTH);
  }

  // Lets statements read the main database and nothing else.
  void GuardReads() {
    refused_.clear();
    sqlite3_set_authorizer(db_, &Database::Authorize, this);
  }

  void ClearRefusal() { refused_.clear(); }

 private:
  // Reports and templates only read: a statement that would write, reach another file (ATTACH,
  // VACUUM INTO), change the connection through a pragma or load code is refused when prepared.
  static int Authorize(void* self, int action, const char* first, const char* second, const char*,
                       const char*) {
    const auto name = [](const char* text) { return std::string(text == nullptr ? "" : text); };
    switch (action) {
      case SQLITE_SELECT:
      case SQLITE_READ:
      case SQLITE_RECURSIVE:
        return SQLITE_OK;
      case SQLITE_FUNCTION:
        if (sqlite3_stricmp(name(second).c_str(), "load_extension") != 0) return SQLITE_OK;
        return static_cast<Database*>(self)->Refuse("load_extension()");
      case SQLITE_PRAGMA:
        // Pragmas that only describe the schema; every other one can change the connection.
        for (const char* reading : {"table_info", "table_xinfo", "index_list", "index_info",
                                    "index_xinfo", "foreign_key_list"}) {
          if (sqlite3_stricmp(name(first).c_str(), reading) == 0) return SQLITE_OK;
        }
        return static_cast<Database*>(self)->Refuse("PRAGMA " + name(first));
      case SQLITE_ATTACH:
        return static_cast<Database*>(self)->Refuse("ATTACH");
      case SQLITE_DETACH:
        return static_cast<Database*>(self)->Refuse("DETACH");
      case SQLITE_INSERT:
      case SQLITE_UPDATE:
      case SQLITE_DELETE:
        // Creating or dropping anything first writes SQLite's own catalogue.
        if (name(first).rfind("sqlite_", 0) == 0) {
          return static_cast<Database*>(self)->Refuse("changing the database");
        }
        return static_cast<Database*>(self)->Refuse("changing table " + name(first));
      case SQLITE_TRANSACTION:
      case SQLITE_SAVEPOINT:
        return static_cast<Database*>(self)->Refuse("a transaction");
      default:
        return static_cast<Database*>(self)->Refuse("changing the database");
    }
  }

  int Refuse(std::string what) {
    if (refused_.empty()) refused_ = std::move(what);
    return SQLITE_DENY;
  }

  sqlite3* db_;
  std::string refused_;  // what the guard refused while the last statement was prepared
  std::map<std::string, Prepared> idle_;  // by the SQL as the caller gave it
};

// Dates are stored as ISO text, so they are bound that way.
std::string DateParameter(Date date) {
  if (!date.IsValid()) {
    throw Error(errnum::kOverflow, kSource, "A date parameter is outside the range of dates");
  }
  std::string text = date.ToIso();
  if (date.serial != std::trunc(date.serial)) {
    const Date::Parts parts = date.ToParts();
    char separator = ' ';
    for (int part : {parts.hour, parts.minute, parts.second}) {
      text += separator;
      text += static_cast<char>('0' + part / 10);
      text += static_cast<char>('0' + part % 10);
      separator = ':';
    }
  }
  return text;
}

class SqliteCursor final : public Cursor {
 public:
  // Runs "prepared", which it gives back to "db" for "sql" when done.
  SqliteCursor(std::shared_ptr<Database> db, std::string sql, Prepared prepared)
      : db_(std::move(db)), sql_(std::move(sql)), prepared_(std::move(prepared)) {
    // The first step runs the statement, so a failing one fails Execute.
    Step();
    // Columns are read again only when the statement is new or was prepared again since.
    const int reprepared = sqlite3_stmt_status(prepared_.statement, SQLITE_STMTSTATUS_REPREPARE, 0);
    if (reprepared != prepared_.reprepared) {
      prepared_.columns.clear();
      prepared_.kinds.clear();
      const int count = sqlite3_column_count(prepared_.statement);
      for (int i = 0; i < count; ++i) {
        const char* name = sqlite3_column_name(prepared_.statement, i);
        prepared_.columns.push_back(
            {name == nullptr ? "" : name, Upper(sqlite3_column_decltype(prepared_.statement, i))});
        prepared_.kinds.push_back(KindOf(prepared_.columns.back().declared_type));
      }
      prepared_.reprepared = reprepared;
    }
  }
  ~SqliteCursor() override { db_->KeepPrepared(std::move(sql_), std::move(prepared_)); }
  SqliteCursor(const SqliteCursor&) = delete;
  SqliteCursor& operator=(const SqliteCursor&) = delete;

  const std::vector<Column>& columns() const override { return prepared_.columns; }

  bool Next(std::vector<Value>& row) override {
    if (!has_row_) return false;
    row.resize(prepared_.columns.size());
    for (size_t i = 0; i < prepared_.columns.size(); ++i) {
      row[i] = ReadColumn(prepared_.statement, static_cast<int>(i), prepared_.kinds[i]);
    }
    Step();
    return true;
  }

 private:
  void Step() {
    const int rc = sqlite3_step(prepared_.statement);
    if (rc != SQLITE_ROW && rc != SQLITE_DONE) throw db_->LastError(errnum::kCommandError);
    has_row_ = rc == SQLITE_ROW;
  }

  std::shared_ptr<Database> db_;
  std::string sql_;
  Prepared prepared_;
  bool has_row_ = false;
};

class SqliteConnection final : public Connection {
 public:
  explicit SqliteConnection(std::shared_ptr<Database> db) : db_(std::move(db)) {}

  std::unique_ptr<Cursor> Execute(const std::string& sql,
                                  const std::map<std::string, ParamValue>& params) override {
    db_->ClearRefusal();
    std::optional<Prepared> prepared = db_->TakePrepared(sql);
    if (!prepared) prepared = Prepare(sql);
    try {
      Bind(prepared->statement, prepared->names, params);
    } catch (...) {
      sqlite3_finalize(prepared->statement);
      throw;
    }
    sqlite3_stmt* const statement = prepared->statement;
    try {
      return std::make_unique<SqliteCursor>(db_, sql, std::move(*prepared));
    } catch (...) {
      sqlite3_finalize(statement);
      throw;
    }
  }

 private:
  // "sql" prepared: its parameters made positional, its dialect bridged, and checked to be a
  // query.
  Prepared Prepare(const std::string& sql) {
    PositionalSql positional = ToPositional(sql);
    const std::string translated = TranslateForSqlite(positional.sql);
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db_->get(), translated.c_str(), static_cast<int>(translated.size()),
                           &statement, nullptr) != SQLITE_OK) {
      throw db_->LastError(errnum::kCommandError);
    }
    if (statement == nullptr) {
      throw Error(errnum::kCommandError, kSource, "The SQL text holds no statement");
    }
    // VACUUM (INTO another file) and the like pass no authorizer check; a query returns columns
    // and leaves the file as it is.
    if (!sqlite3_stmt_readonly(statement) || sqlite3_column_count(statement) == 0) {
      sqlite3_finalize(statement);
      throw Database::Refused(errnum::kCommandError, "a statement that returns no rows");
    }
    return {statement, std::move(positional.names)};
  }

 private:
  void Bind(sqlite3_stmt* statement, const std::vector<std::string>& names,
            const std::map<std::string, ParamValue>& params) {
    const int count = sqlite3_bind_parameter_count(statement);
    for (int i = 0; i < count && static_cast<size_t>(i) < names.size(); ++i) {
      const ParamValue* param = FindParam(params, names[static_cast<size_t>(i)]);
      int rc = SQLITE_OK;
      if (param == nullptr || std::holds_alternative<std::monostate>(*param)) {
        rc = sqlite3_bind_null(statement, i + 1);
      } else if (const auto* integer = std::get_if<int64_t>(param)) {
        rc = sqlite3_bind_int64(statement, i + 1, *integer);
      } else if (const auto* real = std::get_if<double>(param)) {
        rc = sqlite3_bind_double(statement, i + 1, *real);
      } else {
        const std::string text = std::holds_alternative<Date>(*param)
                                     ? DateParameter(std::get<Date>(*param))
                                     : std::get<std::string>(*param);
        rc = sqlite3_bind_text(statement, i + 1, text.data(), static_cast<int>(text.size()),
                               SQLITE_TRANSIENT);
      }
      if (rc != SQLITE_OK) throw db_->LastError(errnum::kCommandError);
    }
  }

  std::shared_ptr<Database> db_;
};

// A thread's kept connections, by native path.
struct KeptConnections {
  struct Kept {
    std::shared_ptr<Database> db;
    struct stat file;  // as it was when opened
  };
  std::map<std::string, Kept> by_path;
  SqliteReuseStats stats;
};

std::weak_ptr<KeptConnections>& ThreadKept() {
  thread_local std::weak_ptr<KeptConnections> kept;
  return kept;
}

// True when "now" is the file "then" was, unchanged: a file written over in place by other means
// than SQLite's could look unchanged to a connection's page cache, so any change of size or time
// opens it anew (SQLite's own commits in WAL mode leave the main file as it was).
bool SameFile(const struct stat& then, const struct stat& now) {
  return then.st_dev == now.st_dev && then.st_ino == now.st_ino && then.st_size == now.st_size &&
         then.st_mtim.tv_sec == now.st_mtim.tv_sec && then.st_mtim.tv_nsec == now.st_mtim.tv_nsec;
}

bool Running(sqlite3* db) {
  for (sqlite3_stmt* s = sqlite3_next_stmt(db, nullptr); s != nullptr;
       s = sqlite3_next_stmt(db, s)) {
    if (sqlite3_stmt_busy(s)) return true;
  }
  return false;
}

}  // namespace

std::shared_ptr<void> KeepSqliteConnections() {
  std::weak_ptr<KeptConnections>& slot = ThreadKept();
  if (auto kept = slot.lock()) return kept;
  auto kept = std::make_shared<KeptConnections>();
  slot = kept;
  t_statements_reused = 0;
  return kept;
}

SqliteReuseStats ThisThreadSqliteReuse() {
  const auto kept = ThreadKept().lock();
  if (!kept) return {};
  SqliteReuseStats stats = kept->stats;
  stats.statements_reused = t_statements_reused;
  return stats;
}

std::unique_ptr<Connection> OpenSqlite(const std::string& path) {
  const std::string native = NativePath(path);
  struct stat info;
  if (::stat(native.c_str(), &info) != 0) {
    throw Error(errnum::kUnspecified, kSource,
                "unable to open database file " + path + ": " + std::strerror(errno),
                SQLITE_CANTOPEN);
  }
  if (S_ISDIR(info.st_mode)) {
    throw Error(errnum::kUnspecified, kSource,
                "unable to open database file " + path + ": it is a folder", SQLITE_CANTOPEN);
  }
  const std::shared_ptr<KeptConnections> kept = ThreadKept().lock();
  if (kept) {
    const auto found = kept->by_path.find(native);
    if (found != kept->by_path.end() && SameFile(found->second.file, info) &&
        !Running(found->second.db->get())) {
      ++kept->stats.reused;
      return std::make_unique<SqliteConnection>(found->second.db);
    }
  }
  sqlite3* handle = nullptr;
  const int rc = sqlite3_open_v2(native.c_str(), &handle, SQLITE_OPEN_READONLY, nullptr);
  auto db = std::make_shared<Database>(handle);
  if (rc != SQLITE_OK) {
    const Error error = db->LastError(errnum::kUnspecified);
    throw Error(error.number(), kSource, error.description() + ": " + path, error.system_code());
  }
  sqlite3_extended_result_codes(handle, 1);
  sqlite3_busy_timeout(handle, kBusyTimeoutMs);
  // No other database files, no extensions, no schema-supplied functions with side effects.
  sqlite3_limit(handle, SQLITE_LIMIT_ATTACHED, 0);
  sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr);
  sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  if (RegisterSqliteFunctions(handle) != SQLITE_OK) throw db->LastError(errnum::kUnspecified);
  // Reading the schema now reports a file that is not a database as a failure to open.
  if (sqlite3_exec(handle, "select count(*) from sqlite_master", nullptr, nullptr, nullptr) !=
      SQLITE_OK) {
    const Error error = db->LastError(errnum::kUnspecified);
    throw Error(error.number(), kSource, error.description() + ": " + path, error.system_code());
  }
  db->GuardReads();
  if (kept) {
    ++kept->stats.opened;
    kept->by_path[native] = {db, info};
  }
  return std::make_unique<SqliteConnection>(std::move(db));
}

}  // namespace vantorel::data
