#include "frame/value/amount_product.h"

#include <limits>

// Not with __int128, which compilers for 32 bits do not have.

namespace tovalin {
namespace {

constexpr std::uint64_t kUnitsPerWhole = 10000;

struct Wide {
  std::uint64_t high;
  std::uint64_t low;
};

std::uint64_t LowHalf(std::uint64_t value) { return value & 0xFFFFFFFF; }

Wide Multiply(std::uint64_t left, std::uint64_t right) {
  const std::uint64_t low_low = LowHalf(left) * LowHalf(right);
  const std::uint64_t high_low = (left >> 32) * LowHalf(right) + (low_low >> 32);
  const std::uint64_t low_high = LowHalf(left) * (right >> 32) + LowHalf(high_low);
  return {(left >> 32) * (right >> 32) + (high_low >> 32) + (low_high >> 32),
          low_high << 32 | LowHalf(low_low)};
}

std::uint64_t Magnitude(std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  return value < 0 ? 0 - bits : bits;
}

}  // namespace

std::optional<std::int64_t> AmountProduct(std::int64_t left, std::int64_t right) {
  const Wide product = Multiply(Magnitude(left), Magnitude(right));
  if (product.high >= kUnitsPerWhole) return std::nullopt;  // the quotient needs more than 64 bits
  // A division on paper, whose two digits have 32 bits each.
  const std::uint64_t first = product.high << 32 | product.low >> 32;
  const std::uint64_t second = first % kUnitsPerWhole << 32 | LowHalf(product.low);
  const std::uint64_t units = first / kUnitsPerWhole << 32 | second / kUnitsPerWhole;

  const std::uint64_t twice = 2 * (second % kUnitsPerWhole);
  const bool away = twice > kUnitsPerWhole || (twice == kUnitsPerWhole && units % 2 != 0);
  const bool negative = (left < 0) != (right < 0);
  const std::uint64_t limit = std::uint64_t{std::numeric_limits<std::int64_t>::max()} + negative;
  if (units > limit - away) return std::nullopt;
  const std::uint64_t rounded = units + away;
  return static_cast<std::int64_t>(negative ? 0 - rounded : rounded);
}

}  // namespace tovalin
