// How the reader takes the characters of a template: XML's escapes, which pugixml alone would
// let pass; booleans as people type them; and rich texts, whose markup keeps its escapes while
// their [expressions] get the characters.
#include <gtest/gtest.h>

#include <string>
#include <variant>
#include <vector>

#include "report/binding/report_engine.h"
#include "report/compile/compiled_report.h"
#include "report/template/template_io.h"
#include "report/text/rich_text.h"
#include "support/test_support.h"

namespace vantorel::report {
namespace {

std::string Wrap(const std::string& body) {
  return "<report format=\"vantorel-template\" version=\"1\">\n" + body + "\n</report>\n";
}

std::vector<Problem> ReaderProblems(const std::string& xml) {
  std::vector<Problem> problems;
  ParseTemplate(xml, "t.fr3", problems);
  return problems;
}

std::vector<Problem> AllProblems(const std::string& xml) {
  try {
    CompileTemplate(xml, "t.fr3");
  } catch (const TemplateError& error) {
    return error.problems();
  }
  return {};
}

// The texts of the title band, in order.
std::vector<std::string> TitleTexts(const std::string& body) {
  const Template design = ParseTemplate(Wrap(body), "t.fr3");
  std::vector<std::string> texts;
  if (!design.title) return texts;
  for (const DesignObject& object : design.title->objects) {
    if (const auto* text = std::get_if<TextObject>(&object)) texts.push_back(text->text);
  }
  return texts;
}

// What the texts of a one-band template print: each text's characters after the fill and, for a
// rich text, the rich-text reader.
std::vector<std::string> PrintedRichTexts(const std::string& body) {
  const testing::TempDir dir;
  RenderRequest request;
  request.template_path = dir.Write("t.fr3", Wrap(body));
  const Rendered rendered = RenderTemplate(request);
  std::vector<std::string> shown;
  for (const Item& item : rendered.document.pages.at(0).items) {
    if (const auto* text = std::get_if<TextItem>(&item)) {
      const bool rich = rendered.document.styles.at(text->style).rich;
      shown.push_back(rich ? text::ParseRichText(text->text).text : text->text);
    }
  }
  return shown;
}

TEST(TemplateEscapes, ABareAmpersandIsAProblemWithItsLine) {
  const auto problems = ReaderProblems(Wrap(R"(<title height="10mm">
  <text width="30mm" height="5mm">Tom & Jerry</text>
  <text width="30mm" height="5mm" print-when="[Page] = 1 & true">x</text>
  <text width="30mm" height="5mm" print-when="[Page] < 2">x</text>
</title>)"));
  ASSERT_EQ(problems.size(), 3u) << FormatProblems(problems);
  EXPECT_EQ(problems[0].line, 3);
  EXPECT_EQ(problems[0].message, "\"&\" must be written \"&amp;\"");
  EXPECT_EQ(problems[1].line, 4) << "in an attribute too";
  EXPECT_EQ(problems[1].message, "\"&\" must be written \"&amp;\"");
  EXPECT_EQ(problems[2].line, 5);
  EXPECT_EQ(problems[2].message, "\"<\" in an attribute must be written \"&lt;\"");
}

TEST(TemplateEscapes, ReferencesXmlDoesNotKnowAreProblems) {
  const auto problems = ReaderProblems(Wrap(R"(<title height="10mm">
  <text width="30mm" height="5mm">a&nbsp;b R&D; &#0; &#xD800;</text>
</title>)"));
  ASSERT_EQ(problems.size(), 4u) << FormatProblems(problems);
  EXPECT_EQ(problems[0].message, "\"&nbsp;\" is not an XML entity");
  EXPECT_NE(problems[0].hint.find("&#160;"), std::string::npos);
  EXPECT_EQ(problems[1].message, "\"&D;\" is not an XML entity");
  EXPECT_EQ(problems[2].message, "\"&#0;\" is not a character XML allows");
  EXPECT_EQ(problems[3].message, "\"&#xD800;\" is not a character XML allows");
  for (const Problem& problem : problems) EXPECT_EQ(problem.line, 3);
}

TEST(TemplateEscapes, WellFormedTemplatesRaiseNoAlarm) {
  const std::string xml = Wrap(R"(<!-- Tom & Jerry: comments may hold anything < & > -->
<?editor note="a & b"?>
<database name="DMSDB"/>
<query name="Q"><sql><![CDATA[select 1 as a where 1 < 2 && 'x' <> 'y']]></sql></query>
<query name="R"><sql>select 2 as b where 1 &lt; 2 and 'a&amp;b' &lt;&gt; '&#65;&#x42;'</sql></query>
<title height="10mm" print-when="[Page] &lt; 2 &amp; true">
  <text width="30mm" height="5mm">&quot;R&amp;D&quot; &apos;x&apos; &gt; &#8377;&#x20B9;</text>
  <text width="30mm" height="5mm"><![CDATA[Tom & Jerry <3]]></text>
</title>)");
  EXPECT_TRUE(ReaderProblems(xml).empty()) << FormatProblems(ReaderProblems(xml));
  EXPECT_EQ(TitleTexts(R"(<title height="10mm">
  <text width="30mm" height="5mm">&quot;R&amp;D&quot; &apos;x&apos; &gt; &#8377;&#x20B9;</text>
  <text width="30mm" height="5mm"><![CDATA[Tom & Jerry <3]]></text>
</title>)"),
            (std::vector<std::string>{"\"R&D\" 'x' > ₹₹", "Tom & Jerry <3"}));
}

TEST(TemplateBooleans, AreReadWithoutRegardToCase) {
  const Template design = ParseTemplate(Wrap(R"(<title height="10mm" stretch="FALSE">
  <text width="30mm" height="5mm" bold="True" italic="YES" underline="No" shrink="TRUE">x</text>
</title>)"),
                                        "t.fr3");
  ASSERT_TRUE(design.title);
  EXPECT_FALSE(design.title->stretch);
  const auto& text = std::get<TextObject>(design.title->objects.at(0));
  EXPECT_EQ(text.style.bold, true);
  EXPECT_EQ(text.style.italic, true);
  EXPECT_EQ(text.style.underline, false);
  EXPECT_TRUE(text.shrink);

  const auto problems = ReaderProblems(Wrap(R"(<title height="10mm">
  <text width="30mm" height="5mm" bold="Truely">x</text>
</title>)"));
  ASSERT_EQ(problems.size(), 1u);
  EXPECT_EQ(problems[0].message, "\"bold\" must be true or false, not \"Truely\"");
}

TEST(TemplateRichText, ExpressionsGetTheCharactersMarkupKeepsItsEscapes) {
  // In child elements, "&amp;" is the operator & of the expression.
  const std::string body = R"(<title height="20mm">
  <text width="80mm" height="5mm" rich="true">Total: <b>[IIF(1 &lt; 2, "a" &amp; "b", "")]</b> &amp; more</text>
</title>)";
  EXPECT_TRUE(AllProblems(Wrap(body)).empty()) << FormatProblems(AllProblems(Wrap(body)));
  EXPECT_EQ(
      TitleTexts(body),
      (std::vector<std::string>{"Total: <b>[IIF(1 < 2, \"a\" & \"b\", \"\")]</b> &amp; more"}));
  EXPECT_EQ(PrintedRichTexts(body), (std::vector<std::string>{"Total: ab & more"}));
}

TEST(TemplateRichText, TextThatIsNotMarkupPrintsAsItself) {
  const std::string body = R"(<style name="rich" rich="true"/>
<style name="cell" based-on="rich" size="9"/>
<title height="30mm">
  <text width="80mm" height="5mm" rich="true">a &lt;b&gt; c &amp;lt; R&amp;D <i>x &lt; y</i></text>
  <text top="5mm" width="80mm" height="5mm" style="cell">&lt;u&gt;[IIF(1 &lt; 2, "&lt;i&gt;", "")]</text>
  <text top="10mm" width="80mm" height="5mm" rich="true"><![CDATA[<b>[1 & 2]</b> Tom & Jerry < 3 &amp; 4]]></text>
  <text top="15mm" width="80mm" height="5mm">a &lt;b&gt; &amp;lt;</text>
</title>)";
  EXPECT_EQ(TitleTexts(body),
            (std::vector<std::string>{
                "a &lt;b&gt; c &amp;lt; R&amp;D <i>x &lt; y</i>",
                // The style makes it rich; the expression's text becomes markup when printed.
                "&lt;u&gt;[IIF(1 < 2, \"<i>\", \"\")]",
                // CDATA is markup as written.
                "<b>[1 & 2]</b> Tom & Jerry < 3 &amp; 4",
                // A plain text gets the characters.
                "a <b> &lt;"}));
  EXPECT_EQ(PrintedRichTexts(body),
            (std::vector<std::string>{"a <b> c &lt; R&D x < y", "<u>", "12 Tom & Jerry < 3 & 4",
                                      "a <b> &lt;"}));
}

TEST(TemplateRichText, LineNumbersAndWhitespaceSurviveTheRawReading) {
  const std::string body =
      "<title height=\"10mm\">\r\n"
      "  <text width=\"80mm\" height=\"5mm\" rich=\"true\">\r\n"
      "    one<br/>two\r\n    <b>three</b> <i>four</i><!-- & -->\r\n"
      "  </text>\r\n"
      "</title>";
  EXPECT_EQ(TitleTexts(body),
            (std::vector<std::string>{"one<br/>two\n    <b>three</b> <i>four</i>"}));
  const Template design = ParseTemplate(Wrap(body), "t.fr3");
  EXPECT_EQ(std::get<TextObject>(design.title->objects.at(0)).line, 3);
}

}  // namespace
}  // namespace vantorel::report
