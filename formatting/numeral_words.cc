#include "formatting/numeral_words.h"

#include <algorithm>
#include <array>

namespace tovalin {
namespace {

using Kind = NumeralWord::Kind;

constexpr char16_t WithoutAccent(char16_t c) {
  switch (c) {
    case u'á':
      return u'a';
    case u'é':
      return u'e';
    case u'í':
      return u'i';
    case u'ó':
      return u'o';
    case u'ú':
      return u'u';
    default:
      return c;
  }
}

constexpr std::size_t kLongestNumeral = 13;  // "cuatrocientos"

struct FoldedWord {
  std::array<char16_t, kLongestNumeral> letters{};
  std::size_t size = 0;
  constexpr TextView View() const { return {letters.data(), size}; }
};

constexpr FoldedWord Unaccented(TextView word) {
  FoldedWord folded;
  for (char16_t c : word) folded.letters[folded.size++] = WithoutAccent(c);
  return folded;
}

struct Row {
  FoldedWord word;
  NumeralWord meaning;
};

// Every word of an amount but the nouns, in alphabetical order, from the tables
// that amounts are written with.
constexpr auto kRows = [] {
  constexpr std::size_t kCount = 68;
  std::array<Row, kCount> rows{};
  std::size_t count = 0;
  const auto add = [&](TextView word, Kind kind, std::size_t value = 0,
                       NumeralForm form = NumeralForm::Masculine) {
    rows[count++] = {Unaccented(word), {kind, form, static_cast<std::int32_t>(value)}};
  };
  add(kBelowThirty[0], Kind::Zero);
  for (std::size_t i = 2; i < kBelowThirty.size(); ++i)
    if (i != 21) add(kBelowThirty[i], i < 10 ? Kind::Unit : Kind::Teen, i);
  for (std::size_t i = 0; i < kOne.size(); ++i) {
    add(kOne[i], Kind::Unit, 1, static_cast<NumeralForm>(i));
    add(kTwentyOne[i], Kind::Teen, 21, static_cast<NumeralForm>(i));
  }
  for (std::size_t i = 3; i < kTens.size(); ++i) add(kTens[i], Kind::Tens, 10 * i);
  add(u"cien", Kind::Cien, 100);
  add(kHundreds[1], Kind::Hundreds, 100);
  for (std::size_t i = 2; i < kHundreds.size(); ++i) {
    add(kHundreds[i], Kind::Hundreds, 100 * i);
    add(kFeminineHundreds[i], Kind::Hundreds, 100 * i, NumeralForm::Feminine);
  }
  add(u"mil", Kind::Mil);
  add(u"millón", Kind::Million, 1);
  add(u"millones", Kind::Million, 2);
  add(u"billón", Kind::Billion, 1);
  add(u"billones", Kind::Billion, 2);
  add(u"y", Kind::And);
  add(u"con", Kind::With);
  add(u"menos", Kind::Minus);
  add(u"de", Kind::Of);
  if (count != kCount) throw "the number of rows differs";
  std::sort(rows.begin(), rows.end(),
            [](const Row& a, const Row& b) { return a.word.View() < b.word.View(); });
  return rows;
}();

/// Whether one letter more, less or other, or two exchanged, is the difference.
bool OneEditApart(TextView a, TextView b) {
  if (a.size() > b.size()) std::swap(a, b);
  if (b.size() - a.size() > 1) return false;
  std::size_t same = 0;
  while (same < a.size() && a[same] == b[same]) ++same;
  a.remove_prefix(same);
  b.remove_prefix(same);
  if (b.empty()) return false;
  if (a.size() < b.size()) return a == b.substr(1);
  if (a.substr(1) == b.substr(1)) return true;
  return a.size() > 1 && a[0] == b[1] && a[1] == b[0] && a.substr(2) == b.substr(2);
}

Text Folded(TextView word) {
  Text folded(word);
  for (char16_t& c : folded) c = FoldLetter(c);
  return folded;
}

bool Resembles(TextView word, const Row& row) {
  if (!row.meaning.IsNumeral()) return false;
  const TextView numeral = row.word.View();
  // The shortest numerals are one letter from too many words ("una" and "UVA").
  if (numeral.size() < 4 && row.meaning.kind != Kind::Mil) return false;
  return OneEditApart(word, numeral) || (numeral.size() > 4 && word.starts_with(numeral));
}

}  // namespace

char16_t FoldLetter(char16_t c) { return WithoutAccent(FoldCase(c)); }

bool IsLetter(char16_t c) {
  if (c < 0x80) return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
  return FoldCase(c) != c || ToUpper(TextView(&c, 1))[0] != c;
}

NumeralWord LookUpNumeral(TextView word) {
  if (word.size() > kLongestNumeral) return {};
  FoldedWord folded;
  for (char16_t c : word) folded.letters[folded.size++] = FoldLetter(c);
  const auto found =
      std::lower_bound(kRows.begin(), kRows.end(), folded.View(),
                       [](const Row& row, TextView sought) { return row.word.View() < sought; });
  return found != kRows.end() && found->word.View() == folded.View() ? found->meaning
                                                                     : NumeralWord{};
}

bool ResemblesNumeral(TextView word) {
  // No numeral, but one letter from it: "nuevos soles".
  static constexpr std::array<TextView, 2> kExempt = {u"nuevo", u"nueva"};
  const Text folded = Folded(word);
  if (std::find(kExempt.begin(), kExempt.end(), folded) != kExempt.end()) return false;
  for (TextView stem : {u"dieci", u"veinti", u"mill"})
    if (folded.starts_with(stem)) return true;
  if (folded.find(u"cient") != Text::npos) return true;
  return std::any_of(kRows.begin(), kRows.end(),
                     [&](const Row& row) { return Resembles(folded, row); });
}

}  // namespace tovalin
