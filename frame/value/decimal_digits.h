#pragma once

#include <array>
#include <cstdint>

namespace tovalin {

/// The decimal digits to which a Double and a Single are exact.
inline constexpr int kDoubleDigits = 15;
inline constexpr int kSingleDigits = 7;

/// Every whole number below it is exact in Double and has at most kDoubleDigits digits.
inline constexpr double kWholeLimit = 1e15;

/// 10^exponent for -3 to 22. From 1 on they are exact; those below are the nearest
/// Doubles, which lie above the power.
constexpr double PowerOfTen(int exponent) {
  constexpr double kPowers[] = {1e-3, 1e-2, 1e-1, 1e0,  1e1,  1e2,  1e3,  1e4,  1e5,
                                1e6,  1e7,  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14,
                                1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  return kPowers[exponent + 3];
}
inline constexpr int kMostExactPower = 22;

/// 10^exponent for 0 to 19.
constexpr std::uint64_t WholePowerOfTen(int exponent) {
  constexpr auto kPowers = [] {
    std::array<std::uint64_t, 20> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
    return powers;
  }();
  return kPowers[static_cast<std::size_t>(exponent)];
}

/// A number in decimal: 0.d1d2d3... x 10^exponent, with the digits as the
/// characters '0' to '9' and no zeros at either end. Zero has count 0.
struct DecimalDigits {
  static constexpr int kMost = 40;

  bool negative = false;
  int count = 0;
  int exponent = 0;
  char digits[kMost];

  /// The digit at an index; '0' before the first one and behind the last.
  char At(std::int64_t index) const { return index >= 0 && index < count ? digits[index] : '0'; }
  /// The number that the first `length` digits make, at most 19; of fewer than none, 0.
  std::uint64_t Leading(int length) const;
  /// Leaves the first `keep` digits and rounds the last of them, halves up; fewer than
  /// none leave zero.
  void Round(std::int64_t keep);
  void DropZerosAtEnd();
};

}  // namespace tovalin
