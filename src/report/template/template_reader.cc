// Reads the ".fr3" XML into the design model. Every element and attribute is checked; unknown
// ones, bad values and missing required values are collected with their line and a hint, and
// reported together.
#include <pugixml.hpp>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <map>
#include <optional>
#include <span>

#include "host/native_path.h"
#include "report/expr/text_util.h"
#include "report/template/attributes.h"
#include "report/template/library.h"
#include "report/template/template_io.h"
#include "vantorel/error.h"

namespace vantorel::report {
namespace {

std::string Suggest(std::string_view word, const std::vector<const char*>& known) {
  const char* best = nullptr;
  size_t best_distance = 3;
  for (const char* candidate : known) {
    const size_t d = expr::EditDistance(word, candidate);
    if (d < best_distance) {
      best_distance = d;
      best = candidate;
    }
  }
  return best ? std::string("did you mean \"") + best + "\"?" : std::string();
}

std::string Trimmed(std::string_view text) {
  const size_t begin = text.find_first_not_of(" \t\r\n");
  if (begin == std::string_view::npos) return {};
  const size_t end = text.find_last_not_of(" \t\r\n");
  return std::string(text.substr(begin, end - begin + 1));
}

std::optional<double> ParseNumber(std::string_view text) {
  double value = 0;
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc() || end != text.data() + text.size() || text.empty() ||
      !std::isfinite(value)) {
    return std::nullopt;
  }
  return value;
}

std::vector<std::string_view> Words(std::string_view text) {
  std::vector<std::string_view> words;
  size_t pos = 0;
  while (pos < text.size()) {
    while (pos < text.size() && (text[pos] == ' ' || text[pos] == ',' || text[pos] == '\t')) ++pos;
    const size_t start = pos;
    while (pos < text.size() && text[pos] != ' ' && text[pos] != ',' && text[pos] != '\t') ++pos;
    if (pos > start) words.push_back(text.substr(start, pos - start));
  }
  return words;
}

std::optional<bool> ParseFlag(std::string_view value) {
  for (const char* yes : {"true", "yes", "1"}) {
    if (expr::EqualsIgnoreCase(value, yes)) return true;
  }
  for (const char* no : {"false", "no", "0"}) {
    if (expr::EqualsIgnoreCase(value, no)) return false;
  }
  return std::nullopt;
}

// ---- The file as written ----
//
// pugixml hands over text with its references decoded and takes a few things XML forbids. Where
// that matters — well-formedness, and rich texts, whose markup must keep its escapes — the reader
// looks at the characters of the file itself. The document has been parsed by then, so its
// markup is known to be balanced.

bool StartsWith(std::string_view text, size_t at, std::string_view prefix) {
  return text.compare(at, prefix.size(), prefix) == 0;
}

bool IsXmlChar(uint32_t c) {
  return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF) ||
         (c >= 0xE000 && c <= 0xFFFD) || (c >= 0x10000 && c <= 0x10FFFF);
}

// A reference at "at" ('&'): "&amp;" "&lt;" "&gt;" "&quot;" "&apos;" "&#N;" "&#xH;". The
// character it stands for and the length written; nullopt when it is not one.
struct Reference {
  uint32_t code;
  size_t length;
};

std::optional<Reference> ReadReference(std::string_view xml, size_t at) {
  static constexpr std::pair<std::string_view, uint32_t> kNamed[] = {
      {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};
  for (const auto& [written, code] : kNamed) {
    if (StartsWith(xml, at, written)) return Reference{code, written.size()};
  }
  if (!StartsWith(xml, at, "&#")) return std::nullopt;
  const bool hex = StartsWith(xml, at, "&#x");
  const size_t digits = at + (hex ? 3 : 2);
  const size_t semicolon = xml.substr(0, digits + 9).find(';', digits);
  if (semicolon == std::string_view::npos || semicolon == digits) return std::nullopt;
  uint32_t code = 0;
  const auto [end, error] =
      std::from_chars(xml.data() + digits, xml.data() + semicolon, code, hex ? 16 : 10);
  if (error != std::errc() || end != xml.data() + semicolon || !IsXmlChar(code)) {
    return std::nullopt;
  }
  return Reference{code, semicolon + 1 - at};
}

enum class Markup { kComment, kCdata, kInstruction, kDeclaration, kStartTag, kEmptyTag, kEndTag };

// The markup starting at "at" ('<') and the offset just past it.
std::pair<Markup, size_t> SkipMarkup(std::string_view xml, size_t at) {
  const auto past = [&](std::string_view close, size_t from) {
    const size_t found = xml.find(close, from);
    return found == std::string_view::npos ? xml.size() : found + close.size();
  };
  if (StartsWith(xml, at, "<!--")) return {Markup::kComment, past("-->", at + 4)};
  if (StartsWith(xml, at, "<![CDATA[")) return {Markup::kCdata, past("]]>", at + 9)};
  if (StartsWith(xml, at, "<?")) return {Markup::kInstruction, past("?>", at + 2)};
  if (StartsWith(xml, at, "</")) return {Markup::kEndTag, past(">", at + 2)};
  const bool declaration = StartsWith(xml, at, "<!");
  char quote = 0;
  int subset = 0;  // a DOCTYPE's [ … ]
  for (size_t i = at + 1; i < xml.size(); ++i) {
    const char c = xml[i];
    if (quote != 0) {
      if (c == quote) quote = 0;
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (declaration && (c == '[' || c == ']')) {
      subset += c == '[' ? 1 : -1;
    } else if (c == '>' && subset <= 0) {
      if (declaration) return {Markup::kDeclaration, i + 1};
      return {xml[i - 1] == '/' ? Markup::kEmptyTag : Markup::kStartTag, i + 1};
    }
  }
  return {declaration ? Markup::kDeclaration : Markup::kStartTag, xml.size()};
}

// The "]" closing the "[" at "open", by the rules texts are compiled with: brackets nest, quotes
// (a doubled quote standing for itself) hide them, and a bracket whose quotes never close is
// matched ignoring quotes.
std::optional<size_t> ClosingBracket(std::string_view text, size_t open) {
  if (const auto close = expr::ClosingBracket(text, open, true)) return close;
  return expr::ClosingBracket(text, open, false);
}

}  // namespace

std::vector<std::pair<size_t, size_t>> ExpressionSpans(std::string_view text) {
  std::vector<std::pair<size_t, size_t>> spans;
  size_t i = 0;
  while (i < text.size()) {
    if (text[i] != '[') {
      ++i;
    } else if (i + 1 < text.size() && text[i + 1] == '[') {
      i += 2;  // "[[" is a literal "["
    } else if (const auto close = ClosingBracket(text, i)) {
      spans.emplace_back(i, *close + 1);
      i = *close + 1;
    } else {
      ++i;
    }
  }
  return spans;
}

namespace {

class Reader {
 public:
  Reader(std::string_view xml, std::string file) : xml_(xml), file_(std::move(file)) {
    line_starts_.push_back(0);
    for (size_t i = 0; i < xml.size(); ++i) {
      if (xml[i] == '\n') line_starts_.push_back(i + 1);
    }
  }

  // Reads everything it can; the problems found are in problems().
  Template ReadAll() {
    pugi::xml_document doc;
    const pugi::xml_node root = Load(doc);
    if (!root) return {};
    Template design;
    if (std::string_view(root.name()) != "report") {
      Add(Line(root), std::string("the root element is <") + root.name() + ">, not <report>",
          "a template starts with <report format=\"vantorel-template\" version=\"1\">");
      return {};
    }
    ReadReport(root, design);
    return design;
  }

  Library ReadLibrary() {
    Library library;
    library.file = file_;
    pugi::xml_document doc;
    const pugi::xml_node root = Load(doc);
    if (!root) return library;
    if (std::string_view(root.name()) != "library" ||
        std::string_view(root.attribute("format").value()) != "vantorel-library") {
      Add(Line(root), "this is not a Vantorel house library",
          "a library starts with <library format=\"vantorel-library\" version=\"1\">");
      return library;
    }
    CheckAttributes(root, {"format", "version", "name"});
    if (std::string_view(root.attribute("version").value()) !=
        std::to_string(kTemplateFormatVersion)) {
      Add(Line(root),
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
          Add(style.line, "style \"" + style.name + "\" is defined twice");
        }
        library.styles.push_back(std::move(style));
      } else if (name == "part") {
        ReadPartSource(node, library);
      } else {
        Unknown(node, "<library>", {"style", "part"});
      }
    }
    return library;
  }

  // The objects, queries and variables of the one <part> the XML holds.
  PartBody ReadPartBody() {
    PartBody body;
    pugi::xml_document doc;
    const pugi::xml_node root = Load(doc);
    if (!root) return body;
    Template scratch;  // ReadQuery's home
    for (const pugi::xml_node& node : root.children()) {
      if (node.type() != pugi::node_element) continue;
      const std::string_view name = node.name();
      if (auto object = ReadObject(node)) {
        body.objects.push_back(std::move(*object));
      } else if (name == "query") {
        ReadQuery(node, scratch);
      } else if (name == "variable") {
        body.variables.push_back(ReadVariable(node));
      } else if (name != "param") {
        Unknown(
            node, "<part>",
            {"param", "query", "variable", "text", "picture", "barcode", "line", "rect", "use"});
      }
    }
    body.queries = std::move(scratch.queries);
    return body;
  }

  std::vector<Problem>& problems() { return problems_; }

 private:
  // Parses the XML and checks what every file needs; its root element, or a null node.
  pugi::xml_node Load(pugi::xml_document& doc) {
    const pugi::xml_parse_result parsed =
        doc.load_buffer(xml_.data(), xml_.size(),
                        pugi::parse_default | pugi::parse_ws_pcdata_single | pugi::parse_comments,
                        pugi::encoding_utf8);
    if (!parsed) {
      Add(LineOfOffset(static_cast<size_t>(std::max<ptrdiff_t>(parsed.offset, 0))),
          std::string("not well-formed XML: ") + parsed.description(),
          "check the tags and quotes around this line");
      return {};
    }
    if (const pugi::xml_node deep = TooDeep(doc)) {
      Add(Line(deep),
          "elements nested too deeply (more than " + std::to_string(kMaxTemplateNesting) +
              " levels)",
          "a template needs a few levels of bands; look for an unclosed or repeated element");
      return {};
    }
    CheckEscapes();
    return doc.document_element();
  }

  // A <part>: its parameters, and its XML as the file wrote it.
  void ReadPartSource(const pugi::xml_node& node, Library& library) {
    CheckAttributes(node, {"name"});
    PartSource part;
    part.name = Text(node, "name", true);
    part.line = Line(node);
    if (library.FindPart(part.name) != nullptr) {
      Add(part.line, "part \"" + part.name + "\" is defined twice");
    }
    for (const pugi::xml_node& param : node.children("param")) {
      CheckAttributes(param, {"name", "default"});
      PartParam declared{Text(param, "name", true), std::nullopt, Line(param)};
      if (param.attribute("default")) declared.default_value = param.attribute("default").value();
      if (part.FindParam(declared.name) != nullptr) {
        Add(declared.line, "parameter \"" + declared.name + "\" is declared twice");
      }
      if (UseAttributes().end() != std::find_if(UseAttributes().begin(), UseAttributes().end(),
                                                [&](const AttributeSpec<PartUse>& spec) {
                                                  return declared.name == spec.name;
                                                })) {
        Add(declared.line, "a part cannot have a parameter called \"" + declared.name + "\"",
            "part, name, left, top and print-when are the attributes of <use> itself");
      }
      part.params.push_back(std::move(declared));
    }
    // From "<part" to just past its end tag: the markup that opens it, then everything up to the
    // end tag that closes it.
    const size_t begin =
        xml_.rfind('<', static_cast<size_t>(std::max<ptrdiff_t>(node.offset_debug(), 0)));
    size_t at = begin;
    int depth = 0;
    while (at != std::string_view::npos && at < xml_.size()) {
      const auto [markup, end] = SkipMarkup(xml_, at);
      if (markup == Markup::kStartTag) ++depth;
      if (markup == Markup::kEndTag) --depth;
      at = end;
      if (depth <= 0 && (markup == Markup::kEndTag || markup == Markup::kEmptyTag)) break;
      at = xml_.find('<', at);
    }
    part.xml = std::string(xml_.substr(begin, std::min(at, xml_.size()) - begin));
    library.parts.push_back(std::move(part));
  }

  // The first element nested deeper than a template may be, found without recursion (pugixml
  // itself parses and frees any depth without it); a null node when there is none.
  static pugi::xml_node TooDeep(const pugi::xml_document& doc) {
    int depth = 0;
    pugi::xml_node node = doc.first_child();
    while (node) {
      if (node.type() == pugi::node_element && depth + 1 > kMaxTemplateNesting) return node;
      if (node.first_child()) {
        node = node.first_child();
        ++depth;
        continue;
      }
      while (node && !node.next_sibling()) {
        node = node.parent();
        --depth;
      }
      if (node) node = node.next_sibling();
    }
    return {};
  }

  // What pugixml takes although XML does not: a "&" that starts no reference, and a "<" in an
  // attribute value. Comments, CDATA sections, instructions and declarations are skipped.
  void CheckEscapes() {
    size_t i = 0;
    while (i < xml_.size()) {
      if (xml_[i] == '&') {
        CheckReference(i++);
      } else if (xml_[i] == '<') {
        const auto [markup, end] = SkipMarkup(xml_, i);
        if (markup == Markup::kStartTag || markup == Markup::kEmptyTag) {
          CheckAttributeValues(i, end);
        }
        i = end;
      } else {
        ++i;
      }
    }
  }

  void CheckAttributeValues(size_t tag, size_t end) {
    char quote = 0;
    for (size_t i = tag; i < end; ++i) {
      const char c = xml_[i];
      if (quote == 0) {
        if (c == '"' || c == '\'') quote = c;
      } else if (c == quote) {
        quote = 0;
      } else if (c == '&') {
        CheckReference(i);
      } else if (c == '<') {
        Add(LineOfOffset(i), "\"<\" in an attribute must be written \"&lt;\"");
      }
    }
  }

  void CheckReference(size_t at) {
    if (ReadReference(xml_, at)) return;
    size_t end = at + 1;  // "&name;" or "&#…;", though not a reference XML knows
    while (end < xml_.size() && end - at < 32 &&
           (std::isalnum(static_cast<unsigned char>(xml_[end])) ||
            std::string_view("#_-.:").find(xml_[end]) != std::string_view::npos)) {
      ++end;
    }
    if (end > at + 1 && end < xml_.size() && xml_[end] == ';') {
      const std::string written(xml_.substr(at, end + 1 - at));
      if (xml_[at + 1] == '#') {
        Add(LineOfOffset(at), "\"" + written + "\" is not a character XML allows");
      } else {
        Add(LineOfOffset(at), "\"" + written + "\" is not an XML entity",
            "XML knows &amp; &lt; &gt; &quot; &apos; and numbered characters such as &#160;");
      }
      return;
    }
    Add(LineOfOffset(at), "\"&\" must be written \"&amp;\"",
        "or, in the text of an element, put the text in <![CDATA[ … ]]>");
  }

  // Whether a <text> is rich: its own "rich", else its style's or that style's base's.
  bool IsRich(const pugi::xml_node& node) const {
    if (node.attribute("rich")) return ParseFlag(node.attribute("rich").value()).value_or(false);
    std::string style = node.attribute("style").value();
    for (int depth = 0; !style.empty() && depth < 16; ++depth) {
      const auto found = style_rich_.find(style);
      if (found == style_rich_.end()) break;
      if (found->second.second) return *found->second.second;
      style = found->second.first;
    }
    return false;
  }

  // What a <text> prints, read from the file as written: its text and CDATA sections, with child
  // elements kept as markup. Every reference is decoded, except that in a rich text a reference
  // outside the [expressions] stays as written — the rich-text reader decodes it, so that
  // "&lt;b&gt;" prints "<b>" rather than turning bold — while the expressions get characters:
  // "&amp;" in one is the operator &.
  std::string TextContent(const pugi::xml_node& node, bool rich) const {
    const ptrdiff_t name = node.offset_debug();
    if (name < 1 || static_cast<size_t>(name) > xml_.size() || xml_[name - 1] != '<') {
      return node.child_value();
    }
    auto [start, i] = SkipMarkup(xml_, static_cast<size_t>(name) - 1);
    if (start != Markup::kStartTag) return {};
    std::string decoded;
    struct Written {
      size_t at, length;  // the decoded bytes
      std::string_view as;
    };
    std::vector<Written> references;
    const auto append_text = [&decoded](std::string_view text) {  // line ends as pugixml reads them
      for (size_t k = 0; k < text.size(); ++k) {
        if (text[k] != '\r') {
          decoded += text[k];
        } else {
          decoded += '\n';
          if (k + 1 < text.size() && text[k + 1] == '\n') ++k;
        }
      }
    };
    int depth = 0;
    while (i < xml_.size()) {
      if (xml_[i] == '<') {
        const auto [markup, end] = SkipMarkup(xml_, i);
        if (markup == Markup::kEndTag && depth-- == 0) break;
        if (markup == Markup::kStartTag) ++depth;
        if (markup == Markup::kCdata) {
          append_text(xml_.substr(i + 9, std::max(end, i + 12) - 3 - (i + 9)));
        } else if (markup == Markup::kStartTag || markup == Markup::kEmptyTag ||
                   markup == Markup::kEndTag) {
          decoded.append(xml_.substr(i, end - i));
        }
        i = end;
      } else if (const auto reference = xml_[i] == '&' ? ReadReference(xml_, i) : std::nullopt) {
        const size_t at = decoded.size();
        expr::AppendUtf8(decoded, reference->code);
        references.push_back({at, decoded.size() - at, xml_.substr(i, reference->length)});
        i += reference->length;
      } else {
        const size_t next = xml_.find_first_of("<&", i + 1);
        append_text(xml_.substr(i, (next == std::string_view::npos ? xml_.size() : next) - i));
        i = next == std::string_view::npos ? xml_.size() : next;
      }
    }
    if (!rich || references.empty()) return decoded;
    const auto spans = ExpressionSpans(decoded);
    std::string markup;
    size_t copied = 0;
    size_t span = 0;
    for (const Written& reference : references) {
      while (span < spans.size() && spans[span].second <= reference.at) ++span;
      const bool in_expression = span < spans.size() && spans[span].first <= reference.at;
      // Brackets stay decoded wherever they are: the spans were found with them.
      const char c = decoded[reference.at];
      if (in_expression || c == '[' || c == ']') continue;
      markup.append(decoded, copied, reference.at - copied);
      markup.append(reference.as);
      copied = reference.at + reference.length;
    }
    markup.append(decoded, copied);
    return markup;
  }

  int LineOfOffset(size_t offset) const {
    const auto it = std::upper_bound(line_starts_.begin(), line_starts_.end(), offset);
    return static_cast<int>(it - line_starts_.begin());
  }
  int Line(const pugi::xml_node& node) const {
    return LineOfOffset(static_cast<size_t>(std::max<ptrdiff_t>(node.offset_debug(), 0)));
  }
  void Add(int line, std::string message, std::string hint = {}) {
    problems_.push_back({file_, line, std::move(message), std::move(hint)});
  }

  void CheckAttributes(const pugi::xml_node& node, const std::vector<const char*>& allowed) {
    for (const pugi::xml_attribute& attribute : node.attributes()) {
      const std::string_view name = attribute.name();
      if (std::none_of(allowed.begin(), allowed.end(), [&](const char* a) { return name == a; })) {
        Add(Line(node),
            "<" + std::string(node.name()) + "> has no attribute \"" + std::string(name) + "\"",
            Suggest(name, allowed));
      }
    }
  }

  void Unknown(const pugi::xml_node& node, const char* where,
               const std::vector<const char*>& allowed) {
    Add(Line(node), std::string("<") + node.name() + "> is not allowed in " + where,
        Suggest(node.name(), allowed));
  }

  // Whether an empty line separates "node" from what precedes it.
  bool BlankLineBefore(const pugi::xml_node& node) const {
    size_t at = static_cast<size_t>(std::max<ptrdiff_t>(node.offset_debug(), 0));
    at = std::min(at, xml_.size());
    if (node.type() == pugi::node_comment) {
      at = xml_.rfind("<!--", at);
    } else {
      at = xml_.rfind('<', at);
    }
    if (at == std::string_view::npos) return false;
    int lines = 0;
    while (at > 0 && std::string_view(" \t\r\n").find(xml_[at - 1]) != std::string_view::npos) {
      if (xml_[--at] == '\n') ++lines;
    }
    return at > 0 && lines >= 2;
  }

  std::vector<Note> NotesBefore(pugi::xml_node node) const {
    std::vector<Note> notes;
    for (node = node.previous_sibling(); node && node.type() != pugi::node_element;
         node = node.previous_sibling()) {
      if (node.type() == pugi::node_comment) {
        notes.insert(notes.begin(), Note{node.value(), BlankLineBefore(node)});
      }
    }
    return notes;
  }

  // What the file wrote of "node" beyond its meaning; "element" has been read from it, so each
  // attribute's key is the value the design now holds.
  template <typename E>
  Written Record(const pugi::xml_node& node, const AttributeTable<E>& table, const E& element) {
    Written written;
    for (const pugi::xml_attribute& attribute : node.attributes()) {
      const std::string_view name = attribute.name();
      for (const AttributeSpec<E>& spec : table) {
        if (name == spec.name) {
          written.attributes.push_back({spec.name, attribute.value(), AttributeKey(spec, element)});
        }
      }
    }
    written.notes = NotesBefore(node);
    written.blank_line_before = BlankLineBefore(node);
    for (const pugi::xml_node& child : node.children()) {
      if (child.type() == pugi::node_element) written.order.push_back(child.name());
    }
    for (pugi::xml_node last = node.last_child(); last && last.type() != pugi::node_element;
         last = last.previous_sibling()) {
      if (last.type() == pugi::node_comment) {
        written.closing_notes.insert(written.closing_notes.begin(),
                                     Note{last.value(), BlankLineBefore(last)});
      }
    }
    // A content that is one CDATA section, white space around it aside.
    int cdata = 0, text = 0;
    for (const pugi::xml_node& child : node.children()) {
      if (child.type() == pugi::node_cdata) ++cdata;
      if (child.type() == pugi::node_pcdata && !Trimmed(child.value()).empty()) ++text;
      if (child.type() == pugi::node_element) ++text;
    }
    written.cdata = cdata == 1 && text == 0;
    return written;
  }

  std::string Text(const pugi::xml_node& node, const char* name, bool required = false) {
    const pugi::xml_attribute attribute = node.attribute(name);
    if (!attribute) {
      if (required) {
        Add(Line(node), "<" + std::string(node.name()) + "> needs the attribute \"" + name + "\"");
      }
      return {};
    }
    return attribute.value();
  }

  bool Flag(const pugi::xml_node& node, const char* name, bool fallback) {
    const pugi::xml_attribute attribute = node.attribute(name);
    if (!attribute) return fallback;
    const std::string_view value = attribute.value();
    if (const auto flag = ParseFlag(value)) return *flag;
    Add(Line(node),
        "\"" + std::string(name) + "\" must be true or false, not \"" + std::string(value) + "\"");
    return fallback;
  }

  std::optional<bool> OptionalFlag(const pugi::xml_node& node, const char* name) {
    if (!node.attribute(name)) return std::nullopt;
    return Flag(node, name, false);
  }

  std::optional<float> Length(const pugi::xml_node& node, const char* name, bool required = false) {
    const pugi::xml_attribute attribute = node.attribute(name);
    if (!attribute) {
      if (required) {
        Add(Line(node), "<" + std::string(node.name()) + "> needs the attribute \"" + name + "\"",
            "a length such as 12mm, 1.5cm, 0.5in or 10pt");
      }
      return std::nullopt;
    }
    const std::optional<float> length = ParseLength(attribute.value());
    if (!length) {
      Add(Line(node),
          "\"" + std::string(name) + "\" is not a length: \"" + attribute.value() + "\"",
          "write a number with mm, cm, in or pt, e.g. 12.5mm");
    }
    return length;
  }

  std::optional<Color> ColorAttribute(const pugi::xml_node& node, const char* name) {
    const pugi::xml_attribute attribute = node.attribute(name);
    if (!attribute) return std::nullopt;
    const std::optional<Color> color = ParseColor(attribute.value());
    if (!color) {
      Add(Line(node),
          "\"" + std::string(name) + "\" is not a colour: \"" + attribute.value() + "\"",
          "use #rrggbb, #rrggbbaa or a name such as black, gray, maroon, none");
    }
    return color;
  }

  template <typename T>
  std::optional<T> Choice(const pugi::xml_node& node, const char* name,
                          std::initializer_list<std::pair<const char*, T>> choices) {
    return Choice(node, name, std::span(choices.begin(), choices.size()));
  }

  template <typename T>
  std::optional<T> Choice(const pugi::xml_node& node, const char* name,
                          std::span<const std::pair<const char*, T>> choices) {
    const pugi::xml_attribute attribute = node.attribute(name);
    if (!attribute) return std::nullopt;
    for (const auto& [text, value] : choices) {
      if (expr::EqualsIgnoreCase(attribute.value(), text)) return value;
    }
    std::string allowed;
    for (const auto& choice : choices)
      allowed += (allowed.empty() ? "" : ", ") + std::string(choice.first);
    Add(Line(node), "\"" + std::string(name) + "\" cannot be \"" + attribute.value() + "\"",
        "one of: " + allowed);
    return std::nullopt;
  }

  std::optional<double> Number(const pugi::xml_node& node, const char* name) {
    const pugi::xml_attribute attribute = node.attribute(name);
    if (!attribute) return std::nullopt;
    const std::optional<double> number = ParseNumber(attribute.value());
    if (!number)
      Add(Line(node),
          "\"" + std::string(name) + "\" is not a number: \"" + attribute.value() + "\"");
    return number;
  }

  // The attributes of a text style, shared by <style> and <text>.
  void ReadStyle(const pugi::xml_node& node, StyleSpec& style) {
    if (node.attribute("font")) style.font = node.attribute("font").value();
    if (const auto size = Number(node, "size")) {
      if (*size <= 0 || *size > 500) {
        Add(Line(node), "font size must be between 0 and 500 points");
      } else {
        style.size = static_cast<float>(*size);
      }
    }
    style.bold = OptionalFlag(node, "bold");
    style.italic = OptionalFlag(node, "italic");
    style.underline = OptionalFlag(node, "underline");
    style.strikeout = OptionalFlag(node, "strikeout");
    style.color = ColorAttribute(node, "color");
    style.fill = ColorAttribute(node, "fill");
    style.halign = Choice<HAlign>(node, "align", std::span(kHAlignNames));
    style.valign = Choice<VAlign>(node, "valign", std::span(kVAlignNames));
    style.wrap = OptionalFlag(node, "wrap");
    style.clip = OptionalFlag(node, "clip");
    style.rich = OptionalFlag(node, "rich");
    if (const auto rotate = Number(node, "rotate")) {
      if (*rotate != 0 && *rotate != 90 && *rotate != 270) {
        Add(Line(node), "\"rotate\" must be 0, 90 or 270");
      } else {
        style.rotation = static_cast<int16_t>(*rotate);
      }
    }
    if (const auto spacing = Number(node, "line-spacing"))
      style.line_spacing = static_cast<float>(*spacing);
    if (const auto spacing = Length(node, "char-spacing")) style.char_spacing = *spacing;
    if (node.attribute("border")) style.borders = Borders(node, node.attribute("border").value());
    if (const auto width = Length(node, "border-width")) style.border_width = *width;
    style.border_color = ColorAttribute(node, "border-color");
    style.border_style = Choice<LineStyle>(node, "border-style", std::span(kLineStyleNames));
    if (node.attribute("padding")) {
      const auto words = Words(node.attribute("padding").value());
      std::vector<float> values;
      for (auto word : words) {
        if (auto length = ParseLength(word)) values.push_back(*length);
      }
      if (values.size() != words.size() || (values.size() != 1 && values.size() != 4)) {
        Add(Line(node), "\"padding\" takes one length or four (left top right bottom)");
      } else if (values.size() == 1) {
        style.padding = Padding{values[0], values[0], values[0], values[0]};
      } else {
        style.padding = Padding{values[0], values[1], values[2], values[3]};
      }
    }
  }

  uint8_t Borders(const pugi::xml_node& node, std::string_view text) {
    uint8_t sides = 0;
    for (std::string_view word : Words(text)) {
      if (word == "all") {
        sides |= kBorderLeft | kBorderTop | kBorderRight | kBorderBottom;
      } else if (word == "none") {
      } else if (word == "left") {
        sides |= kBorderLeft;
      } else if (word == "top") {
        sides |= kBorderTop;
      } else if (word == "right") {
        sides |= kBorderRight;
      } else if (word == "bottom") {
        sides |= kBorderBottom;
      } else {
        Add(Line(node), "\"border\" cannot name \"" + std::string(word) + "\"",
            "use all, none, or any of left top right bottom");
      }
    }
    return sides;
  }

  void ReadCommon(const pugi::xml_node& node, ObjectCommon& object) {
    object.name = Text(node, "name");
    object.print_when = Text(node, "print-when");
    object.line = Line(node);
    object.box.x = Length(node, "left").value_or(0);
    object.box.y = Length(node, "top").value_or(0);
    object.box.width = Length(node, "width", true).value_or(0);
    object.box.height = Length(node, "height", true).value_or(0);
    if (object.box.width < 0 || object.box.height < 0) {
      Add(Line(node), "width and height cannot be negative");
    }
  }

  StretchMode Stretch(const pugi::xml_node& node) {
    return Choice<StretchMode>(node, "stretch",
                               {{"none", StretchMode::kNone},
                                {"false", StretchMode::kNone},
                                {"grow", StretchMode::kGrow},
                                {"true", StretchMode::kGrow},
                                {"band", StretchMode::kBand},
                                {"cell", StretchMode::kCell}})
        .value_or(StretchMode::kNone);
  }

  Stroke ReadStroke(const pugi::xml_node& node, const char* width, const char* color,
                    const char* style, float default_width) {
    Stroke stroke;
    stroke.width = Length(node, width).value_or(default_width);
    stroke.color = ColorAttribute(node, color).value_or(Color::Black());
    stroke.style =
        Choice<LineStyle>(node, style, std::span(kLineStyleNames)).value_or(LineStyle::kSolid);
    return stroke;
  }

  std::optional<DesignObject> ReadObject(const pugi::xml_node& node) {
    const std::string_view kind = node.name();
    if (kind == "text") {
      CheckAttributes(node, AttributeNames(TextAttributes()));
      TextObject text;
      ReadCommon(node, text);
      text.style_name = Text(node, "style");
      text.format = Text(node, "format");
      text.stretch = Stretch(node);
      text.shrink = Flag(node, "shrink", false);
      text.hide_zero = Flag(node, "hide-zero", false);
      text.trim = Flag(node, "trim", false);
      ReadStyle(node, text.style);
      text.text = Trimmed(TextContent(node, IsRich(node)));
      text.written = Record(node, TextAttributes(), text);
      return text;
    }
    if (kind == "picture") {
      CheckAttributes(node, AttributeNames(PictureAttributes()));
      PictureObject picture;
      ReadCommon(node, picture);
      picture.source = Text(node, "source");
      picture.fit =
          Choice<ImageFit>(node, "fit", std::span(kImageFitNames)).value_or(ImageFit::kContain);
      if (node.attribute("border"))
        picture.borders = Borders(node, node.attribute("border").value());
      picture.border = ReadStroke(node, "border-width", "border-color", "border-style", 0.5f);
      picture.written = Record(node, PictureAttributes(), picture);
      return picture;
    }
    if (kind == "barcode") {
      CheckAttributes(node, AttributeNames(BarcodeAttributes()));
      BarcodeObject barcode;
      ReadCommon(node, barcode);
      barcode.type = node.attribute("type") ? node.attribute("type").value() : "qr";
      barcode.data = Text(node, "data", true);
      const std::string level = Text(node, "level");
      if (!level.empty()) {
        if (level.size() != 1 ||
            std::string_view("LMQHlmqh").find(level[0]) == std::string_view::npos) {
          Add(Line(node), "\"level\" must be L, M, Q or H");
        } else {
          barcode.qr_level = static_cast<char>(std::toupper(static_cast<unsigned char>(level[0])));
        }
      }
      barcode.show_text = Flag(node, "show-text", true);
      barcode.color = ColorAttribute(node, "color").value_or(Color::Black());
      barcode.background = ColorAttribute(node, "background").value_or(Color::None());
      barcode.written = Record(node, BarcodeAttributes(), barcode);
      return barcode;
    }
    if (kind == "line") {
      CheckAttributes(node, AttributeNames(LineAttributes()));
      LineObject line;
      line.name = Text(node, "name");
      line.print_when = Text(node, "print-when");
      line.line = Line(node);
      line.from = {Length(node, "x1", true).value_or(0), Length(node, "y1", true).value_or(0)};
      line.to = {Length(node, "x2", true).value_or(0), Length(node, "y2", true).value_or(0)};
      line.stroke = ReadStroke(node, "width", "color", "style", 0.5f);
      line.grow_with_band = Flag(node, "grow-with-band", false);
      line.box = {std::min(line.from.x, line.to.x), std::min(line.from.y, line.to.y),
                  std::abs(line.to.x - line.from.x), std::abs(line.to.y - line.from.y)};
      line.written = Record(node, LineAttributes(), line);
      return line;
    }
    if (kind == "use") {
      PartUse use;
      use.line = Line(node);
      use.part = Text(node, "part", true);
      use.name = Text(node, "name");
      use.print_when = Text(node, "print-when");
      use.box.x = Length(node, "left").value_or(0);
      use.box.y = Length(node, "top").value_or(0);
      use.written = Record(node, UseAttributes(), use);
      for (const pugi::xml_attribute& attribute : node.attributes()) {
        const std::string_view name = attribute.name();
        if (std::none_of(UseAttributes().begin(), UseAttributes().end(),
                         [&](const AttributeSpec<PartUse>& spec) { return name == spec.name; })) {
          use.arguments.emplace_back(name, attribute.value());
          // Remembered in its place among the attributes, so the writer keeps the order.
          use.written.attributes.push_back({std::string(name), attribute.value(), {}});
        }
      }
      std::stable_sort(use.written.attributes.begin(), use.written.attributes.end(),
                       [&](const WrittenAttribute& a, const WrittenAttribute& b) {
                         return AttributeIndex(node, a.name) < AttributeIndex(node, b.name);
                       });
      return use;
    }
    if (kind == "rect") {
      CheckAttributes(node, AttributeNames(RectAttributes()));
      RectObject rect;
      ReadCommon(node, rect);
      rect.fill = ColorAttribute(node, "fill").value_or(Color::None());
      rect.stroke = ReadStroke(node, "border-width", "border-color", "border-style", 0.5f);
      rect.corner_radius = Length(node, "radius").value_or(0);
      rect.grow_with_band = Flag(node, "grow-with-band", false);
      rect.written = Record(node, RectAttributes(), rect);
      return rect;
    }
    return std::nullopt;
  }

  // A band's attributes and objects; "extra" are the child elements the caller reads itself.
  Band ReadBand(const pugi::xml_node& node, BandKind kind,
                std::initializer_list<const char*> extra = {}) {
    Band band;
    band.kind = kind;
    band.line = Line(node);
    band.name = Text(node, "name");
    band.height = Length(node, "height", true).value_or(0);
    band.stretch = Flag(node, "stretch", true);
    band.keep_together = Flag(node, "keep-together", false);
    band.start_new_page = Flag(node, "start-new-page", false);
    band.repeat = Flag(node, "repeat", kind == BandKind::kDataHeader);
    band.print_on_first_page = Flag(node, "print-on-first-page", true);
    band.print_on_last_page = Flag(node, "print-on-last-page", true);
    band.print_if_empty = Flag(node, "print-if-empty", false);
    band.print_when = Text(node, "print-when");
    for (const pugi::xml_node& child : node.children()) {
      if (child.type() != pugi::node_element) continue;
      const std::string_view name = child.name();
      if (auto object = ReadObject(child)) {
        band.objects.push_back(std::move(*object));
      } else if (name == "child") {
        CheckAttributes(child, AttributeNames(BandAttributes()));
        band.children.push_back(ReadBand(child, BandKind::kChild));
      } else if (std::none_of(extra.begin(), extra.end(),
                              [&](const char* e) { return name == e; })) {
        Unknown(child, ("<" + std::string(node.name()) + ">").c_str(),
                {"text", "picture", "barcode", "line", "rect", "use", "child"});
      }
    }
    band.written = Record(node, BandAttributes(), band);
    return band;
  }

  DataBand ReadData(const pugi::xml_node& node) {
    CheckAttributes(node, AttributeNames(DataAttributes()));
    DataBand data;
    data.band = ReadBand(node, BandKind::kData, {"header", "footer", "group", "data"});
    data.query = Text(node, "query");
    if (const auto rows = Number(node, "rows")) {
      if (*rows < 0 || *rows > 100000 || *rows != std::floor(*rows)) {
        Add(Line(node), "\"rows\" must be a whole number from 0 to 100000");
      } else {
        data.rows = static_cast<int>(*rows);
      }
    }
    for (const pugi::xml_node& child : node.children()) {
      if (child.type() != pugi::node_element) continue;
      const std::string_view name = child.name();
      if (name == "header") {
        CheckAttributes(child, AttributeNames(BandAttributes()));
        if (data.header) Add(Line(child), "a data band has one <header>");
        data.header = ReadBand(child, BandKind::kDataHeader);
      } else if (name == "footer") {
        CheckAttributes(child, AttributeNames(BandAttributes()));
        if (data.footer) Add(Line(child), "a data band has one <footer>");
        data.footer = ReadBand(child, BandKind::kDataFooter);
      } else if (name == "group") {
        data.groups.push_back(ReadGroup(child));
      } else if (name == "data") {
        data.details.push_back(ReadData(child));
      }
    }
    data.band.written = Record(node, DataAttributes(), data);
    return data;
  }

  Group ReadGroup(const pugi::xml_node& node) {
    CheckAttributes(node, AttributeNames(GroupAttributes()));
    Group group;
    group.line = Line(node);
    group.name = Text(node, "name");
    group.condition = Text(node, "condition", true);
    group.keep_together = Flag(node, "keep-together", false);
    group.start_new_page = Flag(node, "start-new-page", false);
    group.repeat_header = Flag(node, "repeat-header", false);
    for (const pugi::xml_node& child : node.children()) {
      if (child.type() != pugi::node_element) continue;
      const std::string_view name = child.name();
      if (name == "header") {
        CheckAttributes(child, AttributeNames(BandAttributes()));
        group.header = ReadBand(child, BandKind::kGroupHeader);
      } else if (name == "footer") {
        CheckAttributes(child, AttributeNames(BandAttributes()));
        group.footer = ReadBand(child, BandKind::kGroupFooter);
      } else {
        Unknown(child, "<group>", {"header", "footer"});
      }
    }
    group.written = Record(node, GroupAttributes(), group);
    return group;
  }

  void ReadPage(const pugi::xml_node& node, PageSetup& page) {
    CheckAttributes(node, AttributeNames(PageAttributes()));
    if (node.attribute("size")) {
      const std::string size = node.attribute("size").value();
      struct Named {
        const char* name;
        double width, height;
      };
      static constexpr Named kSizes[] = {
          {"A3", 297, 420},         {"A4", 210, 297},        {"A5", 148, 210}, {"A6", 105, 148},
          {"Letter", 215.9, 279.4}, {"Legal", 215.9, 355.6}, {"B5", 176, 250}};
      bool known = false;
      for (const Named& named : kSizes) {
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
          Add(Line(node), "page size \"" + size + "\" is not known",
              "use A3, A4, A5, A6, B5, Letter, Legal, \"<width> <height>\" or \"<width> auto\" "
              "for roll paper");
        } else {
          page.size = {*width, *height};
        }
      }
    }
    page.landscape = Choice<bool>(node, "orientation", {{"portrait", false}, {"landscape", true}})
                         .value_or(false);
    if (page.landscape && !page.roll) std::swap(page.size.width, page.size.height);
    if (node.attribute("margin")) {
      const auto words = Words(node.attribute("margin").value());
      std::vector<float> values;
      for (auto word : words) {
        if (auto length = ParseLength(word)) values.push_back(*length);
      }
      if (values.size() != words.size() || (values.size() != 1 && values.size() != 4)) {
        Add(Line(node), "\"margin\" takes one length or four (left top right bottom)");
      } else if (values.size() == 1) {
        page.margin_left = page.margin_top = page.margin_right = page.margin_bottom = values[0];
      } else {
        page.margin_left = values[0];
        page.margin_top = values[1];
        page.margin_right = values[2];
        page.margin_bottom = values[3];
      }
    }
    page.margin_left = Length(node, "margin-left").value_or(page.margin_left);
    page.margin_top = Length(node, "margin-top").value_or(page.margin_top);
    page.margin_right = Length(node, "margin-right").value_or(page.margin_right);
    page.margin_bottom = Length(node, "margin-bottom").value_or(page.margin_bottom);
    if (const auto columns = Number(node, "columns")) {
      if (*columns < 1 || *columns > 50 || *columns != std::floor(*columns)) {
        Add(Line(node), "\"columns\" must be a whole number from 1 to 50");
      } else {
        page.columns = static_cast<int>(*columns);
      }
    }
    page.column_gap = Length(node, "column-gap").value_or(0);
    page.columns_across =
        Choice<bool>(node, "column-order", {{"down", false}, {"across", true}}).value_or(false);
    page.printer = Text(node, "printer");
    if (page.margin_left + page.margin_right >= page.size.width ||
        (!page.roll && page.margin_top + page.margin_bottom >= page.size.height)) {
      Add(Line(node), "the margins leave no room on the page");
    }
  }

  void ReadQuery(const pugi::xml_node& node, Template& design) {
    CheckAttributes(node, AttributeNames(QueryAttributes()));
    Query query;
    query.line = Line(node);
    query.name = Text(node, "name", true);
    query.database = Text(node, "database");
    for (const pugi::xml_node& child : node.children()) {
      if (child.type() != pugi::node_element) continue;
      const std::string_view name = child.name();
      if (name == "sql") {
        CheckAttributes(child, {});
        query.sql = Trimmed(child.text().get());
        query.sql_written = Record(child, AttributeTable<Query>(), query);
      } else if (name == "param") {
        CheckAttributes(child, AttributeNames(ParamAttributes()));
        QueryParam param;
        param.line = Line(child);
        param.name = Text(child, "name", true);
        param.type = Choice<ParamType>(child, "type",
                                       {{"integer", ParamType::kInteger},
                                        {"number", ParamType::kNumber},
                                        {"text", ParamType::kText},
                                        {"date", ParamType::kDate}})
                         .value_or(ParamType::kText);
        param.default_value = Text(child, "default");
        param.value = Text(child, "value");
        param.written = Record(child, ParamAttributes(), param);
        query.params.push_back(std::move(param));
      } else {
        Unknown(child, "<query>", {"sql", "param"});
      }
    }
    if (query.sql.empty()) {
      Add(query.line, "query \"" + query.name + "\" has no <sql>",
          "the print method may set it, but the template should hold a working default");
    }
    query.written = Record(node, QueryAttributes(), query);
    design.queries.push_back(std::move(query));
  }

  void ReadReport(const pugi::xml_node& root, Template& design) {
    CheckAttributes(root, AttributeNames(ReportAttributes()));
    const std::string format = Text(root, "format");
    if (format != "vantorel-template") {
      Add(Line(root), "this is not a Vantorel template (format=\"" + format + "\")",
          "the root element is <report format=\"vantorel-template\" version=\"1\">");
      return;
    }
    const std::string version = Text(root, "version");
    if (version != std::to_string(kTemplateFormatVersion)) {
      Add(Line(root), "template format version \"" + version + "\" is not supported",
          "this Vantorel reads version " + std::to_string(kTemplateFormatVersion) +
              "; a newer template needs a newer Vantorel");
      return;
    }
    design.name = Text(root, "name");
    design.written = Record(root, ReportAttributes(), design);
    // Whether a text is rich decides how its content is read, and its style — the template's
    // own, or the library's — may say so.
    if (const pugi::xml_node library = root.child("library")) {
      design.library.styles = LibraryStyles(library.attribute("file").value());
      KnowStyles(design.library.styles);
    }
    for (const pugi::xml_node& node : root.children("style")) {
      style_rich_[node.attribute("name").value()] = {
          node.attribute("based-on").value(),
          node.attribute("rich") ? ParseFlag(node.attribute("rich").value()) : std::nullopt};
    }
    for (const pugi::xml_node& node : root.children()) {
      if (node.type() != pugi::node_element) continue;
      const std::string_view name = node.name();
      if (name == "info") {
        CheckAttributes(node, AttributeNames(InfoAttributes()));
        design.info.title = Text(node, "title");
        design.info.author = Text(node, "author");
        design.info.subject = Text(node, "subject");
        design.info_written = Record(node, InfoAttributes(), design.info);
      } else if (name == "page") {
        ReadPage(node, design.page);
        design.has_page = true;
        design.page_written = Record(node, PageAttributes(), design.page);
      } else if (name == "copies") {
        ReadCopies(node, design.copies);
      } else if (name == "database") {
        CheckAttributes(node, AttributeNames(DatabaseAttributes()));
        Database database{Text(node, "name", true), Line(node), {}};
        database.written = Record(node, DatabaseAttributes(), database);
        design.databases.push_back(std::move(database));
      } else if (name == "query") {
        ReadQuery(node, design);
      } else if (name == "variable") {
        design.variables.push_back(ReadVariable(node));
      } else if (name == "style") {
        Style style = ReadStyleElement(node);
        if (design.FindStyle(style.name) != nullptr)
          Add(Line(node), "style \"" + style.name + "\" is defined twice");
        design.styles.push_back(std::move(style));
      } else if (name == "library") {
        CheckAttributes(node, AttributeNames(LibraryAttributes()));
        if (design.library.line != 0) Add(Line(node), "a template uses one <library>");
        design.library.file = Text(node, "file", true);
        design.library.line = Line(node);
        const std::string& file = design.library.file;
        if (file.find_first_of("/\\") != std::string::npos || file == "." || file == "..") {
          Add(Line(node), "the library \"" + file + "\" must be a file name, without a folder",
              "the house library lives in the template folder, beside the templates");
        }
        design.library.written = Record(node, LibraryAttributes(), design.library);
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
        design.data.push_back(ReadData(node));
      } else {
        Unknown(node, "<report>",
                {"info", "page", "copies", "library", "database", "query", "variable", "style",
                 "page-header", "page-footer", "title", "summary", "column-header", "column-footer",
                 "data"});
      }
    }
  }

  // The styles of the library "name" in the template's folder; none when it cannot be read (the
  // expansion of parts says why).
  std::vector<Style> LibraryStyles(const std::string& name) const {
    if (name.empty() || name.find_first_of("/\\") != std::string::npos || name == "." ||
        name == "..") {
      return {};
    }
    const std::string path = (std::filesystem::path(file_).parent_path() / name).string();
    try {
      const std::string xml = ReadTemplateFile(path);
      if (xml.size() > kMaxLibraryBytes) return {};
      std::vector<Problem> ignored;
      return ParseLibrary(xml, path, ignored).styles;
    } catch (const TemplateError&) {
      return {};
    }
  }

 public:
  void KnowStyles(const std::vector<Style>& styles) {
    for (const Style& style : styles) {
      style_rich_[style.name] = {style.spec.based_on, style.spec.rich};
    }
  }

 private:
  Variable ReadVariable(const pugi::xml_node& node) {
    CheckAttributes(node, AttributeNames(VariableAttributes()));
    Variable variable{
        Text(node, "category"), Text(node, "name", true), Text(node, "value"), Line(node), {}};
    variable.written = Record(node, VariableAttributes(), variable);
    return variable;
  }

  Style ReadStyleElement(const pugi::xml_node& node) {
    CheckAttributes(node, AttributeNames(StyleAttributes()));
    Style style;
    style.line = Line(node);
    style.spec.based_on = Text(node, "based-on");
    ReadStyle(node, style.spec);
    style.name = Text(node, "name", true);
    style.written = Record(node, StyleAttributes(), style);
    return style;
  }

  static size_t AttributeIndex(const pugi::xml_node& node, std::string_view name) {
    size_t index = 0;
    for (const pugi::xml_attribute& attribute : node.attributes()) {
      if (name == attribute.name()) return index;
      ++index;
    }
    return index;
  }

  void ReadCopies(const pugi::xml_node& node, CopySetup& copies) {
    CheckAttributes(node, AttributeNames(CopiesAttributes()));
    if (copies.line != 0) Add(Line(node), "a template has one <copies>");
    copies.line = Line(node);
    for (const pugi::xml_node& child : node.children()) {
      if (child.type() != pugi::node_element) continue;
      if (std::string_view(child.name()) == "copy") {
        CheckAttributes(child, AttributeNames(CopyAttributes()));
        const CopyLabel label{Text(child, "label")};
        copies.labels.push_back(label.label);
        copies.labels_written.push_back(Record(child, CopyAttributes(), label));
      } else {
        Unknown(child, "<copies>", {"copy"});
      }
    }
    const auto whole = [&](const char* attribute, int most, int fallback) {
      const auto number = Number(node, attribute);
      if (!number) return fallback;
      if (*number < 1 || *number > most || *number != std::floor(*number)) {
        Add(Line(node), "\"" + std::string(attribute) + "\" must be a whole number from 1 to " +
                            std::to_string(most));
        return fallback;
      }
      return static_cast<int>(*number);
    };
    copies.count = whole("count", kMaxCopies, std::max<int>(1, copies.labels.size()));
    copies.per_sheet = whole("per-sheet", kMaxCopiesPerSheet, 1);
    if (copies.labels.size() > static_cast<size_t>(copies.count)) {
      Add(Line(node), "there are more <copy> labels than copies",
          "drop \"count\" to print one copy per label");
    }
    if (copies.labels.empty() && !node.attribute("count")) {
      Add(Line(node), "<copies> needs a \"count\" or <copy> labels");
    }
    copies.written = Record(node, CopiesAttributes(), copies);
  }

  void ReadSingleBand(const pugi::xml_node& node, BandKind kind, std::optional<Band>& slot) {
    CheckAttributes(node, AttributeNames(BandAttributes()));
    if (slot) Add(Line(node), std::string("a template has one <") + node.name() + ">");
    slot = ReadBand(node, kind);
  }

  std::string_view xml_;
  std::string file_;
  std::vector<size_t> line_starts_;
  std::vector<Problem> problems_;
  // Each style's based-on and own "rich".
  std::map<std::string, std::pair<std::string, std::optional<bool>>> style_rich_;
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
  Reader reader(xml, file);
  Template design = reader.ReadAll();
  problems.insert(problems.end(), reader.problems().begin(), reader.problems().end());
  return design;
}

Library ParseLibrary(std::string_view xml, const std::string& file,
                     std::vector<Problem>& problems) {
  Reader reader(xml, file);
  Library library = reader.ReadLibrary();
  problems.insert(problems.end(), reader.problems().begin(), reader.problems().end());
  return library;
}

PartBody ParsePartBody(std::string_view xml, const std::string& file, int first_line,
                       const std::vector<Style>& styles, std::vector<Problem>& problems) {
  // Blank lines before the part put its lines where they are in the library.
  const std::string placed =
      std::string(static_cast<size_t>(std::max(first_line - 1, 0)), '\n') + std::string(xml);
  Reader reader(placed, file);
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

std::optional<float> ParseLength(std::string_view text) {
  text = std::string_view(text.data(), text.size());
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  struct Unit {
    const char* suffix;
    double points;
  };
  static constexpr Unit kUnits[] = {
      {"mm", 72.0 / 25.4}, {"cm", 72.0 / 2.54}, {"in", 72.0}, {"pt", 1.0}};
  double factor = 72.0 / 25.4;
  for (const Unit& unit : kUnits) {
    const std::string_view suffix = unit.suffix;
    if (text.size() > suffix.size() && text.substr(text.size() - suffix.size()) == suffix) {
      text.remove_suffix(suffix.size());
      factor = unit.points;
      break;
    }
  }
  const std::optional<double> number = ParseNumber(text);
  if (!number || std::fabs(*number) > 100000) return std::nullopt;
  return static_cast<float>(*number * factor);
}

std::optional<Color> ParseColor(std::string_view text) {
  struct Named {
    const char* name;
    Color color;
  };
  static constexpr Named kNames[] = {{"black", {0, 0, 0, 255}},
                                     {"white", {255, 255, 255, 255}},
                                     {"red", {220, 20, 20, 255}},
                                     {"green", {0, 128, 0, 255}},
                                     {"blue", {0, 0, 200, 255}},
                                     {"gray", {128, 128, 128, 255}},
                                     {"grey", {128, 128, 128, 255}},
                                     {"lightgray", {211, 211, 211, 255}},
                                     {"silver", {192, 192, 192, 255}},
                                     {"maroon", {128, 0, 0, 255}},
                                     {"navy", {0, 0, 128, 255}},
                                     {"teal", {0, 128, 128, 255}},
                                     {"orange", {255, 140, 0, 255}},
                                     {"transparent", {0, 0, 0, 0}},
                                     {"none", {0, 0, 0, 0}}};
  for (const Named& named : kNames) {
    if (expr::EqualsIgnoreCase(text, named.name)) return named.color;
  }
  if (text.empty() || text[0] != '#') return std::nullopt;
  const std::string_view hex = text.substr(1);
  auto digit = [](char c) -> int {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
  };
  for (char c : hex) {
    if (digit(c) < 0) return std::nullopt;
  }
  auto byte = [&](size_t i) {
    return static_cast<uint8_t>(digit(hex[i]) * 16 + digit(hex[i + 1]));
  };
  if (hex.size() == 3) {
    return Color{static_cast<uint8_t>(digit(hex[0]) * 17), static_cast<uint8_t>(digit(hex[1]) * 17),
                 static_cast<uint8_t>(digit(hex[2]) * 17), 255};
  }
  if (hex.size() == 6) return Color{byte(0), byte(2), byte(4), 255};
  if (hex.size() == 8) return Color{byte(0), byte(2), byte(4), byte(6)};
  return std::nullopt;
}

}  // namespace vantorel::report
