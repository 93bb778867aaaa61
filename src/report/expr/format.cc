// Display patterns (FormatValue). A pattern has up to three sections separated by ";": numbers
// use positive;negative;zero as spreadsheets do, booleans true;false. Text in quotes and a
// character after "\" are literal everywhere.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>
#include <vector>

#include "report/expr/text_util.h"
#include "report/expr/value.h"

namespace vantorel::report::expr {
namespace {

// Output never grows without bound, whatever a pattern asks for.
constexpr int kMaxDecimals = 30;

std::vector<std::string_view> SplitSections(std::string_view pattern) {
  std::vector<std::string_view> sections;
  size_t start = 0;
  char quote = 0;
  for (size_t i = 0; i < pattern.size(); ++i) {
    const char c = pattern[i];
    if (quote != 0) {
      if (c == quote) quote = 0;
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '\\') {
      ++i;
    } else if (c == ';') {
      sections.push_back(pattern.substr(start, i - start));
      start = i + 1;
    }
  }
  sections.push_back(pattern.substr(std::min(start, pattern.size())));
  return sections;
}

// Reads a quoted run or an escaped character at "i" into "out"; false when neither starts there.
bool TakeQuotedOrEscaped(std::string_view pattern, size_t& i, std::string& out) {
  const char c = pattern[i];
  if (c == '\\') {
    if (i + 1 < pattern.size()) out += pattern[i + 1];
    i += 2;
    return true;
  }
  if (c != '"' && c != '\'') return false;
  const size_t end = pattern.find(c, i + 1);
  const size_t stop = end == std::string_view::npos ? pattern.size() : end;
  out.append(pattern.substr(i + 1, stop - i - 1));
  i = stop + 1;
  return true;
}

std::string LiteralText(std::string_view section) {
  std::string out;
  for (size_t i = 0; i < section.size();) {
    if (!TakeQuotedOrEscaped(section, i, out)) out += section[i++];
  }
  return out;
}

struct NumberSection {
  bool has_digits = false;
  std::string prefix, suffix;
  int min_integer = 0;   // '0's before the point
  int min_decimals = 0;  // '0's after it
  int max_decimals = 0;  // '0's and '#'s after it
  int group = 0;         // digits in the group next to the point; 0: no grouping
  int next_group = 0;    // digits in each further group (3, or 2 for lakh and crore)
  bool percent = false;
};

void ReadDigitPlaces(std::string_view run, NumberSection& s) {
  const size_t point = run.find('.');
  const std::string_view whole = run.substr(0, point);
  const std::string_view decimals =
      point == std::string_view::npos ? std::string_view() : run.substr(point + 1);
  for (const char c : decimals) {
    if (c == '0') ++s.min_decimals;
    if (c == '0' || c == '#') ++s.max_decimals;
  }
  s.min_decimals = std::min(s.min_decimals, kMaxDecimals);
  s.max_decimals = std::min(s.max_decimals, kMaxDecimals);
  // Groups: the digits after the last comma, then those between the last two commas.
  std::vector<int> sizes;
  int count = 0;
  for (const char c : whole) {
    if (c == ',') {
      sizes.push_back(count);
      count = 0;
    } else {
      if (c == '0') ++s.min_integer;
      ++count;
    }
  }
  sizes.push_back(count);
  while (sizes.size() > 1 && sizes.back() == 0) sizes.pop_back();  // a trailing comma
  if (sizes.size() >= 2 && sizes.back() > 0) {
    s.group = sizes.back();
    s.next_group =
        sizes.size() >= 3 && sizes[sizes.size() - 2] > 0 ? sizes[sizes.size() - 2] : s.group;
  }
  s.min_integer = std::min(s.min_integer, kMaxDecimals);
}

NumberSection ParseNumberSection(std::string_view section) {
  NumberSection s;
  enum { kBefore, kInRun, kAfter } state = kBefore;
  size_t run_begin = 0;
  for (size_t i = 0; i < section.size();) {
    const char c = section[i];
    std::string& literal = state == kBefore ? s.prefix : s.suffix;
    if (state == kInRun) {
      const bool second_point =
          c == '.' && section.substr(run_begin, i - run_begin).find('.') != std::string_view::npos;
      if ((c == '0' || c == '#' || c == ',' || c == '.') && !second_point) {
        ++i;
        continue;
      }
      ReadDigitPlaces(section.substr(run_begin, i - run_begin), s);
      state = kAfter;
      continue;
    }
    if (TakeQuotedOrEscaped(section, i, literal)) continue;
    const bool starts_run =
        c == '0' || c == '#' ||
        (c == '.' && i + 1 < section.size() && (section[i + 1] == '0' || section[i + 1] == '#'));
    if (state == kBefore && starts_run) {
      s.has_digits = true;
      state = kInRun;
      run_begin = i++;
      continue;
    }
    if (c == '%') s.percent = true;
    literal += c;
    ++i;
  }
  if (state == kInRun) ReadDigitPlaces(section.substr(run_begin), s);
  return s;
}

// Sign, whole digits and decimals of "value" rounded half away from zero to "decimals" places.
struct DigitText {
  bool negative = false;
  std::string whole, fraction;
};

// Cuts the decimals to "decimals" places, half away from zero, carrying into the whole digits.
void RoundDigits(DigitText& d, int decimals) {
  const bool up = d.fraction[static_cast<size_t>(decimals)] >= '5';
  d.fraction.resize(static_cast<size_t>(decimals));
  if (!up) return;
  std::string digits = d.whole + d.fraction;
  size_t i = digits.size();
  while (i > 0 && digits[i - 1] == '9') digits[--i] = '0';
  if (i == 0) {
    digits.insert(0, 1, '1');
  } else {
    ++digits[i - 1];
  }
  d.whole = digits.substr(0, digits.size() - d.fraction.size());
  d.fraction = digits.substr(digits.size() - d.fraction.size());
}

DigitText RoundedDigits(const Value& value, bool percent, int decimals) {
  std::string text;
  std::optional<Decimal> exact;
  if (value.kind() == Value::Kind::kDecimal) {
    exact = value.decimal();
    if (percent) exact = Decimal::Multiply(*exact, Decimal::FromInt(100));
  }
  if (exact) {
    text = exact->Round(decimals).ToString();
  } else {
    double x = value.number();
    if (percent) x *= 100;
    text = ShortestPlainDigits(x);
  }
  DigitText d;
  if (!text.empty() && text[0] == '-') {
    d.negative = true;
    text.erase(0, 1);
  }
  const size_t point = text.find('.');
  d.whole = text.substr(0, point);
  if (point != std::string::npos) d.fraction = text.substr(point + 1);
  if (d.fraction.size() > static_cast<size_t>(decimals)) RoundDigits(d, decimals);
  return d;
}

void Group(std::string& whole, int group, int next_group) {
  if (group <= 0) return;
  std::string out;
  int size = group;
  size_t end = whole.size();
  std::vector<std::string_view> parts;
  while (end > static_cast<size_t>(size)) {
    parts.push_back(
        std::string_view(whole).substr(end - static_cast<size_t>(size), static_cast<size_t>(size)));
    end -= static_cast<size_t>(size);
    size = next_group;
  }
  out.append(whole, 0, end);
  for (auto it = parts.rbegin(); it != parts.rend(); ++it) {
    out += ',';
    out.append(*it);
  }
  whole = std::move(out);
}

std::string FormatWithSection(const Value& value, const NumberSection& s, bool show_sign) {
  if (!s.has_digits) return s.prefix + s.suffix;
  DigitText d = RoundedDigits(value, s.percent, s.max_decimals);
  while (d.fraction.size() > static_cast<size_t>(s.min_decimals) && d.fraction.back() == '0') {
    d.fraction.pop_back();
  }
  if (d.fraction.size() < static_cast<size_t>(s.min_decimals)) {
    d.fraction.append(static_cast<size_t>(s.min_decimals) - d.fraction.size(), '0');
  }
  const size_t first = d.whole.find_first_not_of('0');
  d.whole.erase(0, first == std::string::npos ? d.whole.size() : first);
  const bool nonzero = !d.whole.empty() || d.fraction.find_first_not_of('0') != std::string::npos;
  if (d.whole.size() < static_cast<size_t>(s.min_integer)) {
    d.whole.insert(0, static_cast<size_t>(s.min_integer) - d.whole.size(), '0');
  }
  Group(d.whole, s.group, s.next_group);
  std::string out;
  if (show_sign && d.negative && nonzero) out += '-';
  out += s.prefix;
  out += d.whole;
  if (!d.fraction.empty()) {
    out += '.';
    out += d.fraction;
  }
  out += s.suffix;
  return out;
}

// A pattern's number sections, read once: a register formats every row's amounts with the same
// few patterns.
struct NumberPattern {
  std::string pattern;
  std::vector<NumberSection> sections;
};

const std::vector<NumberSection>& NumberSections(std::string_view pattern) {
  constexpr size_t kKept = 8;
  constexpr size_t kLongestKept = 256;
  thread_local std::vector<NumberPattern> kept;
  thread_local size_t next = 0;
  for (const NumberPattern& known : kept) {
    if (known.pattern == pattern) return known.sections;
  }
  NumberPattern parsed{std::string(pattern), {}};
  for (const std::string_view section : SplitSections(pattern)) {
    parsed.sections.push_back(ParseNumberSection(section));
  }
  if (pattern.size() > kLongestKept) {
    thread_local NumberPattern uncached;
    uncached = std::move(parsed);
    return uncached.sections;
  }
  if (kept.size() < kKept) {
    kept.push_back(std::move(parsed));
    return kept.back().sections;
  }
  NumberPattern& slot = kept[next];
  next = (next + 1) % kKept;
  slot = std::move(parsed);
  return slot.sections;
}

std::optional<std::string> FormatNumber(const Value& value, std::string_view pattern) {
  const std::vector<NumberSection>& sections = NumberSections(pattern);
  const NumberSection& positive = sections[0];
  if (!positive.has_digits) return std::nullopt;
  const int sign = value.kind() == Value::Kind::kDecimal
                       ? Decimal::Compare(value.decimal(), Decimal())
                       : (value.number() > 0) - (value.number() < 0);
  if (sign < 0 && sections.size() >= 2) {
    const Value magnitude = value.kind() == Value::Kind::kDecimal
                                ? Value::Number(Decimal::FromMantissa(-value.decimal().mantissa(),
                                                                      value.decimal().scale()))
                                : Value::Number(-value.number());
    return FormatWithSection(magnitude, sections[1], false);
  }
  if (sign == 0 && sections.size() >= 3) {
    return FormatWithSection(value, sections[2], false);
  }
  return FormatWithSection(value, positive, true);
}

constexpr const char* kMonthNames[] = {"January",   "February", "March",    "April",
                                       "May",       "June",     "July",     "August",
                                       "September", "October",  "November", "December"};
constexpr const char* kDayNames[] = {"Saturday",  "Sunday",   "Monday", "Tuesday",
                                     "Wednesday", "Thursday", "Friday"};

bool IsDateLetter(char lower) {
  return lower == 'd' || lower == 'm' || lower == 'y' || lower == 'h' || lower == 'n' ||
         lower == 's';
}

bool IsAmPm(std::string_view pattern, size_t i) {
  return StartsWithIgnoreCase(pattern.substr(i), "am/pm");
}

std::optional<std::string> FormatDate(Date date, std::string_view pattern) {
  bool twelve_hour = false;
  bool any_field = false;
  for (size_t i = 0; i < pattern.size();) {
    std::string ignored;
    if (TakeQuotedOrEscaped(pattern, i, ignored)) continue;
    if (IsAmPm(pattern, i)) twelve_hour = true;
    any_field = any_field || IsDateLetter(AsciiLower(pattern[i]));
    ++i;
  }
  if (!any_field) return std::nullopt;

  const Date::Parts p = date.ToParts();
  // Day 0 (1899-12-30) was a Saturday; FromYmd counts whole days without the time.
  const auto days = static_cast<int64_t>(Date::FromYmd(p.year, p.month, p.day).serial);
  const int weekday = static_cast<int>((days % 7 + 7) % 7);
  std::string out;
  for (size_t i = 0; i < pattern.size();) {
    if (TakeQuotedOrEscaped(pattern, i, out)) continue;
    if (IsAmPm(pattern, i)) {
      const bool upper = pattern[i] == 'A';
      out += p.hour < 12 ? (upper ? "AM" : "am") : (upper ? "PM" : "pm");
      i += 5;
      continue;
    }
    const char letter = AsciiLower(pattern[i]);
    if (!IsDateLetter(letter)) {
      out += pattern[i++];
      continue;
    }
    size_t run = 1;
    while (i + run < pattern.size() && AsciiLower(pattern[i + run]) == letter) ++run;
    i += run;
    const int width = run >= 2 ? 2 : 1;
    switch (letter) {
      case 'd':
        if (run >= 4) {
          out += kDayNames[weekday];
        } else if (run == 3) {
          out.append(kDayNames[weekday], 3);
        } else {
          AppendPadded(out, p.day, width);
        }
        break;
      case 'm':
        if (run >= 4) {
          out += kMonthNames[p.month - 1];
        } else if (run == 3) {
          out.append(kMonthNames[p.month - 1], 3);
        } else {
          AppendPadded(out, p.month, width);
        }
        break;
      case 'y':
        if (run >= 3) {
          AppendPadded(out, p.year, 4);
        } else {
          AppendPadded(out, p.year % 100, 2);
        }
        break;
      case 'h': {
        int hour = p.hour;
        if (twelve_hour) hour = hour % 12 == 0 ? 12 : hour % 12;
        AppendPadded(out, hour, width);
        break;
      }
      case 'n':
        AppendPadded(out, p.minute, width);
        break;
      default:
        AppendPadded(out, p.second, width);
        break;
    }
  }
  return out;
}

std::optional<std::string> FormatBool(bool value, std::string_view pattern) {
  const std::vector<std::string_view> sections = SplitSections(pattern);
  if (sections.size() < 2) return std::nullopt;
  return LiteralText(sections[value ? 0 : 1]);
}

}  // namespace

std::string FormatValue(const Value& value, std::string_view pattern) {
  std::optional<std::string> text;
  switch (value.kind()) {
    case Value::Kind::kNull:
      return {};
    case Value::Kind::kDecimal:
    case Value::Kind::kDouble:
      text = FormatNumber(value, pattern);
      break;
    case Value::Kind::kDate:
      text = FormatDate(value.date(), pattern);
      break;
    case Value::Kind::kBool:
      text = FormatBool(value.boolean(), pattern);
      break;
    case Value::Kind::kText:
      break;
  }
  return text ? std::move(*text) : DisplayText(value);
}

}  // namespace vantorel::report::expr
