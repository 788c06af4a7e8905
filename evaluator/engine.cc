#include "evaluator/engine.h"

#include <array>

#include "frame/clock.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

// The most values that a built-in function pops.
constexpr std::size_t kMostPops = 4;

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

bool IsNumber(const Variant& value) {
  return IsNumeric(value) && !value.Is(Subtype::String) && !value.Is(Subtype::Boolean) &&
         !value.Is(Subtype::Empty);
}

}  // namespace

// One level of the walk: its stack, and the mark on its plan. Left in any way, it
// lets go of the values.
struct Engine::Level {
  Level(Engine& engine, Plan& plan) : engine(engine), plan(plan) {
    if (engine.depth_ > kDeepest) Raise(Failure::OutOfStack);
    const auto index = static_cast<std::size_t>(engine.depth_);
    if (engine.stacks_.size() <= index) engine.stacks_.emplace_back();
    stack = &engine.stacks_[index];
    ++engine.depth_;
    ++plan.walks;
  }
  ~Level() {
    stack->clear();
    --engine.depth_;
    --plan.walks;
  }
  Engine& engine;
  Plan& plan;
  ValueStack* stack;
};

Engine::Calculation::Calculation(Engine& engine, Ref<Campos> locals)
    : engine_(engine), locals_(std::move(locals)), outer_(engine.calculation_) {
  engine.calculation_ = this;
}

Engine::Calculation::~Calculation() { engine_.calculation_ = outer_; }

Engine::Outcome Engine::Calculation::Walk(const Ref<Plan>& plan) {
  try {
    Outcome outcome = engine_.Walk(*plan, locals_);
    ComputeDependantsOfComputed();
    return outcome;
  } catch (...) {
    // What was computed before the error has dependants too.
    ComputeDependantsOfComputed();
    throw;
  }
}

void Engine::Calculation::ComputeDependantsOfComputed() {
  if (marks_.Computed().empty()) return;
  const std::vector<Ref<Campo>> computed = marks_.Computed();
  ComputeDependants(computed);
}

void Engine::Calculation::ComputeDependants(const std::vector<Ref<Campo>>& roots) {
  for (const Ref<Campo>& record : engine_.dependencies_.Dependants(roots)) {
    if (!engine_.NeedsComputing(*record)) continue;
    try {
      engine_.ComputeFormula(record, locals_);
    } catch (...) {
      // A dependant that fails keeps its last value; nobody asked for it.
    }
  }
}

Ref<Plan> Engine::Prepare(const Text& formula, const Ref<Campos>& locals) {
  Ref<Plan> plan;
  if (formula.find_first_of(u"@\r") == Text::npos) {
    plan = plans_.Get(formula, locals);
  } else {
    Text replaced = ReplaceReferences(formula, locals.get());
    std::string trace_expression = ToUtf8(replaced);
    StripCarriageReturns(replaced);
    plan = plans_.Get(replaced, locals);
    plan->trace_expression = std::move(trace_expression);
    plan->trace_varies = true;
  }
  if (!plan->faults.empty()) reports_.push_back({formula, plan->text, plan->faults});
  return plan;
}

Ref<Plan> Engine::PrepareApart(const Text& formula, const Ref<Campos>& locals) {
  Text replaced = ReplaceReferences(formula, locals.get());
  StripCarriageReturns(replaced);
  return plans_.Make(replaced, locals);
}

Engine::Outcome Engine::Walk(Plan& plan, const Ref<Campos>& locals) {
  if (plan.numeric) {
    const NumericProgram& program = *plan.numeric;
    if (const std::optional<double> number = program.Run())
      return {program.gives_boolean ? Variant(*number != 0) : Variant(*number), program.left};
  }
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
        stack.push_back(item.value);
        break;
      case ItemKind::Builtin:
        CallBuiltin(*item.builtin, stack);
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
  const Ref<Campo> record = plan.items[index].record;
  if (plan.items[index].kind == ItemKind::HostFunction) {
    CallHost(record, stack);
  } else {
    if (NeedsComputing(*record)) ComputeFormula(record, locals);
    stack.push_back(record->Value());
  }
  if (StampNames(symbols_, locals.get()) == before) return;
  plan.stamp = NamesStamp{};  // never to be taken for a plan of these tables
  plan.stamp.vocabulary.replacements = static_cast<std::uint64_t>(-1);
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
  stack.push_back(std::move(result));
}

bool Engine::NeedsComputing(const Campo& record) const {
  return record.HasFormula() && record.Status() != Campo::kBeingComputed &&
         !calculation_->marks_.Contains(record);
}

void Engine::ComputeFormula(const Ref<Campo>& record, const Ref<Campos>& locals) {
  struct Busy {
    explicit Busy(Campo& record) : record(record) { record.LetStatus(Campo::kBeingComputed); }
    ~Busy() { record.LetStatus(Campo::kIdle); }
    Campo& record;
  } busy(*record);
  if (depth_ > kDeepest) Raise(Failure::OutOfStack);
  const Ref<Plan> plan = Prepare(record->Formula(), locals);
  const Variant value = Walk(*plan, locals).value;
  record->LetValue(IsNumber(value) ? Variant(ToDouble(value)) : value);
  calculation_->marks_.Add(*record);
}

}  // namespace tovalin
