#pragma once

#include <span>
#include <vector>

#include "tovalin/evaluador.h"

namespace tovalin::flat {

/// The formulas of a layout's fields over the columns of the rows and the parameters.
class Formulas {
 public:
  Formulas(Ref<Evaluador> evaluator, std::span<const Text> columns, const Campos& parameters);

  /// Prepares a formula and answers its number. Raises kObjectError, with `place`, for a
  /// formula with a fault.
  std::size_t Add(const Text& formula, const std::string& place);
  /// Gives the columns the values of the next row.
  void SetRow(std::span<const Variant> values);
  /// Computes a formula of the row. Raises what it raises.
  Variant Evaluate(std::size_t formula);

 private:
  Ref<Evaluador> evaluator_;
  Ref<Campos> names_;
  std::vector<Ref<Campo>> columns_;
  std::vector<bool> is_used_;  // by column
  std::vector<Ref<Formula>> formulas_;
};

}  // namespace tovalin::flat
