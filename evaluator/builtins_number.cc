#include <cmath>

#include "evaluator/builtin_arguments.h"
#include "evaluator/builtin_families.h"
#include "evaluator/number_helpers.h"
#include "formatting/words.h"
#include "frame/arithmetic.h"
#include "frame/patterns.h"
#include "tovalin/convert.h"
#include "tovalin/error.h"

namespace tovalin::builtins {
namespace {

double FiniteArgument(const Variant& value) { return evaluator::Finite(ToDouble(value)); }

/// 1 / value. Unlike the operator "/" it raises 11 for zero.
double Reciprocal(double value) {
  if (value == 0) Raise(Failure::DivisionByZero);
  return evaluator::Finite(1 / value);
}

}  // namespace

Variant AjusteMedio(Arguments arguments, const BuiltinContext&) {
  return evaluator::AjusteMedio(ToDouble(arguments[0]), ToDouble(arguments[1]),
                                ToLong(arguments[2]));
}

Variant Redondear(Arguments arguments, const BuiltinContext&) {
  return evaluator::Redondear(ToDouble(arguments[0]), ToLong(arguments[1]));
}

Variant Sine(Arguments arguments, const BuiltinContext&) {
  return std::sin(FiniteArgument(arguments[0]));
}

Variant Cosine(Arguments arguments, const BuiltinContext&) {
  return std::cos(FiniteArgument(arguments[0]));
}

Variant Tangent(Arguments arguments, const BuiltinContext&) {
  return std::tan(FiniteArgument(arguments[0]));
}

Variant Cotangent(Arguments arguments, const BuiltinContext&) {
  return Reciprocal(std::tan(FiniteArgument(arguments[0])));
}

// Secant and cosecant are deliberately crossed: the formulas that users have
// kept were written with SEC as the reciprocal of the sine.
Variant Secant(Arguments arguments, const BuiltinContext&) {
  return Reciprocal(std::sin(FiniteArgument(arguments[0])));
}

Variant Cosecant(Arguments arguments, const BuiltinContext&) {
  return Reciprocal(std::cos(FiniteArgument(arguments[0])));
}

Variant AbsoluteValue(Arguments arguments, const BuiltinContext&) { return Abs(arguments[0]); }

Variant Val(Arguments arguments, const BuiltinContext&) {
  return LeadingNumber(TextArgument(arguments[0]));
}

Variant IsNumber(Arguments arguments, const BuiltinContext&) { return IsNumeric(arguments[0]); }

Variant AmountInWords(Arguments arguments, const BuiltinContext&) {
  return MontoEscrito(ToDouble(arguments[0]));
}

Variant FormatValue(Arguments arguments, const BuiltinContext&) {
  return Format(arguments[0], TextArgument(arguments[1]));
}

}  // namespace tovalin::builtins
