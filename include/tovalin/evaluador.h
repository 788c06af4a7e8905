#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "tovalin/api.h"
#include "tovalin/campos.h"
#include "tovalin/clock.h"
#include "tovalin/collection.h"
#include "tovalin/event.h"
#include "tovalin/formula.h"
#include "tovalin/object.h"
#include "tovalin/settings.h"
#include "tovalin/variant.h"

namespace tovalin {

/// The formula evaluator: a host registers variables, constants and functions,
/// hands it a formula, and receives the value.
///
///     auto evaluador = Make<Evaluador>();
///     evaluador->AddVble(u"Salario", 2500000.0, u"", kNumeric);
///     Variant valor;
///     evaluador->EvaluatePosfijo(u"Salario * 0.04", valor);   // 100000
///
/// Names are looked up without regard to case. Unless said otherwise, a member
/// that raises leaves everything as it was.
class TOVALIN_API Evaluador : public Object {
 public:
  static constexpr TextView kClassName = u"Evaluador";

  Evaluador();
  ~Evaluador() override;
  static const ClassInfo kInfo;
  const ClassInfo& Class() const override;

  // --- Events ---------------------------------------------------------------

  /// A formula called `Macro` ("DOBLE("), a registered function that is not built
  /// in: the handler pops its arguments from `rPila` with LoadTopePila, the last
  /// one first, and puts the value into `Result`.
  Event<const Text&, Variant&, Ref<Collection>&> Evaluate;
  /// Not raised by evaluation.
  Event<std::int16_t&, const Text&, const Text&, std::int32_t> Response;

  // --- Tables and properties ------------------------------------------------

  Ref<Campos> Functions() const;
  Ref<Campos> Variables() const;
  Ref<Campos> Constantes() const;
  Ref<Campos> Operadores() const;
  Ref<Collection> Separadores() const;
  Ref<Collection> CaracteresEspeciales() const;
  /// Replace a table. Raise 91 for none.
  void SetFunctions(const Ref<Campos>& NewValue);
  void SetVariables(const Ref<Campos>& NewValue);
  void SetConstantes(const Ref<Campos>& NewValue);

  /// What opens and closes a text literal of a formula, "'" at first.
  Text StringDelimiter() const;
  void LetStringDelimiter(const Text& NewValue);
  /// A flag for handlers, set back to False after every Evaluate event.
  bool ClosePila() const;
  void LetClosePila(bool NewValue);
  /// Free text of the host.
  Text Description() const;
  void LetDescription(const Text& NewValue);
  /// The expression to be evaluated, kept for the host.
  Text Expresion() const;
  void LetExpresion(const Text& NewValue);

  /// The messages of the last check, a numbered line each.
  Text LastError() const;
  /// The same faults as data: a Collection of Collections with the items
  /// "Codigo", "Inicio" (from 1), "Largo" and "Mensaje", the span being in the
  /// text "Expresion" as the host gave it. `Codigo` is 1 for a literal that does
  /// not end, 2 a duplicate operator, 3 brackets that do not match, 4 an undefined
  /// variable, 5 a missing expression.
  Ref<Collection> Errores() const;

  /// What formulas may name, for editors of formulas: a Collection of Collections, those of
  /// the present tables in their order, operators, functions, constants and variables.
  /// Each has the items
  ///   "Clase": operador, funcion, constante or variable;
  ///   "Nombre": as it is written, a function without its bracket; "Grupo", for menus;
  ///   "Firma": how it is called; "Parametros": a Collection of records "Nombre", "Tipo"
  ///   (numero, texto, fecha, logico, cualquiera) and "Texto"; "Resultado": its type;
  ///   "Texto": what it gives; "Ejemplo": a formula; "ValorEjemplo": the text of its value;
  ///   "Prioridad" of an operator, else Null; "Valor" of a constant or variable, else Null.
  /// Texts are Spanish, and empty where a host gave none.
  Ref<Collection> Vocabulario() const;

  // --- Symbols --------------------------------------------------------------

  /// Whether a variable or a constant has the name. Deliberately both the same.
  bool ExistVariable(const Text& Name) const;
  bool Existconstante(const Text& Name) const;
  /// The value of the variable, else of the constant, else `Default`.
  Variant GetVariable(const Text& Name, const Variant& Default) const;
  Variant GetVariableDB(const Text& Name, const Variant& Default) const;
  /// The data type code of the variable, else of the constant, else 1009.
  std::int32_t GetDataType(const Text& Name) const;
  /// The value of the constant, else `Default`.
  Variant GetConstante(const Text& Name, const Variant& Default) const;

  /// Set a value; an unknown name changes nothing.
  void SetVariable(const Text& Name, const Variant& NewValue);
  void SetConstante(const Text& Name, const Variant& NewValue);
  /// Sets a variable to a Double. Raises 5 for an unknown name.
  void ChangeVble(double vValue, const Text& Name);
  /// Gives every variable and constant a direction.
  void Direction(const Variant& vDirection);

  /// Add a symbol. Raise kObjectError with a line for each rule that the name
  /// breaks, and 457 for a name that its table holds already.
  void NewVble(const Text& Name, const Variant& Value, const Text& Description,
               std::int32_t vDataType, const Text& oFormula = {});
  void AddVble(const Text& Name, const Variant& Value, const Text& Description,
               std::int32_t vDataType, const Text& oFormula = {});
  void NewConstant(const Text& Name, const Variant& Value, const Text& Description,
                   std::int32_t vDataType);
  void AddConstant(const Text& Name, const Variant& Value, const Text& Description,
                   std::int32_t vDataType);
  /// `Name` is the function's word with its bracket, "DOBLE(", `SourceName` the
  /// bare word. Raises 457 for a name that is there already.
  void AddFunction(const Text& Name, const Text& SourceName, const Text& Description,
                   const Text& Sintax);
  /// Adds every record whose name is valid to the variables, before or after a
  /// position; skips the others without an error. Raises 91 for no table.
  void AppendsVble(const Ref<Campos>& Campos, const Variant& Before = Variant::Missing(),
                   const Variant& After = Variant::Missing());

  /// Removes the variables of a comma-separated list, one after the other.
  /// Raises 5 at the first unknown name; those before it are gone then.
  void RemoveVble(const Text& Index);
  /// Removes one constant. Raises 5 for an unknown name and kObjectError for a
  /// constant of the system.
  void RemoveConts(const Text& Index);
  void ClearVbles();
  /// Back to the 48 built-in functions.
  void ClearFunctions();
  /// Back to the ten constants of the system.
  void ClearConstants();

  // --- Formulas -------------------------------------------------------------

  /// Checks a formula and gives its tokens; `rExpresion` becomes the normalised
  /// expression. With any fault the result is empty and LastError tells. Raises
  /// nothing.
  Ref<Collection> CheckInfijo(Text& rExpresion, Ref<Campos>* LocalVbles = nullptr);

  /// The postfix text of tokens; `rPosfijo` receives the items. Raises nothing.
  Text Posfijo(const Ref<Collection>& vcolInfijo, Ref<Collection>& rPosfijo,
               Ref<Campos>* LocalVbles = nullptr);

  /// Computes a formula text, or a postfix Collection, into `Result`. True when
  /// the evaluation completes; a formula with faults gives 0 and LastError tells.
  /// Raises whatever the evaluation or a handler raises; `Result` keeps its value then.
  bool EvaluatePosfijo(const Variant& vExpresion, Variant& Result,
                       Ref<Campos>* LocalVbles = nullptr);

  /// Prepares a formula for being evaluated many times. Raises nothing: its
  /// Errores tell of faults.
  Ref<Formula> Preparar(const Text& vExpresion, Ref<Campos>* LocalVbles = nullptr);

  /// Reviews a formula before it is saved, without evaluating anything: a Collection of
  /// Collections with the items "Clase" ("error", "advertencia", "nota"), "Codigo",
  /// "Inicio" (from 1), "Largo", "Mensaje" and "Sugerencia" (a formula, or empty), in the
  /// order of their places; the first thousand. Raises nothing.
  ///
  ///     evaluador->Revisar(u"MAX( 1 , -2 )");   // advertencia, signo, 10, 1, ...
  Ref<Collection> Revisar(const Text& Formula, Ref<Campos>* LocalVbles = nullptr) const;

  /// How many formula texts keep their plans, the latest used: 256 at first, 0 for
  /// none. Raises 5 for a negative number.
  std::int32_t PlanesGuardados() const;
  void LetPlanesGuardados(std::int32_t NewValue);

  /// Pops the top value of a stack: numeric text with thousands separators comes
  /// as a Double, other text without its double quotes. Empty from an empty stack.
  /// Raises 91 for no stack.
  Variant LoadTopePila(Ref<Collection>& rPila);

  /// Computes the formula variables that mention `Name`, directly or through
  /// others, once each and in the order in which they build on one another. One
  /// that fails keeps its value; nothing is raised.
  void CalcularDependencias(const Text& Name);

  /// `vExpresion` with "@Name" outside of literals turned into "Name" where such
  /// a symbol exists.
  Text ReplaceExpresion(const Text& vExpresion, Ref<Campos>* LocalVbles = nullptr);
  /// The variables (constants) that a formula names, keyed by name, in order of
  /// first appearance.
  Ref<Collection> VarExpresion(const Text& vExpresion);
  Ref<Collection> ConstExpresion(const Text& vExpresion);
  /// "*" becomes the constant ComodinLike ("%" without it), "?" becomes "_".
  Text ReplaceWildCards(const Text& vCadena) const;

  // --- Text and number helpers ------------------------------------------------

  Text Strip(const Text& vCadena, const Text& vQuitar) const;
  /// Takes the next field off the front of `rCadena`. Between two `oComillas`
  /// (none by default) a delimiter is an ordinary character.
  Text CSVNextChar(Text& rCadena, const Text& vDelimitador, const Text& oComillas) const;
  Text ReplaceString(const Text& vCadena, const Text& vMacro, const Text& vReemplazo) const;
  std::int32_t CharCount(const Text& vCadena, const Text& vCaracter) const;
  Text Replicate(const Text& vCadena, std::int32_t vVeces) const;
  Text StripNit(const Text& vNit) const;
  Text RemoveChars(const Text& vCadena) const;
  Text DigitoV(const Text& vNit) const;
  double AjusteMedio(double vValor, double vFactor, std::int32_t vDecimales) const;
  double Redondear(double vValor, std::int32_t vDecimales) const;
  Variant nvl(const Variant& vValor, const Variant& vDefault) const;
  Text ExtraerPalabra(const Text& vData, std::uint8_t vPart) const;
  Text ExtraerFrase(const Text& vData, std::uint8_t vPart) const;
  Text ExtraeRev(const Text& vData) const;
  Text MontoEscrito(double vValor) const;
  std::int32_t Dias360(Date vInicial, Date vFin) const;

  // --- For C++ hosts ----------------------------------------------------------

  /// One formula of a batch: its value, or the error that it raised.
  struct Outcome {
    Variant value;
    std::optional<Error> error;
    Text faults;  // the lines of LastError that the formula added
  };
  /// Computes several formulas as one evaluation, in which every formula variable
  /// is computed once at most: the way to compute a row of formulas that build on
  /// one another. `outcomes` is as long as `formulas`.
  void EvaluateBatch(std::span<const Text> formulas, std::span<Outcome> outcomes);

  /// Where DATE( ) and NOW( ) take the time from; an empty one brings the system's back.
  void UseClock(HostClock::Function clock);
  /// Where the trace of the last evaluation goes, in place of the settings file.
  void UseSettings(Ref<SettingsStore> settings);

  class Core;

 private:
  std::unique_ptr<Core> core_;
};

}  // namespace tovalin
