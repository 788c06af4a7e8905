#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include "formatting/cents.h"
#include "formatting/numeral_words.h"
#include "random_amounts.h"
#include "tovalin/lib_monto.h"

namespace tovalin {
namespace {

#if defined(NDEBUG) && !defined(__SANITIZE_ADDRESS__)
constexpr int kRounds = 1'000'000;
#else
constexpr int kRounds = 20'000;
#endif

TEST(LeerMonto, ReadsWhatMontoChequeWrites) {
  struct Noun {
    const char16_t* moneda;
    monGenero genero;
  };
  const Noun kNouns[] = {
      {u"peso", monMasculino},      {u"libra esterlina", monFemenino},
      {u"", monFemenino},           {u"dólar de los Estados Unidos", monMasculino},
      {u"nuevo sol", monMasculino}, {u"colón|colones|real|reales", monMasculino},
      {u"", monMasculino},          {u"UF|UF", monFemenino}};
  const Text kFillers[] = {u"*", u"-", u"", u" ", u". ", u"/", u"=+"};
  const auto monto = Make<LibMonto>();
  RandomAmounts random(20240205);
  for (int round = 0; round < kRounds; ++round) {
    std::int64_t cents = (random.Whole() * 100 + random.Below(100)) % (kMostCents + 1);
    if (random.Below(10) == 0) cents = -cents;
    const Noun& noun = kNouns[random.Below(std::size(kNouns))];
    const int width = random.Below(3) == 0 ? 14 + random.Below(60) : 0;
    const Text words =
        monto->MontoCheque(Currency{cents * 100}, noun.moneda, noun.genero, random.Below(6), width,
                           kFillers[random.Below(std::size(kFillers))], random.Below(2) == 0);
    ASSERT_EQ(monto->LeerMonto(words).ten_thousandths, cents * 100) << ToUtf8(words);
  }
}

TEST(LeerMonto, ReadsWhatMontoEscritoWrites) {
  const auto monto = Make<LibMonto>();
  RandomAmounts random(7);
  for (int round = 0; round < kRounds / 10; ++round) {
    const std::int64_t whole = random.Whole() % 900'000'000'000'000;
    const Text words = monto->MontoEscrito(static_cast<double>(-whole));
    ASSERT_EQ(monto->LeerMonto(words).ten_thousandths, -whole * 10000) << ToUtf8(words);
  }
}

TEST(LeerMonto, ReadsOtherSpellings) {
  struct Case {
    const char16_t* text;
    std::int64_t ten_thousandths;
  };
  const Case kCases[] = {
      {u"  mil\t pesos\r\n\r\ncon\n05/100 ", 10000500},
      {u"VEINTIUN MIL UN", 210010000},
      {u"doscientas veintiuna mil libras", 2210000000},
      {u"un mil millones de pesos", 10000000000000},
      {u"un mil millón ", 10000000000000},
      {u"mil pesos m/cte", 10000000},
      {u"mil pesos con 50/100 M.N......", 10005000},
      {u"treinta y 50/100 soles", 305000},
      {u"veintinueve centavos", 2900},
      {u"menos un céntimo de euro", -100},
      {u"mil con 50/100 pesos", 10005000},
      {u"Cero", 0},
      {u"menos cero pesos", 0},
      {u"novecientos veintidós billones trescientos treinta y siete mil doscientos tres millones "
       u"seiscientos ochenta y cinco mil cuatrocientos setenta y siete pesos con 58/100",
       9223372036854775800},
  };
  for (const Case& c : kCases)
    EXPECT_EQ(Make<LibMonto>()->LeerMonto(c.text).ten_thousandths, c.ten_thousandths)
        << ToUtf8(c.text);
}

TEST(LeerMonto, RefusesWhatIsNoAmount) {
  struct Case {
    const char16_t* text;
    const char* place;  // and what the message says of it
  };
  const Case kCases[] = {
      {u"", "está vacío"},
      {u" \r\n*** ", "está vacío"},
      {u"menos ", "después de «menos» (palabra 1, carácter 1)"},
      {u"pesos", "después de «pesos» (palabra 1, carácter 1)"},
      {u"mil cien mil", "«mil» (palabra 3, carácter 10) está fuera de orden"},
      {u"veinte y tres uno", "«y» (palabra 2, carácter 8) está fuera de orden"},
      {u"veinte uno", "«uno» (palabra 2, carácter 8)"},
      {u"treinta y once", "«y» (palabra 2"},
      {u"treinta cinco", "«cinco» (palabra 2"},
      {u"cinco treinta", "«treinta» (palabra 2"},
      {u"dos cientos", "«cientos» (palabra 2"},
      {u"cien dos", "«dos» (palabra 2"},
      {u"ciento pesos", "«ciento» (palabra 1, carácter 1) pide otro numeral"},
      {u"ciento mil", "«ciento» (palabra 1"},
      {u"cero mil", "«mil» (palabra 2"},
      {u"mil cero", "«cero» (palabra 2"},
      {u"mil mil", "«mil» (palabra 2"},
      {u"uno mil pesos", "«uno» (palabra 1, carácter 1) no va delante de «mil»"},
      {u"una mil libras", "«una» (palabra 1"},
      {u"millón de pesos", "«millón» (palabra 1"},
      {u"uno millón", "«millón» (palabra 2, carácter 5) no concuerda"},
      {u"un millones", "«millones» (palabra 2"},
      {u"dos millón", "«millón» (palabra 2"},
      {u"mil millón", "«millón» (palabra 2"},
      {u"doscientas millones", "«millones» (palabra 2"},
      {u"veintiuna millones", "«millones» (palabra 2"},
      {u"dos millones un billón", "«billón» (palabra 4"},
      {u"dos millones tres millones", "«millones» (palabra 4"},
      {u"un millón pesos", "«pesos» (palabra 3, carácter 11) pide «de» delante"},
      {u"mil de pesos", "«de» (palabra 2"},
      {u"un millón de", "después de «de» (palabra 3"},
      {u"un millón de cien", "«cien» (palabra 4"},
      {u"mil docientos pesos", "«docientos» (palabra 2, carácter 5) se parece a un numeral"},
      {u"mil treintaiuno pesos", "«treintaiuno» (palabra 2"},
      {u"dos mill pesos", "«mill» (palabra 2"},
      {u"mil pesos dos", "«dos» (palabra 3"},
      {u"mil pesos menos dos", "«menos» (palabra 3"},
      {u"menos menos mil", "«menos» (palabra 2"},
      {u"mil pesos con", "después de «con» (palabra 3"},
      {u"mil pesos con cinco", "después de «cinco» (palabra 4"},
      {u"mil pesos con cien centavos", "«cien» (palabra 4"},
      {u"mil pesos con dos pesos", "«pesos» (palabra 5"},
      {u"mil pesos y dos centavos", "«y» (palabra 3"},
      {u"mil pesos con y 50/100", "«y» (palabra 4"},
      {u"mil pesos con 50/100 pesos", "«pesos» (palabra 5"},
      {u"mil pesos con 50/100 50/100", "«50/100» (palabra 5"},
      {u"mil pesos con 5/100", "«5/100» (palabra 4, carácter 15) no forma parte de un monto"},
      {u"mil pesos con 50/1000", "«50/1000» (palabra 4"},
      {u"M/CTE", "«M/CTE» (palabra 1"},
      {u"50/100", "«50/100» (palabra 1"},
      {u"cien centavos", "«centavos» (palabra 2"},
      {u"un millón de centavos", "«centavos» (palabra 4"},
      {u"centavos diez", "«centavos» (palabra 1"},
      {u"dos centavos con 50/100", "«con» (palabra 3"},
      {u"1200 pesos", "«1200» (palabra 1"},
      {u"-mil pesos", "«-mil» (palabra 1"},
      {u"(mil pesos)", "«(mil» (palabra 1"},
      {u"mil, cien", "«mil,» (palabra 1"},
      {u"mil * cien", "«*» (palabra 2"},
      {u"mil\r\n\r\n cien cien", "«cien» (palabra 3, carácter 14)"},
  };
  for (const Case& c : kCases) {
    try {
      const Currency amount = Make<LibMonto>()->LeerMonto(c.text);
      ADD_FAILURE() << ToUtf8(c.text) << " reads as " << amount.ten_thousandths;
    } catch (const Error& error) {
      EXPECT_EQ(error.number, 5) << ToUtf8(c.text);
      EXPECT_EQ(ToUtf8(error.source), "LibMonto.LeerMonto");
      EXPECT_NE(ToUtf8(error.description).find(c.place), std::string::npos)
          << ToUtf8(error.description);
    }
  }
}

TEST(LeerMonto, RefusesWhatIsBeyondCurrency) {
  for (const char16_t* text :
       {u"novecientos veintidós billones trescientos treinta y siete mil doscientos tres millones "
        u"seiscientos ochenta y cinco mil cuatrocientos setenta y siete pesos con 59/100",
        u"mil billones", u"menos novecientos noventa y nueve mil billones de pesos"}) {
    try {
      Make<LibMonto>()->LeerMonto(text);
      ADD_FAILURE() << ToUtf8(text);
    } catch (const Error& error) {
      EXPECT_EQ(error.number, 6) << ToUtf8(text);
    }
  }
}

/// The amount, or nothing when the text is refused.
std::optional<Currency> Read(const Text& text) {
  try {
    return Make<LibMonto>()->LeerMonto(text);
  } catch (const Error&) {
    return std::nullopt;
  }
}

TEST(LeerMonto, NoticesEveryNumeralLeftOut) {
  const auto monto = Make<LibMonto>();
  RandomAmounts random(11);
  for (int round = 0; round < kRounds / 200; ++round) {
    const Currency amount{(random.Whole() * 100 + random.Below(100)) % kMostCents * 100};
    const Text words = monto->MontoCheque(amount, u"peso", monMasculino, monLetras);
    for (std::size_t begin = 0; begin < words.size();) {
      const std::size_t end = std::min(words.find(u' ', begin), words.size());
      if (LookUpNumeral(words.substr(begin, end - begin)).IsNumeral()) {
        ASSERT_NE(Read(words.substr(0, begin) + words.substr(std::min(end + 1, words.size()))),
                  amount)
            << ToUtf8(words) << " without word at " << begin;
      }
      begin = end + 1;
    }
  }
}

TEST(LeerMonto, TakesNoCurrencyForANumeral) {
  for (const char16_t* noun :
       {u"peso",    u"sol",     u"soles",   u"euro",    u"libra",    u"bolívar", u"quetzal",
        u"colón",   u"lempira", u"guaraní", u"córdoba", u"balboa",   u"dólar",   u"boliviano",
        u"real",    u"reales",  u"yen",     u"yuan",    u"won",      u"franco",  u"corona",
        u"rublo",   u"rupia",   u"dinar",   u"dírham",  u"rand",     u"zloty",   u"forinto",
        u"lira",    u"peseta",  u"sucre",   u"austral", u"cruzeiro", u"baht",    u"onza",
        u"nuevo",   u"nuevos",  u"centavo", u"céntimo", u"penique",  u"cent",    u"unidad",
        u"fomento", u"cuenta",  u"UVA",     u"UTA",     u"UMA",      u"UF",      u"DOP",
        u"los"})
    EXPECT_FALSE(ResemblesNumeral(noun)) << ToUtf8(noun);
  for (const char16_t* slip :
       {u"docientos", u"Cuatrosientos", u"SINCUENTA", u"beinte", u"veitne", u"quinietos", u"millon",
        u"dosciento", u"mli", u"siento", u"sinco", u"dieciseís", u"treinti", u"veintitantos"})
    EXPECT_TRUE(ResemblesNumeral(slip) || LookUpNumeral(slip).IsNumeral()) << ToUtf8(slip);
}

}  // namespace
}  // namespace tovalin
