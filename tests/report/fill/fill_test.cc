// The fill: bands, groups, details, pagination, stretching, deferred totals, through real
// templates and a real SQLite database, checked on the prepared document.
#include <gtest/gtest.h>

#include <sqlite3.h>

#include "report/engine/report_engine.h"
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
    )");
  }

  void Sql(const std::string& sql) {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(db_.c_str(), &db), SQLITE_OK);
    char* error = nullptr;
    ASSERT_EQ(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &error), SQLITE_OK) << error;
    sqlite3_close(db);
  }

  Rendered Render(const std::string& body, std::vector<RenderRequest::Setting> params = {}) {
    const std::string xml =
        "<report format=\"vantorel-template\" version=\"1\" name=\"t\">\n"
        "<page size=\"A5\" margin=\"10mm\"/>\n<database name=\"DMSDB\"/>\n" +
        body + "\n</report>\n";
    RenderRequest request;
    request.template_path = dir_.Write("t" + std::to_string(++count_) + ".fr3", xml);
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

  testing::TempDir dir_;
  std::string db_;
  int count_ = 0;
};

TEST_F(FillTest, DataBandPrintsEveryRowWithRunningAndGroupTotals) {
  const Rendered rendered = Render(R"(
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
  )");
  ASSERT_EQ(rendered.document.pages.size(), 1u);
  const std::vector<std::string> expected = {
      "Items: 5 worth 4272.27",
      "Shine", "1", "Helmet", "1,190.48", "1190.48", "2", "Crash guard", "1,271.19", "2461.67",
      "Shine total 2461.67",
      "Splendor", "3", "Mirror", "120.10", "120.10", "4", "Horn", "240.00", "360.10", "5",
      "Chain kit", "1,450.50", "1810.60",
      "Splendor total 1810.60",
      "Grand total 4272.27"};
  EXPECT_EQ(Texts(rendered.document, 0), expected);
}

}  // namespace
}  // namespace vantorel::report
