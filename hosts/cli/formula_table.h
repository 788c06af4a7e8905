#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/cli/formula_file.h"
#include "tovalin/evaluador.h"

namespace tovalin::tool {

/// Adds a column or a formula (`what`) to an evaluator as a variable. Raises what its name
/// raises, with what it is.
void AddTableVariable(Evaluador& evaluator, const Text& name, std::string_view what);

/// Formulas that may use one another in any order, over rows that come in
/// batches. A batch is computed formula by formula, each over all its rows, in
/// the order in which they build on one another. Formulas that go in a circle are
/// computed row by row, as formula variables: each reads its last value.
class FormulaTable {
 public:
  /// Adds the columns and formulas to `evaluator` as variables. Raises what their
  /// names raise, with the column or formula.
  FormulaTable(Ref<Evaluador> evaluator, std::span<const Text> columns,
               std::vector<NamedFormula> formulas);

  std::size_t Columns() const { return columns_.size(); }
  /// Whether some formula reads a column. What no formula reads needs no values.
  bool IsRead(std::size_t column) const { return is_read_[column]; }
  /// The values of a column that is read, one for each row of the batch, to be
  /// filled in before Compute.
  std::vector<Variant>& Values(std::size_t column) { return values_[column]; }
  /// Computes a batch of `rows` rows.
  void Compute(std::size_t rows);

  /// Whether a formula reads no column, not even through others: it gives the same in
  /// all rows of a batch.
  bool IsConstant(std::size_t formula) const { return is_constant_[formula]; }
  /// What a formula gave in a row, if it did not fail there.
  const Variant& Result(std::size_t formula, std::size_t row) const {
    return values_[columns_.size() + formula][row];
  }
  /// Why a formula failed in a row, empty when it did not.
  std::string_view Failure(std::size_t formula, std::size_t row) const {
    const std::vector<std::string>& failures = failures_[formula];
    return failures.empty() ? std::string_view() : failures[row];
  }

 private:
  struct Step {
    std::size_t formula;
    Ref<Formula> prepared;
    std::string faults;               // of the check; it fails everywhere then
    std::vector<std::size_t> uses;    // the formulas that it names
    std::vector<std::size_t> places;  // of the values that it reads and that differ by row
  };
  struct Uses {
    std::vector<std::size_t> formulas;
    std::vector<std::size_t> columns;
  };

  std::vector<Uses> FindUses();
  bool OrderSteps();
  void AddStep(std::size_t formula, Uses uses);
  void ComputeStep(const Step& step);
  void Spread(std::size_t formula);
  void ComputeByRow();
  void Bind(std::size_t place);
  std::vector<Formula::Column> BoundTo(const Step& step) const;
  void Fail(std::size_t formula, std::size_t row, std::string failure);

  Ref<Evaluador> evaluator_;
  std::vector<Text> columns_;
  std::vector<bool> is_read_;  // by column
  std::vector<NamedFormula> formulas_;
  std::vector<bool> is_constant_;  // by formula
  std::vector<Step> steps_;        // in order; none when the formulas go in a circle
  std::size_t rows_ = 0;
  std::vector<std::vector<Variant>> values_;        // by column, then by formula
  std::vector<std::vector<std::string>> failures_;  // by formula; empty when none failed
  std::vector<Formula::Column> bound_;              // what formulas may use, by place
  // The same where a column or formula gave Doubles alone; kept for their memory.
  std::vector<std::vector<double>> numbers_;
};

}  // namespace tovalin::tool
