#include "evaluator/numeric_columns.h"

#include <algorithm>
#include <cmath>

#include "evaluator/number_helpers.h"
#include "frame/arithmetic.h"
#include "frame/comparison.h"
#include "tovalin/convert.h"

// Compiled once more for wider vectors, which the program takes where the machine
// has them: a third less time for a column of additions and divisions. There is no
// contraction in either, so that both give the same bits. A macro, because only an
// attribute says it, and not on every system.
#if defined(__ELF__) && !defined(__SANITIZE_ADDRESS__) && !defined(__clang__)
#define TOVALIN_WIDE [[gnu::target_clones("avx2", "default")]]
#else
#define TOVALIN_WIDE
#endif

namespace tovalin {
namespace {

// Sums kept apart by lane, so that the compiler may take several rows at once
// without changing the order of any addition.
constexpr std::size_t kLanes = 16;

template <class Term>
[[gnu::always_inline]] inline bool AllZero(const double* values, std::size_t count, Term term) {
  double sums[kLanes] = {};
  std::size_t i = 0;
  for (; i + kLanes <= count; i += kLanes)
    for (std::size_t lane = 0; lane < kLanes; ++lane) sums[lane] += term(values[i + lane]);
  for (; i < count; ++i) sums[0] += term(values[i]);
  for (std::size_t lane = 1; lane < kLanes; ++lane) sums[0] += sums[lane];
  return sums[0] == 0;
}

// x - x is 0 for a finite number and no number for any other. A sum, difference,
// product or quotient of what is not finite is not finite either, so that only the
// end of a run, and steps that might hide it, have to ask.
TOVALIN_WIDE bool AreFinite(const double* values, std::size_t count) {
  return AllZero(values, count, [](double value) { return value - value; });
}

// Either side may be one number for all rows: its values are null then.
struct Operands {
  double* target;
  const double* left;
  const double* right;
  double number;
  std::size_t count;
};

// A target may be one of the operands, row by row; never in part.
template <class Operation>
[[gnu::always_inline]] inline void Each(const Operands& operands, Operation operation) {
  const auto [target, left, right, number, count] = operands;
  if (!left) {
    for (std::size_t i = 0; i < count; ++i) target[i] = operation(number, right[i]);
  } else if (!right) {
    for (std::size_t i = 0; i < count; ++i) target[i] = operation(left[i], number);
  } else {
    for (std::size_t i = 0; i < count; ++i) target[i] = operation(left[i], right[i]);
  }
}

TOVALIN_WIDE void Compare(NumericCode code, const Operands& operands) {
  switch (code) {
    case NumericCode::Less:
      return Each(operands, [](double a, double b) { return a < b ? 1.0 : 0.0; });
    case NumericCode::LessOrEqual:
      return Each(operands, [](double a, double b) { return a <= b ? 1.0 : 0.0; });
    case NumericCode::Greater:
      return Each(operands, [](double a, double b) { return a > b ? 1.0 : 0.0; });
    case NumericCode::GreaterOrEqual:
      return Each(operands, [](double a, double b) { return a >= b ? 1.0 : 0.0; });
    case NumericCode::Equal:
      return Each(operands, [](double a, double b) {
        return a == b || comparison::EqualNumbers(a, b) ? 1.0 : 0.0;
      });
    default:
      return Each(operands, [](double a, double b) { return a != b ? 1.0 : 0.0; });
  }
}

TOVALIN_WIDE void Combine(NumericCode code, const Operands& operands) {
  switch (code) {
    case NumericCode::Add:
      return Each(operands, [](double a, double b) { return a + b; });
    case NumericCode::Subtract:
      return Each(operands, [](double a, double b) { return a - b; });
    case NumericCode::Multiply:
    case NumericCode::And:
      return Each(operands, [](double a, double b) { return a * b; });
    case NumericCode::TimesNegated:
      return Each(operands, [](double a, double b) { return a * b * -1; });
    case NumericCode::Divide:
      return Each(operands, [](double a, double b) { return a / b; });
    case NumericCode::Min:
      return Each(operands, [](double a, double b) { return a < b ? a : b; });
    case NumericCode::Max:
    case NumericCode::Or:
      return Each(operands, [](double a, double b) { return a > b ? a : b; });
    case NumericCode::Negate:
      return Each(operands, [](double a, double) { return a * -1; });
    case NumericCode::Abs:
      return Each(operands, [](double a, double) { return std::fabs(a); });
    default:
      return Compare(code, operands);
  }
}

TOVALIN_WIDE void Choose(double* target, const double* conditions, const double* yes,
                         const double* no, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) target[i] = conditions[i] != 0 ? yes[i] : no[i];
}

// False where a row raises.
bool Adjust(double* target, const double* values, const double* steps, const double* decimals,
            std::size_t count) {
  try {
    for (std::size_t i = 0; i < count; ++i)
      target[i] = evaluator::AjusteMedio(values[i], steps[i], ToLong(decimals[i]));
    return true;
  } catch (const Error&) {
    return false;
  }
}

// The places are nearly always the same in all rows.
bool Round(const Operands& operands) {
  try {
    if (operands.right) {
      Each(operands, [](double a, double b) { return evaluator::Redondear(a, ToLong(b)); });
    } else {
      const std::int32_t places = ToLong(operands.number);
      Each(operands, [=](double a, double) { return evaluator::Redondear(a, places); });
    }
    return true;
  } catch (const Error&) {
    return false;
  }
}

}  // namespace

NumericColumns::NumericColumns(const NumericProgram& program, std::span<const Bound> columns)
    : slots_(std::make_unique_for_overwrite<Block[]>(program.depth)) {
  stack_.reserve(program.depth);
  steps_.reserve(program.steps.size());
  for (const NumericStep& step : program.steps)
    if (is_ready_) Take(step, columns);
}

NumericColumns::Operand NumericColumns::Brought(const NumericStep& step,
                                                std::span<const Bound> columns) {
  if (step.operand == NumericOperand::Number) return {.number = step.number};
  const auto bound = std::ranges::find(columns, step.source, &Bound::source);
  if (bound != columns.end()) return {.column = bound->values};
  const double* number = step.source->IfDouble();
  if (!number || !arithmetic::IsFinite(*number)) is_ready_ = false;
  return {.number = number ? *number : 0};
}

NumericColumns::Operand NumericColumns::Pop() {
  const Operand operand = stack_.back();
  stack_.pop_back();
  return operand;
}

void NumericColumns::Take(const NumericStep& step, std::span<const Bound> columns) {
  if (step.code == NumericCode::Power) is_ready_ = false;
  if (step.operand != NumericOperand::None) stack_.push_back(Brought(step, columns));
  if (step.code != NumericCode::Load && is_ready_) TakeOperation(step.code);
}

// What has the same operands in every row is computed here, once.
void NumericColumns::TakeOperation(NumericCode code) {
  Step made;
  made.code = code;
  if (OperandsOf(code) > 1) made.right = Pop();
  made.left = Pop();
  if (OperandsOf(code) == 3) {
    made.right = Spread(made.right);
    made.left = Spread(made.left);
    made.first = Spread(Pop());
  } else if (made.left.IsNumber() && made.right.IsNumber()) {
    stack_.push_back({.number = Folded(code, made.left, made.right)});
    return;
  }
  made.target = &slots_[stack_.size()];
  stack_.push_back({.block = made.target});
  steps_.push_back(made);
}

double NumericColumns::Folded(NumericCode code, const Operand& left, const Operand& right) {
  NumericProgram program;
  program.left = 1;
  program.steps.push_back(MakeStep(NumericCode::Load, left.number));
  program.steps.push_back(OperandsOf(code) == 1 ? MakeStep(code) : MakeStep(code, right.number));
  const double number = program.Run();
  if (std::isnan(number)) is_ready_ = false;
  return number;
}

NumericColumns::Operand NumericColumns::Spread(const Operand& operand) {
  if (!operand.IsNumber()) return operand;
  spread_.emplace_back().fill(operand.number);
  return {.block = &spread_.back()};
}

bool NumericColumns::Run(std::size_t first, std::size_t count, double* results) {
  const Operand& result = stack_.front();
  for (const Step& step : steps_) {
    // The last step writes where the results go.
    const bool gives_results = &step == &steps_.back() && stack_.size() == 1;
    if (!RunStep(step, first, count, gives_results ? results : step.target->data())) return false;
  }
  if (result.IsNumber()) {
    std::fill_n(results, count, result.number);
  } else if (steps_.empty() || stack_.size() > 1) {
    std::copy_n(result.Values(first), count, results);
  }
  if (!result.IsNumber() && !AreFinite(results, count)) return false;
  return std::all_of(stack_.begin() + 1, stack_.end(), [=](const Operand& rest) {
    return rest.IsNumber() || AreFinite(rest.Values(first), count);
  });
}

bool NumericColumns::RunStep(const Step& step, std::size_t first, std::size_t count,
                             double* target) {
  const double* left = step.left.IsNumber() ? nullptr : step.left.Values(first);
  const double* right = step.right.IsNumber() ? nullptr : step.right.Values(first);
  const bool hides_left = MayHide(step.code);
  const bool hides_right = hides_left || step.code == NumericCode::Divide;
  if (hides_left && left && !AreFinite(left, count)) return false;
  if (hides_right && right && !AreFinite(right, count)) return false;
  const Operands operands = {target, left, right, left ? step.right.number : step.left.number,
                             count};
  switch (step.code) {
    case NumericCode::Choose:
      Choose(target, step.first.Values(first), left, right, count);
      return true;
    case NumericCode::Adjust:
      return Adjust(target, step.first.Values(first), left, right, count);
    case NumericCode::Round:
      return Round(operands);
    default:
      Combine(step.code, operands);
      return true;
  }
}

}  // namespace tovalin
