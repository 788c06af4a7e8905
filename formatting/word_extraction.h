#pragma once

#include <cstdint>

#include "tovalin/text.h"

namespace tovalin {

// Words are separated by single blanks: two blanks in a row have an empty word
// between them. Blanks at the ends do not count. Both answer a part of `text`
// itself, which must outlive the answer.

/// The `part`-th word of `text`, counted from 1; empty for part 0 and for a
/// part beyond the last word.
TextView NthWord(TextView text, std::uint8_t part);

/// `text` from its `part`-th word to its end, empty in the same cases.
TextView ExtraerFrase(TextView text, std::uint8_t part);

}  // namespace tovalin
