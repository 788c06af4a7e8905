#pragma once

#include <cmath>
#include <deque>
#include <functional>

#include "evaluator/operators.h"
#include "evaluator/plan.h"
#include "tovalin/evaluador.h"

namespace tovalin {

/// What the evaluation of a plan gives: the value at the bottom of the stack, and how
/// many values were left.
struct PlanResult {
  Variant value;
  std::size_t left = 0;
};

/// Evaluates a current plan: by its numeric program, which runs no code of the host, if
/// that gets through, otherwise as `by_items` does. The program reads formula variables
/// only if they are known to be computed.
template <class ByItems>
PlanResult EvaluatePlan(const Plan& plan, ByItems by_items, bool formulas_are_computed = false) {
  const double number = plan.numeric.Run(formulas_are_computed);
  if (std::isnan(number)) return by_items();
  return {plan.numeric.ResultOf(number), plan.numeric.left};
}

/// Evaluates the items of plans with a stack of values, and hands functions that are
/// not built in to the evaluator's host.
class ItemEvaluator {
 public:
  /// Has a formula variable computed, if it has to be, before it is read.
  using PrepareVariable = std::function<void(const Ref<Campo>& record)>;

  static constexpr int kDeepest = 1000;

  ItemEvaluator(Evaluador& owner, const Plans& plans, bool& close_stack,
                PrepareVariable prepare_variable)
      : owner_(owner),
        plans_(plans),
        close_stack_(close_stack),
        prepare_variable_(std::move(prepare_variable)) {}

  /// The value of a plan, which becomes current. `levels` count as levels of nested
  /// evaluations too. Raises 28 beyond kDeepest levels, and what the items raise.
  PlanResult Evaluate(Plan& plan, const Ref<Campos>& locals, int levels = 0);

  /// The nested evaluations under way.
  int Depth() const { return depth_; }
  /// Whether code of the host may run that is no destructor of an object.
  bool CallsHost() const { return owner_.Evaluate.HasHandlers() || clock_.IsHosts(); }
  void UseClock(HostClock::Function clock) { clock_.Use(std::move(clock)); }

 private:
  struct Level;

  void EvaluateGuarded(Plan& plan, std::size_t index, const Ref<Campos>& locals, ValueStack& stack);
  void EvaluateItem(const Item& item, ValueStack& stack);
  void CallBuiltin(const BuiltinFunction& function, ValueStack& stack);
  void CallHost(const Ref<Campo>& function, ValueStack& stack);

  Evaluador& owner_;
  const Plans& plans_;
  bool& close_stack_;
  PrepareVariable prepare_variable_;
  HostClock clock_;
  std::deque<ValueStack> stacks_;  // one for each evaluation, kept for its memory
  std::size_t evaluations_ = 0;    // under way
  int depth_ = 0;                  // of evaluations, and of formula variables that wait for others
};

}  // namespace tovalin
