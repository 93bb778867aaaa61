// The books of account: the chart of accounts (groups and their natures, the ledgers the trade
// needs beside the sales side's parties) and the vouchers posted from every document — vehicle
// purchases and invoices, receipts, the workshop's postings — with the dealership's own
// payments, contra entries, journals, GST expense and payout vouchers, GST debit and credit
// notes, exchange-vehicle receipts and cheques. docs/demo-database.md describes the data.
#include <algorithm>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "demo/accounts.h"
#include "demo/identifiers.h"
#include "demo/workshop.h"

namespace vantorel::demo {
namespace {

Cell Text(const std::string& text) { return text.empty() ? Cell(kNull) : Cell(text); }
Cell Int(int64_t value) { return value; }
Cell Paise(int64_t paise) { return Money{paise}; }
Cell OptionalDay(const std::optional<Day>& day) { return day ? Cell(*day) : Cell(kNull); }

// The books' own ledgers. The sales side's parties keep their ids (1–63); customers have
// ledgers of their own numbered beyond the 16-bit range (CustomerLedger).
namespace ac {
constexpr int kVayuMotocorp = 1, kVayuElectric = 2, kGangaCycles = 3;
constexpr int kSbi = 41, kHdfc = 42, kCash = 43, kSalesVehicles = 51;
constexpr int kOutputCgst = 61, kOutputSgst = 62, kOutputIgst = 63;
constexpr int kCapital = 401, kStock = 411, kExchangeStock = 412, kSubsidyReceivable = 413;
constexpr int kFurniture = 421, kTools = 422, kComputers = 423;
constexpr int kSalesAccessories = 431, kSalesWorkshop = 432, kSalesDiscount = 433;
constexpr int kPurchaseVehicles = 441, kPurchaseSpares = 442;
constexpr int kInputCgst = 451, kInputSgst = 452, kInputIgst = 453, kReverseCharge = 454;
constexpr int kSalaries = 461, kRent = 462, kElectricity = 463, kTelephone = 464;
constexpr int kStationery = 465, kBankCharges = 466, kConveyance = 467, kRepairs = 468;
constexpr int kAdvertisement = 469, kDepreciation = 470, kStaffWelfare = 471, kRoundOff = 472;
constexpr int kPayouts = 473, kFreightInward = 474;
constexpr int kIncentive = 481;
constexpr int kLandlord = 491, kSakalMedia = 492, kOmSaiElectricals = 493;
constexpr int kWorkshopCustomers = 494;
}  // namespace ac

struct Group {
  std::string code;
  int id;
  std::string name, nature;
};

// The primary groups, in the order a trial balance lists them; several account groups of the
// account master (am_group) may fall under one primary group.
const std::vector<Group>& Groups() {
  static const std::vector<Group> groups = {
      {"CAPITAL", 1, "CAPITAL ACCOUNT", "LIABILITIES"},
      {"SUPPLIER", 2, "SUNDRY CREDITORS", "LIABILITIES"},
      {"EXPCRED", 2, "SUNDRY CREDITORS", "LIABILITIES"},
      {"GST", 3, "DUTIES & TAXES", "LIABILITIES"},
      {"FIXEDASSET", 4, "FIXED ASSETS", "ASSETS"},
      {"STOCK", 5, "STOCK-IN-HAND", "ASSETS"},
      {"SUBDEALER", 6, "SUNDRY DEBTORS", "ASSETS"},
      {"FINANCIER", 6, "SUNDRY DEBTORS", "ASSETS"},
      {"CUSTOMER", 6, "SUNDRY DEBTORS", "ASSETS"},
      {"ADVANCE", 7, "LOANS & ADVANCES (ASSET)", "ASSETS"},
      {"BRANCH", 8, "BRANCH / DIVISIONS", "ASSETS"},
      {"BANK", 9, "BANK ACCOUNTS", "ASSETS"},
      {"CASH", 10, "CASH-IN-HAND", "ASSETS"},
      {"SALES", 11, "SALES ACCOUNTS", "INCOME"},
      {"INCOME", 12, "INDIRECT INCOMES", "INCOME"},
      {"PURCHASE", 13, "PURCHASE ACCOUNTS", "EXPENSES"},
      {"EXPENSE", 14, "INDIRECT EXPENSES", "EXPENSES"},
  };
  return groups;
}

struct Ledger {
  int id = 0;
  std::string name, group;
  int64_t opening = 0;  // paise, debit positive
  std::string add1 = {}, town = {}, state = {}, state_code = {}, pin = {}, gstin = {}, pan = {};
  std::string phone = {};
};

std::vector<Ledger> BooksLedgers() {
  const std::string mh = "Maharashtra";
  return {
      {ac::kCapital, "Partners' Capital Account", "CAPITAL", 0},
      {ac::kStock, "Stock-in-Trade (Vehicles & Spares)", "STOCK", Rs(4275000)},
      {ac::kExchangeStock, "Exchange Vehicles Stock", "STOCK", 0},
      {ac::kSubsidyReceivable, "PM E-DRIVE Subsidy Receivable", "ADVANCE", 0},
      {ac::kFurniture, "Furniture & Fixtures", "FIXEDASSET", Rs(385000)},
      {ac::kTools, "Workshop Tools & Equipment", "FIXEDASSET", Rs(240000)},
      {ac::kComputers, "Computers & Printers", "FIXEDASSET", Rs(115000)},
      {ac::kSalesAccessories, "Sales - Accessories", "SALES", 0},
      {ac::kSalesWorkshop, "Sales - Spares & Service", "SALES", 0},
      {ac::kSalesDiscount, "Discount & Rate Difference on Sales", "SALES", 0},
      {ac::kPurchaseVehicles, "Purchase - Vehicles", "PURCHASE", 0},
      {ac::kPurchaseSpares, "Purchase - Spares & Accessories", "PURCHASE", 0},
      {ac::kFreightInward, "Freight Inward", "PURCHASE", 0},
      {ac::kInputCgst, "Input CGST", "GST", 0},
      {ac::kInputSgst, "Input SGST", "GST", 0},
      {ac::kInputIgst, "Input IGST", "GST", 0},
      {ac::kReverseCharge, "GST Payable on Reverse Charge", "GST", 0},
      {ac::kSalaries, "Salaries & Wages", "EXPENSE", 0},
      {ac::kRent, "Rent", "EXPENSE", 0},
      {ac::kElectricity, "Electricity Charges", "EXPENSE", 0},
      {ac::kTelephone, "Telephone & Internet", "EXPENSE", 0},
      {ac::kStationery, "Printing & Stationery", "EXPENSE", 0},
      {ac::kBankCharges, "Bank Charges", "EXPENSE", 0},
      {ac::kConveyance, "Conveyance & Petrol", "EXPENSE", 0},
      {ac::kRepairs, "Repairs & Maintenance", "EXPENSE", 0},
      {ac::kAdvertisement, "Advertisement & Publicity", "EXPENSE", 0},
      {ac::kDepreciation, "Depreciation", "EXPENSE", 0},
      {ac::kStaffWelfare, "Staff Welfare", "EXPENSE", 0},
      {ac::kRoundOff, "Round Off", "EXPENSE", 0},
      {ac::kPayouts, "Sub-dealer Scheme Payouts", "EXPENSE", 0},
      {ac::kIncentive, "Incentive from Manufacturer", "INCOME", 0},
      {ac::kLandlord, "Kale Properties & Estates", "EXPCRED", 0, "Kale Plaza, Magarpatta Road",
       "Pune", mh, "27", "411028", "", "AAGFK4410M", "020-26812245"},
      {ac::kSakalMedia, "Sakal Media Pvt Ltd", "EXPCRED", 0, "595, Budhwar Peth", "Pune", mh, "27",
       "411002", "", "AAECS1190H", "020-24405500"},
      {ac::kOmSaiElectricals, "Om Sai Electricals & Services", "EXPCRED", 0,
       "Shop 9, Gadital, Hadapsar", "Pune", mh, "27", "411028", "", "BKPPS7712R", "9822047781"},
      {ac::kWorkshopCustomers, "Sundry Workshop Customers", "CUSTOMER", 0},
  };
}

struct Entry {
  int account = 0;
  int64_t dr = 0, cr = 0;
  std::string remarks;
  int against = 0;
};

struct Voucher {
  std::string type;  // SALES, PURCHASE, RECEIPT, PAYMENT, JOURNAL, CONTRA, CREDIT NOTE, DEBIT NOTE
  Day date;
  int branch = 1;
  std::string ref;
  std::optional<Day> ref_date;
  std::string mode, cheque_no, bank;
  std::optional<Day> cheque_date;
  std::string narration, user;
  std::vector<Entry> entries;
  int order = 0;         // the order it was posted in, for vouchers of one day
  bool dropped = false;  // left out of the books (a busy cash book trimmed to its size)
  int id = 0;
  std::string num;

  void Dr(int account, int64_t paise, std::string remarks = {}) {
    if (paise != 0) entries.push_back({account, paise, 0, std::move(remarks)});
  }
  void Cr(int account, int64_t paise, std::string remarks = {}) {
    if (paise != 0) entries.push_back({account, 0, paise, std::move(remarks)});
  }
  int64_t Debits() const {
    int64_t sum = 0;
    for (const Entry& e : entries) sum += e.dr;
    return sum;
  }
  int64_t Credits() const {
    int64_t sum = 0;
    for (const Entry& e : entries) sum += e.cr;
    return sum;
  }
};

// The staff who enter vouchers, by branch, and the accountant who checks them.
const char* UserOf(int branch) {
  static const char* users[] = {"SUNITA K", "SUNITA K", "RAHUL P", "MEGHA D"};
  return users[branch >= 1 && branch <= 3 ? branch : 0];
}
constexpr char kAccountant[] = "SUNITA K";
constexpr char kChecker[] = "V DESHPANDE";

std::string Padded(int value, int width) {
  std::string text = std::to_string(value);
  return std::string(static_cast<size_t>(std::max(0, width - static_cast<int>(text.size()))), '0') +
         text;
}

// A rupee amount in words as cheques write it: "Rupees One Lakh Twenty Five Thousand Only".
std::string ChequeWords(int64_t paise) {
  static const char* ones[] = {"",        "One",     "Two",       "Three",    "Four",
                               "Five",    "Six",     "Seven",     "Eight",    "Nine",
                               "Ten",     "Eleven",  "Twelve",    "Thirteen", "Fourteen",
                               "Fifteen", "Sixteen", "Seventeen", "Eighteen", "Nineteen"};
  static const char* tens[] = {"",      "",      "Twenty",  "Thirty", "Forty",
                               "Fifty", "Sixty", "Seventy", "Eighty", "Ninety"};
  auto below_hundred = [&](int n) {
    if (n < 20) return std::string(ones[n]);
    return std::string(tens[n / 10]) + (n % 10 != 0 ? std::string(" ") + ones[n % 10] : "");
  };
  auto below_thousand = [&](int n) {
    std::string text;
    if (n >= 100) text = std::string(ones[n / 100]) + " Hundred";
    if (n % 100 != 0) text += (text.empty() ? "" : " ") + below_hundred(n % 100);
    return text;
  };
  int64_t rupees = paise / 100;
  std::string words;
  auto part = [&](int64_t unit, const char* name) {
    const int count = static_cast<int>(rupees / unit);
    rupees %= unit;
    if (count == 0) return;
    if (!words.empty()) words += " ";
    words += below_thousand(count) + " " + name;
  };
  part(10000000, "Crore");
  part(100000, "Lakh");
  part(1000, "Thousand");
  if (rupees != 0) words += (words.empty() ? "" : " ") + below_thousand(static_cast<int>(rupees));
  const int rest = static_cast<int>(paise % 100);
  if (rest != 0) words += " and " + below_hundred(rest) + " Paise";
  return "Rupees " + words + " Only";
}

// "1,25,000.00", Indian grouping.
std::string IndianAmount(int64_t paise) {
  std::string digits = std::to_string(paise / 100);
  std::string grouped;
  const int n = static_cast<int>(digits.size());
  for (int i = 0; i < n; ++i) {
    grouped += digits[static_cast<size_t>(i)];
    const int left = n - 1 - i;
    if (left > 0 && (left == 3 || (left > 3 && (left - 3) % 2 == 0))) grouped += ',';
  }
  return grouped + "." + Padded(static_cast<int>(paise % 100), 2);
}

class Books {
 public:
  Books(const Dealership& d, const Options& options, Workshop& workshop, Dataset& tables,
        FactList& facts)
      : d_(d),
        options_(options),
        workshop_(workshop),
        tables_(tables),
        facts_(facts),
        random_(options.seed ^ 0x626f6f6b73ULL) {}

  void Run() {
    CollectAccounts();
    PostPurchases();
    PostInvoices();
    PostReceipts();
    PostWorkshop();
    PostExchanges();
    PostGstVouchers();
    PostNotes();
    PostExpenses();
    PostSupplierPayments();
    PostJournals();
    PostCashBook();
    PostWorkshopSettlements();
    PostFreight();
    PostGstPayments();
    PostContra();
    TrimCashBook();
    Number();
    WriteTables();
    ChooseFacts();
  }

 private:
  void CollectAccounts() {
    // Every account the steps before this one wrote into the account master, whatever their
    // table, so that the workshop's parties post to their own ledgers.
    for (const Table& table : tables_.tables()) {
      if (table.name() != "fa_acmaster") continue;
      for (const auto& row : table.rows()) {
        const int id = static_cast<int>(std::get<int64_t>(row[0]));
        known_.insert(id);
        earlier_.insert(id);
        names_[id] = std::get<std::string>(row[1]);
        const Cell& opening = row.back();
        if (const auto* money = std::get_if<Money>(&opening)) openings_ += money->paise;
      }
    }
    for (const Ledger& l : BooksLedgers()) {
      known_.insert(l.id);
      openings_ += l.opening;
    }
    for (const Account& a : d_.accounts) known_.insert(a.id);
    for (const Customer& c : d_.customers) known_.insert(CustomerLedger(c.id));
  }

  Voucher& New(const std::string& type, Day date, int branch, const std::string& narration) {
    Voucher& v = vouchers_.emplace_back();
    v.type = type;
    v.date = date;
    v.branch = branch;
    v.narration = narration;
    v.user = UserOf(branch);
    v.order = static_cast<int>(vouchers_.size());
    return v;
  }

  // The tax of document lines, posted to the output (sales) or input (purchase) ledgers.
  struct Tax {
    int64_t cgst = 0, sgst = 0, igst = 0;
  };
  static Tax TaxOf(const std::vector<Line>& lines) {
    Tax t;
    for (const Line& l : lines) {
      t.cgst += l.cgst;
      t.sgst += l.sgst;
      t.igst += l.igst;
    }
    return t;
  }

  void PostPurchases() {
    for (const Purchase& p : d_.purchases) {
      Voucher& v = New("PURCHASE", p.received, 1,
                       "Purchase of " + std::to_string(p.vehicles.size()) + " vehicles, bill " +
                           p.bill_no + " dated " + p.bill_date.Dmy() + ", GRN " + p.grn_no);
      v.user = kAccountant;
      v.ref = p.bill_no;
      v.ref_date = p.bill_date;
      int64_t taxable = 0;
      for (const Line& l : p.lines) taxable += l.taxable;
      const Tax t = TaxOf(p.lines);
      v.Dr(ac::kPurchaseVehicles, taxable);
      v.Dr(ac::kInputCgst, t.cgst);
      v.Dr(ac::kInputSgst, t.sgst);
      v.Dr(ac::kInputIgst, t.igst);
      RoundOff(v, p.Total() - (taxable + t.cgst + t.sgst + t.igst));
      v.Cr(p.supplier, p.Total(), "Bill " + p.bill_no);
      supplier_bills_.push_back({p.supplier, p.received, p.Total(), p.bill_no});
    }
  }

  static void RoundOff(Voucher& v, int64_t difference) {
    if (difference > 0) v.Dr(ac::kRoundOff, difference);
    if (difference < 0) v.Cr(ac::kRoundOff, -difference);
  }

  int InvoiceParty(const Invoice& i) const {
    return i.itype == 'S' ? i.account : CustomerLedger(i.customer);
  }

  void PostInvoices() {
    for (const Invoice& i : d_.invoices) {
      const int party = InvoiceParty(i);
      const std::string buyer =
          i.itype == 'S' ? d_.account(i.account).name : d_.customer(i.customer).name;
      Voucher& v = New("SALES", i.date, i.branch, "Sales invoice " + i.num + " to " + buyer);
      v.ref = i.num;
      v.ref_date = i.date;
      int64_t vehicles = 0, accessories = 0;
      for (const Line& l : i.lines) (l.kind == 'V' ? vehicles : accessories) += l.taxable;
      const Tax t = TaxOf(i.lines);
      v.Dr(party, i.Payable(), "Invoice " + i.num);
      v.Dr(ac::kSubsidyReceivable, i.Subsidy(), "PM E-DRIVE subsidy, invoice " + i.num);
      v.Cr(ac::kSalesVehicles, vehicles);
      v.Cr(ac::kSalesAccessories, accessories);
      v.Cr(ac::kOutputCgst, t.cgst);
      v.Cr(ac::kOutputSgst, t.sgst);
      v.Cr(ac::kOutputIgst, t.igst);
      RoundOff(v, vehicles + accessories + t.cgst + t.sgst + t.igst - i.Total());
      if (i.financier != 0 && i.loan > 0) {
        Voucher& j = New("JOURNAL", i.date, i.branch,
                         "Loan of " + d_.account(i.financier).name + " for " + buyer +
                             " against invoice " + i.num);
        j.ref = i.num;
        j.ref_date = i.date;
        j.Dr(i.financier, i.loan);
        j.Cr(party, i.loan);
      }
    }
  }

  // Cheques and bank transfers go to the current account; cash to the cash book.
  static int BankFor(const std::string& mode) { return mode == "CASH" ? ac::kCash : ac::kSbi; }

  static void Instrument(Voucher& v, const std::string& mode, const std::string& cheque_no,
                         const std::optional<Day>& cheque_date, const std::string& bank,
                         const std::string& ref_no) {
    v.mode = mode;
    v.cheque_no = !cheque_no.empty() ? cheque_no : ref_no;
    v.cheque_date = cheque_date;
    v.bank = bank;
  }

  void PostReceipts() {
    for (const Receipt& r : d_.receipts) {
      const int party =
          r.party == 'C'   ? (r.customer != 0 ? CustomerLedger(r.customer) : ac::kWorkshopCustomers)
          : r.account != 0 ? r.account
                           : ac::kWorkshopCustomers;
      Voucher& v = New("RECEIPT", r.date, r.branch,
                       r.narration.empty() ? "Received from " + r.name : r.narration);
      v.ref = r.num;
      v.ref_date = r.date;
      Instrument(v, r.mode, r.cheque_no, r.cheque_date, r.bank, r.ref_no);
      v.Dr(BankFor(r.mode), r.amount);
      v.Cr(party, r.amount, "Receipt " + r.num);
    }
    for (const BulkReceipt& b : d_.bulk_receipts) {
      Voucher& v = New("RECEIPT", b.date, b.branch, b.narration);
      v.ref = b.num;
      v.ref_date = b.date;
      Instrument(v, b.mode, b.cheque_no, b.cheque_date, b.bank, b.ref_no);
      v.Dr(BankFor(b.mode), b.Amount());
      v.Cr(b.account, b.Amount(), "Bulk receipt " + b.num);
    }
  }

  void PostWorkshop() {
    for (const Posting& p : workshop_.postings) {
      // The store's debit notes return goods to a supplier, as its purchase returns do.
      const bool debit_note = p.kind == "DEBIT NOTE";
      const bool purchase = p.kind.find("PURCHASE") != std::string::npos || debit_note;
      const bool reverse = p.kind.find("RETURN") != std::string::npos || debit_note;
      const int party = p.party == 0                ? ac::kCash
                        : known_.count(p.party) > 0 ? p.party
                                                    : ac::kWorkshopCustomers;
      Voucher& v = New(
          purchase ? (reverse ? "DEBIT NOTE" : "PURCHASE") : (reverse ? "CREDIT NOTE" : "SALES"),
          p.date, 1, p.kind + " " + p.document);
      v.ref = p.document;
      v.ref_date = p.date;
      const int goods = purchase ? ac::kPurchaseSpares : ac::kSalesWorkshop;
      const int cgst = purchase ? ac::kInputCgst : ac::kOutputCgst;
      const int sgst = purchase ? ac::kInputSgst : ac::kOutputSgst;
      const int igst = purchase ? ac::kInputIgst : ac::kOutputIgst;
      const int64_t round = p.total - (p.taxable + p.cgst + p.sgst + p.igst);
      // A purchase debits the goods and taxes; a sale credits them; a return turns either round.
      const bool debit_goods = purchase != reverse;
      // A negative amount (a round-off down) goes to the other side.
      auto side = [&](int account, int64_t paise) {
        if (debit_goods == (paise > 0)) {
          v.Dr(account, paise < 0 ? -paise : paise);
        } else {
          v.Cr(account, paise < 0 ? -paise : paise);
        }
      };
      side(goods, p.taxable);
      side(cgst, p.cgst);
      side(sgst, p.sgst);
      side(igst, p.igst);
      side(ac::kRoundOff, round);
      if (debit_goods) {
        v.Cr(party, p.total, p.document);
      } else {
        v.Dr(party, p.total, p.document);
      }
      // Bills on account are settled later; a return lessens what is settled.
      if (party != ac::kCash && party != ac::kWorkshopCustomers) {
        dues_.push_back({purchase, party, p.date, reverse ? -p.total : p.total});
      }
    }
  }

  struct Exchange {
    int id;
    std::string num;
    Day date;
    int branch, customer, invoice;
    std::string make_model, regno, chassis, engine, colour, insurer;
    int year, kms, owners;
    int64_t value;
    bool rc, insurance, noc, keys;
    int payment_voucher;
    std::string mode;
  };

  void PostExchanges() {
    static const std::vector<std::string> models = {
        "Hero Splendor Plus", "Honda Activa 4G", "Bajaj Pulsar 150", "TVS Jupiter",
        "Hero HF Deluxe",     "Yamaha FZ-S",     "Honda Shine",      "Suzuki Access 125"};
    static const std::vector<std::string> colours = {"Black", "Grey", "Red", "Blue", "White"};
    static const std::vector<std::string> insurers = {"New India Assurance", "ICICI Lombard",
                                                      "Bajaj Allianz", "United India Insurance"};
    int count = 0;
    for (const Invoice& i : d_.invoices) {
      if (i.itype != 'R' || d_.model(i.units[0].model).category == Category::kCycle ||
          d_.customer(i.customer).business) {
        continue;
      }
      if (!random_.Percent(7)) continue;
      Exchange x;
      x.id = 301 + count;
      x.date = i.date;
      x.num = "EXR/" + i.date.FinancialYear() + "/" + Padded(++count, 4);
      x.branch = i.branch;
      x.customer = i.customer;
      x.invoice = i.id;
      x.make_model = random_.Pick(models);
      x.year = random_.Between(2011, 2019);
      x.regno = "MH12 " + random_.Letters(2) + " " + random_.Digits(4);
      x.chassis = "ME4" + random_.Code(2, 12);
      x.engine = random_.Code(4, 7);
      x.colour = random_.Pick(colours);
      x.insurer = random_.Pick(insurers);
      x.kms = random_.Between(18, 92) * 1000 + random_.Between(0, 999);
      x.owners = random_.Percent(80) ? 1 : 2;
      x.value = Rs(random_.Between(12, 38) * 1000 + random_.Between(0, 1) * 500);
      x.rc = true;
      x.insurance = random_.Percent(75);
      x.noc = random_.Percent(20);
      x.keys = true;
      x.mode = random_.Percent(60) ? "CASH" : "NEFT";
      const std::string who = d_.customer(i.customer).name;
      Voucher& j = New("JOURNAL", x.date, x.branch,
                       "Old vehicle " + x.make_model + " " + x.regno + " taken in exchange from " +
                           who + ", receipt " + x.num);
      j.ref = x.num;
      j.ref_date = x.date;
      j.Dr(ac::kExchangeStock, x.value);
      j.Cr(CustomerLedger(i.customer), x.value);
      Voucher& p = New("PAYMENT", x.date.Plus(random_.Between(0, 3)), x.branch,
                       "Exchange value of " + x.regno + " paid to " + who);
      p.ref = x.num;
      p.ref_date = x.date;
      p.mode = x.mode;
      p.Dr(CustomerLedger(i.customer), x.value);
      p.Cr(x.mode == "CASH" ? ac::kCash : ac::kSbi, x.value);
      exchanges_.push_back(x);
    }
  }

  // A GST expense voucher (dtype 'G') or a sub-dealer payout voucher (dtype 'P').
  struct GstLine {
    int account;
    std::string description, sac;
    int64_t taxable;
    int rate;
    int64_t cgst, sgst, igst;
  };
  struct GstDocument {
    int id;
    char type;
    std::string num, bill_no;
    Day date, bill_date;
    int branch, party;
    std::string narration;
    std::vector<GstLine> lines;
    int voucher;
    int64_t Amount() const {
      int64_t sum = 0;
      for (const GstLine& l : lines) sum += l.taxable + l.cgst + l.sgst + l.igst;
      return sum;
    }
  };

  static GstLine Taxed(int account, std::string description, std::string sac, int64_t taxable,
                       int rate, bool inter_state) {
    GstLine l{account, std::move(description), std::move(sac), taxable, rate, 0, 0, 0};
    const int64_t tax = taxable * rate / 100;
    if (inter_state) {
      l.igst = tax;
    } else {
      l.cgst = tax / 2;
      l.sgst = tax - tax / 2;
    }
    return l;
  }

  void PostGstDocument(GstDocument& g, int number) {
    g.num = (g.type == 'G' ? "GEV/" : "POV/") + g.date.FinancialYear() + "/" + Padded(number, 4);
    Voucher& v = New("JOURNAL", g.date, g.branch, g.narration);
    v.user = kAccountant;
    v.ref = g.bill_no;
    v.ref_date = g.bill_date;
    int64_t cgst = 0, sgst = 0, igst = 0;
    for (const GstLine& l : g.lines) {
      v.Dr(l.account, l.taxable, l.description);
      cgst += l.cgst;
      sgst += l.sgst;
      igst += l.igst;
    }
    v.Dr(ac::kInputCgst, cgst);
    v.Dr(ac::kInputSgst, sgst);
    v.Dr(ac::kInputIgst, igst);
    v.Cr(g.party, g.Amount(), "Bill " + g.bill_no);
    g.voucher = v.order;
    supplier_bills_.push_back({g.party, g.date, g.Amount(), g.bill_no});
  }

  // The next GST document of the head office, on "party"'s bill of "bill_date".
  GstDocument NewGstDocument(char type, Day date, Day bill_date, int party) const {
    GstDocument g{};
    g.id = 401 + static_cast<int>(gst_documents_.size());
    g.type = type;
    g.date = date;
    g.bill_date = bill_date;
    g.branch = 1;
    g.party = party;
    g.voucher = 0;
    return g;
  }

  void PostGstVouchers() {
    int expenses = 0, payouts = 0;
    for (Day month = kFirstDay; month <= kLastDay; month = month.PlusMonths(1)) {
      GstDocument rent = NewGstDocument('G', month.Plus(4), month.Plus(1), ac::kLandlord);
      rent.bill_no = "KPE/" + month.FinancialYear() + "/" + Padded(month.month(), 2);
      rent.narration = "Rent of the Hadapsar showroom and workshop for " + MonthName(month) +
                       ", bill " + rent.bill_no;
      rent.lines.push_back(Taxed(ac::kRent, "Showroom rent, Survey No. 58/2, Hadapsar", "997212",
                                 Rs(42000), 18, false));
      rent.lines.push_back(
          Taxed(ac::kRent, "Workshop shed rent, Hadapsar", "997212", Rs(12000), 18, false));
      PostGstDocument(rent, ++expenses);
      gst_documents_.push_back(rent);
      if (month.month() % 2 == 0) {
        GstDocument ad = NewGstDocument('G', month.Plus(12), month.Plus(10), ac::kSakalMedia);
        ad.bill_no = "SM/ADV/" + random_.Digits(5);
        ad.narration = "Newspaper advertisement, bill " + ad.bill_no;
        ad.lines.push_back(Taxed(ac::kAdvertisement, "Display advertisement, Pune edition",
                                 "998363", Rs(random_.Between(6, 14) * 1000), 5, false));
        if (random_.Percent(50)) {
          ad.lines.push_back(Taxed(ac::kAdvertisement, "Classified insertion, festival offer",
                                   "998363", Rs(random_.Between(3, 9) * 1000), 5, false));
        }
        PostGstDocument(ad, ++expenses);
        gst_documents_.push_back(ad);
      }
      if (month.month() % 3 == 1) {
        GstDocument r = NewGstDocument('G', month.Plus(19), month.Plus(18), ac::kOmSaiElectricals);
        r.bill_no = "OSE/" + Padded(random_.Between(100, 999), 3);
        r.narration = "Workshop electrical repairs, bill " + r.bill_no;
        r.lines.push_back(Taxed(ac::kRepairs, "Compressor wiring and panel repair", "998714",
                                Rs(random_.Between(3, 8) * 1000), 18, false));
        r.lines.push_back(Taxed(ac::kRepairs, "LED tube lights supplied and fitted", "998714",
                                Rs(random_.Between(2, 6) * 1000), 18, false));
        PostGstDocument(r, ++expenses);
        gst_documents_.push_back(r);
      }
      if (month.month() % 3 == 0) {
        // The quarter's scheme payout to each sub-dealer that sold through the dealer.
        for (int dealer : {ids::kKrishnaAuto, ids::kYashAutomobiles, ids::kMalaprabhaMotors}) {
          const Account& a = d_.account(dealer);
          GstDocument p =
              NewGstDocument('P', month.PlusMonths(1).Plus(6), month.PlusMonths(1).Plus(4), dealer);
          p.bill_no = a.name.substr(0, 2) == "Ma" ? "MM/PO/" + random_.Digits(3)
                                                  : "PO/" + random_.Digits(4);
          p.narration = "Scheme payout for the quarter ending " +
                        month.PlusMonths(1).Plus(-1).Dmy() + " to " + a.name;
          const int units = random_.Between(8, 26);
          p.lines.push_back(Taxed(ac::kPayouts,
                                  "Retail target payout, " + std::to_string(units) + " vehicles",
                                  "998599", Rs(750) * units, 18, a.inter_state()));
          p.lines.push_back(Taxed(ac::kPayouts, "Display and branding support", "998599",
                                  Rs(random_.Between(3, 8) * 1000), 18, a.inter_state()));
          if (p.date > kLastDay) continue;
          PostGstDocument(p, ++payouts);
          gst_documents_.push_back(p);
        }
      }
    }
  }

  static std::string MonthName(Day month) {
    static const char* names[] = {"January",   "February", "March",    "April",
                                  "May",       "June",     "July",     "August",
                                  "September", "October",  "November", "December"};
    return std::string(names[month.month() - 1]) + " " + std::to_string(month.year());
  }

  // A GST debit note (to a supplier, against a purchase bill) or credit note (to a sub-dealer,
  // against a sales invoice).
  struct NoteLine {
    std::string description, hsn;
    int qty;
    int64_t rate, taxable;
    int gst_rate;
    int64_t cgst, sgst, igst;
  };
  struct Note {
    int id;
    char type;  // 'D' debit, 'C' credit
    std::string num, original_no, reason;
    Day date, original_date;
    int branch, party;
    std::vector<NoteLine> lines;
    int voucher;
    int64_t Taxable() const {
      int64_t s = 0;
      for (const NoteLine& l : lines) s += l.taxable;
      return s;
    }
    Tax Taxes() const {
      Tax t;
      for (const NoteLine& l : lines) {
        t.cgst += l.cgst;
        t.sgst += l.sgst;
        t.igst += l.igst;
      }
      return t;
    }
    int64_t Amount() const {
      const Tax t = Taxes();
      return Taxable() + t.cgst + t.sgst + t.igst;
    }
  };

  static NoteLine NoteOf(const Line& l, std::string description, int qty, int64_t rate) {
    NoteLine n{std::move(description), l.hsn, qty, rate, rate * qty, l.gst_rate, 0, 0, 0};
    const int64_t tax = n.taxable * l.gst_rate / 100;
    if (l.igst != 0) {
      n.igst = tax;
    } else {
      n.cgst = tax / 2;
      n.sgst = tax - tax / 2;
    }
    return n;
  }

  void PostNotes() {
    int debit = 0, credit = 0;
    // Credit notes: the rate difference a sub-dealer gets when the price list drops after his
    // purchase, and the odd damaged accessory.
    for (const Invoice& i : d_.invoices) {
      if (i.itype != 'S' || !random_.Percent(12)) continue;
      Note n{};
      n.id = 501 + static_cast<int>(notes_.size());
      n.type = 'C';
      n.date = std::min(i.date.Plus(random_.Between(10, 40)), kLastDay);
      n.num = "CN/" + n.date.FinancialYear() + "/" + Padded(++credit, 4);
      n.original_no = i.num;
      n.original_date = i.date;
      n.branch = i.branch;
      n.party = i.account;
      n.reason = "Rate difference on the revised price list";
      for (const Line& l : i.lines) {
        if (l.kind != 'V') continue;
        const int64_t rate = Rs(random_.Between(4, 15) * 100);
        n.lines.push_back(NoteOf(l, "Rate difference, " + l.description, l.qty, rate));
        if (n.lines.size() == 3) break;
      }
      if (n.lines.empty()) continue;
      Voucher& v = New("CREDIT NOTE", n.date, n.branch,
                       "Credit note " + n.num + " against invoice " + i.num + ": " + n.reason);
      v.user = kAccountant;
      v.ref = n.num;
      v.ref_date = n.date;
      const Tax t = n.Taxes();
      v.Dr(ac::kSalesDiscount, n.Taxable());
      v.Dr(ac::kOutputCgst, t.cgst);
      v.Dr(ac::kOutputSgst, t.sgst);
      v.Dr(ac::kOutputIgst, t.igst);
      v.Cr(n.party, n.Amount(), n.num);
      n.voucher = v.order;
      notes_.push_back(n);
    }
    // Debit notes: vehicles that arrived with transit damage or a short-supplied kit.
    for (const Purchase& p : d_.purchases) {
      if (!random_.Percent(15) || p.lines.empty()) continue;
      Note n{};
      n.id = 501 + static_cast<int>(notes_.size());
      n.type = 'D';
      n.date = std::min(p.received.Plus(random_.Between(2, 9)), kLastDay);
      n.num = "DN/" + n.date.FinancialYear() + "/" + Padded(++debit, 4);
      n.original_no = p.bill_no;
      n.original_date = p.bill_date;
      n.branch = 1;
      n.party = p.supplier;
      const bool damage = random_.Percent(60);
      n.reason = damage ? "Transit damage noted on the GRN, claimed from the manufacturer"
                        : "Tool kit and owner's manual short-supplied";
      const Line& l = p.lines[static_cast<size_t>(random_.Below(static_cast<int>(p.lines.size())))];
      std::string vehicle = l.description;
      bool cycle = false;
      if (l.vehicle != 0) {
        const Vehicle& v = d_.vehicle(l.vehicle);
        vehicle = d_.model(v.model).Name() + ", chassis " + v.chassis;
        cycle = d_.model(v.model).category == Category::kCycle;
      }
      const char* what = !damage ? "Kit shortage"
                         : cycle ? "Transit damage (bent mudguard and carrier)"
                                 : "Transit damage (panel and mirror)";
      n.lines.push_back(NoteOf(l, what + (vehicle.empty() ? std::string() : ", " + vehicle), 1,
                               Rs(damage ? random_.Between(12, 35) * 100 : 850)));
      Voucher& v = New("DEBIT NOTE", n.date, n.branch,
                       "Debit note " + n.num + " against bill " + p.bill_no + ": " + n.reason);
      v.user = kAccountant;
      v.ref = n.num;
      v.ref_date = n.date;
      const Tax t = n.Taxes();
      v.Dr(n.party, n.Amount(), n.num);
      v.Cr(ac::kPurchaseVehicles, n.Taxable());
      v.Cr(ac::kInputCgst, t.cgst);
      v.Cr(ac::kInputSgst, t.sgst);
      v.Cr(ac::kInputIgst, t.igst);
      n.voucher = v.order;
      notes_.push_back(n);
    }
  }

  // Salaries, electricity, telephone, bank charges: the month's overheads.
  void PostExpenses() {
    for (Day month = kFirstDay; month <= kLastDay; month = month.PlusMonths(1)) {
      const Day last = month.PlusMonths(1).Plus(-1);
      Voucher& s = New("PAYMENT", std::min(last.Plus(1), kLastDay), 1,
                       "Salaries for " + MonthName(month) + ", 9 staff, by bank transfer");
      s.user = kAccountant;
      s.mode = "NEFT";
      s.Dr(ac::kSalaries, Rs(random_.Between(132, 148) * 1000));
      s.Cr(ac::kHdfc, s.Debits());
      Voucher& e = New("PAYMENT", month.Plus(14), 1,
                       "MSEDCL electricity bill for " + MonthName(month) + ", consumer 170019442");
      e.mode = "NEFT";
      e.Dr(ac::kElectricity, Rs(random_.Between(6, 11) * 1000 + random_.Between(0, 999)));
      e.Cr(ac::kSbi, e.Debits());
      Voucher& t =
          New("PAYMENT", month.Plus(9), 1, "BSNL and Jio broadband bills, " + MonthName(month));
      t.mode = "NEFT";
      t.Dr(ac::kTelephone, Rs(random_.Between(1, 2) * 1000 + random_.Between(0, 900)));
      t.Cr(ac::kSbi, t.Debits());
      Voucher& b = New("JOURNAL", last, 1, "Bank charges and GST on them debited by SBI");
      b.user = kAccountant;
      b.Dr(ac::kBankCharges, Rs(random_.Between(300, 1400)));
      b.Cr(ac::kSbi, b.Debits());
    }
  }

  struct Bill {
    int party;
    Day date;
    int64_t amount;
    std::string num;
  };

  // Suppliers' and creditors' bills are paid a fortnight or so after they are booked, vehicle
  // suppliers by RTGS from the cash credit account, the others by cheque.
  void PostSupplierPayments() {
    std::stable_sort(supplier_bills_.begin(), supplier_bills_.end(),
                     [](const Bill& a, const Bill& b) { return a.date < b.date; });
    int cheque = 4511;
    for (const Bill& bill : supplier_bills_) {
      const Day day = bill.date.Plus(random_.Between(10, 25));
      if (day > kLastDay) continue;
      const bool vehicles = bill.party <= 3;
      const bool by_cheque = !vehicles && bill.party != ac::kLandlord && random_.Percent(85);
      const std::string payee = PartyName(bill.party);
      Voucher& v = New("PAYMENT", day, 1,
                       "Paid to " + payee + " against bill " + bill.num + " of " + bill.date.Dmy());
      v.user = kAccountant;
      v.ref = bill.num;
      v.ref_date = bill.date;
      if (vehicles) {
        v.mode = "RTGS";
        v.cheque_no = "HDFCR" + Padded(day.year() % 100, 2) + random_.Digits(10);
        v.bank = "HDFC Bank";
        v.Dr(bill.party, bill.amount);
        v.Cr(ac::kHdfc, bill.amount);
      } else if (by_cheque) {
        v.mode = "CHEQUE";
        v.cheque_no = Padded(++cheque, 6);
        v.cheque_date = day;
        v.bank = "State Bank of India";
        v.Dr(bill.party, bill.amount);
        v.Cr(ac::kSbi, bill.amount);
        cheques_.push_back(static_cast<int>(vouchers_.size()) - 1);
      } else {
        v.mode = "NEFT";
        v.cheque_no = "SBIN" + Padded(day.year() % 100, 2) + random_.Digits(9);
        v.bank = "State Bank of India";
        v.Dr(bill.party, bill.amount);
        v.Cr(ac::kSbi, bill.amount);
      }
    }
  }

  std::string PartyName(int id) const {
    for (const Ledger& l : BooksLedgers()) {
      if (l.id == id) return l.name;
    }
    return d_.account(id).name;
  }

  void PostJournals() {
    // The manufacturer's quarterly retail incentive, credited to the dealer's account with it.
    for (Day q = kFirstDay; q <= kLastDay; q = q.PlusMonths(3)) {
      const Day day = q.PlusMonths(3).Plus(9);
      if (day > kLastDay) break;
      Voucher& v = New("JOURNAL", day, 1,
                       "Retail incentive of the quarter " + q.Dmy() + " to " +
                           q.PlusMonths(3).Plus(-1).Dmy() + " credited by Vayu Motocorp");
      v.user = kAccountant;
      v.Dr(ac::kVayuMotocorp, Rs(random_.Between(55, 120) * 1000));
      v.Cr(ac::kIncentive, v.Debits());
    }
    // Depreciation at the year end, written down value.
    Voucher& v = New("JOURNAL", Day::FromYmd(2025, 3, 31), 1,
                     "Depreciation for 2024-25 on the written down value (furniture 10%, tools "
                     "15%, computers 40%)");
    v.user = kAccountant;
    v.Dr(ac::kDepreciation, Rs(38500 + 36000 + 46000));
    v.Cr(ac::kFurniture, Rs(38500));
    v.Cr(ac::kTools, Rs(36000));
    v.Cr(ac::kComputers, Rs(46000));
  }

  // The cash book's small entries: counter sales of accessories and petty expenses. A busy
  // dealer's cash book (options.ledger_entries) is filled to that many entries in the year.
  void PostCashBook() {
    const Day year_end = Day::FromYmd(2025, 3, 31);
    int in_year = 0;
    for (const Voucher& v : vouchers_) {
      if (v.date < kFirstDay || v.date > year_end) continue;
      for (const Entry& e : v.entries) in_year += e.account == ac::kCash ? 1 : 0;
    }
    const int days = year_end.DaysSince(kFirstDay) + 1;
    const int wanted = options_.ledger_entries > 0 ? options_.ledger_entries - in_year : 0;
    static const std::vector<std::pair<int, std::string>> petty = {
        {ac::kConveyance, "Petrol for the demo vehicles and the pick-up van"},
        {ac::kStationery, "Job card books, delivery files and printer paper"},
        {ac::kStaffWelfare, "Tea and snacks for the staff and customers"},
        {ac::kConveyance, "Courier of RC papers to the RTO agent"},
        {ac::kRepairs, "Showroom cleaning material and minor repairs"}};
    auto petty_entry = [&](Day day) {
      const auto& [account, what] = random_.Pick(petty);
      Voucher& v = New("PAYMENT", day, 1, what);
      petty_.push_back(v.order);
      v.mode = "CASH";
      v.Dr(account, Rs(random_.Between(2, 60) * 10));
      v.Cr(ac::kCash, v.Debits());
    };
    auto counter_sale = [&](Day day) {
      Voucher& v = New("RECEIPT", day, 1, "Cash sale of accessories at the counter");
      v.mode = "CASH";
      const int64_t taxable = Rs(random_.Between(2, 40) * 25);
      const int64_t tax = taxable * 28 / 100;
      v.Dr(ac::kCash, taxable + tax);
      v.Cr(ac::kSalesAccessories, taxable);
      v.Cr(ac::kOutputCgst, tax / 2);
      v.Cr(ac::kOutputSgst, tax - tax / 2);
    };
    if (wanted > 0) {
      for (int k = 0; k < wanted; ++k) {
        const Day day = kFirstDay.Plus(static_cast<int>(int64_t{k} * days / wanted));
        if (k % 5 < 3) {
          counter_sale(day);
        } else {
          petty_entry(day);
        }
      }
      return;
    }
    if (options_.ledger_entries > 0) return;
    // The demo's own: a few petty expenses a week through the whole trading period.
    for (Day day = kFirstDay; day <= kLastDay; day = day.Plus(1)) {
      if (day.weekday() == 0) continue;
      if (random_.Percent(35)) petty_entry(day);
    }
  }

  // The workshop's bills on account are settled month by month: its customers on account pay a
  // month's bills, less their returns, by bank transfer within the next month, and the store
  // pays its suppliers' bills of a month, less its returns to them, likewise. What a month's
  // returns leave over is set against the next month's bills.
  void PostWorkshopSettlements() {
    std::map<std::tuple<bool, int, Day>, int64_t> months;  // supplier?, party, month: amount
    for (const Due& due : dues_) {
      months[{due.supplier, due.party, Day::FromYmd(due.date.year(), due.date.month(), 1)}] +=
          due.amount;
    }
    std::map<std::pair<bool, int>, int64_t> carried;
    for (const auto& [key, amount] : months) {
      const auto& [supplier, party, month] = key;
      int64_t& carry = carried[{supplier, party}];
      const int64_t net = carry + amount;
      carry = std::min<int64_t>(net, 0);
      if (net <= 0) continue;
      const Day day = month.PlusMonths(1).Plus(random_.Between(9, 24));
      if (day > kLastDay) continue;
      const std::string name = names_.count(party) > 0 ? names_.at(party) : PartyName(party);
      const std::string bills = "the " + std::string(supplier ? "store's" : "workshop's") +
                                " bills of " + MonthName(month);
      Voucher& v =
          New(supplier ? "PAYMENT" : "RECEIPT", day, 1,
              (supplier ? "Paid to " + name + " against " : "Received from " + name + " against ") +
                  bills);
      v.user = kAccountant;
      v.mode = "NEFT";
      v.cheque_no = "SBIN" + Padded(day.year() % 100, 2) + random_.Digits(9);
      v.bank = "State Bank of India";
      if (supplier) {
        v.Dr(party, net, "Bills of " + MonthName(month));
        v.Cr(ac::kSbi, net);
      } else {
        v.Dr(ac::kSbi, net);
        v.Cr(party, net, "Bills of " + MonthName(month));
      }
    }
  }

  // The transporters who bring vehicles by road from other states are paid by bank a few days
  // after the delivery; as goods transport agencies they charge no GST, and the dealer owes
  // IGST at 5% on the freight under the reverse charge, which it may also claim as input tax.
  void PostFreight() {
    for (const Purchase& p : d_.purchases) {
      const bool cycles = p.supplier == ac::kGangaCycles;
      if (p.supplier == ac::kVayuElectric || p.transporter.empty()) continue;
      const Day day = p.received.Plus(random_.Between(2, 6));
      if (day > kLastDay) continue;
      const int64_t per_vehicle =
          cycles ? Rs(random_.Between(22, 28) * 10) : Rs(random_.Between(85, 100) * 10);
      const int64_t freight = per_vehicle * static_cast<int64_t>(p.vehicles.size());
      const size_t count = p.vehicles.size();
      const std::string what = "freight of " + std::to_string(count) +
                               (cycles ? " cycle" : " vehicle") + (count == 1 ? "" : "s") +
                               ", LR " + p.lr_no + " of " + p.transporter + ", bill " + p.bill_no;
      Voucher& v = New("PAYMENT", day, 1, "F" + what.substr(1));
      v.user = kAccountant;
      v.ref = p.lr_no;
      v.mode = "NEFT";
      v.cheque_no = "SBIN" + Padded(day.year() % 100, 2) + random_.Digits(9);
      v.bank = "State Bank of India";
      v.Dr(ac::kFreightInward, freight, p.transporter);
      v.Cr(ac::kSbi, freight);
      Voucher& r = New("JOURNAL", day, 1, "IGST at 5% under the reverse charge on " + what);
      r.user = kAccountant;
      r.ref = p.lr_no;
      const int64_t tax = freight * 5 / 100;
      r.Dr(ac::kInputIgst, tax, "Reverse charge, LR " + p.lr_no);
      r.Cr(ac::kReverseCharge, tax, "Reverse charge, LR " + p.lr_no);
    }
  }

  // The month's GST, as the dealer settles it with the monthly return by the 20th of the next
  // month: the input tax credit is set off against the output tax in the order the law gives
  // (IGST credit first, against IGST, then CGST, then SGST; CGST credit against CGST, then
  // IGST; SGST credit against SGST, then IGST; never CGST against SGST), and what is left, with
  // the tax owed under the reverse charge, which no credit may pay, is paid from the current
  // account by a challan. Credit left over is carried to the next month; December 2025's tax,
  // due in January, stays on the ledgers.
  void PostGstPayments() {
    constexpr int kC = 0, kS = 1, kI = 2;
    static constexpr int kOutput[3] = {ac::kOutputCgst, ac::kOutputSgst, ac::kOutputIgst};
    static constexpr int kInput[3] = {ac::kInputCgst, ac::kInputSgst, ac::kInputIgst};
    // Per month (its first day): the output tax raised (credits less debits), the input tax
    // claimed (debits less credits), CGST, SGST, IGST, and the reverse charge owed.
    struct Taxes {
      int64_t output[3] = {0, 0, 0};
      int64_t input[3] = {0, 0, 0};
      int64_t reverse_charge = 0;
    };
    std::map<Day, Taxes> months;
    for (const Voucher& v : vouchers_) {
      Taxes& t = months[Day::FromYmd(v.date.year(), v.date.month(), 1)];
      for (const Entry& e : v.entries) {
        for (int h = kC; h <= kI; ++h) {
          if (e.account == kOutput[h]) t.output[h] += e.cr - e.dr;
          if (e.account == kInput[h]) t.input[h] += e.dr - e.cr;
        }
        if (e.account == ac::kReverseCharge) t.reverse_charge += e.cr - e.dr;
      }
    }
    // The electronic credit ledger, and output tax a month's credit notes turned negative.
    int64_t credit[3] = {0, 0, 0};
    int64_t carried[3] = {0, 0, 0};
    int64_t reverse_charge = 0;
    // What was booked before the books' first month (stock received in March) is settled with
    // April's return.
    for (const auto& [month, t] : months) {
      if (month >= kFirstDay) break;
      for (int h = kC; h <= kI; ++h) {
        credit[h] += t.input[h];
        carried[h] += t.output[h];
      }
      reverse_charge += t.reverse_charge;
    }
    for (Day month = kFirstDay; month <= kLastDay; month = month.PlusMonths(1)) {
      Day due = month.PlusMonths(1).Plus(14 + random_.Between(0, 5));
      if (due.weekday() == 0) due = due.Plus(-1);
      if (due > kLastDay) break;
      const Taxes& t = months[month];
      int64_t owed[3];
      for (int h = kC; h <= kI; ++h) {
        credit[h] += t.input[h];
        owed[h] = carried[h] + t.output[h];
        carried[h] = std::min<int64_t>(owed[h], 0);
        owed[h] = std::max<int64_t>(owed[h], 0);
      }
      int64_t used_from[3] = {0, 0, 0};
      int64_t set_off[3] = {0, 0, 0};
      auto use = [&](int from, int against) {
        const int64_t used = std::min(credit[from], owed[against]);
        credit[from] -= used;
        owed[against] -= used;
        used_from[from] += used;
        set_off[against] += used;
      };
      use(kI, kI);
      use(kI, kC);
      use(kI, kS);
      use(kC, kC);
      use(kC, kI);
      use(kS, kS);
      use(kS, kI);
      const std::string period = MonthName(month);
      const std::string gstr =
          "GSTR-3B " + Padded(month.month(), 2) + "/" + std::to_string(month.year());
      if (set_off[kC] + set_off[kS] + set_off[kI] > 0) {
        Voucher& j = New("JOURNAL", due, 1,
                         "GST of " + period + ": input tax credit set off against the output tax");
        j.user = kAccountant;
        j.ref = gstr;
        for (int h = kC; h <= kI; ++h) j.Dr(kOutput[h], set_off[h], "Paid by input tax credit");
        for (int h = kC; h <= kI; ++h) j.Cr(kInput[h], used_from[h], "Credit utilised");
      }
      reverse_charge += t.reverse_charge;
      if (owed[kC] + owed[kS] + owed[kI] + reverse_charge <= 0) continue;
      Voucher& p =
          New("PAYMENT", due, 1, "GST of " + period + " paid by challan with the monthly return");
      p.user = kAccountant;
      p.ref = gstr;
      p.mode = "NEFT";
      p.cheque_no =
          "CPIN " + Padded(due.year() % 100, 2) + Padded(due.month(), 2) + "27" + random_.Digits(8);
      p.cheque_date = due;
      p.bank = "State Bank of India";
      for (int h = kC; h <= kI; ++h) p.Dr(kOutput[h], owed[h], "Paid in cash");
      p.Dr(ac::kReverseCharge, reverse_charge, "Reverse charge, paid in cash");
      p.Cr(ac::kSbi, p.Debits());
      reverse_charge = 0;
    }
  }

  // Cash above the day's float is deposited in the current account on the next working day.
  void PostContra() {
    std::map<Day, int64_t> movement;
    for (const Voucher& v : vouchers_) {
      for (const Entry& e : v.entries) {
        if (e.account == ac::kCash) movement[v.date] += e.dr - e.cr;
      }
    }
    int64_t balance = Rs(48250);
    constexpr int64_t kFloat = Rs(50000);
    std::vector<std::pair<Day, int64_t>> deposits;
    for (Day day = kFirstDay; day <= kLastDay; day = day.Plus(1)) {
      balance += movement.count(day) > 0 ? movement[day] : 0;
      if (day.weekday() != 6 && balance < kFloat * 3) continue;
      if (balance <= kFloat) continue;
      const int64_t amount = (balance - kFloat) / Rs(500) * Rs(500);
      if (amount <= 0) continue;
      deposits.emplace_back(day, amount);
      balance -= amount;
    }
    for (const auto& [day, amount] : deposits) {
      Voucher& v = New("CONTRA", day, 1,
                       "Cash deposited in SBI current account, pay-in slip " +
                           Padded(day.DaysSince(kFirstDay) + 1001, 5));
      v.mode = "CASH";
      v.Dr(ac::kSbi, amount);
      v.Cr(ac::kCash, amount);
    }
    // At each month's end the current account's surplus goes to the cash credit account that
    // pays the manufacturers.
    std::map<Day, int64_t> bank;
    for (const Voucher& v : vouchers_) {
      for (const Entry& e : v.entries) {
        if (e.account == ac::kSbi) bank[v.date] += e.dr - e.cr;
      }
    }
    int64_t current = 0;
    for (Day day = kFirstDay; day <= kLastDay; day = day.Plus(1)) {
      current += bank.count(day) > 0 ? bank[day] : 0;
      if (day.Plus(1).day() != 1 || current <= Rs(300000)) continue;
      const int64_t amount = (current - Rs(200000)) / Rs(1000) * Rs(1000);
      Voucher& v = New("CONTRA", day, 1,
                       "Surplus of the SBI current account transferred to the "
                       "HDFC cash credit account");
      v.user = kAccountant;
      v.mode = "NEFT";
      v.Dr(ac::kHdfc, amount);
      v.Cr(ac::kSbi, amount);
      current -= amount;
    }
  }

  // The cash deposits of a busy cash book add entries of their own: as many petty expenses go
  // as the deposits came, so that the year holds exactly the entries asked for.
  void TrimCashBook() {
    if (options_.ledger_entries <= 0) return;
    const Day year_end = Day::FromYmd(2025, 3, 31);
    int in_year = 0;
    for (const Voucher& v : vouchers_) {
      if (v.date < kFirstDay || v.date > year_end) continue;
      for (const Entry& e : v.entries) in_year += e.account == ac::kCash ? 1 : 0;
    }
    for (auto it = petty_.rbegin(); it != petty_.rend() && in_year > options_.ledger_entries;
         ++it) {
      Voucher& v = vouchers_[static_cast<size_t>(*it - 1)];
      if (v.date > year_end) continue;
      v.dropped = true;
      --in_year;
    }
  }

  // Numbers the vouchers in date order, each type in its own series per financial year, and
  // names on every entry the account the ledger shows against it.
  void Number() {
    std::vector<Voucher*> order;
    for (Voucher& v : vouchers_) {
      if (!v.dropped) order.push_back(&v);
    }
    std::stable_sort(order.begin(), order.end(), [](const Voucher* a, const Voucher* b) {
      return a->date != b->date ? a->date < b->date : a->order < b->order;
    });
    static const std::map<std::string, std::string> prefixes = {
        {"SALES", "SV"},   {"PURCHASE", "PU"}, {"RECEIPT", "RV"},     {"PAYMENT", "PV"},
        {"JOURNAL", "JV"}, {"CONTRA", "CV"},   {"CREDIT NOTE", "CN"}, {"DEBIT NOTE", "DN"}};
    std::map<std::string, int> counters;
    int id = 0;
    for (Voucher* v : order) {
      v->id = ++id;
      const std::string prefix = prefixes.at(v->type);
      const std::string series = prefix + "/" + v->date.FinancialYear();
      v->num = series + "/" + Padded(++counters[series], 5);
      if (v->Debits() != v->Credits()) {
        throw std::logic_error("voucher " + v->num + " does not balance: " + v->narration);
      }
      const Entry* top_dr = nullptr;
      const Entry* top_cr = nullptr;
      for (const Entry& e : v->entries) {
        if (e.dr > 0 && (top_dr == nullptr || e.dr > top_dr->dr)) top_dr = &e;
        if (e.cr > 0 && (top_cr == nullptr || e.cr > top_cr->cr)) top_cr = &e;
      }
      for (Entry& e : v->entries) {
        const Entry* other = e.dr > 0 ? top_cr : top_dr;
        e.against = other != nullptr ? other->account : 0;
      }
    }
    numbered_ = order;
  }

  int VoucherId(int order) const { return vouchers_[static_cast<size_t>(order - 1)].id; }

  void WriteTables() {
    Table& groups = tables_.Create("fa_group", {"grp_code", "grp_id", "grp_name", "grp_nature"});
    for (const Group& g : Groups()) groups.Add({g.code, Int(g.id), g.name, g.nature});

    // The books' ledgers join the account master after the sales side's rows, which keep
    // their bytes; the capital account takes the difference of the opening balances.
    Table& accounts = tables_.Create(
        "fa_acmaster", {"am_id", "am_name", "am_group", "am_add1", "am_town", "am_state",
                        "am_statecode", "am_pin", "am_gst", "am_pan", "am_phone", "am_opbal"});
    for (const Ledger& l : BooksLedgers()) {
      const int64_t opening = l.id == ac::kCapital ? -openings_ : l.opening;
      accounts.Add({Int(l.id), l.name, l.group, Text(l.add1), Text(l.town), Text(l.state),
                    Text(l.state_code), Text(l.pin),
                    Text(l.pan.empty() ? std::string() : MakeGstin(l.state_code, l.pan)),
                    Text(l.pan), Text(l.phone), Paise(opening)});
    }
    for (const Customer& c : d_.customers) {
      // A customer the workshop has already given an account keeps it.
      if (earlier_.count(CustomerLedger(c.id)) > 0) continue;
      accounts.Add({Int(CustomerLedger(c.id)), c.name, "CUSTOMER", Text(c.add1), Text(c.city),
                    Text(c.state), Text(c.state_code), Text(c.pin), Text(c.gstin), Text(c.pan),
                    Text(c.mobile), Paise(0)});
    }

    Table& masters =
        tables_.Create("vchmst", {"vm_id", "vm_type", "vm_no", "vm_date", "br_id", "vm_ref",
                                  "vm_refdate", "vm_amt", "vm_mode", "vm_chqno", "vm_chqdate",
                                  "vm_bank", "vm_narration", "vm_user", "vm_checkedby"});
    Table& lines = tables_.Create(
        "vchdet", {"vm_id", "vd_line", "am_id", "vd_dr", "vd_cr", "vd_against", "vd_remarks"});
    for (const Voucher* v : numbered_) {
      masters.Add({Int(v->id), v->type, v->num, v->date, Int(v->branch), Text(v->ref),
                   OptionalDay(v->ref_date), Paise(v->Debits()), Text(v->mode), Text(v->cheque_no),
                   OptionalDay(v->cheque_date), Text(v->bank), v->narration, v->user,
                   Text(v->type == "JOURNAL" || v->type == "PAYMENT" ? kChecker : "")});
      int line = 0;
      // Debits first, as a voucher is written.
      for (int pass = 0; pass < 2; ++pass) {
        for (const Entry& e : v->entries) {
          if ((pass == 0) != (e.dr > 0)) continue;
          lines.Add({Int(v->id), Int(++line), Int(e.account), Paise(e.dr), Paise(e.cr),
                     e.against == 0 ? Cell(kNull) : Int(e.against), Text(e.remarks)});
        }
      }
    }

    Table& gst = tables_.Create(
        "gstvmst", {"did", "dtype", "dnum", "ddate", "br_id", "am_id", "bill_no", "bill_date",
                    "taxable", "cgst", "sgst", "igst", "damt", "narration", "vm_id", "duser"});
    Table& gst_lines = tables_.Create("gstvdet", {"did", "line", "am_id", "descr", "sac", "taxable",
                                                  "gst_rate", "cgst", "sgst", "igst", "amount"});
    for (const GstDocument& g : gst_documents_) {
      int64_t taxable = 0, cgst = 0, sgst = 0, igst = 0;
      int line = 0;
      for (const GstLine& l : g.lines) {
        taxable += l.taxable;
        cgst += l.cgst;
        sgst += l.sgst;
        igst += l.igst;
        gst_lines.Add({Int(g.id), Int(++line), Int(l.account), l.description, l.sac,
                       Paise(l.taxable), Int(l.rate), Paise(l.cgst), Paise(l.sgst), Paise(l.igst),
                       Paise(l.taxable + l.cgst + l.sgst + l.igst)});
      }
      gst.Add({Int(g.id), std::string(1, g.type), g.num, g.date, Int(g.branch), Int(g.party),
               g.bill_no, g.bill_date, Paise(taxable), Paise(cgst), Paise(sgst), Paise(igst),
               Paise(g.Amount()), g.narration, Int(VoucherId(g.voucher)), kAccountant});
    }

    Table& dcn = tables_.Create(
        "gstdcnmst", {"did", "dtype", "dnum", "ddate", "br_id", "am_id", "orig_no", "orig_date",
                      "reason", "taxable", "cgst", "sgst", "igst", "damt", "vm_id", "duser"});
    Table& dcn_lines =
        tables_.Create("gstdcndet", {"did", "line", "descr", "hsn", "qty", "rate", "taxable",
                                     "gst_rate", "cgst", "sgst", "igst", "amount"});
    for (const Note& n : notes_) {
      const Tax t = n.Taxes();
      dcn.Add({Int(n.id), std::string(1, n.type), n.num, n.date, Int(n.branch), Int(n.party),
               n.original_no, n.original_date, n.reason, Paise(n.Taxable()), Paise(t.cgst),
               Paise(t.sgst), Paise(t.igst), Paise(n.Amount()), Int(VoucherId(n.voucher)),
               kAccountant});
      int line = 0;
      for (const NoteLine& l : n.lines) {
        dcn_lines.Add({Int(n.id), Int(++line), l.description, l.hsn, Int(l.qty), Paise(l.rate),
                       Paise(l.taxable), Int(l.gst_rate), Paise(l.cgst), Paise(l.sgst),
                       Paise(l.igst), Paise(l.taxable + l.cgst + l.sgst + l.igst)});
      }
    }

    Table& old = tables_.Create(
        "oldveh", {"xid",        "xno",       "xdate",   "br_id",   "cust_id", "invid",
                   "make_model", "mfg_year",  "regno",   "chassis", "engine",  "colour",
                   "kms",        "owners",    "insurer", "value",   "rc_recd", "ins_recd",
                   "noc_recd",   "keys_recd", "paymode", "xuser"});
    for (const Exchange& x : exchanges_) {
      auto yes = [](bool b) { return std::string(b ? "Y" : "N"); };
      old.Add({Int(x.id),      x.num,           x.date,           Int(x.branch), Int(x.customer),
               Int(x.invoice), x.make_model,    Int(x.year),      x.regno,       x.chassis,
               x.engine,       x.colour,        Int(x.kms),       Int(x.owners), x.insurer,
               Paise(x.value), yes(x.rc),       yes(x.insurance), yes(x.noc),    yes(x.keys),
               x.mode,         UserOf(x.branch)});
    }
  }

  void Add(const std::string& key, const std::string& value) { facts_.emplace_back(key, value); }

  void ChooseFacts() {
    const Day from = kFirstDay;
    const Day to = Day::FromYmd(2025, 3, 31);
    // The reference ledger: the customer with the most entries in the year, an id beyond 16
    // bits.
    std::map<int, int> entries;
    for (const Voucher* v : numbered_) {
      if (v->date > to) continue;
      for (const Entry& e : v->entries) ++entries[e.account];
    }
    int customer = 0;
    for (const auto& [account, count] : entries) {
      if (account > kCustomerLedgerBase && (customer == 0 || count > entries[customer]))
        customer = account;
    }
    Add("ledger_refid", std::to_string(customer));
    Add("ledger_from", from.Iso());
    Add("ledger_to", to.Iso());
    Add("cash_account_id", std::to_string(ac::kCash));
    Add("party_account_id", std::to_string(ids::kKrishnaAuto));
    const int party = ac::kVayuMotocorp;
    // The host's SQL of a party's ledger: its lines in the period and the balance before it.
    const std::string account = std::to_string(party);
    Add("party_ledger_sql",
        "select l.*, a.am_opbal + coalesce((select sum(d.vd_dr - d.vd_cr) from vchdet d join "
        "vchmst m on m.vm_id = d.vm_id where d.am_id = l.am_id and m.vm_date < '" +
            from.Iso() +
            "'), 0) as opening from vu_ledger l join fa_acmaster a on a.am_id = l.am_id where "
            "l.am_id = " +
            account + " and l.vm_date >= '" + from.Iso() + "' and l.vm_date <= '" + to.Iso() +
            "' order by l.vm_date, l.vm_id, l.vd_line");
    Add("party_ledger_title",
        "Ledger of " + PartyName(party) + " from " + from.Dmy() + " to " + to.Dmy());
    const Day june = Day::FromYmd(2024, 6, 1);
    Add("voucher_user", "RAHUL P");
    Add("voucher_user_sql", "select * from vu_voucher where vm_user = 'RAHUL P' and vm_date >= '" +
                                june.Iso() + "' and vm_date <= '" +
                                june.PlusMonths(1).Plus(-1).Iso() +
                                "' order by vm_date, vm_id, vd_line");
    Add("trial_date", to.Iso());
    Add("trial_party_nature", "SUNDRY DEBTORS");
    Add("trial_group_id", "6");
    Add("trial_group_name", "SUNDRY DEBTORS");
    Add("trial_nature", "ASSETS");
    // The host's SQL of the trial balance of one nature: its groups with their balances.
    Add("trial_nature_sql",
        "select g.grp_id, g.grp_name, g.grp_nature, sum(a.am_opbal + coalesce(t.mv, 0)) as bal "
        "from fa_acmaster a join fa_group g on g.grp_code = a.am_group left join (select "
        "d.am_id, sum(d.vd_dr - d.vd_cr) as mv from vchdet d join vchmst m on m.vm_id = d.vm_id "
        "where m.vm_date <= '" +
            to.Iso() +
            "' group by d.am_id) t on t.am_id = a.am_id where g.grp_nature = 'ASSETS' group by "
            "g.grp_id, g.grp_name, g.grp_nature having sum(a.am_opbal + coalesce(t.mv, 0)) <> 0 "
            "order by g.grp_id");

    // Vouchers of every kind: the first of each type with the most lines.
    auto richest = [&](const std::string& type) {
      const Voucher* best = nullptr;
      for (const Voucher* v : numbered_) {
        if (v->type == type && (best == nullptr || v->entries.size() > best->entries.size()))
          best = v;
      }
      if (best == nullptr) throw std::logic_error("the books have no " + type + " voucher");
      return best->id;
    };
    Add("voucher_id", std::to_string(richest("SALES")));
    Add("voucher_payment_id", std::to_string(richest("PAYMENT")));
    Add("voucher_journal_id", std::to_string(richest("JOURNAL")));
    auto document = [&](char type) {
      for (const GstDocument& g : gst_documents_) {
        if (g.type == type && g.lines.size() >= 2) return g.id;
      }
      throw std::logic_error("the books have no GST voucher of that kind");
    };
    Add("gst_voucher_id", std::to_string(document('G')));
    Add("payout_voucher_id", std::to_string(document('P')));
    auto note = [&](char type) {
      const Note* best = nullptr;
      for (const Note& n : notes_) {
        if (n.type == type && (best == nullptr || n.lines.size() > best->lines.size())) best = &n;
      }
      if (best == nullptr) throw std::logic_error("the books have no GST note of that kind");
      return best->id;
    };
    Add("gst_credit_note_id", std::to_string(note('C')));
    Add("gst_debit_note_id", std::to_string(note('D')));
    if (exchanges_.empty()) throw std::logic_error("the books have no exchange vehicle");
    Add("old_vehicle_id", std::to_string(exchanges_.front().id));

    if (cheques_.empty()) throw std::logic_error("the books have no cheque payment");
    const Voucher& cheque = vouchers_[static_cast<size_t>(cheques_.front())];
    const Day cheque_day = *cheque.cheque_date;
    Add("cheque_voucher_id", std::to_string(cheque.id));
    Add("cheque_date", Padded(cheque_day.day(), 2) + Padded(cheque_day.month(), 2) +
                           std::to_string(cheque_day.year()));
    Add("cheque_acpay", "A/C PAYEE");
    Add("cheque_party", PartyName(cheque.entries.front().account));
    Add("cheque_amount", "**" + IndianAmount(cheque.Debits()) + "/-");
    Add("cheque_words", ChequeWords(cheque.Debits()));
  }

  const Dealership& d_;
  const Options& options_;
  Workshop& workshop_;
  Dataset& tables_;
  FactList& facts_;
  Random random_;
  std::set<int> known_;
  std::set<int> earlier_;             // accounts the steps before the books wrote
  std::map<int, std::string> names_;  // their names
  // The workshop's bills on account (positive) and returns (negative), by party.
  struct Due {
    bool supplier;
    int party;
    Day date;
    int64_t amount;
  };
  std::vector<Due> dues_;
  int64_t openings_ = 0;
  std::deque<Voucher> vouchers_;
  std::vector<Voucher*> numbered_;
  std::vector<Bill> supplier_bills_;
  std::vector<Exchange> exchanges_;
  std::vector<GstDocument> gst_documents_;
  std::vector<Note> notes_;
  std::vector<int> cheques_;  // indexes in vouchers_ of payments by cheque
  std::vector<int> petty_;    // orders of the petty cash expenses
};

}  // namespace

// The books draw from a stream of their own, so that the steps after them keep their data
// whatever the books post.
void AddBooks(const Dealership& sales, const Options& options, Random&, Workshop& workshop,
              Dataset& tables, FactList& facts) {
  Books(sales, options, workshop, tables, facts).Run();
}

}  // namespace vantorel::demo
