// The house library: parts placed with their arguments, styles shared and overridden, and every
// way a use can go wrong reported with its file and line.
#include "report/template/library.h"

#include <gtest/gtest.h>

#include "report/compile/compiled_report.h"
#include "report/template/template_io.h"
#include "support/test_support.h"

namespace vantorel::report {
namespace {

using testing::TempDir;

constexpr const char* kLibrary = R"(<?xml version="1.0" encoding="UTF-8"?>
<library format="vantorel-library" version="1">
  <style name="base" font="Liberation Sans" size="8"/>
  <style name="big" based-on="base" size="14"/>
  <part name="stamp">
    <param name="width" default="50mm"/>
    <param name="who"/>
    <query name="firm">
      <sql>select 'Shivneri Motors' as name</sql>
    </query>
    <text style="big" left="1mm" top="2mm" width="${width-10mm}" height="6mm">For ${who}: [firm.name]</text>
    <line x1="0" y1="9mm" x2="${width}" y2="9mm"/>
  </part>
  <part name="outer">
    <use part="stamp" left="5mm" who="outer"/>
  </part>
  <part name="ping"><use part="pong"/></part>
  <part name="pong"><use part="ping"/></part>
  <part name="broken">
    <text left="0" top="0" width="${missing}" height="5mm">x</text>
  </part>
</library>
)";

std::string Template(const std::string& body, const std::string& extra = {}) {
  return R"(<?xml version="1.0" encoding="UTF-8"?>
<report format="vantorel-template" version="1">
  <library file="house.xml"/>
  <database name="DMSDB"/>
)" + extra +
         "  <title height=\"30mm\">\n" + body + "\n  </title>\n</report>\n";
}

struct Expanded {
  report::Template design;
  std::vector<Problem> problems;
};

Expanded Expand(const TempDir& dir, const std::string& xml) {
  dir.Write("house.xml", kLibrary);
  const std::string file = dir.Write("t.fr3", xml);
  Expanded out;
  out.design = ExpandParts(ParseTemplate(xml, file, out.problems), file, out.problems);
  return out;
}

std::string Messages(const std::vector<Problem>& problems) { return FormatProblems(problems); }

TEST(HouseLibrary, AUsePlacesThePartsObjectsWithItsArguments) {
  TempDir dir;
  const Expanded e = Expand(dir, Template(R"(<use part="stamp" left="10mm" top="4mm" width="80mm"
         who="Shivneri" print-when="Page = 1"/>)"));
  ASSERT_TRUE(e.problems.empty()) << Messages(e.problems);
  ASSERT_EQ(e.design.title->objects.size(), 2u);
  const auto& text = std::get<TextObject>(e.design.title->objects[0]);
  EXPECT_EQ(text.text, "For Shivneri: [firm.name]");
  EXPECT_NEAR(text.box.x, Mm(11), 0.01);
  EXPECT_NEAR(text.box.y, Mm(6), 0.01);
  EXPECT_NEAR(text.box.width, Mm(70), 0.01);  // ${width-10mm}
  EXPECT_EQ(text.print_when, "Page = 1");
  const auto& line = std::get<LineObject>(e.design.title->objects[1]);
  EXPECT_NEAR(line.to.x, Mm(90), 0.01);
  EXPECT_NEAR(line.from.y, Mm(13), 0.01);
  ASSERT_EQ(e.design.queries.size(), 1u);
  EXPECT_EQ(e.design.queries[0].name, "firm");
  // The objects say they stand where the <use> does, so the compiler's messages point there.
  EXPECT_EQ(text.line, 6);
}

TEST(HouseLibrary, ATemplateCompilesWithTheLibrarysStylesAndItsOwnOverride) {
  TempDir dir;
  dir.Write("house.xml", kLibrary);
  const std::string xml = Template(R"(<use part="stamp" who="x"/>)",
                                   "  <style name=\"big\" based-on=\"base\" size=\"20\"/>\n");
  const std::string file = dir.Write("t.fr3", xml);
  const auto report = CompileTemplateFile(file);
  ASSERT_TRUE(report);
  bool found = false;
  for (const TextStyle& style : report->styles) found |= style.size == 20;
  EXPECT_TRUE(found) << "the template's own \"big\" wins over the library's";
}

TEST(HouseLibrary, PartsMayUseParts) {
  TempDir dir;
  const Expanded e = Expand(dir, Template(R"(<use part="outer" top="1mm"/>)"));
  ASSERT_TRUE(e.problems.empty()) << Messages(e.problems);
  ASSERT_EQ(e.design.title->objects.size(), 2u);
  EXPECT_NEAR(std::get<TextObject>(e.design.title->objects[0]).box.x, Mm(6), 0.01);
  EXPECT_NEAR(std::get<TextObject>(e.design.title->objects[0]).box.y, Mm(3), 0.01);
}

void ExpectProblem(const std::vector<Problem>& problems, const std::string& file_end, int line,
                   const std::string& words) {
  for (const Problem& problem : problems) {
    if (problem.message.find(words) != std::string::npos) {
      EXPECT_TRUE(problem.file.ends_with(file_end)) << problem.file;
      EXPECT_EQ(problem.line, line) << problem.message;
      return;
    }
  }
  ADD_FAILURE() << "no problem says \"" << words << "\": " << Messages(problems);
}

TEST(HouseLibrary, AMissingLibraryNamesTheTemplateAndItsLine) {
  TempDir dir;
  const std::string xml = Template(R"(<use part="stamp" who="x"/>)");
  const std::string file = dir.Write("t.fr3", xml);  // no house.xml beside it
  std::vector<Problem> problems;
  ExpandParts(ParseTemplate(xml, file, problems), file, problems);
  ExpectProblem(problems, "t.fr3", 3, "the house library \"house.xml\" cannot be read");
  EXPECT_THROW(CompileTemplateFile(file), TemplateError);
}

TEST(HouseLibrary, AMissingPartAWrongParameterAndAMissingOneAreReportedAtTheUse) {
  TempDir dir;
  const Expanded e = Expand(dir, Template(R"(<use part="stomp"/>
    <use part="stamp" who="x" colour="red"/>
    <use part="stamp"/>)"));
  ExpectProblem(e.problems, "t.fr3", 6, "has no part \"stomp\"");
  ExpectProblem(e.problems, "t.fr3", 7, "has no parameter \"colour\"");
  ExpectProblem(e.problems, "t.fr3", 8, "needs the parameter \"who\"");
}

TEST(HouseLibrary, ACycleOfUsesIsReportedNotFollowed) {
  TempDir dir;
  const Expanded e = Expand(dir, Template(R"(<use part="ping"/>)"));
  ExpectProblem(e.problems, "house.xml", 18, "parts use each other in a cycle: ping → pong → ping");
}

TEST(HouseLibrary, AnUndeclaredParameterInAPartNamesTheLibrarysLine) {
  TempDir dir;
  const Expanded e = Expand(dir, Template(R"(<use part="broken"/>)"));
  ExpectProblem(e.problems, "house.xml", 20, "uses ${missing} but declares no such parameter");
}

TEST(HouseLibrary, AQueryThePartBringsCannotAlsoBeTheTemplates) {
  TempDir dir;
  const Expanded e =
      Expand(dir, Template(R"(<use part="stamp" who="x"/>)",
                           "  <query name=\"FIRM\"><sql>select 1 as name</sql></query>\n"));
  ExpectProblem(e.problems, "t.fr3", 5, "the template defines the query \"firm\"");
}

TEST(HouseLibrary, ALibraryOutsideTheTemplateFolderIsRefused) {
  std::vector<Problem> problems;
  ParseTemplate(R"(<report format="vantorel-template" version="1">
<library file="../etc/house.xml"/></report>)",
                "t.fr3", problems);
  ASSERT_EQ(problems.size(), 1u);
  EXPECT_NE(problems[0].message.find("must be a file name, without a folder"), std::string::npos);
}

TEST(HouseLibrary, UsesWithoutALibraryAreAProblem) {
  std::vector<Problem> problems;
  const report::Template design = ParseTemplate(R"(<report format="vantorel-template" version="1">
<title height="5mm"><use part="x"/></title></report>)",
                                                "t.fr3", problems);
  ExpandParts(design, "t.fr3", problems);
  ASSERT_EQ(problems.size(), 1u);
  EXPECT_NE(problems[0].message.find("names no library"), std::string::npos);
}

TEST(HouseLibrary, AUseIsWrittenBackAsItWasWritten) {
  const std::string xml = R"(<?xml version="1.0" encoding="UTF-8"?>
<report format="vantorel-template" version="1">
  <library file="house.xml"/>

  <title height="30mm">
    <use part="stamp" who="Shivneri" left="10mm" width="80mm" top="4mm"/>
  </title>
</report>
)";
  report::Template design = ParseTemplate(xml, "t.fr3");
  EXPECT_EQ(WriteTemplate(design), xml);
  auto& use = std::get<PartUse>(design.title->objects.at(0));
  use.box.y = Mm(6);
  use.arguments[0].second = "Baramati";
  std::string edited = xml;
  edited.replace(edited.find("who=\"Shivneri\""), 14, "who=\"Baramati\"");
  edited.replace(edited.find("top=\"4mm\""), 9, "top=\"6mm\"");
  EXPECT_EQ(WriteTemplate(design), edited);
}

TEST(HouseLibrary, TheLibraryHeaderIsChecked) {
  std::vector<Problem> problems;
  ParseLibrary(R"(<library format="something-else" version="1"/>)", "h.xml", problems);
  ASSERT_EQ(problems.size(), 1u);
  EXPECT_NE(problems[0].message.find("not a Vantorel house library"), std::string::npos);
  problems.clear();
  ParseLibrary(R"(<library format="vantorel-library" version="1">
  <style name="s"/><style name="s"/>
  <part name="a"/><part name="a"/>
  <part name="b"><param name="left"/></part>
</library>)",
               "h.xml", problems);
  ExpectProblem(problems, "h.xml", 2, "style \"s\" is defined twice");
  ExpectProblem(problems, "h.xml", 3, "part \"a\" is defined twice");
  ExpectProblem(problems, "h.xml", 4, "a part cannot have a parameter called \"left\"");
}

TEST(HouseLibrary, ALibraryStyleMakesATextRichInTheTemplateAndInItsParts) {
  TempDir dir;
  dir.Write("house.xml", R"(<library format="vantorel-library" version="1">
  <style name="rbox" rich="true"/>
  <style name="rsmall" based-on="rbox"/>
  <part name="note"><text style="rsmall" width="50mm" height="5mm">R&amp;D <b>[firm.x]</b></text></part>
</library>)");
  const std::string xml = R"(<?xml version="1.0" encoding="UTF-8"?>
<report format="vantorel-template" version="1">
  <library file="house.xml"/>
  <title height="30mm">
    <text style="rsmall" width="50mm" height="5mm">Total: <b>[Q.x]</b> R&amp;D</text>
    <use part="note"/>
  </title>
</report>
)";
  const std::string file = dir.Write("t.fr3", xml);
  std::vector<Problem> problems;
  const report::Template design = ParseTemplate(xml, file, problems);
  ASSERT_TRUE(problems.empty()) << Messages(problems);
  // Read as rich: the markup stays markup, the reference stays as written for the markup reader.
  EXPECT_EQ(std::get<TextObject>(design.title->objects[0]).text, "Total: <b>[Q.x]</b> R&amp;D");
  EXPECT_EQ(WriteTemplate(design), xml);
  const report::Template expanded = ExpandParts(design, file, problems);
  ASSERT_TRUE(problems.empty()) << Messages(problems);
  EXPECT_EQ(std::get<TextObject>(expanded.title->objects[1]).text, "R&amp;D <b>[firm.x]</b>");
}

}  // namespace
}  // namespace vantorel::report
