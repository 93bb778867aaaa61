#include "report/document/document.h"

#include <charconv>
#include <functional>

namespace vantorel::report {
namespace {

void Number(std::string& out, float value) {
  // Two decimals of a point is finer than any printer; keeps golden files stable.
  char buffer[32];
  const auto end =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, 2);
  std::string_view text(buffer, static_cast<size_t>(end.ptr - buffer));
  while (text.size() > 1 && text.back() == '0') text.remove_suffix(1);
  if (text.back() == '.') text.remove_suffix(1);
  if (text == "-0") text = "0";
  out += text;
}

void Rect(std::string& out, const RectF& r) {
  Number(out, r.x);
  out += ',';
  Number(out, r.y);
  out += ' ';
  Number(out, r.width);
  out += 'x';
  Number(out, r.height);
}

void Hex(std::string& out, const Color& c) {
  static constexpr char kDigits[] = "0123456789abcdef";
  out += '#';
  for (uint8_t v : {c.r, c.g, c.b, c.a}) {
    out += kDigits[v >> 4];
    out += kDigits[v & 15];
  }
}

void Quoted(std::string& out, std::string_view text) {
  out += '"';
  for (char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (c == '\n') {
      out += "\\n";
    } else {
      out += c;
    }
  }
  out += '"';
}

void StrokeText(std::string& out, const Stroke& s) {
  Number(out, s.width);
  out += ' ';
  Hex(out, s.color);
  out += " style=";
  out += std::to_string(static_cast<int>(s.style));
}

void Items(std::string& out, const std::vector<Item>& items, int depth) {
  for (const Item& item : items) {
    out.append(static_cast<size_t>(depth) * 2, ' ');
    if (const auto* t = std::get_if<TextItem>(&item)) {
      out += "text ";
      Rect(out, t->box);
      out += " style=" + std::to_string(t->style) + ' ';
      Quoted(out, t->text);
    } else if (const auto* l = std::get_if<LineItem>(&item)) {
      out += "line ";
      Number(out, l->from.x);
      out += ',';
      Number(out, l->from.y);
      out += ' ';
      Number(out, l->to.x);
      out += ',';
      Number(out, l->to.y);
      out += ' ';
      StrokeText(out, l->stroke);
    } else if (const auto* r = std::get_if<RectItem>(&item)) {
      out += "rect ";
      Rect(out, r->box);
      out += " fill=";
      Hex(out, r->fill);
      out += " stroke=";
      StrokeText(out, r->stroke);
      if (r->corner_radius != 0) {
        out += " radius=";
        Number(out, r->corner_radius);
      }
    } else if (const auto* i = std::get_if<ImageItem>(&item)) {
      out += "image ";
      Rect(out, i->box);
      out +=
          " image=" + std::to_string(i->image) + " fit=" + std::to_string(static_cast<int>(i->fit));
    } else if (const auto* b = std::get_if<BarcodeItem>(&item)) {
      out += "barcode ";
      Rect(out, b->box);
      out += " symbol=" + std::to_string(b->symbol) + ' ';
      Hex(out, b->color);
    } else if (const auto* g = std::get_if<GroupItem>(&item)) {
      out += "group clip=";
      Rect(out, g->clip);
      out += '\n';
      Items(out, g->items, depth + 1);
      continue;
    }
    out += '\n';
  }
}

}  // namespace

size_t TextStyleHash::operator()(const TextStyle& style) const {
  size_t hash = std::hash<std::string>()(style.font_family);
  const auto mix = [&hash](size_t value) { hash ^= value + 0x9e3779b97f4a7c15 + (hash << 6); };
  const auto color = [](const Color& c) {
    return static_cast<size_t>(c.r) << 24 | static_cast<size_t>(c.g) << 16 |
           static_cast<size_t>(c.b) << 8 | c.a;
  };
  for (const float number :
       {style.size, style.line_spacing, style.char_spacing, style.border.width, style.padding.left,
        style.padding.top, style.padding.right, style.padding.bottom}) {
    mix(std::hash<float>()(number));
  }
  mix(color(style.color));
  mix(color(style.fill));
  mix(color(style.border.color));
  mix(static_cast<size_t>(style.bold) | static_cast<size_t>(style.italic) << 1 |
      static_cast<size_t>(style.underline) << 2 | static_cast<size_t>(style.strikeout) << 3 |
      static_cast<size_t>(style.wrap) << 4 | static_cast<size_t>(style.clip) << 5 |
      static_cast<size_t>(style.rich) << 6 | static_cast<size_t>(style.halign) << 8 |
      static_cast<size_t>(style.valign) << 12 | static_cast<size_t>(style.border.style) << 16 |
      static_cast<size_t>(style.borders) << 20 |
      static_cast<size_t>(static_cast<uint16_t>(style.rotation)) << 28);
  return hash;
}

uint32_t Document::InternStyle(const TextStyle& style) {
  for (size_t i = 0; i < styles.size(); ++i) {
    if (styles[i] == style) return static_cast<uint32_t>(i);
  }
  styles.push_back(style);
  return static_cast<uint32_t>(styles.size() - 1);
}

uint32_t Document::AddImage(std::shared_ptr<const ImageData> image) {
  for (size_t i = 0; i < images.size(); ++i) {
    if (images[i] == image) return static_cast<uint32_t>(i);
  }
  images.push_back(std::move(image));
  return static_cast<uint32_t>(images.size() - 1);
}

uint32_t Document::AddBarcode(std::shared_ptr<const BarcodeSymbol> symbol) {
  barcodes.push_back(std::move(symbol));
  return static_cast<uint32_t>(barcodes.size() - 1);
}

std::string Serialize(const Document& document) {
  std::string out;
  out += "document ";
  Quoted(out, document.metadata.title);
  out += " pages=" + std::to_string(document.pages.size()) + '\n';
  for (size_t i = 0; i < document.styles.size(); ++i) {
    const TextStyle& s = document.styles[i];
    out += "style " + std::to_string(i) + ' ';
    Quoted(out, s.font_family);
    out += ' ';
    Number(out, s.size);
    if (s.bold) out += " bold";
    if (s.italic) out += " italic";
    if (s.underline) out += " underline";
    if (s.strikeout) out += " strikeout";
    out += " color=";
    Hex(out, s.color);
    if (s.fill.visible()) {
      out += " fill=";
      Hex(out, s.fill);
    }
    out += " align=" + std::to_string(static_cast<int>(s.halign)) + '/' +
           std::to_string(static_cast<int>(s.valign));
    if (!s.wrap) out += " nowrap";
    if (!s.clip) out += " noclip";
    if (s.rich) out += " rich";
    if (s.rotation != 0) out += " rotate=" + std::to_string(s.rotation);
    if (s.borders != 0) {
      out += " borders=" + std::to_string(s.borders) + ' ';
      StrokeText(out, s.border);
    }
    out += '\n';
  }
  for (size_t i = 0; i < document.images.size(); ++i) {
    const ImageData& image = *document.images[i];
    out += "image " + std::to_string(i) + ' ' + std::to_string(image.width) + 'x' +
           std::to_string(image.height) + (image.jpeg.empty() ? "" : " jpeg") + '\n';
  }
  for (size_t i = 0; i < document.barcodes.size(); ++i) {
    const BarcodeSymbol& symbol = *document.barcodes[i];
    out += "symbol " + std::to_string(i) + ' ' + std::to_string(symbol.bars.size()) + " bars ";
    Quoted(out, symbol.text);
    out += '\n';
  }
  for (size_t p = 0; p < document.pages.size(); ++p) {
    const Page& page = document.pages[p];
    out += "page " + std::to_string(p + 1) + ' ';
    Number(out, page.size.width);
    out += 'x';
    Number(out, page.size.height);
    out += '\n';
    Items(out, page.items, 1);
  }
  return out;
}

}  // namespace vantorel::report
