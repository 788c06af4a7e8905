#include <functional>

#include "tests/fuzz/fuzz_input.h"
#include "tovalin/evaluador.h"

// A host whose code runs wherever the library lets it, and does there what it may do
// anywhere: handlers, clocks, settings and destructors of objects evaluate, change the
// tables, raise errors, and drop the last references to what is at work.
//
// An input has the names and formulas that all choose from, a line each, and then the
// steps that the host takes.

namespace tovalin::fuzz {
namespace {

constexpr int kMostSteps = 150;
constexpr int kMostDepth = 6;  // of the host's code within itself

class Host {
 public:
  Host(const std::uint8_t* data, std::size_t size) : input_(data, size) {
    lines_ = input_.TakeLines();
    locals_ = Make<Campos>();
    table_ = Make<Campos>();
    NewEvaluator();
  }
  ~Host() { ended_ = true; }

  void Run() {
    while (input_.HasChoices() && steps_ < kMostSteps) Step();
  }

 private:
  // An object of the host that calls back when the library lets go of it.
  class Farewell : public Object {
   public:
    explicit Farewell(Host& host) : host_(host) {}
    ~Farewell() override { host_.Step(); }

   private:
    Host& host_;
  };

  class Settings : public SettingsStore {
   public:
    explicit Settings(Host& host) : host_(host) {}
    void Save(TextView, TextView, TextView, TextView) override { host_.StepOrRaise(); }
    Text Get(TextView, TextView, TextView, TextView otherwise) const override {
      return Text(otherwise);
    }

   private:
    Host& host_;
  };

  const Text& Line() { return input_.OneOf(lines_); }
  Ref<Formula>& Slot() { return input_.OneOf(formulas_); }
  Ref<Campos>* Locals() { return input_.Below(2) == 0 ? nullptr : &locals_; }
  Variant Value() {
    if (input_.Below(16) == 0) return Variant(Make<Farewell>(*this));
    return input_.Scalar(lines_);
  }

  // --- The evaluator and what it calls ---------------------------------------

  void NewEvaluator() {
    evaluator_ = Make<Evaluador>();
    UseHostServices();
    Attach();
    for (std::size_t i = 0; i < lines_.size() && i < 8; ++i)
      TryTo([&] { evaluator_->AddVble(lines_[i], static_cast<double>(i), u"", kNumeric); });
    for (const char16_t* name : {u"SUMA(", u"PASO("}) evaluator_->AddFunction(name, u"", u"", u"");
  }
  void UseHostServices() {
    evaluator_->UseSettings(Make<Settings>(*this));
    evaluator_->UseClock([this] {
      Step();
      return Date{45337.5};
    });
  }
  void Attach() {
    attachment_ = evaluator_->Evaluate.Attach(
        [this](const Text& macro, Variant& result, Ref<Collection>& stack) {
          Answer(macro, result, stack);
        });
  }
  void Detach() { evaluator_->Evaluate.Detach(attachment_); }

  void Answer(const Text& macro, Variant& result, Ref<Collection>& stack) {
    if (macro == u"SUMA(" && evaluator_) {
      const Variant right = evaluator_->LoadTopePila(stack);
      result = ToDouble(evaluator_->LoadTopePila(stack)) + ToDouble(right);
      return;
    }
    StepOrRaise();
    if (input_.Below(4) == 0) stack = input_.Below(2) == 0 ? nullptr : Make<Collection>();
    if (input_.Below(2) == 0 && stack) result = evaluator_->LoadTopePila(stack);
    if (input_.Below(2) == 0) result = Value();
  }

  // --- Steps -----------------------------------------------------------------

  template <class Work>
  static void TryTo(Work work) {
    try {
      work();
    } catch (const Error&) {
      // Any error may come; anything else ends the run.
    }
  }
  void Step() {
    TryTo([this] { StepOrRaise(); });
  }

  void StepOrRaise() {
    if (ended_ || depth_ == kMostDepth || steps_ >= kMostSteps) return;
    ++steps_;
    struct Deeper {
      explicit Deeper(int& depth) : depth(depth) { ++depth; }
      ~Deeper() { --depth; }
      int& depth;
    } const deeper(depth_);
    (this->*kSteps[input_.Below(std::size(kSteps))])();
  }

  void Evaluate() {
    Variant result = 777.0;
    try {
      evaluator_->EvaluatePosfijo(Line(), result, Locals());
    } catch (const Error&) {
      Require(result.IfDouble() && *result.IfDouble() == 777, "a failed evaluation sets no result");
    }
  }
  void EvaluateItems() {
    Variant result;
    if (items_) evaluator_->EvaluatePosfijo(items_, result, Locals());
  }
  void EvaluateStored() {
    const Text name = Line();
    Variant result;
    evaluator_->EvaluatePosfijo(evaluator_->GetVariable(name, Line()), result);
    evaluator_->SetVariable(name, result);
  }
  void Convert() {
    Text formula = Line();
    const Ref<Collection> tokens = evaluator_->CheckInfijo(formula, Locals());
    evaluator_->Posfijo(tokens, items_, Locals());
  }
  void ChangeItems() {
    if (!items_) return;
    items_->Add(Value());
    if (input_.Below(2) == 0) items_->Remove(1);
  }
  void Prepare() { Slot() = evaluator_->Preparar(Line(), Locals()); }
  void EvaluatePrepared() {
    Variant result;
    if (Ref<Formula>& formula = Slot()) formula->Evaluar(result);
  }
  void AskPrepared() {
    const Ref<Formula> formula = Slot();
    if (!formula) return;
    formula->Posfijo();
    formula->Variables();
    formula->Errores();
  }
  void EvaluateTable() {
    Ref<Formula>& formula = Slot();
    if (!formula) return;
    const std::vector<double> numbers = {1, 2.5, -3};
    const std::vector<Variant> values = {Value(), Value(), Value()};
    const Formula::Column columns[] = {{Line(), std::span<const double>(numbers)},
                                       {Line(), std::span<const Variant>(values)}};
    std::vector<Variant> results(3);
    formula->EvaluarTabla(std::span(columns).first(1 + input_.Below(2)), 3,
                          std::span<Variant>(results));
  }
  void EvaluateBatch() {
    const std::vector<Text> formulas = {Line(), Line(), Line()};
    std::vector<Evaluador::Outcome> outcomes(formulas.size());
    evaluator_->EvaluateBatch(formulas, outcomes);
  }

  void AddVariable() { evaluator_->AddVble(Line(), Value(), u"", kNumeric); }
  void AddFormula() { evaluator_->NewVble(Line(), Value(), u"", kNumeric, Line()); }
  void AddLocal() {
    const auto record = Make<Campo>(Line());
    record->LetValue(Value());
    if (input_.Below(2) == 0) record->LetFormula(Line());
    if (!locals_) locals_ = Make<Campos>();
    locals_->Add(record);
  }
  void ClearLocals() { locals_ = nullptr; }
  void RemoveVariable() { evaluator_->RemoveVble(Line()); }
  void ClearVariables() { evaluator_->ClearVbles(); }
  void ExchangeVariables() {
    const Ref<Campos> present = evaluator_->Variables();
    evaluator_->SetVariables(table_);
    table_ = present;
  }
  void AppendVariables() { evaluator_->AppendsVble(table_ ? table_ : locals_); }
  void ShareVariables() { locals_ = evaluator_->Variables(); }
  void SetVariable() { evaluator_->SetVariable(Line(), Value()); }
  void ChangeVariable() { evaluator_->ChangeVble(input_.Double(), Line()); }

  void AddConstant() { evaluator_->AddConstant(Line(), Value(), u"", kNumeric); }
  void RemoveConstant() { evaluator_->RemoveConts(Line()); }
  void ClearConstants() { evaluator_->ClearConstants(); }
  void AddFunction() { evaluator_->AddFunction(Line() + u"(", Line(), u"", u""); }
  void RemoveFunction() { evaluator_->Functions()->Remove(input_.Byte()); }
  void ClearFunctions() { evaluator_->ClearFunctions(); }
  void AddOperator() {
    const auto record = Make<Campo>(Line());
    record->LetDataType(input_.Byte());
    evaluator_->Operadores()->Add(record);
  }

  void ChangeRecord() {
    const Ref<Campos> table =
        input_.Below(3) == 0 ? evaluator_->Constantes() : evaluator_->Variables();
    const Ref<Campo> record = table->Item(input_.Byte());
    switch (input_.Below(5)) {
      case 0:
        return record->LetFormula(Line());
      case 1:
        return record->LetName(Line());
      case 2:
        return record->LetStatus(input_.Below(2) == 0 ? Campo::kIdle : Campo::kBeingComputed);
      case 3:
        return table->Remove(input_.Byte());
      default:
        return record->LetValue(Value());
    }
  }

  void ComputeDependants() { evaluator_->CalcularDependencias(Line()); }
  void AskAboutFormula() {
    const Text formula = Line();
    evaluator_->ReplaceExpresion(formula, Locals());
    evaluator_->VarExpresion(formula);
    evaluator_->ConstExpresion(formula);
    evaluator_->LastError();
    evaluator_->Errores();
  }
  void ChangeDelimiter() { evaluator_->LetStringDelimiter(Line().substr(0, 1)); }
  void ChangePlans() { evaluator_->LetPlanesGuardados(input_.Byte() % 4); }

  void DropEvaluator() { NewEvaluator(); }
  void DropFormula() { Slot() = nullptr; }
  void AttachAgain() { Attach(); }
  void DetachLast() { Detach(); }
  void ReplaceServices() { UseHostServices(); }
  void RaiseError() { RaiseOwn(u"Prueba", u"Un error de quien llama"); }

  static constexpr void (Host::*kSteps[])() = {
      &Host::Evaluate,         &Host::EvaluateItems,     &Host::EvaluateStored,
      &Host::Convert,          &Host::ChangeItems,       &Host::Prepare,
      &Host::EvaluatePrepared, &Host::AskPrepared,       &Host::EvaluateTable,
      &Host::EvaluateBatch,    &Host::AddVariable,       &Host::AddFormula,
      &Host::AddLocal,         &Host::ClearLocals,       &Host::RemoveVariable,
      &Host::ClearVariables,   &Host::ExchangeVariables, &Host::AppendVariables,
      &Host::ShareVariables,   &Host::SetVariable,       &Host::ChangeVariable,
      &Host::AddConstant,      &Host::RemoveConstant,    &Host::ClearConstants,
      &Host::AddFunction,      &Host::RemoveFunction,    &Host::ClearFunctions,
      &Host::AddOperator,      &Host::ChangeRecord,      &Host::ComputeDependants,
      &Host::AskAboutFormula,  &Host::ChangeDelimiter,   &Host::ChangePlans,
      &Host::DropEvaluator,    &Host::DropFormula,       &Host::AttachAgain,
      &Host::DetachLast,       &Host::ReplaceServices,   &Host::RaiseError,
      &Host::Evaluate,         &Host::Evaluate,          &Host::AddFormula,
  };

  Input input_;
  std::vector<Text> lines_;
  int steps_ = 0;
  int depth_ = 0;
  int attachment_ = 0;
  bool ended_ = false;
  Ref<Campos> locals_;
  Ref<Campos> table_;
  Ref<Collection> items_;
  std::array<Ref<Formula>, 3> formulas_;
  Ref<Evaluador> evaluator_;
};

}  // namespace
}  // namespace tovalin::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tovalin::fuzz::Host(data, size).Run();
  return 0;
}
