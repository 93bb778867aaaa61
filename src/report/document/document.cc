#include "report/document/document.h"

#include <algorithm>
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
  static constexpr char kDigits[] = "0123456789abcdef";
  out += '"';
  for (char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (c == '\n') {
      out += "\\n";
    } else if (c == '\t') {
      out += "\\t";
    } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
      out += "\\x";
      out += kDigits[(c >> 4) & 15];
      out += kDigits[c & 15];
    } else {
      out += c;
    }
  }
  out += '"';
}

// The file name of a picture's source without its folder, which differs between machines and
// build folders; host paths may use backslashes.
std::string_view FileName(std::string_view path) {
  const size_t slash = path.find_last_of("/\\");
  return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

// FNV-1a over the pixel rows (not the row padding), as 16 hex digits: a picture's identity that
// does not depend on where its file was.
std::string PixelHash(const ImageData& image) {
  uint64_t hash = 14695981039346656037ull;
  const size_t row = static_cast<size_t>(std::max(image.width, 0)) * 4;
  for (int y = 0; y < image.height; ++y) {
    const size_t begin = static_cast<size_t>(y) * static_cast<size_t>(image.stride);
    if (begin + row > image.pixels.size()) break;
    for (size_t i = begin; i < begin + row; ++i) {
      hash = (hash ^ image.pixels[i]) * 1099511628211ull;
    }
  }
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text(16, '0');
  for (int i = 15; i >= 0; --i, hash >>= 4) text[static_cast<size_t>(i)] = kDigits[hash & 15];
  return text;
}

void StrokeText(std::string& out, const Stroke& s) {
  Number(out, s.width);
  out += ' ';
  Hex(out, s.color);
  out += " style=";
  out += std::to_string(static_cast<int>(s.style));
}

void Indent(std::string& out, int depth) { out.append(static_cast<size_t>(depth) * 2, ' '); }

void Text(std::string& out, const Document& document, const TextItem& t, int depth,
          const LineStarts& line_starts) {
  out += "text ";
  Rect(out, t.box);
  out += " style=" + std::to_string(t.style) + ' ';
  std::vector<uint32_t> starts;
  if (line_starts && !t.text.empty() && t.style < document.styles.size()) {
    starts = line_starts(t, document.styles[t.style]);
  }
  if (starts.size() < 2) {
    Quoted(out, t.text);
    out += '\n';
    return;
  }
  out += "lines=" + std::to_string(starts.size()) + '\n';
  for (size_t i = 0; i < starts.size(); ++i) {
    const size_t begin = std::min<size_t>(starts[i], t.text.size());
    const size_t end =
        i + 1 < starts.size() ? std::min<size_t>(starts[i + 1], t.text.size()) : t.text.size();
    Indent(out, depth + 1);
    out += "| ";
    Quoted(out, std::string_view(t.text).substr(begin, end > begin ? end - begin : 0));
    out += '\n';
  }
}

void Items(std::string& out, const Document& document, const std::vector<Item>& items, int depth,
           const LineStarts& line_starts) {
  for (const Item& item : items) {
    Indent(out, depth);
    if (const auto* t = std::get_if<TextItem>(&item)) {
      Text(out, document, *t, depth, line_starts);
      continue;
    }
    if (const auto* l = std::get_if<LineItem>(&item)) {
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
      Items(out, document, g->items, depth + 1, line_starts);
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

std::string Serialize(const Document& document, const LineStarts& line_starts) {
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
    if (s.line_spacing != 1) {
      out += " spacing=";
      Number(out, s.line_spacing);
    }
    if (s.char_spacing != 0) {
      out += " char-spacing=";
      Number(out, s.char_spacing);
    }
    if (s.padding != Padding()) {
      out += " padding=";
      Number(out, s.padding.left);
      out += ',';
      Number(out, s.padding.top);
      out += ',';
      Number(out, s.padding.right);
      out += ',';
      Number(out, s.padding.bottom);
    }
    if (s.borders != 0) {
      out += " borders=" + std::to_string(s.borders) + ' ';
      StrokeText(out, s.border);
    }
    out += '\n';
  }
  for (size_t i = 0; i < document.images.size(); ++i) {
    const ImageData& image = *document.images[i];
    out += "image " + std::to_string(i) + ' ';
    Quoted(out, FileName(image.source));
    out += ' ' + std::to_string(image.width) + 'x' + std::to_string(image.height) +
           (image.jpeg.empty() ? "" : " jpeg") + " pixels=" + PixelHash(image) + '\n';
  }
  for (size_t i = 0; i < document.barcodes.size(); ++i) {
    const BarcodeSymbol& symbol = *document.barcodes[i];
    out += "symbol " + std::to_string(i) + ' ' + symbol.symbology + ' ';
    Quoted(out, symbol.data);
    out += ' ' + std::to_string(symbol.bars.size()) + " bars ";
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
    Items(out, document, page.items, 1, line_starts);
  }
  // Texts cut off by a box that cannot grow: a layout with none has no such line.
  for (const Overflow& overflow : document.overflows) {
    out += "overflow page " + std::to_string(overflow.page) + " line " +
           std::to_string(overflow.line) + (overflow.across ? " width " : " height ");
    Number(out, overflow.needed);
    out += '>';
    Number(out, overflow.available);
    out += ' ';
    Quoted(out, overflow.text);
    out += '\n';
  }
  return out;
}

void AppendPages(Document& into, Document&& more) {
  std::vector<uint32_t> styles, images, barcodes;
  for (const TextStyle& style : more.styles) styles.push_back(into.InternStyle(style));
  for (auto& image : more.images) images.push_back(into.AddImage(image));
  for (auto& symbol : more.barcodes) barcodes.push_back(into.AddBarcode(symbol));
  const auto renumber = [&](auto& self, std::vector<Item>& items) -> void {
    for (Item& item : items) {
      if (auto* t = std::get_if<TextItem>(&item)) t->style = styles[t->style];
      if (auto* i = std::get_if<ImageItem>(&item)) i->image = images[i->image];
      if (auto* b = std::get_if<BarcodeItem>(&item)) b->symbol = barcodes[b->symbol];
      if (auto* g = std::get_if<GroupItem>(&item)) self(self, g->items);
    }
  };
  for (Overflow& overflow : more.overflows) {
    overflow.page += into.pages.size();
    into.overflows.push_back(std::move(overflow));
  }
  for (Page& page : more.pages) {
    renumber(renumber, page.items);
    into.pages.push_back(std::move(page));
  }
}

}  // namespace vantorel::report
