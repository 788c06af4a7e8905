#include "formatting/cardinal.h"

#include <cassert>

namespace tovalin {
namespace {

constexpr std::uint64_t kMillion = 1'000'000;

struct Scale {
  std::uint64_t value;
  TextView singular;
  TextView plural;
};

constexpr std::array<Scale, 2> kScales = {
    {{kMillion * kMillion, u"billón", u"billones"}, {kMillion, u"millón", u"millones"}}};

TextView BelowThirty(std::size_t value, NumeralForm one) {
  const auto form = static_cast<std::size_t>(one);
  if (value == 1) return kOne[form];
  if (value == 21) return kTwentyOne[form];
  return kBelowThirty[value];
}

void AppendThreeDigits(Text& text, std::size_t value, bool feminine, NumeralForm one) {
  if (value == 100) return AppendWord(text, u"cien");
  if (value > 100) AppendWord(text, (feminine ? kFeminineHundreds : kHundreds)[value / 100]);
  std::size_t rest = value % 100;
  if (rest >= 30) {
    AppendWord(text, kTens[rest / 10]);
    rest %= 10;
    if (rest > 0) AppendWord(text, u"y");
  }
  if (rest > 0) AppendWord(text, BelowThirty(rest, one));
}

void AppendSixDigits(Text& text, std::uint64_t value, NumeralForm form) {
  const bool feminine = form == NumeralForm::Feminine;
  const auto thousands = static_cast<std::size_t>(value / 1000);
  if (thousands > 1) AppendThreeDigits(text, thousands, feminine, NumeralForm::Masculine);
  if (thousands > 0) AppendWord(text, u"mil");
  AppendThreeDigits(text, static_cast<std::size_t>(value % 1000), feminine, form);
}

}  // namespace

void AppendWord(Text& text, TextView word) {
  if (!text.empty() && text.back() != u' ') text += u' ';
  text += word;
}

void AppendCardinal(Text& text, std::uint64_t value, NumeralForm form) {
  assert(value < kMillion * kMillion * kMillion);
  if (value == 0) return AppendWord(text, kBelowThirty[0]);
  for (const Scale& scale : kScales) {
    const std::uint64_t count = value / scale.value;
    value %= scale.value;
    if (count == 0) continue;
    AppendSixDigits(text, count, NumeralForm::Masculine);
    AppendWord(text, count == 1 ? scale.singular : scale.plural);
  }
  AppendSixDigits(text, value, form);
}

}  // namespace tovalin
