#include "evaluator/calculation.h"

#include <algorithm>
#include <unordered_set>

#include "frame/object/error_translation.h"
#include "frame/object/scoped_value.h"
#include "frame/value/conversion.h"
#include "tovalin/convert.h"

namespace tovalin {

/// Computes a formula variable after those that its formula reads in front of every
/// operation, and these after theirs, without nested evaluations: it saves half the time
/// of a chain of 1,000, which then keeps in the second cache. The order is that of
/// nested evaluations, which compute what is read further on. Where a handler may change
/// the tables everything is left to these.
class Calculation::Chain {
 public:
  explicit Chain(Calculation& calculation)
      : calculation_(calculation),
        core_(calculation.core_),
        visited_(*calculation.visited_),
        calls_host_(core_.items.CallsHost()) {}
  ~Chain() {
    while (!pending_.empty()) Pop();
  }
  Chain(const Chain&) = delete;
  Chain& operator=(const Chain&) = delete;

  /// Tries the formula of `record`. What fails is marked as failed, all that depend on it
  /// here too, and the error thrown.
  void Compute(const Ref<Campo>& record) {
    try {
      ComputeAll(record);
    } catch (...) {
      for (const Pending& pending : pending_)
        visited_.Fail(*pending.record, std::current_exception());
      throw;
    }
  }

 private:
  // A formula variable being computed, and the item of its plan to look at next.
  struct Pending {
    Ref<Campo> record;
    Ref<Plan> plan;
    std::size_t next = 0;
  };

  void ComputeAll(const Ref<Campo>& record) {
    Push(record);
    while (!pending_.empty()) {
      if (Campo* needed = NextNeeded(pending_.back()))
        Push(Ref<Campo>::Share(needed));
      else
        ComputeLast();
    }
  }

  void ComputeLast() {
    Variant value = NumberAsDouble(ValueOf(*pending_.back().plan));
    const Ref<Campo>& done = pending_.back().record;
    Variant former = visited_.Store(*done, std::move(value));
    calculation_.NoteComputed(done);
    Pop();
    if (!former.MayOwnObjects()) return;
    former = Variant();
    CheckTables();
  }

  // After code of the host: the plans that are pending may name what is gone.
  void CheckTables() {
    if (!pending_.empty() &&
        !core_.plans.IsCurrent(*pending_.back().plan, calculation_.locals_.get()))
      is_current_ = false;
  }

  void Push(Ref<Campo> record) {
    if (core_.items.Depth() + Levels() > ItemEvaluator::kDeepest) Raise(Failure::OutOfStack);
    Ref<Plan> plan = calculation_.PlanOf(*record);
    if (!pending_.empty() && plan->version != pending_.back().plan->version) is_current_ = false;
    pending_.push_back({std::move(record), std::move(plan)});
    pending_.back().record->LetStatus(Campo::kBeingComputed);
  }

  void Pop() {
    pending_.back().record->LetStatus(Campo::kIdle);
    pending_.pop_back();
  }

  int Levels() const { return static_cast<int>(pending_.size()); }

  // The next variable that has to be computed before an operation of the plan.
  Campo* NextNeeded(Pending& pending) const {
    if (calls_host_ || !is_current_) return nullptr;
    const std::vector<Item>& items = pending.plan->postfix.items;
    while (pending.next < items.size()) {
      const Item& item = items[pending.next];
      if (item.HasRecord() && item.kind != ItemKind::Variable) break;  // an operation
      ++pending.next;
      if (item.kind == ItemKind::Variable && calculation_.MustCompute(*item.record))
        return item.record;
    }
    return nullptr;
  }

  Variant ValueOf(Plan& plan) {
    const auto by_items = [&] {
      // The evaluation counts for one level itself.
      PlanResult result = core_.items.Evaluate(plan, calculation_.locals_, Levels() - 1);
      CheckTables();
      return result;
    };
    return is_current_ ? EvaluatePlan(plan, by_items, !calls_host_).value : by_items().value;
  }

  Calculation& calculation_;
  Evaluador::Core& core_;
  VisitedVariables& visited_;
  bool calls_host_;         // other code of the host may run than destructors of objects
  bool is_current_ = true;  // the names stand for what they stood for in the pending plans
  std::vector<Pending> pending_;
};

Calculation::Calculation(Evaluador::Core& core, Ref<Campos> locals)
    : alive_(Hold<Object>(core.owner)),
      core_(core),
      locals_(std::move(locals)),
      outer_(core.calculation),
      outermost_(outer_ ? outer_->outermost_ : *this),
      visited_(&own_visited_),
      values_(CurrentValues()),
      names_(core.plans.Version(nullptr)) {
  core.calculation = this;
  if (!outer_) return;
  if (outer_->values_ == values_ && outer_->locals_ == locals_) visited_ = outer_->visited_;
  const bool other_locals =
      outermost_.locals_ == locals_ && outermost_.values_.locals != values_.locals;
  values_changed_ = other_locals || outermost_.values_.tables != values_.tables;
}

Calculation::~Calculation() { core_.calculation = outer_; }

PlanResult Calculation::EvaluateItems(const Ref<Plan>& plan) {
  try {
    PlanResult result = core_.items.Evaluate(*plan, locals_);
    Finish();
    return result;
  } catch (...) {
    Finish();  // what was computed before the error has dependants too
    throw;
  }
}

void Calculation::Touch(const Ref<Campo>& record) {
  NoteComputed(record);
  Finish();
}

void Calculation::ComputeIfNeeded(const Ref<Campo>& record) {
  if (MustCompute(*record)) Chain(*this).Compute(record);
}

// What depends on a formula variable that was computed is due at the end.
void Calculation::NoteComputed(const Ref<Campo>& record) {
  if (values_changed_)
    NoteChanged(record);
  else
    outermost_.touched_.push_back(record);
}

void Calculation::NoteChanged(const Ref<Campo>& record) {
  outermost_.changed_.push_back(record);
  outermost_.changed_at_ = outermost_.visited_->NextIndex();
}

Calculation::ValuesVersion Calculation::CurrentValues() const {
  const Symbols& symbols = core_.symbols;
  return {symbols.variables->ValuesVersion() + symbols.constants->ValuesVersion() +
              symbols.replacements,
          locals_ ? locals_->ValuesVersion() : 0};
}

// Dependants are left to the outermost calculation: each may call a handler that
// evaluates again, and their number would grow with every level. What is computed on
// the way has dependants itself, and so has what handlers ask for.
void Calculation::Finish() {
  if (outer_ || finishing_ || (touched_.empty() && changed_.empty())) return;
  const ScopedValue finishing(finishing_, true);
  while (!touched_.empty() || !changed_.empty()) {
    const std::size_t before = changed_at_;
    ComputeAgain(std::exchange(changed_, {}), before);
    ComputeDependants(std::exchange(touched_, {}));
  }
}

void Calculation::ComputeDependants(const Records& roots) {
  // Where every formula was computed, nobody has to look for who reads whom.
  const bool same_tables =
      !locals_ && !core_.items.CallsHost() && names_ == core_.plans.Version(nullptr);
  if (same_tables && visited_->Count() >= core_.dependencies.FormulaCount()) return;
  const auto is_due = [this](const Campo& record) { return IsDue(record); };
  if (!core_.dependencies.AnyReader(roots, is_due)) return;
  for (const Ref<Campo>& record : core_.dependencies.Dependants(roots))
    if (IsDue(*record)) TryDependant(record);
}

// Those too that were computed before the host wrote a value, and what reads these; but
// once more only, since their own handlers may write values again.
void Calculation::ComputeAgain(const Records& roots, std::size_t before) {
  if (roots.empty()) return;
  std::unordered_set<const Campo*> outdated;
  for (const Ref<Campo>& record : core_.dependencies.Dependants(roots)) {
    const bool was_tried = visited_->Contains(*record);
    if (was_tried) {
      const bool is_due = visited_->IsOlderThan(before, *record) || outdated.contains(record.get());
      if (!is_due || !visited_->Repeat(*record)) continue;
    }
    const bool changed = record->Status() != Campo::kBeingComputed && TryDependant(record);
    if (!changed || !was_tried) continue;
    core_.dependencies.ForEachReader(
        *record, [&outdated](const Campo& reader) { outdated.insert(&reader); });
  }
}

// Its own dependants stand behind it already. One that fails keeps its last value; nobody
// asked for it.
bool Calculation::TryDependant(const Ref<Campo>& record) {
  try {
    Chain(*this).Compute(record);
  } catch (...) {
    return false;
  }
  if (!touched_.empty() && touched_.back() == record) touched_.pop_back();
  return true;
}

bool Calculation::IsDue(const Campo& record) const {
  return record.HasFormula() && record.Status() != Campo::kBeingComputed &&
         !visited_->Contains(record);
}

// Whether a record has to be computed before it is read. Raises what it failed with.
bool Calculation::MustCompute(const Campo& record) const {
  if (!record.HasFormula() || record.Status() == Campo::kBeingComputed) return false;
  if (!visited_->Contains(record)) return true;
  visited_->RaiseFailure(record);
  return false;
}

// The plan of a formula variable, kept or new; its faults are reported.
Ref<Plan> Calculation::PlanOf(Campo& record) {
  core_.formula_plans.RemoveStale(static_cast<std::size_t>(core_.symbols.variables->Count()));
  Ref<Plan> plan = KeptPlan(record);
  if (!plan) {
    plan = core_.plans.MakeFor(record.Formula(), locals_);
    core_.formula_plans.Of(record) = plan;
  }
  core_.ReportFaults(record.Formula(), *plan);
  return plan;
}

// A kept plan that is not ready is destroyed before another one is made: a value in it
// may run code of the host, which may ask for the plan again.
Ref<Plan> Calculation::KeptPlan(Campo& record) {
  while (Ref<Plan> plan = core_.formula_plans.Of(record)) {
    if (core_.plans.IsReady(*plan, core_.plans.Version(locals_.get()))) return plan;
    core_.formula_plans.Of(record) = nullptr;
  }
  return nullptr;
}

void Evaluador::Core::DropReports() { reports.clear(); }

}  // namespace tovalin
