#include "hosts/cli/formula_table.h"

#include <algorithm>
#include <unordered_map>

#include "evaluator/formula_variables.h"
#include "frame/value/conversion.h"
#include "hosts/cli/command_line.h"
#include "hosts/cli/input.h"

namespace tovalin::tool {
namespace {

std::string WithoutLineEnd(std::string text) {
  while (text.ends_with('\n') || text.ends_with('\r')) text.pop_back();
  return text;
}

}  // namespace

void AddTableVariable(Evaluador& evaluator, const Text& name, std::string_view what) {
  const std::string place = std::string(what) + " \"" + ToUtf8(name) + '"';
  if (evaluator.ExistVariable(name)) RaiseAbout(Failure::DuplicateKey, place);
  try {
    evaluator.AddVble(name, Variant(), u"", kNumeric);
  } catch (Error& error) {
    const std::string description = WithoutLineEnd(ToUtf8(error.description));
    error.description = FromUtf8(description + ": " + place);
    throw;
  }
}

FormulaTable::FormulaTable(Ref<Evaluador> evaluator, std::span<const Text> columns,
                           std::vector<NamedFormula> formulas)
    : evaluator_(std::move(evaluator)),
      columns_(columns.begin(), columns.end()),
      is_read_(columns_.size()),
      formulas_(std::move(formulas)),
      is_constant_(formulas_.size()),
      values_(columns_.size() + formulas_.size()),
      failures_(formulas_.size()),
      numbers_(values_.size()) {
  for (std::size_t i = 0; i < columns_.size(); ++i)
    AddTableVariable(*evaluator_, columns_[i], "columna " + std::to_string(i + 1));
  for (const NamedFormula& formula : formulas_)
    AddTableVariable(*evaluator_, formula.name, "fórmula");
  if (OrderSteps()) return;
  steps_.clear();
  is_constant_.assign(formulas_.size(), false);
  for (const NamedFormula& formula : formulas_)
    evaluator_->Variables()->Item(formula.name)->LetFormula(formula.formula);
}

// What each formula names; the columns that any names are marked.
std::vector<FormulaTable::Uses> FormulaTable::FindUses() {
  const std::size_t columns = columns_.size();
  std::unordered_map<Text, std::size_t, FoldedHash, FoldedEqual> positions;
  for (std::size_t i = 0; i < columns; ++i) positions.emplace(columns_[i], i);
  for (std::size_t i = 0; i < formulas_.size(); ++i)
    positions.emplace(formulas_[i].name, columns + i);
  std::vector<Uses> uses(formulas_.size());
  for (std::size_t i = 0; i < formulas_.size(); ++i) {
    const Ref<Collection> names = evaluator_->VarExpresion(formulas_[i].formula);
    for (const Variant& name : names->List().Items()) {
      const auto used = positions.find(name.AsText());
      if (used == positions.end()) continue;
      if (used->second >= columns) {
        uses[i].formulas.push_back(used->second - columns);
      } else {
        uses[i].columns.push_back(used->second);
        is_read_[used->second] = true;
      }
    }
  }
  return uses;
}

// Puts each formula behind those that it uses. False when some go in a circle.
bool FormulaTable::OrderSteps() {
  const std::size_t count = formulas_.size();
  std::vector<Uses> uses = FindUses();
  std::vector<std::vector<std::size_t>> used_by(count);
  for (std::size_t i = 0; i < count; ++i)
    for (std::size_t used : uses[i].formulas) used_by[used].push_back(i);
  const std::vector<std::size_t> order = DependencyOrder(
      count, [&](std::size_t used, auto visit) { std::ranges::for_each(used_by[used], visit); });
  for (std::size_t i : order) AddStep(i, std::move(uses[i]));
  return order.size() == count;
}

void FormulaTable::AddStep(std::size_t formula, Uses uses) {
  const auto is_constant = [this](std::size_t used) { return is_constant_[used]; };
  is_constant_[formula] = uses.columns.empty() && std::ranges::all_of(uses.formulas, is_constant);
  Step step{formula,
            evaluator_->Preparar(formulas_[formula].formula),
            {},
            std::move(uses.formulas),
            std::move(uses.columns)};
  for (std::size_t used : step.uses)
    if (!IsConstant(used)) step.places.push_back(columns_.size() + used);
  const Ref<Collection> faults = step.prepared->Errores();
  for (const Variant& record : faults->List().Items()) {
    if (!step.faults.empty()) step.faults.append(" | ");
    const Ref<Collection> fault = record.AsObject().As<Collection>();
    step.faults.append(ShowValue(fault->Item(u"Mensaje")));
  }
  steps_.push_back(std::move(step));
}

void FormulaTable::Compute(std::size_t rows) {
  rows_ = rows;
  if (rows == 0) return;
  for (std::vector<std::string>& failures : failures_) failures.clear();
  if (steps_.size() != formulas_.size()) return ComputeByRow();
  bound_.resize(values_.size());
  for (std::size_t i = 0; i < columns_.size(); ++i)
    if (is_read_[i]) Bind(i);
  for (const Step& step : steps_) ComputeStep(step);
}

void FormulaTable::Fail(std::size_t formula, std::size_t row, std::string failure) {
  if (failure.empty()) return;
  failures_[formula].resize(rows_);
  failures_[formula][row] = std::move(failure);
}

// Lets the next formulas use a column or formula, by its place in values_. Doubles
// alone go as numbers, which whole blocks are computed from.
void FormulaTable::Bind(std::size_t place) {
  const std::size_t columns = columns_.size();
  const Text& name = place < columns ? columns_[place] : formulas_[place - columns].name;
  const std::vector<Variant>& values = values_[place];
  const auto is_double = [](const Variant& value) { return value.Is(Subtype::Double); };
  if (!std::ranges::all_of(values, is_double)) {
    bound_[place] = {name, std::span<const Variant>(values)};
    return;
  }
  std::vector<double>& numbers = numbers_[place];
  numbers.clear();
  for (const Variant& value : values) numbers.push_back(value.AsDouble());
  bound_[place] = {name, std::span<const double>(numbers)};
}

// Each column that a formula is given is looked up by its name.
std::vector<Formula::Column> FormulaTable::BoundTo(const Step& step) const {
  std::vector<Formula::Column> bound;
  for (std::size_t place : step.places) bound.push_back(bound_[place]);
  return bound;
}

void FormulaTable::ComputeStep(const Step& step) {
  std::vector<Variant>& values = values_[columns_.size() + step.formula];
  values.resize(rows_);
  if (!step.faults.empty()) {
    failures_[step.formula].assign(rows_, step.faults);
    std::ranges::fill(values, Variant());
  } else {
    const std::size_t rows = IsConstant(step.formula) ? 1 : rows_;
    const auto errors =
        step.prepared->EvaluarTabla(BoundTo(step), rows, std::span<Variant>(values));
    for (const Formula::RowError& error : errors)
      Fail(step.formula, error.row, ShowError(error.error));
    if (IsConstant(step.formula)) Spread(step.formula);
  }
  // A row in which a formula failed fails in all that build on it.
  for (std::size_t used : step.uses)
    for (std::size_t row = 0; row < failures_[used].size(); ++row)
      Fail(step.formula, row, failures_[used][row]);
  // A formula variable keeps numbers as Doubles.
  for (Variant& value : values) value = NumberAsDouble(std::move(value));
  if (IsConstant(step.formula))
    evaluator_->SetVariable(formulas_[step.formula].name, values.front());
  else
    Bind(columns_.size() + step.formula);
}

// What a constant formula gave in the first row stands in all.
void FormulaTable::Spread(std::size_t formula) {
  std::vector<Variant>& values = values_[columns_.size() + formula];
  std::fill(values.begin() + 1, values.end(), values.front());
  std::vector<std::string>& failures = failures_[formula];
  if (!failures.empty()) std::fill(failures.begin() + 1, failures.end(), failures.front());
}

void FormulaTable::ComputeByRow() {
  std::vector<Text> names;
  for (const NamedFormula& formula : formulas_) names.push_back(formula.name);
  for (std::size_t i = 0; i < names.size(); ++i) values_[columns_.size() + i].resize(rows_);
  std::vector<Evaluador::Outcome> outcomes(names.size());
  for (std::size_t row = 0; row < rows_; ++row) {
    for (std::size_t i = 0; i < columns_.size(); ++i)
      if (is_read_[i]) evaluator_->SetVariable(columns_[i], values_[i][row]);
    evaluator_->EvaluateBatch(names, outcomes);
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
      const Evaluador::Outcome& outcome = outcomes[i];
      values_[columns_.size() + i][row] = outcome.value;
      Fail(i, row,
           WithoutLineEnd(outcome.error ? ShowError(*outcome.error) : ToUtf8(outcome.faults)));
    }
  }
}

}  // namespace tovalin::tool
