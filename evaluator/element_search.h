#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "evaluator/symbols.h"
#include "evaluator/token.h"

namespace tovalin {

/// The built-in function that a function's name ("MEDIO(") stands for, or null.
const BuiltinFunction* FunctionOf(TextView function_name);

/// An element of the vocabulary, as tokens take it over.
struct Element {
  TokenKind kind;
  OperatorCode operator_code = OperatorCode::Unknown;
  bool is_word = false;    // found with a blank on each side, which its span holds
  bool is_opener = false;  // of a function: it ends in a bracket
  std::uint32_t length = 0;
  std::optional<std::int32_t> priority = {};  // of an operator
  Campo* record = nullptr;                    // null for a separator
  const BuiltinFunction* builtin = nullptr;   // of a function that is built in
};

/// The element of an operator's record.
Element OperatorElement(Campo& record);

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
    const Element* element;  // null when there is none
    std::size_t start;
  };

  /// Reads the tables of `symbols`; the records stay theirs.
  void Build(const Symbols& symbols);

  Match Find(TextView text, std::size_t from) const;

  /// The word operator of that name ("AND"), or null.
  const Element* FindWord(TextView name) const;

 private:
  struct Node {
    char16_t character = 0;
    std::uint16_t element = 0;  // 1 + the index of the longest element that ends here
    std::uint32_t first_child = 0;
    std::uint32_t next_sibling = 0;
    std::uint32_t suffix = 0;
    std::uint32_t depth = 0;
  };

  void AddOperator(const Element& element);
  void Add(TextView pattern, Element element);
  std::vector<std::uint32_t> LinkSuffixes();
  std::size_t MakeClasses();
  void Renumber(const std::vector<std::uint32_t>& order);
  void FillRows();
  std::uint32_t Child(std::uint32_t node, char16_t c) const;
  std::uint32_t Step(std::uint32_t node, char16_t c) const;

  static constexpr std::size_t kDirect = 256;       // characters with a class
  static constexpr std::size_t kMostInRows = 6144;  // 12 KB
  static constexpr std::size_t kLongest = 63;       // words longer than that count as so long
  static std::uint64_t LengthBit(TextView word) {
    return std::uint64_t{1} << std::min(word.size(), kLongest);
  }

  std::vector<Element> elements_;
  std::vector<Node> nodes_;
  std::vector<Element> words_;
  std::uint64_t word_lengths_ = 0;             // a bit for each length that a word has
  std::array<std::uint8_t, kDirect> class_{};  // 0: in no element
  std::size_t rowed_ = 0;                      // the nodes that have a row
  unsigned row_shift_ = 0;                     // how many bits a class takes
  std::vector<std::uint16_t> rows_;            // where each class leads to
};

}  // namespace tovalin
