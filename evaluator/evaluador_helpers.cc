#include "evaluator/core.h"
#include "evaluator/number_helpers.h"
#include "evaluator/references.h"
#include "evaluator/text_helpers.h"
#include "formatting/dias360.h"
#include "formatting/monto_escrito.h"
#include "formatting/word_extraction.h"
#include "frame/object/error_translation.h"
#include "tovalin/convert.h"

// The members of Evaluador that work on texts and numbers alone, or on the names
// that a formula holds.

namespace tovalin {
namespace {

// The names of a formula that `table` holds, in order of first appearance.
Ref<Collection> NamesIn(const TokenList& list, const Campos& table) {
  auto names = Make<Collection>();
  for (const Token& token : list.tokens) {
    if (token.kind != TokenKind::Name) continue;
    const Campo* record = table.Find(NameOf(list, token));
    if (!record || names->List().Find(record->Name()) != KeyedList<Variant>::kNotFound) continue;
    const Variant name(record->Name());
    names->Add(name, name);
  }
  return names;
}

}  // namespace

Text Evaluador::ReplaceExpresion(const Text& vExpresion, Ref<Campos>* LocalVbles) {
  return RaisingErrors([&] {
    return core_->engine.ReplaceReferences(vExpresion, LocalVbles ? LocalVbles->get() : nullptr);
  });
}

Ref<Collection> Evaluador::VarExpresion(const Text& vExpresion) {
  return RaisingErrors(
      [&] { return NamesIn(core_->plans.Tokens(vExpresion), *core_->symbols.variables); });
}

Ref<Collection> Evaluador::ConstExpresion(const Text& vExpresion) {
  return RaisingErrors(
      [&] { return NamesIn(core_->plans.Tokens(vExpresion), *core_->symbols.constants); });
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
  return RaisingErrors([&] { return Text(evaluator::ExtraerPalabra(vData, vPart)); });
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
