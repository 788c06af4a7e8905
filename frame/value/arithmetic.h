#pragma once

#include <cmath>
#include <limits>

#include "tovalin/variant.h"

namespace tovalin {

// The platform's arithmetic on values. Operands widen to a common subtype; a
// whole result that does not fit moves on to the next wider one, an amount that
// does not fit raises 6, and so does any result beyond Double. Null with any
// number or text gives Null. Texts count as Double and raise 13 when they do not
// read as numbers; so does an operand that is no number at all (an object, an
// array, an error code).

namespace arithmetic {  // of all pairs of subtypes

Variant Sum(const Variant& left, const Variant& right);
Variant Difference(const Variant& left, const Variant& right);
Variant Product(const Variant& left, const Variant& right);
Variant Quotient(const Variant& left, const Variant& right);

inline bool AreDoubles(const Variant& left, const Variant& right) {
  return left.Is(Subtype::Double) && right.Is(Subtype::Double);
}

inline bool IsFinite(double value) { return std::abs(value) <= std::numeric_limits<double>::max(); }

}  // namespace arithmetic

/// Two texts, or a text and Empty, are joined instead of added.
inline Variant Add(const Variant& left, const Variant& right) {
  if (arithmetic::AreDoubles(left, right)) {
    const double sum = left.AsDouble() + right.AsDouble();
    if (arithmetic::IsFinite(sum)) return sum;
  }
  return arithmetic::Sum(left, right);
}

/// A Date minus a Date is a Double, other differences with a Date are Dates.
inline Variant Subtract(const Variant& left, const Variant& right) {
  if (arithmetic::AreDoubles(left, right)) {
    const double difference = left.AsDouble() - right.AsDouble();
    if (arithmetic::IsFinite(difference)) return difference;
  }
  return arithmetic::Difference(left, right);
}

inline Variant Multiply(const Variant& left, const Variant& right) {
  if (arithmetic::AreDoubles(left, right)) {
    const double product = left.AsDouble() * right.AsDouble();
    if (arithmetic::IsFinite(product)) return product;
  }
  return arithmetic::Product(left, right);
}

/// Raises 11 when the divisor is 0, but 6 for 0 divided by 0.
inline Variant Divide(const Variant& left, const Variant& right) {
  if (arithmetic::AreDoubles(left, right) && right.AsDouble() != 0) {
    const double quotient = left.AsDouble() / right.AsDouble();
    if (arithmetic::IsFinite(quotient)) return quotient;
  }
  return arithmetic::Quotient(left, right);
}

/// A Double. Raises 5 for a negative base with a fractional exponent, and for 0
/// with a negative one. Anything to the power 0 is 1.
Variant Power(const Variant& left, const Variant& right);

Variant Negate(const Variant& value);
Variant Abs(const Variant& value);

/// Bit by bit on whole numbers, rounded if need be; the result is a Boolean when
/// both are. Null with what decides alone (False for And, True for Or) gives
/// that, else Null. The texts "True" and "False" are operands too.
Variant And(const Variant& left, const Variant& right);
Variant Or(const Variant& left, const Variant& right);

/// The texts of both, one after the other. Null counts as the empty text, unless
/// both are Null: then the result is Null.
Variant Concatenate(const Variant& left, const Variant& right);

/// The same for a left operand that is a temporary: a text that nobody else holds
/// grows in place, so that a chain of joins takes linear time.
Variant Concatenate(Variant&& left, const Variant& right);

}  // namespace tovalin
