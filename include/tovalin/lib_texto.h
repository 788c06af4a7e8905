#pragma once

#include <cstdint>

#include "tovalin/api.h"
#include "tovalin/object.h"

namespace tovalin {

/// Words of a text, and its capitals.
///
/// Words are separated by single blanks: two blanks in a row have an empty word
/// between them. Blanks at the ends of a text do not count.
class TOVALIN_API LibTexto : public Object {
 public:
  static constexpr TextView kClassName = u"LibTexto";

  static const ClassInfo kInfo;
  const ClassInfo& Class() const override;

  /// The `vPart`-th word of `vData`, counted from 1; the empty text for part 0
  /// and for a part beyond the last word.
  /// Example: word 2 of "uno dos tres" is "dos".
  Text ExtraerPalabra(const Text& vData, std::uint8_t vPart) const;

  /// `vData` from its `vPart`-th word to its end; the empty text in the same cases.
  /// Example: from word 2 on, "uno dos tres" is "dos tres".
  Text ExtraerFrase(const Text& vData, std::uint8_t vPart) const;

  /// `vstrWord` with a capital first and the rest in lower case in every word of
  /// more than three characters, and in the first word whatever its length.
  /// Other short words stay as they are, and so does a text of one or two
  /// characters. Example: "calle de la ROSA" gives "Calle de la Rosa".
  Text TipoFrase(const Text& vstrWord) const;
};

}  // namespace tovalin
