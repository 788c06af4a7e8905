#include "evaluator/numeric_columns.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

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

// What a block computes from and into. The left or the right may be one number for all
// rows: its values are null then.
struct Operands {
  double* target;
  const double* first;  // of an operation of three
  const double* left;
  const double* right;
  double number;
  std::size_t count;
};

// A target may be one of the operands, row by row; never in part.
template <class Operation>
[[gnu::always_inline]] inline void Each(const Operands& operands, Operation operation) {
  double* const target = operands.target;
  const auto [unused, first, left, right, number, count] = operands;
  if (!left) {
    for (std::size_t i = 0; i < count; ++i) target[i] = operation(number, right[i]);
  } else if (!right) {
    for (std::size_t i = 0; i < count; ++i) target[i] = operation(left[i], number);
  } else {
    for (std::size_t i = 0; i < count; ++i) target[i] = operation(left[i], right[i]);
  }
}

template <NumericCode kCode>
TOVALIN_WIDE void ComputeBlock(const Operands& operands) {
  if constexpr (OperandsOf(kCode) == 3) {
    const auto [target, first, left, right, number, count] = operands;
    for (std::size_t i = 0; i < count; ++i) target[i] = Compute<kCode>(first[i], left[i], right[i]);
  } else if constexpr (OperandsOf(kCode) == 2) {
    Each(operands, [](double a, double b) { return Compute<kCode>(a, b); });
  } else {
    for (std::size_t i = 0; i < operands.count; ++i)
      operands.target[i] = Compute<kCode>(0, operands.right[i]);
  }
}

using BlockFunction = void (*)(const Operands& operands);

// A function for each code that computes.
constexpr auto kBlockFunctions = []<std::size_t... kIndex>(std::index_sequence<kIndex...>) {
  constexpr std::size_t kFirst = static_cast<std::size_t>(NumericCode::Add);
  return std::array<BlockFunction, sizeof...(kIndex)>{
      ComputeBlock<static_cast<NumericCode>(kIndex < kFirst ? kFirst : kIndex)>...};
}
(std::make_index_sequence<kNumericCodes>());

}  // namespace

NumericColumns::NumericColumns(const NumericProgram& program, std::span<const Bound> columns)
    : slots_(std::make_unique_for_overwrite<Block[]>(program.depth)) {
  stack_.reserve(program.depth);
  steps_.reserve(program.steps.size());
  for (const NumericStep& step : program.steps)
    if (is_ready_) Add(step, columns);
}

NumericColumns::Operand NumericColumns::Immediate(NumericOperand kind,
                                                  const ImmediateOperand& operand,
                                                  std::span<const Bound> columns) {
  if (kind == NumericOperand::Number) return {.number = operand.number};
  // A name that was given twice has the last of its columns, as row by row.
  const auto bound =
      std::find_if(columns.rbegin(), columns.rend(),
                   [&operand](const Bound& column) { return column.source == operand.source; });
  if (bound == columns.rend()) {
    const double* number = operand.source->IfDouble();
    if (!number || !std::isfinite(*number)) is_ready_ = false;
    return {.number = number ? *number : 0};
  }
  if (bound->doubles) return {.column = bound->doubles};
  return {.block = Gathered(bound->values)};
}

const NumericColumns::Block* NumericColumns::Gathered(const Variant* values) {
  for (const Gather& gather : gathers_)
    if (gather.values == values) return gather.target.get();
  gathers_.push_back({values, std::make_unique_for_overwrite<Block>()});
  return gathers_.back().target.get();
}

NumericColumns::Operand NumericColumns::Pop() {
  const Operand operand = stack_.back();
  stack_.pop_back();
  return operand;
}

void NumericColumns::Add(const NumericStep& step, std::span<const Bound> columns) {
  if (step.left_kind != NumericOperand::Stack)
    stack_.push_back(Immediate(step.left_kind, step.left, columns));
  if (step.right_kind != NumericOperand::Stack)
    stack_.push_back(Immediate(step.right_kind, step.right, columns));
  if (step.code != NumericCode::Load && is_ready_) AddOperation(step.code);
}

// What has the same operands in every row is computed here, once.
void NumericColumns::AddOperation(NumericCode code) {
  Step made;
  made.code = code;
  made.right = Pop();
  if (OperandsOf(code) > 1) made.left = Pop();
  if (OperandsOf(code) == 3) {
    made.right = Spread(made.right);
    made.left = Spread(made.left);
    made.first = Spread(Pop());
  } else if (made.left.IsNumber() && made.right.IsNumber()) {
    const double number = RunOne(code, made.left.number, made.right.number);
    if (std::isnan(number)) is_ready_ = false;
    stack_.push_back({.number = number});
    return;
  }
  made.target = &slots_[stack_.size()];
  stack_.push_back({.block = made.target});
  steps_.push_back(made);
}

NumericColumns::Operand NumericColumns::Spread(const Operand& operand) {
  if (!operand.IsNumber()) return operand;
  spread_.emplace_back().fill(operand.number);
  return {.block = &spread_.back()};
}

bool NumericColumns::ReadVariants(std::size_t first, std::size_t count) {
  for (const Gather& gather : gathers_) {
    double* target = gather.target->data();
    for (std::size_t i = 0; i < count; ++i) {
      const double* number = gather.values[first + i].IfDouble();
      if (!number) return false;
      target[i] = *number;
    }
  }
  return true;
}

bool NumericColumns::Run(std::size_t first, std::size_t count, double* results) {
  if (!ReadVariants(first, count)) return false;
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
  const auto values = [first](const Operand& operand) {
    return operand.IsNumber() ? nullptr : operand.Values(first);
  };
  const double* left = values(step.left);
  const double* right = values(step.right);
  if (MayHideLeft(step.code) && left && !AreFinite(left, count)) return false;
  if (MayHideRight(step.code) && right && !AreFinite(right, count)) return false;
  const double number = left ? step.right.number : step.left.number;
  kBlockFunctions[static_cast<std::size_t>(step.code)](
      {target, values(step.first), left, right, number, count});
  return true;
}

}  // namespace tovalin
