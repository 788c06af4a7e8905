#include "review/findings.h"

#include <algorithm>
#include <string>
#include <tuple>

namespace tovalin::review {
namespace {

using enum Rule;
using enum Severity;

constexpr RuleRow kRows[] = {
    {UnclosedLiteral, u"1", Error, u"{1}. Cierre el texto con comillas dobles."},
    {DuplicateOperator, u"2", Error,
     u"{1}: hay dos operadores seguidos. Quite uno, o escriba el valor que falta entre ellos."},
    {BracketMismatch, u"3", Error, u"{1}. Cierre cada paréntesis que se abre."},
    {UndefinedVariable, u"4", Error,
     u"{1}. Defina la variable, corrija el nombre o, si es texto, escríbalo entre comillas."},
    {MissingExpression, u"5", Error, u"{1}. Escriba el valor que falta al final."},

    {MoreArguments, u"argumentos", Warning,
     u"«{1}» toma {2} y entre sus paréntesis hay {3}: usa los últimos y los demás sobran. Deje "
     u"{2}, o anide las llamadas."},
    {FewerArguments, u"argumentos", Warning,
     u"«{1}» toma {2} y entre sus paréntesis hay {3}: completa con lo que se calculó antes, o con "
     u"vacío. Escriba todos: {4}."},
    {NothingTested, u"argumentos", Warning,
     u"«{1}» toma tres valores y le falta el que se prueba: prueba el vacío o lo que se calculó "
     u"antes. Escriba Valor , Desde BETWEEN Hasta."},
    {NothingOnTheLeft, u"argumentos", Warning,
     u"«{1}» no tiene un valor a su izquierda: opera con lo que se calculó antes, o no hace nada. "
     u"Escriba el valor que falta."},
    {ValuesLeft, u"sobrantes", Warning,
     u"«{1}» no cuenta: la fórmula deja {2} valores y el resultado es el primero, «{3}». Únalos "
     u"con "
     u"un operador; los decimales se escriben con «{4}» y los miles sin separador."},
    {LogicalFirst, u"precedencia", Warning,
     u"«{1}» se calcula antes que la comparación que tiene al lado: se lee ({2}). Ponga cada "
     u"comparación entre paréntesis."},
    {OtherOperands, u"precedencia", Warning,
     u"«{1}» no opera con lo que tiene a los lados, sino con {2}. Ponga entre paréntesis lo que va "
     u"antes de la coma."},
    {MinusSubtracts, u"signo", Warning,
     u"«-» no es aquí un signo: a «{1}» se le resta lo que sigue. Escriba «0-» en lugar de «-»."},
    {PlusAdds, u"signo", Warning,
     u"«+» no es aquí un signo: a «{1}» se le suma lo que sigue. Quite el «+»."},
    {GluedOperator, u"pegado", Warning,
     u"«{1}» se lee como un solo operador: «{2}» queda como está, y aparte el negativo de «{3}». "
     u"Sepárelo con paréntesis o con espacios."},
    {NotANumber, u"numero", Warning, u"«{1}» no se lee como un número. {2}"},
    {NearName, u"desconocida", Warning, u"«{1}» no existe. El nombre más parecido es «{2}»."},
    {OtherFunction, u"desconocida", Warning,
     u"«{1}» no es una función de las fórmulas. En su lugar: {2}"},
    {SpacedCall, u"desconocida", Warning,
     u"«{1}» no llama a la función: entre el nombre y el paréntesis no puede haber espacio. "
     u"Escriba «{2}»."},
    {BareFunction, u"desconocida", Warning,
     u"«{1}» es una función y le faltan los paréntesis. Escriba «{2}», con sus valores dentro."},
    {TextForNumber, u"tipos", Warning,
     u"«{1}» necesita un número y recibe el texto «{2}»: lo convierte si se lee como número, y si "
     u"no, falla con el error 13. Use un número, o conviértalo con VAL( )."},
    {TextAdded, u"tipos", Warning,
     u"«+» suma, y «{1}» es texto: falla con el error 13 si no se lee como número. Para unir "
     u"textos "
     u"use «&»; para sumar, VAL( )."},
    {DatesAdded, u"tipos", Warning,
     u"«+» suma dos fechas, «{1}» y «{2}»: da una fecha que no dice nada. Reste las fechas, o sume "
     u"días."},
    {TextCompared, u"tipos", Warning,
     u"«{1}» compara el texto «{2}» con el número «{3}»: {4}. Compare valores de la misma clase, o "
     u"convierta con VAL( )."},
    {TextComparedWithDate, u"tipos", Warning,
     u"«{1}» compara el texto «{2}» con la fecha «{3}» letra por letra. Escriba la fecha con "
     u"SERIEFECHA( )."},
    {TextForDate, u"tipos", Warning,
     u"«{1}» necesita una fecha y recibe el texto «{2}», que no se lee como fecha: falla con el "
     u"error 13. Escriba día/mes/año."},
    {TextForLogical, u"tipos", Warning,
     u"«{1}» necesita una condición y recibe el texto «{2}»: falla con el error 13. Compare el "
     u"texto con algo."},
    {ConstantCondition, u"condicion", Warning,
     u"la condición «{1}» siempre es {2}: no depende de ningún dato. Compare con una variable, o "
     u"quítela."},
    {ZeroDivisor, u"division", Warning,
     u"el divisor «{1}» siempre es 0: el cociente es 0, sin error. Corrija el divisor."},
    {BlanksDropped, u"espacios", Warning,
     u"«{1}» pierde los espacios de los extremos: vale «{2}». Escríbalo entre comillas dobles, que "
     u"los conservan."},
    {NobodyAnswers, u"sin-respuesta", Warning,
     u"nadie responde a «{1}»: da vacío. Atienda el evento Evaluate, o corrija el nombre."},
    {Cycle, u"ciclo", Warning,
     u"«{1}» lleva a una fórmula que se lee a sí misma: {2}. Se usa el último valor que tuvo. "
     u"Quite "
     u"una de esas lecturas."},

    {RoundsToTens, u"sorpresa", Note,
     u"«{1}» redondea a múltiplos de {2}, no a {3} decimales. Para decimales use FORMAT."},
    {LosesDigits, u"sorpresa", Note,
     u"«{1}» no quita todos los caracteres de la izquierda, y puede quitar otros: 010203 da 203. "
     u"Para quitar ceros use VAL( )."},
    {LettersAsDate, u"sorpresa", Note,
     u"en el formato «{1}» hay letras de «{2}» que muestran partes de la fecha. Ponga \\ delante "
     u"de cada letra."},
};

static_assert(
    [] {
      for (std::size_t i = 0; i < std::size(kRows); ++i)
        if (static_cast<std::size_t>(kRows[i].rule) != i) return false;
      return std::size(kRows) == static_cast<std::size_t>(LettersAsDate) + 1;
    }(),
    "a rule is the place of its row");

}  // namespace

const RuleRow& RowOf(Rule rule) { return kRows[static_cast<std::size_t>(rule)]; }

Text MessageOf(const Finding& finding, std::size_t position) {
  Text message = FromUtf8("En la posición " + std::to_string(position) + ", ");
  const TextView text = RowOf(finding.rule).message;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != u'{') {
      message.push_back(text[i]);
      continue;
    }
    const auto place = static_cast<std::size_t>(text[i + 1] - u'1');
    if (place < finding.names.size()) message.append(finding.names[place]);
    i += 2;
  }
  return message;
}

TextView ClassOf(Severity severity) {
  constexpr TextView kClasses[] = {u"error", u"advertencia", u"nota"};
  return kClasses[static_cast<std::size_t>(severity)];
}

void Findings::Sort() {
  const auto key = [](const Finding& finding) {
    return std::tuple(finding.span.start, RowOf(finding.rule).severity, finding.span.end,
                      finding.rule);
  };
  std::ranges::stable_sort(list_, {}, key);
  // The check tells some faults twice.
  const auto is_same = [key](const Finding& one, const Finding& other) {
    return key(one) == key(other);
  };
  list_.erase(std::unique(list_.begin(), list_.end(), is_same), list_.end());
}

Text Shown(TextView text) {
  constexpr std::size_t kMost = 40;
  text = Trim(text);
  if (text.size() <= kMost) return Text(text);
  const bool splits_pair = text[kMost - 1] >= 0xD800 && text[kMost - 1] <= 0xDBFF;
  return Text(text.substr(0, kMost - splits_pair)).append(u"…");
}

}  // namespace tovalin::review
