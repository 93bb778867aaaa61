// The house rules: texts that can wrap in boxes that cannot grow, and amount and quantity boxes
// too narrow for the widest value their format writes.
#include "report/compile/house_rules.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "report/text/text_layout.h"

namespace vantorel::report {
namespace {

// A template whose title holds "objects", the first of them on line 5.
std::vector<Problem> Check(const std::string& objects, const HouseRuleOptions& options = {},
                           const std::string& band = "<title height=\"40mm\">") {
  const std::string xml =
      "<report format=\"vantorel-template\" version=\"1\">\n"
      "<database name=\"DMSDB\"/>\n"
      "<query name=\"Q\"><sql>select 1</sql></query>\n" +
      band + "\n" + objects + "\n</" + band.substr(1, band.find(' ') - 1) + ">\n</report>\n";
  return CheckHouseRules(*CompileTemplate(xml, "t.fr3"), options);
}

std::vector<int> Lines(const std::vector<Problem>& problems) {
  std::vector<int> lines;
  for (const Problem& problem : problems) lines.push_back(problem.line);
  return lines;
}

// The width in millimetres a text box needs for "text" on one line, with the default style
// at "size" points.
double NeededMm(const std::string& text, float size) {
  TextStyle style;
  style.size = size;
  return (text::MeasureText(text, style, 0).width + style.padding.left + style.padding.right) /
         kPointsPerMm;
}

std::string Mm(double mm) { return std::to_string(mm) + "mm"; }

constexpr const char* kRow = "<data name=\"Rows\" query=\"Q\" height=\"10mm\">";

TEST(HouseRulesTest, WrappingFieldInABoxThatCannotGrowIsReported) {
  const std::vector<Problem> problems = Check(
      "<text name=\"Party\" width=\"40mm\" height=\"5mm\">[Q.name]</text>\n"
      "<text top=\"5mm\" width=\"40mm\" height=\"5mm\" stretch=\"band\">[Q.city], [Q.pin]</text>",
      {}, kRow);
  ASSERT_EQ(Lines(problems), (std::vector<int>{5, 6}));
  EXPECT_EQ(problems[0].file, "t.fr3");
  EXPECT_EQ(problems[0].message,
            "text \"Party\" can wrap but its box cannot grow: a long value is cut off");
  EXPECT_EQ(problems[0].hint,
            "give it stretch=\"grow\" (stretch=\"cell\" in a table row), or wrap=\"false\" to keep "
            "it on one line");
  EXPECT_EQ(problems[1].message,
            "a text can wrap but its box cannot grow: a long value is cut off");
}

TEST(HouseRulesTest, AFieldInAFormsFixedBlockIsLeftToTheFill) {
  const std::string field = "<text width=\"40mm\" height=\"5mm\">[Q.name]</text>";
  EXPECT_TRUE(Check(field).empty()) << "a title";
  EXPECT_TRUE(Check(field, {}, "<data name=\"Letter\" query=\"Q\" height=\"120mm\">").empty())
      << "a data band that prints a page per record";
  EXPECT_EQ(Check(field, {}, kRow).size(), 1u) << "a table row";
}

TEST(HouseRulesTest, TextsThatGrowOrDoNotWrapAreNotReported) {
  EXPECT_TRUE(Check("<text width=\"40mm\" height=\"5mm\" stretch=\"grow\">[Q.name]</text>\n"
                    "<text width=\"40mm\" height=\"5mm\" stretch=\"cell\">[Q.name]</text>\n"
                    "<text width=\"40mm\" height=\"5mm\" wrap=\"false\">[Q.name]</text>")
                  .empty());
}

TEST(HouseRulesTest, BandThatDoesNotStretchKeepsItsTextsFromGrowing) {
  const std::vector<Problem> problems =
      Check("<text width=\"40mm\" height=\"5mm\" stretch=\"grow\">[Q.name]</text>", {},
            "<data name=\"Rows\" query=\"Q\" height=\"10mm\" stretch=\"false\">");
  ASSERT_EQ(Lines(problems), std::vector<int>{5});
  EXPECT_NE(problems[0].hint.find("its band has stretch=\"false\""), std::string::npos)
      << problems[0].hint;
}

TEST(HouseRulesTest, FixedTextsAreReportedOnlyWhenTheyDoNotFit) {
  const std::vector<Problem> problems = Check(
      "<text width=\"40mm\" height=\"5mm\">Tax Invoice</text>\n"
      "<text width=\"20mm\" height=\"5mm\">Received with thanks from</text>\n"
      "<text width=\"40mm\" height=\"5mm\">Page [Page] of [TotalPages]</text>\n"
      "<text width=\"12mm\" height=\"5mm\">Page [Page] of [TotalPages]</text>");
  ASSERT_EQ(Lines(problems), (std::vector<int>{6, 8}));
  EXPECT_EQ(problems[0].message.rfind("a text does not fit its box at its longest: needs ", 0), 0u)
      << problems[0].message;
  EXPECT_NE(problems[1].hint.find("\"Page 999 of 999\""), std::string::npos) << problems[1].hint;
}

TEST(HouseRulesTest, TextsSetAtRunTimeMayRunLong) {
  const std::string words = "<text name=\"WORDS\" width=\"150mm\" height=\"5mm\">x</text>";
  EXPECT_TRUE(Check(words).empty());
  const std::vector<Problem> problems = Check(words, {.run_time_texts = {"words"}});
  ASSERT_EQ(Lines(problems), std::vector<int>{5});
  EXPECT_EQ(problems[0].message,
            "text \"WORDS\" can wrap but its box cannot grow: a long text set at run time is cut "
            "off");
}

TEST(HouseRulesTest, AmountBoxesHoldNineCroreWithTheirFontAndPadding) {
  const double needed = NeededMm("9,99,99,999.99", 9);
  const std::string narrow = Mm(needed - 0.3), wide = Mm(needed + 0.3);
  const std::vector<Problem> problems =
      Check("<text name=\"Amt\" width=\"" + narrow +
            "\" height=\"5mm\" size=\"9\" wrap=\"false\" "
            "format=\"#,##,##0.00\">[Q.amt]</text>\n"
            "<text width=\"" +
            wide +
            "\" height=\"5mm\" size=\"9\" wrap=\"false\" "
            "format=\"#,##,##0.00\">[Q.amt]</text>\n"
            "<text width=\"" +
            narrow +
            "\" height=\"5mm\" size=\"9\" stretch=\"grow\">"
            "[Format(Q.amt, \"#,##,##0.00\")]</text>\n"
            "<text width=\"" +
            wide +
            "\" height=\"5mm\" size=\"8\" padding=\"0\" wrap=\"false\" "
            "format=\"#,##,##0.00\">[Q.amt]</text>");
  ASSERT_EQ(Lines(problems), (std::vector<int>{5, 7}));
  EXPECT_EQ(problems[0].message.rfind("the amount in text \"Amt\" (\"#,##,##0.00\") is too narrow "
                                      "for 9,99,99,999.99: needs ",
                                      0),
            0u)
      << problems[0].message;
  EXPECT_NE(problems[1].message.find("too narrow for 9,99,99,999.99"), std::string::npos)
      << "Format() in the text counts too: " << problems[1].message;
}

TEST(HouseRulesTest, QuantityBoxesHoldNineThousand) {
  const double needed = NeededMm("9,999 nos", 8);
  const std::vector<Problem> problems = Check(
      "<text width=\"" + Mm(needed - 0.3) +
      "\" height=\"5mm\" size=\"8\" wrap=\"false\">[Format(Q.qty, \"#,##0\")] nos</text>\n"
      "<text width=\"" +
      Mm(needed + 0.3) +
      "\" height=\"5mm\" size=\"8\" wrap=\"false\">[Format(Q.qty, \"#,##0\")] nos</text>\n"
      "<text width=\"" +
      Mm(needed - 0.3) +
      "\" height=\"5mm\" size=\"8\" wrap=\"false\">[FormatDate(Q.dt, \"dd-mm-yy\")] nos</text>");
  ASSERT_EQ(Lines(problems), std::vector<int>{5});
  EXPECT_NE(problems[0].message.find("the quantity in a text (\"#,##0\") is too narrow for 9,999"),
            std::string::npos)
      << problems[0].message;
}

TEST(HouseRulesTest, TwoDecimalsWithoutGroupingAreARateOfAHundredPerCent) {
  const double needed = NeededMm("100.00%", 8);
  const std::vector<Problem> problems =
      Check("<text width=\"" + Mm(needed - 0.3) +
            "\" height=\"5mm\" size=\"8\" wrap=\"false\">[Format(Q.rate, \"0.00\")]%</text>\n"
            "<text width=\"" +
            Mm(needed + 0.3) +
            "\" height=\"5mm\" size=\"8\" wrap=\"false\">[Format(Q.rate, \"0.00\")]%</text>");
  ASSERT_EQ(Lines(problems), std::vector<int>{5});
  EXPECT_NE(problems[0].message.find("the rate in a text (\"0.00\") is too narrow for 100.00"),
            std::string::npos)
      << problems[0].message;
}

TEST(HouseRulesTest, DatesAtTheirLongestAreMeasured) {
  const std::vector<Problem> problems =
      Check("<text width=\"" + Mm(NeededMm("25 September 2024", 10) - 0.5) +
            "\" height=\"5mm\" format=\"dd mmmm yyyy\">[Q.dt]</text>\n"
            "<text width=\"" +
            Mm(NeededMm("25 September 2024", 10) + 0.5) +
            "\" height=\"5mm\" format=\"dd mmmm yyyy\">[Q.dt]</text>");
  EXPECT_EQ(Lines(problems), std::vector<int>{5});
}

}  // namespace
}  // namespace vantorel::report
