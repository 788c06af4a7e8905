#pragma once

#include <cstdint>
#include <vector>

#include "evaluator/numeric_operations.h"
#include "tovalin/variant.h"

namespace tovalin {

struct Plan;

/// Where a step finds an operand: on the stack, or in the step itself.
enum class NumericOperand : std::uint8_t { Stack, Number, Source };
inline constexpr std::size_t kNumericOperands = 3;

/// An operand that stands in the step.
union ImmediateOperand {
  double number;
  const Variant* source;  // a variable's value, or a constant's
};

/// One step. The first operand of three is always on the stack.
struct NumericStep {
  NumericCode code;
  NumericOperand left_kind;
  NumericOperand right_kind;
  std::uint8_t handler;  // of the three: see HandlerOf
  ImmediateOperand left;
  ImmediateOperand right;
};

constexpr std::uint8_t HandlerOf(const NumericStep& step) {
  return static_cast<std::uint8_t>((static_cast<std::size_t>(step.code) * kNumericOperands +
                                    static_cast<std::size_t>(step.left_kind)) *
                                       kNumericOperands +
                                   static_cast<std::size_t>(step.right_kind));
}

/// A plan that computes with Doubles and Booleans alone, as steps over a stack of
/// doubles (a Boolean is 1 or 0 there). It buys most of the speed of a repeated
/// formula: no Variant is made on the way. A run that meets anything else - a
/// variable of another subtype, a division by zero, a number beyond Double - gives
/// no number, and the plan is evaluated by values.
struct NumericProgram {
  static constexpr std::size_t kDeepest = 32;

  std::vector<NumericStep> steps;  // none when the plan has no such program
  std::uint16_t depth = 0;         // the most values on the stack
  std::uint16_t left = 0;          // the values at the end; the first is the result
  bool gives_boolean = false;
  bool reads_formulas = false;  // in front of every operation

  /// Whether there is one that may run at any time.
  explicit operator bool() const { return !steps.empty() && !reads_formulas; }
  /// The value, which is finite, or no number when there is no such program or the
  /// run meets what it cannot compute: in a register, unlike an optional, which takes
  /// an eighth of a run's time. It reads formula variables only when they are computed.
  double Run(bool formulas_are_computed = false) const;
  Variant ResultOf(double number) const {
    return gives_boolean ? Variant(number != 0) : Variant(number);
  }
};

/// Makes the numeric program of `plan`, if its items allow one.
void MakeNumericProgram(Plan& plan);

/// One operation of two numbers, or of one (the right), as a run computes it.
double RunOne(NumericCode code, double left, double right);

}  // namespace tovalin
