#include "frame/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <optional>

#include "tovalin/locale.h"

namespace tovalin {
namespace {

constexpr int kDoubleDigits = 15;
constexpr int kSingleDigits = 7;

// Every whole number below it is exact in Double and has at most 15 digits.
constexpr double kWholeLimit = 1e15;

void AppendDigits(Text& text, const char* first, const char* last) {
  const std::size_t before = text.size();
  text.resize(before + static_cast<std::size_t>(last - first));
  std::copy(first, last, text.begin() + static_cast<std::ptrdiff_t>(before));
}

/// The digits [first, last) as a number whose point stands `exponent` places
/// after the first one.
DecimalDigits Collect(bool negative, const char* first, const char* last, int exponent) {
  DecimalDigits result;
  while (last != first && last[-1] == '0') --last;
  result.negative = negative;
  result.count = static_cast<int>(last - first);
  result.exponent = result.count == 0 ? 0 : exponent;
  std::copy(first, last, result.digits);
  return result;
}

/// The digits of a value that is the Double nearest to a decimal of at most
/// four places and `significant` digits, as amounts are: up to 15 digits such a
/// decimal is what the value rounds to, so no long division is needed.
std::optional<DecimalDigits> AmountDigits(double value, int significant) {
  constexpr double kScale = 10000;
  constexpr double kLimit = 1e11;
  const double magnitude = std::abs(value);
  if (significant > kDoubleDigits || !(magnitude < kLimit)) return std::nullopt;
  const auto units = static_cast<std::int64_t>(magnitude * kScale + 0.5);
  if (static_cast<double>(units) / kScale != magnitude) return std::nullopt;
  char buffer[20];
  const char* end = std::to_chars(buffer, buffer + sizeof buffer, units).ptr;
  const DecimalDigits result = Collect(value < 0, buffer, end, static_cast<int>(end - buffer) - 4);
  if (result.count > significant) return std::nullopt;
  return result;
}

void AppendExponent(Text& text, int exponent) {
  text += u'E';
  text += exponent < 0 ? u'-' : u'+';
  const int magnitude = std::abs(exponent);
  if (magnitude < 10) text += u'0';
  AppendNumber(text, std::int64_t{magnitude});
}

/// The digits with the point after the first `whole` of them (none: "0.00ddd").
void AppendPositional(Text& text, const char* digits, int count, int whole) {
  if (whole <= 0) text += u'0';
  AppendDigits(text, digits, digits + std::clamp(whole, 0, count));
  if (whole > count) text.append(static_cast<std::size_t>(whole - count), u'0');
  if (whole >= count) return;
  text += CurrentLocale().decimal_separator;
  if (whole < 0) text.append(static_cast<std::size_t>(-whole), u'0');
  AppendDigits(text, digits + std::max(whole, 0), digits + count);
}

void AppendRounded(Text& text, double value, int significant) {
  const DecimalDigits number = ToDecimalDigits(value, significant);
  if (number.count == 0) {
    text += u'0';
    return;
  }
  if (number.negative) text += u'-';
  if (number.exponent <= significant && number.count - number.exponent <= significant) {
    AppendPositional(text, number.digits, number.count, number.exponent);
  } else {
    AppendPositional(text, number.digits, number.count, 1);
    AppendExponent(text, number.exponent - 1);
  }
}

void AppendFloating(Text& text, double value, int significant) {
  if (std::isnan(value))
    text += u"NaN";
  else if (std::isinf(value))
    text += value < 0 ? u"-INF" : u"INF";
  else
    AppendRounded(text, value, significant);
}

}  // namespace

DecimalDigits ToDecimalDigits(double value, int significant) {
  if (value == 0) return {};
  if (const auto amount = AmountDigits(value, significant)) return *amount;
  // d.dddde+xxx
  char buffer[32];
  const char* end = std::to_chars(buffer, buffer + sizeof buffer, std::abs(value),
                                  std::chars_format::scientific, significant - 1)
                        .ptr;
  const char* mark = std::find(static_cast<const char*>(buffer), end, 'e');
  int exponent = 0;
  std::from_chars(mark[1] == '+' ? mark + 2 : mark + 1, end, exponent);
  char* first = buffer;
  if (significant > 1) {
    buffer[1] = buffer[0];
    first = buffer + 1;
  }
  return Collect(value < 0, first, mark, exponent + 1);
}

void AppendNumber(Text& text, double value) {
  if (std::abs(value) < kWholeLimit) {
    const auto whole = static_cast<std::int64_t>(value);
    if (static_cast<double>(whole) == value) return AppendNumber(text, whole);
  }
  AppendFloating(text, value, kDoubleDigits);
}

void AppendNumber(Text& text, float value) {
  AppendFloating(text, static_cast<double>(value), kSingleDigits);
}

void AppendNumber(Text& text, Currency value) {
  constexpr std::uint64_t kScale = 10000;
  const bool negative = value.ten_thousandths < 0;
  const auto bits = static_cast<std::uint64_t>(value.ten_thousandths);
  const std::uint64_t units = negative ? 0 - bits : bits;
  if (negative) text += u'-';
  AppendNumber(text, static_cast<std::int64_t>(units / kScale));
  std::uint64_t rest = units % kScale;
  if (rest != 0) text += CurrentLocale().decimal_separator;
  for (std::uint64_t step = kScale / 10; rest != 0; rest %= step, step /= 10)
    text += static_cast<char16_t>(u'0' + rest / step);
}

void AppendNumber(Text& text, std::int64_t value) {
  char buffer[24];
  AppendDigits(text, buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

}  // namespace tovalin
