#include "evaluator/language.h"
#include "evaluator/text_operations.h"
#include "frame/value/comparison.h"
#include "tovalin/convert.h"

namespace tovalin::functions {
namespace {

Variant ValueIfNull(Arguments arguments, const FunctionContext&) {
  return evaluator::nvl(arguments[0], arguments[1]);
}

Variant Smaller(Arguments arguments, const FunctionContext&) {
  return Less(arguments[0], arguments[1]) ? arguments[0] : arguments[1];
}

Variant Larger(Arguments arguments, const FunctionContext&) {
  return Greater(arguments[0], arguments[1]) ? arguments[0] : arguments[1];
}

// Both branches were computed before; a Null condition is not true.
Variant Choose(Arguments arguments, const FunctionContext&) {
  const Variant& condition = arguments[0];
  return !condition.Is(Subtype::Null) && ToBoolean(condition) ? arguments[1] : arguments[2];
}

}  // namespace

std::span<const BuiltinFunction> OfLogic() {
  using Row = BuiltinFunction;
  using Type = OperandType;
  static constexpr BuiltinFunction kRows[] = {
      Row(24, u"MAX(", u"MAX", u"Devuelve el máximo entre los dos números",
          u"MAX( Expr1 , Expr2 ) ", {{u"Expr1"}, {u"Expr2"}}, Type::Any, Larger, NullArgument::None,
          NumericCode::Max),
      Row(25, u"MIN(", u"MIN", u"Devuelve el mínimo entre los dos números",
          u"MIN( Expr1 , Expr2 ) ", {{u"Expr1"}, {u"Expr2"}}, Type::Any, Smaller,
          NullArgument::None, NumericCode::Min),
      Row(26, u"IIF(", u"IIF", u"", u"IIF( Condicion , ExprSi , ExprNo ) ",
          {{u"Condicion", Type::Logical}, {u"ExprSi"}, {u"ExprNo"}}, Type::Any, Choose,
          NullArgument::None, NumericCode::Choose),
      // Deliberately not computed: ISNULL( belongs to the hosts, whose own answer would
      // be lost otherwise.
      Row(30, u"ISNULL(", u"ISNULL", u"Devuelve un valor booleano si la expresion es nula",
          u"ISNULL( Expr ) ", {{u"Expr"}}, Type::Logical, nullptr),
      Row(31, u"NVL(", u"NVL", u"Devuelve Value si la expresion es nula", u"NVL( Expr , Value) ",
          {{u"Expr"}, {u"Value"}}, Type::Any, ValueIfNull),
  };
  return kRows;
}

}  // namespace tovalin::functions
