#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>

#include "tests/evaluator/formula_host.h"

// Code of the host runs in the middle of nearly every member: handlers, clocks, settings
// stores, and the destructors of objects that it put into variables. Whatever it does
// there, nothing that is still in use may go: the sanitizers tell.

namespace tovalin {
namespace {

/// An object of the host that does something when it goes.
class Dying : public Object {
 public:
  explicit Dying(std::function<void()> last_act) : last_act_(std::move(last_act)) {}
  ~Dying() override {
    if (const auto act = std::exchange(last_act_, nullptr)) act();
  }

 private:
  std::function<void()> last_act_;
};

class Stage {
 public:
  Stage() {
    evaluator->UseSettings(Make<MemorySettings>());
    evaluator->AddFunction(u"LLAMA(", u"LLAMA", u"", u"");
    evaluator->ClearConstants();
    evaluator->AddConstant(u"K", 3.0, u"", kNumeric);
    for (const char16_t* name : {u"A", u"B", u"Objeto"})
      evaluator->AddVble(name, 2.0, u"", kNumeric);
    evaluator->AddVble(u"F", 0.0, u"", kNumeric, u"NOW( ) + A");
    evaluator->AddVble(u"G", 0.0, u"", kNumeric, u"F + B + K");
    evaluator->AddVble(u"H", 0.0, u"", kNumeric, u"LLAMA( ) + G");
  }

  /// The object that does what has to be done once when it goes.
  Variant Bomb() {
    return Variant(Ref<Object>(Make<Dying>([this] { Strike(); })));
  }
  /// Something of the host's own that does it when it goes.
  std::shared_ptr<Dying> Capture() {
    return std::make_shared<Dying>([this] { Strike(); });
  }
  void Strike() {
    ++strikes;
    try {
      if (const auto act = std::exchange(act_, nullptr)) act(*this);
    } catch (const Error&) {  // a name is gone already; a destructor may not throw
    }
  }
  void Plan(std::function<void(Stage&)> act) { act_ = std::move(act); }

  void Evaluate(const Text& formula) {
    // Through a plain pointer, as hosts hold theirs: nothing here keeps it alive.
    if (Evaluador* target = evaluator.get()) target->EvaluatePosfijo(formula, result);
  }

  Ref<Evaluador> evaluator = Make<Evaluador>();
  Ref<Formula> formula;
  Variant result;
  int strikes = 0;

 private:
  std::function<void(Stage&)> act_;
};

// What the host's code does.
struct Act {
  const char* name;
  void (*act)(Stage& stage);
};

void EvaluateMuch(Stage& stage) {
  Variant result;
  for (int i = 0; i < 300; ++i) try {
      stage.evaluator->EvaluatePosfijo(u"K & A & B & " + FromUtf8(std::to_string(i % 150)), result);
    } catch (const Error&) {
    }
}

constexpr Act kActs[] = {
    {"removes variables", [](Stage& stage) { stage.evaluator->RemoveVble(u"A,B"); }},
    {"clears the tables",
     [](Stage& stage) {
       stage.evaluator->ClearVbles();
       stage.evaluator->ClearConstants();
       stage.evaluator->ClearFunctions();
     }},
    {"releases the evaluator", [](Stage& stage) { stage.evaluator = nullptr; }},
    {"releases the formula and the evaluator",
     [](Stage& stage) {
       stage.formula = nullptr;
       stage.evaluator = nullptr;
     }},
    {"changes formulas and constants",
     [](Stage& stage) {
       stage.evaluator->Variables()->Item(u"G")->LetFormula(u"A & K");
       stage.evaluator->SetConstante(u"K", u"otra");
       stage.evaluator->Constantes()->Remove(u"K");
     }},
    {"evaluates much, and keeps no plans",
     [](Stage& stage) {
       EvaluateMuch(stage);
       stage.evaluator->LetPlanesGuardados(0);
       EvaluateMuch(stage);
     }},
    {"puts others in its place",
     [](Stage& stage) {
       stage.evaluator->UseClock(nullptr);
       stage.evaluator->UseSettings(Make<MemorySettings>());
       stage.evaluator->Direction(Variant(1.0));
     }},
    {"prepares the formula again",
     [](Stage& stage) {
       stage.evaluator->RemoveVble(u"B");
       stage.evaluator->AddVble(u"B", 1.0, u"", kNumeric);
       Variant value;
       if (stage.formula) stage.formula->Evaluar(value);
     }},
};

void Attach(Stage& stage) {
  stage.evaluator->Evaluate.Attach([&stage](const Text&, Variant& result, Ref<Collection>&) {
    stage.Strike();
    result = 1.0;
  });
}

void UseClock(Stage& stage) {
  stage.evaluator->UseClock([&stage, kept = Text(100, u'x')] {
    stage.Strike();
    return Date{static_cast<double>(kept.size())};
  });
}

class StrikingSettings : public MemorySettings {
 public:
  explicit StrikingSettings(Stage& stage) : stage_(stage) {}
  void Save(TextView application, TextView section, TextView key, TextView text) override {
    MemorySettings::Save(application, section, key, text);
    if (key == u"Expresion") stage_.Strike();
  }

 private:
  Stage& stage_;
};

void EvaluateTable(Stage& stage, const Text& text) {
  stage.formula = stage.evaluator->Preparar(text);
  std::vector<double> numbers(1200, 1.0);
  std::vector<Variant> results(1200);
  results[700] = stage.Bomb();
  const Formula::Column columns[] = {{u"A", std::span<const double>(numbers)}};
  stage.formula->EvaluarTabla(columns, 1200, std::span<Variant>(results));
}

// Where the host's code runs.
struct Place {
  const char* name;
  void (*run)(Stage& stage);
};

constexpr Place kPlaces[] = {
    {"handler",
     [](Stage& stage) {
       Attach(stage);
       stage.Evaluate(u"A + LLAMA( ) + B + K");
     }},
    {"handler in a formula variable",
     [](Stage& stage) {
       Attach(stage);
       stage.Evaluate(u"A + H + G + B");
     }},
    {"handler in a dependant",
     [](Stage& stage) {
       Attach(stage);
       stage.evaluator->CalcularDependencias(u"A");
     }},
    {"handler in a batch",
     [](Stage& stage) {
       Attach(stage);
       const Text formulas[] = {u"A", u"H + B", u"B & K", u"G"};
       Evaluador::Outcome outcomes[4];
       outcomes[2].value = stage.Bomb();
       stage.evaluator->EvaluateBatch(formulas, outcomes);
     }},
    {"handler in a prepared formula",
     [](Stage& stage) {
       Attach(stage);
       stage.formula = stage.evaluator->Preparar(u"A + LLAMA( ) + B + K");
       stage.formula->Evaluar(stage.result);
     }},
    {"handler, with an object that goes with it",
     [](Stage& stage) {
       const int attachment = stage.evaluator->Evaluate.Attach(
           [held = stage.Capture()](const Text&, Variant&, Ref<Collection>&) {});
       stage.evaluator->Evaluate.Detach(attachment);
     }},
    {"handler that detaches itself",
     [](Stage& stage) {
       const auto attachment = std::make_shared<int>(0);
       *attachment = stage.evaluator->Evaluate.Attach(
           [&stage, attachment, held = stage.Capture()](const Text&, Variant&, Ref<Collection>&) {
             stage.evaluator->Evaluate.Detach(*attachment);
           });
       stage.Evaluate(u"A + LLAMA( ) + B");
     }},
    {"clock",
     [](Stage& stage) {
       UseClock(stage);
       stage.Evaluate(u"A + NOW( ) + B + K");
     }},
    {"clock in a formula variable",
     [](Stage& stage) {
       UseClock(stage);
       stage.Evaluate(u"A + G + B");
     }},
    {"clock in a formula that fails",
     [](Stage& stage) {
       UseClock(stage);
       stage.Evaluate(u"A + K + DATE( ) + 'no'");
     }},
    {"clock, as dependants",
     [](Stage& stage) {
       UseClock(stage);
       stage.evaluator->CalcularDependencias(u"A");
     }},
    {"clock in a postfix Collection",
     [](Stage& stage) {
       UseClock(stage);
       auto items = Make<Collection>();
       for (const char16_t* item : {u"A", u"NOW(", u"+", u"B", u"+"}) items->Add(Variant(item));
       stage.evaluator->EvaluatePosfijo(Variant(items), stage.result);
     }},
    {"clock that is replaced",
     [](Stage& stage) {
       stage.evaluator->UseClock([held = stage.Capture()] { return Date{1}; });
       stage.evaluator->UseClock(nullptr);
     }},
    {"object on the stack",
     [](Stage& stage) {
       stage.evaluator->SetVariable(u"Objeto", stage.Bomb());
       Attach(stage);
       stage.evaluator->Evaluate.Attach([&stage](const Text&, Variant&, Ref<Collection>&) {
         if (stage.evaluator)
           stage.evaluator->SetVariable(u"Objeto", 1.0);  // the stack has it alone
       });
       stage.Evaluate(u"A + NVL( LLAMA( ) , Objeto ) + B + K");
     }},
    {"object that a function drops",
     [](Stage& stage) {
       auto items = Make<Collection>();
       const auto add = [&items](const Variant& item) { items->Add(item); };
       for (const char16_t* item : {u"A", u"B"}) add(Variant(item));
       add(stage.Bomb());
       for (const char16_t* item : {u"NVL(", u"+", u"B", u"+", u"K"}) add(Variant(item));
       const Variant expression(std::move(items));
       stage.evaluator->EvaluatePosfijo(expression, stage.result);
     }},
    {"object in a handler's result",
     [](Stage& stage) {
       stage.evaluator->Evaluate.Attach(
           [&](const Text&, Variant& result, Ref<Collection>&) { result = stage.Bomb(); });
       stage.Evaluate(u"B + NVL( A , LLAMA( ) ) + A + B");
     }},
    {"object in an operation that fails",
     [](Stage& stage) {
       stage.evaluator->Evaluate.Attach(
           [&](const Text&, Variant& result, Ref<Collection>&) { result = stage.Bomb(); });
       stage.Evaluate(u"A + LLAMA( ) + B + K");
     }},
    {"object that was a result",
     [](Stage& stage) {
       for (const char16_t* formula : {u"A + 1", u"A + 1", u"A & B & K", u"G"}) {
         stage.result = stage.Bomb();
         stage.Evaluate(formula);
       }
     }},
    {"object that a variable held",
     [](Stage& stage) {
       stage.evaluator->SetVariable(u"A", stage.Bomb());
       stage.evaluator->SetVariable(u"A", 1.0);
     }},
    {"object that a formula variable held",
     [](Stage& stage) {
       stage.evaluator->SetVariable(u"F", stage.Bomb());
       stage.Evaluate(u"B + G + A + K");
     }},
    {"object that a dependant held",
     [](Stage& stage) {
       stage.evaluator->SetVariable(u"G", stage.Bomb());
       stage.Evaluate(u"F + B");
     }},
    {"object that a variable held, which is removed",
     [](Stage& stage) {
       stage.evaluator->SetVariable(u"Objeto", stage.Bomb());
       stage.evaluator->RemoveVble(u"Objeto,F,G");
     }},
    {"object of a table that is replaced",
     [](Stage& stage) {
       stage.evaluator->SetVariable(u"Objeto", stage.Bomb());
       stage.evaluator->ClearVbles();
     }},
    {"object that was a direction",
     [](Stage& stage) {
       stage.evaluator->Direction(stage.Bomb());
       stage.evaluator->Direction(Variant(2.0));
     }},
    {"object that a constant held, which a plan keeps",
     [](Stage& stage) {
       for (int i = 0; i < 2; ++i) stage.Evaluate(u"IIF( A = 2 , 1 , K ) + B");
       stage.evaluator->SetConstante(u"K", stage.Bomb());
       stage.Evaluate(u"IIF( A = 2 , 1 , K ) + B");
       stage.evaluator->SetConstante(u"K", 4.0);
       stage.Evaluate(u"IIF( A = 2 , 1 , K ) + B");
     }},
    {"object in a plan of a formula variable",
     [](Stage& stage) {
       stage.evaluator->SetConstante(u"K", stage.Bomb());
       stage.evaluator->AddVble(u"J", 0.0, u"", kNumeric, u"IIF( A = 2 , F , K ) + B");
       stage.Evaluate(u"J + A");
       stage.evaluator->SetConstante(u"K", 4.0);
       stage.Evaluate(u"J + A");
     }},
    {"object in a plan of a formula that is prepared again",
     [](Stage& stage) {
       stage.evaluator->SetConstante(u"K", stage.Bomb());
       stage.formula = stage.evaluator->Preparar(u"IIF( A = 2 , B , K ) + B");
       stage.evaluator->SetConstante(u"K", 4.0);
       stage.evaluator->AddVble(u"Nueva", 0.0, u"", kNumeric);
       stage.formula->Evaluar(stage.result);
     }},
    {"object in plans that are thrown away",
     [](Stage& stage) {
       stage.evaluator->SetConstante(u"K", stage.Bomb());
       stage.Evaluate(u"IIF( A = 2 , B , K ) + B");
       stage.evaluator->SetConstante(u"K", 4.0);
       stage.evaluator->LetPlanesGuardados(0);
       stage.Evaluate(u"B + 1");
     }},
    {"object of local variables that a recent text used",
     [](Stage& stage) {
       const Variant formula(u"Local & B");
       for (int i = 0; i < 3; ++i) {
         Ref<Campos> locals = Make<Campos>();
         auto local = Make<Campo>(u"Local");
         local->LetValue(u"x");
         locals->Add(local);
         locals->Add(Make<Campo>(u"Otro"));
         locals->Item(u"Otro")->LetValue(stage.Bomb());
         for (int j = 0; j < 3; ++j) {
           Evaluador* target = stage.evaluator.get();
           if (target) target->EvaluatePosfijo(formula, stage.result, &locals);
         }
       }
     }},
    {"settings",
     [](Stage& stage) {
       stage.evaluator->UseSettings(Make<StrikingSettings>(stage));
       for (const char16_t* formula : {u"A + K", u"A + K & F", u"LLAMA( ) + G + A"})
         stage.Evaluate(formula);
     }},
    {"settings of a host function's formula",
     [](Stage& stage) {
       stage.evaluator->UseSettings(Make<StrikingSettings>(stage));
       stage.Evaluate(u"LLAMA( ) + A + K + B");
     }},
    {"settings that are replaced",
     [](Stage& stage) {
       class Held : public MemorySettings {
        public:
         explicit Held(std::shared_ptr<Dying> held) : held_(std::move(held)) {}

        private:
         std::shared_ptr<Dying> held_;
       };
       stage.evaluator->UseSettings(Make<Held>(stage.Capture()));
       stage.Evaluate(u"A + K");
       stage.evaluator->UseSettings(Make<MemorySettings>());
     }},
    {"table of numbers", [](Stage& stage) { EvaluateTable(stage, u"A + B * 2"); }},
    {"table of values", [](Stage& stage) { EvaluateTable(stage, u"A & B & K"); }},
    {"table with a clock",
     [](Stage& stage) {
       UseClock(stage);
       EvaluateTable(stage, u"A + NOW( ) + G");
     }},
};

TEST(Lifetime, SurvivesCodeOfTheHostEverywhere) {
  for (const Place& place : kPlaces) {
    for (const Act& act : kActs) {
      SCOPED_TRACE(std::string(place.name) + ": " + act.name);
      Stage stage;
      stage.Plan(act.act);
      try {
        place.run(stage);
      } catch (const Error&) {  // a table without its names is another matter
      }
      stage.result = Variant();
      EXPECT_GT(stage.strikes, 0);
      stage.Plan(nullptr);
      stage.Evaluate(u"1 + 1");
    }
  }
}

// What the host does counts at once, as what a handler does.
TEST(Lifetime, LooksNamesUpAgainAfterAClock) {
  FormulaHost host;
  host.evaluator->UseClock([&] {
    host.evaluator->RemoveVble(u"B");
    host.evaluator->AddConstant(u"B", 100.0, u"", kNumeric);
    return Date{0};
  });
  EXPECT_EQ(host.Evaluate(u"A + YEAR( NOW( ) ) + B"), "Double 2001");
  EXPECT_EQ(host.settings->values["Evaluador/Posfijo/Posfijo"], "A NOW( YEAR( + B + ");
}

TEST(Lifetime, OfAClockEndsWithIt) {
  FormulaHost host;
  host.evaluator->UseClock([calls = 0.0]() mutable { return Date{++calls}; });
  EXPECT_EQ(host.Evaluate(u"NOW( ) + NOW( ) * 10"), "Date 20/01/1900");
  host.evaluator->UseClock(nullptr);
  EXPECT_EQ(host.Evaluate(u"YEAR( NOW( ) ) > 2020"), "Boolean Verdadero");
}

}  // namespace
}  // namespace tovalin
