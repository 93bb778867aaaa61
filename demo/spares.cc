// The spare-parts store: parts master, suppliers, purchases, transfers, orders, estimates, returns.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "demo/accounts.h"
#include "demo/gst.h"
#include "demo/identifiers.h"
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
  if (part.mrp > Rs(20000)) part.reorder = 1;
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

Cell Text(const std::string& text) { return text.empty() ? Cell(kNull) : Cell(text); }
Cell Id(int id) { return id == 0 ? Cell(kNull) : Cell(int64_t{id}); }

// Ids of the store's documents: each kind in its own range, in date order, within 16 bits.
constexpr int kFirstOrder = 11001, kFirstPurchase = 12001, kFirstReturn = 12601;
constexpr int kFirstTransfer = 12801, kFirstEstimate = 13001;
// The store's suppliers in fa_acmaster besides the makers (1 Vayu Motocorp, Hosur; 3 Ganga).
constexpr int kVayuDepot = 101, kDeccanTyres = 102, kShaktiBatteries = 103, kOmSaiSpares = 104;
constexpr int kGaneshComponents = 105;
constexpr int kHadapsar = 1;

// A document number in a series that starts again each financial year: "SPR/24-25/0007".
class Series {
 public:
  explicit Series(std::string prefix, int digits = 4)
      : prefix_(std::move(prefix)), digits_(digits) {}
  std::string Next(Day day) {
    const std::string year = day.FinancialYear();
    if (year != year_) {
      year_ = year;
      count_ = 0;
    }
    char number[16];
    std::snprintf(number, sizeof number, "%0*d", digits_, ++count_);
    return prefix_ + "/" + year + "/" + number;
  }

 private:
  std::string prefix_;
  int digits_;
  std::string year_;
  int count_ = 0;
};

// A taxed line of a purchase, a return or an estimate.
struct TaxedLine {
  int part = 0;  // part id, 0 for labour
  std::string description, hsn, uqc;
  int qty = 0;
  int64_t rate = 0;      // before GST, paise
  int64_t amount = 0;    // qty × rate
  int64_t discount = 0;  // paise
  int rate_percent = 0;  // GST, whole percent
  LineTax tax;           // on amount − discount
  // Purchases: the check sheet's quantities; qty is what the bill says.
  int ordered = 0, short_qty = 0, damaged = 0;
  int accepted() const { return qty - short_qty - damaged; }
  std::string reason;  // returns and debit notes
  char kind = 'P';     // estimates: 'P' a part, 'L' labour
};

TaxedLine Taxed(TaxedLine line, bool inter_state) {
  line.amount = line.rate * line.qty;
  line.tax = TaxOn(line.amount - line.discount, line.rate_percent, inter_state);
  return line;
}

struct Totals {
  int64_t taxable = 0, cgst = 0, sgst = 0, igst = 0, net = 0, round_off = 0, total = 0;
};
Totals Sum(const std::vector<TaxedLine>& lines) {
  Totals t;
  for (const TaxedLine& l : lines) {
    t.taxable += l.tax.taxable;
    t.cgst += l.tax.cgst;
    t.sgst += l.tax.sgst;
    t.igst += l.tax.igst;
    t.net += l.tax.net;
  }
  t.total = RoundedToRupee(t.net);
  t.round_off = t.total - t.net;
  return t;
}

struct Order {
  int id = 0;
  std::string num, status, remarks, prepared_by;
  Day date, expected;
  int supplier = 0;
  std::vector<std::pair<int, int>> lines;  // part id, quantity
  int purchase = 0;
};

struct SparesPurchase {
  int id = 0;
  int key = 0;  // its place in the order the purchases were made, until they are numbered
  std::string num, bill_no, transporter, lr_no, checked_by, remarks;
  Day bill_date, received;
  int supplier = 0, order = 0;
  bool inter_state = false;
  std::vector<TaxedLine> lines;
};

struct PurchaseReturn {
  int id = 0;
  char type = 'R';  // 'R' goods sent back, 'D' a debit note for goods short or damaged
  std::string num, reason, remarks;
  Day date;
  int purchase = 0, supplier = 0;
  bool inter_state = false;
  std::vector<TaxedLine> lines;
};

struct StockTransfer {
  int id = 0;
  std::string num, vehicle_no, sent_by, remarks;
  Day date;
  int from_branch = kHadapsar, to_branch = 0;
  std::vector<std::pair<int, int>> lines;  // part id, quantity
};

struct Estimate {
  int id = 0;
  std::string num, regno, model, chassis, advisor, complaint;
  Day date, valid_till;
  int customer = 0, vehicle = 0, km = 0;
  std::vector<TaxedLine> lines;
};

struct SupplierPlan {
  int account;
  bool inter_state;
  const char* bill_prefix;
  int every_months;  // orders once in so many months
  int min_lines, max_lines;
  int discount_percent;  // cash discount on the bill
};

constexpr SupplierPlan kPlans[] = {
    {kVayuDepot, false, "VMD/", 1, 14, 30, 0},      {ids::kVayuMotocorp, true, "VMH/", 5, 4, 8, 0},
    {ids::kGangaCycles, true, "GCL/", 3, 4, 8, 0},  {kDeccanTyres, false, "DTH-", 2, 4, 9, 2},
    {kShaktiBatteries, false, "SBD/", 3, 2, 5, 0},  {kOmSaiSpares, false, "OSAS-", 2, 4, 10, 5},
    {kGaneshComponents, true, "SGAC/", 5, 3, 7, 3},
};

bool Supplies(int account, const Part& part) {
  switch (account) {
    case kVayuDepot:
      return part.source == "VAYU";
    case ids::kVayuMotocorp:
      return part.source == "VAYU" && part.type == "SPARES";
    case ids::kGangaCycles:
      return part.source == "GANGA";
    case kDeccanTyres:
      return part.type == "TYRE-TUBE";
    case kShaktiBatteries:
      return part.type == "BATTERY";
    case kOmSaiSpares:
    case kGaneshComponents:
      return part.source == "LOCAL" && part.type == "SPARES";
    default:
      return false;
  }
}

std::vector<Account> StoreSuppliers() {
  // A supplier of the store, with no opening balance: the store's bills open its account.
  auto supplier = [](int id, std::string name, std::string add1, std::string add2, std::string add3,
                     std::string town, std::string district, std::string state,
                     std::string state_code, std::string pin, std::string pan, std::string phone,
                     std::string mobile, std::string email, std::string contact) {
    return MakeAccount(id, std::move(name), "SUPPLIER", std::move(add1), std::move(add2),
                       std::move(add3), std::move(town), std::move(district), std::move(state),
                       std::move(state_code), std::move(pin), std::move(pan), std::move(phone),
                       std::move(mobile), std::move(email), std::move(contact), 0);
  };
  const std::string mh = "Maharashtra";
  return {
      supplier(kVayuDepot, "Vayu Motocorp Ltd - Parts Depot", "Gala No. 14-17, Building A-3",
               "Rajlaxmi Logistics Park, Vadpe", "", "Bhiwandi", "Thane", mh, "27", "421302",
               "AABCV7312K", "02522-281440", "", "partsdepot.west@vayumoto.example",
               "Depot Manager"),
      supplier(kDeccanTyres, "Deccan Tyre House", "Shop No. 3, Laxmi Narayan Complex",
               "Shankarseth Road", "Swargate", "Pune", "Pune", mh, "27", "411042", "AAHFD4418B",
               "020-24441872", "9822031478", "deccantyre@example.com", "Imran Shaikh"),
      supplier(kShaktiBatteries, "Shakti Battery Distributors", "Plot 22, Sector 10",
               "PCNTDA, Bhosari", "", "Pimpri-Chinchwad", "Pune", mh, "27", "411026", "AAJFS6620K",
               "020-27121945", "9890214563", "shaktibattery@example.com", "Rohit Agarwal"),
      supplier(kOmSaiSpares, "Om Sai Auto Spares", "Shop No. 9, Gurudatta Market",
               "Pune-Saswad Road", "Hadapsar", "Pune", "Pune", mh, "27", "411028", "BQWPK5521L",
               "020-26991207", "9763312840", "omsaiautospares@example.com", "Santosh Kale"),
      supplier(kGaneshComponents, "Sri Ganesh Auto Components",
               "No. 57, Udyambag Industrial Estate", "Khanapur Road", "Udyambag", "Belagavi",
               "Belagavi", "Karnataka", "29", "590008", "AAKFS3389R", "0831-2441760", "9448120963",
               "ganeshautocomp@example.com", "Vinayak Kulkarni"),
  };
}

Day Weekday(Day day) { return day.weekday() == 0 ? day.Plus(1) : day; }

std::string Upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

// Generates the store's documents month by month, keeping each part's balance as it goes.
class Store {
 public:
  Store(const Dealership& sales, Random& random, Workshop& workshop)
      : sales_(sales), random_(random), parts_(workshop.parts) {}

  void Run() {
    for (Day month = kFirstDay; month <= kLastDay; month = month.PlusMonths(1)) {
      const int index = (month.year() - kFirstDay.year()) * 12 + month.month() - kFirstDay.month();
      for (const SupplierPlan& plan : kPlans) {
        if (index % plan.every_months == (plan.account % plan.every_months))
          PlaceOrder(plan, month);
      }
      Transfers(month);
      Estimates(month);
    }
    // The year's last stock order, placed after Christmas, is still open.
    PlaceOrder(kPlans[0], kLastDay.FirstOfMonth(), true);
    std::sort(
        purchases_.begin(), purchases_.end(),
        [](const SparesPurchase& a, const SparesPurchase& b) { return a.received < b.received; });
    std::sort(returns_.begin(), returns_.end(),
              [](const PurchaseReturn& a, const PurchaseReturn& b) { return a.date < b.date; });
    Number();
  }

  const std::vector<struct Order>& orders() const { return orders_; }
  const std::vector<SparesPurchase>& purchases() const { return purchases_; }
  const std::vector<PurchaseReturn>& returns() const { return returns_; }
  const std::vector<StockTransfer>& transfers() const { return transfers_; }
  const std::vector<Estimate>& estimates() const { return estimates_; }

 private:
  Part& part(int id) { return parts_.at(static_cast<size_t>(id) - 1); }

  Day DayIn(Day month, int from, int to) {
    const int last = month.PlusMonths(1).Plus(-1).day();
    Day day = month.Plus(std::min(random_.Between(from, to), last) - 1);
    return Weekday(day);
  }

  // Parts "supplier" sells that are low, or any of its parts when few are.
  std::vector<int> Pick(int supplier, int count) {
    std::vector<int> low, all;
    for (const Part& p : parts_) {
      if (!Supplies(supplier, p)) continue;
      all.push_back(p.id);
      if (p.balance <= p.reorder) low.push_back(p.id);
    }
    std::set<int> chosen;
    const std::vector<int>& from = low.size() >= static_cast<size_t>(count) * 2 ? low : all;
    if (from.empty()) return {};
    for (int tries = 0; static_cast<int>(chosen.size()) < count && tries < count * 20; ++tries) {
      chosen.insert(random_.Pick(from));
    }
    return {chosen.begin(), chosen.end()};
  }

  void PlaceOrder(const SupplierPlan& plan, Day month, bool late = false) {
    struct Order order;
    order.id = static_cast<int>(orders_.size());  // numbered in date order later
    order.supplier = plan.account;
    order.date = late ? DayIn(month, 27, 29) : DayIn(month, 1, 10);
    order.expected = Weekday(order.date.Plus(plan.account == kVayuDepot ? 7 : 4));
    order.prepared_by = random_.Pick(std::vector<std::string>{"Ganesh Pawar", "Sachin Kadam"});
    for (int id : Pick(plan.account, random_.Between(plan.min_lines, plan.max_lines))) {
      const Part& p = part(id);
      int qty = std::max(p.reorder * 2 - p.balance, p.reorder);
      if (p.type == "LUBRICANT" && p.mrp < Rs(20000)) qty = std::max(qty, 12);
      qty = std::max(qty, 1);
      order.lines.emplace_back(id, qty);
    }
    if (order.lines.empty()) return;
    order.remarks = plan.account == ids::kVayuMotocorp
                        ? "VOR order: vehicles off road, send by courier"
                        : "Regular stock order";
    // The last orders of December 2025 are still open.
    const Day bill = Weekday(order.date.Plus(random_.Between(2, 6)));
    const Day received =
        Weekday(bill.Plus(plan.inter_state ? random_.Between(3, 6) : random_.Between(1, 2)));
    if (late || received > kLastDay) {
      order.status = "OPEN";
      orders_.push_back(order);
      return;
    }
    SparesPurchase purchase;
    purchase.supplier = plan.account;
    purchase.inter_state = plan.inter_state;
    purchase.bill_date = bill;
    purchase.received = received;
    purchase.bill_no = plan.bill_prefix + std::to_string(bill.year() % 100) +
                       std::to_string(random_.Between(10000, 99999));
    purchase.transporter = plan.inter_state             ? random_.Pick(std::vector<std::string>{
                                                              "VRL Logistics", "Gati Express", "DTDC Courier"})
                           : plan.account == kVayuDepot ? "Vayu depot van"
                                                        : "Supplier's delivery";
    purchase.lr_no = plan.inter_state ? random_.Code(0, 8) : "";
    purchase.checked_by =
        random_.Pick(std::vector<std::string>{"Ganesh Pawar", "Sachin Kadam", "Nilesh Jagtap"});
    bool part_supplied = false;
    for (const auto& [id, ordered] : order.lines) {
      Part& p = part(id);
      TaxedLine line;
      line.part = id;
      line.description = p.description;
      line.hsn = p.hsn;
      line.uqc = p.uqc;
      line.ordered = ordered;
      line.qty = ordered;
      if (random_.Percent(8)) {  // back-ordered
        if (ordered == 1 || random_.Percent(30)) {
          part_supplied = true;
          continue;
        }
        line.qty = random_.Between(1, ordered - 1);
        part_supplied = true;
      }
      if (random_.Percent(4)) line.short_qty = std::min(line.qty, random_.Between(1, 2));
      if (line.qty - line.short_qty > 0 && random_.Percent(3)) line.damaged = 1;
      line.rate = p.pp;
      line.rate_percent = p.RateOn(bill);
      if (plan.discount_percent > 0) {
        line.discount = Divide(line.rate * line.qty * plan.discount_percent, 100);
      }
      line = Taxed(line, plan.inter_state);
      p.balance += line.accepted();
      purchase.lines.push_back(line);
    }
    if (purchase.lines.empty()) return;
    order.status = part_supplied ? "PART" : "RECEIVED";
    purchase.remarks = part_supplied ? "Balance items back-ordered" : "";
    purchase.order = order.id;
    purchase.key = static_cast<int>(purchases_.size());
    purchases_.push_back(purchase);
    orders_.push_back(order);
    // Goods short or damaged are claimed on a debit note within a few days.
    PurchaseReturn note;
    note.type = 'D';
    for (const TaxedLine& l : purchase.lines) {
      if (l.short_qty + l.damaged == 0) continue;
      TaxedLine claim = l;
      claim.qty = l.short_qty + l.damaged;
      claim.short_qty = claim.damaged = claim.ordered = 0;
      claim.discount = plan.discount_percent > 0
                           ? Divide(claim.rate * claim.qty * plan.discount_percent, 100)
                           : 0;
      claim.reason = l.short_qty > 0 && l.damaged > 0 ? "SHORT AND DAMAGED"
                     : l.short_qty > 0                ? "SHORT RECEIVED"
                                                      : "RECEIVED DAMAGED";
      note.lines.push_back(Taxed(claim, plan.inter_state));
    }
    if (!note.lines.empty()) {
      note.date = Weekday(purchase.received.Plus(random_.Between(1, 4)));
      if (note.date > kLastDay) return;
      note.reason = "Goods short or damaged on receipt";
      Claim(note, static_cast<int>(purchases_.size()) - 1);
    }
    // Now and then a wrong or surplus part goes back.
    if (random_.Percent(14)) {
      PurchaseReturn back;
      back.type = 'R';
      for (const TaxedLine& l : purchase.lines) {
        Part& p = part(l.part);
        if (l.accepted() < 1 || p.balance < 1 || back.lines.size() >= 3 || !random_.Percent(25)) {
          continue;
        }
        TaxedLine line = l;
        line.qty = std::min({l.accepted(), p.balance, random_.Between(1, 3)});
        line.short_qty = line.damaged = line.ordered = 0;
        line.discount = plan.discount_percent > 0
                            ? Divide(line.rate * line.qty * plan.discount_percent, 100)
                            : 0;
        line.reason = random_.Pick(std::vector<std::string>{
            "WRONG PART SUPPLIED", "EXCESS SUPPLY", "MANUFACTURING DEFECT", "NOT AS ORDERED"});
        p.balance -= line.qty;
        back.lines.push_back(Taxed(line, plan.inter_state));
      }
      if (!back.lines.empty()) {
        back.date = Weekday(purchase.received.Plus(random_.Between(3, 12)));
        if (back.date > kLastDay) {
          for (const TaxedLine& l : back.lines) part(l.part).balance += l.qty;
          return;
        }
        back.reason = "Parts returned to the supplier";
        Claim(back, static_cast<int>(purchases_.size()) - 1);
      }
    }
  }

  void Claim(PurchaseReturn claim, int purchase_index) {
    const SparesPurchase& purchase = purchases_.at(static_cast<size_t>(purchase_index));
    claim.purchase = purchase_index;
    claim.supplier = purchase.supplier;
    claim.inter_state = purchase.inter_state;
    claim.remarks = "Against bill " + purchase.bill_no + " dated " + purchase.bill_date.Dmy();
    returns_.push_back(claim);
  }

  void Transfers(Day month) {
    for (int n = 0; n < 3; ++n) {
      StockTransfer t;
      const bool inward = n == 2;
      if (inward && month.month() % 2 == 0) continue;
      const int branch = random_.Between(2, 3);
      t.from_branch = inward ? branch : kHadapsar;
      t.to_branch = inward ? kHadapsar : branch;
      t.date = DayIn(month, n * 10 + 1, n * 10 + 9);
      if (t.date > kLastDay) continue;
      t.vehicle_no =
          random_.Pick(std::vector<std::string>{"MH12 QW 4471", "MH14 HK 2290", "MH42 B 6613"});
      t.sent_by = inward ? "Branch stores"
                         : random_.Pick(std::vector<std::string>{"Ganesh Pawar", "Nilesh Jagtap"});
      t.remarks = inward ? "Slow-moving stock returned to the head office"
                         : "Stock for the branch workshop";
      std::set<int> chosen;
      const int lines = random_.Between(5, 14);
      for (int tries = 0; static_cast<int>(chosen.size()) < lines && tries < 400; ++tries) {
        Part& p = parts_[static_cast<size_t>(random_.Below(static_cast<int>(parts_.size())))];
        if (chosen.contains(p.id)) continue;
        // Outward: parts in stock, and now and then one urgently sent before its bill came in.
        const bool urgent = !inward && p.balance <= 0 && random_.Percent(10);
        if (!inward && p.balance < 1 && !urgent) continue;
        const int qty = urgent   ? random_.Between(1, 2)
                        : inward ? random_.Between(1, 4)
                                 : std::min(p.balance, random_.Between(1, 5));
        p.balance += inward ? qty : -qty;
        chosen.insert(p.id);
        t.lines.emplace_back(p.id, qty);
      }
      std::sort(t.lines.begin(), t.lines.end());
      if (!t.lines.empty()) transfers_.push_back(t);
    }
  }

  void Estimates(Day month) {
    // Retail buyers of motor vehicles bring them back for repairs.
    std::vector<const Invoice*> owners;
    for (const Invoice& inv : sales_.invoices) {
      if (inv.itype != 'R' || inv.customer == 0 || inv.regno.empty() || inv.date >= month) continue;
      owners.push_back(&inv);
    }
    if (owners.empty()) return;
    static const std::vector<std::pair<std::string, int>> labour = {
        {"GENERAL SERVICE LABOUR", 450},       {"CLUTCH OVERHAUL", 650},
        {"BRAKE SERVICE FRONT AND REAR", 300}, {"ENGINE TOP OVERHAUL", 1850},
        {"CARBURETTOR CLEANING", 350},         {"WHEEL ALIGNMENT AND BALANCING", 250},
        {"ELECTRICAL WIRING CHECK", 400},      {"DENTING AND PAINTING", 2400},
        {"CHAIN SPROCKET REPLACEMENT", 300},   {"SUSPENSION OVERHAUL", 900}};
    static const std::vector<std::string> complaints = {
        "Clutch slipping, noise from engine",   "Brakes weak, pick-up low",
        "Accident repair: front panel damaged", "Periodic service, oil leakage",
        "Starting trouble, battery weak",       "Chain noise, wheel wobble"};
    for (int n = 0; n < 3; ++n) {
      const Invoice& inv = *random_.Pick(owners);
      const VehicleModel& model = sales_.model(inv.units.at(0).model);
      std::string fitment;
      for (const Fitment& f : kMotorModels) {
        if (Upper(model.model).find(f.name) != std::string::npos) fitment = f.name;
      }
      if (fitment.empty()) continue;
      Estimate e;
      e.date = DayIn(month, n * 10 + 1, n * 10 + 9);
      if (e.date > kLastDay) continue;
      e.valid_till = e.date.Plus(15);
      e.customer = inv.customer;
      e.vehicle = inv.units.at(0).vehicle;
      e.regno = inv.regno;
      e.model = model.Name();
      e.chassis = sales_.vehicle(e.vehicle).chassis;
      e.km = std::max(300, e.date.DaysSince(inv.date) * random_.Between(18, 40));
      e.advisor = random_.Pick(std::vector<std::string>{"Amol Shinde", "Pravin Gaikwad"});
      e.complaint = random_.Pick(complaints);
      std::vector<int> fitting, oils;
      for (const Part& p : parts_) {
        if (p.description.find(" " + fitment) != std::string::npos) fitting.push_back(p.id);
        if (p.description.starts_with("ENGINE OIL") && p.mrp < Rs(1000)) oils.push_back(p.id);
      }
      std::set<int> chosen;
      const int lines = random_.Between(2, 6);
      for (int tries = 0; static_cast<int>(chosen.size()) < lines && tries < 100; ++tries) {
        chosen.insert(random_.Pick(fitting));
      }
      // An engine's service takes a can of oil; an electric scooter has none to change.
      if (!fitment.starts_with("EVOLT") && !oils.empty()) chosen.insert(random_.Pick(oils));
      for (int id : chosen) {
        const Part& p = part(id);
        TaxedLine line;
        line.part = id;
        line.description = p.description;
        line.hsn = p.hsn;
        line.uqc = p.uqc;
        line.qty = p.type == "LUBRICANT" ? 1 : random_.Between(1, 2);
        line.rate = Divide(p.mrp * 100, 100 + p.RateOn(e.date));
        line.rate_percent = p.RateOn(e.date);
        e.lines.push_back(Taxed(line, false));
      }
      for (int k = random_.Between(1, 2); k > 0; --k) {
        const auto& [what, rupees] = random_.Pick(labour);
        TaxedLine line;
        line.kind = 'L';
        line.description = what;
        line.hsn = "998714";
        line.uqc = "OTH";
        line.qty = 1;
        line.rate = Rs(rupees);
        line.rate_percent = 18;
        bool again = false;
        for (const TaxedLine& l : e.lines) again = again || l.description == what;
        if (!again) e.lines.push_back(Taxed(line, false));
      }
      estimates_.push_back(e);
    }
  }

  // Ids and numbers in date order, once every document is made.
  void Number() {
    std::vector<size_t> order_index(orders_.size());
    for (size_t i = 0; i < order_index.size(); ++i) order_index[i] = i;
    std::stable_sort(order_index.begin(), order_index.end(),
                     [&](size_t a, size_t b) { return orders_[a].date < orders_[b].date; });
    std::vector<struct Order> orders;
    std::vector<int> order_id(orders_.size());
    Series po("PO");
    for (size_t i : order_index) {
      struct Order o = orders_[i];
      o.id = kFirstOrder + static_cast<int>(orders.size());
      o.num = po.Next(o.date);
      order_id[i] = o.id;
      orders.push_back(o);
    }
    // Purchases are in the order they were received: their ids follow it.
    Series grn("SPR");
    std::vector<int> purchase_id(purchases_.size());
    for (SparesPurchase& p : purchases_) {
      p.id = kFirstPurchase + static_cast<int>(&p - purchases_.data());
      p.num = grn.Next(p.received);
      p.order = order_id.at(static_cast<size_t>(p.order));
      purchase_id.at(static_cast<size_t>(p.key)) = p.id;
    }
    for (struct Order& o : orders) {
      o.purchase = 0;
      for (const SparesPurchase& p : purchases_) {
        if (p.order == o.id) o.purchase = p.id;
      }
    }
    orders_ = std::move(orders);
    Series pr("PR", 3), dn("DN", 3);
    for (PurchaseReturn& r : returns_) {
      r.id = kFirstReturn + static_cast<int>(&r - returns_.data());
      r.num = r.type == 'D' ? dn.Next(r.date) : pr.Next(r.date);
      r.purchase = purchase_id.at(static_cast<size_t>(r.purchase));
    }
    std::stable_sort(
        transfers_.begin(), transfers_.end(),
        [](const StockTransfer& a, const StockTransfer& b) { return a.date < b.date; });
    Series st("ST");
    for (StockTransfer& t : transfers_) {
      t.id = kFirstTransfer + static_cast<int>(&t - transfers_.data());
      t.num = st.Next(t.date);
    }
    std::stable_sort(estimates_.begin(), estimates_.end(),
                     [](const Estimate& a, const Estimate& b) { return a.date < b.date; });
    Series est("EST");
    for (Estimate& e : estimates_) {
      e.id = kFirstEstimate + static_cast<int>(&e - estimates_.data());
      e.num = est.Next(e.date);
    }
  }

  const Dealership& sales_;
  Random& random_;
  std::vector<Part>& parts_;
  std::vector<struct Order> orders_;
  std::vector<SparesPurchase> purchases_;
  std::vector<PurchaseReturn> returns_;
  std::vector<StockTransfer> transfers_;
  std::vector<Estimate> estimates_;
};

// Whole percent as a number with two decimals: 18 gives "18.00", 9 of a half "9.00", 2.5 …
Cell Share(int percent, bool inter_state, bool igst) {
  if (igst != inter_state) return Decimal{"0.00"};
  return Percent(percent, !igst);
}

void AddLineCells(std::vector<Cell>& row, const TaxedLine& l, bool inter_state) {
  row.insert(row.end(),
             {Paise(l.rate), Paise(l.amount), Paise(l.discount), Paise(l.tax.taxable),
              Int(l.rate_percent), Share(l.rate_percent, inter_state, false), Paise(l.tax.cgst),
              Share(l.rate_percent, inter_state, false), Paise(l.tax.sgst),
              Share(l.rate_percent, inter_state, true), Paise(l.tax.igst), Paise(l.tax.net)});
}
const std::vector<std::string> kLineTaxColumns = {"rate",     "amount",    "discount", "taxable",
                                                  "gst_rate", "cgst_rate", "cgst_amt", "sgst_rate",
                                                  "sgst_amt", "igst_rate", "igst_amt", "netamt"};

std::vector<std::string> Columns(std::vector<std::string> first, bool with_tax = true) {
  if (with_tax) first.insert(first.end(), kLineTaxColumns.begin(), kLineTaxColumns.end());
  return first;
}

void AddTotalsCells(std::vector<Cell>& row, const Totals& t) {
  row.insert(row.end(), {Paise(t.taxable), Paise(t.cgst), Paise(t.sgst), Paise(t.igst),
                         Paise(t.round_off), Paise(t.total)});
}

int64_t LinesValue(const std::vector<std::pair<int, int>>& lines, const std::vector<Part>& parts) {
  int64_t value = 0;
  for (const auto& [id, qty] : lines) value += parts.at(static_cast<size_t>(id) - 1).pp * qty;
  return value;
}

void AddStoreRows(const Store& store, const std::vector<Part>& parts, Dataset& out) {
  Table& suppliers = out.Create("fa_acmaster", AccountColumns());
  for (const Account& a : StoreSuppliers()) suppliers.Add(AccountRow(a));

  Table& orders = out.Create(
      "ws_po", {"od_id", "od_no", "od_date", "am_id", "br_id", "od_expected", "od_status",
                "od_items", "od_qty", "od_value", "od_by", "pu_id", "od_remarks"});
  Table& order_lines =
      out.Create("ws_podet", {"od_id", "line", "part_id", "qty", "rate", "amount"});
  for (const Order& o : store.orders()) {
    int qty = 0;
    for (const auto& [id, q] : o.lines) qty += q;
    orders.Add({Int(o.id), o.num, o.date, Int(o.supplier), Int(kHadapsar), o.expected, o.status,
                Int(static_cast<int64_t>(o.lines.size())), Int(qty),
                Paise(LinesValue(o.lines, parts)), o.prepared_by, Id(o.purchase), o.remarks});
    int line = 0;
    for (const auto& [id, q] : o.lines) {
      const int64_t rate = parts.at(static_cast<size_t>(id) - 1).pp;
      order_lines.Add({Int(o.id), Int(++line), Int(id), Int(q), Paise(rate), Paise(rate * q)});
    }
  }

  Table& purchases =
      out.Create("ws_purchase", {"pu_id",     "pu_no",       "pu_date", "am_id",       "bill_no",
                                 "bill_date", "br_id",       "od_id",   "inter_state", "pu_items",
                                 "taxable",   "cgst",        "sgst",    "igst",        "round_off",
                                 "total",     "transporter", "lr_no",   "checked_by",  "remarks"});
  Table& purchase_lines =
      out.Create("ws_purchasedet",
                 Columns({"pu_id", "line", "part_id", "description", "hsn", "uqc", "qty_ordered",
                          "qty", "qty_received", "qty_short", "qty_damaged", "qty_accepted"}));
  for (const SparesPurchase& p : store.purchases()) {
    std::vector<Cell> row = {Int(p.id),
                             p.num,
                             p.received,
                             Int(p.supplier),
                             p.bill_no,
                             p.bill_date,
                             Int(kHadapsar),
                             Id(p.order),
                             p.inter_state ? "Y" : "N",
                             Int(static_cast<int64_t>(p.lines.size()))};
    AddTotalsCells(row, Sum(p.lines));
    row.insert(row.end(), {p.transporter, Text(p.lr_no), p.checked_by, Text(p.remarks)});
    purchases.Add(row);
    int line = 0;
    for (const TaxedLine& l : p.lines) {
      std::vector<Cell> cells = {Int(p.id),        Int(++line),    Int(l.part),
                                 l.description,    l.hsn,          l.uqc,
                                 Int(l.ordered),   Int(l.qty),     Int(l.qty - l.short_qty),
                                 Int(l.short_qty), Int(l.damaged), Int(l.accepted())};
      AddLineCells(cells, l, p.inter_state);
      purchase_lines.Add(cells);
    }
  }

  Table& returns =
      out.Create("ws_purret",
                 {"pr_id", "pr_type", "pr_no", "pr_date", "pu_id", "am_id", "br_id", "inter_state",
                  "pr_reason", "taxable", "cgst", "sgst", "igst", "round_off", "total", "remarks"});
  Table& return_lines = out.Create(
      "ws_purretdet",
      Columns({"pr_id", "line", "part_id", "description", "hsn", "uqc", "qty", "reason"}));
  for (const PurchaseReturn& r : store.returns()) {
    std::vector<Cell> row = {Int(r.id),      std::string(1, r.type),    r.num,
                             r.date,         Int(r.purchase),           Int(r.supplier),
                             Int(kHadapsar), r.inter_state ? "Y" : "N", r.reason};
    AddTotalsCells(row, Sum(r.lines));
    row.push_back(r.remarks);
    returns.Add(row);
    int line = 0;
    for (const TaxedLine& l : r.lines) {
      std::vector<Cell> cells = {Int(r.id), Int(++line), Int(l.part), l.description,
                                 l.hsn,     l.uqc,       Int(l.qty),  l.reason};
      AddLineCells(cells, l, r.inter_state);
      return_lines.Add(cells);
    }
  }

  Table& transfers =
      out.Create("ws_stktrf", {"stk_id", "stk_no", "stk_date", "from_br", "to_br", "stk_items",
                               "stk_qty", "stk_value", "vehicle_no", "sent_by", "remarks"});
  Table& transfer_lines =
      out.Create("ws_stktrfdet", {"stk_id", "line", "part_id", "qty", "rate", "amount"});
  for (const StockTransfer& t : store.transfers()) {
    int qty = 0;
    for (const auto& [id, q] : t.lines) qty += q;
    transfers.Add({Int(t.id), t.num, t.date, Int(t.from_branch), Int(t.to_branch),
                   Int(static_cast<int64_t>(t.lines.size())), Int(qty),
                   Paise(LinesValue(t.lines, parts)), t.vehicle_no, t.sent_by, t.remarks});
    int line = 0;
    for (const auto& [id, q] : t.lines) {
      const int64_t rate = parts.at(static_cast<size_t>(id) - 1).pp;
      transfer_lines.Add({Int(t.id), Int(++line), Int(id), Int(q), Paise(rate), Paise(rate * q)});
    }
  }

  Table& estimates =
      out.Create("ws_estimate", {"em_id", "em_no", "em_date", "br_id", "cust_id", "veh_id", "regno",
                                 "model", "chassis", "km", "valid_till", "advisor", "complaint",
                                 "taxable", "cgst", "sgst", "igst", "round_off", "total"});
  Table& estimate_lines =
      out.Create("ws_estimatedet",
                 Columns({"em_id", "line", "kind", "part_id", "description", "hsn", "uqc", "qty"}));
  for (const Estimate& e : store.estimates()) {
    std::vector<Cell> row = {Int(e.id),      e.num,     e.date,     Int(kHadapsar), Int(e.customer),
                             Int(e.vehicle), e.regno,   e.model,    e.chassis,      Int(e.km),
                             e.valid_till,   e.advisor, e.complaint};
    AddTotalsCells(row, Sum(e.lines));
    estimates.Add(row);
    int line = 0;
    for (const TaxedLine& l : e.lines) {
      std::vector<Cell> cells = {Int(e.id),  Int(++line),   std::string(1, l.kind),
                                 Id(l.part), l.description, l.hsn,
                                 l.uqc,      Int(l.qty)};
      AddLineCells(cells, l, false);
      estimate_lines.Add(cells);
    }
  }

  Table& years = out.Create("fin_years", {"fy_code", "fy_from", "fy_to"});
  for (int year = 2024; year <= 2025; ++year) {
    years.Add({std::to_string(year) + "-" + std::to_string((year + 1) % 100),
               Day::FromYmd(year, 4, 1), Day::FromYmd(year + 1, 3, 31)});
  }
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

template <typename T, typename Keep, typename Size>
const T& Largest(const std::vector<T>& items, Keep keep, Size size, const char* what) {
  const T* best = nullptr;
  for (const T& item : items) {
    if (keep(item) && (best == nullptr || size(item) > size(*best))) best = &item;
  }
  if (best == nullptr) throw std::logic_error(std::string("the demo has no ") + what);
  return *best;
}

void AddSpares(const Dealership& sales, const Options& options, Random& random, Workshop& workshop,
               Dataset& tables, FactList& facts) {
  // Streams of their own, drawn once from the workshop's, so that what one part of the store
  // draws leaves the others and the later steps as they were.
  Random master_random(random.Next());
  Random store_random(random.Next());

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

  Store store(sales, store_random, workshop);
  store.Run();
  AddStoreRows(store, workshop.parts, tables);

  for (const SparesPurchase& p : store.purchases()) {
    const Totals t = Sum(p.lines);
    workshop.postings.push_back({p.received, "SPARES PURCHASE", p.num, p.supplier, t.taxable,
                                 t.cgst, t.sgst, t.igst, t.total});
  }
  for (const PurchaseReturn& r : store.returns()) {
    const Totals t = Sum(r.lines);
    workshop.postings.push_back({r.date, r.type == 'D' ? "DEBIT NOTE" : "PURCHASE RETURN", r.num,
                                 r.supplier, t.taxable, t.cgst, t.sgst, t.igst, t.total});
  }

  auto lines = [](const auto& document) { return document.lines.size(); };
  auto add = [&facts](const std::string& key, const std::string& value) {
    facts.emplace_back(key, value);
  };
  add("parts_count", std::to_string(workshop.parts.size()));
  const SparesPurchase& checked = Largest(
      store.purchases(),
      [](const SparesPurchase& p) {
        bool short_qty = false, damaged = false;
        for (const TaxedLine& l : p.lines) {
          short_qty = short_qty || l.short_qty > 0;
          damaged = damaged || l.damaged > 0;
        }
        return !p.inter_state && short_qty && damaged;
      },
      lines, "spares purchase with goods short and damaged");
  add("spares_purchase_id", std::to_string(checked.id));
  add("spares_purchase_igst_id",
      std::to_string(Largest(
                         store.purchases(), [](const SparesPurchase& p) { return p.inter_state; },
                         lines, "inter-state spares purchase")
                         .id));
  add("stock_transfer_id",
      std::to_string(Largest(
                         store.transfers(),
                         [](const StockTransfer& t) { return t.from_branch == kHadapsar; }, lines,
                         "stock transfer")
                         .id));
  add("stock_transfer_in_id",
      std::to_string(Largest(
                         store.transfers(),
                         [](const StockTransfer& t) { return t.to_branch == kHadapsar; }, lines,
                         "stock transfer in")
                         .id));
  add("purchase_order_id",
      std::to_string(Largest(
                         store.orders(), [](const Order& o) { return o.status == "RECEIVED"; },
                         lines, "purchase order")
                         .id));
  add("purchase_order_open_id",
      std::to_string(Largest(
                         store.orders(), [](const Order& o) { return o.status == "OPEN"; }, lines,
                         "open purchase order")
                         .id));
  const Estimate& estimate = Largest(
      store.estimates(),
      [](const Estimate& e) {
        return std::any_of(e.lines.begin(), e.lines.end(),
                           [](const TaxedLine& l) { return l.kind == 'L'; });
      },
      lines, "estimate");
  add("estimate_id", std::to_string(estimate.id));
  for (const char type : {'R', 'D'}) {
    const PurchaseReturn& r = Largest(
        store.returns(), [type](const PurchaseReturn& x) { return x.type == type; }, lines,
        type == 'R' ? "purchase return" : "debit note");
    const std::string key = type == 'R' ? "purchase_return" : "debit_note";
    add(key + "_id", std::to_string(r.id));
    add(key + "_amount", MoneyText(Sum(r.lines).total));
  }
  add("stock_date", kLastDay.Iso());
  add("stock_types", "'S','L','A','T','B'");
  add("stock_summary_date", Day::FromYmd(2025, 10, 31).Iso());
}

}  // namespace vantorel::demo
