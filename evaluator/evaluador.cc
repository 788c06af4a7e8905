#include "tovalin/evaluador.h"

#include <cmath>

#include "evaluator/fault_records.h"
#include "evaluator/formula_core.h"
#include "evaluator/infix_check.h"
#include "evaluator/references.h"
#include "evaluator/tokenizer.h"
#include "frame/object/error_translation.h"
#include "tovalin/convert.h"

// The members of Evaluador that check, convert and evaluate formulas.

namespace tovalin {
namespace {

// The local variables of a call; a host that gave none gets an empty table.
Ref<Campos> LocalsOf(Ref<Campos>* local_variables) {
  if (!local_variables) return nullptr;
  if (!*local_variables) *local_variables = Make<Campos>();
  return *local_variables;
}

}  // namespace

Evaluador::Evaluador() : core_(std::make_unique<Core>(*this)) { core_->link->core = core_.get(); }

Evaluador::~Evaluador() { *core_->link = {}; }

Text Evaluador::StringDelimiter() const {
  return RaisingErrors([&] { return core_->symbols.string_delimiter; });
}
void Evaluador::LetStringDelimiter(const Text& NewValue) {
  RaisingErrors([&] {
    core_->symbols.string_delimiter = NewValue;
    ++core_->symbols.replacements;
  });
}
bool Evaluador::ClosePila() const { return core_->close_stack; }
void Evaluador::LetClosePila(bool NewValue) { core_->close_stack = NewValue; }
Text Evaluador::Description() const {
  return RaisingErrors([&] { return core_->description; });
}
void Evaluador::LetDescription(const Text& NewValue) {
  RaisingErrors([&] { core_->description = NewValue; });
}
Text Evaluador::Expresion() const {
  return RaisingErrors([&] { return core_->expression; });
}
void Evaluador::LetExpresion(const Text& NewValue) {
  RaisingErrors([&] { core_->expression = NewValue; });
}

Text Evaluador::LastError() const {
  return RaisingErrors([&] {
    Text lines;
    std::size_t number = 0;
    for (const FaultReport& report : core_->engine.Reports())
      AppendFaultLines(lines, number, report);
    return lines;
  });
}

Ref<Collection> Evaluador::Errores() const {
  return RaisingErrors([&] {
    auto records = Make<Collection>();
    for (const FaultReport& report : core_->engine.Reports()) AppendFaultRecords(*records, report);
    return records;
  });
}

Ref<Collection> Evaluador::CheckInfijo(Text& rExpresion, Ref<Campos>* LocalVbles) {
  return RaisingErrors([&] {
    const Ref<Campos> locals = LocalsOf(LocalVbles);
    std::vector<FaultReport>& reports = core_->engine.Reports();
    reports.clear();
    TokenList list = core_->plans.Tokens(rExpresion);
    Text normalised = NormalisedExpression(list);
    CheckTokens(list, core_->symbols, locals.get());
    auto tokens = Make<Collection>();
    if (list.faults.empty())
      for (const Token& token : list.tokens) tokens->List().Append(list.Spelling(token));
    else
      reports.push_back({rExpresion, std::move(list.text), std::move(list.faults)});
    rExpresion = std::move(normalised);
    return tokens;
  });
}

Text Evaluador::Posfijo(const Ref<Collection>& vcolInfijo, Ref<Collection>& rPosfijo,
                        Ref<Campos>* LocalVbles) {
  return RaisingErrors([&] {
    const Ref<Campos> locals = LocalsOf(LocalVbles);
    TokenList list;
    if (vcolInfijo)
      for (const Variant& token : vcolInfijo->List().Items())
        AppendHostToken(list, token, core_->plans.Elements(), core_->symbols);
    for (Token& token : list.tokens)
      if (token.kind == TokenKind::Name) ResolveOperand(list, token, core_->symbols, locals.get());
    Plan plan;
    ConvertToPostfix(list, plan);
    plan.text = std::move(list.text);
    const Ref<Collection> items = PostfixItems(plan);
    Text text = PostfixText(plan);
    if (rPosfijo)
      rPosfijo->List().AppendAll(items->List().Items());
    else
      rPosfijo = items;
    return text;
  });
}

Ref<Formula> Evaluador::Preparar(const Text& vExpresion, Ref<Campos>* LocalVbles) {
  return RaisingErrors([&] {
    return Make<Formula>(
        std::make_unique<Formula::Core>(core_->link, vExpresion, LocalsOf(LocalVbles)));
  });
}

std::int32_t Evaluador::PlanesGuardados() const {
  return static_cast<std::int32_t>(core_->plans.Capacity());
}
void Evaluador::LetPlanesGuardados(std::int32_t NewValue) {
  if (NewValue < 0) Raise(Failure::InvalidArgument);
  const Ref<Evaluador> alive = Hold(*this);  // a plan that goes may hold an object
  core_->plans.LetCapacity(static_cast<std::size_t>(NewValue));
}

bool Evaluador::EvaluatePosfijo(const Variant& vExpresion, Variant& Result,
                                Ref<Campos>* LocalVbles) {
  return RaisingErrors([&] {
    const Ref<Campos> locals = LocalsOf(LocalVbles);
    const bool is_kept_by_host = core_->trace.UsesStore();
    const Ref<Evaluador> alive = is_kept_by_host ? Hold(*this) : nullptr;
    // A text that came before: the way of most evaluations counts no references.
    const Ref<Plan>* recent = vExpresion.Is(Subtype::String) && !is_kept_by_host
                                  ? core_->engine.Recent(vExpresion.AsSharedText(), locals.get())
                                  : nullptr;
    if (recent && core_->RunNumbers(*recent, nullptr, Result)) return true;
    const Engine::Prepared prepared = core_->Prepare(vExpresion, locals);
    // Where a former plan went, an object in it may have changed the tables.
    const bool may_run =
        !recent && prepared.plan->numeric && core_->engine.IsCurrent(*prepared.plan, locals.get());
    if (may_run && core_->RunNumbers(prepared.plan, prepared.Expression(), Result)) return true;
    Engine::Calculation calculation(core_->engine, locals);
    Engine::Outcome outcome = core_->Walk(calculation, prepared, locals);
    core_->trace.End(prepared.plan, prepared.Expression(), outcome.value.Value(), outcome.left);
    Result.Assign(std::move(outcome.value));
    return true;
  });
}

// Where the host's code may run, the formula is in the trace before, in case the host
// does not survive it; otherwise it can wait for the result, or the error.
Engine::Outcome Evaluador::Core::Walk(Engine::Calculation& calculation,
                                      const Engine::Prepared& prepared, const Ref<Campos>& locals) {
  Plan& plan = *prepared.plan;
  const bool calls_host = plan.calls_host;
  if (calls_host) {
    engine.KeepCurrent(plan, locals.get());
    trace.Begin(prepared.plan, prepared.Expression());
  }
  try {
    Engine::Outcome outcome = calculation.Walk(prepared.plan);
    // The trace has its text made from the names.
    if (plan.trace_edition == 0) engine.KeepCurrent(plan, locals.get());
    return outcome;
  } catch (...) {
    engine.KeepCurrent(plan, locals.get());
    if (!calls_host) trace.Begin(prepared.plan, prepared.Expression());
    throw;
  }
}

// A plan of numbers runs no code of the host: its trace can wait for the result,
// which is assigned last, since what it replaces may be an object of the host.
bool Evaluador::Core::RunNumbers(const Ref<Plan>& plan, const Text* expression, Variant& result) {
  const NumericProgram& numeric = plan->numeric;
  const double number = numeric.Run();
  if (std::isnan(number)) return false;
  engine.ForgetReports();
  const Variant value = numeric.ResultOf(number);
  trace.End(plan, expression, value, numeric.left);
  result.Assign(value);
  return true;
}

Engine::Prepared Evaluador::Core::Prepare(const Variant& expression, const Ref<Campos>& locals) {
  if (expression.Is(Subtype::String)) {
    engine.ForgetReports();
    return engine.Prepare(expression.AsSharedText(), locals);
  }
  if (!expression.Is(Subtype::Object)) {
    engine.ForgetReports();
    return engine.Prepare(ToText(expression), locals);
  }
  if (!expression.AsObject()) Raise(Failure::ObjectNotSet);
  const Ref<Collection> items = expression.AsObject().As<Collection>();
  if (!items) Raise(Failure::TypeMismatch);
  auto plan = Make<Plan>();
  plan->stamp = StampNames(symbols, locals.get());
  for (const Variant& item : items->List().Items())
    AppendHostItem(*plan, item, symbols, locals.get());
  return {plan, Text()};
}

void Evaluador::EvaluateBatch(std::span<const Text> formulas, std::span<Outcome> outcomes) {
  if (formulas.size() != outcomes.size()) Raise(Failure::InvalidArgument);
  const Ref<Evaluador> alive = Hold(*this);
  Engine::Calculation calculation(core_->engine, nullptr);
  std::vector<FaultReport>& reports = core_->engine.Reports();
  reports.clear();
  for (std::size_t i = 0; i < formulas.size(); ++i) {
    Outcome& outcome = outcomes[i];
    outcome = {};
    const auto attempt = [&outcome](auto work) {
      try {
        RaisingErrors(work);
      } catch (Error& error) {
        outcome.error = std::move(error);
      }
    };
    const std::size_t reported = reports.size();
    attempt([&] { outcome.value = core_->EvaluateInBatch(calculation, formulas[i]); });
    attempt([&] {
      std::size_t number = 0;
      for (std::size_t r = reported; r < reports.size(); ++r)
        AppendFaultLines(outcome.faults, number, reports[r]);
    });
  }
}

Variant Evaluador::Core::EvaluateInBatch(Engine::Calculation& calculation, const Text& formula) {
  const Engine::Prepared prepared = engine.Prepare(formula, nullptr);
  std::optional<Engine::Outcome> numeric;
  if (engine.IsCurrent(*prepared.plan, nullptr)) numeric = Engine::RunNumeric(*prepared.plan);
  Engine::Outcome outcome = numeric ? std::move(*numeric) : Walk(calculation, prepared, nullptr);
  trace.End(prepared.plan, prepared.Expression(), outcome.value, outcome.left);
  return std::move(outcome.value);
}

Variant Evaluador::LoadTopePila(Ref<Collection>& rPila) {
  if (!rPila) Raise(Failure::ObjectNotSet);
  KeyedList<Variant>& list = rPila->List();
  if (list.Size() == 0) return Variant();
  return RaisingErrors([&list] {
    Variant top = Normalised(list[list.Size() - 1]);
    list.Remove(list.Size() - 1);
    return top;
  });
}

void Evaluador::CalcularDependencias(const Text& Name) {
  RaisingErrors([&] {
    Campo* root = core_->symbols.Find(Name);
    if (!root) return;
    Engine::Calculation(core_->engine, nullptr).Touch(Ref<Campo>::Share(root));
  });
}

void Evaluador::UseClock(HostClock::Function clock) { core_->engine.UseClock(std::move(clock)); }

void Evaluador::UseSettings(Ref<SettingsStore> settings) {
  core_->trace.UseStore(std::move(settings));
}

}  // namespace tovalin
