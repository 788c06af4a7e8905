#include "evaluator/builtin_families.h"
#include "evaluator/text_helpers.h"
#include "frame/comparison.h"
#include "tovalin/convert.h"

namespace tovalin::builtins {

Variant IsNull(Arguments arguments, const BuiltinContext&) {
  return arguments[0].Is(Subtype::Null);
}

Variant ValueIfNull(Arguments arguments, const BuiltinContext&) {
  return evaluator::nvl(arguments[0], arguments[1]);
}

Variant Smaller(Arguments arguments, const BuiltinContext&) {
  return Less(arguments[0], arguments[1]) ? arguments[0] : arguments[1];
}

Variant Larger(Arguments arguments, const BuiltinContext&) {
  return Greater(arguments[0], arguments[1]) ? arguments[0] : arguments[1];
}

// Both branches were computed before; a Null condition is not true.
Variant Choose(Arguments arguments, const BuiltinContext&) {
  const Variant& condition = arguments[0];
  return !condition.Is(Subtype::Null) && ToBoolean(condition) ? arguments[1] : arguments[2];
}

}  // namespace tovalin::builtins
