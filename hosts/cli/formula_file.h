#pragma once

#include <string>
#include <vector>

#include "tovalin/text.h"

namespace tovalin::tool {

struct NamedFormula {
  Text name;
  Text formula;
};

/// The formulas of a file of lines "Name = formula". "#" begins a comment line, blank
/// lines are skipped. Raises kObjectError for any other line.
std::vector<NamedFormula> ReadFormulas(const std::string& path);

}  // namespace tovalin::tool
