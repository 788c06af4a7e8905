#include <algorithm>
#include <cmath>
#include <cstdint>

#include "evaluator/builtin_arguments.h"
#include "evaluator/builtin_families.h"
#include "evaluator/number_helpers.h"
#include "evaluator/text_helpers.h"
#include "formatting/padding.h"
#include "formatting/word_extraction.h"
#include "frame/code_page.h"
#include "tovalin/convert.h"
#include "tovalin/error.h"

namespace tovalin::builtins {

Variant Middle(Arguments arguments, const BuiltinContext&) {
  const TextArgument text(arguments[0]);
  const std::size_t start = CountArgument(arguments[1]);
  const std::size_t count = CountArgument(arguments[2]);
  if (start == 0) Raise(Failure::InvalidArgument);
  return text.View().substr(std::min(start - 1, text.View().size()), count);
}

Variant Right(Arguments arguments, const BuiltinContext&) {
  const TextArgument text(arguments[0]);
  const std::size_t count = std::min(CountArgument(arguments[1]), text.View().size());
  return text.View().substr(text.View().size() - count);
}

Variant Left(Arguments arguments, const BuiltinContext&) {
  const TextArgument text(arguments[0]);
  return text.View().substr(0, CountArgument(arguments[1]));
}

Variant Unpad(Arguments arguments, const BuiltinContext&) {
  return DesajustarTexto(TextArgument(arguments[0]), TextArgument(arguments[1]),
                         ToLong(arguments[2]));
}

Variant Pad(Arguments arguments, const BuiltinContext&) {
  return AjustarTexto(TextArgument(arguments[0]), ToInteger(arguments[1]), ToLong(arguments[2]));
}

Variant PadDigitGroups(Arguments arguments, const BuiltinContext&) {
  return evaluator::AjustarDigitosGrupo(TextArgument(arguments[0]));
}

Variant Replace(Arguments arguments, const BuiltinContext&) {
  return evaluator::ReplaceString(TextArgument(arguments[0]), TextArgument(arguments[1]),
                                  TextArgument(arguments[2]));
}

Variant StripTaxNumber(Arguments arguments, const BuiltinContext&) {
  return evaluator::StripNit(TextArgument(arguments[0]));
}

Variant RemoveReserved(Arguments arguments, const BuiltinContext&) {
  return evaluator::RemoveChars(TextArgument(arguments[0]));
}

Variant AutoBracket(Arguments arguments, const BuiltinContext&) {
  return evaluator::DoAutoBracket(TextArgument(arguments[0]));
}

Variant CheckDigit(Arguments arguments, const BuiltinContext&) {
  // The text of a number of 16 digits no longer shows them all.
  constexpr double kTooLong = 1e15;
  const double* number = arguments[0].IfDouble();
  if (number && std::abs(*number) >= kTooLong) Raise(Failure::InvalidArgument);
  return evaluator::DigitoV(TextArgument(arguments[0]));
}

Variant TrimBlanks(Arguments arguments, const BuiltinContext&) {
  return Trim(TextArgument(arguments[0]));
}

Variant Length(Arguments arguments, const BuiltinContext&) {
  return static_cast<std::int32_t>(TextArgument(arguments[0]).View().size());
}

Variant CharacterOf(Arguments arguments, const BuiltinContext&) {
  const std::int32_t code = ToLong(arguments[0]);
  if (code < 0 || code > 255) Raise(Failure::InvalidArgument);
  return Text(1, FromCodePage(static_cast<unsigned char>(code)));
}

Variant CodeOf(Arguments arguments, const BuiltinContext&) {
  const TextArgument text(arguments[0]);
  if (text.View().empty()) Raise(Failure::InvalidArgument);
  const char16_t first = text.View().front();
  if (InCodePage(first))
    return static_cast<std::int16_t>(static_cast<unsigned char>(ToCodePage(first)));
  return static_cast<std::int16_t>(first);
}

Variant FirstName(Arguments arguments, const BuiltinContext&) {
  return evaluator::ExtraerPalabra(TextArgument(arguments[0]), 1);
}

Variant SecondName(Arguments arguments, const BuiltinContext&) {
  return evaluator::ExtraerPalabra(TextArgument(arguments[0]), 2);
}

Variant Phrase(Arguments arguments, const BuiltinContext&) {
  return ExtraerFrase(TextArgument(arguments[0]), ToByte(arguments[1]));
}

Variant Word(Arguments arguments, const BuiltinContext&) {
  return evaluator::ExtraerPalabra(TextArgument(arguments[0]), ToByte(arguments[1]));
}

Variant LastWord(Arguments arguments, const BuiltinContext&) {
  return evaluator::ExtraeRev(TextArgument(arguments[0]));
}

}  // namespace tovalin::builtins
