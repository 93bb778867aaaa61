// A temporary folder holding SQLite database files the data tests build for themselves, removed
// with everything in it when the test ends, and what those tests share to read rows and errors.
#ifndef VANTOREL_TESTS_DATA_TEMP_DATABASE_H_
#define VANTOREL_TESTS_DATA_TEMP_DATABASE_H_

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <stdlib.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "data/connection.h"
#include "data/value.h"
#include "vantorel/error.h"

namespace vantorel::data::testing {

class TempFolder {
 public:
  TempFolder() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "vantorel-data-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) ADD_FAILURE() << "mkdtemp failed";
    path_ = pattern;
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  std::string File(const std::string& name) const { return (path_ / name).string(); }
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// Creates "path" as an SQLite database and runs "script" on it (with write access, which the
// backend itself never has).
inline void CreateSqlite(const std::string& path, const std::string& script) {
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr),
            SQLITE_OK);
  char* message = nullptr;
  const int rc = sqlite3_exec(db, script.c_str(), nullptr, nullptr, &message);
  const std::string text = message == nullptr ? "" : message;
  sqlite3_free(message);
  sqlite3_close(db);
  ASSERT_EQ(rc, SQLITE_OK) << text;
}

inline std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

// Every row of "sql" on "db".
inline std::vector<std::vector<Value>> Rows(Connection& db, const std::string& sql,
                                            const std::map<std::string, ParamValue>& params = {}) {
  const auto cursor = db.Execute(sql, params);
  std::vector<std::vector<Value>> rows;
  std::vector<Value> row;
  while (cursor->Next(row)) rows.push_back(row);
  return rows;
}

// The number of the error "call" throws; 0 when it throws none.
inline int32_t ErrorNumberOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const Error& error) {
    return error.number();
  }
  return 0;
}

// The dealership tables the data tests read: a few enquiries, the parameter table and invoices.
constexpr char kDealershipScript[] = R"sql(
  create table enquiry (enq_id integer primary key, cname text, enq_date date,
                        amount numeric(12,2), visited datetime, hot boolean, photo blob,
                        rate real);
  insert into enquiry values (1, 'Ramesh Kumar', '2024-03-30', 60000.10, '2024-03-30 10:15:00',
                              1, x'00ff10', 0.1);
  insert into enquiry values (2, 'सुनीता देवी ₹', '2024-03-31', 125000.50, null, 0, null, 2.5);
  insert into enquiry values (3, 'Amit', '2024-04-01', 99.99, '2024-04-01 18:00:00', null,
                              null, null);
  insert into enquiry values (4, null, null, null, null, null, null, null);
  create table para_setup (para_value text, para_flag text, para_type text);
  insert into para_setup values (' y ', 'CHALLAN', 'GATEPASS');
  insert into para_setup values (null, 'WS_PO', 'PO');
  insert into para_setup values ('N', 'BOOKING', 'FORM');
)sql";

}  // namespace vantorel::data::testing

#endif  // VANTOREL_TESTS_DATA_TEMP_DATABASE_H_
