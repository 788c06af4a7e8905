#include "evaluator/numeric_columns.h"

#include <algorithm>
#include <cmath>

#include "frame/comparison.h"

namespace tovalin {
namespace {

// Plain loops over blocks, one for each step, so that each becomes a vector loop.
// `left` is also the result.

template <class Operation>
void Each(double* left, const double* right, std::size_t count, Operation operation) {
  for (std::size_t i = 0; i < count; ++i) left[i] = operation(left[i], right[i]);
}

// Whether a value is beyond the finite numbers or is none. A sum, difference or
// product of such values is one too, so that only the end of a run, and what might
// hide one, has to ask.
std::uint64_t NotFinite(const double* values, std::size_t count) {
  std::uint64_t found = 0;
  for (std::size_t i = 0; i < count; ++i)
    found |= static_cast<std::uint64_t>(!(std::fabs(values[i]) <= 1.7976931348623157e308));
  return found;
}

std::uint64_t NotDivisor(const double* values, std::size_t count) {
  std::uint64_t found = 0;
  for (std::size_t i = 0; i < count; ++i)
    found |= static_cast<std::uint64_t>(!(std::fabs(values[i]) <= 1.7976931348623157e308)) |
             static_cast<std::uint64_t>(values[i] == 0);
  return found;
}

bool IsComparison(NumericCode code) {
  return code >= NumericCode::Less && code <= NumericCode::Different;
}

void Compare(NumericCode code, double* left, const double* right, std::size_t count) {
  switch (code) {
    case NumericCode::Less:
      return Each(left, right, count, [](double a, double b) { return a < b ? 1.0 : 0.0; });
    case NumericCode::LessOrEqual:
      return Each(left, right, count, [](double a, double b) { return a <= b ? 1.0 : 0.0; });
    case NumericCode::Greater:
      return Each(left, right, count, [](double a, double b) { return a > b ? 1.0 : 0.0; });
    case NumericCode::GreaterOrEqual:
      return Each(left, right, count, [](double a, double b) { return a >= b ? 1.0 : 0.0; });
    case NumericCode::Equal:
      return Each(left, right, count, [](double a, double b) {
        return a == b || comparison::EqualNumbers(a, b) ? 1.0 : 0.0;
      });
    default:
      return Each(left, right, count, [](double a, double b) { return a != b ? 1.0 : 0.0; });
  }
}

void Combine(NumericCode code, double* left, const double* right, std::size_t count) {
  switch (code) {
    case NumericCode::Add:
      return Each(left, right, count, [](double a, double b) { return a + b; });
    case NumericCode::Subtract:
      return Each(left, right, count, [](double a, double b) { return a - b; });
    case NumericCode::Multiply:
    case NumericCode::And:
      return Each(left, right, count, [](double a, double b) { return a * b; });
    case NumericCode::TimesNegated:
      return Each(left, right, count, [](double a, double b) { return a * b * -1; });
    case NumericCode::Divide:
      return Each(left, right, count, [](double a, double b) { return a / b; });
    case NumericCode::Min:
      return Each(left, right, count, [](double a, double b) { return a < b ? a : b; });
    case NumericCode::Max:
    case NumericCode::Or:
      return Each(left, right, count, [](double a, double b) { return a > b ? a : b; });
    default:
      return Compare(code, left, right, count);
  }
}

// What would hide that an operand is not finite: its rows have to be walked.
bool MayHide(NumericCode code) {
  return IsComparison(code) || code == NumericCode::Min || code == NumericCode::Max;
}

void Choose(double* conditions, const double* yes, const double* no, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) conditions[i] = conditions[i] != 0 ? yes[i] : no[i];
}

}  // namespace

NumericColumns::NumericColumns(const NumericProgram& program, std::span<const Bound> columns)
    : slots_(program.depth) {
  for (const NumericStep& step : program.steps) {
    Step& made = steps_.emplace_back(Step{step.code});
    if (step.code == NumericCode::Push) made.number = step.number;
    if (step.code != NumericCode::Load) continue;
    made.source = step.source;
    const auto bound = std::ranges::find(columns, step.source, &Bound::source);
    if (bound != columns.end()) made.column = bound->values;
  }
}

bool NumericColumns::IsReady() const {
  return std::ranges::all_of(steps_, [](const Step& step) {
    return step.code != NumericCode::Power &&
           (!step.source || step.column || step.source->Is(Subtype::Double));
  });
}

bool NumericColumns::Run(std::size_t first, std::size_t count, double* results) {
  std::size_t top = 0;  // the number of slots in use
  std::uint64_t bad = 0;
  for (const Step& step : steps_) {
    switch (step.code) {
      case NumericCode::Load:
        if (step.column)
          std::copy_n(step.column + first, count, slots_[top++].data());
        else
          std::fill_n(slots_[top++].data(), count, step.source->AsDouble());
        break;
      case NumericCode::Push:
        std::fill_n(slots_[top++].data(), count, step.number);
        break;
      case NumericCode::Negate:
        for (std::size_t i = 0; i < count; ++i) slots_[top - 1][i] *= -1;
        break;
      case NumericCode::Abs:
        for (std::size_t i = 0; i < count; ++i) slots_[top - 1][i] = std::fabs(slots_[top - 1][i]);
        break;
      case NumericCode::Choose:
        top -= 2;
        bad |= NotFinite(slots_[top].data(), count) | NotFinite(slots_[top + 1].data(), count);
        Choose(slots_[top - 1].data(), slots_[top].data(), slots_[top + 1].data(), count);
        break;
      default:
        --top;
        double* left = slots_[top - 1].data();
        const double* right = slots_[top].data();
        if (MayHide(step.code)) bad |= NotFinite(left, count) | NotFinite(right, count);
        if (step.code == NumericCode::Divide) bad |= NotDivisor(right, count);
        Combine(step.code, left, right, count);
    }
    if (bad != 0) return false;
  }
  for (std::size_t slot = 0; slot < top; ++slot) bad |= NotFinite(slots_[slot].data(), count);
  if (bad != 0) return false;
  std::copy_n(slots_[0].data(), count, results);
  return true;
}

}  // namespace tovalin
