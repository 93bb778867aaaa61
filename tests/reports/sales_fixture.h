// A print-method test bench: a real SQLite database, a template folder, a scripted engine that
// knows every template of the catalogue, each with every component the catalogue names, the
// recording platform and the trace.
#ifndef VANTOREL_TESTS_REPORTS_SALES_FIXTURE_H_
#define VANTOREL_TESTS_REPORTS_SALES_FIXTURE_H_

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>
#include <vector>

#include "engine/scripted_engine.h"
#include "reports/catalogue.h"
#include "support/test_support.h"
#include "vantorel/crepoter.h"
#include "vantorel/error.h"
#include "vantorel/report_state.h"

namespace vantorel::testing {

using engine::ComponentKind;

// Every template the catalogued print methods load.
inline std::vector<std::string> CatalogueTemplates() {
  std::vector<std::string> names;
  for (const PrintMethodFacts& method : PrintMethodCatalogue()) {
    names.insert(names.end(), method.templates.begin(), method.templates.end());
  }
  return names;
}

// Every component any catalogued method pokes, and the database every template has.
inline engine::ScriptedEngine::Template FullTemplate() {
  engine::ScriptedEngine::Template t;
  for (const PrintMethodFacts& method : PrintMethodCatalogue()) {
    for (const Use& memo : method.memos) t.components[memo.name] = ComponentKind::kMemo;
    for (const QueryUse& query : method.queries) {
      t.components[query.name] = ComponentKind::kQuery;
      for (const Use& param : query.parameters) t.parameters[query.name].insert(param.name);
    }
  }
  t.components["DMSDB"] = ComponentKind::kDatabase;
  return t;
}

class SalesTest : public ::testing::Test {
 protected:
  SalesTest() {
    db_ = dir_.path().string() + "/dms.db";
    Sql(R"(
      create table para_setup (para_flag varchar(20), para_type varchar(20), para_value varchar(20));
      create table challan (id integer, amt numeric(12,2), note text);
      create table receipt (id integer, amt numeric(12,2));
      create table purdata (invid integer, chlid integer, line integer, netprice numeric(12,2),
                            subsidyamt numeric(12,2), chlamt numeric(12,2));
      insert into challan values (12, 1250.50, 'ok'), (13, null, 'no amount');
      insert into challan (id, amt) values (14, 0);
      insert into receipt values (7, 105000.50), (0, 5);
      insert into purdata values (21, null, 1, 60000, 5000, null), (22, null, 1, 45000, null, null),
                                 (-5, null, 1, 100, null, null), (0, 31, 1, null, null, 2500.75);
    )");
    for (const std::string& name : CatalogueTemplates()) {
      engine_->AddTemplate(name, FullTemplate());
      dir_.Write("reports/" + name + ".fr3", "template");
    }
    rep_.put_ReportPath(dir_.folder() + "reports/");
    rep_.put_DbConnectstring(db_);
    rep_.put_AppPath(dir_.path().string());
    rep_.SetVars();
    trace_.Clear();
  }

  void Sql(const std::string& sql) {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(db_.c_str(), &db), SQLITE_OK);
    char* error = nullptr;
    sqlite3_exec(db, "pragma synchronous=off; pragma journal_mode=memory", nullptr, nullptr,
                 nullptr);
    ASSERT_EQ(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &error), SQLITE_OK) << error;
    sqlite3_close(db);
  }

  // Scripts "name" with the full template minus "without".
  void Without(const std::string& name, std::initializer_list<const char*> without) {
    auto t = FullTemplate();
    for (const char* component : without) {
      t.components.erase(component);
      t.parameters.erase(component);
    }
    engine_->AddTemplate(name, t);
  }

  std::vector<std::string> Ops() const { return trace_.Ops(); }
  size_t Count(const std::string& op) const {
    const auto ops = Ops();
    return static_cast<size_t>(std::count(ops.begin(), ops.end(), op));
  }
  std::vector<std::string> Sqls() const {
    std::vector<std::string> sqls;
    for (const auto& event : trace_.Events()) {
      if (event["op"] == "OpenRs") sqls.push_back(event["sql"]);
    }
    return sqls;
  }
  std::string Memo(const std::string& name) const {
    const auto& texts = engine_->observed().memo_texts;
    const auto it = texts.find(name);
    return it == texts.end() ? "<unset>" : it->second;
  }
  std::string QuerySql(const std::string& name) const {
    const auto& sqls = engine_->observed().query_sql;
    const auto it = sqls.find(name);
    return it == sqls.end() ? "<unset>" : it->second;
  }
  std::string Variable(const std::string& name) const {
    const auto& variables = engine_->observed().variables;
    const auto it = variables.find("Company." + name);
    return it == variables.end() ? "<unset>" : it->second;
  }
  const engine::ParameterValue* Param(const std::string& key) const {
    const auto& parameters = engine_->observed().parameters;
    const auto it = parameters.find(key);
    return it == parameters.end() ? nullptr : &it->second;
  }
  std::string Loaded() const {
    const auto& loaded = engine_->observed().loaded;
    if (loaded.empty()) return "<none>";
    const std::string& file = loaded.back();
    return file.substr(file.find_last_of('/') + 1);
  }
  std::string RptName() const { return CurrentReportState().RptName; }
  bool Rendered() const { return !engine_->observed().outputs.empty(); }

  TempDir dir_;
  PlatformScope platform_;
  TraceCapture trace_;
  std::string db_;
  std::shared_ptr<engine::ScriptedEngine> engine_ = std::make_shared<engine::ScriptedEngine>();
  CRepoter rep_{engine_};
};

// The error number of what "call" throws, or 0.
template <typename F>
int32_t ErrorOf(F&& call) {
  try {
    call();
  } catch (const Error& error) {
    return error.number();
  }
  return 0;
}

}  // namespace vantorel::testing

#endif  // VANTOREL_TESTS_REPORTS_SALES_FIXTURE_H_
