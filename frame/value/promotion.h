#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "tovalin/variant.h"

namespace tovalin {

/// The common subtype to which two operands are promoted, computed beforehand for every
/// pair: Null when one is Null, Error when one is no operand of arithmetic.
class Promotion {
 public:
  /// `order` names the subtypes from the narrowest to the widest; operands are promoted
  /// to the wider one of theirs.
  explicit constexpr Promotion(std::span<const Subtype> order) {
    for (std::size_t left = 0; left < kCodes; ++left)
      for (std::size_t right = 0; right < kCodes; ++right)
        table_[left][right] = Join(order, static_cast<Subtype>(left), static_cast<Subtype>(right));
  }

  Subtype Common(const Variant& left, const Variant& right) const {
    return table_[Index(left.Kind())][Index(right.Kind())];
  }

 private:
  static constexpr std::size_t kCodes = 18;  // the codes of the scalar subtypes are below

  static constexpr std::size_t Index(Subtype subtype) {
    const auto code = static_cast<std::size_t>(subtype);
    return code < kCodes ? code : static_cast<std::size_t>(Subtype::Error);
  }

  /// The subtype of the order that a subtype counts as.
  static constexpr Subtype Operand(std::span<const Subtype> order, Subtype subtype) {
    if (std::ranges::find(order, subtype) != order.end()) return subtype;
    if (subtype == Subtype::Boolean) return Subtype::Integer;
    if (subtype == Subtype::String || subtype == Subtype::Date) return Subtype::Double;
    return subtype == Subtype::Null ? Subtype::Null : Subtype::Error;
  }

  static constexpr Subtype Join(std::span<const Subtype> order, Subtype left, Subtype right) {
    left = Operand(order, left);
    right = Operand(order, right);
    if (left == Subtype::Error || right == Subtype::Error) return Subtype::Error;
    if (left == Subtype::Null || right == Subtype::Null) return Subtype::Null;
    const auto rank = [order](Subtype subtype) { return std::ranges::find(order, subtype); };
    const auto narrow = std::min(rank(left), rank(right));
    const auto wide = std::max(rank(left), rank(right));
    if (*wide == Subtype::Empty) return Subtype::Integer;
    // A Single has not the digits of a Long or of an amount.
    if (*wide == Subtype::Single && *narrow != *wide && narrow > rank(Subtype::Integer))
      return Subtype::Double;
    return *wide;
  }

  std::array<std::array<Subtype, kCodes>, kCodes> table_{};
};

}  // namespace tovalin
