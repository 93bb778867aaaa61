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

// While a handle from KeepSqliteConnections lives, the SQLite connections opened on the thread
// that made it are kept and opened again for the same file without reading its schema anew. A
// kept connection is handed out only while none of its statements is running, so each statement
// reads what was committed before it starts (a change the host commits between two prints is
// seen), and only while the path still names the same file. Connections never go to another
// thread; they close when the thread's last handle is released. The key is the file's path:
// nothing of a connection string is kept.
std::shared_ptr<void> KeepSqliteConnections();

// How many SQLite connections this thread opened and reused since its current handles were made,
// and how many statements it ran again without preparing them anew (a connection keeps the
// statements of its queries once they are done, reset, and runs them again for the same SQL);
// zeros when it has none.
struct SqliteReuseStats {
  int opened = 0;
  int reused = 0;
  int statements_reused = 0;
};
SqliteReuseStats ThisThreadSqliteReuse();

}  // namespace vantorel::data

#endif  // VANTOREL_DATA_SQLITE_BACKEND_H_
