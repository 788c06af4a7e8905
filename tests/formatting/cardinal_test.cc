#include "formatting/cardinal.h"

#include <gtest/gtest.h>
#include <unicode/rbnf.h>

#include <libnumbertext/Numbertext.hxx>

#include "random_amounts.h"
#include "tovalin/lib_monto.h"

namespace tovalin {
namespace {

std::string WordsOf(std::int64_t value, NumeralForm form) {
  Text words;
  AppendCardinal(words, static_cast<std::uint64_t>(value), form);
  return ToUtf8(words);
}

/// The Unicode project's rules for Spanish.
class UnicodeSpellout {
 public:
  UnicodeSpellout() : format_(icu::URBNF_SPELLOUT, icu::Locale("es"), status_) {}

  std::string Words(std::int64_t value, const char* rules) {
    icu::UnicodeString words;
    icu::FieldPosition ignored;
    format_.format(value, icu::UnicodeString(rules), words, ignored, status_);
    words.findAndReplace(icu::UnicodeString(u'\u00AD'), icu::UnicodeString());  // soft hyphens
    std::string utf8;
    words.toUTF8String(utf8);
    return U_SUCCESS(status_) ? utf8 : u_errorName(status_);
  }

 private:
  UErrorCode status_ = U_ZERO_ERROR;
  icu::RuleBasedNumberFormat format_;
};

void ExpectAgreement(UnicodeSpellout& spellout, std::int64_t value) {
  ASSERT_EQ(WordsOf(value, NumeralForm::Alone), spellout.Words(value, "%spellout-numbering"));
  ASSERT_EQ(WordsOf(value, NumeralForm::Masculine),
            spellout.Words(value, "%spellout-cardinal-masculine"));
  // The feminine rules leave "doscientos mil libras", which nobody says.
  if (value / 1000 % 1000 < 200) {
    ASSERT_EQ(WordsOf(value, NumeralForm::Feminine),
              spellout.Words(value, "%spellout-cardinal-feminine"));
  }
}

TEST(Cardinal, AgreesWithTheUnicodeRules) {
  UnicodeSpellout spellout;
  for (std::int64_t value = 0; value < 2000; ++value) ExpectAgreement(spellout, value);
  RandomAmounts random(1);
  for (int round = 0; round < 5000; ++round) ExpectAgreement(spellout, random.Whole());
}

TEST(Cardinal, AgreesWithNumbertextOnAmountsOfMoney) {
  struct Case {
    const char* code;
    const char16_t* moneda;
    monGenero genero;
  };
  // Without lempiras and córdobas: it takes every noun in "-as" for a feminine one.
  const Case kCases[] = {
      {"COP", u"peso colombiano", monMasculino},
      {"CRC", u"colón costarricense", monMasculino},
      {"EUR", u"euro", monMasculino},
      {"GBP", u"libra esterlina", monFemenino},
      {"GTQ", u"quetzal", monMasculino},
      {"PEN", u"sol||centavo", monMasculino},
      {"PYG", u"guaraní", monMasculino},
      {"USD", u"dólar estadounidense", monMasculino},
      {"UYU", u"peso uruguayo", monMasculino},
      {"VEF", u"bolívar fuerte", monMasculino},
  };
  Numbertext numbertext;
  numbertext.set_prefix("/usr/share/libnumbertext/");
  ASSERT_TRUE(numbertext.load("es"));
  const auto monto = Make<LibMonto>();
  RandomAmounts random(2);
  for (int round = 0; round < 600; ++round) {
    const Case& c = kCases[round % std::size(kCases)];
    const std::int64_t whole = round < 60 ? round / 12 : random.Whole() % 1'000'000'000'000;
    const bool feminine = c.genero == monFemenino;
    // It makes "una mil" of "un mil", which is not wrong either.
    if (feminine && whole / 1000 % 10 == 1) continue;
    const int cents = round % 3 == 0 ? 0 : random.Below(100);
    std::string expected = std::string(c.code) + ' ' + std::to_string(whole) + '.' +
                           static_cast<char>('0' + cents / 10) +
                           static_cast<char>('0' + cents % 10);
    ASSERT_TRUE(numbertext.numbertext(expected, "es"));
    const Currency amount{whole * 10000 + cents * 100};
    EXPECT_EQ(ToUtf8(monto->MontoCheque(amount, c.moneda, c.genero, monLetras)), expected);
  }
}

}  // namespace
}  // namespace tovalin
