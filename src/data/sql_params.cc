#include "data/sql_params.h"

#include <strings.h>

namespace vantorel::data {
namespace {

bool IsNameStart(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }

bool IsNameChar(char c) { return IsNameStart(c) || (c >= '0' && c <= '9'); }

// The end of the quoted run that starts at "pos" and closes with "close"; a doubled closing
// character stays inside. An unterminated run goes to the end of the text.
size_t SkipQuoted(std::string_view sql, size_t pos, char close) {
  for (++pos; pos < sql.size(); ++pos) {
    if (sql[pos] != close) continue;
    if (pos + 1 < sql.size() && sql[pos + 1] == close && close != ']') {
      ++pos;
      continue;
    }
    return pos + 1;
  }
  return sql.size();
}

}  // namespace

PositionalSql ToPositional(std::string_view sql) {
  PositionalSql out;
  out.sql.reserve(sql.size());
  size_t pos = 0;
  while (pos < sql.size()) {
    const char c = sql[pos];
    size_t end = pos + 1;
    if (c == '\'' || c == '"' || c == '`') {
      end = SkipQuoted(sql, pos, c);
    } else if (c == '[') {
      end = SkipQuoted(sql, pos, ']');
    } else if (c == '-' && pos + 1 < sql.size() && sql[pos + 1] == '-') {
      end = sql.find('\n', pos);
      end = end == std::string_view::npos ? sql.size() : end;
    } else if (c == '/' && pos + 1 < sql.size() && sql[pos + 1] == '*') {
      end = sql.find("*/", pos + 2);
      end = end == std::string_view::npos ? sql.size() : end + 2;
    } else if (c == ':' && pos + 1 < sql.size() && sql[pos + 1] == ':') {
      end = pos + 2;
    } else if (c == ':' && pos + 1 < sql.size() && IsNameStart(sql[pos + 1])) {
      end = pos + 1;
      while (end < sql.size() && IsNameChar(sql[end])) ++end;
      out.names.emplace_back(sql.substr(pos + 1, end - pos - 1));
      out.sql += '?';
      pos = end;
      continue;
    }
    out.sql.append(sql.substr(pos, end - pos));
    pos = end;
  }
  return out;
}

const ParamValue* FindParam(const std::map<std::string, ParamValue>& params,
                            std::string_view name) {
  for (const auto& [key, value] : params) {
    if (key.size() == name.size() && ::strncasecmp(key.data(), name.data(), key.size()) == 0) {
      return &value;
    }
  }
  return nullptr;
}

}  // namespace vantorel::data
