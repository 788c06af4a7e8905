#include <limits>

#include "flatfile/flat_fixture.h"

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
      {date("%Y%m%d"), u"5/3/2024", "  20240305"},
      {date("%Y%m%d"), u"ayer", "no es una fecha ni una hora"},
      {date("%Y%m%d"), 45356.0, "no es una fecha ni una hora"},
      {date("%Y%m%d"), Variant::Null(), "          "},
      {R"("type": "time", "tovalin:ancho": 5, "format": "%H:%M")", Date{0.5}, "12:00"},
      {R"("type": "datetime", "tovalin:ancho": 19)", Date{45356.75}, "2024-03-05T18:00:00"},
      {truth, true, "S"},
      {truth, false, "N"},
      {truth, u"S", "S"},
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

}  // namespace
}  // namespace tovalin
