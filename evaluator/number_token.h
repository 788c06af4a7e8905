#pragma once

#include <optional>

#include "tovalin/convert.h"

namespace tovalin {

/// The number that a token reads as. Most operands are names: a letter in front
/// settles that without reading on.
inline std::optional<double> NumberToken(TextView token) {
  if (token.empty()) return std::nullopt;
  const char16_t lower = token.front() | 0x20;
  if ((lower >= u'a' && lower <= u'z') || token.front() == u'_') return std::nullopt;
  return ReadNumber(token);
}

}  // namespace tovalin
