#pragma once

#include <cstdint>

#include "formatting/cardinal.h"
#include "tovalin/text.h"

namespace tovalin {

/// What a word of an amount is.
struct NumeralWord {
  enum class Kind : std::uint8_t {
    Other,     // none of these: perhaps the noun of a currency
    Zero,      // "cero"
    Unit,      // 1 to 9
    Teen,      // 10 to 29
    Tens,      // 30, 40 ... 90
    Cien,      // "cien"
    Hundreds,  // "ciento", 200, 300 ... 900
    Mil,
    Million,  // "millón", and with the value 2 "millones"
    Billion,  // the same
    And,      // "y"
    With,     // "con"
    Minus,    // "menos"
    Of,       // "de"
  };
  Kind kind = Kind::Other;
  NumeralForm form = NumeralForm::Masculine;
  std::int32_t value = 0;

  bool IsNumeral() const { return kind >= Kind::Zero && kind <= Kind::Billion; }
};

/// The letter without regard to case and acute accent: "Ó" and "o" give "o". "ñ"
/// and "ü" are letters of their own.
char16_t FoldLetter(char16_t c);

/// Whether `c` belongs to words: a letter of an alphabet that has two cases.
bool IsLetter(char16_t c);

/// What `word` is, without regard to case and accents.
NumeralWord LookUpNumeral(TextView word);

/// Whether `word`, which is no numeral, looks like one written wrongly:
/// "docientos", "treintaiuno", "veitne".
bool ResemblesNumeral(TextView word);

}  // namespace tovalin
