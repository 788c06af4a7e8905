#include "hosts/cli/case_kinds.h"

#include <algorithm>

#include "tovalin/convert.h"

namespace tovalin::tool {
namespace {

const std::vector<TextView> kFormulaDirectives = {u"!var",      u"!local",     u"!const",
                                                  u"!formula",  u"!constants", u"!function",
                                                  u"!property", u"!clock",     u"!once"};

const CaseKind kKinds[] = {
    {u"evaluate",
     {u"formula", u"result", u"faults", u"var ", u"local ", u"const ", u"formula ", u"after ",
      u"trace "},
     kFormulaDirectives,
     RunEvaluateCase},
    {u"check",
     {u"formula", u"tokens", u"normalized", u"faults", u"var ", u"local ", u"const "},
     kFormulaDirectives,
     RunCheckCase},
    {u"postfix",
     {u"formula", u"postfix", u"var ", u"local ", u"const "},
     kFormulaDirectives,
     RunPostfixCase},
    {u"call",
     {u"class", u"member", u"result", u"1", u"2", u"3", u"4", u"5", u"6", u"7", u"8", u"after "},
     {u"!property", u"!clock", u"!keep"},
     RunCallCase},
    {u"convert", {u"value", u"to", u"result"}, {}, RunConvertCase},
    {u"export",
     {u"result", u"rows", u"txt", u"ref"},
     {u"!field", u"!row", u"!property", u"!clock"},
     RunExportCase},
};

void RequireKnown(const std::vector<TextView>& known, TextView name) {
  const bool found = std::any_of(known.begin(), known.end(), [&](TextView row) {
    return row == name || (row.ends_with(u' ') && name.starts_with(row));
  });
  if (!found) throw TableFault{"unknown here: " + ToUtf8(name)};
}

// Whether a directive names the locale, of which there is one.
bool IsLocale(const TableLine& directive) {
  if (directive.cells[0] != u"!locale") return false;
  if (directive.At(1) != u"fijo") throw TableFault{"no such locale: " + ToUtf8(directive.At(1))};
  return true;
}

Subtype SubtypeOf(TextView name) {
  for (std::uint16_t code = 0; code <= static_cast<std::uint16_t>(Subtype::Byte); ++code)
    if (SubtypeName(static_cast<Subtype>(code)) == name) return static_cast<Subtype>(code);
  throw TableFault{"no subtype: " + ToUtf8(name)};
}

}  // namespace

void Case::Expect(TextView column, const Outcome& outcome) {
  const TextView expected = Cell(column);
  if (expected.empty() && std::holds_alternative<Variant>(outcome)) return;
  if (!Matches(expected, outcome))
    differences.push_back({ToUtf8(column), Escaped(expected), Escaped(Notation(outcome))});
}

void Case::ExpectText(TextView column, const Text& got) {
  const TextView expected = Cell(column);
  if (got != expected) differences.push_back({ToUtf8(column), Escaped(expected), Escaped(got)});
}

const CaseKind& KindOf(const Section& section) {
  const auto kind = std::find_if(std::begin(kKinds), std::end(kKinds),
                                 [&](const CaseKind& row) { return row.name == section.kind; });
  if (kind == std::end(kKinds)) throw TableFault{"unknown kind: " + ToUtf8(section.kind)};
  for (const Text& column : section.AllColumns()) RequireKnown(kind->columns, column);
  for (const TableLine& line : section.directives)
    if (!IsLocale(line)) RequireKnown(kind->directives, line.cells[0]);
  return *kind;
}

std::vector<Text> NamesOf(const Case& running, TextView prefix) {
  std::vector<Text> names;
  for (const Text& column : running.section.AllColumns())
    if (column.starts_with(prefix) && !running.Cell(column).empty())
      names.push_back(column.substr(prefix.size()));
  return names;
}

std::vector<const TableLine*> Directives(const Section& section, TextView name) {
  std::vector<const TableLine*> found;
  for (const TableLine& line : section.directives)
    if (line.cells[0] == name) found.push_back(&line);
  return found;
}

void AssignProperties(const Section& section, Object& object) {
  for (const TableLine* line : Directives(section, u"!property")) {
    Variant value[] = {ReadNotation(line->At(2))};
    Variant none;
    if (auto error = object.Invoke(line->At(1), MemberKind::Let, value, none)) throw *error;
  }
}

void RunConvertCase(Case& running) {
  const Variant value = ReadNotation(running.Cell(u"value"));
  const Subtype target = SubtypeOf(running.Cell(u"to"));
  running.Expect(u"result", OutcomeOf([&] { return Convert(value, target); }));
}

}  // namespace tovalin::tool
