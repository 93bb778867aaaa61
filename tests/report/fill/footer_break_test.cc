// Footers and the summary at a page break: none starts a page without the row it closes. The
// registers here are sized so that the footer or the summary falls exactly at the foot of a page.
//
// An A5 page with 10 mm margins has 190 mm of body; rows, headers and footers are 6 mm high.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "report/fill/template_on_sqlite.h"

namespace vantorel::report {
namespace {

class FooterBreakTest : public TemplateOnSqlite {
 protected:
  FooterBreakTest()
      : TemplateOnSqlite(R"(
      create table entry (n integer primary key, amount numeric(12,2));
      with recursive c(n) as (select 1 union all select n + 1 from c where n < 100)
        insert into entry select n, n from c;
      create table invoice (id integer primary key, cname text);
      insert into invoice values (1, 'Ramesh Patil');
    )") {}

  static std::vector<std::string> Texts(const Document& document, size_t page) {
    std::vector<std::string> texts;
    for (const Item& item : document.pages.at(page).items) {
      if (const auto* text = std::get_if<TextItem>(&item)) texts.push_back(text->text);
    }
    return texts;
  }

  static std::vector<std::string> Numbers(int from, int to) {
    std::vector<std::string> numbers;
    for (int n = from; n <= to; ++n) numbers.push_back(std::to_string(n));
    return numbers;
  }

  static std::vector<std::string> Join(std::vector<std::string> a,
                                       const std::vector<std::string>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
  }
};

// 6 mm data header + 6 mm group header + 28 rows fill 180 of the 184 mm above the page
// footer: the group's footer does not fit under its 28th row.
constexpr const char* kGroupedRegister = R"t(
  <query name="Q"><sql>select n, amount, case when n &lt;= 28 then 1 else 2 end as g
    from entry where n &lt;= 32 order by n</sql></query>
  <page-footer height="6mm"><text width="100mm" height="6mm">Page total [Sum(Q.amount)]</text></page-footer>
  <data name="Rows" query="Q" height="6mm">
    <header height="6mm"><text width="40mm" height="6mm">No.</text></header>
    <group condition="Q.g">
      <header height="6mm"><text width="40mm" height="6mm">Group [Q.g]</text></header>
      <footer height="6mm"><text width="40mm" height="6mm">Total [Q.g]: [Sum(Q.amount)]</text></footer>
    </group>
    <text width="40mm" height="6mm">[Q.n]</text>
  </data>
)t";

TEST_F(FooterBreakTest, GroupFooterTakesTheGroupsLastRowToTheNextPage) {
  const Document document = Render(kGroupedRegister);
  ASSERT_EQ(document.pages.size(), 2u);
  EXPECT_EQ(Texts(document, 0),
            Join(Join({"No.", "Group 1"}, Numbers(1, 27)), {"Page total 378.00"}));
  EXPECT_EQ(Texts(document, 1),
            Join(Join({"No.", "28", "Total 1: 406.00", "Group 2"}, Numbers(29, 32)),
                 {"Total 2: 122.00", "Page total 150.00"}))
      << "the data header repeats above the carried row; the carried row counts on its page";
}

TEST_F(FooterBreakTest, RepeatedGroupHeaderShowsAboveTheCarriedRow) {
  std::string body = kGroupedRegister;
  body.replace(body.find("<group condition=\"Q.g\">"), 23,
               "<group condition=\"Q.g\" repeat-header=\"true\">");
  const Document document = Render(body);
  ASSERT_EQ(document.pages.size(), 2u);
  const std::vector<std::string> second = Texts(document, 1);
  ASSERT_GE(second.size(), 4u);
  EXPECT_EQ(std::vector<std::string>(second.begin(), second.begin() + 4),
            (std::vector<std::string>{"No.", "Group 1", "28", "Total 1: 406.00"}));
}

TEST_F(FooterBreakTest, FooterThatFitsLeavesItsRowsAlone) {
  // One row fewer: the footer fits under the 27th row and nothing moves.
  std::string body = kGroupedRegister;
  body.replace(body.find("n &lt;= 28"), 10, "n &lt;= 27");
  const Document document = Render(body);
  ASSERT_EQ(document.pages.size(), 2u);
  EXPECT_EQ(Texts(document, 0), Join(Join({"No.", "Group 1"}, Numbers(1, 27)),
                                     {"Total 1: 378.00", "Page total 378.00"}));
  const std::vector<std::string> second = Texts(document, 1);
  ASSERT_GE(second.size(), 2u);
  EXPECT_EQ(second[0], "No.");
  EXPECT_EQ(second[1], "Group 2");
}

TEST_F(FooterBreakTest, SummaryTakesTheLastRowAndTheBandsFooter) {
  // 6 mm header + 29 rows + 6 mm footer fill 186 of 190 mm: the 10 mm summary does not fit.
  const Document document = Render(R"t(
    <query name="Q"><sql>select n, amount from entry where n &lt;= 29 order by n</sql></query>
    <data name="Rows" query="Q" height="6mm">
      <header height="6mm"><text width="40mm" height="6mm">No.</text></header>
      <text width="40mm" height="6mm">[Q.n]</text>
      <footer height="6mm"><text width="40mm" height="6mm">[Count()] rows</text></footer>
    </data>
    <summary height="10mm"><text width="60mm" height="6mm">Grand total [Sum(Q.amount)]</text></summary>
  )t");
  ASSERT_EQ(document.pages.size(), 2u);
  EXPECT_EQ(Texts(document, 0), Join({"No."}, Numbers(1, 28)));
  EXPECT_EQ(Texts(document, 1),
            (std::vector<std::string>{"No.", "29", "29 rows", "Grand total 435.00"}))
      << "the column headings, the last row, the footer and the total share the last page";
}

TEST_F(FooterBreakTest, SummaryTakesTheLastRowThroughItsGroupFooter) {
  // 6 mm header + 30 rows = 186 mm; the group footer fits (190), the summary does not.
  const Document document = Render(R"t(
    <query name="Q"><sql>select n, amount from entry where n &lt;= 30 order by n</sql></query>
    <data name="Rows" query="Q" height="6mm">
      <header height="6mm"><text width="40mm" height="6mm">No.</text></header>
      <group condition="1">
        <footer height="4mm"><text width="40mm" height="4mm">Subtotal [Sum(Q.amount)]</text></footer>
      </group>
      <text width="40mm" height="6mm">[Q.n]</text>
    </data>
    <summary height="6mm"><text width="60mm" height="6mm">Grand total [Sum(Q.amount)]</text></summary>
  )t");
  ASSERT_EQ(document.pages.size(), 2u);
  EXPECT_EQ(Texts(document, 0), Join({"No."}, Numbers(1, 29)));
  EXPECT_EQ(Texts(document, 1),
            (std::vector<std::string>{"No.", "30", "Subtotal 465.00", "Grand total 465.00"}));
}

TEST_F(FooterBreakTest, SummaryThatStartsItsOwnPageTakesNoRow) {
  const Document document = Render(R"t(
    <query name="Q"><sql>select n from entry where n &lt;= 5 order by n</sql></query>
    <data name="Rows" query="Q" height="6mm"><text width="40mm" height="6mm">[Q.n]</text></data>
    <summary height="6mm" start-new-page="true"><text width="60mm" height="6mm">Signed</text></summary>
  )t");
  ASSERT_EQ(document.pages.size(), 2u);
  EXPECT_EQ(Texts(document, 0), Numbers(1, 5));
  EXPECT_EQ(Texts(document, 1), std::vector<std::string>{"Signed"});
}

TEST_F(FooterBreakTest, SummaryTakesTheLastDetailRowNotItsWholeInvoice) {
  // The invoice's row and 29 lines under their header fill 186 of 190 mm: the summary takes
  // the 29th line over; the invoice and its other lines stay.
  const Document document = Render(R"t(
    <query name="Inv"><sql>select * from invoice</sql></query>
    <query name="L">
      <sql>select n, amount from entry where n &lt;= 29 and :inv = 1 order by n</sql>
      <param name="inv" type="integer" value="Inv.id"/>
    </query>
    <data name="Invoices" query="Inv" height="6mm">
      <text width="60mm" height="6mm">[Inv.cname]</text>
      <data name="Lines" query="L" height="6mm">
        <header height="6mm"><text width="40mm" height="6mm">Item</text></header>
        <text width="40mm" height="6mm">[L.n]</text>
      </data>
    </data>
    <summary height="10mm"><text width="60mm" height="6mm">Invoice total [Sum(L.amount)]</text></summary>
  )t");
  ASSERT_EQ(document.pages.size(), 2u);
  EXPECT_EQ(Texts(document, 0), Join({"Ramesh Patil", "Item"}, Numbers(1, 28)));
  EXPECT_EQ(Texts(document, 1), (std::vector<std::string>{"Item", "29", "Invoice total 435.00"}));
}

TEST_F(FooterBreakTest, EveryRowPrintsOnceWhateverTheRowCount) {
  // Around a page's worth of rows, footers and the summary land anywhere; each row, footer and
  // total still prints exactly once and never first on a page.
  for (int rows = 24; rows <= 36; ++rows) {
    const Document document = Render(R"t(
      <query name="Q"><sql>select n, amount, n / 7 as g from entry where n &lt;= )t" +
                                     std::to_string(rows) + R"t( order by n</sql></query>
      <data name="Rows" query="Q" height="6mm">
        <header height="6mm"><text width="40mm" height="6mm">No.</text></header>
        <group condition="Q.g">
          <footer height="6mm"><text width="40mm" height="6mm">Total [Q.g]</text></footer>
        </group>
        <text width="40mm" height="6mm">[Q.n]</text>
        <footer height="6mm"><text width="40mm" height="6mm">End</text></footer>
      </data>
      <summary height="8mm"><text width="60mm" height="6mm">Grand total</text></summary>
    )t");
    std::vector<std::string> rows_seen;
    int ends = 0, grand_totals = 0;
    for (size_t p = 0; p < document.pages.size(); ++p) {
      const std::vector<std::string> texts = Texts(document, p);
      ASSERT_GE(texts.size(), 2u) << rows << " rows, page " << p + 1;
      EXPECT_EQ(texts[0], "No.") << rows << " rows, page " << p + 1;
      EXPECT_TRUE(texts[1].find_first_not_of("0123456789") == std::string::npos)
          << rows << " rows: page " << p + 1 << " starts with \"" << texts[1] << "\", not a row";
      for (const std::string& text : texts) {
        if (!text.empty() && text.find_first_not_of("0123456789") == std::string::npos) {
          rows_seen.push_back(text);
        }
        ends += text == "End" ? 1 : 0;
        grand_totals += text == "Grand total" ? 1 : 0;
      }
    }
    EXPECT_EQ(rows_seen, Numbers(1, rows)) << rows << " rows";
    EXPECT_EQ(ends, 1) << rows << " rows";
    EXPECT_EQ(grand_totals, 1) << rows << " rows";
    EXPECT_EQ(Texts(document, document.pages.size() - 1).back(), "Grand total");
  }
}

}  // namespace
}  // namespace vantorel::report
