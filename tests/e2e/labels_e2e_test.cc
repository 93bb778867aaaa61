// The QR labels end to end: the parts and chassis label sheets and rolls printed from the demo
// database to a PDF, drawn at 150 dpi as a label printer's driver would, and every QR code read
// back with zbarimg: each label carries the part or chassis number of its row, in the order the
// host's SQL selected them. A sheet is read label by label (cut out of the page with ImageMagick),
// as a hand scanner reads one label at a time.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "component/dispatch.h"
#include "data/connection.h"
#include "data/value.h"
#include "demo/facts.h"
#include "reports/catalogue.h"
#include "support/shell.h"
#include "support/test_support.h"
#include "vantorel/crepoter.h"

namespace vantorel {
namespace {

using testing::Shell;

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line)) {
    if (!line.empty()) lines.push_back(line);
  }
  return lines;
}

// A label stock: the page's margins and the labels' size and number across and down, in mm; a
// roll has one label per page.
struct Stock {
  double left = 0, top = 0, width = 0, height = 0;
  int across = 1, down = 1;
};

constexpr Stock kSheet{8.5, 5, (210 - 17) / 3.0, 35, 3, 8};

struct LabelCase {
  const char* method;
  const char* sql_fact;
  int paper;
  const char* column;  // what the QR code holds
  bool sheet;
};

class LabelsEndToEnd : public ::testing::TestWithParam<LabelCase> {
 protected:
  static void SetUpTestSuite() {
    dir_ = new testing::TempDir;
    const std::string command = std::string(DEMO_GEN) + " --sqlite " + Db() + " --facts " +
                                dir_->path().string() + "/facts.txt";
    ASSERT_EQ(std::system(command.c_str()), 0);
    facts_ = new std::map<std::string, std::string>(
        demo::ReadFacts(dir_->path().string() + "/facts.txt"));
  }
  static void TearDownTestSuite() {
    delete facts_;
    delete dir_;
  }
  static std::string Db() { return dir_->path().string() + "/demo.db"; }

  static testing::TempDir* dir_;
  static std::map<std::string, std::string>* facts_;
};

testing::TempDir* LabelsEndToEnd::dir_ = nullptr;
std::map<std::string, std::string>* LabelsEndToEnd::facts_ = nullptr;

TEST_P(LabelsEndToEnd, EveryQrCodeReadsAsItsRow) {
  const LabelCase& c = GetParam();
  if (Shell("command -v zbarimg >/dev/null && command -v convert >/dev/null && echo yes") !=
      "yes\n") {
    GTEST_SKIP() << "zbarimg (zbar-tools) or convert (imagemagick) is missing: "
                    "scripts/install-deps.sh installs them";
  }
  const std::string sql = facts_->at(c.sql_fact);
  std::vector<std::string> expected;
  {
    auto db = data::Connection::Open(Db());
    auto cursor = db->Execute("select " + std::string(c.column) + " from (" + sql + ") s");
    std::vector<data::Value> row;
    while (cursor->Next(row)) expected.push_back(data::ToText(row[0]));
  }
  ASSERT_FALSE(expected.empty());

  testing::TempDir out;
  const std::string pdf = out.path().string() + "/labels.pdf";
  testing::PlatformScope platform;
  CRepoter rep;
  rep.put_ReportPath(std::string(VANTOREL_SOURCE_DIR) + "/templates/");
  rep.put_DbConnectstring(Db());
  rep.put_RptPDF(kTrue);
  rep.put_PDFPath(pdf);
  rep.SetVars();
  InvokeByName(rep, c.method, kDispatchMethod,
               {Variant::String(sql), Variant::String(std::to_string(c.paper))});
  ASSERT_TRUE(std::filesystem::exists(pdf)) << "LastMsg: " << rep.get_LastMsg();

  const std::string pages = out.path().string() + "/page";
  ASSERT_EQ(Shell("pdftoppm -r 150 -png '" + pdf + "' '" + pages + "'; echo $?"), "0\n");
  std::vector<std::string> images;
  for (const auto& entry : std::filesystem::directory_iterator(out.path())) {
    if (entry.path().extension() == ".png") images.push_back(entry.path().string());
  }
  std::sort(images.begin(), images.end());
  std::vector<std::string> read;
  int cell = 0;
  for (const std::string& image : images) {
    if (!c.sheet) {
      const auto codes = Lines(Shell("zbarimg -q --raw '" + image + "' 2>/dev/null"));
      EXPECT_EQ(codes.size(), 1u) << image;
      read.insert(read.end(), codes.begin(), codes.end());
      continue;
    }
    // The labels' area of the page, cut into its labels at one go, read in order.
    const double px = 150 / 25.4;
    char body[64];
    std::snprintf(body, sizeof body, "%dx%d+%d+%d",
                  static_cast<int>(kSheet.width * kSheet.across * px),
                  static_cast<int>(kSheet.height * kSheet.down * px),
                  static_cast<int>(kSheet.left * px), static_cast<int>(kSheet.top * px));
    const std::string cells = out.path().string() + "/cells" + std::to_string(cell++);
    std::filesystem::create_directory(cells);
    Shell("convert '" + image + "' -crop " + body + " +repage -crop " +
          std::to_string(kSheet.across) + "x" + std::to_string(kSheet.down) +
          "@ +repage +adjoin '" + cells + "/%02d.png'");
    std::vector<std::string> labels;
    for (const auto& entry : std::filesystem::directory_iterator(cells)) {
      labels.push_back(entry.path().string());
    }
    std::sort(labels.begin(), labels.end());
    for (const std::string& label : labels) {
      const auto codes = Lines(Shell("zbarimg -q --raw '" + label + "' 2>/dev/null"));
      read.insert(read.end(), codes.begin(), codes.end());
    }
  }
  EXPECT_EQ(read, expected);
}

INSTANTIATE_TEST_SUITE_P(
    Labels, LabelsEndToEnd,
    ::testing::Values(LabelCase{"PartsQrPrint", "parts_qr_sql", 0, "part_no", true},
                      LabelCase{"PartsQrPrint", "parts_qr_roll_sql", 1, "part_no", false},
                      LabelCase{"ChassisQrPrint", "chassis_qr_sql", 0, "chassis", true},
                      LabelCase{"ChassisQrPrint", "chassis_qr_roll_sql", 1, "chassis", false}),
    [](const ::testing::TestParamInfo<LabelCase>& param) {
      return std::string(param.param.method) + (param.param.sheet ? "Sheet" : "Roll");
    });

}  // namespace
}  // namespace vantorel
