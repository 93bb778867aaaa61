// Barcodes and QR codes encoded into vector symbols (dark rectangles) that any output scales
// without loss.
//
// Thread-safety: Encode may be called from any thread.
#ifndef VANTOREL_REPORT_BARCODE_BARCODE_H_
#define VANTOREL_REPORT_BARCODE_BARCODE_H_

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "report/document/document.h"

namespace vantorel::report {

enum class Symbology { kQr, kCode128, kCode39, kEan13, kEan8, kUpcA, kItf, kDataMatrix, kPdf417 };

// "qr", "code128", "code39", "ean13", "ean8", "upca", "itf", "datamatrix", "pdf417"
// (case-insensitive); nullopt for anything else.
std::optional<Symbology> SymbologyFromName(std::string_view name);

struct BarcodeOptions {
  // QR error correction: 'L', 'M', 'Q' or 'H'. Default: M.
  char qr_level = 'M';
  // Show the human-readable text under linear symbols. Default: true.
  bool show_text = true;
  // Quiet zone around the symbol, in modules. Default: 0 (the template's box gives the margin).
  int quiet_zone = 0;
};

// Encodes "data". Throws vantorel::Error with the encoder's reason when "data" cannot be encoded
// in "symbology" (wrong characters, wrong length, too long).
std::shared_ptr<const BarcodeSymbol> Encode(Symbology symbology, std::string_view data,
                                            const BarcodeOptions& options = {});

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_BARCODE_BARCODE_H_
