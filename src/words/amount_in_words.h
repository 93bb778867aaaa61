// Money amounts in upper-case English words in the Indian numbering system (lac, crore, arab)
// with paisa, as the documents print them after "RUPEES : ".
//
// Thread-safety: a pure function.
#ifndef VANTOREL_WORDS_AMOUNT_IN_WORDS_H_
#define VANTOREL_WORDS_AMOUNT_IN_WORDS_H_

#include <optional>
#include <string>

namespace vantorel {

// Spells "amount": 105000.50 gives "ONE LAC FIVE THOUSAND & PAISA FIFTY ONLY " (with the trailing
// blank), 0 gives "ZERO ONLY". The amount is rounded to paisa and read as eleven integer digits;
// the sign, digits above 10^10 and the 10^9 digit are never spoken (1,50,00,00,000 is "FIFTY
// CRORE ONLY"), exactly as the dealership's documents have always printed it. Throws an overflow
// error for an infinite or NaN amount.
std::string AmountInWords(double amount);

// Digits of an amount that AmountInWords leaves out, for a warning to whoever reads the words.
struct UnspokenDigits {
  std::string amount;  // the amount rounded to paisa, no sign, Indian grouping: "1,50,00,00,000.00"
  std::string left_out;  // the part the words leave out, as a whole number: "1,00,00,00,000"
};

// The unspoken digits of "amount" (the 10^9 digit and every digit from 10^11 up, once rounded to
// paisa), or nullopt when the words spell every digit. The sign is not a digit: check it apart.
// Throws as AmountInWords does.
std::optional<UnspokenDigits> FindUnspokenDigits(double amount);

}  // namespace vantorel

#endif  // VANTOREL_WORDS_AMOUNT_IN_WORDS_H_
