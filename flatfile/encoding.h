#pragma once

#include <string>
#include <string_view>

#include "flatfile/layout.h"

namespace tovalin::flat {

/// Turns texts into the bytes of a file's encoding.
class Encoder {
 public:
  explicit Encoder(const Layout& layout)
      : encoding_(layout.encoding),
        unencodable_(layout.unencodable),
        replacement_(layout.replacement) {}

  /// Adds `text` and answers how many characters that is. Throws Problem for a
  /// character that the encoding has not, unless the layout says what takes its place.
  std::size_t Append(std::string& bytes, TextView text) const;

 private:
  bool Has(char16_t c) const;
  std::size_t AppendSlowly(std::string& bytes, TextView text) const;
  std::size_t AppendUnicode(std::string& bytes, TextView text) const;
  char16_t Substitute(char16_t c) const;
  char ByteOf(char16_t c) const;

  Encoding encoding_;
  Unencodable unencodable_;
  char16_t replacement_;
};

/// The text of bytes in an encoding. Throws Problem for bytes that are not of it.
Text Decode(std::string_view bytes, Encoding encoding);

/// How many characters bytes of an encoding are.
std::size_t CountCharacters(std::string_view bytes, Encoding encoding);

/// The bytes of `count` characters from the start of `bytes`, fewer at its end.
std::size_t BytesOf(std::string_view bytes, std::size_t count, Encoding encoding);

/// A letter without its accent, such as "N" of "Ñ", or the character itself.
char16_t Unaccented(char16_t c);

}  // namespace tovalin::flat
