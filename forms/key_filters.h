#pragma once

#include <cstdint>

#include "tovalin/text.h"

namespace tovalin {

/// The keys that a field accepts, as characters of their codes.
// "m" and "n" are 109 and 110, the keypad's minus and decimal. Deliberate:
// without them the keypad could not type an amount.
inline constexpr TextView kNumberKeys = u"0123456789\b.-mn";
inline constexpr TextView kDateKeys = u"0123456789\b/-";
inline constexpr TextView kTimeKeys = u"0123456789\b:";

/// `key`, or 0 when it is not among the accepted ones.
std::int16_t FilterKey(std::int16_t key, TextView accepted);

/// A text after a key of text or of a number; see LibGeneral.
Text AddText(TextView text, std::int32_t key);
Text AddNumber(TextView text, std::int32_t key);

}  // namespace tovalin
