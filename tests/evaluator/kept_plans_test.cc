#include <gtest/gtest.h>

#include <random>

#include "frame/settings/live_trace.h"
#include "frame/settings_directory.h"
#include "tests/evaluator/formula_host.h"

namespace tovalin {
namespace {

// The symbols that the formulas name, one evaluator's own or shared by two.
Ref<Campos> MakeTable(double first) {
  auto table = Make<Campos>();
  const auto add = [&table](const char16_t* name, const Variant& value, const char16_t* formula) {
    auto record = Make<Campo>(Text(name));
    record->LetValue(value);
    record->LetFormula(formula);
    table->Add(record);
  };
  add(u"A", first, u"");
  add(u"Año", 3.5, u"");
  add(u"Doble", 0.0, u"A * 2 + K");
  add(u"Triple", 0.0, u"Doble + A");
  add(u"T", u"uno \"dos\"", u"");
  return table;
}

const std::vector<Text> kFormulas = {u"A + 1",
                                     u"(A + Año) * 2 - A / 3",
                                     u"A * K",
                                     u"Triple - Doble",
                                     u"@Triple + @Año",
                                     u"T & K & \"ñ\\ \"",
                                     u"IIF(A > 2, Año, K)",
                                     u"Z + A",
                                     u"A + * 3",
                                     u"'a' & \"b\" & T",
                                     u" A ",
                                     u"LEN(T) + Redondear(A, 0)",
                                     u"A\r\n+ Año",
                                     u"NUEVA(A)",
                                     u"1 / 0 + A",
                                     u"A ^ 400",
                                     u"MAX(A, Z) & K",
                                     u"(A,Año)",
                                     u"\"sin fin"};

/// Two evaluators to which the same is done: one keeps plans, knows texts by their
/// address and writes its trace into a file; the other makes each plan again.
class KeptPlans : public SettingsDirectoryTest {
 protected:
  KeptPlans() {
    plain_.evaluator->LetPlanesGuardados(0);
    for (Evaluador* each : Both()) each->AddConstant(u"K", 7.0, u"", kNumeric);
    for (const Text& formula : kFormulas) texts_.emplace_back(formula);
  }
  std::array<Evaluador*, 2> Both() { return {keeping_.get(), plain_.evaluator.get()}; }

  void Change(unsigned what, double value) {
    for (Evaluador* each : Both()) {
      if (what == 0) each->SetVariable(u"A", value);
      if (what == 1) each->SetVariable(u"T", value > 50 ? Variant(value) : Variant(u"1,234"));
      if (what == 2) each->SetConstante(u"K", value > 50 ? Variant(value) : Variant(u"ka"));
      if (what == 3 && !each->Variables()->Exists(u"Z")) each->AddVble(u"Z", 2.0, u"", kNumeric);
      if (what == 4 && each->Variables()->Exists(u"Z")) each->RemoveVble(u"Z");
      if (what == 5) each->LetStringDelimiter(value > 50 ? u"'" : u"");
      if (what == 6) each->ClearFunctions();
      if (what == 7 && !each->Functions()->Exists(u"NUEVA("))
        each->AddFunction(u"NUEVA(", u"NUEVA", u"", u"");
      if (what == 8) each->Constantes()->Item(u"K")->LetDataType(value > 50 ? kText : kNumeric);
      if (what == 9) each->SetVariables(value > 50 ? shared_ : MakeTable(value));
      if (what == 10) each->Operadores()->Item(u"+")->LetValue(value > 50 ? 3 : 5);
      if (what == 11) each->Variables()->Item(u"Doble")->LetFormula(value > 50 ? u"A" : u"A & K");
    }
    if (what == 12) keeping_->LetPlanesGuardados(static_cast<std::int32_t>(value) % 6);
  }

  static std::string Outcome(Evaluador& evaluator, const Variant& formula, Ref<Campos>* locals) {
    Variant result;
    try {
      evaluator.EvaluatePosfijo(formula, result, locals);
    } catch (const Error& error) {
      return "Error " + std::to_string(error.number);
    }
    return FormulaHost::Show(result) + ToUtf8(evaluator.LastError());
  }

  void ExpectTheSameTrace(const Text& formula) {
    const TraceTexts kept = ReadTrace();
    for (std::size_t i = 0; i < kLiveTexts; ++i) {
      const std::string key = ToUtf8(kTraceKeys[i]);
      ASSERT_EQ(ToUtf8(kept[i].value_or(u"")), plain_.settings->values["Evaluador/Posfijo/" + key])
          << ToUtf8(formula) << ' ' << key;
    }
  }

  Ref<Evaluador> keeping_ = Make<Evaluador>();
  FormulaHost plain_;
  Ref<Campos> shared_ = MakeTable(11);
  std::vector<Variant> texts_;
};

TEST_F(KeptPlans, GiveWhatPlansMadeAgainGive) {
  std::minstd_rand random(3);
  Change(9, 0);
  for (int turn = 0; turn < 4000; ++turn) {
    if (random() % 3 == 0)
      Change(static_cast<unsigned>(random() % 13), static_cast<double>(random() % 100));
    // Mostly the same few, so that plans and texts come again.
    const std::size_t which = random() % 2 ? random() % texts_.size() : random() % 3;
    Ref<Campos> locals = random() % 5 == 0 ? shared_ : nullptr;
    Ref<Campos>* given = locals ? &locals : nullptr;
    const std::string kept = Outcome(*keeping_, texts_[which], given);
    ASSERT_EQ(kept, Outcome(*plain_.evaluator, Variant(kFormulas[which]), given))
        << turn << ' ' << ToUtf8(kFormulas[which]);
    ExpectTheSameTrace(kFormulas[which]);
  }
}

}  // namespace
}  // namespace tovalin
