// Test doubles for compiling and evaluating expressions: a binder that knows a fixed set of
// fields and variables and records the aggregates it is asked for, and a context holding values
// by id.
#ifndef VANTOREL_TESTS_REPORT_EXPR_FAKE_BINDER_H_
#define VANTOREL_TESTS_REPORT_EXPR_FAKE_BINDER_H_

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "report/expr/expression.h"

namespace vantorel::report::expr::testing {

class FakeBinder : public Binder {
 public:
  struct AggregateCall {
    AggregateKind kind;
    std::shared_ptr<const Expression> argument;
    std::string scope;
  };

  // Fields are "Q.name"; variables are "Category.name" or a bare "name".
  int AddField(const std::string& qualified) { return Add(fields_, qualified); }
  int AddVariable(const std::string& qualified) { return Add(variables_, qualified); }

  int Field(std::string_view query, std::string_view field) override {
    const auto it = fields_.find(std::string(query) + "." + std::string(field));
    if (it != fields_.end()) return it->second;
    throw ExprError(0, "no field " + std::string(query) + "." + std::string(field),
                    "check the query's columns");
  }

  int Variable(std::string_view category, std::string_view name) override {
    const std::string key =
        category.empty() ? std::string(name) : std::string(category) + "." + std::string(name);
    const auto it = variables_.find(key);
    if (it != variables_.end()) return it->second;
    throw ExprError(0, "no variable " + key, "define it in the template");
  }

  int Aggregate(AggregateKind kind, std::shared_ptr<const Expression> argument,
                std::string_view scope) override {
    aggregates.push_back({kind, std::move(argument), std::string(scope)});
    return 1000 + static_cast<int>(aggregates.size()) - 1;
  }

  std::vector<AggregateCall> aggregates;

 private:
  int Add(std::map<std::string, int>& map, const std::string& key) {
    const auto it = map.find(key);
    if (it != map.end()) return it->second;
    const int id = next_id_++;
    map.emplace(key, id);
    return id;
  }

  std::map<std::string, int> fields_;
  std::map<std::string, int> variables_;
  int next_id_ = 1;
};

class FakeContext : public Context {
 public:
  std::map<int, Value> fields, variables, aggregates;
  std::map<SystemValue, Value> system;

  Value Field(int id) const override { return Find(fields, id); }
  Value Variable(int id) const override { return Find(variables, id); }
  Value System(SystemValue which) const override {
    const auto it = system.find(which);
    return it == system.end() ? Value() : it->second;
  }
  Value Aggregate(int id) const override { return Find(aggregates, id); }

 private:
  static Value Find(const std::map<int, Value>& map, int id) {
    const auto it = map.find(id);
    return it == map.end() ? Value() : it->second;
  }
};

// A compact, readable form of a value for test tables: null, true, false, 3.50 (a decimal with
// its scale), double 1e+25, 'text', date 31-03-2024 (with " 10:30" when it has a time).
inline std::string Describe(const Value& v) {
  switch (v.kind()) {
    case Value::Kind::kNull:
      return "null";
    case Value::Kind::kBool:
      return v.boolean() ? "true" : "false";
    case Value::Kind::kDecimal:
      return DisplayText(v);
    case Value::Kind::kDouble:
      return "double " + DisplayText(v);
    case Value::Kind::kText:
      return "'" + v.text() + "'";
    case Value::Kind::kDate:
      return "date " + DisplayText(v);
  }
  return "?";
}

// Names table-driven cases after their "name" field.
struct CaseName {
  template <typename Info>
  std::string operator()(const Info& info) const {
    return info.param.name;
  }
};

}  // namespace vantorel::report::expr::testing

#endif  // VANTOREL_TESTS_REPORT_EXPR_FAKE_BINDER_H_
