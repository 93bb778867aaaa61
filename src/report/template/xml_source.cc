// The characters of a template file: the checks pugixml leaves out, lines, and what the readers
// need as the file wrote it.
#include "report/template/xml_source.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <optional>

#include "report/expr/text_util.h"

namespace vantorel::report {
namespace {

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

// The first element nested deeper than a template may be, found without recursion (pugixml
// itself parses and frees any depth without it); a null node when there is none.
pugi::xml_node TooDeep(const pugi::xml_document& doc) {
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

}  // namespace

std::string Trimmed(std::string_view text) {
  const size_t begin = text.find_first_not_of(" \t\r\n");
  if (begin == std::string_view::npos) return {};
  const size_t end = text.find_last_not_of(" \t\r\n");
  return std::string(text.substr(begin, end - begin + 1));
}

std::vector<std::pair<size_t, size_t>> ExpressionSpans(std::string_view text) {
  std::vector<std::pair<size_t, size_t>> spans;
  size_t i = 0;
  while (i < text.size()) {
    if (text[i] == '[' && i + 1 < text.size() && text[i + 1] == '[') {
      i += 2;  // "[[" is a literal "["
      continue;
    }
    const auto close = text[i] == '[' ? ClosingBracket(text, i) : std::nullopt;
    if (close) spans.emplace_back(i, *close + 1);
    i = close ? *close + 1 : i + 1;
  }
  return spans;
}

XmlSource::XmlSource(std::string_view xml, std::string file) : xml_(xml), file_(std::move(file)) {
  line_starts_.push_back(0);
  for (size_t i = 0; i < xml.size(); ++i) {
    if (xml[i] == '\n') line_starts_.push_back(i + 1);
  }
}

pugi::xml_node XmlSource::Load(pugi::xml_document& doc) {
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
        "elements nested too deeply (more than " + std::to_string(kMaxTemplateNesting) + " levels)",
        "a template needs a few levels of bands; look for an unclosed or repeated element");
    return {};
  }
  CheckEscapes();
  return doc.document_element();
}

void XmlSource::CheckEscapes() {
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

void XmlSource::CheckAttributeValues(size_t tag, size_t end) {
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

void XmlSource::CheckReference(size_t at) {
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

// What a <text> prints, read from the file as written: its text and CDATA sections, with child
// elements kept as markup. Every reference is decoded, except that in a rich text a reference
// outside the [expressions] stays as written — the rich-text reader decodes it, so that
// "&lt;b&gt;" prints "<b>" rather than turning bold — while the expressions get characters:
// "&amp;" in one is the operator &.
std::string XmlSource::TextContent(const pugi::xml_node& node, bool rich) const {
  const ptrdiff_t name = node.offset_debug();
  if (name < 1 || static_cast<size_t>(name) > xml_.size() || xml_[name - 1] != '<') {
    return node.child_value();
  }
  auto [start, i] = SkipMarkup(xml_, static_cast<size_t>(name) - 1);
  if (start != Markup::kStartTag) return {};
  std::string decoded;
  struct WrittenReference {
    size_t at, length;  // the decoded bytes
    std::string_view as;
  };
  std::vector<WrittenReference> references;
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
  for (const WrittenReference& reference : references) {
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

int XmlSource::LineOfOffset(size_t offset) const {
  const auto it = std::upper_bound(line_starts_.begin(), line_starts_.end(), offset);
  return static_cast<int>(it - line_starts_.begin());
}

int XmlSource::Line(const pugi::xml_node& node) const {
  return LineOfOffset(static_cast<size_t>(std::max<ptrdiff_t>(node.offset_debug(), 0)));
}

void XmlSource::Add(int line, std::string message, std::string hint) {
  problems_.push_back({file_, line, std::move(message), std::move(hint)});
}

// Whether an empty line separates "node" from what precedes it.
bool XmlSource::BlankLineBefore(const pugi::xml_node& node) const {
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

std::vector<Note> XmlSource::NotesBefore(pugi::xml_node node) const {
  std::vector<Note> notes;
  for (node = node.previous_sibling(); node && node.type() != pugi::node_element;
       node = node.previous_sibling()) {
    if (node.type() == pugi::node_comment) {
      notes.insert(notes.begin(), Note{node.value(), BlankLineBefore(node)});
    }
  }
  return notes;
}

Written XmlSource::Layout(const pugi::xml_node& node) const {
  Written written;
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

std::string XmlSource::ElementXml(const pugi::xml_node& node) const {
  // The markup that opens it, then everything up to the end tag that closes it.
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
  return std::string(xml_.substr(begin, std::min(at, xml_.size()) - begin));
}

}  // namespace vantorel::report
