#include "hosts/cli/case_kinds.h"
#include "hosts/cli/command_line.h"
#include "hosts/cli/memory_settings.h"
#include "tovalin/convert.h"
#include "tovalin/evaluador.h"

// The cases of formulas: evaluate, check, postfix.

namespace tovalin::tool {
namespace {

// A host's function: its word with "(", and how many arguments it takes.
struct HostFunction {
  Text name;
  std::int32_t arguments = 0;
};

struct NamedValue {
  Text name;
  Variant value;
};

// The symbols that a section or a case gives under one word, "var" or "local".
std::vector<NamedValue> SymbolsOf(const Case& running, const Text& word) {
  std::vector<NamedValue> symbols;
  for (const TableLine* line : Directives(running.section, u"!" + word))
    symbols.push_back({line->At(1), ReadNotation(line->At(2))});
  for (const Text& name : NamesOf(running, word + u" "))
    symbols.push_back({name, ReadNotation(running.Cell(word + u" " + name))});
  return symbols;
}

// An evaluator with the symbols of a case, and its host.
class FormulaHost {
 public:
  explicit FormulaHost(const Case& running) {
    evaluator->UseSettings(settings);
    AddFunctions(running.section);
    AddSymbols(running);
    for (const TableLine* line : Directives(running.section, u"!clock"))
      evaluator->UseClock([now = ToDate(ReadNotation(line->At(1)))] { return now; });
    AssignProperties(running.section, *evaluator);
  }

  const Ref<Evaluador> evaluator = Make<Evaluador>();
  const Ref<MemorySettings> settings = Make<MemorySettings>();
  Ref<Campos> locals = Make<Campos>();
  std::vector<NamedValue> variables;

 private:
  void AddSymbols(const Case& running) {
    if (!Directives(running.section, u"!constants").empty()) evaluator->ClearConstants();
    variables = SymbolsOf(running, u"var");
    for (const NamedValue& symbol : variables)
      evaluator->AddVble(symbol.name, symbol.value, u"", DataTypeOf(symbol.value));
    for (const NamedValue& symbol : SymbolsOf(running, u"const"))
      evaluator->AddConstant(symbol.name, symbol.value, u"", DataTypeOf(symbol.value));
    for (const NamedValue& symbol : SymbolsOf(running, u"local")) {
      auto record = Make<Campo>(symbol.name);
      record->LetValue(symbol.value);
      locals->Add(record);
    }
    for (const TableLine* line : Directives(running.section, u"!formula"))
      evaluator->AddVble(line->At(1), Variant(), u"", kNumeric, line->At(2));
    for (const Text& name : NamesOf(running, u"formula "))
      evaluator->AddVble(name, Variant(), u"", kNumeric, Text(running.Cell(u"formula " + name)));
  }

  void AddFunctions(const Section& section) {
    std::vector<HostFunction> answered{{u"ISNULL(", 1}};
    for (const TableLine* line : Directives(section, u"!function")) {
      const Text& word = line->At(1);
      evaluator->AddFunction(word + u"(", word, u"", u"");
      if (line->cells.size() > 2)
        answered.push_back({word + u"(", ToLong(ReadNotation(line->cells[2]))});
    }
    // The handler lives in the evaluator, so it holds no reference to it.
    evaluator->Evaluate.Attach(
        [&host = *evaluator, answered](const Text& macro, Variant& result, Ref<Collection>& pila) {
          for (const HostFunction& function : answered)
            if (EqualFolded(function.name, macro)) Answer(host, function, result, pila);
        });
  }

  // A text that shows the arguments in their order; ISNULL( is answered truly.
  static void Answer(Evaluador& host, const HostFunction& function, Variant& result,
                     Ref<Collection>& pila) {
    if (function.name == u"ISNULL(") {
      result = host.LoadTopePila(pila).Is(Subtype::Null);
      return;
    }
    Text arguments;
    for (std::int32_t i = 0; i < function.arguments; ++i) {
      if (i > 0) arguments.insert(0, u";");
      arguments.insert(0, Notation(host.LoadTopePila(pila)));
    }
    result = function.name + arguments + u")";
  }
};

// One line for each fault: "4 5 3 Variable no definida A".
Text FaultsOf(const Ref<Collection>& faults) {
  Text lines;
  for (const Variant& record : faults->List().Items()) {
    const Ref<Collection> fault = record.AsObject().As<Collection>();
    if (!lines.empty()) lines.append(u" | ");
    for (TextView item : {u"Codigo", u"Inicio", u"Largo"})
      lines.append(ToText(fault->Item(item))).append(u" ");
    lines.append(ToText(fault->Item(u"Mensaje")));
  }
  return lines;
}

using Compute = Variant (*)(FormulaHost& host, const Text& formula);

Variant EvaluateText(FormulaHost& host, const Text& formula) {
  Variant result;
  host.evaluator->EvaluatePosfijo(formula, result, &host.locals);
  return result;
}

Variant EvaluateAgain(FormulaHost& host, const Text& formula) {
  OutcomeOf([&] { return EvaluateText(host, formula); });
  return EvaluateText(host, formula);
}

Variant EvaluatePrepared(FormulaHost& host, const Text& formula) {
  Variant result;
  const Ref<Formula> prepared = host.evaluator->Preparar(formula, &host.locals);
  prepared->Evaluar(result);
  return result;
}

Variant EvaluateItems(FormulaHost& host, const Text& formula) {
  Text text = host.evaluator->ReplaceExpresion(formula, &host.locals);
  const Ref<Collection> tokens = host.evaluator->CheckInfijo(text, &host.locals);
  Ref<Collection> items;
  host.evaluator->Posfijo(tokens, items, &host.locals);
  Variant result;
  host.evaluator->EvaluatePosfijo(items, result, &host.locals);
  return result;
}

// The variables as columns of a table with one row. A column of a local variable's
// name would be that local one's.
Variant EvaluateRow(FormulaHost& host, const Text& formula) {
  std::vector<Formula::Column> columns;
  for (const NamedValue& variable : host.variables)
    if (!host.locals->Exists(variable.name))
      columns.push_back({variable.name, std::span(&variable.value, 1)});
  Variant result;
  const Ref<Formula> prepared = host.evaluator->Preparar(formula, &host.locals);
  const auto failed = prepared->EvaluarTabla(columns, 1, std::span(&result, 1));
  if (!failed.empty()) throw failed[0].error;
  return result;
}

// The same with numbers in and out, for formulas that are numeric throughout.
Variant EvaluateNumbers(FormulaHost& host, const Text& formula) {
  std::vector<Formula::Column> columns;
  for (const NamedValue& variable : host.variables) {
    const double* number = variable.value.IfDouble();
    if (!number || host.locals->Exists(variable.name)) return EvaluateRow(host, formula);
    columns.push_back({variable.name, std::span(number, 1)});
  }
  const Variant expected = EvaluateRow(host, formula);
  if (!expected.Is(Subtype::Double)) return expected;
  double result = 0;
  const Ref<Formula> prepared = host.evaluator->Preparar(formula, &host.locals);
  const auto failed = prepared->EvaluarTabla(columns, 1, std::span(&result, 1));
  if (!failed.empty()) throw failed[0].error;
  return result;
}

struct Way {
  const char* name;
  Compute compute;
};

constexpr Way kWays[] = {
    {"again", EvaluateAgain},           {"prepared", EvaluatePrepared},
    {"postfix items", EvaluateItems},   {"table row", EvaluateRow},
    {"numeric table", EvaluateNumbers},
};

// Every way of computing a formula gives what the first one gave.
void CompareWays(Case& running, const Text& formula, const Outcome& first) {
  for (const Way& way : kWays) {
    FormulaHost host(running);
    const Outcome outcome = OutcomeOf([&] { return way.compute(host, formula); });
    if (Notation(outcome) != Notation(first))
      running.differences.push_back(
          {way.name, Escaped(Notation(first)), Escaped(Notation(outcome))});
  }
}

}  // namespace

void RunEvaluateCase(Case& running) {
  const Text formula(running.Cell(u"formula"));
  FormulaHost host(running);
  const Outcome outcome = OutcomeOf([&] { return EvaluateText(host, formula); });
  running.Expect(u"result", outcome);
  const Text faults = FaultsOf(host.evaluator->Errores());
  running.ExpectText(u"faults", faults);
  for (const Text& name : NamesOf(running, u"after "))
    running.Expect(u"after " + name, host.evaluator->GetVariable(name, Variant::Missing()));
  for (const Text& key : NamesOf(running, u"trace "))
    running.Expect(u"trace " + key,
                   Variant(host.settings->Get(u"Evaluador", u"Posfijo", key, u"")));
  if (faults.empty() && Directives(running.section, u"!once").empty())
    CompareWays(running, formula, outcome);
}

void RunCheckCase(Case& running) {
  FormulaHost host(running);
  Text formula(running.Cell(u"formula"));
  const Ref<Collection> tokens = host.evaluator->CheckInfijo(formula, &host.locals);
  Text joined;
  for (const Variant& token : tokens->List().Items())
    joined.append(joined.empty() ? u"" : u" | ").append(ToText(token));
  running.ExpectText(u"tokens", joined);
  if (!running.Cell(u"normalized").empty()) running.Expect(u"normalized", Variant(formula));
  running.ExpectText(u"faults", FaultsOf(host.evaluator->Errores()));
}

void RunPostfixCase(Case& running) {
  FormulaHost host(running);
  Text formula(running.Cell(u"formula"));
  const Ref<Collection> tokens = host.evaluator->CheckInfijo(formula, &host.locals);
  Ref<Collection> items;
  running.Expect(u"postfix", Variant(host.evaluator->Posfijo(tokens, items, &host.locals)));
}

}  // namespace tovalin::tool
