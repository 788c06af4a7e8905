#include "tovalin/formula.h"

#include "evaluator/calculation.h"
#include "frame/object/error_translation.h"
#include "tovalin/dispatch.h"

namespace tovalin {
namespace {

constexpr std::int32_t (Formula::*kLateBoundTable)(const Variant&, std::int32_t,
                                                   Variant&) = &Formula::EvaluarTabla;

constexpr ErrorInfo kGone{kObjectError, u"el Evaluador de la fórmula ya no existe"};

constexpr MemberRow kMembers[] = {
    Get<&Formula::Texto>(1, u"Texto", u"La fórmula como se dio"),
    Get<&Formula::Posfijo>(2, u"Posfijo", u"Su texto posfijo").Errors({kGone}),
    Get<&Formula::Variables>(3, u"Variables", u"Los nombres de las variables que lee")
        .Result(u"Una Collection de nombres, con el nombre como clave")
        .Errors({kGone}),
    Get<&Formula::Errores>(4, u"Errores", u"Sus faltas, con su lugar")
        .Reference(u"Sus faltas, con su lugar, como en Evaluador.Errores; ninguna si se puede "
                   u"evaluar.")
        .Errors({kGone}),
    Method<&Formula::Evaluar>(5, u"Evaluar",
                              {Out({u"Result", u"Recibe el valor; no cambia si hay un error"})},
                              u"Calcula el valor")
        .Reference(u"Calcula el valor con los valores que tienen ahora las variables, como "
                   u"Evaluador.EvaluatePosfijo pero sin dejar rastro.")
        .Result(u"Verdadero cuando el cálculo termina")
        .Errors({kGone,
                 {13, u"una operación no admite los tipos de sus valores"},
                 {6, u"un resultado es demasiado grande"}}),
    Method<kLateBoundTable>(
        6, u"EvaluarTabla",
        {{u"columns",
          u"Una Collection de arreglos de una columna, cada uno bajo el nombre de su "
          u"variable"},
         {u"rows", u"Cuántas filas"},
         Out({u"Result",
              u"Recibe un arreglo de una columna con los valores; una fila que falla "
              u"tiene el número de su error, como valor Error"})},
        u"Calcula el valor de cada fila")
        .Reference(u"Calcula el valor de cada fila, con las variables de las columnas en los "
                   u"valores de la fila: lo mismo que Evaluar fila por fila. Después las variables "
                   u"tienen otra vez sus valores.")
        .Result(u"Cuántas filas fallaron")
        .Errors({kGone,
                 {5, u"una columna no es de una variable, o es de una con fórmula"},
                 {9, u"una columna tiene menos filas"}}),
};

}  // namespace

constinit const ClassInfo Formula::kInfo = DescribeClass<Formula, kMembers>(
    u"Una fórmula que Evaluador.Preparar dejó lista para evaluarla muchas veces");

const ClassInfo& Formula::Class() const { return kInfo; }
Formula::Formula(std::unique_ptr<Core> core) : core_(std::move(core)) {}
Formula::~Formula() = default;

void Formula::Core::RaiseGone() {
  RaiseOwn(u"Formula", u"El Evaluador de la fórmula ya no existe");
}

// A former plan is destroyed before another one is made: a value in it may run code of
// the host, which may ask for the plan again.
void Formula::Core::PrepareAgain() {
  while (plan_ && !IsCurrent()) plan_ = nullptr;
  if (!plan_) plan_ = Host().plans.MakeFor(text_, locals_);
}

PlanResult Formula::Core::EvaluateItems() {
  const Ref<Plan> plan = plan_;
  Evaluador::Core& host = Host();
  host.ReportFaults(text_, *plan);
  return Calculation(host, locals_).EvaluateItems(plan);
}

Text Formula::Texto() const {
  return RaisingErrors([&] { return core_->FormulaText(); });
}

Text Formula::Posfijo() const {
  return RaisingErrors([&] {
    const Ref<const Formula> alive = Hold(*this);
    return PostfixText(core_->Current()->postfix);
  });
}

Ref<Collection> Formula::Variables() const {
  return RaisingErrors([&] {
    const Ref<const Formula> alive = Hold(*this);
    const Ref<Plan> plan = core_->Current();
    auto names = Make<Collection>();
    for (const Item& item : plan->postfix.items) {
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
    AppendFaultRecords(*records, {core_->FormulaText(), plan->postfix.text, plan->Faults()});
    return records;
  });
}

bool Formula::EvaluarAgain(Variant& Result) {
  const Ref<Formula> alive = Hold(*this);
  core_->Current();
  return Evaluar(Result);
}

bool Formula::Evaluar(Variant& Result) {
  return RaisingErrors([&] {
    if (!core_->IsCurrent()) return EvaluarAgain(Result);
    Result.Assign(core_->Evaluate().value);
    return true;
  });
}

}  // namespace tovalin
