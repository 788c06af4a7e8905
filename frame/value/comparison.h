#pragma once

#include "tovalin/variant.h"

// The comparisons of the formula language. Null compares False with anything.

namespace tovalin {

namespace comparison {
bool LessSlow(const Variant& left, const Variant& right);
bool SameSlow(const Variant& left, const Variant& right);
bool EqualSlow(const Variant& left, const Variant& right);
bool EqualNumbers(double left, double right);
bool AnyNull(const Variant& left, const Variant& right);

inline bool BothDouble(const Variant& left, const Variant& right) {
  return left.Is(Subtype::Double) && right.Is(Subtype::Double);
}
}  // namespace comparison

/// "<": numeric when both are numbers (dates, Booleans and Empty count as such),
/// a Double or an amount beside a Single as a Single; otherwise their texts
/// compared character code by character code.
inline bool Less(const Variant& left, const Variant& right) {
  if (comparison::BothDouble(left, right)) return left.AsDouble() < right.AsDouble();
  return comparison::LessSlow(left, right);
}

/// ">"
inline bool Greater(const Variant& left, const Variant& right) { return Less(right, left); }

/// ">="
inline bool GreaterOrEqual(const Variant& left, const Variant& right) {
  if (comparison::BothDouble(left, right)) return left.AsDouble() >= right.AsDouble();
  return !comparison::AnyNull(left, right) && !comparison::LessSlow(left, right);
}

/// "<="
inline bool LessOrEqual(const Variant& left, const Variant& right) {
  return GreaterOrEqual(right, left);
}

/// "<>": exact and with regard to case. Deliberately not the opposite of Equal:
/// "a" and "A" are both equal and different, and formulas rely on each.
inline bool Different(const Variant& left, const Variant& right) {
  if (comparison::BothDouble(left, right)) return left.AsDouble() != right.AsDouble();
  return !comparison::AnyNull(left, right) && !comparison::SameSlow(left, right);
}

/// "=": when both are numbers or read as numbers, the numbers that their texts
/// show, so that 0.1 + 0.2 equals 0.3 and "1.0" equals 1; otherwise their texts
/// without regard to case.
inline bool Equal(const Variant& left, const Variant& right) {
  if (comparison::BothDouble(left, right))
    return left.AsDouble() == right.AsDouble() ||
           comparison::EqualNumbers(left.AsDouble(), right.AsDouble());
  return comparison::EqualSlow(left, right);
}

}  // namespace tovalin
