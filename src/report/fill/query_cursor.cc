#include "report/fill/query_cursor.h"
#include "report/expr/text_util.h"

#include <atomic>
#include <cctype>

namespace vantorel::report {
namespace {

const data::Value kNull;

data::Value ToValue(const data::ParamValue& param) {
  if (const auto* integer = std::get_if<int64_t>(&param)) return data::Value::Integer(*integer);
  if (const auto* real = std::get_if<double>(&param)) return data::Value::Real(*real);
  if (const auto* text = std::get_if<std::string>(&param)) return data::Value::Text(*text);
  if (const auto* date = std::get_if<Date>(&param)) {
    return date->serial == static_cast<double>(static_cast<int64_t>(date->serial))
               ? data::Value::FromDate(*date)
               : data::Value::FromDateTime(*date);
  }
  return {};
}

}  // namespace

uint64_t QueryCursor::NewRowSerial() {
  static std::atomic<uint64_t> last{0};
  return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

void QueryCursor::Open(data::Connection& connection, const std::string& sql,
                       const std::map<std::string, data::ParamValue>& params) {
  cursor_.reset();
  has_current_ = has_next_ = false;
  current_.clear();
  next_.clear();
  columns_.clear();
  parameters_.clear();
  ++generation_;
  row_serial_ = NewRowSerial();
  cursor_ = connection.Execute(sql, params);
  opened_ = true;
  const auto& columns = cursor_->columns();
  width_ = columns.size();
  for (size_t i = 0; i < columns.size(); ++i) {
    columns_.emplace(expr::AsciiUpper(columns[i].name), static_cast<int>(i));
  }
  for (const auto& [name, value] : params) {
    // A column of the same name wins.
    if (columns_.emplace(expr::AsciiUpper(name), static_cast<int>(width_ + parameters_.size()))
            .second) {
      parameters_.push_back(ToValue(value));
    }
  }
  ReadAhead();
}

void QueryCursor::ReadAhead() {
  has_next_ = cursor_ != nullptr && cursor_->Next(next_);
  if (!has_next_) cursor_.reset();  // the statement is done; free it early
}

bool QueryCursor::Next() {
  if (!has_next_) return false;
  std::swap(current_, next_);
  has_current_ = true;
  row_serial_ = NewRowSerial();
  ReadAhead();
  return true;
}

int QueryCursor::Column(std::string_view name) const {
  const auto it = columns_.find(expr::AsciiUpper(name));
  return it == columns_.end() ? -1 : it->second;
}

const data::Value& QueryCursor::Get(int column) const {
  if (IsParameter(column)) {
    const size_t index = static_cast<size_t>(column) - width_;
    return index < parameters_.size() ? parameters_[index] : kNull;
  }
  if (!has_current_ || column < 0 || static_cast<size_t>(column) >= current_.size()) return kNull;
  return current_[static_cast<size_t>(column)];
}

}  // namespace vantorel::report
