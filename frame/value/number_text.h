#pragma once

#include <cstdint>
#include <string>

#include "frame/value/decimal_digits.h"
#include "tovalin/text.h"
#include "tovalin/variant.h"

namespace tovalin {

/// `value`, which is finite, correctly rounded to at most `significant` digits
/// (1 to 17). Example: 2.675 with 15 gives 2675, exponent 1.
DecimalDigits ToDecimalDigits(double value, int significant);

// The ordinary text of a number under the locale, added to the end of `text`:
// positional while it needs at most as many digits on either side of the point
// as the subtype is exact to (15 for Double, 7 for Single), otherwise as
// 1.5E-16. The texts of values that are not finite, which only a host can hand
// in, are "INF", "-INF" and "NaN": they do not read as numbers.
void AppendNumber(Text& text, double value);
void AppendNumber(Text& text, float value);
void AppendNumber(Text& text, Currency value);
void AppendNumber(Text& text, std::int64_t value);
/// The same text in UTF-8.
void AppendNumber(std::string& utf8, double value);

}  // namespace tovalin
