#include "evaluator/rounding.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>

#include "frame/system/power.h"
#include "frame/value/number_text.h"
#include "tovalin/error.h"

namespace tovalin::evaluator {
namespace {

constexpr int kSignificant = 15;
constexpr std::int32_t kMostDecimals = 22;  // the last whose power of ten is exact

/// The number that the first `count` of the digits make, at most kSignificant.
double LeadingDigits(const DecimalDigits& digits, int count) {
  double number = 0;
  for (int i = 0; i < count; ++i)
    number = number * 10 + (i < digits.count ? digits.digits[i] - '0' : 0);
  return number;
}

/// Whether what the digits say from `place` on rounds up, halves to the even digit.
bool RoundsUp(const DecimalDigits& digits, int place) {
  if (place >= digits.count) return false;
  if (digits.digits[place] != '5') return digits.digits[place] > '5';
  if (digits.count > place + 1) return true;
  return place > 0 && (digits.digits[place - 1] - '0') % 2 == 1;
}

// Powers that are exact, and so what RaisedTo gives.
double PowerOfTen(std::int32_t exponent) {
  static constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                       1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                       1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  static_assert(std::size(kPowers) == kMostDecimals + 1);
  return exponent >= 0 && exponent <= kMostDecimals ? kPowers[exponent] : RaisedTo(10.0, exponent);
}

// Fifteen digits and the scaling move a number by less than this part of it, so that
// only next to a boundary they tell on which side it lies. Not asking for them
// elsewhere buys most of the time of a rounding.
constexpr double kEpsilon = 1e-14;
constexpr double kEpsilonLimit = 1e13;

/// `value` rounded to `decimals`, unless it lies next to a half.
std::optional<double> RoundOffHalves(double value, std::int32_t decimals) {
  const double scaled = std::fabs(value) * PowerOfTen(decimals);
  if (!(scaled < kEpsilonLimit)) return std::nullopt;
  const double units = std::nearbyint(scaled);
  if (0.5 - std::fabs(scaled - units) <= kEpsilon * scaled) return std::nullopt;
  const double magnitude = units / PowerOfTen(decimals);
  return value < 0 && magnitude != 0 ? -magnitude : magnitude;
}

/// The greatest whole number that is not above `value`. Only a negative step
/// makes the value negative, and then too this rounds to the nearest multiple.
double WholePart(double value) {
  const double magnitude = std::fabs(value);
  if (magnitude < kEpsilonLimit && std::fabs(value - std::nearbyint(value)) > kEpsilon * magnitude)
    return std::floor(value);
  const DecimalDigits digits = ToDecimalDigits(Finite(value), kSignificant);
  if (digits.exponent >= kSignificant) return std::floor(value);
  const double whole = LeadingDigits(digits, digits.exponent);
  if (!digits.negative) return whole;
  return digits.count > digits.exponent ? -whole - 1 : -whole;
}

}  // namespace

double Finite(double value) {
  if (!std::isfinite(value)) Raise(Failure::Overflow);
  return value;
}

double RoundHalfEven(double value, std::int32_t decimals) {
  if (decimals < 0 || decimals > kMostDecimals) Raise(Failure::InvalidArgument);
  if (const auto rounded = RoundOffHalves(value, decimals)) return *rounded;
  const DecimalDigits digits = ToDecimalDigits(Finite(value), kSignificant);
  const int kept = digits.exponent + decimals;
  if (kept >= kSignificant) return decimals == 0 ? std::nearbyint(value) : value;
  if (kept < 0) return 0;
  const double units = LeadingDigits(digits, kept) + (RoundsUp(digits, kept) ? 1 : 0);
  const double magnitude = units / PowerOfTen(decimals);
  return digits.negative && magnitude != 0 ? -magnitude : magnitude;
}

double AjusteMedio(double value, double step, std::int32_t decimals) {
  if (step == 1 && decimals == 0) return value;
  if (value >= 0 && step == 1) return RoundHalfEven(value, decimals);
  if (step == 0) Raise(Failure::DivisionByZero);
  const double half = 5 * RaisedTo(10.0, -(static_cast<double>(decimals) + 1));
  const double steps =
      value < 0 ? -WholePart(-value / step + half) : WholePart(value / step + half);
  return Finite(steps * step) + 0.0;  // a zero without a sign
}

double Redondear(double value, std::int32_t n) {
  const double step = Finite(std::nearbyint(PowerOfTen(n)));
  return RoundHalfEven(AjusteMedio(value, step, 0), 0);
}

}  // namespace tovalin::evaluator
