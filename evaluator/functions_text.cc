#include <algorithm>
#include <cmath>
#include <cstdint>

#include "evaluator/language.h"
#include "evaluator/rounding.h"
#include "evaluator/text_operations.h"
#include "formatting/padding.h"
#include "formatting/word_extraction.h"
#include "frame/text/code_page.h"
#include "tovalin/convert.h"
#include "tovalin/error.h"

namespace tovalin::functions {
namespace {

Variant Middle(Arguments arguments, const FunctionContext&) {
  const TextArgument text(arguments[0]);
  const std::size_t start = CountArgument(arguments[1]);
  const std::size_t count = CountArgument(arguments[2]);
  if (start == 0) Raise(Failure::InvalidArgument);
  return text.View().substr(std::min(start - 1, text.View().size()), count);
}

Variant Right(Arguments arguments, const FunctionContext&) {
  const TextArgument text(arguments[0]);
  const std::size_t count = std::min(CountArgument(arguments[1]), text.View().size());
  return text.View().substr(text.View().size() - count);
}

Variant Left(Arguments arguments, const FunctionContext&) {
  const TextArgument text(arguments[0]);
  return text.View().substr(0, CountArgument(arguments[1]));
}

Variant Unpad(Arguments arguments, const FunctionContext&) {
  return DesajustarTexto(TextArgument(arguments[0]), TextArgument(arguments[1]),
                         ToLong(arguments[2]));
}

Variant Pad(Arguments arguments, const FunctionContext&) {
  return AjustarTexto(TextArgument(arguments[0]), ToInteger(arguments[1]), ToLong(arguments[2]));
}

Variant PadDigitGroups(Arguments arguments, const FunctionContext&) {
  return evaluator::AjustarDigitosGrupo(TextArgument(arguments[0]));
}

Variant Replace(Arguments arguments, const FunctionContext&) {
  return evaluator::ReplaceString(TextArgument(arguments[0]), TextArgument(arguments[1]),
                                  TextArgument(arguments[2]));
}

Variant StripTaxNumber(Arguments arguments, const FunctionContext&) {
  return evaluator::StripNit(TextArgument(arguments[0]));
}

Variant RemoveChars(Arguments arguments, const FunctionContext&) {
  return evaluator::RemoveChars(TextArgument(arguments[0]));
}

Variant AutoBracket(Arguments arguments, const FunctionContext&) {
  return evaluator::DoAutoBracket(TextArgument(arguments[0]));
}

Variant CheckDigit(Arguments arguments, const FunctionContext&) {
  // The text of a number of 16 digits no longer shows them all.
  constexpr double kTooLong = 1e15;
  const double* number = arguments[0].IfDouble();
  if (number && std::abs(*number) >= kTooLong) Raise(Failure::InvalidArgument);
  return evaluator::DigitoV(TextArgument(arguments[0]));
}

Variant TrimBlanks(Arguments arguments, const FunctionContext&) {
  return Trim(TextArgument(arguments[0]));
}

Variant Length(Arguments arguments, const FunctionContext&) {
  return static_cast<std::int32_t>(TextArgument(arguments[0]).View().size());
}

Variant CharacterOf(Arguments arguments, const FunctionContext&) {
  const std::int32_t code = ToLong(arguments[0]);
  if (code < 0 || code > 255) Raise(Failure::InvalidArgument);
  return Text(1, FromCodePage(static_cast<unsigned char>(code)));
}

Variant CodeOfCharacter(Arguments arguments, const FunctionContext&) {
  const TextArgument text(arguments[0]);
  if (text.View().empty()) Raise(Failure::InvalidArgument);
  const char16_t first = text.View().front();
  if (InCodePage(first))
    return static_cast<std::int16_t>(static_cast<unsigned char>(ToCodePage(first)));
  return static_cast<std::int16_t>(first);
}

Variant FirstName(Arguments arguments, const FunctionContext&) {
  return evaluator::WordOfName(TextArgument(arguments[0]), 1);
}

Variant SecondName(Arguments arguments, const FunctionContext&) {
  return evaluator::WordOfName(TextArgument(arguments[0]), 2);
}

Variant Phrase(Arguments arguments, const FunctionContext&) {
  return ExtraerFrase(TextArgument(arguments[0]), ToByte(arguments[1]));
}

Variant Word(Arguments arguments, const FunctionContext&) {
  return evaluator::WordOfName(TextArgument(arguments[0]), ToByte(arguments[1]));
}

Variant LastWord(Arguments arguments, const FunctionContext&) {
  return evaluator::ExtraeRev(TextArgument(arguments[0]));
}

}  // namespace

std::span<const BuiltinFunction> OfText() {
  using Row = BuiltinFunction;
  using Type = OperandType;
  static constexpr BuiltinFunction kRows[] = {
      Row(1, u"MEDIO(", u"MEDIO", u"Devuelve un determinado numero de caracteres de una cadena",
          u"MEDIO( Expr , Inicio , Caraceres) ",
          {{u"Expr", Type::Text}, {u"Inicio", Type::Number}, {u"Caracteres", Type::Number}},
          Type::Text, Middle, NullArgument::First),
      Row(27, u"MID(", u"MID", u"Devuelve un determinado numero de caracteres de una cadena",
          u"MID( Expr , Inicio , Caraceres) ",
          {{u"Expr", Type::Text}, {u"Inicio", Type::Number}, {u"Caracteres", Type::Number}},
          Type::Text, Middle, NullArgument::First),
      Row(2, u"DERECHA(", u"DERECHA",
          u"Devuelve los ultimos n caracteres a la derecha de la cadena",
          u"DERECHA( Expr , Caraceres ) ", {{u"Expr", Type::Text}, {u"Caracteres", Type::Number}},
          Type::Text, Right, NullArgument::First),
      Row(28, u"RIGHT(", u"RIGHT", u"Devuelve los ultimos n caracteres a la derecha de la cadena",
          u"RIGHT( Expr , Caraceres ) ", {{u"Expr", Type::Text}, {u"Caracteres", Type::Number}},
          Type::Text, Right, NullArgument::First),
      Row(3, u"IZQUIERDA(", u"IZQUIERDA",
          u"Devuelve los primeros n caracteres a la izquierda de la cadena",
          u"IZQUIERDA( Expr , Caraceres) ", {{u"Expr", Type::Text}, {u"Caracteres", Type::Number}},
          Type::Text, Left, NullArgument::First),
      Row(29, u"LEFT(", u"LEFT", u"Devuelve los primeros n caracteres a la izquierda de la cadena",
          u"LEFT( Expr , Caraceres) ", {{u"Expr", Type::Text}, {u"Caracteres", Type::Number}},
          Type::Text, Left, NullArgument::First),
      Row(4, u"AJUSTAR(", u"AJUSTAR",
          u"Ajusta una cadena con un caracter para hasta el numero de caracteres",
          u"AJUSTAR( Expr , Caraceres , Justificado ) ",
          {{u"Expr", Type::Text}, {u"Caracteres", Type::Number}, {u"Justificado", Type::Number}},
          Type::Text, Pad, NullArgument::First),
      Row(5, u"DESAJUSTAR(", u"DesAJUSTAR", u"Elimina los caracteres de ajusta de una cadena",
          u"DESAJUSTAR( Expr , Caracer, Justificado ) ",
          {{u"Expr", Type::Text}, {u"Caracter", Type::Text}, {u"Justificado", Type::Number}},
          Type::Text, Unpad, NullArgument::First),
      Row(6, u"ReemplazarCadena(", u"ReemplazarCadena",
          u"Reemplaza un carater dentro de una cadena por otro",
          u"ReemplazarCadena( Expr ,Macro , Cadena ) ",
          {{u"Expr", Type::Text}, {u"Macro", Type::Text}, {u"Cadena", Type::Text}}, Type::Text,
          Replace, NullArgument::First),
      Row(7, u"AjustarDigitosGrupo(", u"AjustarDigitosGrupo", u"Ajusta con ceros a la izquierda ",
          u"AjustarDigitosGrupo( Cadena ) ", {{u"Cadena", Type::Text}}, Type::Text, PadDigitGroups,
          NullArgument::First),
      Row(9, u"TRIM(", u"TRIM", u"Devuelve una cadena sin espacios", u"TRIM( Expr ) ",
          {{u"Expr", Type::Text}}, Type::Text, TrimBlanks, NullArgument::First),
      Row(10, u"LEN(", u"LEN", u"Devuelve el numero de caracteres de una cadena", u"LEN( Expr ) ",
          {{u"Expr", Type::Text}}, Type::Number, Length, NullArgument::First),
      Row(32, u"CHR(", u"CHR", u"Devuelve el caracter asociado al codigo ASCII", u"CHR( Value ) ",
          {{u"Value", Type::Number}}, Type::Text, CharacterOf),
      Row(33, u"ASC(", u"ASC", u"Devuelve el codigo ASCII asociado al caracter ", u"ASC( Value ) ",
          {{u"Value", Type::Text}}, Type::Number, CodeOfCharacter, NullArgument::First),
      Row(34, u"PrimerNombre(", u"PrimerNombre", u"Devuelve el primer texto de una cadena",
          u"PrimerNombre( Expr ) ", {{u"Expr", Type::Text}}, Type::Text, FirstName,
          NullArgument::First),
      Row(35, u"SegundoNombre(", u"SegundoNombre", u"Devuelve el segundo texto de una cadena",
          u"SegundoNombre( Expr ) ", {{u"Expr", Type::Text}}, Type::Text, SecondName,
          NullArgument::First),
      Row(36, u"ExtraerPalabra(", u"ExtraerPalabra", u"Devuelve palabra n de una cadena",
          u"ExtraerPalabra( Expr, Part ) ", {{u"Expr", Type::Text}, {u"Part", Type::Number}},
          Type::Text, Word, NullArgument::First),
      Row(37, u"ExtraeRev(", u"ExtraeRev", u"Devuelve la ultima palabra de una cadena",
          u"ExtraeRev( Expr ) ", {{u"Expr", Type::Text}}, Type::Text, LastWord,
          NullArgument::First),
      Row(38, u"ExtraerFrase(", u"ExtraerFrase", u"Devuelve la frase n de una cadena",
          u"ExtraerFrase( Expr, Part ) ", {{u"Expr", Type::Text}, {u"Part", Type::Number}},
          Type::Text, Phrase, NullArgument::First),
      Row(43, u"StripNit(", u"StripNit",
          u"Suprimir caracteres especiales en Nit y digito de verificación", u"StripNit( Nit ) ",
          {{u"Nit", Type::Text}}, Type::Text, StripTaxNumber, NullArgument::First),
      Row(44, u"RemoveChars(", u"RemoveChars", u"Suprimir caracteres especiales ",
          u"RemoveChars( Cadena ) ", {{u"Cadena", Type::Text}}, Type::Text, RemoveChars,
          NullArgument::First),
      Row(45, u"DigitoV(", u"DigitoV", u"Devuelve el digito de verificación de un Nit",
          u"DigitoV( Nit ) ", {{u"Nit", Type::Text}}, Type::Text, CheckDigit, NullArgument::First),
      Row(48, u"DoAutoBracket(", u"DoAutoBracket", u"Adiciona los corchetes a una columna",
          u"DoAutoBracket( ColumnName )", {{u"ColumnName", Type::Text}}, Type::Text, AutoBracket,
          NullArgument::First),
  };
  return kRows;
}

}  // namespace tovalin::functions
