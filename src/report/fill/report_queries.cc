// Running the queries of a fill.
#include "report/fill/report_queries.h"

#include <cstdlib>
#include <variant>

#include "report/expr/text_util.h"
#include "vantorel/error.h"

namespace vantorel::report {
namespace {

data::ParamValue ToParam(const expr::Value& value) {
  switch (value.kind()) {
    case expr::Value::Kind::kNull:
      return std::monostate{};
    case expr::Value::Kind::kBool:
      return int64_t{value.boolean() ? 1 : 0};
    case expr::Value::Kind::kDecimal:
      if (value.decimal().scale() == 0 && value.decimal().mantissa() <= INT64_MAX &&
          value.decimal().mantissa() >= INT64_MIN) {
        return static_cast<int64_t>(value.decimal().mantissa());
      }
      return value.number();
    case expr::Value::Kind::kDouble:
      return value.number();
    case expr::Value::Kind::kText:
      return value.text();
    case expr::Value::Kind::kDate:
      return value.date();
  }
  return std::monostate{};
}

data::ParamValue DefaultParam(const CompiledParam& param) {
  if (param.default_value.empty()) return std::monostate{};
  const std::string& text = param.default_value;
  switch (param.type) {
    case ParamType::kInteger: {
      char* end = nullptr;
      const long long value = std::strtoll(text.c_str(), &end, 10);
      if (end != nullptr && *end == '\0') return static_cast<int64_t>(value);
      return text;
    }
    case ParamType::kNumber: {
      if (auto decimal = expr::Decimal::Parse(text)) return decimal->ToDouble();
      return text;
    }
    case ParamType::kDate:
      if (auto date = Date::FromIso(text)) return *date;
      return text;
    case ParamType::kText:
      return text;
  }
  return text;
}

void MarkDetails(const CompiledData& data, std::vector<bool>& detail, bool nested) {
  if (nested && data.query >= 0) detail[static_cast<size_t>(data.query)] = true;
  for (const CompiledData& child : data.details) MarkDetails(child, detail, true);
}

}  // namespace

ReportQueries::ReportQueries(
    const CompiledReport& report, const std::map<int, std::string>& sql,
    const std::map<int, std::map<std::string, data::ParamValue>>& parameters,
    const FillServices& services)
    : report_(report),
      sql_(sql),
      parameters_(parameters),
      services_(services),
      cursors_(report.queries.size()),
      primed_(report.queries.size(), false) {}

void ReportQueries::OpenOnce(const expr::Context& context) {
  std::vector<bool> detail_query(report_.queries.size(), false);
  for (const CompiledData& data : report_.data) MarkDetails(data, detail_query, false);
  for (size_t q = 0; q < report_.queries.size(); ++q) {
    if (!detail_query[q]) {
      Open(static_cast<int>(q), context);
      cursors_[q].Next();
      primed_[q] = true;
    }
  }
}

void ReportQueries::OpenForBand(int q, const expr::Context& context) {
  if (!primed_[static_cast<size_t>(q)]) Open(q, context);
}

void ReportQueries::Open(int q, const expr::Context& context) {
  const CompiledQuery& query = report_.queries[static_cast<size_t>(q)];
  const auto sql_it = sql_.find(q);
  const std::string& sql = sql_it != sql_.end() ? sql_it->second : query.sql;
  std::map<std::string, data::ParamValue> params;
  const auto set = parameters_.find(q);
  for (const CompiledParam& param : query.params) {
    const std::string key = expr::AsciiUpper(param.name);
    if (set != parameters_.end() && set->second.count(key)) {
      params[param.name] = set->second.at(key);
    } else if (param.value) {
      params[param.name] = ToParam(param.value->Evaluate(context));
    } else {
      params[param.name] = DefaultParam(param);
    }
  }
  if (query.database < 0) {
    throw Error(errnum::kEngineFailure, "Vantorel report engine",
                "query \"" + query.name + "\" has no database to run on");
  }
  try {
    cursors_[static_cast<size_t>(q)].Open(services_.connection(query.database), sql, params);
  } catch (const Error& error) {
    throw Error(error.number(), error.source(),
                "query \"" + query.name + "\": " + error.description(), error.system_code());
  }
  primed_[static_cast<size_t>(q)] = false;
}

bool ReportQueries::NextRow(int q) {
  if (primed_[static_cast<size_t>(q)]) {
    primed_[static_cast<size_t>(q)] = false;
    return cursors_[static_cast<size_t>(q)].has_current();
  }
  return cursors_[static_cast<size_t>(q)].Next();
}

bool ReportQueries::HasRows(int q) const {
  const QueryCursor& cursor = cursors_[static_cast<size_t>(q)];
  return primed_[static_cast<size_t>(q)] ? cursor.has_current() : cursor.has_next();
}

}  // namespace vantorel::report
