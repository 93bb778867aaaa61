// The demo data's pseudo-random numbers: xoshiro256** seeded through splitmix64. Integer-only,
// so a seed gives the same data on every machine and compiler.
//
// Thread-safety: not thread-safe; one generator per run.
#ifndef VANTOREL_DEMO_RANDOM_H_
#define VANTOREL_DEMO_RANDOM_H_

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace vantorel::demo {

class Random {
 public:
  explicit Random(uint64_t seed) {
    for (uint64_t& word : state_) {
      seed += 0x9e3779b97f4a7c15ULL;
      uint64_t z = seed;
      z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
      z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
      word = z ^ (z >> 31);
    }
  }

  uint64_t Next() {
    const uint64_t result = Rotl(state_[1] * 5, 7) * 9;
    const uint64_t t = state_[1] << 17;
    state_[2] ^= state_[0];
    state_[3] ^= state_[1];
    state_[1] ^= state_[2];
    state_[0] ^= state_[3];
    state_[2] ^= t;
    state_[3] = Rotl(state_[3], 45);
    return result;
  }

  // 0 <= result < n.
  int Below(int n) {
    if (n <= 0) throw std::logic_error("Random::Below needs a positive bound");
    return static_cast<int>(Next() % static_cast<uint64_t>(n));
  }
  // lo <= result <= hi.
  int Between(int lo, int hi) { return lo + Below(hi - lo + 1); }
  int64_t Between64(int64_t lo, int64_t hi) {
    return lo + static_cast<int64_t>(Next() % static_cast<uint64_t>(hi - lo + 1));
  }
  // True with a probability of "percent" in a hundred.
  bool Percent(int percent) { return Below(100) < percent; }

  template <typename T>
  const T& Pick(const std::vector<T>& items) {
    return items.at(static_cast<size_t>(Below(static_cast<int>(items.size()))));
  }
  // An index chosen with the given integer weights.
  int Weighted(const std::vector<int>& weights) {
    int total = 0;
    for (int w : weights) total += w;
    int roll = Below(total);
    for (size_t i = 0; i < weights.size(); ++i) {
      if (roll < weights[i]) return static_cast<int>(i);
      roll -= weights[i];
    }
    return static_cast<int>(weights.size()) - 1;
  }
  // "count" decimal digits.
  std::string Digits(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += static_cast<char>('0' + Below(10));
    return text;
  }
  // "letters" capital letters then "digits" digits: "AB1234". Drawn in that order, so callers
  // never depend on the unspecified order in which a compiler evaluates operands.
  std::string Code(int letters, int digits) {
    std::string text = Letters(letters);
    return text + Digits(digits);
  }
  // "count" capital letters from "alphabet".
  std::string Letters(int count, const char* alphabet = "ABCDEFGHJKLMNPRSTUVWXYZ") {
    std::string text;
    const std::string letters = alphabet;
    for (int i = 0; i < count; ++i)
      text += letters[static_cast<size_t>(Below(static_cast<int>(letters.size())))];
    return text;
  }

 private:
  static uint64_t Rotl(uint64_t x, int k) { return (x << k) | (x >> (64 - k)); }

  uint64_t state_[4];
};

}  // namespace vantorel::demo

#endif  // VANTOREL_DEMO_RANDOM_H_
