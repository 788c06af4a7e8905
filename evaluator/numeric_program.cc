#include "evaluator/numeric_program.h"

#include <algorithm>
#include <cmath>

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
  std::optional<NumericProgram> Make(const Plan& plan) {
    if (plan.items.empty()) return std::nullopt;
    program_.steps.reserve(plan.items.size());
    for (const Item& item : plan.items)
      if (!Take(item)) return std::nullopt;
    program_.left = size_;
    program_.gives_boolean = types_[0] == SlotType::Boolean;
    return std::move(program_);
  }

 private:
  bool Take(const Item& item) {
    switch (item.kind) {
      case ItemKind::Number:
        program_.steps.push_back({NumericCode::Push, {item.number}});
        return Push(SlotType::Number);
      case ItemKind::Variable:
        return !item.record->HasFormula() && TakeSource(item.record->Value());
      case ItemKind::Constant:
        return item.value.Is(Subtype::Double) && TakeSource(item.value);
      case ItemKind::Operator:
        return TakeOperator(item.operator_code);
      case ItemKind::Builtin:
        return TakeFunction(*item.builtin);
      default:
        return false;
    }
  }

  bool TakeSource(const Variant& source) {
    NumericStep step{NumericCode::Load, {}};
    step.source = &source;
    program_.steps.push_back(step);
    return Push(SlotType::Number);
  }

  bool TakeOperator(OperatorCode code) {
    if (size_ == 1) return TakeUnary(code);
    const auto* row = std::ranges::find(kOperators, code, &OperatorRow::code);
    if (row == std::end(kOperators) || size_ < 2) return false;
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
    program_.depth = std::max(program_.depth, size_);
    return true;
  }
  bool Pop(SlotType type) { return size_ > 0 && types_[--size_] == type; }
  bool Emit(NumericCode code, SlotType gives) {
    program_.steps.push_back({code, {}});
    return Push(gives);
  }

  NumericProgram program_;
  std::array<SlotType, NumericProgram::kDeepest> types_{};  // of what is on the stack
  std::uint32_t size_ = 0;
};

// The comparisons, and the smaller and larger of two: steps whose result may be
// finite when an operand is not.
double Select(NumericCode code, double left, double right) {
  switch (code) {
    case NumericCode::Less:
      return left < right;
    case NumericCode::LessOrEqual:
      return left <= right;
    case NumericCode::Greater:
      return left > right;
    case NumericCode::GreaterOrEqual:
      return left >= right;
    case NumericCode::Equal:
      return left == right || comparison::EqualNumbers(left, right);
    case NumericCode::Different:
      return left != right;
    case NumericCode::Min:
      return left < right ? left : right;
    default:
      return left > right ? left : right;
  }
}

bool AreFinite(double left, double right) {
  return arithmetic::IsFinite(left) && arithmetic::IsFinite(right);
}

bool IsDefinedPower(double base, double exponent) {
  return AreFinite(base, exponent) &&
         (base > 0 || (base == 0 ? exponent >= 0 : exponent == std::trunc(exponent)));
}

}  // namespace

std::optional<NumericProgram> MakeNumericProgram(const Plan& plan) {
  return ProgramMaker().Make(plan);
}

// A sum, difference or product of what is not finite is not finite either, so that
// only the end, and steps that might hide it, have to ask.
std::optional<double> NumericProgram::Run() const {
  std::array<double, kDeepest> stack;
  double* top = stack.data() - 1;
  for (const NumericStep& step : steps) {
    switch (step.code) {
      case NumericCode::Load:
        if (const double* number = step.source->IfDouble())
          *++top = *number;
        else
          return std::nullopt;
        break;
      case NumericCode::Push:
        *++top = step.number;
        break;
      case NumericCode::Add:
        --top;
        *top = top[0] + top[1];
        break;
      case NumericCode::Subtract:
        --top;
        *top = top[0] - top[1];
        break;
      case NumericCode::Multiply:
      case NumericCode::And:
        --top;
        *top = top[0] * top[1];
        break;
      case NumericCode::Divide:
        --top;
        if (top[1] == 0 || !arithmetic::IsFinite(top[1])) return std::nullopt;
        *top = top[0] / top[1];
        break;
      case NumericCode::Power:
        --top;
        if (!IsDefinedPower(top[0], top[1])) return std::nullopt;
        *top = std::pow(top[0], top[1]);
        break;
      case NumericCode::TimesNegated:
        --top;
        *top = top[0] * top[1] * -1;
        break;
      case NumericCode::Negate:
        *top *= -1;
        break;
      case NumericCode::Abs:
        *top = std::fabs(*top);
        break;
      case NumericCode::Or:
        --top;
        *top = std::max(top[0], top[1]);
        break;
      case NumericCode::Choose:
        top -= 2;
        if (!AreFinite(top[1], top[2])) return std::nullopt;
        *top = top[0] != 0 ? top[1] : top[2];
        break;
      default:
        --top;
        if (!AreFinite(top[0], top[1])) return std::nullopt;
        *top = Select(step.code, top[0], top[1]);
    }
  }
  for (const double* value = stack.data(); value <= top; ++value)
    if (!arithmetic::IsFinite(*value)) return std::nullopt;
  return stack[0];
}

}  // namespace tovalin
