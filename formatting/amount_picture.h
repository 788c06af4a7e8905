#pragma once

#include <array>

namespace tovalin {

/// The first 23 characters of an amount under the number pattern
/// "000,000,000,000,000,000.00000": all its whole digits when there are at most
/// 18 of them, in groups of three with one comma between groups.
using AmountPicture = std::array<char, 23>;

/// The picture of the magnitude of `value`, which is finite. As the pattern
/// formatter has it, the value is taken to 15 significant digits and then
/// rounded to five decimals, halves away from zero: 1.999999 reads as 2.
AmountPicture PictureOf(double value);

}  // namespace tovalin
