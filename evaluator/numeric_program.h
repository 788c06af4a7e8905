#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "tovalin/variant.h"

namespace tovalin {

struct Plan;

/// What a step of a numeric program does to the top of its stack.
enum class NumericCode : std::uint8_t {
  Load,  // pushes the number that `source` holds
  Push,  // pushes `number`
  Add,
  Subtract,
  Multiply,
  Divide,
  Power,
  TimesNegated,
  Negate,
  Less,
  LessOrEqual,
  Greater,
  GreaterOrEqual,
  Equal,
  Different,
  And,
  Or,
  Abs,
  Min,
  Max,
  Choose,  // IIF
};

struct NumericStep {
  NumericCode code;
  union {
    double number = 0;
    const Variant* source;  // a variable's value, or a constant's
  };
};

/// A plan that computes with Doubles and Booleans alone, as steps over a stack of
/// doubles (a Boolean is 1 or 0 there). It buys most of the speed of a repeated
/// formula: no Variant is made on the way. A run that meets anything else - a
/// variable of another subtype, a division by zero, a number beyond Double - is
/// given up, and the plan is walked, so that each rule stands in one place.
struct NumericProgram {
  static constexpr std::size_t kDeepest = 32;

  std::vector<NumericStep> steps;
  std::uint32_t depth = 0;  // the most values on the stack
  std::uint32_t left = 0;   // the values at the end; the first is the result
  bool gives_boolean = false;

  /// Nothing when the run has to be given up.
  std::optional<double> Run() const;
};

/// The numeric program of a plan, if its items allow one.
std::optional<NumericProgram> MakeNumericProgram(const Plan& plan);

}  // namespace tovalin
