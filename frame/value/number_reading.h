#pragma once

#include <cstdint>

#include "frame/value/decimal_digits.h"
#include "tovalin/text.h"

namespace tovalin {

/// What a whole text says as a number under the current locale.
struct NumberText {
  enum class Form : std::uint8_t {
    None,     // it does not read as a number
    Decimal,  // "1,234.5", "(5)", "$ 5 -", "1.5e3"
    Bits,     // "&H1F", "&O17"
  };
  Form form = Form::None;
  std::uint64_t bits = 0;  // of Bits; those beyond 32 only tell that it is too large
  DecimalDigits decimal;   // of Decimal; its sign is that of Bits, too
};

/// Reads `text`: blanks, one sign, one currency symbol and brackets around the
/// number (which make it negative) may stand on either side of it; thousands
/// separators may stand anywhere after its first digit, in any number.
NumberText ScanNumber(TextView text);

/// The number as a Double, infinite when it is out of range.
double ValueOf(const NumberText& number);

}  // namespace tovalin
