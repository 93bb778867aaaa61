#include "demo/gst.h"

#include <stdexcept>
#include <string>

namespace vantorel::demo {
namespace {

// a / b rounded half up, for non-negative a and positive b.
int64_t RoundedDivide(int64_t a, int64_t b) { return (2 * a + b) / (2 * b); }

}  // namespace

TaxClass TaxClassOfHsn(std::string_view hsn) {
  if (hsn.starts_with("871160")) return TaxClass::kElectric;
  if (hsn.starts_with("8711")) return TaxClass::kTwoWheeler;
  if (hsn.starts_with("8712")) return TaxClass::kCycle;
  if (hsn.starts_with("87149")) return TaxClass::kCyclePart;
  if (hsn.starts_with("8714")) return TaxClass::kTwoWheelerPart;
  if (hsn.starts_with("6506")) return TaxClass::kHelmet;
  throw std::invalid_argument("no GST class for HSN " + std::string(hsn));
}

int GstRate(TaxClass tax_class, Day day) {
  const bool revised = day >= kRateRevision;
  switch (tax_class) {
    case TaxClass::kTwoWheeler:
    case TaxClass::kTwoWheelerPart:
      return revised ? 18 : 28;
    case TaxClass::kCycle:
    case TaxClass::kCyclePart:
      return revised ? 5 : 12;
    case TaxClass::kElectric:
      return 5;
    case TaxClass::kHelmet:
      return 18;
  }
  return 0;
}

int64_t TaxableOf(int64_t inclusive, int rate) {
  return RoundedDivide(inclusive * 100, 100 + rate);
}

LineTax TaxOn(int64_t taxable, int rate, bool inter_state) {
  LineTax tax;
  tax.taxable = taxable;
  if (inter_state) {
    tax.igst = RoundedDivide(taxable * rate, 100);
  } else {
    tax.cgst = RoundedDivide(taxable * rate, 200);
    tax.sgst = tax.cgst;
  }
  tax.net = taxable + tax.cgst + tax.sgst + tax.igst;
  return tax;
}

LineTax TaxForWholeRupees(int64_t inclusive, int rate, bool inter_state) {
  const int64_t start = TaxableOf(inclusive, rate);
  LineTax best = TaxOn(start, rate, inter_state);
  int64_t best_miss = -1;
  for (int64_t step = 0; step <= 300; ++step) {
    for (const int64_t taxable : {start - step, start + step}) {
      if (taxable < 0) continue;
      const LineTax tax = TaxOn(taxable, rate, inter_state);
      if (tax.net % 100 != 0) continue;
      const int64_t miss = tax.net > inclusive ? tax.net - inclusive : inclusive - tax.net;
      if (best_miss < 0 || miss < best_miss) {
        best = tax;
        best_miss = miss;
      }
    }
    if (best_miss == 0) break;
  }
  return best;
}

int64_t RoundedToRupee(int64_t paise) { return RoundedDivide(paise, 100) * 100; }

int64_t InclusiveRupees(int64_t taxable, int rate) {
  return RoundedDivide(taxable * (100 + rate), 100 * 100) * 100;
}

}  // namespace vantorel::demo
