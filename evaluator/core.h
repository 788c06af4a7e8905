#pragma once

#include "evaluator/engine.h"
#include "evaluator/plan_store.h"
#include "evaluator/symbols.h"
#include "evaluator/trace.h"
#include "tovalin/evaluador.h"

namespace tovalin {

/// Where formulas find their evaluator; emptied when the evaluator goes.
struct EvaluatorLink {
  Evaluador::Core* core = nullptr;
};

/// What an Evaluador holds.
class Evaluador::Core {
 public:
  explicit Core(Evaluador& owner) : plans(symbols), engine(owner, symbols, plans, close_stack) {}

  Symbols symbols;
  PlanStore plans;
  bool close_stack = false;
  Text description;
  Text expression;
  Engine engine;
  Trace trace;
  std::shared_ptr<EvaluatorLink> link = std::make_shared<EvaluatorLink>();

  /// The plan of what a host wants evaluated: a formula text, or a postfix
  /// Collection, whose items are looked up as they are.
  Engine::Prepared Prepare(const Variant& expression, const Ref<Campos>& locals);
  /// Evaluates a plan of numbers alone, with its trace. False, and nothing done, when
  /// it has to be walked. `expression` is what the trace shows when that is not the
  /// plan's text, or null.
  bool RunNumbers(const Ref<Plan>& plan, const Text* expression, Variant& result);
  /// Evaluates one formula of a batch, with its trace.
  Variant EvaluateInBatch(Engine::Calculation& calculation, const Text& formula);
  /// Walks a plan, with the formula's part of its trace.
  Engine::Outcome Walk(Engine::Calculation& calculation, const Engine::Prepared& prepared,
                       const Ref<Campos>& locals);
};

}  // namespace tovalin
