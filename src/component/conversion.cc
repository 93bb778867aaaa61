#include "component/conversion.h"

#include <strings.h>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

#include "host/date_format.h"
#include "vantorel/platform.h"

namespace vantorel {
namespace {

[[noreturn]] void Mismatch(const Variant& value, VarType type, int argument) {
  throw DispatchError(disp::kTypeMismatch,
                      std::string("Type mismatch: cannot convert ") + VarTypeName(value.type()) +
                          " to " + VarTypeName(type),
                      argument);
}

[[noreturn]] void Overflow(VarType type, int argument) {
  throw DispatchError(disp::kOverflow,
                      std::string("Overflow: value out of range for ") + VarTypeName(type),
                      argument);
}

std::string_view Trim(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

// A whole text read as a number: optional sign, digits, a full stop, an exponent; or &H / &O.
std::optional<double> ParseNumber(std::string_view text) {
  text = Trim(text);
  if (text.size() > 2 && text[0] == '&') {
    const int base = (text[1] == 'H' || text[1] == 'h')   ? 16
                     : (text[1] == 'O' || text[1] == 'o') ? 8
                                                          : 0;
    if (base == 0) return std::nullopt;
    int64_t value = 0;
    const auto [end, ec] = std::from_chars(text.data() + 2, text.data() + text.size(), value, base);
    if (ec != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return static_cast<double>(value);
  }
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  double value = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
  return value;
}

std::optional<Date> ParseDate(std::string_view text) {
  text = Trim(text);
  if (auto iso = Date::FromIso(text)) return iso;
  // The regional short form, as a host writes dates for its user.
  const RegionalDateSettings regional = CurrentPlatform()->RegionalDates();
  int parts[3] = {0, 0, 0};
  int count = 0;
  size_t pos = 0;
  while (count < 3) {
    int value = 0;
    const auto [end, ec] = std::from_chars(text.data() + pos, text.data() + text.size(), value);
    if (ec != std::errc()) return std::nullopt;
    parts[count++] = value;
    pos = static_cast<size_t>(end - text.data());
    if (count < 3) {
      if (pos >= text.size() || text[pos] != regional.separator) return std::nullopt;
      ++pos;
    }
  }
  if (pos != text.size()) return std::nullopt;
  // The order of day, month and year follows the short date picture.
  int day = 0, month = 0, year = 0;
  const std::string& picture = regional.short_date;
  const size_t d = picture.find_first_of("dD"), m = picture.find_first_of("mM"),
               y = picture.find_first_of("yY");
  if (d == std::string::npos || m == std::string::npos || y == std::string::npos) {
    return std::nullopt;
  }
  day = parts[(d > m) + (d > y)];
  month = parts[(m > d) + (m > y)];
  year = parts[(y > d) + (y > m)];
  if (year < 100) year += year < 30 ? 2000 : 1900;
  if (year > 9999 || month < 1 || month > 12 || day < 1 || day > 31) return std::nullopt;
  char buffer[16];
  const int n = std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d", year, month, day);
  if (n != 10) return std::nullopt;
  return Date::FromIso(std::string_view(buffer, 10));
}

// The value of a numeric, boolean or date variant as a double.
std::optional<double> NumericValue(const Variant& value) {
  switch (value.type()) {
    case VarType::kEmpty:
      return 0.0;
    case VarType::kI2:
    case VarType::kI4:
    case VarType::kI8:
    case VarType::kUI1:
    case VarType::kBool:
      return static_cast<double>(value.integer());
    case VarType::kR8:
    case VarType::kDate:
      return value.real();
    case VarType::kString:
      return ParseNumber(value.text());
    default:
      return std::nullopt;
  }
}

template <typename T>
T ToInteger(const Variant& value, VarType type, int argument) {
  const std::optional<double> number = NumericValue(value);
  if (!number) Mismatch(value, type, argument);
  const double rounded = RoundHalfEven(*number);
  if (!(rounded >= static_cast<double>(std::numeric_limits<T>::min()) &&
        rounded <= static_cast<double>(std::numeric_limits<T>::max()))) {
    Overflow(type, argument);
  }
  return static_cast<T>(rounded);
}

std::string NumberText(double value) {
  char buffer[64];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
  return std::string(buffer, end);
}

}  // namespace

DispatchError::DispatchError(int32_t code, std::string description, int argument)
    : Error(code, "Vantorel.CRepoter", std::move(description)), argument_(argument) {}

double RoundHalfEven(double value) {
  const double floor = std::floor(value);
  const double diff = value - floor;
  if (diff < 0.5) return floor;
  if (diff > 0.5) return floor + 1;
  return std::fmod(floor, 2.0) == 0 ? floor : floor + 1;
}

Variant ChangeType(const Variant& value, VarType type, int argument) {
  if (type == VarType::kVariant || value.type() == type) return value;
  if (value.type() == VarType::kNull || value.type() == VarType::kError) {
    Mismatch(value, type, argument);
  }
  switch (type) {
    case VarType::kI2:
      return Variant::I2(ToInteger<int16_t>(value, type, argument));
    case VarType::kI4:
      return Variant::I4(ToInteger<int32_t>(value, type, argument));
    case VarType::kI8:
      return Variant::I8(ToInteger<int64_t>(value, type, argument));
    case VarType::kUI1:
      return Variant::UI1(ToInteger<uint8_t>(value, type, argument));
    case VarType::kR8: {
      const std::optional<double> number = NumericValue(value);
      if (!number) Mismatch(value, type, argument);
      return Variant::R8(*number);
    }
    case VarType::kBool: {
      if (value.type() == VarType::kString) {
        const std::string_view text = Trim(value.text());
        if (text.size() == 4 && ::strncasecmp(text.data(), "true", 4) == 0) {
          return Variant::Bool(kTrue);
        }
        if (text.size() == 5 && ::strncasecmp(text.data(), "false", 5) == 0) {
          return Variant::Bool(kFalse);
        }
      }
      const std::optional<double> number = NumericValue(value);
      if (!number) Mismatch(value, type, argument);
      return Variant::Bool(*number != 0 ? kTrue : kFalse);
    }
    case VarType::kDate: {
      if (value.type() == VarType::kString) {
        const std::optional<Date> date = ParseDate(value.text());
        if (!date) Mismatch(value, type, argument);
        return Variant::FromDate(*date);
      }
      const std::optional<double> number = NumericValue(value);
      if (!number) Mismatch(value, type, argument);
      if (!Date{*number}.IsValid()) Overflow(type, argument);
      return Variant::FromDate(Date{*number});
    }
    case VarType::kString:
      switch (value.type()) {
        case VarType::kEmpty:
          return Variant::String("");
        case VarType::kBool:
          return Variant::String(value.integer() != 0 ? "True" : "False");
        case VarType::kR8:
          return Variant::String(NumberText(value.real()));
        case VarType::kDate:
          if (!Date{value.real()}.IsValid()) Overflow(type, argument);
          return Variant::String(
              ShortDateText(Date{value.real()}, CurrentPlatform()->RegionalDates()));
        default: {
          char buffer[24];
          const auto end = std::to_chars(buffer, buffer + sizeof buffer, value.integer()).ptr;
          return Variant::String(std::string(buffer, end));
        }
      }
    default:
      Mismatch(value, type, argument);
  }
}

}  // namespace vantorel
