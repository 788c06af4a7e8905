#pragma once

#include <optional>

#include "tovalin/convert.h"

namespace tovalin {

/// The number that a token reads as. Most operands are names: a letter in front
/// settles that without reading on.
inline std::optional<double> NumberToken(TextView token) {
  if (token.empty()) return std::nullopt;
  const char16_t folded = FoldCase(token.front());
  if ((folded >= u'a' && folded <= u'z') || folded == u'_') return std::nullopt;
  return ReadNumber(token);
}

}  // namespace tovalin
