#include "frame/format/patterns.h"

#include <charconv>
#include <cmath>
#include <optional>

#include "frame/format/pattern_cache.h"
#include "frame/value/conversion.h"
#include "frame/value/date_text.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

DecimalDigits WholeDigits(std::int64_t value) {
  DecimalDigits number;
  const std::uint64_t bits = static_cast<std::uint64_t>(value);
  number.negative = value < 0;
  char* const end = std::to_chars(number.digits, number.digits + sizeof number.digits,
                                  number.negative ? 0 - bits : bits)
                        .ptr;
  number.count = static_cast<int>(end - number.digits);
  number.exponent = number.count;
  number.DropZerosAtEnd();
  return number;
}

DecimalDigits CurrencyDigits(Currency value) {
  DecimalDigits number = WholeDigits(value.ten_thousandths);
  number.exponent -= 4;
  return number;
}

DecimalDigits DoubleDigits(double value, int significant) {
  if (!std::isfinite(value)) Raise(Failure::Overflow);
  return ToDecimalDigits(value, significant);
}

// None for a text that does not read as a number.
std::optional<DecimalDigits> DigitsOf(const Variant& value) {
  switch (value.Kind()) {
    case Subtype::Empty:
      return DecimalDigits{};
    case Subtype::Integer:
      return WholeDigits(value.AsInteger());
    case Subtype::Long:
      return WholeDigits(value.AsLong());
    case Subtype::Byte:
      return WholeDigits(value.AsByte());
    case Subtype::Boolean:
      return WholeDigits(value.AsBoolean() ? -1 : 0);
    case Subtype::Currency:
      return CurrencyDigits(value.AsCurrency());
    case Subtype::Single:
      return DoubleDigits(value.AsSingle(), kSingleDigits);
    case Subtype::Double:
      return DoubleDigits(value.AsDouble(), kDoubleDigits);
    case Subtype::Date:
      return DoubleDigits(value.AsDate().days, kDoubleDigits);
    case Subtype::String:
      break;
    default:
      Raise(Failure::TypeMismatch);
  }
  const std::optional<double> read = ReadNumber(value.AsText());
  if (!read) return std::nullopt;
  return DoubleDigits(*read, kDoubleDigits);
}

// None for a text that reads neither as a date nor as a number, and for a number
// beyond the calendar.
std::optional<Date> DayCountOf(const Variant& value) {
  if (value.Is(Subtype::Date)) return value.AsDate();
  const bool text = value.Is(Subtype::String);
  if (const auto date = text ? ReadDate(value.AsText()) : std::nullopt) return date;
  const std::optional<double> number = text ? ReadNumber(value.AsText()) : ToDouble(value);
  return number && IsDateRange(*number) ? std::optional(Date{*number}) : std::nullopt;
}

Text FormatUnder(const OrdinaryText&, const Variant& value) {
  return value.Is(Subtype::Null) ? Text() : ToText(value);
}

Text FormatUnder(const GeneralNumber&, const Variant& value) {
  if (value.Is(Subtype::Null)) return {};
  if (!value.Is(Subtype::String)) {
    const bool counts =
        value.Is(Subtype::Date) || value.Is(Subtype::Boolean) || value.Is(Subtype::Empty);
    return ToText(counts ? Variant(ToDouble(value)) : value);
  }
  const std::optional<double> number = ReadNumber(value.AsText());
  return number ? ToText(Variant(*number)) : value.AsText();
}

Text FormatUnder(const NumberPattern& pattern, const Variant& value) {
  constexpr std::size_t kWithNullSection = 4;
  const bool empty = value.Is(Subtype::Empty) && pattern.sections.size() == kWithNullSection;
  if (value.Is(Subtype::Null) || empty) return FormatNull(pattern);
  const std::optional<DecimalDigits> number = DigitsOf(value);
  return number ? FormatNumber(pattern, *number) : value.AsText();
}

Text FormatUnder(const DatePattern& pattern, const Variant& value) {
  if (value.Is(Subtype::Null)) return {};
  const std::optional<Date> date = DayCountOf(value);
  return date ? FormatDate(pattern, *date) : ToText(value);
}

Text FormatUnder(const TextPattern& pattern, const Variant& value) {
  if (value.Is(Subtype::Null)) return FormatNull(pattern);
  if (value.Is(Subtype::String)) return FormatText(pattern, value.AsText());
  return FormatText(pattern, ToText(value));
}

}  // namespace

Text Format(const Variant& value, TextView pattern) {
  return std::visit([&](const auto& parsed) { return FormatUnder(parsed, value); },
                    *ParsedPattern(pattern));
}

}  // namespace tovalin
