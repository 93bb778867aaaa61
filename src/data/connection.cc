#include "data/connection.h"

#include "data/odbc_backend.h"
#include "data/sqlite_backend.h"
#include "vantorel/error.h"

namespace vantorel::data {

std::unique_ptr<Connection> Connection::Open(const std::string& connection_string) {
  const ConnectionTarget target = ParseConnectionString(connection_string);
  if (target.backend == ConnectionTarget::Backend::kSqlite) return OpenSqlite(target.sqlite_path);
  return OpenOdbc(target.odbc, connection_string, true);
}

std::unique_ptr<Connection> Connection::OpenForLoading(const std::string& connection_string) {
  const ConnectionTarget target = ParseConnectionString(connection_string);
  if (target.backend == ConnectionTarget::Backend::kSqlite) {
    throw Error(errnum::kConnectionInvalid, "Vantorel data",
                "SQLite databases are only read here; load them with SQLite's own tools");
  }
  return OpenOdbc(target.odbc, connection_string, false);
}

}  // namespace vantorel::data
