#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "evaluator/operators.h"
#include "tovalin/campos.h"
#include "tovalin/text.h"

namespace tovalin {

struct BuiltinFunction;

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
  Token* below = nullptr;  // the one that waits below it, when it waits for its place
};

/// The faults of a check, with the codes that hosts see.
enum class FaultCode : std::int32_t {
  UnclosedLiteral = 1,
  DuplicateOperator = 2,
  BracketMismatch = 3,
  UndefinedVariable = 4,
  MissingExpression = 5,
};

/// One fault of a formula: what, where in the text as the host gave it (from 0),
/// and the message.
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
  std::vector<Fault> faults;  // spans in `text` until they are told to the host
  /// Where an "@" stands in front of a name that was found, in order.
  std::vector<std::uint32_t> at_signs;

  TextView Span(const Token& token) const {
    return TextView(text).substr(token.start, token.length);
  }
  /// The token as a host sees it: literals in double quotes, operators and
  /// functions in the spelling of their tables.
  Text Spelling(const Token& token) const;
  void AppendSpelling(Text& target, const Token& token) const;
};

}  // namespace tovalin
