// Hostile and careless templates inside the host's process: nesting past any real template is a
// clear problem with its line, never a crash, and the deepest template allowed loads, fills and
// prints on a thread with the 1 MB stack a host's worker thread may have.
#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>
#include <string>

#include "report/binding/report_engine.h"
#include "report/pdf/pdf_writer.h"
#include "report/template/template_io.h"
#include "report/text/rich_text.h"
#include "support/test_support.h"
#include "vantorel/error.h"

namespace vantorel::report {
namespace {

constexpr char kText[] = R"(<text left="0" top="0" width="40mm" height="5mm">deep</text>)";

std::string Report(const std::string& body) {
  return "<report format=\"vantorel-template\" version=\"1\">\n<page size=\"A4\"/>\n" + body +
         "\n</report>\n";
}

// "levels" data bands, each inside the one before; with the report element, "levels" + 1 deep.
std::string NestedData(int levels) {
  std::string open, close;
  for (int i = 0; i < levels; ++i) {
    open += "<data name=\"D" + std::to_string(i) + "\" height=\"5mm\" rows=\"1\">\n";
    close += "</data>";
  }
  return Report(open + kText + close);
}

// One data band holding "levels" child bands, each inside the one before.
std::string NestedChildren(int levels) {
  std::string open, close;
  for (int i = 0; i < levels; ++i) {
    open += "<child height=\"5mm\">\n";
    close += "</child>";
  }
  return Report("<data name=\"D\" height=\"5mm\" rows=\"2\">\n" + open + kText + close + "</data>");
}

std::vector<Problem> ProblemsOf(const std::string& xml) {
  try {
    CompileTemplate(xml, "deep.fr3");
  } catch (const TemplateError& error) {
    return error.problems();
  }
  return {};
}

// The stack a host thread may give us: 1 MB. Under AddressSanitizer every frame carries red
// zones around its locals and the limits are about the product's own frames, so the sanitized
// build gets four times as much.
#if defined(__SANITIZE_ADDRESS__)
constexpr size_t kSmallStack = size_t{4} << 20;
#else
constexpr size_t kSmallStack = size_t{1} << 20;
#endif

// Runs "work" on a thread whose whole stack is kSmallStack; an overflow kills the test.
void OnSmallStack(const std::function<void()>& work) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, kSmallStack), 0);
  struct Call {
    const std::function<void()>* work;
    std::string error;
  } call{&work, {}};
  pthread_t thread;
  ASSERT_EQ(pthread_create(
                &thread, &attributes,
                [](void* argument) -> void* {
                  auto* c = static_cast<Call*>(argument);
                  try {
                    (*c->work)();
                  } catch (const std::exception& error) {
                    c->error = error.what();
                  }
                  return nullptr;
                },
                &call),
            0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  EXPECT_EQ(call.error, "");
}

TEST(Limits, TenThousandNestedDataBandsAreAProblemNotACrash) {
  const auto problems = ProblemsOf(NestedData(10000));
  ASSERT_EQ(problems.size(), 1u) << FormatProblems(problems);
  EXPECT_EQ(problems[0].file, "deep.fr3");
  // The report element is on line 1 and the page on line 2: the band too deep is the 65th.
  EXPECT_EQ(problems[0].line, 2 + kMaxTemplateNesting);
  EXPECT_NE(problems[0].message.find("nested too deeply"), std::string::npos);
}

TEST(Limits, TenThousandNestedChildBandsAreAProblemNotACrash) {
  const auto problems = ProblemsOf(NestedChildren(10000));
  ASSERT_EQ(problems.size(), 1u) << FormatProblems(problems);
  EXPECT_NE(problems[0].message.find("nested too deeply"), std::string::npos);
  EXPECT_GT(problems[0].line, 0);
}

TEST(Limits, AnyElementNestedTooDeeplyIsRefusedBeforeReading) {
  std::string open, close;
  for (int i = 0; i < 100000; ++i) open += "<x>", close += "</x>";
  const auto problems = ProblemsOf(Report(open + close));
  ASSERT_EQ(problems.size(), 1u);
  EXPECT_NE(problems[0].message.find("nested too deeply"), std::string::npos);
}

TEST(Limits, TheDeepestTemplateAllowedPrintsOnAOneMegabyteStack) {
  testing::TempDir folder;
  // The report element and the text are a level each; the rest are bands.
  for (const std::string& xml :
       {NestedData(kMaxTemplateNesting - 2), NestedChildren(kMaxTemplateNesting - 3)}) {
    ASSERT_TRUE(ProblemsOf(xml).empty()) << FormatProblems(ProblemsOf(xml));
    const std::string path = folder.Write("deep.fr3", xml);
    size_t pages = 0, bytes = 0;
    OnSmallStack([&] {
      RenderRequest request;
      request.template_path = path;
      const Rendered rendered = RenderTemplate(request);
      pages = rendered.document.pages.size();
      bytes = PdfBytes(rendered.document).size();
    });
    EXPECT_GE(pages, 1u);
    EXPECT_GT(bytes, 1000u);
  }
}

TEST(Limits, TheDeepestExpressionAllowedEvaluatesOnAOneMegabyteStack) {
  // "and" chains nest one level per term; the parser allows a tree this deep and no deeper.
  std::string condition = "1 = 1";
  for (int i = 0; i < 198; ++i) condition += " and (2 = 2)";
  testing::TempDir folder;
  const std::string path =
      folder.Write("deep.fr3", Report("<data name=\"D\" height=\"5mm\" rows=\"3\" print-when=\"" +
                                      condition + "\">" + kText + "</data>"));
  size_t texts = 0;
  OnSmallStack([&] {
    RenderRequest request;
    request.template_path = path;
    const Rendered rendered = RenderTemplate(request);
    for (const Item& item : rendered.document.pages.at(0).items) {
      texts += std::holds_alternative<TextItem>(item);
    }
  });
  EXPECT_EQ(texts, 3u);
  condition += " and (2 = 2)";
  const auto problems =
      ProblemsOf(Report("<data name=\"D\" height=\"5mm\" rows=\"1\" print-when=\"" + condition +
                        "\">" + kText + "</data>"));
  ASSERT_EQ(problems.size(), 1u);
  EXPECT_NE(problems[0].message.find("too deeply nested"), std::string::npos);
}

TEST(Limits, ATemplatePathThatIsAFolderSaysSo) {
  testing::TempDir folder;
  try {
    ReadTemplateFile(folder.path().string());
    FAIL() << "no error";
  } catch (const TemplateError& error) {
    ASSERT_EQ(error.problems().size(), 1u);
    EXPECT_EQ(error.problems()[0].message, "the template path is a folder, not a template file");
  }
  try {
    RenderRequest request;
    request.template_path = folder.path().string();
    RenderTemplate(request);
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_NE(error.description().find("is a folder"), std::string::npos) << error.description();
    EXPECT_EQ(error.description().find("XML"), std::string::npos) << error.description();
  }
}

TEST(Limits, AnErrorInAHugeExpressionQuotesOnlyItsNeighbourhood) {
  // A 200 KB literal, then the mistake at the very end.
  const std::string condition = "'" + std::string(200000, 'n') + "' = 'x' and 2 = 2 and (3 = ";
  const auto problems =
      ProblemsOf(Report("<data name=\"D\" height=\"5mm\" rows=\"1\" print-when=\"" + condition +
                        "\">" + kText + "</data>"));
  ASSERT_EQ(problems.size(), 1u) << FormatProblems(problems).substr(0, 2000);
  const std::string& message = problems[0].message;
  EXPECT_LT(message.size(), 300u) << message.substr(0, 400);
  EXPECT_NE(message.find("print-when"), std::string::npos) << message;
  EXPECT_NE(message.find("line 1, column " + std::to_string(condition.size() + 1)),
            std::string::npos)
      << message;
  EXPECT_NE(message.find("\u2026nnn' = 'x' and 2 = 2 and (3 = \""), std::string::npos) << message;
  EXPECT_LT(FormatProblems(problems).size(), 400u);
}

TEST(Limits, ProblemListsAndTextsAreBoundedWhenShownToTheHost) {
  std::vector<Problem> problems(30, Problem{"t.fr3", 3, std::string(5000, 'x'), "a hint"});
  const std::string shown = FormatProblems(problems, 20);
  EXPECT_LT(shown.size(), 20u * 400u);
  EXPECT_NE(shown.find("\u2026 and 10 more problems"), std::string::npos);
  EXPECT_NE(shown.find(std::string(kMaxProblemText, 'x') + "\u2026 (a hint)"), std::string::npos);
}

TEST(Limits, FontTagsNestedPastTheLimitKeepTheDeepestFont) {
  std::string markup = "<font face=\"" + std::string(100000, 'F') + "\">";
  for (int i = 0; i < 100000; ++i) markup += "<font size=\"9\">";
  markup += "x";
  for (int i = 0; i < 100001; ++i) markup += "</font>";
  markup += "y";
  const text::PlainText plain = text::ParseRichText(markup);
  EXPECT_EQ(plain.text, "xy");
  ASSERT_EQ(plain.spans.size(), 1u);  // "y" is back to the style's own font
  EXPECT_EQ(plain.spans[0].size, 9.0f);
  EXPECT_EQ(plain.spans[0].face.size(), 100000u);
}

}  // namespace
}  // namespace vantorel::report
