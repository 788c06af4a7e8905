#include "evaluator/engine.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "evaluator/formula_chain.h"
#include "evaluator/references.h"
#include "frame/clock.h"
#include "frame/temporarily.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

// The most values that a built-in function pops.
constexpr std::size_t kMostPops = 4;

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
    : engine_(engine),
      locals_(std::move(locals)),
      outer_(engine.calculation_),
      marks_(&own_marks_),
      values_(engine.StampValues(locals_.get())) {
  if (engine.owner_.Evaluate.HasHandlers()) alive_ = Hold<Object>(engine.owner_);
  if (outer_ && outer_->values_ == values_ && outer_->locals_ == locals_) marks_ = outer_->marks_;
  engine.calculation_ = this;
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
  Outermost().touched_.push_back(record);
  Finish();
}

Engine::Calculation& Engine::Calculation::Outermost() {
  Calculation* outermost = this;
  while (outermost->outer_) outermost = outermost->outer_;
  return *outermost;
}

// Dependants are left to the outermost evaluation: each may call a handler that
// evaluates again, and their number would grow with every level.
void Engine::Calculation::Finish() {
  if (outer_ || finishing_ || touched_.empty()) return;
  const Temporarily finishing(finishing_, true);
  ComputeDependants();
  touched_.clear();
}

void Engine::Calculation::ComputeDependants() {
  // Where every formula was computed, nobody has to look for who reads whom.
  const bool same_tables = !locals_ && !engine_.owner_.Evaluate.HasHandlers();
  if (same_tables && marks_->Count() >= engine_.dependencies_.FormulaCount()) return;
  const std::vector<Ref<Campo>> roots = std::move(touched_);
  const auto is_due = [this](const Campo& record) { return engine_.NeedsComputing(record); };
  if (!engine_.dependencies_.AnyReader(roots, is_due)) return;
  for (const Ref<Campo>& record : engine_.dependencies_.Dependants(roots)) {
    if (!engine_.NeedsComputing(*record)) continue;
    try {
      FormulaChain(engine_, locals_).Compute(*record);
    } catch (...) {
      // A dependant that fails keeps its last value; nobody asked for it.
    }
  }
}

std::uint64_t Engine::StampValues(const Campos* locals) const {
  return symbols_.variables->ValuesVersion() + symbols_.constants->ValuesVersion() +
         (locals ? locals->ValuesVersion() : 0) + symbols_.replacements;
}

const Ref<Plan>* Engine::Recent(const SharedText& formula, const Campos* locals) const {
  const RecentText& recent = recent_[RecentPlace(formula)];
  const bool same = recent.text.get() == &formula;
  return same && recent.plan->MayRun(StampNames(symbols_, locals)) ? &recent.plan : nullptr;
}

Engine::Prepared Engine::Prepare(SharedText& formula, const Ref<Campos>& locals) {
  if (const Ref<Plan>* recent = Recent(formula, locals.get())) return {*recent, std::nullopt};
  Prepared prepared = Prepare(formula.value, locals);
  const Plan& plan = *prepared.plan;
  // Faults have to be told anew and constants bound anew each time.
  if (plan.came_again && !prepared.expression && !plan.faults && !plan.has_constants)
    recent_[RecentPlace(formula)] = {Ref<SharedText>::Share(&formula), prepared.plan};
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
  ValueStack& stack = *level.stack;
  for (std::size_t i = 0; i < plan.items.size(); ++i) {
    const Item& item = plan.items[i];
    switch (item.kind) {
      case ItemKind::Number:
        stack.emplace_back(item.number);
        break;
      case ItemKind::Operator:
        ApplyOperator(item.operator_code, stack);
        break;
      case ItemKind::Variable:
        if (item.record->HasFormula())
          Step(plan, i, locals, stack);
        else
          stack.push_back(item.record->Value());
        break;
      case ItemKind::Constant:
      case ItemKind::Literal:
      case ItemKind::Value:
        stack.push_back(plan.ValueOf(item));
        break;
      case ItemKind::Builtin:
        CallBuiltin(BuiltinAt(item.builtin), stack);
        break;
      case ItemKind::HostFunction:
        Step(plan, i, locals, stack);
        break;
      case ItemKind::Text:
        stack.emplace_back(plan.Span(item));
        break;
    }
  }
  return BottomOf(stack);
}

// A step that may run code of the host, which may change the tables: what stands
// behind it in the plan is looked up again then.
void Engine::Step(Plan& plan, std::size_t index, const Ref<Campos>& locals, ValueStack& stack) {
  const NamesStamp before = StampNames(symbols_, locals.get());
  const Ref<Campo> record = Ref<Campo>::Share(plan.items[index].record);
  if (plan.items[index].kind == ItemKind::HostFunction) {
    CallHost(record, stack);
  } else {
    if (NeedsComputing(*record)) FormulaChain(*this, locals).Compute(*record);
    stack.push_back(record->Value());
  }
  if (StampNames(symbols_, locals.get()) == before) return;
  plan.stamp = NamesStamp{};  // never to be taken for a plan of these tables
  ClassifyAgain(plan, index + 1, symbols_, locals.get());
}

void Engine::CallBuiltin(const Builtin& builtin, ValueStack& stack) {
  std::array<Variant, kMostPops> arguments;
  for (std::size_t i = builtin.pops; i > 0; --i) arguments[i - 1] = Pop(stack);
  stack.push_back(builtin.call(std::span(arguments).first(builtin.pops), {clock_}));
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

Ref<Plan> Engine::FormulaPlan(Campo& record, const Ref<Campos>& locals) {
  formula_plans_.Tidy(static_cast<std::size_t>(symbols_.variables->Count()));
  Ref<Plan>& kept = formula_plans_.Of(record);
  if (!kept || kept->walks > 0 || kept->stamp != StampNames(symbols_, locals.get()))
    kept = PrepareApart(record.Formula(), locals);
  else if (kept->has_constants)
    BindConstants(*kept);
  if (kept->faults) reports_.push_back({record.Formula(), kept->text, kept->Faults()});
  return kept;
}

}  // namespace tovalin
