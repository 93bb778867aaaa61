// Texts that do not fit boxes that cannot grow: the fill lists them in the prepared document with
// their template line, band, page and the room they need.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "report/fill/template_on_sqlite.h"
#include "report/text/text_layout.h"

namespace vantorel::report {
namespace {

constexpr const char* kLongName =
    "Shree Ganesh Automobiles and Spares, Survey No. 58/2, Pune-Solapur Road, Hadapsar";

class OverflowTest : public TemplateOnSqlite {
 protected:
  OverflowTest()
      : TemplateOnSqlite(
            "create table party (n integer primary key, name text);"
            "insert into party values (1, 'Ramesh Patil'), (2, '" +
            std::string(kLongName) + "');") {}
};

TEST_F(OverflowTest, TextsThatFitOrGrowAreNotListed) {
  const Document document = Render(R"t(
    <query name="Q"><sql>select * from party order by n</sql></query>
    <data name="Rows" query="Q" height="6mm">
      <text width="100mm" height="6mm">[Q.n]</text>
      <text left="10mm" width="40mm" height="6mm" stretch="grow">[Q.name]</text>
      <text left="50mm" width="40mm" height="6mm" stretch="cell">[Q.name]</text>
    </data>
  )t");
  EXPECT_TRUE(document.overflows.empty());
}

TEST_F(OverflowTest, TextInAFixedBoxIsListedWithWhereAndHowMuch) {
  const Document document = Render(R"t(
    <query name="Q"><sql>select * from party order by n</sql></query>
    <data name="Rows" query="Q" height="6mm">
      <text name="PartyName" width="40mm" height="6mm" size="9">[Q.name]</text>
    </data>
  )t");
  ASSERT_EQ(document.overflows.size(), 1u) << "only the long name";
  const Overflow& overflow = document.overflows[0];
  EXPECT_EQ(overflow.object, "PartyName");
  EXPECT_EQ(overflow.line, LineOf("<text name=\"PartyName\""));
  EXPECT_EQ(overflow.band, "data band \"Rows\"");
  EXPECT_EQ(overflow.page, 1u);
  EXPECT_EQ(overflow.text, kLongName);
  EXPECT_FALSE(overflow.across);
  EXPECT_FLOAT_EQ(overflow.available, static_cast<float>(Mm(6)));
  TextStyle style;
  style.size = 9;
  const float width = static_cast<float>(Mm(40)) - style.padding.left - style.padding.right;
  EXPECT_FLOAT_EQ(overflow.needed, text::MeasureText(kLongName, style, width).height +
                                       style.padding.top + style.padding.bottom);
  EXPECT_GT(overflow.needed, static_cast<float>(Mm(12))) << "three lines or more";
}

TEST_F(OverflowTest, BandThatDoesNotStretchKeepsItsTextsFromGrowing) {
  const Document document = Render(R"t(
    <query name="Q"><sql>select * from party where n = 2</sql></query>
    <data name="Rows" query="Q" height="6mm" stretch="false">
      <text width="40mm" height="6mm" stretch="grow">[Q.name]</text>
    </data>
  )t");
  ASSERT_EQ(document.overflows.size(), 1u);
  EXPECT_EQ(document.overflows[0].object, "");
  EXPECT_EQ(document.overflows[0].line, LineOf("<text width=\"40mm\""));
}

TEST_F(OverflowTest, TextThatDoesNotWrapIsTooWide) {
  const Document document = Render(R"t(
    <title height="10mm">
      <text name="Heading" width="30mm" height="10mm" wrap="false" align="right">Vehicle Sale Register</text>
      <text name="Short" top="5mm" width="30mm" height="5mm" wrap="false">Register</text>
    </title>
  )t");
  ASSERT_EQ(document.overflows.size(), 1u);
  const Overflow& overflow = document.overflows[0];
  EXPECT_EQ(overflow.object, "Heading");
  EXPECT_EQ(overflow.band, "title");
  EXPECT_TRUE(overflow.across);
  EXPECT_FLOAT_EQ(overflow.available, static_cast<float>(Mm(30)));
  EXPECT_GT(overflow.needed, overflow.available);
}

TEST_F(OverflowTest, EachPageOfATextThatDoesNotFitIsListed) {
  // The page footer's text is known only at the end; it is checked then, on every page.
  const Document document = Render(R"t(
    <query name="Q"><sql>with recursive c(n) as (select 1 union all select n + 1 from c
      where n &lt; 80) select n from c</sql></query>
    <page-footer height="5mm">
      <text name="Folio" width="15mm" height="5mm">Page [Page] of [TotalPages] of the register</text>
    </page-footer>
    <data name="Rows" query="Q" height="6mm"><text width="20mm" height="6mm">[Q.n]</text></data>
    <summary height="10mm"><text name="Total" width="20mm" height="5mm">Rows counted: [Count()]</text></summary>
  )t");
  const size_t pages = document.pages.size();
  ASSERT_GE(pages, 3u);
  std::vector<size_t> folio_pages;
  size_t totals = 0;
  for (const Overflow& overflow : document.overflows) {
    if (overflow.object == "Folio") folio_pages.push_back(overflow.page);
    if (overflow.object == "Total") {
      ++totals;
      EXPECT_EQ(overflow.page, pages);
      EXPECT_EQ(overflow.band, "summary");
    }
  }
  std::vector<size_t> every_page;
  for (size_t p = 1; p <= pages; ++p) every_page.push_back(p);
  std::sort(folio_pages.begin(), folio_pages.end());
  EXPECT_EQ(folio_pages, every_page);
  EXPECT_EQ(totals, 1u);
  const auto folio = std::find_if(document.overflows.begin(), document.overflows.end(),
                                  [](const Overflow& o) { return o.object == "Folio"; });
  ASSERT_NE(folio, document.overflows.end());
  EXPECT_EQ(folio->band, "page footer");
  EXPECT_EQ(folio->text.rfind("Page ", 0), 0u) << "with its page numbers: " << folio->text;
}

TEST_F(OverflowTest, CopiesSharingASheetNameTheSheet) {
  const Document document = Render(R"t(
    <copies per-sheet="2"><copy label="ORIGINAL"/><copy label="DUPLICATE"/><copy label="TRIPLICATE"/></copies>
    <title height="10mm"><text name="Label" width="12mm" height="5mm">[CopyLabel] COPY</text></title>
  )t");
  ASSERT_EQ(document.pages.size(), 2u);
  std::vector<std::pair<size_t, std::string>> found;
  for (const Overflow& overflow : document.overflows)
    found.push_back({overflow.page, overflow.text});
  EXPECT_EQ(found, (std::vector<std::pair<size_t, std::string>>{
                       {1, "ORIGINAL COPY"}, {1, "DUPLICATE COPY"}, {2, "TRIPLICATE COPY"}}));
}

}  // namespace
}  // namespace vantorel::report
