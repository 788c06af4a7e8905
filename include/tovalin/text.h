#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "tovalin/api.h"

namespace tovalin {

/// Counted text of 16-bit characters, the text of every call of the library.
using Text = std::u16string;
using TextView = std::u16string_view;

/// UTF-8 to Text. Bytes that are not UTF-8 become U+FFFD, one for each byte.
TOVALIN_API Text FromUtf8(std::string_view utf8);

/// Text to UTF-8. A surrogate without its partner becomes U+FFFD.
TOVALIN_API std::string ToUtf8(TextView text);
/// The same at the end of `utf8`.
TOVALIN_API void AppendUtf8(std::string& utf8, TextView text);

/// The character that stands for `c` when case is disregarded: "Ñ" and "ñ"
/// fold to the same character, "n" to another one.
TOVALIN_API char16_t FoldCase(char16_t c);

/// `text` with every letter in upper case.
TOVALIN_API Text ToUpper(TextView text);

/// `text` with every letter in lower case.
TOVALIN_API Text ToLower(TextView text);

/// Whether two texts are equal without regard to case.
TOVALIN_API bool EqualFolded(TextView left, TextView right);

/// Position of `part` in `text` without regard to case, searched from `from`
/// (0-based), or TextView::npos. An empty part is found at `from`.
TOVALIN_API std::size_t FindFolded(TextView text, TextView part, std::size_t from = 0);

/// `text` without the blanks (character 32) at both ends.
TOVALIN_API TextView Trim(TextView text);

/// Hash and equality of names: without regard to case, open to look-up by view.
struct TOVALIN_API FoldedHash {
  using is_transparent = void;
  std::size_t operator()(TextView name) const;
};

struct FoldedEqual {
  using is_transparent = void;
  bool operator()(TextView left, TextView right) const { return EqualFolded(left, right); }
};

}  // namespace tovalin
