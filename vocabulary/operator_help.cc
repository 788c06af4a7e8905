#include <algorithm>
#include <array>
#include <iterator>

#include "vocabulary/help.h"

namespace tovalin::vocabulary {
namespace {

using enum Group;

constexpr std::array<TextView, 3> kPair = {u"A", u"B"};

constexpr OperatorHelp kOperators[] = {
    {u"+",
     Arithmetic,
     u"A + B",
     kPair,
     u"La suma. Dos textos se unen; una fecha más un número es la fecha de esos días después.",
     {u"2 + 3", u"5"}},
    {u"-",
     Arithmetic,
     u"A - B",
     kPair,
     u"La resta. Al comienzo de la fórmula cambia el signo de lo que sigue. Después de un valor "
     u"siempre resta, también entre paréntesis y tras una coma: 5*(-3) es 2. Para multiplicar por "
     u"un valor con el signo cambiado se escribe *-.",
     {u"5 - 3", u"2"}},
    {u"*", Arithmetic, u"A * B", kPair, u"El producto.", {u"2500000 * 0.04", u"100000"}},
    {u"/",
     Arithmetic,
     u"A / B",
     kPair,
     u"El cociente. Si el divisor es 0, el resultado es 0 y no hay error.",
     {u"7 / 2", u"3.5"}},
    {u"^",
     Arithmetic,
     u"A ^ B",
     kPair,
     u"La potencia. También se agrupa desde la izquierda: 2 ^ 3 ^ 2 es 64.",
     {u"2 ^ 10", u"1024"}},
    {u"*-",
     Arithmetic,
     u"A *- B",
     kPair,
     u"El producto por B con el signo cambiado.",
     {u"3*-2", u"-6"}},
    {u"-1*",
     Arithmetic,
     u"-1* B",
     kPair,
     u"Al comienzo de la fórmula cambia el signo de lo que sigue. Entre dos valores cambia el "
     u"signo "
     u"del segundo y deja los dos, así que 5-1*2 es 5: se escribe 5-(1*2).",
     {u"-1*5", u"-5"}},
    {u"*-1",
     Arithmetic,
     u"A *-1 B",
     kPair,
     u"Cambia el signo del segundo valor y deja los dos, así que 3*-12 es 3. Para multiplicar por "
     u"un "
     u"número negativo que comienza por 1 se escribe *-(12).",
     {u"3*-12", u"3"}},
    {u"&",
     Group::Text,
     u"A & B",
     kPair,
     u"Los dos valores unidos como un texto.",
     {u"\"Quincena \" & 2", u"Quincena 2"}},
    {u"IN",
     Group::Text,
     u"A IN B",
     kPair,
     u"Si el texto A contiene el texto B, sin distinguir mayúsculas.",
     {u"'Gerente general' IN 'gerente'", u"Verdadero"}},
    {u"=",
     Comparison,
     u"A = B",
     kPair,
     u"Si son iguales: como números cuando los dos se leen como números; si no, como textos sin "
     u"distinguir mayúsculas.",
     {u"'1.0' = 1", u"Verdadero"}},
    {u"<>",
     Comparison,
     u"A <> B",
     kPair,
     u"Si son distintos: como números cuando los dos lo son; si no, como textos. Al contrario de "
     u"«=», distingue mayúsculas.",
     {u"'a' <> 'A'", u"Verdadero"}},
    {u"<",
     Comparison,
     u"A < B",
     kPair,
     u"Si A es menor: como números cuando los dos lo son; si no, como textos, carácter por "
     u"carácter.",
     {u"9 < 10", u"Verdadero"}},
    {u"<=", Comparison, u"A <= B", kPair, u"Si A es menor o igual.", {u"10 <= 10", u"Verdadero"}},
    {u">",
     Comparison,
     u"A > B",
     kPair,
     u"Si A es mayor: como números cuando los dos lo son; si no, como textos, carácter por "
     u"carácter.",
     {u"'10' > 9", u"Falso"}},
    {u">=", Comparison, u"A >= B", kPair, u"Si A es mayor o igual.", {u"9 >= 10", u"Falso"}},
    {u"BETWEEN",
     Comparison,
     u"V , L BETWEEN H",
     {u"V", u"L", u"H"},
     u"Si V está entre L y H, los dos incluidos. El valor que se prueba va delante de una coma.",
     {u"18 , 18 BETWEEN 65", u"Verdadero"}},
    {u"AND",
     Logic,
     u"A AND B",
     kPair,
     u"Si las dos condiciones son verdaderas; de números, el resultado bit por bit. Se evalúa "
     u"antes "
     u"que las comparaciones: cada comparación va entre paréntesis.",
     {u"(5 > 1) AND (2 > 3)", u"Falso"}},
    {u"OR",
     Logic,
     u"A OR B",
     kPair,
     u"Si alguna de las dos condiciones es verdadera; de números, el resultado bit por bit. Se "
     u"evalúa antes que las comparaciones: cada comparación va entre paréntesis.",
     {u"(5 > 1) OR (2 > 3)", u"Verdadero"}},
};

constexpr ConstantHelp kConstants[] = {
    {u"VERDADERO", u"El valor lógico verdadero", {u"(5 > 1) = VERDADERO", u"Verdadero"}},
    {u"FALSO", u"El valor lógico falso", {u"(5 > 1) = FALSO", u"Falso"}},
    {u"CIZQUIERDA",
     u"La izquierda, para AJUSTAR y DESAJUSTAR",
     {u"AJUSTAR( 'Caja' , 6 , CIZQUIERDA )", u"Caja  "}},
    {u"CDERECHA",
     u"La derecha, para AJUSTAR y DESAJUSTAR",
     {u"AJUSTAR( 'Caja' , 6 , CDERECHA )", u"  Caja"}},
    {u"WindowsDirectory",
     u"La carpeta de Windows, si la aplicación la da",
     {u"WindowsDirectory & '\\win.ini'", {}}},
    {u"SystemDirectory",
     u"La carpeta del sistema de Windows, si la aplicación la da",
     {u"SystemDirectory & '\\drivers'", {}}},
    {u"TempDirectory",
     u"La carpeta temporal, si la aplicación la da",
     {u"TempDirectory & '\\nomina.txt'", {}}},
    {u"ReportDirectory",
     u"La carpeta de los informes, si la aplicación la da",
     {u"ReportDirectory & '\\nomina.rpt'", {}}},
    {u"ProgramFiles",
     u"La carpeta de los programas, en Windows",
     {u"ProgramFiles & '\\Tovalin'", {}}},
    {u"ComodinLike",
     u"El carácter que en un patrón de búsqueda vale por cualquier texto",
     {u"'Caja' & ComodinLike", {}}},
};

template <class Row>
const Row* FindRow(std::span<const Row> rows, TextView Row::*key, TextView word) {
  const auto row =
      std::ranges::find_if(rows, [&](const Row& help) { return EqualFolded(help.*key, word); });
  return row == rows.end() ? nullptr : &*row;
}

}  // namespace

TextView NameOf(Group group) {
  static constexpr TextView kNames[] = {u"Textos",      u"Números",       u"Fechas",
                                        u"Decisiones",  u"Trigonometría", u"Aritmética",
                                        u"Comparación", u"Lógica"};
  return kNames[static_cast<std::size_t>(group)];
}

std::span<const OperatorHelp> OperatorHelps() { return kOperators; }

const OperatorHelp* FindOperatorHelp(TextView literal) {
  return FindRow<OperatorHelp>(kOperators, &OperatorHelp::literal, literal);
}

const ConstantHelp* FindConstantHelp(TextView name) {
  return FindRow<ConstantHelp>(kConstants, &ConstantHelp::name, name);
}

}  // namespace tovalin::vocabulary
