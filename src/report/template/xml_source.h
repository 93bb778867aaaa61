// A template or library file as written: its XML parsed with pugixml and checked where pugixml is
// lenient (well-formedness, nesting depth, escapes), its line table, and what the readers need
// of the characters themselves — a text's content with its escapes, the comments and blank lines
// around an element, a part's XML. It holds the problems the readers of the file find.
//
// Thread-safety: belongs to one reader.
#ifndef VANTOREL_REPORT_TEMPLATE_XML_SOURCE_H_
#define VANTOREL_REPORT_TEMPLATE_XML_SOURCE_H_

#include <pugixml.hpp>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "report/template/design.h"
#include "report/template/template_io.h"

namespace vantorel::report {

class XmlSource {
 public:
  // "xml" must outlive the source; "file" names it in problems.
  XmlSource(std::string_view xml, std::string file);

  XmlSource(const XmlSource&) = delete;
  XmlSource& operator=(const XmlSource&) = delete;

  // Parses the XML into "doc" and checks what every file needs; its root element, or a null node
  // when the file cannot be read any further (the problem is added).
  pugi::xml_node Load(pugi::xml_document& doc);

  const std::string& file() const { return file_; }

  // The line of byte "offset", and of the start of "node"; lines count from 1.
  int LineOfOffset(size_t offset) const;
  int Line(const pugi::xml_node& node) const;

  // Adds a problem at "line" of the file, or at the line of "node".
  void Add(int line, std::string message, std::string hint = {});
  void Add(const pugi::xml_node& node, std::string message, std::string hint = {}) {
    Add(Line(node), std::move(message), std::move(hint));
  }
  std::vector<Problem>& problems() { return problems_; }

  // What a <text> prints, read from the characters of "node": its text and CDATA sections, with
  // child elements kept as markup. Every reference is decoded, except that in a "rich" text a
  // reference outside the [expressions] stays as written, for the rich-text reader to decode.
  std::string TextContent(const pugi::xml_node& node, bool rich) const;

  // What the file wrote around "node" beyond its meaning: the comments before it and before its
  // end tag, blank lines, the order of its children and whether its content is one CDATA
  // section. The attributes are left to the reader that knows their table.
  Written Layout(const pugi::xml_node& node) const;

  // The XML of element "node" as the file wrote it, from its "<" to just past its end tag.
  std::string ElementXml(const pugi::xml_node& node) const;

 private:
  // What pugixml takes although XML does not: a "&" that starts no reference, and a "<" in an
  // attribute value.
  void CheckEscapes();
  void CheckAttributeValues(size_t tag, size_t end);
  void CheckReference(size_t at);

  bool BlankLineBefore(const pugi::xml_node& node) const;
  std::vector<Note> NotesBefore(pugi::xml_node node) const;

  std::string_view xml_;
  std::string file_;
  std::vector<size_t> line_starts_;
  std::vector<Problem> problems_;
};

// "text" without the white space around it.
std::string Trimmed(std::string_view text);

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_TEMPLATE_XML_SOURCE_H_
