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

constexpr bool IsAscii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

/// Whether a byte is one behind the first of its character.
constexpr bool IsUtf8Continuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// How many characters valid UTF-8 has; a surrogate pair is one.
std::size_t CountUtf8Characters(std::string_view utf8);

/// How many bytes there are before the first one that is not UTF-8.
std::size_t ValidUtf8Length(std::string_view bytes);

}  // namespace tovalin
