// Template preparation: the progress texts, the folder / missing-file split, the connections and
// the preview options, and what each failure leaves behind.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "engine/scripted_engine.h"
#include "engine/steps.h"
#include "support/test_support.h"

namespace vantorel::engine {
namespace {

using Kind = ComponentKind;

class PrepareTemplateTest : public ::testing::Test {
 protected:
  PrepareTemplateTest() {
    engine_->AddTemplate("challancus", {{{"DMSDB", Kind::kDatabase}, {"temp", Kind::kDatabase}}});
    engine_->AddTemplate("dmsonly", {{{"DMSDB", Kind::kDatabase}}});
    engine_->AddTemplate("temponly", {{{"temp", Kind::kDatabase}}});
    engine_->AddTemplate("bare", {});
    engine_->AddTemplate("wrongkind", {{{"DMSDB", Kind::kMemo}}});
    for (const char* name : {"challancus", "dmsonly", "temponly", "bare", "wrongkind"}) {
      dir_.Write(std::string(name) + ".fr3", "template");
    }
    state_.ReportPath = dir_.folder();
    state_.RptName = "challancus";
    state_.DbConnectstring = "Provider=SQLite;Data Source=dms.db;Password=secret";
    state_.DbTConnectstring = "temp.db";
  }

  bool Prepare() { return PrepareTemplate(run_, state_, last_msg_); }

  std::vector<std::string> LastMsgTrail() const {
    std::vector<std::string> trail;
    for (const auto& event : trace_.Events()) {
      if (event["op"] == "LastMsg") trail.push_back(event["text"]);
    }
    return trail;
  }

  testing::TempDir dir_;
  testing::PlatformScope platform_;
  testing::TraceCapture trace_;
  std::shared_ptr<ScriptedEngine> engine_ = std::make_shared<ScriptedEngine>();
  ReportRun run_{engine_};
  ReportState state_;
  std::string last_msg_ = "host text";
};

TEST_F(PrepareTemplateTest, WritesEveryProgressTextInOrder) {
  ASSERT_TRUE(Prepare());
  EXPECT_EQ(LastMsgTrail(),
            (std::vector<std::string>{"Starting setfrx", "setting frx dll",
                                      "setting engine options", "loading Report definition file",
                                      "finding db name in rpt", "setting logon parameters",
                                      "setting preview options", "Run setfrx is ok "}));
  EXPECT_EQ(last_msg_, "Run setfrx is ok ");
  EXPECT_TRUE(platform_->messages().empty());
}

TEST_F(PrepareTemplateTest, CallsThePortInTheDocumentedOrder) {
  ASSERT_TRUE(Prepare());
  std::vector<std::string> calls;
  for (const auto& event : trace_.Events()) {
    if (event["op"] == "LastMsg") continue;
    std::string call = event["op"];
    if (event.contains("name")) call += " " + event["name"].get<std::string>();
    if (event.contains("db")) call += " " + event["db"].get<std::string>();
    if (event.contains("value")) call += " " + event["value"].dump();
    calls.push_back(call);
  }
  EXPECT_EQ(calls,
            (std::vector<std::string>{
                "CreateReport", "SetEngineOption 1", "LoadTemplate", "LocateComponent DMSDB",
                "SetLoginPrompt DMSDB false", "SetConnected DMSDB false",
                "SetConnectionString DMSDB", "SetConnected DMSDB true", "LocateComponent temp",
                "SetLoginPrompt temp false", "SetConnected temp false", "SetConnectionString temp",
                "SetConnected temp true", "SetPreviewOptionA true", "SetPreviewFeatures 1073",
                "SetPreviewOptionB true", "SetPreviewOptionC false"}));
  EXPECT_EQ(engine_->observed().connections.at("DMSDB"), state_.DbConnectstring);
  EXPECT_EQ(engine_->observed().connections.at("temp"), "temp.db");
  EXPECT_EQ(engine_->observed().loaded.back(), dir_.folder() + "challancus.fr3");
}

TEST_F(PrepareTemplateTest, TheConnectionStringNeverReachesTheTrace) {
  ASSERT_TRUE(Prepare());
  EXPECT_EQ(testing::ReadFile(std::getenv("VANTOREL_TRACE")).find("secret"), std::string::npos);
}

TEST_F(PrepareTemplateTest, ReportPathIsAPlainPrefix) {
  dir_.Write("Reportsx.fr3", "template");
  engine_->AddTemplate("Reportsx", {});
  state_.ReportPath = dir_.path().string() + "/Reports";
  state_.RptName = "x";
  ASSERT_TRUE(Prepare());
  EXPECT_EQ(engine_->observed().loaded.back(), dir_.path().string() + "/Reportsx.fr3");
}

TEST_F(PrepareTemplateTest, EmptyNameLoadsJustTheExtension) {
  dir_.Write(".fr3", "template");
  engine_->AddTemplate("", {});
  state_.RptName = "";
  ASSERT_TRUE(Prepare());
  EXPECT_EQ(engine_->observed().loaded.back(), dir_.folder() + ".fr3");
}

TEST_F(PrepareTemplateTest, TemplateWithoutTempBindsOnlyDmsdb) {
  state_.RptName = "dmsonly";
  ASSERT_TRUE(Prepare());
  EXPECT_EQ(engine_->observed().connections.count("DMSDB"), 1u);
  EXPECT_EQ(engine_->observed().connections.count("temp"), 0u);
  EXPECT_EQ(last_msg_, "Run setfrx is ok ");
}

TEST_F(PrepareTemplateTest, TemplateWithoutConnectionsIsNotAnError) {
  state_.RptName = "bare";
  ASSERT_TRUE(Prepare());
  EXPECT_TRUE(engine_->observed().connections.empty());
  auto trail = LastMsgTrail();
  EXPECT_EQ(std::count(trail.begin(), trail.end(), "setting logon parameters"), 0);
}

TEST_F(PrepareTemplateTest, ExportFlagCountsWhenNonZero) {
  state_.Export = 1;
  ASSERT_TRUE(Prepare());
  state_.Export = kTrue;
  ASSERT_TRUE(Prepare());
  state_.Export = kFalse;
  ASSERT_TRUE(Prepare());
  EXPECT_EQ(engine_->observed().preview_features, (std::vector<int>{1081, 1081, 1073}));
}

TEST_F(PrepareTemplateTest, FolderOfTheTemplateNameGetsTheNotFoundMessage) {
  std::filesystem::create_directory(dir_.path() / "folder.fr3");
  state_.RptName = "folder";
  EXPECT_FALSE(Prepare());
  ASSERT_EQ(platform_->messages().size(), 1u);
  EXPECT_EQ(platform_->messages()[0].text, "Report File [folder] not found..");
  EXPECT_EQ(platform_->messages()[0].icon, MessageIcon::kCritical);
  EXPECT_EQ(last_msg_, "Starting setfrx");
  EXPECT_EQ(engine_->observed().reports_created, 0);
}

TEST_F(PrepareTemplateTest, MissingFileGetsThePlatformFileNotFoundText) {
  state_.RptName = "nosuchtemplate";
  EXPECT_FALSE(Prepare());
  ASSERT_EQ(platform_->messages().size(), 1u);
  EXPECT_NE(platform_->messages()[0].text.find(std::strerror(ENOENT)), std::string::npos);
  EXPECT_EQ(platform_->messages()[0].icon, MessageIcon::kNone);
  EXPECT_EQ(last_msg_, "Starting setfrx");
}

struct FailureRow {
  const char* fail_on;
  const char* template_name;
  const char* last_msg;
};

class PrepareTemplateFailure : public PrepareTemplateTest,
                               public ::testing::WithParamInterface<FailureRow> {};

TEST_P(PrepareTemplateFailure, ShowsTheErrorAndStopsAtItsStep) {
  engine_->FailOn(GetParam().fail_on, "the engine refused");
  state_.RptName = GetParam().template_name;
  EXPECT_FALSE(Prepare());
  ASSERT_EQ(platform_->messages().size(), 1u);
  EXPECT_EQ(platform_->messages()[0].text, "the engine refused");
  EXPECT_EQ(platform_->messages()[0].icon, MessageIcon::kNone);
  EXPECT_EQ(last_msg_, GetParam().last_msg);
}

INSTANTIATE_TEST_SUITE_P(
    Table, PrepareTemplateFailure,
    ::testing::Values(FailureRow{"CreateReport", "challancus", "setting frx dll"},
                      FailureRow{"SetEngineOption", "challancus", "setting engine options"},
                      FailureRow{"LoadTemplate", "challancus", "loading Report definition file"},
                      FailureRow{"SetConnected:DMSDB", "challancus", "setting logon parameters"},
                      FailureRow{"SetConnected:temp", "challancus", "setting logon parameters"},
                      FailureRow{"SetConnected:temp", "temponly", "finding db name in rpt"},
                      FailureRow{"SetPreviewFeatures", "challancus", "setting preview options"}));

TEST_F(PrepareTemplateTest, DmsdbOfAnotherKindFailsAtTheView) {
  state_.RptName = "wrongkind";
  EXPECT_FALSE(Prepare());
  ASSERT_EQ(platform_->messages().size(), 1u);
  EXPECT_NE(platform_->messages()[0].text.find("\"DMSDB\""), std::string::npos);
  EXPECT_EQ(last_msg_, "finding db name in rpt");
}

TEST_F(PrepareTemplateTest, EveryCallMakesAFreshReportObject) {
  ASSERT_TRUE(Prepare());
  ASSERT_TRUE(Prepare());
  EXPECT_EQ(engine_->observed().reports_created, 2);
}

TEST_F(PrepareTemplateTest, AFailedBindingLeavesTheDatabaseReferenceHeld) {
  engine_->FailOn("SetConnected:DMSDB", "connection refused");
  EXPECT_FALSE(Prepare());
  EXPECT_TRUE(static_cast<bool>(run_.database));
}

}  // namespace
}  // namespace vantorel::engine
