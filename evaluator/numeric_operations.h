#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "evaluator/number_helpers.h"
#include "frame/system/power.h"
#include "frame/value/arithmetic.h"
#include "frame/value/comparison.h"
#include "tovalin/convert.h"

// The operations of numeric programs on doubles, each written once: a program of
// one row and a block of rows instantiate the same template. A Boolean is 1 or 0.
// What has no result here (a division by zero, an argument that raises) is no
// number (NaN); the plan is evaluated by values then, so that each rule of a value
// stands in one place.

namespace tovalin {

enum class NumericCode : std::uint8_t {
  None,  // no operation on doubles
  Load,  // pushes its operand
  Add,
  Subtract,
  Multiply,
  Divide,
  Power,
  TimesNegated,
  Less,
  LessOrEqual,
  Greater,
  GreaterOrEqual,
  Equal,
  Different,
  And,
  Or,
  Min,
  Max,
  Round,   // Redondear
  Negate,  // of the right operand, as Abs
  Abs,
  Choose,  // IIF
  Adjust,  // AjusteMedio
};

inline constexpr std::size_t kNumericCodes = static_cast<std::size_t>(NumericCode::Adjust) + 1;
inline constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

constexpr int OperandsOf(NumericCode code) {
  if (code >= NumericCode::Choose) return 3;
  return code == NumericCode::Negate || code == NumericCode::Abs ? 1 : 2;
}

/// Whether a result may be finite when the left operand, or the right one, is not:
/// a sum, difference or product of what is not finite is not finite either.
constexpr bool MayHideLeft(NumericCode code) {
  return (code >= NumericCode::Less && code <= NumericCode::Different) ||
         (code >= NumericCode::Or && code <= NumericCode::Max) || code == NumericCode::Choose;
}
constexpr bool MayHideRight(NumericCode code) {
  return MayHideLeft(code) || code == NumericCode::Divide;
}

namespace numeric {

inline double IfDefinedPower(double base, double exponent) {
  const bool is_defined =
      arithmetic::IsFinite(base) && arithmetic::IsFinite(exponent) &&
      (base > 0 || (base == 0 ? exponent >= 0 : exponent == std::trunc(exponent)));
  return is_defined ? RaisedTo(base, exponent) : kNoNumber;
}

/// What `compute` gives, or no number where it raises.
template <class Function>
double IfNoneRaises(Function compute) {
  try {
    return compute();
  } catch (const Error&) {
    return kNoNumber;
  }
}

}  // namespace numeric

/// The result of an operation of one or two operands, of which finite ones give
/// what the operation of values gives, to the last bit.
template <NumericCode kCode>
[[gnu::always_inline]] inline double Compute(double left, double right) {
  using enum NumericCode;
  if constexpr (kCode == Add) return left + right;
  if constexpr (kCode == Subtract) return left - right;
  if constexpr (kCode == Multiply || kCode == And) return left * right;
  if constexpr (kCode == Divide) return left / right;
  if constexpr (kCode == Power) return numeric::IfDefinedPower(left, right);
  if constexpr (kCode == TimesNegated) return left * right * -1;
  if constexpr (kCode == Less) return left < right ? 1 : 0;
  if constexpr (kCode == LessOrEqual) return left <= right ? 1 : 0;
  if constexpr (kCode == Greater) return left > right ? 1 : 0;
  if constexpr (kCode == GreaterOrEqual) return left >= right ? 1 : 0;
  if constexpr (kCode == Equal)
    return left == right || comparison::EqualNumbers(left, right) ? 1 : 0;
  if constexpr (kCode == Different) return left != right ? 1 : 0;
  if constexpr (kCode == Min) return left < right ? left : right;
  if constexpr (kCode == Max || kCode == Or) return left > right ? left : right;
  if constexpr (kCode == Negate) return right * -1;
  if constexpr (kCode == Abs) return std::fabs(right);
  if constexpr (kCode == Round)
    return numeric::IfNoneRaises([=] { return evaluator::Redondear(left, ToLong(right)); });
}

/// The same of an operation of three.
template <NumericCode kCode>
[[gnu::always_inline]] inline double Compute(double first, double left, double right) {
  if constexpr (kCode == NumericCode::Choose)
    return first != 0 ? left : right;
  else
    return numeric::IfNoneRaises(
        [=] { return evaluator::AjusteMedio(first, left, ToLong(right)); });
}

}  // namespace tovalin
