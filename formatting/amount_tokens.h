#pragma once

#include <vector>

#include "formatting/numeral_words.h"
#include "tovalin/text.h"

namespace tovalin {

/// A word of an amount, or what stands in its place.
struct AmountToken {
  enum class Kind : std::uint8_t {
    Word,
    Fraction,  // "50/100"
    Mark,      // "M/CTE", "M.N."
    Unknown,   // anything else between blanks
    End,
  };
  Kind kind = Kind::Word;
  NumeralWord word;          // of Word
  int cents = 0;             // of Fraction
  TextView text;             // as written
  std::size_t position = 0;  // of its first character, from 0
};

/// The words of an amount, and End. Blanks and line ends separate; what fills the
/// end of a line is left out. The tokens refer to `text`.
std::vector<AmountToken> ScanAmount(TextView text);

}  // namespace tovalin
