#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "tovalin/variant.h"

namespace tovalin {

/// The subtype in which two operands meet, worked out beforehand for every pair:
/// Null when one is Null, Error when one is no operand of arithmetic.
class Widening {
 public:
  /// `ladder` names the subtypes from the narrowest to the widest; operands meet
  /// in the wider one of theirs.
  explicit constexpr Widening(std::span<const Subtype> ladder) {
    for (std::size_t left = 0; left < kCodes; ++left)
      for (std::size_t right = 0; right < kCodes; ++right)
        table_[left][right] = Join(ladder, static_cast<Subtype>(left), static_cast<Subtype>(right));
  }

  Subtype Meet(const Variant& left, const Variant& right) const {
    return table_[Index(left.Kind())][Index(right.Kind())];
  }

 private:
  static constexpr std::size_t kCodes = 18;  // the codes of the scalar subtypes are below

  static constexpr std::size_t Index(Subtype subtype) {
    const auto code = static_cast<std::size_t>(subtype);
    return code < kCodes ? code : static_cast<std::size_t>(Subtype::Error);
  }

  /// What a subtype that the ladder leaves out counts as.
  static constexpr Subtype Stand(std::span<const Subtype> ladder, Subtype subtype) {
    if (std::ranges::find(ladder, subtype) != ladder.end()) return subtype;
    if (subtype == Subtype::Boolean) return Subtype::Integer;
    if (subtype == Subtype::String || subtype == Subtype::Date) return Subtype::Double;
    return subtype == Subtype::Null ? Subtype::Null : Subtype::Error;
  }

  static constexpr Subtype Join(std::span<const Subtype> ladder, Subtype left, Subtype right) {
    left = Stand(ladder, left);
    right = Stand(ladder, right);
    if (left == Subtype::Error || right == Subtype::Error) return Subtype::Error;
    if (left == Subtype::Null || right == Subtype::Null) return Subtype::Null;
    const auto rung = [ladder](Subtype subtype) { return std::ranges::find(ladder, subtype); };
    const auto narrow = std::min(rung(left), rung(right));
    const auto wide = std::max(rung(left), rung(right));
    if (*wide == Subtype::Empty) return Subtype::Integer;
    // A Single has not the digits of a Long or of an amount.
    if (*wide == Subtype::Single && *narrow != *wide && narrow > rung(Subtype::Integer))
      return Subtype::Double;
    return *wide;
  }

  std::array<std::array<Subtype, kCodes>, kCodes> table_{};
};

}  // namespace tovalin
