#include "export/export_fixture.h"

namespace tovalin {
namespace {

using Delimited = ExportTest;

TEST_F(Delimited, OnlyTextFieldsCarryTheirOwnValues) {
  const auto fields = Fields({{u"Saldo", kCurrency, 1},
                              {u"Nombre", kText, 0},
                              {u"Edad", kInteger, 2},
                              {u"Nota", kLongText, 3}});
  const Variant data = Table({{u"Ana", Currency{125000}, std::int16_t{42}, u"sí; \"no\""},
                              {Variant::Null(), Currency{-5}, std::int16_t{7}, Variant()}});
  ASSERT_TRUE(Export(data, fields, 1));
  EXPECT_EQ(Data(),
            ";\"Ana\";\"Ana\";\"s\xED; \"no\"\"\r\n"
            "\"s\xED; \"no\"\";\"\";\"\";\"\"\r\n");
}

TEST_F(Delimited, Layout) {
  const auto fields =
      Fields({{u"Código", kText, 0}, {u"Un nombre de más de treinta caracteres", kDouble, 0}});
  ASSERT_TRUE(Export(Table({{u"A"}, {u"B"}}), fields, 1));
  EXPECT_EQ(Layout(), "Descripci\xF3n de posiciones de campos para archivo " +
                          ToUtf8(here.Host("datos")) +
                          "\r\n"
                          "Fecha generaci\xF3n archivo de datos (.txt)05/03/2024 - 14:07:09\r\n"
                          "Nombre Campo                 \r\n"
                          "~~~~~~~~~~~~~~~~~~~~~~~~~~\r\n"
                          "C\xF3"
                          "digo\r\n"
                          "Un nombre de m\xE1s de treinta caracteres\r\n"
                          "\r\n"
                          "\r\n"
                          "Total Registros Generados : 1\r\n"
                          "\r\n");
}

TEST_F(Delimited, TheQualifierIsOneCharacter) {
  const auto fields = Fields({{u"A", kText, 0}, {u"B", kText, 0}});
  struct Case {
    const char16_t* qualifier;
    const char* line;
  };
  for (const Case& c : {Case{u"'x", "'v';'v'\r\n"}, Case{u"", " v ; v \r\n"},
                        Case{u"Ω", "?v?;?v?\r\n"}, Case{u"«", "\xABv\xAB;\xABv\xAB\r\n"}}) {
    exporter->LetSeparadorCadena(c.qualifier);
    ASSERT_TRUE(Export(Table({{u"v"}}), fields, 0));
    EXPECT_EQ(Data(), c.line);
  }
}

TEST_F(Delimited, TextForms) {
  const auto fields = Fields({{u"A", kText, 0}});
  struct Case {
    Variant value;
    const char* text;
  };
  for (const Case& c :
       {Case{0.1, "0.1"}, Case{-1234.5f, "-1234.5"}, Case{Currency{12345}, "1.2345"},
        Case{std::int32_t{-7}, "-7"}, Case{std::uint8_t{200}, "200"}, Case{true, "Verdadero"},
        Case{Date{45356}, "05/03/2024"}, Case{Date{45356.25}, "05/03/2024 06:00:00"},
        Case{Variant::Null(), ""}, Case{Variant(), ""}, Case{u"€ Ω", "\x80 ?"}}) {
    ASSERT_TRUE(Export(Table({{c.value}}), fields, 0)) << c.text;
    EXPECT_EQ(Data(), '"' + std::string(c.text) + "\"\r\n");
  }
}

TEST_F(Delimited, NoTextFieldNeedsNoArray) {
  ASSERT_TRUE(Export(Variant(), Fields({{u"A", kInteger, 9}, {u"B", kDate, -1}}), 1));
  EXPECT_EQ(Data(), ";\r\n;\r\n");
}

TEST_F(Delimited, NoFieldsIsAFailure) {
  EXPECT_FALSE(Export(Table({{u"A"}}), Fields({}), 0));
  EXPECT_EQ(Data(), "");
  EXPECT_FALSE(here.Has("datos.ref"));
}

}  // namespace
}  // namespace tovalin
