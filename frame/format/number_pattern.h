#pragma once

#include <cstdint>
#include <vector>

#include "frame/value/number_text.h"
#include "tovalin/text.h"

namespace tovalin {

/// One section of a number pattern, ready to be applied: the counts that govern
/// the digits, and the steps in the order in which they are shown.
struct NumberSection {
  enum class Show : std::uint8_t { Literal, Integer, Point, Fraction, Exponent };
  struct Step {
    Show show;
    std::size_t length;  // of a literal, or how many placeholders in a row
  };

  std::vector<Step> steps;
  Text literals;  // all literal texts, one after the other
  std::int64_t integer_places = 0;
  std::int64_t least_integer = 0;  // places from the leftmost 0 to the point
  std::int64_t fraction_places = 0;
  std::int64_t least_fraction = 0;  // places from the point to the rightmost 0
  std::int64_t shift = 0;           // powers of ten: 2 for each %, -3 for each scaling comma
  bool grouped = false;
  bool scientific = false;
  bool exponent_plus = false;  // E+ rather than E-
  char16_t exponent_letter = u'E';
  std::int64_t least_exponent = 1;  // digits
};

/// A number pattern: positive;negative;zero;null, the last three optional.
struct NumberPattern {
  std::vector<NumberSection> sections;
};

NumberPattern ParseNumberPattern(TextView pattern);

/// `number` under the section that its sign calls for. A negative number under
/// a section that is not its own gets a "-" in front, also when no digit of it
/// is left, but not where the section has no place for a digit. Half units of
/// the last place shown go away from zero.
Text FormatNumber(const NumberPattern& pattern, const DecimalDigits& number);

/// What the pattern shows for Null: its fourth section, or the empty text.
Text FormatNull(const NumberPattern& pattern);

}  // namespace tovalin
