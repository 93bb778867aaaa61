// The workshop floor: mechanics and supervisors, job cards on the vehicles the dealership sold
// (and on some it did not), the parts each mechanic requisitioned and the labour each did, job
// invoices, proforma invoices, counter sales, e-invoices of business customers' bills, the
// warranty and free-service claims made on the manufacturers, service follow-ups and the service
// history they add up to.
//
// Money: parts are sold at their MRP, which includes GST, so a part line's unit rate is the MRP
// worked back at the part's rate on the document's date; labour is charged at a rate before tax,
// under SAC 998714 at 18%. Each tax of a line is its rate on the line's taxable value, to the
// paisa; a document's total is its lines rounded to the rupee, the round-off beside it. The
// place of supply is the buyer's state (its address on record): CGST + SGST within Maharashtra,
// IGST to any other state.
#include <algorithm>
#include <cctype>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <tuple>

#include "demo/accounts.h"
#include "demo/gst.h"
#include "demo/identifiers.h"
#include "demo/workshop.h"

namespace vantorel::demo {
namespace {

constexpr char kLabourSac[] = "998714";
constexpr int kLabourRate = 18;
constexpr char kFirmState[] = "27";

// Id ranges of the workshop's documents, each kind in its own.
constexpr int kFirstMechanic = 301;
constexpr int kFirstJob = 20001;
constexpr int kFirstJobInvoice = 22001;
constexpr int kFirstCounterInvoice = 24001;
constexpr int kFirstClaim = 26001;
constexpr int kFirstFollowUp = 28001;
// fa_acmaster: the workshop's credit customers.
// The fleet buyers of the sales have their customer ledgers (CustomerLedger).
constexpr int kRayaraLogistics = 901, kPuneRides = 902;

// The ma_rv the host keeps beside a bill's number: how the bill is settled, which also names its
// series ("JI/…" cash job bills, "JCR/…" credit job bills, "CI/…" and "CCR/…" counter bills).
constexpr char kCash[] = "CASH";
constexpr char kCredit[] = "CREDIT";

// The claim documents made on a manufacturer (DocFrom of the claim e-invoice).
constexpr char kWarrantyClaim[] = "WC";
constexpr char kFreeServiceClaim[] = "FSC";

Cell Text(const std::string& text) { return text.empty() ? Cell(kNull) : Cell(text); }
Cell Id(int id) { return id == 0 ? Cell(kNull) : Cell(int64_t{id}); }
Cell Int(int64_t value) { return value; }
Cell Paise(int64_t paise) { return Money{paise}; }
Cell OptionalDay(const std::optional<Day>& day) { return day ? Cell(*day) : Cell(kNull); }
// A GST rate in percent, from a whole rate and a share of it: Rate(18, 2) is "9.00".
Cell Rate(int whole, int share) {
  const int hundredths = whole * 100 / share;
  return Decimal{std::to_string(hundredths / 100) + "." + (hundredths % 100 < 10 ? "0" : "") +
                 std::to_string(hundredths % 100)};
}

std::string Padded(int number, int width) {
  std::string text = std::to_string(number);
  return std::string(static_cast<size_t>(std::max(0, width - static_cast<int>(text.size()))), '0') +
         text;
}

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// Document numbers run per series and financial year: "JI/24-25/0007".
class Numbering {
 public:
  std::string Next(const std::string& series, Day day) {
    const std::string fy = day.FinancialYear();
    return series + "/" + fy + "/" + Padded(++counters_[series + fy], 4);
  }

 private:
  std::map<std::string, int> counters_;
};

// ---------------------------------------------------------------------------------------------
// The people and the work.

struct Mechanic {
  int id = 0;
  std::string name;
  char role = 'M';  // 'M' mechanic, 'S' supervisor
  int branch = 1;
  std::string mobile, skill;
  Day joined;
};

struct LabourCode {
  const char* code;
  const char* text;
  int64_t rupees;  // before GST
  double hours;
};

const std::vector<LabourCode>& LabourCodes() {
  static const std::vector<LabourCode> codes = {
      {"FS-LAB", "Free service labour (coupon)", 0, 1.5},
      {"PS-GEN", "Periodic service: tuning, cleaning, lubrication", 450, 2.0},
      {"EV-PMS", "EV periodic inspection and software update", 350, 1.5},
      {"WASH", "Washing and polishing", 120, 0.5},
      {"CARB", "Carburettor / throttle body cleaning", 250, 1.0},
      {"BRK-R", "Rear brake shoe replacement and adjustment", 180, 0.5},
      {"BRK-F", "Front disc pad replacement and brake bleeding", 250, 1.0},
      {"CLT", "Clutch plate replacement", 650, 2.5},
      {"CHN", "Chain sprocket kit replacement", 350, 1.0},
      {"ELEC", "Electrical fault diagnosis and wiring repair", 300, 1.0},
      {"SELF", "Self-starter motor overhaul", 450, 1.5},
      {"TYRE", "Tyre and tube replacement", 120, 0.5},
      {"FORK", "Front fork oil seal replacement", 550, 2.0},
      {"BATT", "Battery check, charging and replacement", 100, 0.5},
      {"TAPPET", "Tappet clearance adjustment", 200, 0.75},
      {"ENG-TOP", "Engine top overhaul (head, valves, piston rings)", 1800, 6.0},
      {"BODY", "Panel repair and fitting (accident)", 900, 3.0},
      {"PAINT", "Painting of damaged panels", 1500, 4.0},
      {"EV-DIAG", "EV motor and controller diagnosis", 400, 1.0},
      {"EV-CHG", "Charger and charging port repair", 300, 1.0},
      {"SHOCK", "Rear shock absorber replacement", 250, 1.0},
      {"CABLE", "Accelerator / clutch cable replacement", 120, 0.5},
      {"WHEEL", "Wheel bearing replacement and alignment", 300, 1.0},
  };
  return codes;
}

const LabourCode& Labour(const std::string& code) {
  for (const LabourCode& c : LabourCodes()) {
    if (code == c.code) return c;
  }
  throw std::logic_error("no labour code " + code);
}

// What the customer says, what the workshop does about it, and the parts it takes (found in the
// parts master by words of their descriptions).
struct Repair {
  const char* complaint;
  const char* action;
  const char* labour;
  std::vector<const char*> parts;
  bool motor;     // for motorcycles and scooters
  bool electric;  // for electric scooters
  bool warranty;  // a failure the maker's warranty covers in the first two years
};

const std::vector<Repair>& Repairs() {
  static const std::vector<Repair> repairs = {
      {"Self start not working, have to kick start every morning",
       "Starter motor brushes worn; starter overhauled",
       "SELF",
       {"starter motor"},
       true,
       false,
       true},
      {"Pick-up is low and engine heats up in traffic",
       "Carburettor cleaned, air filter replaced, tuning done",
       "CARB",
       {"air filter"},
       true,
       false,
       false},
      {"Mileage has dropped to about 40 km per litre",
       "Carburettor cleaned and spark plug replaced",
       "CARB",
       {"spark plug"},
       true,
       false,
       false},
      {"Rear brake not effective, lever travel too much",
       "Rear brake shoes worn out; replaced and adjusted",
       "BRK-R",
       {"brake shoe assy rear"},
       true,
       true,
       false},
      {"Front brake makes a squealing noise",
       "Disc pads worn out; replaced and brake fluid topped up",
       "BRK-F",
       {"disc brake pad", "brake fluid"},
       true,
       true,
       false},
      {"Clutch slipping in third and fourth gear",
       "Clutch plates worn; clutch plate set replaced",
       "CLT",
       {"clutch plate"},
       true,
       false,
       false},
      {"Chain making noise and jumping on the sprocket",
       "Chain and sprockets worn; chain sprocket kit replaced",
       "CHN",
       {"drive chain kit"},
       true,
       false,
       false},
      {"Headlamp dim on low beam, horn weak",
       "Wiring connector corroded; cleaned, bulb replaced",
       "ELEC",
       {"headlamp bulb"},
       true,
       true,
       false},
      {"Horn not working", "Horn faulty; horn replaced", "ELEC", {"horn"}, true, true, true},
      {"Battery drains overnight, vehicle does not start",
       "Battery weak; battery replaced and charging system checked",
       "BATT",
       {"battery 12v"},
       true,
       false,
       true},
      {"Rear tyre worn out, frequent punctures",
       "Rear tyre and tube replaced",
       "TYRE",
       {"tyre ", "tube "},
       true,
       true,
       false},
      {"Oil leaking from front fork",
       "Fork oil seals replaced and fork oil refilled",
       "FORK",
       {"fork oil seal", "fork oil 10w"},
       true,
       true,
       true},
      {"Tapping noise from engine head",
       "Tappet clearance adjusted",
       "TAPPET",
       {},
       true,
       false,
       false},
      {"Engine consuming oil, white smoke from silencer",
       "Piston rings and valve seals worn; engine top overhauled",
       "ENG-TOP",
       {"piston ring", "gasket kit"},
       true,
       false,
       true},
      {"Rear suspension too hard, bumps felt",
       "Rear shock absorber replaced",
       "SHOCK",
       {"rear shock"},
       true,
       true,
       true},
      {"Accelerator cable stuck, throttle does not return",
       "Accelerator cable replaced and lubricated",
       "CABLE",
       {"accelerator cable"},
       true,
       false,
       false},
      {"Wobbling at speed above 50 km/h",
       "Front wheel bearings replaced, wheel aligned",
       "WHEEL",
       {"wheel bearing"},
       true,
       true,
       false},
      {"Range dropped to 70 km on a full charge",
       "Battery cells balanced, controller software updated",
       "EV-DIAG",
       {},
       false,
       true,
       true},
      {"Charger shows red light, vehicle not charging",
       "Charging port socket loose; socket replaced",
       "EV-CHG",
       {"battery pack con"},
       false,
       true,
       true},
      {"Motor makes a whining noise at low speed",
       "Motor bearing checked, controller re-mapped",
       "EV-DIAG",
       {},
       false,
       true,
       true},
  };
  return repairs;
}

// An accident: panels and their fitting, painting.
const Repair& AccidentRepair() {
  static const Repair repair = {"Vehicle fell on the right side; body panels damaged",
                                "Damaged panels replaced and painted",
                                "BODY",
                                {"mirror assy", "crash guard", "winker assy"},
                                true,
                                true,
                                false};
  return repair;
}

// ---------------------------------------------------------------------------------------------
// Documents.

// One line of a job invoice, proforma, counter invoice or claim.
struct WsLine {
  char kind = 'P';  // 'P' a part, 'L' labour
  std::string code, description, hsn, uqc;
  int qty = 1;
  int64_t mrp = 0;   // parts: the MRP a unit, GST included
  int64_t rate = 0;  // a unit, before GST
  int64_t amount = 0, discount = 0, taxable = 0;
  int gst_rate = 0;
  bool inter_state = false;
  int64_t cgst = 0, sgst = 0, igst = 0, net = 0;
  int mechanic = 0;
  int job = 0;  // claims: the job the line was done on
  std::string chassis, regno;
};

int64_t Net(const std::vector<WsLine>& lines) {
  int64_t total = 0;
  for (const WsLine& l : lines) total += l.net;
  return total;
}

// The buyer of a bill, as the bill prints it.
struct Party {
  int customer = 0;  // customer.cust_id, when one of the sales' customers
  int account = 0;   // fa_acmaster.am_id, when billed on account
  std::string name, add1, add2, city, pin, state, state_code, mobile, gstin;
};

struct Complaint {
  std::string complaint, action;
};

struct Requisition {
  int part = 0;  // index into the parts
  int qty = 1;
  int mechanic = 0;
  bool warranty = false;
  std::string req_no;
};

struct LabourLine {
  std::string code;
  int mechanic = 0;
  bool free = false;      // a free service's labour: claimed from the maker
  bool warranty = false;  // claimed from the maker
};

struct Job {
  int srl = 0;
  std::string num, service_type, coupon_no, fuel, remarks;
  Day date;
  int in_seconds = 0, out_seconds = 0;
  Day delivered;
  int branch = 1;
  int vehicle = 0;  // vehicle.veh_id when the dealership sold it
  std::string regno, chassis, engine, make, model, color;
  std::optional<Day> sale_date;
  Category category = Category::kMotorcycle;
  int kms = 0;
  Party party;
  int mechanic = 0, supervisor = 0;
  std::vector<Complaint> complaints;
  std::vector<int> repairs;  // into Repairs(), the complaints after the service
  std::vector<Requisition> requisitions;
  std::vector<LabourLine> labour;
  int64_t estimate = 0;
  bool open = false;
  bool accident = false;
  int invoice = 0;
  std::optional<Day> next_date;
  int next_kms = 0;
};

struct Bill {
  int id = 0;
  std::string ma_rv, num;
  Day date;
  int branch = 1;
  int job = 0;
  Party party;
  std::string pos_state, pos_code, paymode, remarks, prepared_by;
  std::vector<WsLine> lines;
  std::string irn, ack_no, qr_text;
  int ack_seconds = 0;
  int64_t Total() const { return RoundedToRupee(Net(lines)); }
  int64_t RoundOff() const { return Total() - Net(lines); }
  bool inter_state() const { return pos_code != kFirmState; }
};

struct Claim {
  int id = 0;
  std::string from, num, maker_ref;
  Day date;
  int branch = 1;
  int maker = 0;  // fa_acmaster id
  std::vector<WsLine> lines;
  std::string irn, ack_no, qr_text;
  int ack_seconds = 0;
  int64_t Total() const { return RoundedToRupee(Net(lines)); }
};

struct Proforma {
  int job = 0;
  std::string num;
  Day date, valid_upto;
  std::string remarks;
  std::vector<WsLine> lines;
};

struct FollowUp {
  int id = 0;
  int job = 0;
  std::string due_service, status, remarks;
  Day due_date;
  int due_kms = 0;
  std::optional<Day> called_on;
};

// A vehicle that comes to the workshop.
struct ServicedVehicle {
  int vehicle = 0;
  std::string regno, chassis, engine, make, model, color;
  Category category = Category::kMotorcycle;
  std::optional<Day> sold;
  Day first_visit;
  int km_per_day = 30;
  int branch = 1;
  Party owner;
  bool comes_back = true;
  int start_kms = 0;  // on the first visit's day, less the days since
};

class Floor {
 public:
  Floor(const Dealership& d, Random& random, Workshop& workshop)
      : d_(d), random_(random), parts_(workshop.parts) {
    if (parts_.empty()) throw std::logic_error("the jobs step needs the parts master");
    for (const Customer& c : d.customers) mobiles_.insert(c.mobile);
  }

  void Run() {
    AddMechanics();
    AddAccounts();
    PlanJobs();
    for (Job& job : jobs_) Work(job);
    for (Job& job : jobs_) {
      if (!job.open) BillJob(job);
    }
    AddProformas();
    AddCounterSales();
    AddClaims();
    IssueEInvoices();
    AddFollowUps();
  }

  void Write(Dataset& out) const;
  void ChooseFacts(FactList& facts) const;
  void Post(Workshop& workshop) const;

 private:
  int PartRate(int part, Day day) const { return parts_[static_cast<size_t>(part)].RateOn(day); }

  // Parts leave the store: the master's balance falls by what is issued.
  void Issue(int part, int qty) {
    Part& p = parts_[static_cast<size_t>(part)];
    p.balance -= qty;
    p.issued += qty;
  }

  // Oil in barrels is the store's bulk stock, issued by the litre and never billed whole: a
  // barrel drawn from "candidates" gives way to the next candidate sold loose.
  int Loose(const std::vector<int>& candidates, int part) const {
    auto bulk = [&](int i) {
      return Lower(parts_[static_cast<size_t>(i)].description).find("barrel") != std::string::npos;
    };
    if (!bulk(part)) return part;
    const auto at = std::find(candidates.begin(), candidates.end(), part);
    for (size_t k = 1; k < candidates.size(); ++k) {
      const int next =
          candidates[(static_cast<size_t>(at - candidates.begin()) + k) % candidates.size()];
      if (!bulk(next)) return next;
    }
    return part;
  }

  // A part whose description holds "words", of the vehicle's own model where there is one, else
  // any genuine spare.
  int PartFor(const std::string& words, const std::string& model) {
    static const char* kModels[] = {"sarathi", "sprint", "toofan",  "shaurya",
                                    "sakhi",   "urja",   "evolt s", "evolt x"};
    std::string own;
    for (const char* name : kModels) {
      if (Lower(model).find(name) != std::string::npos) own = name;
    }
    const std::string wanted = Lower(words);
    std::vector<int> fitting, any;
    for (size_t i = 0; i < parts_.size(); ++i) {
      const std::string text = Lower(parts_[i].description);
      if (parts_[i].mrp <= 0 || text.find(wanted) == std::string::npos ||
          text.find("cycle") != std::string::npos) {
        continue;
      }
      any.push_back(static_cast<int>(i));
      if (!own.empty() && text.find(own) != std::string::npos) {
        fitting.push_back(static_cast<int>(i));
      }
    }
    if (!fitting.empty()) return Loose(fitting, random_.Pick(fitting));
    if (!any.empty()) return Loose(any, random_.Pick(any));
    std::vector<int> spares;
    for (size_t i = 0; i < parts_.size(); ++i) {
      if (parts_[i].type.starts_with("S") && parts_[i].mrp > 0) {
        spares.push_back(static_cast<int>(i));
      }
    }
    return random_.Pick(spares);
  }

  const Mechanic& MechanicOf(int id) const {
    for (const Mechanic& m : mechanics_) {
      if (m.id == id) return m;
    }
    throw std::logic_error("no mechanic " + std::to_string(id));
  }
  std::vector<int> Staff(int branch, char role) const {
    std::vector<int> ids;
    for (const Mechanic& m : mechanics_) {
      if (m.branch == branch && m.role == role) ids.push_back(m.id);
    }
    return ids;
  }

  void AddMechanics();
  void AddAccounts();
  Party PartyOfCustomer(const Customer& c) const;
  Party PartyOfAccount(const Account& a) const;
  Party WalkIn(int branch);
  std::vector<ServicedVehicle> Vehicles();
  void PlanJobs();
  void Work(Job& job);
  WsLine PartLine(int part, int qty, Day day, bool inter_state, int discount_percent) const;
  WsLine LabourLineOf(const LabourCode& code, Day day, bool inter_state) const;
  void BillJob(Job& job);
  void AddProformas();
  void AddCounterSales();
  void AddClaims();
  void IssueEInvoices();
  void AddFollowUps();
  std::string SignedQrOf(const std::string& buyer, const std::string& num, Day date, int64_t total,
                         const std::vector<WsLine>& lines, const std::string& irn,
                         int ack_seconds) const;

  const Dealership& d_;
  Random& random_;
  std::vector<Part>& parts_;
  std::set<std::string> mobiles_;
  std::vector<Account> accounts_;
  std::vector<Mechanic> mechanics_;
  std::vector<Job> jobs_;
  std::vector<Bill> job_bills_;
  std::vector<Bill> counter_bills_;
  std::vector<Proforma> proformas_;
  std::vector<Claim> claims_;
  std::vector<FollowUp> follow_ups_;
  Numbering numbering_;
};

void Floor::AddMechanics() {
  struct Hand {
    const char* name;
    char role;
    int branch;
    const char* skill;
  };
  static const Hand kHands[] = {
      {"Rajendra Deshmukh", 'S', 1, "Works manager, motorcycles"},
      {"Sunil Kulkarni", 'S', 1, "Electric vehicles and electricals"},
      {"Santosh Kale", 'M', 1, "Engines and transmission"},
      {"Ganesh Shinde", 'M', 1, "Periodic service"},
      {"Rahul Pawar", 'M', 1, "Electricals"},
      {"Amol Gaikwad", 'M', 1, "Electric scooters"},
      {"Imran Shaikh", 'M', 1, "Body and paint"},
      {"Anil Chavan", 'S', 2, "Branch workshop in charge"},
      {"Vikas Jagtap", 'M', 2, "Periodic service"},
      {"Nilesh Kadam", 'M', 2, "Engines and suspension"},
      {"Vijay Nimbalkar", 'S', 3, "Branch workshop in charge"},
      {"Dattatray Jadhav", 'M', 3, "Periodic service"},
      {"Prakash Waghmare", 'M', 3, "Engines and electricals"},
  };
  int id = kFirstMechanic;
  for (const Hand& h : kHands) {
    Mechanic m;
    m.id = id++;
    m.name = h.name;
    m.role = h.role;
    m.branch = h.branch;
    m.skill = h.skill;
    do {
      m.mobile = std::string(1, "6789"[random_.Below(4)]) + random_.Digits(9);
    } while (!mobiles_.insert(m.mobile).second);
    m.joined = Day::FromYmd(2012 + random_.Below(11), 1 + random_.Below(12), 1 + random_.Below(28));
    mechanics_.push_back(m);
  }
}

Party Floor::PartyOfCustomer(const Customer& c) const {
  Party p;
  p.customer = c.id;
  p.name = c.business ? c.name : c.title + " " + c.name;
  p.add1 = c.add1;
  p.add2 = c.add3.empty() || c.add3 == c.city ? c.add2 : c.add2 + ", " + c.add3;
  p.city = c.city;
  p.pin = c.pin;
  p.state = c.state;
  p.state_code = c.state_code;
  p.mobile = c.mobile;
  p.gstin = c.gstin;
  for (const Account& a : accounts_) {
    if (a.gstin == c.gstin && !c.gstin.empty()) p.account = a.id;
  }
  return p;
}

Party Floor::PartyOfAccount(const Account& a) const {
  Party p;
  p.account = a.id;
  p.name = a.name;
  p.add1 = a.add1;
  p.add2 = a.add3.empty() || a.add3 == a.town ? a.add2 : a.add2 + ", " + a.add3;
  p.city = a.town;
  p.pin = a.pin;
  p.state = a.state;
  p.state_code = a.state_code;
  p.mobile = a.mobile.empty() ? a.phone : a.mobile;
  p.gstin = a.gstin;
  return p;
}

Party Floor::WalkIn(int branch) {
  const Customer c = DrawPerson(random_, 0, branch, mobiles_);
  Party p = PartyOfCustomer(c);
  p.customer = 0;
  return p;
}

// The workshop's customers on account: two businesses whose fleets it services (one from
// Karnataka, billed across the state line) and the fleet buyers of the sales.
void Floor::AddAccounts() {
  // A customer on account: no phone of its own, no opening balance.
  auto account = [](int id, std::string name, std::string add1, std::string add2, std::string add3,
                    std::string town, std::string district, std::string state,
                    std::string state_code, std::string pin, std::string pan, std::string mobile,
                    std::string email, std::string contact) {
    return MakeAccount(id, std::move(name), "CUSTOMER", std::move(add1), std::move(add2),
                       std::move(add3), std::move(town), std::move(district), std::move(state),
                       std::move(state_code), std::move(pin), std::move(pan), "", std::move(mobile),
                       std::move(email), std::move(contact), 0);
  };
  accounts_.push_back(account(kRayaraLogistics, "Rayara Logistics Pvt Ltd", "No. 17, Auto Nagar",
                              "Khanapur Road", "Udyambag", "Belagavi", "Belagavi", "Karnataka",
                              "29", "590008", "AAGCR6612H", "9448077120",
                              "fleet@rayaralogistics.example", "Shrinivas Kulkarni"));
  accounts_.push_back(account(kPuneRides, "Pune Rides Bike Rentals LLP", "Shop 6, Station Plaza",
                              "Sadhu Vaswani Road", "Camp", "Pune", "Pune", "Maharashtra", "27",
                              "411001", "ABAFP3390Q", "9970045512", "ops@puneriders.example",
                              "Kunal Mehta"));
  // A fleet buyer keeps the one ledger the books give every customer, so that its vehicle
  // invoices and its job bills are owed on the same account.
  for (const Customer& c : d_.customers) {
    if (!c.business || c.gstin.empty()) continue;
    Account a = account(CustomerLedger(c.id), c.name, c.add1, c.add2, c.add3, c.city, c.district,
                        c.state, c.state_code, c.pin, c.pan, c.mobile, c.email, "Accounts");
    a.gstin = c.gstin;
    accounts_.push_back(a);
  }
}

std::string OutsideRegistration(Random& random) {
  static const char* kSeries[] = {"MH12", "MH12", "MH14", "MH42", "MH11", "MH16"};
  return std::string(kSeries[random.Below(6)]) + " " + random.Letters(2) + " " +
         std::to_string(random.Between(1000, 9999));
}

// A VIN in the maker's pattern for a vehicle the dealership did not sell.
std::string OutsideVin(Random& random, const std::string& wmi, int year) {
  static const char kYears[] = "PRSTV";  // 2023 … 2027
  std::string vin = wmi + random.Letters(2, "ABCDEFGHJKLMNPRSTUVWXYZ") + random.Digits(3) + "0" +
                    kYears[std::clamp(year - 2023, 0, 4)] + "H" + random.Digits(6);
  vin[8] = VinCheckDigit(vin);
  return vin;
}

std::vector<ServicedVehicle> Floor::Vehicles() {
  std::vector<ServicedVehicle> vehicles;
  for (const Invoice& inv : d_.invoices) {
    if (inv.itype != 'R' || inv.units.empty()) continue;
    const VehicleModel& m = d_.model(inv.units[0].model);
    if (!m.registered() || inv.regno.empty()) continue;
    const Vehicle& v = d_.vehicle(inv.units[0].vehicle);
    ServicedVehicle s;
    s.vehicle = v.id;
    s.regno = inv.regno;
    s.chassis = v.chassis;
    s.engine = v.engine;
    s.make = m.make;
    s.model = m.Name();
    s.color = d_.color(v.color).name;
    s.category = m.category;
    s.sold = inv.date;
    s.first_visit = inv.date.Plus(random_.Between(25, 40));
    s.km_per_day = random_.Between(18, 45);
    s.branch = inv.branch;
    s.owner = PartyOfCustomer(d_.customer(inv.customer));
    s.comes_back = random_.Percent(85);
    vehicles.push_back(s);
  }
  // Vehicles bought elsewhere: the makers' other dealers, a fleet in Karnataka, a rental firm.
  const int outside = 45;
  for (int i = 0; i < outside; ++i) {
    const int pick = random_.Below(10);
    const VehicleModel& m = d_.model(pick < 3   ? ids::kEvoltS
                                     : pick < 6 ? ids::kSprintDrum
                                     : pick < 8 ? ids::kUrjaDrum
                                                : ids::kToofanDrum);
    ServicedVehicle s;
    const int year = 2023 + random_.Below(2);
    s.chassis = OutsideVin(random_, m.category == Category::kElectric ? "MDE" : "MDV", year);
    s.engine = m.engine_prefix + random_.Code(1, 6);
    s.regno = OutsideRegistration(random_);
    s.make = m.make;
    s.model = m.Name();
    s.color = d_.color(random_.Pick(m.colors)).name;
    s.category = m.category;
    s.first_visit = kFirstDay.Plus(random_.Between(2, 560));
    s.km_per_day = random_.Between(20, 60);
    s.branch = 1 + random_.Weighted({60, 25, 15});
    s.comes_back = random_.Percent(60);
    if (i < 4) {
      s.owner = PartyOfAccount(accounts_[0]);  // Rayara Logistics' e-scooters
      s.category = Category::kElectric;
      s.model = d_.model(ids::kEvoltX).Name();
      s.chassis = OutsideVin(random_, "MDE", year);
      s.regno = "KA22 " + random_.Letters(2) + " " + std::to_string(random_.Between(1000, 9999));
      s.branch = 1;
      s.comes_back = true;
    } else if (i < 8) {
      s.owner = PartyOfAccount(accounts_[1]);  // Pune Rides' scooters
      s.branch = 1;
      s.comes_back = true;
    } else {
      s.owner = WalkIn(s.branch);
    }
    s.start_kms = random_.Between(2500, 24000);
    vehicles.push_back(s);
  }
  return vehicles;
}

// Visits of every vehicle: the three free services the maker gives in the first year, paid
// services after them, repairs between; numbered in date order.
void Floor::PlanJobs() {
  const std::vector<Repair>& repairs = Repairs();
  for (const ServicedVehicle& v : Vehicles()) {
    struct Visit {
      Day date;
      std::string type;
      int coupon = 0;
    };
    std::vector<Visit> visits;
    if (v.sold) {
      visits.push_back({v.first_visit, "FREE SERVICE 1", 1});
      if (v.comes_back || random_.Percent(50)) {
        visits.push_back({v.sold->Plus(random_.Between(170, 200)), "FREE SERVICE 2", 2});
      }
      if (v.comes_back) {
        visits.push_back({v.sold->Plus(random_.Between(330, 370)), "FREE SERVICE 3", 3});
      }
    } else {
      visits.push_back({v.first_visit, random_.Percent(60) ? "PAID SERVICE" : "RUNNING REPAIR"});
    }
    while (v.comes_back && visits.back().date < kLastDay) {
      const Day next = visits.back().date.Plus(random_.Between(100, 150));
      visits.push_back({next, random_.Percent(75) ? "PAID SERVICE" : "RUNNING REPAIR"});
    }
    // A repair between services now and then, and the odd accident.
    const size_t planned = visits.size();
    for (size_t i = 0; i < planned; ++i) {
      if (random_.Percent(12)) {
        visits.push_back({visits[i].date.Plus(random_.Between(20, 60)),
                          random_.Percent(20) ? "ACCIDENTAL REPAIR" : "RUNNING REPAIR"});
      }
    }
    for (Visit& visit : visits) {
      if (visit.date.weekday() == 0) visit.date = visit.date.Plus(1);  // closed on Sundays
      if (visit.date < kFirstDay.Plus(2) || visit.date > kLastDay) continue;
      Job job;
      job.date = visit.date;
      job.service_type = visit.type;
      job.branch = v.branch;
      job.vehicle = v.vehicle;
      job.regno = v.regno;
      job.chassis = v.chassis;
      job.engine = v.engine;
      job.make = v.make;
      job.model = v.model;
      job.color = v.color;
      job.sale_date = v.sold;
      job.category = v.category;
      job.party = v.owner;
      const Day since = v.sold ? *v.sold : v.first_visit;
      job.kms = (v.sold ? 0 : v.start_kms) + visit.date.DaysSince(since) * v.km_per_day +
                random_.Between(0, 99);
      if (visit.coupon != 0) {
        job.coupon_no = "FSC" + std::to_string(visit.coupon) + "-" + v.chassis.substr(11);
      }
      job.accident = visit.type == "ACCIDENTAL REPAIR";
      const bool electric = v.category == Category::kElectric;
      const bool service = visit.type.find("SERVICE") != std::string::npos;
      if (service) {
        job.complaints.push_back(
            {visit.coupon != 0 ? "Free service " + std::to_string(visit.coupon) + " due (coupon)"
                               : "Periodic service due",
             electric ? "Periodic inspection done, software updated, brakes adjusted"
                      : "Service done: engine oil changed, tuning, cleaning and lubrication"});
      }
      const int extra = service ? random_.Weighted({50, 35, 15}) : 1 + random_.Weighted({70, 30});
      std::set<size_t> chosen;
      for (int e = 0; e < extra; ++e) {
        const size_t r = static_cast<size_t>(random_.Below(static_cast<int>(repairs.size())));
        if ((electric ? repairs[r].electric : repairs[r].motor) && chosen.insert(r).second) {
          job.complaints.push_back({repairs[r].complaint, repairs[r].action});
          job.repairs.push_back(static_cast<int>(r));
        }
      }
      if (job.accident) {
        job.complaints.push_back({AccidentRepair().complaint, AccidentRepair().action});
      }
      if (job.complaints.empty()) {
        job.complaints.push_back({"General check-up and washing", "Checked and washed"});
      }
      jobs_.push_back(job);
    }
  }
  std::stable_sort(jobs_.begin(), jobs_.end(),
                   [](const Job& a, const Job& b) { return a.date < b.date; });
  int srl = kFirstJob;
  for (Job& job : jobs_) {
    job.srl = srl++;
    job.num = numbering_.Next("JC/" + d_.branch(job.branch).code, job.date);
    job.in_seconds = random_.Between(9 * 3600 + 900, 12 * 3600 + 1800);
    bool long_job = job.accident;
    for (int r : job.repairs) {
      const std::string labour = Repairs()[static_cast<size_t>(r)].labour;
      long_job = long_job || labour == "ENG-TOP" || labour == "CLT";
    }
    job.delivered = long_job ? job.date.Plus(random_.Between(1, 3)) : job.date;
    if (job.delivered.weekday() == 0) job.delivered = job.delivered.Plus(1);
    job.out_seconds = random_.Between(16 * 3600 + 1800, 19 * 3600 + 1800);
    job.open = job.delivered > kLastDay;
    job.fuel = job.category == Category::kElectric
                   ? "Battery " + std::to_string(random_.Between(3, 9) * 10) + "%"
                   : random_.Pick(std::vector<std::string>{"Reserve", "1/4", "1/2", "3/4"});
  }
}

// The mechanics' work on a job: the parts each requisitioned and the labour each did. A free
// service's labour and the repairs the warranty covers are claimed from the maker.
void Floor::Work(Job& job) {
  const std::vector<int> mechanics = Staff(job.branch, 'M');
  const std::vector<int> supervisors = Staff(job.branch, 'S');
  const bool electric = job.category == Category::kElectric;
  job.mechanic = random_.Pick(mechanics);
  if (electric && job.branch == 1) job.mechanic = mechanics[3];  // the EV hand at Hadapsar
  job.supervisor = random_.Pick(supervisors);
  const bool under_warranty = job.sale_date && job.date.DaysSince(*job.sale_date) < 730;
  auto take = [&](const std::string& words, int qty, int mechanic, bool warranty) {
    Requisition r;
    r.part = PartFor(words, job.model);
    Issue(r.part, qty);
    r.qty = qty;
    r.mechanic = mechanic;
    r.warranty = warranty;
    job.requisitions.push_back(r);
  };
  const bool service = job.service_type.find("SERVICE") != std::string::npos;
  const bool free = job.service_type.starts_with("FREE");
  if (service) {
    job.labour.push_back(
        {electric ? "EV-PMS" : (free ? "FS-LAB" : "PS-GEN"), job.mechanic, free, false});
    if (free && electric) job.labour.back().code = "FS-LAB";
    if (!electric) {
      take("engine oil", 1, job.mechanic, false);
      if (job.service_type != "FREE SERVICE 1") take("oil filter", 1, job.mechanic, false);
      if (!free && random_.Percent(40)) take("spark plug", 1, job.mechanic, false);
    }
    if (!free) job.labour.push_back({"WASH", job.mechanic, false, false});
  }
  for (int index : job.repairs) {
    const Repair& repair = Repairs()[static_cast<size_t>(index)];
    const int hand = random_.Percent(30) ? random_.Pick(mechanics) : job.mechanic;
    const bool warranty = under_warranty && repair.warranty && random_.Percent(70);
    job.labour.push_back({repair.labour, hand, false, warranty});
    for (const char* words : repair.parts) {
      take(words, std::string(words) == "oil seal" ? 2 : 1, hand, warranty);
    }
  }
  if (job.accident) {
    const int hand = Staff(job.branch, 'M').back();
    job.labour.push_back({"BODY", hand, false, false});
    job.labour.push_back({"PAINT", hand, false, false});
    for (const char* words : AccidentRepair().parts) take(words, 1, hand, false);
  }
  if (job.labour.empty()) job.labour.push_back({"WASH", job.mechanic, false, false});
  // One requisition slip per mechanic.
  std::map<int, std::string> slips;
  for (Requisition& r : job.requisitions) {
    auto [slip, fresh] = slips.try_emplace(r.mechanic);
    if (fresh) slip->second = numbering_.Next("RQ/" + d_.branch(job.branch).code, job.date);
    r.req_no = slip->second;
  }
  int64_t estimate = 0;
  for (const Requisition& r : job.requisitions) {
    if (!r.warranty) estimate += parts_[static_cast<size_t>(r.part)].mrp * r.qty;
  }
  for (const LabourLine& l : job.labour) {
    if (!l.free && !l.warranty) estimate += Rs(Labour(l.code).rupees) * (100 + kLabourRate) / 100;
  }
  job.estimate = (estimate + Rs(50) - 1) / Rs(50) * Rs(50);
  // The next visit the workshop will remind the customer of.
  if (job.service_type == "FREE SERVICE 1" && job.sale_date) {
    job.next_date = job.sale_date->Plus(180);
  } else if (job.service_type == "FREE SERVICE 2" && job.sale_date) {
    job.next_date = job.sale_date->Plus(365);
  } else {
    job.next_date = job.date.Plus(120);
  }
  job.next_kms = (job.kms / 500 + (service ? 6 : 4)) * 500;
}

WsLine Floor::PartLine(int part, int qty, Day day, bool inter_state, int discount_percent) const {
  const Part& p = parts_[static_cast<size_t>(part)];
  WsLine l;
  l.kind = 'P';
  l.code = p.part_no;
  l.description = p.description;
  l.hsn = p.hsn;
  l.uqc = p.uqc;
  l.qty = qty;
  l.mrp = p.mrp;
  l.gst_rate = PartRate(part, day);
  l.rate = TaxableOf(p.mrp, l.gst_rate);
  l.amount = l.rate * qty;
  l.discount = (l.amount * discount_percent + 50) / 100;
  l.inter_state = inter_state;
  const LineTax tax = TaxOn(l.amount - l.discount, l.gst_rate, inter_state);
  l.taxable = tax.taxable;
  l.cgst = tax.cgst;
  l.sgst = tax.sgst;
  l.igst = tax.igst;
  l.net = tax.net;
  return l;
}

WsLine Floor::LabourLineOf(const LabourCode& code, Day, bool inter_state) const {
  WsLine l;
  l.kind = 'L';
  l.code = code.code;
  l.description = code.text;
  l.hsn = kLabourSac;
  l.uqc = "OTH";
  l.qty = 1;
  l.rate = Rs(code.rupees);
  l.amount = l.rate;
  l.gst_rate = kLabourRate;
  l.inter_state = inter_state;
  const LineTax tax = TaxOn(l.amount, kLabourRate, inter_state);
  l.taxable = tax.taxable;
  l.cgst = tax.cgst;
  l.sgst = tax.sgst;
  l.igst = tax.igst;
  l.net = tax.net;
  return l;
}

// The job's bill: the parts and labour the customer pays for, on the day the vehicle goes out.
void Floor::BillJob(Job& job) {
  Bill bill;
  bill.id = kFirstJobInvoice + static_cast<int>(job_bills_.size());
  bill.date = job.delivered;
  bill.branch = job.branch;
  bill.job = job.srl;
  bill.party = job.party;
  bill.ma_rv = job.party.account != 0 ? kCredit : kCash;
  bill.num = numbering_.Next(bill.ma_rv == kCash ? "JI" : "JCR", bill.date);
  bill.pos_state = job.party.state;
  bill.pos_code = job.party.state_code;
  bill.paymode = bill.ma_rv == kCredit
                     ? "Credit, 30 days"
                     : random_.Pick(std::vector<std::string>{"Cash", "Cash", "UPI", "UPI", "Card"});
  bill.prepared_by = MechanicOf(job.supervisor).name;
  const bool inter = bill.inter_state();
  const int discount = job.party.account != 0 ? 5 : 0;
  for (const Requisition& r : job.requisitions) {
    if (r.warranty) continue;
    WsLine l = PartLine(r.part, r.qty, bill.date, inter, discount);
    l.mechanic = r.mechanic;
    bill.lines.push_back(l);
  }
  for (const LabourLine& labour : job.labour) {
    if (labour.free || labour.warranty) continue;
    WsLine l = LabourLineOf(Labour(labour.code), bill.date, inter);
    l.mechanic = labour.mechanic;
    bill.lines.push_back(l);
  }
  if (bill.lines.empty()) {
    WsLine l = LabourLineOf(Labour("WASH"), bill.date, inter);
    l.mechanic = job.mechanic;
    bill.lines.push_back(l);
  }
  bill.remarks = job.next_date ? "Next service due on " + job.next_date->Dmy() + " or at " +
                                     std::to_string(job.next_kms) + " km, whichever is earlier"
                               : "";
  job.invoice = bill.id;
  job_bills_.push_back(bill);
}

// Estimates the customer approves before the work: accident repairs (for the insurer), engine
// overhauls, and the jobs still open at the end of the year.
void Floor::AddProformas() {
  for (const Job& job : jobs_) {
    bool wanted = job.accident || job.open;
    for (int r : job.repairs)
      wanted = wanted || std::string(Repairs()[static_cast<size_t>(r)].labour) == "ENG-TOP";
    if (!wanted) continue;
    Proforma p;
    p.job = job.srl;
    p.date = job.date;
    p.valid_upto = job.date.Plus(15);
    p.num = numbering_.Next("PF", job.date);
    p.remarks = job.accident ? "Estimate for the insurance claim; subject to the surveyor's "
                               "approval"
                             : "Estimate for the customer's approval; parts found worn on "
                               "opening will be added with consent";
    const bool inter = job.party.state_code != kFirmState;
    for (const Requisition& r : job.requisitions) {
      if (!r.warranty) p.lines.push_back(PartLine(r.part, r.qty, job.date, inter, 0));
    }
    for (const LabourLine& labour : job.labour) {
      if (!labour.free && !labour.warranty) {
        p.lines.push_back(LabourLineOf(Labour(labour.code), job.date, inter));
      }
    }
    if (!p.lines.empty()) proformas_.push_back(p);
  }
}

// Parts sold over the counter: to walk-in riders, to local garages, to the sub-dealers (shipped
// to them, so those in other states are billed with IGST) and to the fleet customers.
void Floor::AddCounterSales() {
  static const char* kGarages[][3] = {
      {"Shree Datta Auto Garage", "Shop 2, Gadital", "Hadapsar"},
      {"Bhairavnath Two Wheeler Works", "Near Bus Stand", "Chakan"},
      {"Jay Malhar Auto Care", "Indapur Road", "Baramati"},
  };
  std::vector<const Account*> subdealers;
  for (const Account& a : d_.accounts) {
    if (a.group == "SUBDEALER") subdealers.push_back(&a);
  }
  const int count = 110;
  std::vector<Day> days;
  for (int i = 0; i < count; ++i) days.push_back(kFirstDay.Plus(random_.Between(1, 638)));
  std::sort(days.begin(), days.end());
  for (int i = 0; i < count; ++i) {
    Bill bill;
    bill.id = kFirstCounterInvoice + i;
    bill.date = days[static_cast<size_t>(i)];
    if (bill.date.weekday() == 0) bill.date = bill.date.Plus(1);
    const int kind = random_.Weighted({50, 15, 25, 10});
    bill.branch = kind == 2 ? 1 : 1 + random_.Weighted({60, 25, 15});
    int discount = 0, lines = 1 + random_.Below(3), most = 2;
    if (kind == 0) {
      bill.party = WalkIn(bill.branch);
    } else if (kind == 1) {
      const auto& garage = kGarages[bill.branch - 1];
      bill.party.name = garage[0];
      bill.party.add1 = garage[1];
      bill.party.city = garage[2];
      bill.party.state = "Maharashtra";
      bill.party.state_code = kFirmState;
      bill.party.pin = bill.branch == 1 ? "411028" : bill.branch == 2 ? "410501" : "413102";
      bill.party.mobile = "98" + random_.Digits(8);
      discount = 5;
      lines = 2 + random_.Below(4);
      most = 4;
    } else if (kind == 2) {
      bill.party = PartyOfAccount(*random_.Pick(subdealers));
      discount = 10;
      lines = 3 + random_.Below(5);
      most = 10;
    } else {
      bill.party = PartyOfAccount(accounts_[static_cast<size_t>(2 + random_.Below(3))]);
      discount = 5;
      lines = 2 + random_.Below(3);
      most = 4;
    }
    bill.ma_rv = bill.party.account != 0 ? kCredit : kCash;
    bill.num = numbering_.Next(bill.ma_rv == kCash ? "CI" : "CCR", bill.date);
    bill.pos_state = bill.party.state;
    bill.pos_code = bill.party.state_code;
    bill.paymode = bill.ma_rv == kCredit ? "Credit, 30 days"
                                         : random_.Pick(std::vector<std::string>{"Cash", "UPI"});
    bill.prepared_by = "Parts counter, " + d_.branch(bill.branch).name;
    std::set<int> taken;
    for (int l = 0; l < lines; ++l) {
      const int part = random_.Below(static_cast<int>(parts_.size()));
      if (parts_[static_cast<size_t>(part)].mrp <= 0 || !taken.insert(part).second) continue;
      const int qty = 1 + random_.Below(most);
      Issue(part, qty);
      bill.lines.push_back(PartLine(part, qty, bill.date, bill.inter_state(), discount));
    }
    if (bill.lines.empty()) {
      const int oil = PartFor("engine oil", "");
      Issue(oil, 1);
      bill.lines.push_back(PartLine(oil, 1, bill.date, bill.inter_state(), discount));
    }
    if (kind == 2) {
      bill.remarks = "Dispatched by ST parcel to " + bill.party.city;
    }
    counter_bills_.push_back(bill);
  }
}

// Each month's warranty repairs and free services, claimed from the maker of the vehicles early
// the next month: Vayu Motocorp (Hosur, so IGST) for motorcycles and scooters, Vayu Electric
// (Chakan) for the electric scooters.
void Floor::AddClaims() {
  std::map<std::tuple<Day, std::string, int>, Claim> by_month;
  auto claim_of = [&](const Job& job, const std::string& from) -> Claim& {
    const int maker = job.category == Category::kElectric ? ids::kVayuElectric : ids::kVayuMotocorp;
    const Day month = job.delivered.FirstOfMonth();
    Claim& c = by_month[{month, from, maker}];
    if (c.maker == 0) {
      c.maker = maker;
      c.from = from;
      c.date = std::min(month.PlusMonths(1).Plus(4), kLastDay);
      c.branch = 1;
    }
    return c;
  };
  for (const Job& job : jobs_) {
    if (job.open) continue;
    const bool inter = job.category != Category::kElectric;  // Hosur is in Tamil Nadu
    for (const LabourLine& labour : job.labour) {
      if (labour.free) {
        Claim& c = claim_of(job, kFreeServiceClaim);
        const int coupon = job.service_type.back() - '0';
        LabourCode code{"FS-CLM", "", 200 + 50 * coupon, 1.5};
        WsLine l = LabourLineOf(code, c.date, inter);
        l.code = job.coupon_no;
        l.description = "Free service " + std::to_string(coupon) + " labour, " + job.model;
        l.job = job.srl;
        l.chassis = job.chassis;
        l.regno = job.regno;
        c.lines.push_back(l);
      } else if (labour.warranty) {
        Claim& c = claim_of(job, kWarrantyClaim);
        WsLine l = LabourLineOf(Labour(labour.code), c.date, inter);
        l.description = "Warranty labour: " + l.description;
        l.job = job.srl;
        l.chassis = job.chassis;
        l.regno = job.regno;
        c.lines.push_back(l);
      }
    }
    for (const Requisition& r : job.requisitions) {
      if (!r.warranty) continue;
      Claim& c = claim_of(job, kWarrantyClaim);
      WsLine l = PartLine(r.part, r.qty, c.date, inter, 0);
      l.job = job.srl;
      l.chassis = job.chassis;
      l.regno = job.regno;
      c.lines.push_back(l);
    }
  }
  for (auto& [key, claim] : by_month) claims_.push_back(claim);
  std::stable_sort(claims_.begin(), claims_.end(),
                   [](const Claim& a, const Claim& b) { return a.date < b.date; });
  int id = kFirstClaim;
  for (Claim& c : claims_) {
    c.id = id++;
    c.num = numbering_.Next(c.from, c.date);
    c.maker_ref =
        (c.maker == ids::kVayuElectric ? "VEM/" : "VMC/") + c.from + "/" + random_.Digits(7);
  }
}

std::string Floor::SignedQrOf(const std::string& buyer, const std::string& num, Day date,
                              int64_t total, const std::vector<WsLine>& lines,
                              const std::string& irn, int ack_seconds) const {
  return SignedQr("{\"SellerGstin\":\"" + d_.firm.gstin + "\",\"BuyerGstin\":\"" + buyer +
                  "\",\"DocNo\":\"" + num + "\",\"DocTyp\":\"INV\",\"DocDt\":\"" + date.Dmy() +
                  "\",\"TotInvVal\":" + MoneyText(total) +
                  ",\"ItemCnt\":" + std::to_string(lines.size()) + ",\"MainHsnCode\":\"" +
                  lines[0].hsn + "\",\"Irn\":\"" + irn + "\",\"IrnDt\":\"" +
                  StampText({date, ack_seconds}) + "\"}");
}

// Bills to GST-registered buyers and the claims on the makers are reported to the invoice
// registration portal.
void Floor::IssueEInvoices() {
  std::set<std::string> acks;
  auto issue = [&](const std::string& buyer, const std::string& num, Day date, int64_t total,
                   const std::vector<WsLine>& lines, std::string& irn, std::string& ack_no,
                   int& ack_seconds, std::string& qr) {
    irn = Sha256Hex(d_.firm.gstin + date.LongFinancialYear() + "INV" + num);
    do {
      ack_no = "1" + Padded(date.year() % 100, 2) + "7" + random_.Digits(11);
    } while (!acks.insert(ack_no).second);
    ack_seconds = random_.Between(17 * 3600, 20 * 3600);
    qr = SignedQrOf(buyer, num, date, total, lines, irn, ack_seconds);
  };
  for (std::vector<Bill>* bills : {&job_bills_, &counter_bills_}) {
    for (Bill& b : *bills) {
      if (b.party.gstin.empty()) continue;
      issue(b.party.gstin, b.num, b.date, b.Total(), b.lines, b.irn, b.ack_no, b.ack_seconds,
            b.qr_text);
    }
  }
  for (Claim& c : claims_) {
    issue(d_.account(c.maker).gstin, c.num, c.date, c.Total(), c.lines, c.irn, c.ack_no,
          c.ack_seconds, c.qr_text);
  }
}

// The service reminder of every vehicle, from its last visit.
void Floor::AddFollowUps() {
  std::map<std::string, const Job*> last;
  for (const Job& job : jobs_) last[job.chassis] = &job;
  std::vector<const Job*> latest;
  for (const auto& [chassis, job] : last) latest.push_back(job);
  std::sort(latest.begin(), latest.end(),
            [](const Job* a, const Job* b) { return a->next_date < b->next_date; });
  static const char* kCalls[] = {"Customer will come on Saturday",
                                 "Not reachable, SMS sent",
                                 "Asked to call next week",
                                 "Will come after the festival",
                                 "Vehicle used out of town, will inform",
                                 "Appointment booked for pick-up and drop"};
  int id = kFirstFollowUp;
  for (const Job* job : latest) {
    if (job->open || !job->next_date) continue;
    FollowUp f;
    f.id = id++;
    f.job = job->srl;
    f.due_date = *job->next_date;
    f.due_kms = job->next_kms;
    f.due_service = job->service_type == "FREE SERVICE 1"   ? "FREE SERVICE 2"
                    : job->service_type == "FREE SERVICE 2" ? "FREE SERVICE 3"
                                                            : "PAID SERVICE";
    if (f.due_date <= kLastDay && random_.Percent(70)) {
      f.status = "CALLED";
      f.called_on = std::max(job->delivered.Plus(1), f.due_date.Plus(-random_.Between(2, 7)));
      f.remarks = kCalls[random_.Below(6)];
    } else {
      f.status = "PENDING";
    }
    follow_ups_.push_back(f);
  }
}

const std::vector<std::string> kPartyColumns = {"cname",  "cadd1",      "cadd2",   "ccity", "cpin",
                                                "cstate", "cstatecode", "cmobile", "cgstin"};
const std::vector<std::string> kLineColumns = {
    "item_kind", "code",     "description", "hsn",      "uqc",      "qty",       "mrp",
    "rate",      "amount",   "discount",    "taxable",  "gst_rate", "cgst_rate", "cgst_amt",
    "sgst_rate", "sgst_amt", "igst_rate",   "igst_amt", "netprice"};

std::vector<std::string> Columns(std::vector<std::string> head,
                                 const std::vector<std::string>& more,
                                 const std::vector<std::string>& tail = {}) {
  head.insert(head.end(), more.begin(), more.end());
  head.insert(head.end(), tail.begin(), tail.end());
  return head;
}

void Append(std::vector<Cell>& row, const Party& p) {
  for (const std::string* text :
       {&p.name, &p.add1, &p.add2, &p.city, &p.pin, &p.state, &p.state_code, &p.mobile, &p.gstin}) {
    row.push_back(Text(*text));
  }
}

void Append(std::vector<Cell>& row, const WsLine& l) {
  const bool part = l.kind == 'P';
  row.insert(row.end(),
             {std::string(1, l.kind), l.code, l.description, l.hsn, l.uqc, Int(l.qty),
              part ? Paise(l.mrp) : Cell(kNull), Paise(l.rate), Paise(l.amount), Paise(l.discount),
              Paise(l.taxable), Int(l.gst_rate), l.inter_state ? Rate(0, 1) : Rate(l.gst_rate, 2),
              Paise(l.cgst), l.inter_state ? Rate(0, 1) : Rate(l.gst_rate, 2), Paise(l.sgst),
              l.inter_state ? Rate(l.gst_rate, 1) : Rate(0, 1), Paise(l.igst), Paise(l.net)});
}

struct Totals {
  int64_t parts = 0, labour = 0, discount = 0, taxable = 0, cgst = 0, sgst = 0, igst = 0;
};

Totals Sum(const std::vector<WsLine>& lines) {
  Totals t;
  for (const WsLine& l : lines) {
    (l.kind == 'P' ? t.parts : t.labour) += l.amount;
    t.discount += l.discount;
    t.taxable += l.taxable;
    t.cgst += l.cgst;
    t.sgst += l.sgst;
    t.igst += l.igst;
  }
  return t;
}

Cell Stamped(const std::string& text, Day day, int seconds) {
  return text.empty() ? Cell(kNull) : Cell(Stamp{day, seconds});
}

void Floor::Write(Dataset& out) const {
  // The workshop's customers on account join the account master.
  if (Table* accounts = out.Find("fa_acmaster")) {
    for (const Account& a : accounts_) accounts->Add(AccountRow(a));
  }

  Table& mechanics = out.Create(
      "ws_mechanic", {"mech_id", "mech_name", "mech_type", "br_id", "mobile", "skill", "joined"});
  for (const Mechanic& m : mechanics_) {
    mechanics.Add(
        {Int(m.id), m.name, std::string(1, m.role), Int(m.branch), m.mobile, m.skill, m.joined});
  }

  Table& cards = out.Create(
      "ws_jobcard",
      Columns(
          {"job_srl", "job_no", "job_date", "job_intime", "br_id", "cust_id", "am_id", "veh_id"},
          kPartyColumns,
          {"regno", "chassis", "engine", "make", "model", "color", "sale_date", "kms", "fuel_level",
           "service_type", "coupon_no", "mech_id", "sup_id", "est_amount", "promised", "delivered",
           "status", "next_date", "next_kms"}));
  Table& complaints = out.Create("ws_jobcomplaint", {"job_srl", "line", "complaint", "action"});
  Table& requisitions = out.Create(
      "ws_requisition", {"req_id", "job_srl", "req_no", "req_date", "mech_id", "line", "part_no",
                         "part_desc", "part_type", "hsn", "qty", "mrp", "warranty"});
  Table& labour = out.Create("ws_labour", {"lab_id", "job_srl", "line", "lab_code", "lab_desc",
                                           "mech_id", "hours", "charge", "claim"});
  int req_id = 0, lab_id = 0;
  for (const Job& j : jobs_) {
    std::vector<Cell> row = {Int(j.srl),
                             j.num,
                             j.date,
                             Stamp{j.date, j.in_seconds},
                             Int(j.branch),
                             Id(j.party.customer),
                             Id(j.party.account),
                             Id(j.vehicle)};
    Append(row, j.party);
    row.insert(row.end(), {j.regno, j.chassis, Text(j.engine), j.make, j.model, j.color,
                           OptionalDay(j.sale_date), Int(j.kms), j.fuel, j.service_type,
                           Text(j.coupon_no), Int(j.mechanic), Int(j.supervisor), Paise(j.estimate),
                           Stamp{j.delivered, j.out_seconds},
                           j.open ? Cell(kNull) : Cell(Stamp{j.delivered, j.out_seconds}),
                           j.open ? "OPEN" : "BILLED", OptionalDay(j.next_date), Int(j.next_kms)});
    cards.Add(std::move(row));
    int line = 0;
    for (const Complaint& c : j.complaints) {
      complaints.Add({Int(j.srl), Int(++line), c.complaint, j.open ? Cell(kNull) : Cell(c.action)});
    }
    line = 0;
    for (const Requisition& r : j.requisitions) {
      const Part& p = parts_[static_cast<size_t>(r.part)];
      requisitions.Add({Int(++req_id), Int(j.srl), r.req_no, j.date, Int(r.mechanic), Int(++line),
                        p.part_no, p.description, p.type, p.hsn, Int(r.qty), Paise(p.mrp),
                        r.warranty ? "Y" : "N"});
    }
    line = 0;
    for (const LabourLine& l : j.labour) {
      const LabourCode& code = Labour(l.code);
      const double hours = code.hours;
      labour.Add({Int(++lab_id), Int(j.srl), Int(++line), l.code, code.text, Int(l.mechanic),
                  Decimal{std::to_string(static_cast<int>(hours)) + "." +
                          std::to_string(static_cast<int>(hours * 100) % 100 / 10) +
                          std::to_string(static_cast<int>(hours * 100) % 10)},
                  Paise(Rs(code.rupees)),
                  l.free       ? Cell(std::string(kFreeServiceClaim))
                  : l.warranty ? Cell(std::string(kWarrantyClaim))
                               : Cell(kNull)});
    }
  }

  auto bills = [&](const char* name, const char* lines_name, const std::vector<Bill>& list,
                   bool job) {
    Table& head = out.Create(
        name,
        Columns({"id", "ma_rv", "inv_no", "inv_date", "job_srl", "br_id", "cust_id", "am_id"},
                kPartyColumns,
                {"pos_state", "pos_code", "paymode", "tot_parts", "tot_labour", "tot_discount",
                 "tot_taxable", "tot_cgst", "tot_sgst", "tot_igst", "round_off", "invamt", "irn",
                 "ack_no", "ack_date", "qr_text", "remarks", "prepared_by"}));
    Table& det = out.Create(lines_name, Columns({"invid", "line"}, kLineColumns, {"mech_id"}));
    for (const Bill& b : list) {
      const Totals t = Sum(b.lines);
      std::vector<Cell> row = {Int(b.id),
                               b.ma_rv,
                               b.num,
                               b.date,
                               Id(job ? b.job : 0),
                               Int(b.branch),
                               Id(b.party.customer),
                               Id(b.party.account)};
      Append(row, b.party);
      row.insert(row.end(), {b.pos_state, b.pos_code, b.paymode, Paise(t.parts), Paise(t.labour),
                             Paise(t.discount), Paise(t.taxable), Paise(t.cgst), Paise(t.sgst),
                             Paise(t.igst), Paise(b.RoundOff()), Paise(b.Total()), Text(b.irn),
                             Text(b.ack_no), Stamped(b.irn, b.date, b.ack_seconds), Text(b.qr_text),
                             Text(b.remarks), b.prepared_by});
      head.Add(std::move(row));
    }
    for (const Bill& b : list) {
      int line = 0;
      for (const WsLine& l : b.lines) {
        std::vector<Cell> row = {Int(b.id), Int(++line)};
        Append(row, l);
        row.push_back(Id(l.mechanic));
        det.Add(std::move(row));
      }
    }
  };
  bills("ws_jobinv", "ws_jobinvdet", job_bills_, true);

  Table& proformas =
      out.Create("ws_proforma", {"job_srl", "pf_no", "pf_date", "valid_upto", "remarks"});
  Table& proforma_lines = out.Create("ws_proformadet", Columns({"job_srl", "line"}, kLineColumns));
  for (const Proforma& p : proformas_) {
    proformas.Add({Int(p.job), p.num, p.date, p.valid_upto, p.remarks});
  }
  for (const Proforma& p : proformas_) {
    int line = 0;
    for (const WsLine& l : p.lines) {
      std::vector<Cell> row = {Int(p.job), Int(++line)};
      Append(row, l);
      proforma_lines.Add(std::move(row));
    }
  }

  bills("ws_counterinv", "ws_counterinvdet", counter_bills_, false);

  Table& claims = out.Create(
      "ws_claim", {"docid", "docfrom", "claim_no", "claim_date", "br_id", "am_id", "maker_ref",
                   "pos_state", "pos_code", "tot_taxable", "tot_cgst", "tot_sgst", "tot_igst",
                   "round_off", "claimamt", "irn", "ack_no", "ack_date", "qr_text"});
  Table& claim_lines = out.Create(
      "ws_claimdet", Columns({"docid", "line", "job_srl", "chassis", "regno"}, kLineColumns));
  for (const Claim& c : claims_) {
    const Totals t = Sum(c.lines);
    const Account& maker = d_.account(c.maker);
    claims.Add({Int(c.id), c.from, c.num, c.date, Int(c.branch), Int(c.maker), c.maker_ref,
                maker.state, maker.state_code, Paise(t.taxable), Paise(t.cgst), Paise(t.sgst),
                Paise(t.igst), Paise(c.Total() - Net(c.lines)), Paise(c.Total()), c.irn, c.ack_no,
                Stamp{c.date, c.ack_seconds}, c.qr_text});
  }
  for (const Claim& c : claims_) {
    int line = 0;
    for (const WsLine& l : c.lines) {
      std::vector<Cell> row = {Int(c.id), Int(++line), Int(l.job), l.chassis, l.regno};
      Append(row, l);
      claim_lines.Add(std::move(row));
    }
  }

  Table& follow_ups = out.Create("ws_followup", {"fu_id", "job_srl", "due_service", "due_date",
                                                 "due_kms", "status", "called_on", "remarks"});
  for (const FollowUp& f : follow_ups_) {
    follow_ups.Add({Int(f.id), Int(f.job), f.due_service, f.due_date, Int(f.due_kms), f.status,
                    OptionalDay(f.called_on), Text(f.remarks)});
  }
}

void Floor::ChooseFacts(FactList& facts) const {
  auto add = [&](const std::string& key, const std::string& value) {
    facts.emplace_back(key, value);
  };
  auto most = [](const auto& items, const auto& fits, const auto& size, const char* what) {
    const auto* best = &items.front();
    bool found = false;
    for (const auto& item : items) {
      if (fits(item) && (!found || size(item) > size(*best))) {
        best = &item;
        found = true;
      }
    }
    if (!found) throw std::logic_error(std::string("the workshop has no ") + what);
    return best;
  };
  auto bill_facts = [&](const std::string& key, const Bill& b) {
    add(key + "_id", std::to_string(b.id));
    add(key + "_rv", b.ma_rv);
    add(key + "_amt", MoneyText(b.Total()));
  };
  auto lines = [](const Bill& b) { return b.lines.size(); };
  auto has_both = [](const Bill& b) {
    const Totals t = Sum(b.lines);
    return t.parts > 0 && t.labour > 0;
  };

  const Job* card = most(
      jobs_, [](const Job& j) { return !j.open && j.vehicle != 0 && !j.accident; },
      [](const Job& j) { return j.requisitions.size() + j.complaints.size(); }, "job card");
  add("jobcard_srl", std::to_string(card->srl));
  bill_facts("jobinv", *most(
                           job_bills_,
                           [&](const Bill& b) {
                             return b.ma_rv == kCash && !b.inter_state() && has_both(b) &&
                                    b.lines.size() <= 9;
                           },
                           lines, "cash job bill"));
  bill_facts("jobinv_credit", *most(
                                  job_bills_,
                                  [&](const Bill& b) {
                                    return b.ma_rv == kCredit && !b.inter_state() && has_both(b);
                                  },
                                  lines, "credit job bill"));
  bill_facts("jobinv_igst", *most(
                                job_bills_, [&](const Bill& b) { return b.inter_state(); }, lines,
                                "job bill to another state"));
  bill_facts("einvoice_service",
             *most(
                 job_bills_, [&](const Bill& b) { return !b.irn.empty() && has_both(b); }, lines,
                 "e-invoiced job bill"));
  const Proforma* proforma = most(
      proformas_, [](const Proforma&) { return true; },
      [](const Proforma& p) { return p.lines.size(); }, "proforma");
  add("proforma_srl", std::to_string(proforma->job));
  bill_facts("counter", *most(
                            counter_bills_,
                            [&](const Bill& b) { return b.ma_rv == kCash && b.lines.size() <= 6; },
                            lines, "cash counter bill"));
  bill_facts("counter_b2b", *most(
                                counter_bills_,
                                [&](const Bill& b) {
                                  return b.ma_rv == kCredit && !b.inter_state() && !b.irn.empty();
                                },
                                lines, "counter bill to a business"));
  bill_facts("counter_igst", *most(
                                 counter_bills_, [&](const Bill& b) { return b.inter_state(); },
                                 lines, "counter bill to another state"));
  const Claim* claim = most(
      claims_, [](const Claim& c) { return c.from == kWarrantyClaim; },
      [](const Claim& c) { return c.lines.size() <= 14 ? c.lines.size() : 0; }, "warranty claim");
  add("claim_docid", std::to_string(claim->id));
  add("claim_docfrom", claim->from);
  add("claim_amt", MoneyText(claim->Total()));
  const Claim* fsc = most(
      claims_, [](const Claim& c) { return c.from == kFreeServiceClaim; },
      [](const Claim& c) { return c.lines.size(); }, "free-service claim");
  add("claim_fsc_docid", std::to_string(fsc->id));
  add("claim_fsc_docfrom", fsc->from);
  add("claim_fsc_amt", MoneyText(fsc->Total()));

  // The lists: the busiest quarter of the mechanic and the supervisor with the most work.
  std::map<int, int> work;
  std::map<Day, int> quarters;
  for (const Job& j : jobs_) {
    work[j.mechanic] += static_cast<int>(j.requisitions.size() + j.labour.size());
    work[j.supervisor] += static_cast<int>(j.requisitions.size() + j.labour.size());
  }
  int mechanic = 0, supervisor = 0;
  for (const auto& [id, count] : work) {
    int& best = MechanicOf(id).role == 'M' ? mechanic : supervisor;
    if (best == 0 || count > work[best]) best = id;
  }
  for (const Job& j : jobs_) {
    if (j.mechanic != mechanic) continue;
    const Day month = j.date.FirstOfMonth();
    const Day quarter = month.PlusMonths(-((month.month() + 8) % 3));
    quarters[quarter] += static_cast<int>(j.requisitions.size());
  }
  Day quarter = quarters.begin()->first;
  for (const auto& [q, count] : quarters) {
    if (count > quarters[quarter] && q.PlusMonths(3) <= kLastDay.Plus(1)) quarter = q;
  }
  add("list_from", quarter.Iso());
  add("list_to", quarter.PlusMonths(3).Plus(-1).Iso());
  add("mechanic_id", std::to_string(mechanic));
  add("mechanic_name", MechanicOf(mechanic).name);
  add("supervisor_id", std::to_string(supervisor));
  add("supervisor_name", MechanicOf(supervisor).name);
  add("req_part_type", "S");

  Day first = follow_ups_.front().due_date, last = first;
  for (const FollowUp& f : follow_ups_) {
    first = std::min(first, f.due_date);
    last = std::max(last, f.due_date);
  }
  add("followup_from", first.Iso());
  add("followup_to", last.Iso());

  std::map<std::string, int> visits;
  for (const Job& j : jobs_) ++visits[j.chassis];
  std::string chassis;
  for (const Job& j : jobs_) {
    if (j.vehicle != 0 && (chassis.empty() || visits[j.chassis] > visits[chassis])) {
      chassis = j.chassis;
    }
  }
  add("history_chassis", chassis);
}

void Floor::Post(Workshop& workshop) const {
  for (const auto& [kind, list] :
       {std::pair{"SERVICE", &job_bills_}, std::pair{"COUNTER", &counter_bills_}}) {
    for (const Bill& b : *list) {
      const Totals t = Sum(b.lines);
      workshop.postings.push_back(
          {b.date, kind, b.num, b.party.account, t.taxable, t.cgst, t.sgst, t.igst, b.Total()});
    }
  }
}

}  // namespace

void AddJobs(const Dealership& sales, const Options&, Random& random, Workshop& workshop,
             Dataset& tables, FactList& facts) {
  Floor floor(sales, random, workshop);
  floor.Run();
  floor.Write(tables);
  floor.ChooseFacts(facts);
  floor.Post(workshop);
}

}  // namespace vantorel::demo
