#include "evaluator/formula_chain.h"

#include <cmath>

#include "frame/conversion.h"
#include "frame/temporarily.h"

namespace tovalin {

FormulaChain::FormulaChain(Engine& engine, const Ref<Campos>& locals)
    : engine_(engine), locals_(locals), is_alone_(!engine.owner_.Evaluate.HasHandlers()) {}

FormulaChain::~FormulaChain() {
  while (!waiting_.empty()) Pop();
}

void FormulaChain::Compute(Campo& record) {
  Push(record);
  while (!waiting_.empty()) {
    if (Campo* needed = NextNeeded(waiting_.back())) {
      Push(*needed);
      continue;
    }
    const Ref<Campo> done = waiting_.back().record;
    Variant value = NumberAsDouble(ValueOf(*waiting_.back().plan));
    engine_.calculation_->marks_->Store(*done, std::move(value));
    engine_.calculation_->Outermost().touched_.push_back(done);
    Pop();
  }
}

void FormulaChain::Push(Campo& record) {
  if (engine_.depth_ + Depth() > Engine::kDeepest) Raise(Failure::OutOfStack);
  Ref<Plan> plan = engine_.FormulaPlan(record, locals_);
  waiting_.push_back({Ref<Campo>::Share(&record), std::move(plan)});
  record.LetStatus(Campo::kBeingComputed);
}

void FormulaChain::Pop() {
  waiting_.back().record->LetStatus(Campo::kIdle);
  waiting_.pop_back();
}

Campo* FormulaChain::NextNeeded(Waiting& waiting) const {
  const std::vector<Item>& items = waiting.plan->items;
  while (is_alone_ && waiting.next < items.size()) {
    const Item& item = items[waiting.next];
    if (item.HasRecord() && item.kind != ItemKind::Variable) break;  // an operation
    ++waiting.next;
    if (item.kind == ItemKind::Variable && engine_.NeedsComputing(*item.record)) return item.record;
  }
  return nullptr;
}

Variant FormulaChain::ValueOf(Plan& plan) {
  if (const double number = plan.numeric.Run(is_alone_); !std::isnan(number))
    return plan.numeric.ResultOf(number);
  // A walk counts for one level itself.
  const Temporarily depth(engine_.depth_, engine_.depth_ + Depth() - 1);
  return engine_.Walk(plan, locals_).value;
}

}  // namespace tovalin
