// Fuzzes the connection-string parser and the password redaction: any text either maps to a
// backend or fails with the component's error, and a redacted message never holds a password
// the string gave.
#include <cstddef>
#include <cstdint>
#include <string>

#include "data/connection.h"
#include "vantorel/error.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  try {
    const vantorel::data::ConnectionTarget target = vantorel::data::ParseConnectionString(text);
    if (target.backend == vantorel::data::ConnectionTarget::Backend::kSqlite &&
        target.sqlite_path.empty()) {
      __builtin_trap();  // an SQLite target always names its file
    }
  } catch (const vantorel::Error& error) {
    if (error.description().empty()) __builtin_trap();  // a failure says what is wrong
  }
  vantorel::data::Redact("Login failed: " + text, text);
  return 0;
}
