// Printing against a real CUPS server: tests/support/cups.sh starts a private cupsd on loopback
// (the "cups" fixture) whose queues write PDFs with cups-pdf, one of them stopped, one refusing
// jobs, one holding them.
#include "report/print/printer.h"

#include <cups/cups.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "report/print/sample_document.h"
#include "support/shell.h"
#include "vantorel/error.h"

namespace vantorel::report {
namespace {

namespace fs = std::filesystem;

const fs::path kCupsDir = VANTOREL_CUPS_DIR;

using vantorel::testing::Shell;

// The page count pdfinfo reports for "pdf"; -1 when it reports none.
int PageCount(const std::string& pdf) {
  const std::string info = Shell("pdfinfo '" + pdf + "'");
  const size_t at = info.find("\nPages:");
  return at == std::string::npos ? -1 : std::atoi(info.c_str() + at + 7);
}

std::set<fs::path> OutputFiles() {
  std::set<fs::path> files;
  for (const auto& entry : fs::directory_iterator(kCupsDir / "out")) files.insert(entry.path());
  return files;
}

int ActiveJobs(const char* queue) {
  cups_job_t* jobs = nullptr;
  const int count = cupsGetJobs2(CUPS_HTTP_DEFAULT, &jobs, queue, 0, CUPS_WHICHJOBS_ACTIVE);
  cupsFreeJobs(count, jobs);
  return count;
}

// The error PrintDocument throws for "options", or a failed expectation when it prints.
Error PrintError(const PrintOptions& options) {
  try {
    PrintDocument(testing::SampleDocument(1, "vt-failing"), options);
  } catch (const Error& error) {
    return error;
  }
  ADD_FAILURE() << "printing to \"" << options.queue << "\" succeeded";
  return Error(0, "", "");
}

class PrinterTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::ifstream server(kCupsDir / "server");
    std::string address;
    ASSERT_TRUE(server >> address) << "no CUPS server: run through ctest, whose cups_start "
                                      "fixture starts it (tests/support/cups.sh)";
    // Only the fixture's server and its default count, not the machine's or the user's.
    ::setenv("CUPS_SERVER", address.c_str(), 1);
    ::setenv("HOME", (kCupsDir / "home").c_str(), 1);
    ::unsetenv("LPDEST");
    ::unsetenv("PRINTER");
    before_ = OutputFiles();
  }

  // The PDFs cups-pdf wrote since the test began.
  std::vector<fs::path> NewFiles() const {
    std::vector<fs::path> files;
    for (const fs::path& file : OutputFiles()) {
      if (!before_.count(file)) files.push_back(file);
    }
    return files;
  }

  std::set<fs::path> before_;
};

TEST_F(PrinterTest, ThreePagesArriveOnTheNamedQueueAsAThreePagePdf) {
  PrintOptions options;
  options.queue = "VIRTUAL_PDF";
  options.title = "vt-three-pages";
  PrintDocument(testing::SampleDocument(3, "Sales register"), options);

  const std::vector<fs::path> files = NewFiles();
  ASSERT_EQ(files.size(), 1u);
  const std::string file = files[0].string();
  EXPECT_NE(file.find("vt-three-pages"), std::string::npos) << file;
  EXPECT_EQ(PageCount(file), 3);
  const std::string text = Shell("pdftotext -layout '" + file + "' -");
  EXPECT_NE(text.find("Sales register, page 1"), std::string::npos) << text;
  EXPECT_NE(text.find("Invoice 302"), std::string::npos) << text;
  EXPECT_NE(text.find("Page 3 of 3"), std::string::npos) << text;
}

TEST_F(PrinterTest, TheDefaultQueueIsUsedWhenNoneIsNamed) {
  PrintOptions options;
  options.title = "vt-default-queue";
  PrintDocument(testing::SampleDocument(2, "Default queue"), options);

  const std::vector<fs::path> files = NewFiles();
  ASSERT_EQ(files.size(), 1u);
  EXPECT_NE(files[0].string().find("vt-default-queue"), std::string::npos) << files[0];
  EXPECT_EQ(PageCount(files[0].string()), 2);
}

TEST_F(PrinterTest, TheDocumentTitleNamesTheJobWhenNoTitleIsGiven) {
  PrintOptions options;
  options.queue = "VIRTUAL_PDF";
  PrintDocument(testing::SampleDocument(1, "vt-document-title"), options);
  const std::vector<fs::path> files = NewFiles();
  ASSERT_EQ(files.size(), 1u);
  EXPECT_NE(files[0].string().find("vt-document-title"), std::string::npos) << files[0];
}

TEST_F(PrinterTest, AStoppedQueueFailsAndTheJobIsCancelled) {
  PrintOptions options;
  options.queue = "STOPPED_PDF";
  const Error error = PrintError(options);
  EXPECT_EQ(error.number(), errnum::kEngineFailure);
  const std::string& text = error.description();
  EXPECT_NE(text.find("\"STOPPED_PDF\""), std::string::npos) << text;
  EXPECT_NE(text.find("job STOPPED_PDF-"), std::string::npos) << text;
  EXPECT_NE(text.find("is pending"), std::string::npos) << text;
  EXPECT_NE(text.find("the queue is stopped"), std::string::npos) << text;
  EXPECT_NE(text.find("stopped by the test fixture"), std::string::npos) << text;
  EXPECT_NE(text.find("The job was cancelled."), std::string::npos) << text;
  EXPECT_EQ(ActiveJobs("STOPPED_PDF"), 0);
  EXPECT_TRUE(NewFiles().empty());
}

TEST_F(PrinterTest, AJobThatDoesNotCompleteInTimeIsCancelled) {
  PrintOptions options;
  options.queue = "HELD";
  options.timeout_seconds = 1;
  const Error error = PrintError(options);
  const std::string& text = error.description();
  EXPECT_NE(text.find("job HELD-"), std::string::npos) << text;
  EXPECT_NE(text.find("is held"), std::string::npos) << text;
  EXPECT_NE(text.find("job-hold-until-specified"), std::string::npos) << text;
  EXPECT_NE(text.find("after waiting 1 s"), std::string::npos) << text;
  EXPECT_NE(text.find("The job was cancelled."), std::string::npos) << text;
  EXPECT_EQ(ActiveJobs("HELD"), 0);
}

TEST_F(PrinterTest, AQueueRefusingJobsFailsBeforeSpooling) {
  PrintOptions options;
  options.queue = "REJECTING";
  const std::string text = PrintError(options).description();
  EXPECT_NE(text.find("\"REJECTING\" is not accepting jobs"), std::string::npos) << text;
  EXPECT_NE(text.find("rejecting by the test fixture"), std::string::npos) << text;
  EXPECT_NE(text.find("cupsaccept REJECTING"), std::string::npos) << text;
}

TEST_F(PrinterTest, AnUnknownQueueIsNamedInTheError) {
  PrintOptions options;
  options.queue = "NO_SUCH_QUEUE";
  const std::string text = PrintError(options).description();
  EXPECT_NE(text.find("\"NO_SUCH_QUEUE\" does not exist"), std::string::npos) << text;
  EXPECT_NE(text.find("lpstat -p"), std::string::npos) << text;
}

TEST_F(PrinterTest, WithoutADefaultQueueTheErrorSaysHowToChooseOne) {
  // Deleting the default queue leaves the server without one; the fixture's default is put back
  // afterwards.
  const std::string uri = "cups-pdf:/vantorel-" + std::to_string(VANTOREL_CUPS_PORT);
  Shell("lpadmin -p VT_GONE -E -v " + uri + " -m lsb/usr/cups-pdf/CUPS-PDF_noopt.ppd 2>&1");
  Shell("lpadmin -d VT_GONE && lpadmin -x VT_GONE");
  std::string text;
  try {
    PrintDocument(testing::SampleDocument(1, "vt-no-default"), PrintOptions{});
  } catch (const Error& error) {
    text = error.description();
  }
  Shell("lpadmin -d VIRTUAL_PDF");
  EXPECT_NE(text.find("there is no default printer"), std::string::npos) << text;
  EXPECT_NE(text.find("lpoptions -d"), std::string::npos) << text;
  EXPECT_NE(text.find("VANTOREL_PRINTER"), std::string::npos) << text;
  EXPECT_TRUE(NewFiles().empty());
}

TEST_F(PrinterTest, ADocumentWithoutPagesIsNotPrinted) {
  try {
    PrintDocument(Document{}, PrintOptions{});
    FAIL() << "expected an error";
  } catch (const Error& error) {
    EXPECT_NE(error.description().find("no pages"), std::string::npos);
  }
}

}  // namespace
}  // namespace vantorel::report
