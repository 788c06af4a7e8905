#include "formatting/cents.h"

#include <cmath>

#include "formatting/argument_error.h"
#include "frame/text/characters.h"
#include "frame/value/number_reading.h"
#include "frame/value/number_text.h"
#include "tovalin/convert.h"
#include "tovalin/locale.h"

namespace tovalin {
namespace {

[[noreturn]] void RefuseValue(const Variant& value, TextView why) {
  RaiseInvalidArgument(u"LibMonto.MontoCheque", u"El valor " + Quoted(ToText(value)) + Text(why));
}

[[noreturn]] void RefuseFraction(const Variant& value) {
  RefuseValue(value, u" no es un número entero de centavos");
}

std::int64_t DigitsToCents(const Variant& value, const DecimalDigits& number) {
  const int places = number.exponent + 2;  // digits before the end of the second decimal
  if (number.count == 0) return 0;
  if (places > std::numeric_limits<std::int64_t>::digits10) Raise(Failure::Overflow);
  if (number.count > places) RefuseFraction(value);
  const auto cents = static_cast<std::int64_t>(number.Leading(places));
  if (cents > kMostCents) Raise(Failure::Overflow);
  return number.negative ? -cents : cents;
}

std::int64_t NumberToCents(const Variant& value, double number, int significant) {
  if (!std::isfinite(number)) Raise(Failure::Overflow);
  const DecimalDigits shown = ToDecimalDigits(number, significant);
  const std::int64_t cents = DigitsToCents(value, shown);
  if (shown.exponent <= significant - 2) return cents;
  // The text has no place for all cents: is it the number itself?
  const std::int64_t wholes = cents / 100;
  const double said = static_cast<double>(wholes) + static_cast<double>(cents % 100) / 100;
  const bool same =
      significant == kSingleDigits ? static_cast<float>(said) == value.AsSingle() : said == number;
  if (!same) RefuseValue(value, u" tiene más cifras de las que muestra: use Currency");
  return cents;
}

/// Whether every thousands separator stands before three digits, in the whole part.
bool IsGroupedByThousands(TextView text) {
  const char16_t separator = CurrentLocale().thousands_separator;
  const auto is_digit = [&](std::size_t i) { return i < text.size() && IsDigit(text[i]); };
  bool fraction = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == CurrentLocale().decimal_separator) fraction = true;
    if (text[i] != separator) continue;
    const bool three = is_digit(i + 1) && is_digit(i + 2) && is_digit(i + 3) && !is_digit(i + 4);
    if (fraction || !three) return false;
  }
  return true;
}

std::int64_t TextToCents(const Variant& value) {
  const NumberText number = ScanNumber(value.AsText());
  if (number.form != NumberText::Form::Decimal) Raise(Failure::TypeMismatch);
  if (!IsGroupedByThousands(value.AsText()))
    RefuseValue(value, u" tiene un separador de miles fuera de lugar");
  return DigitsToCents(value, number.decimal);
}

}  // namespace

std::int64_t CentsOf(const Variant& value) {
  switch (value.Kind()) {
    case Subtype::Empty:
    case Subtype::Byte:
    case Subtype::Integer:
    case Subtype::Long:
      return std::int64_t{ToLong(value)} * 100;
    case Subtype::Currency: {
      const std::int64_t units = value.AsCurrency().ten_thousandths;
      if (units % 100 != 0) RefuseFraction(value);
      return units / 100;
    }
    case Subtype::Single:
      return NumberToCents(value, static_cast<double>(value.AsSingle()), kSingleDigits);
    case Subtype::Double:
      return NumberToCents(value, value.AsDouble(), kDoubleDigits);
    case Subtype::String:
      return TextToCents(value);
    default:
      Raise(Failure::TypeMismatch);
  }
}

}  // namespace tovalin
