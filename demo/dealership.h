// The demo dealership database: a deterministic, realistic two-wheeler and cycle dealership
// (masters, purchases, transfers, challans, invoices, receipts, enquiries, registrations) as
// table rows that demo/schema.sql describes, and a few handy document ids ("facts") for tests,
// the demo script and template authors. docs/demo-database.md describes the data.
//
// Thread-safety: GenerateDealership has no shared state; calls on different threads are
// independent.
#ifndef VANTOREL_DEMO_DEALERSHIP_H_
#define VANTOREL_DEMO_DEALERSHIP_H_

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "demo/facts.h"
#include "demo/rows.h"

namespace vantorel::demo {

inline constexpr uint64_t kDefaultSeed = 20250922;

struct Options {
  // Seeds every random choice; the same seed always gives the same data.
  // Default: kDefaultSeed.
  uint64_t seed = kDefaultSeed;
  // The para_setup value of ('CHALLAN', 'GATEPASS'): "Y" prints customer challans on the
  // gate-pass layout. Default: "Y".
  std::string gatepass = "Y";
  // The para_setup value of ('WS_PO', 'PO'): "Y" prints purchase orders on the view layout.
  // Default: "N".
  std::string po_view = "N";
  // The size of the parts master; 0 keeps the demo's own. A large dealer's, for benchmarks.
  int parts = 0;
  // The cash book's entries in the year; 0 keeps the demo's own. A busy dealer's, for benchmarks.
  int ledger_entries = 0;
};

struct DemoData {
  Dataset tables;  // in load order
  // key, value: one id per kind of document, date ranges with rows, and the texts a host
  // passes (names, SQL it builds). Keys are lower_snake_case; a value is one argument of a call
  // and may hold blanks, but no line break.
  FactList facts;
};

DemoData GenerateDealership(const Options& options);

}  // namespace vantorel::demo

#endif  // VANTOREL_DEMO_DEALERSHIP_H_
