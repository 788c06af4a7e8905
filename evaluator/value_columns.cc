#include "evaluator/value_columns.h"

#include <algorithm>

namespace tovalin {
namespace {

bool IsPush(ItemKind kind) {
  return kind != ItemKind::Operator && kind != ItemKind::Builtin && kind != ItemKind::HostFunction;
}

// The result of an evaluation loses the quotes that it stands between.
bool BeginsInQuotes(const Variant& value) {
  return value.Is(Subtype::String) && value.AsText().starts_with(u'"');
}

Variant ConstantOf(const Plan& plan, const Item& item) {
  switch (item.kind) {
    case ItemKind::Number:
      return item.number;
    case ItemKind::Variable:
      return item.record->Value();
    case ItemKind::Text:
      return plan.postfix.Span(item);
    default:
      return plan.postfix.ValueOf(item);
  }
}

// A text of its own can be known to be plain, and then what is joined to it too.
Variant Unshared(Variant value) {
  return value.Is(Subtype::String) ? Variant(TextView(value.AsText())) : std::move(value);
}

}  // namespace

ValueColumns::ValueColumns(const Plan& plan, std::span<const Bound> columns) {
  std::size_t held = 0;
  for (const Item& item : plan.postfix.items) {
    const Step& step = steps_.emplace_back(MakeStep(plan, item, columns));
    // Functions without arguments read the clock.
    if (!IsPush(item.kind) && (step.takes == 0 || step.takes > held)) is_ready_ = false;
    if (item.kind == ItemKind::Variable && item.record->HasFormula()) is_ready_ = false;
    held = held - step.takes + 1;
    if (!is_ready_ || held > kDeepest) {
      is_ready_ = false;
      return;
    }
    if (slots_.size() < held) slots_.emplace_back();
  }
  is_ready_ = held == 1 && !IsPush(plan.postfix.items.back().kind);
}

ValueColumns::Step ValueColumns::MakeStep(const Plan& plan, const Item& item,
                                          std::span<const Bound> columns) {
  Step step;
  if (item.kind == ItemKind::Builtin) {
    step.builtin = &FunctionAt(item.builtin);
    step.takes = step.builtin->Parameters().size();
  } else if (item.kind == ItemKind::Operator) {
    step.operation = FindOperator(item.operator_code);
    // An operator that leaves two values is left to the evaluation by rows.
    if (step.operation && !step.operation->keeps_left) step.takes = step.operation->operands;
  } else if (IsPush(item.kind)) {
    const auto is_bound = [&item](const Bound& bound) {
      return item.kind == ItemKind::Variable && bound.source == &item.record->Value();
    };
    // A name that was given twice has the last of its columns, as row by row.
    const auto bound = std::find_if(columns.rbegin(), columns.rend(), is_bound);
    if (bound != columns.rend())
      step.column = bound->column;
    else
      step.constant = Normalised(Unshared(ConstantOf(plan, item)));
  }
  return step;
}

void ValueColumns::Run(std::size_t first, std::size_t count) {
  count_ = count;
  failed_.fill(false);
  std::size_t held = 0;
  for (const Step& step : steps_) {
    is_last_ = &step == &steps_.back();
    held -= step.takes;
    Slot& slot = slots_[held];
    const std::span<Slot> operands(&slot, step.takes);
    if (step.column) {
      PushColumn(*step.column, first, slot);
    } else if (step.constant) {
      slot.UseConstant(*step.constant);
    } else if (step.builtin) {
      Call(*step.builtin, operands);
    } else {
      Operate(*step.operation, operands);
    }
    ++held;
  }
}

std::optional<Variant> ValueColumns::ExtractResult(std::size_t row) {
  if (failed_[row] || BeginsInQuotes(slots_[0].At(row))) return std::nullopt;
  return slots_[0].Extract(row);
}

void ValueColumns::Slot::UseOwn() {
  own.resize(kBlock);
  values = own.data();
  stride = 1;
  is_own = true;
}

void ValueColumns::Slot::UseConstant(const Variant& value) {
  values = &value;
  stride = 0;
  is_own = false;
}

// Values that are as Pop gives them stay where they are.
void ValueColumns::PushColumn(const Formula::Column& column, std::size_t first, Slot& slot) const {
  if (const auto* numbers = std::get_if<std::span<const double>>(&column.values)) {
    slot.UseOwn();
    std::copy_n(numbers->begin() + static_cast<std::ptrdiff_t>(first), count_, slot.own.begin());
    return;
  }
  const auto values = std::get<std::span<const Variant>>(column.values).subspan(first, count_);
  slot.values = values.data();
  slot.stride = 1;
  slot.is_own = false;
  const auto is_ready = [](const Variant& value) { return IsNormalised(value); };
  if (std::ranges::all_of(values, is_ready)) return;
  slot.UseOwn();
  for (std::size_t i = 0; i < count_; ++i) slot.own[i] = Normalised(values[i].Value());
}

// A row that fails goes on with Empty, which says nothing any more. What is made of
// constants alone is computed once.
template <class Compute>
void ValueColumns::ForEachRow(std::span<Slot> operands, Compute compute) {
  const auto is_constant = [](const Slot& operand) { return operand.stride == 0; };
  const bool constant = std::ranges::all_of(operands, is_constant);
  Slot& result = operands.front();
  result.own.resize(kBlock);
  const std::size_t rows = constant ? 1 : count_;
  for (std::size_t row = 0; row < rows; ++row) {
    Variant& value = result.own[row];
    try {
      value = compute(row);
      if (!is_last_ && !IsKnownNormalised(value)) value = Normalised(std::move(value));
    } catch (const Error&) {
      failed_[row] = true;
      value = Variant();
    }
  }
  if (!constant) return result.UseOwn();
  if (failed_[0]) failed_.fill(true);
  result.constant = std::move(result.own[0]);
  result.UseConstant(result.constant);
}

void ValueColumns::Call(const BuiltinFunction& builtin, std::span<Slot> operands) {
  const HostClock clock;  // no function of a column asks it
  const FunctionContext context{clock};
  std::vector<Variant> arguments(operands.size());
  for (std::size_t i = 0; i < operands.size(); ++i)
    if (operands[i].stride == 0) arguments[i] = operands[i].At(0);
  ForEachRow(operands, [&](std::size_t row) {
    for (std::size_t i = 0; i < operands.size(); ++i)
      if (operands[i].stride != 0) arguments[i] = operands[i].Extract(row);
    return builtin.Call(arguments, context);
  });
}

void ValueColumns::Operate(const Operator& operation, std::span<Slot> operands) {
  std::array<Variant, FunctionParameters::kMost> values;
  const std::span<Variant> used = std::span(values).first(operands.size());
  ForEachRow(operands, [&](std::size_t row) {
    for (std::size_t i = 0; i < operands.size(); ++i) used[i] = operands[i].Extract(row);
    return operation.compute(used);
  });
}

}  // namespace tovalin
