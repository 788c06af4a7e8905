#pragma once

#include <string>

#include "tovalin/text.h"

namespace tovalin {

// Code page 1252, the single-byte code page of the files that the library reads
// and writes. Every byte has a character: the five that the page leaves without
// one (81, 8D, 8F, 90, 9D hexadecimal) stand for the control of the same number,
// so that bytes read and written again stay as they were.

/// The character of a byte.
char16_t FromCodePage(unsigned char c);

/// The byte of a character, "?" for one outside the page.
char ToCodePage(char16_t c);

bool InCodePage(char16_t c);

/// Appends `text`, one byte for each character. The halves of a surrogate pair
/// give one "?" each: widths counted in characters stay what they were.
void AppendToCodePage(std::string& bytes, TextView text);

}  // namespace tovalin
