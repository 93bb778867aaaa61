// The cheque prints each field where a CTS-2010 leaf (202 x 92 mm) has its place: the date's
// digits one to a box at the top right, the payee on the "Pay" line, the words on the "Rupees"
// lines, the figures in the amount box, the crossing at the top left. The page's left and top
// margins move every field together, which is how a dealer adjusts for a printer. Measured in
// the PDF with pdftotext -bbox, as printed by `vantorel call ChequePrint`.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace vantorel {
namespace {

namespace fs = std::filesystem;

constexpr double kPointsPerMm = 72.0 / 25.4;

struct Word {
  std::string text;
  double left_mm = 0, top_mm = 0, right_mm = 0, bottom_mm = 0;
};

std::string ReadText(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

class ChequeLeaf : public ::testing::Test {
 protected:
  void SetUp() override {
    folder_ =
        fs::temp_directory_path() /
        ("vantorel-cheque-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
         "-" + ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(folder_);
    fs::create_directories(folder_);
    // The cheque reads nothing, but the component connects the template's database: an empty
    // file is an empty SQLite database.
    std::ofstream(folder_ / "books.db", std::ios::binary);
  }
  void TearDown() override { fs::remove_all(folder_); }

  // The shipped cheque with its page's margins replaced by "margins" (none: as shipped),
  // printed through the component; the words of its PDF.
  std::vector<Word> Print(const std::string& margins = {}) {
    std::string cheque = ReadText(fs::path(VANTOREL_SOURCE_DIR) / "templates/chequeprint.fr3");
    if (!margins.empty()) {
      cheque = std::regex_replace(
          cheque, std::regex(R"(margin="0" margin-left="5mm" margin-top="5mm")"), margins);
    }
    std::ofstream(folder_ / "chequeprint.fr3", std::ios::binary) << cheque;
    const fs::path pdf = folder_ / "cheque.pdf";
    const std::string call = std::string(VANTOREL_CLI) + " call --report-path '" +
                             folder_.string() + "/' --db '" + (folder_ / "books.db").string() +
                             "' --pdf '" + pdf.string() +
                             "' ChequePrint 15072025 'A/C PAYEE' 'Sakal Media Pvt Ltd' "
                             "'**1,25,000.00/-' 'Rupees One Lakh Twenty Five Thousand Only'"
                             " > '" +
                             (folder_ / "call.log").string() + "' 2>&1";
    EXPECT_EQ(std::system(call.c_str()), 0) << ReadText(folder_ / "call.log");
    const std::string bbox = (folder_ / "cheque.html").string();
    const std::string convert = "pdftotext -bbox '" + pdf.string() + "' '" + bbox + "'";
    EXPECT_EQ(std::system(convert.c_str()), 0);
    std::vector<Word> words;
    const std::regex word(
        R"re(<word xMin="([0-9.]+)" yMin="([0-9.]+)" xMax="([0-9.]+)" yMax="([0-9.]+)">([^<]*)</word>)re");
    const std::string html = ReadText(bbox);
    for (auto it = std::sregex_iterator(html.begin(), html.end(), word);
         it != std::sregex_iterator(); ++it) {
      words.push_back({(*it)[5], std::stod((*it)[1]) / kPointsPerMm,
                       std::stod((*it)[2]) / kPointsPerMm, std::stod((*it)[3]) / kPointsPerMm,
                       std::stod((*it)[4]) / kPointsPerMm});
    }
    return words;
  }

  static const Word& Find(const std::vector<Word>& words, const std::string& text, size_t nth = 0) {
    for (const Word& w : words) {
      if (w.text == text && nth-- == 0) return w;
    }
    ADD_FAILURE() << "the cheque does not show " << text;
    static const Word none;
    return none;
  }

  // The date's digits, which stand apart in their boxes, as one word.
  static Word Date(const std::vector<Word>& words) {
    Word date;
    date.left_mm = 1e9;
    for (const Word& w : words) {
      if (w.left_mm < 140 || w.top_mm > 20) continue;
      date.text += w.text;
      date.left_mm = std::min(date.left_mm, w.left_mm);
      date.top_mm = w.top_mm;
      date.bottom_mm = w.bottom_mm;
      date.right_mm = std::max(date.right_mm, w.right_mm);
    }
    return date;
  }

  fs::path folder_;
};

TEST_F(ChequeLeaf, IsTheSizeOfACtsLeaf) {
  Print();
  const std::string info = folder_ / "info.txt";
  ASSERT_EQ(
      std::system(("pdfinfo '" + (folder_ / "cheque.pdf").string() + "' > '" + info + "'").c_str()),
      0);
  std::smatch size;
  const std::string text = ReadText(info);
  ASSERT_TRUE(
      std::regex_search(text, size, std::regex(R"(Page size:\s+([0-9.]+) x ([0-9.]+) pts)")));
  EXPECT_NEAR(std::stod(size[1]) / kPointsPerMm, 202, 0.1);
  EXPECT_NEAR(std::stod(size[2]) / kPointsPerMm, 92, 0.1);
}

TEST_F(ChequeLeaf, PutsEveryFieldInItsPlace) {
  const std::vector<Word> words = Print();
  // The crossing at the top left.
  const Word& crossing = Find(words, "A/C");
  EXPECT_LT(crossing.right_mm, 45);
  EXPECT_LT(crossing.bottom_mm, 14);
  // The date: eight digits, one in each 5 mm box from 152 mm, between 8 and 14 mm from the top.
  const Word date = Date(words);
  EXPECT_EQ(date.text, "15072025");
  EXPECT_GT(date.top_mm, 8);
  EXPECT_LT(date.bottom_mm, 14.5);
  EXPECT_NEAR(date.left_mm, 152 + 1.23, 0.3);
  EXPECT_NEAR(date.right_mm - date.left_mm, 7 * 5 + 2.54, 0.5);
  // The payee on the "Pay" line, the words on the "Rupees" lines, the figures in the box.
  const Word& payee = Find(words, "Sakal");
  EXPECT_NEAR(payee.left_mm, 18, 0.5);
  EXPECT_GT(payee.top_mm, 17);
  EXPECT_LT(payee.bottom_mm, 24.5);
  const Word& rupees = Find(words, "Rupees");
  EXPECT_NEAR(rupees.left_mm, 28, 0.5);
  EXPECT_GT(rupees.top_mm, 25);
  EXPECT_LT(rupees.bottom_mm, 32);
  const Word& amount = Find(words, "**1,25,000.00/-");
  EXPECT_GT(amount.left_mm, 157);
  EXPECT_LT(amount.right_mm, 197);
  EXPECT_GT(amount.top_mm, 32);
  EXPECT_LT(amount.bottom_mm, 40);
}

TEST_F(ChequeLeaf, TheMarginsMoveEveryFieldTogether) {
  const std::vector<Word> shipped = Print();
  // 3 mm to the right and 2 mm higher.
  const std::vector<Word> moved = Print(R"(margin="0" margin-left="8mm" margin-top="3mm")");
  EXPECT_NEAR(Date(moved).left_mm - Date(shipped).left_mm, 3, 0.05);
  EXPECT_NEAR(Date(moved).top_mm - Date(shipped).top_mm, -2, 0.05);
  for (const char* field : {"A/C", "Sakal", "Rupees", "**1,25,000.00/-"}) {
    const Word& before = Find(shipped, field);
    const Word& after = Find(moved, field);
    EXPECT_NEAR(after.left_mm - before.left_mm, 3, 0.05) << field;
    EXPECT_NEAR(after.top_mm - before.top_mm, -2, 0.05) << field;
  }
}

}  // namespace
}  // namespace vantorel
