#pragma once

#include <span>
#include <string>
#include <vector>

#include "tovalin/evaluador.h"

namespace tovalin::tool {

struct NamedFormula {
  Text name;
  Text formula;
};

/// Formulas that may use one another in any order, over rows that come in
/// portions. A portion is computed formula by formula, each over all its rows, in
/// the order in which they build on one another. Formulas that go in a circle are
/// computed row by row, as formula variables: each reads its last value.
class FormulaTable {
 public:
  /// What a formula gave in a row: a value, or why there is none.
  struct Cell {
    Variant value;
    std::string failure;
  };

  /// Adds the columns and formulas to `evaluator` as variables. Raises what their
  /// names raise.
  FormulaTable(Ref<Evaluador> evaluator, std::span<const Text> columns,
               std::vector<NamedFormula> formulas);

  /// Adds a row, with a value for each column.
  void AddRow(std::span<Variant> values);
  std::size_t Rows() const { return rows_; }
  /// Computes the rows that were added.
  void Compute();
  const Cell& Result(std::size_t formula, std::size_t row) const { return results_[formula][row]; }
  /// Forgets the rows.
  void Clear();

 private:
  struct Step {
    std::size_t formula;
    Ref<Formula> prepared;
    std::string faults;             // of the check; it fails everywhere then
    std::vector<std::size_t> uses;  // the formulas that it names
  };

  void AddVariable(const Text& name);
  bool OrderSteps();
  void AddStep(std::size_t formula, std::vector<std::size_t> uses);
  void ComputeStep(const Step& step);
  void ComputeByRow();
  void BindColumn(const Text& name, const std::vector<Variant>& values);

  Ref<Evaluador> evaluator_;
  std::vector<Text> columns_;
  std::vector<NamedFormula> formulas_;
  std::vector<Step> steps_;  // in order; none when the formulas go in a circle
  std::size_t rows_ = 0;
  std::vector<std::vector<Variant>> values_;  // by column, then by formula
  std::vector<std::vector<Cell>> results_;    // by formula
  std::vector<Formula::Column> bound_;        // what the next formula may use
  std::vector<std::vector<double>> numbers_;  // of the columns that hold Doubles alone
};

}  // namespace tovalin::tool
