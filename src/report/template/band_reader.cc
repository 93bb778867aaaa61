// The bands of a report and the objects on them.
#include "report/template/band_reader.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "report/template/attributes.h"

namespace vantorel::report {
namespace {

size_t AttributeIndex(const pugi::xml_node& node, std::string_view name) {
  size_t index = 0;
  for (const pugi::xml_attribute& attribute : node.attributes()) {
    if (name == attribute.name()) return index;
    ++index;
  }
  return index;
}

}  // namespace

void BandReader::KnowStyle(const std::string& name, const std::string& based_on,
                           std::optional<bool> rich) {
  style_rich_[name] = {based_on, rich};
}

std::optional<DesignObject> BandReader::ReadObject(const pugi::xml_node& node) {
  const std::string_view kind = node.name();
  if (kind == "text") return ReadText(node);
  if (kind == "picture") return ReadPicture(node);
  if (kind == "barcode") return ReadBarcode(node);
  if (kind == "line") return ReadLine(node);
  if (kind == "use") return ReadUse(node);
  if (kind == "rect") return ReadRect(node);
  return std::nullopt;
}

TextObject BandReader::ReadText(const pugi::xml_node& node) {
  attributes_.Check(node, AttributeNames(TextAttributes()));
  TextObject text;
  ReadCommon(node, text);
  text.style_name = attributes_.Text(node, "style");
  text.format = attributes_.Text(node, "format");
  text.stretch = attributes_.Stretch(node);
  text.shrink = attributes_.Flag(node, "shrink", false);
  text.hide_zero = attributes_.Flag(node, "hide-zero", false);
  text.trim = attributes_.Flag(node, "trim", false);
  attributes_.Style(node, text.style);
  text.text = Trimmed(source_.TextContent(node, IsRich(node)));
  text.written = attributes_.Record(node, TextAttributes(), text);
  return text;
}

PictureObject BandReader::ReadPicture(const pugi::xml_node& node) {
  attributes_.Check(node, AttributeNames(PictureAttributes()));
  PictureObject picture;
  ReadCommon(node, picture);
  picture.source = attributes_.Text(node, "source");
  picture.fit = attributes_.Choice<ImageFit>(node, "fit", std::span(kImageFitNames))
                    .value_or(ImageFit::kContain);
  if (node.attribute("border"))
    picture.borders = attributes_.Borders(node, node.attribute("border").value());
  picture.border =
      attributes_.ReadStroke(node, "border-width", "border-color", "border-style", 0.5f);
  picture.written = attributes_.Record(node, PictureAttributes(), picture);
  return picture;
}

BarcodeObject BandReader::ReadBarcode(const pugi::xml_node& node) {
  attributes_.Check(node, AttributeNames(BarcodeAttributes()));
  BarcodeObject barcode;
  ReadCommon(node, barcode);
  barcode.type = node.attribute("type") ? node.attribute("type").value() : "qr";
  barcode.data = attributes_.Text(node, "data", true);
  const std::string level = attributes_.Text(node, "level");
  if (!level.empty()) {
    if (level.size() != 1 ||
        std::string_view("LMQHlmqh").find(level[0]) == std::string_view::npos) {
      source_.Add(node, "\"level\" must be L, M, Q or H");
    } else {
      barcode.qr_level = static_cast<char>(std::toupper(static_cast<unsigned char>(level[0])));
    }
  }
  barcode.show_text = attributes_.Flag(node, "show-text", true);
  barcode.color = attributes_.ColorAttribute(node, "color").value_or(Color::Black());
  barcode.background = attributes_.ColorAttribute(node, "background").value_or(Color::None());
  barcode.written = attributes_.Record(node, BarcodeAttributes(), barcode);
  return barcode;
}

LineObject BandReader::ReadLine(const pugi::xml_node& node) {
  attributes_.Check(node, AttributeNames(LineAttributes()));
  LineObject line;
  line.name = attributes_.Text(node, "name");
  line.print_when = attributes_.Text(node, "print-when");
  line.line = source_.Line(node);
  line.from = {attributes_.Length(node, "x1", true).value_or(0),
               attributes_.Length(node, "y1", true).value_or(0)};
  line.to = {attributes_.Length(node, "x2", true).value_or(0),
             attributes_.Length(node, "y2", true).value_or(0)};
  line.stroke = attributes_.ReadStroke(node, "width", "color", "style", 0.5f);
  line.grow_with_band = attributes_.Flag(node, "grow-with-band", false);
  line.box = {std::min(line.from.x, line.to.x), std::min(line.from.y, line.to.y),
              std::abs(line.to.x - line.from.x), std::abs(line.to.y - line.from.y)};
  line.written = attributes_.Record(node, LineAttributes(), line);
  return line;
}

PartUse BandReader::ReadUse(const pugi::xml_node& node) {
  PartUse use;
  use.line = source_.Line(node);
  use.part = attributes_.Text(node, "part", true);
  use.name = attributes_.Text(node, "name");
  use.print_when = attributes_.Text(node, "print-when");
  use.box.x = attributes_.Length(node, "left").value_or(0);
  use.box.y = attributes_.Length(node, "top").value_or(0);
  use.written = attributes_.Record(node, UseAttributes(), use);
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

RectObject BandReader::ReadRect(const pugi::xml_node& node) {
  attributes_.Check(node, AttributeNames(RectAttributes()));
  RectObject rect;
  ReadCommon(node, rect);
  rect.fill = attributes_.ColorAttribute(node, "fill").value_or(Color::None());
  rect.stroke = attributes_.ReadStroke(node, "border-width", "border-color", "border-style", 0.5f);
  rect.corner_radius = attributes_.Length(node, "radius").value_or(0);
  rect.grow_with_band = attributes_.Flag(node, "grow-with-band", false);
  rect.written = attributes_.Record(node, RectAttributes(), rect);
  return rect;
}

void BandReader::ReadCommon(const pugi::xml_node& node, ObjectCommon& object) {
  object.name = attributes_.Text(node, "name");
  object.print_when = attributes_.Text(node, "print-when");
  object.line = source_.Line(node);
  object.box.x = attributes_.Length(node, "left").value_or(0);
  object.box.y = attributes_.Length(node, "top").value_or(0);
  object.box.width = attributes_.Length(node, "width", true).value_or(0);
  object.box.height = attributes_.Length(node, "height", true).value_or(0);
  if (object.box.width < 0 || object.box.height < 0) {
    source_.Add(node, "width and height cannot be negative");
  }
}

// A band's attributes and objects; "extra" are the child elements the caller reads itself.
Band BandReader::ReadBand(const pugi::xml_node& node, BandKind kind,
                          std::initializer_list<const char*> extra) {
  Band band;
  band.kind = kind;
  band.line = source_.Line(node);
  band.name = attributes_.Text(node, "name");
  band.height = attributes_.Length(node, "height", true).value_or(0);
  band.stretch = attributes_.Flag(node, "stretch", true);
  band.keep_together = attributes_.Flag(node, "keep-together", false);
  band.start_new_page = attributes_.Flag(node, "start-new-page", false);
  band.repeat = attributes_.Flag(node, "repeat", kind == BandKind::kDataHeader);
  band.print_on_first_page = attributes_.Flag(node, "print-on-first-page", true);
  band.print_on_last_page = attributes_.Flag(node, "print-on-last-page", true);
  band.print_if_empty = attributes_.Flag(node, "print-if-empty", false);
  band.print_when = attributes_.Text(node, "print-when");
  for (const pugi::xml_node& child : node.children()) {
    if (child.type() != pugi::node_element) continue;
    const std::string_view name = child.name();
    if (auto object = ReadObject(child)) {
      band.objects.push_back(std::move(*object));
    } else if (name == "child") {
      attributes_.Check(child, AttributeNames(BandAttributes()));
      band.children.push_back(ReadBand(child, BandKind::kChild));
    } else if (std::none_of(extra.begin(), extra.end(), [&](const char* e) { return name == e; })) {
      attributes_.Unknown(child, ("<" + std::string(node.name()) + ">").c_str(),
                          {"text", "picture", "barcode", "line", "rect", "use", "child"});
    }
  }
  band.written = attributes_.Record(node, BandAttributes(), band);
  return band;
}

DataBand BandReader::ReadData(const pugi::xml_node& node) {
  attributes_.Check(node, AttributeNames(DataAttributes()));
  DataBand data;
  data.band = ReadBand(node, BandKind::kData, {"header", "footer", "group", "data"});
  data.query = attributes_.Text(node, "query");
  if (const auto rows = attributes_.Number(node, "rows")) {
    if (*rows < 0 || *rows > 100000 || *rows != std::floor(*rows)) {
      source_.Add(node, "\"rows\" must be a whole number from 0 to 100000");
    } else {
      data.rows = static_cast<int>(*rows);
    }
  }
  for (const pugi::xml_node& child : node.children()) {
    if (child.type() != pugi::node_element) continue;
    const std::string_view name = child.name();
    if (name == "header") {
      attributes_.Check(child, AttributeNames(BandAttributes()));
      if (data.header) source_.Add(child, "a data band has one <header>");
      data.header = ReadBand(child, BandKind::kDataHeader);
    } else if (name == "footer") {
      attributes_.Check(child, AttributeNames(BandAttributes()));
      if (data.footer) source_.Add(child, "a data band has one <footer>");
      data.footer = ReadBand(child, BandKind::kDataFooter);
    } else if (name == "group") {
      data.groups.push_back(ReadGroup(child));
    } else if (name == "data") {
      data.details.push_back(ReadData(child));
    }
  }
  data.band.written = attributes_.Record(node, DataAttributes(), data);
  return data;
}

Group BandReader::ReadGroup(const pugi::xml_node& node) {
  attributes_.Check(node, AttributeNames(GroupAttributes()));
  Group group;
  group.line = source_.Line(node);
  group.name = attributes_.Text(node, "name");
  group.condition = attributes_.Text(node, "condition", true);
  group.keep_together = attributes_.Flag(node, "keep-together", false);
  group.start_new_page = attributes_.Flag(node, "start-new-page", false);
  group.repeat_header = attributes_.Flag(node, "repeat-header", false);
  for (const pugi::xml_node& child : node.children()) {
    if (child.type() != pugi::node_element) continue;
    const std::string_view name = child.name();
    if (name == "header") {
      attributes_.Check(child, AttributeNames(BandAttributes()));
      group.header = ReadBand(child, BandKind::kGroupHeader);
    } else if (name == "footer") {
      attributes_.Check(child, AttributeNames(BandAttributes()));
      group.footer = ReadBand(child, BandKind::kGroupFooter);
    } else {
      attributes_.Unknown(child, "<group>", {"header", "footer"});
    }
  }
  group.written = attributes_.Record(node, GroupAttributes(), group);
  return group;
}

// Whether a <text> is rich: its own "rich", else its style's or that style's base's.
bool BandReader::IsRich(const pugi::xml_node& node) const {
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

}  // namespace vantorel::report
