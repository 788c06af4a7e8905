#include "hosts/cli/review.h"

#include <algorithm>

#include "hosts/cli/formula_table.h"
#include "tovalin/convert.h"

namespace tovalin::tool {
namespace {

Finding ReadFinding(const Collection& record) {
  const auto text = [&](TextView key) { return ToUtf8(record.Item(key).AsText()); };
  const auto number = [&](TextView key) {
    return static_cast<std::size_t>(ToLong(record.Item(key)));
  };
  return {text(u"Clase"),   text(u"Codigo"),  number(u"Inicio"),
          number(u"Largo"), text(u"Mensaje"), text(u"Sugerencia")};
}

TextView PartOf(const Text& formula, const Finding& finding) {
  return TextView(formula).substr(finding.start - 1, finding.length);
}

// The tool itself answers ISNULL( when it evaluates.
bool IsAnswered(const Text& formula, const Finding& finding) {
  return finding.code == "sin-respuesta" && EqualFolded(PartOf(formula, finding), u"ISNULL(");
}

// Whether an unknown name may be that of a column: no number, no call, no open literal.
bool MayBeColumn(const Text& formula, const Finding& finding,
                 const std::vector<Finding>& findings) {
  if (finding.code != "4") return false;
  const auto is_number = [&](const Finding& other) {
    return other.code == "numero" && other.start == finding.start;
  };
  if (std::ranges::any_of(findings, is_number)) return false;
  const std::size_t next = formula.find_first_not_of(u' ', finding.start - 1 + finding.length);
  const bool is_call = next != Text::npos && formula[next] == u'(';
  return !is_call && PartOf(formula, finding).find_first_of(u"'\"") == TextView::npos;
}

void AddColumns(Evaluador& reviewer, const Text& formula) {
  const std::vector<Finding> findings = ReviewOne(reviewer, formula);
  for (const Finding& finding : findings) {
    if (!MayBeColumn(formula, finding, findings)) continue;
    Text name(PartOf(formula, finding));
    if (name.starts_with(u'@')) name.erase(0, 1);
    try {
      if (!reviewer.ExistVariable(name)) reviewer.AddVble(name, Variant(), u"", kNumeric);
    } catch (const Error&) {  // what is no name stays unknown
    }
  }
}

// What a formula reads of the others, as a formula: one of a table may read its own last
// value.
Text WithoutItself(Evaluador& reviewer, const NamedFormula& formula) {
  Text others;
  bool reads_itself = false;
  const Ref<Collection> names = reviewer.VarExpresion(formula.formula);
  for (const Variant& name : names->List().Items()) {
    if (EqualFolded(name.AsText(), formula.name)) {
      reads_itself = true;
    } else {
      if (!others.empty()) others.append(u" & ");
      others.append(name.AsText());
    }
  }
  return reads_itself ? others : formula.formula;
}

}  // namespace

Ref<Evaluador> MakeReviewer(const SymbolOptions& options) {
  auto reviewer = Make<Evaluador>();
  AddSymbols(*reviewer, options);
  return reviewer;
}

std::vector<Finding> ReviewOne(const Evaluador& reviewer, const Text& formula) {
  std::vector<Finding> findings;
  const Ref<Collection> records = reviewer.Revisar(formula);
  for (const Variant& item : records->List().Items()) {
    const Ref<Collection> record = item.AsObject().As<Collection>();
    findings.push_back(ReadFinding(*record));
  }
  std::erase_if(findings, [&](const Finding& finding) { return IsAnswered(formula, finding); });
  return findings;
}

std::vector<ReviewedFormula> ReviewTable(const SymbolOptions& options,
                                         const std::vector<NamedFormula>& formulas,
                                         const std::optional<std::vector<Text>>& columns) {
  const Ref<Evaluador> reviewer = MakeReviewer(options);
  reviewer->ClearConstants();
  if (columns)
    for (std::size_t i = 0; i < columns->size(); ++i)
      AddTableVariable(*reviewer, (*columns)[i], "columna " + std::to_string(i + 1));
  for (const NamedFormula& formula : formulas) AddTableVariable(*reviewer, formula.name, "fórmula");
  if (!columns)
    for (const NamedFormula& formula : formulas) AddColumns(*reviewer, formula.formula);
  for (const NamedFormula& formula : formulas)
    reviewer->Variables()->Item(formula.name)->LetFormula(WithoutItself(*reviewer, formula));
  std::vector<ReviewedFormula> reviewed;
  for (const NamedFormula& formula : formulas)
    reviewed.push_back(
        {ToUtf8(formula.name), 0, formula.formula, ReviewOne(*reviewer, formula.formula)});
  return reviewed;
}

}  // namespace tovalin::tool
