#pragma once

#include <string>
#include <vector>

#include "hosts/cli/case_file.h"
#include "hosts/cli/value_notation.h"
#include "tovalin/object.h"

namespace tovalin::tool {

/// Where a case differs from what the table expects.
struct Difference {
  std::string where;  // "result", "prepared" ...
  std::string expected;
  std::string got;
};

/// A case while it runs.
struct Case {
  const Section& section;
  const TableLine& line;
  Ref<Object>& kept;  // the object of a section that keeps it from case to case
  std::vector<Difference> differences{};

  TextView Cell(TextView column) const { return section.Cell(line, column); }
  /// Notes a difference when the column has an expectation that `outcome` is not.
  void Expect(TextView column, const Outcome& outcome);
  /// The same for a text, which a case without the cell expects to be empty.
  void ExpectText(TextView column, const Text& got);
};

/// A kind of cases: its columns and directives (one that ends with a blank is a
/// prefix), and how a case runs. `run` throws TableFault for a cell that cannot be
/// read.
struct CaseKind {
  TextView name;
  std::vector<TextView> columns;
  std::vector<TextView> directives;
  void (*run)(Case& running);
};

/// The kind of a section. Throws TableFault for an unknown one, and for columns or
/// directives that it does not have.
const CaseKind& KindOf(const Section& section);

/// The rest of each column name that begins with `prefix` and has a cell.
std::vector<Text> NamesOf(const Case& running, TextView prefix);

/// The directives of a name.
std::vector<const TableLine*> Directives(const Section& section, TextView name);

/// Assigns what the section's "!property" directives say.
void AssignProperties(const Section& section, Object& object);

void RunEvaluateCase(Case& running);
void RunCheckCase(Case& running);
void RunPostfixCase(Case& running);
void RunCallCase(Case& running);
void RunConvertCase(Case& running);
void RunExportCase(Case& running);

}  // namespace tovalin::tool
