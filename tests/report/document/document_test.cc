// The prepared document as stable text: what a golden file shows of texts, line breaks, pictures
// and barcodes.
#include "report/document/document.h"

#include <gtest/gtest.h>

#include <string>

namespace vantorel::report {
namespace {

Document OneText(const std::string& text) {
  Document document;
  document.InternStyle(TextStyle());
  Page page{{200, 100}, {}};
  page.items.push_back(TextItem{{10, 20.25f, 60, 30}, 0, text});
  document.pages.push_back(page);
  return document;
}

std::shared_ptr<ImageData> Picture(const std::string& source, uint8_t shade) {
  auto image = std::make_shared<ImageData>();
  image->source = source;
  image->width = 2;
  image->height = 1;
  image->stride = 12;  // four bytes of row padding, which are not the picture
  image->pixels = {shade, 0, 0, 255, shade, 0, 0, 255, 7, 7, 7, 7};
  return image;
}

// The line of "text" that starts with "prefix", or "" when none does.
std::string LineStartingWith(const std::string& text, const std::string& prefix) {
  for (size_t at = 0; at < text.size();) {
    const size_t end = text.find('\n', at);
    const std::string line = text.substr(at, end - at);
    if (line.rfind(prefix, 0) == 0) return line;
    if (end == std::string::npos) break;
    at = end + 1;
  }
  return "";
}

TEST(Serialize, ATextOnOneLineShowsWholeOnItsItemsLine) {
  const std::string text = Serialize(OneText("Ramesh \"Raju\" Patil"));
  EXPECT_NE(text.find("\n  text 10,20.25 60x30 style=0 \"Ramesh \\\"Raju\\\" Patil\"\n"),
            std::string::npos)
      << text;
}

TEST(Serialize, AWrappedTextShowsEachLineBelowItsItem) {
  const std::string text = Serialize(OneText("Received with thanks\nfrom Ramesh"),
                                     [](const TextItem&, const TextStyle&) {
                                       return std::vector<uint32_t>{0, 9, 21};
                                     });
  EXPECT_NE(text.find("  text 10,20.25 60x30 style=0 lines=3\n"
                      "    | \"Received \"\n"
                      "    | \"with thanks\\n\"\n"
                      "    | \"from Ramesh\"\n"),
            std::string::npos)
      << text;
}

TEST(Serialize, OneLineStartIsOneLine) {
  const std::string text = Serialize(OneText("Helmet"), [](const TextItem&, const TextStyle&) {
    return std::vector<uint32_t>{0};
  });
  EXPECT_NE(text.find("style=0 \"Helmet\"\n"), std::string::npos) << text;
  EXPECT_EQ(text.find("lines="), std::string::npos) << text;
}

TEST(Serialize, ControlCharactersAreEscaped) {
  const std::string text = Serialize(OneText("a\tb\rc"));
  EXPECT_NE(text.find("\"a\\tb\\x0dc\""), std::string::npos) << text;
}

TEST(Serialize, PicturesShowTheirFileNameAndPixelsNotTheirFolder) {
  Document here, there, other;
  here.AddImage(Picture("/home/build/demo/assets/logo.png", 200));
  there.AddImage(Picture("C:\\App\\Pictures\\logo.png", 200));
  other.AddImage(Picture("/home/build/demo/assets/logo.png", 201));
  const std::string line = LineStartingWith(Serialize(here), "image 0 ");
  EXPECT_EQ(line.rfind("image 0 \"logo.png\" 2x1 pixels=", 0), 0u) << line;
  EXPECT_EQ(line.find("/home"), std::string::npos) << line;
  EXPECT_EQ(line, LineStartingWith(Serialize(there), "image 0 "));
  EXPECT_NE(line, LineStartingWith(Serialize(other), "image 0 "));
}

TEST(Serialize, RowPaddingIsNotPartOfAPicture) {
  Document a, b;
  auto padded = Picture("logo.png", 200);
  a.AddImage(padded);
  auto changed = Picture("logo.png", 200);
  changed->pixels[9] = 99;
  b.AddImage(changed);
  EXPECT_EQ(Serialize(a), Serialize(b));
}

TEST(Serialize, BarcodesShowTheirSymbologyAndData) {
  Document document;
  auto symbol = std::make_shared<BarcodeSymbol>();
  symbol->symbology = "code128";
  symbol->data = "MBLHA10EZ9HA00001";
  symbol->bars = {{0, 0, 1, 10}, {2, 0, 1, 10}};
  symbol->text = "MBLHA10EZ9HA00001";
  document.AddBarcode(symbol);
  EXPECT_EQ(LineStartingWith(Serialize(document), "symbol 0 "),
            "symbol 0 code128 \"MBLHA10EZ9HA00001\" 2 bars \"MBLHA10EZ9HA00001\"");
}

TEST(Serialize, StylesShowWhatMovesTheirText) {
  Document document;
  TextStyle style;
  style.padding = {2, 1, 2, 1};
  style.line_spacing = 1.5f;
  document.InternStyle(style);
  const std::string line = LineStartingWith(Serialize(document), "style 0 ");
  EXPECT_NE(line.find(" spacing=1.5"), std::string::npos) << line;
  EXPECT_NE(line.find(" padding=2,1,2,1"), std::string::npos) << line;
}

}  // namespace
}  // namespace vantorel::report
