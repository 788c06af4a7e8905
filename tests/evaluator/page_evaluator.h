#pragma once

#include "tovalin/evaluador.h"

namespace tovalin {

/// Keeps the traces of the examples out of the user's settings.
class NoSettings : public SettingsStore {
 public:
  void Save(TextView, TextView, TextView, TextView) override {}
  Text Get(TextView, TextView, TextView, TextView otherwise) const override {
    return Text(otherwise);
  }
};

/// An evaluator as the examples of functions want it: the clock at 5 February 2024, 14:30:15, the
/// variable `Vacio`, the trigonometric names, and a host that answers ISNULL(.
inline Ref<Evaluador> PageEvaluator() {
  auto evaluador = Make<Evaluador>();
  evaluador->UseClock([] { return Date{45327.6043402778}; });
  evaluador->UseSettings(Make<NoSettings>());
  evaluador->AddVble(u"Vacio", Variant::Null(), u"", kNumeric);
  for (const char16_t* name : {u"SIN", u"COS", u"TAN", u"CTN", u"SEC", u"CSC"})
    evaluador->AddFunction(Text(name) + u"(", name, u"", u"");
  Evaluador* host = evaluador.get();
  host->Evaluate.Attach([host](const Text& Macro, Variant& Result, Ref<Collection>& rPila) {
    if (EqualFolded(Macro, u"ISNULL(")) Result = host->LoadTopePila(rPila).Is(Subtype::Null);
  });
  return evaluador;
}

}  // namespace tovalin
