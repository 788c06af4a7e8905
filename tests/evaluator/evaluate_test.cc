#include <gtest/gtest.h>

#include "tests/evaluator/formula_host.h"

namespace tovalin {
namespace {

struct Case {
  const char16_t* formula;
  const char* value;
};

const Case kCases[] = {
    {u"1+2*3", "Double 7"},
    {u"2^3^2", "Double 64"},
    {u"10/3*3", "Double 10"},
    {u"10/0", "Integer 0"},
    {u"-5", "Double -5"},
    {u"-A", "Double -2"},
    {u"-1*A", "Double -2"},
    {u"+A", "Double 2"},
    {u"3*-2", "Double -6"},
    {u"3*-12", "Double 3"},   // "*-1" is an element of its own
    {u"5-1*2", "Double 5"},   // so is "-1*"
    {u"5*(-3)", "Double 2"},  // a minus in brackets takes the value before them
    {u"5-10*2", "Double -15"},
    {u"A>1 AND B<2", "Boolean Verdadero"},
    {u"(A>1) AND (B>2)", "Boolean Verdadero"},
    {u"(A>3) OR (B>2)", "Boolean Verdadero"},
    {u"6 AND 3", "Long 2"},
    {u"0.1+0.2=0.3", "Boolean Verdadero"},
    {u"(0.1+0.2)<>0.3", "Boolean Verdadero"},
    {u"'1.0'=1", "Boolean Verdadero"},
    {u"'a'='A'", "Boolean Verdadero"},
    {u"'a'<>'A'", "Boolean Verdadero"},
    {u"'ñ'='Ñ'", "Boolean Verdadero"},
    {u"'a'<'B'", "Boolean Falso"},
    {u"'10'>9", "Boolean Falso"},  // compared as text
    {u"Nada=1", "Boolean Falso"},
    {u"Nada<>1", "Boolean Falso"},
    {u"Vacio=0", "Boolean Verdadero"},
    {u"Vacio+1", "Double 1"},
    {u"Nada+1", "Null"},
    {u"'A,B,C' IN 'b'", "Boolean Verdadero"},
    {u"X IN 'conta'", "Boolean Verdadero"},
    {u"X IN 'xyz'", "Boolean Falso"},
    {u"B,1 BETWEEN 5", "Boolean Verdadero"},
    {u"B,6 BETWEEN 9", "Boolean Falso"},
    {u"'a' & 1 & 'b'", "String a1b"},
    {u"X & (0.1+0.2)", "String Contabilidad0.3"},
    {u"X & VERDADERO", "String ContabilidadVerdadero"},
    {u"'1'+'2'", "String 12"},
    {u"'1'+2", "Double 3"},
    {u"'abc'+1", "Error 13"},
    {u"'abc'/2", "Error 13"},
    {u"1e308*10", "Error 6"},
    {u"Codigo & '-'", "String 007-"},
    {u"Codigo = 7", "Boolean Verdadero"},
    {u"Miles+1", "Double 1235.5"},
    {u"\"-$ 12,345,678\" + 0", "Double -12345678"},
    {u"\"1,2,3\" & \"x\"", "String 1,2,3x"},
    {u"\"1,2345\" & \"x\"", "String 1,2345x"},
    {u"\"10,20,30\" IN \"02\"", "Boolean Falso"},
    {u"FORMAT(1234.5,\"0,000.00\")", "String 1,234.50"},
    {u"FORMAT(1234.5,\"$#,##0.0\") & ''", "String 1234.5"},
    {u"Fecha+1", "Date 16/02/2024"},
    {u"Fecha-1 < Fecha", "Boolean Verdadero"},
    {u"'abc'", "String abc"},
    {u"''", "String "},
    {u"X", "String Contabilidad"},
    {u"Salario Base * 2", "Double 3000"},
    {u"año + 1", "Double 2025"},
    {u"@A + @B", "Double 7"},
    {u"@Salario Base * 2", "Double 3000"},
    {u"@A\r\n+\r@B", "Double 7"},
    {u"'@'", "String @"},
    {u"A\r\n+\rB", "Double 7"},
    {u"", "Integer 0"},
    {u"1,2", "Double 1"},  // two values are left; the first counts
    {u"MEDIO(X,1,5)", "String Conta"},
    {u"MAX(A,B)*2", "Double 10"},
    {u"IIF(A=2,'si','no')", "String si"},
    {u"IIF( 1 = 1 , 10 , 1 / 0 )", "Double 10"},
    {u"ComodinLike & CDERECHA", "String %1"},
};

TEST(EvaluatePosfijo, GivesTheValue) {
  FormulaHost host;
  for (const Case& row : kCases)
    EXPECT_EQ(host.Evaluate(row.formula), row.value) << ToUtf8(row.formula);
  // Again, by the plans that were kept.
  for (const Case& row : kCases)
    EXPECT_EQ(host.Evaluate(row.formula), row.value) << ToUtf8(row.formula);
}

TEST(EvaluatePosfijo, EvaluatesPostfixCollections) {
  struct PostfixCase {
    std::vector<Variant> items;
    const char* value;
  };
  const PostfixCase cases[] = {
      {{u"1", u"2"}, "Double 1"},
      {{}, "Integer 0"},
      {{u"7", u"1", u"7", u"BETWEEN"}, "Boolean Verdadero"},
      {{u"1", u"1", u"7", u"BETWEEN"}, "Boolean Verdadero"},
      {{u"+"}, "Empty "},
      {{u"1,234.5"}, "Double 1234.5"},
      {{u"a", u"B", u"and"}, "Long 0"},
      {{2.5, std::int16_t{2}, u"*"}, "Double 5"},
      {{u"\"hola\""}, "String hola"},
      {{u"no se"}, "String no se"},
      {{true, u"VERDADERO", u"AND"}, "Boolean Verdadero"},
      {{Variant::Null(), u"x", u"&"}, "String Contabilidad"},
      {{u"x", u"1", u"3", u"medio("}, "String Con"},
  };
  for (const PostfixCase& row : cases) {
    FormulaHost host;
    auto items = Make<Collection>();
    for (const Variant& item : row.items) items->Add(item);
    std::string shown;
    try {
      Variant result;
      host.evaluator->EvaluatePosfijo(items, result);
      shown = FormulaHost::Show(result);
    } catch (const Error& error) {
      shown = "Error " + std::to_string(error.number);
    }
    EXPECT_EQ(shown, row.value);
    EXPECT_EQ(items->Count(), static_cast<std::int32_t>(row.items.size()));
  }
}

TEST(EvaluatePosfijo, RaisesForWhatIsNoFormula) {
  FormulaHost host;
  Variant result = u"antes";
  const Variant inputs[] = {Variant::Null(), Variant(Ref<Object>()), Variant(Make<Campos>())};
  const std::int32_t numbers[] = {13, 91, 13};
  for (std::size_t i = 0; i < 3; ++i) {
    try {
      host.evaluator->EvaluatePosfijo(inputs[i], result);
      ADD_FAILURE() << i;
    } catch (const Error& error) {
      EXPECT_EQ(error.number, numbers[i]);
    }
    EXPECT_EQ(FormulaHost::Show(result), "String antes");
  }
}

TEST(EvaluatePosfijo, KeepsPlansRightWhenTablesChange) {
  FormulaHost host;
  EXPECT_EQ(host.Evaluate(u"A + Nueva"), "1 - Variable no definida Nueva\r\n");
  host.evaluator->AddVble(u"Nueva", 10.0, u"", kNumeric);
  EXPECT_EQ(host.Evaluate(u"A + Nueva"), "Double 12");
  host.evaluator->RemoveVble(u"Nueva");
  host.evaluator->AddConstant(u"Nueva", 20.0, u"", kNumeric);
  EXPECT_EQ(host.Evaluate(u"A + Nueva"), "Double 22");
  host.evaluator->SetConstante(u"Nueva", 30.0);
  EXPECT_EQ(host.Evaluate(u"A + Nueva"), "Double 32");
  Ref<Campos> locals = Make<Campos>();
  auto local = Make<Campo>(u"a");
  local->LetValue(100.0);
  locals->Add(local);
  EXPECT_EQ(host.Evaluate(u"A + Nueva", &locals), "Double 130");
  EXPECT_EQ(host.Evaluate(u"A + Nueva"), "Double 32");
  host.evaluator->ClearVbles();
  EXPECT_EQ(host.Evaluate(u"A + Nueva"), "1 - Variable no definida A\r\n");
}

TEST(EvaluatePosfijo, WritesTheTrace) {
  FormulaHost host;
  host.Evaluate(u"@A * 3");
  const std::map<std::string, std::string> expected = {
      {"Evaluador/Posfijo/Expresion", "A * 3"},
      {"Evaluador/Posfijo/Posfijo", "A 3 * "},
      {"Evaluador/Posfijo/Resultado", "6"},
      {"Evaluador/Posfijo/ElementosPila", "1"},
  };
  EXPECT_EQ(host.settings->values, expected);
  host.Evaluate(u"'abc' + 1");
  EXPECT_EQ(host.settings->values["Evaluador/Posfijo/Expresion"], "'abc' + 1");
}

TEST(LoadTopePila, Normalises) {
  FormulaHost host;
  Ref<Collection> pila = Make<Collection>();
  for (Variant value :
       std::initializer_list<Variant>{Variant(u"1,234.5"), Variant(u"007"), Variant(u"a\"b\"c"),
                                      Variant(0.1 + 0.2), Variant(std::int16_t{3}), Variant(true),
                                      Variant(Date{2}), Variant::Null(), Variant(Currency{15000})})
    pila->Add(value);
  pila->Add(pila->Item(std::int32_t{1}), u"clave");
  std::string shown;
  while (pila->Count() > 0) shown += FormulaHost::Show(host.evaluator->LoadTopePila(pila)) + "|";
  EXPECT_EQ(shown,
            "Double 1234.5|Currency 1.5|Null|Date 01/01/1900|Boolean Verdadero|Integer 3|"
            "Double 0.3|String abc|String 007|Double 1234.5|");
  EXPECT_TRUE(host.evaluator->LoadTopePila(pila).Is(Subtype::Empty));
  Ref<Collection> none;
  EXPECT_THROW(host.evaluator->LoadTopePila(none), Error);
}

}  // namespace
}  // namespace tovalin
