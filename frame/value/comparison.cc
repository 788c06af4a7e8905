#include "frame/value/comparison.h"

#include <algorithm>
#include <cmath>
#include <compare>
#include <cstring>
#include <limits>
#include <optional>

#include "frame/value/number_text.h"
#include "tovalin/convert.h"

namespace tovalin::comparison {
namespace {

bool CountsAsNumber(const Variant& value) {
  return value.Is(Subtype::Date) || (!value.Is(Subtype::String) && IsNumeric(value));
}

bool BothCurrency(const Variant& left, const Variant& right) {
  return left.Is(Subtype::Currency) && right.Is(Subtype::Currency);
}

bool IsFraction(const Variant& value) {
  return value.Is(Subtype::Double) || value.Is(Subtype::Currency);
}

// A Single meets a fractional number in its own few digits.
bool MeetAsSingle(const Variant& left, const Variant& right) {
  return (left.Is(Subtype::Single) && IsFraction(right)) ||
         (IsFraction(left) && right.Is(Subtype::Single));
}

bool FitsSingle(double value) {
  return std::fabs(value) <= double{std::numeric_limits<float>::max()};
}

// How the numbers of two values compare; none where a value is no number.
std::optional<std::partial_ordering> CompareNumbers(const Variant& left, const Variant& right) {
  if (!CountsAsNumber(left) || !CountsAsNumber(right)) return std::nullopt;
  if (BothCurrency(left, right)) return left.AsCurrency() <=> right.AsCurrency();
  const double first = ToDouble(left);
  const double second = ToDouble(right);
  if (!MeetAsSingle(left, right) || !FitsSingle(first) || !FitsSingle(second))
    return first <=> second;
  return static_cast<float>(first) <=> static_cast<float>(second);
}

// The number that the value's text shows, for values that have one.
std::optional<double> ShownNumber(const Variant& value) {
  if (value.Is(Subtype::Single)) return ReadNumber(ToText(value));
  if (CountsAsNumber(value)) return ToDouble(value);
  return value.Is(Subtype::String) ? ReadNumber(value.AsText()) : std::nullopt;
}

}  // namespace

bool AnyNull(const Variant& left, const Variant& right) {
  return left.Is(Subtype::Null) || right.Is(Subtype::Null);
}

bool LessSlow(const Variant& left, const Variant& right) {
  if (AnyNull(left, right)) return false;
  if (const auto order = CompareNumbers(left, right)) return *order < 0;
  return ToText(left) < ToText(right);
}

bool SameSlow(const Variant& left, const Variant& right) {
  if (const auto order = CompareNumbers(left, right)) return *order == 0;
  return ToText(left) == ToText(right);
}

bool EqualSlow(const Variant& left, const Variant& right) {
  if (AnyNull(left, right)) return false;
  if (BothCurrency(left, right)) return left.AsCurrency() == right.AsCurrency();
  const std::optional<double> left_number = ShownNumber(left);
  const std::optional<double> right_number = left_number ? ShownNumber(right) : std::nullopt;
  if (left_number && right_number) return EqualNumbers(*left_number, *right_number);
  return EqualFolded(ToText(left), ToText(right));
}

bool EqualNumbers(double left, double right) {
  if (left == right) return true;
  // Numbers further apart than one unit of the fifteenth digit show different
  // texts; only neighbours need their digits.
  const double reach = 1e-14 * std::max(std::fabs(left), std::fabs(right));
  if (!(std::fabs(left - right) <= reach) || !std::isfinite(reach)) return false;
  const DecimalDigits a = ToDecimalDigits(left, kDoubleDigits);
  const DecimalDigits b = ToDecimalDigits(right, kDoubleDigits);
  return a.negative == b.negative && a.exponent == b.exponent && a.count == b.count &&
         std::memcmp(a.digits, b.digits, static_cast<std::size_t>(a.count)) == 0;
}

}  // namespace tovalin::comparison
