#include "evaluator/numeric_program.h"

#include <algorithm>
#include <cmath>
#include <functional>

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

// A result that may be finite although an operand is not.
template <class Operation>
bool Hiding(double& top, double right, Operation operation) {
  if (!AreFinite(top, right)) return false;
  top = operation(top, right);
  return true;
}

bool Divide(double& top, double right) {
  if (right == 0 || !arithmetic::IsFinite(right)) return false;
  top /= right;
  return true;
}

bool Power(double& top, double right) {
  if (!IsDefinedPower(top, right)) return false;
  top = std::pow(top, right);
  return true;
}

// Puts the result of `top` and `right` into `top`. False when the run has to be
// given up.
[[gnu::always_inline]] inline bool Combine(NumericCode code, double& top, double right) {
  switch (code) {
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
      return Hiding(top, right, std::less());
    case NumericCode::LessOrEqual:
      return Hiding(top, right, std::less_equal());
    case NumericCode::Greater:
      return Hiding(top, right, std::greater());
    case NumericCode::GreaterOrEqual:
      return Hiding(top, right, std::greater_equal());
    case NumericCode::Equal:
      return Hiding(top, right,
                    [](double a, double b) { return a == b || comparison::EqualNumbers(a, b); });
    case NumericCode::Different:
      return Hiding(top, right, std::not_equal_to());
    case NumericCode::Min:
      return Hiding(top, right, [](double a, double b) { return a < b ? a : b; });
    case NumericCode::Or:
    case NumericCode::Max:
      return Hiding(top, right, [](double a, double b) { return a > b ? a : b; });
    case NumericCode::Negate:
      top *= -1;
      return true;
    case NumericCode::Abs:
      top = std::fabs(top);
      return true;
    default:
      return false;
  }
}

}  // namespace

void MakeNumericProgram(Plan& plan) {
  if (!ProgramMaker(plan).Make()) plan.numeric.steps.clear();
}

// The top of the stack stays in `top`, for speed, and what is under it in `stack`. A
// sum, difference or product of what is not finite is not finite either, so that
// only the end, and steps that might hide it, have to ask.
std::optional<double> NumericProgram::Run() const {
  std::array<double, kDeepest + 1> stack;
  double* below = stack.data();  // behind the value under the top
  double top = 0;
  for (const NumericStep& step : steps) {
    double right = top;
    if (step.operand == NumericOperand::Source) {
      const double* number = step.source->IfDouble();
      if (!number) return std::nullopt;
      right = *number;
    } else if (step.operand == NumericOperand::Number) {
      right = step.number;
    } else if (OperandsOf(step.code) > 1) {
      top = *--below;
    }
    if (step.code == NumericCode::Load) {
      *below++ = top;
      top = right;
    } else if (step.code == NumericCode::Choose) {
      if (!AreFinite(top, right)) return std::nullopt;
      top = *--below != 0 ? top : right;
    } else if (!Combine(step.code, top, right)) {
      return std::nullopt;
    }
  }
  if (!arithmetic::IsFinite(top)) return std::nullopt;
  for (const double* value = stack.data() + 1; value < below; ++value)
    if (!arithmetic::IsFinite(*value)) return std::nullopt;
  return left == 1 ? top : stack[1];
}

}  // namespace tovalin
