#pragma once

#include <cstddef>
#include <cstdint>

#include "tovalin/text.h"
#include "tovalin/variant.h"

// What formulas and hosts do with texts. Operations that make a longer text raise 7 when
// the result would not fit in a text of the platform (2^30 characters).

namespace tovalin::evaluator {

/// `text` with every occurrence of `macro`, compared exactly and taken from left
/// to right, replaced by `replacement`. An empty macro changes nothing.
Text ReplaceString(TextView text, TextView macro, TextView replacement);

/// `text` without any occurrence of `part`, compared exactly.
Text Strip(TextView text, TextView part);

/// How often `part` occurs in `text`, compared exactly, without overlaps; 0 for
/// an empty part.
std::size_t CharCount(TextView text, TextView part);

/// `text` repeated `count` times. Raises 5 for a negative count.
Text Replicate(TextView text, std::int32_t count);

/// Extracts the first field from the front of `rest`, with the delimiter behind it,
/// and gives the field. Between quotes, when a quote is given, the delimiter is
/// text and a doubled quote is one quote. An empty delimiter gives all of `rest`.
/// Example: of "a,b,c" it gives "a" and leaves "b,c".
Text CSVNextChar(TextView& rest, TextView delimiter, TextView quote = {});

/// The letters and digits of a tax number before its last "-", or all of them
/// when there is none. Example: "800.197.268-4" gives "800197268".
Text StripNit(TextView nit);

/// The check digit of a Colombian tax number (NIT) as text; empty for the empty
/// text. Blanks at the ends do not count, and a character that is no digit
/// counts as 0. Raises 5 for more than 15 characters.
/// Example: "800197268" gives "4".
Text DigitoV(TextView nit);

/// `text` without the reserved characters, both quotes and blanks.
Text RemoveChars(TextView text);

/// `text` with every run of digits filled with zeros at the left to the length
/// of the longest one, so that codes of several levels sort as text.
/// Example: "1.10.300" gives "001.010.300".
Text AjustarDigitosGrupo(TextView text);

/// `column` with brackets around each part between dots, unless the part has
/// them; blanks around parts are dropped and empty parts stay empty. A dot within
/// brackets separates nothing. Example: "a.[b c]" gives "[a].[b c]".
Text DoAutoBracket(TextView column);

/// The `part`-th word of a person's full name, counted from 1; empty for part 0
/// and beyond the last word. The particles de, del, la, las, los, y, e are no
/// words of their own when another word follows, in any case.
/// Example: word 2 of "María de los Ángeles Pérez" is "Ángeles".
TextView WordOfName(TextView full_name, std::uint8_t part);

/// The last word of `text`.
TextView ExtraeRev(TextView text);

/// `default_value` when `value` is Null, else `value`.
const Variant& nvl(const Variant& value, const Variant& default_value);

}  // namespace tovalin::evaluator
