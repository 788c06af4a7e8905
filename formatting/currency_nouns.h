#pragma once

#include "tovalin/text.h"

namespace tovalin {

/// What an amount counts: "peso", "pesos", "centavo", "centavos". All empty but
/// those of the cents for an amount without a currency.
struct CurrencyNouns {
  Text singular;
  Text plural;
  Text cent;
  Text cents;
};

/// Reads "singular|plural|centavo|centavos" ("," separates as well). What is left
/// out or empty is derived: plurals by the rules of the language, the cents from
/// a list of currencies, else "centavo". Blanks at the ends do not count. Raises 5
/// for more than four parts and for nouns that could not be read back.
CurrencyNouns ReadCurrencyNouns(TextView moneda);

/// The plural of a noun and the adjectives after it, up to a "de": "dólar
/// americano" gives "dólares americanos", "unidad de fomento" "unidades de fomento".
Text PluralOf(TextView noun);

/// Whether `word` names cents: "centavos", "céntimo", "centésimos".
bool IsCentNoun(TextView word);

/// Whether one of two words begins with the other, which is not empty: "peso" and
/// "pesos", "colón" and "colones".
bool SameStem(TextView left, TextView right);

}  // namespace tovalin
