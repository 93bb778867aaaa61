#include "demo/rows.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace vantorel::demo {

std::string MoneyText(int64_t paise) {
  const bool negative = paise < 0;
  const int64_t magnitude = negative ? -paise : paise;
  char text[32];
  std::snprintf(text, sizeof text, "%s%lld.%02lld", negative ? "-" : "",
                static_cast<long long>(magnitude / 100), static_cast<long long>(magnitude % 100));
  return text;
}

std::string StampText(const Stamp& stamp) {
  char time[48];
  std::snprintf(time, sizeof time, " %02d:%02d:%02d", stamp.seconds / 3600, stamp.seconds / 60 % 60,
                stamp.seconds % 60);
  return stamp.day.Iso() + time;
}

namespace {

std::string Quoted(const std::string& text) {
  std::string out = "'";
  for (char c : text) {
    if (c == '\'') out += '\'';
    out += c;
  }
  return out + "'";
}

struct LiteralWriter {
  std::string operator()(std::monostate) const { return "null"; }
  std::string operator()(int64_t value) const { return std::to_string(value); }
  std::string operator()(const Money& value) const { return MoneyText(value.paise); }
  std::string operator()(const Decimal& value) const { return value.digits; }
  std::string operator()(const std::string& value) const { return Quoted(value); }
  std::string operator()(const Day& value) const { return Quoted(value.Iso()); }
  std::string operator()(const Stamp& value) const { return Quoted(StampText(value)); }
};

}  // namespace

std::string SqlLiteral(const Cell& cell) { return std::visit(LiteralWriter{}, cell); }

void Table::Add(std::vector<Cell> row) {
  if (row.size() != columns_.size()) {
    throw std::logic_error("table " + name_ + ": a row of " + std::to_string(row.size()) +
                           " cells for " + std::to_string(columns_.size()) + " columns");
  }
  rows_.push_back(std::move(row));
}

std::string InsertStatements(const Dataset& data, int rows_per_statement) {
  std::string sql;
  for (const Table& table : data.tables()) {
    std::string head = "insert into " + table.name() + " (";
    for (size_t i = 0; i < table.columns().size(); ++i) {
      head += (i == 0 ? "" : ", ") + table.columns()[i];
    }
    head += ") values\n";
    const auto& rows = table.rows();
    for (size_t first = 0; first < rows.size(); first += static_cast<size_t>(rows_per_statement)) {
      sql += head;
      const size_t end = std::min(rows.size(), first + static_cast<size_t>(rows_per_statement));
      for (size_t r = first; r < end; ++r) {
        sql += "(";
        for (size_t c = 0; c < rows[r].size(); ++c) {
          sql += (c == 0 ? "" : ", ") + SqlLiteral(rows[r][c]);
        }
        sql += r + 1 == end ? ");\n" : "),\n";
      }
    }
  }
  return sql;
}

}  // namespace vantorel::demo
