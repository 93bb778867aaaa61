#include "report/barcode/barcode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "vantorel/error.h"

namespace vantorel::report {
namespace {

// A signed e-invoice QR payload is a few hundred characters of JSON-like text.
std::string EInvoicePayload() {
  std::string payload =
      R"({"SellerGstin":"27AABCS1234F1Z5","BuyerGstin":"27AAACR5055K1ZK","DocNo":"INV/24-25/0421",)"
      R"("DocTyp":"INV","DocDt":"15/03/2025","TotInvVal":105630.00,"ItemCnt":1,)"
      R"("MainHsnCode":"87112029","Irn":"a5c12dca80e743321740b6b8e5a7a6b4f1e2d3c4b5a6978877)"
      R"(66554433221100ffeeddccbbaa99","IrnDt":"2025-03-15 11:42:00"})";
  return payload;
}

float SmallestBar(const BarcodeSymbol& symbol) {
  float smallest = symbol.width;
  for (const RectF& bar : symbol.bars) smallest = std::min({smallest, bar.width, bar.height});
  return smallest;
}

TEST(BarcodeTest, NamesAreCaseInsensitive) {
  EXPECT_EQ(SymbologyFromName("QR"), Symbology::kQr);
  EXPECT_EQ(SymbologyFromName("code128"), Symbology::kCode128);
  EXPECT_EQ(SymbologyFromName("Ean13"), Symbology::kEan13);
  EXPECT_EQ(SymbologyFromName("ITF"), Symbology::kItf);
  EXPECT_EQ(SymbologyFromName("datamatrix"), Symbology::kDataMatrix);
  EXPECT_EQ(SymbologyFromName("PDF417"), Symbology::kPdf417);
  EXPECT_EQ(SymbologyFromName("aztec"), std::nullopt);
  EXPECT_EQ(SymbologyFromName(""), std::nullopt);
}

TEST(BarcodeTest, EInvoiceQrEncodes) {
  const std::string payload = EInvoicePayload();
  ASSERT_GT(payload.size(), 280u);
  const auto symbol = Encode(Symbology::kQr, payload);
  EXPECT_FALSE(symbol->bars.empty());
  EXPECT_TRUE(symbol->text.empty()) << "QR codes have no human-readable line";
  EXPECT_FLOAT_EQ(symbol->width, symbol->height);
  // Modules across: 21 + 4 per version; ~330 bytes at level M needs version 11 or more.
  const float modules = symbol->width / SmallestBar(*symbol);
  EXPECT_NEAR(modules, std::round(modules), 1e-3);
  const int count = static_cast<int>(std::round(modules));
  EXPECT_EQ((count - 21) % 4, 0) << count;
  EXPECT_GE(count, 21 + 4 * 10);
}

TEST(BarcodeTest, QrLevelChangesTheSize) {
  const std::string payload = EInvoicePayload();
  BarcodeOptions low, high;
  low.qr_level = 'L';
  high.qr_level = 'H';
  const auto small = Encode(Symbology::kQr, payload, low);
  const auto large = Encode(Symbology::kQr, payload, high);
  EXPECT_LT(small->width / SmallestBar(*small), large->width / SmallestBar(*large));
}

TEST(BarcodeTest, QrTakesUnicode) {
  const auto symbol = Encode(Symbology::kQr, "श्री गणेश मोटर्स ₹ 1,05,630.00");
  EXPECT_FALSE(symbol->bars.empty());
}

TEST(BarcodeTest, QuietZoneWidensTheSymbol) {
  BarcodeOptions quiet;
  quiet.quiet_zone = 4;
  const auto bare = Encode(Symbology::kQr, "VANTOREL");
  const auto padded = Encode(Symbology::kQr, "VANTOREL", quiet);
  EXPECT_NEAR(padded->width / SmallestBar(*padded), bare->width / SmallestBar(*bare) + 8, 1e-3);
}

TEST(BarcodeTest, Ean13AddsItsCheckDigitToTheText) {
  const auto symbol = Encode(Symbology::kEan13, "590123412345");
  std::string digits;
  for (const char c : symbol->text) {
    if (c >= '0' && c <= '9') digits += c;
  }
  EXPECT_EQ(digits, "5901234123457");
  EXPECT_GT(symbol->text_height, 0);
  // 95 modules of bars; the tallest bar stops above the text band.
  for (const RectF& bar : symbol->bars) {
    EXPECT_LE(bar.bottom(), symbol->height - symbol->text_height + 1e-3);
  }
}

TEST(BarcodeTest, Ean13WithAWrongCheckDigitIsAnError) {
  try {
    Encode(Symbology::kEan13, "5901234123458");
    FAIL() << "expected an error";
  } catch (const Error& error) {
    EXPECT_NE(error.description().find("5901234123458"), std::string::npos);
    EXPECT_NE(error.description().find("ean13"), std::string::npos) << error.description();
  }
  EXPECT_NO_THROW(Encode(Symbology::kEan13, "5901234123457"));
}

TEST(BarcodeTest, WrongInputIsAnError) {
  EXPECT_THROW(Encode(Symbology::kEan13, "12345"), Error);
  EXPECT_THROW(Encode(Symbology::kEan13, "59012341234AB"), Error);
  EXPECT_THROW(Encode(Symbology::kEan8, "123"), Error);
  EXPECT_THROW(Encode(Symbology::kUpcA, "12345678901X"), Error);
  EXPECT_THROW(Encode(Symbology::kItf, "12AB"), Error);
  EXPECT_THROW(Encode(Symbology::kQr, ""), Error);
}

TEST(BarcodeTest, EverySymbologyEncodes) {
  const struct {
    Symbology symbology;
    const char* data;
  } kCases[] = {
      {Symbology::kCode128, "INV/2024-25/00421"},
      {Symbology::kCode39, "MBLHA10AMEHK12345"},
      {Symbology::kEan8, "9638507"},
      {Symbology::kUpcA, "03600029145"},
      {Symbology::kItf, "12345678"},
      {Symbology::kDataMatrix, "MBLHA10AMEHK12345"},
      {Symbology::kPdf417, "MBLHA10AMEHK12345|HA10EFHK67890"},
  };
  for (const auto& c : kCases) {
    const auto symbol = Encode(c.symbology, c.data);
    EXPECT_FALSE(symbol->bars.empty()) << c.data;
    EXPECT_GT(symbol->width, 0) << c.data;
    for (const RectF& bar : symbol->bars) {
      EXPECT_GE(bar.x, 0);
      EXPECT_LE(bar.right(), symbol->width + 1e-3);
      EXPECT_LE(bar.bottom(), symbol->height + 1e-3);
    }
  }
}

TEST(BarcodeTest, TextIsOptional) {
  BarcodeOptions options;
  options.show_text = false;
  const auto symbol = Encode(Symbology::kCode128, "ABC123", options);
  EXPECT_TRUE(symbol->text.empty());
  EXPECT_EQ(symbol->text_height, 0);
  EXPECT_EQ(Encode(Symbology::kCode128, "ABC123")->text, "ABC123");
}

}  // namespace
}  // namespace vantorel::report
