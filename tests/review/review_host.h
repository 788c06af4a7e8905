#pragma once

#include <string>
#include <vector>

#include "tests/evaluator/formula_host.h"

namespace tovalin {

/// What Revisar found at one place, as tests compare it.
struct FoundPlace {
  std::string severity;
  std::string code;
  int start = 0;
  int length = 0;
  std::string message;
  std::string suggestion;

  std::string Place() const {
    return severity + " " + code + " " + std::to_string(start) + " " + std::to_string(length);
  }
};

/// An evaluator with the symbols of the cases, and a host that answers ISNULL(.
struct ReviewHost : FormulaHost {
  ReviewHost() {
    evaluator->UseClock([] { return Date{45337.5}; });  // 15 February 2024 at noon
    const auto add = [this](const char16_t* name, Variant value, std::int32_t type) {
      evaluator->AddVble(name, value, u"", type);
    };
    add(u"Salario", 2500000.0, kDouble);
    add(u"Dias", 30.0, kDouble);
    add(u"Edad", 25.0, kDouble);
    add(u"C", 3.0, kDouble);
    add(u"Cargo", u"Gerente", kLongText);
    add(u"Nombre", u"Ana Ruiz", kLongText);
    add(u"Activo", true, kLogical);
    add(u"Ingreso", Date{45337}, kDate);  // 15 February 2024
    evaluator->Evaluate.Attach([this](const Text& Macro, Variant& Result, Ref<Collection>& rPila) {
      if (EqualFolded(Macro, u"ISNULL(")) Result = evaluator->LoadTopePila(rPila).Is(Subtype::Null);
    });
  }

  std::vector<FoundPlace> Review(const Text& formula, Ref<Campos>* locals = nullptr) const {
    std::vector<FoundPlace> found;
    const Ref<Collection> records = evaluator->Revisar(formula, locals);
    for (const Variant& item : records->List().Items()) {
      const Ref<Collection> record = item.AsObject().As<Collection>();
      const auto text = [&](const char16_t* key) { return ToUtf8(ToText(record->Item(key))); };
      found.push_back({text(u"Clase"), text(u"Codigo"), ToLong(record->Item(u"Inicio")),
                       ToLong(record->Item(u"Largo")), text(u"Mensaje"), text(u"Sugerencia")});
    }
    return found;
  }

  /// The codes and places, notes left out, one a line.
  std::string Told(const Text& formula) const {
    std::string told;
    for (const FoundPlace& place : Review(formula))
      if (place.severity != "nota") told.append(place.Place()).append("\n");
    return told;
  }
};

}  // namespace tovalin
