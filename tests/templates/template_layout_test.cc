// Every shipped template's layout, pinned: each template printed through the component from the
// demo dealership's database (the prints of demo/demo_prints.h, as `make demo` prints them), its
// prepared document against tests/templates/layout/<template>.layout. A moved box or a changed
// line break is a changed line there.
//
// Our engine is given to the component with its layout written beside every PDF; the date, the
// time of day, the regional settings and the temporary folder come from a recording platform and
// the fonts from our private configuration, so the files depend on the templates, the data and
// the engine only. After an intended change, `make goldens` rewrites them for review.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "demo/demo_prints.h"
#include "report/binding/report_engine.h"
#include "support/shared_demo.h"
#include "support/test_support.h"
#include "vantorel/crepoter.h"
#include "vantorel/report_state.h"

namespace vantorel {
namespace {

namespace fs = std::filesystem;
using demo::DemoPrint;

const std::string kSource = VANTOREL_SOURCE_DIR;

std::string GoldenPath(const std::string& template_name) {
  return kSource + "/tests/templates/layout/" + template_name + ".layout";
}

// The demo database, copied into a folder of this test process from the files the test
// processes share: some prints change a setting in it first.
class Demo {
 public:
  static Demo& Get() {
    static Demo demo;
    return demo;
  }

  demo::PrintContext Context() const {
    demo::PrintContext context;
    context.db = dir_.path().string() + "/demo.db";
    context.facts = demo::ReadFacts(dir_.path().string() + "/facts.txt");
    context.logo = kSource + "/demo/assets/logo.png";
    context.folder = dir_.path().string();
    return context;
  }

 private:
  Demo() {
    const std::string shared = testing::SharedDemoFolder(DEMO_GEN);
    for (const char* file : {"demo.db", "facts.txt"}) {
      fs::copy_file(shared + "/" + file, dir_.path() / file);
    }
  }

  testing::TempDir dir_;
};

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  size_t at = 0;
  while (at < text.size()) {
    const size_t end = text.find('\n', at);
    lines.push_back(text.substr(at, end == std::string::npos ? std::string::npos : end - at));
    if (end == std::string::npos) break;
    at = end + 1;
  }
  return lines;
}

// Where "actual" differs from "expected" (the golden file), shortly: the lines a longest common
// subsequence leaves out, removed (-) before added (+), each run headed by its line number in the
// golden file, the first kShown of them.
std::string ShortDiff(const std::string& expected, const std::string& actual) {
  constexpr size_t kShown = 12;
  const std::vector<std::string> a = Lines(expected), b = Lines(actual);
  size_t head = 0;
  while (head < a.size() && head < b.size() && a[head] == b[head]) ++head;
  size_t tail = 0;
  while (tail < a.size() - head && tail < b.size() - head &&
         a[a.size() - 1 - tail] == b[b.size() - 1 - tail]) {
    ++tail;
  }
  const size_t n = a.size() - head - tail, m = b.size() - head - tail;
  // common[i * (m + 1) + j]: the longest common subsequence of what follows a[head + i] and
  // b[head + j]; files are a few thousand lines at most.
  std::vector<uint16_t> common((n + 1) * (m + 1), 0);
  auto at = [&](size_t i, size_t j) -> uint16_t& { return common[i * (m + 1) + j]; };
  for (size_t i = n; i-- > 0;) {
    for (size_t j = m; j-- > 0;) {
      at(i, j) = a[head + i] == b[head + j] ? static_cast<uint16_t>(at(i + 1, j + 1) + 1)
                                            : std::max(at(i + 1, j), at(i, j + 1));
    }
  }
  std::string diff;
  size_t changed = 0, shown = 0;
  bool in_run = false;
  auto add = [&](char mark, const std::string& line, size_t golden_line) {
    ++changed;
    if (shown == kShown) return;
    if (!in_run) diff += "@@ line " + std::to_string(golden_line) + "\n";
    in_run = true;
    diff += mark + line + "\n";
    ++shown;
  };
  for (size_t i = 0, j = 0; i < n || j < m;) {
    if (i < n && j < m && a[head + i] == b[head + j]) {
      in_run = false;
      ++i, ++j;
    } else if (i < n && (j == m || at(i + 1, j) >= at(i, j + 1))) {
      add('-', a[head + i], head + i + 1);
      ++i;
    } else {
      add('+', b[head + j], head + i + 1);
      ++j;
    }
  }
  if (changed > shown) diff += "… " + std::to_string(changed - shown) + " more changed line(s)\n";
  return diff;
}

struct Case {
  const DemoPrint* print;
};

void PrintTo(const Case& c, std::ostream* out) {
  *out << c.print->method << " printing " << c.print->template_name;
}

// The first print of each template, in the demo's order.
std::vector<const DemoPrint*> OnePrintPerTemplate() {
  std::vector<const DemoPrint*> prints;
  std::set<std::string> seen;
  for (const DemoPrint& print : demo::DemoPrints()) {
    if (seen.insert(print.template_name).second) prints.push_back(&print);
  }
  return prints;
}

std::vector<Case> Cases() {
  std::vector<Case> cases;
  for (const DemoPrint* print : OnePrintPerTemplate()) cases.push_back({print});
  return cases;
}

std::set<std::string> Stems(const std::string& folder, const std::string& extension) {
  std::set<std::string> stems;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() == extension) stems.insert(entry.path().stem().string());
  }
  return stems;
}

class TemplateLayout : public ::testing::TestWithParam<Case> {};

TEST_P(TemplateLayout, MatchesItsGoldenFile) {
  const DemoPrint& print = *GetParam().print;
  const demo::PrintContext context = Demo::Get().Context();
  testing::TempDir out;
  // The program's folder, which the firm's logo path (assets/logo.png) is relative to.
  std::filesystem::current_path(kSource + "/demo");
  testing::PlatformScope platform;
  platform->SetToday(Date::FromYmd(2024, 4, 30));
  platform->SetTimeOfDay(10, 30);
  platform->SetRegional({'/', "dd/mm/yyyy"});
  // Stickers find their pictures in the host's temporary folder.
  platform->SetEnvironment("TEMP", kSource + "/demo/assets");

  // The composition: the component prints with our engine, which writes the layout beside the
  // PDF; nothing of the component changes.
  CRepoter rep(report::MakeReportEngine({.layout_beside_pdf = true}));
  const std::string pdf = out.path().string() + "/" + print.name + ".pdf";
  rep.put_ReportPath(kSource + "/templates/");
  rep.put_DbConnectstring(context.db);
  rep.put_RptPDF(kTrue);
  rep.put_PDFPath(pdf);
  rep.put_AppPath(out.path().string());
  rep.put_FirmID(static_cast<uint8_t>(context.Id("firm_id")));
  rep.SetVars();
  if (print.prepare != nullptr) print.prepare(context);
  print.print(rep, context);

  EXPECT_TRUE(platform->messages().empty())
      << platform->messages()[0].text << " (LastMsg: " << rep.get_LastMsg() << ")";
  EXPECT_EQ(CurrentReportState().RptName, print.template_name);
  const std::string layout_file = report::LayoutPathBeside(pdf);
  ASSERT_TRUE(fs::exists(layout_file)) << "LastMsg: " << rep.get_LastMsg();
  const std::string layout = testing::ReadFile(layout_file);
  ASSERT_NE(layout.find("\npage 1 "), std::string::npos) << layout;

  // No text is cut off by a box that cannot grow.
  for (size_t at = layout.find("\noverflow "); at != std::string::npos;
       at = layout.find("\noverflow ", at + 1)) {
    ADD_FAILURE() << print.template_name << " cuts a text off: "
                  << layout.substr(at + 1, layout.find('\n', at + 1) - at - 1);
  }
  // Wording that reads like a test print, which no document may carry.
  for (const char* phrase :
       {"line(s)", "no(s)", "Finance: nil", "Finance: Nil", "\"Nil\"", "\"nil\"", "Certificate TR-",
        "IGST @ 0%", "S/W/D of", "By: Cash", "By: CASH", "full payment"}) {
    EXPECT_EQ(layout.find(phrase), std::string::npos)
        << print.template_name << " prints \"" << phrase << "\"";
  }
  // The amount in words never leaves its "ONLY" alone on a line.
  static const std::regex kLoneOnly(R"(\n\s*\| "ONLY[).]*"\n)");
  EXPECT_FALSE(std::regex_search(layout, kLoneOnly)) << print.template_name << " wraps ONLY alone";
  // A place written twice in a row: "Jejuri, Jejuri".
  static const std::regex kRepeatedPlace(R"(\b([A-Z][a-z]+), \1\b)");
  std::smatch repeat;
  EXPECT_FALSE(std::regex_search(layout, repeat, kRepeatedPlace))
      << print.template_name << " prints \"" << repeat.str() << "\"";

  // The e-invoice QR must scan from a 150 dpi copy: 25 mm or more wherever an IRN prints.
  if (layout.find("\"IRN") != std::string::npos ||
      layout.find("\"e-Invoice") != std::string::npos) {
    static const std::regex kBarcode(R"(\n\s*barcode [0-9.]+,[0-9.]+ ([0-9.]+)x([0-9.]+))");
    int codes = 0;
    for (std::sregex_iterator it(layout.begin(), layout.end(), kBarcode), end; it != end; ++it) {
      ++codes;
      EXPECT_GE(std::stod((*it)[1].str()), report::Mm(25) - 0.01) << print.template_name;
      EXPECT_GE(std::stod((*it)[2].str()), report::Mm(25) - 0.01) << print.template_name;
    }
    // A QR the host hands over as a picture (the e-invoice form) counts when it is 25 mm too.
    static const std::regex kImage(R"(\n\s*image [0-9.]+,[0-9.]+ ([0-9.]+)x([0-9.]+))");
    for (std::sregex_iterator it(layout.begin(), layout.end(), kImage), end; it != end; ++it) {
      if (std::stod((*it)[1].str()) >= report::Mm(25) - 0.01) ++codes;
    }
    EXPECT_GT(codes, 0) << print.template_name << " prints an IRN without a QR code of 25 mm";
  }

  const std::string golden = GoldenPath(print.template_name);
  if (std::getenv("VANTOREL_UPDATE_REFERENCE") != nullptr) {
    std::ofstream(golden, std::ios::binary) << layout;
  }
  ASSERT_TRUE(fs::exists(golden)) << golden << " is missing: make goldens writes it";
  const std::string expected = testing::ReadFile(golden);
  if (layout != expected) {
    ADD_FAILURE() << print.method << " " << demo::Arguments(print, context)
                  << " no longer lays out as " << golden
                  << " (make goldens rewrites it after an intended change):\n"
                  << ShortDiff(expected, layout);
  }
}

std::string CaseName(const ::testing::TestParamInfo<Case>& info) {
  return info.param.print->template_name;
}

INSTANTIATE_TEST_SUITE_P(Shipped, TemplateLayout, ::testing::ValuesIn(Cases()), CaseName);

TEST(TemplateLayouts, EveryShippedTemplateIsPrinted) {
  std::set<std::string> printed;
  for (const DemoPrint* print : OnePrintPerTemplate()) printed.insert(print->template_name);
  EXPECT_EQ(printed, Stems(kSource + "/templates", ".fr3"));
}

TEST(TemplateLayouts, EveryGoldenFileBelongsToAShippedTemplate) {
  const std::set<std::string> templates = Stems(kSource + "/templates", ".fr3");
  for (const std::string& golden : Stems(kSource + "/tests/templates/layout", ".layout")) {
    EXPECT_TRUE(templates.count(golden)) << "layout/" << golden << ".layout has no template";
  }
}

TEST(TemplateLayouts, ShortDiffShowsTheChangedLinesOnly) {
  const std::string golden = "document\npage 1\n  text 1,2 3x4 \"A\"\n  line 0,0 1,1\n";
  const std::string moved = "document\npage 1\n  text 1,4.83 3x4 \"A\"\n  line 0,0 1,1\n";
  EXPECT_EQ(ShortDiff(golden, moved),
            "@@ line 3\n"
            "-  text 1,2 3x4 \"A\"\n"
            "+  text 1,4.83 3x4 \"A\"\n");
  EXPECT_EQ(ShortDiff(golden, "document\npage 1\n  line 0,0 1,1\n"),
            "@@ line 3\n"
            "-  text 1,2 3x4 \"A\"\n");
}

TEST(TemplateLayouts, ShortDiffShowsChangesApartAsRunsOfTheirOwn) {
  std::string golden = "style 9 9.5\n";
  for (int i = 0; i < 20; ++i) golden += "  rect " + std::to_string(i) + "\n";
  golden += "  text 9 \"Sub.\"\n";
  std::string changed = golden;
  changed.replace(0, 11, "style 9 9.7");
  changed.replace(changed.find("  text 9"), std::string::npos,
                  "  text 9 lines=2\n    | \"Sub. \"\n    | \"Sale\"\n");
  EXPECT_EQ(ShortDiff(golden, changed),
            "@@ line 1\n"
            "-style 9 9.5\n"
            "+style 9 9.7\n"
            "@@ line 22\n"
            "-  text 9 \"Sub.\"\n"
            "+  text 9 lines=2\n"
            "+    | \"Sub. \"\n"
            "+    | \"Sale\"\n");
  std::string everything;
  for (int i = 0; i < 30; ++i) everything += "  line " + std::to_string(i) + "\n";
  EXPECT_NE(ShortDiff(golden, everything).find("… 40 more changed line(s)\n"), std::string::npos)
      << ShortDiff(golden, everything);
}

}  // namespace
}  // namespace vantorel
