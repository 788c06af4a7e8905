#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "evaluator/language.h"
#include "evaluator/trie.h"

namespace tovalin {

enum class TokenKind : std::uint8_t {
  Number,
  Literal,   // the span is what stands between the quotes
  Operator,  // `record` is its row of the operator table
  Function,  // an opener, "MEDIO("; `record` is its row of the function table
  Open,
  Close,
  Comma,
  Name,   // a variable, a constant, or nothing that is known
  Value,  // what a host put among its tokens and is no text: an operand as it stands
};

/// Where a name was found.
enum class Scope : std::uint8_t { None, Local, Variable, Constant };

/// One token of a formula, as a span of its text.
struct Token {
  TokenKind kind = TokenKind::Name;
  OperatorCode operator_code = OperatorCode::Unknown;
  Scope scope = Scope::None;  // of a Name, once it was looked up
  bool is_opener = false;     // of a Function: it ends in a bracket
  std::uint32_t start = 0;
  std::uint32_t length = 0;
  std::optional<std::int32_t> priority;      // of an Operator, if its row has one
  Campo* record = nullptr;                   // valid while the tables do not change
  const BuiltinFunction* builtin = nullptr;  // of a Function that is built in
  union {
    double number = 0;     // of a Number
    const Variant* value;  // of a Value
  };
  Token* below = nullptr;  // on the operator stack of the conversion to postfix
};

/// The faults of a check, with the codes that hosts see.
enum class FaultCode : std::int32_t {
  UnclosedLiteral = 1,
  DuplicateOperator = 2,
  BracketMismatch = 3,
  UndefinedVariable = 4,
  MissingExpression = 5,
};

/// One fault of a formula: what, where in its text (from 0), and the message.
struct Fault {
  FaultCode code;
  std::uint32_t start;
  std::uint32_t length;
  Text message;
};

/// A formula split into tokens. `text` is the formula without carriage returns.
struct TokenList {
  Text text;
  std::vector<Token> tokens;
  std::vector<Fault> faults;  // spans in `text`
  /// Where an "@" stands in front of a name that was found, in order.
  std::vector<std::uint32_t> at_signs;

  TextView Span(const Token& token) const {
    return TextView(text).substr(token.start, token.length);
  }
  /// The token as a host sees it: literals in double quotes, operators and
  /// functions in the spelling of their tables.
  Text Spelling(const Token& token) const;
  void AppendSpelling(Text& target, const Token& token) const;
  /// The name behind the "@" that an operand or a literal begins with, without the
  /// quotes around both; empty for any other token. The literal "@" alone is no name.
  TextView NameBehindAt(const Token& token) const;
  /// The name that an operand stands for, with an "@" in front or without.
  TextView NameOf(const Token& operand) const;
};

/// Splits formulas into tokens by the operators and functions of the tables, which
/// are read again when these change.
class Lexer {
 public:
  explicit Lexer(const Symbols& symbols) : symbols_(symbols) {}

  /// Splits the text of `list`, a formula without carriage returns. Names are not
  /// looked up yet; a literal that does not end is the only fault told here.
  void Split(TokenList& list);
  /// The tokens of a formula, with carriage returns or without.
  TokenList Tokens(Text formula);
  /// The token that an item of a host's token Collection stands for, appended to
  /// `list` together with its text. An item that is no text has to stay where it is.
  void AppendHostToken(TokenList& list, const Variant& value);

 private:
  /// An operator, function or separator, as tokens take it over.
  struct Element {
    TokenKind kind;
    OperatorCode operator_code = OperatorCode::Unknown;
    bool is_word = false;    // found with a blank on each side, which its span holds
    bool is_opener = false;  // of a function: it ends in a bracket
    std::optional<std::int32_t> priority = {};  // of an operator
    Campo* record = nullptr;                    // null for a separator
    const BuiltinFunction* builtin = nullptr;   // of a function that is built in
  };
  class Run;

  static Element OperatorElement(Campo& record);
  static void SetElement(Token& token, const Element& element);
  void Refresh();
  void AddOperator(const Element& element);
  void Add(TextView pattern, const Element& element) {
    if (trie_.Add(pattern)) elements_.push_back(element);
  }
  const Element* FindWord(TextView name) const;

  static constexpr std::size_t kLongest = 63;  // words longer than that count as so long
  static std::uint64_t LengthBit(TextView word) {
    return std::uint64_t{1} << std::min(word.size(), kLongest);
  }

  const Symbols& symbols_;
  std::optional<std::uint64_t> version_;  // of the vocabulary, when it was read
  Trie trie_;
  std::vector<Element> elements_;   // of the trie's patterns
  std::vector<Element> words_;      // the word operators
  std::uint64_t word_lengths_ = 0;  // a bit for each length that a word has
};

/// Puts the number that a token reads as into `number`; false when it reads as none.
bool ReadNumberToken(TextView token, double& number);

/// A formula without its carriage returns: a pair with a line feed goes whole, a
/// lone line feed deliberately stays, as part of the token around it.
void StripCarriageReturns(Text& formula);

/// A formula as its host gave it, without each "@" in front of a name. `at_signs` are
/// their places in the formula without carriage returns.
Text WithoutAtSigns(TextView formula, const std::vector<std::uint32_t>& at_signs);

}  // namespace tovalin
