#include "evaluator/symbols.h"

#include "evaluator/vocabulary.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

constexpr TextView kFunctionExists =
    u"Nombre de variable no valido, existe una funcion definida con dicho nombre";
constexpr TextView kConstantExists =
    u"Nombre de la constante no valido, existe un constante definida con dicho nombre";
constexpr TextView kBadCharacter = u"Nombre de variable no valido, caracter no valido";
constexpr TextView kNumericName = u"Nombre de variable no valido, valor numerico";

bool Contains(const Collection& set, TextView item) {
  return set.List().Find(item) != KeyedList<Variant>::kNotFound;
}

bool AnyCharacterIn(const Collection& set, TextView name) {
  for (std::size_t i = 0; i < name.size(); ++i)
    if (Contains(set, name.substr(i, 1))) return true;
  return false;
}

}  // namespace

Symbols::Symbols()
    : functions(MakeFunctions()),
      variables(Make<Campos>()),
      constants(Make<Campos>()),
      operators(MakeOperators()),
      separators(MakeSeparators()),
      special_characters(MakeSpecialCharacters()) {}

Campo* Symbols::Find(TextView name) const {
  Campo* variable = variables->Find(name);
  return variable ? variable : constants->Find(name);
}

Text Symbols::Complaints(TextView name) const {
  Text complaints;
  const auto complain = [&](TextView message) { complaints.append(message).append(u"\r\n"); };
  if (functions->Find(name)) complain(kFunctionExists);
  if (constants->Find(name)) complain(kConstantExists);
  if (Contains(*separators, name)) complain(kBadCharacter);
  // The name "(" deliberately gets its message twice, from the check above too:
  // hosts show the lines as they come.
  if (ReadNumber(name))
    complain(kNumericName);
  else if (AnyCharacterIn(*special_characters, name))
    complain(kBadCharacter);
  return complaints;
}

void Symbols::Validate(TextView name) const {
  const Text complaints = Complaints(name);
  if (!complaints.empty()) RaiseOwn(u"Evaluador", complaints);
}

}  // namespace tovalin
