#include "frame/value/arithmetic.h"

#include <concepts>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <utility>

#include "frame/system/power.h"
#include "frame/value/amount_product.h"
#include "frame/value/conversion.h"
#include "frame/value/promotion.h"
#include "tovalin/error.h"

namespace tovalin {
namespace {

using arithmetic::IsFinite;

// An amount is wider than Double in a sum, but becomes one in a product.
constexpr Subtype kSumOrder[] = {Subtype::Empty,    Subtype::Byte,   Subtype::Integer,
                                 Subtype::Long,     Subtype::Single, Subtype::Double,
                                 Subtype::Currency, Subtype::Date};
constexpr Subtype kProductOrder[] = {Subtype::Empty, Subtype::Byte,     Subtype::Integer,
                                     Subtype::Long,  Subtype::Currency, Subtype::Single,
                                     Subtype::Double};
constexpr Promotion kSums(kSumOrder);
constexpr Promotion kProducts(kProductOrder);

/// A whole result in `subtype`, or in the next wider one that holds it.
Variant Whole(Subtype subtype, std::int64_t value) {
  if (subtype == Subtype::Byte && std::in_range<std::uint8_t>(value))
    return static_cast<std::uint8_t>(value);
  if (subtype != Subtype::Long && std::in_range<std::int16_t>(value))
    return static_cast<std::int16_t>(value);
  if (std::in_range<std::int32_t>(value)) return static_cast<std::int32_t>(value);
  return static_cast<double>(value);
}

Variant Finite(double value) {
  if (!IsFinite(value)) Raise(Failure::Overflow);
  return value;
}

Variant SingleOrDouble(double value) {
  // Rounding twice does no harm: Double has more than twice the bits of Single.
  if (std::abs(value) <= static_cast<double>(std::numeric_limits<float>::max()))
    return static_cast<float>(value);
  return Finite(value);
}

Variant DateOrDouble(double days) {
  if (IsDateRange(days)) return Date{days};
  return Finite(days);
}

struct Plus {
  template <class T>
  static T Apply(T left, T right) {
    return left + right;
  }
  static bool Overflows(std::int64_t left, std::int64_t right, std::int64_t& result) {
    return __builtin_add_overflow(left, right, &result);
  }
};

struct Minus {
  template <class T>
  static T Apply(T left, T right) {
    return left - right;
  }
  static bool Overflows(std::int64_t left, std::int64_t right, std::int64_t& result) {
    return __builtin_sub_overflow(left, right, &result);
  }
};

struct Times {
  template <class T>
  static T Apply(T left, T right) {
    return left * right;
  }
};

/// The operation on two amounts, exact.
template <class Operation>
Currency ExactAmount(Currency left, Currency right) {
  Currency result;
  if (Operation::Overflows(left.ten_thousandths, right.ten_thousandths, result.ten_thousandths))
    Raise(Failure::Overflow);
  return result;
}

bool IsExactAmount(const Variant& value) {
  return !(value.Is(Subtype::Single) || value.Is(Subtype::Double) || value.Is(Subtype::String));
}

bool HasRoomInDouble(Currency value) {
  constexpr std::int64_t kLimit = std::int64_t{1} << 53;
  return value.ten_thousandths <= kLimit && value.ten_thousandths >= -kLimit;
}

/// A sum of amounts: exact, except that the platform computes amounts beyond
/// what Double holds to four decimals in Double, as it does those mixed with
/// fractional numbers. It falls back on the exact sum where Double would leave
/// the range: the largest amount plus 0 is still itself.
template <class Operation>
Variant AmountSum(const Variant& left, const Variant& right) {
  if (IsExactAmount(left) && IsExactAmount(right)) {
    const Currency first = ToCurrency(left);
    const Currency second = ToCurrency(right);
    if (HasRoomInDouble(first) && HasRoomInDouble(second))
      return Currency{Operation::Apply(first.ten_thousandths, second.ten_thousandths)};
  }
  if (const auto sum = CurrencyOf(Operation::Apply(ToDouble(left), ToDouble(right)))) return *sum;
  return ExactAmount<Operation>(ToCurrency(left), ToCurrency(right));
}

Currency Product(Currency left, Currency right) {
  const auto units = AmountProduct(left.ten_thousandths, right.ten_thousandths);
  if (!units) Raise(Failure::Overflow);
  return {*units};
}

/// The operation on two operands that are promoted to `subtype`.
template <class Operation>
Variant Compute(Subtype subtype, const Variant& left, const Variant& right) {
  switch (subtype) {
    case Subtype::Null:
      return Variant::Null();
    case Subtype::Byte:
    case Subtype::Integer:
    case Subtype::Long: {
      const std::int64_t first = ToLong(left);
      return Whole(subtype, Operation::Apply(first, std::int64_t{ToLong(right)}));
    }
    case Subtype::Currency:
      if constexpr (std::same_as<Operation, Times>)
        return Product(ToCurrency(left), ToCurrency(right));
      else
        return AmountSum<Operation>(left, right);
    case Subtype::Single:
    case Subtype::Double:
    case Subtype::Date: {
      const double first = ToDouble(left);
      const double result = Operation::Apply(first, ToDouble(right));
      if (subtype == Subtype::Single) return SingleOrDouble(result);
      return subtype == Subtype::Date ? DateOrDouble(result) : Finite(result);
    }
    default:
      Raise(Failure::TypeMismatch);
  }
}

bool IsTextOrEmpty(const Variant& value) {
  return value.Is(Subtype::String) || value.Is(Subtype::Empty);
}

bool AreJoined(const Variant& left, const Variant& right) {
  return IsTextOrEmpty(left) && IsTextOrEmpty(right) &&
         (left.Is(Subtype::String) || right.Is(Subtype::String));
}

}  // namespace

namespace arithmetic {

Variant Sum(const Variant& left, const Variant& right) {
  if (AreJoined(left, right)) return Concatenate(left, right);
  return Compute<Plus>(kSums.Common(left, right), left, right);
}

Variant Difference(const Variant& left, const Variant& right) {
  const bool dates = left.Is(Subtype::Date) && right.Is(Subtype::Date);
  return Compute<Minus>(dates ? Subtype::Double : kSums.Common(left, right), left, right);
}

Variant Product(const Variant& left, const Variant& right) {
  return Compute<Times>(kProducts.Common(left, right), left, right);
}

Variant Quotient(const Variant& left, const Variant& right) {
  const Subtype subtype = kProducts.Common(left, right);
  if (subtype == Subtype::Error) Raise(Failure::TypeMismatch);
  if (subtype == Subtype::Null) return Variant::Null();
  const double dividend = ToDouble(left);
  const double divisor = ToDouble(right);
  if (divisor == 0) Raise(dividend == 0 ? Failure::Overflow : Failure::DivisionByZero);
  const double quotient = dividend / divisor;
  return subtype == Subtype::Single ? SingleOrDouble(quotient) : Finite(quotient);
}

}  // namespace arithmetic

Variant Power(const Variant& left, const Variant& right) {
  const Subtype subtype = kProducts.Common(left, right);
  if (subtype == Subtype::Error) Raise(Failure::TypeMismatch);
  if (subtype == Subtype::Null) return Variant::Null();
  const double base = ToDouble(left);
  const double exponent = ToDouble(right);
  const bool undefined = (base == 0 && exponent < 0) ||
                         (base < 0 && IsFinite(exponent) && exponent != std::trunc(exponent));
  if (undefined) Raise(Failure::InvalidArgument);
  return Finite(RaisedTo(base, exponent));
}

Variant Negate(const Variant& value) {
  switch (value.Kind()) {
    case Subtype::Null:
      return Variant::Null();
    case Subtype::Single:
      return -value.AsSingle();
    case Subtype::Currency:
      return ExactAmount<Minus>({}, value.AsCurrency());
    case Subtype::Double:
    case Subtype::String:
      return Finite(-ToDouble(value));
    case Subtype::Date:
      return DateOrDouble(-value.AsDate().days);
    case Subtype::Long:
      return Whole(Subtype::Long, -std::int64_t{value.AsLong()});
    default:
      return Whole(Subtype::Integer, -std::int64_t{ToLong(value)});
  }
}

Variant Abs(const Variant& value) {
  switch (value.Kind()) {
    case Subtype::Null:
      return Variant::Null();
    case Subtype::Byte:
      return value.AsByte();
    case Subtype::Boolean:
    case Subtype::Empty:
      return Whole(Subtype::Integer, std::abs(std::int64_t{ToLong(value)}));
    case Subtype::Double:
    case Subtype::String:
      return std::abs(ToDouble(value));
    case Subtype::Single:
      return std::abs(value.AsSingle());
    default:
      return ToDouble(value) < 0 ? Negate(value) : value.Value();
  }
}

}  // namespace tovalin
