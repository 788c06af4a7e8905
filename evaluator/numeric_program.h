#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <vector>

#include "tovalin/variant.h"

namespace tovalin {

struct Plan;

/// What a step of a numeric program does. Those with two or three operands take the
/// top of the stack for the last but one when the step brings the last one along,
/// and else the values on top.
enum class NumericCode : std::uint8_t {
  Load,  // pushes what the step brings
  Add,
  Subtract,
  Multiply,
  Divide,
  Power,
  TimesNegated,
  Less,
  LessOrEqual,
  Greater,
  GreaterOrEqual,
  Equal,
  Different,
  And,
  Or,
  Min,
  Max,
  Choose,  // IIF
  Adjust,  // AjusteMedio
  Round,   // Redondear
  Negate,
  Abs,
};

/// What a step brings along for its last operand.
enum class NumericOperand : std::uint8_t { None, Number, Source };

struct NumericStep {
  NumericCode code;
  NumericOperand operand;
  std::uint8_t handler;  // of the two: see HandlerOf
  union {
    double number = 0;
    const Variant* source;  // a variable's value, or a constant's
  };
};

inline constexpr std::size_t kNumericOperands = 3;

constexpr std::uint8_t HandlerOf(NumericCode code, NumericOperand operand) {
  return static_cast<std::uint8_t>(static_cast<std::size_t>(code) * kNumericOperands +
                                   static_cast<std::size_t>(operand));
}
constexpr NumericStep MakeStep(NumericCode code, double number) {
  return {code, NumericOperand::Number, HandlerOf(code, NumericOperand::Number), {number}};
}
constexpr NumericStep MakeStep(NumericCode code) {
  return {code, NumericOperand::None, HandlerOf(code, NumericOperand::None), {}};
}
inline NumericStep MakeStep(NumericCode code, const Variant& source) {
  NumericStep step = MakeStep(code);
  step.operand = NumericOperand::Source;
  step.handler = HandlerOf(code, step.operand);
  step.source = &source;
  return step;
}

/// A plan that computes with Doubles and Booleans alone, as steps over a stack of
/// doubles (a Boolean is 1 or 0 there). It buys most of the speed of a repeated
/// formula: no Variant is made on the way. A run that meets anything else - a
/// variable of another subtype, a division by zero, a number beyond Double - is
/// given up, and the plan is walked, so that each rule stands in one place.
struct NumericProgram {
  static constexpr std::size_t kDeepest = 32;
  static constexpr double kGivenUp = std::numeric_limits<double>::quiet_NaN();

  std::vector<NumericStep> steps;  // none when the plan has no such program
  std::uint16_t depth = 0;         // the most values on the stack
  std::uint16_t left = 0;          // the values at the end; the first is the result
  bool gives_boolean = false;
  bool reads_formulas = false;  // in front of every operation

  /// Whether there is one that may run at any time.
  explicit operator bool() const { return !steps.empty() && !reads_formulas; }
  /// The value, which is finite, or no number (NaN) when there is no such program or
  /// the run has to be given up: in a register, unlike an optional, which takes an
  /// eighth of a run's time. It reads formula variables only when they are computed.
  double Run(bool formulas_are_computed = false) const;
  Variant ResultOf(double number) const {
    return gives_boolean ? Variant(number != 0) : Variant(number);
  }
};

/// Makes the numeric program of `plan`, if its items allow one.
void MakeNumericProgram(Plan& plan);

/// The number of values that a step takes from the stack, one that it brings along
/// included.
constexpr int OperandsOf(NumericCode code) {
  if (code == NumericCode::Choose || code == NumericCode::Adjust) return 3;
  return code == NumericCode::Negate || code == NumericCode::Abs ? 1 : 2;
}

/// Whether a step's result may be finite when an operand is not: a comparison, or
/// the smaller, larger or chosen of two. What rounds gives no number then.
constexpr bool MayHide(NumericCode code) {
  return (code >= NumericCode::Less && code <= NumericCode::Different) ||
         (code >= NumericCode::Min && code <= NumericCode::Choose);
}

}  // namespace tovalin
