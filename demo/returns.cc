// Returns and labels: the pre-GST VAT year, C forms, quotations, the top list, label selections.
//
// The VAT year runs from April 2016 to June 2017, when state VAT gave way to GST: sales of
// vehicles, parts, helmets and cycles at the VAT rates of the time, inter-state sales and
// purchases at the CST rate against Form C, the C forms issued to the manufacturers outside the
// state, and the monthly tax paid by challan. The host's SQL of the returns and label sheets is
// built here as a dealership program builds it and handed out as facts.
#include <algorithm>
#include <cstdio>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <tuple>
#include <variant>
#include <vector>

#include "demo/gst.h"
#include "demo/workshop.h"

namespace vantorel::demo {
namespace {

constexpr Day kVatFirst = Day::FromYmd(2016, 4, 1);
constexpr Day kVatLast = Day::FromYmd(2017, 6, 30);

// Rates in hundredths of a percent.
constexpr int kVatStandard = 1350;  // motor vehicles and their parts
constexpr int kVatHelmets = 1250;   // helmets and accessories
constexpr int kVatCycles = 500;     // bicycles
constexpr int kCst = 200;           // inter-state trade against Form C

int64_t TaxAt(int64_t taxable, int rate) { return (taxable * rate + 5000) / 10000; }

Cell RateCell(int rate) {
  std::string text = std::to_string(rate / 100) + ".";
  const int hundredths = rate % 100;
  text += (hundredths < 10 ? "0" : "") + std::to_string(hundredths);
  return Decimal{text};
}

std::string Digits(Random& random, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += static_cast<char>('0' + random.Below(10));
  return text;
}

Day DayIn(Random& random, Day month) {
  const int last = month.PlusMonths(1).Plus(-1).day();
  return month.Plus(random.Between(0, last - 1));
}

int Quarter(int month) { return month >= 4 ? (month - 4) / 3 + 1 : 4; }

std::string Slashed(Day day) {
  std::string iso = day.Iso();
  std::replace(iso.begin(), iso.end(), '-', '/');
  return iso;
}

struct VatLine {
  Day date;
  char trade = 'L';  // L local, I inter-state
  std::string party, tin, state;
  int account = 0;
  char kind = 'V';  // V vehicles, P parts, A helmets and accessories, C cycles
  std::string description;
  int qty = 1;
  int rate = kVatStandard;
  int64_t taxable = 0;
};

// A model's price in the VAT year: four-fifths of today's value before tax, in whole rupees.
int64_t PriceOf2016(const VehicleModel& model) { return model.base_taxable * 80 / 100 / 100 * 100; }

std::vector<VatLine> DrawSales(const Dealership& d, Random& random) {
  std::vector<const VehicleModel*> motor, cycles;
  for (const VehicleModel& m : d.models) {
    if (m.category == Category::kCycle) {
      cycles.push_back(&m);
    } else if (m.category != Category::kElectric) {
      motor.push_back(&m);
    }
  }
  std::vector<VatLine> lines;
  auto retail = [&](Day month, char kind, int rate) {
    VatLine l;
    l.date = DayIn(random, month);
    l.party = random.Pick(d.customers).name;
    l.state = "Maharashtra";
    l.kind = kind;
    l.rate = rate;
    return l;
  };
  auto vehicles = [&](Day month, int count, char kind, int rate,
                      const std::vector<const VehicleModel*>& models) {
    for (; count > 0; --count) {
      VatLine l = retail(month, kind, rate);
      const VehicleModel& m = *random.Pick(models);
      l.description = m.make + " " + m.Name();
      l.taxable = PriceOf2016(m);
      lines.push_back(l);
    }
  };
  for (Day month = kVatFirst; month <= kVatLast; month = month.PlusMonths(1)) {
    vehicles(month, random.Between(12, 18), 'V', kVatStandard, motor);
    vehicles(month, random.Between(2, 3), 'C', kVatCycles, cycles);
    for (int n = random.Between(5, 8); n > 0; --n) {
      VatLine l = retail(month, 'P', kVatStandard);
      l.description = "Spare parts and lubricants (counter sale)";
      l.taxable = random.Between(6, 90) * 10000;
      lines.push_back(l);
    }
    for (int n = random.Between(2, 4); n > 0; --n) {
      VatLine l = retail(month, 'A', kVatHelmets);
      const Item& item = d.items[random.Below(6)];
      l.description = item.name;
      l.qty = random.Between(1, 2);
      l.taxable = item.base_taxable * 85 / 100 / 100 * 100 * l.qty;
      lines.push_back(l);
    }
    for (int account : {ids::kKrishnaAuto, ids::kSiddhivinayakMotors, ids::kYashAutomobiles,
                        ids::kMalaprabhaMotors}) {
      if (account != ids::kMalaprabhaMotors && random.Percent(40)) continue;
      const Account& a = d.account(account);
      VatLine l;
      l.date = DayIn(random, month);
      l.party = a.name + ", " + a.town;
      l.state = a.state;
      l.account = a.id;
      l.trade = a.state_code == "27" ? 'L' : 'I';
      l.rate = l.trade == 'L' ? kVatStandard : kCst;
      const VehicleModel& m = *random.Pick(motor);
      l.description = m.make + " " + m.Name();
      l.qty = random.Between(2, 6);
      l.taxable = PriceOf2016(m) * 94 / 100 / 100 * 100 * l.qty;
      lines.push_back(l);
    }
  }
  return lines;
}

std::vector<VatLine> DrawPurchases(const Dealership& d, Random& random) {
  std::vector<const VehicleModel*> motor, cycles;
  for (const VehicleModel& m : d.models) {
    if (m.supplier == ids::kVayuMotocorp && m.category != Category::kElectric) motor.push_back(&m);
    if (m.category == Category::kCycle) cycles.push_back(&m);
  }
  std::vector<VatLine> lines;
  auto from = [&](int account, Day month) {
    const Account& a = d.account(account);
    VatLine l;
    l.date = DayIn(random, month);
    l.party = a.name;
    l.state = a.state;
    l.account = a.id;
    l.trade = a.state_code == "27" ? 'L' : 'I';
    return l;
  };
  int index = 0;
  for (Day month = kVatFirst; month <= kVatLast; month = month.PlusMonths(1), ++index) {
    for (int n = 0; n < 2; ++n) {
      VatLine l = from(ids::kVayuMotocorp, month);
      const VehicleModel& m = *random.Pick(motor);
      l.description = m.make + " " + m.Name();
      l.qty = random.Between(8, 16);
      l.rate = kCst;
      l.taxable = PriceOf2016(m) * 88 / 100 / 100 * 100 * l.qty;
      lines.push_back(l);
    }
    if (index % 2 == 0) {
      VatLine l = from(ids::kGangaCycles, month);
      const VehicleModel& m = *random.Pick(cycles);
      l.kind = 'C';
      l.description = m.make + " " + m.Name();
      l.qty = random.Between(10, 20);
      l.rate = kCst;
      l.taxable = PriceOf2016(m) * 85 / 100 / 100 * 100 * l.qty;
      lines.push_back(l);
    }
    VatLine parts = from(ids::kVayuElectric, month);
    parts.kind = 'P';
    parts.description = "Genuine spare parts and lubricants";
    parts.rate = kVatStandard;
    parts.taxable = random.Between(45, 110) * 100000;
    lines.push_back(parts);
    if (index % 3 == 1) {
      VatLine helmets = from(ids::kVayuElectric, month);
      helmets.kind = 'A';
      helmets.description = "Helmets and accessories";
      helmets.rate = kVatHelmets;
      helmets.qty = random.Between(20, 40);
      helmets.taxable = helmets.qty * random.Between(4, 9) * 10000;
      lines.push_back(helmets);
    }
  }
  return lines;
}

std::string Tin(Random& random, const std::string& state_code) {
  return state_code + Digits(random, 9) + (state_code == "27" ? "V" : "");
}

// The rows of the table "name" that an earlier step wrote, read by column name.
class Written {
 public:
  Written(Dataset& tables, const std::string& name) : table_(tables.Find(name)) {
    if (table_ == nullptr) throw std::logic_error("the workshop wrote no " + name);
  }
  const std::vector<std::vector<Cell>>& rows() const { return table_->rows(); }
  const Cell& At(const std::vector<Cell>& row, const std::string& column) const {
    const auto& columns = table_->columns();
    const auto found = std::find(columns.begin(), columns.end(), column);
    if (found == columns.end()) throw std::logic_error(table_->name() + " has no " + column);
    return row[static_cast<size_t>(found - columns.begin())];
  }
  int64_t Integer(const std::vector<Cell>& row, const std::string& column) const {
    const Cell& cell = At(row, column);
    return std::holds_alternative<int64_t>(cell) ? std::get<int64_t>(cell) : 0;
  }
  const std::string& Text(const std::vector<Cell>& row, const std::string& column) const {
    return std::get<std::string>(At(row, column));
  }

 private:
  Table* table_;
};

// "1.5" as hundredths: 150.
int64_t Hundredths(const std::string& digits) {
  const size_t point = digits.find('.');
  int64_t whole = std::stoll(digits.substr(0, point));
  std::string fraction = point == std::string::npos ? "" : digits.substr(point + 1);
  fraction = (fraction + "00").substr(0, 2);
  return whole * 100 + std::stoll(fraction);
}

std::string TwoDecimals(int64_t hundredths) {
  const int64_t rest = hundredths % 100;
  return std::to_string(hundredths / 100) + (rest < 10 ? ".0" : ".") + std::to_string(rest);
}

// The workshop's top lists as its Top List screen works them out from the bills of a period and
// branch: the spare parts by their taxable sale value on job and counter invoices, the
// mechanics by the labour billed on job invoices for their work (the hours from the job's
// labour lines). A line's share is of the whole selection, listed or not.
void AddTopLists(const Workshop& workshop, Dataset& tables) {
  struct Selection {
    int id;
    std::string title;
    char basis;
    int top_n;
  };
  const Day from = Day::FromYmd(2024, 4, 1), to = Day::FromYmd(2025, 3, 31);
  constexpr int kBranch = 1;
  const std::vector<Selection> selections = {{1, "Top 20 spare parts by sale value", 'P', 20},
                                             {2, "Top 5 mechanics by labour billed", 'M', 5}};

  const Written labour(tables, "ws_labour");
  const Written mechanics(tables, "ws_mechanic");
  std::map<std::tuple<int64_t, std::string, int64_t>, int64_t> hours;  // job, code, mechanic
  for (const auto& row : labour.rows()) {
    hours[{labour.Integer(row, "job_srl"), labour.Text(row, "lab_code"),
           labour.Integer(row, "mech_id")}] =
        Hundredths(std::get<Decimal>(labour.At(row, "hours")).digits);
  }
  std::map<std::string, std::string> part_types;
  for (const Part& p : workshop.parts) part_types[p.part_no] = p.type;
  std::map<int64_t, std::pair<std::string, std::string>> mechanic_names;
  for (const auto& row : mechanics.rows()) {
    mechanic_names[mechanics.Integer(row, "mech_id")] = {
        mechanics.Text(row, "mech_name"),
        mechanics.Text(row, "mech_type") == "S" ? "Supervisor" : "Mechanic"};
  }

  struct Ranked {
    std::string code, name, category;
    std::set<int64_t> docs;
    int64_t qty = 0;  // hundredths
    int64_t amount = 0;
  };
  std::map<std::string, Ranked> parts, labour_of;
  // Job and counter invoices have ids of their own ranges, so that a set of ids counts both.
  for (const auto& [head, detail] :
       {std::pair{"ws_jobinv", "ws_jobinvdet"}, std::pair{"ws_counterinv", "ws_counterinvdet"}}) {
    const Written invoices(tables, head);
    const Written lines(tables, detail);
    std::map<int64_t, int64_t> job_of;  // invoices of the selection: id, job
    for (const auto& row : invoices.rows()) {
      const Day day = std::get<Day>(invoices.At(row, "inv_date"));
      if (day < from || day > to || invoices.Integer(row, "br_id") != kBranch) continue;
      job_of[invoices.Integer(row, "id")] = invoices.Integer(row, "job_srl");
    }
    for (const auto& row : lines.rows()) {
      const int64_t invoice = lines.Integer(row, "invid");
      const auto job = job_of.find(invoice);
      if (job == job_of.end()) continue;
      const std::string& code = lines.Text(row, "code");
      const int64_t taxable = std::get<Money>(lines.At(row, "taxable")).paise;
      if (lines.Text(row, "item_kind") == "P") {
        Ranked& r = parts[code];
        r.code = code;
        r.name = lines.Text(row, "description");
        r.category = part_types.count(code) > 0 ? part_types[code] : "";
        r.docs.insert(invoice);
        r.qty += lines.Integer(row, "qty") * 100;
        r.amount += taxable;
      } else if (std::string(head) == "ws_jobinv") {
        const int64_t mechanic = lines.Integer(row, "mech_id");
        char key[16];
        std::snprintf(key, sizeof key, "MEC%03d", static_cast<int>(mechanic));
        Ranked& r = labour_of[key];
        r.code = key;
        r.name = mechanic_names[mechanic].first;
        r.category = mechanic_names[mechanic].second;
        r.docs.insert(invoice);
        const auto worked = hours.find({job->second, code, mechanic});
        r.qty += worked != hours.end() ? worked->second : 0;
        r.amount += taxable;
      }
    }
  }

  Table& lists = tables.Create("ws_toplist", {"td_id", "title", "basis", "from_date", "to_date",
                                              "br_id", "top_n", "prepared_by", "prepared_on"});
  Table& ranks = tables.Create("ws_toplistdet", {"td_id", "rank_no", "code", "name", "category",
                                                 "docs", "qty", "amount", "share"});
  for (const Selection& s : selections) {
    std::vector<Ranked> ranked;
    for (const auto& [code, r] : s.basis == 'P' ? parts : labour_of) ranked.push_back(r);
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const Ranked& a, const Ranked& b) { return a.amount > b.amount; });
    int64_t whole = 0;
    for (const Ranked& r : ranked) whole += r.amount;
    lists.Add({int64_t{s.id}, s.title, std::string(1, s.basis), from, to, int64_t{kBranch},
               int64_t{s.top_n}, "Rajendra Deshmukh (Works Manager)", to.Plus(2)});
    int rank = 0;
    for (const Ranked& r : ranked) {
      if (rank == s.top_n || whole == 0) break;
      const int64_t share = (r.amount * 10000 * 2 + whole) / (whole * 2);  // hundredths of a %
      ranks.Add({int64_t{s.id}, int64_t{++rank}, r.code, r.name,
                 r.category.empty() ? Cell(kNull) : Cell(r.category),
                 static_cast<int64_t>(r.docs.size()), Decimal{TwoDecimals(r.qty)}, Money{r.amount},
                 Decimal{TwoDecimals(share)}});
    }
  }
}

}  // namespace

void AddReturns(const Dealership& d, const Options&, Random& random, Workshop& workshop,
                Dataset& tables, FactList& facts) {
  auto add = [&](const std::string& key, const std::string& value) {
    facts.emplace_back(key, value);
  };
  std::map<int, std::string> tins;
  for (const Account& a : d.accounts) tins[a.id] = Tin(random, a.state_code);

  const std::string firm_tin = Digits(random, 9);
  tables
      .Create("vat_dealer", {"coid", "mvat_tin", "cst_tin", "registered_on", "periodicity",
                             "vat_office", "signatory", "designation"})
      .Add({int64_t{d.firm.coid}, "27" + firm_tin + "V", "27" + firm_tin + "C",
            Day::FromYmd(2006, 4, 1), "Monthly", "Joint Commissioner of Sales Tax, Pune",
            "Rajendra Shivaji Jadhav", "Partner"});

  // Sales, numbered per financial year in date order.
  std::vector<VatLine> sales = DrawSales(d, random);
  std::stable_sort(sales.begin(), sales.end(),
                   [](const VatLine& a, const VatLine& b) { return a.date < b.date; });
  Table& sale_rows =
      tables.Create("vat_sale", {"vs_id", "bill_no", "bill_date", "ret_mm", "ret_yy", "sale_type",
                                 "party_name", "party_tin", "party_state", "item_kind",
                                 "description", "qty", "vat_rate", "taxable", "vat_amt", "total"});
  std::map<std::string, int> serials;
  int id = 0;
  for (const VatLine& l : sales) {
    const std::string year = l.date.FinancialYear();
    char serial[16];
    std::snprintf(serial, sizeof serial, "%04d", ++serials[year]);
    const int64_t tax = TaxAt(l.taxable, l.rate);
    sale_rows.Add({int64_t{++id}, "RI/" + year + "/" + serial, l.date, int64_t{l.date.month()},
                   int64_t{l.date.year()}, std::string(1, l.trade), l.party,
                   l.account ? Cell(tins[l.account]) : Cell(kNull), l.state, std::string(1, l.kind),
                   l.description, int64_t{l.qty}, RateCell(l.rate), Money{l.taxable}, Money{tax},
                   Money{l.taxable + tax}});
  }

  // Purchases, and the C forms that cover the inter-state ones: one per supplier and quarter.
  std::vector<VatLine> purchases = DrawPurchases(d, random);
  std::stable_sort(purchases.begin(), purchases.end(),
                   [](const VatLine& a, const VatLine& b) { return a.date < b.date; });
  struct CForm {
    int account = 0;
    Day from, to;
    int bills = 0;
    int64_t amount = 0;
  };
  std::vector<CForm> cforms;
  for (const VatLine& l : purchases) {
    if (l.trade != 'I') continue;
    const Day from = Day::FromYmd(l.date.year(), (l.date.month() - 1) / 3 * 3 + 1, 1);
    auto it = std::find_if(cforms.begin(), cforms.end(), [&](const CForm& c) {
      return c.account == l.account && c.from == from;
    });
    if (it == cforms.end()) {
      cforms.push_back({l.account, from, from.PlusMonths(3).Plus(-1)});
      it = cforms.end() - 1;
    }
    it->bills += 1;
    it->amount += l.taxable + TaxAt(l.taxable, l.rate);
  }
  std::stable_sort(cforms.begin(), cforms.end(), [](const CForm& a, const CForm& b) {
    return a.from < b.from || (a.from == b.from && a.account < b.account);
  });
  Table& cform_rows =
      tables.Create("vat_cform", {"cf_id", "cform_series", "cform_no", "issue_date", "am_id",
                                  "supplier_name", "supplier_tin", "supplier_state", "period_from",
                                  "period_to", "bills", "amount"});
  int cf_id = 0;
  for (const CForm& c : cforms) {
    ++cf_id;
    const Account& a = d.account(c.account);
    cform_rows.Add({int64_t{cf_id}, "C",
                    "MH/" + c.from.FinancialYear().substr(0, 2) + "/" + Digits(random, 7),
                    c.to.Plus(random.Between(24, 52)), int64_t{a.id}, a.name, tins[a.id], a.state,
                    c.from, c.to, int64_t{c.bills}, Money{c.amount}});
  }
  auto cform_of = [&](const VatLine& l) {
    const Day from = Day::FromYmd(l.date.year(), (l.date.month() - 1) / 3 * 3 + 1, 1);
    for (size_t i = 0; i < cforms.size(); ++i) {
      if (cforms[i].account == l.account && cforms[i].from == from) return static_cast<int>(i) + 1;
    }
    return 0;
  };
  Table& purchase_rows = tables.Create(
      "vat_purchase", {"vp_id", "bill_no", "bill_date", "ret_mm", "ret_yy", "purchase_type",
                       "am_id", "supplier_name", "supplier_tin", "supplier_state", "item_kind",
                       "description", "qty", "tax_rate", "taxable", "tax_amt", "total", "cf_id"});
  id = 0;
  std::map<int, int> bill_serials;
  for (const VatLine& l : purchases) {
    const int64_t tax = TaxAt(l.taxable, l.rate);
    const std::string prefix = l.account == ids::kVayuMotocorp  ? "VMC/HSR/"
                               : l.account == ids::kGangaCycles ? "GCL/LDH/"
                                                                : "VEM/SP/";
    const std::string bill = prefix + l.date.FinancialYear() + "/" +
                             std::to_string(1000 + ++bill_serials[l.account] * 7);
    const int cform = l.trade == 'I' ? cform_of(l) : 0;
    purchase_rows.Add({int64_t{++id}, bill, l.date, int64_t{l.date.month()}, int64_t{l.date.year()},
                       std::string(1, l.trade), int64_t{l.account}, l.party, tins[l.account],
                       l.state, std::string(1, l.kind), l.description, int64_t{l.qty},
                       RateCell(l.rate), Money{l.taxable}, Money{tax}, Money{l.taxable + tax},
                       cform ? Cell(int64_t{cform}) : Cell(kNull)});
  }

  // The tax of each monthly return, paid by challan by the 20th of the next month; November 2016
  // was paid late, with interest at 1.25 % a month.
  Table& payments =
      tables.Create("vat_payment", {"pay_id", "qno", "mm", "yy", "challan_no", "pay_date", "bank",
                                    "vat_amt", "cst_amt", "interest", "total"});
  int pay_id = 0;
  for (Day month = kVatFirst; month <= kVatLast; month = month.PlusMonths(1)) {
    int64_t vat = 0, cst = 0;
    for (const VatLine& l : sales) {
      if (l.date.FirstOfMonth() != month) continue;
      (l.trade == 'L' ? vat : cst) += TaxAt(l.taxable, l.rate);
    }
    for (const VatLine& l : purchases) {
      if (l.date.FirstOfMonth() == month && l.trade == 'L') vat -= TaxAt(l.taxable, l.rate);
    }
    vat = RoundedToRupee(std::max<int64_t>(vat, 0));
    cst = RoundedToRupee(cst);
    const bool late = month == Day::FromYmd(2016, 11, 1);
    const Day paid =
        late ? Day::FromYmd(2016, 12, 28) : month.PlusMonths(1).Plus(random.Between(14, 19));
    const int64_t interest = late ? RoundedToRupee((vat + cst) * 125 / 10000) : 0;
    payments.Add({int64_t{++pay_id}, int64_t{Quarter(month.month())}, int64_t{month.month()},
                  int64_t{month.year()},
                  "MH" + Digits(random, 10) + month.FinancialYear().substr(0, 2) +
                      month.FinancialYear().substr(3, 2),
                  paid, "State Bank of India, Hadapsar Branch", Money{vat}, Money{cst},
                  Money{interest}, Money{vat + cst + interest}});
  }

  // The HSN codes the GST returns describe: the sales side's and the workshop's.
  Table& hsn = tables.Create("gst_hsn", {"hsn", "description", "uqc"});
  for (const auto& [code, text, uqc] :
       std::vector<std::tuple<const char*, const char*, const char*>>{
           {"27101980", "Lubricating oils", "LTR"},
           {"34031900", "Lubricating preparations", "NOS"},
           {"38190010", "Brake fluid", "NOS"},
           {"38200000", "Anti-freezing preparations (coolant)", "LTR"},
           {"40114090", "Tyres for motorcycles", "NOS"},
           {"40115000", "Tyres for bicycles", "NOS"},
           {"40131020", "Inner tubes for motorcycles", "NOS"},
           {"40132000", "Inner tubes for bicycles", "NOS"},
           {"65061010", "Safety headgear (helmets)", "NOS"},
           {"85071000", "Lead-acid storage batteries", "NOS"},
           {"85111000", "Sparking plugs", "NOS"},
           {"85122010", "Lighting equipment for motor vehicles", "NOS"},
           {"85123010", "Horns and sound signalling equipment", "NOS"},
           {"87141090", "Parts and accessories of motorcycles", "NOS"},
           {"87149990", "Parts and accessories of bicycles", "NOS"},
           {"998714", "Maintenance and repair of motorcycles (labour)", "OTH"},
           {"650610", "Safety headgear (helmets)", "NOS"},
           {"871120", "Motorcycles and scooters, 50-250 cc", "NOS"},
           {"871160", "Electric two-wheelers", "NOS"},
           {"871200", "Bicycles, not motorised", "NOS"},
           {"871410", "Parts and accessories of motorcycles", "NOS"},
           {"871499", "Parts and accessories of bicycles", "NOS"}}) {
    hsn.Add({std::string(code), std::string(text), std::string(uqc)});
  }

  add("vat_year_from", kVatFirst.Iso());
  add("vat_year_to", kVatLast.Iso());
  const Day fy_from = Day::FromYmd(2016, 4, 1), fy_to = Day::FromYmd(2017, 3, 31);
  const Day q_from = Day::FromYmd(2016, 10, 1), q_to = Day::FromYmd(2016, 12, 31);
  add("vat_fy_from", fy_from.Iso());
  add("vat_fy_to", fy_to.Iso());
  add("vat_quarter_from", q_from.Iso());
  add("vat_quarter_to", q_to.Iso());
  auto between = [](const char* column, Day from, Day to) {
    return std::string(column) + " >= '" + Slashed(from) + "' and " + column + " <= '" +
           Slashed(to) + "'";
  };
  add("vat23_sql",
      "select party_tin, party_name, party_state, sale_type, count(*) as bills, sum(taxable) as "
      "taxable, sum(vat_amt) as tax, sum(total) as total from vat_sale where " +
          between("bill_date", fy_from, fy_to) +
          " and party_tin is not null group by party_tin, party_name, party_state, sale_type "
          "order by sale_type, party_name");
  add("vat23_sql2",
      "select vat_rate, count(*) as bills, sum(taxable) as taxable, sum(vat_amt) as tax, "
      "sum(total) as total from vat_sale where " +
          between("bill_date", fy_from, fy_to) +
          " and party_tin is null group by vat_rate order by vat_rate desc");
  add("vat24_sql",
      "select supplier_tin, supplier_name, supplier_state, count(*) as bills, sum(taxable) as "
      "taxable, sum(tax_amt) as tax, sum(total) as total from vat_purchase where " +
          between("bill_date", fy_from, fy_to) +
          " and purchase_type = 'L' group by supplier_tin, supplier_name, supplier_state order by "
          "supplier_name");
  add("vat24_sql2",
      "select supplier_tin, supplier_name, supplier_state, count(*) as bills, sum(taxable) as "
      "taxable, sum(tax_amt) as tax, sum(total) as total from vat_purchase where " +
          between("bill_date", fy_from, fy_to) +
          " and purchase_type = 'I' group by supplier_tin, supplier_name, supplier_state order by "
          "supplier_name");
  add("vat18_sql", "select * from vat_sale where " + between("bill_date", q_from, q_to) +
                       " order by bill_date, vs_id");
  add("vat19_sql", "select * from vat_purchase where " + between("bill_date", q_from, q_to) +
                       " order by bill_date, vp_id");
  add("cform_sql", "select * from vat_cform where " + between("period_from", fy_from, fy_to) +
                       " order by supplier_name, period_from");
  add("cform_title", "Issued to suppliers outside Maharashtra");
  add("gst_from", "2025-09-01");
  add("gst_to", "2025-09-30");
  add("vat16_qno", "3");
  add("vat16_mm", "11");
  add("vat16_yy", "2016");

  // Quotations, given over the last quarter of the trading to walk-in customers.
  Table& quotes = tables.Create(
      "quotation",
      {"id",          "qno",        "qdate",      "valid_upto",  "br_id",    "ctitle",
       "cname",       "cadd1",      "ccity",      "cpin",        "cmobile",  "cemail",
       "model_id",    "color_name", "exsh_price", "taxable",     "gst_rate", "gst_amt",
       "reg_charges", "hsrp",       "insurance",  "accessories", "acc_list", "ext_warranty",
       "discount",    "onroad",     "executive",  "finance_note"});
  int quote_id = 2000;
  int quote_with_all = 0;
  for (int n = 0; n < 12; ++n) {
    const Day day = Day::FromYmd(2025, 10, 1).Plus(n * 7 + random.Between(0, 5));
    const Customer& c = d.customers[random.Below(static_cast<int>(d.customers.size()))];
    const VehicleModel& m = d.models[random.Below(static_cast<int>(d.models.size()))];
    if (m.category == Category::kCycle) continue;
    const int rate = GstRate(TaxClassOfHsn(m.hsn), day);
    const int64_t price = d.Price(m.id, day);
    const int64_t taxable = TaxableOf(price, rate);
    const int64_t gst = price - taxable;
    const bool electric = m.category == Category::kElectric;
    // Road tax is 11 % of the value before tax for a petrol two-wheeler and nil for an electric
    // one; the registration, smart card and postage come to Rs. 715.
    const int64_t reg = RoundedToRupee(electric ? 0 : taxable * 11 / 100) + Rs(715);
    const int64_t hsrp = Rs(452);
    const int64_t insurance = Rs(random.Between(48, 79) * 100 + 57);
    const bool with_accessories = random.Percent(70);
    const int64_t accessories =
        with_accessories ? Rs(random.Pick(std::vector<int>{1180, 1570, 2260})) : 0;
    const std::string acc_list = accessories == Rs(1180)   ? "Helmet ISI half face, saree guard"
                                 : accessories == Rs(1570) ? "Helmet ISI full face, seat cover"
                                 : accessories == Rs(2260)
                                     ? "Helmet ISI full face, crash guard, mobile holder"
                                     : "";
    const int64_t warranty = random.Percent(50) ? Rs(1299) : 0;
    const int64_t discount = random.Percent(40) ? Rs(random.Between(5, 15) * 100) : 0;
    const int64_t onroad = price + reg + hsrp + insurance + accessories + warranty - discount;
    ++quote_id;
    if (!quote_with_all && accessories && warranty && discount) quote_with_all = quote_id;
    char number[16];
    std::snprintf(number, sizeof number, "%04d", quote_id - 2000 + 36);
    quotes.Add({int64_t{quote_id},
                "QT/" + day.FinancialYear() + "/" + number,
                day,
                day.Plus(15),
                int64_t{c.branch},
                c.title,
                c.name,
                c.add1,
                c.city,
                c.pin,
                c.mobile,
                c.email.empty() ? Cell(kNull) : Cell(c.email),
                int64_t{m.id},
                d.color(m.colors.front()).name,
                Money{price},
                Money{taxable},
                Decimal{std::to_string(rate) + ".00"},
                Money{gst},
                Money{reg},
                Money{hsrp},
                Money{insurance},
                Money{accessories},
                acc_list.empty() ? Cell(kNull) : Cell(acc_list),
                Money{warranty},
                Money{discount},
                Money{onroad},
                random.Pick(d.branch(c.branch).executives),
                random.Percent(50) ? Cell("Loan up to 85 % of the on-road price through Jansewa "
                                          "Finance; EMI on request")
                                   : Cell(kNull)});
  }
  add("quotation_id", std::to_string(quote_with_all ? quote_with_all : 2001));

  AddTopLists(workshop, tables);
  add("toplist_id", "1");
  add("toplist_mechanics_id", "2");

  // The spares bill with the most lines, whose parts the store labels as they are put away.
  int label_bill = 0;
  for (const Table& table : tables.tables()) {
    if (table.name() != "ws_purchasedet") continue;
    std::map<int64_t, int> lines_of;
    for (const std::vector<Cell>& row : table.rows()) ++lines_of[std::get<int64_t>(row[0])];
    int most = 0;
    for (const auto& [bill, count] : lines_of) {
      if (count > most) most = count, label_bill = static_cast<int>(bill);
    }
  }
  const std::string parts_columns =
      "select p.part_no, p.part_desc, p.part_mrp, p.part_uqc, p.part_location from ws_partmaster p "
      "join ws_purchasedet d on d.part_id = p.part_id where d.pu_id = " +
      std::to_string(label_bill);
  add("parts_qr_sql", parts_columns + " order by d.line");
  add("parts_qr_roll_sql", parts_columns + " and d.line <= 3 order by d.line");

  // Label selections: the vehicles of the largest purchase, received on one truck, for the chassis
  // labels; the first four of them for a roll.
  const Purchase* largest = &d.purchases.front();
  for (const Purchase& p : d.purchases) {
    if (p.vehicles.size() > largest->vehicles.size()) largest = &p;
  }
  const std::string chassis_columns =
      "select v.veh_id, v.chassis, v.engine, m.model, m.variant, k.color_name as color, "
      "v.mfg_month, v.mfg_year from vehicle v join vehmodel m on m.model_id = v.model_id join "
      "color k on k.color_id = v.color_id where ";
  add("chassis_qr_sql",
      chassis_columns + "v.purid = " + std::to_string(largest->id) + " order by v.chassis");
  std::string few;
  for (size_t i = 0; i < 4 && i < largest->vehicles.size(); ++i) {
    few += (few.empty() ? "" : ", ") + std::to_string(largest->vehicles[i]);
  }
  add("chassis_qr_roll_sql", chassis_columns + "v.veh_id in (" + few + ") order by v.chassis");
}

}  // namespace vantorel::demo
