// Report expressions: our own small language for what templates compute — field references of
// the template's queries, template variables, system values, arithmetic, comparison, logic,
// string concatenation, functions and aggregates. docs/expressions.md is the reference.
//
// An expression is compiled once against a Binder, which turns names into ids the fill stage
// understands, and evaluated many times against a Context that supplies the current values.
//
// Thread-safety: a compiled Expression or TextTemplate is immutable and may be evaluated from
// several threads at once with different contexts.
#ifndef VANTOREL_REPORT_EXPR_EXPRESSION_H_
#define VANTOREL_REPORT_EXPR_EXPRESSION_H_

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "report/expr/value.h"

namespace vantorel::report::expr {

// A problem in an expression's text: where (byte offset into the source), what, and a hint.
class ExprError : public std::runtime_error {
 public:
  ExprError(size_t offset, std::string message, std::string hint = {});
  size_t offset() const { return offset_; }
  const std::string& message() const { return message_; }
  const std::string& hint() const { return hint_; }

 private:
  size_t offset_;
  std::string message_;
  std::string hint_;
};

enum class SystemValue { kPage, kTotalPages, kDate, kTime, kNow, kLine, kCopy, kCopyLabel };

enum class AggregateKind { kSum, kCount, kAvg, kMin, kMax };

class Expression;

// Turns names into ids while compiling. Each method returns the id, or throws ExprError (with
// offset 0; the compiler adds the position) when the name means nothing here.
class Binder {
 public:
  virtual ~Binder() = default;
  // "query.field": a field of one of the template's queries.
  virtual int Field(std::string_view query, std::string_view field) = 0;
  // A template variable: "category.name", or just "name" (any category).
  virtual int Variable(std::string_view category, std::string_view name) = 0;
  // An aggregate over rows: "argument" is null for Count(); "scope" is what the template wrote as
  // the second argument ("report", "page", "group", "running", a band name) or empty.
  virtual int Aggregate(AggregateKind kind, std::shared_ptr<const Expression> argument,
                        std::string_view scope) = 0;
};

// Supplies current values while evaluating.
class Context {
 public:
  virtual ~Context() = default;
  virtual Value Field(int id) const = 0;
  virtual Value Variable(int id) const = 0;
  virtual Value System(SystemValue which) const = 0;
  virtual Value Aggregate(int id) const = 0;
};

class Expression {
 public:
  // Parses and binds "source" (an expression without the surrounding brackets). Throws ExprError.
  static std::shared_ptr<const Expression> Compile(std::string_view source, Binder& binder);

  virtual ~Expression() = default;
  // Evaluates; run-time problems (division by zero, a bad argument) give null, never throw.
  virtual Value Evaluate(const Context& context) const = 0;
  // True when the value does not depend on fields, variables, system values or aggregates.
  virtual bool IsConstant() const = 0;
  // The field ids the expression reads (outside aggregates).
  virtual const std::vector<int>& fields() const = 0;
  // True when it reads the system value "which" (e.g. kTotalPages, known only at the end).
  virtual bool Uses(SystemValue which) const = 0;
  virtual const std::string& source() const = 0;
};

// A text with embedded expressions in square brackets: "Page [Page] of [TotalPages]". "[[" is a
// literal "[". Display formats come from the object (FormatValue) and apply to texts that are a
// single expression.
class TextTemplate {
 public:
  // Compiles "text". With "literal_on_error", a bracket whose content is not a valid expression
  // is kept as literal text (texts set at run time may contain brackets); otherwise it throws.
  static std::shared_ptr<const TextTemplate> Compile(std::string_view text, Binder& binder,
                                                     bool literal_on_error);

  virtual ~TextTemplate() = default;
  // The text with every expression replaced by its value: formatted by "format" when the text is
  // a single expression and a format is given, by DisplayText otherwise.
  virtual std::string Evaluate(const Context& context, std::string_view format) const = 0;
  // The value of a text that is exactly one expression (e.g. "[Q_INV.amt]"); null otherwise.
  virtual std::shared_ptr<const Expression> single() const = 0;
  virtual bool IsConstant() const = 0;
  // The field ids its expressions read (outside aggregates), each once.
  virtual const std::vector<int>& fields() const = 0;
  virtual bool Uses(SystemValue which) const = 0;
};

}  // namespace vantorel::report::expr

#endif  // VANTOREL_REPORT_EXPR_EXPRESSION_H_
