// The attribute tables of docs/template-format.md, one per element, with how each value is
// written.
#include "report/template/attributes.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

namespace vantorel::report {
namespace {

using Text = std::optional<std::string>;

std::string Trimmed(std::string text) {
  if (text.find('.') != std::string::npos) {
    while (text.back() == '0') text.pop_back();
    if (text.back() == '.') text.pop_back();
  }
  return text == "-0" ? "0" : text;
}

std::string Fixed(double value, int decimals) {
  char buffer[64];
  const auto [end, error] =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, decimals);
  return Trimmed(std::string(buffer, error == std::errc() ? end : buffer));
}

std::string Number(float value) {
  char buffer[64];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, error == std::errc() ? end : buffer);
}

std::string Flag(bool value) { return value ? "true" : "false"; }

std::string Hex(uint8_t byte) {
  static constexpr char kDigits[] = "0123456789abcdef";
  return {kDigits[byte >> 4], kDigits[byte & 15]};
}

std::string ColorText(Color color) {
  std::string text = "#" + Hex(color.r) + Hex(color.g) + Hex(color.b);
  return color.a == 255 ? text : text + Hex(color.a);
}

std::string Borders(uint8_t sides) {
  if (sides == (kBorderLeft | kBorderTop | kBorderRight | kBorderBottom)) return "all";
  std::string text;
  for (const auto& [side, name] :
       {std::pair{kBorderLeft, "left"}, std::pair{kBorderTop, "top"},
        std::pair{kBorderRight, "right"}, std::pair{kBorderBottom, "bottom"}}) {
    if (sides & side) text += (text.empty() ? "" : " ") + std::string(name);
  }
  return text.empty() ? "none" : text;
}

std::string LineStyleText(LineStyle style) { return NameOf(kLineStyleNames, style); }

// Four lengths, or one when they are equal.
std::string Sides(float left, float top, float right, float bottom, std::string_view as) {
  if (left == top && top == right && right == bottom) return FormatLength(left, as);
  return FormatLength(left, as) + " " + FormatLength(top, as) + " " + FormatLength(right, as) +
         " " + FormatLength(bottom, as);
}

template <typename T>
Text Maybe(const std::optional<T>& value, std::string (*format)(T)) {
  return value ? Text(format(*value)) : std::nullopt;
}

Text MaybeLength(const std::optional<float>& value, std::string_view as) {
  return value ? Text(FormatLength(*value, as)) : std::nullopt;
}

// The attributes of "Inner" as attributes of "Outer", which holds one in "member".
template <typename Outer, typename Inner>
void Lift(const AttributeTable<Inner>& inner, Inner Outer::*member, AttributeTable<Outer>& into) {
  for (const AttributeSpec<Inner>& spec : inner) {
    AttributeSpec<Outer> lifted{
        spec.name, spec.default_text,
        [member, write = spec.write](const Outer& outer, std::string_view as) {
          return write(outer.*member, as);
        }};
    if (spec.is_default) {
      lifted.is_default = [member, is_default = spec.is_default](const Outer& outer) {
        return is_default(outer.*member);
      };
    }
    into.push_back(std::move(lifted));
  }
}

const AttributeTable<StyleSpec>& StyleSpecAttributes() {
  static const AttributeTable<StyleSpec> table = {
      {"font", "Liberation Sans", [](const StyleSpec& s, auto) { return s.font; }},
      {"size", "10",
       [](const StyleSpec& s, auto) { return s.size ? Text(Number(*s.size)) : std::nullopt; }},
      {"bold", "false", [](const StyleSpec& s, auto) { return Maybe(s.bold, Flag); }},
      {"italic", "false", [](const StyleSpec& s, auto) { return Maybe(s.italic, Flag); }},
      {"underline", "false", [](const StyleSpec& s, auto) { return Maybe(s.underline, Flag); }},
      {"strikeout", "false", [](const StyleSpec& s, auto) { return Maybe(s.strikeout, Flag); }},
      {"color", "black", [](const StyleSpec& s, auto) { return Maybe(s.color, ColorText); }},
      {"fill", "none", [](const StyleSpec& s, auto) { return Maybe(s.fill, ColorText); }},
      {"align", "left",
       [](const StyleSpec& s, auto) -> Text {
         if (!s.halign) return std::nullopt;
         return NameOf(kHAlignNames, *s.halign);
       }},
      {"valign", "top",
       [](const StyleSpec& s, auto) -> Text {
         if (!s.valign) return std::nullopt;
         return NameOf(kVAlignNames, *s.valign);
       }},
      {"wrap", "true", [](const StyleSpec& s, auto) { return Maybe(s.wrap, Flag); }},
      {"clip", "true", [](const StyleSpec& s, auto) { return Maybe(s.clip, Flag); }},
      {"rich", "false", [](const StyleSpec& s, auto) { return Maybe(s.rich, Flag); }},
      {"rotate", "0",
       [](const StyleSpec& s, auto) {
         return s.rotation ? Text(std::to_string(*s.rotation)) : std::nullopt;
       }},
      {"line-spacing", "1",
       [](const StyleSpec& s, auto) {
         return s.line_spacing ? Text(Number(*s.line_spacing)) : std::nullopt;
       }},
      {"char-spacing", "0",
       [](const StyleSpec& s, std::string_view as) { return MaybeLength(s.char_spacing, as); }},
      {"border", "none", [](const StyleSpec& s, auto) { return Maybe(s.borders, Borders); }},
      {"border-width", "0.5pt",
       [](const StyleSpec& s, std::string_view as) { return MaybeLength(s.border_width, as); }},
      {"border-color", "black",
       [](const StyleSpec& s, auto) { return Maybe(s.border_color, ColorText); }},
      {"border-style", "solid",
       [](const StyleSpec& s, auto) { return Maybe(s.border_style, LineStyleText); }},
      {"padding", "1.5pt 1pt 1.5pt 1pt",
       [](const StyleSpec& s, std::string_view as) -> Text {
         if (!s.padding) return std::nullopt;
         return Sides(s.padding->left, s.padding->top, s.padding->right, s.padding->bottom, as);
       }},
  };
  return table;
}

// "name", "left", "top", "width", "height" and "print-when" of a boxed object.
template <typename E>
AttributeTable<E> BoxAttributes() {
  return {
      {"name", nullptr, [](const E& o, auto) { return Text(o.name); }},
      {"left", "0",
       [](const E& o, std::string_view as) { return Text(FormatLength(o.box.x, as)); }},
      {"top", "0", [](const E& o, std::string_view as) { return Text(FormatLength(o.box.y, as)); }},
      {"width", nullptr,
       [](const E& o, std::string_view as) { return Text(FormatLength(o.box.width, as)); },
       [](const E&) { return false; }},
      {"height", nullptr,
       [](const E& o, std::string_view as) { return Text(FormatLength(o.box.height, as)); },
       [](const E&) { return false; }},
      {"print-when", nullptr, [](const E& o, auto) { return Text(o.print_when); }},
  };
}

template <typename E>
void AddStroke(AttributeTable<E>& table, const char* width, const char* color, const char* style,
               Stroke E::*member) {
  table.push_back({width, "0.5pt", [member](const E& o, std::string_view as) {
                     return Text(FormatLength((o.*member).width, as));
                   }});
  table.push_back(
      {color, "black", [member](const E& o, auto) { return Text(ColorText((o.*member).color)); }});
  table.push_back({style, "solid",
                   [member](const E& o, auto) { return Text(LineStyleText((o.*member).style)); }});
}

}  // namespace

std::string FormatLength(float points, std::string_view as) {
  struct Unit {
    std::string_view suffix;
    double points;
  };
  static constexpr Unit kUnits[] = {
      {"mm", 72.0 / 25.4}, {"cm", 72.0 / 2.54}, {"in", 72.0}, {"pt", 1.0}};
  Unit unit = kUnits[0];
  bool bare = false, given = false;
  size_t pos = 0;
  while (pos < as.size()) {  // the unit of the first word that has one
    while (pos < as.size() && (as[pos] == ' ' || as[pos] == ',')) ++pos;
    const size_t end = std::min(as.find_first_of(" ,", pos), as.size());
    const std::string_view word = as.substr(pos, end - pos);
    pos = end;
    if (word.empty()) continue;
    bool found = false;
    for (const Unit& candidate : kUnits) {
      if (word.size() >= 2 && word.substr(word.size() - 2) == candidate.suffix) {
        unit = candidate;
        found = given = true;
      }
    }
    if (found) break;
    // A bare number other than 0 says its author writes millimetres without a unit.
    if (word.find_first_not_of("0123456789.+-") == std::string_view::npos &&
        word.find_first_not_of("0.+-") != std::string_view::npos) {
      bare = true;
      break;
    }
  }
  // As few decimals as read back as the same value; points when millimetres were only the
  // default and cannot say it (0.5pt is 0.17638…mm).
  std::string number;
  for (int decimals = 3; decimals <= 5; ++decimals) {
    number = Fixed(points / unit.points, decimals);
    if (std::fabs(std::stod(number) * unit.points - points) < 0.0005) break;
    if (decimals == 3 && !given && !bare) {
      unit = kUnits[3];
      number = Fixed(points, 3);
      break;
    }
  }
  if (number == "0") return number;
  return bare ? number : number + std::string(unit.suffix);
}

const AttributeTable<Template>& ReportAttributes() {
  static const AttributeTable<Template> table = {
      {"format", nullptr, [](const Template&, auto) { return Text("vantorel-template"); },
       [](const Template&) { return false; }},
      {"version", nullptr, [](const Template& t, auto) { return Text(std::to_string(t.version)); },
       [](const Template&) { return false; }},
      {"name", nullptr, [](const Template& t, auto) { return Text(t.name); }},
  };
  return table;
}

const AttributeTable<Metadata>& InfoAttributes() {
  static const AttributeTable<Metadata> table = {
      {"title", nullptr, [](const Metadata& m, auto) { return Text(m.title); }},
      {"author", nullptr, [](const Metadata& m, auto) { return Text(m.author); }},
      {"subject", nullptr, [](const Metadata& m, auto) { return Text(m.subject); }},
  };
  return table;
}

const AttributeTable<PageSetup>& PageAttributes() {
  static const AttributeTable<PageSetup> table = {
      {"size", "A4",
       [](const PageSetup& p, std::string_view as) -> Text {
         SizeF size = p.size;
         if (p.landscape && !p.roll) std::swap(size.width, size.height);
         if (p.roll) return FormatLength(size.width, as) + " auto";
         for (const PaperSize& named : kPaperSizes) {
           if (std::fabs(size.width - Mm(named.width)) < 0.01 &&
               std::fabs(size.height - Mm(named.height)) < 0.01) {
             return named.name;
           }
         }
         return FormatLength(size.width, as) + " " + FormatLength(size.height, as);
       }},
      {"orientation", "portrait",
       [](const PageSetup& p, auto) { return Text(p.landscape ? "landscape" : "portrait"); }},
      {"margin", "10mm",
       [](const PageSetup& p, std::string_view as) {
         return Text(Sides(p.margin_left, p.margin_top, p.margin_right, p.margin_bottom, as));
       }},
      // The four sides are written as "margin"; these stay only where the file gave them.
      {"margin-left", nullptr,
       [](const PageSetup& p, std::string_view as) {
         return Text(FormatLength(p.margin_left, as));
       },
       [](const PageSetup&) { return true; }},
      {"margin-top", nullptr,
       [](const PageSetup& p, std::string_view as) { return Text(FormatLength(p.margin_top, as)); },
       [](const PageSetup&) { return true; }},
      {"margin-right", nullptr,
       [](const PageSetup& p, std::string_view as) {
         return Text(FormatLength(p.margin_right, as));
       },
       [](const PageSetup&) { return true; }},
      {"margin-bottom", nullptr,
       [](const PageSetup& p, std::string_view as) {
         return Text(FormatLength(p.margin_bottom, as));
       },
       [](const PageSetup&) { return true; }},
      {"columns", "1", [](const PageSetup& p, auto) { return Text(std::to_string(p.columns)); }},
      {"column-gap", "0",
       [](const PageSetup& p, std::string_view as) {
         return Text(FormatLength(p.column_gap, as));
       }},
      {"column-order", "down",
       [](const PageSetup& p, auto) { return Text(p.columns_across ? "across" : "down"); }},
      {"printer", nullptr, [](const PageSetup& p, auto) { return Text(p.printer); }},
  };
  return table;
}

const AttributeTable<CopySetup>& CopiesAttributes() {
  static const AttributeTable<CopySetup> table = {
      {"count", nullptr, [](const CopySetup& c, auto) { return Text(std::to_string(c.count)); },
       [](const CopySetup& c) {
         return c.count == std::max<int>(1, static_cast<int>(c.labels.size()));
       }},
      {"per-sheet", "1",
       [](const CopySetup& c, auto) { return Text(std::to_string(c.per_sheet)); }},
  };
  return table;
}

const AttributeTable<CopyLabel>& CopyAttributes() {
  static const AttributeTable<CopyLabel> table = {
      {"label", nullptr, [](const CopyLabel& c, auto) { return Text(c.label); }},
  };
  return table;
}

const AttributeTable<Database>& DatabaseAttributes() {
  static const AttributeTable<Database> table = {
      {"name", nullptr, [](const Database& d, auto) { return Text(d.name); },
       [](const Database&) { return false; }},
  };
  return table;
}

const AttributeTable<Query>& QueryAttributes() {
  static const AttributeTable<Query> table = {
      {"name", nullptr, [](const Query& q, auto) { return Text(q.name); },
       [](const Query&) { return false; }},
      {"database", nullptr, [](const Query& q, auto) { return Text(q.database); }},
  };
  return table;
}

const AttributeTable<QueryParam>& ParamAttributes() {
  static const AttributeTable<QueryParam> table = {
      {"name", nullptr, [](const QueryParam& p, auto) { return Text(p.name); },
       [](const QueryParam&) { return false; }},
      {"type", "text",
       [](const QueryParam& p, auto) -> Text {
         static constexpr const char* kNames[] = {"integer", "number", "text", "date"};
         return kNames[static_cast<int>(p.type)];
       }},
      {"default", nullptr, [](const QueryParam& p, auto) { return Text(p.default_value); }},
      {"value", nullptr, [](const QueryParam& p, auto) { return Text(p.value); }},
  };
  return table;
}

const AttributeTable<Variable>& VariableAttributes() {
  static const AttributeTable<Variable> table = {
      {"category", nullptr, [](const Variable& v, auto) { return Text(v.category); }},
      {"name", nullptr, [](const Variable& v, auto) { return Text(v.name); },
       [](const Variable&) { return false; }},
      {"value", nullptr, [](const Variable& v, auto) { return Text(v.value); }},
  };
  return table;
}

const AttributeTable<Style>& StyleAttributes() {
  static const AttributeTable<Style> table = [] {
    AttributeTable<Style> t = {
        {"name", nullptr, [](const Style& s, auto) { return Text(s.name); },
         [](const Style&) { return false; }},
        {"based-on", nullptr, [](const Style& s, auto) { return Text(s.spec.based_on); }},
    };
    Lift(StyleSpecAttributes(), &Style::spec, t);
    return t;
  }();
  return table;
}

const AttributeTable<Band>& BandAttributes() {
  static const AttributeTable<Band> table = {
      {"name", nullptr, [](const Band& b, auto) { return Text(b.name); }},
      {"height", nullptr,
       [](const Band& b, std::string_view as) { return Text(FormatLength(b.height, as)); },
       [](const Band&) { return false; }},
      {"stretch", "true", [](const Band& b, auto) { return Text(Flag(b.stretch)); }},
      {"keep-together", "false", [](const Band& b, auto) { return Text(Flag(b.keep_together)); }},
      {"start-new-page", "false", [](const Band& b, auto) { return Text(Flag(b.start_new_page)); }},
      {"repeat", nullptr, [](const Band& b, auto) { return Text(Flag(b.repeat)); },
       [](const Band& b) { return b.repeat == (b.kind == BandKind::kDataHeader); }},
      {"print-on-first-page", "true",
       [](const Band& b, auto) { return Text(Flag(b.print_on_first_page)); }},
      {"print-on-last-page", "true",
       [](const Band& b, auto) { return Text(Flag(b.print_on_last_page)); }},
      {"print-if-empty", "false", [](const Band& b, auto) { return Text(Flag(b.print_if_empty)); }},
      {"print-when", nullptr, [](const Band& b, auto) { return Text(b.print_when); }},
  };
  return table;
}

const AttributeTable<DataBand>& DataAttributes() {
  static const AttributeTable<DataBand> table = [] {
    AttributeTable<Band> band;
    for (const AttributeSpec<Band>& spec : BandAttributes()) {
      const std::string_view name = spec.name;
      // A data band prints once per row: it neither repeats nor has a first or empty page.
      if (name != "repeat" && name != "print-on-first-page" && name != "print-on-last-page" &&
          name != "print-if-empty") {
        band.push_back(spec);
      }
    }
    AttributeTable<DataBand> t;
    Lift(band, &DataBand::band, t);
    t.push_back({"query", nullptr, [](const DataBand& d, auto) { return Text(d.query); }});
    t.push_back(
        {"rows", "1", [](const DataBand& d, auto) { return Text(std::to_string(d.rows)); }});
    return t;
  }();
  return table;
}

const AttributeTable<Group>& GroupAttributes() {
  static const AttributeTable<Group> table = {
      {"name", nullptr, [](const Group& g, auto) { return Text(g.name); }},
      {"condition", nullptr, [](const Group& g, auto) { return Text(g.condition); },
       [](const Group&) { return false; }},
      {"keep-together", "false", [](const Group& g, auto) { return Text(Flag(g.keep_together)); }},
      {"start-new-page", "false",
       [](const Group& g, auto) { return Text(Flag(g.start_new_page)); }},
      {"repeat-header", "false", [](const Group& g, auto) { return Text(Flag(g.repeat_header)); }},
  };
  return table;
}

const AttributeTable<TextObject>& TextAttributes() {
  static const AttributeTable<TextObject> table = [] {
    AttributeTable<TextObject> t = BoxAttributes<TextObject>();
    t.push_back({"style", nullptr, [](const TextObject& o, auto) { return Text(o.style_name); }});
    t.push_back({"format", nullptr, [](const TextObject& o, auto) { return Text(o.format); }});
    t.push_back({"stretch", "none", [](const TextObject& o, auto) -> Text {
                   static constexpr const char* kNames[] = {"none", "grow", "band", "cell"};
                   return kNames[static_cast<int>(o.stretch)];
                 }});
    t.push_back(
        {"shrink", "false", [](const TextObject& o, auto) { return Text(Flag(o.shrink)); }});
    t.push_back(
        {"hide-zero", "false", [](const TextObject& o, auto) { return Text(Flag(o.hide_zero)); }});
    t.push_back({"trim", "false", [](const TextObject& o, auto) { return Text(Flag(o.trim)); }});
    Lift(StyleSpecAttributes(), &TextObject::style, t);
    return t;
  }();
  return table;
}

const AttributeTable<PictureObject>& PictureAttributes() {
  static const AttributeTable<PictureObject> table = [] {
    AttributeTable<PictureObject> t = BoxAttributes<PictureObject>();
    t.push_back({"source", nullptr, [](const PictureObject& o, auto) { return Text(o.source); }});
    t.push_back({"fit", "contain", [](const PictureObject& o, auto) -> Text {
                   return NameOf(kImageFitNames, o.fit);
                 }});
    t.push_back(
        {"border", "none", [](const PictureObject& o, auto) { return Text(Borders(o.borders)); }});
    AddStroke(t, "border-width", "border-color", "border-style", &PictureObject::border);
    return t;
  }();
  return table;
}

const AttributeTable<BarcodeObject>& BarcodeAttributes() {
  static const AttributeTable<BarcodeObject> table = [] {
    AttributeTable<BarcodeObject> t = BoxAttributes<BarcodeObject>();
    t.push_back({"type", "qr", [](const BarcodeObject& o, auto) { return Text(o.type); }});
    t.push_back({"data", nullptr, [](const BarcodeObject& o, auto) { return Text(o.data); },
                 [](const BarcodeObject&) { return false; }});
    t.push_back({"level", "M",
                 [](const BarcodeObject& o, auto) { return Text(std::string(1, o.qr_level)); }});
    t.push_back({"show-text", "true",
                 [](const BarcodeObject& o, auto) { return Text(Flag(o.show_text)); }});
    t.push_back(
        {"color", "black", [](const BarcodeObject& o, auto) { return Text(ColorText(o.color)); }});
    t.push_back({"background", "none",
                 [](const BarcodeObject& o, auto) { return Text(ColorText(o.background)); }});
    return t;
  }();
  return table;
}

const AttributeTable<LineObject>& LineAttributes() {
  static const AttributeTable<LineObject> table = [] {
    const auto required = [](const LineObject&) { return false; };
    AttributeTable<LineObject> t = {
        {"name", nullptr, [](const LineObject& o, auto) { return Text(o.name); }},
        {"x1", nullptr,
         [](const LineObject& o, std::string_view as) { return Text(FormatLength(o.from.x, as)); },
         required},
        {"y1", nullptr,
         [](const LineObject& o, std::string_view as) { return Text(FormatLength(o.from.y, as)); },
         required},
        {"x2", nullptr,
         [](const LineObject& o, std::string_view as) { return Text(FormatLength(o.to.x, as)); },
         required},
        {"y2", nullptr,
         [](const LineObject& o, std::string_view as) { return Text(FormatLength(o.to.y, as)); },
         required},
        {"print-when", nullptr, [](const LineObject& o, auto) { return Text(o.print_when); }},
    };
    AddStroke(t, "width", "color", "style", &LineObject::stroke);
    t.push_back({"grow-with-band", "false",
                 [](const LineObject& o, auto) { return Text(Flag(o.grow_with_band)); }});
    return t;
  }();
  return table;
}

const AttributeTable<RectObject>& RectAttributes() {
  static const AttributeTable<RectObject> table = [] {
    AttributeTable<RectObject> t = BoxAttributes<RectObject>();
    t.push_back(
        {"fill", "none", [](const RectObject& o, auto) { return Text(ColorText(o.fill)); }});
    AddStroke(t, "border-width", "border-color", "border-style", &RectObject::stroke);
    t.push_back({"radius", "0", [](const RectObject& o, std::string_view as) {
                   return Text(FormatLength(o.corner_radius, as));
                 }});
    t.push_back({"grow-with-band", "false",
                 [](const RectObject& o, auto) { return Text(Flag(o.grow_with_band)); }});
    return t;
  }();
  return table;
}

const AttributeTable<PartUse>& UseAttributes() {
  static const AttributeTable<PartUse> table = {
      {"part", nullptr, [](const PartUse& u, auto) { return Text(u.part); },
       [](const PartUse&) { return false; }},
      {"name", nullptr, [](const PartUse& u, auto) { return Text(u.name); }},
      {"left", "0",
       [](const PartUse& u, std::string_view as) { return Text(FormatLength(u.box.x, as)); }},
      {"top", "0",
       [](const PartUse& u, std::string_view as) { return Text(FormatLength(u.box.y, as)); }},
      {"print-when", nullptr, [](const PartUse& u, auto) { return Text(u.print_when); }},
  };
  return table;
}

const AttributeTable<LibraryRef>& LibraryAttributes() {
  static const AttributeTable<LibraryRef> table = {
      {"file", nullptr, [](const LibraryRef& l, auto) { return Text(l.file); },
       [](const LibraryRef&) { return false; }},
  };
  return table;
}

}  // namespace vantorel::report
