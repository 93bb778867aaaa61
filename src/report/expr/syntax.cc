#include "report/expr/syntax.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

#include "report/expr/expression.h"
#include "report/expr/operators.h"
#include "report/expr/text_util.h"

namespace vantorel::report::expr {
namespace {

enum class Tok : uint8_t {
  kEnd,
  kNumber,
  kText,
  kDate,
  kName,  // bare or qualified
  kTrue,
  kFalse,
  kNull,
  kAnd,
  kOr,
  kNot,
  kMod,
  kLeftParen,
  kRightParen,
  kComma,
  kPlus,
  kMinus,
  kStar,
  kSlash,
  kAmpersand,
  kEqual,
  kNotEqual,
  kLess,
  kLessEqual,
  kGreater,
  kGreaterEqual,
};

struct Token {
  Tok kind = Tok::kEnd;
  size_t begin = 0, end = 0;
  std::string qualifier, name;  // kName
  Value value;                  // kNumber, kText, kDate
};

bool IsNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsNameChar(char c) { return IsNameStart(c) || IsDigit(c); }

struct Keyword {
  std::string_view word;
  Tok kind;
};
constexpr Keyword kKeywords[] = {{"and", Tok::kAnd},  {"or", Tok::kOr},     {"not", Tok::kNot},
                                 {"mod", Tok::kMod},  {"true", Tok::kTrue}, {"false", Tok::kFalse},
                                 {"null", Tok::kNull}};

class Lexer {
 public:
  explicit Lexer(std::string_view source) : source_(source) {}

  Token Next() {
    while (pos_ < source_.size() && (source_[pos_] == ' ' || source_[pos_] == '\t' ||
                                     source_[pos_] == '\r' || source_[pos_] == '\n')) {
      ++pos_;
    }
    Token t;
    t.begin = pos_;
    if (pos_ == source_.size()) {
      t.end = pos_;
      return t;
    }
    const char c = source_[pos_];
    if (IsDigit(c) || (c == '.' && pos_ + 1 < source_.size() && IsDigit(source_[pos_ + 1]))) {
      ReadNumber(t);
    } else if (c == '"' || c == '\'') {
      ReadText(t, c);
    } else if (c == '#') {
      ReadDate(t);
    } else if (IsNameStart(c)) {
      ReadName(t);
    } else {
      ReadSymbol(t, c);
    }
    t.end = pos_;
    return t;
  }

 private:
  char At(size_t i) const { return i < source_.size() ? source_[i] : '\0'; }

  void ReadNumber(Token& t) {
    while (IsDigit(At(pos_))) ++pos_;
    if (At(pos_) == '.' && IsDigit(At(pos_ + 1))) {
      ++pos_;
      while (IsDigit(At(pos_))) ++pos_;
    }
    if (At(pos_) == 'e' || At(pos_) == 'E') {
      size_t p = pos_ + 1;
      if (At(p) == '+' || At(p) == '-') ++p;
      if (IsDigit(At(p))) {
        while (IsDigit(At(p))) ++p;
        pos_ = p;
      }
    }
    const std::string_view text = source_.substr(t.begin, pos_ - t.begin);
    auto number = ParseNumber(text);
    if (!number) {
      throw ExprError(t.begin, "the number " + std::string(text) + " is out of range",
                      "numbers must stay below about 1e308");
    }
    t.kind = Tok::kNumber;
    t.value = std::move(*number);
  }

  void ReadText(Token& t, char quote) {
    std::string text;
    ++pos_;
    while (true) {
      const size_t hit = source_.find(quote, pos_);
      if (hit == std::string_view::npos) {
        throw ExprError(t.begin, "the text is not closed",
                        std::string("end it with ") + quote +
                            "; to put that quote inside the text, write it twice");
      }
      text.append(source_.substr(pos_, hit - pos_));
      pos_ = hit + 1;
      if (At(pos_) != quote) break;
      text += quote;
      ++pos_;
    }
    t.kind = Tok::kText;
    t.value = Value::Text(std::move(text));
  }

  void ReadDate(Token& t) {
    const size_t close = source_.find('#', pos_ + 1);
    if (close == std::string_view::npos) {
      throw ExprError(t.begin, "the date is not closed", "write dates as #2024-03-31#");
    }
    const std::string_view inside = source_.substr(pos_ + 1, close - pos_ - 1);
    const auto date = Date::FromIso(inside);
    if (!date || !date->IsValid()) {
      throw ExprError(t.begin, "#" + std::string(inside) + "# is not a date",
                      "write dates as #yyyy-mm-dd# or #yyyy-mm-dd hh:mm#");
    }
    pos_ = close + 1;
    t.kind = Tok::kDate;
    t.value = Value::FromDate(*date);
  }

  void ReadName(Token& t) {
    while (IsNameChar(At(pos_))) ++pos_;
    t.name = std::string(source_.substr(t.begin, pos_ - t.begin));
    t.kind = Tok::kName;
    if (At(pos_) != '.') {
      for (const Keyword& k : kKeywords) {
        if (EqualsIgnoreCase(t.name, k.word)) t.kind = k.kind;
      }
      return;
    }
    // Q.field, or Q."field with blanks" for names a plain identifier cannot spell.
    const size_t dot = pos_++;
    t.qualifier = std::move(t.name);
    t.name.clear();
    const char c = At(pos_);
    if (c == '"' || c == '\'') {
      Token quoted;
      quoted.begin = pos_;
      ReadText(quoted, c);
      t.name = quoted.value.text();
    } else {
      const size_t start = pos_;
      while (IsNameChar(At(pos_))) ++pos_;
      t.name = std::string(source_.substr(start, pos_ - start));
    }
    if (t.name.empty()) {
      throw ExprError(dot, "a name must follow '" + t.qualifier + ".'",
                      "write query fields as Q.field");
    }
    if (At(pos_) == '.') {
      throw ExprError(pos_, "a name has at most two parts", "write query fields as Q.field");
    }
  }

  void ReadSymbol(Token& t, char c) {
    const char next = At(pos_ + 1);
    auto take = [&](Tok kind, size_t length) {
      t.kind = kind;
      pos_ += length;
    };
    switch (c) {
      case '(':
        return take(Tok::kLeftParen, 1);
      case ')':
        return take(Tok::kRightParen, 1);
      case ',':
        return take(Tok::kComma, 1);
      case '+':
        return take(Tok::kPlus, 1);
      case '-':
        return take(Tok::kMinus, 1);
      case '*':
        return take(Tok::kStar, 1);
      case '/':
        return take(Tok::kSlash, 1);
      case '&':
        if (next == '&') throw ExprError(pos_, "unexpected '&&'", "write 'and'");
        return take(Tok::kAmpersand, 1);
      case '=':
        if (next == '=') throw ExprError(pos_, "unexpected '=='", "compare with a single =");
        return take(Tok::kEqual, 1);
      case '<':
        if (next == '>') return take(Tok::kNotEqual, 2);
        if (next == '=') return take(Tok::kLessEqual, 2);
        return take(Tok::kLess, 1);
      case '>':
        if (next == '=') return take(Tok::kGreaterEqual, 2);
        return take(Tok::kGreater, 1);
      default:
        break;
    }
    std::string hint;
    switch (c) {
      case '!':
        hint = next == '=' ? "write <> for 'not equal'" : "write 'not'";
        break;
      case '|':
        hint = "write 'or'";
        break;
      case '[':
      case ']':
        hint = "square brackets surround expressions in report texts; inside one, write Q.field";
        break;
      case '?':
      case ':':
        hint = "write IIF(condition, then, else)";
        break;
      case ';':
        hint = "separate arguments with ','";
        break;
      case '%':
        hint = "write 'mod' for a remainder, or a pattern such as \"0.00%\" in Format";
        break;
      case '^':
        hint = "there is no power operator; multiply instead";
        break;
      default:
        break;
    }
    throw ExprError(pos_, "unexpected '" + std::string(1, c) + "'", std::move(hint));
  }

  std::string_view source_;
  size_t pos_ = 0;
};

class Parser {
 public:
  explicit Parser(std::string_view source) : source_(source), lexer_(source) { Advance(); }

  SyntaxTree Run() {
    if (token_.kind == Tok::kEnd) {
      throw ExprError(0, "the expression is empty",
                      "write a value, a name such as Q.field, or a function call");
    }
    tree_.root = ParseOr();
    if (token_.kind == Tok::kRightParen) {
      throw ExprError(token_.begin, "unexpected ')'", "there is no '(' for this ')'");
    }
    if (token_.kind != Tok::kEnd) {
      throw ExprError(token_.begin, "expected an operator before " + Describe(token_),
                      "join values with an operator such as + or &");
    }
    return std::move(tree_);
  }

 private:
  void Advance() { token_ = lexer_.Next(); }

  std::string Describe(const Token& t) const {
    if (t.kind == Tok::kEnd) return "the end";
    std::string_view text = source_.substr(t.begin, t.end - t.begin);
    if (text.size() > 24) return "'" + std::string(text.substr(0, 21)) + "...'";
    return "'" + std::string(text) + "'";
  }

  int Add(SyntaxNode node) {
    int depth = 1;
    for (const int child : node.children) depth = std::max(depth, depths_[child] + 1);
    if (depth > kMaxTreeDepth) {
      throw ExprError(node.op_offset, "the expression is too long or too deeply nested",
                      "split it into template variables");
    }
    tree_.nodes.push_back(std::move(node));
    depths_.push_back(depth);
    return static_cast<int>(tree_.nodes.size()) - 1;
  }

  int Binary(Operator op, size_t op_offset, int left, int right) {
    SyntaxNode node;
    node.kind = SyntaxNode::Kind::kBinary;
    node.op = op;
    node.op_offset = op_offset;
    node.begin = tree_.nodes[left].begin;
    node.end = tree_.nodes[right].end;
    node.children = {left, right};
    return Add(std::move(node));
  }

  // Guards the recursion of nested parentheses, calls and unary operators.
  class Nesting {
   public:
    Nesting(Parser& parser, size_t offset) : parser_(parser) {
      if (++parser_.nesting_ > kMaxNesting) {
        throw ExprError(offset, "the expression is nested too deeply",
                        "split it into template variables");
      }
    }
    ~Nesting() { --parser_.nesting_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

   private:
    Parser& parser_;
  };

  int ParseOr() {
    int left = ParseAnd();
    while (token_.kind == Tok::kOr) {
      const size_t at = token_.begin;
      Advance();
      left = Binary(Operator::kOr, at, left, ParseAnd());
    }
    return left;
  }

  int ParseAnd() {
    int left = ParseNot();
    while (token_.kind == Tok::kAnd) {
      const size_t at = token_.begin;
      Advance();
      left = Binary(Operator::kAnd, at, left, ParseNot());
    }
    return left;
  }

  // "not" binds more loosely than comparisons: not Q.qty = 0 is not (Q.qty = 0).
  int ParseNot() {
    if (token_.kind != Tok::kNot) return ParseComparison();
    const size_t at = token_.begin;
    const Nesting nesting(*this, at);
    Advance();
    return Unary(Operator::kNot, at, ParseNot());
  }

  int Unary(Operator op, size_t at, int operand) {
    SyntaxNode node;
    node.kind = SyntaxNode::Kind::kUnary;
    node.op = op;
    node.op_offset = at;
    node.begin = at;
    node.end = tree_.nodes[operand].end;
    node.children = {operand};
    return Add(std::move(node));
  }

  int ParseComparison() {
    int left = ParseConcat();
    while (true) {
      Operator op;
      switch (token_.kind) {
        case Tok::kEqual:
          op = Operator::kEqual;
          break;
        case Tok::kNotEqual:
          op = Operator::kNotEqual;
          break;
        case Tok::kLess:
          op = Operator::kLess;
          break;
        case Tok::kLessEqual:
          op = Operator::kLessEqual;
          break;
        case Tok::kGreater:
          op = Operator::kGreater;
          break;
        case Tok::kGreaterEqual:
          op = Operator::kGreaterEqual;
          break;
        default:
          return left;
      }
      const size_t at = token_.begin;
      Advance();
      left = Binary(op, at, left, ParseConcat());
    }
  }

  int ParseConcat() {
    int left = ParseAdditive();
    while (token_.kind == Tok::kAmpersand) {
      const size_t at = token_.begin;
      Advance();
      left = Binary(Operator::kConcat, at, left, ParseAdditive());
    }
    return left;
  }

  int ParseAdditive() {
    int left = ParseMultiplicative();
    while (token_.kind == Tok::kPlus || token_.kind == Tok::kMinus) {
      const Operator op = token_.kind == Tok::kPlus ? Operator::kAdd : Operator::kSubtract;
      const size_t at = token_.begin;
      Advance();
      left = Binary(op, at, left, ParseMultiplicative());
    }
    return left;
  }

  int ParseMultiplicative() {
    int left = ParseUnary();
    while (token_.kind == Tok::kStar || token_.kind == Tok::kSlash || token_.kind == Tok::kMod) {
      const Operator op = token_.kind == Tok::kStar    ? Operator::kMultiply
                          : token_.kind == Tok::kSlash ? Operator::kDivide
                                                       : Operator::kModulo;
      const size_t at = token_.begin;
      Advance();
      left = Binary(op, at, left, ParseUnary());
    }
    return left;
  }

  int ParseUnary() {
    if (token_.kind != Tok::kMinus && token_.kind != Tok::kPlus) return ParsePrimary();
    const Operator op = token_.kind == Tok::kMinus ? Operator::kNegate : Operator::kPlus;
    const size_t at = token_.begin;
    const Nesting nesting(*this, at);
    Advance();
    return Unary(op, at, ParseUnary());
  }

  int Literal(Value value, bool from_text = false) {
    SyntaxNode node;
    node.kind = SyntaxNode::Kind::kLiteral;
    node.begin = token_.begin;
    node.end = token_.end;
    node.op_offset = token_.begin;
    node.literal = std::move(value);
    node.from_text = from_text;
    Advance();
    return Add(std::move(node));
  }

  int ParsePrimary() {
    switch (token_.kind) {
      case Tok::kNumber:
      case Tok::kDate:
        return Literal(std::move(token_.value));
      case Tok::kText:
        return Literal(std::move(token_.value), true);
      case Tok::kTrue:
        return Literal(Value::Bool(true));
      case Tok::kFalse:
        return Literal(Value::Bool(false));
      case Tok::kNull:
        return Literal(Value());
      case Tok::kNot:
        return ParseNot();
      case Tok::kLeftParen:
        return ParseParenthesised();
      case Tok::kName:
        return ParseName();
      case Tok::kEnd:
        throw ExprError(token_.begin, "the expression ends too early",
                        "a value, a name or '(' must follow");
      default:
        throw ExprError(token_.begin, "expected a value before " + Describe(token_),
                        "a value, a name or '(' must come here");
    }
  }

  int ParseParenthesised() {
    const size_t open = token_.begin;
    const Nesting nesting(*this, open);
    Advance();
    const int inner = ParseOr();
    if (token_.kind != Tok::kRightParen) {
      throw ExprError(token_.begin, "expected ')' before " + Describe(token_),
                      "close the '(' at offset " + std::to_string(open));
    }
    tree_.nodes[inner].begin = open;
    tree_.nodes[inner].end = token_.end;
    Advance();
    return inner;
  }

  int ParseName() {
    SyntaxNode node;
    node.begin = token_.begin;
    node.end = token_.end;
    node.name_offset = token_.begin;
    node.op_offset = token_.begin;
    node.qualifier = std::move(token_.qualifier);
    node.name = std::move(token_.name);
    Advance();
    if (token_.kind != Tok::kLeftParen) {
      node.kind = SyntaxNode::Kind::kName;
      return Add(std::move(node));
    }
    if (!node.qualifier.empty()) {
      throw ExprError(node.name_offset, node.qualifier + "." + node.name + " is not a function",
                      "functions have plain names, such as Trim(Q.name)");
    }
    node.kind = SyntaxNode::Kind::kCall;
    const size_t open = token_.begin;
    const Nesting nesting(*this, open);
    Advance();
    if (token_.kind != Tok::kRightParen) {
      while (true) {
        node.children.push_back(ParseOr());
        if (token_.kind == Tok::kComma) {
          Advance();
          continue;
        }
        if (token_.kind == Tok::kRightParen) break;
        throw ExprError(token_.begin, "expected ',' or ')' before " + Describe(token_),
                        "close the '(' of " + node.name + " at offset " + std::to_string(open));
      }
    }
    node.end = token_.end;
    Advance();
    return Add(std::move(node));
  }

  std::string_view source_;
  Lexer lexer_;
  Token token_;
  SyntaxTree tree_;
  std::vector<int> depths_;
  int nesting_ = 0;
};

}  // namespace

SyntaxTree Parse(std::string_view source) { return Parser(source).Run(); }

}  // namespace vantorel::report::expr
