#include "report/barcode/barcode.h"

#include <zint.h>

#include <algorithm>
#include <list>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "vantorel/error.h"

namespace vantorel::report {
namespace {

constexpr char kSource[] = "Vantorel.Barcode";
// Room under a linear symbol's bars for its human-readable line, in modules.
constexpr float kTextModules = 10;

struct SymbolDelete {
  void operator()(zint_symbol* symbol) const { ZBarcode_Delete(symbol); }
};

struct Kind {
  Symbology symbology;
  const char* name;
  int zint;
  bool linear;
};

constexpr Kind kSymbologies[] = {
    {Symbology::kQr, "qr", BARCODE_QRCODE, false},
    {Symbology::kCode128, "code128", BARCODE_CODE128, true},
    {Symbology::kCode39, "code39", BARCODE_CODE39, true},
    {Symbology::kEan13, "ean13", BARCODE_EANX, true},
    {Symbology::kEan8, "ean8", BARCODE_EANX, true},
    {Symbology::kUpcA, "upca", BARCODE_UPCA, true},
    {Symbology::kItf, "itf", BARCODE_C25INTER, true},
    {Symbology::kDataMatrix, "datamatrix", BARCODE_DATAMATRIX, false},
    {Symbology::kPdf417, "pdf417", BARCODE_PDF417, false},
};

const Kind& Find(Symbology symbology) {
  return *std::find_if(std::begin(kSymbologies), std::end(kSymbologies),
                       [&](const Kind& s) { return s.symbology == symbology; });
}

bool IsAscii(std::string_view data) {
  return std::all_of(data.begin(), data.end(), [](char c) { return (c & 0x80) == 0; });
}

bool IsDigits(std::string_view data) {
  return !data.empty() &&
         std::all_of(data.begin(), data.end(), [](char c) { return c >= '0' && c <= '9'; });
}

[[noreturn]] void Fail(const Kind& kind, std::string_view data, const std::string& reason) {
  throw Error(errnum::kInvalidProcedureCall, kSource,
              std::string("Cannot encode \"") + std::string(data.substr(0, 60)) + "\" as " +
                  kind.name + ": " + reason);
}

}  // namespace

std::optional<Symbology> SymbologyFromName(std::string_view name) {
  for (const Kind& s : kSymbologies) {
    const std::string_view known = s.name;
    if (known.size() == name.size() &&
        std::equal(known.begin(), known.end(), name.begin(), [](char a, char b) {
          return a == (b >= 'A' && b <= 'Z' ? static_cast<char>(b - 'A' + 'a') : b);
        })) {
      return s.symbology;
    }
  }
  return std::nullopt;
}

namespace {

// Symbols encoded lately, by everything that shapes them. A QR code takes a millisecond to encode
// (the encoder tries every mask for the most readable one); documents printed again, and labels
// repeating a code, get it back at once.
class SymbolCache {
 public:
  std::shared_ptr<const BarcodeSymbol> Find(const std::string& key) {
    std::lock_guard lock(mutex_);
    const auto it = index_.find(key);
    if (it == index_.end()) return nullptr;
    order_.splice(order_.begin(), order_, it->second);
    return it->second->second;
  }
  void Insert(const std::string& key, std::shared_ptr<const BarcodeSymbol> symbol) {
    std::lock_guard lock(mutex_);
    if (index_.count(key)) return;
    order_.emplace_front(key, std::move(symbol));
    index_[key] = order_.begin();
    if (order_.size() > kCapacity) {
      index_.erase(order_.back().first);
      order_.pop_back();
    }
  }

 private:
  static constexpr size_t kCapacity = 256;
  std::mutex mutex_;
  std::list<std::pair<std::string, std::shared_ptr<const BarcodeSymbol>>> order_;
  std::unordered_map<std::string, decltype(order_)::iterator> index_;
};

SymbolCache& Cache() {
  static SymbolCache cache;
  return cache;
}

std::shared_ptr<const BarcodeSymbol> EncodeUncached(Symbology symbology, std::string_view data,
                                                    const BarcodeOptions& options);

}  // namespace

std::shared_ptr<const BarcodeSymbol> Encode(Symbology symbology, std::string_view data,
                                            const BarcodeOptions& options) {
  std::string key;
  key.reserve(data.size() + 8);
  key += static_cast<char>('a' + static_cast<int>(symbology));
  key += options.qr_level;
  key += options.show_text ? 't' : 'f';
  key += std::to_string(options.quiet_zone);
  key += ':';
  key.append(data);
  if (auto cached = Cache().Find(key)) return cached;
  std::shared_ptr<const BarcodeSymbol> symbol = EncodeUncached(symbology, data, options);
  Cache().Insert(key, symbol);
  return symbol;
}

namespace {

std::shared_ptr<const BarcodeSymbol> EncodeUncached(Symbology symbology, std::string_view data,
                                                    const BarcodeOptions& options) {
  const Kind& kind = Find(symbology);
  if (data.empty()) Fail(kind, data, "no data");
  // EAN-8 and EAN-13 share zint's symbology and differ by length; say which was meant.
  if (symbology == Symbology::kEan8 &&
      !(IsDigits(data) && (data.size() == 7 || data.size() == 8))) {
    Fail(kind, data, "EAN-8 takes 7 digits, or 8 with the check digit");
  }
  if (symbology == Symbology::kEan13 &&
      !(IsDigits(data) && (data.size() == 12 || data.size() == 13))) {
    Fail(kind, data, "EAN-13 takes 12 digits, or 13 with the check digit");
  }
  const std::unique_ptr<zint_symbol, SymbolDelete> symbol(ZBarcode_Create());
  if (!symbol) Fail(kind, data, "out of memory");
  symbol->symbology = kind.zint;
  symbol->show_hrt = 0;  // we draw the human-readable line ourselves, in our fonts
  symbol->whitespace_width = std::max(0, options.quiet_zone);
  symbol->whitespace_height = kind.linear ? 0 : std::max(0, options.quiet_zone);
  if (symbology == Symbology::kQr) {
    switch (options.qr_level) {
      case 'L':
      case 'l':
        symbol->option_1 = 1;
        break;
      case 'Q':
      case 'q':
        symbol->option_1 = 3;
        break;
      case 'H':
      case 'h':
        symbol->option_1 = 4;
        break;
      default:
        symbol->option_1 = 2;
        break;
    }
  }
  if (!IsAscii(data) && !kind.linear) {
    // Non-ASCII text (a dealer's name in Hindi) goes in as UTF-8, flagged so readers decode it.
    symbol->input_mode = UNICODE_MODE;
    symbol->eci = 26;
  }
  const int status =
      ZBarcode_Encode(symbol.get(), reinterpret_cast<const unsigned char*>(data.data()),
                      static_cast<int>(data.size()));
  if (status >= ZINT_ERROR) Fail(kind, data, symbol->errtxt);
  if (ZBarcode_Buffer_Vector(symbol.get(), 0) >= ZINT_ERROR || symbol->vector == nullptr) {
    Fail(kind, data, symbol->errtxt);
  }

  auto out = std::make_shared<BarcodeSymbol>();
  out->symbology = kind.name;
  out->data.assign(data);
  const zint_vector& vector = *symbol->vector;
  out->width = vector.width;
  out->height = vector.height;
  for (const zint_vector_rect* r = vector.rectangles; r != nullptr; r = r->next) {
    if (r->colour == -1) out->bars.push_back({r->x, r->y, r->width, r->height});
  }
  if (kind.linear && options.show_text) {
    out->text = reinterpret_cast<const char*>(symbol->text);
    if (out->text.empty()) out->text.assign(data);
    const float module =
        symbol->width > 0
            ? vector.width / static_cast<float>(symbol->width + 2 * symbol->whitespace_width)
            : 1.0f;
    out->text_height = kTextModules * module;
    out->height += out->text_height;
  }
  return out;
}

}  // namespace

}  // namespace vantorel::report
