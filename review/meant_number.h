#pragma once

#include <optional>

#include "review/source.h"

namespace tovalin::review {

/// What ReadMeantNumber found.
struct NumberReading {
  std::size_t tokens = 1;  // that make up the number
  double value = 0;
  Text number;  // as the language writes it, empty when that cannot be told
};

/// The number that an unknown name, with the tokens behind it, was meant as: "1E-5",
/// "1.234.567,89", "12 500", "4%", "1.2.3". None where it looks like a name.
std::optional<NumberReading> ReadMeantNumber(const TokenList& list, std::size_t name);

/// The number that neighbouring digits were meant as that commas stand between, with no
/// blank: thousands as in "1,234,567.8", or decimals as in "12,5" and "1.234,5". Empty
/// where that cannot be told. `parts` are the texts between the commas.
Text NumberWithCommas(const std::vector<TextView>& parts);

}  // namespace tovalin::review
