#pragma once

#include <cstdint>

#include "tovalin/text.h"

namespace tovalin {

// Words are separated by single blanks: two blanks in a row have an empty word
// between them. Blanks at the ends do not count. Both answer a part of `vData`
// itself, which must outlive the answer.

/// The `vPart`-th word of `vData`, counted from 1; empty for part 0 and for a
/// part beyond the last word.
TextView ExtraerPalabra(TextView vData, std::uint8_t vPart);

/// `vData` from its `vPart`-th word to its end, empty in the same cases.
TextView ExtraerFrase(TextView vData, std::uint8_t vPart);

}  // namespace tovalin
