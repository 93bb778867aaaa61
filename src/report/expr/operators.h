// What the expression language's operators and conversions do to values, as plain functions.
// The evaluator uses them, and the fill stage can use them too so that its Sum, Avg, Min and Max
// add and compare exactly as an expression would. None of them throws: a value that does not
// suit an operator gives null. docs/expressions.md describes the rules.
//
// Thread-safety: pure functions.
#ifndef VANTOREL_REPORT_EXPR_OPERATORS_H_
#define VANTOREL_REPORT_EXPR_OPERATORS_H_

#include <cstdint>
#include <optional>
#include <string_view>

#include "report/expr/value.h"

namespace vantorel::report::expr {

// "text" (blanks around allowed) as a number: an exact decimal when it has one, otherwise a
// double; nullopt when the text is not just a number.
std::optional<Value> ParseNumber(std::string_view text);
// Numbers as they are, texts that are numbers converted; null for anything else.
Value ToNumber(const Value& value);
// Numbers truncated towards zero; nullopt for non-numbers and values beyond ±2^53.
std::optional<int64_t> ToInteger(const Value& value);
// Dates as they are, texts in ISO form ("2024-03-31", "2024-03-31 10:30") converted.
std::optional<Date> ToDate(const Value& value);
// The truth of a condition: booleans, and numbers (non-zero is true); nullopt for null, texts
// and dates.
std::optional<bool> Truth(const Value& value);

// A date "days" later (fractions add time of day); null when it leaves the range of dates.
Value AddDays(Date date, double days);
// Days from one date to another, counting the time of day.
double DaysFrom(Date from, Date to);
// Whole calendar days from the day of "from" to the day of "to".
int64_t CalendarDaysFrom(Date from, Date to);

Value Negate(const Value& a);
Value Add(const Value& a, const Value& b);
Value Subtract(const Value& a, const Value& b);
Value Multiply(const Value& a, const Value& b);
Value Divide(const Value& a, const Value& b);
Value Modulo(const Value& a, const Value& b);
// "&": both sides as DisplayText, null as "".
Value Concat(const Value& a, const Value& b);
// -1, 0 or 1; nullopt when either is null or the two cannot be compared (a date and a number).
std::optional<int> Compare(const Value& a, const Value& b);

}  // namespace vantorel::report::expr

#endif  // VANTOREL_REPORT_EXPR_OPERATORS_H_
