#pragma once

#include <array>
#include <cstddef>
#include <deque>
#include <memory>
#include <span>
#include <vector>

#include "evaluator/numeric.h"

namespace tovalin {

/// Runs a numeric program over columns, a block of rows at a time: each step is a
/// loop over a block that stays in the first cache, which the compiler turns into
/// vector instructions. That is ten times as fast as row by row.
class NumericColumns {
 public:
  static constexpr std::size_t kBlock = 512;

  /// A column in place of the variable whose value a program loads: of doubles, or
  /// of values.
  struct Bound {
    const Variant* source;
    const double* doubles;
    const Variant* values;
  };

  NumericColumns(const NumericProgram& program, std::span<const Bound> columns);

  /// Whether the program can be run over columns at all: every value that is not
  /// bound to a column is a Double now.
  bool IsReady() const { return is_ready_; }

  /// Computes the rows from `first` on, at most kBlock of them. False when a row of
  /// the block has to be evaluated by values: a value that is no Double, a division
  /// by zero, a result beyond Double. The block's results are of no use then.
  bool Run(std::size_t first, std::size_t count, double* results);

 private:
  using Block = std::array<double, kBlock>;

  // What a step takes: a column, the result of a step before, or one number for
  // all rows.
  struct Operand {
    const double* column = nullptr;
    const Block* block = nullptr;
    double number = 0;

    bool IsNumber() const { return !column && !block; }
    const double* Values(std::size_t first) const {
      return column ? column + first : block->data();
    }
  };
  struct Step {
    NumericCode code = NumericCode::Load;
    Operand left;
    Operand right;
    Operand first;  // in front of the two, where there are three
    Block* target = nullptr;
  };

  // A column of values that are copied into doubles for each block.
  struct Gather {
    const Variant* values;
    std::unique_ptr<Block> target;
  };

  static bool RunStep(const Step& step, std::size_t first, std::size_t count, double* target);

  void Add(const NumericStep& step, std::span<const Bound> columns);
  void AddOperation(NumericCode code);
  Operand Immediate(NumericOperand kind, const ImmediateOperand& operand,
                    std::span<const Bound> columns);
  const Block* Gathered(const Variant* values);
  bool ReadVariants(std::size_t first, std::size_t count);
  Operand Spread(const Operand& operand);
  Operand Pop();

  std::unique_ptr<Block[]> slots_;  // one for each place of the stack
  std::deque<Block> spread_;        // numbers that a step of three operands takes, for all rows
  std::vector<Operand> stack_;      // as the steps find it at first, and leave it in the end
  std::vector<Step> steps_;
  std::vector<Gather> gathers_;
  bool is_ready_ = true;
};

}  // namespace tovalin
