// Fuzzes the expression language: compiles the input as an expression, as a text template (both
// ways) and uses it as a display pattern, evaluating everything against a context that serves
// every kind of value. Compiling may throw ExprError; nothing else may throw or crash.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "report/expr/expression.h"
#include "report/expr/value.h"

namespace vantorel::report::expr {
namespace {

// Binds every name, except that a query called X has no fields (so Q.name falls back to a
// variable) and a variable called Nope does not exist (so binding errors happen too).
class PermissiveBinder : public Binder {
 public:
  int Field(std::string_view query, std::string_view field) override {
    if (query == "X") throw ExprError(0, "no such query");
    return static_cast<int>((query.size() * 31 + field.size()) % 16);
  }
  int Variable(std::string_view category, std::string_view name) override {
    if (name == "Nope") throw ExprError(0, "no such variable", "define it");
    return static_cast<int>((category.size() + name.size() * 7) % 16);
  }
  int Aggregate(AggregateKind, std::shared_ptr<const Expression> argument,
                std::string_view) override {
    if (argument) arguments.push_back(std::move(argument));
    return static_cast<int>(arguments.size() % 16);
  }
  std::vector<std::shared_ptr<const Expression>> arguments;
};

Value Sample(int id) {
  switch (id % 10) {
    case 0:
      return Value();
    case 1:
      return Value::Number(*Decimal::Parse("1234.50"));
    case 2:
      return Value::Number(1.5e25);
    case 3:
      return Value::Text("Ravi Kumar");
    case 4:
      return Value::Text(" 12.5 ");
    case 5:
      return Value::FromDate(*Date::FromIso("2024-03-31 10:30"));
    case 6:
      return Value::Bool(true);
    case 7:
      return Value::Number(*Decimal::Parse("99999999999999999999.999999999999999999"));
    case 8:
      return Value::Number(*Decimal::Parse("-0.000000000000000001"));
    default:
      return Value::FromDate(Date{-657434.0});
  }
}

class SampleContext : public Context {
 public:
  Value Field(int id) const override { return Sample(id); }
  Value Variable(int id) const override { return Sample(id + 3); }
  Value System(SystemValue which) const override { return Sample(static_cast<int>(which) + 1); }
  Value Aggregate(int id) const override { return Sample(id + 7); }
};

void Exercise(const Value& value, std::string_view pattern) {
  DisplayText(value);
  FormatValue(value, pattern);
  FormatValue(value, "#,##,##0.00");
}

}  // namespace
}  // namespace vantorel::report::expr

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vantorel::report::expr;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const SampleContext context;
  PermissiveBinder binder;

  try {
    const auto expression = Expression::Compile(input, binder);
    const Value value = expression->Evaluate(context);
    expression->IsConstant();
    expression->fields();
    expression->Uses(SystemValue::kTotalPages);
    Exercise(value, input);
  } catch (const ExprError&) {
  }
  for (const auto& argument : binder.arguments) Exercise(argument->Evaluate(context), input);

  try {
    const auto text = TextTemplate::Compile(input, binder, false);
    text->Evaluate(context, {});
    text->Evaluate(context, "dd mmm yyyy");
  } catch (const ExprError&) {
  }
  // Run-time texts must always compile when bad segments may stay literal.
  const auto lenient = TextTemplate::Compile(input, binder, true);
  lenient->Evaluate(context, "0.00");

  for (int id = 0; id < 10; ++id) FormatValue(Sample(id), input);
  if (const auto decimal = Decimal::Parse(input)) {
    const Decimal d = *decimal;
    d.ToString();
    d.ToDouble();
    Decimal::Multiply(d, d);
    Decimal::Divide(Decimal::FromInt(1), d);
    Decimal::Add(d, d);
    d.Round(2);
    d.Round(-3);
  }
  return 0;
}
