#include <cctype>

#include "report/binding/report_engine.h"
#include "report/expr/text_util.h"
#include "report/fill/fill.h"
#include "vantorel/error.h"
#include "vantorel/platform.h"

namespace vantorel::report {
namespace {

constexpr const char* kSource = "Vantorel report engine";

data::ParamValue Typed(const CompiledParam& param, const std::string& text,
                       const std::string& query) {
  auto bad = [&](const char* kind) {
    return Error(
        errnum::kTypeMismatch, kSource,
        "parameter " + query + "." + param.name + " wants " + kind + ", not \"" + text + "\"");
  };
  switch (param.type) {
    case ParamType::kInteger: {
      char* end = nullptr;
      const long long value = std::strtoll(text.c_str(), &end, 10);
      if (text.empty() || end == nullptr || *end != '\0') throw bad("a whole number");
      return static_cast<int64_t>(value);
    }
    case ParamType::kNumber: {
      const auto decimal = expr::Decimal::Parse(text);
      if (!decimal) throw bad("a number");
      return decimal->ToDouble();
    }
    case ParamType::kDate: {
      const auto date = Date::FromIso(text);
      if (!date) throw bad("a date written YYYY-MM-DD");
      return *date;
    }
    case ParamType::kText:
      return text;
  }
  return text;
}

}  // namespace

Rendered RenderTemplate(const RenderRequest& request) {
  const std::shared_ptr<const CompiledReport> report = LoadCompiledTemplate(request.template_path);
  RunSettings settings;
  for (const RenderRequest::Setting& setting : request.parameters) {
    const int query = report->FindQuery(setting.owner);
    if (query < 0) {
      throw Error(errnum::kItemNotFound, kSource,
                  "the template has no query \"" + setting.owner + "\"");
    }
    const CompiledParam* found = nullptr;
    for (const CompiledParam& param : report->queries[static_cast<size_t>(query)].params) {
      if (expr::AsciiUpper(param.name) == expr::AsciiUpper(setting.name)) found = &param;
    }
    if (found == nullptr) {
      throw Error(errnum::kItemNotFound, kSource,
                  "query \"" + setting.owner + "\" has no parameter \"" + setting.name + "\"");
    }
    settings.parameters[expr::AsciiUpper(setting.owner)][expr::AsciiUpper(setting.name)] =
        Typed(*found, setting.value, setting.owner);
  }
  for (const RenderRequest::Setting& setting : request.variables) {
    if (report->FindVariable(setting.owner, setting.name) < 0) {
      throw Error(errnum::kItemNotFound, kSource,
                  "the template has no variable \"" + setting.owner + "." + setting.name + "\"");
    }
    settings.variables[{expr::AsciiUpper(setting.owner), expr::AsciiUpper(setting.name)}] =
        setting.value;
  }
  std::vector<std::unique_ptr<data::Connection>> connections(report->databases.size());
  std::vector<std::string> strings(report->databases.size());
  for (const auto& [name, text] : request.connections) {
    const int database = report->FindDatabase(name);
    if (database >= 0) strings[static_cast<size_t>(database)] = text;
  }
  FillServices services;
  services.connection = [&](int index) -> data::Connection& {
    auto& connection = connections[static_cast<size_t>(index)];
    if (!connection) {
      if (strings[static_cast<size_t>(index)].empty()) {
        throw Error(errnum::kConnectionInvalid, kSource,
                    "database \"" + report->databases[static_cast<size_t>(index)] +
                        "\" has no connection (give it one with --db or --tdb)");
      }
      connection = data::Connection::Open(strings[static_cast<size_t>(index)]);
    }
    return *connection;
  };
  SetClock(services, CurrentPlatform()->Now());
  FillResult filled = Fill(*report, settings, services);
  return {std::move(filled.document), std::move(filled.warnings), report->page.printer};
}

}  // namespace vantorel::report
