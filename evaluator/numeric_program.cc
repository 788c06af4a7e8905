#include "evaluator/numeric_program.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

#include "evaluator/number_helpers.h"
#include "evaluator/plan.h"
#include "frame/arithmetic.h"
#include "frame/comparison.h"
#include "tovalin/convert.h"

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
    {u"AJUSTEMEDIO", NumericCode::Adjust},
    {u"REDONDEAR", NumericCode::Round},
};

class ProgramMaker {
 public:
  explicit ProgramMaker(Plan& plan) : plan_(plan), program_(plan.numeric) {}

  bool Make() {
    program_.reads_formulas = false;
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
      case ItemKind::Number:
        return TakeOperand(MakeStep(NumericCode::Load, item.number));
      case ItemKind::Variable:
        return TakeVariable(*item.record);
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

  // A formula variable has to be computed first, which is no matter of order as long
  // as no operation comes before it that might fail.
  bool TakeVariable(const Campo& record) {
    if (record.HasFormula()) {
      if (has_operations_) return false;
      program_.reads_formulas = true;
    }
    return TakeSource(record.Value());
  }

  bool TakeSource(const Variant& source) {
    return TakeOperand(MakeStep(NumericCode::Load, source));
  }

  bool TakeOperand(const NumericStep& step) {
    program_.steps.push_back(step);
    return Push(SlotType::Number);
  }

  bool TakeOperator(OperatorCode code) {
    has_operations_ = true;
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
    has_operations_ = true;
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
    if (OperandsOf(code) > 1 && last.code == NumericCode::Load) {
      last.code = code;
      last.handler = HandlerOf(code, last.operand);
    } else {
      program_.steps.push_back(MakeStep(code));
    }
    return Push(gives);
  }

  Plan& plan_;
  NumericProgram& program_;
  std::array<SlotType, NumericProgram::kDeepest> types_{};  // of what is on the stack
  std::uint16_t size_ = 0;
  std::uint16_t deepest_ = 0;
  bool has_operations_ = false;
};

bool IsDefinedPower(double base, double exponent) {
  if (!arithmetic::IsFinite(base) || !arithmetic::IsFinite(exponent)) return false;
  return base > 0 || (base == 0 ? exponent >= 0 : exponent == std::trunc(exponent));
}

// 0 for finite operands and no number for others, since x - x is. A step whose result
// may be finite although an operand is not takes it away, which changes no finite
// result, not even the sign of a zero. A number that stands in the formula is finite.
template <NumericOperand kOperand>
double Doubt(double left, double right) {
  if constexpr (kOperand == NumericOperand::Number) return left - left;
  return (left - left) + (right - right);
}

// The functions that the built-ins call. What they raise is raised by the walk.
double Adjusted(double value, double step, double decimals) {
  try {
    return evaluator::AjusteMedio(value, step, ToLong(decimals));
  } catch (const Error&) {
    return NumericProgram::kGivenUp;
  }
}
double Rounded(double value, double places) {
  try {
    return evaluator::Redondear(value, ToLong(places));
  } catch (const Error&) {
    return NumericProgram::kGivenUp;
  }
}

// The result of two operands, none of which another code takes three of.
template <NumericCode kCode, NumericOperand kOperand>
double Combined(double left, double right) {
  using enum NumericCode;
  const auto choose = [=](bool condition, double yes, double no) {
    return (condition ? yes : no) - Doubt<kOperand>(left, right);
  };
  if constexpr (kCode == Add) return left + right;
  if constexpr (kCode == Subtract) return left - right;
  if constexpr (kCode == Multiply || kCode == And) return left * right;
  if constexpr (kCode == Divide && kOperand == NumericOperand::Number) return left / right;
  if constexpr (kCode == Divide) return left / right - (right - right);
  if constexpr (kCode == TimesNegated) return left * right * -1;
  if constexpr (kCode == Less) return choose(left < right, 1, 0);
  if constexpr (kCode == LessOrEqual) return choose(left <= right, 1, 0);
  if constexpr (kCode == Greater) return choose(left > right, 1, 0);
  if constexpr (kCode == GreaterOrEqual) return choose(left >= right, 1, 0);
  if constexpr (kCode == Different) return choose(left != right, 1, 0);
  if constexpr (kCode == Equal)
    return choose(left == right || comparison::EqualNumbers(left, right), 1, 0);
  if constexpr (kCode == Min) return choose(left < right, left, right);
  if constexpr (kCode == Max || kCode == Or) return choose(left > right, left, right);
  if constexpr (kCode == Round) return Rounded(left, right);
  if constexpr (kCode == Negate) return right * -1;
  if constexpr (kCode == Abs) return std::fabs(right);
  if constexpr (kCode == Power)
    return IsDefinedPower(left, right) ? std::pow(left, right) : NumericProgram::kGivenUp;
}

// The stack of a run: the value on top, and the place behind the one under it. Small
// enough to go from step to step in registers, which takes a tenth off a choice.
struct Stack {
  double top;
  double* below;
};

using Handler = Stack (*)(Stack stack, const NumericStep& step);

template <NumericCode kCode, NumericOperand kOperand>
Stack Run(Stack stack, const NumericStep& step) {
  auto [top, below] = stack;
  double right = top;
  if constexpr (kOperand == NumericOperand::Number) right = step.number;
  if constexpr (kOperand == NumericOperand::Source) {
    const double* number = step.source->IfDouble();
    right = number ? *number : NumericProgram::kGivenUp;
  }
  if constexpr (kOperand == NumericOperand::None && OperandsOf(kCode) > 1) top = *--below;
  if constexpr (kCode == NumericCode::Load) {
    *below++ = top;
    return {right, below};
  } else if constexpr (kCode == NumericCode::Choose) {
    const double condition = *--below;
    const double doubt = Doubt<kOperand>(top, right) + (condition - condition);
    return {(condition != 0 ? top : right) - doubt, below};
  } else if constexpr (kCode == NumericCode::Adjust) {
    const double value = *--below;
    return {Adjusted(value, top, right), below};
  } else {
    return {Combined<kCode, kOperand>(top, right), below};
  }
}

// A function for each code and each kind of operand: a step then asks nothing that
// was known when it was made.
constexpr auto kHandlers = []<std::size_t... kIndex>(std::index_sequence<kIndex...>) {
  return std::array<Handler, sizeof...(kIndex)>{
      Run<static_cast<NumericCode>(kIndex / kNumericOperands),
          static_cast<NumericOperand>(kIndex % kNumericOperands)>...};
}
(std::make_index_sequence<(static_cast<std::size_t>(NumericCode::Abs) + 1) * kNumericOperands>());

}  // namespace

void MakeNumericProgram(Plan& plan) {
  if (!ProgramMaker(plan).Make()) plan.numeric.steps.clear();
}

// What is not finite stays so to the end: in a sum, difference or product by itself,
// in other steps because they see to it.
double NumericProgram::Run(bool formulas_are_computed) const {
  if (steps.empty() || (reads_formulas && !formulas_are_computed)) return kGivenUp;
  std::array<double, kDeepest + 1> values;
  Stack stack{0, values.data()};
  for (const NumericStep& step : steps) stack = kHandlers[step.handler](stack, step);
  bool is_finite = arithmetic::IsFinite(stack.top);
  for (const double* value = values.data() + 1; value < stack.below; ++value)
    is_finite &= arithmetic::IsFinite(*value);
  if (!is_finite) return kGivenUp;
  return left == 1 ? stack.top : values[1];
}

}  // namespace tovalin
