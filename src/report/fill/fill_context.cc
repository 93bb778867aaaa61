#include "report/fill/fill_context.h"

#include "report/text/rich_text.h"

namespace vantorel::report {

using expr::Value;

Value ToExprValue(const data::Value& value) {
  switch (value.kind()) {
    case data::Value::Kind::kNull:
      return Value();
    case data::Value::Kind::kInteger:
      return Value::Integer(value.integer());
    case data::Value::Kind::kReal:
      return Value::Number(value.real());
    case data::Value::Kind::kDecimal: {
      if (auto decimal = expr::Decimal::Parse(value.text())) return Value::Number(*decimal);
      return Value::Text(value.text());
    }
    case data::Value::Kind::kText:
      return Value::Text(value.text());
    case data::Value::Kind::kDate:
    case data::Value::Kind::kDateTime:
      return Value::FromDate(value.date());
    case data::Value::Kind::kBoolean:
      return Value::Bool(value.integer() != 0);
    case data::Value::Kind::kBlob:
      return Value::Text(value.text());
  }
  return Value();
}

FillContext::FillContext(const RunTables& tables, std::vector<QueryCursor>& cursors,
                         const AggregateTracker& aggregates, const FillServices& services,
                         std::vector<expr::Value> variables)
    : tables_(tables),
      cursors_(cursors),
      aggregates_(aggregates),
      services_(services),
      variables_(std::move(variables)) {}

const data::Value& FillContext::Raw(int id) const {
  static const data::Value kNull;
  const FieldSpec& field = tables_.fields[static_cast<size_t>(id)];
  const QueryCursor& cursor = cursors_[static_cast<size_t>(field.query)];
  if (columns_.size() <= static_cast<size_t>(id)) columns_.resize(tables_.fields.size(), {-1, -1});
  auto& [generation, column] = columns_[static_cast<size_t>(id)];
  if (generation != cursor.generation()) {
    generation = cursor.generation();
    column = cursor.Column(field.name);
  }
  if (column < 0) return kNull;
  if (snapshot_ != nullptr) {
    const auto& row = snapshot_->rows[static_cast<size_t>(field.query)];
    if (static_cast<size_t>(column) < row.size()) return row[static_cast<size_t>(column)];
    return cursor.IsParameter(column) ? cursor.Get(column) : kNull;
  }
  return cursor.Get(column);
}

namespace {

Value Shown(Value value, bool markup) {
  if (!markup || value.kind() != Value::Kind::kText) return value;
  return Value::Text(text::ProtectFromMarkup(value.text()));
}

}  // namespace

Value FillContext::Field(int id) const {
  if (snapshot_ != nullptr) return Shown(ToExprValue(Raw(id)), markup);
  const FieldSpec& field = tables_.fields[static_cast<size_t>(id)];
  const uint64_t serial = cursors_[static_cast<size_t>(field.query)].row_serial();
  if (values_.size() <= static_cast<size_t>(id)) values_.resize(tables_.fields.size());
  FieldValue& known = values_[static_cast<size_t>(id)];
  if (known.row_serial != serial) {
    known.value = ToExprValue(Raw(id));
    known.row_serial = serial;
  }
  return Shown(known.value, markup);
}

Value FillContext::Variable(int id) const {
  if (id < 0 || static_cast<size_t>(id) >= variables_.size()) return Value();
  return Shown(variables_[static_cast<size_t>(id)], markup);
}

Value FillContext::System(expr::SystemValue which) const {
  switch (which) {
    case expr::SystemValue::kPage:
      return Value::Integer(snapshot_ ? snapshot_->page : page);
    case expr::SystemValue::kTotalPages:
      if (total_pages == 0) {
        deferred = true;
        return Value();
      }
      return Value::Integer(total_pages);
    case expr::SystemValue::kDate:
      return Value::FromDate(services_.today);
    case expr::SystemValue::kTime:
      return Value::Text(services_.time);
    case expr::SystemValue::kNow:
      return Value::FromDate(services_.now);
    case expr::SystemValue::kLine:
      return Value::Integer(snapshot_ ? snapshot_->line : line);
    case expr::SystemValue::kCopy:
      return Value::Integer(services_.copy);
    case expr::SystemValue::kCopyLabel:
      return Value::Text(services_.copy_label);
  }
  return Value();
}

Value FillContext::Aggregate(int id) const {
  if (snapshot_ != nullptr) return aggregates_.Final(id, snapshot_->aggregates);
  if (!aggregates_.IsComplete(id)) {
    deferred = true;
    return Value();
  }
  return aggregates_.Current(id);
}

std::shared_ptr<Snapshot> FillContext::Take(const std::vector<int>& fields) const {
  auto snapshot = std::make_shared<Snapshot>();
  snapshot->rows.resize(cursors_.size());
  // Only the columns the text reads are copied, at their positions: a page's "Page N of M"
  // copies nothing, however many fields the report reads.
  for (const int id : fields) {
    const FieldSpec& field = tables_.fields[static_cast<size_t>(id)];
    const QueryCursor& cursor = cursors_[static_cast<size_t>(field.query)];
    if (!cursor.has_current()) continue;
    const int column = cursor.Column(field.name);
    if (column < 0) continue;
    auto& row = snapshot->rows[static_cast<size_t>(field.query)];
    if (row.size() <= static_cast<size_t>(column)) row.resize(static_cast<size_t>(column) + 1);
    row[static_cast<size_t>(column)] = cursor.Get(column);
  }
  snapshot->aggregates = aggregates_.Take();
  snapshot->page = page;
  snapshot->line = line;
  return snapshot;
}

void FillContext::UseSnapshot(const Snapshot* snapshot) { snapshot_ = snapshot; }

}  // namespace vantorel::report
