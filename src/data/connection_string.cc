// Connection strings: OLE DB style strings are mapped to the ODBC driver or the SQLite file that
// serves the same database; plain ODBC strings pass through.
#include <strings.h>
#include <sys/stat.h>

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include "data/connection.h"
#include "host/native_path.h"
#include "vantorel/error.h"

namespace vantorel::data {
namespace {

constexpr char kSource[] = "Vantorel.Connection";

struct Pair {
  std::string key;    // as written, blanks trimmed
  std::string value;  // quotes or braces removed
  std::string raw;    // the value as written, for redaction
};

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsSpace(text.back())) text.remove_suffix(1);
  return text;
}

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

bool EndsWith(std::string_view text, std::string_view suffix) {
  return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

// Splits "key=value;…". Values may be quoted "…" or '…' (a doubled quote stands for itself) or
// braced {…} (a doubled closing brace stands for itself). Never throws: a part without '=' is
// skipped and counted in "malformed".
std::vector<Pair> SplitPairs(std::string_view text, int* malformed = nullptr) {
  std::vector<Pair> pairs;
  size_t pos = 0;
  const size_t n = text.size();
  while (pos < n) {
    while (pos < n && (IsSpace(text[pos]) || text[pos] == ';')) ++pos;
    if (pos >= n) break;
    const size_t key_start = pos;
    while (pos < n && text[pos] != '=' && text[pos] != ';') ++pos;
    if (pos >= n || text[pos] == ';') {
      if (malformed != nullptr) ++*malformed;
      continue;
    }
    Pair pair;
    pair.key = std::string(Trim(text.substr(key_start, pos - key_start)));
    ++pos;
    while (pos < n && IsSpace(text[pos])) ++pos;
    const size_t raw_start = pos;
    if (pos < n && (text[pos] == '"' || text[pos] == '\'' || text[pos] == '{')) {
      const char close = text[pos] == '{' ? '}' : text[pos];
      for (++pos; pos < n; ++pos) {
        if (text[pos] != close) {
          pair.value += text[pos];
        } else if (pos + 1 < n && text[pos + 1] == close) {
          pair.value += close;
          ++pos;
        } else {
          break;
        }
      }
      if (pos < n) ++pos;
      pair.raw = std::string(text.substr(raw_start, pos - raw_start));
      while (pos < n && text[pos] != ';') ++pos;
    } else {
      while (pos < n && text[pos] != ';') ++pos;
      pair.value = std::string(Trim(text.substr(raw_start, pos - raw_start)));
      pair.raw = pair.value;
    }
    pairs.push_back(std::move(pair));
  }
  return pairs;
}

class Keys {
 public:
  explicit Keys(std::vector<Pair> pairs) : pairs_(std::move(pairs)) {}

  // The value of the first of "names" that is present (compared without case).
  std::optional<std::string> Find(std::initializer_list<std::string_view> names) const {
    for (std::string_view name : names) {
      for (const Pair& pair : pairs_) {
        if (pair.key.size() == name.size() &&
            ::strncasecmp(pair.key.data(), name.data(), name.size()) == 0) {
          return pair.value;
        }
      }
    }
    return std::nullopt;
  }
  std::string Get(std::initializer_list<std::string_view> names) const {
    return Find(names).value_or("");
  }
  const std::vector<Pair>& pairs() const { return pairs_; }

 private:
  std::vector<Pair> pairs_;
};

const std::initializer_list<std::string_view> kUserKeys = {"User ID", "UID", "User", "UserName"};
const std::initializer_list<std::string_view> kPasswordKeys = {"Password", "PWD"};
const std::initializer_list<std::string_view> kDatabaseKeys = {"Initial Catalog", "Database"};
const std::initializer_list<std::string_view> kServerKeys = {"Data Source", "Server", "Host"};

Error InvalidConnection(const std::string& why) {
  return Error(errnum::kConnectionInvalid, kSource, why);
}

// Appends "key=value;" for the ODBC driver manager, bracing values it would otherwise split.
void AppendOdbc(std::string& out, std::string_view key, const std::string& value) {
  if (value.empty()) return;
  if (!out.empty() && out.back() != ';') out += ';';
  out += key;
  out += '=';
  const bool brace = value.find_first_of(";{}") != std::string::npos || IsSpace(value.front()) ||
                     IsSpace(value.back());
  if (!brace) {
    out += value;
    return;
  }
  out += '{';
  for (char c : value) {
    out += c;
    if (c == '}') out += '}';
  }
  out += '}';
}

struct HostPort {
  std::string host;
  std::string port;
};

bool AllDigits(std::string_view text) {
  return !text.empty() &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// "host,port", or "host:port" where "allow_colon"; a plain host otherwise.
HostPort SplitHostPort(std::string_view data_source, bool allow_colon) {
  data_source = Trim(data_source);
  if (data_source.size() > 4 && Lower(data_source.substr(0, 4)) == "tcp:") {
    data_source.remove_prefix(4);
  }
  size_t split = data_source.rfind(',');
  if (split == std::string_view::npos && allow_colon) {
    split = data_source.rfind(':');
    // An IPv6 address has colons of its own.
    if (split != std::string_view::npos && data_source.find(':') != split) {
      split = std::string_view::npos;
    }
  }
  if (split != std::string_view::npos && AllDigits(Trim(data_source.substr(split + 1)))) {
    return {std::string(Trim(data_source.substr(0, split))),
            std::string(Trim(data_source.substr(split + 1)))};
  }
  return {std::string(data_source), ""};
}

std::string LocalHost(const std::string& host) {
  const std::string lower = Lower(host);
  return lower == "." || lower == "(local)" ? "127.0.0.1" : host;
}

void RejectIntegratedSecurity(const Keys& keys) {
  const std::string value = Lower(Trim(keys.Get({"Integrated Security", "Trusted_Connection"})));
  if (value == "sspi" || value == "true" || value == "yes") {
    throw InvalidConnection(
        "Windows integrated security is not available on this system; give a User ID and a "
        "Password in the connection string");
  }
}

ConnectionTarget Odbc(std::string text) {
  ConnectionTarget target;
  target.backend = ConnectionTarget::Backend::kOdbc;
  target.odbc = std::move(text);
  return target;
}

ConnectionTarget Sqlite(std::string path) {
  ConnectionTarget target;
  target.backend = ConnectionTarget::Backend::kSqlite;
  target.sqlite_path = std::move(path);
  return target;
}

bool LooksLikeSqliteFile(std::string_view path) {
  const std::string lower = Lower(path);
  return EndsWith(lower, ".db") || EndsWith(lower, ".sqlite") || EndsWith(lower, ".sqlite3");
}

bool IsRegularFile(const std::string& path) {
  struct stat info;
  return ::stat(NativePath(path).c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

ConnectionTarget SqlServer(const Keys& keys) {
  RejectIntegratedSecurity(keys);
  HostPort server = SplitHostPort(keys.Get(kServerKeys), false);
  server.host = LocalHost(server.host);
  if (server.host.empty()) {
    throw InvalidConnection("The SQL Server connection string names no server (Data Source)");
  }
  if (!keys.Get({"Port"}).empty()) server.port = keys.Get({"Port"});
  // A named instance ("host\instance") is found through the SQL Server Browser, not a port.
  if (server.port.empty() && server.host.find('\\') == std::string::npos) server.port = "1433";
  std::string odbc = "Driver={FreeTDS}";
  AppendOdbc(odbc, "Server", server.host);
  AppendOdbc(odbc, "Port", server.port);
  AppendOdbc(odbc, "Database", keys.Get(kDatabaseKeys));
  AppendOdbc(odbc, "UID", keys.Get(kUserKeys));
  AppendOdbc(odbc, "PWD", keys.Get(kPasswordKeys));
  odbc += ";TDS_Version=7.4;ClientCharset=UTF-8";
  return Odbc(std::move(odbc));
}

ConnectionTarget ServerOdbc(const Keys& keys, const char* driver,
                            std::initializer_list<std::string_view> database_keys) {
  RejectIntegratedSecurity(keys);
  HostPort server = SplitHostPort(keys.Get(kServerKeys), true);
  server.host = LocalHost(server.host);
  if (server.host.empty()) {
    throw InvalidConnection("The connection string names no server (Data Source)");
  }
  if (!keys.Get({"Port"}).empty()) server.port = keys.Get({"Port"});
  std::string odbc = std::string("Driver={") + driver + "}";
  AppendOdbc(odbc, "Server", server.host);
  AppendOdbc(odbc, "Port", server.port);
  AppendOdbc(odbc, "Database", keys.Get(database_keys));
  AppendOdbc(odbc, "UID", keys.Get(kUserKeys));
  AppendOdbc(odbc, "PWD", keys.Get(kPasswordKeys));
  return Odbc(std::move(odbc));
}

// MSDASQL wraps an ODBC data source: "Extended Properties" holds a whole ODBC string, or the
// keys name a DSN (also as "Data Source") or a Driver.
ConnectionTarget Msdasql(const Keys& keys) {
  static const std::initializer_list<std::string_view> kConsumed = {"Provider",
                                                                    "Persist Security Info",
                                                                    "Extended Properties",
                                                                    "Data Source",
                                                                    "User ID",
                                                                    "UID",
                                                                    "User",
                                                                    "UserName",
                                                                    "Password",
                                                                    "PWD",
                                                                    "Initial Catalog",
                                                                    "Database",
                                                                    "DSN",
                                                                    "Driver"};
  std::string odbc(Trim(keys.Get({"Extended Properties"})));
  if (odbc.empty()) {
    if (const auto dsn = keys.Find({"DSN", "Data Source"})) {
      AppendOdbc(odbc, "DSN", *dsn);
    } else if (const auto driver = keys.Find({"Driver"})) {
      odbc = "Driver={" + *driver + "}";
    }
  }
  if (odbc.empty()) {
    throw InvalidConnection(
        "The MSDASQL connection string names no ODBC data source: give DSN, Data Source or "
        "Driver");
  }
  const Keys built(SplitPairs(odbc));
  if (!built.Find({"Database"})) AppendOdbc(odbc, "Database", keys.Get(kDatabaseKeys));
  if (!built.Find({"UID", "User"})) AppendOdbc(odbc, "UID", keys.Get(kUserKeys));
  if (!built.Find({"PWD", "Password"})) AppendOdbc(odbc, "PWD", keys.Get(kPasswordKeys));
  for (const Pair& pair : keys.pairs()) {
    const bool consumed = std::any_of(kConsumed.begin(), kConsumed.end(), [&](std::string_view k) {
      return k.size() == pair.key.size() && ::strncasecmp(k.data(), pair.key.data(), k.size()) == 0;
    });
    if (!consumed) AppendOdbc(odbc, pair.key, pair.value);
  }
  return Odbc(std::move(odbc));
}

bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

}  // namespace

ConnectionTarget ParseConnectionString(const std::string& connection_string) {
  const std::string_view text = Trim(connection_string);
  if (text.empty()) {
    throw InvalidConnection(
        "The connection string is empty: set DbConnectstring to the database's connection "
        "string or to the path of its SQLite file");
  }
  if (text.find('=') == std::string_view::npos) {
    std::string path(text);
    if (path.size() >= 2 && (path.front() == '"' || path.front() == '\'') &&
        path.back() == path.front()) {
      path = path.substr(1, path.size() - 2);
    }
    if (LooksLikeSqliteFile(path) || IsRegularFile(path)) return Sqlite(std::move(path));
    throw InvalidConnection(
        "The connection string is not valid: it has no key=value parts and does not name an "
        "SQLite database file (.db, .sqlite, .sqlite3)");
  }
  int malformed = 0;
  const Keys keys(SplitPairs(text, &malformed));
  if (malformed > 0) {
    // The part itself is not quoted: it may be the tail of a password that holds a ';'.
    throw InvalidConnection(
        "The connection string is not valid: a part has no '=' (quote values that hold ';' as "
        "\"…\" or {…})");
  }
  const std::optional<std::string> provider = keys.Find({"Provider"});
  if (!provider) {
    if (keys.Find({"Driver", "DSN", "FileDSN"})) return Odbc(std::string(text));
    const std::string data_source = keys.Get({"Data Source"});
    if (LooksLikeSqliteFile(data_source)) return Sqlite(data_source);
    throw InvalidConnection(
        "The connection string names no Provider, Driver or DSN, so no database can be chosen");
  }
  const std::string name = Lower(Trim(*provider));
  if (StartsWith(name, "sqloledb") || StartsWith(name, "sqlncli") ||
      StartsWith(name, "msoledbsql")) {
    return SqlServer(keys);
  }
  if (StartsWith(name, "msdasql")) return Msdasql(keys);
  if (Contains(name, "postgresql") || Contains(name, "pgnp")) {
    return ServerOdbc(keys, "PostgreSQL Unicode", {"Location", "Initial Catalog", "Database"});
  }
  if (Contains(name, "mysql") || Contains(name, "mariadb")) {
    return ServerOdbc(keys, "MariaDB Unicode", kDatabaseKeys);
  }
  if (StartsWith(name, "sqlite")) {
    std::string path = keys.Get({"Data Source", "Database"});
    if (path.empty()) {
      throw InvalidConnection("Provider " + std::string(Trim(*provider)) +
                              " needs the database file as Data Source");
    }
    return Sqlite(std::move(path));
  }
  if (StartsWith(name, "microsoft.jet") || StartsWith(name, "microsoft.ace")) {
    throw InvalidConnection("Provider " + std::string(Trim(*provider)) +
                            " (Microsoft Access) is not supported on this system; move the data "
                            "to SQLite, PostgreSQL, MariaDB or SQL Server");
  }
  throw InvalidConnection("Provider " + std::string(Trim(*provider)) +
                          " is not supported; use a SQL Server, PostgreSQL, MySQL/MariaDB, "
                          "MSDASQL (ODBC) or SQLite connection string");
}

std::string Redact(std::string text, const std::string& connection_string) {
  std::vector<std::string> secrets;
  std::vector<std::string> sources = {connection_string};
  for (size_t i = 0; i < sources.size() && i < 8; ++i) {
    for (const Pair& pair : SplitPairs(sources[i])) {
      const std::string key = Lower(pair.key);
      if (key == "password" || key == "pwd") {
        secrets.push_back(pair.value);
        secrets.push_back(pair.raw);
      } else if (key == "extended properties") {
        sources.push_back(pair.value);
      }
    }
  }
  // Longer first, so a password that contains another is replaced whole; one pass over the
  // text, so a replacement is never searched again (a password "*" would grow it without end).
  std::sort(secrets.begin(), secrets.end(), [](const std::string& a, const std::string& b) {
    return a.size() != b.size() ? a.size() > b.size() : a < b;
  });
  secrets.erase(std::unique(secrets.begin(), secrets.end()), secrets.end());
  std::erase_if(secrets, [](const std::string& secret) { return secret.empty(); });
  if (secrets.empty()) return text;
  std::string redacted;
  redacted.reserve(text.size());
  for (size_t i = 0; i < text.size();) {
    const auto found = std::find_if(secrets.begin(), secrets.end(), [&](const std::string& secret) {
      return text.compare(i, secret.size(), secret) == 0;
    });
    if (found != secrets.end()) {
      redacted += "***";
      i += found->size();
    } else {
      redacted += text[i++];
    }
  }
  return redacted;
}

}  // namespace vantorel::data
