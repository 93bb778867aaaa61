// The syntax of report expressions: the parser turns source text into a tree of unbound nodes
// (names are still names), which the compiler then binds and lowers. docs/expressions.md has the
// grammar.
//
// Thread-safety: pure functions.
#ifndef VANTOREL_REPORT_EXPR_SYNTAX_H_
#define VANTOREL_REPORT_EXPR_SYNTAX_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "report/expr/value.h"

namespace vantorel::report::expr {

enum class Operator : uint8_t {
  kNegate,
  kPlus,  // unary: the operand as a number
  kNot,
  kMultiply,
  kDivide,
  kModulo,
  kAdd,
  kSubtract,
  kConcat,
  kEqual,
  kNotEqual,
  kLess,
  kLessEqual,
  kGreater,
  kGreaterEqual,
  kAnd,
  kOr,
};

struct SyntaxNode {
  enum class Kind : uint8_t { kLiteral, kName, kUnary, kBinary, kCall };
  Kind kind = Kind::kLiteral;
  Operator op = Operator::kAdd;  // kUnary, kBinary
  bool from_text = false;        // a literal written in quotes (an aggregate's scope may be one)
  size_t begin = 0, end = 0;     // the source range, parentheses included
  size_t name_offset = 0;        // kName, kCall: where the name starts
  size_t op_offset = 0;          // kUnary, kBinary: where the operator is
  std::string qualifier;         // kName: "Q" in Q.field, empty for a bare name
  std::string name;              // kName, kCall
  Value literal;                 // kLiteral
  std::vector<int> children;     // operands or arguments
};

struct SyntaxTree {
  std::vector<SyntaxNode> nodes;
  int root = -1;
};

// Limits that keep parsing and evaluation within a small, fixed stack: how deeply parentheses,
// calls and unary operators may nest, and how deep the finished tree may be.
inline constexpr int kMaxNesting = 48;
inline constexpr int kMaxTreeDepth = 200;

// Parses a whole expression. Throws ExprError (offsets into "source") on a syntax error.
SyntaxTree Parse(std::string_view source);

}  // namespace vantorel::report::expr

#endif  // VANTOREL_REPORT_EXPR_SYNTAX_H_
