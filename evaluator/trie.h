#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "tovalin/text.h"

namespace tovalin {

/// Finds patterns in a text in one pass, however many there are: the pattern that
/// starts earliest, and of those the longest, without regard to case.
///
/// The patterns form a trie over folded characters; each node knows the node of its
/// longest proper suffix (the automaton of Aho and Corasick), so a character is
/// never looked at again from another start.
class Trie {
 public:
  struct Match {
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    std::size_t pattern = kNone;  // in the order in which they were added, from 0
    std::size_t start = 0;
    std::size_t length = 0;

    explicit operator bool() const { return pattern != kNone; }
  };

  /// Forgets all patterns.
  void Clear();
  /// Adds a pattern that is not empty. False when it is there already: the first one
  /// of a spelling keeps it. Raises 7 when there are too many.
  bool Add(TextView pattern);
  /// Makes the trie ready for Find, once all patterns are there.
  void Finish();

  Match Find(TextView text, std::size_t from) const;

 private:
  struct Node {
    char16_t character = 0;
    std::uint16_t pattern = 0;  // 1 + the index of the longest pattern that ends here
    std::uint32_t first_child = 0;
    std::uint32_t next_sibling = 0;
    std::uint32_t suffix = 0;
    std::uint32_t depth = 0;
  };

  std::vector<std::uint32_t> LinkSuffixes();
  std::size_t MakeClasses();
  void Renumber(const std::vector<std::uint32_t>& order);
  void FillRows();
  std::uint32_t Child(std::uint32_t node, char16_t c) const;
  std::uint32_t Next(std::uint32_t node, char16_t c) const;

  static constexpr std::size_t kDirect = 256;       // characters with a class
  static constexpr std::size_t kMostInRows = 6144;  // 12 KB

  std::vector<Node> nodes_ = std::vector<Node>(1);
  std::vector<std::uint32_t> lengths_;         // of the patterns
  std::array<std::uint8_t, kDirect> class_{};  // 0: in no pattern
  std::size_t rowed_ = 0;                      // the nodes that have a row
  unsigned row_shift_ = 0;                     // how many bits a class takes
  std::vector<std::uint16_t> rows_;            // where each class leads to
};

}  // namespace tovalin
