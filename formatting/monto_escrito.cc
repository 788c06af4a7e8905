#include "formatting/monto_escrito.h"

#include <array>
#include <cmath>
#include <string_view>

#include "formatting/amount_picture.h"

namespace tovalin {
namespace {

constexpr std::array<TextView, 10> kUnits = {u"",      u"un",   u"dos",   u"tres", u"cuatro",
                                             u"cinco", u"seis", u"siete", u"ocho", u"nueve"};

// "dieci" and "veinti" are glued to the unit; neither carries an accent on it.
constexpr std::array<TextView, 10> kTens = {u"",         u"dieci",     u"veinti",  u"treinta",
                                            u"cuarenta", u"cincuenta", u"sesenta", u"setenta",
                                            u"ochenta",  u"noventa"};

constexpr std::array<TextView, 10> kHundreds = {u"",
                                                u"ciento ",
                                                u"doscientos ",
                                                u"trescientos ",
                                                u"cuatrocientos ",
                                                u"quinientos ",
                                                u"seiscientos ",
                                                u"setecientos ",
                                                u"ochocientos ",
                                                u"novecientos "};

constexpr std::array<TextView, 6> kTenToFifteen = {u"diez ",  u"once ",    u"doce ",
                                                   u"trece ", u"catorce ", u"quince "};

struct Scale {
  TextView plural;
  TextView singular;
};

// One for each block of six digits, from the highest.
constexpr std::array<Scale, 3> kScales = {
    {{u" billones ", u" billón "}, {u" millones ", u" millón "}, {u"", u""}}};

/// Collects the words in place. Where two blanks meet, only the first is kept.
class Words {
 public:
  void Append(TextView words) {
    if (length_ > 0 && characters_[length_ - 1] == u' ' && words.starts_with(u' '))
      words.remove_prefix(1);
    words.copy(characters_.data() + length_, words.size());
    length_ += words.size();
  }
  Text ToText() const { return Text(characters_.data(), length_); }

 private:
  // Six times "cuatrocientos cincuenta y cuatro" and " mil ", the scales and the
  // sign stay below this.
  std::array<char16_t, 320> characters_;
  std::size_t length_ = 0;
};

/// The number that the characters start with, 0 when they start with none.
int LeadingValue(std::string_view characters) {
  int value = 0;
  for (char c : characters) {
    if (c < '0' || c > '9') break;
    value = 10 * value + (c - '0');
  }
  return value;
}

std::size_t Digit(char c) { return c >= '0' && c <= '9' ? static_cast<std::size_t>(c - '0') : 0; }

void AppendThreeDigits(std::string_view three, Words& words) {
  const int value = LeadingValue(three);
  if (value == 1) return words.Append(u"un");
  if (value == 100) return words.Append(u"cien");
  words.Append(kHundreds[Digit(three[0])]);
  const int rest = LeadingValue(three.substr(1));
  if (rest >= 10 && rest <= 15)
    return words.Append(kTenToFifteen[static_cast<std::size_t>(rest - 10)]);
  if (rest == 20) return words.Append(u"veinte");
  const std::size_t tens = Digit(three[1]);
  const std::size_t units = Digit(three[2]);
  words.Append(kTens[tens]);
  if (tens >= 3 && units >= 1) words.Append(u" y ");
  words.Append(kUnits[units]);
}

/// `six` is two groups of three digits and the separator between them.
void AppendBlock(std::string_view six, const Scale& scale, Words& words) {
  const std::string_view upper = six.substr(0, 3);
  const std::string_view lower = six.substr(4, 3);
  const int thousands = LeadingValue(upper);
  const int units = LeadingValue(lower);
  if (thousands > 0) {
    AppendThreeDigits(upper, words);
    words.Append(u" mil ");
  }
  if (units > 0) AppendThreeDigits(lower, words);
  // Deliberately the sum of the two groups, not the block: 1,000,000,000 is
  // "un mil millón ". Printed cheques have always read so; a test of the block
  // would change their text.
  const int sum = thousands + units;
  if (sum > 0) words.Append(sum == 1 ? scale.singular : scale.plural);
}

}  // namespace

Text MontoEscrito(double pdblValor) {
  if (!std::isfinite(pdblValor)) return {};
  if (pdblValor == 0) return u"Cero";
  const AmountPicture picture = PictureOf(pdblValor);
  const std::string_view characters(picture.data(), picture.size());
  Words words;
  if (pdblValor < 0) words.Append(u"menos ");
  for (std::size_t i = 0; i < kScales.size(); ++i)
    AppendBlock(characters.substr(8 * i, 7), kScales[i], words);
  return words.ToText();
}

}  // namespace tovalin
