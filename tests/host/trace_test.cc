#include "host/trace.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "host/messages.h"
#include "support/test_support.h"

namespace vantorel {
namespace {

TEST(Trace, AppendsOneJsonObjectPerLineInOrder) {
  testing::TraceCapture capture;
  trace::Event("OpenRs").Text("sql", "select 'x' from \"t\"\n").Write();
  trace::Event("SetPreviewFeatures").Number("value", 1081).Write();
  trace::Event("SetConnected").Text("db", "DMSDB").Flag("value", true).Write();
  const auto events = capture.Events();
  ASSERT_EQ(events.size(), 3u);
  EXPECT_EQ(events[0]["sql"], "select 'x' from \"t\"\n");
  EXPECT_EQ(events[1]["value"], 1081);
  EXPECT_EQ(events[2]["value"], true);
}

TEST(Trace, EscapesControlCharactersAndKeepsUtf8) {
  EXPECT_EQ(trace::Quote("a\x01\tb"), "\"a\\u0001\\tb\"");
  EXPECT_EQ(trace::Quote("₹ नमस्ते"), "\"₹ नमस्ते\"");
}

TEST(Trace, MessageBoxesAreTraced) {
  testing::TraceCapture capture;
  testing::PlatformScope platform;
  ShowMessage("Challan Id [12] not found", MessageIcon::kCritical);
  const auto events = capture.Events();
  ASSERT_EQ(events.size(), 1u);
  EXPECT_EQ(events[0],
            nlohmann::json::parse(
                R"({"op":"MessageBox","text":"Challan Id [12] not found","icon":"critical"})"));
}

TEST(Trace, NothingIsWrittenWhenOff) {
  ::unsetenv("VANTOREL_TRACE");
  EXPECT_FALSE(trace::Enabled());
  trace::Event("LastMsg").Text("text", "x").Write();  // must not fail
}

}  // namespace
}  // namespace vantorel
