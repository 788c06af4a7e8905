#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "evaluator/symbols.h"
#include "evaluator/token.h"

namespace tovalin {

/// The built-in function that a function's name ("MEDIO(") stands for, or null.
const Builtin* BuiltinOf(TextView function_name);

/// Finds the vocabulary elements of a text - operators, function openers and
/// separators - in one pass, however many there are: the element that starts
/// earliest, and of those the longest, without regard to case.
///
/// The elements form a trie over folded characters; each node knows the node of
/// its longest proper suffix (the automaton of Aho and Corasick), so a character
/// is never looked at again from another start.
class ElementSearch {
 public:
  struct Match {
    std::size_t start;
    std::size_t length;
    TokenKind kind;
    Campo* record;           // null for a separator
    const Builtin* builtin;  // of a function that is built in
    OperatorCode operator_code;
    bool is_word;  // found with a blank on each side, which its span holds
  };

  /// Reads the tables of `symbols`; the records stay theirs.
  void Build(const Symbols& symbols);

  std::optional<Match> Find(TextView text, std::size_t from) const;

  /// The word operator of that name ("AND"), or null.
  Campo* FindWord(TextView name) const;

 private:
  struct Element {
    TokenKind kind;
    Campo* record = nullptr;
    const Builtin* builtin = nullptr;
    bool is_word = false;
    OperatorCode operator_code = OperatorCode::Unknown;
    std::uint32_t length = 0;
  };
  struct Node {
    char16_t character = 0;
    std::uint16_t element = 0;  // 1 + the index of the longest element that ends here
    std::uint32_t first_child = 0;
    std::uint32_t next_sibling = 0;
    std::uint32_t suffix = 0;
    std::uint32_t depth = 0;
  };

  void Add(TextView pattern, Element element);
  void LinkSuffixes();
  std::uint32_t Child(std::uint32_t node, char16_t c) const;
  std::uint32_t Step(std::uint32_t node, char16_t c) const;

  static constexpr std::size_t kDirect = 256;  // characters with a place in root_

  std::vector<Element> elements_;
  std::vector<Node> nodes_;
  std::vector<Campo*> words_;
  std::array<std::uint32_t, kDirect> root_{};
  std::array<char16_t, kDirect> fold_{};
};

}  // namespace tovalin
