#include "words/amount_in_words.h"

#include <array>
#include <charconv>
#include <cmath>
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

}  // namespace

std::string AmountInWords(double amount) {
  if (amount == 0) return "ZERO ONLY";
  if (!std::isfinite(amount)) {
    throw Error(errnum::kOverflow, "AmountInWords", "The amount is not a finite number");
  }
  // The picture "00000000000.00": at least eleven integer digits, two decimals. Only the last
  // fourteen characters are read, so the sign and digits beyond the eleventh drop out.
  char buffer[400];
  const auto [end, ec] =
      std::to_chars(buffer, buffer + sizeof buffer, std::fabs(amount), std::chars_format::fixed, 2);
  std::string text(buffer, end);
  if (text.size() < 14) text.insert(0, 14 - text.size(), '0');

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
