// Objects of a table row as printed: column rules reach the foot of a row a text made tall, and a
// linear barcode prints its number under its bars (checked in the PDF with poppler).
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "report/fill/template_on_sqlite.h"
#include "report/pdf/pdf_writer.h"
#include "support/shell.h"

namespace vantorel::report {
namespace {

class BandObjectsTest : public TemplateOnSqlite {
 protected:
  BandObjectsTest()
      : TemplateOnSqlite(R"(
      create table vehicle (n integer primary key, model text, chassis text);
      insert into vehicle values
        (1, 'Vayu Sarathi 100', 'MDVSR1SDXRH159477'),
        (2, 'Vayu Shaurya 160 Single Disc, with a saree guard, crash guard and a long remark', 'MDVSK1ST7SH161463'),
        (3, 'Vayu Sakhi 110', 'MDVSA1SC2RH150012');
    )") {}
};

// The vertical lines of page 1 at "x" points from the left margin, top to bottom.
std::vector<LineItem> RulesAt(const Document& document, float x) {
  std::vector<LineItem> rules;
  for (const Item& item : document.pages.at(0).items) {
    const auto* line = std::get_if<LineItem>(&item);
    if (line != nullptr && line->from.x == line->to.x &&
        std::abs(line->from.x - static_cast<float>(Mm(10)) - x) < 0.01f) {
      rules.push_back(*line);
    }
  }
  return rules;
}

constexpr const char* kTable = R"t(
  <query name="Q"><sql>select * from vehicle order by n</sql></query>
  <data name="Rows" query="Q" height="6mm" STRETCH>
    <line x1="0" y1="0" x2="0" y2="6mm"/>
    <text left="1mm" width="39mm" height="6mm" stretch="grow">[Q.model]</text>
    <line x1="40mm" y1="0" x2="40mm" y2="6mm"/>
    <text left="41mm" width="49mm" height="6mm">[Q.chassis]</text>
    <line x1="90mm" y1="1mm" x2="90mm" y2="5mm"/>
    <line x1="100mm" y1="1mm" x2="100mm" y2="5mm" grow-with-band="true"/>
  </data>
)t";

std::string Table(const std::string& stretch) {
  std::string table = kTable;
  table.replace(table.find("STRETCH"), 7, stretch);
  return table;
}

TEST_F(BandObjectsTest, ColumnRulesReachTheFootOfATallRow) {
  const Document document = Render(Table(""));
  for (const float x : {0.0f, static_cast<float>(Mm(40))}) {
    const std::vector<LineItem> rules = RulesAt(document, x);
    ASSERT_EQ(rules.size(), 3u) << x;
    // Row 2's model wraps over several lines: its rules run from its top to the next row's.
    EXPECT_NEAR(rules[0].to.y - rules[0].from.y, Mm(6), 0.01) << "a short row keeps its height";
    EXPECT_GT(rules[1].to.y - rules[1].from.y, Mm(10)) << "the tall row's rule grew with it";
    EXPECT_FLOAT_EQ(rules[1].from.y, rules[0].to.y);
    EXPECT_FLOAT_EQ(rules[1].to.y, rules[2].from.y) << "and reaches the next row";
  }
  // A rule that does not span the row keeps its length, unless it is marked to grow.
  const std::vector<LineItem> inner = RulesAt(document, static_cast<float>(Mm(90)));
  ASSERT_EQ(inner.size(), 3u);
  EXPECT_NEAR(inner[1].to.y - inner[1].from.y, Mm(4), 0.01);
  const std::vector<LineItem> marked = RulesAt(document, static_cast<float>(Mm(100)));
  ASSERT_EQ(marked.size(), 3u);
  const std::vector<LineItem> spanning = RulesAt(document, 0);
  EXPECT_NEAR(marked[1].to.y, spanning[1].to.y - Mm(1), 0.01) << "its foot keeps its 1 mm";
}

TEST_F(BandObjectsTest, RulesOfABandThatDoesNotStretchKeepTheirLength) {
  const Document document = Render(Table("stretch=\"false\""));
  for (const LineItem& rule : RulesAt(document, 0)) {
    EXPECT_NEAR(rule.to.y - rule.from.y, Mm(6), 0.01);
  }
}

TEST_F(BandObjectsTest, LinearBarcodePrintsItsNumberUnderItsBars) {
  const Document document = Render(R"t(
    <query name="Q"><sql>select * from vehicle where n = 2</sql></query>
    <title height="50mm">
      <barcode name="Shown" left="0" top="0" width="80mm" height="18mm" type="code128"
               data="[Q.chassis]" show-text="true"/>
      <barcode name="Bare" left="0" top="25mm" width="80mm" height="18mm" type="code128"
               data="[Q.chassis]X" show-text="false"/>
    </title>
  )t");
  ASSERT_EQ(document.barcodes.size(), 2u);
  EXPECT_EQ(document.barcodes[0]->text, "MDVSK1ST7SH161463");
  EXPECT_EQ(document.barcodes[1]->text, "");
  const std::string pdf = dir_.path().string() + "/barcode.pdf";
  WritePdf(document, pdf);
  const std::string words = testing::Shell("pdftotext -bbox '" + pdf + "' -");
  // One word: the shown number, in the lower part of its box, under the bars; the other
  // barcode's data prints nowhere.
  const std::regex word(
      R"re(<word xMin="([0-9.]+)" yMin="([0-9.]+)" xMax="([0-9.]+)" yMax="([0-9.]+)">([^<]*)</word>)re");
  std::vector<std::string> texts;
  for (auto it = std::sregex_iterator(words.begin(), words.end(), word);
       it != std::sregex_iterator(); ++it) {
    texts.push_back((*it)[5]);
    if ((*it)[5] != "MDVSK1ST7SH161463") continue;
    const double top = Mm(10), bottom = Mm(10 + 18);
    EXPECT_GT(std::stod((*it)[2]), top + 0.6 * (bottom - top)) << "under the bars";
    EXPECT_LT(std::stod((*it)[4]), bottom + 1);
  }
  EXPECT_EQ(texts, std::vector<std::string>{"MDVSK1ST7SH161463"}) << words;
}

}  // namespace
}  // namespace vantorel::report
