// Apartment threading: every thread has its own report state and runs its own prints, with no
// locks in the component; shared services (platform, trace, default engine) stay safe.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "engine/scripted_engine.h"
#include "host/messages.h"
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
