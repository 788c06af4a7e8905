#include "evaluator/engine.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>

#include "evaluator/formula_chain.h"
#include "evaluator/references.h"
#include "frame/object/scoped_value.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

// Whether a formula is not what the trace shows or the plan holds. Without a branch for each
// character, so that the compiler takes many at once.
bool HasSpecial(const Text& formula) {
  unsigned special = 0;
  for (char16_t c : formula) special |= c == u'@' || c == u'\r';
  return special != 0;
}

bool EndsInQuotes(const Text& text) {
  return text.size() > 1 && text.front() == u'"' && text.back() == u'"';
}

// Whether an object may be among the values that a handler left. A handler may leave
// many: then for all that one knows.
bool MayHoldObjects(const ValueStack& stack) {
  constexpr std::size_t kFew = 16;
  return stack.size() > kFew || std::ranges::any_of(stack, &Variant::MayOwnObjects);
}

// The bottom value is deliberately the result: formulas that leave several rely
// on their first one.
Engine::Outcome BottomOf(ValueStack& stack) {
  Engine::Outcome outcome{std::int16_t{0}, stack.size()};
  if (stack.empty()) return outcome;
  outcome.value = std::move(stack.front());
  if (outcome.value.Is(Subtype::String) && EndsInQuotes(outcome.value.AsText())) {
    const TextView text = outcome.value.AsText();
    outcome.value = Variant(text.substr(1, text.size() - 2));
  }
  return outcome;
}

}  // namespace

// One level of the walk: its stack, and the mark on its plan. Left in any way, it
// lets go of the values.
struct Engine::Level {
  Level(Engine& engine, Plan& plan) : engine(engine), plan(plan) {
    if (engine.depth_ > kDeepest) Raise(Failure::OutOfStack);
    CheckStack();
    if (engine.stacks_.size() == engine.walks_) engine.stacks_.emplace_back();
    stack = &engine.stacks_[engine.walks_++];
    ++engine.depth_;
    ++plan.walks;
  }
  ~Level() {
    stack->clear();
    --engine.walks_;
    --engine.depth_;
    --plan.walks;
  }
  Engine& engine;
  Plan& plan;
  ValueStack* stack;
};

Engine::Calculation::Calculation(Engine& engine, Ref<Campos> locals)
    : alive_(Hold<Object>(engine.owner_)),
      engine_(engine),
      locals_(std::move(locals)),
      outer_(engine.calculation_),
      outermost_(outer_ ? outer_->outermost_ : *this),
      marks_(&own_marks_),
      values_(StampValues()),
      names_(StampNames(engine.symbols_, nullptr)) {
  engine.calculation_ = this;
  if (!outer_) return;
  if (outer_->values_ == values_ && outer_->locals_ == locals_) marks_ = outer_->marks_;
  const bool other_locals =
      outermost_.locals_ == locals_ && outermost_.values_.locals != values_.locals;
  values_changed_ = other_locals || outermost_.values_.values != values_.values;
}

Engine::Calculation::~Calculation() { engine_.calculation_ = outer_; }

Engine::Outcome Engine::Calculation::Walk(const Ref<Plan>& plan) {
  try {
    Outcome outcome = engine_.Walk(*plan, locals_);
    Finish();
    return outcome;
  } catch (...) {
    Finish();  // what was computed before the error has dependants too
    throw;
  }
}

void Engine::Calculation::Touch(const Ref<Campo>& record) {
  NoteComputed(record);
  Finish();
}

void Engine::Calculation::NoteChanged(const Ref<Campo>& record) {
  outermost_.changed_.push_back(record);
  outermost_.changed_at_ = outermost_.marks_->Next();
}

Engine::Calculation::ValuesStamp Engine::Calculation::StampValues() const {
  const Symbols& symbols = engine_.symbols_;
  return {symbols.variables->ValuesVersion() + symbols.constants->ValuesVersion() +
              symbols.replacements,
          locals_ ? locals_->ValuesVersion() : 0};
}

// Dependants are left to the outermost evaluation: each may call a handler that
// evaluates again, and their number would grow with every level. What is computed on
// the way has dependants itself, and so has what handlers ask for.
void Engine::Calculation::Finish() {
  if (outer_ || finishing_ || (touched_.empty() && changed_.empty())) return;
  const ScopedValue finishing(finishing_, true);
  while (!touched_.empty() || !changed_.empty()) {
    const std::size_t before = changed_at_;
    ComputeAgain(std::exchange(changed_, {}), before);
    ComputeDependants(std::exchange(touched_, {}));
  }
}

void Engine::Calculation::ComputeDependants(const Records& roots) {
  // Where every formula was computed, nobody has to look for who reads whom.
  const bool same_tables =
      !locals_ && !engine_.CallsHost() && names_ == StampNames(engine_.symbols_, nullptr);
  if (same_tables && marks_->Count() >= engine_.dependencies_.FormulaCount()) return;
  const auto is_due = [this](const Campo& record) { return engine_.NeedsComputing(record); };
  if (!engine_.dependencies_.AnyReader(roots, is_due)) return;
  for (const Ref<Campo>& record : engine_.dependencies_.Dependants(roots))
    if (engine_.NeedsComputing(*record)) TryDependant(record);
}

// Those too that were computed before the host wrote a value, and what reads these; but
// once more only, since their own handlers may write values again.
void Engine::Calculation::ComputeAgain(const Records& roots, std::size_t before) {
  if (roots.empty()) return;
  std::unordered_set<const Campo*> outdated;
  for (const Ref<Campo>& record : engine_.dependencies_.Dependants(roots)) {
    const bool was_tried = marks_->Contains(*record);
    if (was_tried) {
      const bool is_due = marks_->IsOlderThan(before, *record) || outdated.contains(record.get());
      if (!is_due || !marks_->Repeat(*record)) continue;
    }
    const bool changed = record->Status() != Campo::kBeingComputed && TryDependant(record);
    if (!changed || !was_tried) continue;
    engine_.dependencies_.ForEachReader(
        *record, [&outdated](const Campo& reader) { outdated.insert(&reader); });
  }
}

// Its own dependants stand behind it already. One that fails keeps its last value; nobody
// asked for it.
bool Engine::Calculation::TryDependant(const Ref<Campo>& record) {
  try {
    FormulaChain(engine_, locals_).Compute(record);
  } catch (...) {
    return false;
  }
  if (!touched_.empty() && touched_.back() == record) touched_.pop_back();
  return true;
}

const Ref<Plan>* Engine::Recent(const SharedText& formula, const Campos* locals) const {
  const RecentText& recent = recent_[RecentPlace(formula)];
  const bool same = recent.text.get() == &formula;
  return same && recent.plan->MayRun(StampNames(symbols_, locals)) ? &recent.plan : nullptr;
}

Engine::Prepared Engine::Prepare(SharedText& formula, const Ref<Campos>& locals) {
  if (const Ref<Plan>* recent = Recent(formula, locals.get())) return {*recent, std::nullopt};
  RecentText text{Ref<SharedText>::Share(&formula), nullptr};
  Prepared prepared = Prepare(formula.value, locals);
  const Plan& plan = *prepared.plan;
  // Faults have to be told anew and constants bound anew each time.
  if (!plan.came_again || prepared.expression || plan.faults || plan.has_constants) return prepared;
  text.plan = prepared.plan;
  std::swap(recent_[RecentPlace(formula)], text);
  return prepared;
}

Engine::Prepared Engine::Prepare(const Text& formula, const Ref<Campos>& locals) {
  Prepared prepared;
  if (!HasSpecial(formula)) {
    prepared.plan = plans_.Get(formula, locals);
  } else {
    Text text = formula;
    StripCarriageReturns(text);
    prepared.plan = plans_.Get(text, locals);
    prepared.expression = WithoutAtSigns(formula, prepared.plan->at_signs);
  }
  const Plan& plan = *prepared.plan;
  if (plan.faults) reports_.push_back({formula, plan.text, plan.Faults()});
  return prepared;
}

Ref<Plan> Engine::PrepareApart(const Text& formula, const Ref<Campos>& locals) {
  Text text = formula;
  StripCarriageReturns(text);
  return plans_.Make(text, locals);
}

Text Engine::ReplaceReferences(const Text& formula, const Campos* locals) {
  TokenList list = plans_.Tokens(formula);
  for (Token& token : list.tokens)
    if (token.kind == TokenKind::Name) ResolveOperand(list, token, symbols_, locals);
  return WithoutAtSigns(formula, list.at_signs);
}

void Engine::DropReports() { reports_.clear(); }

std::optional<Engine::Outcome> Engine::RunNumeric(const Plan& plan) {
  const double number = plan.numeric.Run();
  if (std::isnan(number)) return std::nullopt;
  return Outcome{plan.numeric.ResultOf(number), plan.numeric.left};
}

Engine::Outcome Engine::Walk(Plan& plan, const Ref<Campos>& locals) {
  Level level(*this, plan);
  KeepCurrent(plan, locals.get());
  ValueStack& stack = *level.stack;
  bool holds_objects = false;
  for (std::size_t i = 0; i < plan.items.size(); ++i) {
    const Item& item = plan.items[i];
    switch (item.kind) {
      case ItemKind::Number:
        stack.emplace_back(item.number);
        break;
      case ItemKind::Operator:
        if (holds_objects)
          Step(plan, i, locals, stack);
        else
          ApplyOperator(item.operator_code, stack);
        break;
      case ItemKind::Variable:
        if (item.record->HasFormula())
          Step(plan, i, locals, stack);
        else
          stack.push_back(item.record->Value());
        holds_objects |= stack.back().MayOwnObjects();
        break;
      case ItemKind::Constant:
      case ItemKind::Literal:
      case ItemKind::Value:
        stack.push_back(plan.ValueOf(item));
        holds_objects |= stack.back().MayOwnObjects();
        break;
      case ItemKind::Builtin: {
        const BuiltinFunction& function = FunctionAt(item.builtin);
        if (holds_objects || (!function.is_pure && clock_.IsHosts()))
          Step(plan, i, locals, stack);
        else
          CallBuiltin(function, stack);
        break;
      }
      case ItemKind::HostFunction:
        Step(plan, i, locals, stack);
        holds_objects = MayHoldObjects(stack);
        break;
      case ItemKind::Text:
        stack.emplace_back(plan.Span(item));
        break;
    }
  }
  return BottomOf(stack);
}

// A step that may run code of the host, which may change the tables: a handler, a
// clock, the destructor of an object. The plan's names are looked up again then.
void Engine::Step(Plan& plan, std::size_t index, const Ref<Campos>& locals, ValueStack& stack) {
  const NamesStamp before = StampNames(symbols_, locals.get());
  Take(plan.items[index], locals, stack);
  if (StampNames(symbols_, locals.get()) != before) LookUpAgain(plan, symbols_, locals.get());
}

void Engine::Take(const Item& item, const Ref<Campos>& locals, ValueStack& stack) {
  if (item.kind == ItemKind::Operator) return ApplyOperator(item.operator_code, stack);
  if (item.kind == ItemKind::Builtin) return CallBuiltin(FunctionAt(item.builtin), stack);
  const Ref<Campo> record = Ref<Campo>::Share(item.record);
  if (item.kind == ItemKind::HostFunction) return CallHost(record, stack);
  if (MustCompute(*record)) FormulaChain(*this, locals).Compute(record);
  stack.push_back(record->Value());
}

void Engine::CallBuiltin(const BuiltinFunction& function, ValueStack& stack) {
  const std::size_t count = function.Parameters().size();
  ReplaceTop(stack, count, function.Call(TopOperands(stack, count), {clock_}));
}

// The stack goes into a Collection for the handler and comes back as it left it,
// or as the Collection that it put in its place.
void Engine::CallHost(const Ref<Campo>& function, ValueStack& stack) {
  auto pila = Make<Collection>();
  pila->List().Items().swap(stack);
  Variant result;
  const auto take_back = [&] {
    stack.clear();
    if (!pila) return;
    if (pila->references.Value() == 1 && !pila->List().HasKeys())
      pila->List().Items().swap(stack);
    else
      stack = pila->List().Items();
  };
  try {
    owner_.Evaluate.Raise(function->Name(), result, pila);
  } catch (...) {
    close_stack_ = false;
    take_back();
    throw;
  }
  close_stack_ = false;
  take_back();
  stack.push_back(result.IsByReference() ? Variant(result.Value()) : std::move(result));
}

bool Engine::NeedsComputing(const Campo& record) const {
  return record.HasFormula() && record.Status() != Campo::kBeingComputed &&
         !calculation_->marks_->Contains(record);
}

// Whether a record has to be computed before it is read. Raises what it failed with.
bool Engine::MustCompute(const Campo& record) const {
  if (!record.HasFormula() || record.Status() == Campo::kBeingComputed) return false;
  if (!calculation_->marks_->Contains(record)) return true;
  calculation_->marks_->RaiseFailure(record);
  return false;
}

Ref<Plan> Engine::FormulaPlan(Campo& record, const Ref<Campos>& locals) {
  formula_plans_.Tidy(static_cast<std::size_t>(symbols_.variables->Count()));
  const Ref<Plan>& kept = formula_plans_.Of(record);
  const bool is_usable = kept && kept->walks == 0 && IsCurrent(*kept, locals.get());
  Ref<Plan> plan = is_usable && !kept->has_constants ? kept : FormulaPlanAgain(record, locals);
  if (plan->faults) reports_.push_back({record.Formula(), plan->text, plan->Faults()});
  return plan;
}

// The plan of a record with its constants bound, or a new one. A former plan goes before
// the new one is made: a value in it may run code of the host.
Ref<Plan> Engine::FormulaPlanAgain(Campo& record, const Ref<Campos>& locals) {
  const auto is_usable = [&](const Plan& plan) {
    return plan.walks == 0 && IsCurrent(plan, locals.get());
  };
  while (Ref<Plan> plan = formula_plans_.Of(record)) {
    if (is_usable(*plan)) BindConstants(*plan);
    if (is_usable(*plan)) return plan;
    formula_plans_.Of(record) = nullptr;
  }
  Ref<Plan> plan = PrepareApart(record.Formula(), locals);
  formula_plans_.Of(record) = plan;
  return plan;
}

}  // namespace tovalin
