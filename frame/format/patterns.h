#pragma once

#include "tovalin/text.h"
#include "tovalin/variant.h"

namespace tovalin {

/// `value` under `pattern`: a named format ("Standard", "Fecha corta" ...) or a
/// pattern of numbers (0 # . , % E+), of dates (d m y q w h n s, AM/PM, ttttt,
/// c, / and :) or of text (@ & < > !), with `\x` and "literal" for the rest.
///
/// The first character of a pattern that belongs to one kind alone decides its
/// kind; characters of the other kinds then stand for themselves. The value is
/// taken as that kind: a text that reads as a number under a number pattern, a
/// number or such a text under a date pattern, the ordinary text of anything
/// under a text pattern. A text that does not read as the kind is shown as it
/// is, and so is a number beyond the calendar under a date pattern. Empty counts as 0, or as the
/// null section of a number pattern that has one. Null gives the pattern's section for it, or the
/// empty text. An empty pattern gives the ordinary text.
///
/// Decimals are rounded on the 15 significant digits of the value (7 of a
/// Single, all of a Currency), halves away from zero.
///
/// Raises 13 for a value without a text (an object, an array, an error), 6 for
/// infinity under a number pattern.
///
/// Example: Format(1234.5, u"#,##0.00") is "1,234.50".
Text Format(const Variant& value, TextView pattern);

}  // namespace tovalin
