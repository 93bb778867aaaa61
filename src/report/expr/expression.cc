// Compiling (binding names to ids, folding constants) and evaluating expressions. A compiled
// expression is a flat array of nodes in post-order whose operands are indices, so evaluation is
// a switch per node with no name lookups.
#include "report/expr/expression.h"

#include <algorithm>
#include <array>
#include <utility>

#include "report/expr/functions.h"
#include "report/expr/operators.h"
#include "report/expr/syntax.h"
#include "report/expr/text_util.h"

namespace vantorel::report::expr {

ExprError::ExprError(size_t offset, std::string message, std::string hint)
    : std::runtime_error(message),
      offset_(offset),
      message_(std::move(message)),
      hint_(std::move(hint)) {}

namespace {

struct SystemName {
  std::string_view name;
  SystemValue which;
};
constexpr SystemName kSystemNames[] = {
    {"Page", SystemValue::kPage}, {"TotalPages", SystemValue::kTotalPages},
    {"Date", SystemValue::kDate}, {"Time", SystemValue::kTime},
    {"Now", SystemValue::kNow},   {"Line", SystemValue::kLine},
    {"Copy", SystemValue::kCopy}, {"CopyLabel", SystemValue::kCopyLabel},
};

const SystemName* FindSystemName(std::string_view name) {
  for (const SystemName& s : kSystemNames) {
    if (EqualsIgnoreCase(s.name, name)) return &s;
  }
  return nullptr;
}

struct AggregateName {
  std::string_view name;
  AggregateKind kind;
};
constexpr AggregateName kAggregateNames[] = {
    {"Sum", AggregateKind::kSum}, {"Count", AggregateKind::kCount}, {"Avg", AggregateKind::kAvg},
    {"Min", AggregateKind::kMin}, {"Max", AggregateKind::kMax},
};

const AggregateName* FindAggregate(std::string_view name) {
  for (const AggregateName& a : kAggregateNames) {
    if (EqualsIgnoreCase(a.name, name)) return &a;
  }
  return nullptr;
}

// Constant folding evaluates subtrees that read nothing from a context.
class NoContext final : public Context {
 public:
  Value Field(int) const override { return Value(); }
  Value Variable(int) const override { return Value(); }
  Value System(SystemValue) const override { return Value(); }
  Value Aggregate(int) const override { return Value(); }
};

enum class Code : uint8_t {
  kConstant,
  kField,
  kVariable,
  kSystem,
  kAggregate,
  kUnary,
  kBinary,
  kAnd,
  kOr,
  kCall,
};

struct Node {
  Code code = Code::kConstant;
  Operator op = Operator::kAdd;             // kUnary, kBinary
  Function function = Function::kIsNull;    // kCall
  SystemValue system = SystemValue::kPage;  // kSystem
  int id = 0;     // kConstant: index into constants; kField, kVariable, kAggregate: the bound id
  int first = 0;  // operands: operands_[first .. first + count)
  int count = 0;
};

uint32_t Bit(SystemValue which) { return 1u << static_cast<int>(which); }

class Program final : public Expression {
 public:
  explicit Program(std::string source) : source_(std::move(source)) {}

  Value Evaluate(const Context& context) const override {
    // Operators and functions do not throw; this only shields callers from a context that does.
    try {
      return Eval(root_, context);
    } catch (...) {
      return Value();
    }
  }
  bool IsConstant() const override { return nodes_[root_].code == Code::kConstant; }
  const std::vector<int>& fields() const override { return fields_; }
  bool Uses(SystemValue which) const override { return (system_values_ & Bit(which)) != 0; }
  const std::string& source() const override { return source_; }

 private:
  friend class Compiler;

  Value Eval(int index, const Context& context) const;
  Value EvalBinary(Operator op, const Value& a, const Value& b) const;
  Value EvalCall(const Node& node, const int* operands, const Context& context) const;

  std::string source_;
  std::vector<Node> nodes_;
  std::vector<int> operands_;
  std::vector<Value> constants_;
  std::vector<int> fields_;
  uint32_t system_values_ = 0;
  int root_ = 0;
};

Value Program::Eval(int index, const Context& context) const {
  const Node& node = nodes_[index];
  const int* operands = operands_.data() + node.first;
  switch (node.code) {
    case Code::kConstant:
      return constants_[node.id];
    case Code::kField:
      return context.Field(node.id);
    case Code::kVariable:
      return context.Variable(node.id);
    case Code::kSystem:
      return context.System(node.system);
    case Code::kAggregate:
      return context.Aggregate(node.id);
    case Code::kUnary: {
      const Value x = Eval(operands[0], context);
      if (node.op == Operator::kNegate) return Negate(x);
      if (node.op == Operator::kPlus) return ToNumber(x);
      const auto truth = Truth(x);
      return truth ? Value::Bool(!*truth) : Value();
    }
    case Code::kBinary:
      return EvalBinary(node.op, Eval(operands[0], context), Eval(operands[1], context));
    case Code::kAnd:
    case Code::kOr: {
      // Three-valued logic: a deciding left side skips the right one.
      const bool decider = node.code == Code::kOr;
      const auto left = Truth(Eval(operands[0], context));
      if (left && *left == decider) return Value::Bool(decider);
      const auto right = Truth(Eval(operands[1], context));
      if (right && *right == decider) return Value::Bool(decider);
      if (left && right) return Value::Bool(!decider);
      return Value();
    }
    case Code::kCall:
      return EvalCall(node, operands, context);
  }
  return Value();
}

Value Program::EvalBinary(Operator op, const Value& a, const Value& b) const {
  switch (op) {
    case Operator::kAdd:
      return Add(a, b);
    case Operator::kSubtract:
      return Subtract(a, b);
    case Operator::kMultiply:
      return Multiply(a, b);
    case Operator::kDivide:
      return Divide(a, b);
    case Operator::kModulo:
      return Modulo(a, b);
    case Operator::kConcat:
      return Concat(a, b);
    default:
      break;
  }
  const auto c = Compare(a, b);
  if (!c) return Value();
  switch (op) {
    case Operator::kEqual:
      return Value::Bool(*c == 0);
    case Operator::kNotEqual:
      return Value::Bool(*c != 0);
    case Operator::kLess:
      return Value::Bool(*c < 0);
    case Operator::kLessEqual:
      return Value::Bool(*c <= 0);
    case Operator::kGreater:
      return Value::Bool(*c > 0);
    case Operator::kGreaterEqual:
      return Value::Bool(*c >= 0);
    default:
      return Value();
  }
}

Value Program::EvalCall(const Node& node, const int* operands, const Context& context) const {
  switch (node.function) {
    case Function::kIif: {
      const auto condition = Truth(Eval(operands[0], context));
      return Eval(condition && *condition ? operands[1] : operands[2], context);
    }
    case Function::kCoalesce:
      for (int i = 0; i < node.count; ++i) {
        Value v = Eval(operands[i], context);
        if (!v.is_null()) return v;
      }
      return Value();
    case Function::kLeast:
    case Function::kGreatest: {
      const int wanted = node.function == Function::kLeast ? -1 : 1;
      Value best = Eval(operands[0], context);
      for (int i = 1; i < node.count && !best.is_null(); ++i) {
        Value v = Eval(operands[i], context);
        const auto c = Compare(v, best);
        if (!c) return Value();
        if (*c == wanted) best = std::move(v);
      }
      return best;
    }
    case Function::kToday:
      return context.System(SystemValue::kDate);
    case Function::kJoinText: {
      // Addresses: "Baramati" as locality and as city prints once, and empty lines drop out.
      const std::string separator = DisplayText(Eval(operands[0], context));
      std::vector<std::string> kept;
      std::string joined;
      for (int i = 1; i < node.count; ++i) {
        std::string part = DisplayText(Eval(operands[i], context));
        part.erase(0, part.find_first_not_of(" \t\r\n"));
        part.erase(part.find_last_not_of(" \t\r\n") + 1);
        if (part.empty() || std::any_of(kept.begin(), kept.end(), [&](const std::string& k) {
              return EqualsIgnoreCase(k, part);
            })) {
          continue;
        }
        joined += (kept.empty() ? "" : separator) + part;
        kept.push_back(part);
      }
      return Value::Text(std::move(joined));
    }
    default: {
      std::array<Value, kMaxPlainArguments> args;
      for (int i = 0; i < node.count; ++i) args[i] = Eval(operands[i], context);
      return CallPlain(node.function, args.data(), node.count);
    }
  }
}

// Binds and lowers one syntax tree (or, for an aggregate's argument, one subtree of it).
class Compiler {
 public:
  Compiler(std::string_view source, const SyntaxTree& tree, Binder& binder, bool in_aggregate)
      : source_(source), tree_(tree), binder_(binder), in_aggregate_(in_aggregate) {}

  std::shared_ptr<const Expression> Build(int syntax_root, std::string program_source) {
    program_ = std::make_shared<Program>(std::move(program_source));
    program_->root_ = Lower(syntax_root);
    // The binder hears of aggregates only once the whole expression has compiled, so a text
    // kept literal after an error leaves no aggregate behind to compute.
    for (PendingAggregate& pending : pending_aggregates_) {
      program_->nodes_[pending.node].id = BindAt(pending.offset, [&] {
        return binder_.Aggregate(pending.kind, std::move(pending.argument), pending.scope);
      });
    }
    return std::move(program_);
  }

 private:
  // Rethrows a binder's error at the position of the name it could not bind.
  template <typename Bind>
  int BindAt(size_t offset, Bind bind) {
    try {
      return bind();
    } catch (const ExprError& e) {
      throw ExprError(offset + e.offset(), e.message(), e.hint());
    }
  }

  int Emit(Node node, std::initializer_list<int> operands = {}) {
    node.first = static_cast<int>(program_->operands_.size());
    node.count = static_cast<int>(operands.size());
    program_->operands_.insert(program_->operands_.end(), operands);
    program_->nodes_.push_back(node);
    return static_cast<int>(program_->nodes_.size()) - 1;
  }

  int EmitConstant(Value value) {
    Node node;
    node.code = Code::kConstant;
    node.id = static_cast<int>(program_->constants_.size());
    program_->constants_.push_back(std::move(value));
    return Emit(node);
  }

  bool IsConstant(int index) const { return program_->nodes_[index].code == Code::kConstant; }

  // Where the arrays ended before a subtree was lowered.
  struct Mark {
    size_t nodes, operands, constants;
  };
  Mark MarkNow() const {
    return {program_->nodes_.size(), program_->operands_.size(), program_->constants_.size()};
  }

  // Replaces a node whose operands are all constants by its value. The subtree was emitted last
  // (post-order), so it is cut off the end of every array.
  int Fold(int index, const Mark& mark) {
    Value value = program_->Eval(index, NoContext());
    program_->nodes_.resize(mark.nodes);
    program_->operands_.resize(mark.operands);
    program_->constants_.resize(mark.constants);
    return EmitConstant(std::move(value));
  }

  int Lower(int index) {
    const SyntaxNode& s = tree_.nodes[index];
    const Mark mark = MarkNow();
    switch (s.kind) {
      case SyntaxNode::Kind::kLiteral:
        return EmitConstant(s.literal);
      case SyntaxNode::Kind::kName:
        return LowerName(s);
      case SyntaxNode::Kind::kUnary: {
        const int operand = Lower(s.children[0]);
        Node node;
        node.code = Code::kUnary;
        node.op = s.op;
        const int emitted = Emit(node, {operand});
        return IsConstant(operand) ? Fold(emitted, mark) : emitted;
      }
      case SyntaxNode::Kind::kBinary: {
        const int left = Lower(s.children[0]);
        const int right = Lower(s.children[1]);
        Node node;
        node.code = s.op == Operator::kAnd  ? Code::kAnd
                    : s.op == Operator::kOr ? Code::kOr
                                            : Code::kBinary;
        node.op = s.op;
        const int emitted = Emit(node, {left, right});
        return IsConstant(left) && IsConstant(right) ? Fold(emitted, mark) : emitted;
      }
      case SyntaxNode::Kind::kCall:
        return LowerCall(s, mark);
    }
    return EmitConstant(Value());
  }

  int LowerName(const SyntaxNode& s) {
    Node node;
    if (s.qualifier.empty()) {
      if (const SystemName* system = FindSystemName(s.name)) {
        node.code = Code::kSystem;
        node.system = system->which;
        program_->system_values_ |= Bit(system->which);
        return Emit(node);
      }
      node.code = Code::kVariable;
      node.id = BindAt(s.name_offset, [&] { return binder_.Variable("", s.name); });
      return Emit(node);
    }
    // Q.name is a query's field when the binder knows one; otherwise a variable of category Q.
    // When neither binds, the field's error is the one the author sees.
    try {
      node.id = binder_.Field(s.qualifier, s.name);
      node.code = Code::kField;
      auto& fields = program_->fields_;
      if (std::find(fields.begin(), fields.end(), node.id) == fields.end()) {
        fields.push_back(node.id);
      }
    } catch (const ExprError& field_error) {
      try {
        node.id = binder_.Variable(s.qualifier, s.name);
        node.code = Code::kVariable;
      } catch (const ExprError&) {
        throw ExprError(s.name_offset + field_error.offset(), field_error.message(),
                        field_error.hint());
      }
    }
    return Emit(node);
  }

  int LowerCall(const SyntaxNode& s, const Mark& mark) {
    if (const SystemName* system = FindSystemName(s.name)) {
      throw ExprError(s.name_offset, std::string(system->name) + " is a value, not a function",
                      system->which == SystemValue::kDate
                          ? "write Date (or Today()) without parentheses after it"
                          : "write " + std::string(system->name) + " without parentheses");
    }
    if (const AggregateName* aggregate = FindAggregate(s.name)) {
      return LowerAggregate(s, *aggregate);
    }
    const FunctionInfo* info = FindFunction(s.name);
    if (info == nullptr) {
      const std::string closest = ClosestName(s.name);
      throw ExprError(s.name_offset, "unknown function '" + s.name + "'",
                      closest.empty() ? "docs/expressions.md lists the functions"
                                      : "did you mean " + closest + "?");
    }
    const int count = static_cast<int>(s.children.size());
    if (count < info->min_arguments ||
        (info->max_arguments != kAnyNumber && count > info->max_arguments)) {
      throw ExprError(s.name_offset,
                      std::string(info->name) + " takes " + ArgumentCount(*info) + ", not " +
                          std::to_string(count),
                      "write " + std::string(info->usage));
    }
    std::vector<int> operands;
    operands.reserve(s.children.size());
    bool all_constant = true;
    for (const int child : s.children) {
      operands.push_back(Lower(child));
      all_constant = all_constant && IsConstant(operands.back());
    }
    Node node;
    node.code = Code::kCall;
    node.function = info->function;
    node.first = static_cast<int>(program_->operands_.size());
    node.count = count;
    program_->operands_.insert(program_->operands_.end(), operands.begin(), operands.end());
    program_->nodes_.push_back(node);
    const int emitted = static_cast<int>(program_->nodes_.size()) - 1;
    if (info->function == Function::kToday) {
      program_->system_values_ |= Bit(SystemValue::kDate);
      return emitted;
    }
    return all_constant ? Fold(emitted, mark) : emitted;
  }

  static std::string ArgumentCount(const FunctionInfo& info) {
    auto plural = [](int n) { return std::to_string(n) + (n == 1 ? " argument" : " arguments"); };
    if (info.max_arguments == kAnyNumber) return "at least " + plural(info.min_arguments);
    if (info.min_arguments == info.max_arguments) return plural(info.min_arguments);
    return std::to_string(info.min_arguments) + " or " + plural(info.max_arguments);
  }

  // Sum(x), Sum(x, scope), Count(), Count("scope"), Count(x), Count(x, scope), ...: the argument
  // becomes an expression of its own and the binder decides what the aggregate's id is.
  int LowerAggregate(const SyntaxNode& s, const AggregateName& aggregate) {
    const std::string name(aggregate.name);
    if (in_aggregate_) {
      throw ExprError(s.name_offset, "an aggregate cannot contain another aggregate",
                      "compute the inner one in a template variable");
    }
    auto is_scope = [&](int child) {
      const SyntaxNode& n = tree_.nodes[child];
      return (n.kind == SyntaxNode::Kind::kLiteral && n.from_text) ||
             (n.kind == SyntaxNode::Kind::kName && n.qualifier.empty());
    };
    auto scope_of = [&](int child) {
      const SyntaxNode& n = tree_.nodes[child];
      return n.kind == SyntaxNode::Kind::kLiteral ? n.literal.text() : n.name;
    };
    const bool count = aggregate.kind == AggregateKind::kCount;
    const size_t arguments = s.children.size();
    int argument = -1;
    std::string scope;
    if (arguments == 0 && count) {
      // Count(): rows.
    } else if (arguments == 1 && count && tree_.nodes[s.children[0]].from_text) {
      scope = scope_of(s.children[0]);
    } else if (arguments == 1) {
      argument = s.children[0];
    } else if (arguments == 2 && is_scope(s.children[1])) {
      argument = s.children[0];
      scope = scope_of(s.children[1]);
    } else if (arguments == 2) {
      const size_t at = tree_.nodes[s.children[1]].begin;
      if (aggregate.kind == AggregateKind::kMin || aggregate.kind == AggregateKind::kMax) {
        throw ExprError(at, "the second argument of " + name + " is a scope",
                        std::string("for the ") +
                            (aggregate.kind == AggregateKind::kMin ? "smaller" : "larger") +
                            " of two values write " +
                            (aggregate.kind == AggregateKind::kMin ? "Least" : "Greatest") +
                            "(a, b)");
      }
      throw ExprError(at, "the second argument of " + name + " is a scope",
                      "write a scope name such as \"group\", \"page\" or \"report\"");
    } else {
      throw ExprError(s.name_offset,
                      name + " takes " + (count ? "0, 1 or 2 arguments" : "1 or 2 arguments") +
                          ", not " + std::to_string(arguments),
                      "write " + name + (count ? "([value][, scope])" : "(value[, scope])"));
    }
    std::shared_ptr<const Expression> compiled;
    if (argument >= 0) {
      const SyntaxNode& a = tree_.nodes[argument];
      compiled = Compiler(source_, tree_, binder_, true)
                     .Build(argument, std::string(source_.substr(a.begin, a.end - a.begin)));
    }
    Node node;
    node.code = Code::kAggregate;
    const int emitted = Emit(node);
    pending_aggregates_.push_back(
        {emitted, s.name_offset, aggregate.kind, std::move(compiled), std::move(scope)});
    return emitted;
  }

  // Aggregate nodes are never folded away, so their indices stay valid until Build binds them.
  struct PendingAggregate {
    int node;
    size_t offset;
    AggregateKind kind;
    std::shared_ptr<const Expression> argument;
    std::string scope;
  };

  std::string_view source_;
  const SyntaxTree& tree_;
  Binder& binder_;
  bool in_aggregate_;
  std::shared_ptr<Program> program_;
  std::vector<PendingAggregate> pending_aggregates_;
};

}  // namespace

std::shared_ptr<const Expression> Expression::Compile(std::string_view source, Binder& binder) {
  const SyntaxTree tree = Parse(source);
  return Compiler(source, tree, binder, false).Build(tree.root, std::string(source));
}

}  // namespace vantorel::report::expr
