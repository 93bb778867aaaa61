// Every catalogued print method on the scripted engine and the demo dealership's database, held
// to its row: with every component present it touches exactly the memos, queries, parameters and
// pictures the catalogue names; with one of them absent it fails to the host when the catalogue
// says the component is required, and skips rendering but still releases when it says checked.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "component/dispatch.h"
#include "reports/catalogue.h"
#include "sales_fixture.h"
#include "support/shared_demo.h"

namespace vantorel::testing {
namespace {

using Facts = std::map<std::string, std::string>;

// The demo database and its facts, shared with the other test processes: the methods only read
// it.
class DemoDatabase {
 public:
  static const DemoDatabase& Get() {
    static const DemoDatabase demo;
    return demo;
  }
  std::string file() const { return folder_ + "/demo.db"; }
  const Facts& facts() const { return facts_; }

 private:
  DemoDatabase() : folder_(SharedDemoFolder(DEMO_GEN)) {
    std::ifstream in(folder_ + "/facts.txt");
    for (std::string line; std::getline(in, line);) {
      const size_t equals = line.find('=');
      if (line.empty() || line[0] == '#' || equals == std::string::npos) continue;
      facts_[line.substr(0, equals)] = line.substr(equals + 1);
    }
    facts_["logo"] = "/logos/firm.png";
    facts_["qr"] = "/qr/invoice.png";
  }
  std::string folder_;
  Facts facts_;
};

// One component of a method's row, to be left out of its templates.
struct Absent {
  std::string description;  // "memo WORDS", "query q_rt", "parameter q_rt.id"
  std::string component;    // the memo or query left out, or the query whose parameter is
  std::string parameter;    // empty unless a parameter is left out
  Lookup lookup;
};

std::vector<Absent> Absences(const PrintMethodFacts& method) {
  std::vector<Absent> absences;
  for (const Use& memo : method.memos) {
    absences.push_back({std::string("memo ") + memo.name, memo.name, "", memo.lookup});
  }
  for (const QueryUse& query : method.queries) {
    absences.push_back({std::string("query ") + query.name, query.name, "", query.lookup});
    for (const Use& param : query.parameters) {
      absences.push_back({std::string("parameter ") + query.name + "." + param.name, query.name,
                          param.name, param.lookup});
    }
  }
  return absences;
}

class CatalogueTest : public ::testing::TestWithParam<const PrintMethodFacts*> {
 protected:
  CatalogueTest() {
    for (const std::string& name : CatalogueTemplates()) {
      engine_->AddTemplate(name, FullTemplate());
      dir_.Write("reports/" + name + ".fr3", "template");
    }
    rep_.put_ReportPath(dir_.folder() + "reports/");
    rep_.put_DbConnectstring(DemoDatabase::Get().file());
    rep_.put_AppPath(dir_.path().string());
    rep_.put_FirmID(1);
    rep_.SetVars();
    trace_.Clear();
  }

  // Calls the method as its first example does; the error number it fails with, or 0.
  int32_t Call() {
    const PrintMethodFacts& method = *GetParam();
    std::vector<Variant> args;
    for (const std::string& arg :
         ExampleArguments(method.examples.at(0), DemoDatabase::Get().facts())) {
      args.push_back(Variant::String(arg));
    }
    return ErrorOf([&] { InvokeByName(rep_, method.method, kDispatchMethod, args); });
  }

  size_t Count(const std::string& op) const {
    const auto ops = trace_.Ops();
    return static_cast<size_t>(std::count(ops.begin(), ops.end(), op));
  }
  bool Rendered() const { return !engine_->observed().outputs.empty(); }

  TempDir dir_;
  PlatformScope platform_;
  TraceCapture trace_;
  std::shared_ptr<engine::ScriptedEngine> engine_ = std::make_shared<engine::ScriptedEngine>();
  CRepoter rep_{engine_};
};

template <typename Map>
std::set<std::string> Keys(const Map& map) {
  std::set<std::string> keys;
  for (const auto& [key, value] : map) keys.insert(key);
  return keys;
}

TEST_P(CatalogueTest, TouchesWhatItsRowSays) {
  const PrintMethodFacts& method = *GetParam();
  ASSERT_FALSE(method.examples.empty()) << "the row has no example call";
  ASSERT_EQ(Call(), 0) << rep_.get_LastMsg();
  EXPECT_TRUE(platform_->messages().empty()) << platform_->messages()[0].text;
  EXPECT_TRUE(Rendered());
  EXPECT_EQ(Count("ReleaseRun"), 1u);

  std::set<std::string> templates(method.templates.begin(), method.templates.end());
  const auto& observed = engine_->observed();
  ASSERT_EQ(observed.loaded.size(), 1u);
  const std::string& file = observed.loaded.back();
  const std::string loaded = file.substr(file.find_last_of('/') + 1);
  EXPECT_TRUE(templates.count(loaded.substr(0, loaded.size() - 4))) << loaded;

  std::set<std::string> memos, located, sql, parameters, pictures;
  for (const Use& memo : method.memos) memos.insert(memo.name), located.insert(memo.name);
  for (const QueryUse& query : method.queries) {
    located.insert(query.name);
    if (query.sql) sql.insert(query.name);
    for (const Use& param : query.parameters) {
      parameters.insert(std::string(query.name) + "." + param.name);
    }
  }
  for (const Use& picture : method.pictures)
    pictures.insert(std::string("Company.") + picture.name);
  EXPECT_EQ(Keys(observed.memo_texts), memos);
  EXPECT_EQ(Keys(observed.query_sql), sql);
  EXPECT_EQ(Keys(observed.parameters), parameters);
  EXPECT_EQ(Keys(observed.variables), pictures);
  std::set<std::string> looked_up;
  for (const auto& event : trace_.Events()) {
    if (event["op"] != "LocateComponent") continue;
    const std::string name = event["name"];
    if (name != "DMSDB" && name != "temp") looked_up.insert(name);
  }
  EXPECT_EQ(looked_up, located);
}

TEST_P(CatalogueTest, WithoutAComponentFailsOrSkipsAsItsRowSays) {
  const PrintMethodFacts& method = *GetParam();
  for (const Absent& absent : Absences(method)) {
    SCOPED_TRACE(absent.description);
    auto script = FullTemplate();
    if (absent.parameter.empty()) {
      script.components.erase(absent.component);
      script.parameters.erase(absent.component);
    } else {
      script.parameters[absent.component].erase(absent.parameter);
    }
    for (const char* name : method.templates) engine_->AddTemplate(name, script);
    trace_.Clear();
    const size_t outputs = engine_->observed().outputs.size();
    const int32_t error = Call();
    EXPECT_EQ(engine_->observed().outputs.size(), outputs) << "rendered";
    if (absent.lookup == Lookup::kRequired) {
      EXPECT_EQ(error, errnum::kObjectNotSet);
      EXPECT_EQ(Count("ReleaseRun"), 0u);
    } else {
      EXPECT_EQ(error, 0);
      EXPECT_EQ(Count("ReleaseRun"), 1u);
    }
  }
}

// Each catalogued template is printed by one of the method's example calls, and each example
// prints a template of its row.
TEST(Catalogue, ExamplesPrintEveryTemplateOfTheirMethod) {
  std::set<std::string> methods;
  for (const PrintMethodFacts& method : PrintMethodCatalogue()) {
    EXPECT_TRUE(methods.insert(method.method).second) << method.method << " has two rows";
    std::set<std::string> templates(method.templates.begin(), method.templates.end());
    std::set<std::string> printed;
    for (const ExampleCall& example : method.examples) printed.insert(example.template_name);
    EXPECT_EQ(printed, templates) << method.method;
  }
}

TEST(Catalogue, EveryTemplateIsShipped) {
  for (const std::string& name : CatalogueTemplates()) {
    EXPECT_TRUE(
        std::filesystem::exists(std::string(VANTOREL_SOURCE_DIR) + "/templates/" + name + ".fr3"))
        << name;
  }
}

// The table of docs/print-methods.md, between its markers, is the catalogue's.
TEST(Catalogue, DocsShowTheCatalogue) {
  std::ifstream in(std::string(VANTOREL_SOURCE_DIR) + "/docs/print-methods.md");
  const std::string doc((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  const std::string begin = "<!-- catalogue table: begin -->\n";
  const std::string end = "<!-- catalogue table: end -->";
  const size_t from = doc.find(begin);
  const size_t to = doc.find(end);
  ASSERT_NE(from, std::string::npos);
  ASSERT_NE(to, std::string::npos);
  EXPECT_EQ(doc.substr(from + begin.size(), to - from - begin.size()), CatalogueTable())
      << "paste this table between the markers of docs/print-methods.md:\n"
      << CatalogueTable();
}

std::vector<const PrintMethodFacts*> Methods() {
  std::vector<const PrintMethodFacts*> methods;
  for (const PrintMethodFacts& method : PrintMethodCatalogue()) methods.push_back(&method);
  return methods;
}

INSTANTIATE_TEST_SUITE_P(Every, CatalogueTest, ::testing::ValuesIn(Methods()),
                         [](const ::testing::TestParamInfo<const PrintMethodFacts*>& row) {
                           return std::string(row.param->method);
                         });

}  // namespace
}  // namespace vantorel::testing
