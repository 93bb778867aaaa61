// The fill: bands, groups, details, pagination, stretching, deferred totals, columns, through
// real templates and a real SQLite database, checked on the prepared document.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "report/binding/report_engine.h"
#include "report/compile/compiled_report.h"
#include "report/fill/fill.h"
#include "report/text/rich_text.h"
#include "support/test_support.h"
#include "vantorel/error.h"

namespace vantorel::report {
namespace {

class FillTest : public ::testing::Test {
 protected:
  FillTest() {
    db_ = dir_.path().string() + "/dms.db";
    Sql(R"(
      create table item (id integer primary key, model text, name text, qty integer,
                         amount numeric(12,2), sold date);
      insert into item values (1, 'Shine', 'Helmet', 2, 1190.48, '2024-03-01');
      insert into item values (2, 'Shine', 'Crash guard', 1, 1271.19, '2024-03-02');
      insert into item values (3, 'Splendor', 'Mirror', 4, 120.10, '2024-03-02');
      insert into item values (4, 'Splendor', 'Horn', 1, 240.00, '2024-03-05');
      insert into item values (5, 'Splendor', 'Chain kit', 1, 1450.50, '2024-03-09');
      create table many (n integer primary key, amount numeric(12,2));
      with recursive c(n) as (select 1 union all select n + 1 from c where n < 3000)
        insert into many select n, (n * 37 % 1000) + (n % 97) / 100.0 + 0.07 from c;
      create table invoice (id integer primary key, cname text);
      insert into invoice values (1, 'Ramesh Patil'), (2, 'Sunita Deshmukh');
      create table line (invid integer, descr text, amount numeric(12,2));
      insert into line values (1, 'Motorcycle', 60000), (1, 'Helmet', 1500),
                              (2, 'Scooter', 75000);
    )");
  }

  void Sql(const std::string& sql) {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(db_.c_str(), &db), SQLITE_OK);
    char* error = nullptr;
    ASSERT_EQ(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &error), SQLITE_OK) << error;
    sqlite3_close(db);
  }

  std::string Template(const std::string& body,
                       const std::string& page = "size=\"A5\" margin=\"10mm\"") {
    return "<report format=\"vantorel-template\" version=\"1\" name=\"t\">\n<page " + page +
           "/>\n<database name=\"DMSDB\"/>\n" + body + "\n</report>\n";
  }

  Rendered Render(const std::string& body, const std::string& page = "size=\"A5\" margin=\"10mm\"",
                  std::vector<RenderRequest::Setting> params = {}) {
    RenderRequest request;
    request.template_path =
        dir_.Write("t" + std::to_string(++count_) + ".fr3", Template(body, page));
    request.connections["DMSDB"] = db_;
    request.parameters = std::move(params);
    return RenderTemplate(request);
  }

  static std::vector<std::string> Texts(const Document& document, size_t page) {
    std::vector<std::string> texts;
    for (const Item& item : document.pages.at(page).items) {
      if (const auto* text = std::get_if<TextItem>(&item)) texts.push_back(text->text);
    }
    return texts;
  }

  static std::vector<const TextItem*> TextItems(const Document& document, size_t page) {
    std::vector<const TextItem*> items;
    for (const Item& item : document.pages.at(page).items) {
      if (const auto* text = std::get_if<TextItem>(&item)) items.push_back(text);
    }
    return items;
  }

  static const TextItem* Find(const Document& document, size_t page, const std::string& text) {
    for (const TextItem* item : TextItems(document, page)) {
      if (item->text == text) return item;
    }
    return nullptr;
  }

  testing::TempDir dir_;
  std::string db_;
  int count_ = 0;
};

TEST_F(FillTest, DataBandPrintsEveryRowWithRunningAndGroupTotals) {
  const Rendered rendered = Render(R"t(
    <query name="Q"><sql>select * from item order by model, id</sql></query>
    <title height="8mm"><text width="100mm" height="6mm">Items: [Count(Q.id)] worth [Sum(Q.amount)]</text></title>
    <data name="Rows" query="Q" height="5mm">
      <group condition="Q.model">
        <header height="5mm"><text width="60mm" height="5mm">[Q.model]</text></header>
        <footer height="5mm"><text width="60mm" height="5mm">[Q.model] total [Sum(Q.amount)]</text></footer>
      </group>
      <text width="10mm" height="5mm">[Line]</text>
      <text left="10mm" width="40mm" height="5mm">[Q.name]</text>
      <text left="50mm" width="30mm" height="5mm" format="#,##,##0.00">[Q.amount]</text>
      <text left="80mm" width="30mm" height="5mm">[Sum(Q.amount)]</text>
    </data>
    <summary height="6mm"><text width="60mm" height="6mm">Grand total [Sum(Q.amount)]</text></summary>
  )t");
  ASSERT_EQ(rendered.document.pages.size(), 1u);
  const std::vector<std::string> expected = {"Items: 5 worth 4272.27",
                                             "Shine",
                                             "1",
                                             "Helmet",
                                             "1,190.48",
                                             "1190.48",
                                             "2",
                                             "Crash guard",
                                             "1,271.19",
                                             "2461.67",
                                             "Shine total 2461.67",
                                             "Splendor",
                                             "3",
                                             "Mirror",
                                             "120.10",
                                             "120.10",
                                             "4",
                                             "Horn",
                                             "240.00",
                                             "360.10",
                                             "5",
                                             "Chain kit",
                                             "1,450.50",
                                             "1810.60",
                                             "Splendor total 1810.60",
                                             "Grand total 4272.27"};
  EXPECT_EQ(Texts(rendered.document, 0), expected);
}

TEST_F(FillTest, TheSameAggregateWrittenTwiceIsKeptOnceAndTotalsAlike) {
  const std::string body = R"t(
    <query name="Q"><sql>select * from item order by model, id</sql></query>
    <title height="8mm"><text width="100mm" height="6mm">[Sum(Q.amount)] / [Sum(Q.amount)]</text></title>
    <data name="Rows" query="Q" height="5mm">
      <group condition="Q.model">
        <footer height="5mm"><text width="60mm" height="5mm">[Sum(Q.amount)] [Sum(Q.qty)]</text></footer>
      </group>
      <text width="30mm" height="5mm">[Sum(Q.amount)]</text>
      <text left="30mm" width="30mm" height="5mm">[Sum(Q.amount) - Sum(Q.amount, running)]</text>
      <text left="60mm" width="30mm" height="5mm">[Sum(Q.qty, running)] [Sum(Q.qty,running)]</text>
    </data>
    <summary height="6mm"><text width="60mm" height="6mm">[Sum(Q.amount)] [Count()]</text></summary>
  )t";
  const auto compiled = CompileTemplate(Template(body), "t.fr3");
  // Report total, group total, running amount and running quantity, group quantity, count.
  EXPECT_EQ(compiled->aggregates.size(), 6u);
  const Rendered rendered = Render(body);
  const std::vector<std::string> expected = {
      "4272.27 / 4272.27", "1190.48", "0.00", "2 2",       "2461.67",  "0.00", "3 3",
      "2461.67 3",         "120.10",  "0.00", "4 4",       "360.10",   "0.00", "5 5",
      "1810.60",           "0.00",    "6 6",  "1810.60 6", "4272.27 5"};
  EXPECT_EQ(Texts(rendered.document, 0), expected);
}

// A row's values are read once and kept while the row is current: the look ahead at a group's
// next row, the next row itself and a text finished at the end (from the row it printed with)
// each see their own row.
TEST_F(FillTest, FieldsReadByManyTextsFollowEachRow) {
  const Rendered rendered = Render(R"t(
    <query name="Q"><sql>select * from item order by model, id</sql></query>
    <data name="Rows" query="Q" height="5mm">
      <group condition="Q.model">
        <header height="5mm"><text width="60mm" height="5mm">[Q.model] from [Q.name]</text></header>
        <footer height="5mm"><text width="60mm" height="5mm">[Q.model] to [Q.name]</text></footer>
      </group>
      <text width="40mm" height="5mm">[Q.name] [Q.amount]</text>
      <text left="40mm" width="40mm" height="5mm">[Q.name] of [TotalPages]</text>
    </data>
  )t");
  const std::vector<std::string> expected = {"Shine from Helmet",
                                             "Helmet 1190.48",
                                             "Helmet of 1",
                                             "Crash guard 1271.19",
                                             "Crash guard of 1",
                                             "Shine to Crash guard",
                                             "Splendor from Mirror",
                                             "Mirror 120.10",
                                             "Mirror of 1",
                                             "Horn 240.00",
                                             "Horn of 1",
                                             "Chain kit 1450.50",
                                             "Chain kit of 1",
                                             "Splendor to Chain kit"};
  EXPECT_EQ(Texts(rendered.document, 0), expected);
}

TEST_F(FillTest, PagesRepeatTheirHeadersAndKnowTheirTotal) {
  const Rendered rendered = Render(R"t(
    <query name="Q"><sql>select n from many where n &lt;= 200 order by n</sql></query>
    <page-header height="6mm"><text width="100mm" height="6mm">Register</text></page-header>
    <page-footer height="6mm"><text width="100mm" height="6mm">Page [Page] of [TotalPages]</text></page-footer>
    <data name="Rows" query="Q" height="5mm">
      <header height="5mm"><text width="30mm" height="5mm">No.</text></header>
      <text width="30mm" height="5mm">[Q.n]</text>
    </data>
  )t");
  const size_t pages = rendered.document.pages.size();
  ASSERT_GT(pages, 3u);
  std::vector<std::string> rows;
  for (size_t p = 0; p < pages; ++p) {
    const auto texts = Texts(rendered.document, p);
    EXPECT_EQ(texts.front(), "Register") << p;
    EXPECT_EQ(texts[1], "No.") << "the column header repeats on page " << p + 1;
    EXPECT_EQ(texts.back(), "Page " + std::to_string(p + 1) + " of " + std::to_string(pages));
    for (size_t i = 2; i + 1 < texts.size(); ++i) rows.push_back(texts[i]);
  }
  ASSERT_EQ(rows.size(), 200u) << "every row printed once";
  for (size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(rows[i], std::to_string(i + 1));
  // Rows never run into the footer.
  const float footer_top = rendered.document.pages[0].size.height - static_cast<float>(Mm(16));
  for (const TextItem* item : TextItems(rendered.document, 0)) {
    if (item->text.rfind("Page", 0) != 0) {
      EXPECT_LE(item->box.bottom(), footer_top + 0.01f);
    }
  }
}

TEST_F(FillTest, DetailRowsFollowTheirMaster) {
  const Rendered rendered = Render(R"t(
    <query name="inv"><sql>select * from invoice order by id</sql></query>
    <query name="lines">
      <sql>select * from line where invid = :inv</sql>
      <param name="inv" type="integer" value="[inv.id]"/>
    </query>
    <data name="Invoices" query="inv" height="6mm">
      <text width="80mm" height="6mm">[inv.cname]</text>
      <data name="LineRows" query="lines" height="5mm">
        <text left="10mm" width="50mm" height="5mm">[lines.descr]</text>
        <footer height="5mm"><text left="10mm" width="50mm" height="5mm">[Sum(lines.amount)]</text></footer>
      </data>
    </data>
  )t");
  EXPECT_EQ(Texts(rendered.document, 0),
            (std::vector<std::string>{"Ramesh Patil", "Motorcycle", "Helmet", "61500.00",
                                      "Sunita Deshmukh", "Scooter", "75000.00"}));
}

TEST_F(FillTest, GrowingTextPushesWhatIsBelowAndLinesUpItsRow) {
  const std::string long_text(400, 'x');
  Sql("update item set name = '" + std::string(60, 'W') + " " + std::string(60, 'W') +
      "' where id = 1");
  const Rendered rendered = Render(R"t(
    <query name="Q"><sql>select * from item where id = 1</sql></query>
    <data name="Rows" query="Q" height="6mm">
      <text name="Name" width="30mm" height="6mm" stretch="grow">[Q.name]</text>
      <text name="Qty" left="30mm" width="20mm" height="6mm" stretch="band" border="all">[Q.qty]</text>
      <text name="Below" top="6mm" width="30mm" height="0mm">below</text>
    </data>
    <summary height="5mm"><text width="30mm" height="5mm">after</text></summary>
  )t");
  const Document& document = rendered.document;
  const TextItem* name = TextItems(document, 0)[0];
  const TextItem* qty = Find(document, 0, "2");
  const TextItem* below = Find(document, 0, "below");
  const TextItem* after = Find(document, 0, "after");
  ASSERT_TRUE(name && qty && below && after);
  EXPECT_GT(name->box.height, static_cast<float>(Mm(12))) << "the name wraps to several lines";
  EXPECT_FLOAT_EQ(qty->box.height, name->box.height) << "the row's cells line up";
  EXPECT_GE(below->box.y, name->box.bottom() - 0.01f) << "objects below move down";
  EXPECT_GE(after->box.y, name->box.bottom() - 0.01f) << "the band grew";
}

TEST_F(FillTest, TextTallerThanAPageContinuesOnTheNext) {
  std::string words;
  for (int i = 0; i < 900; ++i) words += "word" + std::to_string(i) + " ";
  words.pop_back();
  Sql("update item set name = '" + words + "' where id = 1");
  const Rendered rendered = Render(R"t(
    <query name="Q"><sql>select * from item where id = 1</sql></query>
    <data name="Rows" query="Q" height="6mm">
      <text width="120mm" height="6mm" stretch="grow">[Q.name]</text>
    </data>
  )t");
  ASSERT_GE(rendered.document.pages.size(), 2u);
  std::string printed;
  for (size_t p = 0; p < rendered.document.pages.size(); ++p) {
    for (const std::string& text : Texts(rendered.document, p)) {
      if (!printed.empty()) printed += ' ';
      printed += text;
    }
  }
  // Line breaks become blanks at the cut; every word arrives, in order, once.
  std::replace(printed.begin(), printed.end(), '\n', ' ');
  EXPECT_EQ(printed, words);
}

TEST_F(FillTest, TotalsPrintBeforeTheirRows) {
  const Rendered rendered = Render(R"t(
    <query name="Q"><sql>select * from item order by model, id</sql></query>
    <title height="6mm"><text width="100mm" height="6mm" format="#,##,##0.00">[Sum(Q.amount)]</text></title>
    <data name="Rows" query="Q" height="5mm">
      <group condition="Q.model">
        <header height="5mm"><text width="100mm" height="5mm">[Q.model]: [Count()] items, [Sum(Q.amount)]</text></header>
      </group>
      <text width="40mm" height="5mm">[Q.name]</text>
    </data>
  )t");
  const auto texts = Texts(rendered.document, 0);
  EXPECT_EQ(texts[0], "4,272.27");
  EXPECT_EQ(texts[1], "Shine: 2 items, 2461.67");
  EXPECT_EQ(texts[4], "Splendor: 3 items, 1810.60");
}

TEST_F(FillTest, ThreeThousandAmountsSumExactly) {
  const Rendered rendered = Render(R"t(
    <query name="Q"><sql>select amount from many</sql></query>
    <data name="Rows" query="Q" height="0.1mm"/>
    <summary height="5mm"><text width="80mm" height="5mm">[Sum(Q.amount)]</text></summary>
  )t",
                                   "size=\"A4\" margin=\"10mm\"");
  // The same sum in whole paise, computed here with integers.
  int64_t paise = 0;
  for (int n = 1; n <= 3000; ++n) paise += (n * 37 % 1000) * 100 + (n % 97) + 7;
  const std::string expected = std::to_string(paise / 100) + "." + (paise % 100 < 10 ? "0" : "") +
                               std::to_string(paise % 100);
  const auto& last = rendered.document.pages.back();
  const auto* total = std::get_if<TextItem>(&last.items.back());
  ASSERT_NE(total, nullptr);
  EXPECT_EQ(total->text, expected);
}

TEST_F(FillTest, LabelSheetsFillRowsAcross) {
  const Rendered rendered = Render(
      R"t(
    <query name="Q"><sql>select * from item order by id</sql></query>
    <data name="Labels" query="Q" height="20mm">
      <text width="50mm" height="20mm">[Q.name]</text>
    </data>
  )t",
      "size=\"A4\" margin=\"10mm\" columns=\"3\" column-gap=\"5mm\" column-order=\"across\"");
  const auto items = TextItems(rendered.document, 0);
  ASSERT_EQ(items.size(), 5u);
  EXPECT_FLOAT_EQ(items[0]->box.y, items[1]->box.y);
  EXPECT_FLOAT_EQ(items[1]->box.y, items[2]->box.y);
  EXPECT_LT(items[0]->box.x, items[1]->box.x);
  EXPECT_LT(items[1]->box.x, items[2]->box.x);
  EXPECT_FLOAT_EQ(items[3]->box.x, items[0]->box.x) << "the fourth label starts a new row";
  EXPECT_NEAR(items[3]->box.y - items[0]->box.y, Mm(20), 0.01);
}

TEST_F(FillTest, TrimDropsTheBlanksAroundWhatATextPrints) {
  const Rendered rendered = Render(R"t(
    <title height="12mm">
      <text width="100mm" height="5mm" trim="true">["          AMOUNT IN WORDS " &amp; "TEN ONLY  "]</text>
      <text top="6mm" width="100mm" height="5mm">["   kept as written"]</text>
    </title>
  )t");
  const std::vector<std::string> texts = Texts(rendered.document, 0);
  ASSERT_EQ(texts.size(), 2u);
  EXPECT_EQ(texts[0], "AMOUNT IN WORDS TEN ONLY");
  EXPECT_EQ(texts[1], "   kept as written");
}

TEST_F(FillTest, PartsOfTheHouseLibraryFillWithTheTemplatesData) {
  dir_.Write("house.xml", R"(<library format="vantorel-library" version="1">
  <part name="line-of">
    <param name="what"/>
    <query name="firm"><sql>select 'Shivneri Motors' as name</sql></query>
    <text width="100mm" height="5mm">${what} of [firm.name]: [Q.cname]</text>
  </part>
</library>)");
  const Rendered rendered = Render(R"t(
    <library file="house.xml"/>
    <query name="Q"><sql>select cname from invoice order by id</sql></query>
    <data name="Rows" query="Q" height="5mm"><use part="line-of" what="Customer"/></data>
  )t");
  EXPECT_EQ(Texts(rendered.document, 0),
            (std::vector<std::string>{"Customer of Shivneri Motors: Ramesh Patil",
                                      "Customer of Shivneri Motors: Sunita Deshmukh"}));
}

TEST_F(FillTest, RollPaperIsOnePageAsTallAsItsContent) {
  const Rendered rendered = Render(R"t(
    <query name="Q"><sql>select n from many where n &lt;= 150</sql></query>
    <data name="Rows" query="Q" height="5mm"><text width="40mm" height="5mm">[Q.n]</text></data>
  )t",
                                   "size=\"80mm auto\" margin=\"4mm\"");
  ASSERT_EQ(rendered.document.pages.size(), 1u);
  EXPECT_NEAR(rendered.document.pages[0].size.height, Mm(150 * 5 + 8), 0.5);
  EXPECT_NEAR(rendered.document.pages[0].size.width, Mm(80), 0.01);
}

TEST_F(FillTest, EmptyQueryPrintsHeadersOnlyWhenAsked) {
  const Rendered quiet = Render(R"t(
    <query name="Q"><sql>select * from item where id &lt; 0</sql></query>
    <data name="Rows" query="Q" height="5mm">
      <header height="5mm"><text width="40mm" height="5mm">Head</text></header>
      <text width="40mm" height="5mm">[Q.name]</text>
    </data>
  )t");
  EXPECT_TRUE(Texts(quiet.document, 0).empty());
  const Rendered loud = Render(R"t(
    <query name="Q"><sql>select * from item where id &lt; 0</sql></query>
    <data name="Rows" query="Q" height="5mm">
      <header height="5mm" print-if-empty="true"><text width="40mm" height="5mm">Head</text></header>
      <text width="40mm" height="5mm">[Q.name]</text>
    </data>
  )t");
  EXPECT_EQ(Texts(loud.document, 0), (std::vector<std::string>{"Head"}));
}

TEST_F(FillTest, NullsPrintNothingAndPrintWhenHides) {
  Sql("insert into item (id, model) values (9, 'Null row')");
  const Rendered rendered = Render(R"t(
    <query name="Q"><sql>select * from item where id = 9</sql></query>
    <data name="Rows" query="Q" height="5mm">
      <text width="40mm" height="5mm" format="#,##,##0.00">[Q.amount]</text>
      <text left="40mm" width="40mm" height="5mm">[[[Q.name]]</text>
      <text left="80mm" width="40mm" height="5mm" print-when="IsNull(Q.amount)">no amount</text>
      <text left="120mm" width="40mm" height="5mm" print-when="Q.qty > 0">never</text>
    </data>
  )t");
  EXPECT_EQ(Texts(rendered.document, 0), (std::vector<std::string>{"", "[]", "no amount"}));
}

TEST_F(FillTest, PageHeaderAndFooterCanSkipFirstAndLastPages) {
  const Rendered rendered = Render(R"t(
    <query name="Q"><sql>select n from many where n &lt;= 100</sql></query>
    <page-header height="5mm" print-on-first-page="false" print-on-last-page="false">
      <text width="40mm" height="5mm">HEAD</text></page-header>
    <page-footer height="5mm" print-on-last-page="false"><text width="40mm" height="5mm">FOOT</text></page-footer>
    <data name="Rows" query="Q" height="5mm"><text width="40mm" height="5mm">[Q.n]</text></data>
  )t");
  const size_t pages = rendered.document.pages.size();
  ASSERT_GE(pages, 3u);
  auto has = [&](size_t page, const char* text) {
    const auto texts = Texts(rendered.document, page);
    return std::find(texts.begin(), texts.end(), text) != texts.end();
  };
  EXPECT_FALSE(has(0, "HEAD"));
  EXPECT_TRUE(has(1, "HEAD"));
  EXPECT_FALSE(has(pages - 1, "HEAD"));
  EXPECT_TRUE(has(0, "FOOT"));
  EXPECT_FALSE(has(pages - 1, "FOOT"));
}

TEST_F(FillTest, KeepTogetherMovesAGroupToTheNextPage) {
  const Rendered rendered = Render(R"t(
    <query name="Q"><sql>select n, n / 10 as g from many where n &lt;= 60 order by n</sql></query>
    <data name="Rows" query="Q" height="6mm">
      <group condition="Q.g" keep-together="true">
        <header height="6mm"><text width="40mm" height="6mm">Group [Q.g]</text></header>
      </group>
      <text width="40mm" height="6mm">[Q.n]</text>
    </data>
  )t");
  // No page ends in the middle of a group: each page starts with a group header.
  for (size_t p = 0; p < rendered.document.pages.size(); ++p) {
    const auto texts = Texts(rendered.document, p);
    ASSERT_FALSE(texts.empty());
    EXPECT_EQ(texts.front().rfind("Group ", 0), 0u)
        << "page " << p + 1 << " starts with " << texts.front();
  }
}

TEST_F(FillTest, KeepTogetherWithGrowingRowsLeavesNoStrayPage) {
  const Rendered rendered = Render(R"t(
    <query name="Q"><sql>select n, 'a remark that wraps onto a second line ' || n as r
      from many where n &lt;= 16 order by n</sql></query>
    <title height="60mm"><text width="60mm" height="8mm">Register</text></title>
    <data name="Rows" query="Q" height="6mm">
      <group condition="1" keep-together="true">
        <header height="6mm"><text width="40mm" height="6mm">Month</text></header>
      </group>
      <text width="20mm" height="6mm">[Q.n]</text>
      <text left="20mm" width="50mm" height="6mm" stretch="grow">[Q.r]</text>
    </data>
    <summary height="8mm"><text width="60mm" height="8mm">Grand total</text></summary>
  )t");
  const Document& document = rendered.document;
  // The group is too tall for the room under the title, so it moves whole; the summary follows
  // it and no page holds only a sliver.
  ASSERT_EQ(document.pages.size(), 2u);
  EXPECT_EQ(Texts(document, 0), std::vector<std::string>{"Register"});
  const auto second = Texts(document, 1);
  EXPECT_EQ(second.front(), "Month");
  EXPECT_EQ(second.back(), "Grand total");
}

TEST_F(FillTest, GroupHeaderIsNeverLeftAloneAtThePageFoot) {
  // Each page of A5 holds 30 rows of 6 mm under the 10 mm margins: fill it to one row short of
  // the foot, so the next group's header would fit but its first row would not.
  const Rendered rendered = Render(R"t(
    <query name="Q"><sql>select n, case when n &lt;= 29 then 1 else 2 end as g from many
      where n &lt;= 40 order by n</sql></query>
    <data name="Rows" query="Q" height="6mm">
      <group condition="Q.g">
        <header height="6mm"><text width="40mm" height="6mm">Group [Q.g]</text></header>
      </group>
      <text width="40mm" height="6mm">[Q.n]</text>
    </data>
  )t",
                                   "size=\"A5\" margin=\"10mm\"");
  const Document& document = rendered.document;
  ASSERT_EQ(document.pages.size(), 2u);
  EXPECT_NE(Texts(document, 0).back(), "Group 2") << "the header went on with its first row";
  const auto second = Texts(document, 1);
  ASSERT_GE(second.size(), 2u);
  EXPECT_EQ(second[0], "Group 2");
  EXPECT_EQ(second[1], "30");
}

TEST_F(FillTest, HeadersMovedWithTheirFirstRowPrintOnce) {
  // As above, with a repeated data header and a group header that repeats: on page 2 each
  // header prints once, from the rows it was held with.
  const Rendered rendered = Render(R"t(
    <query name="Q"><sql>select n, case when n &lt;= 28 then 1 else 2 end as g from many
      where n &lt;= 40 order by n</sql></query>
    <data name="Rows" query="Q" height="6mm">
      <header height="6mm"><text width="40mm" height="6mm">No.</text></header>
      <group condition="Q.g" repeat-header="true">
        <header height="6mm"><text width="40mm" height="6mm">Group [Q.g]</text></header>
      </group>
      <text width="40mm" height="6mm">[Q.n]</text>
    </data>
  )t",
                                   "size=\"A5\" margin=\"10mm\"");
  const Document& document = rendered.document;
  ASSERT_EQ(document.pages.size(), 2u);
  const auto second = Texts(document, 1);
  ASSERT_GE(second.size(), 3u);
  EXPECT_EQ(second[0], "No.");
  EXPECT_EQ(second[1], "Group 2");
  EXPECT_EQ(second[2], "29");
  EXPECT_EQ(std::count(second.begin(), second.end(), "Group 2"), 1);
  EXPECT_EQ(std::count(second.begin(), second.end(), "No."), 1);
}

TEST_F(FillTest, EmptyBandOfNoHeightDoesNotStartAPage) {
  const Rendered rendered = Render(R"t(
    <query name="Inv"><sql>select * from invoice where id = 1</sql></query>
    <query name="L">
      <sql>select * from line where invid = :id</sql>
      <param name="id" type="integer" value="Inv.id"/>
    </query>
    <data name="Invoices" query="Inv" height="0">
      <data name="Lines" query="L" height="80mm" start-new-page="true">
        <text width="60mm" height="6mm">[L.descr]</text>
      </data>
    </data>
  )t");
  const Document& document = rendered.document;
  ASSERT_EQ(document.pages.size(), 2u) << "one page per line, the first on page 1";
  EXPECT_EQ(Texts(document, 0), std::vector<std::string>{"Motorcycle"});
  EXPECT_EQ(Texts(document, 1), std::vector<std::string>{"Helmet"});
}

TEST_F(FillTest, EmptySpaceAtABandsFootDoesNotMakeAPage) {
  const Rendered rendered = Render(R"t(
    <title height="150mm">
      <text width="60mm" height="6mm">Letter</text>
      <child height="150mm"><text width="60mm" height="6mm">Signed</text></child>
    </title>
  )t");
  // A5 has 190 mm between its margins: the child's text fits, its empty foot does not.
  ASSERT_EQ(rendered.document.pages.size(), 1u);
  EXPECT_EQ(Texts(rendered.document, 0), (std::vector<std::string>{"Letter", "Signed"}));
}

TEST_F(FillTest, CellsGrowAndLineUpWhicheverWraps) {
  Sql("update item set name = '" + std::string(60, 'W') + " " + std::string(60, 'W') +
      "', model = 'A model name long enough to wrap in its cell' where id = 1");
  const Rendered rendered = Render(R"t(
    <query name="Q"><sql>select * from item where id in (1, 3) order by id</sql></query>
    <data name="Rows" query="Q" height="6mm">
      <text width="30mm" height="6mm" stretch="cell" border="all">[Q.name]</text>
      <text left="30mm" width="25mm" height="6mm" stretch="cell" border="all">[Q.model]</text>
      <text left="55mm" width="20mm" height="6mm" stretch="cell" border="all">[Q.qty]</text>
    </data>
  )t");
  const auto items = TextItems(rendered.document, 0);
  ASSERT_EQ(items.size(), 6u);
  EXPECT_GT(items[0]->box.height, static_cast<float>(Mm(12)));
  EXPECT_FLOAT_EQ(items[1]->box.height, items[0]->box.height);
  EXPECT_FLOAT_EQ(items[2]->box.height, items[0]->box.height);
  EXPECT_FLOAT_EQ(items[3]->box.y, items[0]->box.bottom()) << "the next row starts below";
  EXPECT_FLOAT_EQ(items[3]->box.height, static_cast<float>(Mm(6))) << "a short row stays short";
}

TEST_F(FillTest, BoxesBelowAGrowingTextMoveDownAndKeepTheirShape) {
  Sql("update item set name = '" + std::string(60, 'W') + " " + std::string(60, 'W') +
      "' where id = 1");
  const Rendered rendered = Render(R"t(
    <query name="Q"><sql>select * from item where id = 1</sql></query>
    <title height="30mm">
      <rect name="Around" width="60mm" height="18mm" grow-with-band="true"/>
      <text left="2mm" top="5mm" width="30mm" height="5mm" stretch="grow">[Q.name]</text>
      <rect name="Below" top="20mm" width="60mm" height="10mm" grow-with-band="true"/>
    </title>
  )t");
  std::vector<RectF> boxes;
  const TextItem* name = nullptr;
  for (const Item& item : rendered.document.pages.at(0).items) {
    if (const auto* rect = std::get_if<RectItem>(&item)) boxes.push_back(rect->box);
    if (const auto* text = std::get_if<TextItem>(&item)) name = text;
  }
  ASSERT_EQ(boxes.size(), 2u);
  ASSERT_NE(name, nullptr);
  const float growth = name->box.height - static_cast<float>(Mm(5));
  ASSERT_GT(growth, 1.0f);
  const float top = static_cast<float>(Mm(10));  // the page margin
  EXPECT_NEAR(boxes[0].y, top, 0.01) << "the box around the text stays";
  EXPECT_NEAR(boxes[0].height, static_cast<float>(Mm(18)) + growth, 0.01) << "and grows with it";
  EXPECT_NEAR(boxes[1].y, top + static_cast<float>(Mm(20)) + growth, 0.01) << "the box below moves";
  EXPECT_NEAR(boxes[1].height, static_cast<float>(Mm(10)), 0.01) << "and keeps its height";
  EXPECT_LE(boxes[0].bottom(), boxes[1].y + 0.01f) << "stacked boxes never cut through each other";
}

TEST_F(FillTest, ParametersReadLikeFields) {
  const Rendered rendered =
      Render(R"t(
    <query name="Q">
      <sql>select name from item where sold &gt;= :fromdate order by id</sql>
      <param name="fromdate" type="date" default="2024-03-05"/>
    </query>
    <title height="6mm"><text width="80mm" height="6mm">From [FormatDate(Q.fromdate, "dd-mm-yyyy")]</text></title>
    <data name="Rows" query="Q" height="5mm"><text width="40mm" height="5mm">[Q.name]</text></data>
  )t",
             "size=\"A5\" margin=\"10mm\"", {{"Q", "fromdate", "2024-03-09"}});
  EXPECT_EQ(Texts(rendered.document, 0),
            (std::vector<std::string>{"From 09-03-2024", "Chain kit"}));
}

TEST_F(FillTest, NowCarriesTheTimeOfDay) {
  const Rendered rendered = Render(R"t(
    <title height="6mm">
      <text width="40mm" height="6mm">[FormatDate(Now, "hh:nn")]</text>
      <text left="40mm" width="40mm" height="6mm">[Time]</text>
      <text left="80mm" width="40mm" height="6mm">[FormatDate(Now, "dd-mm-yyyy")]|[FormatDate(Date, "dd-mm-yyyy")]</text>
    </title>
  )t");
  const auto texts = Texts(rendered.document, 0);
  ASSERT_EQ(texts.size(), 3u);
  // The two clock readings may straddle a minute.
  const auto minutes = [](const std::string& hhmm) {
    return std::stoi(hhmm.substr(0, 2)) * 60 + std::stoi(hhmm.substr(3, 2));
  };
  EXPECT_LE(std::abs(minutes(texts[0]) - minutes(texts[1])), 1) << texts[0] << " vs " << texts[1];
  const size_t bar = texts[2].find('|');
  EXPECT_EQ(texts[2].substr(0, bar), texts[2].substr(bar + 1)) << "Now is today";
}

TEST_F(FillTest, DateTimeAndNowComeFromThePlatformsClock) {
  testing::PlatformScope platform;
  platform->SetToday(Date::FromYmd(2024, 4, 15));
  platform->SetTimeOfDay(14, 5);
  const Rendered rendered = Render(R"t(
    <title height="6mm">
      <text width="20mm" height="6mm">[Time]</text>
      <text left="20mm" width="50mm" height="6mm">[FormatDate(Now, "dd-mm-yyyy hh:nn")]</text>
      <text left="70mm" width="50mm" height="6mm">[FormatDate(Date, "dd-mm-yyyy hh:nn")]</text>
    </title>
  )t");
  EXPECT_EQ(Texts(rendered.document, 0),
            (std::vector<std::string>{"14:05", "15-04-2024 14:05", "15-04-2024 00:00"}));
}

TEST_F(FillTest, FooterCanPrintOnlyOnTheLastPage) {
  const Rendered rendered = Render(R"t(
    <query name="Q"><sql>select n from many where n &lt;= 70 order by n</sql></query>
    <page-footer height="6mm">
      <text width="60mm" height="6mm" print-when="Page = TotalPages">Continued: no</text>
      <text left="60mm" width="60mm" height="6mm" print-when="Page &lt; TotalPages">Continued overleaf</text>
    </page-footer>
    <data name="Rows" query="Q" height="6mm"><text width="40mm" height="6mm">[Q.n]</text></data>
  )t");
  const Document& document = rendered.document;
  ASSERT_EQ(document.pages.size(), 3u);
  for (size_t p = 0; p < 3; ++p) {
    EXPECT_EQ(Texts(document, p).back(), p == 2 ? "Continued: no" : "Continued overleaf") << p;
  }
}

TEST_F(FillTest, RichTextShowsDataAsWritten) {
  Sql("update invoice set cname = 'Shah & Sons <b>Pune</b>' where id = 1");
  const Rendered rendered = Render(R"t(
    <query name="Q"><sql>select * from invoice where id = 1</sql></query>
    <title height="8mm">
      <text width="120mm" height="6mm" rich="true">Buyer: <b>[Q.cname]</b></text>
      <text top="6mm" width="120mm" height="6mm" rich="true">[Upper(Left(Q.cname, 15)) &amp; "<br/>"]end</text>
    </title>
  )t");
  const auto texts = Texts(rendered.document, 0);
  ASSERT_EQ(texts.size(), 2u);
  // Functions see the value's own characters; markup written in the template still works.
  const text::PlainText upper = text::ParseRichText(texts[1]);
  EXPECT_EQ(upper.text, "SHAH & SONS <B>\nend");
  const text::PlainText plain = text::ParseRichText(texts[0]);
  EXPECT_EQ(plain.text, "Buyer: Shah & Sons <b>Pune</b>");
  ASSERT_EQ(plain.spans.size(), 1u) << "only the template's <b> makes bold";
  EXPECT_TRUE(plain.spans[0].bold);
  EXPECT_EQ(plain.text.substr(plain.spans[0].begin, plain.spans[0].end - plain.spans[0].begin),
            "Shah & Sons <b>Pune</b>");
}

TEST_F(FillTest, BadSqlNamesItsQuery) {
  try {
    Render(R"t(<query name="Broken"><sql>select * from no_such_table</sql></query>
              <title height="5mm"><text width="40mm" height="5mm">[Broken.x]</text></title>)t");
    FAIL() << "expected an error";
  } catch (const Error& error) {
    EXPECT_NE(error.description().find("query \"Broken\""), std::string::npos)
        << error.description();
    EXPECT_NE(error.description().find("no_such_table"), std::string::npos) << error.description();
  }
}

TEST_F(FillTest, ParametersKeepTheirTypes) {
  const Rendered rendered = Render(R"t(
    <query name="Q">
      <sql>select name from item where sold &gt;= :from and id &lt;= :last and model = :model</sql>
      <param name="from" type="date" default="2024-03-02"/>
      <param name="last" type="integer" default="5"/>
      <param name="model" type="text" default="Splendor"/>
    </query>
    <data name="Rows" query="Q" height="5mm"><text width="40mm" height="5mm">[Q.name]</text></data>
  )t",
                                   "size=\"A5\" margin=\"10mm\"", {{"Q", "last", "4"}});
  EXPECT_EQ(Texts(rendered.document, 0), (std::vector<std::string>{"Mirror", "Horn"}));
}

// A print method sets components by name; the same settings serve a template edited since, where
// the memo, the query and the variable sit at other places.
TEST_F(FillTest, RunSettingsFindComponentsByName) {
  RunSettings settings;
  settings.memo_texts["WORDS"] = "[Q.name] set";
  settings.query_sql["Q"] = "select name from item where id = :id";
  settings.parameters["Q"]["ID"] = int64_t{3};
  settings.variables[{"COMPANY", "CITY"}] = "\"Pune\"";
  settings.memo_texts["GONE"] = "a memo the template no longer has";
  const std::string body = R"t(
    <query name="q"><sql>select name from item</sql><param name="id" type="integer"/></query>
    <variable category="Company" name="city" value='""'/>
    <title height="10mm">
      <text width="40mm" height="5mm">[Company.city]</text>
      <text name="Words" top="5mm" width="40mm" height="5mm">as designed</text>
    </title>)t";
  const std::string edited = R"t(
    <variable category="Company" name="logo" value='""'/>
    <variable category="Company" name="city" value='""'/>
    <query name="other"><sql>select 1</sql></query>
    <query name="Q"><sql>select name from item</sql><param name="ID" type="integer"/></query>
    <title height="15mm">
      <text width="40mm" height="5mm">first</text>
      <text name="words" top="5mm" width="40mm" height="5mm">as designed</text>
      <text top="10mm" width="40mm" height="5mm">[company.city]</text>
    </title>)t";
  for (const std::string& xml : {Template(body), Template(edited)}) {
    const auto report = CompileTemplate(xml, "t.fr3");
    auto connection = data::Connection::Open(db_);
    FillServices services;
    services.connection = [&](int) -> data::Connection& { return *connection; };
    const Document document = Fill(*report, settings, services).document;
    const std::vector<std::string> texts = Texts(document, 0);
    EXPECT_NE(std::find(texts.begin(), texts.end(), "Mirror set"), texts.end()) << xml;
    EXPECT_NE(std::find(texts.begin(), texts.end(), "Pune"), texts.end()) << xml;
  }
}

// Tax invoices go out in copies that differ only in their label; each copy is a whole document.
TEST_F(FillTest, CopiesRepeatEveryPageWithTheirNumberAndLabel) {
  const Rendered rendered = Render(R"t(
    <copies>
      <copy label="ORIGINAL FOR RECIPIENT"/>
      <copy label="DUPLICATE FOR TRANSPORTER"/>
      <copy label="TRIPLICATE FOR SUPPLIER"/>
    </copies>
    <query name="Q"><sql>select * from many order by n</sql></query>
    <page-header height="5mm"><text width="100mm" height="5mm">[Copy]: [CopyLabel]</text></page-header>
    <data name="Rows" query="Q" height="5mm" rows="0">
      <text width="30mm" height="5mm">[Q.n]</text>
    </data>
    <page-footer height="5mm"><text width="100mm" height="5mm">Page [Page] of [TotalPages]</text></page-footer>
  )t");
  // 3,000 rows make some pages; every copy has them all, numbered from 1.
  const size_t pages = rendered.document.pages.size() / 3;
  ASSERT_GT(pages, 1u);
  ASSERT_EQ(rendered.document.pages.size(), pages * 3);
  const char* labels[] = {"1: ORIGINAL FOR RECIPIENT", "2: DUPLICATE FOR TRANSPORTER",
                          "3: TRIPLICATE FOR SUPPLIER"};
  for (size_t copy = 0; copy < 3; ++copy) {
    for (size_t page = 0; page < pages; ++page) {
      const std::vector<std::string> texts = Texts(rendered.document, copy * pages + page);
      EXPECT_EQ(texts.front(), labels[copy]);
      EXPECT_EQ(texts.back(), "Page " + std::to_string(page + 1) + " of " + std::to_string(pages));
    }
    EXPECT_EQ(Texts(rendered.document, copy * pages)[1], "1");
    EXPECT_EQ(Texts(rendered.document, copy * pages + pages - 1).rbegin()[1], "3000");
  }
}

// The two-in-one invoice: two copies on each sheet, one in each half, with nothing repeated in
// the template.
TEST_F(FillTest, CopiesShareASheetInEqualSlots) {
  const Rendered rendered = Render(R"t(
    <copies per-sheet="2">
      <copy label="ORIGINAL"/>
      <copy label="DUPLICATE"/>
      <copy label="TRIPLICATE"/>
    </copies>
    <query name="Q"><sql>select * from item order by id</sql></query>
    <title height="6mm"><text width="60mm" height="6mm">[CopyLabel]</text></title>
    <data name="Rows" query="Q" height="5mm">
      <text width="60mm" height="5mm">[Q.name]</text>
    </data>
  )t");
  // Three copies at two a sheet: two sheets, the second with its lower half empty.
  ASSERT_EQ(rendered.document.pages.size(), 2u);
  const Page& sheet = rendered.document.pages[0];
  EXPECT_NEAR(sheet.size.height, 595.28f, 0.01f);  // A5, the sheet the template names
  const TextItem* original = Find(rendered.document, 0, "ORIGINAL");
  const TextItem* duplicate = Find(rendered.document, 0, "DUPLICATE");
  ASSERT_NE(original, nullptr);
  ASSERT_NE(duplicate, nullptr);
  EXPECT_NEAR(original->box.y, 28.35f, 0.01f);  // the top margin of the upper slot
  EXPECT_NEAR(duplicate->box.y - original->box.y, 595.28f / 2, 0.01f);
  EXPECT_EQ(Texts(rendered.document, 0).size(), 12u);
  EXPECT_EQ(Texts(rendered.document, 1),
            (std::vector<std::string>{"TRIPLICATE", "Helmet", "Crash guard", "Mirror", "Horn",
                                      "Chain kit"}));
}

TEST_F(FillTest, CopiesThatCannotPrintAreTemplateProblems) {
  const auto problems_of = [&](const std::string& copies, const std::string& page) {
    try {
      Render(copies + "<data name=\"D\" rows=\"1\" height=\"5mm\"/>", page);
    } catch (const Error& error) {
      return error.description();
    }
    return std::string();
  };
  EXPECT_NE(problems_of("<copies count=\"0\"/>", "size=\"A5\"").find("from 1 to 10"),
            std::string::npos);
  EXPECT_NE(problems_of("<copies count=\"2\" per-sheet=\"5\"/>", "size=\"A5\"")
                .find("\"per-sheet\" must be a whole number from 1 to 4"),
            std::string::npos);
  EXPECT_NE(problems_of("<copies count=\"1\"><copy label=\"A\"/><copy label=\"B\"/></copies>",
                        "size=\"A5\"")
                .find("more <copy> labels than copies"),
            std::string::npos);
  EXPECT_NE(problems_of("<copies/>", "size=\"A5\"").find("needs a \"count\""), std::string::npos);
  EXPECT_NE(
      problems_of("<copies count=\"2\"/><copies count=\"2\"/>", "size=\"A5\"").find("one <copies>"),
      std::string::npos);
  EXPECT_NE(
      problems_of("<copies count=\"2\" per-sheet=\"2\"/>", "size=\"80mm auto\"").find("roll paper"),
      std::string::npos);
}

// A text longer than many pages runs over them as a stretching text does: every character
// printed once, in order, each page's share cut at a line's end.
TEST_F(FillTest, LongTextRunsOverManyPagesWholeAndOnce) {
  std::string prose, digits;
  for (int i = 0; prose.size() < 200000; ++i) {
    prose += i % 13 == 0 ? "received" : i % 5 == 0 ? "towards" : "the balance";
    prose += ' ';
  }
  prose.pop_back();
  for (int i = 0; digits.size() < 100000; ++i) digits += static_cast<char>('0' + i * 7 % 10);
  std::string rupees = "₹ " + prose.substr(0, 100000);
  Sql("create table memo (id integer, body text);");
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(db_.c_str(), &db), SQLITE_OK);
  int id = 0;
  for (const std::string* body : {&prose, &digits, &rupees}) {
    sqlite3_stmt* insert = nullptr;
    sqlite3_prepare_v2(db, "insert into memo values (?1, ?2)", -1, &insert, nullptr);
    sqlite3_bind_int(insert, 1, ++id);
    sqlite3_bind_text(insert, 2, body->data(), static_cast<int>(body->size()), SQLITE_STATIC);
    ASSERT_EQ(sqlite3_step(insert), SQLITE_DONE);
    sqlite3_finalize(insert);
  }
  sqlite3_close(db);
  id = 0;
  for (const std::string* body : {&prose, &digits, &rupees}) {
    const Rendered rendered =
        Render(R"t(
    <query name="M"><sql>select body from memo where id = :id</sql><param name="id" type="integer"/></query>
    <title height="20mm">
      <text width="128mm" height="6mm">Narration</text>
      <text top="8mm" width="128mm" height="6mm" size="9" stretch="grow">[M.body]</text>
    </title>
  )t",
               "size=\"A5\" margin=\"10mm\"", {{"M", "id", std::to_string(++id)}});
    ASSERT_GT(rendered.document.pages.size(), 10u);
    std::string printed;
    for (size_t page = 0; page < rendered.document.pages.size(); ++page) {
      for (const std::string& text : Texts(rendered.document, page)) {
        if (text == "Narration") continue;
        // Where the text was cut the space between two words went with the line's end.
        if (!printed.empty() && body != &digits) printed += ' ';
        printed += text;
      }
    }
    EXPECT_EQ(printed.size(), body->size());
    EXPECT_TRUE(printed == *body) << "text " << id << " changed on its way over the pages";
  }
}

// A picture far larger than any that prints (20000 × 20000 pixels in a small file) is refused
// from its header, like a picture that cannot be read: a warning, and the document prints.
TEST_F(FillTest, PictureTooLargeIsAWarning) {
  // A PNG's signature, header and a first (empty) data chunk: enough for its size to be known.
  std::string png("\x89PNG\r\n\x1a\n", 8);
  const auto chunk = [&png](std::string_view type_and_data) {
    const uint32_t length = static_cast<uint32_t>(type_and_data.size() - 4);
    for (int shift = 24; shift >= 0; shift -= 8) png += static_cast<char>(length >> shift);
    png += type_and_data;
    uint32_t crc = 0xFFFFFFFFu;
    for (const char c : type_and_data) {
      crc ^= static_cast<uint8_t>(c);
      for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320u : 0);
    }
    for (int shift = 24; shift >= 0; shift -= 8) png += static_cast<char>(~crc >> shift);
  };
  chunk(std::string_view("IHDR\0\0\x4e\x20\0\0\x4e\x20\x01\0\0\0\0", 17));  // 20000 × 20000
  chunk("IDAT");
  chunk("IEND");
  const std::string path = dir_.Write("huge.png", png);
  const Rendered rendered = Render(
      "<title height=\"30mm\"><picture name=\"Scan\" width=\"20mm\" height=\"20mm\" source=\"" +
      path + "\"/><text left=\"25mm\" width=\"60mm\" height=\"6mm\">Receipt</text></title>");
  ASSERT_EQ(rendered.warnings.size(), 1u);
  EXPECT_EQ(rendered.warnings[0],
            "picture \"Scan\": Invalid picture: " + path +
                " (20000 x 20000 pixels is more than the 50 megapixels a picture may have)");
  ASSERT_EQ(rendered.document.pages.size(), 1u);
  EXPECT_EQ(Texts(rendered.document, 0), std::vector<std::string>{"Receipt"});
  EXPECT_TRUE(rendered.document.images.empty());
}

// The prepared document of a small report, serialised, against the reference in golden/.
TEST_F(FillTest, PreparedDocumentMatchesItsGoldenText) {
  const Rendered rendered = Render(R"t(
    <info title="Golden"/>
    <query name="Q"><sql>select * from item order by id</sql></query>
    <style name="cell" font="Liberation Sans" size="8" border="all" border-width="0.5pt"/>
    <title height="10mm"><text width="128mm" height="8mm" size="14" bold="true" align="center">Items</text>
      <line x1="0" y1="9mm" x2="128mm" y2="9mm" width="1pt"/></title>
    <data name="Rows" query="Q" height="5mm">
      <text style="cell" width="60mm" height="5mm">[Q.name]</text>
      <text style="cell" left="60mm" width="30mm" height="5mm" align="right" format="#,##,##0.00">[Q.amount]</text>
      <rect left="90mm" width="5mm" height="5mm" fill="#e8e8e8"/>
    </data>
    <page-footer height="5mm"><text width="128mm" height="5mm" align="center">[Page]/[TotalPages]</text></page-footer>
  )t");
  const std::string text = Serialize(rendered.document);
  const std::string path = std::string(VANTOREL_TEST_DIR) + "/report/fill/golden/items.txt";
  if (std::getenv("VANTOREL_UPDATE_REFERENCE") != nullptr) std::ofstream(path) << text;
  EXPECT_EQ(text, testing::ReadFile(path)) << "regenerate with VANTOREL_UPDATE_REFERENCE=1";
}

}  // namespace
}  // namespace vantorel::report
