#include "tovalin/evaluador.h"

#include <optional>

#include "evaluator/calculation.h"
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

// The plan of what a host wants evaluated: a formula text, or a postfix Collection.
// Out of line, as what follows: a plan of numbers that came before needs neither.
[[gnu::noinline]] PreparedPlan Prepare(Evaluador::Core& core, const Variant& expression,
                                       const Ref<Campos>& locals) {
  if (!expression.Is(Subtype::Object)) {
    const Variant text = expression.Is(Subtype::String) ? expression : Variant(ToText(expression));
    PreparedPlan prepared = core.plans.Prepare(text.AsSharedText(), locals);
    core.ReportFaults(text.AsText(), *prepared.plan);
    return prepared;
  }
  if (!expression.AsObject()) Raise(Failure::ObjectNotSet);
  const Ref<Collection> items = expression.AsObject().As<Collection>();
  if (!items) Raise(Failure::TypeMismatch);
  return {core.plans.MakeOfItems(*items, locals), Text()};  // the trace shows no expression
}

// Where the host's code may run, the formula is in the trace before, in case the host
// does not survive it; otherwise it can wait for the result, or the error.
[[gnu::noinline]] PlanResult EvaluateItemsTraced(Evaluador::Core& core, Calculation& calculation,
                                                 const PreparedPlan& prepared,
                                                 const Campos* locals) {
  Plan& plan = *prepared.plan;
  const bool calls_host = plan.postfix.calls_host;
  if (calls_host) core.trace.Begin(prepared.plan, prepared.Expression());
  try {
    PlanResult result = calculation.EvaluateItems(prepared.plan);
    // The trace has its text made from the names.
    if (plan.trace_version == 0) core.plans.KeepCurrent(plan, locals);
    return result;
  } catch (...) {
    core.plans.KeepCurrent(plan, locals);
    if (!calls_host) core.trace.Begin(prepared.plan, prepared.Expression());
    throw;
  }
}

// The same, with the calculation that it is part of.
[[gnu::noinline]] PlanResult EvaluateItemsAlone(Evaluador::Core& core,
                                                std::optional<Calculation>& calculation,
                                                const PreparedPlan& prepared,
                                                const Ref<Campos>& locals) {
  calculation.emplace(core, locals);
  return EvaluateItemsTraced(core, *calculation, prepared, locals.get());
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
    for (const FaultReport& report : core_->reports) AppendFaultLines(lines, number, report);
    return lines;
  });
}

Ref<Collection> Evaluador::Errores() const {
  return RaisingErrors([&] {
    auto records = Make<Collection>();
    for (const FaultReport& report : core_->reports) AppendFaultRecords(*records, report);
    return records;
  });
}

Ref<Collection> Evaluador::CheckInfijo(Text& rExpresion, Ref<Campos>* LocalVbles) {
  return RaisingErrors([&] {
    const Ref<Campos> locals = LocalsOf(LocalVbles);
    std::vector<FaultReport>& reports = core_->reports;
    reports.clear();
    TokenList list = core_->plans.GetLexer().Tokens(rExpresion);
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
        core_->plans.GetLexer().AppendHostToken(list, token);
    for (Token& token : list.tokens)
      if (token.kind == TokenKind::Name) ResolveOperand(list, token, core_->symbols, locals.get());
    Postfix postfix;
    ConvertToPostfix(list, postfix);
    postfix.text = std::move(list.text);
    const Ref<Collection> items = PostfixItems(postfix);
    Text text = PostfixText(postfix);
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
    // A plan of numbers runs no code of the host, except that which keeps the trace.
    const Ref<Evaluador> alive = core_->trace.UsesStore() ? Hold(*this) : nullptr;
    if (!vExpresion.Is(Subtype::Object)) core_->ForgetReports();
    // A text that came before counts no references on its way.
    const bool may_be_recent = vExpresion.Is(Subtype::String) && !alive;
    const Ref<Plan>* plan =
        may_be_recent ? core_->plans.Recent(vExpresion.AsSharedText(), locals.get()) : nullptr;
    PreparedPlan prepared;
    if (!plan) {
      prepared = Prepare(*core_, vExpresion, locals);
      plan = &prepared.plan;
    }
    std::optional<Calculation> calculation;  // under way until the result is assigned
    PlanResult result = EvaluatePlan(**plan, [&] {
      // Code of the host may replace a plan that is kept.
      if (!prepared.plan) prepared.plan = *std::exchange(plan, &prepared.plan);
      return EvaluateItemsAlone(*core_, calculation, prepared, locals);
    });
    core_->trace.End(*plan, prepared.Expression(), result.value.Value(), result.left);
    // Last, since what it replaces may be an object of the host.
    Result.Assign(std::move(result.value));
    return true;
  });
}

void Evaluador::EvaluateBatch(std::span<const Text> formulas, std::span<Outcome> outcomes) {
  if (formulas.size() != outcomes.size()) Raise(Failure::InvalidArgument);
  const Ref<Evaluador> alive = Hold(*this);
  Calculation calculation(*core_, nullptr);
  std::vector<FaultReport>& reports = core_->reports;
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
    attempt([&] {
      const PreparedPlan prepared = core_->plans.Prepare(formulas[i], nullptr);
      core_->ReportFaults(formulas[i], *prepared.plan);
      PlanResult result = EvaluatePlan(*prepared.plan, [&] {
        return EvaluateItemsTraced(*core_, calculation, prepared, nullptr);
      });
      core_->trace.End(prepared.plan, prepared.Expression(), result.value, result.left);
      outcome.value = std::move(result.value);
    });
    attempt([&] {
      std::size_t number = 0;
      for (std::size_t r = reported; r < reports.size(); ++r)
        AppendFaultLines(outcome.faults, number, reports[r]);
    });
  }
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
    Calculation(*core_, nullptr).Touch(Ref<Campo>::Share(root));
  });
}

void Evaluador::UseClock(HostClock::Function clock) { core_->items.UseClock(std::move(clock)); }

void Evaluador::UseSettings(Ref<SettingsStore> settings) {
  core_->trace.UseStore(std::move(settings));
}

}  // namespace tovalin
