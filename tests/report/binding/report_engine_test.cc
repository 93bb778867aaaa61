// The component with our report engine behind the port: a template printed to PDF, what the
// print methods poke reaching the document, and the engine's errors as the component sees them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "engine/run.h"
#include "engine/steps.h"
#include "engine_fixture.h"
#include "report/binding/report_engine.h"
#include "vantorel/error.h"
#include "vantorel/report_state.h"

namespace vantorel::testing {
namespace {

TEST_F(EngineTest, SuperReportWritesThePdfToTheDefaultPath) {
  rep_.SetVars();
  rep_.SuperReport("challan");
  EXPECT_EQ(rep_.get_LastMsg(), "Run setfrx is ok ");
  const std::string pdf = dir_.path().string() + "/export.pdf";
  ASSERT_TRUE(std::filesystem::exists(pdf)) << "AppPath + \\export.pdf, the backslash a separator";
  EXPECT_EQ(CurrentReportState().PDFPath, dir_.path().string() + "\\export.pdf");
  const std::string text = PdfText(pdf);
  EXPECT_NE(text.find("Customer: Ramesh Dattatray Patil"), std::string::npos) << text;
  EXPECT_NE(text.find("₹ 1,250.50"), std::string::npos) << text;
  EXPECT_NE(text.find("ONE THOUSAND TWO HUNDRED FIFTY & PAISA FIFTY ONLY"), std::string::npos);
  EXPECT_EQ(Shell("qpdf --check '" + pdf + "' >/dev/null 2>&1; echo $?"), "0\n");
  const std::string info = Shell("pdfinfo '" + pdf + "'");
  EXPECT_NE(info.find("Delivery Challan"), std::string::npos) << info;
  EXPECT_NE(info.find("Shivneri Motors"), std::string::npos) << info;
}

TEST_F(EngineTest, WhatThePrintMethodPokesReachesTheDocument) {
  const std::string pdf = dir_.path().string() + "/poked.pdf";
  rep_.put_PDFPath(pdf);
  rep_.SetVars();
  // The steps a print method takes, on our engine.
  engine::ReportRun run(report::MakeReportEngine());
  ReportState state = CurrentReportState();
  state.RptName = "challan";
  std::string last_msg;
  ASSERT_TRUE(engine::PrepareTemplate(run, state, last_msg)) << last_msg;
  run.memo = run.LocateMemo("WORDS");
  run.memo.SetMemoText("RUPEES : [AmountInWords(Q_CHL.amt)] [not an expression");
  run.query = run.LocateQuery("Q_CHL");
  run.param = run.query.GetQueryParameter("ID");
  ASSERT_TRUE(run.param) << "parameters are found without regard to case";
  run.param.SetParameterValue({int16_t{13}});
  EXPECT_FALSE(run.query.GetQueryParameter("xid"));
  run.SetTemplateVariable("Company", "logo",
                          "\"" + std::string(VANTOREL_SOURCE_DIR) + "/demo/assets/logo.png\"");
  engine::RenderReport(run, state);
  const std::string text = PdfText(pdf);
  EXPECT_NE(text.find("सुनीता देशमुख"), std::string::npos) << text;
  EXPECT_NE(text.find("RUPEES : ONE LAC FIVE THOUSAND & PAISA FIFTY ONLY"), std::string::npos)
      << text;
  EXPECT_NE(text.find("[not an"), std::string::npos)
      << "a bracket that is no expression prints as written\n"
      << text;
  EXPECT_NE(Shell("pdfimages -list '" + pdf + "'").find("jpeg"), std::string::npos)
      << "the logo is in the PDF";
}

TEST_F(EngineTest, AbsentComponentsAreEmptyAndWrongKindsNameThemselves) {
  engine::ReportRun run(report::MakeReportEngine());
  run.LoadTemplate(dir_.folder() + "reports/challan.fr3");
  run.memo = run.LocateMemo("AMT");
  EXPECT_FALSE(run.memo);
  try {
    run.memo.SetMemoText("x");
    FAIL() << "expected an error";
  } catch (const Error& error) {
    EXPECT_NE(error.description().find("\"AMT\""), std::string::npos);
  }
  try {
    run.memo = run.LocateMemo("Q_CHL");
    FAIL() << "expected an error";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errnum::kTypeMismatch);
    EXPECT_NE(error.description().find("\"Q_CHL\" is a query"), std::string::npos);
  }
  EXPECT_THROW(run.LocateQuery("Logo"), Error) << "a picture is not a query";
  EXPECT_TRUE(run.LocateDatabase("dmsdb"));
  EXPECT_FALSE(run.LocateDatabase("temp"));
}

TEST_F(EngineTest, ABrokenTemplateIsShownWithEveryProblem) {
  dir_.Write("reports/broken.fr3",
             "<report format=\"vantorel-template\" version=\"1\">\n<title height=\"5mm\">\n"
             "<text width=\"1mm\" height=\"1mm\" colour=\"red\">[Nope.x]</text></title></report>");
  rep_.SetVars();
  rep_.SuperReport("broken");
  ASSERT_EQ(platform_->messages().size(), 1u);
  const std::string message = platform_->messages()[0].text;
  EXPECT_NE(message.find("broken.fr3:3"), std::string::npos) << message;
  EXPECT_NE(message.find("\"colour\""), std::string::npos) << message;
  EXPECT_NE(message.find("Nope"), std::string::npos) << message;
  EXPECT_EQ(rep_.get_LastMsg(), "loading Report definition file");
}

TEST_F(EngineTest, AMissingPartOfTheHouseLibraryIsATemplateThatCannotBeLoaded) {
  dir_.Write("reports/house.xml", R"(<library format="vantorel-library" version="1">
  <part name="signature"><text width="50mm" height="5mm">Authorised Signatory</text></part>
</library>)");
  dir_.Write("reports/withparts.fr3",
             "<report format=\"vantorel-template\" version=\"1\">\n<library file=\"house.xml\"/>\n"
             "<title height=\"5mm\">\n<use part=\"signatur\"/></title></report>");
  rep_.SetVars();
  rep_.SuperReport("withparts");
  ASSERT_EQ(platform_->messages().size(), 1u);
  const std::string message = platform_->messages()[0].text;
  EXPECT_NE(message.find("withparts.fr3:4"), std::string::npos) << message;
  EXPECT_NE(message.find("has no part \"signatur\""), std::string::npos) << message;
  EXPECT_EQ(rep_.get_LastMsg(), "loading Report definition file");
}

TEST_F(EngineTest, ADeadDatabaseStopsPreparationAtItsConnection) {
  rep_.put_DbConnectstring(dir_.path().string() + "/missing.db");
  rep_.SetVars();
  rep_.SuperReport("challan");
  ASSERT_EQ(platform_->messages().size(), 1u);
  EXPECT_NE(platform_->messages()[0].text.find("DMSDB"), std::string::npos);
  EXPECT_EQ(rep_.get_LastMsg(), "setting logon parameters");
}

TEST_F(EngineTest, PreviewWithoutADisplaySaysWhatToDoInstead) {
  ::unsetenv("DISPLAY");
  ::unsetenv("WAYLAND_DISPLAY");
  rep_.put_RptPDF(kFalse);
  rep_.SetVars();
  try {
    rep_.SuperReport("challan");
    FAIL() << "expected an error";
  } catch (const Error& error) {
    EXPECT_NE(error.description().find("RptPDF"), std::string::npos) << error.description();
    EXPECT_NE(error.description().find("RptPrint"), std::string::npos) << error.description();
  }
}

TEST_F(EngineTest, TheDesignerIsNotThereYetAndSaysSo) {
  rep_.put_DesigbeMode(kTrue);
  rep_.SetVars();
  try {
    rep_.SuperReport("challan");
    FAIL() << "expected an error";
  } catch (const Error& error) {
    EXPECT_NE(error.description().find("designer is not available"), std::string::npos);
  }
}

TEST_F(EngineTest, AnUnwritablePdfPathFailsAndLeavesNothing) {
  const std::string folder = dir_.path().string() + "/taken.pdf";
  std::filesystem::create_directory(folder);
  rep_.put_PDFPath(folder);
  rep_.SetVars();
  EXPECT_THROW(rep_.SuperReport("challan"), Error);
  EXPECT_TRUE(std::filesystem::is_directory(folder));
}

TEST_F(EngineTest, TheLayoutIsWrittenBesideThePdfOnlyWhenAsked) {
  rep_.SetVars();
  rep_.SuperReport("challan");
  EXPECT_TRUE(std::filesystem::exists(dir_.path() / "export.pdf"));
  EXPECT_FALSE(std::filesystem::exists(dir_.path() / "export.layout")) << "not unless asked";

  CRepoter rep(report::MakeReportEngine({.layout_beside_pdf = true}));
  rep.put_ReportPath(dir_.folder() + "reports/");
  rep.put_DbConnectstring(db_);
  rep.put_RptPDF(kTrue);
  rep.put_AppPath(dir_.path().string());
  rep.SetVars();
  rep.SuperReport("challan");
  EXPECT_TRUE(std::filesystem::exists(dir_.path() / "export.pdf")) << "the PDF as ever";
  const std::string layout = ReadFile((dir_.path() / "export.layout").string());
  EXPECT_EQ(layout.rfind("document \"Delivery Challan\" pages=1\n", 0), 0u) << layout;
  EXPECT_NE(layout.find(" \"Customer: Ramesh Dattatray Patil\"\n"), std::string::npos) << layout;
}

TEST_F(EngineTest, TheLayoutShowsWhereATextBreaks) {
  const std::string words = "Received with thanks from Ramesh Dattatray Patil";
  dir_.Write("reports/wrapped.fr3",
             "<report format=\"vantorel-template\" version=\"1\" name=\"wrapped\">\n"
             "<page size=\"A5\" margin=\"10mm\"/>\n<database name=\"DMSDB\"/>\n"
             "<title height=\"30mm\"><text width=\"30mm\" height=\"25mm\">" +
                 words + "</text></title>\n</report>\n");
  CRepoter rep(report::MakeReportEngine({.layout_beside_pdf = true}));
  rep.put_ReportPath(dir_.folder() + "reports/");
  rep.put_DbConnectstring(db_);
  rep.put_RptPDF(kTrue);
  rep.put_PDFPath(dir_.path().string() + "/wrapped.PDF");
  rep.SetVars();
  rep.SuperReport("wrapped");
  const std::string layout = ReadFile(dir_.path().string() + "/wrapped.layout");
  // Each line of the text on a line of its own after "| ", together the whole text.
  std::string joined;
  int lines = 0;
  for (size_t at = layout.find("\n    | \""); at != std::string::npos;
       at = layout.find("\n    | \"", at + 1)) {
    const size_t begin = at + 8;
    joined += layout.substr(begin, layout.find("\"\n", begin) - begin);
    ++lines;
  }
  EXPECT_GE(lines, 3) << layout;
  EXPECT_EQ(joined, words) << layout;
  EXPECT_NE(layout.find(" lines=" + std::to_string(lines) + "\n"), std::string::npos) << layout;
}

TEST(LayoutPathBesideTest, TakesThePlaceOfThePdfEnding) {
  EXPECT_EQ(report::LayoutPathBeside("/srv/out/invoice-12.pdf"), "/srv/out/invoice-12.layout");
  EXPECT_EQ(report::LayoutPathBeside("C:\\App\\EXPORT.PDF"), "C:\\App\\EXPORT.layout");
  EXPECT_EQ(report::LayoutPathBeside("/srv/out/invoice"), "/srv/out/invoice.layout");
  EXPECT_EQ(report::LayoutPathBeside(".pdf"), ".pdf.layout");
}

}  // namespace
}  // namespace vantorel::testing
