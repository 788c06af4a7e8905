#pragma once

#include <optional>

#include "tovalin/convert.h"

namespace tovalin {

/// Whether a token may read as a number. Most operands are names: a letter in front
/// settles that without reading on.
inline bool MayBeNumber(TextView token) {
  if (token.empty()) return false;
  const char16_t lower = token.front() | 0x20;
  return (lower < u'a' || lower > u'z') && token.front() != u'_';
}

/// Puts the number that a token reads as into `number`; false when it reads as none.
inline bool ReadNumberToken(TextView token, double& number) {
  if (!MayBeNumber(token)) return false;
  const std::optional<double> read = ReadNumber(token);
  if (read) number = *read;
  return read.has_value();
}

}  // namespace tovalin
