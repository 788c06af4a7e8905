#include "frame/value/number_text.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string_view>

#include "tovalin/locale.h"

namespace tovalin {
namespace {

// Texts are written as Text or, with the same digits, as UTF-8.
void AppendDigits(Text& text, const char* first, const char* last) {
  const std::size_t before = text.size();
  text.resize(before + static_cast<std::size_t>(last - first));
  std::copy(first, last, text.begin() + static_cast<std::ptrdiff_t>(before));
}
void AppendDigits(std::string& utf8, const char* first, const char* last) {
  utf8.append(first, last);
}

// Puts the decimal separator in the place of a character.
void PutSeparator(Text& text, std::size_t place) {
  text[place] = CurrentLocale().decimal_separator;
}
void PutSeparator(std::string& utf8, std::size_t place) {
  const char16_t separator = CurrentLocale().decimal_separator;
  if (separator < 0x80)
    utf8[place] = static_cast<char>(separator);
  else
    utf8.replace(place, 1, ToUtf8(TextView(&separator, 1)));
}

template <class String>
void AppendSeparator(String& text) {
  text.push_back('.');
  PutSeparator(text, text.size() - 1);
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
  result.negative = negative;
  result.count = static_cast<int>(last - first);
  result.exponent = exponent;
  std::copy(first, last, result.digits);
  result.DropZerosAtEnd();
  return result;
}

struct Product {
  std::uint64_t high;
  std::uint64_t low;
};

Product Multiply(std::uint64_t a, std::uint64_t b) {
  constexpr std::uint64_t kHalf = 0xFFFFFFFF;
  const std::uint64_t low = (a & kHalf) * (b & kHalf);
  const std::uint64_t cross = (a >> 32) * (b & kHalf) + (low >> 32);
  const std::uint64_t middle = (a & kHalf) * (b >> 32) + (cross & kHalf);
  return {(a >> 32) * (b >> 32) + (cross >> 32) + (middle >> 32), middle << 32 | (low & kHalf)};
}

/// A number as digits / 10^places.
struct ExactDecimal {
  std::uint64_t digits = 0;
  int places = 0;
};

/// A magnitude from 0.001 to 1e15, as nearly all are, is mantissa x 10^places /
/// 2^shift, a whole number of 128 bits, and is rounded exactly here, a half to even.
/// False for others. It takes a quarter of the steps of the general way.
bool ToExactDecimal(double magnitude, int significant, ExactDecimal& decimal) {
  constexpr double kLeastExact = PowerOfTen(-3);
  if (!(magnitude >= kLeastExact && magnitude < kWholeLimit)) return false;
  constexpr std::uint64_t kMantissaBit = std::uint64_t{1} << 52;
  const auto bits = std::bit_cast<std::uint64_t>(magnitude);
  const int binary_exponent = static_cast<int>(bits >> 52) - 1023;
  int power = binary_exponent * 1233 >> 12;  // 1233 / 4096 is the logarithm of 2
  if (magnitude >= PowerOfTen(power + 1)) ++power;
  const int places = significant - 1 - power;
  if (places < 0) return false;
  const Product product =
      Multiply((bits & (kMantissaBit - 1)) | kMantissaBit, WholePowerOfTen(places));
  const int shift = 52 - binary_exponent;
  const std::uint64_t whole = product.high << (64 - shift) | product.low >> shift;
  const std::uint64_t rest = product.low << (64 - shift);
  constexpr std::uint64_t kHalf = std::uint64_t{1} << 63;
  const bool up = rest > kHalf || (rest == kHalf && (whole & 1) != 0);
  decimal = {whole + (up ? 1 : 0), places};
  return true;
}

void DropZeros(ExactDecimal& decimal) {
  while (decimal.places >= 4 && decimal.digits % 10000 == 0) {
    decimal.digits /= 10000;
    decimal.places -= 4;
  }
  while (decimal.places > 0 && decimal.digits % 10 == 0) {
    decimal.digits /= 10;
    --decimal.places;
  }
}

/// The text of a number with a fraction, if that is short enough to be written out.
template <class String>
bool AppendExact(String& text, double value) {
  ExactDecimal decimal;
  if (!ToExactDecimal(std::abs(value), kDoubleDigits, decimal)) return false;
  DropZeros(decimal);
  const std::uint64_t scale = WholePowerOfTen(decimal.places);
  auto whole = static_cast<std::uint64_t>(std::abs(value));
  std::uint64_t fraction = decimal.digits - whole * scale;
  if (fraction >= scale) {  // rounded up to the next whole number
    ++whole;
    fraction -= scale;
  }
  const bool is_long = decimal.places > kDoubleDigits;
  if (is_long || whole >= WholePowerOfTen(kDoubleDigits)) return false;
  char buffer[48];
  char* const last = buffer + sizeof buffer;
  buffer[0] = '-';
  char* point = std::to_chars(buffer + 1, last, whole).ptr;
  // With a digit in front, in the place of the point, the zeros behind it are written.
  const char* end = decimal.places > 0 ? std::to_chars(point, last, fraction + scale).ptr : point;
  const char* first = value < 0 ? buffer : buffer + 1;
  const std::size_t before = text.size();
  AppendDigits(text, first, end);
  if (point != end) PutSeparator(text, before + static_cast<std::size_t>(point - first));
  return true;
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
    if (AppendExact(text, value)) return;
  }
  AppendFloating(text, value, kDoubleDigits);
}

}  // namespace

DecimalDigits ToDecimalDigits(double value, int significant) {
  if (value == 0) return {};
  char buffer[32];
  if (ExactDecimal decimal; ToExactDecimal(std::abs(value), significant, decimal)) {
    const char* end = std::to_chars(buffer, buffer + sizeof buffer, decimal.digits).ptr;
    return Collect(value < 0, buffer, end, static_cast<int>(end - buffer) - decimal.places);
  }
  // d.dddde+xxx
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
