// The component printing through CUPS: RptPrint sends the report to the default queue of a
// private server with a PDF printer, and the pages arrive.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <thread>

#include "engine_fixture.h"

namespace vantorel::testing {
namespace {

std::set<std::filesystem::path> Printed() {
  std::set<std::filesystem::path> files;
  for (const auto& entry :
       std::filesystem::directory_iterator(std::string(VANTOREL_CUPS_DIR) + "/out")) {
    files.insert(entry.path());
  }
  return files;
}

TEST_F(EngineTest, RptPrintPrintsOnTheDefaultQueue) {
  const auto before = Printed();
  rep_.put_RptPrint(kTrue);
  rep_.SetVars();
  rep_.SuperReport("challan");
  std::filesystem::path printed;
  for (int i = 0; i < 100 && printed.empty(); ++i) {
    for (const auto& file : Printed()) {
      if (!before.count(file)) printed = file;
    }
    if (printed.empty()) std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
  ASSERT_FALSE(printed.empty()) << "the PDF printer wrote nothing";
  EXPECT_NE(PdfText(printed.string()).find("Ramesh Dattatray Patil"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(dir_.path() / "export.pdf")) << "printed, not exported";
}

}  // namespace
}  // namespace vantorel::testing
