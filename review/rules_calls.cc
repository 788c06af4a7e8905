#include "review/rules_calls.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "review/date_letters.h"
#include "review/suggestions.h"
#include "tovalin/convert.h"

namespace tovalin::review {
namespace {

Span CallSpan(const Place& place) {
  const std::uint32_t close = place.source.Match(place.token);
  return place.source.SpanOf(place.token, close == kNone ? place.source.Count() - 1 : close);
}

Text Counted(std::size_t count) {
  return FromUtf8(count == 1 ? "1 valor" : std::to_string(count) + " valores");
}

// "MEDIO( Expr , Inicio , Caracteres )".
Text Signature(const BuiltinFunction& row) {
  Text signature(row.word);
  TextView separator = u" ";
  for (const FunctionParameter& parameter : row.Parameters()) {
    signature.append(separator).append(parameter.name);
    separator = u" , ";
  }
  return signature.append(u" )");
}

using Arguments = std::span<const AbstractValue>;

void CheckRounding(const Place& place, Arguments arguments) {
  constexpr double kMostPlaces = 9;
  const AbstractValue& places = arguments[1];
  const double* count = places.is_constant ? places.value.IfDouble() : nullptr;
  if (!count || *count < 1 || *count > kMostPlaces || *count != std::floor(*count)) return;
  place.findings.Add(Rule::RoundsToTens, CallSpan(place),
                     {Shown(place.source.TextOf(CallSpan(place))),
                      ToText(Variant(std::pow(10.0, *count))), ToText(places.value)},
                     RoundedToDecimals(place.source, place.token, arguments));
}

// At the right end it does what one expects.
void CheckUnpadding(const Place& place, Arguments arguments) {
  const AbstractValue& side = arguments[2];
  const AbstractValue& fill = arguments[1];
  if (!side.is_constant || !IsNumeric(side.value) || ToDouble(side.value) == 1) return;
  const bool is_digit = fill.IsKnownText() && fill.ReadsAsNumber();
  const bool is_number = fill.is_constant && IsNumeric(fill.value);
  if (!is_digit && !is_number) return;
  std::optional<Repair> repair;
  if (ToDouble(fill.value) == 0)
    repair = OnlyFirstArgument(place.source, place.token, arguments, u"VAL( ");
  place.findings.Add(Rule::LosesDigits, CallSpan(place),
                     {Shown(place.source.TextOf(CallSpan(place)))}, std::move(repair));
}

void CheckDatePattern(const Place& place, Arguments arguments) {
  const AbstractValue& pattern = arguments[1];
  if (!pattern.is_constant || !pattern.IsKnownText()) return;
  const std::optional<DateLetters> letters = FindDateLetters(pattern.value.AsText());
  if (!letters) return;
  std::optional<Repair> repair;
  if (place.source.Is(pattern.first, TokenKind::Literal) && pattern.first == pattern.last)
    repair = WithLiteral(place.source, pattern.first, letters->escaped);
  place.findings.Add(Rule::LettersAsDate, place.source.SpanOf(pattern.first, pattern.last),
                     {Shown(pattern.value.AsText()), letters->word}, std::move(repair));
}

struct Surprise {
  TextView word;
  void (*check)(const Place& place, Arguments arguments);
};

constexpr Surprise kSurprises[] = {
    {u"Redondear(", CheckRounding},
    {u"DESAJUSTAR(", CheckUnpadding},
    {u"FORMAT(", CheckDatePattern},
    {u"IIF(",
     [](const Place& place, Arguments arguments) {
       AbstractValue condition = arguments[0];
       CheckCondition(place, condition);
     }},
};

}  // namespace

void CheckCount(const Place& place, const BuiltinFunction& row, Arguments arguments) {
  const std::size_t takes = row.Parameters().size();
  const bool is_more = arguments.size() > takes;
  std::vector<Text> names{Text(row.word.substr(0, row.word.size() - 1)), Counted(takes),
                          Counted(arguments.size())};
  if (!is_more) names.push_back(Signature(row));
  place.findings.Add(is_more ? Rule::MoreArguments : Rule::FewerArguments, CallSpan(place),
                     std::move(names), RightCall(place.source, place.token, row, arguments));
}

void CheckSurprises(const Place& place, const BuiltinFunction& row, Arguments arguments) {
  const auto* surprise = std::ranges::find(kSurprises, row.word, &Surprise::word);
  if (surprise != std::end(kSurprises)) surprise->check(place, arguments);
}

OperandType ChosenType(const BuiltinFunction& row, Arguments arguments) {
  std::optional<OperandType> type;
  for (std::size_t i = 0; i < arguments.size(); ++i)
    if (row.Parameters()[i].type == OperandType::Any)
      type = CommonType(type.value_or(arguments[i].type), arguments[i].type);
  return type.value_or(OperandType::Any);
}

}  // namespace tovalin::review
