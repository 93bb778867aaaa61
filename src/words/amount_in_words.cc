#include "words/amount_in_words.h"

#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>

#include "vantorel/error.h"

namespace vantorel {
namespace {

constexpr std::array<std::string_view, 20> kUnits = {
    "",         "ONE",     "TWO",     "THREE",     "FOUR",     "FIVE",    "SIX",
    "SEVEN",    "EIGHT",   "NINE",    "TEN",       "ELEVEN",   "TWELVE",  "THIRTEEN",
    "FOURTEEN", "FIFTEEN", "SIXTEEN", "SEVENTEEN", "EIGHTEEN", "NINETEEN"};
constexpr std::array<std::string_view, 10> kTens = {
    "", "", "TWENTY", "THIRTY", "FORTY", "FIFTY", "SIXTY", "SEVENTY", "EIGHTY", "NINETY"};

// The word for 0..99: tens word, a blank, units word; 0 is empty.
std::string Word(int n) {
  if (n < 20) return std::string(kUnits[n]);
  std::string word(kTens[n / 10]);
  if (n % 10 != 0) {
    word += ' ';
    word += kUnits[n % 10];
  }
  return word;
}

int Digits(std::string_view s, size_t from_end, size_t count) {
  int n = 0;
  for (char c : s.substr(s.size() - from_end, count)) n = n * 10 + (c - '0');
  return n;
}

// The picture "00000000000.00": at least eleven integer digits, two decimals, no sign.
std::string Picture(double amount) {
  if (!std::isfinite(amount)) {
    throw Error(errnum::kOverflow, "AmountInWords", "The amount is not a finite number");
  }
  char buffer[400];
  const auto [end, ec] =
      std::to_chars(buffer, buffer + sizeof buffer, std::fabs(amount), std::chars_format::fixed, 2);
  std::string text(buffer, end);
  if (text.size() < 14) text.insert(0, 14 - text.size(), '0');
  return text;
}

// "001500000000.00" as "1,50,00,00,000.00": leading zeros dropped, the last three integer digits
// together, then pairs.
std::string IndianGrouping(std::string_view picture) {
  std::string_view whole = picture.substr(0, picture.size() - 3);
  while (whole.size() > 1 && whole.front() == '0') whole.remove_prefix(1);
  std::string grouped;
  for (size_t i = 0; i < whole.size(); ++i) {
    const size_t left = whole.size() - i;
    if (i > 0 && left >= 3 && (left - 3) % 2 == 0) grouped += ',';
    grouped += whole[i];
  }
  grouped += picture.substr(picture.size() - 3);
  return grouped;
}

}  // namespace

std::optional<UnspokenDigits> FindUnspokenDigits(double amount) {
  const std::string text = Picture(amount);
  // Places counted from the units digit, which is the fourth character from the end.
  std::string left_out(text.size(), '0');
  left_out[text.size() - 3] = '.';
  const size_t units = text.size() - 4;
  bool dropped = false;
  for (size_t place = 9; place <= units; ++place) {
    if (place == 10) continue;
    left_out[units - place] = text[units - place];
    dropped |= text[units - place] != '0';
  }
  if (!dropped) return std::nullopt;
  const std::string whole = IndianGrouping(left_out);
  return UnspokenDigits{IndianGrouping(text), whole.substr(0, whole.size() - 3)};
}

std::string AmountInWords(double amount) {
  if (amount == 0) return "ZERO ONLY";
  // Only the last fourteen characters of the picture are read, so the sign and digits beyond the
  // eleventh drop out.
  const std::string text = Picture(amount);

  struct Group {
    size_t from_end, count;
    std::string_view suffix;
  };
  static constexpr Group kGroups[] = {{14, 1, " ARAB "},    {12, 2, " CRORE "},  {10, 2, " LAC "},
                                      {8, 2, " THOUSAND "}, {6, 1, " HUNDRED "}, {5, 2, " "}};
  std::string words;
  for (const Group& g : kGroups) {
    const int n = Digits(text, g.from_end, g.count);
    if (n != 0) {
      words += Word(n);
      words += g.suffix;
    }
  }
  const int paisa = Digits(text, 2, 2);
  if (paisa == 0) {
    words += "ONLY";
  } else {
    words += "& PAISA ";
    words += Word(paisa);
    words += " ONLY ";
  }
  return words;
}

}  // namespace vantorel
