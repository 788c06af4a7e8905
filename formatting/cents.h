#pragma once

#include <cstdint>
#include <limits>

#include "tovalin/variant.h"

namespace tovalin {

/// The most cents that a Currency holds: 922,337,203,685,477.58.
inline constexpr std::int64_t kMostCents = std::numeric_limits<std::int64_t>::max() / 100;

/// An amount of money as a whole number of cents, exactly.
///
/// A Double or Single is the decimal that its text shows (0.29 is 29 cents), unless
/// it is so large that its text leaves cents out: then it must be that decimal to
/// the bit. In a text each thousands separator must stand before three digits.
/// Raises 5 for an amount that is not a whole number of cents, 6 for one beyond
/// Currency, and 13 for what is no amount (Null, a date, a Boolean, a text that does
/// not read as a number).
std::int64_t CentsOf(const Variant& value);

}  // namespace tovalin
