#include "evaluator/numeric.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tovalin {
namespace {

using SlotType = NumericBuilder::SlotType;

constexpr SlotType SlotOf(OperandType type) {
  return type == OperandType::Logical ? SlotType::Boolean : SlotType::Number;
}

// 0 for a finite operand and no number for any other, since x - x is. A number that
// stands in the formula is finite.
template <NumericOperand kOperand>
double NanMask(double value) {
  return kOperand == NumericOperand::Number ? 0 : value - value;
}

template <NumericOperand kOperand>
double Immediate(const ImmediateOperand& operand) {
  if constexpr (kOperand == NumericOperand::Number) return operand.number;
  const double* number = operand.source->IfDouble();
  return number ? *number : kNoNumber;
}

// The stack of a run: the value on top, and the place behind the one under it. Small
// enough to go from step to step in registers, which takes a tenth off a choice.
struct Stack {
  double top;
  double* below;
};

// The mask of what the operation would hide: subtracting it changes no finite
// result, not even the sign of a zero.
template <NumericCode kCode, NumericOperand kLeft, NumericOperand kRight>
double HiddenBy(double left, double right) {
  if constexpr (MayHideLeft(kCode)) return NanMask<kLeft>(left) + NanMask<kRight>(right);
  return MayHideRight(kCode) ? NanMask<kRight>(right) : 0;
}

template <NumericCode kCode, NumericOperand kLeft, NumericOperand kRight>
Stack RunStep(Stack stack, const NumericStep& step) {
  using enum NumericOperand;
  constexpr int kOperands = OperandsOf(kCode);
  auto [top, below] = stack;
  double right = top;
  double left = top;
  if constexpr (kCode == NumericCode::None) {
    return stack;
  } else if constexpr (kCode == NumericCode::Load) {
    *below++ = top;
    return {Immediate<kRight>(step.right), below};
  } else {
    if constexpr (kRight != Stack) right = Immediate<kRight>(step.right);
    if constexpr (kLeft != Stack)
      left = Immediate<kLeft>(step.left);
    else if constexpr (kRight == Stack && kOperands > 1)
      left = *--below;
    // Operands that all stand in the step leave what is on top below the result.
    constexpr bool kAreImmediate = kRight != Stack && (kLeft != Stack || kOperands == 1);
    if constexpr (kAreImmediate && kOperands < 3) *below++ = top;
    const double hidden = HiddenBy<kCode, kLeft, kRight>(left, right);
    if constexpr (kOperands < 3) return {Compute<kCode>(left, right) - hidden, below};
    if constexpr (kOperands == 3) {
      const double first = kAreImmediate ? top : *--below;
      const double result = Compute<kCode>(first, left, right);
      return {kCode == NumericCode::Choose ? result - (hidden + (first - first)) : result, below};
    }
  }
}

using Handler = Stack (*)(Stack stack, const NumericStep& step);

// A function for each code and each kind of operand: a step then asks nothing that
// was known when it was made.
constexpr auto kHandlers = []<std::size_t... kIndex>(std::index_sequence<kIndex...>) {
  constexpr std::size_t k = kNumericOperands;
  return std::array<Handler, sizeof...(kIndex)>{
      RunStep<static_cast<NumericCode>(kIndex / (k * k)),
              static_cast<NumericOperand>(kIndex / k % k),
              static_cast<NumericOperand>(kIndex % k)>...};
}
(std::make_index_sequence<kNumericCodes * kNumericOperands * kNumericOperands>());

static_assert(kHandlers.size() <= 256, "a handler is a byte");

}  // namespace

NumericBuilder::NumericBuilder(NumericProgram& program) : program_(program) {
  program_.reads_formulas = false;
  program_.steps.clear();
}

void NumericBuilder::Finish() {
  while (pending_ > 0) AppendLoad();
  Flush();
  program_.depth = deepest_;
  program_.left = size_;
  program_.gives_boolean = size_ > 0 && types_[0] == SlotType::Boolean;
}

// A formula variable has to be computed first, which is no matter of order as long
// as no operation comes before it that might fail.
bool NumericBuilder::LoadVariable(const Campo& record) {
  if (record.HasFormula()) {
    if (has_operations_) return false;
    program_.reads_formulas = true;
  }
  return Load(NumericOperand::Source, {.source = &record.Value()});
}

// What is loaded stands in the step of its operation if it can: that saves the way over
// the stack.
bool NumericBuilder::Load(NumericOperand kind, ImmediateOperand operand) {
  if (pending_ == loads_.size()) AppendLoad();
  loads_[pending_++] = {kind, operand};
  return Push(SlotType::Number);
}

bool NumericBuilder::Apply(const Operator* row) {
  has_operations_ = true;
  if (!row) return size_ == 1;
  if (size_ == 1)
    return !row->negates_alone ||
           (Pop(SlotType::Number) && Emit(NumericCode::Negate, SlotType::Number));
  if (row->numeric == NumericCode::None || size_ < row->operands) return false;
  const SlotType takes = SlotOf(row->takes);
  return Pop(takes) && Pop(takes) && Emit(row->numeric, SlotOf(row->gives));
}

bool NumericBuilder::Call(const BuiltinFunction& function) {
  has_operations_ = true;
  const std::span<const FunctionParameter> parameters = function.Parameters();
  if (function.numeric == NumericCode::None || size_ < parameters.size()) return false;
  for (std::size_t i = parameters.size(); i > 0; --i)
    if (!Pop(SlotOf(parameters[i - 1].type))) return false;
  return Emit(function.numeric, SlotOf(function.result));
}

bool NumericBuilder::Push(SlotType type) {
  if (size_ == types_.size()) return false;
  types_[size_++] = type;
  deepest_ = std::max(deepest_, size_);
  return true;
}

bool NumericBuilder::Emit(NumericCode code, SlotType gives) {
  NumericStep step{code, NumericOperand::Stack, NumericOperand::Stack, 0, {}, {}};
  if (pending_ > 0) {
    const PendingLoad& load = loads_[--pending_];
    step.right_kind = load.kind;
    step.right = load.operand;
  }
  if (pending_ > 0 && step.right_kind != NumericOperand::Stack && OperandsOf(code) > 1) {
    const PendingLoad& load = loads_[--pending_];
    step.left_kind = load.kind;
    step.left = load.operand;
  }
  while (pending_ > 0) AppendLoad();
  Append(step);
  return Push(gives);
}

// The first of the pending loads becomes a step of its own.
void NumericBuilder::AppendLoad() {
  const PendingLoad load = loads_[0];
  loads_[0] = loads_[1];
  --pending_;
  Append({NumericCode::Load, NumericOperand::Stack, load.kind, 0, {}, load.operand});
}

void NumericBuilder::Append(NumericStep step) {
  if (count_ == steps_.size()) Flush();
  step.handler = HandlerOf(step);
  steps_[count_++] = step;
}

void NumericBuilder::Flush() {
  program_.steps.insert(program_.steps.end(), steps_.begin(), steps_.begin() + count_);
  count_ = 0;
}

// What is not finite stays so to the end: in a sum, difference or product by itself,
// in other steps because they see to it.
double NumericProgram::Run(bool formulas_are_computed) const {
  if (steps.empty() || (reads_formulas && !formulas_are_computed)) return kNoNumber;
  std::array<double, kDeepest + 1> values;
  Stack stack{0, values.data()};
  for (const NumericStep& step : steps) stack = kHandlers[step.handler](stack, step);
  bool is_finite = arithmetic::IsFinite(stack.top);
  for (const double* value = values.data() + 1; value < stack.below; ++value)
    is_finite &= arithmetic::IsFinite(*value);
  if (!is_finite) return kNoNumber;
  return left == 1 ? stack.top : values[1];
}

double RunOne(NumericCode code, double left, double right) {
  using enum NumericOperand;
  const NumericOperand left_kind = OperandsOf(code) > 1 ? Number : NumericOperand::Stack;
  const NumericStep step{code, left_kind, Number, 0, {.number = left}, {.number = right}};
  std::array<double, 2> values;
  const double result = kHandlers[HandlerOf(step)]({0, values.data()}, step).top;
  return arithmetic::IsFinite(result) ? result : kNoNumber;
}

}  // namespace tovalin
