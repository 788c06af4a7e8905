#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tovalin/variant.h"

namespace tovalin::flat {

/// A number as a whole count of its last decimal place.
struct ScaledNumber {
  enum class State : std::uint8_t {
    Exact,
    Rounded,   // had more decimals; halves went away from zero
    TooLarge,  // for 18 digits
    NotANumber,
  };
  State state = State::Exact;
  std::int64_t units = 0;
};

/// `value` with `decimals` decimals (0 to 15). A Double counts as the 15 digits that
/// it shows (7 of a Single), an amount and a text with all of theirs. Booleans and
/// dates are no numbers.
ScaledNumber Scale(const Variant& value, int decimals);

/// The same number with other decimals; Rounded and TooLarge as above.
ScaledNumber Rescale(std::int64_t units, int from, int to);

/// How digits are shown.
struct NumberForm {
  int decimals = 0;
  bool implied = false;  // without a point
  char16_t point = u'.';
  char16_t group = 0;
};

/// Adds the digits of a count, without a sign; zeros in front up to `width` characters.
void AppendDigits(std::string& text, std::uint64_t magnitude, const NumberForm& form,
                  std::size_t width);

/// Reads what AppendDigits wrote, as a negative number or not; group separators may be
/// left out. False for a text that is no such number.
bool ReadDigits(std::string_view text, const NumberForm& form, bool negative, ScaledNumber& number);

}  // namespace tovalin::flat
