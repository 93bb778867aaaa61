#include "host/date_format.h"

#include <cctype>
#include <charconv>

namespace vantorel {
namespace {

void AppendNumber(std::string& out, int value, int width) {
  char buffer[16];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
  const int length = static_cast<int>(end - buffer);
  if (length < width) out.append(static_cast<size_t>(width - length), '0');
  out.append(buffer, end);
}

size_t RunLength(std::string_view picture, size_t pos) {
  const char c = static_cast<char>(std::tolower(static_cast<unsigned char>(picture[pos])));
  size_t n = 0;
  while (pos + n < picture.size() &&
         std::tolower(static_cast<unsigned char>(picture[pos + n])) == c) {
    ++n;
  }
  return n;
}

}  // namespace

std::string FormatDate(Date date, std::string_view picture, char separator) {
  const Date::Parts p = date.ToParts();
  std::string out;
  for (size_t i = 0; i < picture.size();) {
    const char c = static_cast<char>(std::tolower(static_cast<unsigned char>(picture[i])));
    const size_t run = (c == 'd' || c == 'm' || c == 'y') ? RunLength(picture, i) : 1;
    switch (c) {
      case 'd':
        AppendNumber(out, p.day, run >= 2 ? 2 : 1);
        break;
      case 'm':
        AppendNumber(out, p.month, run >= 2 ? 2 : 1);
        break;
      case 'y':
        if (run >= 3) {
          AppendNumber(out, p.year, 4);
        } else {
          AppendNumber(out, p.year % 100, 2);
        }
        break;
      case '/':
        out += separator;
        break;
      default:
        out += picture[i];
    }
    i += run;
  }
  return out;
}

std::string ShortDateText(Date date, const RegionalDateSettings& regional) {
  std::string text = FormatDate(date, regional.short_date, regional.separator);
  const Date::Parts p = date.ToParts();
  if (p.hour != 0 || p.minute != 0 || p.second != 0) {
    text += ' ';
    AppendNumber(text, p.hour, 2);
    text += ':';
    AppendNumber(text, p.minute, 2);
    text += ':';
    AppendNumber(text, p.second, 2);
  }
  return text;
}

std::optional<RegionalDateSettings> RegionalFromDateFormat(std::string_view d_fmt) {
  RegionalDateSettings settings;
  settings.short_date.clear();
  char separator = 0;
  int fields = 0;
  for (size_t i = 0; i < d_fmt.size(); ++i) {
    if (d_fmt[i] == '%' && i + 1 < d_fmt.size()) {
      const char conversion = d_fmt[++i];
      switch (conversion) {
        case 'd':
          settings.short_date += "dd";
          break;
        case 'e':
          settings.short_date += "d";
          break;
        case 'm':
          settings.short_date += "mm";
          break;
        // Documents always carry four-digit years, even where the locale abbreviates them.
        case 'y':
        case 'Y':
          settings.short_date += "yyyy";
          break;
        default:
          return std::nullopt;  // names of days or months: not a short numeric form
      }
      ++fields;
    } else if (std::isalnum(static_cast<unsigned char>(d_fmt[i])) || d_fmt[i] == ' ') {
      return std::nullopt;
    } else {
      if (separator == 0) separator = d_fmt[i];
      settings.short_date += d_fmt[i] == separator ? '/' : d_fmt[i];
    }
  }
  if (fields != 3 || separator == 0) return std::nullopt;
  settings.separator = separator;
  return settings;
}

}  // namespace vantorel
