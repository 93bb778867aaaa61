#include "words/amount_in_words.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include "vantorel/error.h"

namespace vantorel {
namespace {

struct Row {
  double amount;
  const char* words;
};

// The worked results the documents have always printed, trailing blanks included.
const Row kWorkedResults[] = {
    {0, "ZERO ONLY"},
    {5, "FIVE ONLY"},
    {21, "TWENTY ONE ONLY"},
    {100, "ONE HUNDRED ONLY"},
    {1000, "ONE THOUSAND ONLY"},
    {105000.50, "ONE LAC FIVE THOUSAND & PAISA FIFTY ONLY "},
    {123456789, "TWELVE CRORE THIRTY FOUR LAC FIFTY SIX THOUSAND SEVEN HUNDRED EIGHTY NINE ONLY"},
    {1500000000, "FIFTY CRORE ONLY"},
    {12000000000, "ONE ARAB ONLY"},
    {-5, "FIVE ONLY"},
    {0.07, "& PAISA SEVEN ONLY "},
};

class WorkedResults : public ::testing::TestWithParam<Row> {};

TEST_P(WorkedResults, SpellsExactly) {
  EXPECT_EQ(AmountInWords(GetParam().amount), GetParam().words);
}

INSTANTIATE_TEST_SUITE_P(Table, WorkedResults, ::testing::ValuesIn(kWorkedResults));

TEST(AmountInWords, NegativeZeroIsZero) { EXPECT_EQ(AmountInWords(-0.0), "ZERO ONLY"); }

TEST(AmountInWords, LessThanHalfAPaisaSaysOnlyOnly) { EXPECT_EQ(AmountInWords(0.001), "ONLY"); }

TEST(AmountInWords, NegativeAmountsHaveNoSignWord) {
  EXPECT_EQ(AmountInWords(-105000.50), AmountInWords(105000.50));
}

TEST(AmountInWords, TenToTheNinthDigitIsNeverSpoken) {
  EXPECT_EQ(AmountInWords(1000000000), "ONLY");
  EXPECT_EQ(AmountInWords(9999999999),
            "NINETY NINE CRORE NINETY NINE LAC NINETY NINE THOUSAND "
            "NINE HUNDRED NINETY NINE ONLY");
  EXPECT_EQ(AmountInWords(23000000000), "TWO ARAB ONLY");
}

TEST(AmountInWords, DigitsAboveTheEleventhAreLost) {
  // 1,23,45,67,89,012: only the last fourteen characters of the picture count.
  EXPECT_EQ(AmountInWords(123456789012.0), AmountInWords(23456789012.0));
  EXPECT_EQ(AmountInWords(100000000000.0), "ONLY");
}

TEST(AmountInWords, PaisaOnlyBeginsWithPaisa) {
  EXPECT_EQ(AmountInWords(0.99), "& PAISA NINETY NINE ONLY ");
  EXPECT_EQ(AmountInWords(0.5), "& PAISA FIFTY ONLY ");
}

TEST(AmountInWords, PaisaAreRoundedByTheFormatting) {
  EXPECT_EQ(AmountInWords(1250.499), "ONE THOUSAND TWO HUNDRED FIFTY & PAISA FIFTY ONLY ");
  EXPECT_EQ(AmountInWords(1250.996), "ONE THOUSAND TWO HUNDRED FIFTY ONE ONLY");
}

TEST(AmountInWords, EveryWordOfTheTable) {
  EXPECT_EQ(AmountInWords(11), "ELEVEN ONLY");
  EXPECT_EQ(AmountInWords(19), "NINETEEN ONLY");
  EXPECT_EQ(AmountInWords(40), "FORTY ONLY");
  EXPECT_EQ(AmountInWords(99), "NINETY NINE ONLY");
  EXPECT_EQ(AmountInWords(999), "NINE HUNDRED NINETY NINE ONLY");
  EXPECT_EQ(AmountInWords(1250.50), "ONE THOUSAND TWO HUNDRED FIFTY & PAISA FIFTY ONLY ");
  EXPECT_EQ(AmountInWords(6000000), "SIXTY LAC ONLY");
}

TEST(AmountInWords, GroupsAreJoinedWithoutAnd) {
  EXPECT_EQ(AmountInWords(101), "ONE HUNDRED ONE ONLY");
  EXPECT_EQ(AmountInWords(100001), "ONE LAC ONE ONLY");
}

TEST(AmountInWords, NonFiniteAmountIsAnOverflowError) {
  try {
    AmountInWords(std::numeric_limits<double>::infinity());
    FAIL() << "expected an error";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errnum::kOverflow);
  }
  EXPECT_THROW(AmountInWords(std::nan("")), Error);
}

struct UnspokenRow {
  double amount;
  const char* full;  // nullptr: every digit is spoken
  const char* left_out;
};

const UnspokenRow kUnspoken[] = {
    {0, nullptr, nullptr},
    {105000.50, nullptr, nullptr},
    {999999999.99, nullptr, nullptr},
    {-999999999.99, nullptr, nullptr},
    {10000000000, nullptr, nullptr},
    {12000000000, "12,00,00,00,000.00", "2,00,00,00,000"},
    {1500000000, "1,50,00,00,000.00", "1,00,00,00,000"},
    {23000000000, "23,00,00,00,000.00", "3,00,00,00,000"},
    {123456789012.5, "1,23,45,67,89,012.50", "1,03,00,00,00,000"},
    {100000000000, "1,00,00,00,00,000.00", "1,00,00,00,00,000"},
    {-1000000000, "1,00,00,00,000.00", "1,00,00,00,000"},
    // Rounding to paisa carries into the 10^9 digit.
    {999999999.999, "1,00,00,00,000.00", "1,00,00,00,000"},
};

class Unspoken : public ::testing::TestWithParam<UnspokenRow> {};

TEST_P(Unspoken, NamesWhatTheWordsSpell) {
  const UnspokenRow& row = GetParam();
  const std::optional<UnspokenDigits> found = FindUnspokenDigits(row.amount);
  if (row.full == nullptr) {
    EXPECT_FALSE(found.has_value()) << found->amount;
    return;
  }
  ASSERT_TRUE(found.has_value());
  EXPECT_EQ(found->amount, row.full);
  EXPECT_EQ(found->left_out, row.left_out);
}

INSTANTIATE_TEST_SUITE_P(Table, Unspoken, ::testing::ValuesIn(kUnspoken));

TEST(AmountInWords, WhatIsLeftOutChangesNoWord) {
  for (const double amount : {1500000000.0, 123456789012.5, 23000000000.0, 12000000000.0}) {
    const UnspokenDigits found = FindUnspokenDigits(amount).value();
    std::string digits;
    for (const char c : found.left_out) {
      if (c != ',') digits += c;
    }
    EXPECT_EQ(AmountInWords(amount - std::stod(digits)), AmountInWords(amount)) << found.left_out;
  }
}

}  // namespace
}  // namespace vantorel
