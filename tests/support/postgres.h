// The database servers the "postgres" and "mariadb" fixtures start (tests/support/postgres.sh,
// mariadb.sh): their connection strings, written to $VANTOREL_BUILD_DIR/pg/conn and mariadb/conn
// (this build's folder when the variable is not set).
#ifndef VANTOREL_TESTS_SUPPORT_POSTGRES_H_
#define VANTOREL_TESTS_SUPPORT_POSTGRES_H_

#include <cstdlib>
#include <fstream>
#include <string>

namespace vantorel::testing {

// The first line of "file" in the build folder; empty when there is none.
inline std::string BuildFileLine(const std::string& file) {
  const char* build = std::getenv("VANTOREL_BUILD_DIR");
  std::ifstream in((build != nullptr ? std::string(build) : std::string(VANTOREL_BUILD_DIR)) + "/" +
                   file);
  std::string line;
  std::getline(in, line);
  return line;
}

// Empty when no server was started.
inline std::string PostgresConnectionString() { return BuildFileLine("pg/conn"); }

// The MariaDB server the "mariadb" fixture starts (tests/support/mariadb.sh); empty when none
// was started.
inline std::string MariaDbConnectionString() { return BuildFileLine("mariadb/conn"); }

}  // namespace vantorel::testing

#endif  // VANTOREL_TESTS_SUPPORT_POSTGRES_H_
