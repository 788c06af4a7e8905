#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "evaluator/language.h"
#include "evaluator/operators.h"
#include "tests/evaluator/page_evaluator.h"
#include "tovalin/convert.h"
#include "vocabulary/help.h"

namespace tovalin {
namespace {

Ref<Collection> Record(const Evaluador& evaluador, TextView name) {
  const Ref<Collection> records = evaluador.Vocabulario();
  for (const Variant& item : records->List().Items()) {
    const Ref<Collection> record = item.AsObject().As<Collection>();
    if (record->Item(u"Nombre").AsText() == name) return record;
  }
  ADD_FAILURE() << "no record of " << ToUtf8(name);
  return Make<Collection>();
}

std::string Shown(const Ref<Collection>& record, TextView key) {
  const Variant item = record->Item(Variant(key));
  return item.Is(Subtype::Null) ? "null" : ToUtf8(ToText(item));
}

TEST(VocabularioTest, EveryBuiltInHasItsHelp) {
  std::set<const vocabulary::FunctionHelp*> used;
  for (const BuiltinFunction* function : BuiltinFunctions()) {
    SCOPED_TRACE(ToUtf8(function->word));
    const auto* help = vocabulary::FindFunctionHelp(function->word);
    ASSERT_TRUE(help);
    used.insert(help);
    EXPECT_FALSE(help->text.empty());
    for (std::size_t i = 0; i < help->parameters.size(); ++i)
      EXPECT_EQ(help->parameters[i].empty(), i >= function->parameters.count) << i;
  }
  EXPECT_EQ(used.size(), vocabulary::FunctionHelps().size());
  for (const Operator& row : Operators()) {
    SCOPED_TRACE(ToUtf8(row.literal));
    const auto* help = vocabulary::FindOperatorHelp(row.literal);
    ASSERT_TRUE(help);
    for (std::size_t i = 0; i < help->parameters.size(); ++i)
      EXPECT_EQ(help->parameters[i].empty(), i >= row.operands) << i;
  }
  EXPECT_EQ(Operators().size(), vocabulary::OperatorHelps().size());
  const auto evaluador = PageEvaluator();
  evaluador->ClearConstants();
  const Ref<Campos> constants = evaluador->Constantes();
  for (const Ref<Campo>& constant : *constants)
    EXPECT_TRUE(vocabulary::FindConstantHelp(constant->Name())) << ToUtf8(constant->Name());
}

TEST(VocabularioTest, EveryExampleNamesItsEntryAndGivesItsValue) {
  const auto evaluador = PageEvaluator();
  evaluador->ClearConstants();
  const Ref<Collection> records = evaluador->Vocabulario();
  EXPECT_EQ(records->Count(), 19 + 48 + 6 + 10 + 1);
  for (const Variant& item : records->List().Items()) {
    const Ref<Collection> record = item.AsObject().As<Collection>();
    if (Shown(record, u"Clase") == "variable") continue;
    const std::string formula = Shown(record, u"Ejemplo");
    SCOPED_TRACE(formula);
    EXPECT_NE(formula.find(Shown(record, u"Nombre")), std::string::npos);
    Variant value;
    evaluador->EvaluatePosfijo(FromUtf8(formula), value);
    EXPECT_EQ(evaluador->LastError(), Text());
    const std::string wanted = Shown(record, u"ValorEjemplo");
    if (Shown(record, u"Clase") == "constante" && wanted.empty()) continue;  // the machine's
    EXPECT_EQ(ToUtf8(ToText(value)), wanted);
  }
}

// What the tables hold now, not what they held at first.
TEST(VocabularioTest, ShowsWhatTheHostAddedAndChanged) {
  const auto evaluador = PageEvaluator();
  evaluador->AddFunction(u"TARIFA(", u"TARIFA", u"Tarifa de un cargo ", u"TARIFA( Cargo,Mes ) ");
  evaluador->AddFunction(u"NADA(", u"NADA", u"", u"");
  evaluador->AddVble(u"Salario Base", 1000.0, u"Salario del mes", kNumeric);
  evaluador->AddConstant(u"IVA", 0.19, u"Impuesto", kNumeric);
  evaluador->Operadores()->Find(u"AND")->LetValue(std::int16_t{1});
  auto modulo = Make<Campo>(u"MOD");
  modulo->LetValue(std::int16_t{4});
  modulo->LetDescription(u"El resto");
  evaluador->Operadores()->Add(modulo);
  evaluador->Functions()->Find(u"IIF(")->LetDescription(u"Escoge");

  struct Case {
    TextView name;
    TextView key;
    std::string shown;
  };
  const Case cases[] = {
      {u"TARIFA", u"Clase", "funcion"},
      {u"TARIFA", u"Firma", "TARIFA( Cargo,Mes )"},
      {u"TARIFA", u"Texto", "Tarifa de un cargo"},
      {u"TARIFA", u"Resultado", "cualquiera"},
      {u"NADA", u"Firma", "NADA( )"},
      {u"SIN", u"Firma", "SIN( Expr )"},
      {u"IIF", u"Texto", "Escoge"},
      {u"IIF", u"Firma", "IIF( Condicion , ExprSi , ExprNo )"},
      {u"IIF", u"Prioridad", "null"},
      {u"MEDIO", u"Firma", "MEDIO( Expr , Inicio , Caracteres )"},
      {u"DATE", u"Firma", "DATE( )"},
      {u"DATE", u"Resultado", "fecha"},
      {u"AND", u"Prioridad", "1"},
      {u"OR", u"Prioridad", "3"},
      {u"MOD", u"Prioridad", "4"},
      {u"MOD", u"Firma", "A MOD B"},
      {u"MOD", u"Texto", "El resto"},
      {u"Salario Base", u"Clase", "variable"},
      {u"Salario Base", u"Resultado", "numero"},
      {u"Salario Base", u"Valor", "1000"},
      {u"IVA", u"Clase", "constante"},
      {u"IVA", u"Valor", "0.19"},
      {u"IVA", u"Ejemplo", ""},
  };
  for (const Case& row : cases)
    EXPECT_EQ(Shown(Record(*evaluador, row.name), row.key), row.shown)
        << ToUtf8(row.name) << ' ' << ToUtf8(row.key);

  const auto names = [&](TextView function) {
    std::string joined;
    const Ref<Collection> parameters =
        Record(*evaluador, function)->Item(u"Parametros").AsObject().As<Collection>();
    for (const Variant& item : parameters->List().Items()) {
      const Ref<Collection> parameter = item.AsObject().As<Collection>();
      joined += Shown(parameter, u"Nombre") + ":" + Shown(parameter, u"Tipo") + ' ';
    }
    return joined;
  };
  EXPECT_EQ(names(u"TARIFA"), "Cargo:cualquiera Mes:cualquiera ");
  EXPECT_EQ(names(u"NADA"), "");
  EXPECT_EQ(names(u"DATEADD"), "Intervalo:texto Numero:numero Fecha:fecha ");
  EXPECT_EQ(names(u"BETWEEN"), "V:cualquiera L:cualquiera H:cualquiera ");
}

// A syntax is a host's text: it may be anything.
TEST(VocabularioTest, ReadsAnySyntax) {
  for (const char16_t* syntax :
       {u"(", u")(", u")", u"F(,,)", u"F( (a) , b ", u"()", u",", u"F( A"}) {
    const auto evaluador = PageEvaluator();
    evaluador->AddFunction(u"F(", u"F", u"", syntax);
    EXPECT_EQ(Shown(Record(*evaluador, u"F"), u"Firma"), ToUtf8(Trim(TextView(syntax))));
  }
}

}  // namespace
}  // namespace tovalin
