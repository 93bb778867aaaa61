// The generated dealership as rows of the tables of demo/schema.sql, and the facts: ids of
// documents of every kind the sales print methods print.
#include <functional>
#include <map>
#include <set>
#include <stdexcept>

#include "demo/accounts.h"
#include "demo/dealership.h"
#include "demo/entities.h"
#include "demo/gst.h"
#include "demo/random.h"
#include "demo/workshop.h"

namespace vantorel::demo {
namespace {

Cell Text(const std::string& text) { return text.empty() ? Cell(kNull) : Cell(text); }
Cell Id(int id) { return id == 0 ? Cell(kNull) : Cell(int64_t{id}); }
Cell Int(int64_t value) { return value; }
Cell Paise(int64_t paise) { return Money{paise}; }
Cell OptionalDay(const std::optional<Day>& day) { return day ? Cell(*day) : Cell(kNull); }
Cell OptionalPaise(const std::optional<int64_t>& paise) {
  return paise ? Cell(Money{*paise}) : Cell(kNull);
}
Cell Number(const std::string& digits) {
  return digits.empty() ? Cell(kNull) : Cell(Decimal{digits});
}
Cell Count(int value) { return value == 0 ? Cell(kNull) : Cell(int64_t{value}); }

// Vehicles and accessories alike are counted in numbers.
constexpr char kUnit[] = "NOS";

// A GST rate given in half percents, written in percent with two decimals: 28 gives "14.00", 5
// gives "2.50" (the CGST or SGST share of a rate), 2 * rate the whole rate.
Cell Rate(int half_percents) {
  return Decimal{std::to_string(half_percents / 2) + (half_percents % 2 == 0 ? ".00" : ".50")};
}

void AddMasterRows(const Dealership& d, const Options& options, Dataset& out) {
  const Firm& f = d.firm;
  out.Create("firm",
             {"coid",         "name",       "name_local", "tagline",     "add1",       "add2",
              "add3",         "city",       "district",   "state",       "state_code", "pin",
              "phone",        "mobile",     "email",      "website",     "gstin",      "pan",
              "dealer_code",  "trade_cert", "bank_name",  "bank_branch", "bank_acno",  "bank_ifsc",
              "jurisdiction", "logo",       "terms"})
      .Add({Int(f.coid),    f.name,       f.name_local, f.tagline,     f.add1,       f.add2,
            f.add3,         f.city,       f.district,   f.state,       f.state_code, f.pin,
            f.phone,        f.mobile,     f.email,      f.website,     f.gstin,      f.pan,
            f.dealer_code,  f.trade_cert, f.bank_name,  f.bank_branch, f.bank_acno,  f.bank_ifsc,
            f.jurisdiction, f.logo,       f.terms});

  Table& settings = out.Create("para_setup", {"para_flag", "para_type", "para_value", "para_desc"});
  for (const Setting& s : d.settings) {
    const bool gatepass = s.flag == "CHALLAN" && s.type == "GATEPASS";
    const bool po_view = s.flag == "WS_PO" && s.type == "PO";
    settings.Add({s.flag, s.type,
                  gatepass  ? options.gatepass
                  : po_view ? options.po_view
                            : s.value,
                  s.description});
  }

  Table& accounts = out.Create("fa_acmaster", AccountColumns());
  for (const Account& a : d.accounts) accounts.Add(AccountRow(a));

  Table& branches = out.Create(
      "branch", {"br_id", "coid", "br_code", "br_name", "br_add1", "br_add2", "br_city", "br_pin",
                 "br_phone", "br_rto", "br_manager", "am_id", "br_state", "br_statecode"});
  for (const Branch& b : d.branches) {
    branches.Add({Int(b.id), Int(d.firm.coid), b.code, b.name, b.add1, b.add2, b.city, b.pin,
                  b.phone, b.rto, b.manager, Int(b.account), b.state, b.state_code});
  }

  Table& customers = out.Create(
      "customer", {"cust_id", "ctitle",     "first_name", "surname", "cname",      "relation",
                   "cfname",  "cadd1",      "cadd2",      "cadd3",   "ccity",      "cdistrict",
                   "cstate",  "cstatecode", "cpin",       "cmobile", "cphone",     "cemail",
                   "cgstin",  "cpan",       "caadhaar",   "cdob",    "coccupation"});
  for (const Customer& c : d.customers) {
    customers.Add({Int(c.id),
                   c.title,
                   Text(c.first_name),
                   Text(c.surname),
                   c.name,
                   Text(c.relation),
                   Text(c.father),
                   Text(c.add1),
                   Text(c.add2),
                   Text(c.add3),
                   c.city,
                   c.district,
                   c.state,
                   c.state_code,
                   c.pin,
                   c.mobile,
                   Text(c.phone),
                   Text(c.email),
                   Text(c.gstin),
                   Text(c.pan),
                   Text(c.aadhaar),
                   OptionalDay(c.birth),
                   Text(c.occupation)});
  }

  Table& models = out.Create(
      "vehmodel", {"model_id",   "make",       "model_code",      "model",         "variant",
                   "vcat",       "vclass",     "body_type",       "fuel",          "hsn",
                   "cc",         "cylinders",  "max_power",       "seating",       "wheelbase",
                   "unladen_wt", "gross_wt",   "emission_norms",  "noise_db",      "battery_kwh",
                   "motor_kw",   "wheel_size", "gears",           "type_approval", "mfr_name",
                   "mfr_add",    "exsh_price", "subsidy_eligible"});
  for (const VehicleModel& m : d.models) {
    models.Add({Int(m.id),
                m.make,
                m.code,
                m.model,
                m.variant,
                CategoryCode(m.category),
                m.vclass,
                m.body,
                Text(m.fuel),
                m.hsn,
                Number(m.cc),
                Count(m.cylinders),
                Text(m.max_power),
                Int(m.seating),
                Count(m.wheelbase),
                Int(m.unladen),
                Count(m.gross),
                Text(m.norms),
                Number(m.noise),
                Number(m.battery_kwh),
                Number(m.motor_kw),
                m.wheel,
                Int(m.gears),
                Text(m.type_approval),
                m.mfr_name,
                m.mfr_add,
                Paise(d.Price(m.id, kLastDay)),
                m.category == Category::kElectric ? "Y" : "N"});
  }

  Table& prices = out.Create("pricelist", {"model_id", "from_date", "to_date", "exsh_price"});
  for (const PriceListEntry& p : d.prices) {
    prices.Add({Int(p.model), p.from, OptionalDay(p.to), Paise(p.price)});
  }

  Table& colors = out.Create("color", {"color_id", "color_name", "color_code"});
  for (const Color& c : d.colors) colors.Add({Int(c.id), c.name, c.code});

  Table& items = out.Create("item", {"item_id", "item_code", "item_name", "icat", "hsn", "mrp"});
  for (const Item& i : d.items) {
    items.Add({Int(i.id), i.code, i.name, i.icat, i.hsn,
               Paise(InclusiveRupees(i.base_taxable, GstRate(TaxClassOfHsn(i.hsn), kLastDay)))});
  }
}

void AddStockRows(const Dealership& d, Dataset& out) {
  Table& purchases =
      out.Create("purchase",
                 {"id",    "supid",   "billno",   "billdate", "recdate", "grn_no",    "br_id",
                  "nveh",  "taxable", "cgst",     "sgst",     "igst",    "total",     "transporter",
                  "lr_no", "lr_date", "truck_no", "ewb_no",   "remarks", "round_off", "ewb_date"});
  for (const Purchase& p : d.purchases) {
    int64_t taxable = 0, cgst = 0, sgst = 0, igst = 0;
    for (const Line& l : p.lines) {
      taxable += l.taxable;
      cgst += l.cgst;
      sgst += l.sgst;
      igst += l.igst;
    }
    purchases.Add({Int(p.id),
                   Int(p.supplier),
                   p.bill_no,
                   p.bill_date,
                   p.received,
                   p.grn_no,
                   Int(1),
                   Int(static_cast<int64_t>(p.vehicles.size())),
                   Paise(taxable),
                   Paise(cgst),
                   Paise(sgst),
                   Paise(igst),
                   Paise(p.Total()),
                   p.transporter,
                   p.lr_no,
                   p.bill_date,
                   p.truck,
                   p.ewb_no,
                   std::to_string(p.vehicles.size()) + " vehicles received in good condition",
                   Paise(RoundOff(p.lines)),
                   p.bill_date});
  }

  Table& vehicles =
      out.Create("vehicle", {"veh_id", "model_id", "color_id", "chassis", "engine", "battery_no",
                             "battery_make", "charger_no", "key_no", "mfg_month", "mfg_year",
                             "purid", "br_id", "status", "kit_items"});
  for (const Vehicle& v : d.vehicles) {
    const VehicleModel& m = d.model(v.model);
    vehicles.Add({Int(v.id), Int(v.model), Int(v.color), v.chassis, Text(v.engine),
                  Text(v.battery_no), Text(m.battery_make), Text(v.charger_no), Text(v.key_no),
                  Int(v.made.month()), Int(v.made.year()), Int(v.purchase), Int(v.branch), v.status,
                  v.kit});
  }

  Table& lines = out.Create(
      "purveh", {"purid", "line", "veh_id", "hsn", "rate", "taxable", "cgst_rate", "cgst_amt",
                 "sgst_rate", "sgst_amt", "igst_rate", "igst_amt", "amount", "qty", "uom"});
  for (const Purchase& p : d.purchases) {
    int line = 0;
    for (const Line& l : p.lines) {
      lines.Add({Int(p.id), Int(++line), Int(l.vehicle), l.hsn, Paise(l.rate), Paise(l.taxable),
                 Rate(l.inter_state ? 0 : l.gst_rate), Paise(l.cgst),
                 Rate(l.inter_state ? 0 : l.gst_rate), Paise(l.sgst),
                 Rate(l.inter_state ? 2 * l.gst_rate : 0), Paise(l.igst), Paise(l.net), Int(l.qty),
                 kUnit});
    }
  }

  Table& transfers =
      out.Create("btmstveh", {"id", "btno", "btdate", "btfrom", "btto", "from_br", "to_br", "nveh",
                              "btvalue", "vehicle_no", "driver", "remarks", "ewb_no", "ewb_date"});
  Table& transfer_lines = out.Create("btdetveh", {"btid", "line", "veh_id", "rate", "qty", "uom"});
  for (const BranchTransfer& t : d.transfers) {
    int64_t value = 0;
    for (int id : t.vehicles) value += d.vehicle(id).cost;
    transfers.Add({Int(t.id), t.num, t.date, Int(d.branch(t.from_branch).account),
                   Int(d.branch(t.to_branch).account), Int(t.from_branch), Int(t.to_branch),
                   Int(static_cast<int64_t>(t.vehicles.size())), Paise(value), t.vehicle_no,
                   t.driver, t.remarks, Text(t.ewb_no),
                   t.ewb_no.empty() ? Cell(kNull) : Cell(Stamp{t.date, t.ewb_seconds})});
  }
  for (const BranchTransfer& t : d.transfers) {
    int line = 0;
    for (int id : t.vehicles) {
      transfer_lines.Add(
          {Int(t.id), Int(++line), Int(id), Paise(d.vehicle(id).cost), Int(1), kUnit});
    }
  }

  Table& notes = out.Create("vintrf", {"tid", "tno", "tdate", "from_loc", "to_loc", "reason",
                                       "authorised_by", "remarks", "br_id"});
  Table& note_lines = out.Create("vintrfdet", {"tid", "line", "veh_id", "remarks", "qty", "uom"});
  for (const VehicleTransferNote& n : d.transfer_notes) {
    notes.Add({Int(n.id), n.num, n.date, n.from, n.to, n.reason, n.authorised_by, n.remarks,
               Int(n.branch)});
  }
  for (const VehicleTransferNote& n : d.transfer_notes) {
    int line = 0;
    for (int id : n.vehicles) {
      note_lines.Add({Int(n.id), Int(++line), Int(id),
                      "Key " + d.vehicle(id).key_no + ", " +
                          (d.vehicle(id).battery_no.empty() ? "no battery" : "battery fitted"),
                      Int(1), kUnit});
    }
  }
}

void AddLineRow(Table& table, int& pd_id, int invoice, int challan, int number, const Line& l) {
  const bool on_challan = challan != 0;
  table.Add({Int(++pd_id),
             Id(invoice),
             Id(challan),
             Int(number),
             std::string(1, l.kind),
             Id(l.vehicle),
             Id(l.model),
             Id(l.item),
             l.description,
             l.hsn,
             Int(l.qty),
             kUnit,
             Paise(l.rate),
             Paise(l.amount),
             Paise(l.discount),
             Paise(l.taxable),
             Rate(l.inter_state ? 0 : l.gst_rate),
             Paise(l.cgst),
             Rate(l.inter_state ? 0 : l.gst_rate),
             Paise(l.sgst),
             Rate(l.inter_state ? 2 * l.gst_rate : 0),
             Paise(l.igst),
             Paise(l.net),
             on_challan ? Cell(kNull) : OptionalPaise(l.subsidy),
             on_challan ? Paise(l.net) : Cell(kNull)});
}

void AddSalesRows(const Dealership& d, Dataset& out) {
  Table& challans =
      out.Create("challan", {"id", "type", "num", "cdate", "br_id", "cust_id", "am_id", "amt",
                             "gp_no", "transporter", "truck_no", "prepared_by", "invid", "remarks",
                             "round_off", "lr_no", "ewb_no", "ewb_date"});
  for (const Challan& c : d.challans) {
    challans.Add({Int(c.id), std::string(1, c.type), c.num, c.date, Int(c.branch), Id(c.customer),
                  Id(c.account), Paise(c.Amount()), c.gate_pass, Text(c.transporter), Text(c.truck),
                  c.prepared_by, Id(c.invoice), c.remarks, Paise(RoundOff(c.lines)), Text(c.lr_no),
                  Text(c.ewb_no),
                  c.ewb_no.empty() ? Cell(kNull) : Cell(Stamp{c.date, c.ewb_seconds})});
  }

  Table& invoices = out.Create(
      "invoice",
      {"id",          "itype",        "num",        "idate",     "br_id",         "cust_id",
       "am_id",       "chlid",        "veh_id",     "vcat",      "hypothecation", "fin_id",
       "booking_no",  "booking_date", "executive",  "pos_state", "pos_code",      "reverse_charge",
       "tot_taxable", "tot_cgst",     "tot_sgst",   "tot_igst",  "invamt",        "tot_subsidy",
       "payable",     "irn",          "ack_no",     "ack_date",  "qr_text",       "ewb_no",
       "ewb_date",    "transporter",  "lr_no",      "truck_no",  "regno",         "reg_date",
       "rto",         "ins_company",  "ins_policy", "ins_from",  "ins_upto",      "remarks",
       "round_off"});
  for (const Invoice& i : d.invoices) {
    int64_t taxable = 0, cgst = 0, sgst = 0, igst = 0;
    for (const Line& l : i.lines) {
      taxable += l.taxable;
      cgst += l.cgst;
      sgst += l.sgst;
      igst += l.igst;
    }
    const bool retail = i.itype == 'R';
    const bool insured = !i.ins_company.empty();
    invoices.Add({Int(i.id),
                  std::string(1, i.itype),
                  i.num,
                  i.date,
                  Int(i.branch),
                  Id(i.customer),
                  Id(i.account),
                  Id(i.challan),
                  retail ? Id(i.units[0].vehicle) : Cell(kNull),
                  CategoryCode(d.model(i.units[0].model).category),
                  i.financier != 0 ? Cell(d.account(i.financier).name) : Cell(kNull),
                  Id(i.financier),
                  Text(i.booking_no),
                  OptionalDay(i.booking_date),
                  i.executive,
                  i.pos_state,
                  i.pos_code,
                  "N",
                  Paise(taxable),
                  Paise(cgst),
                  Paise(sgst),
                  Paise(igst),
                  Paise(i.Total()),
                  Paise(i.Subsidy()),
                  Paise(i.Payable()),
                  Text(i.irn),
                  Text(i.ack_no),
                  i.irn.empty() ? Cell(kNull) : Cell(Stamp{i.date, i.ack_seconds}),
                  Text(i.qr_text),
                  Text(i.ewb_no),
                  i.ewb_no.empty() ? Cell(kNull) : Cell(Stamp{i.ewb_day, i.ewb_seconds}),
                  Text(i.transporter),
                  Text(i.lr_no),
                  Text(i.truck),
                  Text(i.regno),
                  OptionalDay(i.reg_date),
                  Text(i.rto),
                  Text(i.ins_company),
                  Text(i.ins_policy),
                  insured ? Cell(i.date) : Cell(kNull),
                  insured ? Cell(i.date.PlusMonths(60).Plus(-1)) : Cell(kNull),
                  Text(i.remarks),
                  Paise(RoundOff(i.lines))});
  }

  Table& lines =
      out.Create("purdata", {"pd_id",     "invid",     "chlid",    "line",        "item_kind",
                             "veh_id",    "model_id",  "item_id",  "description", "hsn",
                             "qty",       "uom",       "rate",     "amount",      "discount",
                             "taxable",   "cgst_rate", "cgst_amt", "sgst_rate",   "sgst_amt",
                             "igst_rate", "igst_amt",  "netprice", "subsidyamt",  "chlamt"});
  int pd_id = 0;
  for (const Challan& c : d.challans) {
    int number = 0;
    for (const Line& l : c.lines) AddLineRow(lines, pd_id, 0, c.id, ++number, l);
  }
  for (const Invoice& i : d.invoices) {
    int number = 0;
    for (const Line& l : i.lines) AddLineRow(lines, pd_id, i.id, 0, ++number, l);
  }
}

void AddFrontOfficeRows(const Dealership& d, Dataset& out) {
  Table& enquiries = out.Create(
      "enqdata", {"enq_id",       "enq_no",          "enq_date",     "br_id",        "enq_name",
                  "enq_add",      "enq_city",        "enq_mobile",   "enq_model",    "enq_model_id",
                  "enq_color",    "enq_source",      "enq_exec",     "enq_status",   "enq_booking",
                  "enq_bookdate", "enq_bookamt",     "enq_followup", "enq_expected", "enq_finance",
                  "enq_exchange", "enq_lost_reason", "enq_remarks",  "enq_custid",   "enq_invid",
                  "enq_bkstatus", "enq_refunddate"});
  for (const Enquiry& e : d.enquiries) {
    enquiries.Add({Int(e.id),
                   e.num,
                   e.date,
                   Int(e.branch),
                   e.name,
                   e.address,
                   e.city,
                   e.mobile,
                   e.model_name,
                   Int(e.model),
                   e.color,
                   e.source,
                   e.executive,
                   Int(e.status),
                   Int(e.booking),
                   OptionalDay(e.booked_on),
                   e.booking == 1 ? Paise(e.booking_amount) : Cell(kNull),
                   OptionalDay(e.followup),
                   OptionalDay(e.expected),
                   e.finance,
                   e.exchange,
                   Text(e.lost_reason),
                   Text(e.remarks),
                   Id(e.customer),
                   Id(e.invoice),
                   Text(e.booking_status),
                   OptionalDay(e.refunded_on)});
  }

  Table& receipts =
      out.Create("receipt", {"id", "num", "rdate", "br_id", "ptype", "cust_id", "am_id", "pname",
                             "amt", "mode", "chqno", "chqdate", "bank", "refno", "invid", "against",
                             "narration", "cashier"});
  for (const Receipt& r : d.receipts) {
    receipts.Add({Int(r.id), r.num, r.date, Int(r.branch), std::string(1, r.party), Id(r.customer),
                  Id(r.account), r.name, Paise(r.amount), r.mode, Text(r.cheque_no),
                  OptionalDay(r.cheque_date), Text(r.bank), Text(r.ref_no), Id(r.invoice),
                  r.against, r.narration, r.cashier});
  }

  Table& bulk = out.Create("bulkrec", {"id", "num", "bdate", "br_id", "am_id", "amt", "mode",
                                       "chqno", "chqdate", "bank", "refno", "narration"});
  Table& bulk_lines = out.Create("bulkrecdet", {"brid", "line", "invid", "amt", "remarks"});
  for (const BulkReceipt& b : d.bulk_receipts) {
    bulk.Add({Int(b.id), b.num, b.date, Int(b.branch), Int(b.account), Paise(b.Amount()), b.mode,
              Text(b.cheque_no), OptionalDay(b.cheque_date), b.bank, Text(b.ref_no), b.narration});
  }
  for (const BulkReceipt& b : d.bulk_receipts) {
    int line = 0;
    for (const auto& [invoice, amount] : b.lines) {
      const Invoice& inv = d.invoice(invoice);
      bulk_lines.Add({Int(b.id), Int(++line), Int(invoice), Paise(amount),
                      (inv.itype == 'S' ? "Invoice " : "Loan, invoice ") + inv.num});
    }
  }

  Table& temporary = out.Create("tempreg", {"tline", "tno", "tdate", "valid_upto", "invid", "rto",
                                            "reg_state", "fee", "reason", "cert_no"});
  for (const TempRegistration& t : d.temp_registrations) {
    temporary.Add({Int(t.tline), t.num, t.date, t.valid_upto, Int(t.invoice), t.rto, t.state,
                   Paise(t.fee), t.reason, t.certificate});
  }

  Table& plates = out.Create("hsrp", {"hsrp_id", "invid", "order_no", "order_date", "vendor",
                                      "front_laser", "rear_laser", "snap_lock", "fit_date", "fee"});
  for (const HsrpOrder& h : d.hsrp_orders) {
    plates.Add({Int(h.id), Int(h.invoice), h.order_no, h.ordered, h.vendor, h.front, h.rear,
                h.snap_lock, OptionalDay(h.fitted), Paise(h.fee)});
  }

  Table& numbers = out.Create("numbers", {"n"});
  for (int n = 1; n <= 100; ++n) numbers.Add({Int(n)});
}

// The first document that passes the first test any document passes: tests run from the most
// telling kind of document to plain ones, so every seed finds one. None at all is a bug.
template <typename T>
const T& First(const std::vector<T>& items, const std::vector<std::function<bool(const T&)>>& tests,
               const char* what) {
  for (const auto& fits : tests) {
    for (const T& item : items) {
      if (fits(item)) return item;
    }
  }
  throw std::logic_error(std::string("the demo data has no ") + what);
}

// Of the documents that pass "fits", the first with the most lines.
template <typename T>
const T& Largest(const std::vector<T>& items, const std::function<bool(const T&)>& fits,
                 const std::function<size_t(const T&)>& size, const char* what) {
  const T* best = nullptr;
  for (const T& item : items) {
    if (fits(item) && (best == nullptr || size(item) > size(*best))) best = &item;
  }
  if (best == nullptr) throw std::logic_error(std::string("the demo data has no ") + what);
  return *best;
}

std::vector<std::pair<std::string, std::string>> ChooseFacts(const Dealership& d,
                                                             const Options& options) {
  std::vector<std::pair<std::string, std::string>> facts;
  auto add = [&](const std::string& key, const std::string& value) {
    facts.emplace_back(key, value);
  };
  auto add_id = [&](const std::string& key, int id) { add(key, std::to_string(id)); };
  auto category = [&](const Invoice& i) { return d.model(i.units[0].model).category; };
  auto retail = [&](const Invoice& i, Category c) { return i.itype == 'R' && category(i) == c; };
  auto single = [](const Invoice& i) { return i.lines.size() == 1; };
  auto intra = [&](const Invoice& i) { return d.account(i.account).state_code == "27"; };
  auto lines = [](const auto& document) { return document.lines.size(); };
  auto vehicles = [](const auto& document) { return document.vehicles.size(); };
  using InvoiceTest = std::function<bool(const Invoice&)>;
  auto invoice = [&](const std::string& key, const std::vector<InvoiceTest>& tests) {
    add_id(key, First<Invoice>(d.invoices, tests, key.c_str()).id);
  };
  auto largest_invoice = [&](const std::string& key, const InvoiceTest& fits) {
    add_id(key, Largest<Invoice>(d.invoices, fits, lines, key.c_str()).id);
  };

  add("seed", std::to_string(options.seed));
  add_id("firm_id", d.firm.coid);
  add("gatepass", options.gatepass);

  add_id("challan_customer_id",
         Largest<Challan>(
             d.challans, [](const Challan& c) { return c.type == 'C'; }, lines, "customer challan")
             .id);
  add_id("challan_sub_id",
         Largest<Challan>(
             d.challans, [&](const Challan& c) { return c.type == 'S' && c.invoice != 0; }, lines,
             "sub-dealer challan")
             .id);
  add_id(
      "challan_pending_id",
      First<Challan>(d.challans, {[](const Challan& c) { return c.type == 'S' && c.invoice == 0; }},
                     "pending sub-dealer challan")
          .id);
  add_id("challan_missing_id", 99);

  invoice("invoice_id", {[&](const Invoice& i) {
                           return retail(i, Category::kMotorcycle) && single(i) &&
                                  i.financier == 0 && !i.regno.empty();
                         },
                         [&](const Invoice& i) { return retail(i, Category::kMotorcycle); }});
  largest_invoice("invoice_accessories_id",
                  [&](const Invoice& i) { return retail(i, Category::kMotorcycle); });
  invoice("invoice_financed_id",
          {[](const Invoice& i) { return i.financier != 0 && i.challan != 0; },
           [](const Invoice& i) { return i.financier != 0; }});
  invoice("invoice_scooter_id", {[&](const Invoice& i) { return retail(i, Category::kScooter); }});
  invoice("invoice_before_revision_id",
          {[&](const Invoice& i) { return i.itype == 'R' && i.date == kRateRevision.Plus(-1); }});
  invoice("invoice_after_revision_id",
          {[&](const Invoice& i) { return i.itype == 'R' && i.date == kRateRevision; }});
  invoice("invoice_subsidy_id", {[&](const Invoice& i) {
                                   return retail(i, Category::kElectric) && i.Subsidy() > 0 &&
                                          i.date < Day::FromYmd(2025, 4, 1);
                                 },
                                 [&](const Invoice& i) { return i.Subsidy() > 0; }});
  invoice("invoice_null_subsidy_id",
          {[&](const Invoice& i) {
             return retail(i, Category::kMotorcycle) && i.date < Day::FromYmd(2024, 10, 1) &&
                    i.lines.size() >= 2;
           },
           [&](const Invoice& i) { return i.itype == 'R' && i.date < Day::FromYmd(2024, 10, 1); }});
  invoice("hero_invoice_id", {[&](const Invoice& i) {
                                return retail(i, Category::kMotorcycle) && i.financier != 0 &&
                                       i.date >= kRateRevision;
                              },
                              [&](const Invoice& i) {
                                return retail(i, Category::kMotorcycle) && i.date >= kRateRevision;
                              }});
  invoice("hero_subdealer_invoice_id",
          {[&](const Invoice& i) {
             return i.itype == 'S' && category(i) == Category::kMotorcycle && intra(i);
           },
           [&](const Invoice& i) { return i.itype == 'S' && category(i) != Category::kCycle; }});
  largest_invoice("subdealer_invoice_id", [&](const Invoice& i) {
    return i.itype == 'S' && category(i) != Category::kCycle && intra(i);
  });
  largest_invoice("subdealer_igst_invoice_id", [&](const Invoice& i) {
    return i.itype == 'S' && category(i) != Category::kCycle && !intra(i);
  });
  invoice("cycle_invoice_id",
          {[&](const Invoice& i) { return retail(i, Category::kCycle) && i.lines.size() == 2; },
           [&](const Invoice& i) { return retail(i, Category::kCycle); }});
  invoice("cycle_subdealer_invoice_id",
          {[&](const Invoice& i) { return i.itype == 'S' && category(i) == Category::kCycle; }});
  largest_invoice("packing_list_id", [&](const Invoice& i) {
    return i.itype == 'S' && category(i) != Category::kCycle;
  });
  invoice("einvoice_id", {[&](const Invoice& i) {
                            return i.itype == 'S' && !i.irn.empty() && !i.ewb_no.empty() &&
                                   !intra(i);
                          },
                          [](const Invoice& i) { return i.itype == 'S' && !i.irn.empty(); }});
  invoice("einvoice_retail_id",
          {[](const Invoice& i) { return i.itype == 'R' && !i.irn.empty(); }});
  invoice("gatepass_invoice_id", {[&](const Invoice& i) {
                                    return retail(i, Category::kScooter) && single(i) &&
                                           !i.regno.empty();
                                  },
                                  [&](const Invoice& i) { return retail(i, Category::kScooter); }});
  invoice("form22_invoice_id",
          {[&](const Invoice& i) {
             return retail(i, Category::kMotorcycle) && single(i) && !i.regno.empty() &&
                    d.customer(i.customer).relation == "S/O";
           },
           [&](const Invoice& i) { return retail(i, Category::kMotorcycle) && !i.regno.empty(); }});
  add_id("hsrp_invoice_id",
         First<HsrpOrder>(d.hsrp_orders,
                          {[&](const HsrpOrder& h) {
                             return h.fitted.has_value() && d.invoice(h.invoice).temporary;
                           },
                           [](const HsrpOrder& h) { return h.fitted.has_value(); }},
                          "fitted number plate")
             .invoice);
  invoice("sticker_invoice_id", {[&](const Invoice& i) { return retail(i, Category::kElectric); },
                                 [](const Invoice& i) { return !i.regno.empty(); }});
  const TempRegistration& local =
      First<TempRegistration>(d.temp_registrations,
                              {[](const TempRegistration& t) { return t.state == "Maharashtra"; },
                               [](const TempRegistration&) { return true; }},
                              "temporary registration");
  add_id("prorc_invoice_id", local.invoice);
  add_id("temp_tline", local.tline);
  add_id("temp_tline_karnataka",
         First<TempRegistration>(d.temp_registrations,
                                 {[](const TempRegistration& t) { return t.state == "Karnataka"; }},
                                 "temporary registration in Karnataka")
             .tline);

  add_id(
      "receipt_id",
      First<Receipt>(d.receipts,
                     {[](const Receipt& r) { return r.mode == "CASH" && r.against == "BALANCE"; },
                      [](const Receipt& r) { return r.mode == "CASH"; }},
                     "cash receipt")
          .id);
  add_id("receipt_cheque_id",
         First<Receipt>(d.receipts, {[](const Receipt& r) { return r.mode == "CHEQUE"; }},
                        "cheque receipt")
             .id);
  add_id("receipt_finance_id",
         First<Receipt>(d.receipts, {[](const Receipt& r) { return r.mode == "FINANCE"; }},
                        "finance receipt")
             .id);
  // The register's month: the first with a receipt of every mode, else the busiest.
  std::map<Day, std::set<std::string>> modes_by_month;
  std::map<Day, int> receipts_by_month;
  for (const Receipt& r : d.receipts) {
    modes_by_month[r.date.FirstOfMonth()].insert(r.mode);
    ++receipts_by_month[r.date.FirstOfMonth()];
  }
  Day register_month = receipts_by_month.begin()->first;
  for (const auto& [month, count] : receipts_by_month) {
    if (count > receipts_by_month[register_month]) register_month = month;
  }
  for (const auto& [month, modes] : modes_by_month) {
    if (modes.size() == 5) {
      register_month = month;
      break;
    }
  }
  add("receipt_from", register_month.Iso());
  add("receipt_to", register_month.PlusMonths(1).Plus(-1).Iso());
  add_id("bulk_receipt_id",
         Largest<BulkReceipt>(
             d.bulk_receipts,
             [&](const BulkReceipt& b) { return d.account(b.account).group == "FINANCIER"; }, lines,
             "financier's bulk receipt")
             .id);
  add_id("bulk_receipt_subdealer_id",
         Largest<BulkReceipt>(
             d.bulk_receipts,
             [&](const BulkReceipt& b) { return d.account(b.account).group == "SUBDEALER"; }, lines,
             "sub-dealer's bulk receipt")
             .id);

  add("enquiry_from", kFirstDay.Iso());
  add("enquiry_to", kEnquiriesEnd.Iso());
  add("enquiry_month_from", "2024-10-01");
  add("enquiry_month_to", "2024-10-31");

  add_id("purchase_id",
         Largest<Purchase>(
             d.purchases, [](const Purchase& p) { return p.supplier == ids::kVayuMotocorp; },
             vehicles, "purchase from Hosur")
             .id);
  add_id("purchase_intra_id",
         Largest<Purchase>(
             d.purchases, [](const Purchase& p) { return p.supplier == ids::kVayuElectric; },
             vehicles, "purchase from Chakan")
             .id);
  add_id("branch_transfer_id",
         Largest<BranchTransfer>(
             d.transfers, [](const BranchTransfer&) { return true; }, vehicles, "branch transfer")
             .id);
  add_id("vintrf_id", Largest<VehicleTransferNote>(
                          d.transfer_notes, [](const VehicleTransferNote&) { return true; },
                          vehicles, "vehicle transfer note")
                          .id);
  return facts;
}

}  // namespace

DemoData GenerateDealership(const Options& options) {
  Random random(options.seed);
  // A stream of its own, seeded apart from the trade's.
  Random paperwork(options.seed ^ 0x70617065727721ULL);
  Dealership dealership;
  AddMasters(random, dealership);
  AddTrading(random, paperwork, dealership);
  DemoData data;
  AddMasterRows(dealership, options, data.tables);
  AddStockRows(dealership, data.tables);
  AddSalesRows(dealership, data.tables);
  AddFrontOfficeRows(dealership, data.tables);
  data.facts = ChooseFacts(dealership, options);
  Random workshop_random(options.seed ^ 0x776f726b73686f70ULL);
  Workshop workshop;
  AddSpares(dealership, options, workshop_random, workshop, data.tables, data.facts);
  AddJobs(dealership, options, workshop_random, workshop, data.tables, data.facts);
  AddBooks(dealership, options, workshop_random, workshop, data.tables, data.facts);
  AddReturns(dealership, options, workshop_random, workshop, data.tables, data.facts);
  WritePartMaster(workshop);
  return data;
}

}  // namespace vantorel::demo
