// The server backend: any database with an ODBC driver, through the unixODBC driver manager
// (psqlODBC, MariaDB Connector/ODBC, FreeTDS). Text travels as UTF-16 to and from the driver and
// as UTF-8 everywhere else; decimals are read as text so money stays exact.
//
// Thread-safety: a connection and its cursors belong to one thread.
#ifndef VANTOREL_DATA_ODBC_BACKEND_H_
#define VANTOREL_DATA_ODBC_BACKEND_H_

#include <memory>
#include <string>

#include "data/connection.h"

namespace vantorel::data {

// Connects with "odbc" (a connection string for the driver manager). Driver messages are
// redacted with both "odbc" and "original" (the string the caller gave), so no password they
// hold reaches an error. A "read_only" connection asks the driver and the server for a session
// that only reads.
std::unique_ptr<Connection> OpenOdbc(const std::string& odbc, const std::string& original,
                                     bool read_only);

}  // namespace vantorel::data

#endif  // VANTOREL_DATA_ODBC_BACKEND_H_
