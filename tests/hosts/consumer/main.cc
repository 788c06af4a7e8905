// A host that has nothing but the public headers. It ends with 0 when a formula
// with a function of its own, a late-bound call and a raised error, which crosses
// the border of the library, all give what they should.

#include <tovalin/tovalin.h>

#include <cstdio>

using namespace tovalin;

namespace {

bool ComputesWithAHostFunction() {
  auto evaluador = Make<Evaluador>();
  evaluador->AddVble(u"Salario", 2500000.0, u"Salario del mes", kNumeric);
  evaluador->AddFunction(u"DOBLE(", u"DOBLE", u"El doble", u"DOBLE( Expr ) ");
  evaluador->Evaluate.Attach([&](const Text&, Variant& result, Ref<Collection>& pila) {
    result = 2 * ToDouble(evaluador->LoadTopePila(pila));
  });
  Variant value;
  evaluador->EvaluatePosfijo(u"DOBLE(Salario) * 0.04 & \" pesos\"", value);
  return ToText(value) == u"200000 pesos";
}

bool CallsByName() {
  Ref<Object> monto = CreateObject(u"Tovalin.LibMonto");
  Variant arguments[] = {1001.0};
  Variant words;
  auto error = monto->Invoke(u"MontoEscrito", MemberKind::Method, arguments, words);
  return !error && ToText(words) == u"un mil un";
}

bool CatchesARaisedError() {
  auto evaluador = Make<Evaluador>();
  Variant value;
  try {
    evaluador->EvaluatePosfijo(u"'abc' * 2", value);
  } catch (const Error& error) {
    return error.number == 13;
  }
  return false;
}

}  // namespace

int main() {
  const bool results[] = {ComputesWithAHostFunction(), CallsByName(), CatchesARaisedError()};
  for (bool result : results) std::puts(result ? "ok" : "failed");
  return results[0] && results[1] && results[2] ? 0 : 1;
}
