#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "hosts/cli/command_line.h"
#include "hosts/cli/formula_file.h"

namespace tovalin::tool {

/// What Evaluador.Revisar found at one place.
struct Finding {
  std::string severity;
  std::string code;
  std::size_t start = 0;  // from 1
  std::size_t length = 0;
  std::string message;
  std::string suggestion;

  bool IsNote() const { return severity == "nota"; }
  bool IsError() const { return severity == "error"; }
};

/// One formula with what was found in it.
struct ReviewedFormula {
  std::string name;      // of a formula of a file, empty for any other
  std::size_t line = 0;  // of --lines, from 1; 0 for any other
  Text formula;
  std::vector<Finding> findings;
};

/// An evaluator for reviews: nobody answers its functions, but for ISNULL(.
Ref<Evaluador> MakeReviewer(const SymbolOptions& options);

/// Reviews one formula.
std::vector<Finding> ReviewOne(const Evaluador& reviewer, const Text& formula);

/// Reviews the formulas of a table. `columns` are the names of its header; without them
/// every name that no formula defines counts as a column. Raises what bad names raise.
std::vector<ReviewedFormula> ReviewTable(const SymbolOptions& options,
                                         const std::vector<NamedFormula>& formulas,
                                         const std::optional<std::vector<Text>>& columns);

}  // namespace tovalin::tool
