#include <gtest/gtest.h>

#include <random>

#include "tests/evaluator/formula_host.h"

namespace tovalin {
namespace {

Text Repeated(TextView piece, std::size_t times) {
  Text text;
  text.reserve(piece.size() * times);
  for (std::size_t i = 0; i < times; ++i) text.append(piece);
  return text;
}

TEST(HostileInput, LongFormulasEndInAValue) {
  FormulaHost host;
  constexpr std::size_t kMany = 100'000;
  EXPECT_EQ(host.Evaluate(Repeated(u"(", kMany) + u"A" + Repeated(u")", kMany)), "Double 2");
  EXPECT_EQ(host.Evaluate(u"A" + Repeated(u"+1", kMany)), "Double 100002");
  EXPECT_EQ(host.Evaluate(Repeated(u"ABS(", kMany) + u"A" + Repeated(u")", kMany)), "Double 2");
  EXPECT_EQ(host.Evaluate(Repeated(u"(", kMany)).substr(0, 14), "1 - Número de");
  EXPECT_EQ(host.Evaluate(Repeated(u")", kMany)).substr(0, 14), "1 - Número de");
  EXPECT_EQ(host.Evaluate(u"'" + Repeated(u"x", kMany) + u"' & 1").size(), kMany + 8);
  EXPECT_EQ(host.Evaluate(Repeated(u"+", kMany)).substr(0, 8), "1 - Oper");
  EXPECT_EQ(host.Evaluate(Repeated(u"Q ", 10) + Repeated(u",", kMany)).substr(0, 8), "1 - Vari");
  EXPECT_EQ(host.Evaluate(Repeated(u"\r\n@", kMany)).substr(0, 8), "1 - Vari");
}

TEST(HostileInput, LongNames) {
  FormulaHost host;
  const Text name = Repeated(u"a", 65'536);
  host.evaluator->AddFunction(name + u"(", name, u"", u"");
  host.evaluator->AddVble(name, 3.0, u"", kNumeric);
  EXPECT_EQ(host.Evaluate(name + u" + 1"), "Double 4");
  EXPECT_EQ(host.Evaluate(Repeated(name + u" ", 16)).substr(0, 8), "1 - Vari");
  EXPECT_EQ(host.Evaluate(Repeated(name + u"*", 15) + u"1"), "Double 14348907");
}

TEST(HostileInput, RandomTextEndsInAMessageOrAValue) {
  FormulaHost host;
  constexpr TextView kPieces[] = {
      u"(",      u")",         u",",     u"+",        u"-",       u"*",    u"-1*",   u"*-1",
      u"'",      u"\"",        u"@",     u"A",        u"X",       u" IN ", u" AND ", u" ",
      u"MEDIO(", u"1",         u".5",    u"\r",       u"\n",      u"MAX(", u"<",     u">=",
      u"&",      u"Nada",      u"Fecha", u"DATEADD(", u"FORMAT(", u"'m'",  u"^",     u"\xD800",
      u"ñ",      u" BETWEEN ", u"Quien", u"'#,##0'",  u"LEN(",    u"\0"};
  std::mt19937 random(7);
  for (int round = 0; round < 20'000; ++round) {
    Text formula;
    for (auto length = random() % 14; length > 0; --length)
      formula.append(kPieces[random() % std::size(kPieces)]);
    host.Evaluate(formula);
    ASSERT_EQ(host.Evaluate(u"A"), "Double 2");
  }
}

TEST(HostileInput, NullObjectsRaise) {
  Evaluador evaluator;
  EXPECT_THROW(evaluator.SetVariables(nullptr), Error);
  EXPECT_THROW(evaluator.SetFunctions(nullptr), Error);
  EXPECT_THROW(evaluator.SetConstantes(nullptr), Error);
  EXPECT_THROW(evaluator.Variables()->Add(nullptr), Error);
}

TEST(HostileInput, ForeignRecordsInTheTablesAreHarmless) {
  FormulaHost host;
  auto operators = host.evaluator->Operadores();
  operators->Add(Make<Campo>(u"%%"));
  operators->Item(u"+")->LetValue(u"no es un numero");
  operators->Item(u"*")->LetValue(Variant::Null());
  host.evaluator->Functions()->Add(Make<Campo>(u"  "));
  host.evaluator->Functions()->Add(Make<Campo>(u"PI"));
  host.evaluator->Functions()->Add(Make<Campo>(u"A"));
  EXPECT_EQ(host.Evaluate(u"1 + 2 * 3"), "Double 7");
  EXPECT_EQ(host.Evaluate(u"B %% B"), "Error -2147221504");
  EXPECT_EQ(host.Evaluate(u"(PI)"), "Empty ");
  operators->Remove(u"+");
  EXPECT_EQ(host.Evaluate(u"B + 1"), "1 - Variable no definida B + 1\r\n");
}

}  // namespace
}  // namespace tovalin
