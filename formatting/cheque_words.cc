#include "formatting/cheque_words.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "formatting/argument_error.h"
#include "formatting/cardinal.h"

namespace tovalin {
namespace {

constexpr TextView kSource = u"LibMonto.MontoCheque";
constexpr std::uint64_t kMillion = 1'000'000;

enum class NounPlace { AfterNumber, AfterCents, First };

struct Style {
  std::int32_t code;
  NounPlace noun;
  bool cents_in_words;
  TextView joint;  // between the whole amount and the cents
  TextView mark;   // at the end
};

constexpr Style kStyles[] = {
    {monLetras, NounPlace::AfterNumber, true, u"con", u""},
    {monFraccion, NounPlace::AfterNumber, false, u"con", u""},
    {monFraccionMCte, NounPlace::AfterNumber, false, u"con", u"M/CTE"},
    {monFraccionMN, NounPlace::AfterNumber, false, u"", u"M.N."},
    {monFraccionMoneda, NounPlace::AfterCents, false, u"y", u""},
    {monMonedaFraccion, NounPlace::First, false, u"con", u""},
};

const Style& StyleOf(std::int32_t code) {
  const auto found = std::find_if(std::begin(kStyles), std::end(kStyles),
                                  [&](const Style& style) { return style.code == code; });
  if (found == std::end(kStyles)) RaiseInvalidArgument(kSource, u"El estilo no existe");
  return *found;
}

/// "50/100"
std::array<char16_t, 6> Fraction(std::uint64_t cents) {
  return {static_cast<char16_t>(u'0' + cents / 10),
          static_cast<char16_t>(u'0' + cents % 10),
          u'/',
          u'1',
          u'0',
          u'0'};
}

void AppendOptional(Text& text, TextView word) {
  if (!word.empty()) AppendWord(text, word);
}

/// The whole amount, with its noun when that follows right away.
void AppendWhole(Text& text, std::uint64_t whole, const CurrencyNouns& nouns, bool feminine,
                 bool before_noun) {
  const NumeralForm masculine = before_noun ? NumeralForm::Masculine : NumeralForm::Alone;
  AppendCardinal(text, whole, feminine ? NumeralForm::Feminine : masculine);
  if (!before_noun) return;
  if (whole != 0 && whole % kMillion == 0) AppendWord(text, u"de");
  AppendWord(text, whole == 1 ? nouns.singular : nouns.plural);
}

void AppendCents(Text& text, std::uint64_t cents, const CurrencyNouns& nouns, const Style& style) {
  if (!style.cents_in_words) {
    AppendOptional(text, style.joint);
    const auto fraction = Fraction(cents);
    return AppendWord(text, TextView(fraction.data(), fraction.size()));
  }
  if (cents == 0) return;
  AppendOptional(text, style.joint);
  AppendCardinal(text, cents, NumeralForm::Masculine);
  AppendWord(text, cents == 1 ? nouns.cent : nouns.cents);
}

}  // namespace

Text ChequeWords(std::int64_t cents, const CurrencyNouns& nouns, std::int32_t gender,
                 std::int32_t style_code) {
  const Style& style = StyleOf(style_code);
  if (gender != monMasculino && gender != monFemenino)
    RaiseInvalidArgument(kSource, u"El género no existe");
  const auto magnitude = static_cast<std::uint64_t>(cents < 0 ? -cents : cents);
  const bool before_noun = style.noun == NounPlace::AfterNumber && !nouns.plural.empty();
  Text text = cents < 0 ? u"menos" : u"";
  if (style.noun == NounPlace::First) AppendOptional(text, nouns.plural);
  AppendWhole(text, magnitude / 100, nouns, gender == monFemenino, before_noun);
  AppendCents(text, magnitude % 100, nouns, style);
  if (style.noun == NounPlace::AfterCents) AppendOptional(text, nouns.plural);
  AppendOptional(text, style.mark);
  return text;
}

}  // namespace tovalin
