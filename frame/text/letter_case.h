#pragma once

#include <cstdint>

namespace tovalin {

/// The lower-case partner of a letter beyond U+00FF, or the character itself.
char16_t LowerOutsideLatin1(char16_t c);

/// The upper-case partner of a letter beyond U+007F, or the character itself.
char16_t UpperOutsideAscii(char16_t c);

}  // namespace tovalin
