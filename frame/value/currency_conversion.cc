#include <cmath>
#include <cstdint>
#include <limits>

#include "frame/value/conversion.h"
#include "frame/value/number_reading.h"
#include "tovalin/error.h"

namespace tovalin {
namespace {

constexpr double kUnitsPerWhole = 10000;

/// The text of an amount without going through Double, so that all of its
/// digits count.
Currency TextToCurrency(TextView text) {
  const NumberText number = ScanNumber(text);
  if (number.form == NumberText::Form::None) Raise(Failure::TypeMismatch);
  // Deliberate: the platform has no amounts for "&H1F" and its like.
  if (number.form == NumberText::Form::Bits) Raise(Failure::Overflow);
  const DecimalDigits& decimal = number.decimal;
  const int places = decimal.exponent + 4;  // digits before the end of the fourth decimal
  if (places < 0) return {};
  if (places > std::numeric_limits<std::uint64_t>::digits10) Raise(Failure::Overflow);
  std::uint64_t units = decimal.Leading(places);
  const char next = decimal.At(places);
  const bool half_only = decimal.count == places + 1;
  if (next > '5' || (next == '5' && (!half_only || units % 2 != 0))) ++units;
  const std::uint64_t limit = std::uint64_t{1} << 63;
  if (units > limit || (units == limit && !decimal.negative)) Raise(Failure::Overflow);
  return {static_cast<std::int64_t>(decimal.negative ? 0 - units : units)};
}

/// What is missing from the rounded `product` of `value` and 10000, because the
/// product itself was rounded first: it may look like a half and be none, and a
/// large one is only near to the amount. `rest` is what its rounding left.
std::int64_t Correction(double value, double product, double rest) {
  const double error = std::fma(value, kUnitsPerWhole, -product);
  if (rest == 0.5) return error > 0 ? 1 : 0;
  if (rest == -0.5) return error < 0 ? -1 : 0;
  return static_cast<std::int64_t>(std::nearbyint(error));
}

}  // namespace

std::optional<Currency> CurrencyOf(double value) {
  constexpr double kLimit = 0x1p63;
  const double product = value * kUnitsPerWhole;
  const double nearest = std::nearbyint(product);
  if (!(nearest >= -kLimit && nearest < kLimit)) return std::nullopt;
  std::int64_t units = 0;
  if (__builtin_add_overflow(static_cast<std::int64_t>(nearest),
                             Correction(value, product, product - nearest), &units))
    return std::nullopt;
  return Currency{units};
}

Currency ToCurrency(const Variant& value) {
  if (value.Is(Subtype::Currency)) return value.AsCurrency();
  if (value.Is(Subtype::String)) return TextToCurrency(value.AsText());
  const auto amount = CurrencyOf(ToDouble(value));
  if (!amount) Raise(Failure::Overflow);
  return *amount;
}

}  // namespace tovalin
