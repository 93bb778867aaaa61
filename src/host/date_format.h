// Dates as text: the d/m/y pictures the documents use ("dd-mm-yyyy", "YYYY/MM/DD") and the
// regional short date form.
//
// Thread-safety: pure functions.
#ifndef VANTOREL_HOST_DATE_FORMAT_H_
#define VANTOREL_HOST_DATE_FORMAT_H_

#include <string>
#include <string_view>

#include "vantorel/platform.h"
#include "vantorel/types.h"

namespace vantorel {

// Formats "date" by "picture": d/dd day, m/mm month, yy/yyyy year (letters in either case), "/"
// the regional "separator"; any other character stands for itself. "date" must be valid.
std::string FormatDate(Date date, std::string_view picture, char separator);

// The host's ordinary date-to-text conversion: the regional short date, followed by the time of
// day (" HH:MM:SS") when the date carries one.
std::string ShortDateText(Date date, const RegionalDateSettings& regional);

// Regional settings from a C library date format such as "%d/%m/%y"; nullopt when the format is
// not a plain numeric day-month-year form (the C locale's, or one with month names).
std::optional<RegionalDateSettings> RegionalFromDateFormat(std::string_view d_fmt);

}  // namespace vantorel

#endif  // VANTOREL_HOST_DATE_FORMAT_H_
