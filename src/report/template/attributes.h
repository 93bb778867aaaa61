// The attributes of every template element, described once: their names in the order the writer
// gives them, their documented defaults and how the design's value is written. The reader checks
// an element's attributes against the same table, so an attribute that can be read can be
// written.
//
// Thread-safety: the tables are built once and never change.
#ifndef VANTOREL_REPORT_TEMPLATE_ATTRIBUTES_H_
#define VANTOREL_REPORT_TEMPLATE_ATTRIBUTES_H_

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "report/template/design.h"

namespace vantorel::report {

// How templates name the values of enumerated attributes, for the reader and the writer alike.
inline constexpr std::pair<const char*, LineStyle> kLineStyleNames[] = {
    {"solid", LineStyle::kSolid},
    {"dash", LineStyle::kDash},
    {"dot", LineStyle::kDot},
    {"dash-dot", LineStyle::kDashDot},
    {"double", LineStyle::kDouble}};
inline constexpr std::pair<const char*, HAlign> kHAlignNames[] = {{"left", HAlign::kLeft},
                                                                  {"center", HAlign::kCenter},
                                                                  {"right", HAlign::kRight},
                                                                  {"justify", HAlign::kJustify}};
inline constexpr std::pair<const char*, VAlign> kVAlignNames[] = {
    {"top", VAlign::kTop}, {"middle", VAlign::kMiddle}, {"bottom", VAlign::kBottom}};
inline constexpr std::pair<const char*, ImageFit> kImageFitNames[] = {
    {"contain", ImageFit::kContain},
    {"stretch", ImageFit::kStretch},
    {"center", ImageFit::kCenter},
    {"cover", ImageFit::kCover}};

// The paper sizes a page's "size" may name, in millimetres, portrait.
struct PaperSize {
  const char* name;
  double width, height;
};
inline constexpr PaperSize kPaperSizes[] = {
    {"A3", 297, 420},         {"A4", 210, 297},        {"A5", 148, 210}, {"A6", 105, 148},
    {"Letter", 215.9, 279.4}, {"Legal", 215.9, 355.6}, {"B5", 176, 250}};

// The name "names" gives "value"; the first name when none does.
template <typename T, size_t N>
const char* NameOf(const std::pair<const char*, T> (&names)[N], T value) {
  for (const auto& [text, named] : names) {
    if (named == value) return text;
  }
  return names[0].first;
}

template <typename E>
struct AttributeSpec {
  const char* name;
  // The default as docs/template-format.md gives it; nullptr when the attribute has none.
  const char* default_text;
  // The value "element" holds, lengths in the unit of "as" (text written like "12mm", "0.5pt"
  // or a bare number of millimetres; "mm" when empty); nullopt when it holds none.
  std::function<std::optional<std::string>(const E& element, std::string_view as)> write;
  // Whether "element" holds the attribute's default, so that the writer may leave it out; when
  // empty, the value of a default-constructed element is the default.
  std::function<bool(const E& element)> is_default = {};
};

template <typename E>
using AttributeTable = std::vector<AttributeSpec<E>>;

// The copy label of one <copy>.
struct CopyLabel {
  std::string label;
};

const AttributeTable<Template>& ReportAttributes();
const AttributeTable<Metadata>& InfoAttributes();
const AttributeTable<PageSetup>& PageAttributes();
const AttributeTable<CopySetup>& CopiesAttributes();
const AttributeTable<CopyLabel>& CopyAttributes();
const AttributeTable<Database>& DatabaseAttributes();
const AttributeTable<Query>& QueryAttributes();
const AttributeTable<QueryParam>& ParamAttributes();
const AttributeTable<Variable>& VariableAttributes();
const AttributeTable<Style>& StyleAttributes();
const AttributeTable<Band>& BandAttributes();  // every band kind but <data>
const AttributeTable<DataBand>& DataAttributes();
const AttributeTable<Group>& GroupAttributes();
const AttributeTable<TextObject>& TextAttributes();
const AttributeTable<PictureObject>& PictureAttributes();
const AttributeTable<BarcodeObject>& BarcodeAttributes();
const AttributeTable<LineObject>& LineAttributes();
const AttributeTable<RectObject>& RectAttributes();
// <use>: its own attributes; every other attribute is an argument of the part.
const AttributeTable<PartUse>& UseAttributes();
const AttributeTable<LibraryRef>& LibraryAttributes();

template <typename E>
std::vector<const char*> AttributeNames(const AttributeTable<E>& table) {
  std::vector<const char*> names;
  for (const AttributeSpec<E>& spec : table) names.push_back(spec.name);
  return names;
}

// A length of "points" written in the unit of "as" (see AttributeSpec::write): "12mm", "0".
std::string FormatLength(float points, std::string_view as);

// The key under which a written attribute's value is remembered (WrittenAttribute::key): its
// value formatted with lengths in points.
template <typename E>
std::string AttributeKey(const AttributeSpec<E>& spec, const E& element) {
  return spec.write(element, "pt").value_or("\x01");  // no value: a key no text has
}

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_TEMPLATE_ATTRIBUTES_H_
