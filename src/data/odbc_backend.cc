#include "data/odbc_backend.h"

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "data/sql_params.h"
#include "unicode/utf8.h"
#include "vantorel/error.h"

namespace vantorel::data {
namespace {

static_assert(sizeof(SQLWCHAR) == sizeof(char16_t), "unixODBC's SQLWCHAR is UTF-16");

constexpr char kSource[] = "ODBC";
constexpr SQLULEN kLoginTimeoutSeconds = 30;

using unicode::Utf16ToUtf8;
using unicode::Utf8ToUtf16;

SQLWCHAR* Wide(std::u16string& text) { return reinterpret_cast<SQLWCHAR*>(text.data()); }

// Everything an error needs to hide the passwords of the connection strings in play.
struct Secrets {
  std::string odbc;
  std::string original;
  std::string Apply(std::string text) const {
    return Redact(Redact(std::move(text), odbc), original);
  }
};

struct Diagnostic {
  std::string state;
  SQLINTEGER native = 0;
  std::string message;
};

std::vector<Diagnostic> ReadDiagnostics(SQLSMALLINT type, SQLHANDLE handle) {
  std::vector<Diagnostic> records;
  for (SQLSMALLINT record = 1; record <= 20; ++record) {
    SQLWCHAR state[6] = {};
    SQLINTEGER native = 0;
    std::u16string message(1024, u'\0');
    SQLSMALLINT length = 0;
    SQLRETURN rc = SQLGetDiagRecW(type, handle, record, state, &native, Wide(message),
                                  static_cast<SQLSMALLINT>(message.size()), &length);
    if (rc == SQL_SUCCESS_WITH_INFO && length >= static_cast<SQLSMALLINT>(message.size())) {
      message.assign(static_cast<size_t>(length) + 1, u'\0');
      rc = SQLGetDiagRecW(type, handle, record, state, &native, Wide(message),
                          static_cast<SQLSMALLINT>(message.size()), &length);
    }
    if (!SQL_SUCCEEDED(rc)) break;
    message.resize(std::min(static_cast<size_t>(std::max<SQLSMALLINT>(length, 0)), message.size()));
    Diagnostic diagnostic;
    diagnostic.state =
        Utf16ToUtf8(std::u16string_view(reinterpret_cast<const char16_t*>(state), 5));
    diagnostic.native = native;
    diagnostic.message = Utf16ToUtf8(message);
    while (!diagnostic.message.empty() &&
           std::strchr(" \t\r\n", diagnostic.message.back()) != nullptr) {
      diagnostic.message.pop_back();
    }
    records.push_back(std::move(diagnostic));
  }
  return records;
}

bool Mentions(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

// A refused login: SQLSTATE class 28, or a driver that reports it as a connection failure with
// the server's own words (psqlODBC says 08001 "password authentication failed").
bool IsLoginRefused(const Diagnostic& diagnostic) {
  return diagnostic.state.compare(0, 2, "28") == 0 ||
         Mentions(diagnostic.message, "password authentication failed") ||
         Mentions(diagnostic.message, "Login failed for user") ||
         Mentions(diagnostic.message, "Access denied for user");
}

enum class Phase { kConnect, kStatement };

Error DriverError(SQLSMALLINT type, SQLHANDLE handle, Phase phase, const Secrets& secrets) {
  const std::vector<Diagnostic> records = ReadDiagnostics(type, handle);
  if (records.empty()) {
    return Error(phase == Phase::kConnect ? errnum::kUnspecified : errnum::kCommandError, kSource,
                 "The ODBC driver reported a failure without a message");
  }
  int32_t number = phase == Phase::kConnect ? errnum::kUnspecified : errnum::kCommandError;
  if (IsLoginRefused(records.front())) {
    number = errnum::kAuthenticationFailed;
  } else if (records.front().state.compare(0, 2, "08") == 0) {
    number = errnum::kUnspecified;
  }
  std::string description;
  for (const Diagnostic& record : records) {
    if (record.message.empty() || Mentions(description, record.message.c_str())) continue;
    if (!description.empty()) description += "; ";
    description += record.message;
  }
  return Error(number, kSource, secrets.Apply(std::move(description)), records.front().native);
}

// The environment and connection handles of one connection.
class Link {
 public:
  Link() = default;
  ~Link() {
    if (connected_) SQLDisconnect(dbc_);
    if (dbc_ != SQL_NULL_HDBC) SQLFreeHandle(SQL_HANDLE_DBC, dbc_);
    if (env_ != SQL_NULL_HENV) SQLFreeHandle(SQL_HANDLE_ENV, env_);
  }
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;

  void Connect(const std::string& odbc, bool read_only) {
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env_))) {
      env_ = SQL_NULL_HENV;
      throw Error(errnum::kUnspecified, kSource, "The ODBC driver manager could not start");
    }
    SQLSetEnvAttr(env_, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_DBC, env_, &dbc_))) {
      dbc_ = SQL_NULL_HDBC;
      throw DriverError(SQL_HANDLE_ENV, env_, Phase::kConnect, secrets_);
    }
    SQLSetConnectAttr(dbc_, SQL_ATTR_LOGIN_TIMEOUT,
                      reinterpret_cast<SQLPOINTER>(kLoginTimeoutSeconds), 0);
    std::u16string text = Utf8ToUtf16(odbc);
    SQLSMALLINT written = 0;
    const SQLRETURN rc =
        SQLDriverConnectW(dbc_, nullptr, Wide(text), static_cast<SQLSMALLINT>(text.size()), nullptr,
                          0, &written, SQL_DRIVER_NOPROMPT);
    if (!SQL_SUCCEEDED(rc)) throw DriverError(SQL_HANDLE_DBC, dbc_, Phase::kConnect, secrets_);
    connected_ = true;
    if (read_only) ReadOnly();
  }

  SQLHDBC dbc() const { return dbc_; }
  Secrets& secrets() { return secrets_; }

  // Reports only read. ODBC's access mode is a hint most drivers ignore, so the servers that
  // have one also get a read-only session; a statement can still undo that, and only a
  // database login that may only read enforces it (docs/data-access.md).
  void ReadOnly() {
    SQLSetConnectAttr(dbc_, SQL_ATTR_ACCESS_MODE, reinterpret_cast<SQLPOINTER>(SQL_MODE_READ_ONLY),
                      0);
    char dbms[64] = {};
    SQLSMALLINT length = 0;
    if (!SQL_SUCCEEDED(SQLGetInfo(dbc_, SQL_DBMS_NAME, dbms, sizeof dbms, &length))) return;
    const std::string_view name(dbms);
    const char* session = nullptr;
    if (name.find("PostgreSQL") != std::string_view::npos) {
      session = "SET SESSION CHARACTERISTICS AS TRANSACTION READ ONLY";
    } else if (name.find("MySQL") != std::string_view::npos ||
               name.find("MariaDB") != std::string_view::npos) {
      session = "SET SESSION TRANSACTION READ ONLY";
    }
    if (session == nullptr) return;
    SQLHSTMT statement = SQL_NULL_HSTMT;
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, dbc_, &statement))) return;
    const SQLRETURN rc =
        SQLExecDirect(statement, reinterpret_cast<SQLCHAR*>(const_cast<char*>(session)), SQL_NTS);
    std::optional<Error> failure;
    if (!SQL_SUCCEEDED(rc) && rc != SQL_NO_DATA) {
      failure = DriverError(SQL_HANDLE_STMT, statement, Phase::kConnect, secrets_);
    }
    SQLFreeHandle(SQL_HANDLE_STMT, statement);
    if (failure) throw *failure;
  }
  const Secrets& secrets() const { return secrets_; }

 private:
  SQLHENV env_ = SQL_NULL_HENV;
  SQLHDBC dbc_ = SQL_NULL_HDBC;
  bool connected_ = false;
  Secrets secrets_;
};

class Statement {
 public:
  explicit Statement(std::shared_ptr<Link> link) : link_(std::move(link)) {
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, link_->dbc(), &handle_))) {
      handle_ = SQL_NULL_HSTMT;
      throw DriverError(SQL_HANDLE_DBC, link_->dbc(), Phase::kStatement, link_->secrets());
    }
  }
  ~Statement() {
    if (handle_ != SQL_NULL_HSTMT) SQLFreeHandle(SQL_HANDLE_STMT, handle_);
  }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  SQLHSTMT get() const { return handle_; }
  Error LastError() const {
    return DriverError(SQL_HANDLE_STMT, handle_, Phase::kStatement, link_->secrets());
  }
  void Check(SQLRETURN rc) const {
    if (!SQL_SUCCEEDED(rc) && rc != SQL_NO_DATA) throw LastError();
  }

 private:
  std::shared_ptr<Link> link_;
  SQLHSTMT handle_ = SQL_NULL_HSTMT;
};

std::string_view Trim(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\0')) text.remove_suffix(1);
  return text;
}

// Decimal text as drivers write it ("+.50", "-0060000.10", "12.") in the form of
// Value::Decimal ("0.50", "-60000.10", "12"); nullopt for anything that is not plain digits.
std::optional<std::string> NormaliseDecimal(std::string_view text) {
  text = Trim(text);
  bool negative = false;
  if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  const size_t point = text.find('.');
  std::string_view whole = text.substr(0, point);
  std::string_view fraction = point == std::string_view::npos ? "" : text.substr(point + 1);
  const auto digits = [](std::string_view part) {
    return part.find_first_not_of("0123456789") == std::string_view::npos;
  };
  if (whole.empty() && fraction.empty()) return std::nullopt;
  if (!digits(whole) || !digits(fraction)) return std::nullopt;
  while (whole.size() > 1 && whole.front() == '0') whole.remove_prefix(1);
  std::string out(whole.empty() ? "0" : whole);
  if (!fraction.empty()) {
    out += '.';
    out.append(fraction);
  }
  const bool zero = out.find_first_not_of("0.") == std::string::npos;
  if (negative && !zero) out.insert(out.begin(), '-');
  return out;
}

class OdbcCursor final : public Cursor {
 public:
  explicit OdbcCursor(std::unique_ptr<Statement> statement) : statement_(std::move(statement)) {
    SQLSMALLINT count = 0;
    statement_->Check(SQLNumResultCols(statement_->get(), &count));
    for (SQLUSMALLINT i = 1; i <= static_cast<SQLUSMALLINT>(std::max<SQLSMALLINT>(count, 0)); ++i) {
      Describe(i);
    }
    done_ = columns_.empty();
  }

  const std::vector<Column>& columns() const override { return columns_; }

  bool Next(std::vector<Value>& row) override {
    if (done_) return false;
    const SQLRETURN rc = SQLFetch(statement_->get());
    if (rc == SQL_NO_DATA) {
      done_ = true;
      SQLCloseCursor(statement_->get());
      return false;
    }
    statement_->Check(rc);
    row.resize(columns_.size());
    for (size_t i = 0; i < columns_.size(); ++i) {
      row[i] = Read(static_cast<SQLUSMALLINT>(i + 1), types_[i]);
    }
    return true;
  }

 private:
  void Describe(SQLUSMALLINT column) {
    std::u16string name(256, u'\0');
    SQLSMALLINT name_length = 0, type = 0, digits = 0, nullable = 0;
    SQLULEN size = 0;
    statement_->Check(SQLDescribeColW(statement_->get(), column, Wide(name),
                                      static_cast<SQLSMALLINT>(name.size()), &name_length, &type,
                                      &size, &digits, &nullable));
    if (name_length >= static_cast<SQLSMALLINT>(name.size())) {
      name.assign(static_cast<size_t>(name_length) + 1, u'\0');
      statement_->Check(SQLDescribeColW(statement_->get(), column, Wide(name),
                                        static_cast<SQLSMALLINT>(name.size()), &name_length, &type,
                                        &size, &digits, &nullable));
    }
    name.resize(std::min(static_cast<size_t>(std::max<SQLSMALLINT>(name_length, 0)), name.size()));
    std::u16string type_name(128, u'\0');
    SQLSMALLINT type_length = 0;
    if (!SQL_SUCCEEDED(SQLColAttributeW(
            statement_->get(), column, SQL_DESC_TYPE_NAME, Wide(type_name),
            static_cast<SQLSMALLINT>(type_name.size() * 2), &type_length, nullptr))) {
      type_length = 0;
    }
    type_name.resize(
        std::min(static_cast<size_t>(std::max<SQLSMALLINT>(type_length, 0)) / 2, type_name.size()));
    columns_.push_back({Utf16ToUtf8(name), Utf16ToUtf8(type_name)});
    types_.push_back(type);
  }

  // Reads a fixed-size value; false for NULL.
  template <typename T>
  bool ReadFixed(SQLUSMALLINT column, SQLSMALLINT c_type, T& out) {
    SQLLEN indicator = 0;
    statement_->Check(SQLGetData(statement_->get(), column, c_type, &out, sizeof out, &indicator));
    return indicator != SQL_NULL_DATA;
  }

  // Reads a text or binary value in pieces, however long it is; false for NULL.
  template <typename Unit>
  bool ReadLong(SQLUSMALLINT column, SQLSMALLINT c_type, std::basic_string<Unit>& out) {
    constexpr size_t kUnits = 2048;
    // Text pieces end with a terminating zero unit; binary pieces do not.
    const size_t terminator = c_type == SQL_C_BINARY ? 0 : 1;
    Unit buffer[kUnits];
    out.clear();
    for (;;) {
      SQLLEN indicator = 0;
      const SQLRETURN rc =
          SQLGetData(statement_->get(), column, c_type, buffer, sizeof buffer, &indicator);
      if (rc == SQL_NO_DATA) return true;
      statement_->Check(rc);
      if (indicator == SQL_NULL_DATA) return false;
      const size_t room = kUnits - terminator;
      const bool truncated =
          indicator == SQL_NO_TOTAL || static_cast<size_t>(indicator) / sizeof(Unit) > room;
      const size_t units = truncated ? room : static_cast<size_t>(indicator) / sizeof(Unit);
      out.append(buffer, units);
      if (!truncated) return true;
    }
  }

  Value Read(SQLUSMALLINT column, SQLSMALLINT type) {
    switch (type) {
      case SQL_DECIMAL:
      case SQL_NUMERIC: {
        std::string text;
        if (!ReadLong(column, SQL_C_CHAR, text)) return Value();
        if (auto digits = NormaliseDecimal(text)) return Value::Decimal(std::move(*digits));
        return Value::Text(std::string(Trim(text)));
      }
      case SQL_TINYINT:
      case SQL_SMALLINT:
      case SQL_INTEGER:
      case SQL_BIGINT: {
        SQLBIGINT number = 0;
        return ReadFixed(column, SQL_C_SBIGINT, number) ? Value::Integer(number) : Value();
      }
      case SQL_REAL:
      case SQL_FLOAT:
      case SQL_DOUBLE: {
        SQLDOUBLE number = 0;
        return ReadFixed(column, SQL_C_DOUBLE, number) ? Value::Real(number) : Value();
      }
      case SQL_TYPE_DATE:
      case SQL_DATE: {
        SQL_DATE_STRUCT date{};
        if (!ReadFixed(column, SQL_C_TYPE_DATE, date)) return Value();
        return Value::FromDate(Date::FromYmd(date.year, date.month, date.day));
      }
      case SQL_TYPE_TIMESTAMP:
      case SQL_TIMESTAMP: {
        SQL_TIMESTAMP_STRUCT stamp{};
        if (!ReadFixed(column, SQL_C_TYPE_TIMESTAMP, stamp)) return Value();
        return Value::FromDateTime(Date::FromParts(
            {stamp.year, stamp.month, stamp.day, stamp.hour, stamp.minute, stamp.second}));
      }
      case SQL_BIT: {
        unsigned char bit = 0;
        return ReadFixed(column, SQL_C_BIT, bit) ? Value::Boolean(bit != 0) : Value();
      }
      case SQL_BINARY:
      case SQL_VARBINARY:
      case SQL_LONGVARBINARY: {
        std::string bytes;
        return ReadLong(column, SQL_C_BINARY, bytes) ? Value::Blob(std::move(bytes)) : Value();
      }
      default: {
        std::u16string text;
        return ReadLong(column, SQL_C_WCHAR, text) ? Value::Text(Utf16ToUtf8(text)) : Value();
      }
    }
  }

  std::unique_ptr<Statement> statement_;
  std::vector<Column> columns_;
  std::vector<SQLSMALLINT> types_;
  bool done_ = false;
};

// A parameter's value where the driver can read it until the statement has run.
struct BoundParameter {
  SQLLEN indicator = 0;
  SQLBIGINT integer = 0;
  SQLDOUBLE real = 0;
  std::u16string text;
  SQL_DATE_STRUCT date{};
  SQL_TIMESTAMP_STRUCT stamp{};
};

class OdbcConnection final : public Connection {
 public:
  explicit OdbcConnection(std::shared_ptr<Link> link) : link_(std::move(link)) {}

  std::unique_ptr<Cursor> Execute(const std::string& sql,
                                  const std::map<std::string, ParamValue>& params) override {
    const PositionalSql positional = ToPositional(sql);
    auto statement = std::make_unique<Statement>(link_);
    std::u16string text = Utf8ToUtf16(positional.sql);
    if (positional.names.empty()) {
      statement->Check(
          SQLExecDirectW(statement->get(), Wide(text), static_cast<SQLINTEGER>(text.size())));
    } else {
      statement->Check(
          SQLPrepareW(statement->get(), Wide(text), static_cast<SQLINTEGER>(text.size())));
      std::vector<BoundParameter> bound(positional.names.size());
      for (size_t i = 0; i < bound.size(); ++i) {
        Bind(*statement, static_cast<SQLUSMALLINT>(i + 1), FindParam(params, positional.names[i]),
             bound[i]);
      }
      statement->Check(SQLExecute(statement->get()));
    }
    return std::make_unique<OdbcCursor>(std::move(statement));
  }

 private:
  static void Bind(const Statement& statement, SQLUSMALLINT number, const ParamValue* param,
                   BoundParameter& bound) {
    SQLSMALLINT c_type = SQL_C_CHAR, sql_type = SQL_VARCHAR;
    SQLULEN size = 1;
    SQLPOINTER data = nullptr;
    SQLLEN length = 0;
    if (param == nullptr || std::holds_alternative<std::monostate>(*param)) {
      bound.indicator = SQL_NULL_DATA;
    } else if (const auto* integer = std::get_if<int64_t>(param)) {
      bound.integer = *integer;
      c_type = SQL_C_SBIGINT, sql_type = SQL_BIGINT, size = 19, data = &bound.integer;
    } else if (const auto* real = std::get_if<double>(param)) {
      bound.real = *real;
      c_type = SQL_C_DOUBLE, sql_type = SQL_DOUBLE, size = 15, data = &bound.real;
    } else if (const auto* string = std::get_if<std::string>(param)) {
      bound.text = Utf8ToUtf16(*string);
      length = static_cast<SQLLEN>(bound.text.size() * sizeof(char16_t));
      bound.indicator = length;
      c_type = SQL_C_WCHAR, sql_type = SQL_WVARCHAR;
      size = std::max<SQLULEN>(bound.text.size(), 1);
      data = bound.text.data();
    } else {
      const Date date = std::get<Date>(*param);
      if (!date.IsValid()) {
        throw Error(errnum::kOverflow, kSource, "A date parameter is outside the range of dates");
      }
      const Date::Parts parts = date.ToParts();
      if (parts.hour == 0 && parts.minute == 0 && parts.second == 0) {
        bound.date = {static_cast<SQLSMALLINT>(parts.year), static_cast<SQLUSMALLINT>(parts.month),
                      static_cast<SQLUSMALLINT>(parts.day)};
        c_type = SQL_C_TYPE_DATE, sql_type = SQL_TYPE_DATE, size = 10, data = &bound.date;
      } else {
        bound.stamp = {static_cast<SQLSMALLINT>(parts.year),
                       static_cast<SQLUSMALLINT>(parts.month),
                       static_cast<SQLUSMALLINT>(parts.day),
                       static_cast<SQLUSMALLINT>(parts.hour),
                       static_cast<SQLUSMALLINT>(parts.minute),
                       static_cast<SQLUSMALLINT>(parts.second),
                       0};
        c_type = SQL_C_TYPE_TIMESTAMP, sql_type = SQL_TYPE_TIMESTAMP, size = 19;
        data = &bound.stamp;
      }
    }
    statement.Check(SQLBindParameter(statement.get(), number, SQL_PARAM_INPUT, c_type, sql_type,
                                     size, 0, data, length, &bound.indicator));
  }

  std::shared_ptr<Link> link_;
};

}  // namespace

std::unique_ptr<Connection> OpenOdbc(const std::string& odbc, const std::string& original,
                                     bool read_only) {
  auto link = std::make_shared<Link>();
  link->secrets() = {odbc, original};
  link->Connect(odbc, read_only);
  return std::make_unique<OdbcConnection>(std::move(link));
}

}  // namespace vantorel::data
