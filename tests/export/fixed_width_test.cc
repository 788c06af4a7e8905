#include "export/export_fixture.h"

namespace tovalin {
namespace {

class FixedWidth : public ExportTest {
 protected:
  FixedWidth() { exporter->LetFomato(clsFileExport::LONGITUDFIJA); }
};

/// `text` with its dots, which stand for the character of code 0.
std::string Nuls(std::string text) {
  for (char& c : text)
    if (c == '.') c = '\0';
  return text;
}

TEST_F(FixedWidth, EveryType) {
  struct Case {
    std::int32_t type;
    Variant value;
    std::string field;
  };
  const Date moment{45356 + (6 * 60 + 5) / 1440.0};
  exporter->LetOrdenFechas(u"DMY");
  for (const Case& c : {
           Case{kInteger, std::int16_t{42}, Nuls("........42")},
           Case{kCurrency, Currency{125000}, Nuls("...........") + "12.5"},
           Case{kDouble, -0.5, Nuls("...........") + "-0.5"},
           Case{kFloat, u"x", Nuls("..............x")},
           Case{kNumeric, Variant::Null(), Nuls("................")},
           Case{kTime, moment, "06:05"},
           Case{kTimeOfDay, Variant::Null(), "     "},
           Case{kDate, moment, "05/03/24"},
           Case{kDate, u"05/03/2024", "05/03/24"},
           Case{kDate, Variant::Null(), "        "},
           Case{kText, u"año", "a\xF1o    "},
           Case{kLongText, Variant::Null(), "       "},
           Case{kText, u"1234567", "1234567"},
           Case{kWholeNumber, std::int32_t{12}, "12"},
           Case{kLogical, false, "Falso"},
           Case{0, Variant(), ""},
       }) {
    EXPECT_TRUE(Export(Table({{c.value}}), Fields({{u"A", c.type, 0, 7}}), 0)) << c.type;
    EXPECT_EQ(Data(), c.field + ";\r\n") << c.type;
  }
}

TEST_F(FixedWidth, RecordsAndLayout) {
  const auto fields = Fields({{u"Código", kText, 2, 4},
                              {u"Un nombre de treinta caractere", kInteger, 0},
                              {u"Libre", 0, 1},
                              {u"Fin", kTime, 3}});
  const Variant data = Table(
      {{std::int32_t{1}, u"abc", u"A1", Date{0.5}}, {std::int32_t{-22}, u"", u"B", Date{0.25}}});
  ASSERT_TRUE(Export(data, fields, 1));
  EXPECT_EQ(Data(), Nuls("A1  ;.........1;abc;12:00;\r\n"
                         "B   ;.......-22;;06:00;\r\n"));
  EXPECT_EQ(Layout(), "Descripci\xF3n de posiciones de campos para archivo " +
                          ToUtf8(here.Host("datos")) +
                          "\r\n"
                          "Fecha generaci\xF3n archivo de datos (.txt)05/03/2024 - 14:07:09\r\n"
                          "Nombre Campo                 OffSet   \r\n"
                          "~~~~~~~~~~~~~~~~~~~~~~~~~~\r\n"
                          "C\xF3"
                          "digo                        \t1\r\n"
                          "Un nombre de treinta caractere\t5\r\n"
                          "Libre                         \t15\r\n"
                          "Fin                           \t18\r\n"
                          "\r\n"
                          "\r\n"
                          "Total Registros Generados : 1\r\n"
                          "\r\n");
}

TEST_F(FixedWidth, NoRows) {
  for (const std::int32_t last_row : {-1, -7}) {
    ASSERT_TRUE(Export(Variant(), nullptr, last_row));
    EXPECT_EQ(Data(), "");
    EXPECT_TRUE(Layout().ends_with(
        "~~\r\n\r\n\r\nTotal Registros Generados : " + std::to_string(last_row) + "\r\n\r\n"));
  }
}

TEST_F(FixedWidth, NoFieldsGivesEmptyRecords) {
  ASSERT_TRUE(Export(Variant(), Fields({}), 1));
  EXPECT_EQ(Data(), "\r\n\r\n");
}

// The order in which the properties are assigned decides the dates.
TEST_F(FixedWidth, DatePatterns) {
  const auto fields = Fields({{u"A", kDate, 0}});
  const Variant data = Table({{Date{45356}}});
  const auto date = [&] { return Export(data, fields, 0) ? Data() : "False"; };

  EXPECT_EQ(date(), "False");  // the general form is too wide
  exporter->LetSeparadorFecha(u"-x");
  EXPECT_EQ(exporter->SeparadorFecha(), u"-");
  EXPECT_EQ(date(), "False");
  exporter->LetOrdenFechas(u"YMD");
  EXPECT_EQ(date(), "24-03-05;\r\n");
  exporter->LetSeparadorFecha(u"");
  EXPECT_EQ(exporter->SeparadorFecha(), u" ");
  exporter->LetAnoCompleto(true);
  EXPECT_EQ(date(), "24-03-05;\r\n");
  exporter->LetOrdenFechas(u"YMD");
  EXPECT_EQ(date(), "False");  // ten characters
  exporter->LetAnoCompleto(false);
  for (const auto& [code, kept, text] :
       {std::tuple{u"DMY", u"DMY", "05 03 24"}, std::tuple{u"DYM", u"DYM", "05 24 03"},
        std::tuple{u"MDY", u"MDY", "03 05 24"}, std::tuple{u"MYD", u"MYD", "03 24 05"},
        std::tuple{u"YDM", u"YDM", "24 05 03"}, std::tuple{u"YMD", u"YMD", "24 03 05"},
        std::tuple{u"DMA", u"AMD", "24 03 05"}, std::tuple{u"MDA", u"AMD", "24 03 05"},
        std::tuple{u"dmy", u"AMD", "24 03 05"}, std::tuple{u"", u"AMD", "24 03 05"}}) {
    exporter->LetOrdenFechas(code);
    EXPECT_EQ(exporter->OrdenFechas(), kept);
    EXPECT_EQ(date(), std::string(text) + ";\r\n");
  }
}

}  // namespace
}  // namespace tovalin
