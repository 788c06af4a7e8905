#pragma once

#include <cstddef>

#include "tovalin/text.h"

namespace tovalin {

/// Whether every character may fill lines: neither a letter nor a digit, which
/// would read as part of the amount, nor a control character or half of a pair.
bool IsFiller(TextView filler);

/// The words of `text`, which single blanks separate, in lines of `width`
/// characters joined by CR LF. Each line is filled to the width with repetitions
/// of `filler`, after a blank where there is room for both; an empty filler leaves
/// the lines as long as their words. Raises 5 for a word longer than a line.
Text FilledLines(TextView text, std::size_t width, TextView filler);

}  // namespace tovalin
