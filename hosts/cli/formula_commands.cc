#include <algorithm>
#include <iostream>

#include "frame/text/characters.h"
#include "hosts/cli/command_line.h"
#include "hosts/cli/encoding.h"
#include "hosts/cli/input.h"
#include "tovalin/convert.h"

// tovalin eval, check, postfix.

namespace tovalin::tool {
namespace {

std::string JoinedMessages(const Evaluador& evaluator) {
  std::string joined;
  const Ref<Collection> faults = evaluator.Errores();
  for (const Variant& record : faults->List().Items()) {
    const Ref<Collection> fault = record.AsObject().As<Collection>();
    if (!joined.empty()) joined.append(" | ");
    joined.append(ShowValue(fault->Item(u"Mensaje")));
  }
  return joined;
}

struct Answer {
  std::string line;
  int code;
};

// `read` gives the formula, or raises why there is none.
template <class Read>
Answer EvaluateLine(Evaluador& evaluator, Read read) {
  try {
    Variant result;
    evaluator.EvaluatePosfijo(read(), result);
    if (const std::string messages = JoinedMessages(evaluator); !messages.empty())
      return {"LastError\t" + OneLine(messages), kFaults};
    return {ToUtf8(SubtypeName(result.Kind())) + '\t' + OneLine(ShowValue(result)), kDone};
  } catch (const Error& error) {
    return {"Error\t" + std::to_string(error.number) + '\t' + OneLine(ToUtf8(error.source)) + '\t' +
                OneLine(ToUtf8(error.description)),
            kFailed};
  }
}

// Each message with the formula under it and a caret below the place.
void ShowFaults(const Collection& faults) {
  for (const Variant& record : faults.List().Items()) {
    const Ref<Collection> fault = record.AsObject().As<Collection>();
    Text formula = fault->Item(u"Expresion").AsText();
    for (char16_t& c : formula)
      if (c < u' ') c = u' ';
    const auto start = static_cast<std::size_t>(fault->Item(u"Inicio").AsLong());
    const TextView before = TextView(formula).substr(0, start - 1);
    const auto pairs = std::count_if(before.begin(), before.end(), IsLowSurrogate);
    std::cout << ShowValue(fault->Item(u"Mensaje")) << '\n'
              << "  " << ToUtf8(formula) << '\n'
              << "  " << std::string(before.size() - static_cast<std::size_t>(pairs), ' ') << "^\n";
  }
}

// The tokens of a formula, or nothing after its faults were shown: those of the text
// that the user wrote, not of the one that is checked with its references replaced.
Ref<Collection> CheckedTokens(Evaluador& evaluator, Text& formula) {
  const Ref<Collection> faults = evaluator.Preparar(formula)->Errores();
  formula = evaluator.ReplaceExpresion(formula);
  Ref<Collection> tokens = evaluator.CheckInfijo(formula);
  if (evaluator.LastError().empty()) return tokens;
  ShowFaults(*faults);
  return nullptr;
}

}  // namespace

int RunEval(const SymbolOptions& options, const std::string& formula) {
  const Ref<Evaluador> evaluator = MakeEvaluator(options);
  Variant result;
  evaluator->EvaluatePosfijo(TextOfArgument(formula), result);
  if (const Text messages = evaluator->LastError(); !messages.empty()) {
    std::cerr << ToUtf8(messages);
    return kFaults;
  }
  std::cout << ShowValue(result) << '\n';
  return kDone;
}

int RunEvalLines(const SymbolOptions& options, const std::string& path) {
  const Ref<Evaluador> evaluator = MakeEvaluator(options);
  int code = kDone;
  std::size_t number = 0;
  ReadLines(path, [&](std::string_view line) {
    ++number;
    const Answer answer = EvaluateLine(*evaluator, [&] { return TextOfLine(line, path, number); });
    std::cout << answer.line << '\n';
    code = std::max(code, answer.code);
  });
  return code;
}

int RunCheck(const SymbolOptions& options, const std::string& formula) {
  const Ref<Evaluador> evaluator = MakeEvaluator(options);
  Text expression = TextOfArgument(formula);
  const Ref<Collection> tokens = CheckedTokens(*evaluator, expression);
  if (!tokens) return kFaults;
  for (const Variant& token : tokens->List().Items()) std::cout << ShowValue(token) << '\n';
  std::cout << ToUtf8(expression) << '\n';
  return kDone;
}

int RunPostfix(const SymbolOptions& options, const std::string& formula) {
  const Ref<Evaluador> evaluator = MakeEvaluator(options);
  Text expression = TextOfArgument(formula);
  const Ref<Collection> tokens = CheckedTokens(*evaluator, expression);
  if (!tokens) return kFaults;
  Ref<Collection> items;
  std::cout << ToUtf8(evaluator->Posfijo(tokens, items)) << '\n';
  return kDone;
}

}  // namespace tovalin::tool
