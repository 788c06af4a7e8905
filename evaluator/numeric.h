#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "evaluator/language.h"
#include "evaluator/rounding.h"
#include "frame/system/power.h"
#include "frame/value/arithmetic.h"
#include "frame/value/comparison.h"
#include "tovalin/convert.h"

// The operations of numeric programs on doubles, each written once: a program of
// one row and a block of rows instantiate the same template. A Boolean is 1 or 0.
// What has no result here (a division by zero, an argument that raises) is no
// number (NaN); the plan is evaluated by values then, so that each rule of a value
// stands in one place.

namespace tovalin {

inline constexpr std::size_t kNumericCodes = static_cast<std::size_t>(NumericCode::Adjust) + 1;
inline constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

constexpr int OperandsOf(NumericCode code) {
  if (code >= NumericCode::Choose) return 3;
  return code == NumericCode::Negate || code == NumericCode::Abs ? 1 : 2;
}

/// Whether a result may be finite when the left operand, or the right one, is not:
/// a sum, difference or product of what is not finite is not finite either.
constexpr bool MayHideLeft(NumericCode code) {
  return (code >= NumericCode::Less && code <= NumericCode::Different) ||
         (code >= NumericCode::Or && code <= NumericCode::Max) || code == NumericCode::Choose;
}
constexpr bool MayHideRight(NumericCode code) {
  return MayHideLeft(code) || code == NumericCode::Divide;
}

namespace numeric {

inline double IfDefinedPower(double base, double exponent) {
  const bool is_defined =
      arithmetic::IsFinite(base) && arithmetic::IsFinite(exponent) &&
      (base > 0 || (base == 0 ? exponent >= 0 : exponent == std::trunc(exponent)));
  return is_defined ? RaisedTo(base, exponent) : kNoNumber;
}

/// What `compute` gives, or no number where it raises.
template <class Function>
double IfNoneRaises(Function compute) {
  try {
    return compute();
  } catch (const Error&) {
    return kNoNumber;
  }
}

}  // namespace numeric

/// The result of an operation of one or two operands, of which finite ones give
/// what the operation of values gives, to the last bit.
template <NumericCode kCode>
[[gnu::always_inline]] inline double Compute(double left, double right) {
  using enum NumericCode;
  if constexpr (kCode == Add) return left + right;
  if constexpr (kCode == Subtract) return left - right;
  if constexpr (kCode == Multiply || kCode == And) return left * right;
  if constexpr (kCode == Divide) return left / right;
  if constexpr (kCode == Power) return numeric::IfDefinedPower(left, right);
  if constexpr (kCode == TimesNegated) return left * right * -1;
  if constexpr (kCode == Less) return left < right ? 1 : 0;
  if constexpr (kCode == LessOrEqual) return left <= right ? 1 : 0;
  if constexpr (kCode == Greater) return left > right ? 1 : 0;
  if constexpr (kCode == GreaterOrEqual) return left >= right ? 1 : 0;
  if constexpr (kCode == Equal)
    return left == right || comparison::EqualNumbers(left, right) ? 1 : 0;
  if constexpr (kCode == Different) return left != right ? 1 : 0;
  if constexpr (kCode == Min) return left < right ? left : right;
  if constexpr (kCode == Max || kCode == Or) return left > right ? left : right;
  if constexpr (kCode == Negate) return right * -1;
  if constexpr (kCode == Abs) return std::fabs(right);
  if constexpr (kCode == Round)
    return numeric::IfNoneRaises([=] { return evaluator::Redondear(left, ToLong(right)); });
}

/// The same of an operation of three.
template <NumericCode kCode>
[[gnu::always_inline]] inline double Compute(double first, double left, double right) {
  if constexpr (kCode == NumericCode::Choose)
    return first != 0 ? left : right;
  else
    return numeric::IfNoneRaises(
        [=] { return evaluator::AjusteMedio(first, left, ToLong(right)); });
}

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

/// One operation of two numbers, or of one (the right), as a run computes it.
double RunOne(NumericCode code, double left, double right);

/// Makes a numeric program of postfix items, which come in order. Each member returns
/// false for what such a program cannot compute; there is no program then.
class NumericBuilder {
 public:
  enum class SlotType : std::uint8_t { Number, Boolean };

  explicit NumericBuilder(NumericProgram& program);
  bool LoadNumber(double number) { return Load(NumericOperand::Number, {.number = number}); }
  bool LoadConstant(const Variant& value) {
    return value.Is(Subtype::Double) && Load(NumericOperand::Source, {.source = &value});
  }
  bool LoadVariable(const Campo& record);
  /// `row` is null for an operator without a meaning.
  bool Apply(const Operator* row);
  bool Call(const BuiltinFunction& function);
  void Finish();

 private:
  struct PendingLoad {
    NumericOperand kind;
    ImmediateOperand operand;
  };

  bool Load(NumericOperand kind, ImmediateOperand operand);
  bool Push(SlotType type);
  bool Pop(SlotType type) { return size_ > 0 && types_[--size_] == type; }
  bool Emit(NumericCode code, SlotType gives);
  void AppendLoad();
  void Append(NumericStep step);
  void Flush();

  NumericProgram& program_;
  std::array<SlotType, NumericProgram::kDeepest> types_{};  // of what is on the stack
  std::uint16_t size_ = 0;
  std::uint16_t deepest_ = 0;
  bool has_operations_ = false;
  std::array<PendingLoad, 2> loads_;
  std::uint8_t pending_ = 0;           // of the loads
  std::array<NumericStep, 64> steps_;  // so that most programs take memory once
  std::uint8_t count_ = 0;
};

}  // namespace tovalin
