#include "evaluator/calculation.h"
#include "evaluator/rounding.h"
#include "evaluator/text_operations.h"
#include "formatting/dias360.h"
#include "formatting/monto_escrito.h"
#include "formatting/word_extraction.h"
#include "frame/object/error_translation.h"
#include "tovalin/convert.h"

// The members of Evaluador that evaluate nothing: symbols, the names that a formula
// holds, and functions of texts and numbers.

namespace tovalin {
namespace {

void Replace(Symbols& symbols, Ref<Campos>& table, const Ref<Campos>& replacement) {
  if (!replacement) Raise(Failure::ObjectNotSet);
  symbols.replacements += 1 + table->Version() + table->ValuesVersion();
  table = replacement;
}

Campo& Existing(const Campos& table, const Text& name) {
  Campo* record = table.Find(name);
  if (!record) Raise(Failure::InvalidArgument);
  return *record;
}

void SetIfFound(const Campos& table, const Text& name, const Variant& value) {
  if (Campo* record = table.Find(name)) record->LetValue(value);
}

// The names of a formula that `table` holds, in order of first appearance.
Ref<Collection> NamesIn(const TokenList& list, const Campos& table) {
  auto names = Make<Collection>();
  for (const Token& token : list.tokens) {
    if (token.kind != TokenKind::Name) continue;
    const Campo* record = table.Find(list.NameOf(token));
    if (!record || names->List().Find(record->Name()) != KeyedList<Variant>::kNotFound) continue;
    const Variant name(record->Name());
    names->Add(name, name);
  }
  return names;
}

}  // namespace

Ref<Campos> Evaluador::Functions() const { return core_->symbols.functions; }
Ref<Campos> Evaluador::Variables() const { return core_->symbols.variables; }
Ref<Campos> Evaluador::Constantes() const { return core_->symbols.constants; }
Ref<Campos> Evaluador::Operadores() const { return core_->symbols.operators; }
Ref<Collection> Evaluador::Separadores() const { return core_->symbols.separators; }
Ref<Collection> Evaluador::CaracteresEspeciales() const {
  return core_->symbols.special_characters;
}

void Evaluador::SetFunctions(const Ref<Campos>& NewValue) {
  Replace(core_->symbols, core_->symbols.functions, NewValue);
}
void Evaluador::SetVariables(const Ref<Campos>& NewValue) {
  Replace(core_->symbols, core_->symbols.variables, NewValue);
}
void Evaluador::SetConstantes(const Ref<Campos>& NewValue) {
  Replace(core_->symbols, core_->symbols.constants, NewValue);
}

bool Evaluador::ExistVariable(const Text& Name) const {
  return core_->symbols.Find(Name) != nullptr;
}
bool Evaluador::Existconstante(const Text& Name) const { return ExistVariable(Name); }

Variant Evaluador::GetVariable(const Text& Name, const Variant& Default) const {
  const Campo* record = core_->symbols.Find(Name);
  return record ? record->Value() : Default.Value();
}
Variant Evaluador::GetVariableDB(const Text& Name, const Variant& Default) const {
  return GetVariable(Name, Default);
}

std::int32_t Evaluador::GetDataType(const Text& Name) const {
  const Campo* record = core_->symbols.Find(Name);
  return record ? record->DataType() : std::int32_t{kNumeric};
}

Variant Evaluador::GetConstante(const Text& Name, const Variant& Default) const {
  const Campo* record = core_->symbols.constants->Find(Name);
  return record ? record->Value() : Default.Value();
}

void Evaluador::SetVariable(const Text& Name, const Variant& NewValue) {
  SetIfFound(*core_->symbols.variables, Name, NewValue);
}
void Evaluador::SetConstante(const Text& Name, const Variant& NewValue) {
  SetIfFound(*core_->symbols.constants, Name, NewValue);
}

void Evaluador::ChangeVble(double vValue, const Text& Name) {
  Existing(*core_->symbols.variables, Name).LetValue(vValue);
}

void Evaluador::Direction(const Variant& vDirection) {
  // An object that was a direction may change the tables when it goes.
  const Variant direction = vDirection.Value();
  for (const Ref<Campos>& table : {core_->symbols.variables, core_->symbols.constants})
    for (const Ref<Campo>& record : *table)
      if (record) record->LetDirection(direction);
}

void Evaluador::NewVble(const Text& Name, const Variant& Value, const Text& Description,
                        std::int32_t vDataType, const Text& oFormula) {
  RaisingErrors([&] {
    core_->symbols.Validate(Name);
    core_->symbols.variables->Add(MakeSymbol(Name, Value, Description, vDataType, oFormula));
  });
}
void Evaluador::AddVble(const Text& Name, const Variant& Value, const Text& Description,
                        std::int32_t vDataType, const Text& oFormula) {
  NewVble(Name, Value, Description, vDataType, oFormula);
}

void Evaluador::NewConstant(const Text& Name, const Variant& Value, const Text& Description,
                            std::int32_t vDataType) {
  RaisingErrors([&] {
    core_->symbols.Validate(Name);
    core_->symbols.constants->Add(MakeSymbol(Name, Value, Description, vDataType));
  });
}
void Evaluador::AddConstant(const Text& Name, const Variant& Value, const Text& Description,
                            std::int32_t vDataType) {
  NewConstant(Name, Value, Description, vDataType);
}

void Evaluador::AddFunction(const Text& Name, const Text& SourceName, const Text& Description,
                            const Text& Sintax) {
  RaisingErrors(
      [&] { core_->symbols.functions->Add(MakeFunction(Name, SourceName, Description, Sintax)); });
}

void Evaluador::AppendsVble(const Ref<tovalin::Campos>& Campos, const Variant& Before,
                            const Variant& After) {
  RaisingErrors([&] {
    if (!Campos) Raise(Failure::ObjectNotSet);
    const bool has_before = !Before.IsMissing();
    for (const Ref<Campo>& record : *Campos) {
      if (!record || !core_->symbols.IsValid(record->Name())) continue;
      try {
        core_->symbols.variables->Add(record, Before, has_before ? Variant::Missing() : After);
      } catch (const Error&) {
        // Deliberately skipped: a host appends what it has and asks afterwards.
      }
    }
  });
}

void Evaluador::RemoveVble(const Text& Index) {
  RaisingErrors([&] {
    const Ref<Evaluador> alive = Hold(*this);  // an object that goes may drop the last other one
    const Text names = Index;
    for (TextView rest = names; !rest.empty();) {
      const Text name = evaluator::CSVNextChar(rest, u",");
      if (!name.empty()) core_->symbols.variables->Remove(name);
    }
  });
}

// Deliberately one name and no list, unlike RemoveVble.
void Evaluador::RemoveConts(const Text& Index) {
  RaisingErrors([&] {
    const Campos& constants = *core_->symbols.constants;
    if (constants.Find(Index) && constants.IsSystem(Index))
      RaiseOwn(u"Evaluador", u"No se puede eliminar una constante del sistema");
    core_->symbols.constants->Remove(Index);
  });
}

void Evaluador::ClearVbles() {
  RaisingErrors([&] { SetVariables(Make<Campos>()); });
}
void Evaluador::ClearFunctions() {
  RaisingErrors([&] { SetFunctions(MakeFunctions()); });
}
void Evaluador::ClearConstants() {
  RaisingErrors([&] { SetConstantes(MakeConstants()); });
}

Text Evaluador::ReplaceExpresion(const Text& vExpresion, Ref<Campos>* LocalVbles) {
  return RaisingErrors([&] {
    TokenList list = core_->plans.GetLexer().Tokens(vExpresion);
    const Campos* locals = LocalVbles ? LocalVbles->get() : nullptr;
    for (Token& token : list.tokens)
      if (token.kind == TokenKind::Name) ResolveOperand(list, token, core_->symbols, locals);
    return WithoutAtSigns(vExpresion, list.at_signs);
  });
}

Ref<Collection> Evaluador::VarExpresion(const Text& vExpresion) {
  return RaisingErrors([&] {
    return NamesIn(core_->plans.GetLexer().Tokens(vExpresion), *core_->symbols.variables);
  });
}

Ref<Collection> Evaluador::ConstExpresion(const Text& vExpresion) {
  return RaisingErrors([&] {
    return NamesIn(core_->plans.GetLexer().Tokens(vExpresion), *core_->symbols.constants);
  });
}

Text Evaluador::ReplaceWildCards(const Text& vCadena) const {
  return RaisingErrors([&] {
    const Text any = ToText(GetConstante(u"ComodinLike", u"%"));
    return evaluator::ReplaceString(evaluator::ReplaceString(vCadena, u"*", any), u"?", u"_");
  });
}

Text Evaluador::Strip(const Text& vCadena, const Text& vQuitar) const {
  return RaisingErrors([&] { return evaluator::Strip(vCadena, vQuitar); });
}
Text Evaluador::CSVNextChar(Text& rCadena, const Text& vDelimitador, const Text& oComillas) const {
  return RaisingErrors([&] {
    TextView rest = rCadena;
    Text field = evaluator::CSVNextChar(rest, vDelimitador, oComillas);
    rCadena = Text(rest);
    return field;
  });
}
Text Evaluador::ReplaceString(const Text& vCadena, const Text& vMacro,
                              const Text& vReemplazo) const {
  return RaisingErrors([&] { return evaluator::ReplaceString(vCadena, vMacro, vReemplazo); });
}
std::int32_t Evaluador::CharCount(const Text& vCadena, const Text& vCaracter) const {
  return static_cast<std::int32_t>(evaluator::CharCount(vCadena, vCaracter));
}
Text Evaluador::Replicate(const Text& vCadena, std::int32_t vVeces) const {
  return RaisingErrors([&] { return evaluator::Replicate(vCadena, vVeces); });
}
Text Evaluador::StripNit(const Text& vNit) const {
  return RaisingErrors([&] { return evaluator::StripNit(vNit); });
}
Text Evaluador::RemoveChars(const Text& vCadena) const {
  return RaisingErrors([&] { return evaluator::RemoveChars(vCadena); });
}
Text Evaluador::DigitoV(const Text& vNit) const {
  return RaisingErrors([&] { return evaluator::DigitoV(vNit); });
}
double Evaluador::AjusteMedio(double vValor, double vFactor, std::int32_t vDecimales) const {
  return evaluator::AjusteMedio(vValor, vFactor, vDecimales);
}
double Evaluador::Redondear(double vValor, std::int32_t vDecimales) const {
  return evaluator::Redondear(vValor, vDecimales);
}
Variant Evaluador::nvl(const Variant& vValor, const Variant& vDefault) const {
  return evaluator::nvl(vValor, vDefault);
}
Text Evaluador::ExtraerPalabra(const Text& vData, std::uint8_t vPart) const {
  return RaisingErrors([&] { return Text(evaluator::WordOfName(vData, vPart)); });
}
Text Evaluador::ExtraerFrase(const Text& vData, std::uint8_t vPart) const {
  return RaisingErrors([&] { return Text(tovalin::ExtraerFrase(vData, vPart)); });
}
Text Evaluador::ExtraeRev(const Text& vData) const {
  return RaisingErrors([&] { return Text(evaluator::ExtraeRev(vData)); });
}
Text Evaluador::MontoEscrito(double vValor) const {
  return RaisingErrors([&] { return tovalin::MontoEscrito(vValor); });
}
std::int32_t Evaluador::Dias360(Date vInicial, Date vFin) const {
  return tovalin::Dias360(vInicial, vFin);
}

}  // namespace tovalin
