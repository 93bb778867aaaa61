// demo_gen: writes the demo dealership database.
//
//   demo_gen [--seed N] [--gatepass Y|N] [--po-view Y|N] [--parts N] [--ledger-entries N]
//            [--sqlite FILE] [--sql FILE] [--facts FILE]
//
//   --sqlite FILE   a new SQLite database: demo/schema.sql and the data, in one transaction
//   --sql FILE      the data alone as INSERT statements, for PostgreSQL after schema.sql:
//                   psql -v ON_ERROR_STOP=1 -f demo/schema.sql -f FILE
//   --facts FILE    key=value lines naming documents of every kind (docs/demo-database.md)
//   --seed N        the random seed; the same seed always writes the same bytes
//   --gatepass Y|N  the ('CHALLAN', 'GATEPASS') setting; Y prints customer challans as gate
//                   passes (default Y)
//   --po-view Y|N   the ('WS_PO', 'PO') setting; Y prints purchase orders on the view layout
//                   (default N)
//   --parts N       a parts master of N parts (default: the demo's own)
//   --ledger-entries N  a cash book of N entries in the year (default: the demo's own)
#include <sqlite3.h>

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "demo/dealership.h"
#include "demo/facts.h"
#include "demo/schema_text.h"

namespace vantorel::demo {
namespace {

constexpr int kRowsPerStatement = 50;

struct Arguments {
  Options options;
  std::string sqlite_path, sql_path, facts_path;
};

constexpr char kUsage[] =
    "usage: demo_gen [--seed N] [--gatepass Y|N] [--po-view Y|N] [--parts N]\n"
    "                [--ledger-entries N] [--sqlite FILE] [--sql FILE] [--facts FILE]\n";

Arguments Parse(const std::vector<std::string>& args) {
  Arguments parsed;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& flag = args[i];
    if (flag == "--help" || flag == "-h") {
      std::cout << kUsage;
      std::exit(0);
    }
    if (i + 1 == args.size()) throw std::invalid_argument("missing value after " + flag);
    const std::string& value = args[++i];
    if (flag == "--seed") {
      const auto [end, error] =
          std::from_chars(value.data(), value.data() + value.size(), parsed.options.seed);
      if (error != std::errc() || end != value.data() + value.size()) {
        throw std::invalid_argument("--seed needs a whole number, not \"" + value + "\"");
      }
    } else if (flag == "--gatepass") {
      if (value != "Y" && value != "N") throw std::invalid_argument("--gatepass takes Y or N");
      parsed.options.gatepass = value;
    } else if (flag == "--po-view") {
      if (value != "Y" && value != "N") throw std::invalid_argument("--po-view takes Y or N");
      parsed.options.po_view = value;
    } else if (flag == "--parts" || flag == "--ledger-entries") {
      int count = 0;
      const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), count);
      if (error != std::errc() || end != value.data() + value.size() || count < 1 ||
          count > 1000000) {
        throw std::invalid_argument(flag + " needs a count from 1 to 1000000, not \"" + value +
                                    "\"");
      }
      (flag == "--parts" ? parsed.options.parts : parsed.options.ledger_entries) = count;
    } else if (flag == "--sqlite") {
      parsed.sqlite_path = value;
    } else if (flag == "--sql") {
      parsed.sql_path = value;
    } else if (flag == "--facts") {
      parsed.facts_path = value;
    } else {
      throw std::invalid_argument("unknown option " + flag);
    }
  }
  if (parsed.sqlite_path.empty() && parsed.sql_path.empty() && parsed.facts_path.empty()) {
    throw std::invalid_argument("nothing to write: give --sqlite, --sql or --facts");
  }
  return parsed;
}

void WriteFile(const std::string& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text;
  out.close();
  if (!out) throw std::runtime_error("cannot write " + path);
}

void WriteSqlite(const std::string& path, const std::string& data_sql) {
  // A fresh file each time, so the same seed gives the same bytes.
  std::filesystem::remove(path);
  std::filesystem::remove(path + "-journal");
  sqlite3* db = nullptr;
  if (sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) !=
      SQLITE_OK) {
    const std::string message = db != nullptr ? sqlite3_errmsg(db) : "out of memory";
    sqlite3_close(db);
    throw std::runtime_error("cannot create " + path + ": " + message);
  }
  const std::string script =
      std::string("pragma journal_mode = off;\nbegin;\n") + SchemaSql() + data_sql + "commit;\n";
  char* error = nullptr;
  const int rc = sqlite3_exec(db, script.c_str(), nullptr, nullptr, &error);
  const std::string message = error != nullptr ? error : "";
  sqlite3_free(error);
  sqlite3_close(db);
  if (rc != SQLITE_OK) throw std::runtime_error("cannot fill " + path + ": " + message);
}

int Run(const std::vector<std::string>& args) {
  const Arguments parsed = Parse(args);
  const DemoData data = GenerateDealership(parsed.options);
  const std::string inserts = InsertStatements(data.tables, kRowsPerStatement);
  if (!parsed.sql_path.empty()) {
    WriteFile(parsed.sql_path,
              "-- Demo dealership data, seed " + std::to_string(parsed.options.seed) +
                  ", written by demo_gen. Load it after demo/schema.sql.\n" + inserts);
  }
  if (!parsed.sqlite_path.empty()) WriteSqlite(parsed.sqlite_path, inserts);
  if (!parsed.facts_path.empty()) WriteFile(parsed.facts_path, FactsText(data.facts));
  return 0;
}

}  // namespace
}  // namespace vantorel::demo

int main(int argc, char** argv) {
  try {
    return vantorel::demo::Run(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const std::exception& error) {
    std::cerr << "demo_gen: " << error.what() << "\n" << vantorel::demo::kUsage;
    return 1;
  }
}
