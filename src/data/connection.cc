#include "data/connection.h"

#include "data/odbc_backend.h"
#include "data/sqlite_backend.h"

namespace vantorel::data {

std::unique_ptr<Connection> Connection::Open(const std::string& connection_string) {
  const ConnectionTarget target = ParseConnectionString(connection_string);
  if (target.backend == ConnectionTarget::Backend::kSqlite) return OpenSqlite(target.sqlite_path);
  return OpenOdbc(target.odbc, connection_string);
}

}  // namespace vantorel::data
