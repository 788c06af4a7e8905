#include "evaluator/numeric_program.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "evaluator/plan.h"
#include "frame/arithmetic.h"
#include "frame/comparison.h"

namespace tovalin {
namespace {

enum class SlotType : std::uint8_t { Number, Boolean };

struct OperatorRow {
  OperatorCode code;
  NumericCode step;
  SlotType takes;
  SlotType gives;
};

constexpr OperatorRow kOperators[] = {
    {OperatorCode::Add, NumericCode::Add, SlotType::Number, SlotType::Number},
    {OperatorCode::Subtract, NumericCode::Subtract, SlotType::Number, SlotType::Number},
    {OperatorCode::Multiply, NumericCode::Multiply, SlotType::Number, SlotType::Number},
    {OperatorCode::Divide, NumericCode::Divide, SlotType::Number, SlotType::Number},
    {OperatorCode::Power, NumericCode::Power, SlotType::Number, SlotType::Number},
    {OperatorCode::TimesNegated, NumericCode::TimesNegated, SlotType::Number, SlotType::Number},
    {OperatorCode::Less, NumericCode::Less, SlotType::Number, SlotType::Boolean},
    {OperatorCode::LessOrEqual, NumericCode::LessOrEqual, SlotType::Number, SlotType::Boolean},
    {OperatorCode::Greater, NumericCode::Greater, SlotType::Number, SlotType::Boolean},
    {OperatorCode::GreaterOrEqual, NumericCode::GreaterOrEqual, SlotType::Number,
     SlotType::Boolean},
    {OperatorCode::Equal, NumericCode::Equal, SlotType::Number, SlotType::Boolean},
    {OperatorCode::Different, NumericCode::Different, SlotType::Number, SlotType::Boolean},
    {OperatorCode::And, NumericCode::And, SlotType::Boolean, SlotType::Boolean},
    {OperatorCode::Or, NumericCode::Or, SlotType::Boolean, SlotType::Boolean},
};

// The row of each operator code, or null.
constexpr auto kRowOf = [] {
  std::array<const OperatorRow*, static_cast<std::size_t>(OperatorCode::Unknown) + 1> rows{};
  for (const OperatorRow& row : kOperators) rows[static_cast<std::size_t>(row.code)] = &row;
  return rows;
}();

struct FunctionRow {
  TextView name;
  NumericCode step;
};

constexpr FunctionRow kFunctions[] = {
    {u"ABS", NumericCode::Abs},
    {u"MIN", NumericCode::Min},
    {u"MAX", NumericCode::Max},
    {u"IIF", NumericCode::Choose},
};

class ProgramMaker {
 public:
  explicit ProgramMaker(Plan& plan) : plan_(plan), program_(plan.numeric) {}

  bool Make() {
    if (plan_.items.empty()) return false;
    program_.steps.reserve(plan_.items.size() - BroughtAlong());
    for (const Item& item : plan_.items)
      if (!Take(item)) return false;
    program_.depth = deepest_;
    program_.left = size_;
    program_.gives_boolean = types_[0] == SlotType::Boolean;
    return true;
  }

 private:
  static bool IsOperand(const Item& item) {
    return item.kind == ItemKind::Number || item.kind == ItemKind::Variable ||
           item.kind == ItemKind::Constant;
  }

  // How many operands the step behind them may bring along.
  std::size_t BroughtAlong() const {
    std::size_t count = 0;
    for (std::size_t i = 2; i < plan_.items.size(); ++i)
      count += !IsOperand(plan_.items[i]) && IsOperand(plan_.items[i - 1]);
    return count;
  }

  bool Take(const Item& item) {
    switch (item.kind) {
      case ItemKind::Number: {
        NumericStep step{NumericCode::Load, NumericOperand::Number, {item.number}};
        return TakeOperand(step);
      }
      case ItemKind::Variable:
        return !item.record->HasFormula() && TakeSource(item.record->Value());
      case ItemKind::Constant:
        return plan_.ValueOf(item).Is(Subtype::Double) && TakeSource(plan_.ValueOf(item));
      case ItemKind::Operator:
        return TakeOperator(item.operator_code);
      case ItemKind::Builtin:
        return TakeFunction(BuiltinAt(item.builtin));
      default:
        return false;
    }
  }

  bool TakeSource(const Variant& source) {
    NumericStep step{NumericCode::Load, NumericOperand::Source, {}};
    step.source = &source;
    return TakeOperand(step);
  }

  bool TakeOperand(const NumericStep& step) {
    program_.steps.push_back(step);
    return Push(SlotType::Number);
  }

  bool TakeOperator(OperatorCode code) {
    if (size_ == 1) return TakeUnary(code);
    const OperatorRow* row = kRowOf[static_cast<std::size_t>(code)];
    if (!row || size_ < 2) return false;
    return Pop(row->takes) && Pop(row->takes) && Emit(row->step, row->gives);
  }

  bool TakeUnary(OperatorCode code) {
    if (code != OperatorCode::Subtract && code != OperatorCode::Negating) return true;
    return Pop(SlotType::Number) && Emit(NumericCode::Negate, SlotType::Number);
  }

  bool TakeFunction(const Builtin& builtin) {
    const auto* row = std::ranges::find(kFunctions, builtin.name, &FunctionRow::name);
    if (row == std::end(kFunctions) || size_ < builtin.pops) return false;
    const std::size_t conditions = row->step == NumericCode::Choose ? 1 : 0;
    for (std::size_t i = conditions; i < builtin.pops; ++i)
      if (!Pop(SlotType::Number)) return false;
    return (conditions == 0 || Pop(SlotType::Boolean)) && Emit(row->step, SlotType::Number);
  }

  bool Push(SlotType type) {
    if (size_ == types_.size()) return false;
    types_[size_++] = type;
    deepest_ = std::max(deepest_, size_);
    return true;
  }
  bool Pop(SlotType type) { return size_ > 0 && types_[--size_] == type; }

  // What was loaded last is the last operand: the step brings it along.
  bool Emit(NumericCode code, SlotType gives) {
    NumericStep& last = program_.steps.back();
    if (OperandsOf(code) > 1 && last.code == NumericCode::Load)
      last.code = code;
    else
      program_.steps.push_back({code, NumericOperand::None, {}});
    return Push(gives);
  }

  Plan& plan_;
  NumericProgram& program_;
  std::array<SlotType, NumericProgram::kDeepest> types_{};  // of what is on the stack
  std::uint16_t size_ = 0;
  std::uint16_t deepest_ = 0;
};

bool AreFinite(double left, double right) {
  return arithmetic::IsFinite(left) && arithmetic::IsFinite(right);
}

bool IsDefinedPower(double base, double exponent) {
  return AreFinite(base, exponent) &&
         (base > 0 || (base == 0 ? exponent >= 0 : exponent == std::trunc(exponent)));
}

// The values of a run: the top one stands apart, for speed.
struct Stack {
  double top = 0;
  double* below;      // behind the one under the top
  double hidden = 0;  // no number once a step has hidden one that is not finite
};

// A step whose result may be finite although an operand is not. x - x is 0 for a
// finite number and no number for any other.
template <class Operation>
[[gnu::always_inline]] inline bool Hiding(Stack& stack, double right, Operation operation) {
  stack.hidden += (stack.top - stack.top) + (right - right);
  stack.top = operation(stack.top, right);
  return true;
}

template <class Comparison>
[[gnu::always_inline]] inline bool Compare(Stack& stack, double right, Comparison comparison) {
  return Hiding(stack, right, [=](double a, double b) { return comparison(a, b) ? 1.0 : 0.0; });
}

// What is divided by zero is not finite.
bool Divide(double& top, double right) {
  if (!arithmetic::IsFinite(right)) return false;
  top /= right;
  return true;
}

bool Power(double& top, double right) {
  if (!IsDefinedPower(top, right)) return false;
  top = std::pow(top, right);
  return true;
}

// Puts the result of a step whose last operand is `right` on top. False when the run
// has to be given up.
[[gnu::always_inline]] inline bool Apply(NumericCode code, double right, Stack& stack) {
  double& top = stack.top;
  switch (code) {
    case NumericCode::Load:
      *stack.below++ = top;
      top = right;
      return true;
    case NumericCode::Add:
      top += right;
      return true;
    case NumericCode::Subtract:
      top -= right;
      return true;
    case NumericCode::Multiply:
    case NumericCode::And:
      top *= right;
      return true;
    case NumericCode::Divide:
      return Divide(top, right);
    case NumericCode::Power:
      return Power(top, right);
    case NumericCode::TimesNegated:
      top = top * right * -1;
      return true;
    case NumericCode::Less:
      return Compare(stack, right, std::less());
    case NumericCode::LessOrEqual:
      return Compare(stack, right, std::less_equal());
    case NumericCode::Greater:
      return Compare(stack, right, std::greater());
    case NumericCode::GreaterOrEqual:
      return Compare(stack, right, std::greater_equal());
    case NumericCode::Equal:
      return Compare(stack, right,
                     [](double a, double b) { return a == b || comparison::EqualNumbers(a, b); });
    case NumericCode::Different:
      return Compare(stack, right, std::not_equal_to());
    case NumericCode::Min:
      return Hiding(stack, right, [](double a, double b) { return a < b ? a : b; });
    case NumericCode::Or:
    case NumericCode::Max:
      return Hiding(stack, right, [](double a, double b) { return a > b ? a : b; });
    case NumericCode::Negate:
      top *= -1;
      return true;
    case NumericCode::Abs:
      top = std::fabs(top);
      return true;
    case NumericCode::Choose:
      --stack.below;
      return Hiding(stack, right, [&](double a, double b) { return *stack.below != 0 ? a : b; });
  }
  return false;
}

}  // namespace

void MakeNumericProgram(Plan& plan) {
  if (!ProgramMaker(plan).Make()) plan.numeric.steps.clear();
}

// A sum, difference, product or quotient of what is not finite is not finite either,
// so that only the end, and steps that might hide it, have to ask.
double NumericProgram::Run() const {
  constexpr double kGivenUp = std::numeric_limits<double>::quiet_NaN();
  std::array<double, kDeepest + 1> values;
  Stack stack{.below = values.data()};
  for (const NumericStep& step : steps) {
    double right = stack.top;
    if (step.operand == NumericOperand::Source) {
      const double* number = step.source->IfDouble();
      if (!number) return kGivenUp;
      right = *number;
    } else if (step.operand == NumericOperand::Number) {
      right = step.number;
    } else if (OperandsOf(step.code) > 1) {
      stack.top = *--stack.below;
    }
    if (!Apply(step.code, right, stack)) return kGivenUp;
  }
  if (stack.hidden != 0 || !arithmetic::IsFinite(stack.top)) return kGivenUp;
  for (const double* value = values.data() + 1; value < stack.below; ++value)
    if (!arithmetic::IsFinite(*value)) return kGivenUp;
  return left == 1 ? stack.top : values[1];
}

}  // namespace tovalin
