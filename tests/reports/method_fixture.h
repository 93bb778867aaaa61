// The print-method test bench of the workshop and accounts documents: the sales bench, with
// every template these methods load scripted with every component any of them pokes.
#ifndef VANTOREL_TESTS_REPORTS_METHOD_FIXTURE_H_
#define VANTOREL_TESTS_REPORTS_METHOD_FIXTURE_H_

#include <map>
#include <set>
#include <string>
#include <vector>

#include "sales_fixture.h"

namespace vantorel::testing {

// Query → the parameters any of these methods sets on it.
inline const std::map<std::string, std::set<std::string>>& MethodQueries() {
  static const std::map<std::string, std::set<std::string>> queries = {
      {"q", {"pu_id"}},
      {"mst", {"stk_id", "od_id",   "em_id",     "pu_id",  "job_srl", "ma_id", "ma_rv",
               "docid",  "docfrom", "chassisno", "mechid", "fdt",     "tdt",   "parttype",
               "vcode",  "xdt",     "nature",    "xvid",   "xdid",    "td_id"}},
      {"job", {"job_srl"}},
      {"Q_SUM", {"xdt"}},
      {"MAIN", {"refid"}},
      {"QRY", {}},
      {"QRY1", {}},
      {"mstcr", {"xdt"}},
      {"qry", {"xdt", "Tid", "nature", "xid"}},
      {"payment", {"xqno", "xmm"}},
      {"wsheet", {"xmm", "xyy"}},
      {"cst", {"xmm", "xyy"}},
      {"q_inv", {"xid"}},
      {"sumtax", {"xdt", "ydt"}},
      {"sumhsn", {"xdt", "ydt"}},
  };
  return queries;
}

inline engine::ScriptedEngine::Template MethodTemplate() {
  engine::ScriptedEngine::Template t;
  for (const char* memo : {"WORDS", "Memo26", "TITLE", "titel", "memtitle", "Memo13", "Memo40",
                           "Memo10", "TITEL", "Memo3", "Memo23", "Memo16", "mempay", "memdate",
                           "memparty", "memword", "memamt", "inwords"}) {
    t.components[memo] = ComponentKind::kMemo;
  }
  for (const auto& [query, parameters] : MethodQueries()) {
    t.components[query] = ComponentKind::kQuery;
    t.parameters[query] = parameters;
  }
  t.components["DMSDB"] = ComponentKind::kDatabase;
  return t;
}

class MethodTest : public SalesTest {
 protected:
  explicit MethodTest(std::vector<std::string> templates) : templates_(std::move(templates)) {
    for (const std::string& name : templates_) {
      engine_->AddTemplate(name, MethodTemplate());
      dir_.Write("reports/" + name + ".fr3", "template");
    }
    trace_.Clear();
  }

  // Scripts "name" with every component minus "without": a memo or query name, or
  // "query.parameter" for one parameter.
  void Lacking(const std::string& name, std::initializer_list<const char*> without) {
    auto t = MethodTemplate();
    for (const std::string component : without) {
      const size_t dot = component.find('.');
      if (dot == std::string::npos) {
        t.components.erase(component);
        t.parameters.erase(component);
      } else {
        t.parameters[component.substr(0, dot)].erase(component.substr(dot + 1));
      }
    }
    engine_->AddTemplate(name, t);
  }

  // Forgets the calls so far: the trace and what the engine observed.
  void Fresh() {
    trace_.Clear();
    engine_->ResetObserved();
  }

  // Names the template "host", so that a test can see the method leave it.
  void NameTemplate(const std::string& name) {
    rep_.put_RptName(name);
    rep_.SetVars();
    Fresh();
  }

  template <typename T>
  T ParamValue(const std::string& key) const {
    const auto* param = Param(key);
    EXPECT_NE(param, nullptr) << key;
    return param == nullptr ? T{} : std::get<T>(param->value);
  }
  int ParamType(const std::string& key) const {
    const auto* param = Param(key);
    return param == nullptr ? -1 : param->TypeCode();
  }

  // Nothing but, at most, the template name: no template loaded, no release.
  void ExpectUntouched() const {
    EXPECT_EQ(Count("LoadTemplate"), 0u);
    EXPECT_EQ(Count("ReleaseRun"), 0u);
    EXPECT_FALSE(Rendered());
  }
  // Loaded and released, never shown.
  void ExpectSkipped() const {
    EXPECT_EQ(Count("LoadTemplate"), 1u);
    EXPECT_FALSE(Rendered());
    EXPECT_EQ(Count("ReleaseRun"), 1u);
  }
  void ExpectPrinted(const std::string& template_name) const {
    EXPECT_EQ(Loaded(), template_name + ".fr3");
    EXPECT_TRUE(Rendered());
    EXPECT_EQ(Count("ReleaseRun"), 1u);
  }
  // The engine's error reached the host; nothing shown, nothing released.
  template <typename F>
  void ExpectHostError(F&& call) const {
    EXPECT_EQ(ErrorOf(call), errnum::kObjectNotSet);
    EXPECT_FALSE(Rendered());
    EXPECT_EQ(Count("ReleaseRun"), 0u);
  }

  // The operations of the run, with the component or variable each names.
  std::vector<std::string> Pokes() const {
    std::vector<std::string> pokes;
    for (const auto& event : trace_.Events()) {
      const std::string op = event["op"];
      if (op == "LocateComponent" || op == "GetQueryParameter" || op == "SetTemplateVariable") {
        const std::string name = event.contains("name") ? event["name"].get<std::string>() : "";
        if (name != "DMSDB" && name != "temp") pokes.push_back(op + " " + name);
      } else if (op == "SetMemoText" || op == "SetQueryText" || op == "SetParameterValue" ||
                 op == "ShowPreview" || op == "ReleaseRun") {
        pokes.push_back(op);
      }
    }
    return pokes;
  }

  static Date Day(int y, int m, int d) { return Date::FromYmd(y, m, d); }

  std::vector<std::string> templates_;
};

}  // namespace vantorel::testing

#endif  // VANTOREL_TESTS_REPORTS_METHOD_FIXTURE_H_
