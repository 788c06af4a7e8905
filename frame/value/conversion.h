#pragma once

#include <optional>

#include "tovalin/convert.h"

namespace tovalin {

/// The amount nearest to `value`, halves to the even neighbour, if it fits. The
/// value counts as it stands in binary: 0.00015, which lies below its decimal,
/// gives 0.0001.
std::optional<Currency> CurrencyOf(double value);

/// Whether a Date can hold the day count: the years 100 to 9999.
bool IsDateRange(double days);

/// Whether a value is a number itself: no text, Boolean, date or Empty.
bool IsNumber(const Variant& value);

/// A number as a Double and any other value as it is: what a formula variable keeps.
Variant NumberAsDouble(Variant value);

/// Adds the ordinary text of `value` (see ToText) to the end of `text`.
void AppendText(Text& text, const Variant& value);

}  // namespace tovalin
