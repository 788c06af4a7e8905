#include "forms/value_checks.h"

#include "frame/value/arithmetic.h"
#include "tovalin/convert.h"

namespace tovalin {

// A negative power gives 1. Deliberate: hosts that count factors down would get
// a fraction instead of the neutral factor.
Variant WholePower(const Variant& base, const Variant& power) {
  const std::int16_t times = ToInteger(power);
  Variant product = std::int16_t{1};
  for (std::int16_t i = 0; i < times; ++i) product = Multiply(product, base);
  return product;
}

bool IsBlank(TextView text) { return Trim(text).empty(); }

bool IsNoValue(const Variant& value) {
  if (value.Is(Subtype::Empty) || value.Is(Subtype::Null)) return true;
  return IsBlank(value.Is(Subtype::String) ? value.AsText() : ToText(value));
}

bool PassesAs(const Variant& value, std::int16_t type) {
  switch (static_cast<Subtype>(type)) {
    case Subtype::Integer:
    case Subtype::Long:
    case Subtype::Single:
    case Subtype::Double:
    case Subtype::Currency:
      return IsNumeric(value);
    case Subtype::Date:
      return IsDate(value);
    default:
      return static_cast<std::uint16_t>(value.Kind()) == type;
  }
}

}  // namespace tovalin
