// Writing templates: what is read saves as it was written, an edit changes the file only where it
// was made, and every attribute the reader takes can be written.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>

#include "report/template/attributes.h"
#include "report/template/template_io.h"

namespace vantorel::report {
namespace {

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream content;
  content << in.rdbuf();
  return content.str();
}

std::vector<std::filesystem::path> FilesIn(const std::string& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry :
       std::filesystem::directory_iterator(std::string(VANTOREL_SOURCE_DIR) + "/" + folder)) {
    if (entry.path().extension() == ".fr3") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// The first line where "a" and "b" differ, for messages.
std::string FirstDifference(const std::string& a, const std::string& b) {
  const auto la = Lines(a), lb = Lines(b);
  for (size_t i = 0; i < std::max(la.size(), lb.size()); ++i) {
    const std::string x = i < la.size() ? la[i] : "<none>", y = i < lb.size() ? lb[i] : "<none>";
    if (x != y) return "line " + std::to_string(i + 1) + ":\n  was: " + x + "\n  now: " + y;
  }
  return "the same lines";
}

TEST(TemplateWriter, ShippedTemplatesSaveByteForByte) {
  size_t checked = 0;
  for (const char* folder : {"templates", "bench/templates", "fuzz/corpus/template"}) {
    for (const auto& path : FilesIn(folder)) {
      const std::string xml = ReadFile(path);
      std::vector<Problem> problems;
      const Template design = ParseTemplate(xml, path.string(), problems);
      // The fuzzing corpus holds broken templates on purpose; the shipped ones must all read.
      if (std::string_view(folder) != "fuzz/corpus/template") {
        EXPECT_TRUE(problems.empty()) << FormatProblems(problems);
      }
      if (!problems.empty()) continue;
      const std::string saved = WriteTemplate(design);
      EXPECT_EQ(saved, xml) << path << " " << FirstDifference(xml, saved);
      ++checked;
    }
  }
  EXPECT_GE(checked, 42u + 2u);
}

// The lines of "after" that differ from "before", which must have as many lines.
std::vector<std::pair<std::string, std::string>> ChangedLines(const std::string& before,
                                                              const std::string& after) {
  const auto a = Lines(before), b = Lines(after);
  EXPECT_EQ(a.size(), b.size());
  std::vector<std::pair<std::string, std::string>> changed;
  for (size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
    if (a[i] != b[i]) changed.emplace_back(a[i], b[i]);
  }
  return changed;
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  const size_t at = text.find(from);
  if (at != std::string::npos) text.replace(at, from.size(), to);
  return text;
}

TEST(TemplateWriter, AnObjectMadeWiderSavesAsThatWidthOnly) {
  const std::string path = std::string(VANTOREL_SOURCE_DIR) + "/templates/bulkreceipt.fr3";
  const std::string xml = ReadFile(path);
  Template design = ParseTemplate(xml, path);
  TextObject* caption = nullptr;
  for (DesignObject& object : design.title->objects) {
    auto* text = std::get_if<TextObject>(&object);
    if (text != nullptr && text->text == "Received from") caption = text;
  }
  ASSERT_NE(caption, nullptr);
  ASSERT_EQ(caption->box.width, static_cast<float>(Mm(32)));
  caption->box.width = static_cast<float>(Mm(35.5));
  const auto changed = ChangedLines(xml, WriteTemplate(design));
  ASSERT_EQ(changed.size(), 1u);
  EXPECT_EQ(changed[0].second, Replaced(changed[0].first, "width=\"32mm\"", "width=\"35.5mm\""));
  EXPECT_NE(changed[0].first, changed[0].second);
}

TEST(TemplateWriter, AStyleRecolouredSavesAsThatColourOnly) {
  const std::string path = std::string(VANTOREL_SOURCE_DIR) + "/templates/bulkreceipt.fr3";
  const std::string xml = ReadFile(path);
  Template design = ParseTemplate(xml, path);
  const auto found = std::find_if(design.styles.begin(), design.styles.end(),
                                  [](const Style& style) { return style.name == "key"; });
  ASSERT_NE(found, design.styles.end());
  Style& key = *found;
  key.spec.color = Color{0x12, 0x34, 0x56, 255};
  const auto changed = ChangedLines(xml, WriteTemplate(design));
  ASSERT_EQ(changed.size(), 1u);
  EXPECT_EQ(changed[0].second,
            Replaced(changed[0].first, "color=\"#555555\"", "color=\"#123456\""));
}

TEST(TemplateWriter, ALengthChangedKeepsItsUnit) {
  Template design = ParseTemplate(R"(<?xml version="1.0" encoding="UTF-8"?>
<report format="vantorel-template" version="1">
  <title height="1in"/>
</report>
)",
                                  "t.fr3");
  design.title->height = 108;
  EXPECT_NE(WriteTemplate(design).find("<title height=\"1.5in\"/>"), std::string::npos)
      << WriteTemplate(design);
}

TEST(TemplateWriter, NamedPageSizeAndOrientationStayAsWritten) {
  const std::string xml = R"(<?xml version="1.0" encoding="UTF-8"?>
<report format="vantorel-template" version="1">
  <page size="a5" orientation="landscape" margin="8mm"/>
</report>
)";
  Template design = ParseTemplate(xml, "t.fr3");
  EXPECT_EQ(WriteTemplate(design), xml);
  design.page.margin_left = design.page.margin_right = static_cast<float>(Mm(12));
  EXPECT_NE(WriteTemplate(design).find(
                "<page size=\"a5\" orientation=\"landscape\" margin=\"12mm 8mm 12mm 8mm\"/>"),
            std::string::npos)
      << WriteTemplate(design);
}

TEST(TemplateWriter, CommentsStayBeforeTheirElements) {
  const std::string xml = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- A test template. -->
<report format="vantorel-template" version="1">
  <database name="DMSDB"/>

  <!-- rows -->
  <!-- more about the rows -->
  <query name="q">
    <sql><![CDATA[select * from t where a < 1]]></sql>
    <!-- the id -->
    <param name="id"/>
  </query>
  <title height="5mm">
    <text width="10mm" height="5mm">A &amp; B</text>
    <!-- nothing after this -->
  </title>
</report>
)";
  Template design = ParseTemplate(xml, "t.fr3");
  EXPECT_EQ(WriteTemplate(design), xml);
  ASSERT_EQ(design.queries.at(0).written.notes.size(), 2u);
  EXPECT_EQ(design.queries[0].written.notes[1].text, " more about the rows ");
  // A new query goes after the last one, with no comments of its own.
  design.queries.push_back({"q2", "", "select 1", {}, 0, {}, {}});
  EXPECT_NE(WriteTemplate(design).find(
                "  </query>\n  <query name=\"q2\">\n    <sql>select 1</sql>\n  </query>\n  <title"),
            std::string::npos)
      << WriteTemplate(design);
}

TEST(TemplateWriter, LongTagsWrapAtOneHundredColumnsUnderTheFirstAttribute) {
  Template design;
  Band title;
  title.kind = BandKind::kTitle;
  title.height = static_cast<float>(Mm(10));
  TextObject text;
  text.name = "Words";
  text.box = {0, 0, static_cast<float>(Mm(190)), static_cast<float>(Mm(6))};
  text.style.font = "Noto Sans Devanagari";
  text.style.size = 9;
  text.style.bold = true;
  text.style.halign = HAlign::kCenter;
  text.style.valign = VAlign::kMiddle;
  text.text = "[A] & <b>";
  title.objects.push_back(text);
  design.title = title;
  EXPECT_EQ(WriteTemplate(design), R"(<?xml version="1.0" encoding="UTF-8"?>
<report format="vantorel-template" version="1">
  <title height="10mm">
    <text name="Words" width="190mm" height="6mm" font="Noto Sans Devanagari" size="9" bold="true"
          align="center" valign="middle">[A] &amp; &lt;b></text>
  </title>
</report>
)");
}

// ---- Every attribute the reader takes can be written ----

// A template around one element under test: "before" + its attributes + "after".
struct Frame {
  std::string before, after;
  std::map<std::string, std::string> required;  // attributes the element always needs
};

std::string WithAttribute(const Frame& frame, const std::string& name, const std::string& value) {
  std::map<std::string, std::string> attributes = frame.required;
  attributes[name] = value;
  std::string xml = frame.before;
  for (const auto& [n, v] : attributes) xml += " " + n + "=\"" + v + "\"";
  return xml + frame.after;
}

// Values other than the defaults, by attribute name, and by element where names are shared.
const std::map<std::string, std::string> kSamples = {
    {"name", "Some"},
    {"left", "3mm"},
    {"top", "4.5mm"},
    {"width", "21mm"},
    {"height", "7mm"},
    {"print-when", "Page &lt;&gt; 1"},
    {"style", "s"},
    {"format", "#,##0.00"},
    {"stretch", "grow"},
    {"shrink", "true"},
    {"hide-zero", "true"},
    {"trim", "true"},
    {"part", "letterhead"},
    {"file", "house2.xml"},
    {"font", "DejaVu Sans"},
    {"size", "8.5"},
    {"bold", "true"},
    {"italic", "yes"},
    {"underline", "True"},
    {"strikeout", "1"},
    {"color", "#102030"},
    {"fill", "gray"},
    {"align", "right"},
    {"valign", "middle"},
    {"wrap", "false"},
    {"clip", "false"},
    {"rich", "true"},
    {"rotate", "90"},
    {"line-spacing", "1.25"},
    {"char-spacing", "0.5pt"},
    {"border", "left top"},
    {"border-width", "1pt"},
    {"border-color", "red"},
    {"border-style", "dash"},
    {"padding", "1mm 2mm 3mm 4mm"},
    {"source", "[Company.logo]"},
    {"fit", "cover"},
    {"type", "code128"},
    {"data", "[q.x]"},
    {"level", "h"},
    {"show-text", "false"},
    {"background", "white"},
    {"x1", "5mm"},
    {"y1", "6mm"},
    {"x2", "7mm"},
    {"y2", "8mm"},
    {"grow-with-band", "true"},
    {"radius", "2mm"},
    {"keep-together", "true"},
    {"start-new-page", "true"},
    {"repeat", "true"},
    {"print-on-first-page", "false"},
    {"print-on-last-page", "false"},
    {"print-if-empty", "true"},
    {"query", "q"},
    {"rows", "3"},
    {"condition", "q.b"},
    {"repeat-header", "true"},
    {"orientation", "landscape"},
    {"margin", "5mm"},
    {"margin-left", "7mm"},
    {"margin-top", "7mm"},
    {"margin-right", "7mm"},
    {"margin-bottom", "7mm"},
    {"columns", "2"},
    {"column-gap", "3mm"},
    {"column-order", "across"},
    {"printer", "lp1"},
    {"count", "3"},
    {"per-sheet", "2"},
    {"label", "ORIGINAL"},
    {"database", "DMSDB"},
    {"default", "5"},
    {"value", "q.x"},
    {"category", "Company"},
    {"based-on", "s"},
    {"title", "A title"},
    {"author", "An author"},
    {"subject", "A subject"},
};
const std::map<std::string, std::string> kPageSamples = {{"size", "80mm auto"}};
const std::map<std::string, std::string> kParamSamples = {{"type", "integer"}};
const std::map<std::string, std::string> kLineSamples = {{"width", "1pt"}, {"style", "dot"}};
const std::map<std::string, std::string> kBandSamples = {{"stretch", "false"}};

constexpr const char* kHead = R"(<report format="vantorel-template" version="1">
<database name="DMSDB"/><query name="q"><sql>select 1</sql></query><style name="s"/>
)";

template <typename E>
void ExpectWritable(const AttributeTable<E>& table, const Frame& frame,
                    const std::function<E&(Template&)>& element,
                    const std::function<Written&(Template&)>& written,
                    const std::map<std::string, std::string>& own_samples = {}) {
  for (const AttributeSpec<E>& spec : table) {
    SCOPED_TRACE(spec.name);
    const auto own = own_samples.find(spec.name);
    const auto shared = kSamples.find(spec.name);
    if (own == own_samples.end() && shared == kSamples.end()) {
      ADD_FAILURE() << "no sample value for \"" << spec.name << "\"";
      continue;
    }
    const std::string xml =
        WithAttribute(frame, spec.name, own != own_samples.end() ? own->second : shared->second);
    std::vector<Problem> problems;
    Template read = ParseTemplate(xml, "t.fr3", problems);
    ASSERT_TRUE(problems.empty()) << FormatProblems(problems) << xml;
    const std::string key = AttributeKey(spec, element(read));
    EXPECT_NE(key, AttributeKey(spec, E{})) << "the sample is the default";
    written(read).attributes.clear();  // the writer gets no help from the file
    const std::string saved = WriteTemplate(read);
    Template again = ParseTemplate(saved, "saved.fr3", problems);
    ASSERT_TRUE(problems.empty()) << FormatProblems(problems) << saved;
    EXPECT_EQ(AttributeKey(spec, element(again)), key) << saved;
  }
}

TEST(TemplateWriter, EveryAttributeReadIsWritten) {
  const std::string head = kHead;
  const std::string tail = "\n</report>\n";
  ExpectWritable<Template>(
      {ReportAttributes().begin() + 2, ReportAttributes().end()},
      {"<report format=\"vantorel-template\" version=\"1\"", "/>", {}},
      [](Template& t) -> Template& { return t; },
      [](Template& t) -> Written& { return t.written; });
  ExpectWritable<Metadata>(
      InfoAttributes(), {head + "<info", "/>" + tail, {}},
      [](Template& t) -> Metadata& { return t.info; },
      [](Template& t) -> Written& { return t.info_written; });
  ExpectWritable<PageSetup>(
      PageAttributes(), {head + "<page", "/>" + tail, {}},
      [](Template& t) -> PageSetup& { return t.page; },
      [](Template& t) -> Written& { return t.page_written; }, kPageSamples);
  ExpectWritable<CopySetup>(
      CopiesAttributes(), {head + "<copies", "><copy/></copies>" + tail, {}},
      [](Template& t) -> CopySetup& { return t.copies; },
      [](Template& t) -> Written& { return t.copies.written; });
  ExpectWritable<Database>(
      DatabaseAttributes(), {head + "<database", "/>" + tail, {}},
      [](Template& t) -> Database& { return t.databases.at(1); },
      [](Template& t) -> Written& { return t.databases.at(1).written; });
  ExpectWritable<Query>(
      QueryAttributes(), {head + "<query", "><sql>select 2</sql></query>" + tail, {{"name", "q2"}}},
      [](Template& t) -> Query& { return t.queries.at(1); },
      [](Template& t) -> Written& { return t.queries.at(1).written; });
  ExpectWritable<QueryParam>(
      ParamAttributes(),
      {head + "<query name=\"q2\"><sql>select 2</sql><param", "/></query>" + tail, {{"name", "p"}}},
      [](Template& t) -> QueryParam& { return t.queries.at(1).params.at(0); },
      [](Template& t) -> Written& { return t.queries.at(1).params.at(0).written; }, kParamSamples);
  ExpectWritable<Variable>(
      VariableAttributes(), {head + "<variable", "/>" + tail, {{"name", "v"}}},
      [](Template& t) -> Variable& { return t.variables.at(0); },
      [](Template& t) -> Written& { return t.variables.at(0).written; });
  ExpectWritable<Style>(
      StyleAttributes(), {head + "<style", "/>" + tail, {{"name", "s2"}}},
      [](Template& t) -> Style& { return t.styles.at(1); },
      [](Template& t) -> Written& { return t.styles.at(1).written; });
  ExpectWritable<Band>(
      BandAttributes(), {head + "<title", "/>" + tail, {{"height", "5mm"}}},
      [](Template& t) -> Band& { return *t.title; },
      [](Template& t) -> Written& { return t.title->written; }, kBandSamples);
  ExpectWritable<DataBand>(
      DataAttributes(), {head + "<data", "/>" + tail, {{"height", "5mm"}}},
      [](Template& t) -> DataBand& { return t.data.at(0); },
      [](Template& t) -> Written& { return t.data.at(0).band.written; }, kBandSamples);
  ExpectWritable<Group>(
      GroupAttributes(),
      {head + "<data height=\"5mm\"><group", "/></data>" + tail, {{"condition", "q.a"}}},
      [](Template& t) -> Group& { return t.data.at(0).groups.at(0); },
      [](Template& t) -> Written& { return t.data.at(0).groups.at(0).written; });
  const auto object = [&](const char* tag, std::map<std::string, std::string> required) {
    return Frame{head + "<title height=\"5mm\"><" + tag, "/></title>" + tail, std::move(required)};
  };
  const std::map<std::string, std::string> box = {{"width", "10mm"}, {"height", "5mm"}};
  ExpectWritable<TextObject>(
      TextAttributes(), object("text", box),
      [](Template& t) -> TextObject& { return std::get<TextObject>(t.title->objects.at(0)); },
      [](Template& t) -> Written& { return std::get<TextObject>(t.title->objects.at(0)).written; });
  ExpectWritable<PictureObject>(
      PictureAttributes(), object("picture", box),
      [](Template& t) -> PictureObject& { return std::get<PictureObject>(t.title->objects.at(0)); },
      [](Template& t) -> Written& {
        return std::get<PictureObject>(t.title->objects.at(0)).written;
      });
  auto barcode = box;
  barcode["data"] = "x";
  ExpectWritable<BarcodeObject>(
      BarcodeAttributes(), object("barcode", barcode),
      [](Template& t) -> BarcodeObject& { return std::get<BarcodeObject>(t.title->objects.at(0)); },
      [](Template& t) -> Written& {
        return std::get<BarcodeObject>(t.title->objects.at(0)).written;
      });
  ExpectWritable<LineObject>(
      LineAttributes(), object("line", {{"x1", "0"}, {"y1", "0"}, {"x2", "0"}, {"y2", "0"}}),
      [](Template& t) -> LineObject& { return std::get<LineObject>(t.title->objects.at(0)); },
      [](Template& t) -> Written& { return std::get<LineObject>(t.title->objects.at(0)).written; },
      kLineSamples);
  ExpectWritable<RectObject>(
      RectAttributes(), object("rect", box),
      [](Template& t) -> RectObject& { return std::get<RectObject>(t.title->objects.at(0)); },
      [](Template& t) -> Written& { return std::get<RectObject>(t.title->objects.at(0)).written; });
  ExpectWritable<PartUse>(
      UseAttributes(), object("use", {{"part", "p"}}),
      [](Template& t) -> PartUse& { return std::get<PartUse>(t.title->objects.at(0)); },
      [](Template& t) -> Written& { return std::get<PartUse>(t.title->objects.at(0)).written; });
  ExpectWritable<LibraryRef>(
      LibraryAttributes(), {head + "<library", "/>" + tail, {}},
      [](Template& t) -> LibraryRef& { return t.library; },
      [](Template& t) -> Written& { return t.library.written; });
}

TEST(TemplateWriter, TheReaderRefusesAttributesTheTablesDoNotName) {
  std::vector<Problem> problems;
  ParseTemplate(std::string(kHead) + "<title height=\"5mm\" colour=\"red\"/></report>", "t.fr3",
                problems);
  ASSERT_EQ(problems.size(), 1u);
  EXPECT_NE(problems[0].message.find("no attribute \"colour\""), std::string::npos);
}

}  // namespace
}  // namespace vantorel::report
