#include "hosts/formula_table.h"

#include <algorithm>
#include <unordered_map>

#include "hosts/command_line.h"
#include "hosts/input.h"
#include "tovalin/convert.h"

namespace tovalin::tool {
namespace {

std::string WithoutLineEnd(std::string text) {
  while (text.ends_with('\n') || text.ends_with('\r')) text.pop_back();
  return text;
}

bool IsNumber(const Variant& value) {
  switch (value.Kind()) {
    case Subtype::Integer:
    case Subtype::Long:
    case Subtype::Single:
    case Subtype::Currency:
    case Subtype::Byte:
      return true;
    default:
      return false;
  }
}

// A formula variable keeps numbers as Doubles.
Variant Stored(Variant value) { return IsNumber(value) ? Variant(ToDouble(value)) : value; }

}  // namespace

FormulaTable::FormulaTable(Ref<Evaluador> evaluator, std::span<const Text> columns,
                           std::vector<NamedFormula> formulas)
    : evaluator_(std::move(evaluator)),
      columns_(columns.begin(), columns.end()),
      formulas_(std::move(formulas)),
      values_(columns_.size() + formulas_.size()),
      results_(formulas_.size()) {
  for (const Text& column : columns_) AddVariable(column);
  for (const NamedFormula& formula : formulas_) AddVariable(formula.name);
  if (OrderSteps()) return;
  steps_.clear();
  for (const NamedFormula& formula : formulas_)
    evaluator_->Variables()->Item(formula.name)->LetFormula(formula.formula);
}

void FormulaTable::AddVariable(const Text& name) {
  if (evaluator_->ExistVariable(name)) RaiseAbout(Failure::DuplicateKey, ToUtf8(name));
  evaluator_->AddVble(name, Variant(), u"", kNumeric);
}

// Puts each formula behind those that it uses. False when some go in a circle.
bool FormulaTable::OrderSteps() {
  const std::size_t count = formulas_.size();
  std::unordered_map<Text, std::size_t, FoldedHash, FoldedEqual> positions;
  for (std::size_t i = 0; i < count; ++i) positions.emplace(formulas_[i].name, i);
  std::vector<std::vector<std::size_t>> uses(count);
  std::vector<std::vector<std::size_t>> used_by(count);
  for (std::size_t i = 0; i < count; ++i) {
    const Ref<Collection> names = evaluator_->VarExpresion(formulas_[i].formula);
    for (const Variant& name : names->List().Items()) {
      const auto used = positions.find(name.AsText());
      if (used == positions.end()) continue;
      uses[i].push_back(used->second);
      used_by[used->second].push_back(i);
    }
  }
  std::vector<std::size_t> waits_for;
  for (const auto& used : uses) waits_for.push_back(used.size());
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i < count; ++i)
    if (waits_for[i] == 0) order.push_back(i);
  for (std::size_t next = 0; next < order.size(); ++next)
    for (std::size_t user : used_by[order[next]])
      if (--waits_for[user] == 0) order.push_back(user);
  for (std::size_t i : order) AddStep(i, std::move(uses[i]));
  return order.size() == count;
}

void FormulaTable::AddStep(std::size_t formula, std::vector<std::size_t> uses) {
  Step step{formula, evaluator_->Preparar(formulas_[formula].formula), {}, std::move(uses)};
  const Ref<Collection> faults = step.prepared->Errores();
  for (const Variant& record : faults->List().Items()) {
    if (!step.faults.empty()) step.faults.append(" | ");
    const Ref<Collection> fault = record.AsObject().As<Collection>();
    step.faults.append(ShowValue(fault->Item(u"Mensaje")));
  }
  steps_.push_back(std::move(step));
}

void FormulaTable::AddRow(std::span<Variant> values) {
  for (std::size_t i = 0; i < columns_.size(); ++i) values_[i].push_back(std::move(values[i]));
  ++rows_;
}

void FormulaTable::Clear() {
  for (std::vector<Variant>& column : values_) column.clear();
  for (std::vector<Cell>& cells : results_) cells.clear();
  rows_ = 0;
}

void FormulaTable::Compute() {
  for (std::vector<Cell>& cells : results_) cells.assign(rows_, Cell());
  if (steps_.size() != formulas_.size()) return ComputeByRow();
  bound_.clear();
  numbers_.clear();
  numbers_.reserve(values_.size());
  for (std::size_t i = 0; i < columns_.size(); ++i) BindColumn(columns_[i], values_[i]);
  for (const Step& step : steps_) ComputeStep(step);
}

// A column of Doubles alone goes as numbers, which whole blocks are computed from.
void FormulaTable::BindColumn(const Text& name, const std::vector<Variant>& values) {
  const auto is_double = [](const Variant& value) { return value.Is(Subtype::Double); };
  if (!std::ranges::all_of(values, is_double)) {
    bound_.push_back({name, std::span<const Variant>(values)});
    return;
  }
  std::vector<double>& numbers = numbers_.emplace_back();
  numbers.reserve(values.size());
  for (const Variant& value : values) numbers.push_back(value.AsDouble());
  bound_.push_back({name, std::span<const double>(numbers)});
}

void FormulaTable::ComputeStep(const Step& step) {
  std::vector<Cell>& cells = results_[step.formula];
  std::vector<Variant>& values = values_[columns_.size() + step.formula];
  values.assign(rows_, Variant());
  if (!step.faults.empty()) {
    for (Cell& cell : cells) cell.failure = step.faults;
  } else {
    const auto errors = step.prepared->EvaluarTabla(bound_, rows_, std::span<Variant>(values));
    for (const Formula::RowError& error : errors) cells[error.row].failure = ShowError(error.error);
  }
  // A row in which a formula failed fails in all that build on it.
  for (std::size_t used : step.uses)
    for (std::size_t row = 0; row < rows_; ++row)
      if (!results_[used][row].failure.empty()) cells[row].failure = results_[used][row].failure;
  for (std::size_t row = 0; row < rows_; ++row) {
    values[row] = Stored(std::move(values[row]));
    cells[row].value = values[row];
  }
  BindColumn(formulas_[step.formula].name, values);
}

void FormulaTable::ComputeByRow() {
  std::vector<Text> names;
  for (const NamedFormula& formula : formulas_) names.push_back(formula.name);
  std::vector<Evaluador::Outcome> outcomes(names.size());
  for (std::size_t row = 0; row < rows_; ++row) {
    for (std::size_t i = 0; i < columns_.size(); ++i)
      evaluator_->SetVariable(columns_[i], values_[i][row]);
    evaluator_->EvaluateBatch(names, outcomes);
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
      const Evaluador::Outcome& outcome = outcomes[i];
      Cell& cell = results_[i][row];
      cell.value = outcome.value;
      cell.failure = outcome.error ? ShowError(*outcome.error) : ToUtf8(outcome.faults);
      cell.failure = WithoutLineEnd(std::move(cell.failure));
    }
  }
}

}  // namespace tovalin::tool
