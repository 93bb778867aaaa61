// Reads the values of an element's attributes — texts, flags, lengths, colours, numbers, choices,
// borders, paddings, text styles, strokes — and adds a problem with the element's line and a hint
// for each value it cannot read, falling back so that reading goes on. It also checks an element's
// attributes against its table (attributes.h) and records what the file wrote (Written).
//
// Thread-safety: belongs to one reader.
#ifndef VANTOREL_REPORT_TEMPLATE_ATTRIBUTE_READER_H_
#define VANTOREL_REPORT_TEMPLATE_ATTRIBUTE_READER_H_

#include <pugixml.hpp>

#include <array>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "report/expr/text_util.h"
#include "report/template/attributes.h"
#include "report/template/design.h"
#include "report/template/xml_source.h"

namespace vantorel::report {

// "did you mean …?" naming the one of "known" closest to "word"; empty when none is close.
std::string Suggest(std::string_view word, const std::vector<const char*>& known);

// A number as attributes write it ("+" allowed, finite); nullopt when "text" is not one.
std::optional<double> ParseNumber(std::string_view text);

// A flag as attributes write it: true, yes, 1, false, no, 0 in any case.
std::optional<bool> ParseFlag(std::string_view value);

// The words of a list such as "left top" or "1mm, 2mm": separated by spaces, tabs or commas.
std::vector<std::string_view> Words(std::string_view text);

class AttributeReader {
 public:
  explicit AttributeReader(XmlSource& source) : source_(source) {}

  // Adds a problem for each attribute of "node" that "allowed" does not name.
  void Check(const pugi::xml_node& node, const std::vector<const char*>& allowed);
  // Adds the problem that element "node" may not stand in "where" ("<report>").
  void Unknown(const pugi::xml_node& node, const char* where,
               const std::vector<const char*>& allowed);

  // Attribute "name" as written; empty when absent, which is a problem when "required".
  std::string Text(const pugi::xml_node& node, const char* name, bool required = false);
  // Attribute "name" as a flag; "fallback" when absent or not a flag.
  bool Flag(const pugi::xml_node& node, const char* name, bool fallback);
  std::optional<bool> OptionalFlag(const pugi::xml_node& node, const char* name);
  // The following give nullopt when the attribute is absent or its value cannot be read.
  std::optional<float> Length(const pugi::xml_node& node, const char* name, bool required = false);
  std::optional<Color> ColorAttribute(const pugi::xml_node& node, const char* name);
  std::optional<double> Number(const pugi::xml_node& node, const char* name);

  // Attribute "name" as one of "choices", named in any case.
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
    BadChoice(node, name, ChoiceNames(choices));
    return std::nullopt;
  }

  // The sides "text" names ("all", "none", or any of "left top right bottom") as kBorder… bits.
  uint8_t Borders(const pugi::xml_node& node, std::string_view text);
  // Attribute "name" giving one length for all sides or four (left top right bottom).
  std::optional<std::array<float, 4>> Sides(const pugi::xml_node& node, const char* name);
  // The attributes of a text style, shared by <style> and <text>.
  void Style(const pugi::xml_node& node, StyleSpec& style);
  // A stroke from its three attributes; black, solid and "default_width" where absent.
  Stroke ReadStroke(const pugi::xml_node& node, const char* width, const char* color,
                    const char* style, float default_width);
  StretchMode Stretch(const pugi::xml_node& node);

  // What the file wrote of "node" beyond its meaning; "element" has been read from it, so each
  // attribute's key is the value the design now holds.
  template <typename E>
  Written Record(const pugi::xml_node& node, const AttributeTable<E>& table, const E& element) {
    Written written = source_.Layout(node);
    for (const pugi::xml_attribute& attribute : node.attributes()) {
      const std::string_view name = attribute.name();
      for (const AttributeSpec<E>& spec : table) {
        if (name == spec.name) {
          written.attributes.push_back({spec.name, attribute.value(), AttributeKey(spec, element)});
        }
      }
    }
    return written;
  }

 private:
  template <typename T>
  static std::string ChoiceNames(std::span<const std::pair<const char*, T>> choices) {
    std::string names;
    for (const auto& choice : choices)
      names += (names.empty() ? "" : ", ") + std::string(choice.first);
    return names;
  }
  void BadChoice(const pugi::xml_node& node, const char* name, const std::string& allowed);

  XmlSource& source_;
};

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_TEMPLATE_ATTRIBUTE_READER_H_
