#include "report/fill/aggregates.h"

namespace vantorel::report {

using expr::AggregateKind;
using expr::Value;

int CompareValues(const Value& a, const Value& b) {
  if (a.is_number() && b.is_number()) {
    if (a.kind() == Value::Kind::kDecimal && b.kind() == Value::Kind::kDecimal) {
      return expr::Decimal::Compare(a.decimal(), b.decimal());
    }
    return a.number() < b.number() ? -1 : a.number() > b.number() ? 1 : 0;
  }
  if (a.kind() != b.kind()) return a.kind() < b.kind() ? -1 : 1;
  switch (a.kind()) {
    case Value::Kind::kText:
      return a.text().compare(b.text()) < 0 ? -1 : a.text() == b.text() ? 0 : 1;
    case Value::Kind::kDate:
      return a.date().serial < b.date().serial ? -1 : a.date().serial > b.date().serial ? 1 : 0;
    case Value::Kind::kBool:
      return static_cast<int>(a.boolean()) - static_cast<int>(b.boolean());
    default:
      return 0;
  }
}

void AggregateTracker::Accumulator::Add(const Value& value, AggregateKind kind) {
  if (value.is_null()) return;
  ++count;
  if (kind == AggregateKind::kMin) {
    if (min.is_null() || CompareValues(value, min) < 0) min = value;
    return;
  }
  if (kind == AggregateKind::kMax) {
    if (max.is_null() || CompareValues(value, max) > 0) max = value;
    return;
  }
  if (!value.is_number()) return;
  sum_double += value.number();
  if (exact && value.kind() == Value::Kind::kDecimal) {
    if (auto total = expr::Decimal::Add(sum, value.decimal())) {
      sum = *total;
      return;
    }
  }
  exact = false;
}

Value AggregateTracker::Accumulator::Result(AggregateKind kind) const {
  switch (kind) {
    case AggregateKind::kCount:
      return Value::Integer(count);
    case AggregateKind::kMin:
      return min;
    case AggregateKind::kMax:
      return max;
    case AggregateKind::kSum:
      if (count == 0) return Value::Integer(0);
      return exact ? Value::Number(sum) : Value::Number(sum_double);
    case AggregateKind::kAvg: {
      if (count == 0) return Value();
      if (exact) {
        if (auto average = expr::Decimal::Divide(sum, expr::Decimal::FromInt(count))) {
          return Value::Number(*average);
        }
      }
      return Value::Number(sum_double / static_cast<double>(count));
    }
  }
  return Value();
}

AggregateTracker::AggregateTracker(const std::vector<AggregateSpec>& specs, int data_count)
    : specs_(specs), states_(specs.size()), by_data_(static_cast<size_t>(std::max(data_count, 0))) {
  for (size_t id = 0; id < specs.size(); ++id) {
    const int data = specs[id].data;
    if (data >= 0 && static_cast<size_t>(data) < by_data_.size()) {
      by_data_[static_cast<size_t>(data)].push_back(id);
    }
  }
}

void AggregateTracker::Reset(size_t id, int instance) {
  states_[id].current = Accumulator();
  states_[id].instance = instance;
  states_[id].complete = false;
}

void AggregateTracker::Finish(size_t id) {
  State& state = states_[id];
  if (state.complete) return;
  const size_t instance = static_cast<size_t>(std::max(state.instance, 0));
  if (state.finals.size() <= instance) state.finals.resize(instance + 1);
  state.finals[instance] = state.current.Result(specs_[id].kind);
  state.complete = true;
}

void AggregateTracker::StartBand(int data) {
  if (data < 0 || static_cast<size_t>(data) >= by_data_.size()) return;
  for (size_t id : by_data_[static_cast<size_t>(data)]) {
    if (specs_[id].scope == AggregateScope::kBand)
      Reset(id, states_[id].instance + (states_[id].complete ? 1 : 0));
  }
}

void AggregateTracker::EndBand(int data) {
  if (data < 0 || static_cast<size_t>(data) >= by_data_.size()) return;
  for (size_t id : by_data_[static_cast<size_t>(data)]) {
    if (specs_[id].scope == AggregateScope::kBand) Finish(id);
  }
}

void AggregateTracker::StartGroup(int data, int level) {
  if (data < 0 || static_cast<size_t>(data) >= by_data_.size()) return;
  for (size_t id : by_data_[static_cast<size_t>(data)]) {
    const AggregateSpec& spec = specs_[id];
    if ((spec.scope == AggregateScope::kGroup || spec.scope == AggregateScope::kRunning) &&
        spec.group_level >= level) {
      Reset(id, states_[id].instance + (states_[id].complete ? 1 : 0));
    }
  }
}

void AggregateTracker::EndGroup(int data, int level) {
  if (data < 0 || static_cast<size_t>(data) >= by_data_.size()) return;
  for (size_t id : by_data_[static_cast<size_t>(data)]) {
    const AggregateSpec& spec = specs_[id];
    if (spec.scope == AggregateScope::kGroup && spec.group_level == level) Finish(id);
  }
}

void AggregateTracker::StartPage(int page) {
  page_ = page;
  for (size_t id = 0; id < specs_.size(); ++id) {
    if (specs_[id].scope == AggregateScope::kPage) Reset(id, page);
  }
}

void AggregateTracker::EndPage() {
  for (size_t id = 0; id < specs_.size(); ++id) {
    if (specs_[id].scope == AggregateScope::kPage) Finish(id);
  }
}

void AggregateTracker::EndReport() {
  for (size_t id = 0; id < specs_.size(); ++id) {
    if (specs_[id].scope == AggregateScope::kReport) Finish(id);
  }
}

void AggregateTracker::Row(int data, const expr::Context& context) {
  if (data < 0 || static_cast<size_t>(data) >= by_data_.size()) return;
  for (size_t id : by_data_[static_cast<size_t>(data)]) {
    const AggregateSpec& spec = specs_[id];
    if (spec.scope == AggregateScope::kPage) continue;
    if (spec.kind == AggregateKind::kCount && !spec.argument) {
      ++states_[id].current.count;
    } else if (spec.argument) {
      states_[id].current.Add(spec.argument->Evaluate(context), spec.kind);
    }
  }
}

AggregateTracker::PageRow AggregateTracker::TakePageRow(int data,
                                                        const expr::Context& context) const {
  PageRow row;
  if (data < 0 || static_cast<size_t>(data) >= by_data_.size()) return row;
  for (size_t id : by_data_[static_cast<size_t>(data)]) {
    const AggregateSpec& spec = specs_[id];
    if (spec.scope != AggregateScope::kPage) continue;
    if (spec.kind == AggregateKind::kCount && !spec.argument) {
      row.counted.push_back(id);
    } else if (spec.argument) {
      row.values.emplace_back(id, spec.argument->Evaluate(context));
    }
  }
  return row;
}

void AggregateTracker::AddPageRow(const PageRow& row) {
  for (size_t id : row.counted) ++states_[id].current.count;
  for (const auto& [id, value] : row.values) states_[id].current.Add(value, specs_[id].kind);
}

Value AggregateTracker::Current(int id) const {
  return states_[static_cast<size_t>(id)].current.Result(specs_[static_cast<size_t>(id)].kind);
}

bool AggregateTracker::IsComplete(int id) const {
  return specs_[static_cast<size_t>(id)].scope == AggregateScope::kRunning ||
         states_[static_cast<size_t>(id)].complete;
}

AggregateTracker::Snapshot AggregateTracker::Take() const {
  Snapshot snapshot(states_.size());
  for (size_t id = 0; id < states_.size(); ++id) snapshot[id] = states_[id].instance;
  return snapshot;
}

Value AggregateTracker::Final(int id, const Snapshot& snapshot) const {
  const State& state = states_[static_cast<size_t>(id)];
  const size_t instance = static_cast<size_t>(snapshot[static_cast<size_t>(id)]);
  if (instance < state.finals.size() && state.finals[instance]) return *state.finals[instance];
  return Current(id);
}

}  // namespace vantorel::report
