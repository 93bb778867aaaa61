// The dealership's masters: Shivneri Motors of Hadapsar, Pune, a dealer of Vayu motorcycles,
// scooters and electric scooters and of Ganga cycles, with branches at Chakan and Baramati. The
// firm, accounts, models and items are fixed; customers are drawn from the random generator.
#include <cctype>
#include <set>
#include <stdexcept>
#include <utility>

#include "demo/accounts.h"
#include "demo/entities.h"
#include "demo/gst.h"
#include "demo/identifiers.h"
#include "demo/random.h"

namespace vantorel::demo {

const char* CategoryCode(Category category) {
  switch (category) {
    case Category::kMotorcycle:
      return "MC";
    case Category::kScooter:
      return "SC";
    case Category::kElectric:
      return "EV";
    case Category::kCycle:
      return "CY";
  }
  return "";
}

int64_t LinesNet(const std::vector<Line>& lines) {
  int64_t total = 0;
  for (const Line& line : lines) total += line.net;
  return total;
}

int64_t RoundOff(const std::vector<Line>& lines) {
  const int64_t net = LinesNet(lines);
  return RoundedToRupee(net) - net;
}

int64_t LinesInclusive(const std::vector<Line>& lines) {
  int64_t total = 0;
  for (const Line& line : lines) total += line.inclusive;
  return total;
}

int64_t Invoice::Subsidy() const {
  int64_t total = 0;
  for (const Line& line : lines) total += line.subsidy.value_or(0);
  return total;
}

int64_t BulkReceipt::Amount() const {
  int64_t total = 0;
  for (const auto& [invoice, amount] : lines) total += amount;
  return total;
}

namespace {

template <typename T>
const T& FindById(const std::vector<T>& items, int id, const char* what) {
  for (const T& item : items) {
    if (item.id == id) return item;
  }
  throw std::out_of_range(std::string("no ") + what + " " + std::to_string(id));
}

}  // namespace

const Account& Dealership::account(int id) const { return FindById(accounts, id, "account"); }
const Branch& Dealership::branch(int id) const { return FindById(branches, id, "branch"); }
const Customer& Dealership::customer(int id) const { return FindById(customers, id, "customer"); }
const VehicleModel& Dealership::model(int id) const { return FindById(models, id, "model"); }
const Color& Dealership::color(int id) const { return FindById(colors, id, "colour"); }
const Item& Dealership::item(int id) const { return FindById(items, id, "item"); }
const Invoice& Dealership::invoice(int id) const { return FindById(invoices, id, "invoice"); }
const Challan& Dealership::challan(int id) const { return FindById(challans, id, "challan"); }
const Vehicle& Dealership::vehicle(int id) const { return FindById(vehicles, id, "vehicle"); }
Vehicle& Dealership::vehicle(int id) {
  return const_cast<Vehicle&>(std::as_const(*this).vehicle(id));
}

int64_t Dealership::Price(int model_id, Day day) const {
  for (const PriceListEntry& entry : prices) {
    if (entry.model == model_id && entry.from <= day && (!entry.to || day <= *entry.to)) {
      return entry.price;
    }
  }
  throw std::out_of_range("no price for model " + std::to_string(model_id));
}

namespace {

void AddFirm(Dealership& d) {
  Firm& f = d.firm;
  f.name = "Shivneri Motors";
  f.name_local = "शिवनेरी मोटर्स";
  f.tagline = "Authorised dealer: Vayu motorcycles, scooters and e-scooters; Ganga cycles";
  f.add1 = "Survey No. 58/2, Shivneri Plaza";
  f.add2 = "Pune-Solapur Road, Hadapsar";
  f.add3 = "Near Gadital Bus Stop";
  f.city = "Pune";
  f.district = "Pune";
  f.state = "Maharashtra";
  f.state_code = "27";
  f.pin = "411028";
  f.phone = "020-26970451, 020-26970452";
  f.mobile = "9822045110";
  f.email = "sales@shivnerimotors.example";
  f.website = "www.shivnerimotors.example";
  f.pan = "AAKFS4821M";
  f.gstin = MakeGstin("27", f.pan);
  f.dealer_code = "VMC-MH-PN-0147";
  f.trade_cert = "TC/MH12/2019/0347";
  f.bank_name = "State Bank of India";
  f.bank_branch = "Hadapsar, Pune";
  f.bank_acno = "39817264510";
  f.bank_ifsc = "SBIN0011543";
  f.jurisdiction = "Subject to Pune jurisdiction";
  // Relative to the application folder, which holds the demo's pictures in assets/.
  f.logo = "assets/logo.png";
  f.terms =
      "1. Goods once sold will not be taken back. 2. Interest at 18% p.a. is charged on bills "
      "unpaid after 30 days. 3. Warranty as per the manufacturer's warranty booklet. "
      "4. Subject to Pune jurisdiction.";
}

void AddSettings(Dealership& d) {
  d.settings = {
      {"CHALLAN", "GATEPASS", "Y", "Print customer challans on the gate-pass layout (Y/N)"},
      {"WS_PO", "PO", "N", "Workshop purchase orders: Y prints the view layout"},
      {"INVOICE", "EINVOICE", "Y", "Generate an IRN for invoices to GST-registered buyers"},
      {"INVOICE", "COPIES", "2", "Copies of a vehicle invoice"},
      {"GST", "REVISION", "2025-09-22", "Date the revised GST rates took effect"},
      {"SUBSIDY", "SCHEME", "PM E-DRIVE", "Electric two-wheeler subsidy scheme"},
  };
}

void AddAccounts(Dealership& d) {
  const std::string mh = "Maharashtra";
  d.accounts = {
      MakeAccount(1, "Vayu Motocorp Ltd", "SUPPLIER", "Plot No. 7, SIPCOT Industrial Complex",
                  "Phase II, Mornapalli", "Hosur Taluk", "Hosur", "Krishnagiri", "Tamil Nadu", "33",
                  "635109", "AABCV7312K", "04344-276100", "", "dealers@vayumoto.example",
                  "Regional Office, Pune", Rs(-1845000)),
      MakeAccount(2, "Vayu Electric Mobility Pvt Ltd", "SUPPLIER", "Gat No. 1204, MIDC Phase II",
                  "Chakan Industrial Area", "Khed Taluk", "Chakan", "Pune", mh, "27", "410501",
                  "AAGCV5518N", "02135-690200", "", "ev.sales@vayumoto.example", "Sales Desk",
                  Rs(-412000)),
      MakeAccount(3, "Ganga Cycles Ltd", "SUPPLIER", "B-14, Focal Point", "G.T. Road", "Phase VIII",
                  "Ludhiana", "Ludhiana", "Punjab", "03", "141010", "AABCG2964P", "0161-2671144",
                  "", "orders@gangacycles.example", "Dealer Cell", Rs(-96500)),
      MakeAccount(11, "Krishna Auto Agencies", "SUBDEALER", "Shop No. 4, Radhika Road",
                  "Near Powai Naka", "Sadar Bazar", "Satara", "Satara", mh, "27", "415001",
                  "ABKFK3307R", "02162-231455", "9823012245", "krishnaauto@example.com",
                  "Mahesh Jadhav", Rs(215000)),
      MakeAccount(12, "Shri Siddhivinayak Motors", "SUBDEALER", "12, Railway Lines",
                  "Opp. Bhagwat Chitra Mandir", "Murarji Peth", "Solapur", "Solapur", mh, "27",
                  "413001", "BGTPK6640D", "0217-2725510", "9850123766", "ssmotors@example.com",
                  "Sunil Kore", Rs(0)),
      MakeAccount(13, "Yash Automobiles", "SUBDEALER", "Plot 21, Market Yard Road",
                  "Near Vishrambag Chowk", "Vishrambag", "Sangli", "Sangli", mh, "27", "416416",
                  "AAHFY9021C", "0233-2621890", "9765432108", "yashauto@example.com",
                  "Yashwant Mane", Rs(98000)),
      MakeAccount(14, "Malaprabha Motors", "SUBDEALER", "CTS No. 4471, Khanapur Road", "Tilakwadi",
                  "", "Belagavi", "Belagavi", "Karnataka", "29", "590006", "AAPFM4458L",
                  "0831-2480922", "9448012377", "malaprabha@example.com", "Prakash Patil", Rs(0)),
      MakeAccount(15, "Coastal Motors", "SUBDEALER", "Ground Floor, Colmorod", "Near KTC Bus Stand",
                  "Navelim", "Margao", "South Goa", "Goa", "30", "403707", "AAJFC7785B",
                  "0832-2735544", "9822154433", "coastalmotors@example.com", "Joseph Fernandes",
                  Rs(0)),
      MakeAccount(16, "Navkar Automobiles", "SUBDEALER", "A-9, Shanti Complex",
                  "National Highway 48", "Chala", "Vapi", "Valsad", "Gujarat", "24", "396191",
                  "ACWPS1129H", "0260-2462117", "9825013394", "navkarauto@example.com",
                  "Jignesh Shah", Rs(0)),
      MakeAccount(21, "Shivneri Motors - Hadapsar HO", "BRANCH", "Survey No. 58/2",
                  "Pune-Solapur Road", "Hadapsar", "Pune", "Pune", mh, "27", "411028", "AAKFS4821M",
                  "020-26970451", "", "", "", 0),
      MakeAccount(22, "Shivneri Motors - Chakan Branch", "BRANCH", "Gat No. 112",
                  "Pune-Nashik Highway", "Near Ambethan Chowk", "Chakan", "Pune", mh, "27",
                  "410501", "AAKFS4821M", "02135-249910", "", "", "", 0),
      MakeAccount(23, "Shivneri Motors - Baramati Branch", "BRANCH", "Plot No. 7, Bhigwan Road",
                  "Near MIDC Chowk", "", "Baramati", "Pune", mh, "27", "413102", "AAKFS4821M",
                  "02112-243370", "", "", "", 0),
      MakeAccount(31, "Janseva Auto Finance Ltd", "FINANCIER", "Office No. 305, Pride Icon",
                  "Kharadi Bypass", "Kharadi", "Pune", "Pune", mh, "27", "411014", "AACCJ1185E",
                  "020-67281100", "", "pune@jansevafin.example", "Branch Manager", 0),
      MakeAccount(32, "Deccan Vehicle Finance Ltd", "FINANCIER", "2nd Floor, Kumar Capital",
                  "East Street, Camp", "", "Pune", "Pune", mh, "27", "411001", "AADCD6622F",
                  "020-26131240", "", "ops@deccanvf.example", "Credit Operations", 0),
      MakeAccount(33, "Mahalaxmi Sahakari Bank Ltd", "FINANCIER", "Mahalaxmi Bhavan", "Laxmi Road",
                  "Sadashiv Peth", "Pune", "Pune", mh, "27", "411030", "AAAAM4471G", "020-24451780",
                  "", "loans@mahalaxmibank.example", "Loans Officer", 0),
      MakeAccount(34, "Sahyadri Nagari Sahakari Patsanstha Ltd", "FINANCIER", "Main Road",
                  "Near Gram Panchayat", "", "Baramati", "Pune", mh, "27", "413102", "AAAAS8893J",
                  "02112-222604", "", "", "Manager", 0),
      MakeAccount(35, "Indrayani Finance & Leasing Pvt Ltd", "FINANCIER", "Shop 6, Laxmi Complex",
                  "Talegaon-Chakan Road", "", "Chakan", "Pune", mh, "27", "410501", "AAECI3340Q",
                  "02135-252781", "", "indrayanifin@example.com", "Recovery Officer", 0),
      MakeAccount(41, "State Bank of India - Current A/c 39817264510", "BANK", "Hadapsar Branch",
                  "", "", "Pune", "Pune", mh, "27", "411028", "", "", "", "", "", 0),
      MakeAccount(42, "HDFC Bank - Cash Credit A/c 50200031245781", "BANK", "Magarpatta Branch", "",
                  "", "Pune", "Pune", mh, "27", "411013", "", "", "", "", "", 0),
      MakeAccount(43, "Cash in Hand", "CASH", "", "", "", "", "", "", "", "", "", "", "", "", "",
                  Rs(48250)),
      MakeAccount(51, "Sales - Vehicles", "SALES", "", "", "", "", "", "", "", "", "", "", "", "",
                  "", 0),
      MakeAccount(61, "Output CGST", "GST", "", "", "", "", "", "", "", "", "", "", "", "", "", 0),
      MakeAccount(62, "Output SGST", "GST", "", "", "", "", "", "", "", "", "", "", "", "", "", 0),
      MakeAccount(63, "Output IGST", "GST", "", "", "", "", "", "", "", "", "", "", "", "", "", 0),
  };
}

void AddBranches(Dealership& d) {
  d.branches = {
      {1,
       "HO",
       "Hadapsar (Head Office & Showroom)",
       "Survey No. 58/2, Shivneri Plaza",
       "Pune-Solapur Road, Hadapsar",
       "Pune",
       "411028",
       "020-26970451",
       "Maharashtra",
       "27",
       "MH12 Pune",
       "MH12",
       "Vikas Deshpande",
       21,
       {"Sagar Gaikwad", "Pooja Shinde", "Arif Shaikh"}},
      {2,
       "CKN",
       "Chakan Branch",
       "Gat No. 112, Pune-Nashik Highway",
       "Near Ambethan Chowk",
       "Chakan",
       "410501",
       "02135-249910",
       "Maharashtra",
       "27",
       "MH14 Pimpri-Chinchwad",
       "MH14",
       "Ravindra Bhor",
       22,
       {"Nikhil Kulkarni", "Snehal Pawar"}},
      {3,
       "BMT",
       "Baramati Branch",
       "Plot No. 7, Bhigwan Road",
       "Near MIDC Chowk",
       "Baramati",
       "413102",
       "02112-243370",
       "Maharashtra",
       "27",
       "MH42 Baramati",
       "MH42",
       "Santosh Jagtap",
       23,
       {"Rohan Jadhav", "Vaishali Kale"}},
  };
}

void AddColors(Dealership& d) {
  d.colors = {
      {1, "Black Red", "BKR"},     {2, "Sports Red", "SRD"},    {3, "Pearl White", "PWT"},
      {4, "Matt Grey", "MGY"},     {5, "Royal Blue", "RBL"},    {6, "Candy Yellow", "CYL"},
      {7, "Glossy Black", "GBK"},  {8, "Teal Blue", "TBL"},     {9, "Silver", "SLV"},
      {10, "Forest Green", "FGN"}, {11, "Pink Blossom", "PNK"}, {12, "Orange Burst", "ORG"}};
}

struct CatalogueModel {
  int id;
  Category category;
  const char* code;
  const char* vds;
  const char* engine_prefix;
  const char* model;
  const char* variant;
  const char* cc;
  const char* power;
  int gears;
  int wheelbase;
  int unladen;
  const char* noise;
  const char* wheel;
  int64_t launch_price;  // rupees, GST included, in FY 2024-25
  std::vector<int> colors;
};

void AddModels(Dealership& d) {
  const std::vector<CatalogueModel> catalogue = {
      {1,
       Category::kMotorcycle,
       "SR100K",
       "SR1KD",
       "SR10E",
       "Vayu Sarathi 100",
       "Kick Drum",
       "97.2",
       "5.9 kW @ 8000 rpm",
       4,
       1236,
       110,
       "80.0",
       "18 in",
       64900,
       {1, 2, 5, 9}},
      {2,
       Category::kMotorcycle,
       "SR100S",
       "SR1SD",
       "SR10E",
       "Vayu Sarathi 100",
       "Self Drum Alloy",
       "97.2",
       "5.9 kW @ 8000 rpm",
       4,
       1236,
       112,
       "80.0",
       "18 in",
       69400,
       {1, 2, 5, 9}},
      {3,
       Category::kMotorcycle,
       "SP110D",
       "SP1DR",
       "SP11E",
       "Vayu Sprint 110",
       "Drum",
       "109.5",
       "6.5 kW @ 7500 rpm",
       4,
       1266,
       114,
       "80.0",
       "18 in",
       74800,
       {1, 2, 4, 5}},
      {4,
       Category::kMotorcycle,
       "SP110K",
       "SP1DK",
       "SP11E",
       "Vayu Sprint 110",
       "Disc",
       "109.5",
       "6.5 kW @ 7500 rpm",
       4,
       1266,
       115,
       "80.0",
       "18 in",
       78600,
       {1, 2, 4, 5}},
      {5,
       Category::kMotorcycle,
       "TF125D",
       "TF2DR",
       "TF12E",
       "Vayu Toofan 125",
       "Drum",
       "124.7",
       "7.9 kW @ 7500 rpm",
       5,
       1286,
       121,
       "81.0",
       "18 in",
       84300,
       {7, 2, 4, 8}},
      {6,
       Category::kMotorcycle,
       "TF125K",
       "TF2DK",
       "TF12E",
       "Vayu Toofan 125",
       "Disc",
       "124.7",
       "7.9 kW @ 7500 rpm",
       5,
       1286,
       122,
       "81.0",
       "18 in",
       88900,
       {7, 2, 4, 8}},
      {7,
       Category::kMotorcycle,
       "SH160S",
       "SH6SD",
       "SH16E",
       "Vayu Shaurya 160",
       "Single Disc",
       "159.8",
       "11.2 kW @ 8250 rpm",
       5,
       1330,
       139,
       "82.0",
       "17 in",
       118500,
       {7, 2, 3, 4}},
      {8,
       Category::kMotorcycle,
       "SH160A",
       "SH6AB",
       "SH16E",
       "Vayu Shaurya 160",
       "Dual Disc ABS",
       "159.8",
       "11.2 kW @ 8250 rpm",
       5,
       1330,
       142,
       "82.0",
       "17 in",
       126900,
       {7, 2, 3, 4}},
      {9,
       Category::kScooter,
       "SK110S",
       "SK1ST",
       "SK11E",
       "Vayu Sakhi 110",
       "Standard",
       "109.7",
       "5.9 kW @ 7250 rpm",
       0,
       1260,
       106,
       "79.0",
       "12 in",
       76900,
       {3, 4, 6, 8}},
      {10,
       Category::kScooter,
       "SK110X",
       "SK1DX",
       "SK11E",
       "Vayu Sakhi 110",
       "Deluxe",
       "109.7",
       "5.9 kW @ 7250 rpm",
       0,
       1260,
       108,
       "79.0",
       "12 in",
       81200,
       {3, 4, 6, 8}},
      {11,
       Category::kScooter,
       "UR125D",
       "UR2DR",
       "UR12E",
       "Vayu Urja 125",
       "Drum",
       "124.6",
       "6.1 kW @ 6500 rpm",
       0,
       1275,
       111,
       "79.5",
       "12 in",
       86400,
       {3, 7, 4, 5}},
      {12,
       Category::kScooter,
       "UR125K",
       "UR2DK",
       "UR12E",
       "Vayu Urja 125",
       "Disc",
       "124.6",
       "6.1 kW @ 6500 rpm",
       0,
       1275,
       112,
       "79.5",
       "12 in",
       91500,
       {3, 7, 4, 5}},
      {13,
       Category::kElectric,
       "EVS22",
       "EVS22",
       "EM22M",
       "Vayu eVolt S",
       "2.2 kWh",
       "",
       "2.5 kW (peak 4.0 kW)",
       0,
       1290,
       98,
       "",
       "12 in",
       94990,
       {3, 8, 4, 6}},
      {14,
       Category::kElectric,
       "EVX34",
       "EVX34",
       "EM34M",
       "Vayu eVolt X",
       "3.4 kWh",
       "",
       "3.5 kW (peak 5.5 kW)",
       0,
       1295,
       106,
       "",
       "12 in",
       129990,
       {3, 8, 4, 6}},
      {15,
       Category::kCycle,
       "GR26S",
       "GR26S",
       "",
       "Ganga Roadster 26T",
       "Single Speed",
       "",
       "",
       1,
       0,
       17,
       "",
       "26 in",
       6450,
       {7, 10}},
      {16,
       Category::kCycle,
       "GT275",
       "GT27M",
       "",
       "Ganga Trail 27.5T",
       "21 Speed",
       "",
       "",
       21,
       0,
       15,
       "",
       "27.5 in",
       14990,
       {12, 4}},
      {17,
       Category::kCycle,
       "GK16T",
       "GK16T",
       "",
       "Ganga Tiny Tots 16T",
       "Kids with trainer wheels",
       "",
       "",
       1,
       0,
       9,
       "",
       "16 in",
       4790,
       {11, 5, 6}},
  };
  for (const CatalogueModel& s : catalogue) {
    VehicleModel m;
    m.id = s.id;
    m.category = s.category;
    m.code = s.code;
    m.vds = s.vds;
    m.engine_prefix = s.engine_prefix;
    m.model = s.model;
    m.variant = s.variant;
    m.cc = s.cc;
    m.max_power = s.power;
    m.gears = s.gears;
    m.wheelbase = s.wheelbase;
    m.unladen = s.unladen;
    m.noise = s.noise;
    m.wheel = s.wheel;
    m.colors = s.colors;
    switch (s.category) {
      case Category::kMotorcycle:
      case Category::kScooter:
        m.supplier = ids::kVayuMotocorp;
        m.make = "Vayu Motocorp";
        m.hsn = "871120";
        m.fuel = "PETROL";
        m.cylinders = 1;
        m.seating = 2;
        m.gross = m.unladen + 130;
        m.norms = "BS-VI (OBD-2B)";
        m.vclass = s.category == Category::kMotorcycle ? "MOTOR CYCLE WITH GEAR"
                                                       : "MOTOR CYCLE WITHOUT GEAR";
        m.body = s.category == Category::kMotorcycle ? "SOLO WITH PILLION" : "SCOOTER";
        m.mfr_name = "Vayu Motocorp Ltd";
        m.mfr_add = "Plot No. 7, SIPCOT Industrial Complex, Phase II, Hosur 635109, Tamil Nadu";
        m.battery_make = "Urja Power 12V 5Ah VRLA";
        m.type_approval = std::string("ICAT/TA/") + s.code + "/2023";
        break;
      case Category::kElectric:
        m.supplier = ids::kVayuElectric;
        m.make = "Vayu Electric";
        m.hsn = "871160";
        m.fuel = "ELECTRIC (BOV)";
        m.seating = 2;
        m.gross = m.unladen + 150;
        m.norms = "NOT APPLICABLE";
        m.vclass = "MOTOR CYCLE WITHOUT GEAR";
        m.body = "SCOOTER";
        m.battery_kwh = s.id == ids::kEvoltS ? "2.20" : "3.40";
        m.motor_kw = s.id == ids::kEvoltS ? "2.50" : "3.50";
        m.mfr_name = "Vayu Electric Mobility Pvt Ltd";
        m.mfr_add = "Gat No. 1204, MIDC Phase II, Chakan 410501, Pune, Maharashtra";
        m.battery_make = std::string("Vayu LFP ") + s.variant;
        m.type_approval = std::string("ARAI/TA/") + s.code + "/2024";
        break;
      case Category::kCycle:
        m.supplier = ids::kGangaCycles;
        m.make = "Ganga Cycles";
        m.hsn = "871200";
        m.seating = 1;
        m.vclass = "BICYCLE";
        m.body = s.id == ids::kKidsCycle ? "KIDS CYCLE" : "BICYCLE";
        m.mfr_name = "Ganga Cycles Ltd";
        m.mfr_add = "B-14, Focal Point, G.T. Road, Ludhiana 141010, Punjab";
        break;
    }
    const TaxClass tax_class = TaxClassOfHsn(m.hsn);
    // Prices are published with GST included; the value before tax is what stays fixed.
    const int launch_rate = GstRate(tax_class, kFirstDay);
    m.base_taxable =
        (s.launch_price * 100 * 100 * 2 + (100 + launch_rate)) / (2 * (100 + launch_rate));
    d.models.push_back(m);

    // April 2025 brought a 1.5% price rise on the motor range and 3% on cycles; the GST
    // revision of 22 September 2025 then passed the lower rates on in full.
    const int64_t raised = m.category == Category::kElectric ? m.base_taxable
                           : m.category == Category::kCycle  ? m.base_taxable * 103 / 100
                                                             : m.base_taxable * 1015 / 1000;
    const Day april = Day::FromYmd(2025, 4, 1);
    d.prices.push_back({m.id, Day::FromYmd(2024, 1, 1), april.Plus(-1), s.launch_price * 100});
    d.prices.push_back(
        {m.id, april, kRateRevision.Plus(-1), InclusiveRupees(raised, GstRate(tax_class, april))});
    d.prices.push_back({m.id, kRateRevision, std::nullopt,
                        InclusiveRupees(raised, GstRate(tax_class, kRateRevision))});
  }
}

void AddItems(Dealership& d) {
  struct CatalogueItem {
    int id;
    const char* code;
    const char* name;
    const char* icat;
    const char* hsn;
    int64_t price;  // rupees, GST included, in FY 2024-25
  };
  const std::vector<CatalogueItem> catalogue = {
      {1, "HLM01", "Helmet ISI half face", "HELMET", "650610", 790},
      {2, "HLM02", "Helmet ISI full face", "HELMET", "650610", 1390},
      {3, "ACC01", "Saree guard", "ACC", "871410", 480},
      {4, "ACC02", "Crash guard", "ACC", "871410", 1150},
      {5, "ACC03", "Seat cover", "ACC", "871410", 390},
      {6, "ACC04", "Mobile holder with USB charger", "ACC", "871410", 690},
      {7, "CYA01", "Front basket", "CYACC", "871499", 290},
      {8, "CYA02", "Rear carrier", "CYACC", "871499", 340},
      {9, "CYA03", "Side stand", "CYACC", "871499", 180},
  };
  for (const CatalogueItem& s : catalogue) {
    const int rate = GstRate(TaxClassOfHsn(s.hsn), kFirstDay);
    const int64_t base = (s.price * 100 * 100 * 2 + (100 + rate)) / (2 * (100 + rate));
    d.items.push_back({s.id, s.code, s.name, s.icat, s.hsn, base});
  }
}

// Names and places customers are drawn from.
struct Community {
  int weight;
  std::vector<std::string> men, women, surnames;
};

const std::vector<Community>& Communities() {
  static const std::vector<Community> communities = {
      {80,
       {"Rahul",     "Amit",    "Sachin",      "Sandeep", "Prashant", "Nilesh",  "Ganesh",
        "Mahesh",    "Sunil",   "Vijay",       "Rohit",   "Akshay",   "Omkar",   "Swapnil",
        "Tushar",    "Yogesh",  "Pravin",      "Nitin",   "Sagar",    "Abhijit", "Aniket",
        "Vishal",    "Shubham", "Dnyaneshwar", "Santosh", "Rajendra", "Anil",    "Dattatray",
        "Balasaheb", "Vitthal", "Shankar",     "Maruti"},
       {"Priya",    "Pooja",   "Snehal", "Ashwini",  "Kavita",  "Sunita", "Manisha",
        "Shraddha", "Pallavi", "Rupali", "Vaishali", "Madhuri", "Neha",   "Aarti",
        "Savita",   "Jyoti",   "Sayali", "Rutuja",   "Shital",  "Varsha"},
       {"Patil",   "Jadhav",    "Pawar",  "Shinde", "Kulkarni", "Deshmukh", "Joshi",
        "Gaikwad", "Kale",      "More",   "Chavan", "Bhosale",  "Kamble",   "Salunkhe",
        "Thorat",  "Deshpande", "Wagh",   "Mane",   "Nikam",    "Kadam",    "Gokhale",
        "Sawant",  "Bhujbal",   "Jagtap", "Landge", "Kolte"}},
      {8,
       {"Imran", "Salim", "Javed", "Sameer", "Irfan", "Rafiq"},
       {"Farzana", "Shabana", "Nazia", "Ruksar"},
       {"Shaikh", "Pathan", "Inamdar", "Mulla", "Tamboli"}},
      {4,
       {"Joseph", "Anthony", "Sunil", "Peter"},
       {"Mary", "Sheela", "Anita"},
       {"D'Souza", "Fernandes", "Gaikwad"}},
      {8,
       {"Rakesh", "Manoj", "Ajay", "Deepak", "Harpreet", "Sanjay"},
       {"Neha", "Pinki", "Simran", "Anjali"},
       {"Sharma", "Gupta", "Yadav", "Singh", "Mishra"}},
  };
  return communities;
}

// area is the locality within the city or town, empty where the town is small enough to need
// none: an address never names its town twice.
struct Place {
  const char* area;
  const char* city;
  const char* district;
  const char* state;
  const char* state_code;
  const char* pin;
};

const std::vector<Place>& PlacesOf(int branch) {
  static const std::vector<Place> hadapsar = {
      {"Hadapsar", "Pune", "Pune", "Maharashtra", "27", "411028"},
      {"Magarpatta City", "Pune", "Pune", "Maharashtra", "27", "411013"},
      {"Wanowrie", "Pune", "Pune", "Maharashtra", "27", "411040"},
      {"Kondhwa", "Pune", "Pune", "Maharashtra", "27", "411048"},
      {"Katraj", "Pune", "Pune", "Maharashtra", "27", "411046"},
      {"Kharadi", "Pune", "Pune", "Maharashtra", "27", "411014"},
      {"Mundhwa", "Pune", "Pune", "Maharashtra", "27", "411036"},
      {"Kothrud", "Pune", "Pune", "Maharashtra", "27", "411038"},
      {"Sinhagad Road", "Pune", "Pune", "Maharashtra", "27", "411041"},
      {"Fursungi", "Pune", "Pune", "Maharashtra", "27", "412308"},
      {"Manjari Bk", "Pune", "Pune", "Maharashtra", "27", "412307"}};
  static const std::vector<Place> chakan = {
      {"Medankarwadi", "Chakan", "Pune", "Maharashtra", "27", "410501"},
      {"Bhosari", "Pimpri-Chinchwad", "Pune", "Maharashtra", "27", "411026"},
      {"Moshi", "Pimpri-Chinchwad", "Pune", "Maharashtra", "27", "412105"},
      {"Yashwant Nagar", "Talegaon Dabhade", "Pune", "Maharashtra", "27", "410506"},
      {"Rajgurunagar", "Khed", "Pune", "Maharashtra", "27", "410505"},
      {"", "Alandi", "Pune", "Maharashtra", "27", "412105"}};
  static const std::vector<Place> baramati = {
      {"Tandulwadi", "Baramati", "Pune", "Maharashtra", "27", "413102"},
      {"", "Indapur", "Pune", "Maharashtra", "27", "413106"},
      {"Gopalwadi", "Daund", "Pune", "Maharashtra", "27", "413801"},
      {"Malegaon Bk", "Baramati", "Pune", "Maharashtra", "27", "413115"},
      {"", "Jejuri", "Pune", "Maharashtra", "27", "412303"}};
  return branch == 1 ? hadapsar : branch == 2 ? chakan : baramati;
}

const std::vector<Place>& KarnatakaPlaces() {
  static const std::vector<Place> places = {
      {"", "Nipani", "Belagavi", "Karnataka", "29", "591237"},
      {"", "Chikodi", "Belagavi", "Karnataka", "29", "591201"}};
  return places;
}

std::string HouseLine(Random& random) {
  static const std::vector<std::string> buildings = {
      "Shreeji Heights", "Sai Ganga Apartment", "Om Shanti Residency", "Laxmi Niwas",
      "Gulmohar Park",   "Silver Oak Society",  "Amrut Kunj",          "Swapnapurti CHS",
      "Mauli Apartment", "Siddhivinayak Towers"};
  static const std::vector<std::string> colonies = {"Ganga Nagari", "Sai Park", "Krishna Colony",
                                                    "Vrindavan Row Houses", "Shivsrushti"};
  const int kind = random.Below(4);
  const int number = random.Between(1, 40);
  const int other = random.Between(12, 980);
  const std::string& building = random.Pick(buildings);
  const std::string& colony = random.Pick(colonies);
  switch (kind) {
    case 0:
      return "Flat No. " + std::to_string(number % 9 + 1) + "0" + std::to_string(other % 8 + 1) +
             ", " + building;
    case 1:
      return "H. No. " + std::to_string(other);
    case 2:
      return "Row House " + std::to_string(number) + ", " + colony;
    default:
      return "Gat No. " + std::to_string(other) + ", Plot " + std::to_string(number);
  }
}

std::string StreetLine(Random& random) {
  static const std::vector<std::string> streets = {
      "Near Hanuman Mandir", "Opp. Zilla Parishad School",
      "Behind S.T. Stand",   "Near Gram Panchayat Office",
      "Station Road",        "Market Yard Road",
      "Ganesh Nagar",        "Shivaji Chowk",
      "Sai Baba Nagar",      "Mahatma Phule Peth",
      "Near Vitthal Mandir", "Lane No. 4, Sainath Colony"};
  return random.Pick(streets);
}

std::string Mobile(Random& random, std::set<std::string>& used) {
  for (;;) {
    const char first = "9876"[random.Weighted({40, 30, 20, 10})];
    std::string mobile = first + random.Digits(9);
    if (used.insert(mobile).second) return mobile;
  }
}

std::string PersonalPan(Random& random, const std::string& surname) {
  const std::string start = random.Letters(3, "ABCDEFGHIJKLMNOPQRSTUVWXYZ");
  const std::string digits = random.Digits(4);
  return start + "P" + surname.substr(0, 1) + digits +
         random.Letters(1, "ABCDEFGHIJKLMNOPQRSTUVWXYZ");
}

}  // namespace

Customer DrawPerson(Random& random, int id, int branch, std::set<std::string>& mobiles) {
  Customer c;
  c.id = id;
  c.branch = branch;
  const Community& community = Communities()[static_cast<size_t>(random.Weighted({80, 8, 4, 8}))];
  const bool woman = random.Percent(30);
  c.first_name = random.Pick(woman ? community.women : community.men);
  c.surname = random.Pick(community.surnames);
  const bool married = woman && random.Percent(60);
  // The middle name is the father's (or husband's) first name, and his middle name his
  // father's; no two of them are the same.
  std::string elder, grandfather;
  do {
    elder = random.Pick(community.men);
  } while (elder == c.first_name);
  do {
    grandfather = random.Pick(community.men);
  } while (grandfather == elder || grandfather == c.first_name);
  c.name = c.first_name + " " + elder + " " + c.surname;
  c.father = elder + " " + grandfather + " " + c.surname;
  c.title = woman ? (married ? "Mrs" : "Ms") : "Mr";
  c.relation = woman ? (married ? "W/O" : "D/O") : "S/O";

  const Place& place = random.Pick(PlacesOf(c.branch));
  c.add1 = HouseLine(random);
  c.add2 = StreetLine(random);
  c.add3 = place.area;
  c.city = place.city;
  c.district = place.district;
  c.state = place.state;
  c.state_code = place.state_code;
  c.pin = place.pin;
  c.mobile = Mobile(random, mobiles);
  if (random.Percent(40)) {
    std::string handle;
    for (char ch : c.first_name + "." + c.surname) {
      if (ch != '\'') handle += static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
    }
    c.email = handle + std::to_string(random.Between(70, 99)) + "@example.com";
  }
  if (random.Percent(60)) c.pan = PersonalPan(random, c.surname);
  c.aadhaar = "XXXX XXXX " + random.Digits(4);
  const int born = random.Between(1960, 2005);
  const int month = random.Between(1, 12);
  c.birth = Day::FromYmd(born, month, random.Between(1, 28));
  static const std::vector<std::string> occupations = {"Service", "Business",      "Farmer",
                                                       "Student", "Self-employed", "Homemaker",
                                                       "Teacher", "Retired"};
  c.occupation = random.Pick(occupations);
  return c;
}

namespace {

Customer MakeBusiness(int id, int branch, std::string name, std::string add1, std::string add2,
                      std::string add3, std::string city, std::string pin, std::string mobile,
                      std::string email, std::string pan, std::string occupation) {
  Customer c;
  c.id = id;
  c.branch = branch;
  c.business = true;
  c.title = "M/s";
  c.name = std::move(name);
  c.add1 = std::move(add1);
  c.add2 = std::move(add2);
  c.add3 = std::move(add3);
  c.city = std::move(city);
  c.district = "Pune";
  c.state = "Maharashtra";
  c.state_code = "27";
  c.pin = std::move(pin);
  c.mobile = std::move(mobile);
  c.email = std::move(email);
  c.pan = std::move(pan);
  if (!c.pan.empty()) c.gstin = MakeGstin("27", c.pan);
  c.occupation = std::move(occupation);
  return c;
}

void AddCustomers(Random& random, Dealership& d) {
  std::set<std::string> mobiles;
  constexpr int kIndividuals = 56;
  for (int i = 0; i < kIndividuals; ++i) {
    Customer c = DrawPerson(random, 5001 + i, 1 + random.Weighted({55, 25, 20}), mobiles);
    // Two buyers from across the border register in Karnataka on a temporary certificate.
    if (i == 7 || i == 31) {
      const Place& place = KarnatakaPlaces()[i == 7 ? 0 : 1];
      c.branch = 3;
      c.add3 = place.area;
      c.city = place.city;
      c.district = place.district;
      c.state = place.state;
      c.state_code = place.state_code;
      c.pin = place.pin;
    }
    d.customers.push_back(c);
  }
  d.customers.push_back(MakeBusiness(5057, 1, "Swift Parcel Services Pvt Ltd",
                                     "Unit 14, Cyber Logistics Park", "Solapur Road",
                                     "Hadapsar Industrial Estate", "Pune", "411013", "9607741230",
                                     "fleet@swiftparcel.example", "AAKCS7719B", "Courier"));
  d.customers.push_back(MakeBusiness(
      5058, 3, "Krushidhan Dairy Products", "Gat No. 231", "Baramati-Phaltan Road", "Malegaon Bk",
      "Baramati", "413115", "9421058812", "accounts@krushidhan.example", "AAIFK2204D", "Dairy"));
  d.customers.push_back(MakeBusiness(5059, 2, "Om Sai Courier & Logistics", "Shop 3, Sai Arcade",
                                     "Chakan-Talegaon Road", "Medankarwadi", "Chakan", "410501",
                                     "9890312456", "omsaicourier@example.com", "BQRPL5521K",
                                     "Courier"));
  d.customers.push_back(MakeBusiness(5060, 1, "Dnyanganga English Medium School",
                                     "S. No. 44, Dnyanganga Campus", "Near Sasane Nagar",
                                     "Hadapsar", "Pune", "411028", "9763320145",
                                     "office@dnyanganga.example", "", "Education"));
}

}  // namespace

void AddMasters(Random& random, Dealership& dealership) {
  AddFirm(dealership);
  AddSettings(dealership);
  AddAccounts(dealership);
  AddBranches(dealership);
  AddColors(dealership);
  AddModels(dealership);
  AddItems(dealership);
  AddCustomers(random, dealership);
}

}  // namespace vantorel::demo
