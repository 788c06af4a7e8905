#include "evaluator/formula_chain.h"

#include <cmath>

#include "frame/object/scoped_value.h"
#include "frame/value/conversion.h"

namespace tovalin {

FormulaChain::FormulaChain(Engine& engine, const Ref<Campos>& locals)
    : engine_(engine),
      locals_(locals),
      marks_(*engine.calculation_->marks_),
      is_alone_(!engine.CallsHost()) {}

FormulaChain::~FormulaChain() {
  while (!waiting_.empty()) Pop();
}

void FormulaChain::Compute(const Ref<Campo>& record) {
  try {
    ComputeAll(record);
  } catch (...) {
    for (const Waiting& waiting : waiting_) marks_.Fail(*waiting.record, std::current_exception());
    throw;
  }
}

void FormulaChain::ComputeAll(const Ref<Campo>& record) {
  Push(record);
  while (!waiting_.empty()) {
    if (Campo* needed = NextNeeded(waiting_.back()))
      Push(Ref<Campo>::Share(needed));
    else
      ComputeLast();
  }
}

void FormulaChain::ComputeLast() {
  Variant value = NumberAsDouble(ValueOf(*waiting_.back().plan));
  const Ref<Campo>& done = waiting_.back().record;
  Variant former = marks_.Store(*done, std::move(value));
  engine_.calculation_->NoteComputed(done);
  Pop();
  if (!former.MayOwnObjects()) return;
  former = Variant();
  CheckTables();
}

// After code of the host: the plans that wait may name what is gone.
void FormulaChain::CheckTables() {
  if (!waiting_.empty() && !engine_.IsCurrent(*waiting_.back().plan, locals_.get()))
    is_current_ = false;
}

void FormulaChain::Push(Ref<Campo> record) {
  if (engine_.depth_ + Depth() > Engine::kDeepest) Raise(Failure::OutOfStack);
  Ref<Plan> plan = engine_.FormulaPlan(*record, locals_);
  if (!waiting_.empty() && plan->stamp != waiting_.back().plan->stamp) is_current_ = false;
  waiting_.push_back({std::move(record), std::move(plan)});
  waiting_.back().record->LetStatus(Campo::kBeingComputed);
}

void FormulaChain::Pop() {
  waiting_.back().record->LetStatus(Campo::kIdle);
  waiting_.pop_back();
}

Campo* FormulaChain::NextNeeded(Waiting& waiting) const {
  if (!is_alone_ || !is_current_) return nullptr;
  const std::vector<Item>& items = waiting.plan->items;
  while (waiting.next < items.size()) {
    const Item& item = items[waiting.next];
    if (item.HasRecord() && item.kind != ItemKind::Variable) break;  // an operation
    ++waiting.next;
    if (item.kind == ItemKind::Variable && engine_.MustCompute(*item.record)) return item.record;
  }
  return nullptr;
}

Variant FormulaChain::ValueOf(Plan& plan) {
  if (is_current_)
    if (const double number = plan.numeric.Run(is_alone_); !std::isnan(number))
      return plan.numeric.ResultOf(number);
  // A walk counts for one level itself.
  const ScopedValue depth(engine_.depth_, engine_.depth_ + Depth() - 1);
  Variant value = engine_.Walk(plan, locals_).value;
  CheckTables();
  return value;
}

}  // namespace tovalin
