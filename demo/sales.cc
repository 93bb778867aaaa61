// Two years of trading at the demo dealership, built in the order the business runs: sales are
// planned first (retail, sub-dealer, delivery challans), then the vehicles they need are bought
// from the manufacturers and moved to the branches, the documents are priced at the GST rates of
// their dates, and finally registrations, payments and enquiries are recorded.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <map>
#include <set>
#include <stdexcept>

#include "demo/entities.h"
#include "demo/gst.h"
#include "demo/identifiers.h"
#include "demo/random.h"
#include "demo/rows.h"

namespace vantorel::demo {
namespace {

// Months from April 2024 (0) to December 2025 (20), weighted by how the trade sells: Gudi
// Padwa, Akshaya Tritiya, Dussehra and Diwali bring buyers; the monsoon keeps them away.
const std::vector<int> kMonthWeights = {7, 4, 4, 4, 5, 5, 12, 9,  5, 5, 5,
                                        8, 7, 5, 4, 4, 6, 10, 14, 8, 5};

Day MonthStart(int index) { return Day::FromYmd(2024 + (index + 3) / 12, (index + 3) % 12 + 1, 1); }
int MonthIndex(Day day) { return (day.year() - 2024) * 12 + day.month() - 4; }

std::string Padded(int number, int width) {
  std::string text = std::to_string(number);
  return std::string(static_cast<size_t>(std::max(0, width - static_cast<int>(text.size()))), '0') +
         text;
}

// How each manufacturer bills, ships and numbers its vehicles.
struct Factory {
  int transit_days;
  const char* bill_prefix;
  const char* transporter;
  const char* truck_prefix;  // where the carrier's trucks are registered
  const char* wmi;           // world manufacturer identifier: the first three VIN characters
  char plant;                // the VIN's plant code
};

const Factory& FactoryOf(int supplier) {
  static const Factory kHosur{4, "VMC/HSR/", "Southern Roadways Pvt Ltd", "TN70", "MDV", 'H'};
  static const Factory kChakan{1, "VEM/CKN/", "Vayu Electric own carrier", "MH14", "MDE", 'C'};
  static const Factory kLudhiana{6, "GCL/LDH/", "Punjab Golden Transport Co.", "PB10", "MDG", 'L'};
  return supplier == ids::kVayuMotocorp   ? kHosur
         : supplier == ids::kVayuElectric ? kChakan
                                          : kLudhiana;
}

// House and street, then the locality when there is one: what an enquiry slip notes.
std::string StreetAddress(const Customer& c) {
  return c.add3.empty() ? c.add1 : c.add1 + ", " + c.add3;
}

// Document numbers run per series and financial year: "VSI/24-25/0007".
class Numbering {
 public:
  std::string Next(const std::string& series, Day day, int width) {
    const std::string fy = day.FinancialYear();
    return series + "/" + fy + "/" + Padded(++counters_[series + fy], width);
  }

 private:
  std::map<std::string, int> counters_;
};

class Trading {
 public:
  Trading(Random& random, Random& paperwork, Dealership& d)
      : random_(random), paperwork_(paperwork), d_(d) {
    for (const Customer& c : d_.customers) mobiles_.insert(c.mobile);
  }

  void Run() {
    PlanRetailSales();
    PlanSubDealerSales();
    NumberSales();
    AssignVehicles();
    BuyVehicles();
    MoveToBranches();
    PriceDocuments();
    IssueEInvoices();
    IssueEWayBills();
    RegisterVehicles();
    CollectPayments();
    RecordEnquiries();
    WriteTransferNotes();
  }

 private:
  Day SaleDay() {
    const int month = random_.Weighted(kMonthWeights);
    const Day first = MonthStart(month);
    const int days = MonthStart(month + 1).DaysSince(first);
    // September 2025 sold mostly after the rate cut of the 22nd, the first day of Navratri.
    if (first == Day::FromYmd(2025, 9, 1) && random_.Percent(70)) {
      return Day::FromYmd(2025, 9, random_.Between(22, 30));
    }
    return first.Plus(random_.Below(days));
  }

  int PickModel(Category category) {
    std::vector<int> ids, weights;
    static const std::map<int, int> kPopularity = {
        {1, 6},  {2, 10}, {3, 12}, {4, 10}, {5, 9},  {6, 8},  {7, 4},  {8, 3}, {9, 10},
        {10, 8}, {11, 7}, {12, 5}, {13, 6}, {14, 4}, {15, 5}, {16, 3}, {17, 4}};
    for (const VehicleModel& m : d_.models) {
      if (m.category != category) continue;
      ids.push_back(m.id);
      weights.push_back(kPopularity.at(m.id));
    }
    return ids[static_cast<size_t>(random_.Weighted(weights))];
  }

  SaleUnit Unit(int model) { return {model, random_.Pick(d_.model(model).colors), 0}; }

  std::string Executive(int branch) { return random_.Pick(d_.branch(branch).executives); }

  void PlanRetail(const Customer& customer, Category category, std::optional<Day> day,
                  std::optional<int> model) {
    Invoice inv;
    inv.plan = ++plans_;
    inv.itype = 'R';
    inv.customer = customer.id;
    inv.branch = customer.branch;
    inv.date = day ? *day : SaleDay();
    inv.units = {Unit(model ? *model : PickModel(category))};
    inv.executive = Executive(inv.branch);
    inv.pos_state = "Maharashtra";
    inv.pos_code = "27";
    const bool motor = category != Category::kCycle;
    if (motor) {
      if (random_.Percent(35)) {
        const int helmet = random_.Percent(60) ? ids::kHalfHelmet : ids::kFullHelmet;
        inv.accessories.push_back({helmet, random_.Percent(25) ? 2 : 1});  // one for the pillion
      }
      if (category != Category::kElectric) {
        if (random_.Percent(20)) inv.accessories.push_back({ids::kCrashGuard, 1});
        if (customer.title != "Mr" && random_.Percent(60)) {
          inv.accessories.push_back({ids::kSareeGuard, 1});
        }
        if (random_.Percent(10)) inv.accessories.push_back({ids::kSeatCover, 1});
      }
      if (random_.Percent(8)) inv.accessories.push_back({ids::kMobileHolder, 1});
      // Dussehra and Diwali, 2024 and 2025, bring the biggest discounts.
      const int month = MonthIndex(inv.date);
      const bool festive = month == 6 || month == 7 || month == 17 || month == 18;
      if (random_.Percent(festive ? 55 : 25)) {
        inv.discount = Rs(500 * random_.Between(1, festive ? 6 : 3));
      }
    } else if (random_.Percent(50)) {
      inv.accessories.push_back({ids::kFrontBasket + random_.Below(3), 1});
    }
    if (motor && !customer.business) {
      if (random_.Percent(45)) {
        inv.financier = ids::kJansevaFinance + random_.Weighted({30, 25, 15, 15, 15});
        inv.remarks = "Hypothecated to " + d_.account(inv.financier).name;
      }
      const bool on_challan = random_.Percent(inv.financier != 0 ? 90 : 55);
      if (on_challan && inv.date.Plus(-4) > kFirstDay) {
        Challan chl;
        chl.plan = inv.plan;
        chl.type = 'C';
        chl.date = inv.date.Plus(-random_.Between(1, 4));
        chl.branch = inv.branch;
        chl.customer = customer.id;
        chl.units = inv.units;
        chl.accessories = inv.accessories;
        chl.discount = inv.discount;
        chl.prepared_by = inv.executive;
        chl.remarks = inv.financier != 0 ? "Delivered on challan; invoice on receipt of the DO"
                                         : "Delivered on challan; invoice after payment clears";
        d_.challans.push_back(chl);
      }
      if (random_.Percent(inv.financier != 0 ? 90 : 65)) {
        const Day delivered = on_challan ? inv.date.Plus(-5) : inv.date;
        inv.booking_date = delivered.Plus(-random_.Between(3, 20));
        inv.booking_amount = Rs(500 * random_.Between(2, 10));
      }
    }
    d_.invoices.push_back(inv);
  }

  void PlanRetailSales() {
    std::vector<const Customer*> people, firms;
    for (const Customer& c : d_.customers) (c.business ? firms : people).push_back(&c);
    const std::vector<Category> categories = {Category::kMotorcycle, Category::kScooter,
                                              Category::kElectric, Category::kCycle};
    for (size_t i = 0; i < people.size(); ++i) {
      Category category = categories[static_cast<size_t>(random_.Weighted({45, 30, 10, 15}))];
      if (people[i]->state_code != "27") category = Category::kMotorcycle;
      std::optional<Day> day;
      // Two sales either side of the GST revision, so both rates show on the same model.
      if (i == 0) day = kRateRevision.Plus(-1);
      if (i == 1) day = kRateRevision;
      if (i < 2) {
        PlanRetail(*people[i], Category::kMotorcycle, day, ids::kSprintDrum);
        continue;
      }
      PlanRetail(*people[i], category, day, std::nullopt);
    }
    // Households come back for a child's cycle or a second scooter.
    for (int i = 0; i < 26; ++i) {
      const Customer& c = *random_.Pick(people);
      const Category category = categories[static_cast<size_t>(random_.Weighted({15, 25, 0, 60}))];
      PlanRetail(c, category, std::nullopt,
                 category == Category::kCycle && random_.Percent(50)
                     ? std::optional<int>(ids::kKidsCycle)
                     : std::nullopt);
    }
    // Fleet buyers: couriers on scooters and e-scooters, a dairy's collection motorcycles and a
    // school's cycles.
    const struct {
      int customer, count;
      std::vector<int> models;
    } fleets[] = {
        {ids::kSwiftParcel, 10, {ids::kEvoltS, ids::kEvoltX}},
        {ids::kKrushidhanDairy, 8, {ids::kSarathiSelf, ids::kSprintDrum, ids::kToofanDrum}},
        {ids::kOmSaiCourier, 8, {ids::kSakhiStandard, ids::kUrjaDrum}},
        {ids::kDnyangangaSchool, 4, {ids::kRoadster, ids::kTrail}}};
    for (const auto& fleet : fleets) {
      for (int i = 0; i < fleet.count; ++i) {
        const int model = random_.Pick(fleet.models);
        PlanRetail(d_.customer(fleet.customer), d_.model(model).category, std::nullopt, model);
      }
    }
  }

  void PlanSubDealerSales() {
    const std::vector<int> dealers = {ids::kKrishnaAuto,     ids::kSiddhivinayakMotors,
                                      ids::kYashAutomobiles, ids::kMalaprabhaMotors,
                                      ids::kCoastalMotors,   ids::kNavkarAutomobiles};
    const std::vector<int> cycle_dealers = {ids::kKrishnaAuto, ids::kYashAutomobiles,
                                            ids::kMalaprabhaMotors};
    const std::vector<Category> motor = {Category::kMotorcycle, Category::kScooter,
                                         Category::kElectric};
    for (int i = 0; i < 38; ++i) {
      const bool cycles = i < 8;
      Invoice inv;
      inv.plan = ++plans_;
      inv.itype = 'S';
      inv.account = cycles ? random_.Pick(cycle_dealers)
                           : dealers[static_cast<size_t>(random_.Weighted({8, 7, 6, 6, 5, 6}))];
      inv.date = SaleDay();
      const int count = cycles ? random_.Between(4, 8) : random_.Between(2, 5);
      for (int u = 0; u < count; ++u) {
        const Category category =
            cycles ? Category::kCycle : motor[static_cast<size_t>(random_.Weighted({60, 32, 8}))];
        inv.units.push_back(Unit(PickModel(category)));
      }
      PlanDispatch(inv);
      if (!cycles && random_.Percent(65) && inv.date.Plus(-6) > kFirstDay) {
        Challan chl = SubDealerChallan(inv.account, inv.date.Plus(-random_.Between(1, 5)));
        chl.plan = inv.plan;
        chl.units = inv.units;
        chl.remarks = "Dispatched on challan; invoice to follow";
        d_.challans.push_back(chl);
      }
      d_.invoices.push_back(inv);
    }
    // Vehicles sent on approval in the last weeks, not yet invoiced.
    for (int i = 0; i < 8; ++i) {
      const int dealer = dealers[static_cast<size_t>(random_.Below(6))];
      Challan chl =
          SubDealerChallan(dealer, Day::FromYmd(2025, 11, 15).Plus(random_.Between(0, 43)));
      const int count = random_.Between(2, 4);
      for (int u = 0; u < count; ++u) {
        chl.units.push_back(
            Unit(PickModel(random_.Percent(60) ? Category::kMotorcycle : Category::kScooter)));
      }
      chl.remarks = "Sent on approval; to be invoiced on confirmation";
      d_.challans.push_back(chl);
    }
  }

  Challan SubDealerChallan(int account, Day day) {
    Challan chl;
    chl.type = 'S';
    chl.account = account;
    chl.date = day;
    chl.prepared_by = "Vikas Deshpande";
    chl.transporter =
        random_.Pick(std::vector<std::string>{"Shree Ganesh Roadlines", "Deccan Carriers"});
    chl.truck = "MH12" + random_.Code(2, 4);
    return chl;
  }

  void PlanDispatch(Invoice& inv) {
    const Account& dealer = d_.account(inv.account);
    inv.executive = "Vikas Deshpande";
    inv.pos_state = dealer.state;
    inv.pos_code = dealer.state_code;
    inv.transporter =
        random_.Pick(std::vector<std::string>{"Shree Ganesh Roadlines", "Deccan Carriers"});
    inv.lr_no = (inv.transporter[0] == 'S' ? "SGR/" : "DC/") + random_.Digits(5);
    inv.truck = "MH12" + random_.Code(2, 4);
  }

  // Orders challans and invoices by date and gives them their ids and numbers.
  void NumberSales() {
    std::stable_sort(d_.challans.begin(), d_.challans.end(),
                     [](const Challan& a, const Challan& b) { return a.date < b.date; });
    std::stable_sort(d_.invoices.begin(), d_.invoices.end(),
                     [](const Invoice& a, const Invoice& b) { return a.date < b.date; });
    Numbering numbers;
    std::map<int, Challan*> challan_of_plan;
    for (size_t i = 0; i < d_.challans.size(); ++i) {
      Challan& chl = d_.challans[i];
      chl.id = 101 + static_cast<int>(i);
      chl.num = numbers.Next("DC", chl.date, 4);
      chl.gate_pass = numbers.Next("GP", chl.date, 4);
      if (chl.plan != 0) challan_of_plan[chl.plan] = &chl;
    }
    for (size_t i = 0; i < d_.invoices.size(); ++i) {
      Invoice& inv = d_.invoices[i];
      inv.id = 201 + static_cast<int>(i);
      const bool cycles = d_.model(inv.units[0].model).category == Category::kCycle;
      inv.num = numbers.Next(inv.itype == 'S' ? "SDI" : cycles ? "CSI" : "VSI", inv.date, 4);
      const auto found = challan_of_plan.find(inv.plan);
      if (found != challan_of_plan.end()) {
        inv.challan = found->second->id;
        found->second->invoice = inv.id;
      }
    }
    // Booking numbers follow the booking dates.
    std::vector<Invoice*> booked;
    for (Invoice& inv : d_.invoices) {
      if (inv.booking_date) booked.push_back(&inv);
    }
    std::stable_sort(booked.begin(), booked.end(), [](const Invoice* a, const Invoice* b) {
      return *a->booking_date < *b->booking_date;
    });
    for (Invoice* inv : booked) inv->booking_no = numbers.Next("BK", *inv->booking_date, 4);
  }

  int NewVehicle(const SaleUnit& unit, int branch, Day need, const char* status) {
    Vehicle v;
    v.id = static_cast<int>(d_.vehicles.size()) + 1;
    v.model = unit.model;
    v.color = unit.color;
    v.branch = branch;
    v.need = need;
    v.status = status;
    d_.vehicles.push_back(v);
    return v.id;
  }

  // Every unit delivered gets a vehicle; a challan and the invoice that bills it share theirs.
  void AssignVehicles() {
    for (Challan& chl : d_.challans) {
      for (SaleUnit& unit : chl.units) {
        unit.vehicle =
            NewVehicle(unit, chl.branch, chl.date, chl.invoice != 0 ? "SOLD" : "CHALLAN");
      }
    }
    for (Invoice& inv : d_.invoices) {
      if (inv.challan != 0) {
        inv.units = d_.challan(inv.challan).units;
        continue;
      }
      for (SaleUnit& unit : inv.units)
        unit.vehicle = NewVehicle(unit, inv.branch, inv.date, "SOLD");
    }
    // Stock on hand at the end of December 2025.
    for (int i = 0; i < 30; ++i) {
      const Category category = std::vector<Category>{
          Category::kMotorcycle, Category::kScooter, Category::kElectric,
          Category::kCycle}[static_cast<size_t>(random_.Weighted({45, 30, 10, 15}))];
      const SaleUnit unit = Unit(PickModel(category));
      const int branch = 1 + random_.Weighted({70, 15, 15});
      NewVehicle(unit, branch, Day::FromYmd(2025, 12, random_.Between(1, 31)), "STOCK");
    }
  }

  // Vayu Motocorp bills a month's vehicles at a time, the e-scooter plant and the cycle maker
  // two months' worth. Chassis and engine numbers run in the order the vehicles were made.
  void BuyVehicles() {
    std::map<std::pair<int, int>, std::vector<int>> lots;  // (supplier, first month) -> vehicles
    for (const Vehicle& v : d_.vehicles) {
      const int supplier = d_.model(v.model).supplier;
      const int month = MonthIndex(v.need);
      lots[{supplier, supplier == ids::kVayuMotocorp ? month : month - month % 2}].push_back(v.id);
    }
    struct Lot {
      int supplier;
      Day bill;
      std::vector<int> vehicles;
    };
    std::vector<Lot> ordered;
    ordered.reserve(lots.size());
    for (const auto& [key, vehicles] : lots) {
      ordered.push_back(
          {key.first, MonthStart(key.second).Plus(-random_.Between(10, 14)), vehicles});
    }
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const Lot& a, const Lot& b) { return a.bill < b.bill; });

    Numbering numbers;
    std::map<int, int> bill_serial = {
        {ids::kVayuMotocorp, 41200}, {ids::kVayuElectric, 2300}, {ids::kGangaCycles, 8800}};
    for (size_t i = 0; i < ordered.size(); ++i) {
      const Lot& lot = ordered[i];
      const Account& supplier = d_.account(lot.supplier);
      Purchase p;
      p.id = 801 + static_cast<int>(i);
      p.supplier = lot.supplier;
      p.bill_date = lot.bill;
      const Factory& factory = FactoryOf(lot.supplier);
      p.received = lot.bill.Plus(factory.transit_days);
      bill_serial[lot.supplier] += random_.Between(40, 400);
      p.bill_no = factory.bill_prefix + lot.bill.FinancialYear() + "/" +
                  Padded(bill_serial[lot.supplier], 6);
      p.grn_no = numbers.Next("GRN", p.received, 3);
      p.transporter = factory.transporter;
      p.lr_no = random_.Digits(7);
      p.truck = factory.truck_prefix + random_.Code(2, 4);
      p.ewb_no = "3" + random_.Digits(11);
      p.vehicles = lot.vehicles;
      for (int id : lot.vehicles) {
        Vehicle& v = d_.vehicle(id);
        v.purchase = p.id;
        v.received = p.received;
        v.made = p.bill_date.Plus(-random_.Between(7, 40));
      }
      for (int id : lot.vehicles) {
        Vehicle& v = d_.vehicle(id);
        const VehicleModel& m = d_.model(v.model);
        const int margin = m.category == Category::kCycle      ? 12
                           : m.category == Category::kElectric ? 7
                                                               : 6;
        const int64_t dealer_price = d_.Price(m.id, p.bill_date) * (100 - margin) / 100 / 100 * 100;
        const int rate = GstRate(TaxClassOfHsn(m.hsn), p.bill_date);
        Line line;
        line.vehicle = id;
        line.model = m.id;
        line.hsn = m.hsn;
        const LineTax whole = TaxForWholeRupees(dealer_price, rate, supplier.inter_state());
        line.inclusive = whole.net;
        line.rate = whole.taxable;
        line.amount = line.rate;
        Tax(line, line.amount, rate, supplier.inter_state());
        p.lines.push_back(line);
        v.cost = line.net;
      }
      CheckRoundOff(p.lines, p.Total(), "purchase " + p.bill_no);
      d_.purchases.push_back(p);
    }
    NumberVehicles();
  }

  void NumberVehicles() {
    std::vector<Vehicle*> order;
    for (Vehicle& v : d_.vehicles) order.push_back(&v);
    std::stable_sort(order.begin(), order.end(),
                     [](const Vehicle* a, const Vehicle* b) { return a->made < b->made; });
    std::map<int, int> chassis_serial = {{ids::kVayuMotocorp, 140000 + random_.Below(20000)},
                                         {ids::kVayuElectric, 20000 + random_.Below(5000)},
                                         {ids::kGangaCycles, 310000 + random_.Below(40000)}};
    std::map<std::string, int> engine_serial;
    for (Vehicle* v : order) {
      const VehicleModel& m = d_.model(v->model);
      const char year = "PRSTV"[v->made.year() - 2023];  // VIN model-year letters 2023 to 2027
      const char month = "ABCDEFGHJKLM"[v->made.month() - 1];
      chassis_serial[m.supplier] += random_.Between(3, 40);
      const Factory& factory = FactoryOf(m.supplier);
      std::string vin = std::string(factory.wmi) + m.vds + "0" + year + factory.plant +
                        Padded(chassis_serial[m.supplier], 6);
      vin[8] = VinCheckDigit(vin);
      v->chassis = vin;
      if (m.category == Category::kCycle) {
        v->kit = m.id == ids::kKidsCycle ? "Owner's manual, Bell, Reflectors, Trainer wheels"
                                         : "Owner's manual, Bell, Reflectors";
        continue;
      }
      int& serial =
          engine_serial.try_emplace(m.engine_prefix, 10000 + random_.Below(20000)).first->second;
      serial += random_.Between(1, 15);
      v->engine = m.engine_prefix + year + month + Padded(serial, 5);
      v->key_no = random_.Code(1, 3);
      if (m.category == Category::kElectric) {
        v->battery_no =
            "LFP" + m.variant.substr(0, 1) + m.variant.substr(2, 1) + year + random_.Digits(7);
        v->charger_no = "VCH" + random_.Digits(8);
        v->kit =
            "Portable charger, Rear-view mirrors (2), Owner's manual, Service booklet, Keys (2)";
      } else {
        v->battery_no = "UP5L" + std::to_string(v->made.year() % 100) + random_.Digits(6);
        v->kit =
            "Tool kit, First-aid kit, Rear-view mirrors (2), Owner's manual, Service booklet, "
            "Keys (2)";
      }
    }
  }

  // Branches do not buy from the manufacturers: Hadapsar sends each branch its vehicles from
  // every lot that arrives.
  void MoveToBranches() {
    std::map<std::pair<int, int>, std::vector<int>> loads;  // (purchase, branch) -> vehicles
    for (const Vehicle& v : d_.vehicles) {
      if (v.branch != 1) loads[{v.purchase, v.branch}].push_back(v.id);
    }
    for (const auto& [key, vehicles] : loads) {
      BranchTransfer t;
      t.date = d_.vehicle(vehicles[0]).received.Plus(random_.Between(1, 2));
      t.to_branch = key.second;
      t.vehicles = vehicles;
      t.vehicle_no = "MH12" + random_.Code(2, 4);
      t.driver =
          random_.Pick(std::vector<std::string>{"Balu Shelar", "Rajesh Ghule", "Ashok Bhise"});
      t.remarks = "Stock transfer to " + d_.branch(t.to_branch).name;
      d_.transfers.push_back(t);
    }
    std::stable_sort(
        d_.transfers.begin(), d_.transfers.end(),
        [](const BranchTransfer& a, const BranchTransfer& b) { return a.date < b.date; });
    Numbering numbers;
    for (size_t i = 0; i < d_.transfers.size(); ++i) {
      d_.transfers[i].id = 401 + static_cast<int>(i);
      d_.transfers[i].num = numbers.Next("BT", d_.transfers[i].date, 3);
    }
  }

  // Taxes "line" at "rate" on "taxable": each tax is the rate on the taxable value, to the paisa.
  static void Tax(Line& line, int64_t taxable, int rate, bool inter_state) {
    const LineTax tax = TaxOn(taxable, rate, inter_state);
    line.taxable = tax.taxable;
    line.gst_rate = rate;
    line.inter_state = inter_state;
    line.cgst = tax.cgst;
    line.sgst = tax.sgst;
    line.igst = tax.igst;
    line.net = tax.net;
  }

  // A document's lines, each taxed on its own, add up to within a few paise of the prices they
  // were worked back from; rounding to whole rupees must bring the total back to those prices.
  static void CheckRoundOff(const std::vector<Line>& lines, int64_t total,
                            const std::string& what) {
    if (total != LinesInclusive(lines)) {
      throw std::logic_error(what + ": the round-off does not bring the lines to their prices");
    }
  }

  // Prices are quoted with GST; the line shows the value before tax (the list value and the
  // discount each worked back from the quoted amounts) and the tax on what is left.
  Line VehicleLine(const SaleUnit& unit, Day day, int64_t discount, bool inter_state,
                   bool to_sub_dealer, bool subsidised) {
    const VehicleModel& m = d_.model(unit.model);
    int64_t price = d_.Price(m.id, day);
    // Sub-dealers buy 4.5% below the ex-showroom price, rounded to ten rupees.
    if (to_sub_dealer) price = (price * 955 / 1000 + 500) / 1000 * 1000;
    const int rate = GstRate(TaxClassOfHsn(m.hsn), day);
    Line line;
    line.kind = 'V';
    line.vehicle = unit.vehicle;
    line.model = m.id;
    line.description = m.Name() + " (" + d_.color(unit.color).name + ")";
    line.hsn = m.hsn;
    const LineTax whole = TaxForWholeRupees(price - discount, rate, inter_state);
    line.inclusive = whole.net;
    line.amount = discount == 0 ? whole.taxable : TaxableOf(price, rate);
    line.rate = line.amount;
    line.discount = line.amount - whole.taxable;
    Tax(line, whole.taxable, rate, inter_state);
    // The EV subsidy (₹5,000 a kWh up to ₹10,000 in FY 2024-25, ₹5,000 from April 2025) goes
    // to private buyers; other vehicle lines carry 0 since the subsidy column came in with
    // PM E-DRIVE in October 2024, and null before.
    if (m.category == Category::kElectric && subsidised) {
      line.subsidy = Rs(day < Day::FromYmd(2025, 4, 1) ? 10000 : 5000);
    } else if (day >= Day::FromYmd(2024, 10, 1)) {
      line.subsidy = 0;
    }
    return line;
  }

  Line AccessoryLine(const SaleAccessory& accessory, Day day) {
    const Item& item = d_.item(accessory.item);
    const int rate = GstRate(TaxClassOfHsn(item.hsn), day);
    const int64_t mrp = InclusiveRupees(item.base_taxable, rate);
    Line line;
    line.kind = 'A';
    line.item = item.id;
    line.description = item.name;
    line.hsn = item.hsn;
    line.qty = accessory.qty;
    // The unit rate whose quantity's taxes come to whole rupees, nearest the price.
    line.rate = TaxableOf(mrp, rate);
    int64_t best_miss = -1;
    for (int64_t step = 0; step <= 300 && best_miss != 0; ++step) {
      for (const int64_t unit : {TaxableOf(mrp, rate) - step, TaxableOf(mrp, rate) + step}) {
        const LineTax tax = TaxOn(accessory.qty * unit, rate, false);
        const int64_t miss = std::abs(tax.net - accessory.qty * mrp);
        if (tax.net % 100 == 0 && (best_miss < 0 || miss < best_miss)) {
          line.rate = unit;
          best_miss = miss;
        }
      }
    }
    line.amount = accessory.qty * line.rate;
    Tax(line, line.amount, rate, false);
    line.inclusive = line.net;
    return line;
  }

  std::vector<Line> PriceLines(const std::vector<SaleUnit>& units,
                               const std::vector<SaleAccessory>& accessories, int64_t discount,
                               Day day, bool inter_state, bool to_sub_dealer, bool subsidised) {
    std::vector<Line> lines;
    for (size_t i = 0; i < units.size(); ++i) {
      lines.push_back(VehicleLine(units[i], day, i == 0 ? discount : 0, inter_state, to_sub_dealer,
                                  subsidised));
    }
    for (const SaleAccessory& accessory : accessories)
      lines.push_back(AccessoryLine(accessory, day));
    return lines;
  }

  void PriceDocuments() {
    for (Challan& chl : d_.challans) {
      const bool inter_state = chl.account != 0 && d_.account(chl.account).inter_state();
      chl.lines = PriceLines(chl.units, chl.accessories, chl.discount, chl.date, inter_state,
                             chl.type == 'S', chl.type == 'C');
      CheckRoundOff(chl.lines, chl.Amount(), "challan " + chl.num);
    }
    for (Invoice& inv : d_.invoices) {
      const bool inter_state = inv.account != 0 && d_.account(inv.account).inter_state();
      const bool person = inv.itype == 'R' && !d_.customer(inv.customer).business;
      inv.lines = PriceLines(inv.units, inv.accessories, inv.discount, inv.date, inter_state,
                             inv.itype == 'S', person);
      CheckRoundOff(inv.lines, inv.Total(), "invoice " + inv.num);
    }
  }

  // B2B invoices (to sub-dealers and GST-registered fleet buyers) are reported to the invoice
  // registration portal: the IRN is the SHA-256 of seller GSTIN, year, type and number.
  void IssueEInvoices() {
    std::set<std::string> acks;
    for (Invoice& inv : d_.invoices) {
      const std::string buyer =
          inv.itype == 'S' ? d_.account(inv.account).gstin : d_.customer(inv.customer).gstin;
      if (buyer.empty()) continue;
      inv.irn = Sha256Hex(d_.firm.gstin + inv.date.LongFinancialYear() + "INV" + inv.num);
      do {
        inv.ack_no = "1" + Padded(inv.date.year() % 100, 2) + random_.Digits(12);
      } while (!acks.insert(inv.ack_no).second);
      inv.ack_seconds = random_.Between(10 * 3600, 19 * 3600);
      const Stamp ack{inv.date, inv.ack_seconds};
      inv.qr_text =
          SignedQr("{\"SellerGstin\":\"" + d_.firm.gstin + "\",\"BuyerGstin\":\"" + buyer +
                   "\",\"DocNo\":\"" + inv.num + "\",\"DocTyp\":\"INV\",\"DocDt\":\"" +
                   inv.date.Dmy() + "\",\"TotInvVal\":" + MoneyText(inv.Total()) + ",\"ItemCnt\":" +
                   std::to_string(inv.lines.size()) + ",\"MainHsnCode\":\"" + inv.lines[0].hsn +
                   "\",\"Irn\":\"" + inv.irn + "\",\"IrnDt\":\"" + StampText(ack) + "\"}");
      if (inv.itype == 'S' && inv.Total() > Rs(50000)) {
        inv.ewb_no = "3" + random_.Digits(11);
        inv.ewb_seconds = std::min(inv.ack_seconds + random_.Between(300, 3600), 86399);
      }
    }
  }

  // An e-way bill number not given before: twelve digits.
  std::string NewEWayBill() {
    for (;;) {
      std::string number = "3" + paperwork_.Digits(11);
      if (ewbs_.insert(number).second) return number;
    }
  }

  // Goods worth more than ₹50,000 that the dealership moves by road, on an e-way bill:
  // vehicles sent to a sub-dealer on a challan (the invoice that follows names the same bill,
  // truck and consignment note), invoiced to a sub-dealer without one, and sent to a branch.
  // Retail buyers take delivery at the showroom. Purchases come on the manufacturers' bills.
  void IssueEWayBills() {
    for (const Purchase& p : d_.purchases) ewbs_.insert(p.ewb_no);
    for (Invoice& inv : d_.invoices) {
      inv.ewb_day = inv.date;
      if (!inv.ewb_no.empty()) ewbs_.insert(inv.ewb_no);
    }
    for (Challan& chl : d_.challans) {
      if (chl.type != 'S') continue;
      Invoice* inv = nullptr;
      for (Invoice& candidate : d_.invoices) {
        if (candidate.id == chl.invoice) inv = &candidate;
      }
      chl.lr_no = inv != nullptr
                      ? inv->lr_no
                      : (chl.transporter[0] == 'S' ? "SGR/" : "DC/") + paperwork_.Digits(5);
      if (chl.Amount() > Rs(50000)) {
        chl.ewb_no = NewEWayBill();
        chl.ewb_seconds = paperwork_.Between(9 * 3600, 18 * 3600);
      }
      if (inv == nullptr) continue;
      inv->transporter = chl.transporter;
      inv->truck = chl.truck;
      inv->ewb_no = chl.ewb_no;
      inv->ewb_day = chl.date;
      inv->ewb_seconds = chl.ewb_seconds;
    }
    for (BranchTransfer& t : d_.transfers) {
      int64_t value = 0;
      for (int id : t.vehicles) value += d_.vehicle(id).cost;
      if (value <= Rs(50000)) continue;
      t.ewb_no = NewEWayBill();
      t.ewb_seconds = paperwork_.Between(9 * 3600, 18 * 3600);
    }
  }

  std::string RegistrationNumber(const std::string& rto_code, Day day) {
    const std::string key = rto_code + std::to_string(MonthIndex(day) / 3);
    auto series = series_.find(key);
    if (series == series_.end()) series = series_.emplace(key, random_.Letters(2)).first;
    for (;;) {
      std::string regno = rto_code + series->second + Padded(random_.Between(1, 9999), 4);
      if (regnos_.insert(regno).second) return regno;
    }
  }

  // Vehicles are registered at the dealer's point within days of sale, except for buyers who
  // register at their home RTO on a temporary certificate. Cycles are not registered.
  void RegisterVehicles() {
    static const std::vector<std::pair<std::string, std::string>> kHomeRtos = {
        {"MH11", "MH11 Satara"},
        {"MH09", "MH09 Kolhapur"},
        {"MH45", "MH45 Akluj"},
        {"MH16", "MH16 Ahilyanagar"},
        {"MH13", "MH13 Solapur"}};
    static const std::vector<std::string> kInsurers = {
        "The New India Assurance Co. Ltd.", "United India Insurance Co. Ltd.",
        "The Oriental Insurance Co. Ltd.", "National Insurance Co. Ltd."};
    int tline = 3000;
    int hsrp = 6000;
    std::map<std::string, int> certificates;  // by branch and financial year
    for (Invoice& inv : d_.invoices) {
      if (inv.itype != 'R' || !d_.model(inv.units[0].model).registered()) continue;
      const Customer& c = d_.customer(inv.customer);
      const Branch& branch = d_.branch(inv.branch);
      inv.ins_company = random_.Pick(kInsurers);
      const std::string office = random_.Digits(4);
      inv.ins_policy =
          "3" + office + "/31/" + std::to_string(inv.date.year() % 100) + "/" + random_.Digits(8);
      const bool from_karnataka = c.state_code == "29";
      inv.temporary = from_karnataka || (!c.business && random_.Percent(12));
      std::string rto_code = branch.rto_code;
      inv.rto = branch.rto;
      int delay = random_.Between(1, 6);
      if (inv.temporary) {
        TempRegistration t;
        t.tline = ++tline;
        t.date = inv.date;
        t.valid_upto = inv.date.PlusMonths(1).Plus(-1);
        const int serial = tline - 3000 + 100 * random_.Between(1, 9);
        t.num = "T" + Padded(inv.date.month(), 2) + Padded(inv.date.year() % 100, 2) + "MH" +
                Padded(serial, 4) + random_.Letters(2);
        t.rto = branch.rto;
        t.branch = branch.id;
        t.certificate = "TC/" + branch.code + "/" + inv.date.LongFinancialYear() + "/" +
                        Padded(++certificates[branch.code + inv.date.FinancialYear()], 4);
        t.invoice = inv.id;
        t.fee = Rs(200);
        if (from_karnataka) {
          rto_code = "KA23";
          inv.rto = "KA23 Chikkodi";
          t.state = "Karnataka";
        } else {
          const auto& [code, name] = random_.Pick(kHomeRtos);
          rto_code = code;
          inv.rto = name;
          t.state = "Maharashtra";
        }
        t.reason = "Permanent registration at " + inv.rto + " RTO";
        d_.temp_registrations.push_back(t);
        delay = random_.Between(8, 25);
      }
      if (inv.date.Plus(delay) > kLastDay) continue;
      inv.reg_date = inv.date.Plus(delay);
      inv.regno = RegistrationNumber(rto_code, *inv.reg_date);
      HsrpOrder order;
      order.id = ++hsrp;
      order.invoice = inv.id;
      order.order_no = "HSRP" + Padded(inv.reg_date->year() % 100, 2) + random_.Digits(8);
      order.ordered = *inv.reg_date;
      const Day fitted = inv.reg_date->Plus(random_.Between(4, 15));
      if (fitted <= kLastDay) order.fitted = fitted;
      order.vendor = "Raksha Secure Plates Pvt Ltd";
      order.front = random_.Code(2, 8);
      order.rear = random_.Code(2, 8);
      order.snap_lock = "SL" + random_.Digits(8);
      order.fee = Rs(531);
      d_.hsrp_orders.push_back(order);
    }
  }

  void Pay(Receipt r, const std::string& mode) {
    static const std::vector<std::string> kBanks = {"Bank of Maharashtra", "State Bank of India",
                                                    "HDFC Bank",           "Janata Sahakari Bank",
                                                    "ICICI Bank",          "Cosmos Co-op Bank"};
    static const char* kCashiers[] = {"", "Meena Joshi", "Amol Landge", "Kiran Tawre"};
    r.mode = mode;
    if (mode == "CHEQUE") {
      r.cheque_no = random_.Digits(6);
      r.cheque_date = r.date;
      r.bank = random_.Pick(kBanks);
    } else if (mode == "UPI") {
      r.ref_no = random_.Digits(12);
    } else if (mode == "NEFT" || mode == "FINANCE") {
      const std::string bank_code = random_.Letters(4);
      r.ref_no = bank_code + "N" + Padded(r.date.year() % 100, 2) + random_.Digits(9);
      r.bank = random_.Pick(kBanks);
    }
    r.cashier = kCashiers[r.branch];
    d_.receipts.push_back(std::move(r));
  }

  Receipt FromCustomer(const Invoice& inv, Day day, int64_t amount, const std::string& against,
                       const std::string& narration) {
    Receipt r;
    r.date = std::min(day, kLastDay);
    r.branch = inv.branch;
    r.party = 'C';
    r.customer = inv.customer;
    r.name = d_.customer(inv.customer).name;
    r.amount = amount;
    r.against = against;
    r.narration = narration;
    r.invoice = inv.id;
    return r;
  }

  std::string PickMode(const std::vector<std::string>& modes, const std::vector<int>& weights) {
    return modes[static_cast<size_t>(random_.Weighted(weights))];
  }

  void CollectPayments() {
    // Loans of these financiers arrive as one transfer per quarter for all their cases.
    std::map<std::pair<int, int>, std::vector<std::pair<int, int64_t>>> quarterly;
    for (Invoice& inv : d_.invoices) {
      if (inv.itype != 'R') continue;
      const VehicleModel& m = d_.model(inv.units[0].model);
      const std::string vehicle = m.Name();
      const Day delivered = inv.challan != 0 ? d_.challan(inv.challan).date : inv.date;
      int64_t due = inv.Payable();
      if (inv.booking_date) {
        Pay(FromCustomer(inv, *inv.booking_date, inv.booking_amount, "BOOKING",
                         "Booking amount for " + vehicle + ", booking " + inv.booking_no),
            random_.Percent(50) ? "CASH" : "UPI");
        due -= inv.booking_amount;
      }
      if (d_.customer(inv.customer).business) {
        Pay(FromCustomer(inv, inv.date.Plus(random_.Between(0, 15)), due, "PAYMENT",
                         "Payment against invoice " + inv.num),
            "NEFT");
        continue;
      }
      if (inv.financier != 0) {
        int64_t loan = inv.Payable() * random_.Between(60, 85) / 100 / 100000 * 100000;
        if (due - loan < Rs(5000)) loan = (due - Rs(5000)) / 100000 * 100000;
        inv.loan = loan;
        Pay(FromCustomer(inv, delivered, due - loan, "MARGIN",
                         "Margin money for " + vehicle + ", invoice " + inv.num),
            PickMode({"CASH", "UPI", "CHEQUE"}, {45, 30, 25}));
        const Account& financier = d_.account(inv.financier);
        if (inv.financier == ids::kDeccanFinance || inv.financier == ids::kSahyadriPatsanstha) {
          quarterly[{inv.financier, MonthIndex(inv.date) / 3}].push_back({inv.id, loan});
          continue;
        }
        Receipt r;
        r.date = std::min(inv.date.Plus(random_.Between(3, 12)), kLastDay);
        r.branch = inv.branch;
        r.party = 'F';
        r.account = financier.id;
        r.name = financier.name;
        r.amount = loan;
        r.against = "FINANCE";
        r.invoice = inv.id;
        r.narration = "Loan disbursed for " + d_.customer(inv.customer).name + ", invoice " +
                      inv.num + ", DO No. " + random_.Digits(6);
        Pay(r, "FINANCE");
        continue;
      }
      const bool cycle = m.category == Category::kCycle;
      Pay(FromCustomer(inv, delivered, due, inv.booking_date ? "BALANCE" : "INVOICE",
                       "Payment for " + vehicle + ", invoice " + inv.num),
          cycle ? PickMode({"CASH", "UPI"}, {60, 40})
                : PickMode({"CASH", "UPI", "CHEQUE", "NEFT"}, {40, 30, 15, 15}));
    }

    for (const auto& [key, lines] : quarterly) {
      BulkReceipt b;
      b.account = key.first;
      b.date = std::min(MonthStart(key.second * 3 + 3).Plus(random_.Between(4, 11)), kLastDay);
      b.lines = lines;
      b.narration = "Loan disbursements of the quarter, " + std::to_string(lines.size()) + " cases";
      d_.bulk_receipts.push_back(b);
    }
    std::map<int, std::vector<const Invoice*>> by_dealer;
    for (const Invoice& inv : d_.invoices) {
      if (inv.itype == 'S') by_dealer[inv.account].push_back(&inv);
    }
    for (const auto& [dealer, invoices] : by_dealer) {
      for (size_t first = 0; first < invoices.size();) {
        const size_t count =
            std::min(invoices.size() - first, static_cast<size_t>(random_.Between(2, 4)));
        const Invoice& last = *invoices[first + count - 1];
        const Day day = last.date.Plus(random_.Between(7, 20));
        if (day > kLastDay) break;  // still outstanding
        BulkReceipt b;
        b.account = dealer;
        b.date = day;
        for (size_t i = first; i < first + count; ++i)
          b.lines.push_back({invoices[i]->id, invoices[i]->Payable()});
        b.narration = "Payment against " + std::to_string(count) + " invoices";
        d_.bulk_receipts.push_back(b);
        first += count;
      }
    }
    std::stable_sort(d_.bulk_receipts.begin(), d_.bulk_receipts.end(),
                     [](const BulkReceipt& a, const BulkReceipt& b) { return a.date < b.date; });
    Numbering numbers;
    for (size_t i = 0; i < d_.bulk_receipts.size(); ++i) {
      BulkReceipt& b = d_.bulk_receipts[i];
      b.id = 701 + static_cast<int>(i);
      b.num = numbers.Next("BR", b.date, 3);
      b.mode = b.Amount() >= Rs(200000) ? "RTGS" : random_.Percent(70) ? "NEFT" : "CHEQUE";
      b.bank = random_.Pick(std::vector<std::string>{"State Bank of India", "Bank of Maharashtra",
                                                     "HDFC Bank", "Axis Bank"});
      if (b.mode == "CHEQUE") {
        b.cheque_no = random_.Digits(6);
        b.cheque_date = b.date;
      } else {
        const std::string bank_code = random_.Letters(4);
        b.ref_no = bank_code + (b.mode == "RTGS" ? "R" : "N") + random_.Digits(11);
      }
    }
    std::stable_sort(d_.receipts.begin(), d_.receipts.end(),
                     [](const Receipt& a, const Receipt& b) { return a.date < b.date; });
    for (size_t i = 0; i < d_.receipts.size(); ++i) {
      d_.receipts[i].id = 1001 + static_cast<int>(i);
      d_.receipts[i].num = numbers.Next("RC", d_.receipts[i].date, 4);
    }
  }

  void RecordEnquiries() {
    static const std::vector<std::string> kSources = {"Walk-in",       "Telephone", "Reference",
                                                      "Newspaper",     "Website",   "Social media",
                                                      "Field activity"};
    static const std::vector<int> kSourceWeights = {40, 15, 15, 5, 10, 10, 5};
    static const std::vector<std::string> kLostReasons = {
        "Bought another brand", "Finance not approved",  "Postponed purchase",
        "Price too high",       "Wanted early delivery", "Bought a used vehicle"};
    auto source = [&] { return kSources[static_cast<size_t>(random_.Weighted(kSourceWeights))]; };

    for (const Invoice& inv : d_.invoices) {
      if (inv.itype != 'R' || d_.customer(inv.customer).business) continue;
      const Day contact = (inv.booking_date   ? *inv.booking_date
                           : inv.challan != 0 ? d_.challan(inv.challan).date
                                              : inv.date)
                              .Plus(-random_.Between(1, 12));
      if (contact < kFirstDay || contact > kEnquiriesEnd) continue;
      const Customer& c = d_.customer(inv.customer);
      const VehicleModel& m = d_.model(inv.units[0].model);
      Enquiry e;
      e.date = contact;
      e.branch = inv.branch;
      e.name = c.name;
      e.address = StreetAddress(c);
      e.city = c.city;
      e.mobile = c.mobile;
      e.model = m.id;
      e.model_name = m.model;
      e.color = d_.color(inv.units[0].color).name;
      e.source = source();
      e.executive = inv.executive;
      e.status = 1;
      e.booking = inv.booking_date ? 1 : 0;
      if (inv.booking_date) e.booking_status = "DELIVERED";
      e.booked_on = inv.booking_date;
      e.booking_amount = inv.booking_amount;
      e.followup = contact.Plus(random_.Between(2, 5));
      e.expected = inv.date;
      e.finance = inv.financier != 0 ? "Y" : "N";
      e.exchange = random_.Percent(10) ? "Y" : "N";
      e.customer = c.id;
      e.invoice = inv.id;
      e.remarks = "Delivered, invoice " + inv.num;
      d_.enquiries.push_back(e);
    }
    const std::vector<Category> categories = {Category::kMotorcycle, Category::kScooter,
                                              Category::kElectric, Category::kCycle};
    const std::vector<int> fy_weights(kMonthWeights.begin(), kMonthWeights.begin() + 12);
    while (d_.enquiries.size() < 300) {
      const int month = random_.Weighted(fy_weights);
      const Day first = MonthStart(month);
      Enquiry e;
      e.date = first.Plus(random_.Below(MonthStart(month + 1).DaysSince(first)));
      e.branch = 1 + random_.Weighted({55, 25, 20});
      const Customer person = DrawPerson(random_, 0, e.branch, mobiles_);
      e.name = person.name;
      e.address = StreetAddress(person);
      e.city = person.city;
      e.mobile = person.mobile;
      const VehicleModel& m =
          d_.model(PickModel(categories[static_cast<size_t>(random_.Weighted({45, 30, 12, 13}))]));
      e.model = m.id;
      e.model_name = m.model;
      e.color = d_.color(random_.Pick(m.colors)).name;
      e.source = source();
      e.executive = Executive(e.branch);
      const bool recent = e.date >= Day::FromYmd(2025, 1, 15);
      e.status = random_.Percent(recent ? 70 : 25) ? 0 : 2;
      if (e.status == 0 && random_.Percent(15)) {
        e.booking = 1;
        e.booking_status = "BOOKED";
        e.remarks = "Booked; awaiting finance approval";
      } else if (e.status == 2) {
        e.lost_reason = random_.Pick(kLostReasons);
        if (random_.Percent(4)) {
          e.booking = 1;
          e.booking_status = "CANCELLED";
        }
      } else {
        e.remarks = "Follow up for test ride";
      }
      if (e.booking == 1) {
        e.booked_on = e.date.Plus(random_.Between(0, 5));
        e.booking_amount = Rs(500 * random_.Between(2, 6));
      }
      // Most buyers who cancel get their booking amount back; the rest cancel too late under the
      // booking terms, and the dealer keeps it.
      if (e.booking_status == "CANCELLED") {
        if (paperwork_.Percent(70)) {
          e.booking_status = "REFUNDED";
          e.refunded_on = e.booked_on->Plus(paperwork_.Between(8, 30));
          e.remarks = "Booking cancelled, amount refunded";
        } else {
          e.remarks = "Booking cancelled after the allotment; amount forfeited";
        }
      }
      e.followup = e.date.Plus(random_.Between(2, 7));
      e.expected = e.date.Plus(random_.Between(7, 45));
      e.finance = random_.Percent(40) ? "Y" : "N";
      e.exchange = random_.Percent(8) ? "Y" : "N";
      d_.enquiries.push_back(e);
    }
    std::stable_sort(d_.enquiries.begin(), d_.enquiries.end(),
                     [](const Enquiry& a, const Enquiry& b) { return a.date < b.date; });
    Numbering numbers;
    for (size_t i = 0; i < d_.enquiries.size(); ++i) {
      d_.enquiries[i].id = 1 + static_cast<int>(i);
      d_.enquiries[i].num = numbers.Next("EQ", d_.enquiries[i].date, 4);
    }
  }

  // Vehicles waiting at Hadapsar are moved from the godown to the showroom floor, a festive
  // display or the workshop for pre-delivery inspection.
  void WriteTransferNotes() {
    static const std::vector<std::pair<std::string, std::string>> kMoves = {
        {"Hadapsar showroom floor", "Display"},
        {"Service workshop, Hadapsar", "Pre-delivery inspection (PDI)"},
        {"Magarpatta City mall display stall", "Festive display"}};
    std::map<int, std::vector<int>> waiting;  // purchase -> vehicles with days to spare
    for (const Vehicle& v : d_.vehicles) {
      if (v.branch == 1 && v.need.DaysSince(v.received) >= 6) waiting[v.purchase].push_back(v.id);
    }
    std::vector<int> purchases;
    purchases.reserve(waiting.size());
    for (const auto& [purchase, vehicles] : waiting) purchases.push_back(purchase);
    for (int n = 0; n < 8 && !purchases.empty(); ++n) {
      const size_t at = static_cast<size_t>(random_.Below(static_cast<int>(purchases.size())));
      const std::vector<int>& vehicles = waiting[purchases[at]];
      purchases.erase(purchases.begin() + static_cast<std::ptrdiff_t>(at));
      VehicleTransferNote note;
      note.vehicles.assign(
          vehicles.begin(),
          vehicles.begin() + std::min<std::ptrdiff_t>(static_cast<std::ptrdiff_t>(vehicles.size()),
                                                      random_.Between(1, 4)));
      Day first_need = d_.vehicle(note.vehicles[0]).need;
      for (int id : note.vehicles) first_need = std::min(first_need, d_.vehicle(id).need);
      note.date = std::max(d_.vehicle(note.vehicles[0]).received.Plus(2), first_need.Plus(-3));
      const auto& [to, reason] = random_.Pick(kMoves);
      note.from = "HO godown, Survey No. 58/2, Hadapsar";
      note.to = to;
      note.reason = reason;
      note.branch = 1;
      note.authorised_by = "Vikas Deshpande";
      note.remarks = "Keys and tool kits handed over with the vehicles";
      d_.transfer_notes.push_back(note);
    }
    std::stable_sort(
        d_.transfer_notes.begin(), d_.transfer_notes.end(),
        [](const VehicleTransferNote& a, const VehicleTransferNote& b) { return a.date < b.date; });
    Numbering numbers;
    for (size_t i = 0; i < d_.transfer_notes.size(); ++i) {
      d_.transfer_notes[i].id = 481 + static_cast<int>(i);
      d_.transfer_notes[i].num = numbers.Next("VT", d_.transfer_notes[i].date, 3);
    }
  }

  Random& random_;
  Random& paperwork_;
  Dealership& d_;
  std::set<std::string> mobiles_;
  std::map<std::string, std::string> series_;
  std::set<std::string> regnos_;
  std::set<std::string> ewbs_;
  int plans_ = 0;
};

}  // namespace

void AddTrading(Random& random, Random& paperwork, Dealership& dealership) {
  Trading(random, paperwork, dealership).Run();
}

}  // namespace vantorel::demo
