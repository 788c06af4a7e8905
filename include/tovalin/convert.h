#pragma once

#include <optional>

#include "tovalin/api.h"
#include "tovalin/text.h"
#include "tovalin/variant.h"

namespace tovalin {

// Conversions of a value to each subtype. All read through by-reference
// Variants. They raise 13 (type mismatch) for a value that has no such form
// (Null, an object, a text that does not read as one) and 6 (overflow) for one
// out of range. Numbers round halves to the even neighbour.

TOVALIN_API std::int16_t ToInteger(const Variant& value);
TOVALIN_API std::int32_t ToLong(const Variant& value);
TOVALIN_API float ToSingle(const Variant& value);
TOVALIN_API double ToDouble(const Variant& value);
TOVALIN_API Currency ToCurrency(const Variant& value);
TOVALIN_API Date ToDate(const Variant& value);
TOVALIN_API bool ToBoolean(const Variant& value);
TOVALIN_API std::uint8_t ToByte(const Variant& value);

/// The ordinary text of a value: numbers in their shortest form of at most 15
/// significant digits (7 for Single, four decimals for Currency), dates under
/// the locale, Booleans as the locale's words, Empty as the empty text.
TOVALIN_API Text ToText(const Variant& value);

/// `value` as the subtype `target`, which is one of the scalar subtypes.
TOVALIN_API Variant Convert(const Variant& value, Subtype target);

/// The numeric test: numbers, Booleans and Empty, and texts that read as
/// numbers under the locale. A date is not numeric.
TOVALIN_API bool IsNumeric(const Variant& value);

/// The number that a whole text reads as under the locale, if it does.
TOVALIN_API std::optional<double> ReadNumber(TextView text);

/// The lenient reading: the number at the start of the text, with "." as the
/// decimal point whatever the locale, blanks skipped, 0 when there is none.
/// "&H" and "&O" numbers are read too. Example: " 12 500.5 kg" gives 12500.5.
TOVALIN_API double LeadingNumber(TextView text);

/// The date test: dates, and texts that read as dates under the locale.
TOVALIN_API bool IsDate(const Variant& value);

/// The platform's name of a subtype: "Double", "String", "Null" ...
TOVALIN_API TextView SubtypeName(Subtype subtype);

}  // namespace tovalin
