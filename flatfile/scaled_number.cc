#include "flatfile/scaled_number.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "frame/value/number_reading.h"
#include "frame/value/number_text.h"

namespace tovalin::flat {
namespace {

using State = ScaledNumber::State;

constexpr int kMostDigits = 18;
std::int64_t CountOfTen(int exponent) {
  return static_cast<std::int64_t>(WholePowerOfTen(exponent));
}

ScaledNumber FromDigits(const DecimalDigits& number, int decimals) {
  const int places = number.exponent + decimals;
  if (number.count == 0) return {};
  if (places > kMostDigits) return {State::TooLarge};
  auto units = static_cast<std::int64_t>(number.Leading(places));
  const bool exact = number.count <= places;
  if (!exact && places >= 0 && number.At(places) >= '5') ++units;
  return {exact ? State::Exact : State::Rounded, number.negative ? -units : units};
}

ScaledNumber FromDouble(double value, int decimals, int significant) {
  if (!std::isfinite(value)) return {State::NotANumber};
  // A count that gives the same Double back is the decimal that the Double shows.
  const double power = PowerOfTen(decimals);
  const double nearest = std::nearbyint(value * power);
  if (significant == kDoubleDigits && std::fabs(nearest) < kWholeLimit && nearest / power == value)
    return {State::Exact, static_cast<std::int64_t>(nearest)};
  return FromDigits(ToDecimalDigits(value, significant), decimals);
}

ScaledNumber FromText(TextView text, int decimals) {
  const NumberText number = ScanNumber(text);
  if (number.form != NumberText::Form::Decimal) return {State::NotANumber};
  return FromDigits(number.decimal, decimals);
}

}  // namespace

ScaledNumber Rescale(std::int64_t units, int from, int to) {
  if (to >= from) {
    ScaledNumber number;
    if (to - from > kMostDigits ||
        __builtin_mul_overflow(units, CountOfTen(to - from), &number.units))
      number.state = State::TooLarge;
    return number;
  }
  const std::int64_t power = CountOfTen(from - to);
  const std::int64_t rest = units % power;
  std::int64_t rounded = units / power;
  if (std::abs(rest) >= power / 2) rounded += units < 0 ? -1 : 1;
  return {rest == 0 ? State::Exact : State::Rounded, rounded};
}

ScaledNumber Scale(const Variant& value, int decimals) {
  switch (value.Kind()) {
    case Subtype::Byte:
      return Rescale(value.Value().AsByte(), 0, decimals);
    case Subtype::Integer:
      return Rescale(value.AsInteger(), 0, decimals);
    case Subtype::Long:
      return Rescale(value.AsLong(), 0, decimals);
    case Subtype::Currency:
      return Rescale(value.AsCurrency().ten_thousandths, 4, decimals);
    case Subtype::Double:
      return FromDouble(value.AsDouble(), decimals, kDoubleDigits);
    case Subtype::Single:
      return FromDouble(value.AsSingle(), decimals, kSingleDigits);
    case Subtype::String:
      return FromText(value.AsText(), decimals);
    default:
      return {State::NotANumber};
  }
}

void AppendDigits(std::string& text, std::uint64_t magnitude, const NumberForm& form,
                  std::size_t width) {
  // From the last digit to the first: 20 digits, a point and groups fit.
  std::array<char, 32> buffer;
  char* at = buffer.data() + buffer.size();
  int place = -form.decimals;
  do {
    if (place == 0 && form.decimals > 0 && !form.implied) *--at = static_cast<char>(form.point);
    if (place > 0 && place % 3 == 0 && form.group != 0) *--at = static_cast<char>(form.group);
    *--at = static_cast<char>('0' + magnitude % 10);
    magnitude /= 10;
    ++place;
  } while (magnitude != 0 || place <= 0);
  const std::string_view digits(at, static_cast<std::size_t>(buffer.data() + buffer.size() - at));
  if (digits.size() < width) text.append(width - digits.size(), '0');
  text += digits;
}

bool ReadDigits(std::string_view text, const NumberForm& form, bool negative,
                ScaledNumber& number) {
  const auto point = static_cast<char>(form.point);
  const auto group = static_cast<char>(form.group);
  bool any = false;
  int decimals = form.implied ? form.decimals : -1;  // behind the point; -1 before it
  std::int64_t units = 0;                            // below zero, where there is one more
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c >= '0' && c <= '9') {
      any = true;
      if (!form.implied && decimals >= 0 && ++decimals > form.decimals) return false;
      if (__builtin_mul_overflow(units, 10, &units) ||
          __builtin_sub_overflow(units, c - '0', &units)) {
        number.state = State::TooLarge;
        return true;
      }
    } else if (c == point && decimals < 0 && form.decimals > 0) {
      decimals = 0;
    } else if (c != group || form.group == 0 || decimals >= 0 || i == 0) {
      return false;
    }
  }
  number = Rescale(units, form.implied ? form.decimals : std::max(decimals, 0), form.decimals);
  if (!negative && __builtin_sub_overflow(0, number.units, &number.units))
    number.state = State::TooLarge;
  return any;
}

}  // namespace tovalin::flat
