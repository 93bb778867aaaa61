// Rendering and release through SuperReport: the output flags' decision table, the default PDF
// path, errors raised to the host, and the release of the run.
#include <gtest/gtest.h>

#include "engine/scripted_engine.h"
#include "support/test_support.h"
#include "vantorel/crepoter.h"
#include "vantorel/error.h"
#include "vantorel/report_state.h"

namespace vantorel {
namespace {

using engine::ComponentKind;
using engine::ScriptedEngine;

class RenderReportTest : public ::testing::Test {
 protected:
  RenderReportTest() {
    engine_->AddTemplate("gatepass", {{{"DMSDB", ComponentKind::kDatabase}}});
    dir_.Write("gatepass.fr3", "template");
    rep_.put_ReportPath(dir_.folder());
    rep_.put_DbConnectstring("dms.db");
    rep_.put_AppPath("C:\\App");
  }

  std::vector<std::string> Outputs() const { return engine_->observed().outputs; }

  void Flags(VBool designer, VBool print, VBool pdf) {
    rep_.put_DesigbeMode(designer);
    rep_.put_RptPrint(print);
    rep_.put_RptPDF(pdf);
    rep_.SetVars();
  }

  testing::TempDir dir_;
  testing::PlatformScope platform_;
  testing::TraceCapture trace_;
  std::shared_ptr<ScriptedEngine> engine_ = std::make_shared<ScriptedEngine>();
  CRepoter rep_{engine_};
};

struct FlagRow {
  VBool designer, print, pdf;
  std::vector<std::string> outputs;
};

class DecisionTable : public RenderReportTest, public ::testing::WithParamInterface<FlagRow> {};

TEST_P(DecisionTable, DesignerFirstThenExactlyOneOutput) {
  const FlagRow& row = GetParam();
  Flags(row.designer, row.print, row.pdf);
  rep_.SuperReport("gatepass");
  EXPECT_EQ(Outputs(), row.outputs);
}

const std::string kExport = "ExportPdf C:\\App\\export.pdf";

INSTANTIATE_TEST_SUITE_P(
    Flags, DecisionTable,
    ::testing::Values(FlagRow{kFalse, kFalse, kFalse, {"ShowPreview"}},
                      FlagRow{kFalse, kTrue, kFalse, {"PrepareReport", "PrintPrepared"}},
                      FlagRow{kFalse, kTrue, kTrue, {"PrepareReport", "PrintPrepared"}},
                      FlagRow{kFalse, kFalse, kTrue, {"PrepareReport", kExport}},
                      FlagRow{kTrue, kFalse, kFalse, {"OpenDesigner", "ShowPreview"}},
                      FlagRow{
                          kTrue, kTrue, kTrue, {"OpenDesigner", "PrepareReport", "PrintPrepared"}},
                      FlagRow{kTrue, kFalse, kTrue, {"OpenDesigner", "PrepareReport", kExport}},
                      // Only exactly -1 counts as set.
                      FlagRow{kFalse, 1, kFalse, {"ShowPreview"}},
                      FlagRow{kFalse, kFalse, 1, {"ShowPreview"}},
                      FlagRow{1, kFalse, kFalse, {"ShowPreview"}},
                      FlagRow{kFalse, 1, kTrue, {"PrepareReport", kExport}}));

TEST_F(RenderReportTest, DefaultPdfPathStaysInTheThreadStateUntilSetVars) {
  Flags(kFalse, kFalse, kTrue);
  rep_.SuperReport("gatepass");
  EXPECT_EQ(CurrentReportState().PDFPath, "C:\\App\\export.pdf");
  EXPECT_EQ(rep_.get_PDFPath(), "");
  rep_.put_AppPath("D:\\Other");  // no SetVars: the state keeps its path
  rep_.SuperReport("gatepass");
  EXPECT_EQ(Outputs().back(), kExport);
  rep_.SetVars();
  rep_.SuperReport("gatepass");
  EXPECT_EQ(Outputs().back(), "ExportPdf D:\\Other\\export.pdf");
}

TEST_F(RenderReportTest, GivenPdfPathIsUsedAsIs) {
  rep_.put_PDFPath("/tmp/out/invoice 12.pdf");
  Flags(kFalse, kFalse, kTrue);
  rep_.SuperReport("gatepass");
  EXPECT_EQ(Outputs().back(), "ExportPdf /tmp/out/invoice 12.pdf");
}

TEST_F(RenderReportTest, ExportGoesThroughTheExporterWithItsOrder) {
  Flags(kFalse, kFalse, kTrue);
  rep_.SuperReport("gatepass");
  const auto ops = trace_.Ops();
  const auto prepare = std::find(ops.begin(), ops.end(), "PrepareReport");
  ASSERT_NE(prepare, ops.end());
  EXPECT_EQ(*(prepare + 1), "GetPdfExporter");
  EXPECT_EQ(*(prepare + 2), "ExportPdf");
  EXPECT_EQ(*(prepare + 3), "ReleaseRun");
}

TEST_F(RenderReportTest, EngineFailureReachesTheHostWithoutRelease) {
  engine_->FailOn("ShowPreview", "printer unavailable");
  rep_.SetVars();
  try {
    rep_.SuperReport("gatepass");
    FAIL() << "expected the engine's error";
  } catch (const Error& error) {
    EXPECT_EQ(error.description(), "printer unavailable");
  }
  const auto ops = trace_.Ops();
  EXPECT_EQ(std::count(ops.begin(), ops.end(), "ReleaseRun"), 0);
  EXPECT_TRUE(platform_->messages().empty());
}

TEST_F(RenderReportTest, SuperReportWithEmptyNameDoesNothing) {
  rep_.put_RptName("host name");
  rep_.SetVars();
  rep_.put_LastMsg("host text");
  trace_.Clear();
  rep_.SuperReport("");
  EXPECT_TRUE(trace_.Events().empty());
  EXPECT_EQ(rep_.get_LastMsg(), "host text");
  EXPECT_EQ(CurrentReportState().RptName, "host name");
  EXPECT_EQ(engine_->observed().reports_created, 0);
}

TEST_F(RenderReportTest, SuperReportRunsTheWholeRecipe) {
  rep_.SetVars();
  rep_.SuperReport("gatepass");
  EXPECT_EQ(CurrentReportState().RptName, "gatepass");
  EXPECT_EQ(rep_.get_LastMsg(), "Run setfrx is ok ");
  const auto ops = trace_.Ops();
  EXPECT_EQ(ops.front(), "LastMsg");
  EXPECT_EQ(ops.back(), "ReleaseRun");
}

TEST_F(RenderReportTest, SuperReportWithAnUnknownTemplateShowsAndReturns) {
  rep_.SetVars();
  EXPECT_NO_THROW(rep_.SuperReport("nosuchreport"));
  ASSERT_EQ(platform_->messages().size(), 1u);
  EXPECT_EQ(rep_.get_LastMsg(), "Starting setfrx");
  EXPECT_TRUE(Outputs().empty());
}

TEST_F(RenderReportTest, ReleaseEmptiesTheReferencesInOrder) {
  rep_.SetVars();
  rep_.SuperReport("gatepass");
  // A second run creates a new report object: the first one was released.
  rep_.SuperReport("gatepass");
  EXPECT_EQ(engine_->observed().reports_created, 2);
}

}  // namespace
}  // namespace vantorel
