// The vantorel command: words, methods, call, render, check, exit codes and messages.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "support/test_support.h"

namespace vantorel {
namespace {

struct Result {
  int status;
  std::string out;  // stdout and stderr together
};

Result Vantorel(const std::string& arguments) {
  const std::string command = std::string(VANTOREL_CLI) + " " + arguments + " 2>&1";
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
  std::string out;
  std::array<char, 4096> buffer;
  while (std::fgets(buffer.data(), buffer.size(), pipe.get()) != nullptr) out += buffer.data();
  const int status = ::pclose(pipe.release());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, out};
}

TEST(Cli, WordsPrintsTheAmountExactlyWithANewline) {
  EXPECT_EQ(Vantorel("words 105000.50").out, "ONE LAC FIVE THOUSAND & PAISA FIFTY ONLY \n");
  EXPECT_EQ(Vantorel("words 1,50,00,00,000").out, "FIFTY CRORE ONLY\n");
  EXPECT_EQ(Vantorel("words 0").out, "ZERO ONLY\n");
  const Result bad = Vantorel("words lots");
  EXPECT_EQ(bad.status, 2);
  EXPECT_NE(bad.out.find("not a number"), std::string::npos);
}

TEST(Cli, MethodsListsEveryEntryWithItsIdentifier) {
  const Result result = Vantorel("methods");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 124);
  EXPECT_NE(result.out.find("0x60030003\tChallan_Customer\t[in] short Cid, [in, out, optional, "
                            "defaultvalue(\"\")] BSTR* LogoFile\n"),
            std::string::npos);
  EXPECT_NE(result.out.find("0x60030066\tApro_WsPrintPurRet\t"), std::string::npos);
}

class CliCall : public ::testing::Test {
 protected:
  CliCall() {
    sqlite3* db = nullptr;
    sqlite3_open(db_.c_str(), &db);
    sqlite3_exec(db,
                 "create table receipt (id integer, amt numeric(12,2));"
                 "insert into receipt values (7, 2500);",
                 nullptr, nullptr, nullptr);
    sqlite3_close(db);
    dir_.Write("t/receipt.fr3", R"(<report format="vantorel-template" version="1">
  <database name="DMSDB"/>
  <query name="q_rt"><sql>select * from receipt where id = :id</sql><param name="id" type="integer" default="7"/></query>
  <title height="20mm"><text name="inwords" width="150mm" height="10mm">x</text>
    <text top="10mm" width="150mm" height="6mm">Receipt [q_rt.id]: [q_rt.amt]</text></title>
</report>)");
  }
  testing::TempDir dir_;
  std::string db_ = dir_.path().string() + "/dms.db";
};

TEST_F(CliCall, CallsAPrintMethodAsAHostDoes) {
  const std::string pdf = dir_.path().string() + "/r.pdf";
  const Result result = Vantorel("call --report-path " + dir_.folder() + "t/ --db " + db_ +
                                 " --pdf " + pdf + " ReceiptPrint 7");
  EXPECT_EQ(result.status, 0) << result.out;
  EXPECT_NE(result.out.find("LastMsg: Run setfrx is ok "), std::string::npos) << result.out;
  ASSERT_TRUE(std::filesystem::exists(pdf));
  std::unique_ptr<FILE, int (*)(FILE*)> text(::popen(("pdftotext " + pdf + " -").c_str(), "r"),
                                             ::pclose);
  std::string extracted;
  std::array<char, 4096> buffer;
  while (std::fgets(buffer.data(), buffer.size(), text.get()) != nullptr)
    extracted += buffer.data();
  EXPECT_NE(extracted.find("(AMOUNT IN WORDS RUPEES TWO THOUSAND FIVE HUNDRED ONLY)"),
            std::string::npos)
      << extracted;
}

TEST_F(CliCall, FailuresExitNonZeroWithNumberAndText) {
  const Result result =
      Vantorel("call --report-path " + dir_.folder() + "t/ --db " + db_ + " --pdf ReceiptPrint 99");
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.out.find("error 3021"), std::string::npos) << result.out;
  const Result unknown = Vantorel("call NoSuchMethod");
  EXPECT_EQ(unknown.status, 1);
  EXPECT_NE(unknown.out.find("Unknown name"), std::string::npos) << unknown.out;
  const Result late = Vantorel("call w_estimate 3");
  EXPECT_NE(late.out.find("not implemented yet"), std::string::npos) << late.out;
}

TEST_F(CliCall, SetStoresRawValues) {
  // RptPrint=1 is not "exactly true": the report is previewed, which needs a display.
  const Result result = Vantorel("call --report-path " + dir_.folder() + "t/ --db " + db_ +
                                 " --set RptPrint=1 --set DesigbeMode=0 ReceiptPrint 7");
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.out.find("display"), std::string::npos) << result.out;
}

TEST_F(CliCall, RenderWritesPdfAndPngs) {
  const std::string pdf = dir_.path().string() + "/out.pdf";
  const Result result = Vantorel("render " + dir_.folder() + "t/receipt.fr3 --db " + db_ +
                                 " --param q_rt.id=7 --pdf " + pdf);
  EXPECT_EQ(result.status, 0) << result.out;
  EXPECT_TRUE(std::filesystem::exists(pdf));
  const Result png = Vantorel("render " + dir_.folder() + "t/receipt.fr3 --db " + db_ + " --png " +
                              dir_.folder() + "png --dpi 50");
  EXPECT_EQ(png.status, 0) << png.out;
  EXPECT_TRUE(std::filesystem::exists(dir_.path() / "png" / "receipt-1.png"));
  const Result bad = Vantorel("render " + dir_.folder() + "t/receipt.fr3 --db " + db_ +
                              " --param q_rt.id=seven --pdf " + pdf);
  EXPECT_EQ(bad.status, 1);
  EXPECT_NE(bad.out.find("wants a whole number"), std::string::npos) << bad.out;
}

TEST_F(CliCall, CheckReportsProblemsAndContracts) {
  const Result ok = Vantorel("check " + dir_.folder() + "t/receipt.fr3");
  EXPECT_EQ(ok.status, 0) << ok.out;
  const Result contracts = Vantorel("check --contracts " + dir_.folder() + "t/receipt.fr3");
  EXPECT_EQ(contracts.status, 0) << "receipt has inwords and q_rt with id\n" << contracts.out;
  dir_.Write("t/challancus.fr3", "<report format=\"vantorel-template\" version=\"1\"/>");
  const Result missing = Vantorel("check --contracts " + dir_.folder() + "t/challancus.fr3");
  EXPECT_EQ(missing.status, 1);
  EXPECT_NE(missing.out.find("Challan_Customer needs a text named \"WORDS\""), std::string::npos)
      << missing.out;
  EXPECT_NE(missing.out.find("query named \"Q_CHL\""), std::string::npos) << missing.out;
}

}  // namespace
}  // namespace vantorel
