#include "evaluator/builtins.h"

#include <algorithm>

#include "evaluator/builtin_arguments.h"
#include "evaluator/builtin_families.h"

namespace tovalin {
namespace {

namespace b = builtins;

constexpr Builtin kBuiltins[] = {
    {u"AJUSTEMEDIO", 3, b::AjusteMedio},
    {u"REDONDEAR", 2, b::Redondear},
    {u"SIN", 1, b::Sine},
    {u"COS", 1, b::Cosine},
    {u"TAN", 1, b::Tangent},
    {u"CTN", 1, b::Cotangent},
    {u"SEC", 1, b::Secant},
    {u"CSC", 1, b::Cosecant},
    // Deliberately in mixed case, so that no upper-case word ever finds it:
    // ISNULL( belongs to the hosts, whose own answer would be lost otherwise.
    {u"IsNull", 1, b::IsNull},
    {u"NVL", 2, b::ValueIfNull},
    {u"MEDIO", 3, b::NullFirst<b::Middle>},
    {u"MID", 3, b::NullFirst<b::Middle>},
    {u"DERECHA", 2, b::NullFirst<b::Right>},
    {u"RIGHT", 2, b::NullFirst<b::Right>},
    {u"IZQUIERDA", 2, b::NullFirst<b::Left>},
    {u"LEFT", 2, b::NullFirst<b::Left>},
    {u"DESAJUSTAR", 3, b::NullFirst<b::Unpad>},
    {u"AJUSTAR", 3, b::NullFirst<b::Pad>},
    {u"AJUSTARDIGITOSGRUPO", 1, b::NullFirst<b::PadDigitGroups>},
    {u"REEMPLAZARCADENA", 3, b::NullFirst<b::Replace>},
    {u"STRIPNIT", 1, b::NullFirst<b::StripTaxNumber>},
    {u"REMOVECHARS", 1, b::NullFirst<b::RemoveReserved>},
    {u"MONTOESCRITO", 1, b::AmountInWords},
    {u"DOAUTOBRACKET", 1, b::NullFirst<b::AutoBracket>},
    {u"DIAS360", 2, b::DaysOf360},
    {u"DIGITOV", 1, b::NullFirst<b::CheckDigit>},
    {u"NOMBREMES", 1, b::MonthName},
    {u"MESABR", 1, b::ShortMonthName},
    {u"ABS", 1, b::AbsoluteValue},
    {u"DATE", 0, b::Today},
    {u"NOW", 0, b::Now},
    {u"YEAR", 1, b::NullFirst<b::Year>},
    {u"MONTH", 1, b::NullFirst<b::Month>},
    {u"DAY", 1, b::NullFirst<b::Day>},
    {u"TRIM", 1, b::NullFirst<b::TrimBlanks>},
    {u"LEN", 1, b::NullFirst<b::Length>},
    {u"VAL", 1, b::NullFirst<b::Val>},
    {u"ESNUMERO", 1, b::IsNumber},
    {u"ISNUMERIC", 1, b::IsNumber},
    {u"SERIEFECHA", 3, b::DateFromParts},
    {u"DATESERIAL", 3, b::DateFromParts},
    {u"DATEADD", 3, b::NullLast<b::MoveDate>},
    {u"ESFECHA", 1, b::IsDateValue},
    {u"CHR", 1, b::CharacterOf},
    {u"ASC", 1, b::NullFirst<b::CodeOf>},
    {u"MIN", 2, b::Smaller},
    {u"MAX", 2, b::Larger},
    {u"IIF", 3, b::Choose},
    {u"FORMAT", 2, b::FormatValue},
    {u"PRIMERNOMBRE", 1, b::NullFirst<b::FirstName>},
    {u"SEGUNDONOMBRE", 1, b::NullFirst<b::SecondName>},
    {u"EXTRAERFRASE", 2, b::NullFirst<b::Phrase>},
    {u"EXTRAERPALABRA", 2, b::NullFirst<b::Word>},
    {u"EXTRAEREV", 1, b::NullFirst<b::LastWord>},
};

}  // namespace

std::span<const Builtin> Builtins() { return kBuiltins; }

const Builtin* FindBuiltin(TextView upper_name) {
  const auto* found = std::ranges::find(kBuiltins, upper_name, &Builtin::name);
  return found == std::end(kBuiltins) ? nullptr : found;
}

}  // namespace tovalin
