#include "data/recordset.h"

#include <strings.h>

#include <memory>
#include <utility>

#include "vantorel/error.h"

namespace vantorel::data {
namespace {

constexpr char kSource[] = "Vantorel.Recordset";
constexpr int32_t kObjectOpen = 3705;

Error Closed() {
  return Error(errnum::kObjectClosed, kSource, "Operation is not allowed: the recordset is closed");
}

}  // namespace

const data::Value& Field::Value() const {
  if (owner_ == nullptr || owner_->rows_.empty()) {
    throw Error(errnum::kNoCurrentRecord, kSource,
                "There is no current record: the recordset holds no rows");
  }
  return owner_->rows_.front()[index_];
}

// The cursor, lock and option arguments need no handling: every row is read into memory at
// once, which serves a keyset, read-only cursor.
void Recordset::Open(const std::string& source, const std::string& active_connection, int, int,
                     int) {
  if (open_) {
    throw Error(kObjectOpen, kSource, "Operation is not allowed: the recordset is already open");
  }
  const std::unique_ptr<Connection> connection = Connection::Open(active_connection);
  const std::unique_ptr<Cursor> cursor = connection->Execute(source);
  std::vector<Field> fields;
  for (size_t i = 0; i < cursor->columns().size(); ++i) {
    Field field;
    field.owner_ = this;
    field.index_ = i;
    field.name_ = cursor->columns()[i].name;
    fields.push_back(std::move(field));
  }
  std::vector<std::vector<data::Value>> rows;
  std::vector<data::Value> row;
  while (cursor->Next(row)) rows.push_back(row);
  // A statement that returns no rowset (an update, say) leaves the recordset closed.
  if (fields.empty()) return;
  fields_ = std::move(fields);
  rows_ = std::move(rows);
  open_ = true;
}

void Recordset::Close() {
  if (!open_) throw Closed();
  open_ = false;
  fields_.clear();
  rows_.clear();
}

int32_t Recordset::RecordCount() const {
  if (!open_) throw Closed();
  return static_cast<int32_t>(rows_.size());
}

const Field& Recordset::Fields(int16_t index) const {
  if (!open_) throw Closed();
  if (index < 0 || static_cast<size_t>(index) >= fields_.size()) {
    throw Error(errnum::kItemNotFound, kSource,
                "Item cannot be found in the collection: the recordset has no field " +
                    std::to_string(index));
  }
  return fields_[static_cast<size_t>(index)];
}

const Field& Recordset::Fields(std::string_view name) const {
  if (!open_) throw Closed();
  for (const Field& field : fields_) {
    if (field.name_.size() == name.size() &&
        ::strncasecmp(field.name_.data(), name.data(), name.size()) == 0) {
      return field;
    }
  }
  throw Error(errnum::kItemNotFound, kSource,
              "Item cannot be found in the collection: the recordset has no field \"" +
                  std::string(name) + "\"");
}

}  // namespace vantorel::data
