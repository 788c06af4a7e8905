#pragma once

#include <cstddef>
#include <vector>

#include "tovalin/text.h"

namespace tovalin {

/// Searches texts for `part`, which must outlive it, compared exactly. A long part is
/// found in linear time, where the plain search takes the product of both lengths at
/// worst.
class TextSearch {
 public:
  /// The longest part that the plain search looks for.
  static constexpr std::size_t kLongestPlain = 64;

  explicit TextSearch(TextView part);

  /// The position of the first occurrence at or after `from`, or TextView::npos.
  std::size_t Find(TextView text, std::size_t from = 0) const;

 private:
  std::size_t Extend(std::size_t matched, char16_t c) const;

  TextView part_;
  // Of a long part: for each of its prefixes, the length of the longest proper prefix
  // that is also its end (Knuth, Morris and Pratt).
  std::vector<std::size_t> borders_;
};

}  // namespace tovalin
