#include "tovalin/formula.h"

#include <cmath>

#include "evaluator/fault_records.h"
#include "evaluator/formula_core.h"
#include "frame/object/error_translation.h"

namespace tovalin {
Formula::Formula(std::unique_ptr<Core> core) : core_(std::move(core)) {}
Formula::~Formula() = default;

void Formula::Core::RaiseGone() {
  RaiseOwn(u"Formula", u"El Evaluador de la fórmula ya no existe");
}

// A former plan goes before another one is made: a value in it may run code of the host,
// which may ask for the plan again.
void Formula::Core::PrepareAgain() {
  while (plan_ && !IsCurrent()) plan_ = nullptr;
  if (!plan_) plan_ = Host().engine.PrepareApart(text_, locals_);
}

Engine::Outcome Formula::Core::Evaluate() {
  std::optional<Engine::Outcome> numeric = Engine::RunNumeric(*Current());
  Host().engine.ForgetReports();
  return numeric ? std::move(*numeric) : Walk();
}

Engine::Outcome Formula::Core::Walk() {
  const Ref<Plan> plan = Current();
  Evaluador::Core& host = Host();
  host.engine.ForgetReports();
  if (plan->faults) host.engine.Reports().push_back({text_, plan->text, plan->Faults()});
  return Engine::Calculation(host.engine, locals_).Walk(plan);
}

void Formula::Core::WalkInto(Variant& result) { result.Assign(Walk().value); }

Text Formula::Texto() const {
  return RaisingErrors([&] { return core_->FormulaText(); });
}

Text Formula::Posfijo() const {
  return RaisingErrors([&] {
    const Ref<const Formula> alive = Hold(*this);
    return PostfixText(*core_->Current());
  });
}

Ref<Collection> Formula::Variables() const {
  return RaisingErrors([&] {
    const Ref<const Formula> alive = Hold(*this);
    const Ref<Plan> plan = core_->Current();
    auto names = Make<Collection>();
    for (const Item& item : plan->items) {
      if (item.kind != ItemKind::Variable) continue;
      const Variant name(item.record->Name());
      if (names->List().Find(item.record->Name()) == KeyedList<Variant>::kNotFound)
        names->Add(name, name);
    }
    return names;
  });
}

Ref<Collection> Formula::Errores() const {
  return RaisingErrors([&] {
    const Ref<const Formula> alive = Hold(*this);
    const Ref<Plan> plan = core_->Current();
    auto records = Make<Collection>();
    AppendFaultRecords(*records, {core_->FormulaText(), plan->text, plan->Faults()});
    return records;
  });
}

bool Formula::EvaluarAgain(Variant& Result) {
  const Ref<Formula> alive = Hold(*this);
  core_->Current();
  return Evaluar(Result);
}

// Nothing but the number moves on the road of most formulas.
bool Formula::Evaluar(Variant& Result) {
  return RaisingErrors([&] {
    if (!core_->IsCurrent()) return EvaluarAgain(Result);
    const NumericProgram& numeric = core_->LastPlan()->numeric;
    const double number = numeric.Run();
    if (std::isnan(number)) {
      core_->WalkInto(Result);
    } else {
      core_->Host().engine.ForgetReports();
      Result.Assign(numeric.ResultOf(number));
    }
    return true;
  });
}

}  // namespace tovalin
