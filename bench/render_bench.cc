// The drawing half of the engine against its budgets: a one-page GST invoice (about 120 texts, a
// logo, a QR code) and a 45-page stock register (3,000 rows of 8 cells) to PDF bytes, in process.
// "Warm" runs keep the thread's layout cache, as a real run does after the fill stage measured
// the same texts; "Cold" runs empty it first, so every text is laid out again.
//
//   cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release
//   cmake --build build/release --target render_bench && build/release/bench/render_bench
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include <gdk-pixbuf/gdk-pixbuf.h>
#include <unistd.h>

#include "report/barcode/barcode.h"
#include "report/document/document.h"
#include "report/image/image_loader.h"
#include "report/pdf/pdf_writer.h"
#include "report/text/layout.h"
#include "report/text/text_layout.h"

namespace vantorel::report {
namespace {

std::string Money(long paise) {
  // Indian digit grouping: 1,05,630.00.
  const std::string whole = std::to_string(paise / 100);
  std::string out;
  const size_t n = whole.size();
  for (size_t i = 0; i < n; ++i) {
    out.push_back(whole[i]);
    const size_t left = n - 1 - i;
    if (left == 3 || (left > 3 && (left - 3) % 2 == 0)) out.push_back(',');
  }
  out.push_back('.');
  out.push_back(static_cast<char>('0' + paise % 100 / 10));
  out.push_back(static_cast<char>('0' + paise % 10));
  return out;
}

// Appends rather than "prefix" + std::to_string(n), which trips a false -Wrestrict in GCC 12.
std::string Prefixed(const char* prefix, long n) {
  std::string out(prefix);
  out += std::to_string(n);
  return out;
}

enum class LogoKind { kPixels, kJpeg, kNone };

std::shared_ptr<const ImageData> Logo() {
  auto image = std::make_shared<ImageData>();
  image->source = "logo";
  image->width = 300;
  image->height = 120;
  image->stride = 1200;
  image->pixels.resize(static_cast<size_t>(image->stride) * 120);
  auto* pixels = reinterpret_cast<uint32_t*>(image->pixels.data());
  for (int y = 0; y < 120; ++y) {
    for (int x = 0; x < 300; ++x) {
      pixels[y * 300 + x] = 0xFF000000u | static_cast<uint32_t>(x * 255 / 300) << 16 |
                            static_cast<uint32_t>(y * 2) << 8 | 0x40;
    }
  }
  return image;
}

// The logo as a JPEG file would give it: the same pixels plus the file's bytes, which a PDF
// embeds unchanged instead of compressing the pixels again.
std::shared_ptr<const ImageData> JpegLogo() {
  static const std::shared_ptr<const ImageData> logo = [] {
    const auto pixels = Logo();
    GdkPixbuf* pixbuf = gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, 8, pixels->width, pixels->height);
    for (int y = 0; y < pixels->height; ++y) {
      for (int x = 0; x < pixels->width; ++x) {
        const uint32_t v =
            reinterpret_cast<const uint32_t*>(pixels->pixels.data())[y * pixels->width + x];
        guchar* p = gdk_pixbuf_get_pixels(pixbuf) + y * gdk_pixbuf_get_rowstride(pixbuf) + x * 3;
        p[0] = static_cast<guchar>(v >> 16);
        p[1] = static_cast<guchar>(v >> 8);
        p[2] = static_cast<guchar>(v);
      }
    }
    const std::string path = "/tmp/vantorel-bench-logo-" + std::to_string(getpid()) + ".jpg";
    gdk_pixbuf_save(pixbuf, path.c_str(), "jpeg", nullptr, "quality", "90", nullptr);
    g_object_unref(pixbuf);
    auto image = LoadImage(path);
    std::remove(path.c_str());
    return image;
  }();
  return logo;
}

Document Invoice(LogoKind logo_kind) {
  Document document;
  document.metadata.title = "Tax Invoice";
  TextStyle label;
  label.size = 8;
  label.color = {80, 80, 80, 255};
  TextStyle value;
  value.size = 9;
  value.bold = true;
  TextStyle cell;
  cell.size = 8.5f;
  cell.borders = kBorderLeft | kBorderRight | kBorderBottom;
  cell.border = Stroke{0.5f};
  TextStyle number = cell;
  number.halign = HAlign::kRight;
  TextStyle title;
  title.size = 16;
  title.bold = true;
  title.halign = HAlign::kCenter;
  TextStyle words;
  words.size = 9;
  words.italic = true;
  TextStyle hindi;
  hindi.size = 12;
  const uint32_t s_label = document.InternStyle(label), s_value = document.InternStyle(value),
                 s_cell = document.InternStyle(cell), s_number = document.InternStyle(number),
                 s_title = document.InternStyle(title), s_words = document.InternStyle(words),
                 s_hindi = document.InternStyle(hindi);
  const uint32_t logo = logo_kind == LogoKind::kPixels ? document.AddImage(Logo())
                        : logo_kind == LogoKind::kJpeg ? document.AddImage(JpegLogo())
                                                       : 0;
  const uint32_t qr = document.AddBarcode(Encode(
      Symbology::kQr,
      R"({"SellerGstin":"27AABCS1234F1Z5","BuyerGstin":"27AAACR5055K1ZK","DocNo":"INV/24-25/0421",)"
      R"("DocDt":"15/03/2025","TotInvVal":105630.00,"MainHsnCode":"87112029",)"
      R"("Irn":"a5c12dca80e743321740b6b8e5a7a6b4f1e2d3c4b5a697887766554433221100ffeeddcc"})"));

  Page page{{595.28f, 841.89f}, {}};
  auto text = [&](float x, float y, float w, float h, uint32_t style, std::string s) {
    page.items.push_back(TextItem{{x, y, w, h}, style, std::move(s)});
  };
  if (logo_kind != LogoKind::kNone) {
    page.items.push_back(ImageItem{{30, 30, 120, 48}, logo, ImageFit::kContain});
  }
  page.items.push_back(BarcodeItem{{480, 28, 85, 85}, qr, Color::Black(), Color::None()});
  text(160, 30, 300, 22, s_title, "SHRI GANESH MOTORS");
  text(160, 54, 300, 18, s_hindi, "श्री गणेश मोटर्स");
  text(160, 74, 300, 12, s_label, "Plot 14, MIDC Industrial Area, Nashik 422010, Maharashtra");
  text(160, 86, 300, 12, s_label, "GSTIN 27AABCS1234F1Z5  |  Phone 0253-2345678");
  text(30, 120, 535, 24, s_title, "TAX INVOICE");
  const char* const kFields[][2] = {
      {"Invoice No", "INV/24-25/0421"},
      {"Invoice Date", "15/03/2025"},
      {"Customer", "RAJESH KUMAR PATIL"},
      {"Address", "12 Shivaji Nagar, Nashik"},
      {"Mobile", "9822012345"},
      {"Customer GSTIN", "27AAACR5055K1ZK"},
      {"Model", "SPLENDOR PLUS XTEC"},
      {"Colour", "BLACK WITH RED"},
      {"Chassis No", "MBLHA10AMEHK12345"},
      {"Engine No", "HA10EFHK67890"},
      {"Key No", "K-4471"},
      {"Battery No", "EX-22119"},
      {"Hypothecation", "HDFC BANK LTD"},
      {"Salesman", "S. DESHMUKH"},
      {"Place of Supply", "27-Maharashtra"},
      {"Reverse Charge", "No"},
  };
  float y = 150;
  for (int i = 0; i < 16; ++i) {
    const float x = i % 2 == 0 ? 30 : 300;
    text(x, y, 90, 12, s_label, kFields[i][0]);
    text(x + 90, y, 170, 12, s_value, kFields[i][1]);
    if (i % 2 == 1) y += 14;
  }
  const char* const kHeads[] = {"Sr",   "Description", "HSN",   "Qty",
                                "Rate", "Taxable",     "GST %", "Amount"};
  const float kX[] = {30, 55, 245, 300, 330, 395, 460, 500};
  const float kW[] = {25, 190, 55, 30, 65, 65, 40, 65};
  y = 275;
  for (int c = 0; c < 8; ++c) text(kX[c], y, kW[c], 16, s_cell, kHeads[c]);
  const char* const kItems[] = {"SPLENDOR PLUS XTEC BS6 DRUM BRAKE",
                                "HELMET ISI MARKED",
                                "EXTENDED WARRANTY 5 YEARS",
                                "ROAD SAFETY KIT",
                                "INSURANCE (1+5 YEARS)",
                                "REGISTRATION CHARGES",
                                "NUMBER PLATE HSRP",
                                "ACCESSORIES: SARI GUARD, MIRROR"};
  for (int r = 0; r < 8; ++r) {
    y += 16;
    const long rate = 7500000 / (r + 1) + 1234 * r;
    text(kX[0], y, kW[0], 16, s_number, std::to_string(r + 1));
    text(kX[1], y, kW[1], 16, s_cell, kItems[r]);
    text(kX[2], y, kW[2], 16, s_cell, Prefixed("8711", 2029 + r));
    text(kX[3], y, kW[3], 16, s_number, "1");
    text(kX[4], y, kW[4], 16, s_number, Money(rate));
    text(kX[5], y, kW[5], 16, s_number, Money(rate));
    text(kX[6], y, kW[6], 16, s_number, r == 0 ? "28%" : "18%");
    text(kX[7], y, kW[7], 16, s_number, Money(rate * (r == 0 ? 128 : 118) / 100));
  }
  const char* const kTotals[] = {"Taxable Value", "CGST", "SGST", "Round Off", "Grand Total"};
  for (int i = 0; i < 5; ++i) {
    y += 16;
    text(395, y, 105, 16, s_cell, kTotals[i]);
    text(500, y, 65, 16, s_number, i == 4 ? "₹ 1,05,630.00" : Money(8246011 / (i + 1)));
  }
  text(30, y + 24, 535, 28, s_words,
       "Amount in words: RUPEES ONE LAC FIVE THOUSAND SIX HUNDRED THIRTY ONLY");
  y += 60;
  for (int i = 0; i < 6; ++i) {
    text(30, y, 535, 12, s_label,
         Prefixed("", i + 1) +
             ". Goods once sold will not be taken back. Subject to Nashik "
             "jurisdiction. Warranty as per manufacturer's terms.");
    y += 12;
  }
  for (int i = 0; i < 4; ++i) {
    text(30 + 135 * static_cast<float>(i), 780, 130, 12, s_label,
         i == 3 ? "Authorised Signatory" : "Customer Signature");
  }
  page.items.push_back(RectItem{{25, 25, 545, 790}, Color::None(), Stroke{1}, 4});
  page.items.push_back(LineItem{{25, 115}, {570, 115}, Stroke{0.75f}});
  page.items.push_back(LineItem{{25, 270}, {570, 270}, Stroke{0.75f}});
  document.pages.push_back(std::move(page));
  return document;
}

Document Register() {
  Document document;
  document.metadata.title = "Stock Register";
  TextStyle cell;
  cell.size = 7.5f;
  cell.wrap = false;
  cell.borders = kBorderBottom;
  cell.border = Stroke{0.25f, {160, 160, 160, 255}};
  TextStyle number = cell;
  number.halign = HAlign::kRight;
  TextStyle head = cell;
  head.bold = true;
  head.fill = {230, 230, 230, 255};
  TextStyle title;
  title.size = 14;
  title.bold = true;
  const uint32_t s_cell = document.InternStyle(cell), s_number = document.InternStyle(number),
                 s_head = document.InternStyle(head), s_title = document.InternStyle(title);
  const char* const kParts[] = {"BRAKE SHOE ASSY FRONT", "CLUTCH PLATE SET",   "SPARK PLUG",
                                "CHAIN SPROCKET KIT",    "AIR FILTER ELEMENT", "HEAD LAMP BULB 12V",
                                "ENGINE OIL 10W30 1L",   "SIDE MIRROR RH",     "TYRE 2.75-18 REAR",
                                "BATTERY 12V 5AH"};
  const char* const kHeads[] = {"Part No",  "Description", "Bin",     "Opening",
                                "Receipts", "Issues",      "Closing", "Value"};
  const float kX[] = {20, 90, 260, 300, 350, 400, 450, 500};
  const float kW[] = {70, 170, 40, 50, 50, 50, 50, 75};
  constexpr int kRows = 3000, kPerPage = 67;
  for (int first = 0; first < kRows; first += kPerPage) {
    Page page{{595.28f, 841.89f}, {}};
    page.items.push_back(TextItem{{20, 20, 400, 20}, s_title, "STOCK REGISTER — SPARES"});
    page.items.push_back(
        TextItem{{420, 20, 155, 20}, s_number, Prefixed("Page ", first / kPerPage + 1)});
    for (int c = 0; c < 8; ++c) {
      page.items.push_back(TextItem{{kX[c], 50, kW[c], 14}, s_head, kHeads[c]});
    }
    float y = 64;
    for (int r = first; r < std::min(kRows, first + kPerPage); ++r) {
      const int opening = (r * 37) % 250, receipts = (r * 11) % 40, issues = (r * 7) % 35;
      const std::string cells[] = {
          Prefixed("SP-", 10000 + r),
          std::string(kParts[r % 10]) + (r % 3 == 0 ? " (HERO)" : ""),
          Prefixed("R", r % 40 + 1),
          std::to_string(opening),
          std::to_string(receipts),
          std::to_string(issues),
          std::to_string(opening + receipts - issues),
          Money(static_cast<long>(opening + receipts - issues) * (12345 + r * 17))};
      for (int c = 0; c < 8; ++c) {
        page.items.push_back(
            TextItem{{kX[c], y, kW[c], 11.5f}, c >= 3 ? s_number : s_cell, cells[c]});
      }
      y += 11.5f;
    }
    document.pages.push_back(std::move(page));
  }
  return document;
}

// Argument: the logo as decoded pixels (a PNG or BMP file), as a JPEG file, or none.
void BM_InvoicePdfWarm(benchmark::State& state) {
  const Document document = Invoice(static_cast<LogoKind>(state.range(0)));
  PdfBytes(document);
  for (auto _ : state) benchmark::DoNotOptimize(PdfBytes(document));
  state.counters["items"] = static_cast<double>(document.pages[0].items.size());
}
BENCHMARK(BM_InvoicePdfWarm)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

void BM_InvoicePdfCold(benchmark::State& state) {
  const Document document = Invoice(static_cast<LogoKind>(state.range(0)));
  PdfBytes(document);
  for (auto _ : state) {
    text::ClearLayoutCache();
    benchmark::DoNotOptimize(PdfBytes(document));
  }
}
BENCHMARK(BM_InvoicePdfCold)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

void BM_RegisterPdfWarm(benchmark::State& state) {
  const Document document = Register();
  PdfBytes(document);
  for (auto _ : state) benchmark::DoNotOptimize(PdfBytes(document));
  state.counters["pages"] = static_cast<double>(document.pages.size());
}
BENCHMARK(BM_RegisterPdfWarm)->Unit(benchmark::kMillisecond);

void BM_RegisterPdfCold(benchmark::State& state) {
  const Document document = Register();
  PdfBytes(document);
  for (auto _ : state) {
    text::ClearLayoutCache();
    benchmark::DoNotOptimize(PdfBytes(document));
  }
}
BENCHMARK(BM_RegisterPdfCold)->Unit(benchmark::kMillisecond);

// The floor under every PDF: a page with one word in each of the invoice's five fonts, so
// Cairo still subsets, compresses and writes five fonts and their Unicode maps.
void BM_FiveWordPdf(benchmark::State& state) {
  Document document;
  TextStyle style;
  Page page{{595.28f, 841.89f}, {}};
  const char* const kWords[] = {"Regular", "Bold", "Italic", "श्री", "Mono"};
  for (int i = 0; i < 5; ++i) {
    style.bold = i == 1;
    style.italic = i == 2;
    style.font_family = i == 4 ? "Courier New" : "Arial";
    page.items.push_back(
        TextItem{{30, 30 + 20.0f * i, 200, 18}, document.InternStyle(style), kWords[i]});
  }
  document.pages.push_back(std::move(page));
  for (auto _ : state) benchmark::DoNotOptimize(PdfBytes(document));
}
BENCHMARK(BM_FiveWordPdf)->Unit(benchmark::kMillisecond);

// One uncached layout of a short cell, each way.
void BM_LayOutFastPath(benchmark::State& state) {
  TextStyle style;
  int i = 0;
  for (auto _ : state) {
    text::ClearLayoutCache();
    benchmark::DoNotOptimize(text::MeasureText(Prefixed("BRAKE SHOE ASSY ", i++), style, 170));
  }
}
BENCHMARK(BM_LayOutFastPath);

void BM_LayOutPango(benchmark::State& state) {
  TextStyle style;
  int i = 0;
  for (auto _ : state) {
    text::ClearLayoutCache();
    benchmark::DoNotOptimize(text::MeasureText(Prefixed("₹ 1,05,", i++), style, 170));
  }
}
BENCHMARK(BM_LayOutPango);

}  // namespace
}  // namespace vantorel::report

BENCHMARK_MAIN();
