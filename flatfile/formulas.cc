#include "flatfile/formulas.h"

#include <algorithm>

#include "flatfile/problem.h"
#include "tovalin/convert.h"

namespace tovalin::flat {

Formulas::Formulas(Ref<Evaluador> evaluator, std::span<const Text> columns,
                   const Campos& parameters)
    : evaluator_(evaluator ? std::move(evaluator) : Make<Evaluador>()),
      names_(Make<Campos>()),
      is_used_(columns.size()) {
  const auto add = [this](const Text& name, const Variant& value) {
    auto symbol = Make<Campo>(name);
    symbol->LetDataType(kNumeric);
    symbol->LetValue(value);
    if (!names_->Exists(name)) names_->Add(symbol);
    return symbol;
  };
  for (const Text& column : columns) columns_.push_back(add(column, Variant()));
  for (const Ref<Campo>& parameter : parameters.List().Items())
    add(parameter->Name(), parameter->Value());
}

std::size_t Formulas::Add(const Text& formula, const std::string& place) {
  Ref<Formula> prepared = evaluator_->Preparar(formula, &names_);
  const Ref<Collection> faults = prepared->Errores();
  if (faults->Count() > 0) {
    const Ref<Collection> fault = faults->Item(std::int32_t{1}).AsObject().As<Collection>();
    RaiseFault(place,
               "fórmula " + Quoted(formula) + ": " + ToUtf8(ToText(fault->Item(u"Mensaje"))));
  }
  const Ref<Collection> used = prepared->Variables();
  for (std::size_t i = 0; i < columns_.size(); ++i)
    if (used->List().Find(columns_[i]->Name()) != KeyedList<Variant>::kNotFound) is_used_[i] = true;
  formulas_.push_back(std::move(prepared));
  return formulas_.size() - 1;
}

void Formulas::SetRow(std::span<const Variant> values) {
  for (std::size_t i = 0; i < columns_.size(); ++i)
    if (is_used_[i]) columns_[i]->LetValue(i < values.size() ? values[i] : Variant());
}

Variant Formulas::Evaluate(std::size_t formula) {
  Variant result;
  formulas_[formula]->Evaluar(result);
  return result;
}

}  // namespace tovalin::flat
