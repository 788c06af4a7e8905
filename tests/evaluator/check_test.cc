#include <gtest/gtest.h>

#include "tests/evaluator/formula_host.h"

namespace tovalin {
namespace {

constexpr const char* kBrackets =
    "Número de parentesis abiertos diferente al número de parentesis cerrados";

struct TokenCase {
  const char16_t* formula;
  const char* tokens;  // joined by "|"
  const char* normalised;
};

const TokenCase kTokenCases[] = {
    {u"'abc'", "\"abc\"", "\"abc\""},
    {u"  A  ", "A", "A"},
    {u"MEDIO(X,1,2)", "MEDIO(|X|,|1|,|2|)", "MEDIO( X , 1 , 2 ) "},
    {u"medio( x , 1 , 2 )", "MEDIO(|x|,|1|,|2|)", "MEDIO( x , 1 , 2 ) "},
    {u"ORDEN + 1", "ORDEN|+|1", "ORDEN + 1 "},
    {u"A and B", "A|AND|B", "A AND B "},
    {u"(A>1)AND(B<2)", "(|A|>|1|)|AND|(|B|<|2|)", "( A > 1 ) AND ( B < 2 ) "},
    {u"(A) IN 'x'", "(|A|)|IN|\"x\"", "( A ) IN \"x\" "},
    {u"'a' IN 'b'", "\"a\"|IN|\"b\"", "\"a\" IN \"b\" "},
    {u"A>=B", "A|>=|B", "A >= B "},
    {u"A<>B", "A|<>|B", "A <> B "},
    {u"3*-2", "3|*-|2", "3 *- 2 "},
    {u"3*-12", "3|*-1|2", "3 *-1 2 "},
    {u"5-1*2", "5|-1*|2", "5 -1* 2 "},
    {u"Salario Base*2", "Salario Base|*|2", "Salario Base * 2 "},
    {u"año+1", "año|+|1", "año + 1 "},
    {u"X & \" a + b \"", "X|&|\" a + b \"", "X & \" a + b \" "},
    {u"X & ' a + b '", "X|&|\"a + b\"", "X & \"a + b\" "},
    {u"'@'", "\"@\"", "\"@\""},
    {u"A +\r\nB", "A|+|B", "A + B "},
    {u"@Salario Base*2", "Salario Base|*|2", "@Salario Base * 2 "},
    {u"@5", "@5", "@5"},
    {u"(\" OR 5\") OR 5", "(|\" OR 5\"|)|OR|5", "( \" OR 5\" ) OR 5 "},
    {u"DATE( )", "DATE(|)", "DATE( ) "},
    {u"DESAJUSTAR(X,'0',0)", "DESAJUSTAR(|X|,|\"0\"|,|0|)", "DESAJUSTAR( X , \"0\" , 0 ) "},
    {u"", "", ""},
};

TEST(CheckInfijo, SplitsAndNormalises) {
  FormulaHost host;
  for (const TokenCase& row : kTokenCases) {
    Text expression = row.formula;
    const Ref<Collection> tokens = host.evaluator->CheckInfijo(expression);
    EXPECT_EQ(ToUtf8(host.evaluator->LastError()), "") << ToUtf8(row.formula);
    EXPECT_EQ(FormulaHost::Joined(tokens, "|"), row.tokens) << ToUtf8(row.formula);
    EXPECT_EQ(ToUtf8(expression), row.normalised) << ToUtf8(row.formula);
  }
}

struct FaultCase {
  const char16_t* formula;
  std::vector<std::string> messages;
};

const FaultCase kFaultCases[] = {
    {u"A + * B", {"Operador duplicado *", "Operador duplicado *"}},
    {u"a and or b", {"Operador duplicado OR", "Operador duplicado OR"}},
    {u"(A", {kBrackets, kBrackets}},
    {u"MEDIO(X,1,2", {kBrackets, kBrackets}},
    {u"A + * B)", {"Operador duplicado *", kBrackets, "Operador duplicado *", kBrackets}},
    {u"A + \"abc", {"Fin de cadena no encontrado", "Falta una expresión"}},
    {u"Q + W", {"Variable no definida Q", "Variable no definida W"}},
    {u"A +", {"Falta una expresión"}},
    {u"MEDIO(", {kBrackets, "Falta una expresión"}},
    {u"3*-1", {"Falta una expresión"}},
    {u"Q +", {"Variable no definida Q", "Falta una expresión"}},
    {u"+ Q", {"Variable no definida Q"}},
    {u"ABS (A)", {"Variable no definida ABS"}},
    {u"'abc + 1", {"Variable no definida 'abc + 1"}},
    {u"\"@Q\"", {"Variable no definida Q"}},
    {u"@Q + 1", {"Variable no definida Q"}},
    {u"A\n+ B", {"Variable no definida A\n"}},
    {u"AND B", {"Variable no definida AND B"}},
    // The trim comes first: a word operator has no blank in front or behind then.
    {u"OR 5", {"Variable no definida OR 5"}},
    {u" OR 5", {"Variable no definida OR 5"}},
    {u"\r\n  OR 5", {"Variable no definida OR 5"}},
    {u"5 OR ", {"Variable no definida 5 OR"}},
    // An "@" begins an operand, or it is a character that no name holds.
    {u"B@A", {"Variable no definida B@A"}},
    {u"A@", {"Variable no definida A@"}},
    {u"@", {"Variable no definida @"}},
    {u"@@A", {"Variable no definida @A"}},
    {u"@ A", {"Variable no definida  A"}},
    {u"@A B", {"Variable no definida A B"}},
    {u"1 + @IN", {"Falta una expresión"}},
    {u"'@in'", {"Falta una expresión"}},
    {u"A + '@MEDIO('", {"Falta una expresión"}},
    {u"A + '@,'", {"Falta una expresión"}},
};

TEST(CheckInfijo, TellsEveryFaultInOrder) {
  FormulaHost host;
  for (const FaultCase& row : kFaultCases) {
    Text expression = row.formula;
    const Ref<Collection> tokens = host.evaluator->CheckInfijo(expression);
    EXPECT_EQ(tokens->Count(), 0) << ToUtf8(row.formula);
    std::string expected;
    for (std::size_t i = 0; i < row.messages.size(); ++i)
      expected += std::to_string(i + 1) + " - " + row.messages[i] + "\r\n";
    EXPECT_EQ(ToUtf8(host.evaluator->LastError()), expected) << ToUtf8(row.formula);
  }
}

// The span of each fault, read back from the text that the host gave.
TEST(Errores, PointIntoTheHostsText) {
  struct Case {
    const char16_t* formula;
    std::int32_t code;
    const char16_t* span;
  };
  const Case cases[] = {
      {u"A +\r\n Quien * 2", 4, u"Quien"}, {u"A \r+ @Quien", 4, u"@Quien"},
      {u"@A + Quien", 4, u"Quien"},        {u"A + * B", 2, u"*"},
      {u"A & \"abc", 1, u"\"abc"},
  };
  FormulaHost host;
  for (const Case& row : cases) {
    Variant result;
    host.evaluator->EvaluatePosfijo(row.formula, result);
    const Ref<Collection> faults = host.evaluator->Errores();
    ASSERT_GT(faults->Count(), 0) << ToUtf8(row.formula);
    const auto fault = faults->Item(std::int32_t{1}).AsObject().As<Collection>();
    EXPECT_EQ(fault->Item(u"Codigo").AsLong(), row.code);
    const auto start = static_cast<std::size_t>(fault->Item(u"Inicio").AsLong() - 1);
    const auto length = static_cast<std::size_t>(fault->Item(u"Largo").AsLong());
    EXPECT_EQ(ToUtf8(Text(row.formula).substr(start, length)), ToUtf8(row.span));
  }
}

TEST(CheckInfijo, PutsAnEmptyTableInPlaceOfNoLocals) {
  FormulaHost host;
  Ref<Campos> locals;
  Text expression = u"A";
  host.evaluator->CheckInfijo(expression, &locals);
  ASSERT_TRUE(locals);
  locals->Add(Make<Campo>(u"Local"));
  expression = u"Local + A";
  EXPECT_EQ(host.evaluator->CheckInfijo(expression, &locals)->Count(), 3);
}

TEST(CheckInfijo, TakesTheHostsDelimiter) {
  FormulaHost host;
  host.evaluator->LetStringDelimiter(u"|");
  Text expression = u"X & |it's|";
  EXPECT_EQ(FormulaHost::Joined(host.evaluator->CheckInfijo(expression), " "), "X & \"it's\"");
}

struct PostfixCase {
  const char16_t* formula;
  const char* postfix;
};

const PostfixCase kPostfixCases[] = {
    {u"2*3+4", "2 3 * 4 + "},
    {u"2-3-4", "2 3 - 4 - "},
    {u"2^3^2", "2 3 ^ 2 ^ "},
    {u"2+3*4^2", "2 3 4 2 ^ * + "},
    {u"A>1 AND B<2", "A 1 B AND > 2 < "},
    {u"(A>1) AND (B<2)", "A 1 > B 2 < AND "},
    {u"MEDIO(X,1,2)", "X 1 2 MEDIO( "},
    {u"MAX(A+1,MIN(B*2,3))+1", "A 1 + B 2 * 3 MIN( MAX( 1 + "},
    {u"X & ComodinLike", "X \"%\" & "},
    {u"A = VERDADERO", "A VERDADERO = "},
    {u"NOW( )", "NOW( "},
    {u"", ""},
};

TEST(Posfijo, OrdersByPriority) {
  FormulaHost host;
  for (const PostfixCase& row : kPostfixCases) {
    Text expression = row.formula;
    const Ref<Collection> tokens = host.evaluator->CheckInfijo(expression);
    Ref<Collection> items;
    EXPECT_EQ(ToUtf8(host.evaluator->Posfijo(tokens, items)), row.postfix) << ToUtf8(row.formula);
    Variant direct;
    Variant evaluated;
    host.evaluator->EvaluatePosfijo(row.formula, direct);
    host.evaluator->EvaluatePosfijo(items, evaluated);
    EXPECT_EQ(FormulaHost::Show(direct).substr(0, 20), FormulaHost::Show(evaluated).substr(0, 20));
  }
}

TEST(Posfijo, BindsConstantsByValue) {
  FormulaHost host;
  host.evaluator->AddConstant(u"Tarifa", 0.19, u"", kNumeric);
  Text expression = u"A * Tarifa";
  Ref<Collection> items;
  host.evaluator->Posfijo(host.evaluator->CheckInfijo(expression), items);
  host.evaluator->SetConstante(u"Tarifa", 0.5);
  Variant result;
  host.evaluator->EvaluatePosfijo(items, result);
  EXPECT_EQ(FormulaHost::Show(result), "Double 0.38");
  EXPECT_EQ(host.Evaluate(u"A * Tarifa"), "Double 1");
}

TEST(Posfijo, TakesAnyCollectionOfAHost) {
  FormulaHost host;
  auto tokens = Make<Collection>();
  for (const char16_t* token : {u")", u"(", u"FOO(", u"+", u"1", u",", u"2"}) tokens->Add(token);
  tokens->Add(5.0);
  Ref<Collection> items;
  EXPECT_EQ(ToUtf8(host.evaluator->Posfijo(tokens, items)), "1 + 2 5 FOO( ");
  EXPECT_EQ(ToUtf8(host.evaluator->Posfijo(nullptr, items)), "");
}

TEST(Posfijo, KeepsTokensThatAreNoTextAsTheyAre) {
  FormulaHost host;
  auto tokens = Make<Collection>();
  for (const Variant& token : {Variant(0.1 + 0.2), Variant(u"*"), Variant(std::int16_t{10}),
                               Variant(u"-"), Variant(u"@A"), Variant(u"+"), Variant(Date{2})})
    tokens->Add(token);
  Ref<Collection> items;
  EXPECT_EQ(ToUtf8(host.evaluator->Posfijo(tokens, items)), "0.3 10 * A - 01/01/1900 + ");
  EXPECT_EQ(items->Item(std::int32_t{1}).AsDouble(), 0.1 + 0.2);
  EXPECT_EQ(items->Item(std::int32_t{2}).AsInteger(), 10);
  Variant result;
  host.evaluator->EvaluatePosfijo(items, result);
  EXPECT_EQ(result.AsDate().days, (0.1 + 0.2) * 10 - 2 + 2);
}

TEST(Posfijo, MakesTheCollectionThatALateBoundCallLeavesOut) {
  FormulaHost host;
  auto tokens = Make<Collection>();
  tokens->Add(u"A");
  Variant text;
  std::vector<Variant> arguments{Variant(tokens)};
  EXPECT_FALSE(host.evaluator->Invoke(u"Posfijo", MemberKind::Get, arguments, text));
  EXPECT_EQ(ToText(text), u"A ");
  arguments.emplace_back();  // an empty variable of the host
  EXPECT_FALSE(host.evaluator->Invoke(u"Posfijo", MemberKind::Get, arguments, text));
  EXPECT_EQ(arguments[1].AsObject().As<Collection>()->Count(), 1);
}

}  // namespace
}  // namespace tovalin
