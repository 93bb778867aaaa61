#include "report/pdf/pdf_writer.h"

#include <fcntl.h>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "report/barcode/barcode.h"
#include "report/image/image_loader.h"
#include "report/pdf/resource_filter.h"
#include "report/text/layout.h"
#include "report/text/text_layout.h"
#include "vantorel/error.h"

namespace vantorel::report {
namespace {

namespace fs = std::filesystem;

constexpr char kWords[] = "RUPEES ONE LAC FIVE THOUSAND SIX HUNDRED THIRTY ONLY";
constexpr char kAmount[] = "₹ 1,05,630.00";
constexpr char kDealer[] = "श्री गणेश मोटर्स";

struct Output {
  int status = -1;
  std::string text;
};

Output RunTool(const std::string& command) {
  Output out;
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  if (pipe == nullptr) return out;
  char buffer[4096];
  size_t n;
  while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) out.text.append(buffer, n);
  const int status = pclose(pipe);
  out.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return out;
}

// "text" with every run of spaces made one space, so tool output compares regardless of the
// column padding it uses.
std::string Squeezed(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == ' ' && !out.empty() && out.back() == ' ') continue;
    out += c;
  }
  return out;
}

bool HaveTool(const char* tool) {
  return RunTool(std::string("command -v ") + tool + " >/dev/null").status == 0;
}

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

// A text style of "size" points that keeps a text on one line, without padding.
TextStyle OneLine(float size) {
  TextStyle style;
  style.size = size;
  style.wrap = false;
  style.padding = {0, 0, 0, 0};
  return style;
}

// One landscape page with "line" in a box 800 points wide, 20 from the left and 50 from the top.
Document LineDocument(const std::string& line, const TextStyle& style) {
  Document document;
  const uint32_t index = document.InternStyle(style);
  document.pages.push_back(Page{{842, 200}, {TextItem{{20, 50, 800, 20}, index, line}}});
  return document;
}

class PdfWriterTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() /
           ("vantorel-pdf-" + std::to_string(getpid()) + "-" +
            ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_);
  }
  // VANTOREL_KEEP_TEST_FILES=1 keeps the PDFs for a look.
  void TearDown() override {
    if (std::getenv("VANTOREL_KEEP_TEST_FILES") == nullptr) fs::remove_all(dir_);
  }

  // A 64 × 48 JPEG photo-like gradient, written with gdk-pixbuf.
  fs::path MakeJpeg() {
    GdkPixbuf* pixbuf = gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, 8, 64, 48);
    guchar* pixels = gdk_pixbuf_get_pixels(pixbuf);
    const int stride = gdk_pixbuf_get_rowstride(pixbuf);
    for (int y = 0; y < 48; ++y) {
      for (int x = 0; x < 64; ++x) {
        guchar* p = pixels + y * stride + x * 3;
        p[0] = static_cast<guchar>(x * 4);
        p[1] = static_cast<guchar>(y * 5);
        p[2] = 128;
      }
    }
    fs::path path = dir_ / "logo.jpg";
    EXPECT_TRUE(gdk_pixbuf_save(pixbuf, path.c_str(), "jpeg", nullptr, "quality", "90", nullptr));
    g_object_unref(pixbuf);
    return path;
  }

  // Three A4 pages of an invoice-like document showing the same logo on each.
  Document Invoice() {
    Document document;
    document.metadata.title = "Tax Invoice INV-0421";
    document.metadata.author = "Shri Ganesh Motors";
    document.metadata.subject = "Sales";
    document.metadata.creator = "Vantorel test";
    TextStyle style;
    style.size = 11;
    const uint32_t plain = document.InternStyle(style);
    style.halign = HAlign::kRight;
    const uint32_t right = document.InternStyle(style);
    style.size = 16;
    style.halign = HAlign::kLeft;
    const uint32_t big = document.InternStyle(style);
    const uint32_t logo = document.AddImage(LoadImage(MakeJpeg().string()));
    const uint32_t qr = document.AddBarcode(Encode(Symbology::kQr, "INV-0421|105630.00"));
    for (int p = 0; p < 3; ++p) {
      Page page{{595.28f, 841.89f}, {}};
      page.items.push_back(ImageItem{{40, 40, 80, 60}, logo, ImageFit::kContain});
      page.items.push_back(TextItem{{140, 40, 400, 30}, big, kDealer});
      page.items.push_back(TextItem{{40, 300, 500, 20}, plain, kWords});
      page.items.push_back(TextItem{{340, 330, 200, 20}, right, kAmount});
      page.items.push_back(BarcodeItem{{460, 40, 80, 80}, qr, Color::Black(), Color::None()});
      page.items.push_back(LineItem{{40, 325}, {540, 325}, Stroke{}});
      document.pages.push_back(std::move(page));
    }
    return document;
  }

  fs::path dir_;
};

TEST_F(PdfWriterTest, BytesAreAPdf) {
  const std::string pdf = PdfBytes(Invoice());
  EXPECT_EQ(pdf.substr(0, 5), "%PDF-");
  EXPECT_NE(pdf.find("%%EOF", pdf.size() - 16), std::string::npos);
}

TEST_F(PdfWriterTest, PassesQpdfCheck) {
  ASSERT_TRUE(HaveTool("qpdf")) << "qpdf is not installed (scripts/install-deps.sh installs it)";
  const fs::path path = dir_ / "invoice.pdf";
  WritePdf(Invoice(), path.string());
  const Output check = RunTool("qpdf --check '" + path.string() + "'");
  EXPECT_EQ(check.status, 0) << check.text;
  EXPECT_NE(check.text.find("No syntax or stream encoding errors"), std::string::npos)
      << check.text;
}

TEST_F(PdfWriterTest, FontsAreEmbeddedSubsetsWithUnicodeMaps) {
  ASSERT_TRUE(HaveTool("pdffonts"))
      << "poppler-utils is not installed (scripts/install-deps.sh installs it)";
  const fs::path path = dir_ / "invoice.pdf";
  WritePdf(Invoice(), path.string());
  const Output fonts = RunTool("pdffonts '" + path.string() + "'");
  ASSERT_EQ(fonts.status, 0) << fonts.text;
  std::istringstream lines(fonts.text);
  std::string line;
  int listed = 0;
  bool devanagari = false, liberation = false;
  while (std::getline(lines, line)) {
    if (line.find('+') == std::string::npos) continue;  // header lines; subsets are "ABCDEF+Name"
    ++listed;
    EXPECT_NE(line.find("yes yes yes"), std::string::npos) << "emb sub uni: " << line;
    devanagari |= line.find("NotoSansDevanagari") != std::string::npos;
    liberation |= line.find("LiberationSans") != std::string::npos;
  }
  EXPECT_GE(listed, 2) << fonts.text;
  EXPECT_TRUE(devanagari) << fonts.text;
  EXPECT_TRUE(liberation) << fonts.text;
}

TEST_F(PdfWriterTest, TextExtractsExactly) {
  ASSERT_TRUE(HaveTool("pdftotext"))
      << "poppler-utils is not installed (scripts/install-deps.sh installs it)";
  const fs::path path = dir_ / "invoice.pdf";
  WritePdf(Invoice(), path.string());
  const Output text = RunTool("pdftotext -enc UTF-8 -f 1 -l 1 '" + path.string() + "' -");
  ASSERT_EQ(text.status, 0) << text.text;
  EXPECT_NE(text.text.find(kWords), std::string::npos) << text.text;
  EXPECT_NE(text.text.find(kAmount), std::string::npos) << text.text;
  EXPECT_NE(text.text.find(kDealer), std::string::npos) << text.text;
}

// Every word starts where the layout put its first glyph, to a hundredth of a point, however
// long the line: the PDF's own advances and the layout's do not drift apart.
TEST_F(PdfWriterTest, GlyphsLandWhereTheLayoutPutThem) {
  ASSERT_TRUE(HaveTool("pdftotext"))
      << "poppler-utils is not installed (scripts/install-deps.sh installs it)";
  const std::string line =
      "GSTIN: 27AAKFS4821M1ZQ PAN: AAKFS4821M State: Maharashtra (27) Regd. Office: Survey No. "
      "58/2, Shivneri Plaza, Pune-Solapur Road, Hadapsar, Near Gadital Bus Stop";
  const TextStyle style = OneLine(7.5);
  const fs::path path = dir_ / "line.pdf";
  WritePdf(LineDocument(line, style), path.string());

  // Where each word's first glyph is in the layout: glyphs follow the text's bytes one to one
  // for this plain Latin line.
  const auto laid_out = text::LayOut(line, style, 800);
  ASSERT_EQ(laid_out->runs.size(), 1u);
  const text::GlyphRun& run = laid_out->runs[0];
  ASSERT_EQ(run.glyphs.size(), line.size());
  std::vector<double> starts;
  for (size_t i = 0; i < line.size(); ++i) {
    if (line[i] != ' ' && (i == 0 || line[i - 1] == ' ')) starts.push_back(20 + run.glyphs[i].x);
  }

  const Output boxes = RunTool("pdftotext -bbox '" + path.string() + "' -");
  ASSERT_EQ(boxes.status, 0) << boxes.text;
  const std::regex word(R"re(<word xMin="([0-9.]+)")re");
  std::vector<double> found;
  for (auto it = std::sregex_iterator(boxes.text.begin(), boxes.text.end(), word);
       it != std::sregex_iterator(); ++it) {
    found.push_back(std::stod((*it)[1]));
  }
  ASSERT_EQ(found.size(), starts.size()) << boxes.text;
  for (size_t i = 0; i < starts.size(); ++i) {
    EXPECT_NEAR(found[i], starts[i], 0.01) << "word " << i;
  }
}

// Glyph ids are written as bytes in literal strings: ids whose bytes are a bracket, the
// backslash or a line end must be escaped, or the page's text would break off or change.
TEST_F(PdfWriterTest, GlyphIdsThatSpellDelimitersExtractExactly) {
  ASSERT_TRUE(HaveTool("pdftotext") && HaveTool("qpdf"))
      << "poppler-utils or qpdf is not installed (scripts/install-deps.sh installs them)";
  std::string line;
  for (char c = '!'; c <= '~'; ++c) line += c;
  const TextStyle style = OneLine(9);

  // The line must hold a glyph for each byte a literal string cannot hold as it is.
  const auto laid_out = text::LayOut(line, style, 800);
  std::set<unsigned> bytes;
  for (const text::GlyphRun& run : laid_out->runs) {
    for (const cairo_glyph_t& glyph : run.glyphs) {
      bytes.insert(static_cast<unsigned>(glyph.index >> 8 & 0xFF));
      bytes.insert(static_cast<unsigned>(glyph.index & 0xFF));
    }
  }
  for (const unsigned special : {'(', ')', '\\', '\r', '\n'}) {
    ASSERT_TRUE(bytes.count(special) > 0) << "no glyph id with byte " << special;
  }

  const fs::path path = dir_ / "delimiters.pdf";
  WritePdf(LineDocument(line, style), path.string());
  const Output check = RunTool("qpdf --check '" + path.string() + "'");
  EXPECT_EQ(check.status, 0) << check.text;
  const Output text = RunTool("pdftotext -enc UTF-8 '" + path.string() + "' -");
  ASSERT_EQ(text.status, 0) << text.text;
  EXPECT_EQ(text.text.substr(0, line.size()), line) << text.text;
  // A raw line end in a string is read as a plain newline by some readers; none is left raw.
  const Output pages = RunTool("qpdf --show-pages '" + path.string() + "'");
  std::smatch content;
  ASSERT_TRUE(std::regex_search(pages.text, content, std::regex(R"(content:\s+(\d+) 0 R)")))
      << pages.text;
  const Output stream = RunTool("qpdf --show-object=" + content[1].str() +
                                " --filtered-stream-data '" + path.string() + "'");
  ASSERT_EQ(stream.status, 0) << stream.text;
  EXPECT_NE(stream.text.find("TJ"), std::string::npos) << stream.text;
  EXPECT_EQ(stream.text.find('\r'), std::string::npos);
}

TEST_F(PdfWriterTest, TextKeptWholeAtALineBreakExtractsAsWritten) {
  ASSERT_TRUE(HaveTool("pdftotext"))
      << "poppler-utils is not installed (scripts/install-deps.sh installs it)";
  Document document;
  TextStyle style;
  const uint32_t index = document.InternStyle(style);
  const float padding = style.padding.left + style.padding.right;
  // Boxes too narrow for the PIN code or the colour after the words before them.
  const float address = text::MeasureText("Wanowrie, Pune - 4110", style, 0).width + padding;
  const float model = text::MeasureText("Vayu Sakhi (Candy Yel", style, 0).width + padding;
  Page page{{400, 200}, {}};
  page.items.push_back(TextItem{{10, 10, address, 40}, index, "Wanowrie, Pune - 411013"});
  page.items.push_back(TextItem{{10, 100, model, 40}, index, "Vayu Sakhi (Candy Yellow)"});
  document.pages.push_back(page);
  const fs::path path = dir_ / "kept.pdf";
  WritePdf(document, path.string());
  const Output text = RunTool("pdftotext -enc UTF-8 '" + path.string() + "' -");
  ASSERT_EQ(text.status, 0) << text.text;
  EXPECT_NE(text.text.find("Wanowrie,\nPune - 411013\n"), std::string::npos) << text.text;
  EXPECT_NE(text.text.find("Vayu Sakhi\n(Candy Yellow)\n"), std::string::npos) << text.text;
  EXPECT_EQ(text.text.find("\u00a0"), std::string::npos) << "plain spaces: " << text.text;
}

TEST_F(PdfWriterTest, ClippedTextStaysInTheTextLayer) {
  ASSERT_TRUE(HaveTool("pdftotext"))
      << "poppler-utils is not installed (scripts/install-deps.sh installs it)";
  Document document;
  TextStyle style;
  style.wrap = false;
  const uint32_t index = document.InternStyle(style);
  Page page{{500, 100}, {}};
  // Far past the box: Cairo drops glyphs more than ten font sizes outside a clip, so the
  // renderer must not let the clip reach them.
  page.items.push_back(
      TextItem{{10, 10, 40, 14}, index, "CHASSIS NO MBLHA10AMEHK12345 ENGINE NO HA10EFHK67890"});
  document.pages.push_back(page);
  const fs::path path = dir_ / "clipped.pdf";
  WritePdf(document, path.string());
  const Output text = RunTool("pdftotext -enc UTF-8 '" + path.string() + "' -");
  EXPECT_NE(text.text.find("CHASSIS NO MBLHA10AMEHK12345 ENGINE NO HA10EFHK67890"),
            std::string::npos)
      << text.text;
}

// The colour of the pixel at ("x", "y") points of page 1 of "pdf", rendered at 72 dpi.
std::array<int, 3> PixelAt(const fs::path& pdf, int x, int y) {
  const Output ppm = RunTool("pdftoppm -r 72 -f 1 -l 1 -x " + std::to_string(x) + " -y " +
                             std::to_string(y) + " -W 1 -H 1 '" + pdf.string() + "'");
  // A binary PPM: "P6\n1 1\n255\n" then three bytes.
  if (ppm.status != 0 || ppm.text.size() < 3) return {-1, -1, -1};
  const std::string& t = ppm.text;
  return {static_cast<uint8_t>(t[t.size() - 3]), static_cast<uint8_t>(t[t.size() - 2]),
          static_cast<uint8_t>(t[t.size() - 1])};
}

TEST_F(PdfWriterTest, TranslucentFillsBlendWithWhatIsUnder) {
  ASSERT_TRUE(HaveTool("pdftoppm"))
      << "poppler-utils is not installed (scripts/install-deps.sh installs it)";
  Document document;
  Page page{{200, 100}, {}};
  page.items.push_back(RectItem{{10, 10, 80, 80}, Color{255, 0, 0, 128}, Stroke{0}});
  page.items.push_back(RectItem{{110, 10, 80, 80}, Color{0, 0, 255, 255}, Stroke{0}});
  document.pages.push_back(page);
  const fs::path path = dir_ / "translucent.pdf";
  WritePdf(document, path.string());
  const std::array<int, 3> half = PixelAt(path, 50, 50);
  EXPECT_EQ(half[0], 255);
  EXPECT_NEAR(half[1], 127, 3);
  EXPECT_NEAR(half[2], 127, 3);
  // The opacity is the fill's own: the next fill is opaque again.
  EXPECT_EQ(PixelAt(path, 150, 50), (std::array<int, 3>{0, 0, 255}));
}

TEST_F(PdfWriterTest, PictureWithTransparencyKeepsIt) {
  ASSERT_TRUE(HaveTool("pdfimages"))
      << "poppler-utils is not installed (scripts/install-deps.sh installs it)";
  // 4 × 4 pixels: the left half opaque green, the right half fully transparent.
  auto image = std::make_shared<ImageData>();
  image->source = "stamp.png";
  image->width = image->height = 4;
  image->stride = 16;
  image->has_alpha = true;
  image->pixels.assign(64, 0);
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 2; ++x) {
      const uint32_t green = 0xFF00C000;  // premultiplied ARGB32, native endian
      std::memcpy(&image->pixels[y * 16 + x * 4], &green, 4);
    }
  }
  Document document;
  const uint32_t index = document.AddImage(image);
  Page page{{200, 100}, {}};
  page.items.push_back(RectItem{{0, 0, 200, 100}, Color{0, 0, 255, 255}, Stroke{0}});
  page.items.push_back(ImageItem{{20, 10, 80, 80}, index, ImageFit::kStretch});
  document.pages.push_back(page);
  const fs::path path = dir_ / "stamp.pdf";
  WritePdf(document, path.string());
  const Output images = RunTool("pdfimages -list '" + path.string() + "'");
  EXPECT_NE(images.text.find("smask"), std::string::npos) << images.text;
  EXPECT_EQ(PixelAt(path, 40, 50), (std::array<int, 3>{0, 192, 0}));
  EXPECT_EQ(PixelAt(path, 80, 50), (std::array<int, 3>{0, 0, 255}));
}

TEST_F(PdfWriterTest, TurnedTextIsTextAndStaysInItsBox) {
  ASSERT_TRUE(HaveTool("pdftotext"))
      << "poppler-utils is not installed (scripts/install-deps.sh installs it)";
  Document document;
  TextStyle style;
  style.size = 10;
  style.rotation = 90;
  style.wrap = false;
  const uint32_t index = document.InternStyle(style);
  Page page{{200, 300}, {}};
  page.items.push_back(TextItem{{50, 20, 20, 260}, index, "DUPLICATE FOR TRANSPORTER"});
  document.pages.push_back(page);
  const fs::path path = dir_ / "turned.pdf";
  WritePdf(document, path.string());
  const Output text = RunTool("pdftotext -bbox '" + path.string() + "' -");
  EXPECT_NE(text.text.find(">TRANSPORTER<"), std::string::npos) << text.text;
  const std::regex word(
      R"re(xMin="([0-9.]+)" yMin="([0-9.]+)" xMax="([0-9.]+)" yMax="([0-9.]+)")re");
  size_t words = 0;
  for (auto it = std::sregex_iterator(text.text.begin(), text.text.end(), word);
       it != std::sregex_iterator(); ++it, ++words) {
    // Read bottom to top: each word is taller than wide, inside the box.
    const double x0 = std::stod((*it)[1]), y0 = std::stod((*it)[2]);
    const double x1 = std::stod((*it)[3]), y1 = std::stod((*it)[4]);
    EXPECT_GT(y1 - y0, x1 - x0);
    EXPECT_GE(x0, 50 - 0.5);
    EXPECT_LE(x1, 70 + 0.5);
    EXPECT_GE(y0, 20 - 0.5);
    EXPECT_LE(y1, 280 + 0.5);
  }
  EXPECT_EQ(words, 3u) << text.text;
}

// JPEG bytes that are not a JPEG a PDF reader could decode (cut short, lengths past the end, no
// frame) are not embedded as one: the picture's pixels are, and the file stays valid.
TEST_F(PdfWriterTest, BrokenJpegBytesFallBackToThePixels) {
  ASSERT_TRUE(HaveTool("qpdf")) << "qpdf is not installed (scripts/install-deps.sh installs it)";
  const std::string broken[] = {std::string("\xFF\xD8", 2),
                                std::string("\xFF\xD8\xFF\xE0\xFF\xFF", 6),
                                std::string("\xFF\xD8\xFF\xDA\x00\x02", 6), "not a jpeg at all",
                                std::string("\xFF\xD8\xFF\xC0\x00\x03\x08", 7)};
  for (const std::string& bytes : broken) {
    auto image = std::make_shared<ImageData>();
    image->width = image->height = 2;
    image->stride = 8;
    image->pixels.assign(16, 0xFF);
    image->jpeg = bytes;
    Document document;
    const uint32_t index = document.AddImage(image);
    document.pages.push_back(Page{{100, 100}, {ImageItem{{10, 10, 50, 50}, index}}});
    const fs::path path = dir_ / "broken.pdf";
    WritePdf(document, path.string());
    const Output check = RunTool("qpdf --check '" + path.string() + "'");
    EXPECT_EQ(check.status, 0) << check.text;
    EXPECT_EQ(ReadFile(path).find("DCTDecode"), std::string::npos);
  }
}

TEST_F(PdfWriterTest, JpegIsEmbeddedOnceAndUnchanged) {
  ASSERT_TRUE(HaveTool("qpdf")) << "qpdf is not installed (scripts/install-deps.sh installs it)";
  const Document document = Invoice();
  const fs::path path = dir_ / "invoice.pdf";
  WritePdf(document, path.string());
  const std::string pdf = ReadFile(path);
  // The JPEG's bytes appear as they were in the file.
  EXPECT_NE(pdf.find(document.images[0]->jpeg), std::string::npos);
  const Output qdf = RunTool("qpdf --qdf --object-streams=disable '" + path.string() + "' -");
  size_t images = 0;
  for (size_t at = qdf.text.find("/Subtype /Image"); at != std::string::npos;
       at = qdf.text.find("/Subtype /Image", at + 1)) {
    ++images;
  }
  EXPECT_EQ(images, 1u) << "one image object for the logo on three pages";
  EXPECT_NE(qdf.text.find("/DCTDecode"), std::string::npos);
}

// Cairo lists an image once per use; a page showing the logo twice must still have a clean
// resource dictionary, or some print filters drop the page.
TEST_F(PdfWriterTest, ImageShownTwiceOnAPageIsListedOnce) {
  Document document = Invoice();
  const uint32_t logo = std::get<ImageItem>(document.pages[0].items[0]).image;
  for (Page& page : document.pages) {
    page.items.push_back(ImageItem{{40, 700, 80, 60}, logo, ImageFit::kContain});
    page.items.push_back(ImageItem{{200, 700, 80, 60}, logo, ImageFit::kContain});
  }
  const fs::path path = dir_ / "logos.pdf";
  WritePdf(document, path.string());
  const Output check = RunTool("qpdf --check '" + path.string() + "'");
  EXPECT_EQ(check.status, 0) << check.text;
  EXPECT_EQ(check.text.find("WARNING"), std::string::npos) << check.text;
  // All three uses are still drawn on every page.
  const Output images = RunTool("pdfimages -list '" + path.string() + "'");
  ASSERT_EQ(images.status, 0) << images.text;
  std::istringstream lines(images.text);
  std::string line;
  std::map<int, int> per_page;
  while (std::getline(lines, line)) {
    std::istringstream fields(line);
    int page = 0;
    if (fields >> page) ++per_page[page];
  }
  EXPECT_EQ(per_page, (std::map<int, int>{{1, 3}, {2, 3}, {3, 3}})) << images.text;
}

TEST(ResourceFilterTest, BlanksRepeatsWhateverTheChunking) {
  const std::string input =
      "1 0 obj\n<< /XObject << /x6 6 0 R /x7 7 0 R /x6 6 0 R\n /x6 6 0 R >> /Font << /f-0-0 7 0 "
      "R /f-0-0 7 0 R >> >>\nendobj\nstream\n/XObject << /a 1 0 R >>\n";
  const std::string expected =
      "1 0 obj\n<< /XObject << /x6 6 0 R /x7 7 0 R          \n           >> /Font << /f-0-0 7 0 "
      "R /f-0-0 7 0 R >> >>\nendobj\nstream\n/XObject << /a 1 0 R >>\n";
  for (size_t chunk : {size_t{1}, size_t{2}, size_t{5}, size_t{11}, input.size()}) {
    std::string output;
    ResourceFilter filter(
        +[](void* closure, const unsigned char* data, unsigned int length) {
          static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
          return CAIRO_STATUS_SUCCESS;
        },
        &output);
    for (size_t at = 0; at < input.size(); at += chunk) {
      const std::string part = input.substr(at, chunk);
      ASSERT_EQ(ResourceFilter::Write(&filter, reinterpret_cast<const unsigned char*>(part.data()),
                                      static_cast<unsigned int>(part.size())),
                CAIRO_STATUS_SUCCESS);
    }
    ASSERT_EQ(filter.Flush(), CAIRO_STATUS_SUCCESS);
    EXPECT_EQ(output.size(), input.size()) << "chunks of " << chunk;
    EXPECT_EQ(output, expected) << "chunks of " << chunk;
  }
}

TEST_F(PdfWriterTest, MetadataIsWritten) {
  ASSERT_TRUE(HaveTool("pdfinfo"))
      << "poppler-utils is not installed (scripts/install-deps.sh installs it)";
  const fs::path path = dir_ / "invoice.pdf";
  WritePdf(Invoice(), path.string());
  const std::string info = Squeezed(RunTool("pdfinfo '" + path.string() + "'").text);
  EXPECT_NE(info.find("Title: Tax Invoice INV-0421\n"), std::string::npos) << info;
  EXPECT_NE(info.find("Author: Shri Ganesh Motors\n"), std::string::npos) << info;
  EXPECT_NE(info.find("Subject: Sales\n"), std::string::npos) << info;
  EXPECT_NE(info.find("Creator: Vantorel test\n"), std::string::npos) << info;
  EXPECT_NE(info.find("Pages: 3\n"), std::string::npos) << info;
}

TEST_F(PdfWriterTest, PagesKeepTheirOwnSizes) {
  ASSERT_TRUE(HaveTool("pdfinfo"))
      << "poppler-utils is not installed (scripts/install-deps.sh installs it)";
  Document document;
  document.pages.push_back(Page{{595.28f, 841.89f}, {}});
  document.pages.push_back(Page{{595.28f, 419.53f}, {}});  // A5 landscape
  const fs::path path = dir_ / "mixed.pdf";
  WritePdf(document, path.string());
  const std::string info = Squeezed(RunTool("pdfinfo -f 1 -l 2 '" + path.string() + "'").text);
  EXPECT_NE(info.find("Page 1 size: 595.28 x 841.89 pts"), std::string::npos) << info;
  EXPECT_NE(info.find("Page 2 size: 595.28 x 419.53 pts"), std::string::npos) << info;
}

TEST_F(PdfWriterTest, EmptyDocumentIsOneBlankPage) {
  const std::string pdf = PdfBytes(Document{});
  EXPECT_EQ(pdf.substr(0, 5), "%PDF-");
  if (!HaveTool("pdfinfo")) return;
  const fs::path path = dir_ / "empty.pdf";
  WritePdf(Document{}, path.string());
  EXPECT_NE(Squeezed(RunTool("pdfinfo '" + path.string() + "'").text).find("Pages: 1\n"),
            std::string::npos);
}

TEST_F(PdfWriterTest, UnwritableFolderThrowsAndLeavesNothing) {
  const std::string path = (dir_ / "no-such-folder" / "invoice.pdf").string();
  try {
    WritePdf(Invoice(), path);
    FAIL() << "expected an error";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errnum::kPathFileAccess);
    EXPECT_NE(error.description().find(path), std::string::npos) << error.description();
  }
  EXPECT_FALSE(fs::exists(dir_ / "no-such-folder"));
}

TEST_F(PdfWriterTest, FolderAtTheTargetLeavesNoTemporaryFile) {
  // Refused before anything is written.
  fs::create_directories(dir_ / "taken.pdf");
  EXPECT_THROW(WritePdf(Invoice(), (dir_ / "taken.pdf").string()), Error);
  size_t entries = 0;
  for ([[maybe_unused]] const auto& entry : fs::directory_iterator(dir_)) ++entries;
  EXPECT_EQ(entries, 2u) << "only logo.jpg and the folder";
}

// A destination that cannot become a file (here a folder of that name, which stops root too)
// fails with the path in the message, and leaves the folder and its contents as they were.
TEST_F(PdfWriterTest, UnwritableDestinationThrowsAndLosesNothing) {
  const fs::path target = dir_ / "invoice.pdf";
  fs::create_directories(target);
  std::ofstream(target / "keep.txt") << "kept";
  try {
    WritePdf(Invoice(), target.string());
    FAIL() << "expected an error";
  } catch (const Error& error) {
    EXPECT_NE(error.description().find(target.string()), std::string::npos) << error.description();
  }
  EXPECT_TRUE(fs::is_directory(target));
  EXPECT_EQ(ReadFile(target / "keep.txt"), "kept");
  for (const auto& entry : fs::directory_iterator(dir_)) {
    EXPECT_EQ(entry.path().string().find(".tmp"), std::string::npos) << entry.path();
  }
}

TEST_F(PdfWriterTest, ReplacesAnExistingFileWhole) {
  const fs::path path = dir_ / "invoice.pdf";
  {
    std::ofstream old(path);
    old << "an older export";
  }
  struct stat before;
  ASSERT_EQ(stat(path.c_str(), &before), 0);
  WritePdf(Invoice(), path.string());
  struct stat after;
  ASSERT_EQ(stat(path.c_str(), &after), 0);
  EXPECT_NE(before.st_ino, after.st_ino) << "renamed into place, not rewritten in place";
  EXPECT_EQ(ReadFile(path).substr(0, 5), "%PDF-");
  for (const auto& entry : fs::directory_iterator(dir_)) {
    EXPECT_EQ(entry.path().string().find(".tmp"), std::string::npos) << entry.path();
  }
}

TEST_F(PdfWriterTest, HostPathsWithBackslashesWork) {
  fs::create_directories(dir_ / "exports");
  WritePdf(Document{}, dir_.string() + "\\exports\\out.pdf");
  EXPECT_TRUE(fs::exists(dir_ / "exports" / "out.pdf"));
}

// Every name in the test's folder but the logo the invoice shows.
std::set<std::string> Names(const fs::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().filename() != "logo.jpg") names.insert(entry.path().filename().string());
  }
  return names;
}

void ExpectRefused(const Document& document, const std::string& path, const std::string& kind) {
  try {
    WritePdf(document, path);
    FAIL() << "expected " << path << " to be refused";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errnum::kPathFileAccess);
    EXPECT_EQ(error.source(), "Vantorel.Pdf");
    EXPECT_EQ(error.description(),
              "Cannot write " + path + ": it is not a regular file but " + kind);
  }
}

TEST_F(PdfWriterTest, SymbolicLinkAtTheTargetIsRefusedAndItsFileKept) {
  const fs::path victim = dir_ / "victim.txt";
  std::ofstream(victim) << "precious";
  fs::create_symlink(victim, dir_ / "invoice.pdf");
  ExpectRefused(Invoice(), (dir_ / "invoice.pdf").string(), "a symbolic link");
  EXPECT_TRUE(fs::is_symlink(dir_ / "invoice.pdf"));
  EXPECT_EQ(ReadFile(victim), "precious");
  EXPECT_EQ(Names(dir_), (std::set<std::string>{"invoice.pdf", "victim.txt"}));
}

TEST_F(PdfWriterTest, FifoAtTheTargetIsRefused) {
  const fs::path fifo = dir_ / "invoice.pdf";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  ExpectRefused(Document{}, fifo.string(), "a FIFO");
  struct stat info;
  ASSERT_EQ(lstat(fifo.c_str(), &info), 0);
  EXPECT_TRUE(S_ISFIFO(info.st_mode));
  EXPECT_EQ(Names(dir_), std::set<std::string>{"invoice.pdf"});
}

// Run as root, replacing /dev/null would break every program on the machine.
TEST_F(PdfWriterTest, DeviceIsNeverReplaced) {
  ExpectRefused(Document{}, "/dev/null", "a character device");
  struct stat info;
  ASSERT_EQ(lstat("/dev/null", &info), 0);
  EXPECT_TRUE(S_ISCHR(info.st_mode));
}

TEST_F(PdfWriterTest, KeepsThePermissionsOfTheFileItReplaces) {
  const fs::path path = dir_ / "private.pdf";
  std::ofstream(path) << "an older export";
  ASSERT_EQ(chmod(path.c_str(), 0600), 0);
  WritePdf(Document{}, path.string());
  struct stat info;
  ASSERT_EQ(stat(path.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0600u);
  EXPECT_EQ(ReadFile(path).substr(0, 5), "%PDF-");
}

TEST_F(PdfWriterTest, NewFileGetsTheUsualPermissionsLessTheUmask) {
  const mode_t previous = umask(022);
  WritePdf(Document{}, (dir_ / "new.pdf").string());
  umask(previous);
  struct stat info;
  ASSERT_EQ(stat((dir_ / "new.pdf").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0644u);
}

TEST_F(PdfWriterTest, LongestFileNameWorks) {
  const long name_max = pathconf(dir_.c_str(), _PC_NAME_MAX);
  ASSERT_GE(name_max, 255);
  const std::string name = std::string(255 - 4, 'k') + ".pdf";
  WritePdf(Document{}, (dir_ / name).string());
  EXPECT_EQ(Names(dir_), std::set<std::string>{name});
  EXPECT_EQ(ReadFile(dir_ / name).substr(0, 5), "%PDF-");
}

TEST_F(PdfWriterTest, WriteErrorLeavesNoTemporaryFile) {
  // A file size limit makes the writes fail with EFBIG part way through the document.
  struct sigaction ignore = {}, previous;
  ignore.sa_handler = SIG_IGN;
  ASSERT_EQ(sigaction(SIGXFSZ, &ignore, &previous), 0);
  struct rlimit old_limit;
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old_limit), 0);
  struct rlimit small = old_limit;
  small.rlim_cur = 4096;
  const Document invoice = Invoice();
  std::ofstream(dir_ / "invoice.pdf") << "an older export";
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  try {
    WritePdf(invoice, (dir_ / "invoice.pdf").string());
    ADD_FAILURE() << "expected a write error";
  } catch (const Error& error) {
    EXPECT_EQ(error.description(),
              "Cannot write " + (dir_ / "invoice.pdf").string() + ": File too large");
  }
  setrlimit(RLIMIT_FSIZE, &old_limit);
  sigaction(SIGXFSZ, &previous, nullptr);
  EXPECT_EQ(Names(dir_), std::set<std::string>{"invoice.pdf"});
  EXPECT_EQ(ReadFile(dir_ / "invoice.pdf"), "an older export");
}

TEST_F(PdfWriterTest, StreamsToAnOpenDescriptor) {
  const fs::path path = dir_ / "streamed.pdf";
  const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  ASSERT_GE(fd, 0);
  StreamPdf(Invoice(), fd, "the stream");
  close(fd);
  const std::string bytes = ReadFile(path);
  EXPECT_EQ(bytes.substr(0, 5), "%PDF-");
  EXPECT_NE(bytes.find("%%EOF", bytes.size() - 8), std::string::npos);
  if (!HaveTool("pdfinfo")) return;
  EXPECT_NE(Squeezed(RunTool("pdfinfo '" + path.string() + "'").text).find("Pages: 3\n"),
            std::string::npos);
}

TEST_F(PdfWriterTest, StreamErrorNamesTheStream) {
  const int fd = open("/dev/null", O_RDONLY | O_CLOEXEC);
  ASSERT_GE(fd, 0);
  try {
    StreamPdf(Document{}, fd, "standard output");
    ADD_FAILURE() << "expected an error";
  } catch (const Error& error) {
    EXPECT_EQ(error.description(), "Cannot write standard output: Bad file descriptor");
  }
  close(fd);
}

}  // namespace
}  // namespace vantorel::report
