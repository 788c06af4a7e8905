#include <gtest/gtest.h>

#include <array>

#include "tests/evaluator/formula_host.h"

namespace tovalin {
namespace {

struct HostEvents : testing::Test {
  HostEvents() {
    for (const char16_t* word : {u"DOBLE", u"OTRA"})
      host.evaluator->AddFunction(Text(word) + u"(", word, u"", u"");
  }
  /// Attaches a handler that gets the evaluator too.
  template <class Handler>
  int Attach(Handler handler) {
    return host.evaluator->Evaluate.Attach(
        [this, handler](const Text& macro, Variant& result, Ref<Collection>& pila) {
          handler(*host.evaluator, macro, result, pila);
        });
  }
  FormulaHost host;
};

TEST_F(HostEvents, HandTheFunctionToTheHost) {
  Text seen;
  Attach([&seen](Evaluador& evaluator, const Text& macro, Variant& result, Ref<Collection>& pila) {
    seen = macro;
    evaluator.LetClosePila(true);
    result = 2 * ToDouble(evaluator.LoadTopePila(pila));
  });
  EXPECT_EQ(host.Evaluate(u"1 + doble( A * 3 ) * 2"), "Double 25");
  EXPECT_EQ(ToUtf8(seen), "DOBLE(");
  EXPECT_FALSE(host.evaluator->ClosePila());
  EXPECT_EQ(host.Evaluate(u"ISNULL( A )"), "Double 4");  // it reaches the host too
}

TEST_F(HostEvents, PushTheSlotThatNobodyFills) { EXPECT_EQ(host.Evaluate(u"OTRA( )"), "Empty "); }

TEST_F(HostEvents, RaiseTheErrorOfAHandler) {
  Attach([](Evaluador& evaluator, const Text&, Variant&, Ref<Collection>&) {
    evaluator.LetClosePila(true);
    throw Error{1234, u"mi programa", u"sin datos"};
  });
  Variant result = 5.0;
  try {
    host.evaluator->EvaluatePosfijo(u"OTRA( )", result);
    ADD_FAILURE();
  } catch (const Error& error) {
    EXPECT_EQ(error, (Error{1234, u"mi programa", u"sin datos"}));
  }
  EXPECT_EQ(FormulaHost::Show(result), "Double 5");
  EXPECT_FALSE(host.evaluator->ClosePila());
  EXPECT_EQ(host.Evaluate(u"A + B"), "Double 7");
}

TEST_F(HostEvents, CallHandlersInOrderAndLetThemDetach) {
  std::string order;
  int first = 0;
  int second = 0;
  first = Attach([&](Evaluador& evaluator, const Text&, Variant&, Ref<Collection>&) {
    order += "1";
    evaluator.Evaluate.Detach(first);
    evaluator.Evaluate.Detach(second);
    evaluator.Evaluate.Attach([&order](const Text&, Variant&, Ref<Collection>&) { order += "4"; });
  });
  second = Attach([&](Evaluador&, const Text&, Variant&, Ref<Collection>&) { order += "2"; });
  Attach([&](Evaluador&, const Text&, Variant& result, Ref<Collection>&) {
    order += "3";
    result = 1.0;
  });
  EXPECT_EQ(host.Evaluate(u"OTRA( ) + OTRA( )"), "Double 2");
  EXPECT_EQ(order, "1334");
}

TEST_F(HostEvents, MayEvaluateOnTheSameObject) {
  host.evaluator->AddVble(u"Fila", 0.0, u"", kNumeric);
  host.evaluator->AddVble(u"Subtotal", 0.0, u"", kNumeric, u"Fila * A");
  // A sum over rows, as hosts write one: each row is a calculation of its own.
  Attach([](Evaluador& evaluator, const Text&, Variant& result, Ref<Collection>&) {
    double sum = 0;
    for (double row = 1; row <= 3; ++row) {
      evaluator.SetVariable(u"Fila", row);
      Variant value;
      evaluator.EvaluatePosfijo(u"Subtotal", value);
      sum += ToDouble(value);
    }
    result = sum;
  });
  EXPECT_EQ(host.Evaluate(u"OTRA( ) + Subtotal"), "Double 18");
}

TEST_F(HostEvents, SurviveWhateverAHandlerDoesToTheStack) {
  Attach([](Evaluador&, const Text& macro, Variant& result, Ref<Collection>& pila) {
    if (macro == u"OTRA(") {
      while (pila->Count() > 0) pila->Remove(std::int32_t{1});
      pila->Add(4.0, u"clave");
    } else {
      pila = nullptr;
    }
    result = 3.0;
  });
  EXPECT_EQ(host.Evaluate(u"1 + 2 * OTRA( )"), "Double 12");
  EXPECT_EQ(host.Evaluate(u"1 + DOBLE( 5 )"), "Double 3");
}

TEST_F(HostEvents, KeepAStackThatAHandlerHoldsOnTo) {
  Ref<Collection> kept;
  Attach([&kept](Evaluador&, const Text&, Variant& result, Ref<Collection>& pila) {
    kept = pila;
    result = 1.0;
  });
  EXPECT_EQ(host.Evaluate(u"A + OTRA( )"), "Double 3");
  EXPECT_EQ(kept->Count(), 1);
}

TEST_F(HostEvents, LookNamesUpAgainWhenAHandlerChangesTheTables) {
  Attach([](Evaluador& evaluator, const Text&, Variant& result, Ref<Collection>&) {
    evaluator.RemoveVble(u"B");
    evaluator.AddConstant(u"B", 100.0, u"", kNumeric);
    evaluator.ClearFunctions();
    result = 1.0;
  });
  EXPECT_EQ(host.Evaluate(u"OTRA( ) + B"), "Double 101");
  EXPECT_EQ(host.Evaluate(u"OTRA( ) + B"), "1 - Variable no definida OTRA\r\n");
}

TEST_F(HostEvents, TakeANameThatAHandlerRemovesForText) {
  Attach([](Evaluador& evaluator, const Text&, Variant& result, Ref<Collection>&) {
    evaluator.ClearVbles();
    result = 1.0;
  });
  EXPECT_EQ(host.Evaluate(u"OTRA( ) & X"), "String 1X");
}

TEST_F(HostEvents, MayDropTheLastReferenceToTheEvaluator) {
  auto evaluator = Make<Evaluador>();
  evaluator->UseSettings(host.settings);
  evaluator->AddFunction(u"OTRA(", u"OTRA", u"", u"");
  evaluator->Evaluate.Attach([&evaluator](const Text&, Variant& result, Ref<Collection>&) {
    evaluator = nullptr;
    result = 6.0;
  });
  Variant result;
  evaluator->EvaluatePosfijo(u"OTRA( ) + 1", result);
  EXPECT_EQ(FormulaHost::Show(result), "Double 7");
  EXPECT_FALSE(evaluator);
}

// Where the host keeps the trace its code runs in the middle of every evaluation.
class EvaluatingSettings : public MemorySettings {
 public:
  explicit EvaluatingSettings(Ref<Evaluador>& evaluator) : evaluator_(evaluator) {}
  void Save(TextView application, TextView section, TextView key, TextView text) override {
    MemorySettings::Save(application, section, key, text);
    if (!evaluator_) return;
    Variant result;
    for (int i = 0; i < 40; ++i)
      evaluator_->EvaluatePosfijo(Variant(u"1 + " + FromUtf8(std::to_string(i))), result);
    evaluator_->LetPlanesGuardados(0);
    evaluator_->UseSettings(Make<MemorySettings>());
    evaluator_ = nullptr;
  }

 private:
  Ref<Evaluador>& evaluator_;
};

TEST_F(HostEvents, MayComeFromTheSettingsOfAHost) {
  for (const TextView formula : {u"2 * 3", u"LEN(\"seis..\")"}) {
    auto evaluator = Make<Evaluador>();
    const Variant expression(formula);
    Variant result;
    evaluator->UseSettings(Make<MemorySettings>());
    for (int i = 0; i < 3; ++i) evaluator->EvaluatePosfijo(expression, result);
    const auto settings = Make<EvaluatingSettings>(evaluator);
    evaluator->UseSettings(settings);
    evaluator->EvaluatePosfijo(expression, result);
    EXPECT_EQ(ToText(result), u"6");
    EXPECT_FALSE(evaluator);
    EXPECT_EQ(settings->values["Evaluador/Posfijo/Expresion"], ToUtf8(formula));
  }
}

TEST_F(HostEvents, StopAHandlerThatNeverEnds) {
  Attach([](Evaluador& evaluator, const Text&, Variant& result, Ref<Collection>&) {
    evaluator.EvaluatePosfijo(u"OTRA( ) + 1", result);
  });
  EXPECT_EQ(host.Evaluate(u"OTRA( )"), "Error 28");
  EXPECT_EQ(host.Evaluate(u"A"), "Double 2");
}

TEST_F(HostEvents, ReachLateBoundHandlers) {
  Object& object = *host.evaluator;
  const int attachment = object.Attach(u"evaluate", [&](std::span<Variant> arguments) {
    ASSERT_EQ(arguments.size(), 3u);
    EXPECT_EQ(arguments[0].Code(), 8);
    EXPECT_EQ(arguments[2].Code(), 9 + kByReferenceFlag);
    std::array<Variant, 1> pila{arguments[2]};
    Variant top;
    EXPECT_FALSE(object.Invoke(u"LOADTOPEPILA", MemberKind::Method, pila, top));
    arguments[1].Assign(ToDouble(top) * 2);
  });
  EXPECT_EQ(host.Evaluate(u"DOBLE( 21 )"), "Double 42");
  object.Detach(u"Evaluate", attachment);
  EXPECT_EQ(host.Evaluate(u"DOBLE( 21 )"), "Double 21");
  EXPECT_THROW(object.Attach(u"Nada", {}), Error);
}

}  // namespace
}  // namespace tovalin
