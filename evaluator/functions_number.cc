#include <cmath>

#include "evaluator/language.h"
#include "evaluator/rounding.h"
#include "formatting/monto_escrito.h"
#include "frame/format/patterns.h"
#include "frame/value/arithmetic.h"
#include "tovalin/convert.h"
#include "tovalin/error.h"

namespace tovalin::functions {
namespace {

double FiniteArgument(const Variant& value) { return evaluator::Finite(ToDouble(value)); }

/// 1 / value. Unlike the operator "/" it raises 11 for zero.
double Reciprocal(double value) {
  if (value == 0) Raise(Failure::DivisionByZero);
  return evaluator::Finite(1 / value);
}

Variant AjusteMedio(Arguments arguments, const FunctionContext&) {
  return evaluator::AjusteMedio(ToDouble(arguments[0]), ToDouble(arguments[1]),
                                ToLong(arguments[2]));
}

Variant Redondear(Arguments arguments, const FunctionContext&) {
  return evaluator::Redondear(ToDouble(arguments[0]), ToLong(arguments[1]));
}

Variant Sine(Arguments arguments, const FunctionContext&) {
  return std::sin(FiniteArgument(arguments[0]));
}

Variant Cosine(Arguments arguments, const FunctionContext&) {
  return std::cos(FiniteArgument(arguments[0]));
}

Variant Tangent(Arguments arguments, const FunctionContext&) {
  return std::tan(FiniteArgument(arguments[0]));
}

Variant Cotangent(Arguments arguments, const FunctionContext&) {
  return Reciprocal(std::tan(FiniteArgument(arguments[0])));
}

// Secant and cosecant are deliberately crossed: the formulas that users have
// kept were written with SEC as the reciprocal of the sine.
Variant Secant(Arguments arguments, const FunctionContext&) {
  return Reciprocal(std::sin(FiniteArgument(arguments[0])));
}

Variant Cosecant(Arguments arguments, const FunctionContext&) {
  return Reciprocal(std::cos(FiniteArgument(arguments[0])));
}

Variant AbsoluteValue(Arguments arguments, const FunctionContext&) { return Abs(arguments[0]); }

Variant Val(Arguments arguments, const FunctionContext&) {
  return LeadingNumber(TextArgument(arguments[0]));
}

Variant IsNumber(Arguments arguments, const FunctionContext&) { return IsNumeric(arguments[0]); }

Variant AmountInWords(Arguments arguments, const FunctionContext&) {
  return MontoEscrito(ToDouble(arguments[0]));
}

Variant FormatValue(Arguments arguments, const FunctionContext&) {
  return Format(arguments[0], TextArgument(arguments[1]));
}

}  // namespace

std::span<const BuiltinFunction> OfNumbers() {
  using Row = BuiltinFunction;
  using Type = OperandType;
  static constexpr BuiltinFunction kRows[] = {
      Row(8, u"ABS(", u"ABS", u"Devuelve el valor absoluto de un numero", u"ABS( Expr ) ",
          {{u"Expr", Type::Number}}, Type::Number, AbsoluteValue, NullArgument::None,
          NumericCode::Abs),
      Row(11, u"VAL(", u"VAL",
          u"Devuelve los números contenidos en una cadena como un valor numérico del "
          u"tipo adecuado",
          u"VAL( Expr ) ", {{u"Expr", Type::Text}}, Type::Number, Val, NullArgument::First),
      Row(12, u"ESNUMERO(", u"ESNUMERO", u"Devuelve verdadero si el argumento es un numero",
          u"ESNUMERO( Expr ) ", {{u"Expr"}}, Type::Logical, IsNumber),
      Row(13, u"IsNumeric(", u"IsNumeric", u"Devuelve verdadero si el argumento es un numero",
          u"IsNumeric( Expr ) ", {{u"Expr"}}, Type::Logical, IsNumber),
      Row(39, u"AjusteMedio(", u"AjusteMedio", u"Ajuste medio",
          u"AjusteMedio( Valor , Factor , Decimales ) ",
          {{u"Valor", Type::Number}, {u"Factor", Type::Number}, {u"Decimales", Type::Number}},
          Type::Number, AjusteMedio, NullArgument::None, NumericCode::Adjust),
      Row(40, u"Redondear(", u"Redondear", u"Redondear", u"Redondear( Valor , Decimales ) ",
          {{u"Valor", Type::Number}, {u"Decimales", Type::Number}}, Type::Number, Redondear,
          NullArgument::None, NumericCode::Round),
      Row(46, u"MontoEscrito(", u"MontoEscrito", u"Devuelve el monto escrito de un numero",
          u"MontoEscrito( Valor )", {{u"Valor", Type::Number}}, Type::Text, AmountInWords),
      Row(17, u"FORMAT(", u"FORMAT", u"Devuelve una expresion formateada",
          u"FORMAT( Expresion , Formato) ", {{u"Expresion"}, {u"Formato", Type::Text}}, Type::Text,
          FormatValue),
      // Not in the function table: a host that wants these adds their names.
      Row(0, u"SIN(", u"SIN", u"", u"SIN( Expr ) ", {{u"Expr", Type::Number}}, Type::Number, Sine),
      Row(0, u"COS(", u"COS", u"", u"COS( Expr ) ", {{u"Expr", Type::Number}}, Type::Number,
          Cosine),
      Row(0, u"TAN(", u"TAN", u"", u"TAN( Expr ) ", {{u"Expr", Type::Number}}, Type::Number,
          Tangent),
      Row(0, u"CTN(", u"CTN", u"", u"CTN( Expr ) ", {{u"Expr", Type::Number}}, Type::Number,
          Cotangent),
      Row(0, u"SEC(", u"SEC", u"", u"SEC( Expr ) ", {{u"Expr", Type::Number}}, Type::Number,
          Secant),
      Row(0, u"CSC(", u"CSC", u"", u"CSC( Expr ) ", {{u"Expr", Type::Number}}, Type::Number,
          Cosecant),
  };
  return kRows;
}

}  // namespace tovalin::functions
