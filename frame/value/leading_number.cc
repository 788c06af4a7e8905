#include <charconv>
#include <cstdint>
#include <limits>
#include <string>
#include <system_error>

#include "tovalin/convert.h"
#include "tovalin/error.h"

namespace tovalin {
namespace {

bool IsDigit(char c, int base) {
  if (c >= '0' && c <= '9') return c - '0' < base;
  return base == 16 && c >= 'a' && c <= 'f';
}

/// The text as the lenient reading sees it: without blanks, letters in lower
/// case, and '\0' for what no number has and for the end.
class LenientReader {
 public:
  explicit LenientReader(TextView text) : text_(text) { SkipBlanks(); }

  char Peek() const {
    const char16_t c = position_ < text_.size() ? text_[position_] : u'\0';
    if (c > u'z') return '\0';
    return static_cast<char>(c >= u'A' && c <= u'Z' ? c - u'A' + u'a' : c);
  }

  bool Skip(char c) {
    if (Peek() != c) return false;
    ++position_;
    SkipBlanks();
    return true;
  }

  /// Moves the digits of `base` that stand here to the end of `digits`.
  bool ReadDigits(std::string& digits, int base) {
    const std::size_t before = digits.size();
    for (char c = Peek(); IsDigit(c, base); c = Peek()) {
      digits += c;
      Skip(c);
    }
    return digits.size() != before;
  }

 private:
  void SkipBlanks() {
    const TextView blanks = u" \t\n\r";
    while (position_ < text_.size() && blanks.find(text_[position_]) != TextView::npos) ++position_;
  }

  TextView text_;
  std::size_t position_ = 0;
};

/// "&H..." and "&O...", after the "&". Up to 16 bits are an Integer, unless "&"
/// after them says that they are a Long: &HFFFF is -1 and &HFFFF& is 65535.
double ReadBits(LenientReader& reader) {
  const int base = reader.Skip('h') ? 16 : reader.Skip('o') ? 8 : 0;
  std::string digits;
  if (base == 0 || !reader.ReadDigits(digits, base)) return 0;
  std::uint32_t bits = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), bits, base);
  if (read.ec == std::errc::result_out_of_range) Raise(Failure::Overflow);
  if (bits <= std::numeric_limits<std::uint16_t>::max() && !reader.Skip('&'))
    return static_cast<std::int16_t>(bits);
  return static_cast<std::int32_t>(bits);
}

/// The characters of the decimal number that stands here, as from_chars takes
/// them; empty when there is none.
std::string ReadDecimal(LenientReader& reader) {
  std::string number;
  if (reader.Skip('-'))
    number += '-';
  else
    reader.Skip('+');
  bool any = reader.ReadDigits(number, 10);
  if (reader.Skip('.')) {
    number += '.';
    any = reader.ReadDigits(number, 10) || any;
  }
  if (!any) return {};
  if (reader.Skip('e') || reader.Skip('d')) {
    std::string exponent = "e";
    if (reader.Skip('-'))
      exponent += '-';
    else
      reader.Skip('+');
    if (reader.ReadDigits(exponent, 10)) number += exponent;
  }
  return number;
}

/// Whether a number that is out of range is too large, and not too small: the
/// latter reads as 0.
bool IsLarge(const std::string& number) {
  const std::size_t mark = number.find('e');
  if (mark != std::string::npos) return number[mark + 1] != '-';
  return number.find_first_of("123456789") < number.find('.');
}

}  // namespace

double LeadingNumber(TextView text) {
  LenientReader reader(text);
  if (reader.Skip('&')) return ReadBits(reader);
  const std::string number = ReadDecimal(reader);
  double value = 0;
  const auto read = std::from_chars(number.data(), number.data() + number.size(), value);
  if (read.ec == std::errc::result_out_of_range && IsLarge(number)) Raise(Failure::Overflow);
  return value;
}

}  // namespace tovalin
