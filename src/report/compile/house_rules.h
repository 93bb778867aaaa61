// Our house rules for templates: what a valid template may still get wrong on paper, found before
// anything is printed. A text that can wrap in a box that cannot grow is cut when its value runs
// long; an amount or quantity box too narrow for the widest value its format writes is cut (or
// wraps) when a big one comes. `vantorel check` warns of them; `check --house-rules` fails on
// them.
//
// Thread-safety: a pure function of the compiled report; measures with the calling thread's
// fonts.
#ifndef VANTOREL_REPORT_COMPILE_HOUSE_RULES_H_
#define VANTOREL_REPORT_COMPILE_HOUSE_RULES_H_

#include <string>
#include <vector>

#include "report/compile/compiled_report.h"
#include "report/template/template_io.h"

namespace vantorel::report {

struct HouseRuleOptions {
  // Texts (by name, any case) that a print method sets at run time: what the template holds
  // there says nothing of how long they get. Default: none.
  std::vector<std::string> run_time_texts;
};

// The widest values a box with a numeric display format must hold: amounts (formats that always
// show two decimals) and quantities (any other format, whole numbers mostly).
inline constexpr const char* kWidestAmount = "99999999.99";  // 9,99,99,999.99
inline constexpr const char* kWidestRate = "100.00";         // a tax rate, in per cent
inline constexpr const char* kWidestQuantity = "9999";       // 9,999

// Every text of "report" that breaks a house rule, in template order, each with its line and a
// hint:
//  - a text that can wrap (wrap is on) and may print longer than its box — it reads a field, a
//    variable, a total or a text set at run time, or what it prints at its longest does not fit
//    — in a box that cannot grow (no stretch="grow" or "cell", or a band with stretch="false");
//  - a text with a numeric display format (the object's format, or Format(…, pattern) in it)
//    narrower than that format's widest value, measured with its font, size and padding.
std::vector<Problem> CheckHouseRules(const CompiledReport& report,
                                     const HouseRuleOptions& options = {});

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_COMPILE_HOUSE_RULES_H_
