#include "frame/value/number_reading.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "frame/text/characters.h"
#include "tovalin/convert.h"
#include "tovalin/locale.h"

namespace tovalin {
namespace {

// Beyond every exponent that a number can have, and far from overflowing an int.
constexpr int kExponentLimit = 100'000;

bool IsBlank(char16_t c) { return c == u' ' || (c >= u'\t' && c <= u'\r') || c == kNoBreakSpace; }

/// The value of a digit in any base up to 16, or 16.
unsigned DigitValue(char16_t c) {
  if (IsDigit(c)) return static_cast<unsigned>(c - u'0');
  if (c >= u'a' && c <= u'f') return static_cast<unsigned>(c - u'a') + 10;
  if (c >= u'A' && c <= u'F') return static_cast<unsigned>(c - u'A') + 10;
  return 16;
}

/// The base that the letter after "&" names, or 0.
unsigned BaseOf(char16_t letter) {
  if (letter == u'H' || letter == u'h') return 16;
  return letter == u'O' || letter == u'o' ? 8 : 0;
}

class Scanner {
 public:
  explicit Scanner(TextView text) : text_(text), locale_(CurrentLocale()) {}

  NumberText Scan() {
    SkipAround(u'(');
    const bool read = Peek() == u'&' ? ReadBits() : ReadDecimal();
    SkipAround(u')');
    if (!read || position_ != text_.size() || opened_ != closed_) return {};
    number_.decimal.negative = minus_ || opened_;
    return number_;
  }

 private:
  char16_t Peek() const { return position_ < text_.size() ? text_[position_] : u'\0'; }

  /// Skips what may stand before or after the digits.
  void SkipAround(char16_t bracket) {
    for (; position_ < text_.size(); ++position_) {
      const char16_t c = text_[position_];
      if (IsBlank(c)) continue;
      if ((c == u'+' || c == u'-') && !sign_) {
        sign_ = true;
        minus_ = c == u'-';
      } else if (c == bracket && !(c == u'(' ? opened_ : closed_)) {
        (c == u'(' ? opened_ : closed_) = true;
      } else if (!SkipCurrency()) {
        return;
      }
    }
  }

  /// Moves to the last character of the currency symbol if it stands here, once.
  bool SkipCurrency() {
    const Text& symbol = locale_.currency_symbol;
    if (currency_ || symbol.empty() || !text_.substr(position_).starts_with(symbol)) return false;
    currency_ = true;
    position_ += symbol.size() - 1;
    return true;
  }

  bool ReadDecimal() {
    number_.form = NumberText::Form::Decimal;
    bool any = false;
    bool fraction = false;
    for (; position_ < text_.size(); ++position_) {
      const char16_t c = text_[position_];
      if (IsDigit(c)) {
        any = true;
        AppendDigit(c, fraction);
      } else if (c == locale_.decimal_separator && !fraction) {
        fraction = true;
      } else if (c != locale_.thousands_separator || !any) {
        break;
      }
    }
    if (!any || !ReadExponent()) return false;
    number_.decimal.DropZerosAtEnd();
    return true;
  }

  void AppendDigit(char16_t c, bool fraction) {
    DecimalDigits& decimal = number_.decimal;
    if (decimal.count == 0 && c == u'0') {
      if (fraction) --decimal.exponent;
      return;
    }
    if (!fraction) ++decimal.exponent;
    if (decimal.count < DecimalDigits::kMost)
      decimal.digits[decimal.count++] = static_cast<char>(c);
  }

  /// "e", "E", "d" or "D" with its number, if there is one here.
  bool ReadExponent() {
    if (DigitValue(Peek()) != 13 && DigitValue(Peek()) != 14) return true;
    ++position_;
    const bool minus = Peek() == u'-';
    if (minus || Peek() == u'+') ++position_;
    if (!IsDigit(Peek())) return false;
    int exponent = 0;
    for (; IsDigit(Peek()); ++position_)
      exponent = std::min(exponent * 10 + static_cast<int>(DigitValue(Peek())), kExponentLimit);
    number_.decimal.exponent += minus ? -exponent : exponent;
    return true;
  }

  bool ReadBits() {
    number_.form = NumberText::Form::Bits;
    ++position_;
    const unsigned base = BaseOf(Peek());
    if (base == 0) return false;
    const std::size_t first = ++position_;
    for (; DigitValue(Peek()) < base; ++position_)
      number_.bits = std::min(number_.bits, std::uint64_t{1} << 32) * base + DigitValue(Peek());
    return position_ != first;
  }

  TextView text_;
  const Locale& locale_;
  std::size_t position_ = 0;
  bool sign_ = false;
  bool minus_ = false;
  bool opened_ = false;
  bool closed_ = false;
  bool currency_ = false;
  NumberText number_;
};

/// `mantissa` x 10^`exponent`: one rounding within the exact powers of ten, so
/// amounts are read to the last bit. Beyond them the platform goes on by single
/// tens, and so do we: 1e308 reads as 9.999999999999998e+307.
double Scale(double mantissa, int exponent) {
  const int step = std::min(std::abs(exponent), kMostExactPower);
  int rest = std::abs(exponent) - step;
  if (exponent >= 0) {
    mantissa *= PowerOfTen(step);
    for (; rest > 0 && std::isfinite(mantissa); --rest) mantissa *= 10;
  } else {
    mantissa /= PowerOfTen(step);
    for (; rest > 0 && mantissa != 0; --rest) mantissa /= 10;
  }
  return mantissa;
}

double BitsValue(std::uint64_t bits) {
  if (bits > std::numeric_limits<std::uint32_t>::max())
    return std::numeric_limits<double>::infinity();
  // The platform reads the 32 bits as a Long.
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(bits));
}

/// The common case: digits with at most one point among them and perhaps a sign
/// before them, few enough to be exact in Double.
std::optional<double> ReadPlain(TextView text) {
  constexpr std::size_t kMaxLength = 15;
  const bool negative = text.starts_with(u'-');
  if (negative) text.remove_prefix(1);
  if (text.size() > kMaxLength || text.empty() || !IsDigit(text[0])) return std::nullopt;
  const char16_t separator = CurrentLocale().decimal_separator;
  std::int64_t mantissa = 0;
  std::size_t point = text.size();
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (IsDigit(text[i]))
      mantissa = mantissa * 10 + (text[i] - u'0');
    else if (text[i] == separator && point == text.size())
      point = i;
    else
      return std::nullopt;
  }
  double value = static_cast<double>(mantissa);
  if (point < text.size()) value /= PowerOfTen(static_cast<int>(text.size() - point - 1));
  return negative ? -value : value;
}

}  // namespace

NumberText ScanNumber(TextView text) { return Scanner(text).Scan(); }

double ValueOf(const NumberText& number) {
  const DecimalDigits& decimal = number.decimal;
  double magnitude = 0;
  if (number.form == NumberText::Form::Bits) {
    magnitude = BitsValue(number.bits);
  } else if (decimal.count > 0) {
    // Digit by digit, as the platform does: beyond 2^53 each step rounds.
    for (int i = 0; i < decimal.count; ++i) magnitude = magnitude * 10 + (decimal.digits[i] - '0');
    magnitude = Scale(magnitude, decimal.exponent - decimal.count);
  }
  return decimal.negative ? -magnitude : magnitude;
}

std::optional<double> ReadNumber(TextView text) {
  if (const auto plain = ReadPlain(text)) return plain;
  const NumberText number = ScanNumber(text);
  if (number.form == NumberText::Form::None) return std::nullopt;
  const double value = ValueOf(number);
  return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

}  // namespace tovalin
