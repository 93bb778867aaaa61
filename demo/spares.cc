// The spare-parts store: parts master, suppliers, purchases, transfers, orders, estimates, returns.
#include <algorithm>
#include <cstdio>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "demo/gst.h"
#include "demo/workshop.h"

namespace vantorel::demo {
namespace {

// The parts master of a dealer who stocks this many parts unless told otherwise.
constexpr int kDefaultParts = 1600;

// a / b rounded half up, for non-negative a and positive b.
int64_t Divide(int64_t a, int64_t b) { return (2 * a + b) / (2 * b); }

// What a kind of part is: its words, tax class, unit and price range, and how its numbers look.
struct Kind {
  const char* description;
  const char* hsn;
  int old_rate, new_rate;  // GST before and from 22 September 2025
  const char* uqc;
  int low, high;      // MRP range, whole rupees
  const char* group;  // the maker's five-digit group, or a prefix for other sources
  char type;          // S, L, A, T, B
  int fitment;        // 0 one part for all, 1 a part per motor model, 2 per cycle model
  bool coloured;      // body parts come in the models' colours
};

constexpr const char* kMotor = "87141090";
constexpr const char* kCycle = "87149990";

// clang-format off
constexpr Kind kKinds[] = {
    {"CLUTCH PLATE SET", kMotor, 28, 18, "SET", 380, 1450, "22201", 'S', 1, false},
    {"CLUTCH FRICTION DISC", kMotor, 28, 18, "NOS", 95, 260, "22201", 'S', 1, false},
    {"CLUTCH SPRING SET", kMotor, 28, 18, "SET", 60, 180, "22401", 'S', 1, false},
    {"CLUTCH CABLE ASSY", kMotor, 28, 18, "NOS", 110, 290, "22870", 'S', 1, false},
    {"ACCELERATOR CABLE ASSY", kMotor, 28, 18, "NOS", 95, 260, "17910", 'S', 1, false},
    {"SPEEDOMETER CABLE ASSY", kMotor, 28, 18, "NOS", 90, 240, "44830", 'S', 1, false},
    {"FRONT BRAKE CABLE ASSY", kMotor, 28, 18, "NOS", 90, 240, "45450", 'S', 1, false},
    {"BRAKE SHOE ASSY REAR", kMotor, 28, 18, "SET", 180, 420, "06430", 'S', 1, false},
    {"BRAKE SHOE ASSY FRONT", kMotor, 28, 18, "SET", 180, 420, "06450", 'S', 1, false},
    {"DISC BRAKE PAD SET FRONT", kMotor, 28, 18, "SET", 260, 720, "06455", 'S', 1, false},
    {"BRAKE DISC FRONT", kMotor, 28, 18, "NOS", 1150, 2650, "45351", 'S', 1, false},
    {"MASTER CYLINDER KIT", kMotor, 28, 18, "SET", 420, 980, "45530", 'S', 1, false},
    {"AIR FILTER ELEMENT", kMotor, 28, 18, "NOS", 140, 420, "17210", 'S', 1, false},
    {"OIL FILTER ELEMENT", kMotor, 28, 18, "NOS", 90, 220, "15412", 'S', 1, false},
    {"OIL STRAINER SCREEN", kMotor, 28, 18, "NOS", 45, 120, "15421", 'S', 1, false},
    {"FUEL FILTER ASSY", kMotor, 28, 18, "NOS", 70, 190, "16900", 'S', 1, false},
    {"DRIVE CHAIN KIT", kMotor, 28, 18, "SET", 980, 2150, "06406", 'S', 1, false},
    {"DRIVE CHAIN 428H-116L", kMotor, 28, 18, "NOS", 520, 890, "40530", 'S', 1, false},
    {"SPROCKET FINAL DRIVEN 42T", kMotor, 28, 18, "NOS", 320, 690, "41201", 'S', 1, false},
    {"SPROCKET DRIVE 14T", kMotor, 28, 18, "NOS", 140, 290, "23801", 'S', 1, false},
    {"DRIVE BELT", kMotor, 28, 18, "NOS", 690, 1490, "23100", 'S', 1, false},
    {"ROLLER WEIGHT SET", kMotor, 28, 18, "SET", 260, 540, "22123", 'S', 1, false},
    {"CAM CHAIN", kMotor, 28, 18, "NOS", 310, 640, "14401", 'S', 1, false},
    {"CAM CHAIN TENSIONER ASSY", kMotor, 28, 18, "NOS", 280, 620, "14500", 'S', 1, false},
    {"PISTON KIT STD", kMotor, 28, 18, "SET", 890, 2350, "13101", 'S', 1, false},
    {"PISTON RING SET STD", kMotor, 28, 18, "SET", 320, 890, "13011", 'S', 1, false},
    {"CYLINDER HEAD GASKET", kMotor, 28, 18, "NOS", 60, 190, "12251", 'S', 1, false},
    {"GASKET KIT A", kMotor, 28, 18, "SET", 240, 560, "06111", 'S', 1, false},
    {"VALVE INLET", kMotor, 28, 18, "NOS", 150, 380, "14711", 'S', 1, false},
    {"VALVE EXHAUST", kMotor, 28, 18, "NOS", 160, 410, "14721", 'S', 1, false},
    {"VALVE STEM SEAL", kMotor, 28, 18, "NOS", 35, 90, "12209", 'S', 1, false},
    {"CRANKSHAFT OIL SEAL", kMotor, 28, 18, "NOS", 45, 130, "91202", 'S', 1, false},
    {"FORK OIL SEAL SET", kMotor, 28, 18, "SET", 160, 420, "51490", 'S', 1, false},
    {"FRONT FORK PIPE", kMotor, 28, 18, "NOS", 880, 1950, "51410", 'S', 1, false},
    {"REAR SHOCK ABSORBER ASSY", kMotor, 28, 18, "NOS", 890, 2450, "52400", 'S', 1, false},
    {"STEERING STEM BEARING KIT", kMotor, 28, 18, "SET", 260, 580, "53200", 'S', 1, false},
    {"BALL RACE SET", kMotor, 28, 18, "SET", 140, 320, "53211", 'S', 1, false},
    {"WHEEL BEARING 6301", kMotor, 28, 18, "NOS", 110, 240, "96150", 'S', 0, false},
    {"WHEEL BEARING 6201", kMotor, 28, 18, "NOS", 95, 210, "96150", 'S', 0, false},
    {"WHEEL RIM FRONT", kMotor, 28, 18, "NOS", 1450, 3400, "44701", 'S', 1, false},
    {"HUB RUBBER DAMPER SET", kMotor, 28, 18, "SET", 90, 240, "06421", 'S', 1, false},
    {"CARBURETTOR ASSY", kMotor, 28, 18, "NOS", 1650, 3450, "16100", 'S', 1, false},
    {"THROTTLE BODY SENSOR", kMotor, 28, 18, "NOS", 1250, 2890, "16060", 'S', 1, false},
    {"FUEL INJECTOR ASSY", kMotor, 28, 18, "NOS", 1450, 2990, "16450", 'S', 1, false},
    {"FUEL PUMP ASSY", kMotor, 28, 18, "NOS", 2150, 4250, "16700", 'S', 1, false},
    {"CDI UNIT", kMotor, 28, 18, "NOS", 890, 1890, "30410", 'S', 1, false},
    {"IGNITION COIL ASSY", kMotor, 28, 18, "NOS", 420, 980, "30500", 'S', 1, false},
    {"REGULATOR RECTIFIER", kMotor, 28, 18, "NOS", 520, 1180, "31600", 'S', 1, false},
    {"STARTER MOTOR ASSY", kMotor, 28, 18, "NOS", 1690, 3250, "31200", 'S', 1, false},
    {"STARTER RELAY SWITCH", kMotor, 28, 18, "NOS", 190, 420, "35850", 'S', 1, false},
    {"IGNITION SWITCH WITH KEYS", kMotor, 28, 18, "SET", 590, 1290, "35010", 'S', 1, false},
    {"HANDLE SWITCH LEFT", kMotor, 28, 18, "NOS", 290, 690, "35200", 'S', 1, false},
    {"HANDLE SWITCH RIGHT", kMotor, 28, 18, "NOS", 260, 620, "35150", 'S', 1, false},
    {"WIRING HARNESS MAIN", kMotor, 28, 18, "NOS", 890, 2150, "32100", 'S', 1, false},
    {"SIDE STAND ASSY", kMotor, 28, 18, "NOS", 190, 420, "50530", 'S', 1, false},
    {"MAIN STAND ASSY", kMotor, 28, 18, "NOS", 420, 890, "50500", 'S', 1, false},
    {"KICK STARTER ARM", kMotor, 28, 18, "NOS", 240, 490, "28300", 'S', 1, false},
    {"GEAR SHIFT LEVER", kMotor, 28, 18, "NOS", 160, 340, "24700", 'S', 1, false},
    {"BRAKE PEDAL", kMotor, 28, 18, "NOS", 210, 450, "46500", 'S', 1, false},
    {"FOOT REST RUBBER", kMotor, 28, 18, "PRS", 45, 110, "50661", 'S', 1, false},
    {"HANDLE GRIP SET", kMotor, 28, 18, "SET", 90, 220, "53166", 'S', 1, false},
    {"MIRROR ASSY RIGHT", kMotor, 28, 18, "NOS", 140, 320, "88110", 'S', 1, false},
    {"MIRROR ASSY LEFT", kMotor, 28, 18, "NOS", 140, 320, "88120", 'S', 1, false},
    {"SILENCER ASSY", kMotor, 28, 18, "NOS", 2450, 4950, "18300", 'S', 1, false},
    {"SILENCER GASKET", kMotor, 28, 18, "NOS", 25, 70, "18291", 'S', 1, false},
    {"FUEL TANK CAP ASSY", kMotor, 28, 18, "NOS", 290, 640, "17620", 'S', 1, false},
    {"SEAT ASSY DOUBLE", kMotor, 28, 18, "NOS", 1150, 2450, "77200", 'S', 1, false},
    {"FRONT FENDER", kMotor, 28, 18, "NOS", 390, 990, "61100", 'S', 1, true},
    {"REAR FENDER", kMotor, 28, 18, "NOS", 290, 790, "80100", 'S', 1, true},
    {"SIDE COVER RIGHT", kMotor, 28, 18, "NOS", 240, 690, "83500", 'S', 1, true},
    {"SIDE COVER LEFT", kMotor, 28, 18, "NOS", 240, 690, "83600", 'S', 1, true},
    {"HEADLIGHT VISOR", kMotor, 28, 18, "NOS", 290, 740, "64200", 'S', 1, true},
    {"FUEL TANK ASSY", kMotor, 28, 18, "NOS", 3450, 6950, "17500", 'S', 1, true},
    {"FRONT PANEL INNER", kMotor, 28, 18, "NOS", 390, 990, "81131", 'S', 1, true},
    {"FLOOR PANEL", kMotor, 28, 18, "NOS", 490, 1190, "64310", 'S', 1, true},
    {"BATTERY PACK CONNECTOR", kMotor, 28, 18, "NOS", 690, 1490, "32950", 'S', 1, false},
    {"MOTOR CONTROLLER ASSY", kMotor, 28, 18, "NOS", 6900, 12900, "31710", 'S', 1, false},
    {"DC-DC CONVERTER", kMotor, 28, 18, "NOS", 1890, 3450, "31720", 'S', 1, false},
    {"SPARK PLUG", "85111000", 28, 18, "NOS", 95, 190, "98069", 'S', 1, false},
    {"HEADLAMP BULB 12V 35/35W", "85122010", 28, 18, "NOS", 65, 140, "34901", 'S', 0, false},
    {"TAIL LAMP BULB 12V 5/21W", "85122010", 28, 18, "NOS", 25, 60, "34906", 'S', 0, false},
    {"WINKER BULB 12V 10W", "85122010", 28, 18, "NOS", 20, 45, "34907", 'S', 0, false},
    {"HEADLAMP ASSY", "85122010", 28, 18, "NOS", 890, 2450, "33100", 'S', 1, false},
    {"TAIL LAMP ASSY", "85122010", 28, 18, "NOS", 390, 990, "33700", 'S', 1, false},
    {"WINKER ASSY FRONT RIGHT", "85122010", 28, 18, "NOS", 190, 420, "33400", 'S', 1, false},
    {"HORN ASSY 12V", "85123010", 28, 18, "NOS", 190, 420, "38110", 'S', 0, false},
    {"BRAKE FLUID DOT3 100ML", "38190010", 18, 18, "NOS", 75, 110, "08203", 'S', 0, false},
    // Cycle parts from Ganga.
    {"CYCLE CHAIN 1/2X1/8", kCycle, 12, 5, "NOS", 160, 320, "GC", 'S', 2, false},
    {"CYCLE BRAKE SHOE SET", kCycle, 12, 5, "SET", 60, 140, "GC", 'S', 2, false},
    {"CYCLE BRAKE CABLE", kCycle, 12, 5, "NOS", 45, 110, "GC", 'S', 2, false},
    {"CYCLE PEDAL SET", kCycle, 12, 5, "PRS", 140, 320, "GC", 'S', 2, false},
    {"CYCLE FREEWHEEL 18T", kCycle, 12, 5, "NOS", 190, 420, "GC", 'S', 2, false},
    {"CYCLE SADDLE", kCycle, 12, 5, "NOS", 240, 590, "GC", 'S', 2, false},
    {"CYCLE SPOKE SET", kCycle, 12, 5, "SET", 90, 190, "GC", 'S', 2, false},
    // Local parts.
    {"BRAKE SHOE ASSY REAR (LOCAL)", kMotor, 28, 18, "SET", 120, 240, "L", 'S', 0, false},
    {"CLUTCH CABLE (LOCAL)", kMotor, 28, 18, "NOS", 70, 150, "L", 'S', 0, false},
    {"NUMBER PLATE FRAME", kMotor, 28, 18, "NOS", 60, 150, "L", 'S', 0, false},
    {"HEX BOLT 6X12", kMotor, 28, 18, "PAC", 20, 60, "L", 'S', 0, false},
    {"FLANGE NUT 8MM", kMotor, 28, 18, "PAC", 20, 55, "L", 'S', 0, false},
    {"WASHER SET ASSORTED", kMotor, 28, 18, "PAC", 30, 80, "L", 'S', 0, false},
    // Lubricants.
    {"ENGINE OIL 10W30 1L", "27101980", 18, 18, "LTR", 390, 460, "08232", 'L', 0, false},
    {"ENGINE OIL 10W30 900ML", "27101980", 18, 18, "NOS", 340, 410, "08232", 'L', 0, false},
    {"ENGINE OIL 20W40 1L", "27101980", 18, 18, "LTR", 330, 390, "08234", 'L', 0, false},
    {"ENGINE OIL 20W50 1L", "27101980", 18, 18, "LTR", 340, 400, "08235", 'L', 0, false},
    {"SCOOTER OIL 10W30 800ML", "27101980", 18, 18, "NOS", 320, 380, "08233", 'L', 0, false},
    {"GEAR OIL SAE 80W90 120ML", "27101980", 18, 18, "NOS", 90, 130, "08294", 'L', 0, false},
    {"FORK OIL 10W 250ML", "27101980", 18, 18, "NOS", 140, 190, "08208", 'L', 0, false},
    {"2T OIL 500ML", "27101980", 18, 18, "NOS", 190, 240, "08231", 'L', 0, false},
    {"CHAIN LUBE SPRAY 150ML", "34031900", 18, 18, "NOS", 240, 320, "08260", 'L', 0, false},
    {"COOLANT READY MIX 1L", "38200000", 18, 18, "LTR", 240, 310, "08290", 'L', 0, false},
    {"GREASE MP3 500G", "27101980", 18, 18, "NOS", 160, 220, "08798", 'L', 0, false},
    {"ENGINE OIL 10W30 BARREL 50L", "27101980", 18, 18, "NOS", 21500, 23900, "08239", 'L', 0, false},
    // Accessories.
    {"SAREE GUARD", kMotor, 28, 18, "NOS", 390, 790, "08P71", 'A', 1, false},
    {"CRASH GUARD", kMotor, 28, 18, "NOS", 890, 1690, "08P70", 'A', 1, false},
    {"SEAT COVER", kMotor, 28, 18, "NOS", 290, 690, "08P50", 'A', 1, false},
    {"BODY COVER", kMotor, 28, 18, "NOS", 390, 790, "08P55", 'A', 1, false},
    {"MOBILE HOLDER WITH CHARGER", kMotor, 28, 18, "NOS", 590, 1290, "08U80", 'A', 0, false},
    {"REAR GRAB RAIL", kMotor, 28, 18, "NOS", 590, 1190, "08P80", 'A', 1, false},
    {"TANK PAD", kMotor, 28, 18, "NOS", 190, 390, "08P60", 'A', 1, false},
    {"MUD FLAP SET", kMotor, 28, 18, "SET", 120, 260, "08P65", 'A', 1, false},
    {"HELMET HALF FACE", "65061010", 18, 18, "NOS", 790, 1490, "08H01", 'A', 0, false},
    {"HELMET FULL FACE", "65061010", 18, 18, "NOS", 1490, 3490, "08H02", 'A', 0, false},
    {"FRONT BASKET", kCycle, 12, 5, "NOS", 190, 390, "GC", 'A', 2, false},
    // Tyres and tubes.
    {"TYRE 2.75-18 REAR", "40114090", 28, 18, "NOS", 1650, 2350, "T", 'T', 0, false},
    {"TYRE 2.75-18 FRONT", "40114090", 28, 18, "NOS", 1490, 2150, "T", 'T', 0, false},
    {"TYRE 3.00-18 REAR", "40114090", 28, 18, "NOS", 1890, 2650, "T", 'T', 0, false},
    {"TYRE 80/100-18 TUBELESS", "40114090", 28, 18, "NOS", 1990, 2790, "T", 'T', 0, false},
    {"TYRE 90/90-12 TUBELESS", "40114090", 28, 18, "NOS", 1590, 2290, "T", 'T', 0, false},
    {"TYRE 90/100-10 TUBELESS", "40114090", 28, 18, "NOS", 1450, 1990, "T", 'T', 0, false},
    {"TYRE 100/90-17 TUBELESS", "40114090", 28, 18, "NOS", 2350, 3290, "T", 'T', 0, false},
    {"TUBE 2.75-18", "40131020", 28, 18, "NOS", 240, 360, "T", 'T', 0, false},
    {"TUBE 3.00-18", "40131020", 28, 18, "NOS", 260, 390, "T", 'T', 0, false},
    {"TUBE 3.50-10", "40131020", 28, 18, "NOS", 220, 320, "T", 'T', 0, false},
    {"CYCLE TYRE 26X1.95", "40115000", 12, 5, "NOS", 340, 560, "T", 'T', 0, false},
    {"CYCLE TUBE 26X1.95", "40132000", 12, 5, "NOS", 120, 190, "T", 'T', 0, false},
    // Batteries.
    {"BATTERY 12V 2.5AH VRLA", "85071000", 28, 18, "NOS", 990, 1450, "B", 'B', 0, false},
    {"BATTERY 12V 4AH VRLA", "85071000", 28, 18, "NOS", 1290, 1790, "B", 'B', 0, false},
    {"BATTERY 12V 5AH VRLA", "85071000", 28, 18, "NOS", 1490, 2050, "B", 'B', 0, false},
    {"BATTERY 12V 9AH", "85071000", 28, 18, "NOS", 2150, 2890, "B", 'B', 0, false},
    {"BATTERY 12V 2.5AH DRY CHARGED", "85071000", 28, 18, "NOS", 690, 990, "B", 'B', 0, false},
};
// clang-format on

struct Fitment {
  const char* code;  // in the part number
  const char* name;  // in the description
};
constexpr Fitment kMotorModels[] = {
    {"KSR", "SARATHI"}, {"KSP", "SPRINT"}, {"KTF", "TOOFAN"},  {"KSH", "SHAURYA"},
    {"KSK", "SAKHI"},   {"KUR", "URJA"},   {"EVS", "EVOLT S"}, {"EVX", "EVOLT X"},
};
constexpr Fitment kCycleModels[] = {{"RS", "ROADSTER"}, {"TR", "TRAIL"}, {"TT", "TINY TOTS"}};
constexpr Fitment kColours[] = {
    {"NH1", "BLACK"}, {"R25", "RED"}, {"B31", "BLUE"}, {"G17", "GREY"}, {"W04", "WHITE"}};

// The kinds of parts a motor model can take: the electric scooters have no engine.
bool Fits(const Kind& kind, const Fitment& model) {
  const std::string code = model.code;
  const bool electric = code.starts_with("EV");
  const std::string group = kind.group;
  static const std::set<std::string> engine = {
      "22201", "22401", "22870", "17910", "15412", "15421", "16900", "22123", "14401", "14500",
      "13101", "13011", "12251", "06111", "14711", "14721", "12209", "91202", "16100", "16060",
      "16450", "16700", "30410", "30500", "31200", "28300", "24700", "18300", "18291", "17620",
      "17500", "98069", "23801", "40530", "41201", "06406", "23100", "17210"};
  static const std::set<std::string> electric_only = {"32950", "31710", "31720"};
  if (electric) return !engine.contains(group);
  return !electric_only.contains(group);
}

std::string ThreeDigits(int n) {
  char text[8];
  std::snprintf(text, sizeof text, "%03d", n % 1000);
  return text;
}

// A price in whole rupees that a price list would print: to the rupee under 100, to five rupees
// under 1,000, to ten rupees above.
int64_t ListPrice(Random& random, int low, int high) {
  int rupees = random.Between(low, high);
  if (rupees >= 1000) {
    rupees = rupees / 10 * 10;
  } else if (rupees >= 100) {
    rupees = rupees / 5 * 5;
  }
  return Rs(rupees);
}

Part DrawPart(Random& random, std::set<std::string>& numbers) {
  // S spares, L lubricants, A accessories, T tyres and tubes, B batteries.
  static const std::vector<int> weights = {72, 6, 10, 8, 4};
  static const char types[] = {'S', 'L', 'A', 'T', 'B'};
  const char type = types[random.Weighted(weights)];
  std::vector<const Kind*> kinds;
  for (const Kind& k : kKinds) {
    if (k.type == type) kinds.push_back(&k);
  }
  const Kind& kind = *random.Pick(kinds);
  Part part;
  std::string description = kind.description;
  std::string model_code;
  if (kind.fitment == 1) {
    std::vector<const Fitment*> models;
    for (const Fitment& m : kMotorModels) {
      if (Fits(kind, m)) models.push_back(&m);
    }
    const Fitment& model = *random.Pick(models);
    model_code = model.code;
    description += std::string(" ") + model.name;
    if (kind.coloured) {
      const Fitment& colour = kColours[random.Below(5)];
      description += std::string(" ") + colour.name;
      model_code += std::string("-") + colour.code;
    }
  } else if (kind.fitment == 2) {
    const Fitment& model = kCycleModels[random.Below(3)];
    model_code = model.code;
    description += std::string(" ") + model.name;
  }
  const std::string group = kind.group;
  std::string number;
  for (int attempt = 0; number.empty() || numbers.contains(number); ++attempt) {
    if (attempt > 1000) throw std::logic_error("no free part number");
    if (group == "GC") {
      number = "GC-" + model_code + "-" + random.Digits(4);
      part.source = "GANGA";
    } else if (group == "L") {
      number = "LP-" + random.Digits(5);
      part.source = "LOCAL";
    } else if (group == "T") {
      number = "TY" + random.Digits(6);
      part.source = "LOCAL";
    } else if (group == "B") {
      number = "BT" + random.Digits(6);
      part.source = "LOCAL";
    } else {
      // The maker's style: group, model (and colour), serial: "22201-KSP-901".
      const std::string middle = model_code.empty() ? random.Code(1, 2) : model_code;
      number = group + "-" + middle + "-" + ThreeDigits(random.Between(0, 999));
      part.source = "VAYU";
    }
  }
  numbers.insert(number);
  part.part_no = number;
  part.description = description;
  part.hsn = kind.hsn;
  part.type = type == 'S'   ? "SPARES"
              : type == 'L' ? "LUBRICANT"
              : type == 'A' ? "ACCESSORY"
              : type == 'T' ? "TYRE-TUBE"
                            : "BATTERY";
  part.uqc = kind.uqc;
  part.old_gst_rate = kind.old_rate;
  part.gst_rate = kind.new_rate;
  part.mrp = ListPrice(random, kind.low, kind.high);
  const int64_t before_tax = Divide(part.mrp * 100, 100 + part.gst_rate);
  part.dp = Divide(before_tax * 85, 100);
  part.pp = Divide(before_tax * 76, 100);
  switch (type) {
    case 'S':
      part.location = "R" + ThreeDigits(random.Between(1, 24)).substr(1) + "-S" +
                      std::to_string(random.Between(1, 5)) + "-B" +
                      ThreeDigits(random.Between(1, 30)).substr(1);
      break;
    case 'L':
      part.location = "LUB-" + ThreeDigits(random.Between(1, 6)).substr(1);
      break;
    case 'A':
      part.location = "ACC-" + ThreeDigits(random.Between(1, 12)).substr(1);
      break;
    case 'T':
      part.location = "TYRE-" + std::string(1, "ABC"[random.Below(3)]);
      break;
    default:
      part.location = "BATT-CHG";
      break;
  }
  const bool stocked = random.Percent(58);
  if (stocked) {
    part.opening = type == 'L'   ? random.Between(6, 60)
                   : type == 'S' ? random.Between(1, 24)
                                 : random.Between(1, 10);
    if (part.mrp > Rs(20000)) part.opening = random.Between(1, 3);
  }
  part.reorder = type == 'L' ? 12 : type == 'S' ? random.Between(2, 6) : 2;
  part.balance = part.opening;
  return part;
}

Cell Int(int64_t value) { return value; }
Cell Paise(int64_t paise) { return Money{paise}; }
// Whole percent with two decimals; "half" gives the CGST or SGST share.
Cell Percent(int percent, bool half) {
  const int halves = half ? percent : percent * 2;
  return Decimal{std::to_string(halves / 2) + (halves % 2 == 0 ? ".00" : ".50")};
}

}  // namespace

int Part::RateOn(Day day) const { return day < kRateRevision ? old_gst_rate : gst_rate; }

void WritePartMaster(Workshop& workshop) {
  if (workshop.part_master == nullptr) throw std::logic_error("no ws_partmaster to fill");
  if (!workshop.part_master->rows().empty()) throw std::logic_error("ws_partmaster written twice");
  for (const Part& p : workshop.parts) {
    workshop.part_master->Add({Int(p.id), p.part_no, p.description, p.type, p.source, p.location,
                               p.bin_card, p.hsn, p.uqc, Paise(p.mrp), Paise(p.dp), Paise(p.pp),
                               Percent(p.gst_rate, false), Percent(p.gst_rate, true),
                               Percent(p.gst_rate, true), Int(p.opening), Int(p.balance),
                               Int(p.issued), Int(p.reorder)});
  }
}

void AddSpares(const Dealership&, const Options& options, Random& random, Workshop& workshop,
               Dataset& tables, Facts& facts) {
  // Streams of their own, drawn once from the workshop's, so that what one part of the store
  // draws leaves the others and the later steps as they were.
  Random master_random(random.Next());

  const int count = options.parts > 0 ? options.parts : kDefaultParts;
  std::set<std::string> numbers;
  workshop.parts.reserve(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) workshop.parts.push_back(DrawPart(master_random, numbers));
  std::sort(workshop.parts.begin(), workshop.parts.end(),
            [](const Part& a, const Part& b) { return a.part_no < b.part_no; });
  for (size_t i = 0; i < workshop.parts.size(); ++i) {
    Part& p = workshop.parts[i];
    p.id = static_cast<int>(i) + 1;
    char card[16];
    std::snprintf(card, sizeof card, "BC%05d", p.id);
    p.bin_card = card;
  }

  workshop.part_master = &tables.Create(
      "ws_partmaster", {"part_id", "part_no", "part_desc", "part_type", "part_source",
                        "part_location", "part_bincard", "part_hsncode", "part_uqc", "part_mrp",
                        "part_dp", "part_pp", "part_igstrate", "part_cgstrate", "part_sgstrate",
                        "part_op1", "part_balance1", "part_issue", "part_reorder"});

  facts.emplace_back("parts_count", std::to_string(workshop.parts.size()));
}

}  // namespace vantorel::demo
