// Attribute values as templates write them, and the problems of those that cannot be read.
#include "report/template/attribute_reader.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace vantorel::report {

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

void AttributeReader::Check(const pugi::xml_node& node, const std::vector<const char*>& allowed) {
  for (const pugi::xml_attribute& attribute : node.attributes()) {
    const std::string_view name = attribute.name();
    if (std::none_of(allowed.begin(), allowed.end(), [&](const char* a) { return name == a; })) {
      source_.Add(
          source_.Line(node),
          "<" + std::string(node.name()) + "> has no attribute \"" + std::string(name) + "\"",
          Suggest(name, allowed));
    }
  }
}

void AttributeReader::Unknown(const pugi::xml_node& node, const char* where,
                              const std::vector<const char*>& allowed) {
  source_.Add(node, std::string("<") + node.name() + "> is not allowed in " + where,
              Suggest(node.name(), allowed));
}

std::string AttributeReader::Text(const pugi::xml_node& node, const char* name, bool required) {
  const pugi::xml_attribute attribute = node.attribute(name);
  if (!attribute) {
    if (required) {
      source_.Add(node, "<" + std::string(node.name()) + "> needs the attribute \"" + name + "\"");
    }
    return {};
  }
  return attribute.value();
}

bool AttributeReader::Flag(const pugi::xml_node& node, const char* name, bool fallback) {
  const pugi::xml_attribute attribute = node.attribute(name);
  if (!attribute) return fallback;
  const std::string_view value = attribute.value();
  if (const auto flag = ParseFlag(value)) return *flag;
  source_.Add(node, "\"" + std::string(name) + "\" must be true or false, not \"" +
                        std::string(value) + "\"");
  return fallback;
}

std::optional<bool> AttributeReader::OptionalFlag(const pugi::xml_node& node, const char* name) {
  if (!node.attribute(name)) return std::nullopt;
  return Flag(node, name, false);
}

std::optional<float> AttributeReader::Length(const pugi::xml_node& node, const char* name,
                                             bool required) {
  const pugi::xml_attribute attribute = node.attribute(name);
  if (!attribute) {
    if (required) {
      source_.Add(node, "<" + std::string(node.name()) + "> needs the attribute \"" + name + "\"",
                  "a length such as 12mm, 1.5cm, 0.5in or 10pt");
    }
    return std::nullopt;
  }
  const std::optional<float> length = ParseLength(attribute.value());
  if (!length) {
    source_.Add(node,
                "\"" + std::string(name) + "\" is not a length: \"" + attribute.value() + "\"",
                "write a number with mm, cm, in or pt, e.g. 12.5mm");
  }
  return length;
}

std::optional<Color> AttributeReader::ColorAttribute(const pugi::xml_node& node, const char* name) {
  const pugi::xml_attribute attribute = node.attribute(name);
  if (!attribute) return std::nullopt;
  const std::optional<Color> color = ParseColor(attribute.value());
  if (!color) {
    source_.Add(node,
                "\"" + std::string(name) + "\" is not a colour: \"" + attribute.value() + "\"",
                "use #rrggbb, #rrggbbaa or a name such as black, gray, maroon, none");
  }
  return color;
}

std::optional<double> AttributeReader::Number(const pugi::xml_node& node, const char* name) {
  const pugi::xml_attribute attribute = node.attribute(name);
  if (!attribute) return std::nullopt;
  const std::optional<double> number = ParseNumber(attribute.value());
  if (!number) {
    source_.Add(node,
                "\"" + std::string(name) + "\" is not a number: \"" + attribute.value() + "\"");
  }
  return number;
}

void AttributeReader::BadChoice(const pugi::xml_node& node, const char* name,
                                const std::string& allowed) {
  source_.Add(node,
              "\"" + std::string(name) + "\" cannot be \"" + node.attribute(name).value() + "\"",
              "one of: " + allowed);
}

uint8_t AttributeReader::Borders(const pugi::xml_node& node, std::string_view text) {
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
      source_.Add(node, "\"border\" cannot name \"" + std::string(word) + "\"",
                  "use all, none, or any of left top right bottom");
    }
  }
  return sides;
}

std::optional<std::array<float, 4>> AttributeReader::Sides(const pugi::xml_node& node,
                                                           const char* name) {
  const pugi::xml_attribute attribute = node.attribute(name);
  if (!attribute) return std::nullopt;
  const auto words = Words(attribute.value());
  std::vector<float> values;
  for (auto word : words) {
    if (auto length = ParseLength(word)) values.push_back(*length);
  }
  if (values.size() != words.size() || (values.size() != 1 && values.size() != 4)) {
    source_.Add(node,
                "\"" + std::string(name) + "\" takes one length or four (left top right bottom)");
    return std::nullopt;
  }
  if (values.size() == 1) return std::array<float, 4>{values[0], values[0], values[0], values[0]};
  return std::array<float, 4>{values[0], values[1], values[2], values[3]};
}

void AttributeReader::Style(const pugi::xml_node& node, StyleSpec& style) {
  if (node.attribute("font")) style.font = node.attribute("font").value();
  if (const auto size = Number(node, "size")) {
    if (*size <= 0 || *size > 500) {
      source_.Add(node, "font size must be between 0 and 500 points");
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
      source_.Add(node, "\"rotate\" must be 0, 90 or 270");
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
  if (const auto sides = Sides(node, "padding")) {
    style.padding = Padding{(*sides)[0], (*sides)[1], (*sides)[2], (*sides)[3]};
  }
}

Stroke AttributeReader::ReadStroke(const pugi::xml_node& node, const char* width, const char* color,
                                   const char* style, float default_width) {
  Stroke stroke;
  stroke.width = Length(node, width).value_or(default_width);
  stroke.color = ColorAttribute(node, color).value_or(Color::Black());
  stroke.style =
      Choice<LineStyle>(node, style, std::span(kLineStyleNames)).value_or(LineStyle::kSolid);
  return stroke;
}

StretchMode AttributeReader::Stretch(const pugi::xml_node& node) {
  return Choice<StretchMode>(node, "stretch",
                             {{"none", StretchMode::kNone},
                              {"false", StretchMode::kNone},
                              {"grow", StretchMode::kGrow},
                              {"true", StretchMode::kGrow},
                              {"band", StretchMode::kBand},
                              {"cell", StretchMode::kCell}})
      .value_or(StretchMode::kNone);
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
