#include "frame/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string_view>

#include "tovalin/locale.h"

namespace tovalin {
namespace {

constexpr int kDoubleDigits = 15;
constexpr int kSingleDigits = 7;

// Every whole number below it is exact in Double and has at most 15 digits.
constexpr double kWholeLimit = 1e15;

// Texts are written as Text or, with the same digits, as UTF-8.
void AppendDigits(Text& text, const char* first, const char* last) {
  const std::size_t before = text.size();
  text.resize(before + static_cast<std::size_t>(last - first));
  std::copy(first, last, text.begin() + static_cast<std::ptrdiff_t>(before));
}
void AppendDigits(std::string& utf8, const char* first, const char* last) {
  utf8.append(first, last);
}

void AppendSeparator(Text& text) { text += CurrentLocale().decimal_separator; }
void AppendSeparator(std::string& utf8) {
  AppendUtf8(utf8, TextView(&CurrentLocale().decimal_separator, 1));
}

template <class String>
void AppendWord(String& text, std::string_view word) {
  AppendDigits(text, word.data(), word.data() + word.size());
}

template <class String>
void AppendWhole(String& text, std::int64_t value) {
  char buffer[24];
  AppendDigits(text, buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
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

template <class String>
void AppendExponent(String& text, int exponent) {
  text += 'E';
  text += exponent < 0 ? '-' : '+';
  const int magnitude = std::abs(exponent);
  if (magnitude < 10) text += '0';
  AppendWhole(text, magnitude);
}

/// The digits with the point after the first `whole` of them (none: "0.00ddd").
template <class String>
void AppendPositional(String& text, const char* digits, int count, int whole) {
  if (whole <= 0) text += '0';
  AppendDigits(text, digits, digits + std::clamp(whole, 0, count));
  if (whole > count) text.append(static_cast<std::size_t>(whole - count), '0');
  if (whole >= count) return;
  AppendSeparator(text);
  if (whole < 0) text.append(static_cast<std::size_t>(-whole), '0');
  AppendDigits(text, digits + std::max(whole, 0), digits + count);
}

template <class String>
void AppendRounded(String& text, double value, int significant) {
  const DecimalDigits number = ToDecimalDigits(value, significant);
  if (number.count == 0) {
    text += '0';
    return;
  }
  if (number.negative) text += '-';
  if (number.exponent <= significant && number.count - number.exponent <= significant) {
    AppendPositional(text, number.digits, number.count, number.exponent);
  } else {
    AppendPositional(text, number.digits, number.count, 1);
    AppendExponent(text, number.exponent - 1);
  }
}

template <class String>
void AppendFloating(String& text, double value, int significant) {
  if (std::isnan(value))
    AppendWord(text, "NaN");
  else if (std::isinf(value))
    AppendWord(text, value < 0 ? "-INF" : "INF");
  else
    AppendRounded(text, value, significant);
}

template <class String>
void AppendDouble(String& text, double value) {
  if (std::abs(value) < kWholeLimit) {
    const auto whole = static_cast<std::int64_t>(value);
    if (static_cast<double>(whole) == value) return AppendWhole(text, whole);
  }
  AppendFloating(text, value, kDoubleDigits);
}

// Leaves `keep` of the digits, rounded. Nothing when what goes is exactly a half as
// far as these digits tell: then the value itself decides.
bool RoundDigits(DecimalDigits& number, int keep) {
  if (number.count <= keep) return true;
  const char* rest = number.digits + keep;
  if (*rest == '5' && number.count == keep + 1) return false;
  const bool up = *rest >= '5';
  number.count = keep;
  while (up && number.count > 0 && number.digits[number.count - 1] == '9') --number.count;
  if (up && number.count > 0) {
    ++number.digits[number.count - 1];
  } else if (up) {
    number.digits[number.count++] = '1';
    ++number.exponent;
  }
  while (number.digits[number.count - 1] == '0') --number.count;
  return true;
}

// The digits in d.dddde+xxx.
DecimalDigits ReadScientific(bool negative, char* first, const char* end) {
  const char* mark = std::find(static_cast<const char*>(first), end, 'e');
  int exponent = 0;
  std::from_chars(mark[1] == '+' ? mark + 2 : mark + 1, end, exponent);
  if (mark - first > 1) {
    first[1] = first[0];
    ++first;
  }
  return Collect(negative, first, mark, exponent + 1);
}

}  // namespace

DecimalDigits ToDecimalDigits(double value, int significant) {
  if (value == 0) return {};
  if (const auto amount = AmountDigits(value, significant)) return *amount;
  char buffer[32];
  char* const last = buffer + sizeof buffer;
  const double magnitude = std::abs(value);
  // The fewest digits that tell the value from its neighbours take a third of the
  // time of rounding it in full, and round to the same digits: a number of one digit
  // more than is kept that lay between the two would have been found itself. Up to 15
  // digits tell every number from the others, but for the smallest.
  if (significant <= kDoubleDigits && magnitude >= std::numeric_limits<double>::min()) {
    const char* end = std::to_chars(buffer, last, magnitude, std::chars_format::scientific).ptr;
    DecimalDigits number = ReadScientific(value < 0, buffer, end);
    if (RoundDigits(number, significant)) return number;
  }
  const char* end =
      std::to_chars(buffer, last, magnitude, std::chars_format::scientific, significant - 1).ptr;
  return ReadScientific(value < 0, buffer, end);
}

void AppendNumber(Text& text, double value) { AppendDouble(text, value); }
void AppendNumber(std::string& utf8, double value) { AppendDouble(utf8, value); }

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

void AppendNumber(Text& text, std::int64_t value) { AppendWhole(text, value); }

}  // namespace tovalin
