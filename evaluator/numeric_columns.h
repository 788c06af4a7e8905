#pragma once

#include <cstddef>
#include <span>

#include "evaluator/numeric_program.h"

namespace tovalin {

/// Runs a numeric program over columns, a block of rows at a time: each step is a
/// loop over a block that stays in the first cache, which the compiler turns into
/// vector instructions.
class NumericColumns {
 public:
  static constexpr std::size_t kBlock = 512;

  /// A column in place of the variable whose value a program loads.
  struct Bound {
    const Variant* source;
    const double* values;
  };

  NumericColumns(const NumericProgram& program, std::span<const Bound> columns);

  /// Whether every value that is not bound to a column is a Double now.
  bool IsReady() const;

  /// Computes the rows from `first` on, at most kBlock of them. False when a row
  /// of the block has to be walked: a division by zero, a result beyond Double.
  /// The block's results are not to be used then.
  bool Run(std::size_t first, std::size_t count, double* results);

 private:
  struct Step {
    NumericCode code;
    const double* column = nullptr;   // of a Load that is bound
    const Variant* source = nullptr;  // of one that is not
    double number = 0;
  };
  using Slot = std::array<double, kBlock>;

  std::vector<Step> steps_;
  std::vector<Slot> slots_;
};

}  // namespace tovalin
