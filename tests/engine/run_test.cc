// The report run's references: absent components, views of the wrong kind, create on first use.
#include "engine/run.h"

#include <gtest/gtest.h>

#include "engine/scripted_engine.h"
#include "support/test_support.h"
#include "vantorel/error.h"

namespace vantorel::engine {
namespace {

class ReportRunTest : public ::testing::Test {
 protected:
  ReportRunTest() {
    engine_->AddTemplate("invoice", {{{"WORDS", ComponentKind::kMemo},
                                      {"Q_INV", ComponentKind::kQuery},
                                      {"Picture1", ComponentKind::kOther}},
                                     {{"Q_INV", {"id"}}}});
    run_.LoadTemplate("/reports/invoice.fr3");
  }

  testing::TraceCapture trace_;
  std::shared_ptr<ScriptedEngine> engine_ = std::make_shared<ScriptedEngine>();
  ReportRun run_{engine_};
};

TEST_F(ReportRunTest, ReportIsCreatedOnFirstUse) {
  EXPECT_EQ(engine_->observed().reports_created, 1);
  EXPECT_EQ(trace_.Ops().front(), "CreateReport");
}

TEST_F(ReportRunTest, AbsentComponentIsAnEmptyReferenceAndUsingItNamesIt) {
  run_.memo = run_.LocateMemo("AMT");
  EXPECT_FALSE(run_.memo);
  try {
    run_.memo.SetMemoText("RUPEES : FIVE ONLY");
    FAIL() << "expected an error";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errnum::kObjectNotSet);
    EXPECT_NE(error.description().find("\"AMT\""), std::string::npos);
  }
  const auto events = trace_.Events();
  EXPECT_EQ(events[events.size() - 2]["found"], false);
}

TEST_F(ReportRunTest, QueryViewedAsMemoFailsAtTheView) {
  try {
    run_.memo = run_.LocateMemo("Q_INV");
    FAIL() << "expected a type mismatch";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errnum::kTypeMismatch);
    EXPECT_NE(error.description().find("\"Q_INV\""), std::string::npos);
    EXPECT_NE(error.description().find("query"), std::string::npos);
  }
  EXPECT_TRUE(engine_->observed().memo_texts.empty());
}

TEST_F(ReportRunTest, QueryParametersAreTypedAndTraced) {
  run_.query = run_.LocateQuery("Q_INV");
  run_.param = run_.query.GetQueryParameter("id");
  ASSERT_TRUE(run_.param);
  run_.param.SetParameterValue({int16_t{12}});
  EXPECT_FALSE(run_.query.GetQueryParameter("xid"));
  const auto events = trace_.Events();
  bool seen = false;
  for (const auto& event : events) {
    if (event["op"] == "SetParameterValue") {
      EXPECT_EQ(event["type"], 2);
      EXPECT_EQ(event["value"], 12);
      EXPECT_EQ(event["param"], "id");
      seen = true;
    }
  }
  EXPECT_TRUE(seen);
}

TEST_F(ReportRunTest, DateParametersAreTracedAsIsoDates) {
  run_.query = run_.LocateQuery("Q_INV");
  run_.param = run_.query.GetQueryParameter("id");
  run_.param.SetParameterValue({Date::FromYmd(2024, 3, 31)});
  EXPECT_EQ(trace_.Events().back()["value"], "2024-03-31");
  EXPECT_EQ(trace_.Events().back()["type"], 7);
}

TEST_F(ReportRunTest, OtherComponentsCannotBeViewedAsQueries) {
  EXPECT_THROW(run_.LocateQuery("Picture1"), Error);
}

TEST_F(ReportRunTest, ReleaseEmptiesEverything) {
  run_.memo = run_.LocateMemo("WORDS");
  run_.query = run_.LocateQuery("Q_INV");
  run_.param = run_.query.GetQueryParameter("id");
  run_.Release();
  EXPECT_FALSE(run_.memo);
  EXPECT_FALSE(run_.query);
  EXPECT_FALSE(run_.param);
  EXPECT_FALSE(run_.has_report());
  EXPECT_EQ(trace_.Ops().back(), "ReleaseRun");
}

}  // namespace
}  // namespace vantorel::engine
