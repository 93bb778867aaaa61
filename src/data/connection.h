// Connections to the dealership database from a connection string, in OLE DB style
// ("Provider=…;Data Source=…;…") or plain ODBC style ("Driver=…;…" / "DSN=…"), or the path of an
// SQLite file. docs/data-access.md lists how each provider is mapped:
//   SQL Server providers (SQLOLEDB, SQLNCLI…, MSOLEDBSQL…) → FreeTDS ODBC, TDS 7.4, UTF-8;
//   MSDASQL → plain ODBC (its DSN or Driver); PostgreSQL providers → psqlODBC (Unicode);
//   MySQL/MariaDB providers → MariaDB ODBC (Unicode); Provider=SQLite or a bare .db / .sqlite /
//   .sqlite3 path → the embedded SQLite backend, opened read-only (a missing file is an error).
// Any other provider is a clear error. Messages never contain the connection string's password.
//
// Thread-safety: a connection and its cursors belong to one thread; different connections are
// independent.
#ifndef VANTOREL_DATA_CONNECTION_H_
#define VANTOREL_DATA_CONNECTION_H_

#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "data/value.h"

namespace vantorel::data {

// Where a connection string leads.
struct ConnectionTarget {
  enum class Backend { kSqlite, kOdbc } backend = Backend::kOdbc;
  std::string sqlite_path;  // kSqlite: the database file
  std::string odbc;         // kOdbc: the connection string handed to the ODBC driver manager
};

// Maps "connection_string"; throws Error (3709) for an empty string and for unsupported
// providers.
ConnectionTarget ParseConnectionString(const std::string& connection_string);

// "text" with every password of "connection_string" replaced by "***" (for driver messages that
// might echo it).
std::string Redact(std::string text, const std::string& connection_string);

struct Column {
  std::string name;
  std::string declared_type;  // as the database declares it; may be empty
};

// A typed value for a named query parameter.
using ParamValue = std::variant<std::monostate, int64_t, double, std::string, Date>;

// Rows of one statement, read forwards.
class Cursor {
 public:
  virtual ~Cursor() = default;
  virtual const std::vector<Column>& columns() const = 0;
  // Reads the next row into "row" (resized to the column count); false at the end.
  virtual bool Next(std::vector<Value>& row) = 0;
};

class Connection {
 public:
  virtual ~Connection() = default;

  // Opens a connection; throws Error with the driver's own description (never the password):
  // errnum::kAuthenticationFailed for a refused login, errnum::kUnspecified otherwise.
  // The connection only reads: SQLite refuses every other statement, and the PostgreSQL and
  // MariaDB sessions are read-only.
  static std::unique_ptr<Connection> Open(const std::string& connection_string);

  // A server connection that may write, for loading data (the demo dealership, tests' set-up).
  // Throws Error for an SQLite connection string.
  static std::unique_ptr<Connection> OpenForLoading(const std::string& connection_string);

  // Runs "sql". Parameters are written ":name" in the SQL (outside quotes; "::" is left alone)
  // and bound from "params" by name, without regard to case; a name that "params" lacks is bound
  // as NULL. Throws Error (errnum::kCommandError) with the driver's description for bad SQL.
  virtual std::unique_ptr<Cursor> Execute(const std::string& sql,
                                          const std::map<std::string, ParamValue>& params) = 0;
  std::unique_ptr<Cursor> Execute(const std::string& sql) { return Execute(sql, {}); }
};

}  // namespace vantorel::data

#endif  // VANTOREL_DATA_CONNECTION_H_
