#include "formatting/currency_nouns.h"

#include <algorithm>
#include <array>
#include <vector>

#include "formatting/argument_error.h"
#include "formatting/cardinal.h"
#include "formatting/numeral_words.h"

namespace tovalin {
namespace {

constexpr TextView kSource = u"LibMonto.MontoCheque";

struct CentsOfCurrency {
  TextView currency;  // the whole noun or its first word
  TextView cent;
};

constexpr CentsOfCurrency kCentNouns[] = {
    {u"peso uruguayo", u"centésimo"}, {u"balboa", u"centésimo"}, {u"bolívar", u"céntimo"},
    {u"colón", u"céntimo"},           {u"euro", u"céntimo"},     {u"franco", u"céntimo"},
    {u"guaraní", u"céntimo"},         {u"libra", u"penique"},    {u"nuevo sol", u"céntimo"},
    {u"peseta", u"céntimo"},          {u"sol", u"céntimo"},
};
constexpr TextView kUsualCent = u"centavo";

bool SameWords(TextView a, TextView b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char16_t x, char16_t y) { return FoldLetter(x) == FoldLetter(y); });
}

std::vector<TextView> WordsOf(TextView text) {
  std::vector<TextView> words;
  while (!(text = Trim(text)).empty()) {
    words.push_back(text.substr(0, text.find(u' ')));
    text.remove_prefix(words.back().size());
  }
  return words;
}

TextView FirstWord(TextView noun) { return noun.substr(0, noun.find(u' ')); }

TextView CentNounOf(TextView currency) {
  const TextView first = FirstWord(currency);
  for (const CentsOfCurrency& row : kCentNouns)
    if (SameWords(row.currency, currency) || SameWords(row.currency, first)) return row.cent;
  return kUsualCent;
}

bool IsOneOf(char16_t c, TextView letters) { return letters.find(c) != TextView::npos; }

constexpr TextView kVowels = u"aeiouáéíóúü";
constexpr TextView kAccented = u"áéíóú";

/// What is added to the word, whose last letter is `last` after `before`.
TextView PluralEnding(char16_t before, char16_t last) {
  if (IsOneOf(last, u"íú")) return u"es";
  if (IsOneOf(last, kVowels)) return u"s";
  const bool after_vowel = IsOneOf(before, kVowels);
  // Of those that end in "s" only words stressed at their end change: "francés".
  if (IsOneOf(last, u"sx")) return IsOneOf(before, kAccented) ? u"es" : u"";
  return after_vowel && IsOneOf(last, u"dljnryz") ? u"es" : u"s";
}

Text PluralOfWord(TextView word) {
  Text plural(word);
  const Text lower = ToLower(word);
  if (lower.size() < 2) return plural;
  const std::size_t last = lower.size() - 1;
  const Text ending(PluralEnding(lower[last - 1], lower[last]));
  if (ending == u"es") {
    // "colón", "colones": the stress needs no accent any more.
    if (IsOneOf(lower[last], u"ns") && IsOneOf(lower[last - 1], kAccented)) {
      const char16_t bare = FoldLetter(lower[last - 1]);
      plural[last - 1] = lower[last - 1] == word[last - 1] ? bare : ToUpper(Text(1, bare))[0];
    }
    if (lower[last] == u'z') plural[last] = word[last] == u'z' ? u'c' : u'C';
  }
  return plural + (lower[last] == word[last] ? ending : ToUpper(ending));
}

bool IsNounWord(TextView word) {
  if (!std::all_of(word.begin(), word.end(), IsLetter)) return false;
  const NumeralWord::Kind kind = LookUpNumeral(word).kind;
  if (kind == NumeralWord::Kind::Of) return true;
  return kind == NumeralWord::Kind::Other && !ResemblesNumeral(word);
}

/// The noun with single blanks between its words.
Text CheckedNoun(TextView noun) {
  Text checked;
  const std::vector<TextView> words = WordsOf(noun);
  for (TextView word : words) {
    const bool at_end = word.data() == words.front().data() || word.data() == words.back().data();
    if (!IsNounWord(word) || (at_end && LookUpNumeral(word).kind == NumeralWord::Kind::Of))
      RaiseInvalidArgument(kSource, u"La moneda " + Quoted(noun) +
                                        u" no se podría leer en letras: " + Quoted(word) +
                                        u" no sirve de nombre");
    AppendWord(checked, word);
  }
  return checked;
}

}  // namespace

bool IsCentNoun(TextView word) {
  static constexpr TextView kNouns[] = {u"centavo",  u"centavos",  u"céntimo",
                                        u"céntimos", u"centésimo", u"centésimos"};
  return std::any_of(std::begin(kNouns), std::end(kNouns),
                     [&](TextView noun) { return SameWords(noun, word); });
}

bool SameStem(TextView left, TextView right) {
  const std::size_t shorter = std::min(left.size(), right.size());
  return shorter > 0 && SameWords(left.substr(0, shorter), right.substr(0, shorter));
}

Text PluralOf(TextView noun) {
  Text plural;
  bool changes = true;
  for (TextView word : WordsOf(noun)) {
    if (SameWords(word, u"de") || SameWords(word, u"del")) changes = false;
    AppendWord(plural, changes ? PluralOfWord(word) : Text(word));
  }
  return plural;
}

CurrencyNouns ReadCurrencyNouns(TextView moneda) {
  std::array<Text, 4> parts;
  TextView rest = moneda;
  for (std::size_t i = 0;; ++i) {
    if (i == parts.size())
      RaiseInvalidArgument(kSource,
                           u"La moneda " + Quoted(moneda) + u" tiene más de cuatro partes");
    const std::size_t end = rest.find_first_of(u"|,");
    parts[i] = CheckedNoun(rest.substr(0, end));
    if (end == TextView::npos) break;
    rest.remove_prefix(end + 1);
  }
  auto& [singular, plural, cent, cents] = parts;
  if (singular.empty() && !plural.empty())
    RaiseInvalidArgument(kSource, u"La moneda " + Quoted(moneda) + u" no tiene singular");
  if (IsCentNoun(FirstWord(singular)) || IsCentNoun(FirstWord(plural)))
    RaiseInvalidArgument(kSource, u"La moneda " + Quoted(moneda) + u" es de centavos");
  if (plural.empty()) plural = PluralOf(singular);
  if (cent.empty()) cent = CentNounOf(singular);
  if (cents.empty()) cents = PluralOf(cent);
  for (TextView currency : {FirstWord(singular), FirstWord(plural)})
    for (TextView part : {FirstWord(cent), FirstWord(cents)})
      if (SameStem(currency, part))
        RaiseInvalidArgument(kSource,
                             u"La moneda " + Quoted(moneda) + u" y sus centavos se llaman igual");
  return {singular, plural, cent, cents};
}

}  // namespace tovalin
