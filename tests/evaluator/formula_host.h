#pragma once

#include <map>
#include <string>
#include <vector>

#include "tovalin/convert.h"
#include "tovalin/evaluador.h"

namespace tovalin {

/// Keeps settings in memory, so that tests leave the user's files alone.
class MemorySettings : public SettingsStore {
 public:
  void Save(TextView application, TextView section, TextView key, TextView text) override {
    values[ToUtf8(application) + "/" + ToUtf8(section) + "/" + ToUtf8(key)] = ToUtf8(text);
  }
  Text Get(TextView application, TextView section, TextView key,
           TextView otherwise) const override {
    const auto found = values.find(ToUtf8(application) + "/" + ToUtf8(section) + "/" + ToUtf8(key));
    return found == values.end() ? Text(otherwise) : FromUtf8(found->second);
  }
  std::map<std::string, std::string> values;
};

/// An evaluator with the symbols that the tests' formulas name.
struct FormulaHost {
  FormulaHost() {
    evaluator->UseSettings(settings);
    evaluator->ClearConstants();
    evaluator->AddVble(u"A", 2.0, u"", kNumeric);
    evaluator->AddVble(u"B", 5.0, u"", kNumeric);
    evaluator->AddVble(u"X", u"Contabilidad", u"", kLongText);
    evaluator->AddVble(u"ORDEN", 7.0, u"", kNumeric);
    evaluator->AddVble(u"Año", 2024.0, u"", kNumeric);
    evaluator->AddVble(u"Salario Base", 1500.0, u"", kNumeric);
    evaluator->AddVble(u"Fecha", Date{45337}, u"", kDate);
    evaluator->AddVble(u"Nada", Variant::Null(), u"", kNumeric);
    evaluator->AddVble(u"Vacio", Variant(), u"", kNumeric);
    evaluator->AddVble(u"Codigo", u"007", u"", kLongText);
    evaluator->AddVble(u"Miles", u"1,234.5", u"", kLongText);
  }

  /// "Double 12", "String abc", or "Error 13", or the messages of the check.
  std::string Evaluate(const Text& formula, Ref<Campos>* locals = nullptr) {
    try {
      Variant result;
      evaluator->EvaluatePosfijo(formula, result, locals);
      if (const Text messages = evaluator->LastError(); !messages.empty()) return ToUtf8(messages);
      return Show(result);
    } catch (const Error& error) {
      return "Error " + std::to_string(error.number);
    }
  }

  static std::string Show(const Variant& value) {
    const std::string type = ToUtf8(SubtypeName(value.Kind()));
    return value.Is(Subtype::Null) ? type : type + " " + ToUtf8(ToText(value));
  }

  Variant Value(const Text& formula) {
    Variant result;
    evaluator->EvaluatePosfijo(formula, result);
    return result;
  }

  static std::string Joined(const Ref<Collection>& items, std::string_view separator) {
    std::string joined;
    for (const Variant& item : items->List().Items()) {
      if (!joined.empty()) joined.append(separator);
      joined.append(item.Is(Subtype::Object) ? "<record>" : ToUtf8(ToText(item)));
    }
    return joined;
  }

  Ref<MemorySettings> settings = Make<MemorySettings>();
  Ref<Evaluador> evaluator = Make<Evaluador>();
};

}  // namespace tovalin
