// The embedded backend: an SQLite database file opened read-only through the SQLite C API, with
// the dealership SQL habits bridged (see sqlite_dialect.h).
//
// Thread-safety: a connection and its cursors belong to one thread.
#ifndef VANTOREL_DATA_SQLITE_BACKEND_H_
#define VANTOREL_DATA_SQLITE_BACKEND_H_

#include <memory>
#include <string>

#include "data/connection.h"

namespace vantorel::data {

// Opens the database file at "path" (a host path) read-only. A missing file is an error
// (errnum::kUnspecified, the path named), never a new empty database.
std::unique_ptr<Connection> OpenSqlite(const std::string& path);

}  // namespace vantorel::data

#endif  // VANTOREL_DATA_SQLITE_BACKEND_H_
