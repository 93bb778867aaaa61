// Reading and compiling templates: every problem at once with its line and a hint; the format's
// version; lengths and colours; the documented example stays valid.
#include <gtest/gtest.h>

#include <regex>

#include "report/compile/compiled_report.h"
#include "report/template/template_io.h"
#include "support/test_support.h"

namespace vantorel::report {
namespace {

std::vector<Problem> ProblemsOf(const std::string& xml) {
  try {
    CompileTemplate(xml, "t.fr3");
  } catch (const TemplateError& error) {
    return error.problems();
  }
  return {};
}

std::string Wrap(const std::string& body) {
  return "<report format=\"vantorel-template\" version=\"1\">\n" + body + "\n</report>\n";
}

TEST(TemplateReader, ReportsEveryProblemWithItsLineAndAHint) {
  const auto problems = ProblemsOf(Wrap(R"(<page size="A4" margin="10mm"/>
<database name="DMSDB"/>
<title height="20mm">
  <text width="30mm" height="5mm" colour="red">x</text>
  <text width="30mm" height="5mm" size="-2">x</text>
  <barcode width="20mm" height="20mm" type="qrcode" data="x"/>
  <picture height="5mm" source="a.png"/>
</title>
<sumary height="5mm"/>)"));
  // The reader's problems and the compiler's, together, in the order of the file.
  ASSERT_EQ(problems.size(), 5u) << FormatProblems(problems);
  EXPECT_EQ(problems[0].line, 5);
  EXPECT_NE(problems[0].message.find("\"colour\""), std::string::npos);
  EXPECT_NE(problems[0].hint.find("\"color\""), std::string::npos);
  EXPECT_EQ(problems[1].line, 6);
  EXPECT_EQ(problems[2].line, 7);  // the barcode type
  EXPECT_NE(problems[2].hint.find("qr"), std::string::npos);
  EXPECT_EQ(problems[3].line, 8);  // the picture has no width
  EXPECT_EQ(problems[4].line, 10);
  EXPECT_NE(problems[4].hint.find("\"summary\""), std::string::npos);
}

TEST(TemplateReader, UnknownVersionIsAClearError) {
  const auto problems =
      ProblemsOf("<report format=\"vantorel-template\" version=\"2\"><page/></report>");
  ASSERT_EQ(problems.size(), 1u);
  EXPECT_NE(problems[0].message.find("version \"2\""), std::string::npos);
  EXPECT_NE(problems[0].hint.find("newer"), std::string::npos);
}

TEST(TemplateReader, ForeignFilesAreRefused) {
  EXPECT_EQ(ProblemsOf("<report><page/></report>").size(), 1u);
  EXPECT_EQ(ProblemsOf("<html/>").size(), 1u);
  const auto broken = ProblemsOf("<report format=\"vantorel-template\" version=\"1\">\n<title>");
  ASSERT_EQ(broken.size(), 1u);
  EXPECT_NE(broken[0].message.find("not well-formed"), std::string::npos);
  EXPECT_EQ(broken[0].line, 2);
}

TEST(TemplateCompiler, ExpressionProblemsNameTheirPlace) {
  const auto problems = ProblemsOf(Wrap(R"(<database name="DMSDB"/>
<query name="Q"><sql>select 1 as a</sql></query>
<title height="10mm">
  <text width="30mm" height="5mm">[Q.a + ]</text>
  <text width="30mm" height="5mm">[Nope.a]</text>
  <text width="30mm" height="5mm" style="missing">x</text>
</title>)"));
  ASSERT_EQ(problems.size(), 3u) << FormatProblems(problems);
  EXPECT_EQ(problems[0].line, 5);
  EXPECT_EQ(problems[1].line, 6);
  EXPECT_NE(problems[1].hint.find("Q"), std::string::npos) << "lists the queries there are";
  EXPECT_EQ(problems[2].line, 7);
}

TEST(TemplateCompiler, NamesAreUniqueWithoutRegardToCase) {
  const auto problems = ProblemsOf(Wrap(R"(<database name="DMSDB"/>
<query name="Q_INV"><sql>select 1</sql></query>
<title height="10mm"><text name="q_inv" width="30mm" height="5mm">x</text></title>)"));
  ASSERT_EQ(problems.size(), 1u);
  EXPECT_NE(problems[0].message.find("used twice"), std::string::npos);
}

TEST(TemplateCompiler, ComponentsAreFoundByNameInAnyCase) {
  const auto report = Compile(ParseTemplate(Wrap(R"(<database name="DMSDB"/>
<query name="Q_INV"><sql>select 1</sql><param name="id" type="integer"/></query>
<title height="10mm"><text name="WAMT" width="30mm" height="5mm">x</text>
  <picture name="Logo" width="10mm" height="10mm" source="x.png"/></title>)"),
                                            "t.fr3"),
                              "t.fr3");
  ASSERT_NE(report->Find("wamt"), nullptr);
  EXPECT_EQ(report->Find("wamt")->kind, ComponentEntry::Kind::kMemo);
  EXPECT_EQ(report->Find("q_inv")->kind, ComponentEntry::Kind::kQuery);
  EXPECT_EQ(report->Find("dmsdb")->kind, ComponentEntry::Kind::kDatabase);
  EXPECT_EQ(report->Find("LOGO")->kind, ComponentEntry::Kind::kOther);
  EXPECT_EQ(report->Find("temp"), nullptr);
}

TEST(TemplateUnits, LengthsAndColours) {
  EXPECT_NEAR(*ParseLength("10mm"), 28.3465, 1e-3);
  EXPECT_NEAR(*ParseLength("1cm"), 28.3465, 1e-3);
  EXPECT_NEAR(*ParseLength("1in"), 72, 1e-3);
  EXPECT_NEAR(*ParseLength("12pt"), 12, 1e-3);
  EXPECT_NEAR(*ParseLength("10"), 28.3465, 1e-3) << "bare numbers are millimetres";
  EXPECT_FALSE(ParseLength("ten mm"));
  EXPECT_FALSE(ParseLength("1e9mm"));
  EXPECT_EQ(*ParseColor("#8b1a1a"), (Color{0x8b, 0x1a, 0x1a, 255}));
  EXPECT_EQ(*ParseColor("#fff"), Color::White());
  EXPECT_EQ(*ParseColor("#00000080"), (Color{0, 0, 0, 0x80}));
  EXPECT_FALSE(ParseColor("none")->visible());
  EXPECT_FALSE(ParseColor("#12345"));
}

TEST(TemplateFormat, TheDocumentedExampleIsValid) {
  const std::string doc =
      testing::ReadFile(std::string(VANTOREL_SOURCE_DIR) + "/docs/template-format.md");
  const std::regex block(R"(```xml\n(<\?xml[\s\S]*?</report>)\n```)");
  std::smatch match;
  ASSERT_TRUE(std::regex_search(doc, match, block));
  EXPECT_NO_THROW(Compile(ParseTemplate(match[1].str(), "example.fr3"), "example.fr3"));
}

}  // namespace
}  // namespace vantorel::report
