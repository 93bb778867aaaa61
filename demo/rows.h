// The demo database's rows, held in memory table by table and written out as SQL INSERT
// statements that SQLite and PostgreSQL both accept.
//
// Thread-safety: plain values; a Dataset belongs to one thread.
#ifndef VANTOREL_DEMO_ROWS_H_
#define VANTOREL_DEMO_ROWS_H_

#include <cstdint>
#include <deque>
#include <string>
#include <variant>
#include <vector>

#include "demo/calendar.h"

namespace vantorel::demo {

// An amount in paise, written with two decimals.
struct Money {
  int64_t paise = 0;
};
// A number that is not money, written as its digits ("109.5").
struct Decimal {
  std::string digits;
};
// A date with a time of day, written "2024-04-01 10:15:00".
struct Stamp {
  Day day;
  int seconds = 0;
};

using Cell = std::variant<std::monostate, int64_t, Money, Decimal, std::string, Day, Stamp>;
inline constexpr std::monostate kNull{};

// The SQL literal of "cell": null, digits, or a quoted text with quotes doubled.
std::string SqlLiteral(const Cell& cell);
// "123456.70"
std::string MoneyText(int64_t paise);
std::string StampText(const Stamp& stamp);

class Table {
 public:
  Table(std::string name, std::vector<std::string> columns)
      : name_(std::move(name)), columns_(std::move(columns)) {}

  // Appends a row; throws std::logic_error when it does not have one cell per column.
  void Add(std::vector<Cell> row);

  const std::string& name() const { return name_; }
  const std::vector<std::string>& columns() const { return columns_; }
  const std::vector<std::vector<Cell>>& rows() const { return rows_; }

 private:
  std::string name_;
  std::vector<std::string> columns_;
  std::vector<std::vector<Cell>> rows_;
};

// Tables in load order: a table comes after every table it refers to.
class Dataset {
 public:
  Table& Create(std::string name, std::vector<std::string> columns) {
    return tables_.emplace_back(std::move(name), std::move(columns));
  }
  const std::deque<Table>& tables() const { return tables_; }
  // The table called "name", or nullptr: a later step adds rows to an earlier step's table.
  Table* Find(const std::string& name) {
    for (Table& table : tables_) {
      if (table.name() == name) return &table;
    }
    return nullptr;
  }

 private:
  std::deque<Table> tables_;
};

// Every row of "data" as INSERT statements of up to "rows_per_statement" rows each, one row per
// line, every statement ending with a semicolon at the end of its line.
std::string InsertStatements(const Dataset& data, int rows_per_statement);

}  // namespace vantorel::demo

#endif  // VANTOREL_DEMO_ROWS_H_
