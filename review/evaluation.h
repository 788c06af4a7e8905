#pragma once

#include <vector>

#include "review/abstract_value.h"
#include "review/findings.h"
#include "review/source.h"

namespace tovalin::review {

/// Evaluates a formula over types, spans and what is known to be constant: a stack as
/// the evaluator's, whose values say where they come from. Where the evaluator would
/// take other values than the ones that stand beside an operator or in the brackets of a
/// call, that is told, and the review goes on as it was meant.
class Evaluation {
 public:
  Evaluation(const Source& source, const Surroundings& surroundings, Findings& findings)
      : source_(source), surroundings_(surroundings), findings_(findings) {}

  void Run();

 private:
  using Values = std::vector<AbstractValue>;

  void Take(std::uint32_t token);
  void Push(AbstractValue value, std::uint32_t first, std::uint32_t last);
  AbstractValue Pop();
  void WithBrackets(AbstractValue& value) const;
  AbstractValue ValueOfName(const Token& token) const;
  Text TextOf(const AbstractValue& value) const {
    return Shown(source_.TextOf(source_.SpanOf(value.first, value.last)));
  }
  Span SpanOf(const AbstractValue& value) const { return source_.SpanOf(value.first, value.last); }

  // Operators: evaluation_operators.cc
  void EvaluateOperator(std::uint32_t token);
  void EvaluateFirst(std::uint32_t token, const Operator* row, AbstractValue right);
  void EvaluateGlued(std::uint32_t token, AbstractValue right);
  void EvaluateBetween(std::uint32_t token, AbstractValue high);
  void EvaluateLooseBetween(std::uint32_t token, const AbstractValue& low);
  void EvaluateBinary(std::uint32_t token, const Operator* row, AbstractValue right);
  std::uint32_t DropGroup(std::uint32_t token, std::uint32_t last);
  bool IsFirst(std::uint32_t token) const;
  bool IsMisread(std::uint32_t token, const Operator& row) const;

  // Calls: evaluation_calls.cc
  void EvaluateCall(std::uint32_t token);
  void EvaluateBareFunction(std::uint32_t token);
  void CheckAnswered(std::uint32_t token);

  void Finish();

  const Source& source_;
  const Surroundings& surroundings_;
  Findings& findings_;
  Values stack_;
  // The first operator that computes with others than its neighbours, and with what.
  std::uint32_t misplaced_ = kNone;
  Text misplaced_operands_;
};

}  // namespace tovalin::review
