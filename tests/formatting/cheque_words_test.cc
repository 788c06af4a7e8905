#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "formatting/currency_nouns.h"
#include "tovalin/lib_monto.h"

namespace tovalin {
namespace {

Currency Cents(std::int64_t cents) { return {cents * 100}; }

std::string Cheque(const Variant& valor, const Text& moneda, std::int32_t genero = monMasculino,
                   std::int32_t estilo = monLetras) {
  return ToUtf8(Make<LibMonto>()->MontoCheque(valor, moneda, genero, estilo));
}

/// The number of the error that the call raises, 0 for none.
template <class Call>
std::int32_t ErrorOf(Call call) {
  try {
    call();
    return 0;
  } catch (const Error& error) {
    EXPECT_FALSE(error.description.empty());
    return error.number;
  }
}

TEST(MontoCheque, AgreesWithItsNoun) {
  struct Case {
    std::int64_t cents;
    const char16_t* moneda;
    monGenero genero;
    const char* words;
  };
  const Case kCases[] = {
      {0, u"peso", monMasculino, "cero pesos"},
      {29, u"peso", monMasculino, "cero pesos con veintinueve centavos"},
      {100, u"peso", monMasculino, "un peso"},
      {101, u"peso", monMasculino, "un peso con un centavo"},
      {2121, u"peso", monMasculino, "veintiún pesos con veintiún centavos"},
      {2131, u"libra", monFemenino, "veintiuna libras con treinta y un peniques"},
      {100, u"libra", monFemenino, "una libra"},
      {3100, u"euro", monMasculino, "treinta y un euros"},
      {10000, u"sol", monMasculino, "cien soles"},
      {10100, u"sol", monMasculino, "ciento un soles"},
      {100000, u"sol", monMasculino, "mil soles"},
      {100100, u"sol", monMasculino, "mil un soles"},
      {2100000, u"libra", monFemenino, "veintiún mil libras"},
      {20000000, u"libra", monFemenino, "doscientas mil libras"},
      {50072100, u"libra", monFemenino, "quinientas mil setecientas veintiuna libras"},
      {100000000, u"peso", monMasculino, "un millón de pesos"},
      {100000100, u"peso", monMasculino, "un millón un pesos"},
      {2100000000, u"libra", monFemenino, "veintiún millones de libras"},
      {20000000000, u"libra", monFemenino, "doscientos millones de libras"},
      {100000000000, u"peso", monMasculino, "mil millones de pesos"},
      {100000000000000, u"peso", monMasculino, "un billón de pesos"},
      {-150, u"peso", monMasculino, "menos un peso con cincuenta centavos"},
      {2100, u"", monMasculino, "veintiuno"},
      {2150, u"", monFemenino, "veintiuna con cincuenta centavos"},
      {2216, u"bolívar", monMasculino, "veintidós bolívares con dieciséis céntimos"},
      {2326, u"balboa", monMasculino, "veintitrés balboas con veintiséis centésimos"},
      {201, u"peso uruguayo", monMasculino, "dos pesos uruguayos con un centésimo"},
      {200, u" Unidad  de Fomento ", monFemenino, "dos Unidades de Fomento"},
      {201, u"rupia|rupias|paisa", monFemenino, "dos rupias con un paisa"},
      {102, u"yen,yenes,sen,sen", monMasculino, "un yen con dos sen"},
      {202, u"UF|UF", monFemenino, "dos UF con dos centavos"},
      {9223372036854775807 / 100, u"guaraní", monMasculino,
       "novecientos veintidós billones trescientos treinta y siete mil doscientos tres millones "
       "seiscientos ochenta y cinco mil cuatrocientos setenta y siete guaraníes con cincuenta y "
       "ocho céntimos"},
  };
  for (const Case& c : kCases) EXPECT_EQ(Cheque(Cents(c.cents), c.moneda, c.genero), c.words);
}

TEST(MontoCheque, Styles) {
  struct Case {
    std::int64_t cents;
    monEstilo estilo;
    const char* words;
  };
  const Case kCases[] = {
      {123450, monLetras, "mil doscientas treinta y cuatro libras con cincuenta peniques"},
      {123400, monLetras, "mil doscientas treinta y cuatro libras"},
      {123450, monFraccion, "mil doscientas treinta y cuatro libras con 50/100"},
      {100, monFraccion, "una libra con 00/100"},
      {5, monFraccionMCte, "cero libras con 05/100 M/CTE"},
      {100000000, monFraccionMN, "un millón de libras 00/100 M.N."},
      {2199, monFraccionMoneda, "veintiuna y 99/100 libras"},
      {100000000, monFraccionMoneda, "un millón y 00/100 libras"},
      {2101, monMonedaFraccion, "libras veintiuna con 01/100"},
      {-2101, monMonedaFraccion, "menos libras veintiuna con 01/100"},
  };
  for (const Case& c : kCases)
    EXPECT_EQ(Cheque(Cents(c.cents), u"libra", monFemenino, c.estilo), c.words);
  EXPECT_EQ(Cheque(Cents(2150), u"", monMasculino, monFraccionMN), "veintiuno 50/100 M.N.");
  EXPECT_EQ(Cheque(Cents(2150), u"", monMasculino, monFraccionMoneda), "veintiuno y 50/100");
}

TEST(MontoCheque, TakesWholeCentsOfEverySubtype) {
  struct Case {
    Variant valor;
    std::int32_t error;
    const char* words;
  };
  const Case kCases[] = {
      {0.29, 0, "cero con 29/100"},
      {0.1 + 0.2, 0, "cero con 30/100"},
      {1.15f, 0, "uno con 15/100"},
      {-0.0, 0, "cero con 00/100"},
      {std::int16_t{7}, 0, "siete con 00/100"},
      {std::int32_t{-100000}, 0, "menos cien mil con 00/100"},
      {std::uint8_t{255}, 0, "doscientos cincuenta y cinco con 00/100"},
      {Variant(), 0, "cero con 00/100"},
      {u"1,234.50", 0, "mil doscientos treinta y cuatro con 50/100"},
      {u"$ 0.29000", 0, "cero con 29/100"},
      {u"(2e2)", 0, "menos doscientos con 00/100"},
      {u"922337203685477.58", 0,
       "novecientos veintidós billones trescientos treinta y siete mil doscientos tres millones "
       "seiscientos ochenta y cinco mil cuatrocientos setenta y siete con 58/100"},
      // No cents are lost where a text of 15 (or 7) digits shows too few.
      {10000000000000.5, 0, "diez billones con 50/100"},
      {123456789012345.0, 0,
       "ciento veintitrés billones cuatrocientos cincuenta y seis mil setecientos ochenta y nueve "
       "millones doce mil trescientos cuarenta y cinco con 00/100"},
      {123456789012345.67, 5, ""},
      {10000000000000.25, 5, ""},
      {123456.0f, 0, "ciento veintitrés mil cuatrocientos cincuenta y seis con 00/100"},
      {123456.78f, 5, ""},
      {16777216.0f, 5, ""},
      // Nothing is rounded.
      {0.295, 5, ""},
      {1e-20, 5, ""},
      {u"0.291", 5, ""},
      {Currency{2901}, 5, ""},
      {Currency{std::numeric_limits<std::int64_t>::min()}, 5, ""},
      // A comma that may be meant as the decimal point is not passed over.
      {u"1,50", 5, ""},
      {u"1.234,567", 5, ""},
      {u"12,3456", 5, ""},
      {u"922337203685477.59", 6, ""},
      {1e15, 6, ""},
      {1e300, 6, ""},
      {u"1e99999", 6, ""},
      {std::numeric_limits<double>::infinity(), 6, ""},
      {std::numeric_limits<double>::quiet_NaN(), 6, ""},
      {Variant::Null(), 13, ""},
      {Date{45000}, 13, ""},
      {true, 13, ""},
      {u"", 13, ""},
      {u"cien", 13, ""},
      {u"&H10", 13, ""},
  };
  for (const Case& c : kCases) {
    std::string words;
    EXPECT_EQ(ErrorOf([&] { words = Cheque(c.valor, u"", monMasculino, monFraccion); }), c.error)
        << c.words;
    EXPECT_EQ(words, c.words);
  }
}

TEST(MontoCheque, PluralsOfNouns) {
  struct Case {
    const char16_t* singular;
    const char16_t* plural;
  };
  const Case kCases[] = {
      {u"peso", u"pesos"},
      {u"libra esterlina", u"libras esterlinas"},
      {u"bolívar", u"bolívares"},
      {u"colón", u"colones"},
      {u"quetzal", u"quetzales"},
      {u"lempira", u"lempiras"},
      {u"guaraní", u"guaraníes"},
      {u"córdoba", u"córdobas"},
      {u"balboa", u"balboas"},
      {u"dólar de Hong Kong", u"dólares de Hong Kong"},
      {u"yen", u"yenes"},
      {u"COLÓN", u"COLONES"},
      {u"real", u"reales"},
      {u"franco francés", u"francos franceses"},
      {u"cruz", u"cruces"},
      {u"baht", u"bahts"},
      {u"rand", u"rands"},
      {u"Sol", u"Soles"},
      {u"ley", u"leyes"},
      {u"centavos", u"centavos"},
      {u"x", u"x"},
      {u"", u""},
  };
  for (const Case& c : kCases)
    EXPECT_EQ(ToUtf8(PluralOf(c.singular)), ToUtf8(c.plural)) << ToUtf8(c.singular);
}

TEST(MontoCheque, LinesAndCapitals) {
  struct Case {
    std::int32_t width;
    const char16_t* filler;
    const char* words;
  };
  const Case kCases[] = {
      {0, u"*", "DIECISÉIS MIL CIEN BOLÍVARES CON 50/100 M/CTE"},
      {46, u"*", "DIECISÉIS MIL CIEN BOLÍVARES CON 50/100 M/CTE*"},
      {47, u"*", "DIECISÉIS MIL CIEN BOLÍVARES CON 50/100 M/CTE *"},
      {18, u"*", "DIECISÉIS MIL CIEN\r\nBOLÍVARES CON ****\r\n50/100 M/CTE *****"},
      {20, u"-=", "DIECISÉIS MIL CIEN -\r\nBOLÍVARES CON 50/100\r\nM/CTE -=-=-=-=-=-=-="},
      {10, u"", "DIECISÉIS\r\nMIL CIEN\r\nBOLÍVARES\r\nCON 50/100\r\nM/CTE"},
      {10, u" ", "DIECISÉIS \r\nMIL CIEN  \r\nBOLÍVARES \r\nCON 50/100\r\nM/CTE     "},
  };
  const auto monto = Make<LibMonto>();
  for (const Case& c : kCases)
    EXPECT_EQ(ToUtf8(monto->MontoCheque(16100.5, u"bolívar", monMasculino, monFraccionMCte, c.width,
                                        c.filler, true)),
              c.words);
}

TEST(MontoCheque, RefusesWhatWouldNotReadBack) {
  struct Case {
    const char16_t* moneda;
    std::int32_t genero;
    std::int32_t estilo;
    std::int32_t width;
    const char16_t* filler;
  };
  const Case kCases[] = {
      {u"mil", 0, 0, 0, u"*"},
      {u"peso y medio", 0, 0, 0, u"*"},
      {u"menos", 0, 0, 0, u"*"},
      {u"docientos", 0, 0, 0, u"*"},
      {u"de peso", 0, 0, 0, u"*"},
      {u"peso de", 0, 0, 0, u"*"},
      {u"US$", 0, 0, 0, u"*"},
      {u"peso|pesos|centavo|centavos|", 0, 0, 0, u"*"},
      {u"|pesos", 0, 0, 0, u"*"},
      {u"centavo", 0, 0, 0, u"*"},
      {u"peso|pesos|peso", 0, 0, 0, u"*"},
      {u"peso", 2, 0, 0, u"*"},
      {u"peso", -1, 0, 0, u"*"},
      {u"peso", 0, 6, 0, u"*"},
      {u"peso", 0, -1, 0, u"*"},
      {u"peso", 0, 0, -1, u"*"},
      {u"peso", 0, 0, 32768, u"*"},
      {u"peso", 0, 0, 3, u"*"},
      {u"peso", 0, 0, 80, u"x"},
      {u"peso", 0, 0, 80, u"*1"},
      {u"peso", 0, 0, 80, u"\n"},
      {u"peso", 0, 0, 80, u"\xD83D"},
  };
  const auto monto = Make<LibMonto>();
  for (const Case& c : kCases)
    EXPECT_EQ(
        ErrorOf([&] { monto->MontoCheque(1.5, c.moneda, c.genero, c.estilo, c.width, c.filler); }),
        5)
        << ToUtf8(c.moneda) << ' ' << c.genero << ' ' << c.estilo << ' ' << c.width;
}

TEST(MontoCheque, AnswersLateBound) {
  const auto monto = Make<LibMonto>();
  std::array<Variant, 4> arguments = {Variant(u"21.5"), Variant(u"peso"), Variant(0.0),
                                      Variant(u"1")};
  Variant words;
  ASSERT_FALSE(monto->Invoke(u"montocheque", MemberKind::Method, arguments, words));
  EXPECT_EQ(ToUtf8(words.AsText()), "veintiún pesos con 50/100");
  std::array<Variant, 1> text = {words};
  Variant amount;
  ASSERT_FALSE(monto->Invoke(u"LeerMonto", MemberKind::Method, text, amount));
  EXPECT_EQ(amount.AsCurrency(), Currency{215000});
}

}  // namespace
}  // namespace tovalin
