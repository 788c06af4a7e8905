#include "frame/value/conversion.h"

#include <array>
#include <cmath>
#include <concepts>
#include <limits>
#include <utility>

#include "frame/value/date_text.h"
#include "frame/value/number_reading.h"
#include "frame/value/number_text.h"
#include "tovalin/error.h"
#include "tovalin/locale.h"

namespace tovalin {
namespace {

constexpr double kUnitsPerWhole = 10000;

// Half a step above the largest Single: from here on a Double rounds to infinity.
constexpr double kSingleLimit = 0x1.ffffffp127;

// The whole day counts just outside of the years 100 to 9999.
constexpr double kBeforeFirstDate = -657435;
constexpr double kAfterLastDate = 2958466;

template <std::integral Whole>
Whole Narrow(double value) {
  const double rounded = std::nearbyint(value);
  const bool fits = rounded >= static_cast<double>(std::numeric_limits<Whole>::min()) &&
                    rounded <= static_cast<double>(std::numeric_limits<Whole>::max());
  if (!fits) Raise(Failure::Overflow);
  return static_cast<Whole>(rounded);
}

template <std::integral Whole>
Whole Narrow(std::int64_t value) {
  if (!std::in_range<Whole>(value)) Raise(Failure::Overflow);
  return static_cast<Whole>(value);
}

/// The whole number nearest to an amount, halves to the even neighbour.
std::int64_t RoundedUnits(Currency value) {
  constexpr std::int64_t kScale = 10000;
  const std::int64_t whole = value.ten_thousandths / kScale;
  const std::int64_t rest = value.ten_thousandths % kScale;
  const std::int64_t twice = 2 * (rest < 0 ? -rest : rest);
  const bool away = twice > kScale || (twice == kScale && whole % 2 != 0);
  return away ? whole + (rest < 0 ? -1 : 1) : whole;
}

NumberText NumberOf(TextView text) {
  const NumberText number = ScanNumber(text);
  if (number.form == NumberText::Form::None) Raise(Failure::TypeMismatch);
  return number;
}

double TextToDouble(TextView text) {
  if (const auto number = ReadNumber(text)) return *number;
  NumberOf(text);  // raises when it is no number at all
  Raise(Failure::Overflow);
}

template <std::integral Whole>
Whole TextToWhole(TextView text) {
  const NumberText number = NumberOf(text);
  // Deliberate: bits of the width of an Integer are read as its bits, so
  // "&HFFFF" is -1 as an Integer and 65535 as a Long.
  if (std::same_as<Whole, std::int16_t> && number.form == NumberText::Form::Bits &&
      number.bits <= std::numeric_limits<std::uint16_t>::max()) {
    const std::int64_t bits = static_cast<std::int16_t>(number.bits);
    return Narrow<Whole>(number.decimal.negative ? -bits : bits);
  }
  return Narrow<Whole>(ValueOf(number));
}

template <std::integral Whole>
Whole ToWhole(const Variant& value) {
  switch (value.Kind()) {
    case Subtype::Empty:
      return 0;
    case Subtype::Byte:
      return Narrow<Whole>(std::int64_t{value.AsByte()});
    case Subtype::Integer:
      return Narrow<Whole>(std::int64_t{value.AsInteger()});
    case Subtype::Long:
      return Narrow<Whole>(std::int64_t{value.AsLong()});
    case Subtype::Boolean:
      // As a Byte the bits of -1 remain: 255.
      return value.AsBoolean() ? static_cast<Whole>(-1) : Whole{0};
    case Subtype::Currency:
      return Narrow<Whole>(RoundedUnits(value.AsCurrency()));
    case Subtype::String:
      return TextToWhole<Whole>(value.AsText());
    default:
      return Narrow<Whole>(ToDouble(value));
  }
}

bool TextToBoolean(TextView text) {
  struct Word {
    TextView text;
    bool value;
  };
  static constexpr std::array<Word, 4> kWords = {
      {{u"True", true}, {u"False", false}, {u"#TRUE#", true}, {u"#FALSE#", false}}};
  for (const Word& word : kWords)
    if (EqualFolded(text, word.text)) return word.value;
  return TextToDouble(text) != 0;
}

}  // namespace

bool IsDateRange(double days) { return days > kBeforeFirstDate && days < kAfterLastDate; }

std::int16_t ToInteger(const Variant& value) { return ToWhole<std::int16_t>(value); }

std::int32_t ToLong(const Variant& value) { return ToWhole<std::int32_t>(value); }

std::uint8_t ToByte(const Variant& value) { return ToWhole<std::uint8_t>(value); }

double ToDouble(const Variant& value) {
  switch (value.Kind()) {
    case Subtype::Empty:
      return 0;
    case Subtype::Integer:
      return value.AsInteger();
    case Subtype::Long:
      return value.AsLong();
    case Subtype::Single:
      return static_cast<double>(value.AsSingle());
    case Subtype::Double:
      return value.AsDouble();
    case Subtype::Currency:
      return static_cast<double>(value.AsCurrency().ten_thousandths) / kUnitsPerWhole;
    case Subtype::Date:
      return value.AsDate().days;
    case Subtype::String:
      return TextToDouble(value.AsText());
    case Subtype::Boolean:
      return value.AsBoolean() ? -1 : 0;
    case Subtype::Byte:
      return value.AsByte();
    case Subtype::Null:
    case Subtype::Object:
    case Subtype::Error:
    case Subtype::Variant:
    case Subtype::Array:
      break;
  }
  Raise(Failure::TypeMismatch);
}

float ToSingle(const Variant& value) {
  if (value.Is(Subtype::Single)) return value.AsSingle();
  const double number = ToDouble(value);
  if (!(std::abs(number) < kSingleLimit)) Raise(Failure::Overflow);
  return static_cast<float>(number);
}

Date ToDate(const Variant& value) {
  if (value.Is(Subtype::Date)) return value.AsDate();
  if (value.Is(Subtype::String)) {
    const auto date = ReadDate(value.AsText());
    if (!date) Raise(Failure::TypeMismatch);
    return *date;
  }
  const double days = ToDouble(value);
  if (!IsDateRange(days)) Raise(Failure::Overflow);
  return {days};
}

bool ToBoolean(const Variant& value) {
  if (value.Is(Subtype::Boolean)) return value.AsBoolean();
  if (value.Is(Subtype::String)) return TextToBoolean(value.AsText());
  return ToDouble(value) != 0;
}

void AppendText(Text& text, const Variant& value) {
  switch (value.Kind()) {
    case Subtype::Empty:
      return;
    case Subtype::Integer:
      return AppendNumber(text, std::int64_t{value.AsInteger()});
    case Subtype::Long:
      return AppendNumber(text, std::int64_t{value.AsLong()});
    case Subtype::Single:
      return AppendNumber(text, value.AsSingle());
    case Subtype::Double:
      return AppendNumber(text, value.AsDouble());
    case Subtype::Currency:
      return AppendNumber(text, value.AsCurrency());
    case Subtype::Date:
      text += DateText(value.AsDate());
      return;
    case Subtype::String:
      text += value.AsText();
      return;
    case Subtype::Boolean:
      text += value.AsBoolean() ? CurrentLocale().true_text : CurrentLocale().false_text;
      return;
    case Subtype::Byte:
      return AppendNumber(text, std::int64_t{value.AsByte()});
    case Subtype::Null:
    case Subtype::Object:
    case Subtype::Error:
    case Subtype::Variant:
    case Subtype::Array:
      break;
  }
  Raise(Failure::TypeMismatch);
}

Text ToText(const Variant& value) {
  Text text;
  AppendText(text, value);
  return text;
}

Variant Convert(const Variant& value, Subtype target) {
  if (value.Is(target)) return value.Value();
  switch (target) {
    case Subtype::Integer:
      return ToInteger(value);
    case Subtype::Long:
      return ToLong(value);
    case Subtype::Single:
      return ToSingle(value);
    case Subtype::Double:
      return ToDouble(value);
    case Subtype::Currency:
      return ToCurrency(value);
    case Subtype::Date:
      return ToDate(value);
    case Subtype::String:
      return ToText(value);
    case Subtype::Boolean:
      return ToBoolean(value);
    case Subtype::Byte:
      return ToByte(value);
    case Subtype::Variant:
      return value.Value();
    default:
      Raise(Failure::TypeMismatch);
  }
}

}  // namespace tovalin
