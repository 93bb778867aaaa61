// The workshop and the books of account of the demo dealership, generated after the sales they
// build on, in four steps that each add their tables and facts:
//   spares  (demo/spares.cc)   the parts master, suppliers, spares purchases, transfers, orders,
//                              estimates, purchase returns, stock;
//   jobs    (demo/jobs.cc)     job cards, job and counter invoices, e-invoices, mechanics,
//                              follow-ups, service history;
//   books   (demo/books.cc)    the chart of accounts and the vouchers posted from every document;
//   returns (demo/returns.cc)  the pre-GST VAT year and C forms, quotations, the workshop top
//                              list, the label selections.
// Each step reads what the steps before it left in the Workshop.
//
// Thread-safety: plain values; one generation belongs to one thread.
#ifndef VANTOREL_DEMO_WORKSHOP_H_
#define VANTOREL_DEMO_WORKSHOP_H_

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "demo/calendar.h"
#include "demo/dealership.h"
#include "demo/entities.h"
#include "demo/random.h"
#include "demo/rows.h"

namespace vantorel::demo {

// One part of the parts master, as the later steps need it.
struct Part {
  std::string part_no;
  std::string description;
  std::string hsn;
  std::string type;  // its first letter classes it
  int gst_rate = 0;  // whole percent: 5, 12, 18, 28
  int64_t mrp = 0;   // paise
  int64_t dp = 0;    // dealer price, paise
  int64_t pp = 0;    // purchase price, paise
};

// A document's effect on the books, for the accounts to post as a voucher.
struct Posting {
  Day date;
  std::string kind;      // "SERVICE", "COUNTER", "SPARES PURCHASE", "PURCHASE RETURN", …
  std::string document;  // its number as printed
  int party = 0;         // fa_acmaster id of the customer or supplier; 0 for cash
  int64_t taxable = 0;   // paise
  int64_t cgst = 0, sgst = 0, igst = 0;
  int64_t total = 0;  // paise, as billed (rounded)
};

struct Workshop {
  std::vector<Part> parts;
  std::vector<Posting> postings;
};

using Facts = std::vector<std::pair<std::string, std::string>>;

void AddSpares(const Dealership& sales, const Options& options, Random& random, Workshop& workshop,
               Dataset& tables, Facts& facts);
void AddJobs(const Dealership& sales, const Options& options, Random& random, Workshop& workshop,
             Dataset& tables, Facts& facts);
void AddBooks(const Dealership& sales, const Options& options, Random& random, Workshop& workshop,
              Dataset& tables, Facts& facts);
void AddReturns(const Dealership& sales, const Options& options, Random& random, Workshop& workshop,
                Dataset& tables, Facts& facts);

}  // namespace vantorel::demo

#endif  // VANTOREL_DEMO_WORKSHOP_H_
