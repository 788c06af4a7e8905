#pragma once

#include <array>
#include <optional>
#include <vector>

#include "review/repair.h"
#include "review/source.h"

namespace tovalin::review {

/// What a review can find. Several of them share a code: the table in findings.cc has
/// the code, the class and the message of each.
enum class Rule : std::uint8_t {
  UnclosedLiteral,
  DuplicateOperator,
  BracketMismatch,
  UndefinedVariable,
  MissingExpression,
  MoreArguments,
  FewerArguments,
  NothingTested,  // BETWEEN without the value that is tested
  NothingOnTheLeft,
  ValuesLeft,
  LogicalFirst,   // AND or OR binds before the comparison beside it
  OtherOperands,  // an operator computes with others than its neighbours
  MinusSubtracts,
  PlusAdds,
  GluedOperator,
  NotANumber,
  NearName,
  OtherFunction,
  SpacedCall,
  BareFunction,
  TextForNumber,
  TextAdded,
  DatesAdded,
  TextCompared,
  TextComparedWithDate,
  TextForDate,
  TextForLogical,
  ConstantCondition,
  ZeroDivisor,
  BlanksDropped,
  NobodyAnswers,
  Cycle,
  RoundsToTens,
  LosesDigits,
  LettersAsDate,
};

enum class Severity : std::uint8_t { Error, Warning, Note };

/// What was found at a place, with what the message names.
struct Finding {
  Rule rule;
  Span span;
  std::vector<Text> names;  // {1}, {2} ... of the message
  std::optional<Repair> repair;
};

struct RuleRow {
  Rule rule;
  TextView code;
  Severity severity;
  TextView message;  // what stands behind "En la posición N, "
};

const RuleRow& RowOf(Rule rule);
/// The message of a finding whose place in the host's text is `position`, from 1.
Text MessageOf(const Finding& finding, std::size_t position);
/// The class as hosts see it: "error", "advertencia", "nota".
TextView ClassOf(Severity severity);

/// What a review has found. The first thousand are kept: nobody reads more.
class Findings {
 public:
  static constexpr std::size_t kMost = 1000;

  void Add(Rule rule, Span span, std::vector<Text> names = {},
           std::optional<Repair> repair = std::nullopt) {
    if (list_.size() < kMost) list_.push_back({rule, span, std::move(names), std::move(repair)});
  }
  bool IsFull() const { return list_.size() >= kMost; }
  std::size_t Count() const { return list_.size(); }
  const std::vector<Finding>& List() const { return list_; }
  /// In the order of their places, errors before warnings, each fault of the check once.
  void Sort();

 private:
  std::vector<Finding> list_;
};

/// A part of a formula as messages show it: long ones are cut.
Text Shown(TextView text);

}  // namespace tovalin::review
