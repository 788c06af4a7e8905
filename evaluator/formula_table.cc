#include <algorithm>
#include <limits>
#include <new>
#include <optional>
#include <type_traits>

#include "evaluator/calculation.h"
#include "evaluator/numeric_columns.h"
#include "evaluator/value_columns.h"
#include "frame/object/error_translation.h"
#include "tovalin/convert.h"
#include "tovalin/formula.h"

// Formula::EvaluarTabla: whole blocks of rows at once where a plan computes with
// numbers alone or at least calls no host, row after row otherwise.

namespace tovalin {
namespace {

using Column = Formula::Column;
using RowError = Formula::RowError;

std::size_t SizeOf(const Column& column) {
  return std::visit([](const auto& values) { return values.size(); }, column.values);
}

Variant ValueAt(const Column& column, std::size_t row) {
  return std::visit([row](const auto& values) { return Variant(values[row]); }, column.values);
}

bool Reads(const Plan& plan, const Campo& record) {
  return std::ranges::any_of(plan.postfix.items, [&record](const Item& item) {
    return item.kind == ItemKind::Variable && item.record == &record;
  });
}

// The variables of the columns; they get their own values back at the end.
class BoundVariables {
 public:
  BoundVariables(std::span<const Column> columns, std::size_t rows, const Symbols& symbols,
                 const Campos* locals)
      : columns_(columns) {
    for (const Column& column : columns) {
      Campo* record = locals ? locals->Find(column.name) : nullptr;
      if (!record) record = symbols.variables->Find(column.name);
      if (!record || record->HasFormula()) Raise(Failure::InvalidArgument);
      if (SizeOf(column) < rows) Raise(Failure::SubscriptOutOfRange);
      records_.push_back(Ref<Campo>::Share(record));
      own_values_.push_back(record->Value());
    }
  }
  ~BoundVariables() {
    for (std::size_t i = 0; i < records_.size(); ++i) records_[i]->LetValue(own_values_[i]);
  }
  BoundVariables(const BoundVariables&) = delete;
  BoundVariables& operator=(const BoundVariables&) = delete;

  /// Leaves out the columns that an evaluation of `plan` cannot read.
  void KeepThoseOf(const Plan& plan) {
    const auto leads_elsewhere = [](const Item& item) {
      return item.kind == ItemKind::HostFunction ||
             (item.kind == ItemKind::Variable && item.record->HasFormula());
    };
    used_.clear();
    const bool all = std::ranges::any_of(plan.postfix.items, leads_elsewhere);
    for (std::size_t i = 0; i < records_.size(); ++i)
      if (all || Reads(plan, *records_[i])) used_.push_back(i);
  }

  void SetRow(std::size_t row) {
    for (std::size_t i : used_) records_[i]->LetValue(ValueAt(columns_[i], row));
  }

  std::vector<NumericColumns::Bound> Numbers() const {
    std::vector<NumericColumns::Bound> bound;
    for (std::size_t i = 0; i < records_.size(); ++i) {
      const auto* doubles = std::get_if<std::span<const double>>(&columns_[i].values);
      const auto* values = std::get_if<std::span<const Variant>>(&columns_[i].values);
      bound.push_back({&records_[i]->Value(), doubles ? doubles->data() : nullptr,
                       values ? values->data() : nullptr});
    }
    return bound;
  }

  std::vector<ValueColumns::Bound> All() const {
    std::vector<ValueColumns::Bound> bound;
    for (std::size_t i = 0; i < records_.size(); ++i)
      bound.push_back({&records_[i]->Value(), &columns_[i]});
    return bound;
  }

 private:
  std::span<const Column> columns_;
  std::vector<Ref<Campo>> records_;
  std::vector<Variant> own_values_;
  std::vector<std::size_t> used_;  // the columns that are set for each row
};

template <class Result>
class TableEvaluation {
 public:
  TableEvaluation(Formula::Core& formula, std::span<const Column> columns, std::size_t rows,
                  std::span<Result> results)
      : formula_(formula),
        plan_(formula.Current()),
        variables_(columns, rows, formula.Host().symbols, formula.Locals().get()),
        rows_(rows),
        results_(results) {
    if (results.size() < rows) Raise(Failure::SubscriptOutOfRange);
    variables_.KeepThoseOf(*plan_);
  }

  std::vector<RowError> Run() {
    std::optional<NumericColumns> numbers;
    if (plan_->numeric) {
      numbers.emplace(plan_->numeric, variables_.Numbers());
      block_.resize(NumericColumns::kBlock);
    }
    std::optional<ValueColumns> values;
    for (std::size_t first = 0; first < rows_; first += NumericColumns::kBlock) {
      const std::size_t count = std::min(NumericColumns::kBlock, rows_ - first);
      // What a result replaces may be an object, which changes the tables as it goes.
      if (!formula_.IsCurrent() || formula_.Current() != plan_) {
        RunRows(first, first + count);
        continue;
      }
      if (numbers && numbers->IsReady() && RunBlock(*numbers, first, count)) continue;
      if (AreReady(values))
        RunBlocks(*values, first, first + count);
      else
        RunRows(first, first + count);
    }
    return std::move(errors_);
  }

 private:
  bool RunBlock(NumericColumns& columns, std::size_t first, std::size_t count) {
    if constexpr (std::is_same_v<Result, double>) {
      if (plan_->numeric.gives_boolean) return RunBooleans(columns, first, count);
      return columns.Run(first, count, results_.data() + first);
    } else {
      if (!columns.Run(first, count, block_.data())) return false;
      for (std::size_t i = 0; i < count; ++i)
        results_[first + i] = plan_->numeric.ResultOf(block_[i]);
      return true;
    }
  }

  void RunBlocks(ValueColumns& columns, std::size_t first, std::size_t end) {
    for (; first < end; first += ValueColumns::kBlock) {
      const std::size_t count = std::min(ValueColumns::kBlock, end - first);
      if (!RunColumns(columns, first, count)) {
        RunRows(first, first + count);
        continue;
      }
      for (std::size_t i = 0; i < count; ++i) {
        if (std::optional<Variant> result = columns.ExtractResult(i))
          Store(first + i, [&result] { return std::move(*result); });
        else
          RunRows(first + i, first + i + 1);
      }
    }
  }

  // Where memory runs out in columns, row by row it may do, and each row tells of its own.
  bool AreReady(std::optional<ValueColumns>& columns) {
    try {
      if (!columns) columns.emplace(*plan_, variables_.All());
      return columns->IsReady();
    } catch (const std::bad_alloc&) {
      return false;
    }
  }
  static bool RunColumns(ValueColumns& columns, std::size_t first, std::size_t count) {
    try {
      columns.Run(first, count);
      return true;
    } catch (const std::bad_alloc&) {
      return false;
    }
  }

  // True is -1 as a number.
  bool RunBooleans(NumericColumns& columns, std::size_t first, std::size_t count) {
    if (!columns.Run(first, count, block_.data())) return false;
    for (std::size_t i = 0; i < count; ++i)
      results_[first + i] = static_cast<Result>(block_[i] != 0 ? -1.0 : 0.0);
    return true;
  }

  static Result NoResult() {
    if constexpr (std::is_same_v<Result, double>)
      return std::numeric_limits<double>::quiet_NaN();
    else
      return Variant();
  }

  void RunRows(std::size_t first, std::size_t end) {
    for (std::size_t row = first; row < end; ++row) {
      variables_.SetRow(row);
      Store(row, [this] { return formula_.Evaluate().value; });
    }
  }

  template <class Compute>
  void Store(std::size_t row, Compute compute) {
    try {
      RaisingErrors([&] {
        if constexpr (std::is_same_v<Result, double>)
          results_[row] = ToDouble(compute());
        else
          results_[row] = compute();
      });
    } catch (Error& error) {
      results_[row] = NoResult();
      errors_.push_back({row, std::move(error)});
    }
  }

  Formula::Core& formula_;
  Ref<Plan> plan_;
  BoundVariables variables_;
  std::size_t rows_;
  std::span<Result> results_;
  std::vector<double> block_;  // a block of results that are stored as no Doubles
  std::vector<RowError> errors_;
};

// The rows of an array of one column, copied so that its host may do what it likes.
std::vector<Variant> RowsOf(const Variant& array) {
  if (!array.Is(Subtype::Array)) Raise(Failure::TypeMismatch);
  const VariantArray& items = array.Value().AsArray();
  std::vector<Variant> rows;
  if (items.Columns() == 0) return rows;
  rows.reserve(items.Rows());
  for (std::size_t row = 0; row < items.Rows(); ++row) rows.push_back(items.At(0, row));
  return rows;
}

}  // namespace

std::vector<RowError> Formula::EvaluarTabla(std::span<const Column> columns, std::size_t rows,
                                            std::span<double> results) {
  CheckStack();  // a clock may come back here
  return RaisingErrors([&] {
    const Ref<Formula> alive = Hold(*this);
    return TableEvaluation<double>(*core_, columns, rows, results).Run();
  });
}

std::vector<RowError> Formula::EvaluarTabla(std::span<const Column> columns, std::size_t rows,
                                            std::span<Variant> results) {
  CheckStack();  // a clock may come back here
  return RaisingErrors([&] {
    const Ref<Formula> alive = Hold(*this);
    return TableEvaluation<Variant>(*core_, columns, rows, results).Run();
  });
}

std::int32_t Formula::EvaluarTabla(const Variant& columns, std::int32_t rows, Variant& Result) {
  return RaisingErrors([&] {
    if (!columns.Is(Subtype::Object)) Raise(Failure::ObjectRequired);
    const Ref<Collection> given = columns.AsObject().As<Collection>();
    if (!given) Raise(columns.AsObject() ? Failure::TypeMismatch : Failure::ObjectNotSet);
    if (rows < 0) Raise(Failure::InvalidArgument);
    const auto count = static_cast<std::size_t>(rows);
    std::vector<std::vector<Variant>> values;
    std::vector<Column> bound;
    for (const Variant& array : given->List().Items()) values.push_back(RowsOf(array));
    for (std::size_t i = 0; i < values.size(); ++i)
      bound.push_back({Text(given->List().Key(i)), std::span<const Variant>(values[i])});
    auto array = Make<VariantArray>(1, count);  // its rows stand one behind the other
    const std::span<Variant> results(count > 0 ? &array->At(0, 0) : nullptr, count);
    const std::vector<RowError> errors = EvaluarTabla(bound, count, results);
    for (const RowError& error : errors)
      results[error.row] = Variant::ErrorValue(error.error.number);
    Result.Assign(std::move(array));
    return static_cast<std::int32_t>(errors.size());
  });
}

}  // namespace tovalin
