#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tovalin/text.h"

// The conformance tables of tests/conformance/README.md as data: sections, each
// with its directives and cases.

namespace tovalin::tool {

/// A fault of a table itself, with its text.
struct TableFault {
  std::string text;
};

/// A line of a table, its cells without escapes.
struct TableLine {
  int number = 0;
  std::string raw;  // as it stands in the file
  std::vector<Text> cells;

  /// A cell of a directive. Throws TableFault when there is none.
  const Text& At(std::size_t cell) const;
};

struct Section {
  std::string file;
  TableLine head;
  Text kind;
  std::vector<Text> columns;
  std::vector<std::pair<Text, Text>> fixed;  // columns with one text for all cases
  std::vector<TableLine> directives;
  std::vector<TableLine> cases;

  /// The cell of a case in a column, empty when it has none.
  TextView Cell(const TableLine& line, TextView column) const;
  /// Every column of the section, the fixed ones too.
  std::vector<Text> AllColumns() const;
};

/// Reads a table. Raises 53, 70 or 75 for a file that cannot be read; throws
/// TableFault, naming the line, for one that is no table.
std::vector<Section> ReadSections(const std::string& path);

/// `text` as it stands in a table: with escapes.
std::string Escaped(TextView text);

}  // namespace tovalin::tool
