// The demo dealership as the generator builds it: masters (firm, branches, accounts, models,
// customers) and the documents of two years of trading, in plain structs. Amounts are paise.
// masters.cc fills the masters, sales.cc the documents, tables.cc turns both into table rows.
//
// Thread-safety: plain values.
#ifndef VANTOREL_DEMO_ENTITIES_H_
#define VANTOREL_DEMO_ENTITIES_H_

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "demo/calendar.h"

namespace vantorel::demo {

// Trading runs from the first day of FY 2024-25 to the end of December 2025; enquiries cover
// FY 2024-25 only.
inline constexpr Day kFirstDay = Day::FromYmd(2024, 4, 1);
inline constexpr Day kLastDay = Day::FromYmd(2025, 12, 31);
inline constexpr Day kEnquiriesEnd = Day::FromYmd(2025, 3, 31);

// Ids of fixed masters that the trading refers to.
namespace ids {
// fa_acmaster: the manufacturers, the sub-dealers and the financiers.
inline constexpr int kVayuMotocorp = 1;  // motorcycles and scooters, Hosur (Tamil Nadu)
inline constexpr int kVayuElectric = 2;  // electric scooters, Chakan (Maharashtra)
inline constexpr int kGangaCycles = 3;   // cycles, Ludhiana (Punjab)
inline constexpr int kKrishnaAuto = 11, kSiddhivinayakMotors = 12, kYashAutomobiles = 13;
inline constexpr int kMalaprabhaMotors = 14, kCoastalMotors = 15, kNavkarAutomobiles = 16;
inline constexpr int kJansevaFinance = 31, kDeccanFinance = 32, kMahalaxmiBank = 33;
inline constexpr int kSahyadriPatsanstha = 34, kIndrayaniFinance = 35;
// item: helmets, accessories and cycle fittings.
inline constexpr int kHalfHelmet = 1, kFullHelmet = 2, kSareeGuard = 3, kCrashGuard = 4;
inline constexpr int kSeatCover = 5, kMobileHolder = 6, kFrontBasket = 7;
// vehmodel: the ones sold on purpose.
inline constexpr int kSarathiSelf = 2, kSprintDrum = 3, kToofanDrum = 5, kSakhiStandard = 9;
inline constexpr int kUrjaDrum = 11, kEvoltS = 13, kEvoltX = 14, kRoadster = 15, kTrail = 16;
inline constexpr int kKidsCycle = 17;
// customer: the fleet buyers.
inline constexpr int kSwiftParcel = 5057, kKrushidhanDairy = 5058, kOmSaiCourier = 5059;
inline constexpr int kDnyangangaSchool = 5060;
}  // namespace ids

// Whole rupees in paise.
constexpr int64_t Rs(int64_t rupees) { return rupees * 100; }

struct Firm {
  int coid = 1;
  std::string name, name_local, tagline, add1, add2, add3, city, district, state, state_code, pin;
  std::string phone, mobile, email, website, gstin, pan, dealer_code, trade_cert;
  std::string bank_name, bank_branch, bank_acno, bank_ifsc, jurisdiction, logo, terms;
};

struct Account {
  int id = 0;
  std::string name, group, add1, add2, add3, town, district, state, state_code, pin;
  std::string gstin, pan, phone, mobile, email, contact;
  int64_t opening = 0;
  bool inter_state() const { return state_code != "27"; }
};

struct Branch {
  int id = 0;
  std::string code, name, add1, add2, city, pin, phone, state, state_code, rto, rto_code, manager;
  int account = 0;
  std::vector<std::string> executives;
};

struct Customer {
  int id = 0;
  int branch = 1;
  bool business = false;
  std::string title, first_name, surname, name, relation, father, add1, add2, add3, city;
  std::string district, state, state_code, pin, mobile, phone, email, gstin, pan, aadhaar;
  std::optional<Day> birth;
  std::string occupation;
};

enum class Category { kMotorcycle, kScooter, kElectric, kCycle };
const char* CategoryCode(Category category);

struct VehicleModel {
  int id = 0;
  int supplier = 0;  // fa_acmaster id of the manufacturer
  Category category = Category::kMotorcycle;
  std::string make, code, vds, engine_prefix, model, variant, vclass, body, fuel, hsn;
  std::string cc, max_power, norms, noise, battery_kwh, motor_kw, wheel, type_approval;
  std::string mfr_name, mfr_add, battery_make;
  int cylinders = 0, seating = 0, wheelbase = 0, unladen = 0, gross = 0, gears = 0;
  int64_t base_taxable = 0;  // the value before GST that the price lists are built from
  std::vector<int> colors;
  std::string Name() const { return model + " " + variant; }
  bool registered() const { return category != Category::kCycle; }
};

struct Color {
  int id = 0;
  std::string name, code;
};

struct Item {
  int id = 0;
  std::string code, name, icat, hsn;
  int64_t base_taxable = 0;
};

struct Vehicle {
  int id = 0;
  int model = 0;
  int color = 0;
  int branch = 1;  // where it is sold from or stocked
  Day need;        // the first day it must be on hand (challan, invoice, or stock)
  Day made;
  std::string chassis, engine, battery_no, charger_no, key_no, status, kit;
  int purchase = 0;
  int64_t cost = 0;  // purchase amount with tax
  Day received;
};

// One item line of an invoice or a challan.
struct Line {
  char kind = 'V';  // 'V' a vehicle, 'A' an accessory
  int vehicle = 0;
  int model = 0;
  int item = 0;
  std::string description, hsn;
  int qty = 1;
  int64_t rate = 0, amount = 0, discount = 0, taxable = 0;
  int gst_rate = 0;  // percent; CGST and SGST take half each within the state
  bool inter_state = false;
  int64_t cgst = 0, sgst = 0, igst = 0, net = 0;
  int64_t inclusive = 0;  // the tax-inclusive price the line was worked back from
  std::optional<int64_t> subsidy;
};

// The sum of the lines' net amounts; the rounding to whole rupees that a document's total adds to
// it; the inclusive prices they were worked back from.
int64_t LinesNet(const std::vector<Line>& lines);
int64_t RoundOff(const std::vector<Line>& lines);
int64_t LinesInclusive(const std::vector<Line>& lines);

// What a sale delivers before lines are priced: vehicles and accessories.
struct SaleUnit {
  int model = 0;
  int color = 0;
  int vehicle = 0;
};
struct SaleAccessory {
  int item = 0;
  int qty = 1;
};

struct Challan {
  int id = 0;
  int plan = 0;  // pairs a challan with its invoice until both are numbered
  char type = 'C';
  std::string num, gate_pass, transporter, truck, lr_no, prepared_by, remarks;
  std::string ewb_no;  // the e-way bill of goods sent by truck
  int ewb_seconds = 0;
  Day date;
  int branch = 1;
  int customer = 0;
  int account = 0;
  int invoice = 0;
  std::vector<SaleUnit> units;
  std::vector<SaleAccessory> accessories;
  int64_t discount = 0;  // on the vehicle, tax included
  std::vector<Line> lines;
  // The sum of the lines plus the round-off: whole rupees.
  int64_t Amount() const { return LinesNet(lines) + RoundOff(lines); }
};

struct Invoice {
  int id = 0;
  int plan = 0;
  char itype = 'R';  // 'R' retail to a customer, 'S' to a sub-dealer
  std::string num;
  Day date;
  int branch = 1;
  int customer = 0;
  int account = 0;
  int challan = 0;  // the delivery challan it bills, 0 for none
  std::vector<SaleUnit> units;
  std::vector<SaleAccessory> accessories;
  int64_t discount = 0;
  int financier = 0;
  int64_t loan = 0;
  std::optional<Day> booking_date;
  int64_t booking_amount = 0;
  std::string booking_no, executive, pos_state, pos_code;
  std::vector<Line> lines;
  std::string irn, ack_no, qr_text, ewb_no, transporter, lr_no, truck;
  int ack_seconds = 0;
  Day ewb_day;  // the invoice's date, or its challan's when the goods went on the challan
  int ewb_seconds = 0;
  std::string regno, rto, ins_company, ins_policy;
  std::optional<Day> reg_date;
  bool temporary = false;  // registered elsewhere on a temporary certificate
  std::string remarks;

  // The sum of the lines plus the round-off: whole rupees.
  int64_t Total() const { return LinesNet(lines) + RoundOff(lines); }
  int64_t Subsidy() const;
  int64_t Payable() const { return Total() - Subsidy(); }
};

struct Purchase {
  int id = 0;
  int supplier = 0;
  std::string bill_no, grn_no, transporter, lr_no, truck, ewb_no;
  Day bill_date, received;
  std::vector<int> vehicles;
  std::vector<Line> lines;
  int64_t Total() const { return LinesNet(lines) + RoundOff(lines); }
};

struct BranchTransfer {
  int id = 0;
  std::string num, vehicle_no, driver, remarks, ewb_no;
  int ewb_seconds = 0;
  Day date;
  int from_branch = 1;
  int to_branch = 0;
  std::vector<int> vehicles;
};

struct VehicleTransferNote {
  int id = 0;
  int branch = 1;
  std::string num, from, to, reason, authorised_by, remarks;
  Day date;
  std::vector<int> vehicles;
};

struct Receipt {
  int id = 0;
  std::string num;
  Day date;
  int branch = 1;
  char party = 'C';  // 'C' customer, 'F' financier, 'S' sub-dealer
  int customer = 0;
  int account = 0;
  std::string name;
  int64_t amount = 0;
  std::string mode, cheque_no, bank, ref_no, against, narration, cashier;
  std::optional<Day> cheque_date;
  int invoice = 0;
};

struct BulkReceipt {
  int id = 0;
  std::string num, mode, cheque_no, bank, ref_no, narration;
  Day date;
  std::optional<Day> cheque_date;
  int branch = 1;
  int account = 0;
  std::vector<std::pair<int, int64_t>> lines;  // invoice id, amount
  int64_t Amount() const;
};

struct TempRegistration {
  int tline = 0;
  int branch = 1;
  // num is the temporary registration mark; certificate the number in the issuing branch's
  // register of certificates: "TC/CKN/2024-25/0003".
  std::string num, certificate, rto, state, reason;
  Day date, valid_upto;
  int invoice = 0;
  int64_t fee = 0;
};

struct HsrpOrder {
  int id = 0;
  int invoice = 0;
  std::string order_no, vendor, front, rear, snap_lock;
  Day ordered;
  std::optional<Day> fitted;
  int64_t fee = 0;
};

struct Enquiry {
  int id = 0;
  std::string num, name, address, city, mobile, model_name, color, source, executive;
  std::string finance, exchange, lost_reason, remarks;
  Day date;
  int branch = 1;
  int model = 0;
  int status = 0;
  int booking = 0;
  // Of a booking: BOOKED (open), DELIVERED, CANCELLED (the amount kept) or REFUNDED (cancelled,
  // the amount paid back on refunded_on); empty without a booking.
  std::string booking_status;
  std::optional<Day> booked_on, followup, expected, refunded_on;
  int64_t booking_amount = 0;
  int customer = 0;
  int invoice = 0;
};

struct PriceListEntry {
  int model = 0;
  Day from;
  std::optional<Day> to;
  int64_t price = 0;
};

struct Setting {
  std::string flag, type, value, description;
};

struct Dealership {
  Firm firm;
  std::vector<Setting> settings;
  std::vector<Account> accounts;
  std::vector<Branch> branches;
  std::vector<Customer> customers;
  std::vector<VehicleModel> models;
  std::vector<PriceListEntry> prices;
  std::vector<Color> colors;
  std::vector<Item> items;
  std::vector<Vehicle> vehicles;
  std::vector<Purchase> purchases;
  std::vector<BranchTransfer> transfers;
  std::vector<VehicleTransferNote> transfer_notes;
  std::vector<Challan> challans;
  std::vector<Invoice> invoices;
  std::vector<Receipt> receipts;
  std::vector<BulkReceipt> bulk_receipts;
  std::vector<TempRegistration> temp_registrations;
  std::vector<HsrpOrder> hsrp_orders;
  std::vector<Enquiry> enquiries;

  const Account& account(int id) const;
  const Branch& branch(int id) const;
  const Customer& customer(int id) const;
  const VehicleModel& model(int id) const;
  const Color& color(int id) const;
  const Item& item(int id) const;
  Vehicle& vehicle(int id);
  const Vehicle& vehicle(int id) const;
  const Invoice& invoice(int id) const;
  const Challan& challan(int id) const;
  // The ex-showroom price, GST included, of a model on "day".
  int64_t Price(int model, Day day) const;
};

class Random;
// Builds the masters: the firm, settings, accounts, branches, colours, models, price lists,
// items, and sixty customers with names and addresses drawn from "random".
void AddMasters(Random& random, Dealership& dealership);
// A private buyer living near "branch", with a mobile number not yet in "mobiles".
Customer DrawPerson(Random& random, int id, int branch, std::set<std::string>& mobiles);
// Builds the documents of April 2024 to December 2025 on the masters. "paperwork" draws what
// the documents carry besides the trade itself (e-way bills, consignment notes, refunds), so
// that adding such details leaves the trade drawn from "random" as it was.
void AddTrading(Random& random, Random& paperwork, Dealership& dealership);

}  // namespace vantorel::demo

#endif  // VANTOREL_DEMO_ENTITIES_H_
