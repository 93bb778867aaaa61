// The PostgreSQL server the "postgres" fixture starts (tests/support/postgres.sh): its connection
// string, written to $VANTOREL_BUILD_DIR/pg/conn (this build's folder when the variable is not
// set).
#ifndef VANTOREL_TESTS_SUPPORT_POSTGRES_H_
#define VANTOREL_TESTS_SUPPORT_POSTGRES_H_

#include <cstdlib>
#include <fstream>
#include <string>

namespace vantorel::testing {

// Empty when no server was started.
inline std::string PostgresConnectionString() {
  const char* build = std::getenv("VANTOREL_BUILD_DIR");
  std::ifstream in((build != nullptr ? std::string(build) : std::string(VANTOREL_BUILD_DIR)) +
                   "/pg/conn");
  std::string line;
  std::getline(in, line);
  return line;
}

}  // namespace vantorel::testing

#endif  // VANTOREL_TESTS_SUPPORT_POSTGRES_H_
