// The read-only recordset the print methods read single values with: Open on SQL text and a
// connection string, State, Close, RecordCount, and the fields of the first row by index or name.
// All rows are fetched at Open and counted, whatever the driver says of row counts.
//
// Thread-safety: belongs to the print method that created it.
#ifndef VANTOREL_DATA_RECORDSET_H_
#define VANTOREL_DATA_RECORDSET_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "data/connection.h"
#include "data/value.h"

namespace vantorel::data {

constexpr int kStateClosed = 0;
constexpr int kStateOpen = 1;
constexpr int kOpenKeyset = 1;
constexpr int kLockReadOnly = 1;
constexpr int kCmdUnspecified = -1;

class Recordset;

// A field of the current (first) row.
class Field {
 public:
  const std::string& Name() const { return name_; }
  // The value; throws error 3021 when the recordset has no current row.
  const data::Value& Value() const;

 private:
  friend class Recordset;
  const Recordset* owner_ = nullptr;
  size_t index_ = 0;
  std::string name_;
};

class Recordset {
 public:
  // Opens on "source" through a new connection made from "active_connection"; the cursor, lock
  // and option arguments are those of a keyset, read-only, unspecified-command open (the only
  // ones the print methods use). Throws Error on any failure and stays closed.
  void Open(const std::string& source, const std::string& active_connection,
            int cursor_type = kOpenKeyset, int lock_type = kLockReadOnly,
            int options = kCmdUnspecified);
  int State() const { return open_ ? kStateOpen : kStateClosed; }
  // Throws error 3704 when already closed.
  void Close();
  // The number of rows; throws error 3704 when closed.
  int32_t RecordCount() const;
  // A field of the current row by zero-based index, or by name without regard to case. Throws
  // 3704 when closed and 3265 when there is no such field.
  const Field& Fields(int16_t index) const;
  const Field& Fields(std::string_view name) const;

 private:
  friend class Field;
  bool open_ = false;
  std::vector<Field> fields_;
  std::vector<std::vector<data::Value>> rows_;
};

}  // namespace vantorel::data

#endif  // VANTOREL_DATA_RECORDSET_H_
