#include "report/pdf/pdf_fonts.h"

#include <cairo-ft.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_TRUETYPE_TABLES_H
#include <hb-ot.h>
#include <hb-subset.h>
#include <hb.h>

#include <algorithm>
#include <cmath>
#include <list>
#include <mutex>
#include <utility>

#include "report/text/handles.h"

namespace vantorel::report::pdf {

// A subset font file, deflated as a PDF embeds it.
struct FontSubset {
  std::string deflated;
  size_t length = 0;  // before deflating
};

// A font file's face as PDFs embed it: read once per process, kept while any document or the
// face cache holds it. HarfBuzz faces and fonts are immutable once made, so threads share them.
struct FontFace {
  hb_face_t* face = nullptr;
  hb_font_t* font = nullptr;  // scaled to font units, for advances
  unsigned upem = 1000;
  std::string name;  // PostScript name, without blanks
  int bbox[4] = {0, 0, 0, 0};
  int ascent = 0, descent = 0, cap_height = 0;
  double italic_angle = 0;
  bool fixed_pitch = false;

  // The last subsets made of this face, by glyph set: a host printing the same document again
  // embeds the same glyphs again.
  mutable std::mutex mutex;
  mutable std::list<std::pair<std::vector<uint32_t>, std::shared_ptr<const FontSubset>>> subsets;

  FontFace() = default;
  FontFace(const FontFace&) = delete;
  FontFace& operator=(const FontFace&) = delete;
  ~FontFace() {
    hb_font_destroy(font);
    hb_face_destroy(face);
  }
};

namespace {

constexpr size_t kKeptFaces = 32;
constexpr size_t kKeptSubsets = 8;

// Thousandths of an em from font units.
int Scaled(double units, unsigned upem) {
  return static_cast<int>(std::lround(units * 1000.0 / upem));
}

std::shared_ptr<const FontFace> LoadFace(FT_Face ft) {
  if (ft == nullptr || !FT_IS_SFNT(ft) || ft->stream == nullptr ||
      ft->stream->pathname.pointer == nullptr) {
    return nullptr;
  }
  const std::string path = static_cast<const char*>(ft->stream->pathname.pointer);
  const auto index = static_cast<unsigned>(ft->face_index & 0xFFFF);

  static std::mutex mutex;
  static std::list<std::pair<std::string, std::shared_ptr<const FontFace>>> faces;
  const std::string key = path + '\0' + std::to_string(index);
  std::lock_guard lock(mutex);
  for (auto it = faces.begin(); it != faces.end(); ++it) {
    if (it->first == key) {
      faces.splice(faces.begin(), faces, it);
      return faces.front().second;
    }
  }
  hb_blob_t* blob = hb_blob_create_from_file_or_fail(path.c_str());
  if (blob == nullptr) return nullptr;
  auto face = std::make_shared<FontFace>();
  face->face = hb_face_create(blob, index);
  hb_blob_destroy(blob);
  face->upem = std::max(16u, hb_face_get_upem(face->face));
  face->font = hb_font_create(face->face);
  hb_font_set_scale(face->font, static_cast<int>(face->upem), static_cast<int>(face->upem));

  const char* name = FT_Get_Postscript_Name(ft);
  for (const char* c = name != nullptr ? name : "Font"; *c != '\0'; ++c) {
    // A PDF name's delimiters and blanks would end it.
    if (*c > ' ' && *c < 0x7F && std::string_view("()<>[]{}/%#").find(*c) == std::string::npos) {
      face->name += *c;
    }
  }
  if (face->name.empty()) face->name = "Font";
  const unsigned upem = face->upem;
  face->bbox[0] = Scaled(static_cast<double>(ft->bbox.xMin), upem);
  face->bbox[1] = Scaled(static_cast<double>(ft->bbox.yMin), upem);
  face->bbox[2] = Scaled(static_cast<double>(ft->bbox.xMax), upem);
  face->bbox[3] = Scaled(static_cast<double>(ft->bbox.yMax), upem);
  face->ascent = Scaled(ft->ascender, upem);
  face->descent = Scaled(ft->descender, upem);
  face->cap_height = face->ascent;
  if (const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(ft, FT_SFNT_OS2));
      os2 != nullptr && os2->version >= 2 && os2->sCapHeight > 0) {
    face->cap_height = Scaled(os2->sCapHeight, upem);
  }
  if (const auto* post = static_cast<const TT_Postscript*>(FT_Get_Sfnt_Table(ft, FT_SFNT_POST))) {
    face->italic_angle = static_cast<double>(post->italicAngle) / 65536.0;
    face->fixed_pitch = post->isFixedPitch != 0;
  }
  faces.emplace_front(key, face);
  if (faces.size() > kKeptFaces) faces.pop_back();
  return face;
}

// The face's subset holding "glyphs" (sorted, notdef first) with their ids kept, and a character
// map for the characters "unicodes" (those glyphs that show one character each) — programs that
// turn a PDF into PostScript and back, such as a print queue's filters, recover the text from
// it. Null when HarfBuzz cannot subset the face.
std::shared_ptr<const FontSubset> Subset(const FontFace& face, const std::vector<uint32_t>& glyphs,
                                         const std::vector<uint32_t>& unicodes) {
  std::vector<uint32_t> key = glyphs;
  key.push_back(0xFFFFFFFF);
  key.insert(key.end(), unicodes.begin(), unicodes.end());
  {
    std::lock_guard lock(face.mutex);
    for (auto it = face.subsets.begin(); it != face.subsets.end(); ++it) {
      if (it->first == key) {
        face.subsets.splice(face.subsets.begin(), face.subsets, it);
        return face.subsets.front().second;
      }
    }
  }
  hb_subset_input_t* input = hb_subset_input_create_or_fail();
  if (input == nullptr) return nullptr;
  hb_set_t* wanted = hb_subset_input_glyph_set(input);
  for (const uint32_t glyph : glyphs) hb_set_add(wanted, glyph);
  hb_set_t* characters = hb_subset_input_unicode_set(input);
  for (const uint32_t unicode : unicodes) hb_set_add(characters, unicode);
  // Ids kept, so the page's glyph ids are the embedded font's; layout tables dropped, as a PDF
  // places every glyph itself.
  hb_subset_input_set_flags(input, HB_SUBSET_FLAGS_RETAIN_GIDS | HB_SUBSET_FLAGS_NOTDEF_OUTLINE |
                                       HB_SUBSET_FLAGS_GLYPH_NAMES);
  hb_set_t* dropped = hb_subset_input_set(input, HB_SUBSET_SETS_DROP_TABLE_TAG);
  for (const char* tag : {"GSUB", "GPOS", "GDEF", "BASE", "JSTF", "MATH", "kern", "morx", "kerx",
                          "DSIG", "vhea", "vmtx", "VORG"}) {
    hb_set_add(dropped, hb_tag_from_string(tag, 4));
  }
  hb_face_t* subset = hb_subset_or_fail(face.face, input);
  hb_subset_input_destroy(input);
  if (subset == nullptr) return nullptr;
  hb_blob_t* blob = hb_face_reference_blob(subset);
  unsigned length = 0;
  const char* data = hb_blob_get_data(blob, &length);
  auto bytes = std::make_shared<FontSubset>();
  bytes->length = length;
  if (length > 0) bytes->deflated = Deflate({data, length});
  hb_blob_destroy(blob);
  hb_face_destroy(subset);
  if (length == 0) return nullptr;
  std::lock_guard lock(face.mutex);
  face.subsets.emplace_front(std::move(key), bytes);
  if (face.subsets.size() > kKeptSubsets) face.subsets.pop_back();
  return bytes;
}

// Six capitals naming a subset, as the PDF format asks, from what the subset holds.
std::string SubsetTag(const std::vector<uint32_t>& glyphs, const std::string& name) {
  uint64_t hash = 1469598103934665603ull;
  const auto mix = [&](uint64_t value) { hash = (hash ^ value) * 1099511628211ull; };
  for (const char c : name) mix(static_cast<uint8_t>(c));
  for (const uint32_t glyph : glyphs) mix(glyph);
  std::string tag;
  for (int i = 0; i < 6; ++i) {
    tag += static_cast<char>('A' + hash % 26);
    hash /= 26;
  }
  return tag;
}

void AppendGlyphHex(std::string& out, uint32_t glyph) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  out += '<';
  for (int shift = 12; shift >= 0; shift -= 4) out += kHex[(glyph >> shift) & 0xF];
  out += '>';
}

std::string ToUnicodeMap(const std::vector<bool>& mapped, const std::vector<std::string>& unicode) {
  std::string cmap =
      "/CIDInit/ProcSet findresource begin\n12 dict begin\nbegincmap\n"
      "/CIDSystemInfo<</Registry(Adobe)/Ordering(UCS)/Supplement 0>>def\n"
      "/CMapName/Adobe-Identity-UCS def\n/CMapType 2 def\n"
      "1 begincodespacerange\n<0000><FFFF>\nendcodespacerange\n";
  uint32_t glyph = 0;
  while (glyph < mapped.size()) {
    size_t count = 0;
    std::string block;
    for (; glyph < mapped.size() && count < 100; ++glyph) {
      if (!mapped[glyph] || unicode[glyph].empty()) continue;
      AppendGlyphHex(block, glyph);
      block += '<';
      AppendUtf16Hex(block, unicode[glyph]);
      block += ">\n";
      ++count;
    }
    if (count == 0) break;
    cmap += std::to_string(count) + " beginbfchar\n" + block + "endbfchar\n";
  }
  cmap += "endcmap\nCMapName currentdict/CMap defineresource pop\nend\nend\n";
  return cmap;
}

}  // namespace

PdfFonts::~PdfFonts() = default;

bool PdfFonts::Use(cairo_scaled_font_t* font, FontUse& use) {
  if (const auto found = by_scaled_.find(font); found != by_scaled_.end()) {
    use = found->second.use;
    return use.object != 0;
  }
  FontUse made;
  std::shared_ptr<const FontFace> face;
  if (cairo_scaled_font_status(font) == CAIRO_STATUS_SUCCESS &&
      cairo_font_face_get_type(cairo_scaled_font_get_font_face(font)) == CAIRO_FONT_TYPE_FT) {
    FT_Face ft = cairo_ft_scaled_font_lock_face(font);
    face = LoadFace(ft);
    if (ft != nullptr) cairo_ft_scaled_font_unlock_face(font);
  }
  if (face) {
    const auto [at, added] = by_face_.try_emplace(face.get(), static_cast<uint32_t>(fonts_.size()));
    if (added) {
      Embedded& embedded = fonts_.emplace_back();
      embedded.face = face;
      embedded.object = file_.Reserve();
    }
    cairo_matrix_t m;
    cairo_scaled_font_get_font_matrix(font, &m);
    made = {at->second, fonts_[at->second].object, m.xx, m.yx, -m.xy, -m.yy};
  }
  by_scaled_.emplace(font, ScaledUse{ScaledFont(font), made});
  use = made;
  return made.object != 0;
}

double PdfFonts::Width(uint32_t index, uint32_t glyph) {
  Embedded& font = fonts_[index];
  if (glyph >= font.widths.size()) font.widths.resize(glyph + 1, -1);
  float& width = font.widths[glyph];
  if (width < 0) {
    width = static_cast<float>(hb_font_get_glyph_h_advance(font.face->font, glyph) * 1000.0 /
                               font.face->upem);
  }
  return width;
}

void PdfFonts::Show(uint32_t index, uint32_t glyph) {
  if (glyph > 0xFFFF) return;  // not a TrueType glyph id
  Embedded& font = fonts_[index];
  if (glyph >= font.shown.size()) {
    // Glyph ids are 16 bits; the tables grow to the largest shown.
    const size_t size =
        std::min<size_t>(0x10000, std::max<size_t>(glyph + 1, font.shown.size() * 2));
    font.shown.resize(size, false);
    font.mapped.resize(size, false);
    font.unicode.resize(size);
  }
  font.shown[glyph] = true;
}

bool PdfFonts::Map(uint32_t index, uint32_t glyph, std::string_view text) {
  if (glyph > 0xFFFF) return false;
  Show(index, glyph);
  Embedded& font = fonts_[index];
  if (!font.mapped[glyph]) {
    font.mapped[glyph] = true;
    font.unicode[glyph] = text;
    return true;
  }
  return font.unicode[glyph] == text;
}

void PdfFonts::WriteAll() {
  for (const Embedded& font : fonts_) WriteFont(font);
}

void PdfFonts::WriteFont(const Embedded& font) {
  const FontFace& face = *font.face;
  const unsigned glyph_count = hb_face_get_glyph_count(face.face);
  std::vector<uint32_t> glyphs{0};
  for (uint32_t glyph = 1; glyph < font.shown.size() && glyph < glyph_count; ++glyph) {
    if (font.shown[glyph]) glyphs.push_back(glyph);
  }
  const std::string name = SubsetTag(glyphs, face.name) + "+" + face.name;
  std::vector<uint32_t> unicodes;
  for (size_t glyph = 0; glyph < font.mapped.size(); ++glyph) {
    if (!font.mapped[glyph]) continue;
    const std::u32string characters = DecodeUtf8(font.unicode[glyph]);
    if (characters.size() == 1) unicodes.push_back(characters[0]);
  }
  std::sort(unicodes.begin(), unicodes.end());
  unicodes.erase(std::unique(unicodes.begin(), unicodes.end()), unicodes.end());
  const std::shared_ptr<const FontSubset> subset = Subset(face, glyphs, unicodes);

  const uint32_t cid_font = file_.Reserve();
  const uint32_t descriptor = file_.Reserve();
  const uint32_t file = subset ? file_.Reserve() : 0;
  const uint32_t to_unicode = file_.Reserve();

  std::string dict = "<</Type/Font/Subtype/Type0/BaseFont/" + name +
                     "/Encoding/Identity-H/DescendantFonts[" + std::to_string(cid_font) +
                     " 0 R]/ToUnicode " + std::to_string(to_unicode) + " 0 R>>";
  file_.WriteObject(font.object, dict);

  dict = "<</Type/Font/Subtype/CIDFontType2/BaseFont/" + name +
         "/CIDSystemInfo<</Registry(Adobe)/Ordering(Identity)/Supplement 0>>/FontDescriptor " +
         std::to_string(descriptor) + " 0 R/CIDToGIDMap/Identity/W[";
  for (const uint32_t glyph : glyphs) {
    dict += std::to_string(glyph) + '[';
    AppendNumber(dict, hb_font_get_glyph_h_advance(face.font, glyph) * 1000.0 / face.upem);
    dict += ']';
  }
  dict += "]>>";
  file_.WriteObject(cid_font, dict);

  // Flags: symbolic (the font's own glyph ids, no standard encoding), fixed pitch, italic.
  const int flags = 4 | (face.fixed_pitch ? 1 : 0) | (face.italic_angle != 0 ? 64 : 0);
  dict = "<</Type/FontDescriptor/FontName/" + name + "/Flags " + std::to_string(flags) +
         "/FontBBox[" + std::to_string(face.bbox[0]) + ' ' + std::to_string(face.bbox[1]) + ' ' +
         std::to_string(face.bbox[2]) + ' ' + std::to_string(face.bbox[3]) + "]/ItalicAngle ";
  AppendNumber(dict, face.italic_angle);
  dict += "/Ascent " + std::to_string(face.ascent) + "/Descent " + std::to_string(face.descent) +
          "/CapHeight " + std::to_string(face.cap_height) + "/StemV 80";
  if (file != 0) dict += "/FontFile2 " + std::to_string(file) + " 0 R";
  dict += ">>";
  file_.WriteObject(descriptor, dict);

  if (file != 0) {
    file_.WriteStream(file, "/Length1 " + std::to_string(subset->length) + "/Filter/FlateDecode",
                      subset->deflated, false);
  }
  file_.WriteStream(to_unicode, "", ToUnicodeMap(font.mapped, font.unicode));
}

}  // namespace vantorel::report::pdf
