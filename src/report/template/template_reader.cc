// Reads the ".fr3" XML into the design model. Every element and attribute is checked; unknown
// ones, bad values and missing required values are collected with their line and a hint, and
// reported together. The file's characters are an XmlSource's, attribute values an
// AttributeReader's and bands a BandReader's; here are the report-wide elements, libraries and
// parts, and the entry points of template_io.h and library.h.
#include <pugixml.hpp>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <optional>

#include "host/native_path.h"
#include "report/expr/text_util.h"
#include "report/template/attribute_reader.h"
#include "report/template/attributes.h"
#include "report/template/band_reader.h"
#include "report/template/library.h"
#include "report/template/template_io.h"
#include "report/template/xml_source.h"
#include "vantorel/error.h"

namespace vantorel::report {
namespace {

// Reads a whole file: a template's report-wide elements (page, copies, library, databases,
// queries, variables, styles) and the bands under them, a library, or one part of a library.
class TemplateReader {
 public:
  TemplateReader(std::string_view xml, std::string file) : source_(xml, std::move(file)) {}

  // Reads everything it can; the problems found are in problems().
  Template ReadAll() {
    pugi::xml_document doc;
    const pugi::xml_node root = source_.Load(doc);
    if (!root) return {};
    Template design;
    if (std::string_view(root.name()) != "report") {
      source_.Add(root, std::string("the root element is <") + root.name() + ">, not <report>",
                  "a template starts with <report format=\"vantorel-template\" version=\"1\">");
      return {};
    }
    ReadReport(root, design);
    return design;
  }

  Library ReadLibrary() {
    Library library;
    library.file = source_.file();
    pugi::xml_document doc;
    const pugi::xml_node root = source_.Load(doc);
    if (!root) return library;
    if (std::string_view(root.name()) != "library" ||
        std::string_view(root.attribute("format").value()) != "vantorel-library") {
      source_.Add(root, "this is not a Vantorel house library",
                  "a library starts with <library format=\"vantorel-library\" version=\"1\">");
      return library;
    }
    attributes_.Check(root, {"format", "version", "name"});
    if (std::string_view(root.attribute("version").value()) !=
        std::to_string(kTemplateFormatVersion)) {
      source_.Add(root,
                  "library format version \"" + std::string(root.attribute("version").value()) +
                      "\" is not supported",
                  "this Vantorel reads version " + std::to_string(kTemplateFormatVersion));
      return library;
    }
    for (const pugi::xml_node& node : root.children()) {
      if (node.type() != pugi::node_element) continue;
      const std::string_view name = node.name();
      if (name == "style") {
        Style style = ReadStyleElement(node);
        if (std::any_of(library.styles.begin(), library.styles.end(),
                        [&](const Style& s) { return s.name == style.name; })) {
          source_.Add(style.line, "style \"" + style.name + "\" is defined twice");
        }
        library.styles.push_back(std::move(style));
      } else if (name == "part") {
        ReadPartSource(node, library);
      } else {
        attributes_.Unknown(node, "<library>", {"style", "part"});
      }
    }
    return library;
  }

  // The objects, queries and variables of the one <part> the XML holds.
  PartBody ReadPartBody() {
    PartBody body;
    pugi::xml_document doc;
    const pugi::xml_node root = source_.Load(doc);
    if (!root) return body;
    Template scratch;  // ReadQuery's home
    for (const pugi::xml_node& node : root.children()) {
      if (node.type() != pugi::node_element) continue;
      const std::string_view name = node.name();
      if (auto object = bands_.ReadObject(node)) {
        body.objects.push_back(std::move(*object));
      } else if (name == "query") {
        ReadQuery(node, scratch);
      } else if (name == "variable") {
        body.variables.push_back(ReadVariable(node));
      } else if (name != "param") {
        attributes_.Unknown(
            node, "<part>",
            {"param", "query", "variable", "text", "picture", "barcode", "line", "rect", "use"});
      }
    }
    body.queries = std::move(scratch.queries);
    return body;
  }

  // Styles of a library the file's texts may use.
  void KnowStyles(const std::vector<Style>& styles) {
    for (const Style& style : styles) {
      bands_.KnowStyle(style.name, style.spec.based_on, style.spec.rich);
    }
  }

  std::vector<Problem>& problems() { return source_.problems(); }

 private:
  // A <part>: its parameters, and its XML as the file wrote it.
  void ReadPartSource(const pugi::xml_node& node, Library& library) {
    attributes_.Check(node, {"name"});
    PartSource part;
    part.name = attributes_.Text(node, "name", true);
    part.line = source_.Line(node);
    if (library.FindPart(part.name) != nullptr) {
      source_.Add(part.line, "part \"" + part.name + "\" is defined twice");
    }
    for (const pugi::xml_node& param : node.children("param")) {
      attributes_.Check(param, {"name", "default"});
      PartParam declared{attributes_.Text(param, "name", true), std::nullopt, source_.Line(param)};
      if (param.attribute("default")) declared.default_value = param.attribute("default").value();
      if (part.FindParam(declared.name) != nullptr) {
        source_.Add(declared.line, "parameter \"" + declared.name + "\" is declared twice");
      }
      if (UseAttributes().end() != std::find_if(UseAttributes().begin(), UseAttributes().end(),
                                                [&](const AttributeSpec<PartUse>& spec) {
                                                  return declared.name == spec.name;
                                                })) {
        source_.Add(declared.line,
                    "a part cannot have a parameter called \"" + declared.name + "\"",
                    "part, name, left, top and print-when are the attributes of <use> itself");
      }
      part.params.push_back(std::move(declared));
    }
    part.xml = source_.ElementXml(node);
    library.parts.push_back(std::move(part));
  }

  // A paper name, "<width> <height>", or "<width> auto" for roll paper.
  void ReadPageSize(const pugi::xml_node& node, PageSetup& page) {
    const std::string size = node.attribute("size").value();
    bool known = false;
    for (const PaperSize& named : kPaperSizes) {
      if (expr::EqualsIgnoreCase(size, named.name)) {
        page.size = {static_cast<float>(Mm(named.width)), static_cast<float>(Mm(named.height))};
        known = true;
      }
    }
    if (!known) {
      const auto words = Words(size);
      std::optional<float> width = words.size() == 2 ? ParseLength(words[0]) : std::nullopt;
      std::optional<float> height;
      if (words.size() == 2 && words[1] == "auto") {
        page.roll = true;
        height = static_cast<float>(Mm(297));
      } else if (words.size() == 2) {
        height = ParseLength(words[1]);
      }
      if (!width || !height || *width <= 0 || *height <= 0) {
        source_.Add(
            source_.Line(node), "page size \"" + size + "\" is not known",
            "use A3, A4, A5, A6, B5, Letter, Legal, \"<width> <height>\" or \"<width> auto\" "
            "for roll paper");
      } else {
        page.size = {*width, *height};
      }
    }
  }

  void ReadPage(const pugi::xml_node& node, PageSetup& page) {
    attributes_.Check(node, AttributeNames(PageAttributes()));
    if (node.attribute("size")) ReadPageSize(node, page);
    page.landscape =
        attributes_.Choice<bool>(node, "orientation", {{"portrait", false}, {"landscape", true}})
            .value_or(false);
    if (page.landscape && !page.roll) std::swap(page.size.width, page.size.height);
    if (const auto sides = attributes_.Sides(node, "margin")) {
      page.margin_left = (*sides)[0];
      page.margin_top = (*sides)[1];
      page.margin_right = (*sides)[2];
      page.margin_bottom = (*sides)[3];
    }
    page.margin_left = attributes_.Length(node, "margin-left").value_or(page.margin_left);
    page.margin_top = attributes_.Length(node, "margin-top").value_or(page.margin_top);
    page.margin_right = attributes_.Length(node, "margin-right").value_or(page.margin_right);
    page.margin_bottom = attributes_.Length(node, "margin-bottom").value_or(page.margin_bottom);
    if (const auto columns = attributes_.Number(node, "columns")) {
      if (*columns < 1 || *columns > 50 || *columns != std::floor(*columns)) {
        source_.Add(node, "\"columns\" must be a whole number from 1 to 50");
      } else {
        page.columns = static_cast<int>(*columns);
      }
    }
    page.column_gap = attributes_.Length(node, "column-gap").value_or(0);
    page.columns_across =
        attributes_.Choice<bool>(node, "column-order", {{"down", false}, {"across", true}})
            .value_or(false);
    page.printer = attributes_.Text(node, "printer");
    if (page.margin_left + page.margin_right >= page.size.width ||
        (!page.roll && page.margin_top + page.margin_bottom >= page.size.height)) {
      source_.Add(node, "the margins leave no room on the page");
    }
  }

  void ReadQuery(const pugi::xml_node& node, Template& design) {
    attributes_.Check(node, AttributeNames(QueryAttributes()));
    Query query;
    query.line = source_.Line(node);
    query.name = attributes_.Text(node, "name", true);
    query.database = attributes_.Text(node, "database");
    for (const pugi::xml_node& child : node.children()) {
      if (child.type() != pugi::node_element) continue;
      const std::string_view name = child.name();
      if (name == "sql") {
        attributes_.Check(child, {});
        query.sql = Trimmed(child.text().get());
        query.sql_written = attributes_.Record(child, AttributeTable<Query>(), query);
      } else if (name == "param") {
        attributes_.Check(child, AttributeNames(ParamAttributes()));
        QueryParam param;
        param.line = source_.Line(child);
        param.name = attributes_.Text(child, "name", true);
        param.type = attributes_
                         .Choice<ParamType>(child, "type",
                                            {{"integer", ParamType::kInteger},
                                             {"number", ParamType::kNumber},
                                             {"text", ParamType::kText},
                                             {"date", ParamType::kDate}})
                         .value_or(ParamType::kText);
        param.default_value = attributes_.Text(child, "default");
        param.value = attributes_.Text(child, "value");
        param.written = attributes_.Record(child, ParamAttributes(), param);
        query.params.push_back(std::move(param));
      } else {
        attributes_.Unknown(child, "<query>", {"sql", "param"});
      }
    }
    if (query.sql.empty()) {
      source_.Add(query.line, "query \"" + query.name + "\" has no <sql>",
                  "the print method may set it, but the template should hold a working default");
    }
    query.written = attributes_.Record(node, QueryAttributes(), query);
    design.queries.push_back(std::move(query));
  }

  void ReadReport(const pugi::xml_node& root, Template& design) {
    attributes_.Check(root, AttributeNames(ReportAttributes()));
    const std::string format = attributes_.Text(root, "format");
    if (format != "vantorel-template") {
      source_.Add(root, "this is not a Vantorel template (format=\"" + format + "\")",
                  "the root element is <report format=\"vantorel-template\" version=\"1\">");
      return;
    }
    const std::string version = attributes_.Text(root, "version");
    if (version != std::to_string(kTemplateFormatVersion)) {
      source_.Add(root, "template format version \"" + version + "\" is not supported",
                  "this Vantorel reads version " + std::to_string(kTemplateFormatVersion) +
                      "; a newer template needs a newer Vantorel");
      return;
    }
    design.name = attributes_.Text(root, "name");
    design.written = attributes_.Record(root, ReportAttributes(), design);
    // Whether a text is rich decides how its content is read, and its style — the template's
    // own, or the library's — may say so.
    if (const pugi::xml_node library = root.child("library")) {
      design.library.styles = LibraryStyles(library.attribute("file").value());
      KnowStyles(design.library.styles);
    }
    for (const pugi::xml_node& node : root.children("style")) {
      bands_.KnowStyle(
          node.attribute("name").value(), node.attribute("based-on").value(),
          node.attribute("rich") ? ParseFlag(node.attribute("rich").value()) : std::nullopt);
    }
    for (const pugi::xml_node& node : root.children()) {
      if (node.type() == pugi::node_element) ReadReportElement(node, design);
    }
  }

  // One element under <report>.
  void ReadReportElement(const pugi::xml_node& node, Template& design) {
    const std::string_view name = node.name();
    if (name == "info") {
      attributes_.Check(node, AttributeNames(InfoAttributes()));
      design.info.title = attributes_.Text(node, "title");
      design.info.author = attributes_.Text(node, "author");
      design.info.subject = attributes_.Text(node, "subject");
      design.info_written = attributes_.Record(node, InfoAttributes(), design.info);
    } else if (name == "page") {
      ReadPage(node, design.page);
      design.has_page = true;
      design.page_written = attributes_.Record(node, PageAttributes(), design.page);
    } else if (name == "copies") {
      ReadCopies(node, design.copies);
    } else if (name == "database") {
      attributes_.Check(node, AttributeNames(DatabaseAttributes()));
      Database database{attributes_.Text(node, "name", true), source_.Line(node), {}};
      database.written = attributes_.Record(node, DatabaseAttributes(), database);
      design.databases.push_back(std::move(database));
    } else if (name == "query") {
      ReadQuery(node, design);
    } else if (name == "variable") {
      design.variables.push_back(ReadVariable(node));
    } else if (name == "style") {
      Style style = ReadStyleElement(node);
      if (design.FindStyle(style.name) != nullptr)
        source_.Add(node, "style \"" + style.name + "\" is defined twice");
      design.styles.push_back(std::move(style));
    } else if (name == "library") {
      attributes_.Check(node, AttributeNames(LibraryAttributes()));
      if (design.library.line != 0) source_.Add(node, "a template uses one <library>");
      design.library.file = attributes_.Text(node, "file", true);
      design.library.line = source_.Line(node);
      const std::string& file = design.library.file;
      if (file.find_first_of("/\\") != std::string::npos || file == "." || file == "..") {
        source_.Add(node, "the library \"" + file + "\" must be a file name, without a folder",
                    "the house library lives in the template folder, beside the templates");
      }
      design.library.written = attributes_.Record(node, LibraryAttributes(), design.library);
    } else if (name == "page-header") {
      ReadSingleBand(node, BandKind::kPageHeader, design.page_header);
    } else if (name == "page-footer") {
      ReadSingleBand(node, BandKind::kPageFooter, design.page_footer);
    } else if (name == "title") {
      ReadSingleBand(node, BandKind::kTitle, design.title);
    } else if (name == "summary") {
      ReadSingleBand(node, BandKind::kSummary, design.summary);
    } else if (name == "column-header") {
      ReadSingleBand(node, BandKind::kColumnHeader, design.column_header);
    } else if (name == "column-footer") {
      ReadSingleBand(node, BandKind::kColumnFooter, design.column_footer);
    } else if (name == "data") {
      design.data.push_back(bands_.ReadData(node));
    } else {
      attributes_.Unknown(node, "<report>",
                          {"info", "page", "copies", "library", "database", "query", "variable",
                           "style", "page-header", "page-footer", "title", "summary",
                           "column-header", "column-footer", "data"});
    }
  }

  // The styles of the library "name" in the template's folder; none when it cannot be read (the
  // expansion of parts says why).
  std::vector<Style> LibraryStyles(const std::string& name) const {
    if (name.empty() || name.find_first_of("/\\") != std::string::npos || name == "." ||
        name == "..") {
      return {};
    }
    const std::string path = (std::filesystem::path(source_.file()).parent_path() / name).string();
    try {
      const std::string xml = ReadTemplateFile(path);
      if (xml.size() > kMaxLibraryBytes) return {};
      std::vector<Problem> ignored;
      return ParseLibrary(xml, path, ignored).styles;
    } catch (const TemplateError&) {
      return {};
    }
  }

  Variable ReadVariable(const pugi::xml_node& node) {
    attributes_.Check(node, AttributeNames(VariableAttributes()));
    Variable variable{attributes_.Text(node, "category"),
                      attributes_.Text(node, "name", true),
                      attributes_.Text(node, "value"),
                      source_.Line(node),
                      {}};
    variable.written = attributes_.Record(node, VariableAttributes(), variable);
    return variable;
  }

  Style ReadStyleElement(const pugi::xml_node& node) {
    attributes_.Check(node, AttributeNames(StyleAttributes()));
    Style style;
    style.line = source_.Line(node);
    style.spec.based_on = attributes_.Text(node, "based-on");
    attributes_.Style(node, style.spec);
    style.name = attributes_.Text(node, "name", true);
    style.written = attributes_.Record(node, StyleAttributes(), style);
    return style;
  }

  void ReadCopies(const pugi::xml_node& node, CopySetup& copies) {
    attributes_.Check(node, AttributeNames(CopiesAttributes()));
    if (copies.line != 0) source_.Add(node, "a template has one <copies>");
    copies.line = source_.Line(node);
    for (const pugi::xml_node& child : node.children()) {
      if (child.type() != pugi::node_element) continue;
      if (std::string_view(child.name()) == "copy") {
        attributes_.Check(child, AttributeNames(CopyAttributes()));
        const CopyLabel label{attributes_.Text(child, "label")};
        copies.labels.push_back(label.label);
        copies.labels_written.push_back(attributes_.Record(child, CopyAttributes(), label));
      } else {
        attributes_.Unknown(child, "<copies>", {"copy"});
      }
    }
    const auto whole = [&](const char* attribute, int most, int fallback) {
      const auto number = attributes_.Number(node, attribute);
      if (!number) return fallback;
      if (*number < 1 || *number > most || *number != std::floor(*number)) {
        source_.Add(node, "\"" + std::string(attribute) + "\" must be a whole number from 1 to " +
                              std::to_string(most));
        return fallback;
      }
      return static_cast<int>(*number);
    };
    copies.count = whole("count", kMaxCopies, std::max<int>(1, copies.labels.size()));
    copies.per_sheet = whole("per-sheet", kMaxCopiesPerSheet, 1);
    if (copies.labels.size() > static_cast<size_t>(copies.count)) {
      source_.Add(node, "there are more <copy> labels than copies",
                  "drop \"count\" to print one copy per label");
    }
    if (copies.labels.empty() && !node.attribute("count")) {
      source_.Add(node, "<copies> needs a \"count\" or <copy> labels");
    }
    copies.written = attributes_.Record(node, CopiesAttributes(), copies);
  }

  void ReadSingleBand(const pugi::xml_node& node, BandKind kind, std::optional<Band>& slot) {
    attributes_.Check(node, AttributeNames(BandAttributes()));
    if (slot) source_.Add(node, std::string("a template has one <") + node.name() + ">");
    slot = bands_.ReadBand(node, kind);
  }

  XmlSource source_;
  AttributeReader attributes_{source_};
  BandReader bands_{source_, attributes_};
};

}  // namespace

const char* BandElementName(BandKind kind) {
  switch (kind) {
    case BandKind::kPageHeader:
      return "page-header";
    case BandKind::kPageFooter:
      return "page-footer";
    case BandKind::kTitle:
      return "title";
    case BandKind::kSummary:
      return "summary";
    case BandKind::kColumnHeader:
      return "column-header";
    case BandKind::kColumnFooter:
      return "column-footer";
    case BandKind::kData:
      return "data";
    case BandKind::kDataHeader:
      return "header";
    case BandKind::kDataFooter:
      return "footer";
    case BandKind::kGroupHeader:
      return "header";
    case BandKind::kGroupFooter:
      return "footer";
    case BandKind::kChild:
      return "child";
  }
  return "band";
}

std::string FormatProblems(const std::vector<Problem>& problems, size_t most) {
  std::string text;
  const auto append_bounded = [&text](const std::string& part) {
    if (part.size() <= kMaxProblemText) {
      text += part;
      return;
    }
    size_t cut = kMaxProblemText;
    while (cut > 0 && expr::IsContinuationByte(part[cut])) --cut;
    text.append(part, 0, cut);
    text += "\u2026";
  };
  for (size_t i = 0; i < problems.size() && i < most; ++i) {
    const Problem& problem = problems[i];
    text += problem.file;
    if (problem.line > 0) text += ":" + std::to_string(problem.line);
    text += ": ";
    append_bounded(problem.message);
    if (!problem.hint.empty()) {
      text += " (";
      append_bounded(problem.hint);
      text += ")";
    }
    text += '\n';
  }
  if (problems.size() > most) {
    text += "\u2026 and " + std::to_string(problems.size() - most) + " more problems\n";
  }
  return text;
}

TemplateError::TemplateError(std::vector<Problem> problems)
    : std::runtime_error(FormatProblems(problems)), problems_(std::move(problems)) {}

Template ParseTemplate(std::string_view xml, const std::string& file,
                       std::vector<Problem>& problems) {
  TemplateReader reader(xml, file);
  Template design = reader.ReadAll();
  problems.insert(problems.end(), reader.problems().begin(), reader.problems().end());
  return design;
}

Library ParseLibrary(std::string_view xml, const std::string& file,
                     std::vector<Problem>& problems) {
  TemplateReader reader(xml, file);
  Library library = reader.ReadLibrary();
  problems.insert(problems.end(), reader.problems().begin(), reader.problems().end());
  return library;
}

PartBody ParsePartBody(std::string_view xml, const std::string& file, int first_line,
                       const std::vector<Style>& styles, std::vector<Problem>& problems) {
  // Blank lines before the part put its lines where they are in the library.
  const std::string placed =
      std::string(static_cast<size_t>(std::max(first_line - 1, 0)), '\n') + std::string(xml);
  TemplateReader reader(placed, file);
  reader.KnowStyles(styles);
  PartBody body = reader.ReadPartBody();
  problems.insert(problems.end(), reader.problems().begin(), reader.problems().end());
  return body;
}

Template ParseTemplate(std::string_view xml, const std::string& file) {
  std::vector<Problem> problems;
  Template design = ParseTemplate(xml, file, problems);
  if (!problems.empty()) throw TemplateError(std::move(problems));
  return design;
}

std::string ReadTemplateFile(const std::string& path) {
  const auto fail = [&path](const char* message, const char* hint) {
    throw TemplateError({{path, 0, message, hint}});
  };
  const std::string native = NativePath(path);
  std::error_code error;
  const auto status = std::filesystem::status(native, error);
  if (status.type() == std::filesystem::file_type::directory) {
    fail("the template path is a folder, not a template file", "name the .fr3 file in it");
  }
  if (!error && status.type() != std::filesystem::file_type::regular) {
    fail("the template path is not a regular file", "name a .fr3 file");
  }
  std::ifstream in(native, std::ios::binary);
  if (!in) fail("cannot read the template file", "check the path and rights");
  std::string content;
  char chunk[65536];
  while (in.read(chunk, sizeof chunk) || in.gcount() > 0) {
    if (content.size() + static_cast<size_t>(in.gcount()) > kMaxTemplateBytes) {
      fail("the template file is larger than 256 MB", "a template holds a layout, not data");
    }
    content.append(chunk, static_cast<size_t>(in.gcount()));
  }
  if (in.bad()) fail("cannot read the template file", "check the path and rights");
  return content;
}

Template LoadTemplateFile(const std::string& path) {
  return ParseTemplate(ReadTemplateFile(path), path);
}

}  // namespace vantorel::report
