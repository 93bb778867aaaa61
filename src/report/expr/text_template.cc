// Texts with embedded expressions: "Invoice [Q_INV.invno] dated [Q_INV.invdt]".
#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "report/expr/expression.h"
#include "report/expr/text_util.h"

namespace vantorel::report::expr {
namespace {

class NoContext final : public Context {
 public:
  Value Field(int) const override { return Value(); }
  Value Variable(int) const override { return Value(); }
  Value System(SystemValue) const override { return Value(); }
  Value Aggregate(int) const override { return Value(); }
};

class CompiledTemplate final : public TextTemplate {
 public:
  struct Part {
    std::string literal;
    std::shared_ptr<const Expression> expression;  // null for a literal part
  };

  explicit CompiledTemplate(std::vector<Part> parts) : parts_(std::move(parts)) {
    for (const Part& part : parts_) {
      if (!part.expression) continue;
      for (const int field : part.expression->fields()) {
        if (std::find(fields_.begin(), fields_.end(), field) == fields_.end()) {
          fields_.push_back(field);
        }
      }
    }
    if (parts_.size() == 1 && parts_[0].expression) {
      single_ = parts_[0].expression;
      return;
    }
    // With literal text around them, constant expressions can only ever show one text.
    std::vector<Part> merged;
    for (Part& part : parts_) {
      if (part.expression && part.expression->IsConstant()) {
        part.literal = DisplayText(part.expression->Evaluate(NoContext()));
        part.expression.reset();
      }
      if (!part.expression && !merged.empty() && !merged.back().expression) {
        merged.back().literal += part.literal;
      } else {
        merged.push_back(std::move(part));
      }
    }
    parts_ = std::move(merged);
  }

  std::string Evaluate(const Context& context, std::string_view format) const override {
    if (single_) {
      const Value value = single_->Evaluate(context);
      return format.empty() ? DisplayText(value) : FormatValue(value, format);
    }
    std::string out;
    for (const Part& part : parts_) {
      if (part.expression) {
        out += DisplayText(part.expression->Evaluate(context));
      } else {
        out += part.literal;
      }
    }
    return out;
  }

  std::shared_ptr<const Expression> single() const override { return single_; }

  bool IsConstant() const override {
    for (const Part& part : parts_) {
      if (part.expression && !part.expression->IsConstant()) return false;
    }
    return true;
  }

  const std::vector<int>& fields() const override { return fields_; }

  bool Uses(SystemValue which) const override {
    for (const Part& part : parts_) {
      if (part.expression && part.expression->Uses(which)) return true;
    }
    return false;
  }

 private:
  std::vector<Part> parts_;
  std::shared_ptr<const Expression> single_;
  std::vector<int> fields_;
};

}  // namespace

std::shared_ptr<const TextTemplate> TextTemplate::Compile(std::string_view text, Binder& binder,
                                                          bool literal_on_error) {
  std::vector<CompiledTemplate::Part> parts;
  std::string literal;
  size_t i = 0;
  while (i < text.size()) {
    if (text[i] != '[') {
      literal += text[i++];
      continue;
    }
    if (i + 1 < text.size() && text[i + 1] == '[') {
      literal += '[';
      i += 2;
      continue;
    }
    std::optional<size_t> close = ClosingBracket(text, i, true);
    if (!close) close = ClosingBracket(text, i, false);
    if (!close) {
      if (!literal_on_error) {
        throw ExprError(i, "this '[' is not closed", "write [[ for a literal [");
      }
      literal += text[i++];
      continue;
    }
    const std::string_view content = text.substr(i + 1, *close - i - 1);
    std::shared_ptr<const Expression> expression;
    try {
      expression = Expression::Compile(content, binder);
    } catch (const ExprError& e) {
      if (!literal_on_error) throw ExprError(i + 1 + e.offset(), e.message(), e.hint());
      literal.append(text.substr(i, *close - i + 1));
      i = *close + 1;
      continue;
    }
    if (!literal.empty()) parts.push_back({std::move(literal), nullptr});
    literal.clear();
    parts.push_back({{}, std::move(expression)});
    i = *close + 1;
  }
  if (!literal.empty() || parts.empty()) parts.push_back({std::move(literal), nullptr});
  return std::make_shared<CompiledTemplate>(std::move(parts));
}

}  // namespace vantorel::report::expr
