// CRepoter's properties and the per-thread report state.
#include <gtest/gtest.h>

#include <thread>

#include "engine/scripted_engine.h"
#include "support/test_support.h"
#include "vantorel/crepoter.h"
#include "vantorel/error.h"
#include "vantorel/report_state.h"

namespace vantorel {
namespace {

using engine::ComponentKind;
using engine::ScriptedEngine;

TEST(CRepoter, FreshInstanceIsEmptyFalseAndZero) {
  CRepoter rep;
  EXPECT_EQ(rep.get_LastMsg(), "");
  EXPECT_EQ(rep.get_ReportPath(), "");
  EXPECT_EQ(rep.get_RptName(), "");
  EXPECT_EQ(rep.get_Export(), kFalse);
  EXPECT_EQ(rep.get_DbConnectstring(), "");
  EXPECT_EQ(rep.get_DbTConnectstring(), "");
  EXPECT_EQ(rep.get_DesigbeMode(), kFalse);
  EXPECT_EQ(rep.get_RptPrint(), kFalse);
  EXPECT_EQ(rep.get_FirmID(), 0);
  EXPECT_EQ(rep.get_AppPath(), "");
  EXPECT_EQ(rep.get_RptPDF(), kFalse);
  EXPECT_EQ(rep.get_PDFPath(), "");
}

TEST(CRepoter, PropertiesStoreWhatIsWritten) {
  CRepoter rep;
  rep.put_DesigbeMode(1);
  rep.put_RptPrint(-1);
  rep.put_Export(7);
  rep.put_FirmID(255);
  rep.put_ReportPath("D:\\App\\Reports\\");
  EXPECT_EQ(rep.get_DesigbeMode(), 1);
  EXPECT_EQ(rep.get_RptPrint(), -1);
  EXPECT_EQ(rep.get_Export(), 7);
  EXPECT_EQ(rep.get_FirmID(), 255);
  EXPECT_EQ(rep.get_ReportPath(), "D:\\App\\Reports\\");
}

TEST(CRepoter, SetVarsCopiesEveryPropertyButLastMsg) {
  CRepoter rep;
  rep.put_LastMsg("host");
  rep.put_ReportPath("/r/");
  rep.put_RptName("name");
  rep.put_RptPrint(kTrue);
  rep.put_Export(1);
  rep.put_DbConnectstring("dms.db");
  rep.put_DbTConnectstring("temp.db");
  rep.put_DesigbeMode(1);
  rep.put_FirmID(3);
  rep.put_AppPath("/app");
  rep.put_RptPDF(kTrue);
  rep.put_PDFPath("/out.pdf");
  rep.SetVars();
  const ReportState expected{"/r/", "name", kTrue,  1,     "dms.db",  "temp.db",
                             1,     3,      "/app", kTrue, "/out.pdf"};
  EXPECT_EQ(CurrentReportState(), expected);
}

// Records the order in which SetVars reads the getters, and can make one of them fail.
class OrderRecorder : public CRepoter {
 public:
  std::string get_LastMsg() const override { return Read("LastMsg", CRepoter::get_LastMsg()); }
  std::string get_ReportPath() const override {
    return Read("ReportPath", CRepoter::get_ReportPath());
  }
  std::string get_RptName() const override { return Read("RptName", CRepoter::get_RptName()); }
  VBool get_Export() const override { return Read("Export", CRepoter::get_Export()); }
  std::string get_DbConnectstring() const override {
    return Read("DbConnectstring", CRepoter::get_DbConnectstring());
  }
  std::string get_DbTConnectstring() const override {
    return Read("DbTConnectstring", CRepoter::get_DbTConnectstring());
  }
  VBool get_DesigbeMode() const override {
    return Read("DesigbeMode", CRepoter::get_DesigbeMode());
  }
  VBool get_RptPrint() const override { return Read("RptPrint", CRepoter::get_RptPrint()); }
  uint8_t get_FirmID() const override { return Read("FirmID", CRepoter::get_FirmID()); }
  std::string get_AppPath() const override { return Read("AppPath", CRepoter::get_AppPath()); }
  VBool get_RptPDF() const override { return Read("RptPDF", CRepoter::get_RptPDF()); }
  std::string get_PDFPath() const override { return Read("PDFPath", CRepoter::get_PDFPath()); }

  mutable std::vector<std::string> reads;
  std::string fail_on;

 private:
  template <typename T>
  T Read(const char* name, T value) const {
    reads.push_back(name);
    if (fail_on == name) throw Error(errnum::kUnspecified, "test", std::string(name) + " failed");
    return value;
  }
};

TEST(CRepoter, SetVarsReadsThroughTheGettersInItsOrder) {
  OrderRecorder rep;
  rep.SetVars();
  EXPECT_EQ(rep.reads, (std::vector<std::string>{"AppPath", "DbConnectstring", "DbTConnectstring",
                                                 "DesigbeMode", "Export", "FirmID", "ReportPath",
                                                 "RptName", "RptPrint", "RptPDF", "PDFPath"}));
}

TEST(CRepoter, AFailingGetterStopsTheCopyThere) {
  CRepoter before;
  before.put_ReportPath("/old/");
  before.put_FirmID(9);
  before.put_AppPath("/old-app");
  before.SetVars();

  OrderRecorder rep;
  rep.put_AppPath("/new-app");
  rep.put_FirmID(1);
  rep.put_ReportPath("/new/");
  rep.fail_on = "FirmID";
  EXPECT_THROW(rep.SetVars(), Error);
  const ReportState state = CurrentReportState();
  EXPECT_EQ(state.AppPath, "/new-app");  // copied before the failure
  EXPECT_EQ(state.FirmID, 9);            // the failing one keeps its value
  EXPECT_EQ(state.ReportPath, "/old/");  // and so does everything after it
}

class ReportStateTest : public ::testing::Test {
 protected:
  ReportStateTest() {
    engine_->AddTemplate("challancus", {});
    x_.Write("challancus.fr3", "x");
    y_.Write("challancus.fr3", "y");
  }
  testing::TempDir x_, y_;
  testing::PlatformScope platform_;
  std::shared_ptr<ScriptedEngine> engine_ = std::make_shared<ScriptedEngine>();
};

TEST_F(ReportStateTest, PrintMethodsChangeTheStateNotTheProperty) {
  CRepoter rep(engine_);
  rep.put_ReportPath(x_.folder());
  rep.put_RptName("host name");
  rep.SetVars();
  rep.SuperReport("challancus");
  EXPECT_EQ(rep.get_RptName(), "host name");
  EXPECT_EQ(CurrentReportState().RptName, "challancus");
  rep.SetVars();
  EXPECT_EQ(CurrentReportState().RptName, "host name");
}

TEST_F(ReportStateTest, InstancesOnOneThreadShareTheState) {
  CRepoter a(engine_), b(engine_);
  a.put_ReportPath(x_.folder());
  a.SetVars();
  b.put_ReportPath(y_.folder());
  b.SetVars();
  a.SuperReport("challancus");
  EXPECT_EQ(engine_->observed().loaded.back(), y_.folder() + "challancus.fr3");
}

TEST_F(ReportStateTest, ThreadsNeverSeeEachOthersState) {
  CRepoter here(engine_);
  here.put_ReportPath(x_.folder());
  here.put_FirmID(7);
  here.SetVars();

  ReportState seen_by_other;
  std::thread other([&] {
    seen_by_other = CurrentReportState();  // fresh: SetVars never ran on this thread
    CRepoter there(std::make_shared<ScriptedEngine>());
    there.put_ReportPath("/elsewhere/");
    there.SetVars();
  });
  other.join();
  EXPECT_EQ(seen_by_other, ReportState{});
  EXPECT_EQ(CurrentReportState().ReportPath, x_.folder());
  EXPECT_EQ(CurrentReportState().FirmID, 7);
}

TEST_F(ReportStateTest, ChangingAPropertyHasNoEffectUntilSetVars) {
  CRepoter rep(engine_);
  rep.put_ReportPath(x_.folder());
  rep.SetVars();
  rep.put_ReportPath(y_.folder());
  rep.SuperReport("challancus");
  EXPECT_EQ(engine_->observed().loaded.back(), x_.folder() + "challancus.fr3");
}

TEST_F(ReportStateTest, LastMsgLivesOnTheInstanceUntilTheNextPreparation) {
  CRepoter a(engine_), b(engine_);
  a.put_LastMsg("written by the host");
  a.put_ReportPath(x_.folder());
  a.SetVars();
  EXPECT_EQ(a.get_LastMsg(), "written by the host");
  b.SuperReport("challancus");
  EXPECT_EQ(a.get_LastMsg(), "written by the host");
  EXPECT_EQ(b.get_LastMsg(), "Run setfrx is ok ");
  a.SuperReport("challancus");
  EXPECT_EQ(a.get_LastMsg(), "Run setfrx is ok ");
}

TEST_F(ReportStateTest, NonStandardTrueDesignerFlagIsStoredButNotActedOn) {
  CRepoter rep(engine_);
  rep.put_ReportPath(x_.folder());
  rep.put_DesigbeMode(1);
  rep.SetVars();
  rep.SuperReport("challancus");
  EXPECT_EQ(rep.get_DesigbeMode(), 1);
  EXPECT_EQ(engine_->observed().outputs, (std::vector<std::string>{"ShowPreview"}));
}

TEST_F(ReportStateTest, WithoutSetVarsTheTemplateIsLookedForInTheCurrentFolder) {
  std::thread fresh([&] {
    CRepoter rep(engine_);
    rep.SuperReport("nosuchreport_in_cwd");
  });
  fresh.join();
  ASSERT_EQ(platform_->messages().size(), 1u);
  EXPECT_NE(platform_->messages()[0].text.find("nosuchreport_in_cwd.fr3"), std::string::npos);
}

}  // namespace
}  // namespace vantorel
