// The built-in functions of report expressions: their names, argument counts and what they
// compute. Aggregates (Sum, Count, Avg, Min, Max) are not here; the compiler turns them into
// Binder::Aggregate calls.
//
// Thread-safety: immutable tables and pure functions.
#ifndef VANTOREL_REPORT_EXPR_FUNCTIONS_H_
#define VANTOREL_REPORT_EXPR_FUNCTIONS_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "report/expr/value.h"

namespace vantorel::report::expr {

enum class Function : uint8_t {
  // Evaluated by the evaluator itself: they choose which arguments to evaluate, fold over any
  // number of them, or read the context.
  kIif,
  kCoalesce,
  kLeast,
  kGreatest,
  kToday,
  kJoinText,
  // Plain functions of at most kMaxPlainArguments evaluated arguments.
  kIsNull,
  kFormat,
  kFormatDate,
  kStr,
  kVal,
  kToNumber,
  kUpper,
  kLower,
  kTrim,
  kLTrim,
  kRTrim,
  kLeft,
  kRight,
  kMid,
  kLen,
  kReplace,
  kInStr,
  kRound,
  kAbs,
  kInt,
  kTrunc,
  kCeil,
  kFloor,
  kYear,
  kMonth,
  kDay,
  kDateAdd,
  kDaysBetween,
  kAmountInWords,
  kChr,
  kMonthYear,
};

inline constexpr int kMaxPlainArguments = 3;
inline constexpr int kAnyNumber = -1;

struct FunctionInfo {
  std::string_view name;  // as the documentation writes it; lookups ignore case
  Function function;
  int min_arguments;
  int max_arguments;       // kAnyNumber for no limit
  std::string_view usage;  // shown in hints: "Left(text, count)"
};

// The function called "name" (any case); nullptr when there is none.
const FunctionInfo* FindFunction(std::string_view name);

// The known name closest to "name" (functions and aggregates), for "did you mean" hints; empty
// when nothing is close.
std::string ClosestName(std::string_view name);

// Calls a plain function (not one of the evaluator's own) with "count" evaluated arguments.
// Never throws; bad arguments give null.
Value CallPlain(Function function, const Value* arguments, int count);

}  // namespace vantorel::report::expr

#endif  // VANTOREL_REPORT_EXPR_FUNCTIONS_H_
