#include "evaluator/numeric_columns.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "frame/comparison.h"

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
[[gnu::always_inline]] inline bool AllZero(std::size_t count, Term term) {
  double sums[kLanes] = {};
  std::size_t i = 0;
  for (; i + kLanes <= count; i += kLanes)
    for (std::size_t lane = 0; lane < kLanes; ++lane) sums[lane] += term(i + lane);
  for (; i < count; ++i) sums[0] += term(i);
  for (std::size_t lane = 1; lane < kLanes; ++lane) sums[0] += sums[lane];
  return sums[0] == 0;
}

// x - x is 0 for a finite number and no number for any other. A sum, difference
// or product of what is not finite is not finite either, so that only the end of a
// run, and steps that might hide it, have to ask.
TOVALIN_WIDE bool AreFinite(const double* values, std::size_t count) {
  return AllZero(count, [values](std::size_t i) { return values[i] - values[i]; });
}

TOVALIN_WIDE bool AreDivisors(const double* values, std::size_t count) {
  return AreFinite(values, count) &&
         AllZero(count, [values](std::size_t i) { return values[i] == 0 ? 1.0 : 0.0; });
}

struct Operands {
  double* target;
  const double* left;
  const double* right;
  std::size_t count;
};

template <class Operation>
[[gnu::always_inline]] inline void Each(const Operands& operands, Operation operation) {
  const auto [target, left, right, count] = operands;
  for (std::size_t i = 0; i < count; ++i) target[i] = operation(left[i], right[i]);
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
    default:
      return Compare(code, operands);
  }
}

// Whether a step's result may be finite when an operand is not.
bool MayHide(NumericCode code) {
  return (code >= NumericCode::Less && code <= NumericCode::Different) ||
         code == NumericCode::Min || code == NumericCode::Max;
}

}  // namespace

NumericColumns::NumericColumns(const NumericProgram& program, std::span<const Bound> columns)
    : slots_(program.depth) {
  stack_.reserve(program.depth);
  const auto add_constant = [this](double number) {
    constants_.emplace_back().fill(number);
    return constants_.size() - 1;
  };
  for (const NumericStep& step : program.steps) {
    Step& made = steps_.emplace_back(Step{step.code});
    if (step.code == NumericCode::Power) is_ready_ = false;
    if (step.code == NumericCode::Push) made.constant = add_constant(step.number);
    if (step.code != NumericCode::Load) continue;
    const auto bound = std::ranges::find(columns, step.source, &Bound::source);
    if (bound != columns.end())
      made.column = bound->values;
    else if (step.source->Is(Subtype::Double))
      made.constant = add_constant(step.source->AsDouble());
    else
      is_ready_ = false;
  }
}

bool NumericColumns::Run(std::size_t first, std::size_t count, double* results) {
  stack_.clear();
  for (const Step& step : steps_) {
    // The last step writes where the results go.
    const bool last = &step == &steps_.back();
    if (!RunStep(step, first, count, last ? results : nullptr)) return false;
  }
  for (const double* values : stack_)
    if (!AreFinite(values, count)) return false;
  if (stack_[0] != results) std::copy_n(stack_[0], count, results);
  return true;
}

bool NumericColumns::RunStep(const Step& step, std::size_t first, std::size_t count,
                             double* results) {
  switch (step.code) {
    case NumericCode::Load:
    case NumericCode::Push:
      stack_.push_back(step.column ? step.column + first : constants_[step.constant].data());
      return true;
    case NumericCode::Negate:
    case NumericCode::Abs: {
      double* own = slots_[stack_.size() - 1].data();
      const double* values = std::exchange(stack_.back(), own);
      if (step.code == NumericCode::Negate)
        for (std::size_t i = 0; i < count; ++i) own[i] = values[i] * -1;
      else
        for (std::size_t i = 0; i < count; ++i) own[i] = std::fabs(values[i]);
      return true;
    }
    case NumericCode::Choose: {
      const double* no = stack_.back();
      const double* yes = stack_[stack_.size() - 2];
      stack_.resize(stack_.size() - 2);
      if (!AreFinite(no, count) || !AreFinite(yes, count)) return false;
      double* own = slots_[stack_.size() - 1].data();
      const double* conditions = std::exchange(stack_.back(), own);
      for (std::size_t i = 0; i < count; ++i) own[i] = conditions[i] != 0 ? yes[i] : no[i];
      return true;
    }
    default: {
      const double* right = stack_.back();
      stack_.pop_back();
      const bool alone = results && stack_.size() == 1;
      double* own = alone ? results : slots_[stack_.size() - 1].data();
      const double* left = std::exchange(stack_.back(), own);
      if (step.code == NumericCode::Divide && !AreDivisors(right, count)) return false;
      if (MayHide(step.code) && !(AreFinite(left, count) && AreFinite(right, count))) return false;
      Combine(step.code, {own, left, right, count});
      return true;
    }
  }
}

}  // namespace tovalin
