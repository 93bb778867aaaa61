// GST on the dealership's goods: the rate of each class of goods on a given day (the rates were
// revised on 22 September 2025), the taxable value of a tax-inclusive price, and the tax on a
// taxable value: CGST + SGST within Maharashtra, IGST to another state. The goods are two-wheelers
// of up to 350 cc, cycles and their parts: none of them bears compensation cess.
//
// Thread-safety: pure functions.
#ifndef VANTOREL_DEMO_GST_H_
#define VANTOREL_DEMO_GST_H_

#include <cstdint>
#include <string_view>

#include "demo/calendar.h"

namespace vantorel::demo {

enum class TaxClass {
  kTwoWheeler,      // 8711 motorcycles and scooters up to 350 cc
  kElectric,        // 871160 electric two-wheelers
  kCycle,           // 8712 bicycles
  kTwoWheelerPart,  // 871410 parts and accessories of motorcycles
  kCyclePart,       // 871499 parts and accessories of bicycles
  kHelmet,          // 650610 protective helmets
};

inline constexpr Day kRateRevision = Day::FromYmd(2025, 9, 22);

TaxClass TaxClassOfHsn(std::string_view hsn);

// The GST rate in percent: two-wheelers and their parts 28, bicycles and their parts 12 before
// the revision; 18 and 5 from it; electric two-wheelers 5 and helmets 18 throughout.
int GstRate(TaxClass tax_class, Day day);

struct LineTax {
  int64_t taxable = 0;  // all amounts in paise
  int64_t cgst = 0;
  int64_t sgst = 0;
  int64_t igst = 0;
  int64_t net = 0;  // taxable + cgst + sgst + igst
};

// The value before tax of the tax-inclusive "inclusive" (paise) at "rate" percent: inclusive *
// 100 / (100 + rate), rounded to the paisa, half up.
int64_t TaxableOf(int64_t inclusive, int rate);

// The tax on "taxable" (paise) at "rate" percent, each tax rounded to the paisa half up on its
// own: within the state CGST and SGST at half the rate each (so they are equal), to another state
// IGST at the whole rate. The net amount is the taxable value plus the taxes, which may differ
// by a few paise from a tax-inclusive price the taxable value was worked back from: the
// document's round-off takes that difference.
LineTax TaxOn(int64_t taxable, int rate, bool inter_state);

// The taxable value whose taxes at "rate" bring it to whole rupees, as near the tax-inclusive
// "inclusive" (paise) as can be: a dealer quotes round prices, and the line's taxes, each the rate
// on the taxable value to the paisa, then add up to a round amount with nothing left to round off.
// Most prices are met exactly; a price the rounding of the taxes steps over moves by a rupee.
LineTax TaxForWholeRupees(int64_t inclusive, int rate, bool inter_state);

// "paise" (not negative) rounded to whole rupees (in paise), half up: the amount a document's total
// is rounded to, its round-off being the difference.
int64_t RoundedToRupee(int64_t paise);

// "taxable" (paise) with "rate" percent added, rounded to whole rupees (in paise).
int64_t InclusiveRupees(int64_t taxable, int rate);

}  // namespace vantorel::demo

#endif  // VANTOREL_DEMO_GST_H_
