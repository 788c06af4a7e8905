#include <gtest/gtest.h>

#include "tests/evaluator/formula_host.h"

namespace tovalin {
namespace {

constexpr const char* kBadCharacter = "Nombre de variable no valido, caracter no valido\r\n";

template <class Work>
Error Raised(Work work) {
  try {
    work();
  } catch (const Error& error) {
    return error;
  }
  return {};
}

TEST(Symbols, RefuseNamesWithEveryReason) {
  struct Case {
    const char16_t* name;
    std::string description;
  };
  const Case cases[] = {
      {u"12", "Nombre de variable no valido, valor numerico\r\n"},
      {u"1e5", "Nombre de variable no valido, valor numerico\r\n"},
      {u"A+B", kBadCharacter},
      {u"(", std::string(kBadCharacter) + kBadCharacter},
      {u"medio(", std::string("Nombre de variable no valido, existe una funcion definida con "
                              "dicho nombre\r\n") +
                      kBadCharacter},
      {u"falso",
       "Nombre de la constante no valido, existe un constante definida con dicho "
       "nombre\r\n"},
  };
  FormulaHost host;
  for (const Case& row : cases) {
    const Error error = Raised([&] { host.evaluator->AddVble(row.name, 1.0, u"", kNumeric); });
    EXPECT_EQ(error.number, kObjectError) << ToUtf8(row.name);
    EXPECT_EQ(ToUtf8(error.source), "Evaluador");
    EXPECT_EQ(ToUtf8(error.description), row.description);
    EXPECT_FALSE(host.evaluator->Variables()->Exists(row.name));
  }
  EXPECT_EQ(Raised([&] { host.evaluator->NewVble(u"a", 1.0, u"", kNumeric); }).number, 457);
  EXPECT_NO_THROW(host.evaluator->AddVble(u"", 1.0, u"", kNumeric));
  EXPECT_NO_THROW(host.evaluator->AddVble(u"MEDIO", 1.0, u"", kNumeric));
}

TEST(Symbols, AreFoundInVariablesThenConstants) {
  FormulaHost host;
  Evaluador& evaluator = *host.evaluator;
  evaluator.AddConstant(u"Iva", 0.19, u"", kNumeric);
  EXPECT_TRUE(evaluator.Existconstante(u"orden"));
  EXPECT_TRUE(evaluator.ExistVariable(u"IVA"));
  EXPECT_FALSE(evaluator.ExistVariable(u"Quien"));
  EXPECT_EQ(FormulaHost::Show(evaluator.GetVariable(u"Quien", 7.0)), "Double 7");
  EXPECT_EQ(FormulaHost::Show(evaluator.GetVariableDB(u"iva", 7.0)), "Double 0.19");
  EXPECT_EQ(FormulaHost::Show(evaluator.GetConstante(u"A", 7.0)), "Double 7");
  EXPECT_EQ(evaluator.GetDataType(u"X"), 1014);
  EXPECT_EQ(evaluator.GetDataType(u"VERDADERO"), 1001);
  EXPECT_EQ(evaluator.GetDataType(u"Quien"), 1009);
}

TEST(Symbols, ChangeQuietlyOrWithAnError) {
  FormulaHost host;
  Evaluador& evaluator = *host.evaluator;
  evaluator.SetVariable(u"Quien", 1.0);
  evaluator.SetVariable(u"FALSO", 1.0);
  evaluator.SetConstante(u"A", 1.0);
  EXPECT_EQ(host.Evaluate(u"A & FALSO"), "String 2Falso");
  evaluator.SetConstante(u"falso", u"no");
  EXPECT_EQ(host.Evaluate(u"A & FALSO"), "String 2no");
  evaluator.ChangeVble(9.5, u"a");
  EXPECT_EQ(FormulaHost::Show(evaluator.GetVariable(u"A", 0.0)), "Double 9.5");
  EXPECT_EQ(Raised([&] { evaluator.ChangeVble(1, u"Quien"); }).number, 5);
  evaluator.Direction(std::int32_t{3});
  EXPECT_EQ(evaluator.Constantes()->Item(u"CDERECHA")->Direction().AsLong(), 3);
}

TEST(Symbols, AreRemovedByListOrByName) {
  FormulaHost host;
  Evaluador& evaluator = *host.evaluator;
  evaluator.RemoveVble(u"A,,B");
  EXPECT_FALSE(evaluator.ExistVariable(u"A") || evaluator.ExistVariable(u"B"));
  EXPECT_EQ(Raised([&] { evaluator.RemoveVble(u"X,Quien,ORDEN"); }).number, 5);
  EXPECT_FALSE(evaluator.ExistVariable(u"X"));
  EXPECT_TRUE(evaluator.ExistVariable(u"ORDEN"));
  evaluator.RemoveConts(u"ComodinLike");
  EXPECT_EQ(Raised([&] { evaluator.RemoveConts(u"ComodinLike"); }).number, 5);
  const Error error = Raised([&] { evaluator.RemoveConts(u"verdadero"); });
  EXPECT_EQ(error,
            (Error{kObjectError, u"Evaluador", u"No se puede eliminar una constante del sistema"}));
  EXPECT_EQ(ToUtf8(evaluator.ReplaceWildCards(u"a*b?")), "a%b_");
}

TEST(Symbols, AppendOnlyWhatIsValid) {
  FormulaHost host;
  auto records = Make<Campos>();
  for (const char16_t* name : {u"P1", u"A+B", u"A", u"P2", u"FALSO"})
    records->Add(Make<Campo>(name));
  host.evaluator->AppendsVble(records, u"B", u"X");
  const Ref<Campos> variables = host.evaluator->Variables();
  EXPECT_EQ(variables->Item(std::int32_t{2})->Name(), u"P1");
  EXPECT_EQ(variables->Item(std::int32_t{3})->Name(), u"P2");
  EXPECT_EQ(variables->Item(std::int32_t{4})->Name(), u"B");
  // A table appended to itself holds every name already.
  host.evaluator->AppendsVble(variables);
  EXPECT_EQ(Raised([&] { host.evaluator->AppendsVble(nullptr); }).number, 91);
}

TEST(Vocabulary, StandsAsRegistered) {
  Evaluador evaluator;
  EXPECT_EQ(evaluator.Functions()->Count(), 48);
  EXPECT_EQ(evaluator.Functions()->Item(std::int32_t{5})->SourceName(), u"DesAJUSTAR");
  EXPECT_EQ(evaluator.Functions()->Item(u"medio(")->Sintax(),
            u"MEDIO( Expr , Inicio , Caraceres) ");
  EXPECT_EQ(evaluator.Functions()->Item(std::int32_t{48})->Sintax(),
            u"DoAutoBracket( ColumnName )");
  EXPECT_FALSE(evaluator.Functions()->Exists(u"MEDIO"));
  EXPECT_EQ(evaluator.Operadores()->Count(), 19);
  EXPECT_EQ(evaluator.Operadores()->Item(u"between")->Value().AsInteger(), 3);
  EXPECT_EQ(evaluator.CaracteresEspeciales()->Count(), 28);
  EXPECT_EQ(evaluator.Constantes()->Count(), 0);
  evaluator.ClearConstants();
  EXPECT_EQ(evaluator.Constantes()->Count(), 10);
  EXPECT_EQ(evaluator.StringDelimiter(), u"'");
  evaluator.AddFunction(u"MIA(", u"MIA", u"", u"");
  EXPECT_EQ(Raised([&] { evaluator.AddFunction(u"mia(", u"MIA", u"", u""); }).number, 457);
  evaluator.ClearFunctions();
  EXPECT_EQ(evaluator.Functions()->Count(), 48);
}

}  // namespace
}  // namespace tovalin
