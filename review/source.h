#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "evaluator/lexer.h"

namespace tovalin::review {

inline constexpr std::uint32_t kNone = static_cast<std::uint32_t>(-1);

/// A part of a formula's text, from 0, without its end.
struct Span {
  std::uint32_t start = 0;
  std::uint32_t end = 0;
};

/// What of an evaluator a review looks at. Nothing is changed, and no code of the host
/// is called.
struct Surroundings {
  const Symbols& symbols;
  const Campos* locals;  // null for none
  std::function<TokenList(Text)> split;
  bool has_handlers = false;  // somebody answers the functions that are not built in
};

/// What stands between two brackets, or between two commas of a call, without what
/// stands in brackets within.
struct Segment {
  std::uint32_t first = 0;  // tokens, the last one included
  std::uint32_t last = 0;
  std::optional<std::int32_t> comparison;  // the lowest priority of its comparisons
  std::uint32_t logical = kNone;           // its first AND or OR
};

/// A text that the language does not read as a number, though it was meant as one.
struct MeantNumber {
  Span span;
  Text number;  // as the language writes it, empty when that cannot be told
};

/// A formula taken apart as the evaluator does it: its tokens, what the check told, and
/// the order in which the tokens are evaluated. Where nothing but unknown names is
/// wrong, a call of an unknown function ("ROUND(") and a number in another spelling
/// ("1E-5") are one token each, so that the rest can be reviewed.
class Source {
 public:
  Source(const Surroundings& surroundings, const Text& formula);

  const Text& FormulaText() const { return list_.text; }
  const std::vector<Token>& Tokens() const { return list_.tokens; }
  const Token& At(std::uint32_t token) const { return list_.tokens[token]; }
  std::uint32_t Count() const { return static_cast<std::uint32_t>(list_.tokens.size()); }
  const std::vector<Fault>& Faults() const { return list_.faults; }

  /// The tokens in the order of evaluation; none where the formula cannot be evaluated
  /// even if all its names were known.
  const std::vector<std::uint32_t>& Order() const { return order_; }
  /// The other bracket of a bracket, or kNone.
  std::uint32_t Match(std::uint32_t token) const { return match_[token]; }
  const Segment& SegmentOf(std::uint32_t token) const { return segments_[segment_[token]]; }
  const std::vector<MeantNumber>& MeantNumbers() const { return meant_numbers_; }

  /// The span of a token as it is written, with the quotes of a literal.
  Span SpanOf(std::uint32_t token) const;
  Span SpanOf(std::uint32_t first, std::uint32_t last) const {
    return {SpanOf(first).start, SpanOf(last).end};
  }
  TextView TextOf(Span span) const {
    return TextView(list_.text).substr(span.start, span.end - span.start);
  }
  /// The characters of a token, without the quotes of a literal.
  TextView Word(std::uint32_t token) const { return list_.Span(list_.tokens[token]); }
  bool Is(std::uint32_t token, TokenKind kind) const {
    return token < Count() && list_.tokens[token].kind == kind;
  }
  bool IsOperator(std::uint32_t token, OperatorCode code) const {
    return Is(token, TokenKind::Operator) && list_.tokens[token].operator_code == code;
  }
  /// Whether a token opens a call: "MAX(", or a name that is no function with a bracket.
  bool IsCall(std::uint32_t token) const {
    return Is(token, TokenKind::Function) && list_.tokens[token].is_opener;
  }
  /// Whether a comma divides the arguments of a call; elsewhere it is passed over.
  bool IsArgumentComma(std::uint32_t token) const {
    return Is(token, TokenKind::Comma) && SegmentOf(token).first == token + 1;
  }
  std::uint32_t DelimiterLength() const {
    return static_cast<std::uint32_t>(surroundings_.symbols.string_delimiter.size());
  }
  /// A literal as the language writes it.
  Text Quoted(TextView text) const;
  /// Whether nothing stands between two neighbours.
  bool AreTight(std::uint32_t left, std::uint32_t right) const {
    return SpanOf(left).end == SpanOf(right).start;
  }

 private:
  bool OnlyNamesAreWrong() const;
  void JoinTokens();
  void MatchBrackets();
  void FindOrder();

  const Surroundings& surroundings_;
  TokenList list_;
  std::vector<std::uint32_t> order_;
  std::vector<std::uint32_t> match_;
  std::vector<std::uint32_t> segment_;
  std::vector<Segment> segments_;
  std::vector<MeantNumber> meant_numbers_;
};

/// The built-in function of a token, ISNULL( too, which the host computes; or null.
const BuiltinFunction* FunctionRow(const Token& token);

/// The formula variables that a formula names, each once.
std::vector<const Campo*> FormulaVariablesIn(const Surroundings& surroundings, const Text& formula);

bool IsComparison(OperatorCode code);

}  // namespace tovalin::review
