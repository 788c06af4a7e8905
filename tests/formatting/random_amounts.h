#pragma once

#include <cstdint>
#include <random>

namespace tovalin {

/// Whole amounts below 10^15. Groups of 0, 1, 21 and 100 are where numerals, scales
/// and "mil" go wrong: they are drawn often, and so are short amounts.
class RandomAmounts {
 public:
  explicit RandomAmounts(std::uint64_t seed) : random_(seed) {}

  std::int64_t Whole() {
    std::int64_t amount = 0;
    for (int groups = Below(5); groups >= 0; --groups) amount = 1000 * amount + Group();
    return amount;
  }
  int Below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }

 private:
  int Group() {
    static constexpr int kHard[] = {0, 0, 1, 21, 100};
    const int kind = Below(10);
    return kind < 5 ? kHard[kind] : Below(1000);
  }

  std::mt19937_64 random_;
};

}  // namespace tovalin
