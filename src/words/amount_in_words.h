// Money amounts in upper-case English words in the Indian numbering system (lac, crore, arab)
// with paisa, as the documents print them after "RUPEES : ".
//
// Thread-safety: a pure function.
#ifndef VANTOREL_WORDS_AMOUNT_IN_WORDS_H_
#define VANTOREL_WORDS_AMOUNT_IN_WORDS_H_

#include <string>

namespace vantorel {

// Spells "amount": 105000.50 gives "ONE LAC FIVE THOUSAND & PAISA FIFTY ONLY " (with the trailing
// blank), 0 gives "ZERO ONLY". The amount is rounded to paisa and read as eleven integer digits;
// the sign, digits above 10^10 and the 10^9 digit are never spoken (1,50,00,00,000 is "FIFTY
// CRORE ONLY"), exactly as the dealership's documents have always printed it. Throws an overflow
// error for an infinite or NaN amount.
std::string AmountInWords(double amount);

}  // namespace vantorel

#endif  // VANTOREL_WORDS_AMOUNT_IN_WORDS_H_
