#include <limits>

#include "flatfile/flat_fixture.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

struct FieldCase {
  std::string attributes;
  Variant value;
  std::string expected;  // the line without its end, or the reason
};

class FlatField : public FlatFileTest {
 protected:
  void CheckFixed(const std::vector<FieldCase>& cases) const {
    for (const FieldCase& row : cases) {
      SCOPED_TRACE(row.attributes + " -> " + row.expected);
      std::string line = Written(Fixed(row.attributes), row.value);
      if (line.ends_with("\r\n")) line.resize(line.size() - 2);
      EXPECT_EQ(line, row.expected);
      Remove();
    }
  }
};

std::string Whole(const std::string& more = "") {
  return R"("type": "integer", "tovalin:ancho": 6)" + more;
}
std::string Amount(const std::string& more = "") {
  return R"("type": "number", "tovalin:ancho": 9, "tovalin:decimales": 2)" + more;
}
const std::string kZeros = R"(, "tovalin:relleno": "0")";
const std::string kImplied = kZeros + R"(, "tovalin:implicito": true)";
const std::string kBehind = R"(, "tovalin:signo": "atras")";
const std::string kZone = kImplied + R"(, "tovalin:signo": "zona")";
const std::string kNoSign = R"(, "tovalin:signo": "ninguno")";
const std::string kPlus = R"(, "tovalin:signoMas": true)";
const std::string kRounds = R"(, "tovalin:redondear": true)";
constexpr std::int64_t kUnit = 10000;

TEST_F(FlatField, NumbersStandAsTheFieldSays) {
  CheckFixed({
      {Whole(), std::int16_t{42}, "    42"},
      {Whole(), std::int32_t{-42}, "   -42"},
      {Whole(), 42.0, "    42"},
      {Whole(), u"1,042", "  1042"},
      {Whole(kZeros), std::int32_t{-42}, "-00042"},
      {Whole(kZeros), std::int32_t{-999999}, "ocupa 7 caracteres y el campo es de 6"},
      {Whole(kZeros + kPlus), std::int32_t{42}, "+00042"},
      {Whole(kZeros + kBehind), std::int32_t{-42}, "00042-"},
      {Whole(kZeros + kBehind), std::int32_t{42}, "00042 "},
      {Whole(kNoSign), std::int32_t{-1}, "es negativo y el campo no lleva signo"},
      {Whole(), Variant::Null(), "      "},
      {Whole(kZeros), Variant::Null(), "      "},
      {Whole(kZeros), std::int16_t{0}, "000000"},
      {Whole(R"(, "groupChar": ",")"), std::int32_t{1234}, " 1,234"},
      {Whole(R"(, "tovalin:alineacion": "izquierda")"), std::int16_t{42}, "42    "},
      {Whole(), std::int32_t{1234567}, "ocupa 7 caracteres y el campo es de 6"},
      {Whole(R"(, "tovalin:noCabe": "marcar")"), std::int32_t{1234567}, "******"},
      {Amount(), Currency{29 * kUnit / 100}, "     0.29"},
      {Amount(), 0.29, "     0.29"},
      {Amount(), 1.005 * 2, "     2.01"},
      {Amount(), 0.1 + 0.2, "     0.30"},
      {Amount(R"(, "decimalChar": ",")"), -1234.5, " -1234,50"},
      {Amount(R"(, "decimalChar": ",", "groupChar": ".")"), 1234.5, " 1.234,50"},
      {Amount(kImplied), 1234.5, "000123450"},
      {Amount(kImplied), -1234.5, "-00123450"},
      {Amount(kZone), 1234.5, "00012345{"},
      {Amount(kZone), 12.37, "00000123G"},
      {Amount(kZone), -12.37, "00000123P"},
      {Amount(kZone), -12.30, "00000123}"},
      {Amount(kZone), 0.0, "00000000{"},
      {Amount(kZone), 0.01, "00000000A"},
      {Amount(kZone), -0.01, "00000000J"},
      {Amount(kZone), -9999999.99, "99999999R"},
      {Whole(), std::uint8_t{7}, "     7"},
      {Whole(), 999999.0, "999999"},
      {Whole(kZeros + kPlus), std::int16_t{0}, "+00000"},
      {Whole(kBehind), std::int16_t{42}, "   42 "},
      {Whole(kBehind + kPlus), std::int16_t{42}, "   42+"},
      {Whole(kBehind), std::int16_t{-42}, "   42-"},
      {Whole(R"(, "groupChar": ",")"), std::int16_t{999}, "   999"},
      {Whole(R"(, "groupChar": ",")"), std::int16_t{1000}, " 1,000"},
      {Whole(R"(, "groupChar": ",")"), std::int32_t{1234567},
       "ocupa 9 caracteres y el campo es de 6"},
      {Amount(), 0.0, "     0.00"},
      {Amount(), -0.01, "    -0.01"},
      {Amount(), 999999.99, "999999.99"},
      {Amount(), 1000000.0, "ocupa 10 caracteres y el campo es de 9"},
      {Amount(), u"1234.5", "  1234.50"},
      {Amount(), u"(5)", "    -5.00"},
      {Amount(), 1234.5f, "  1234.50"},
      {Amount(), std::int32_t{-7}, "    -7.00"},
      {Amount(kImplied), 0.05, "000000005"},
      {R"("type": "number", "tovalin:ancho": 9, "tovalin:decimales": 6)", Currency{15000},
       " 1.500000"},
      {R"("type": "number", "tovalin:ancho": 14, "tovalin:decimales": 2, "groupChar": ",")",
       -1234567.5, " -1,234,567.50"},
      {R"("type": "number", "tovalin:ancho": 20)", 1.0 / 3, "  0.3333333333333333"},
      {R"("type": "number", "tovalin:ancho": 9)", -2.5, "     -2.5"},
      {R"("type": "number", "tovalin:ancho": 9, "decimalChar": ",")", 0.1, "      0,1"},
      {R"("type": "number", "tovalin:ancho": 9)", Currency{15000}, "      1.5"},
      {R"("type": "number", "tovalin:ancho": 9)", u"1234.5", "   1234.5"},
      {R"("type": "number", "tovalin:ancho": 9)", 0.1f, "      0.1"},
      {R"("type": "number", "tovalin:ancho": 9, "tovalin:patron": "#,##0.00")", 1234.5,
       " 1,234.50"},
  });
}

TEST_F(FlatField, ANumberThatWouldLoseAnythingIsRefused) {
  const std::string pattern = R"("type": "number", "tovalin:ancho": 9, "tovalin:patron": "0.0")";
  CheckFixed({
      {Whole(), 0.5, "tiene decimales y el campo es entero"},
      {Amount(), 0.125, "tiene más de 2 decimales"},
      {Amount(), Currency{1}, "tiene más de 2 decimales"},
      {Amount(kRounds), 0.125, "     0.13"},
      {Amount(kRounds), Currency{-1250}, "    -0.13"},
      {Amount(kRounds), 0.005, "     0.01"},
      {Amount(kRounds), 0.0049, "     0.00"},
      {Amount(kRounds), -0.005, "    -0.01"},
      {Amount(kRounds), Currency{1249}, "     0.12"},
      {Amount(kRounds), Currency{50}, "     0.01"},
      {Amount(kRounds), u"0.995", "     1.00"},
      {Amount(kRounds), u"0.0004", "     0.00"},
      {Amount(), u"1.005", "tiene más de 2 decimales"},
      {Amount(), u"", "no es un número"},
      {R"("type": "integer", "tovalin:ancho": 20)", 922337203685477.0, "     922337203685477"},
      {R"("type": "integer", "tovalin:ancho": 20)", 922337203685478.0,
       "el importe es demasiado grande"},
      {R"("type": "number", "tovalin:ancho": 30)", Currency{9223372036854775807},
       "tiene más dígitos de los que el campo guarda"},
      {R"("type": "number", "tovalin:ancho": 30)", u"1234567890.123456",
       "tiene más dígitos de los que el campo guarda"},
      {R"("type": "number", "tovalin:ancho": 30)", u"123456789.123456",
       "              123456789.123456"},
      {R"("type": "number", "tovalin:ancho": 9)" + kNoSign, -0.5,
       "es negativo y el campo no lleva signo"},
      {R"("type": "number", "tovalin:ancho": 9)" + kNoSign, 0.0, "        0"},
      {R"("type": "number", "tovalin:ancho": 9)", u"cien", "no es un número"},
      {pattern, u"cien", "no es un número"},
      {pattern, 1e300, "el importe es demasiado grande"},
      {R"("type": "string", "tovalin:ancho": 20)", 999999999999999.0, "999999999999999     "},
      {R"("type": "string", "tovalin:ancho": 20)", 1e15,
       "el número tiene más dígitos de los que su texto guarda"},
      {Amount(), u"cien", "no es un número"},
      {Amount(), true, "no es un número"},
      {Amount(), Date{45000}, "no es un número"},
      {Amount(), u"&H1F", "no es un número"},
      {Amount(), std::numeric_limits<double>::infinity(), "no es un número"},
      {Amount(), 1e300, "el número es demasiado grande"},
      {Amount(), Currency{-922337203685477 * kUnit}, "ocupa 19 caracteres y el campo es de 9"},
      {pattern, 0.25, "el patrón no muestra el número completo"},
      {pattern, 0.5, "      0.5"},
      {R"("type": "string", "tovalin:ancho": 30)", 123456789012345678.0,
       "el número tiene más dígitos de los que su texto guarda"},
  });
}

TEST_F(FlatField, TextsStandAsTheFieldSays) {
  const auto text = [](const std::string& more) {
    return R"("type": "string", "tovalin:ancho": 5)" + more;
  };
  const std::string right = R"(, "tovalin:alineacion": "derecha")";
  CheckFixed({
      {text(""), u"Ana", "Ana  "},
      {text(right + kZeros), u"123", "00123"},
      {text(right + kZeros), u"023", "el texto comienza o termina con el carácter de relleno"},
      {text(right + kZeros), u"120", "00120"},
      {text(right), u"Ana", "  Ana"},
      {text(kZeros), u"0An", "0An00"},
      {text(kZeros), u"An0", "el texto comienza o termina con el carácter de relleno"},
      {text(""), u"Conta", "Conta"},
      {text(""), u"", "     "},
      {text(R"(, "tovalin:letras": "minusculas")"), u"ÑOÑO", "\xF1o\xF1o "},
      {text(""), u"a\rb", "el texto tiene un fin de línea"},
      {text(R"(, "constraints": {"enum": ["A", "B"]})"), u"B", "B    "},
      {text(R"(, "constraints": {"enum": ["A", "B"]})"), Variant::Null(), "     "},
      {text(right + kZeros), Variant::Null(), "     "},
      {text(R"(, "tovalin:letras": "mayusculas")"), u"ñoño", "\xD1O\xD1O "},
      {text(""), u"Íñigo P", "ocupa 7 caracteres y el campo es de 5"},
      {text(R"(, "tovalin:noCabe": "cortarDerecha")"), u"Bogotá", "Bogot"},
      {text(R"(, "tovalin:noCabe": "cortarIzquierda")"), u"Bogotá", "ogot\xE1"},
      {text(R"(, "tovalin:noCabe": "marcar", "tovalin:marca": "#")"), u"Bogotá", "#####"},
      {text(""), u"a\nb", "el texto tiene un fin de línea"},
      {text(R"(, "constraints": {"required": true})"), u"",
       "el campo es obligatorio y no tiene valor"},
      {text(R"(, "constraints": {"required": true})"), Variant::Null(),
       "el campo es obligatorio y no tiene valor"},
      {text(R"(, "constraints": {"enum": ["A", "B"]})"), u"C",
       "no está entre los valores permitidos"},
      {text(R"(, "missingValues": ["N/A"])"), Variant::Null(), "N/A  "},
      {text(R"(, "missingValues": ["N/A"])"), u"N/A", "se leería como un valor nulo"},
      {text(""), u"Ω", "el carácter «Ω» no existe en la codificación"},
  });
}

TEST_F(FlatField, DatesAndTruthStandAsTheFieldSays) {
  const auto date = [](const std::string& format) {
    return R"("type": "date", "tovalin:ancho": 10, "format": ")" + format + "\"";
  };
  const Date day{45356};  // 5 March 2024
  const std::string truth =
      R"("type": "boolean", "tovalin:ancho": 1, "trueValues": ["S"], "falseValues": ["N"])";
  CheckFixed({
      {date("%Y%m%d"), day, "  20240305"},
      {date("%d/%m/%Y"), day, "05/03/2024"},
      {date("%y%m%d"), day, "    240305"},
      {date("%y%m%d"), Date{9000}, "el patrón no muestra la fecha o la hora completa"},
      {date("%Y%m%d"), Date{45356.5}, "el patrón no muestra la fecha o la hora completa"},
      {date("%Y%m%d"), Date{45356 + 0.4 / 86400}, "  20240305"},
      {date("%Y%m%d"), Date{45356 + 0.6 / 86400},
       "el patrón no muestra la fecha o la hora completa"},
      {date("%Y%m%d"), Date{-1}, "  18991229"},
      {date("%y%m%d"), Date{10959}, "    300101"},  // 1930
      {date("%y%m%d"), Date{10958}, "el patrón no muestra la fecha o la hora completa"},
      {date("%y%m%d"), Date{47483}, "    291231"},  // 2029
      {date("%y%m%d"), Date{47484}, "el patrón no muestra la fecha o la hora completa"},
      {date("%Y%m%d"), u"5/3/2024", "  20240305"},
      {date("%Y%m%d"), u"ayer", "no es una fecha ni una hora"},
      {date("%Y%m%d"), 45356.0, "no es una fecha ni una hora"},
      {date("%Y%m%d"), Variant::Null(), "          "},
      {R"("type": "time", "tovalin:ancho": 5, "format": "%H:%M")", Date{0.5}, "12:00"},
      {R"("type": "datetime", "tovalin:ancho": 19)", Date{45356.75}, "2024-03-05T18:00:00"},
      {truth, true, "S"},
      {truth, false, "N"},
      {truth, u"S", "S"},
      {truth, u"TRUE", "S"},
      {truth, u"False", "N"},
      {truth, u"N", "N"},
      {truth, u"s", "no es un valor lógico"},
      {truth, Variant::Null(), " "},
      {truth, std::int16_t{1}, "no es un valor lógico"},
  });
}

TEST_F(FlatField, EncodingsKeepOrRefuseEachCharacter) {
  struct EncodingCase {
    std::string settings;
    std::u16string text;
    std::string expected;
  };
  for (const EncodingCase& row : std::vector<EncodingCase>{
           {R"("tovalin:codificacion": "1252")", u"Ñ€", "\xD1\x80\r\n"},
           {R"("tovalin:codificacion": "8859-1")", u"Ñ", "\xD1\r\n"},
           {R"("tovalin:codificacion": "8859-1")", u"€",
            "el carácter «€» no existe en la codificación"},
           {R"("tovalin:codificacion": "utf-8")", u"Ñ€", "Ñ€\r\n"},
           {R"("tovalin:codificacion": "utf-8-bom")", u"Ñ", "\xEF\xBB\xBFÑ\r\n"},
           {R"("tovalin:codificacion": "ascii")", u"Peña Nuñez", "Pena Nunez\r\n"},
           {R"("tovalin:codificacion": "ascii", "tovalin:sinCaracter": "rechazar")", u"ñ",
            "el carácter «ñ» no existe en la codificación"},
           {R"("tovalin:codificacion": "ascii")", u"€",
            "el carácter «€» no existe en la codificación"},
           {R"("tovalin:sinCaracter": "reemplazar", "tovalin:reemplazo": "_")", u"aΩ😀b",
            "a__b\r\n"},
           {R"("tovalin:finLinea": "lf")", u"a", "a\n"},
       }) {
    SCOPED_TRACE(row.settings);
    EXPECT_EQ(Written(Delimited(R"("type": "string")", row.settings + ","), row.text),
              row.expected);
    Remove();
  }
}

TEST_F(FlatField, DelimitedTextsAreQuotedWhereNeedBe) {
  struct QuoteCase {
    std::string dialect;
    Variant value;
    std::string expected;
  };
  const std::string never = R"("delimiter": ";", "comillas": "nunca")";
  for (const QuoteCase& row : std::vector<QuoteCase>{
           {R"("delimiter": ";")", u"a,b", "a,b\r\n"},
           {R"("delimiter": ";")", u"a;b", "\"a;b\"\r\n"},
           {R"("delimiter": ";")", u"a\"b", "\"a\"\"b\"\r\n"},
           {R"("delimiter": ";")", u"a\r\nb", "\"a\r\nb\"\r\n"},
           {R"("delimiter": ";")", u"", "\"\"\r\n"},
           {R"("delimiter": ";")", Variant::Null(), "\r\n"},
           {R"("comillas": "textos")", u"a", "\"a\"\r\n"},
           {R"("comillas": "siempre", "quoteChar": "'")", u"a", "'a'\r\n"},
           {R"("comillas": "siempre")", Variant::Null(), "\r\n"},
           {R"("comillas": "siempre")", u"", "\"\"\r\n"},
           {R"("comillas": "textos")", u"", "\"\"\r\n"},
           {R"("delimiter": ";")", u"a\nb", "\"a\nb\"\r\n"},
           {R"("delimiter": ";")", u"a\rb", "\"a\rb\"\r\n"},
           {R"("delimiter": ";")", u"\"", "\"\"\"\"\r\n"},
           {R"("doubleQuote": false)", u"a\"b", "el texto tiene la comilla, que no se dobla"},
           {never, u"a\"b", "a\"b\r\n"},
           {never, u"a;b", "el texto tiene el separador o un fin de línea y va sin comillas"},
       }) {
    SCOPED_TRACE(row.dialect);
    EXPECT_EQ(
        Written(Delimited(R"("type": "string")", "\"tovalin:dialecto\": {" + row.dialect + "},"),
                row.value),
        row.expected);
    Remove();
  }
}

// What stands in the file becomes a value, or is refused with the reason.
TEST_F(FlatField, ReadsByTheSameRules) {
  struct ReadCase {
    std::string attributes;
    std::string bytes;
    std::string expected;
  };
  const std::string number = R"("type": "number", "tovalin:ancho": 9)";
  const std::string text = R"("type": "string", "tovalin:ancho": 5)";
  const std::string right = R"(, "tovalin:alineacion": "derecha")";
  const std::string date = R"("type": "date", "tovalin:ancho": 10, "format": "%d/%m/%Y")";
  const std::string time = R"("type": "time", "tovalin:ancho": 8)";
  const std::string truth =
      R"("type": "boolean", "tovalin:ancho": 1, "trueValues": ["S"], "falseValues": ["N"])";
  const std::string no_number = "no es un número del campo";
  const std::string no_date = "no es una fecha o una hora con el patrón del campo";
  for (const ReadCase& row : std::vector<ReadCase>{
           {Whole(), "    42", "Long 42"},
           {Whole(), "42    ", "Long 42"},
           {Whole(), "000042", "Long 42"},
           {Whole(), "   -42", "Long -42"},
           {Whole(), "   +42", "Long 42"},
           {Whole(), "   42-", no_number},
           {Whole(), "  - 42", no_number},
           {Whole(), "   --4", no_number},
           {Whole(), "   4.0", no_number},
           {Whole(), "     -", no_number},
           {Whole(), "      ", "Null"},
           {Whole(), "    4x", no_number},
           {Whole(R"(, "groupChar": ",")"), " 1,234", "Long 1234"},
           {Whole(R"(, "groupChar": ",")"), "  ,234", no_number},
           {Whole(), " 1,234", no_number},
           {Whole(kBehind), "   42-", "Long -42"},
           {Whole(kBehind), "   42+", "Long 42"},
           {Whole(kBehind), "   42 ", "Long 42"},
           {Whole(kBehind), "   -42", no_number},
           {R"("type": "integer", "tovalin:ancho": 11)", " 2147483647", "Long 2147483647"},
           {R"("type": "integer", "tovalin:ancho": 11)", " 2147483648", "Currency 2147483648"},
           {R"("type": "integer", "tovalin:ancho": 11)", "-2147483648", "Long -2147483648"},
           {R"("type": "integer", "tovalin:ancho": 11)", "-2147483649", "Currency -2147483649"},
           {R"("type": "integer", "tovalin:ancho": 20)", "     922337203685477",
            "Currency 922337203685477"},
           {R"("type": "integer", "tovalin:ancho": 20)", "     922337203685478",
            "el importe es demasiado grande"},
           {R"("type": "integer", "tovalin:ancho": 20)", " 9223372036854775808",
            "el número tiene más dígitos de los que se pueden leer"},
           {Amount(), "     0.29", "Currency 0.29"},
           {Amount(), "      0.2", "Currency 0.2"},
           {Amount(), "        2", "Currency 2"},
           {Amount(), "       2.", "Currency 2"},
           {Amount(), "      .29", "Currency 0.29"},
           {Amount(), "        .", no_number},
           {Amount(), "    0.295", no_number},
           {Amount(), "    0.2.9", no_number},
           {Amount(), "    -1.50", "Currency -1.5"},
           {Amount(R"(, "decimalChar": ",", "groupChar": ".")"), " 1.234,50", "Currency 1234.5"},
           {Amount(R"(, "decimalChar": ",", "groupChar": ".")"), "  1,234.5", no_number},
           {Amount(kImplied), "000123450", "Currency 1234.5"},
           {Amount(kImplied), "-00123450", "Currency -1234.5"},
           {Amount(kImplied), "000000005", "Currency 0.05"},
           {Amount(kImplied), "0001234.5", no_number},
           {Amount(kZone), "00012345{", "Currency 1234.5"},
           {Amount(kZone), "00000123I", "Currency 12.39"},
           {Amount(kZone), "00000123}", "Currency -12.3"},
           {Amount(kZone), "00000123R", "Currency -12.39"},
           {Amount(kZone), "000001234", "Currency 12.34"},
           {Amount(kZone), "00000123S", no_number},
           {R"("type": "number", "tovalin:ancho": 9, "tovalin:decimales": 6)", " 1.500001",
            "Double 1.500001"},
           {number, "      0.1", "Double 0.1"},
           {number, "     -2.5", "Double -2.5"},
           {number, "     +2.5", "Double 2.5"},
           {number, "    1E+03", "Double 1000"},
           {number, "    1e999", no_number},
           {number, "      inf", no_number},
           {number, "      0,1", no_number},
           {number, "     0.1x", no_number},
           {number + R"(, "decimalChar": ",")", "      0,1", "Double 0.1"},
           {number + R"(, "decimalChar": ",")", "      0.1", no_number},
           {number + R"(, "tovalin:patron": "#,##0.00")", " 1,234.50", "Currency 1234.5"},
           {number + R"(, "tovalin:patron": "#,##0.00")", "1.2345678", no_number},
           {number + R"(, "tovalin:patron": "#,##0.00")", "     cien", no_number},
           {text, "Ana  ", "String Ana"},
           {text, " Ana ", "String  Ana"},
           {text + right, "  Ana", "String Ana"},
           {text + right, " Ana ", "String Ana "},
           {text + right + kZeros, "00123", "String 123"},
           {text + right + kZeros, "00120", "String 120"},
           {text + kZeros, "An000", "String An"},
           {text + kZeros, "0An00", "String 0An"},
           {text, "     ", "Null"},
           {text + R"(, "missingValues": ["N/A"])", "N/A  ", "Null"},
           {text + R"(, "constraints": {"required": true})", "     ",
            "el campo es obligatorio y no tiene valor"},
           {text + R"(, "constraints": {"enum": ["A", "B"]})", "B    ", "String B"},
           {text + R"(, "constraints": {"enum": ["A", "B"]})", "C    ",
            "no está entre los valores permitidos"},
           {date, "05/03/2024", "Date 05/03/2024"},
           {date, "29/02/2023", no_date},
           {date, "00/03/2024", no_date},
           {date, "01/13/2024", no_date},
           {date, "01/00/2024", no_date},
           {date, "31/12/0099", no_date},
           {date, "01/01/0100", "Date 01/01/0100"},
           {date, "5/03/2024 ", no_date},
           {date, "05-03-2024", no_date},
           {date, "          ", "Null"},
           {time, "23:59:59", "Date 23:59:59"},
           {time, "00:00:00", "Date 00:00:00"},
           {time, "24:00:00", no_date},
           {time, "12:60:00", no_date},
           {time, "12:00:60", no_date},
           {R"("type": "date", "tovalin:ancho": 8, "format": "%y%m%d")", "290101  ",
            "Date 01/01/2029"},
           {R"("type": "date", "tovalin:ancho": 8, "format": "%y%m%d")", "300101  ",
            "Date 01/01/1930"},
           {R"("type": "date", "tovalin:ancho": 8, "format": "%y%m%d")", "3001011 ", no_date},
           {truth, "S", "Boolean Verdadero"},
           {truth, "N", "Boolean Falso"},
           {truth, "X", "no es un valor lógico del campo"},
           {truth, " ", "Null"},
       }) {
    SCOPED_TRACE(row.attributes + " <- " + row.bytes);
    Put(row.bytes + "\r\n");
    const auto file = WithLayout(Fixed(row.attributes));
    const Variant read = file->Leer(Path());
    if (!file->Fallos().empty()) {
      EXPECT_EQ(ToUtf8(file->Fallos().front().motivo), row.expected);
      continue;
    }
    ASSERT_EQ(read.AsArray().Rows(), 1u);
    const Variant& value = read.AsArray().At(0, 0);
    const std::string kind = ToUtf8(SubtypeName(value.Kind()));
    EXPECT_EQ(value.Is(Subtype::Null) ? kind : kind + " " + ToUtf8(ToText(value)), row.expected);
  }
}

}  // namespace
}  // namespace tovalin
