#include "report/pdf/pdf_painter.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "report/render/draw_parts.h"

namespace vantorel::report::pdf {
namespace {

// Bezier handles for a quarter circle, as a fraction of its radius.
constexpr double kArc = 0.5522847498;

int Packed(const Color& c) { return c.r << 16 | c.g << 8 | c.b; }

// True when "run"'s clusters account for exactly its text and glyphs.
bool ClustersCover(const text::GlyphRun& run) {
  size_t bytes = 0, glyphs = 0;
  for (const cairo_text_cluster_t& cluster : run.clusters) {
    if (cluster.num_bytes < 0 || cluster.num_glyphs < 0) return false;
    bytes += static_cast<size_t>(cluster.num_bytes);
    glyphs += static_cast<size_t>(cluster.num_glyphs);
  }
  return bytes == run.utf8.size() && glyphs == run.glyphs.size();
}

struct JpegInfo {
  int components = 0;
  bool adobe = false;  // an Adobe marker: CMYK is stored inverted
};

// The colour components of a JPEG file from its frame header; 0 when there is none.
JpegInfo ReadJpegInfo(std::string_view jpeg) {
  JpegInfo info;
  const auto at = [&](size_t i) { return static_cast<uint8_t>(jpeg[i]); };
  if (jpeg.size() < 4 || at(0) != 0xFF || at(1) != 0xD8) return info;
  size_t i = 2;
  while (i + 4 <= jpeg.size()) {
    if (at(i) != 0xFF) return info;
    const uint8_t marker = at(i + 1);
    if (marker == 0xFF) {
      ++i;
      continue;
    }
    const size_t length = static_cast<size_t>(at(i + 2)) << 8 | at(i + 3);
    if (length < 2 || i + 2 + length > jpeg.size()) return info;
    if (marker == 0xEE && length >= 7 && jpeg.substr(i + 4, 5) == "Adobe") info.adobe = true;
    const bool frame =
        marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
    if (frame) {
      if (length >= 8) info.components = at(i + 9);
      return info;
    }
    if (marker == 0xDA) return info;  // scan data before any frame: malformed
    i += 2 + length;
  }
  return info;
}

}  // namespace

uint32_t PdfResources::Image(const std::shared_ptr<const ImageData>& image) {
  if (const auto found = images_.find(image.get()); found != images_.end()) return found->second;
  const ImageData& data = *image;
  uint32_t id = 0;
  const std::string size = "/Type/XObject/Subtype/Image/Width " + std::to_string(data.width) +
                           "/Height " + std::to_string(data.height) + "/BitsPerComponent 8";
  const JpegInfo jpeg = ReadJpegInfo(data.jpeg);
  const bool valid = data.width > 0 && data.height > 0 && data.stride >= data.width * 4 &&
                     data.pixels.size() >= static_cast<size_t>(data.stride) * data.height;
  if (jpeg.components == 1 || jpeg.components == 3 || jpeg.components == 4) {
    // The file's own bytes, unchanged.
    std::string dict = size + "/Filter/DCTDecode/ColorSpace/";
    dict += jpeg.components == 1 ? "DeviceGray" : jpeg.components == 3 ? "DeviceRGB" : "DeviceCMYK";
    if (jpeg.components == 4 && jpeg.adobe) dict += "/Decode[1 0 1 0 1 0 1 0]";
    id = file_.Reserve();
    file_.WriteStream(id, dict, data.jpeg, false);
  } else if (valid) {
    // Premultiplied native-endian ARGB32 to plain RGB, and the alpha as a soft mask.
    const size_t count = static_cast<size_t>(data.width) * data.height;
    std::string rgb(count * 3, '\0');
    std::string alpha(data.has_alpha ? count : 0, '\0');
    size_t k = 0;
    for (int row = 0; row < data.height; ++row) {
      const auto* pixel = reinterpret_cast<const uint32_t*>(data.pixels.data() +
                                                            static_cast<size_t>(row) * data.stride);
      for (int column = 0; column < data.width; ++column, ++k) {
        const uint32_t p = pixel[column];
        const uint32_t a = data.has_alpha ? p >> 24 : 255;
        uint32_t r = p >> 16 & 0xFF, g = p >> 8 & 0xFF, b = p & 0xFF;
        if (a != 255 && a != 0) {
          r = std::min<uint32_t>(255, (r * 255 + a / 2) / a);
          g = std::min<uint32_t>(255, (g * 255 + a / 2) / a);
          b = std::min<uint32_t>(255, (b * 255 + a / 2) / a);
        }
        rgb[k * 3] = static_cast<char>(r);
        rgb[k * 3 + 1] = static_cast<char>(g);
        rgb[k * 3 + 2] = static_cast<char>(b);
        if (data.has_alpha) alpha[k] = static_cast<char>(a);
      }
    }
    uint32_t mask = 0;
    if (data.has_alpha) {
      mask = file_.Reserve();
      file_.WriteStream(mask,
                        "/Type/XObject/Subtype/Image/Width " + std::to_string(data.width) +
                            "/Height " + std::to_string(data.height) +
                            "/BitsPerComponent 8/ColorSpace/DeviceGray",
                        alpha);
    }
    id = file_.Reserve();
    std::string dict = size + "/ColorSpace/DeviceRGB";
    if (mask != 0) dict += "/SMask " + std::to_string(mask) + " 0 R";
    file_.WriteStream(id, dict, rgb);
  }
  images_.emplace(image.get(), id);
  kept_.push_back(image);
  return id;
}

uint32_t PdfResources::Opacity(uint8_t alpha, bool stroking) {
  const auto [at, added] =
      opacities_.try_emplace(static_cast<uint16_t>(alpha | (stroking ? 1 : 0) << 8), 0);
  if (added) at->second = file_.Reserve();
  return at->second;
}

void PdfResources::WriteAll() {
  fonts_.WriteAll();
  for (const auto& [key, id] : opacities_) {
    std::string dict = (key >> 8) != 0 ? "<</Type/ExtGState/CA " : "<</Type/ExtGState/ca ";
    AppendNumber(dict, (key & 0xFF) / 255.0);
    dict += ">>";
    file_.WriteObject(id, dict);
  }
}

PdfPainter::PdfPainter(PdfResources& resources, double height) : resources_(resources) {
  out_ = "1 0 0 -1 0 ";
  AppendNumber(out_, height);
  out_ += " cm\n";
}

std::string PdfPainter::Resources() const {
  std::string dict;
  const auto list = [&](const char* kind, const char* prefix, const std::set<uint32_t>& ids) {
    if (ids.empty()) return;
    dict += kind;
    dict += "<<";
    for (const uint32_t id : ids) {
      dict += prefix + std::to_string(id) + ' ' + std::to_string(id) + " 0 R";
    }
    dict += ">>";
  };
  list("/Font", "/F", fonts_);
  list("/XObject", "/Im", images_);
  list("/ExtGState", "/G", opacities_);
  return dict;
}

void PdfPainter::Flush() { LeaveText(); }

void PdfPainter::Save() {
  LeaveText();
  out_ += "q\n";
  saved_.push_back(state_);
}

void PdfPainter::Restore() {
  LeaveText();
  if (saved_.empty()) return;
  out_ += "Q\n";
  state_ = saved_.back();
  saved_.pop_back();
  font_ = -1;  // the font is graphics state as well: back to what it was before the "q"
}

void PdfPainter::CloseArray() {
  if (in_string_) out_ += ')';
  if (in_array_) out_ += "]TJ\n";
  in_string_ = in_array_ = false;
}

void PdfPainter::LeaveText() {
  if (!in_text_) return;
  CloseArray();
  out_ += "ET\n";
  in_text_ = in_line_ = false;
}

void PdfPainter::SetOpacity(uint8_t alpha, bool stroking) {
  uint8_t& current = stroking ? state_.stroke_alpha : state_.fill_alpha;
  if (current == alpha) return;
  CloseArray();
  const uint32_t id = resources_.Opacity(alpha, stroking);
  opacities_.insert(id);
  out_ += "/G" + std::to_string(id) + " gs\n";
  current = alpha;
}

void PdfPainter::SetFill(const Color& color) {
  SetOpacity(color.a, false);
  if (state_.fill == Packed(color)) return;
  CloseArray();
  Number(color.r / 255.0);
  Number(color.g / 255.0);
  Number(color.b / 255.0);
  out_ += "rg\n";
  state_.fill = Packed(color);
}

void PdfPainter::SetStroke(const Stroke& stroke, cairo_line_cap_t cap) {
  SetOpacity(stroke.color.a, true);
  if (state_.stroke != Packed(stroke.color)) {
    Number(stroke.color.r / 255.0);
    Number(stroke.color.g / 255.0);
    Number(stroke.color.b / 255.0);
    out_ += "RG\n";
    state_.stroke = Packed(stroke.color);
  }
  if (state_.width != stroke.width) {
    Number(stroke.width);
    out_ += "w\n";
    state_.width = stroke.width;
  }
  const int style = stroke.style == LineStyle::kDouble ? static_cast<int>(LineStyle::kSolid)
                                                       : static_cast<int>(stroke.style);
  if (state_.dash != style || (style != 0 && state_.dash_width != stroke.width)) {
    double dashes[4];
    const int count = render::DashPattern(stroke, dashes);
    out_ += '[';
    for (int i = 0; i < count; ++i) Number(dashes[i]);
    out_ += "]0 d\n";
    state_.dash = style;
    state_.dash_width = stroke.width;
  }
  const int pdf_cap = cap == CAIRO_LINE_CAP_ROUND ? 1 : cap == CAIRO_LINE_CAP_SQUARE ? 2 : 0;
  if (state_.cap != pdf_cap) {
    out_ += std::to_string(pdf_cap) + " J\n";
    state_.cap = pdf_cap;
  }
}

void PdfPainter::AddPath(const RectF& box, float radius) {
  const double x = box.x, y = box.y, w = box.width, h = box.height;
  const double r = std::min({static_cast<double>(radius), w / 2, h / 2});
  if (!(r > 0)) {
    Number(x);
    Number(y);
    Number(w);
    Number(h);
    out_ += "re\n";
    return;
  }
  const double k = r * kArc;
  const auto point = [&](double px, double py, const char* op) {
    Number(px);
    Number(py);
    if (op != nullptr) out_ += op;
  };
  point(x + r, y, "m ");
  point(x + w - r, y, "l ");
  point(x + w - r + k, y, nullptr);
  point(x + w, y + r - k, nullptr);
  point(x + w, y + r, "c ");
  point(x + w, y + h - r, "l ");
  point(x + w, y + h - r + k, nullptr);
  point(x + w - r + k, y + h, nullptr);
  point(x + w - r, y + h, "c ");
  point(x + r, y + h, "l ");
  point(x + r - k, y + h, nullptr);
  point(x, y + h - r + k, nullptr);
  point(x, y + h - r, "c ");
  point(x, y + r, "l ");
  point(x, y + r - k, nullptr);
  point(x + r - k, y, nullptr);
  point(x + r, y, "c h\n");
}

void PdfPainter::Fill(const RectF& box, float radius, const Color& color) {
  if (!color.visible() || !(box.width > 0) || !(box.height > 0)) return;
  LeaveText();
  SetFill(color);
  AddPath(box, radius);
  out_ += "f\n";
}

void PdfPainter::StrokeShape(const Shape& shape, const Stroke& stroke, cairo_line_cap_t cap,
                             const RectF& /*bounds*/) {
  LeaveText();
  SetStroke(stroke, cap);
  if (shape.segment) {
    Number(shape.box.x);
    Number(shape.box.y);
    out_ += "m ";
    Number(shape.box.right());
    Number(shape.box.bottom());
    out_ += "l S\n";
    return;
  }
  AddPath(shape.box, shape.radius);
  out_ += "S\n";
}

void PdfPainter::Glyph(const FontUse& font, uint32_t glyph, double x, double y) {
  const bool same_line = in_line_ && line_font_.index == font.index && line_font_.a == font.a &&
                         line_font_.b == font.b && line_font_.c == font.c &&
                         line_font_.d == font.d && std::abs(y - line_y_) < 1e-4;
  // Advances run along the text matrix's x axis; a font turned by its own matrix gets a matrix
  // per glyph.
  if (!same_line || font.b != 0 || !(font.a > 0)) {
    CloseArray();
    Number(font.a);
    Number(font.b);
    Number(font.c);
    Number(font.d);
    Number(x);
    Number(y);
    out_ += "Tm\n";
    in_line_ = true;
    line_font_ = font;
    line_x_ = x;
    line_y_ = y;
    pen_ = 0;
  }
  if (!in_array_) {
    out_ += '[';
    in_array_ = true;
  }
  const double target = font.b == 0 && font.a > 0 ? (x - line_x_) * 1000.0 / font.a : 0;
  // Shifts under a thousandth of an em (under 0.012 pt at 12 pt) are rounding, not layout.
  const double shift = std::round((pen_ - target) * 10) / 10;
  if (std::abs(shift) >= 1) {
    if (in_string_) out_ += ')';
    in_string_ = false;
    AppendNumber(out_, shift);
    pen_ -= shift;
  }
  if (!in_string_) {
    out_ += '(';
    in_string_ = true;
  }
  // Glyph ids as two bytes each in a literal string: half the size of hex before compression.
  // Brackets and the backslash are escaped, and line ends, which a reader would normalise.
  for (const auto byte : {static_cast<char>(glyph >> 8 & 0xFF), static_cast<char>(glyph & 0xFF)}) {
    switch (byte) {
      case '(':
      case ')':
      case '\\':
        out_ += '\\';
        out_ += byte;
        break;
      case '\r':
        out_ += "\\r";
        break;
      case '\n':
        out_ += "\\n";
        break;
      default:
        out_ += byte;
    }
  }
  pen_ += resources_.fonts().Width(font.index, glyph);
}

void PdfPainter::MarkedText(const std::string& utf8) {
  CloseArray();
  out_ += "/Span<</ActualText<FEFF";
  AppendUtf16Hex(out_, utf8);
  out_ += ">>>BDC\n";
}

void PdfPainter::ShowRun(const text::GlyphRun& run, float x, float y, const Color& color,
                         const RectF& /*bounds*/) {
  if (run.glyphs.empty() || !color.visible()) return;
  FontUse font;
  PdfFonts& fonts = resources_.fonts();
  if (!fonts.Use(run.font.get(), font)) return;  // a face no PDF can embed
  if (!in_text_) {
    out_ += "BT\n";
    in_text_ = true;
    in_line_ = false;
  }
  SetFill(color);
  if (font_ != static_cast<int>(font.index)) {
    CloseArray();
    out_ += "/F" + std::to_string(font.object) + " 1 Tf\n";
    font_ = static_cast<int>(font.index);
    fonts_.insert(font.object);
  }
  const auto show = [&](const cairo_glyph_t& glyph) {
    Glyph(font, static_cast<uint32_t>(glyph.index), x + glyph.x, y + glyph.y);
  };
  if (!ClustersCover(run)) {
    for (const cairo_glyph_t& glyph : run.glyphs) {
      fonts.Show(font.index, static_cast<uint32_t>(glyph.index));
      show(glyph);
    }
    return;
  }
  // Each cluster's glyphs extract as its text: through the font's Unicode map when it is one
  // glyph the map can say it of, else marked with the text it stands for.
  const bool backward = (run.cluster_flags & CAIRO_TEXT_CLUSTER_FLAG_BACKWARD) != 0;
  size_t byte = 0;
  size_t next = backward ? run.glyphs.size() : 0;
  for (const cairo_text_cluster_t& cluster : run.clusters) {
    const std::string_view text(run.utf8.data() + byte, static_cast<size_t>(cluster.num_bytes));
    byte += static_cast<size_t>(cluster.num_bytes);
    const auto count = static_cast<size_t>(cluster.num_glyphs);
    if (backward) next -= count;
    const size_t first = next;
    if (!backward) next += count;
    if (count == 1 && fonts.Map(font.index, static_cast<uint32_t>(run.glyphs[first].index), text)) {
      show(run.glyphs[first]);
      continue;
    }
    MarkedText(std::string(text));
    for (size_t i = first; i < first + count; ++i) {
      fonts.Show(font.index, static_cast<uint32_t>(run.glyphs[i].index));
      show(run.glyphs[i]);
    }
    CloseArray();
    out_ += "EMC\n";
  }
}

void PdfPainter::ShowTurnedText(const text::LaidOutText& laid_out, const TextStyle& style,
                                const RectF& box, int rotation, bool clip, float y) {
  const Padding& pad = style.padding;
  const double inner_x = box.x + pad.left;
  const double inner_y = box.y + pad.top;
  const double inner_width = std::max(0.0f, box.width - pad.left - pad.right);
  const double inner_height = std::max(0.0f, box.height - pad.top - pad.bottom);
  Save();
  if (clip) {
    AddPath(box, 0);
    out_ += "W n\n";
  }
  // The frame's axes on the page: x along its lines, y down its lines.
  double m[6] = {1, 0, 0, 1, inner_x, inner_y};
  if (rotation == 90) {
    m[0] = 0, m[1] = -1, m[2] = 1, m[3] = 0, m[5] = inner_y + inner_height;
  } else if (rotation == 270) {
    m[0] = 0, m[1] = 1, m[2] = -1, m[3] = 0, m[4] = inner_x + inner_width;
  } else if (rotation == 180) {
    m[0] = -1, m[3] = -1, m[4] = inner_x + inner_width, m[5] = inner_y + inner_height;
  }
  for (const double v : m) Number(v);
  out_ += "cm\n";
  render::PaintText(*this, laid_out, style, 0, y);
  Restore();
}

void PdfPainter::BeginGroup(const RectF& clip) {
  Save();
  if (clip.width > 0 && clip.height > 0) {
    AddPath(clip, 0);
    out_ += "W n\n";
  }
}

void PdfPainter::EndGroup() { Restore(); }

void PdfPainter::DrawImage(const ImageItem& item, const std::shared_ptr<const ImageData>& image) {
  const RectF& box = item.box;
  if (!(box.width > 0) || !(box.height > 0) || image->width <= 0 || image->height <= 0) return;
  const uint32_t id = resources_.Image(image);
  if (id == 0) return;
  images_.insert(id);
  const render::ImagePlacement place = render::PlaceImage(item, *image);
  Save();
  if (place.clip) {
    AddPath(box, 0);
    out_ += "W n\n";
  }
  const double width = image->width * place.sx, height = image->height * place.sy;
  Number(width);
  out_ += "0 0 ";
  Number(-height);
  Number(place.x);
  Number(place.y + height);
  out_ += "cm /Im" + std::to_string(id) + " Do\n";
  Restore();
}

void PdfPainter::DrawBars(const BarcodeSymbol& symbol, double x, double y, double sx, double sy,
                          const Color& color) {
  LeaveText();
  SetFill(color);
  bool any = false;
  for (const RectF& bar : symbol.bars) {
    if (!(bar.width > 0) || !(bar.height > 0)) continue;
    any = true;
    Number(x + bar.x * sx);
    Number(y + bar.y * sy);
    Number(bar.width * sx);
    Number(bar.height * sy);
    out_ += "re\n";
  }
  if (any) out_ += "f\n";
}

}  // namespace vantorel::report::pdf
