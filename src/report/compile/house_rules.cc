#include "report/compile/house_rules.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string_view>

#include "report/expr/text_util.h"
#include "report/text/text_layout.h"

namespace vantorel::report {
namespace {

// The tallest band the rules treat as a table row.
constexpr double kMaxRowHeightMm = 20;

// "points" in millimetres, to one decimal.
std::string Millimetres(float points) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", static_cast<double>(points) * 25.4 / 72);
  return text;
}

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t' || text.front() == '\n')) {
    text.remove_prefix(1);
  }
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\n')) {
    text.remove_suffix(1);
  }
  return text;
}

// A numeric display pattern and the widest value it writes.
struct NumberFormat {
  std::string pattern;
  // Two decimals with digit grouping: an amount; two decimals without: a rate in per cent;
  // otherwise a quantity.
  enum class Kind { kAmount, kRate, kQuantity } kind = Kind::kQuantity;
  std::string widest;  // the widest value as the pattern writes it
};

std::optional<NumberFormat> NumericPattern(std::string_view pattern) {
  if (pattern.empty()) return std::nullopt;
  // A pattern that does not suit a number shows its display text; one that does writes it its
  // own way, and the decimals it keeps tell amounts from quantities.
  const expr::Value probe = expr::Value::Number(*expr::Decimal::Parse("12345.678901234"));
  const std::string shown = expr::FormatValue(probe, pattern);
  if (shown == expr::DisplayText(probe) || shown.find_first_of("0123456789") == std::string::npos) {
    return std::nullopt;
  }
  // The decimals it always shows (those of "0.00", not the optional ones of "0.##").
  const std::string one = expr::FormatValue(expr::Value::Integer(1), pattern);
  size_t decimals = 0;
  if (const size_t point = one.find('.'); point != std::string::npos) {
    while (point + 1 + decimals < one.size() && one[point + 1 + decimals] >= '0' &&
           one[point + 1 + decimals] <= '9') {
      ++decimals;
    }
  }
  NumberFormat format{std::string(pattern), NumberFormat::Kind::kQuantity, {}};
  const char* widest = kWidestQuantity;
  if (decimals == 2 && shown.find(',') != std::string::npos) {
    format.kind = NumberFormat::Kind::kAmount;
    widest = kWidestAmount;
  } else if (decimals == 2) {
    format.kind = NumberFormat::Kind::kRate;
    widest = kWidestRate;
  }
  format.widest = expr::FormatValue(expr::Value::Number(*expr::Decimal::Parse(widest)), pattern);
  return format;
}

// What a date display pattern writes at its longest (the longest month and weekday names), or
// nullopt when "pattern" is not one.
std::optional<std::string> WidestDate(std::string_view pattern) {
  if (pattern.empty()) return std::nullopt;
  const expr::Value date = expr::Value::FromDate(Date::FromYmd(2024, 9, 25));  // a Wednesday
  std::string shown = expr::FormatValue(date, pattern);
  if (shown == expr::DisplayText(date)) return std::nullopt;
  return shown;
}

// The pattern of "Format(x, pattern)" or "FormatDate(x, pattern)" written as "call", with which
// of the two; nullopt for any other expression.
struct FormatCall {
  bool date = false;
  std::string pattern;
};

std::optional<FormatCall> AsFormatCall(std::string_view call) {
  call = Trimmed(call);
  FormatCall found;
  const std::string upper = expr::AsciiUpper(call.substr(0, std::min<size_t>(call.size(), 10)));
  size_t at = 0;
  if (upper.rfind("FORMATDATE", 0) == 0) {
    found.date = true;
    at = 10;
  } else if (upper.rfind("FORMAT", 0) == 0) {
    at = 6;
  } else {
    return std::nullopt;
  }
  while (at < call.size() && call[at] == ' ') ++at;
  if (at >= call.size() || call[at] != '(' || call.back() != ')') return std::nullopt;
  // The last argument at the call's own level.
  int depth = 0;
  char quote = 0;
  size_t last_comma = std::string_view::npos;
  for (size_t i = at + 1; i + 1 < call.size(); ++i) {
    const char c = call[i];
    if (quote != 0) {
      if (c == quote) quote = 0;  // a doubled quote closes and reopens
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '(') {
      ++depth;
    } else if (c == ')') {
      if (--depth < 0) return std::nullopt;  // the call ends before the last bracket
    } else if (c == ',' && depth == 0) {
      last_comma = i;
    }
  }
  if (last_comma == std::string_view::npos || quote != 0) return std::nullopt;
  const std::string_view argument =
      Trimmed(call.substr(last_comma + 1, call.size() - 2 - last_comma));
  if (argument.size() < 2 || (argument.front() != '"' && argument.front() != '\'') ||
      argument.back() != argument.front()) {
    return std::nullopt;
  }
  const char q = argument.front();
  for (size_t i = 1; i + 1 < argument.size(); ++i) {
    found.pattern += argument[i];
    if (argument[i] == q) ++i;  // a doubled quote is one
  }
  return found;
}

// What a text prints at its longest, as far as its template tells.
struct Longest {
  bool known = true;                  // false: it reads a value of any length
  std::string text;                   // its literal text with each value at its widest
  std::vector<NumberFormat> numbers;  // the numeric formats it prints with
};

Longest LongestOf(const CompiledReport& report, const CompiledText& object) {
  Longest longest;
  const std::string& source = object.source_text;
  const auto spans = ExpressionSpans(source);
  const auto literal = [&](size_t from, size_t to) {
    for (size_t i = from; i < to; ++i) {
      longest.text += source[i];
      if (source[i] == '[' && i + 1 < to && source[i + 1] == '[') ++i;  // "[[" prints "["
    }
  };
  const bool single = spans.size() == 1 && object.text && object.text->single();
  size_t copied = 0;
  for (const auto& [begin, end] : spans) {
    literal(copied, begin);
    copied = end;
    const std::string_view inner =
        Trimmed(std::string_view(source).substr(begin + 1, end - begin - 2));
    const std::string name = expr::AsciiUpper(inner);
    if (single && !object.format.empty()) {
      if (auto number = NumericPattern(object.format)) {
        longest.text += number->widest;
        longest.numbers.push_back(std::move(*number));
        continue;
      }
      if (auto date = WidestDate(object.format)) {
        longest.text += *date;
        continue;
      }
    }
    if (name == "PAGE" || name == "TOTALPAGES") {
      longest.text += "999";
    } else if (name == "LINE") {
      longest.text += "9999";
    } else if (name == "COPY") {
      longest.text += "9";
    } else if (name == "DATE") {
      longest.text += "99-99-9999";
    } else if (name == "TIME") {
      longest.text += "99:99";
    } else if (name == "NOW") {
      longest.text += "99-99-9999 99:99";
    } else if (name == "COPYLABEL") {
      std::string widest;
      for (const std::string& label : report.copies.labels) {
        if (label.size() > widest.size()) widest = label;
      }
      longest.text += widest;
    } else if (const auto call = AsFormatCall(inner)) {
      if (auto number = call->date ? std::nullopt : NumericPattern(call->pattern)) {
        longest.text += number->widest;
        longest.numbers.push_back(std::move(*number));
      } else if (auto date = WidestDate(call->pattern)) {
        longest.text += *date;
      } else {
        longest.known = false;
      }
    } else {
      longest.known = false;
    }
  }
  literal(copied, source.size());
  return longest;
}

// The first 60 characters of "text".
std::string Beginning(const std::string& text) {
  size_t end = 0;
  for (size_t characters = 0; end < text.size(); ++end) {
    if ((static_cast<unsigned char>(text[end]) & 0xC0) != 0x80 && ++characters > 60) break;
  }
  return end < text.size() ? text.substr(0, end) + "\u2026" : text;
}

std::string Named(const CompiledText& text) {
  return text.name.empty() ? "a text" : "text \"" + text.name + "\"";
}

class HouseRules {
 public:
  HouseRules(const CompiledReport& report, const HouseRuleOptions& options) : report_(report) {
    for (const std::string& name : options.run_time_texts) {
      run_time_texts_.push_back(expr::AsciiUpper(name));
    }
  }

  std::vector<Problem> Check() {
    const CompiledReport& r = report_;
    // In the order bands print, which is near enough the template's; sorted by line at the end.
    for (const auto* band : {&r.title, &r.page_header, &r.column_header}) {
      if (*band) Band(**band);
    }
    for (const CompiledData& data : r.data) Data(data);
    for (const auto* band : {&r.summary, &r.column_footer, &r.page_footer}) {
      if (*band) Band(**band);
    }
    std::stable_sort(problems_.begin(), problems_.end(),
                     [](const Problem& a, const Problem& b) { return a.line < b.line; });
    return std::move(problems_);
  }

 private:
  void Data(const CompiledData& data) {
    if (data.header) Band(*data.header);
    for (const CompiledGroup& group : data.groups) {
      if (group.header) Band(*group.header);
    }
    Band(data.band);
    for (const CompiledData& detail : data.details) Data(detail);
    for (const CompiledGroup& group : data.groups) {
      if (group.footer) Band(*group.footer);
    }
    if (data.footer) Band(*data.footer);
  }

  void Band(const CompiledBand& band) {
    for (const CompiledObject& object : band.objects) {
      if (const auto* text = std::get_if<CompiledText>(&object)) Text(*text, band);
    }
    for (const CompiledBand& child : band.children) Band(child);
  }

  void Text(const CompiledText& text, const CompiledBand& band) {
    const TextStyle& style = report_.styles[text.style];
    const Longest longest = LongestOf(report_, text);
    const SizeF box{text.box.width, text.box.height};
    const int rotation = ((style.rotation % 360) + 360) % 360;
    const bool sideways = rotation == 90 || rotation == 270;
    bool too_narrow = false;
    for (const NumberFormat& number : longest.numbers) {
      // The widest value must fit across the box on one line, with the text around it when all
      // of that is known.
      const std::string& line = longest.known ? longest.text : number.widest;
      const float needed = text::MeasureText(line, style, 0).width +
                           (sideways ? style.padding.top + style.padding.bottom
                                     : style.padding.left + style.padding.right);
      const float available = sideways ? box.height : box.width;
      if (needed <= available + 0.01f) continue;
      too_narrow = true;
      Add(text,
          (number.kind == NumberFormat::Kind::kAmount ? "the amount in "
           : number.kind == NumberFormat::Kind::kRate ? "the rate in "
                                                      : "the quantity in ") +
              Named(text) + " (\"" + number.pattern + "\") is too narrow for " + number.widest +
              ": needs " + Millimetres(needed) + " mm, has " + Millimetres(available) + " mm",
          "make it at least " + Millimetres(needed) + " mm wide, or its font smaller");
    }
    const bool grows =
        band.stretch && (text.stretch == StretchMode::kGrow || text.stretch == StretchMode::kCell);
    if (!style.wrap || grows || text.source_text.empty()) return;
    const std::string how_to_grow =
        band.stretch ? "give it stretch=\"grow\" (stretch=\"cell\" in a table row)"
                     : "its band has stretch=\"false\": let the band stretch and give the text "
                       "stretch=\"grow\" (stretch=\"cell\" in a table row)";
    const bool set_at_run_time =
        !text.name.empty() && std::find(run_time_texts_.begin(), run_time_texts_.end(),
                                        expr::AsciiUpper(text.name)) != run_time_texts_.end();
    // A field in a table row holds whatever the data brings, so the row must grow with it; in a
    // form's fixed block (a title, a summary) a field has the room its layout gives it, and the
    // fill reports a value that does not fit (Document::overflows).
    // A row is a band printed once per record and no taller than a few lines; a data band that
    // prints a whole page per record (a sale letter, a certificate) is a form.
    const bool row = (band.kind == BandKind::kData ||
                      (band.kind == BandKind::kChild && band.place.kind == BandKind::kChild)) &&
                     band.height <= static_cast<float>(Mm(kMaxRowHeightMm));
    if (set_at_run_time || (!longest.known && row)) {
      Add(text,
          Named(text) + " can wrap but its box cannot grow: a long " +
              (set_at_run_time ? "text set at run time" : "value") + " is cut off",
          how_to_grow + ", or wrap=\"false\" to keep it on one line");
      return;
    }
    if (too_narrow || !longest.known) return;
    const text::BoxFit fit = text::FitInBox(longest.text, style, box);
    if (fit.fits) return;
    Add(text,
        Named(text) + " does not fit its box at its longest: needs " + Millimetres(fit.needed) +
            " mm" + (fit.across ? " of width" : "") + ", has " + Millimetres(fit.available) + " mm",
        "\"" + Beginning(longest.text) + "\"; make the box larger or the font smaller, or " +
            how_to_grow);
  }

  void Add(const CompiledText& text, std::string message, std::string hint) {
    problems_.push_back({report_.file, text.line, std::move(message), std::move(hint)});
  }

  const CompiledReport& report_;
  std::vector<std::string> run_time_texts_;
  std::vector<Problem> problems_;
};

}  // namespace

std::vector<Problem> CheckHouseRules(const CompiledReport& report,
                                     const HouseRuleOptions& options) {
  return HouseRules(report, options).Check();
}

}  // namespace vantorel::report
