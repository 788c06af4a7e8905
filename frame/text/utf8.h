#pragma once

#include <cstddef>
#include <string_view>

#include "tovalin/text.h"

namespace tovalin {

/// The most bytes that a 16-bit character takes in UTF-8; a pair of them takes four.
inline constexpr std::size_t kMostUtf8Bytes = 3;

/// Writes `text` in UTF-8 at `target`, where there is room for kMostUtf8Bytes a
/// character, and answers the place behind it. Halves of pairs as in ToUtf8.
char* WriteUtf8(char* target, TextView text);

/// How many bytes there are before the first one that is not UTF-8.
std::size_t ValidUtf8Length(std::string_view bytes);

}  // namespace tovalin
