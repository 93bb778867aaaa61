#include "data/sqlite_dialect.h"

#include <sqlite3.h>

#include <ctime>
#include <vector>

#include "vantorel/types.h"

namespace vantorel::data {
namespace {

struct Token {
  enum class Kind { kSpace, kComment, kString, kQuotedName, kWord, kNumber, kPunct } kind;
  std::string_view text;
};

bool IsWordStart(unsigned char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c >= 0x80;
}

bool IsWordChar(unsigned char c) { return IsWordStart(c) || (c >= '0' && c <= '9') || c == '$'; }

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f'; }

size_t QuotedEnd(std::string_view sql, size_t pos, char close) {
  for (++pos; pos < sql.size(); ++pos) {
    if (sql[pos] != close) continue;
    if (close != ']' && pos + 1 < sql.size() && sql[pos + 1] == close) {
      ++pos;
      continue;
    }
    return pos + 1;
  }
  return sql.size();
}

std::vector<Token> Tokenize(std::string_view sql) {
  using Kind = Token::Kind;
  std::vector<Token> tokens;
  size_t pos = 0;
  while (pos < sql.size()) {
    const char c = sql[pos];
    size_t end = pos + 1;
    Kind kind = Kind::kPunct;
    if (IsSpace(c)) {
      kind = Kind::kSpace;
      while (end < sql.size() && IsSpace(sql[end])) ++end;
    } else if (c == '-' && end < sql.size() && sql[end] == '-') {
      kind = Kind::kComment;
      end = sql.find('\n', pos);
      if (end == std::string_view::npos) end = sql.size();
    } else if (c == '/' && end < sql.size() && sql[end] == '*') {
      kind = Kind::kComment;
      end = sql.find("*/", pos + 2);
      end = end == std::string_view::npos ? sql.size() : end + 2;
    } else if (c == '\'') {
      kind = Kind::kString;
      end = QuotedEnd(sql, pos, '\'');
    } else if (c == '"' || c == '`' || c == '[') {
      kind = Kind::kQuotedName;
      end = QuotedEnd(sql, pos, c == '[' ? ']' : c);
    } else if (IsDigit(c) || (c == '.' && end < sql.size() && IsDigit(sql[end]))) {
      kind = Kind::kNumber;
      while (end < sql.size() &&
             (IsWordChar(static_cast<unsigned char>(sql[end])) || sql[end] == '.')) {
        ++end;
      }
    } else if (IsWordStart(static_cast<unsigned char>(c))) {
      kind = Kind::kWord;
      while (end < sql.size() && IsWordChar(static_cast<unsigned char>(sql[end]))) ++end;
    }
    tokens.push_back({kind, sql.substr(pos, end - pos)});
    pos = end;
  }
  return tokens;
}

bool Is(const Token& token, std::string_view word) {
  if (token.text.size() != word.size()) return false;
  for (size_t i = 0; i < word.size(); ++i) {
    char c = token.text[i];
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    if (c != word[i]) return false;
  }
  return true;
}

bool Insignificant(const Token& token) {
  return token.kind == Token::Kind::kSpace || token.kind == Token::Kind::kComment;
}

class Translator {
 public:
  explicit Translator(std::string_view sql) : tokens_(Tokenize(sql)) {}

  std::string Run() { return Translate(0, tokens_.size()); }

 private:
  static constexpr size_t kNone = static_cast<size_t>(-1);

  size_t NextSignificant(size_t i, size_t end) const {
    while (i < end && Insignificant(tokens_[i])) ++i;
    return i < end ? i : kNone;
  }

  size_t PreviousSignificant(size_t i, size_t begin) const {
    while (i > begin) {
      --i;
      if (!Insignificant(tokens_[i])) return i;
    }
    return kNone;
  }

  bool IsPunct(size_t i, char c) const {
    return i != kNone && tokens_[i].kind == Token::Kind::kPunct && tokens_[i].text[0] == c;
  }

  size_t MatchingParen(size_t open, size_t end) const {
    int depth = 0;
    for (size_t i = open; i < end; ++i) {
      if (IsPunct(i, '(')) ++depth;
      if (IsPunct(i, ')') && --depth == 0) return i;
    }
    return kNone;
  }

  // For "cast ( … as date )" with "open" at the parenthesis: the position of the top-level "as"
  // when the target type is a date type, and whether the time of day is kept.
  size_t DateCastAs(size_t open, size_t close, bool& keep_time) const {
    size_t as = kNone;
    int depth = 0;
    for (size_t i = open + 1; i < close; ++i) {
      if (IsPunct(i, '(')) ++depth;
      if (IsPunct(i, ')')) --depth;
      if (depth == 0 && tokens_[i].kind == Token::Kind::kWord && Is(tokens_[i], "as")) as = i;
    }
    if (as == kNone) return kNone;
    const size_t type = NextSignificant(as + 1, close);
    if (type == kNone || tokens_[type].kind != Token::Kind::kWord) return kNone;
    if (Is(tokens_[type], "date")) {
      keep_time = false;
    } else if (Is(tokens_[type], "datetime") || Is(tokens_[type], "datetime2") ||
               Is(tokens_[type], "smalldatetime")) {
      keep_time = true;
    } else {
      return kNone;
    }
    // Only a precision such as "datetime2(0)" may follow the type.
    size_t rest = NextSignificant(type + 1, close);
    if (rest != kNone && IsPunct(rest, '(')) {
      const size_t precision_end = MatchingParen(rest, close);
      if (precision_end == kNone) return kNone;
      rest = NextSignificant(precision_end + 1, close);
    }
    return rest == kNone ? as : kNone;
  }

  std::string Translate(size_t begin, size_t end) const {
    std::string out;
    for (size_t i = begin; i < end; ++i) {
      const Token& token = tokens_[i];
      if (token.kind == Token::Kind::kString) {
        out += TranslateLiteral(token.text);
        continue;
      }
      if (token.kind != Token::Kind::kWord) {
        out += token.text;
        continue;
      }
      const size_t open = NextSignificant(i + 1, end);
      const bool call = IsPunct(open, '(') && !IsPunct(PreviousSignificant(i, begin), '.');
      if (call && (Is(token, "left") || Is(token, "right"))) {
        out += Is(token, "left") ? "vt_left" : "vt_right";
      } else if (call && Is(token, "isnull")) {
        out += "ifnull";
      } else if (call && Is(token, "cast")) {
        const size_t close = MatchingParen(open, end);
        bool keep_time = false;
        const size_t as = close == kNone ? kNone : DateCastAs(open, close, keep_time);
        if (as == kNone) {
          out += token.text;
          continue;
        }
        const size_t last = PreviousSignificant(as, open + 1);
        out += "vt_date(";
        out += last == kNone ? std::string() : Translate(open + 1, last + 1);
        out += keep_time ? ", 1)" : ")";
        i = close;
      } else {
        out += token.text;
      }
    }
    return out;
  }

  static std::string TranslateLiteral(std::string_view literal) {
    if (literal.size() >= 2 && literal.back() == '\'') {
      const auto iso = NormaliseYearFirstDate(literal.substr(1, literal.size() - 2), true);
      if (iso) return "'" + *iso + "'";
    }
    return std::string(literal);
  }

  std::vector<Token> tokens_;
};

// Reads 1 to "max" digits at "pos".
bool ReadNumber(std::string_view text, size_t& pos, size_t min, size_t max, int& value) {
  size_t count = 0;
  value = 0;
  while (pos < text.size() && count < max && IsDigit(text[pos])) {
    value = value * 10 + (text[pos++] - '0');
    ++count;
  }
  return count >= min;
}

void AppendTwoDigits(std::string& out, int value) {
  out += static_cast<char>('0' + value / 10 % 10);
  out += static_cast<char>('0' + value % 10);
}

std::string Iso(int year, int month, int day) {
  std::string out;
  out += static_cast<char>('0' + year / 1000 % 10);
  out += static_cast<char>('0' + year / 100 % 10);
  AppendTwoDigits(out, year % 100);
  out += '-';
  AppendTwoDigits(out, month);
  out += '-';
  AppendTwoDigits(out, day);
  return out;
}

std::string_view ArgumentText(sqlite3_value* value) {
  const unsigned char* text = sqlite3_value_text(value);
  const int bytes = sqlite3_value_bytes(value);
  if (text == nullptr) return {};
  return std::string_view(reinterpret_cast<const char*>(text), static_cast<size_t>(bytes));
}

bool IsLeadByte(char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }

void ResultText(sqlite3_context* context, std::string_view text) {
  sqlite3_result_text(context, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

// left(text, n) and right(text, n): the first or last n characters (not bytes).
void LeftOrRight(sqlite3_context* context, sqlite3_value** argv, bool left) {
  if (sqlite3_value_type(argv[0]) == SQLITE_NULL || sqlite3_value_type(argv[1]) == SQLITE_NULL) {
    sqlite3_result_null(context);
    return;
  }
  const sqlite3_int64 count = sqlite3_value_int64(argv[1]);
  if (count < 0) {
    sqlite3_result_error(context,
                         left ? "Invalid length parameter passed to the left function"
                              : "Invalid length parameter passed to the right function",
                         -1);
    return;
  }
  const std::string_view text = ArgumentText(argv[0]);
  sqlite3_int64 seen = 0;
  if (left) {
    size_t end = 0;
    for (; end < text.size(); ++end) {
      if (IsLeadByte(text[end]) && seen++ == count) break;
    }
    ResultText(context, text.substr(0, end));
  } else {
    size_t start = text.size();
    while (start > 0 && seen < count) {
      --start;
      if (IsLeadByte(text[start])) ++seen;
    }
    ResultText(context, text.substr(start));
  }
}

void VtLeft(sqlite3_context* context, int, sqlite3_value** argv) {
  LeftOrRight(context, argv, true);
}

void VtRight(sqlite3_context* context, int, sqlite3_value** argv) {
  LeftOrRight(context, argv, false);
}

// vt_date(value [, keep_time]): a year-first date text as ISO; any other value unchanged.
void VtDate(sqlite3_context* context, int argc, sqlite3_value** argv) {
  if (sqlite3_value_type(argv[0]) != SQLITE_TEXT) {
    sqlite3_result_value(context, argv[0]);
    return;
  }
  std::string_view text = ArgumentText(argv[0]);
  while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsSpace(text.back())) text.remove_suffix(1);
  const bool keep_time = argc > 1 && sqlite3_value_int(argv[1]) != 0;
  const auto iso = NormaliseYearFirstDate(text, keep_time);
  if (iso) {
    ResultText(context, *iso);
  } else {
    sqlite3_result_value(context, argv[0]);
  }
}

// len(text): characters without the trailing blanks, as SQL Server counts them.
void Len(sqlite3_context* context, int, sqlite3_value** argv) {
  if (sqlite3_value_type(argv[0]) == SQLITE_NULL) {
    sqlite3_result_null(context);
    return;
  }
  std::string_view text = ArgumentText(argv[0]);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  sqlite3_int64 count = 0;
  for (char c : text) count += IsLeadByte(c) ? 1 : 0;
  sqlite3_result_int64(context, count);
}

// getdate(): the local date and time, in the ISO form dates are stored in.
void GetDate(sqlite3_context* context, int, sqlite3_value**) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  ::localtime_r(&now, &local);
  std::string text = Iso(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
  text += ' ';
  AppendTwoDigits(text, local.tm_hour);
  text += ':';
  AppendTwoDigits(text, local.tm_min);
  text += ':';
  AppendTwoDigits(text, local.tm_sec);
  ResultText(context, text);
}

// year(date), month(date), day(date): a part of an ISO or year-first date text; NULL otherwise.
void DatePart(sqlite3_context* context, sqlite3_value** argv, int part) {
  const auto iso = sqlite3_value_type(argv[0]) == SQLITE_TEXT
                       ? NormaliseYearFirstDate(ArgumentText(argv[0]), false)
                       : std::nullopt;
  if (!iso) {
    sqlite3_result_null(context);
    return;
  }
  const Date::Parts parts = Date::FromIso(*iso)->ToParts();
  sqlite3_result_int(context, part == 0 ? parts.year : part == 1 ? parts.month : parts.day);
}

void Year(sqlite3_context* context, int, sqlite3_value** argv) { DatePart(context, argv, 0); }
void Month(sqlite3_context* context, int, sqlite3_value** argv) { DatePart(context, argv, 1); }
void Day(sqlite3_context* context, int, sqlite3_value** argv) { DatePart(context, argv, 2); }

}  // namespace

std::string TranslateForSqlite(std::string_view sql) { return Translator(sql).Run(); }

std::optional<std::string> NormaliseYearFirstDate(std::string_view text, bool keep_time) {
  size_t pos = 0;
  int year = 0, month = 0, day = 0;
  if (!ReadNumber(text, pos, 4, 4, year) || pos >= text.size()) return std::nullopt;
  const char separator = text[pos++];
  if (separator != '/' && separator != '.' && separator != '-') return std::nullopt;
  if (!ReadNumber(text, pos, 1, 2, month) || pos >= text.size() || text[pos++] != separator) {
    return std::nullopt;
  }
  if (!ReadNumber(text, pos, 1, 2, day)) return std::nullopt;
  std::string iso = Iso(year, month, day);
  if (!Date::FromIso(iso)) return std::nullopt;
  if (pos == text.size()) return iso;

  if (text[pos] != ' ' && text[pos] != 'T') return std::nullopt;
  ++pos;
  int hour = 0, minute = 0, second = 0;
  if (!ReadNumber(text, pos, 1, 2, hour) || pos >= text.size() || text[pos++] != ':' ||
      !ReadNumber(text, pos, 2, 2, minute)) {
    return std::nullopt;
  }
  if (pos < text.size() && text[pos] == ':') {
    ++pos;
    if (!ReadNumber(text, pos, 2, 2, second)) return std::nullopt;
    if (pos < text.size() && text[pos] == '.') {
      int fraction = 0;
      ++pos;
      if (!ReadNumber(text, pos, 1, 9, fraction)) return std::nullopt;
    }
  }
  if (pos != text.size() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
  if (!keep_time) return iso;
  iso += ' ';
  AppendTwoDigits(iso, hour);
  iso += ':';
  AppendTwoDigits(iso, minute);
  iso += ':';
  AppendTwoDigits(iso, second);
  return iso;
}

int RegisterSqliteFunctions(sqlite3* db) {
  struct Function {
    const char* name;
    int arguments;
    bool deterministic;
    void (*call)(sqlite3_context*, int, sqlite3_value**);
  };
  static constexpr Function kFunctions[] = {
      {"vt_left", 2, true, VtLeft}, {"vt_right", 2, true, VtRight}, {"vt_date", 1, true, VtDate},
      {"vt_date", 2, true, VtDate}, {"len", 1, true, Len},          {"getdate", 0, false, GetDate},
      {"year", 1, true, Year},      {"month", 1, true, Month},      {"day", 1, true, Day},
  };
  for (const Function& f : kFunctions) {
    // Innocuous: they only compute, so the database's own views may use them with an untrusted
    // schema.
    const int flags = SQLITE_UTF8 | SQLITE_INNOCUOUS | (f.deterministic ? SQLITE_DETERMINISTIC : 0);
    const int rc = sqlite3_create_function_v2(db, f.name, f.arguments, flags, nullptr, f.call,
                                              nullptr, nullptr, nullptr);
    if (rc != SQLITE_OK) return rc;
  }
  return SQLITE_OK;
}

}  // namespace vantorel::data
