#pragma once

#include "evaluator/core.h"
#include "tovalin/formula.h"

namespace tovalin {

class Formula::Core {
 public:
  Core(std::shared_ptr<const EvaluatorLink> link, Text text, Ref<Campos> locals)
      : link_(std::move(link)), text_(std::move(text)), locals_(std::move(locals)) {
    PrepareAgain();
  }

  const Text& FormulaText() const { return text_; }
  const Ref<Campos>& Locals() const { return locals_; }
  /// The evaluator's core. Raises when it is gone.
  Evaluador::Core& Host() const {
    if (!link_->core) RaiseGone();
    return *link_->core;
  }
  /// Whether the plan is as the tables are now: if not, Current may run code of the host,
  /// which may drop its last Ref on the formula.
  bool IsCurrent() const {
    return plan_ && link_->core && plan_->stamp == StampNames(link_->core->symbols, locals_.get());
  }
  const Ref<Plan>& LastPlan() const { return plan_; }
  /// The plan as the tables are now. Raises when the evaluator is gone.
  const Ref<Plan>& Current() {
    if (!IsCurrent()) PrepareAgain();
    return plan_;
  }
  Engine::Outcome Evaluate();
  /// The same for a plan whose numeric program gave up or is none.
  Engine::Outcome Walk();
  void WalkInto(Variant& result);

 private:
  [[noreturn]] static void RaiseGone();
  void PrepareAgain();

  std::shared_ptr<const EvaluatorLink> link_;
  Text text_;
  Ref<Campos> locals_;
  Ref<Plan> plan_;
};

}  // namespace tovalin
