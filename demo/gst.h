// GST on the dealership's goods: the rate of each class of goods on a given day (the rates were
// revised on 22 September 2025) and the split of a tax-inclusive amount into taxable value and
// CGST + SGST (within Maharashtra) or IGST (to another state).
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

struct TaxSplit {
  int64_t net = 0;  // all amounts in paise
  int64_t taxable = 0;
  int64_t cgst = 0;
  int64_t sgst = 0;
  int64_t igst = 0;
};

// Splits the tax-inclusive "net" at "rate" percent. CGST and SGST are equal halves rounded to the
// paisa; the taxable value takes the rounding, so taxable + taxes == net exactly.
TaxSplit SplitInclusive(int64_t net, int rate, bool inter_state);

// "taxable" (paise) with "rate" percent added, rounded to whole rupees (in paise).
int64_t InclusiveRupees(int64_t taxable, int rate);

}  // namespace vantorel::demo

#endif  // VANTOREL_DEMO_GST_H_
