#pragma once

#include <span>

#include "evaluator/builtins.h"
#include "tovalin/variant.h"

// The functions behind the rows of the table in builtins.cc, by family. The
// arguments a, b, c are those of the formula in the order written.

namespace tovalin::builtins {

using Arguments = std::span<const Variant>;

// builtins_number.cc
Variant AjusteMedio(Arguments arguments, const BuiltinContext&);
Variant Redondear(Arguments arguments, const BuiltinContext&);
Variant Sine(Arguments arguments, const BuiltinContext&);
Variant Cosine(Arguments arguments, const BuiltinContext&);
Variant Tangent(Arguments arguments, const BuiltinContext&);
Variant Cotangent(Arguments arguments, const BuiltinContext&);
Variant Secant(Arguments arguments, const BuiltinContext&);
Variant Cosecant(Arguments arguments, const BuiltinContext&);
Variant AbsoluteValue(Arguments arguments, const BuiltinContext&);
Variant Val(Arguments arguments, const BuiltinContext&);
Variant IsNumber(Arguments arguments, const BuiltinContext&);
Variant AmountInWords(Arguments arguments, const BuiltinContext&);
Variant FormatValue(Arguments arguments, const BuiltinContext&);

// builtins_text.cc
Variant Middle(Arguments arguments, const BuiltinContext&);
Variant Right(Arguments arguments, const BuiltinContext&);
Variant Left(Arguments arguments, const BuiltinContext&);
Variant Unpad(Arguments arguments, const BuiltinContext&);
Variant Pad(Arguments arguments, const BuiltinContext&);
Variant PadDigitGroups(Arguments arguments, const BuiltinContext&);
Variant Replace(Arguments arguments, const BuiltinContext&);
Variant StripTaxNumber(Arguments arguments, const BuiltinContext&);
Variant RemoveReserved(Arguments arguments, const BuiltinContext&);
Variant AutoBracket(Arguments arguments, const BuiltinContext&);
Variant CheckDigit(Arguments arguments, const BuiltinContext&);
Variant TrimBlanks(Arguments arguments, const BuiltinContext&);
Variant Length(Arguments arguments, const BuiltinContext&);
Variant CharacterOf(Arguments arguments, const BuiltinContext&);
Variant CodeOf(Arguments arguments, const BuiltinContext&);
Variant FirstName(Arguments arguments, const BuiltinContext&);
Variant SecondName(Arguments arguments, const BuiltinContext&);
Variant Phrase(Arguments arguments, const BuiltinContext&);
Variant Word(Arguments arguments, const BuiltinContext&);
Variant LastWord(Arguments arguments, const BuiltinContext&);

// builtins_date.cc
Variant DaysOf360(Arguments arguments, const BuiltinContext&);
Variant MonthName(Arguments arguments, const BuiltinContext&);
Variant ShortMonthName(Arguments arguments, const BuiltinContext&);
Variant Today(Arguments arguments, const BuiltinContext& context);
Variant Now(Arguments arguments, const BuiltinContext& context);
Variant Year(Arguments arguments, const BuiltinContext&);
Variant Month(Arguments arguments, const BuiltinContext&);
Variant Day(Arguments arguments, const BuiltinContext&);
Variant DateFromParts(Arguments arguments, const BuiltinContext&);
Variant MoveDate(Arguments arguments, const BuiltinContext&);
Variant IsDateValue(Arguments arguments, const BuiltinContext&);

// builtins_logic.cc
Variant IsNull(Arguments arguments, const BuiltinContext&);
Variant ValueIfNull(Arguments arguments, const BuiltinContext&);
Variant Smaller(Arguments arguments, const BuiltinContext&);
Variant Larger(Arguments arguments, const BuiltinContext&);
Variant Choose(Arguments arguments, const BuiltinContext&);

}  // namespace tovalin::builtins
