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
#include "demo/facts.h"
#include "demo/random.h"
#include "demo/rows.h"

namespace vantorel::demo {

// One part of the parts master, as the later steps need it. Quantities are whole units (a litre
// can, a set, a pair …); amounts are paise.
struct Part {
  int id = 0;  // ws_partmaster.part_id, 1, 2, … in part-number order
  std::string part_no;
  std::string description;
  std::string hsn;
  std::string type;      // its first letter classes it: S spares, L lubricants, A accessories,
                         // T tyres and tubes, B batteries
  std::string uqc;       // GST unit quantity code: "NOS", "SET", "LTR", "PAC", "PRS"
  std::string location;  // rack, shelf and bin: "R04-S2-B11"
  std::string bin_card;  // "BC01234"
  std::string source;    // "VAYU" (the maker's genuine parts), "GANGA" (cycle parts), "LOCAL"
  int gst_rate = 0;      // whole percent as the master holds it now (from 22 September 2025)
  int old_gst_rate = 0;  // whole percent before 22 September 2025
  int64_t mrp = 0;       // maximum retail price, GST included, paise
  int64_t dp = 0;        // dealer price before GST (to the workshop and sub-dealers), paise
  int64_t pp = 0;        // purchase price before GST (what the supplier bills), paise
  int opening = 0;       // PART_OP1: the opening stock on 1 April 2024
  // part_balance1, kept up to date by every step that moves stock: the opening, plus spares
  // purchases, less purchase returns, less transfers out, plus transfers in (the spares step),
  // less issues to jobs and over the counter (the jobs step: it lowers "balance" and raises
  // "issued" by the same quantity). Zero or negative is allowed (issued before the bill came).
  int balance = 0;
  int issued = 0;   // part_issue: issued to jobs and over the counter
  int reorder = 0;  // reorder level

  // The GST rate of the part on "day", in whole percent.
  int RateOn(Day day) const;
};

// A document's effect on the books, for the accounts to post as a voucher.
struct Posting {
  Day date;
  std::string kind;  // "SERVICE", "COUNTER", "SPARES PURCHASE", "PURCHASE RETURN", "DEBIT NOTE", …
  std::string document;  // its number as printed
  int party = 0;         // fa_acmaster id of the customer or supplier; 0 for cash
  int64_t taxable = 0;   // paise
  int64_t cgst = 0, sgst = 0, igst = 0;
  int64_t total = 0;  // paise, as billed (rounded)
};

struct Workshop {
  std::vector<Part> parts;  // in part-number order; parts[i].id == i + 1
  std::vector<Posting> postings;
  // ws_partmaster, made by the spares step in its place among the tables and filled from
  // "parts" by WritePartMaster once every step has moved stock.
  Table* part_master = nullptr;
};

void AddSpares(const Dealership& sales, const Options& options, Random& random, Workshop& workshop,
               Dataset& tables, FactList& facts);
// Fills ws_partmaster from workshop.parts, balances as they stand; once, after the last step
// that moves stock.
void WritePartMaster(Workshop& workshop);
void AddJobs(const Dealership& sales, const Options& options, Random& random, Workshop& workshop,
             Dataset& tables, FactList& facts);
void AddBooks(const Dealership& sales, const Options& options, Random& random, Workshop& workshop,
              Dataset& tables, FactList& facts);
void AddReturns(const Dealership& sales, const Options& options, Random& random, Workshop& workshop,
                Dataset& tables, FactList& facts);

}  // namespace vantorel::demo

#endif  // VANTOREL_DEMO_WORKSHOP_H_
