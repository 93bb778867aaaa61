// Apartment threading: every thread has its own report state and runs its own prints, with no
// locks in the component; shared services (platform, trace, default engine) stay safe.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <thread>
#include <vector>

#include "engine/scripted_engine.h"
#include "host/messages.h"
#include "support/shell.h"
#include "support/test_support.h"
#include "vantorel/crepoter.h"
#include "vantorel/report_state.h"

namespace vantorel {
namespace {

TEST(Threads, EachThreadPrintsWithItsOwnState) {
  testing::TempDir dir;
  testing::TraceCapture trace;
  testing::PlatformScope platform;
  constexpr int kThreads = 4;
  constexpr int kRuns = 25;
  for (int t = 0; t < kThreads; ++t) {
    dir.Write("t" + std::to_string(t) + "/invoice.fr3", "template");
  }
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      auto engine = std::make_shared<engine::ScriptedEngine>();
      engine->AddTemplate("invoice", {{{"DMSDB", engine::ComponentKind::kDatabase}}});
      CRepoter rep(engine);
      const std::string folder = dir.folder() + "t" + std::to_string(t) + "/";
      rep.put_ReportPath(folder);
      rep.put_FirmID(static_cast<uint8_t>(t));
      rep.put_RptPDF(kTrue);
      rep.put_AppPath("/app" + std::to_string(t));
      rep.SetVars();
      for (int i = 0; i < kRuns; ++i) {
        rep.SuperReport("invoice");
        if (CurrentReportState().ReportPath != folder ||
            CurrentReportState().FirmID != static_cast<uint8_t>(t) ||
            CurrentReportState().PDFPath != "/app" + std::to_string(t) + "\\export.pdf" ||
            rep.get_LastMsg() != "Run setfrx is ok ") {
          ++wrong;
        }
      }
      if (engine->observed().reports_created != kRuns) ++wrong;
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(wrong.load(), 0);
  // Every line of every thread arrived whole.
  EXPECT_GT(trace.Events().size(), static_cast<size_t>(kThreads * kRuns * 10));
}

using testing::PdfText;

// Our own engine on several threads at once: templates, fonts, text layouts, barcodes and
// pictures are cached between runs, some of them across threads.
TEST(Threads, ReportsRenderToPdfOnSeveralThreadsAtOnce) {
  testing::TempDir dir;
  testing::PlatformScope platform;
  const std::string db = dir.path().string() + "/dms.db";
  {
    sqlite3* handle = nullptr;
    ASSERT_EQ(sqlite3_open(db.c_str(), &handle), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(handle, R"(
      create table line (n integer primary key, descr text, amount numeric(12,2));
      with recursive c(n) as (select 1 union all select n + 1 from c where n < 150)
        insert into line select n, 'Spare part ' || n || ' for Vayu Sakhi 110 and its kit', n * 10.25 from c;
    )",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);
    sqlite3_close(handle);
  }
  dir.Write("register.fr3", R"(<report format="vantorel-template" version="1" name="register">
  <page size="A4" margin="10mm"/>
  <database name="DMSDB"/>
  <query name="Q" database="DMSDB"><sql>select * from line order by n</sql></query>
  <title height="24mm">
    <text width="120mm" height="8mm" size="14" bold="true">शिवनेरी मोटर्स — Stock register</text>
    <barcode left="160mm" width="20mm" height="20mm" type="qr" data="[Count(Q.n)] lines"/>
  </title>
  <page-footer height="6mm"><text width="190mm" height="6mm" align="center">Page [Page] of [TotalPages]</text></page-footer>
  <data name="Rows" query="Q" height="6mm">
    <text width="15mm" height="6mm">[Q.n]</text>
    <text left="15mm" width="60mm" height="6mm" stretch="grow">[Q.descr]</text>
    <text left="80mm" width="30mm" height="6mm" align="right" format="#,##,##0.00">[Q.amount]</text>
  </data>
  <summary height="8mm"><text width="110mm" height="8mm" align="right">Total ₹ [Format(Sum(Q.amount), "#,##,##0.00")]</text></summary>
</report>
)");
  constexpr int kThreads = 4;
  constexpr int kRuns = 3;
  std::atomic<int> failed{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      CRepoter rep;
      rep.put_ReportPath(dir.folder());
      rep.put_DbConnectstring(db);
      rep.put_RptPDF(kTrue);
      rep.SetVars();
      for (int i = 0; i < kRuns; ++i) {
        const std::string pdf =
            dir.path().string() + "/out-" + std::to_string(t) + "-" + std::to_string(i) + ".pdf";
        rep.put_PDFPath(pdf);
        rep.SetVars();
        rep.SuperReport("register");
        if (rep.get_LastMsg() != "Run setfrx is ok " || !std::filesystem::exists(pdf)) ++failed;
      }
    });
  }
  for (auto& thread : threads) thread.join();
  ASSERT_EQ(failed.load(), 0);
  const std::string first = PdfText(dir.path().string() + "/out-0-0.pdf");
  EXPECT_NE(first.find("Total ₹ 1,16,081.25"), std::string::npos) << first;
  EXPECT_NE(first.find("शिवनेरी मोटर्स"), std::string::npos);
  for (int t = 0; t < kThreads; ++t) {
    for (int i = 0; i < kRuns; ++i) {
      EXPECT_EQ(PdfText(dir.path().string() + "/out-" + std::to_string(t) + "-" +
                        std::to_string(i) + ".pdf"),
                first)
          << "thread " << t << " run " << i;
    }
  }
}

TEST(Threads, PlatformAndHandlersCanBeSwappedWhileOthersPrint) {
  std::atomic<bool> stop{false};
  std::atomic<int> shown{0};
  auto recording = std::make_shared<RecordingPlatform>();
  SetMessageBoxHandler([&](const std::string&, MessageIcon) { ++shown; });
  std::thread swapper([&] {
    while (!stop) {
      SetMessageBoxHandler([&](const std::string&, MessageIcon) { ++shown; });
      SetPlatform(recording);
      SetPlatform(nullptr);
    }
  });
  std::vector<std::thread> users;
  for (int t = 0; t < 3; ++t) {
    users.emplace_back([] {
      for (int i = 0; i < 200; ++i) {
        ShowMessage("message", MessageIcon::kNone);
        (void)CurrentPlatform()->Today();
      }
    });
  }
  for (auto& user : users) user.join();
  stop = true;
  swapper.join();
  SetMessageBoxHandler(nullptr);
  // Every message went to exactly one of the two, whichever was installed at the time.
  EXPECT_EQ(shown.load() + static_cast<int>(recording->messages().size()), 3 * 200);
}

}  // namespace
}  // namespace vantorel
