#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "tests/evaluator/formula_host.h"

namespace tovalin {
namespace {

Text Named(const char16_t* stem, int number) {
  return Text(stem) + FromUtf8(std::to_string(number));
}

struct FormulaVariables : testing::Test {
  void AddFormula(const Text& name, const Text& formula) {
    host.evaluator->AddVble(name, Variant(), u"", kNumeric, formula);
  }
  std::string Stored(const Text& name) {
    return FormulaHost::Show(host.evaluator->GetVariable(name, Variant::Null()));
  }
  /// A host function that counts its calls: "CUENTA( Valor )" gives its value.
  void CountCalls() {
    host.evaluator->AddFunction(u"CUENTA(", u"CUENTA", u"", u"");
    host.evaluator->Evaluate.Attach([this](const Text&, Variant& result, Ref<Collection>& pila) {
      ++calls;
      result = host.evaluator->LoadTopePila(pila);
    });
  }
  FormulaHost host;
  int calls = 0;
};

TEST_F(FormulaVariables, BuildOnOneAnother) {
  AddFormula(u"Neto", u"Bruto - Deduccion");
  AddFormula(u"Bruto", u"A * 1000");
  AddFormula(u"Deduccion", u"Bruto * 0.08");
  AddFormula(u"Letrero", u"\"Neto: \" & Neto");
  AddFormula(u"Alto", u"Neto > 100");
  AddFormula(u"Plazo", u"Fecha + 30");
  EXPECT_EQ(host.Evaluate(u"Neto"), "Double 1840");
  EXPECT_EQ(Stored(u"Letrero"), "String Neto: 1840");
  EXPECT_EQ(Stored(u"Alto"), "Boolean Verdadero");
  EXPECT_EQ(host.Evaluate(u"Plazo"), "Date 16/03/2024");
  host.evaluator->SetVariable(u"A", 3.0);
  EXPECT_EQ(host.Evaluate(u"Letrero"), "String Neto: 2760");
}

TEST_F(FormulaVariables, AreComputedOnceInAnEvaluation) {
  CountCalls();
  AddFormula(u"Base", u"CUENTA(A)");
  // Two references at each step: 2^20 paths lead to the base.
  for (int i = 0; i < 20; ++i) {
    const Text before = i == 0 ? Text(u"Base") : Named(u"Paso", i - 1);
    AddFormula(Named(u"Paso", i), before + u" + " + before);
  }
  EXPECT_EQ(host.Evaluate(u"Paso19"), "Double 2097152");
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(host.Evaluate(u"Base + Base"), "Double 4");
  EXPECT_EQ(calls, 2);
}

TEST_F(FormulaVariables, ReadTheirLastValueInACircle) {
  AddFormula(u"Contador", u"Contador + 1");
  EXPECT_EQ(host.Evaluate(u"Contador"), "Double 1");
  EXPECT_EQ(host.Evaluate(u"Contador"), "Double 2");
  AddFormula(u"Ida", u"Vuelta + 1");
  AddFormula(u"Vuelta", u"Ida * 10");
  EXPECT_EQ(host.Evaluate(u"Ida"), "Double 1");
  EXPECT_EQ(host.Evaluate(u"Ida"), "Double 11");
}

TEST_F(FormulaVariables, NestAThousandDeep) {
  AddFormula(u"N1", u"A");
  for (int i = 2; i <= 1001; ++i) AddFormula(Named(u"N", i), Named(u"N", i - 1) + u" + 1");
  EXPECT_EQ(host.Evaluate(u"N1001"), "Error 28");
  EXPECT_EQ(host.Evaluate(u"N1000"), "Double 1001");
  // Dependants are taken in order, however long the chain.
  host.evaluator->SetVariable(u"A", 10.0);
  host.evaluator->CalcularDependencias(u"A");
  EXPECT_EQ(Stored(u"N1001"), "Double 1010");
}

TEST_F(FormulaVariables, KeepTheValueOfADependantThatFails) {
  AddFormula(u"Bueno", u"A * 2");
  AddFormula(u"Malo", u"Bueno + X");
  AddFormula(u"Otro", u"Bueno + 1");
  host.evaluator->SetVariable(u"Malo", 99.0);
  EXPECT_EQ(host.Evaluate(u"Bueno"), "Double 4");
  EXPECT_EQ(Stored(u"Malo"), "Double 99");
  EXPECT_EQ(Stored(u"Otro"), "Double 5");
  EXPECT_EQ(host.Evaluate(u"Malo"), "Error 13");
  EXPECT_EQ(host.evaluator->Variables()->Item(u"Malo")->Status(), Campo::kIdle);
}

// Each formula is tried once, however many read it: calls are counted, in front of what fails.
TEST_F(FormulaVariables, ThatFailAreTriedOnce) {
  constexpr int kMany = 3000;
  const struct {
    const char* name;
    const char16_t* first;     // the formula of V0
    const char16_t* second;    // what follows V0 in that of V1
    const char16_t* evaluate;  // empty: the dependants of A
    const char* result;
  } kCases[] = {{"a text in a chain", u"A", u" * X", u"V900", "Error 13"},
                {"the same, as dependants", u"A", u" * X", u"", ""},
                {"a circle", u"V2999 + A", u"", u"", ""},
                {"a chain that is too deep", u"A", u"", u"V2999", "Error 28"},
                {"an error of the host", u"A + CUENTA( 'no' )", u"", u"V900", "Error 1234"}};
  for (const auto& at : kCases) {
    for (const bool counts : {true, false}) {
      FormulaHost other;
      int calls = 0;
      other.evaluator->AddFunction(u"CUENTA(", u"CUENTA", u"", u"");
      other.evaluator->Evaluate.Attach([&](const Text&, Variant& result, Ref<Collection>& pila) {
        ++calls;
        result = other.evaluator->LoadTopePila(pila);
        if (result.Is(Subtype::String)) throw Error{1234, u"", u""};
      });
      for (int i = 0; i < kMany; ++i) {
        const Text formula =
            i == 0 ? Text(at.first) : Named(u"V", i - 1) + (i == 1 ? at.second : u" + 1");
        other.evaluator->AddVble(Named(u"V", i), 7.0, u"", kNumeric,
                                 counts ? u"CUENTA( 0 ) + " + formula : formula);
      }
      if (Text(at.evaluate).empty())
        other.evaluator->CalcularDependencias(u"A");
      else
        EXPECT_EQ(other.Evaluate(at.evaluate), at.result) << at.name;
      EXPECT_LE(calls, kMany + 1) << at.name;
      EXPECT_EQ(other.evaluator->GetVariable(u"V2998", 0.0).AsDouble(), 7) << at.name;
    }
  }
}

// Whoever reads a formula that failed gets its error, the next evaluation tries it again.
TEST_F(FormulaVariables, ThatFailKeepTheirError) {
  CountCalls();
  AddFormula(u"Falla", u"CUENTA( 1 ) + X");
  AddFormula(u"Lector", u"Falla + 1");
  const Text formulas[] = {u"Falla", u"Lector", u"A + Falla", u"A"};
  Evaluador::Outcome outcomes[4];
  host.evaluator->EvaluateBatch(formulas, outcomes);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(outcomes[i].error->number, 13) << i;
  EXPECT_FALSE(outcomes[3].error);
  EXPECT_EQ(calls, 1);
  host.evaluator->SetVariable(u"X", 2.0);
  EXPECT_EQ(host.Evaluate(u"Lector"), "Double 4");
  EXPECT_EQ(calls, 2);
}

TEST_F(FormulaVariables, ReportTheFaultsOfTheirFormulas) {
  AddFormula(u"Roto", u"A + Quien");
  AddFormula(u"Sano", u"A + 1");
  EXPECT_EQ(host.Evaluate(u"Roto + Sano"), "1 - Variable no definida Quien\r\n");
}

TEST_F(FormulaVariables, FollowAFormulaThatChanges) {
  AddFormula(u"Doble", u"A * 2");
  EXPECT_EQ(host.Evaluate(u"Doble"), "Double 4");
  host.evaluator->Variables()->Item(u"Doble")->LetFormula(u"A * 3");
  EXPECT_EQ(host.Evaluate(u"Doble"), "Double 6");
  host.evaluator->Variables()->Item(u"B")->LetFormula(u"Doble + 1");
  EXPECT_EQ(host.Evaluate(u"Doble"), "Double 6");
  EXPECT_EQ(Stored(u"B"), "Double 7");
  host.evaluator->Variables()->Item(u"B")->LetFormula(u"ORDEN");  // reads no formula any more
  host.evaluator->SetVariable(u"B", 1.0);
  EXPECT_EQ(host.Evaluate(u"Doble"), "Double 6");
  EXPECT_EQ(Stored(u"B"), "Double 1");
}

TEST_F(FormulaVariables, FollowAConstantThatChanges) {
  host.evaluator->AddConstant(u"Factor", 3.0, u"", kNumeric);
  AddFormula(u"Total", u"A * Factor");
  EXPECT_EQ(host.Evaluate(u"Total + 1"), "Double 7");
  host.evaluator->SetConstante(u"Factor", 10.0);
  EXPECT_EQ(host.Evaluate(u"Total + 1"), "Double 21");
}

// With a handler every formula variable is computed where the evaluation meets it, without
// one those in front are computed first: the values and the errors are the same.
TEST_F(FormulaVariables, ComeOutAlikeWithAndWithoutHandlers) {
  const std::vector<Text> pieces = {u"%0 + %1",
                                    u"%0 * 2 - %1",
                                    u"MAX(+A, %0)",
                                    u"A / %0 + %1",
                                    u"1E308 * A * %0",
                                    u"%0 & \"x\" & %1",
                                    u"IIF(%0 > 3, %1, %0)",
                                    u"-%0",
                                    u"(1E300 * A) ^ 2 + %0",
                                    u"X + %0",
                                    u"%0 + LEN(%1)",
                                    u"A",
                                    u"%0 = %1",
                                    u"NoEsta(1) + %0",
                                    u"Redondear(%0, 1) + B",
                                    u"%0"};
  std::minstd_rand random(11);
  for (int turn = 0; turn < 300; ++turn) {
    FormulaHost plain;
    FormulaHost handled;
    handled.evaluator->Evaluate.Attach([](const Text&, Variant&, Ref<Collection>&) {});
    for (int i = 0; i < 6; ++i) {
      Text formula = pieces[random() % pieces.size()];
      for (const TextView mark : {u"%0", u"%1"})
        for (std::size_t place; (place = formula.find(mark)) != Text::npos;)
          formula.replace(place, 2, Named(u"F", static_cast<int>(random() % 6)));
      for (FormulaHost* each : {&plain, &handled})
        each->evaluator->AddVble(Named(u"F", i), 1.5, u"", kNumeric, formula);
    }
    for (const TextView formula : {u"F0", u"B * F1 + F2", u"F3 & F4 & F5"})
      ASSERT_EQ(plain.Evaluate(Text(formula)), handled.Evaluate(Text(formula))) << turn;
    for (int i = 0; i < 6; ++i) {
      const Variant value = plain.evaluator->GetVariable(Named(u"F", i), Variant::Null());
      const Variant other = handled.evaluator->GetVariable(Named(u"F", i), Variant::Null());
      ASSERT_EQ(FormulaHost::Show(value), FormulaHost::Show(other)) << turn << ' ' << i;
    }
  }
}

TEST_F(FormulaVariables, StoreLocalValuesLocally) {
  Ref<Campos> locals = Make<Campos>();
  auto local = Make<Campo>(u"Comision");
  local->LetFormula(u"A * 10");
  locals->Add(local);
  host.evaluator->AddVble(u"Comision", 1.0, u"", kNumeric);
  EXPECT_EQ(host.Evaluate(u"Comision", &locals), "Double 20");
  EXPECT_EQ(Stored(u"Comision"), "Double 1");
  EXPECT_EQ(FormulaHost::Show(local->Value()), "Double 20");
}

TEST_F(FormulaVariables, RunAsABatch) {
  CountCalls();
  AddFormula(u"Base", u"CUENTA(A)");
  AddFormula(u"Suma", u"Base + 1");
  AddFormula(u"Falla", u"Base + X");
  const Text names[] = {u"Suma", u"Falla", u"Base", u"Quien"};
  Evaluador::Outcome outcomes[4];
  host.evaluator->EvaluateBatch(names, outcomes);
  EXPECT_EQ(FormulaHost::Show(outcomes[0].value), "Double 3");
  EXPECT_EQ(outcomes[1].error->number, 13);
  EXPECT_EQ(FormulaHost::Show(outcomes[2].value), "Double 2");
  EXPECT_EQ(ToUtf8(outcomes[3].faults), "1 - Variable no definida Quien\r\n");
  EXPECT_EQ(calls, 1);
}

TEST_F(FormulaVariables, AreNamedByTheirReaders) {
  AddFormula(u"Neto", u"A");
  EXPECT_EQ(FormulaHost::Joined(host.evaluator->VarExpresion(u"neto*B+A-NETO+Quien"), ","),
            "Neto,B,A");
  EXPECT_EQ(
      FormulaHost::Joined(host.evaluator->ConstExpresion(u"IIF(A=Verdadero,CDERECHA,1)"), ","),
      "VERDADERO,CDERECHA");
  EXPECT_EQ(ToUtf8(host.evaluator->ReplaceExpresion(u"@A+@Quien & '@A' & \"@B\" & @neto")),
            "A+@Quien & '@A' & \"@B\" & neto");
}

// One place reads "@": every member sees the same names.
TEST_F(FormulaVariables, AreNamedBehindAtSignsToo) {
  struct Row {
    const char16_t* formula;
    const char* replaced;
    const char* names;
  };
  const Row rows[] = {
      {u"@Salario Base * 2", "Salario Base * 2", "Salario Base"},
      {u"(@salario base)+@A", "(salario base)+A", "Salario Base,A"},
      {u"B@A + A", "B@A + A", "A"},
      {u"@A\r\n + @Salario\r Base\r\n", "A\r\n + Salario\r Base\r\n", "A,Salario Base"},
      {u"'@A' & \"@A\" & @A", "'@A' & \"@A\" & A", "A"},
      {u"@A B + @@A", "@A B + @@A", ""},
      {u"'@A", "'@A", "A"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ToUtf8(host.evaluator->ReplaceExpresion(row.formula)), row.replaced);
    EXPECT_EQ(FormulaHost::Joined(host.evaluator->VarExpresion(row.formula), ","), row.names);
    host.Evaluate(row.formula);
    EXPECT_EQ(host.settings->values["Evaluador/Posfijo/Expresion"], row.replaced);
  }
  host.evaluator->AddConstant(u"Tasa Fija", 3.0, u"", kNumeric);
  EXPECT_EQ(FormulaHost::Joined(host.evaluator->ConstExpresion(u"@Tasa Fija+@A"), ","),
            "Tasa Fija");
  auto locals = Make<Campos>();
  locals->Add(Make<Campo>(u"Mi Local"));
  EXPECT_EQ(ToUtf8(host.evaluator->ReplaceExpresion(u"@Mi Local+1", &locals)), "Mi Local+1");
}

TEST_F(FormulaVariables, DependOnNamesBehindAtSignsAndAcrossLines) {
  AddFormula(u"Doble", u"@Salario Base\r\n * 2");
  host.evaluator->CalcularDependencias(u"Salario Base");
  EXPECT_EQ(FormulaHost::Show(host.evaluator->GetVariable(u"Doble", 0.0)), "Double 3000");
}

}  // namespace
}  // namespace tovalin
