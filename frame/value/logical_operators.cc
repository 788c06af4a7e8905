#include <cmath>
#include <cstdint>
#include <utility>

#include "frame/value/arithmetic.h"
#include "tovalin/convert.h"
#include "tovalin/error.h"

namespace tovalin {
namespace {

/// What a subtype is to logic: itself, or the whole number that it counts as.
Subtype LogicSubtype(const Variant& value) {
  switch (value.Kind()) {
    case Subtype::Null:
    case Subtype::Byte:
    case Subtype::Boolean:
    case Subtype::String:
      return value.Kind();
    case Subtype::Empty:
    case Subtype::Integer:
      return Subtype::Integer;
    case Subtype::Long:
    case Subtype::Single:
    case Subtype::Double:
    case Subtype::Currency:
    case Subtype::Date:
      return Subtype::Long;
    default:
      Raise(Failure::TypeMismatch);
  }
}

/// The subtype of the result. A text beside a Boolean, an Integer or a Long counts as that
/// and is a Long by itself; Null counts as whatever is beside it.
Subtype CommonSubtype(Subtype left, Subtype right) {
  if (left == Subtype::Null) std::swap(left, right);
  if (right == Subtype::Null) right = left;
  if (left == right) return left == Subtype::String ? Subtype::Long : left;
  if (left == Subtype::Long || right == Subtype::Long) return Subtype::Long;
  if (left == Subtype::String) std::swap(left, right);
  return left == Subtype::Boolean && right == Subtype::String ? Subtype::Boolean : Subtype::Integer;
}

std::int32_t BitsOf(const Variant& value, Subtype subtype) {
  const bool word = value.Is(Subtype::String) && !IsNumeric(value);
  if (subtype == Subtype::Boolean || word) return ToBoolean(value) ? -1 : 0;
  return ToLong(value);
}

/// Whether And gives 0 with whatever stands beside it. Numbers beyond a Long have
/// bits, which nobody needs to know beside Null.
bool HasNoBits(const Variant& value) {
  if (value.Is(Subtype::Null)) return false;
  const bool word = value.Is(Subtype::String) && !IsNumeric(value);
  return word ? !ToBoolean(value) : std::nearbyint(ToDouble(value)) == 0;
}

Variant FromBits(std::int32_t bits, Subtype subtype) {
  switch (subtype) {
    case Subtype::Null:
      return Variant::Null();
    case Subtype::Boolean:
      return bits != 0;
    case Subtype::Byte:
      return static_cast<std::uint8_t>(bits);
    default:
      break;
  }
  // A text may bring in more bits than the Integer beside it has.
  if (subtype == Subtype::Integer && std::in_range<std::int16_t>(bits))
    return static_cast<std::int16_t>(bits);
  return bits;
}

}  // namespace

Variant And(const Variant& left, const Variant& right) {
  const Subtype subtype = CommonSubtype(LogicSubtype(left), LogicSubtype(right));
  if (left.Is(Subtype::Null) || right.Is(Subtype::Null)) {
    const Variant& other = left.Is(Subtype::Null) ? right : left;
    return HasNoBits(other) ? FromBits(0, subtype) : Variant::Null();
  }
  const std::int32_t bits = BitsOf(left, subtype);
  return FromBits(bits & BitsOf(right, subtype), subtype);
}

Variant Or(const Variant& left, const Variant& right) {
  const Subtype subtype = CommonSubtype(LogicSubtype(left), LogicSubtype(right));
  if (left.Is(Subtype::Null) || right.Is(Subtype::Null)) {
    const Variant& other = left.Is(Subtype::Null) ? right : left;
    const std::int32_t bits = other.Is(Subtype::Null) ? 0 : BitsOf(other, subtype);
    return bits == 0 ? Variant::Null() : FromBits(bits, subtype);
  }
  const std::int32_t bits = BitsOf(left, subtype);
  return FromBits(bits | BitsOf(right, subtype), subtype);
}

}  // namespace tovalin
