#pragma once

#include <cstdint>

// How formulas round: they read a number as its 15 significant
// decimal digits, the number that its text shows: 1.15 / 0.1 + 0.5 is 12 to
// them, and 2.675 lies half-way between 2.67 and 2.68, though the nearest
// doubles are a little less.

namespace tovalin::evaluator {

/// `value` itself. Raises 6 for an infinite one or one that is no number, which
/// only a host can hand in.
double Finite(double value);

/// `value` rounded to `decimals` decimals, halves to the even neighbour: 2.675
/// and 2.685 both give 2.68. Raises 5 unless `decimals` is 0 to 22, and 6 for a
/// value that is not finite.
double RoundHalfEven(double value, std::int32_t decimals);

/// `value` adjusted to a multiple of `step`; with step 1, to `decimals` decimals.
/// The half added before the whole part is taken is 5 x 10^-(decimals + 1).
///
/// Deliberately asymmetric: a positive value with step 1 is rounded half to even
/// and with step 1 and 0 decimals any value is returned unchanged, while a
/// negative value always goes through the whole part, as the users' stored
/// results do: -2.5 in steps of 5 gives -5, and -2.345 with step 1 and 2 decimals
/// gives -2.
/// Raises 11 for step 0, 6 when the result does not fit, 5 as RoundHalfEven does.
double AjusteMedio(double value, double step, std::int32_t decimals);

/// `value` adjusted to a multiple of 10^n and then to a whole number, halves to
/// the even neighbour: n = 3 rounds to thousands, and 0 to whole numbers.
/// Raises 11 for a negative n, whose step is 0, and 6 when the step does not fit.
double Redondear(double value, std::int32_t n);

}  // namespace tovalin::evaluator
