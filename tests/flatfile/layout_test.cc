#include "flatfile/flat_fixture.h"
#include "tovalin/cls_file_export.h"

namespace tovalin {
namespace {

class FlatLayout : public FlatFileTest {
 protected:
  static std::string FaultOf(const std::function<void()>& work) {
    try {
      work();
    } catch (const Error& error) {
      return ToUtf8(error.description);
    }
    return "";
  }
  static Ref<Campos> FieldsOf(const std::vector<std::pair<std::int32_t, std::int32_t>>& types) {
    auto fields = Make<Campos>();
    for (const auto& [type, size] : types) {
      auto field = Make<Campo>(FromUtf8("Campo " + std::to_string(fields->Count())));
      field->LetDataType(type);
      field->LetSize(size);
      field->LetPosition(static_cast<std::int16_t>(fields->Count()));
      fields->Add(field);
    }
    return fields;
  }
};

TEST_F(FlatLayout, AFaultIsToldWithItsPlace) {
  const std::string text = R"("type": "string", "tovalin:ancho": 5)";
  const std::string fixed =
      R"({"tovalin:formato": "fijo", "fields": [{"name": "A", "tovalin:ancho": 3}, )";
  struct FaultCase {
    std::string json;
    std::string fault;
  };
  for (const FaultCase& row : std::vector<FaultCase>{
           {"{\n  \"fields\": [}", "línea 2, columna 14: el texto no es JSON"},
           {"", "línea 1, columna 1: el texto no es JSON"},
           {"[]", "Diseño: debe ser un objeto"},
           {"{}", "fields: debe ser una lista de campos"},
           {R"({"fields": []})", "Registro «detalle»: no tiene campos"},
           {R"({"fields": [{"name": "A"}, {"name": "a"}]})",
            "Registro «detalle», campo «A»: el nombre está repetido"},
           {Fixed(R"("tovalin:ancha": 5)"), "fields/0/tovalin:ancha: no se conoce"},
           {Fixed(R"("tovalin:ancho": -5)"),
            "fields/0/tovalin:ancho: debe ser un número entero de 0 a 1048576"},
           {Fixed(R"("type": "objeto")"),
            "fields/0/type: debe ser uno de string, integer, number, boolean, date, time, "
            "datetime"},
           {Fixed(text + R"(, "constraints": {"pattern": "x"})"),
            "fields/0/constraints/pattern: no se conoce"},
           {Fixed(R"("type": "date", "format": "%B")"),
            "fields/0/format: el patrón «%B» no se admite"},
           {Fixed(R"("type": "date", "tovalin:patron": "dd mmm yyyy")"),
            "Registro «detalle», campo «V»: el patrón tiene partes que no se pueden volver a leer"},
           {Fixed(R"("type": "date", "format": "%Y%m")"),
            "Registro «detalle», campo «V»: el patrón no dice año, mes y día"},
           {Fixed(R"("type": "integer", "tovalin:noCabe": "cortarDerecha")"),
            "Registro «detalle», campo «V»: sólo un texto se puede cortar"},
           {Fixed(R"("type": "integer", "tovalin:ancho": 5, "tovalin:relleno": "0",
                     "tovalin:alineacion": "izquierda")"),
            "Registro «detalle», campo «V»: con ceros a la derecha sería otro número"},
           {Fixed(R"("type": "number", "tovalin:ancho": 5, "tovalin:implicito": true)"),
            "Registro «detalle», campo «V»: el punto implícito pide decimales, sin separador de "
            "miles ni patrón"},
           {Fixed(text + R"(, "tovalin:formula": "1", "tovalin:constante": "1")"),
            "Registro «detalle», campo «V»: tiene más de uno entre constante, fórmula y total"},
           {Fixed(text + R"(, "tovalin:total": {"tipo": "cuenta"})"),
            "Registro «detalle», campo «V»: un total no va en un registro de detalle"},
           {fixed + R"({"name": "B", "tovalin:inicio": 3, "tovalin:ancho": 2}]})",
            "Registro «detalle», campo «B»: comienza en 3, sobre el campo anterior"},
           {fixed + R"({"name": "B"}, {"name": "C", "tovalin:ancho": 2}]})",
            "Registro «detalle», campo «B»: no tiene ancho"},
           {R"({"tovalin:longitud": 2, )" + fixed.substr(1) +
                R"({"name": "B", "tovalin:ancho": 2}]})",
            "Registro «detalle»: ocupa 5 caracteres y el registro es de 2"},
           {R"({"tovalin:dialecto": {"delimiter": "\""}, "fields": [{"name": "A"}]})",
            "Diseño: la comilla y el delimitador son el mismo carácter"},
       }) {
    EXPECT_EQ(FaultOf([&] { WithLayout(row.json); }), row.fault) << row.json;
  }
}

TEST_F(FlatLayout, AFormulaOrAColumnThatIsNotThereIsTold) {
  const auto write = [&](const std::string& field) {
    return FaultOf(
        [&] { WithLayout(Delimited(field))->Escribir(TableOf({{u"a"}}), Path(), u"X"); });
  };
  EXPECT_EQ(write(R"("type": "string")"),
            "Registro «detalle», campo «V»: no hay columna ni parámetro «V»");
  EXPECT_NE(write(R"("tovalin:formula": "Y + ")").find("campo «V»: fórmula «Y + »"),
            std::string::npos);
  EXPECT_EQ(Files(), 0u);
}

TEST_F(FlatLayout, ADeepOrHugeTextIsRefused) {
  EXPECT_NE(FaultOf([&] { WithLayout(std::string(200'000, '[')); }), "");
  EXPECT_NE(FaultOf([&] { WithLayout(std::string(200'000, '[') + std::string(200'000, ']')); }),
            "");
  EXPECT_NE(FaultOf([&] { WithLayout(R"({"fields": 1e999})"); }), "");
}

TEST_F(FlatLayout, SchemaIniBothWays) {
  const std::string ini =
      "[otro.txt]\r\nFormat=TabDelimited\r\n\r\n[nomina.txt]\r\nFormat=FixedLength\r\n"
      "ColNameHeader=False\r\nCharacterSet=1252\r\nDateTimeFormat=yyyymmdd\r\n"
      "DecimalSymbol=,\r\nCurrencyDigits=2\r\n"
      "Col1=\"Codigo\" Text Width 5\r\nCol2=\"Fecha de ingreso\" DateTime Width 8\r\n"
      "Col3=\"Salario\" Currency Width 12\r\nCol4=\"Dias\" Long Width 3\r\n";
  Put(ini, "schema.ini");
  const auto file = Make<ArchivoPlano>();
  file->LeerSchemaIni(Path("schema.ini"), u"NOMINA.TXT");
  ASSERT_TRUE(
      file->Escribir(TableOf({{u"00009", Date{45356}, 14800000.5, std::int16_t{30}}}), Path()))
      << Faults(*file);
  EXPECT_EQ(Contents(), "0000920240305 14800000,50 30\r\n");
  EXPECT_EQ(ToUtf8(file->SchemaIni(u"nomina.txt")), ini.substr(ini.find("[nomina")));

  for (const auto& [text, fault] : std::vector<std::pair<std::string, std::string>>{
           {"[a]\nFormat=Raro\n", "línea 2, Format: «Raro» no se admite"},
           {"[a]\nFormat\n", "línea 2: no dice CLAVE=VALOR"},
           {"[a]\nCol1=X Foto\n", "línea 2, Col1: «Foto» no es un tipo"},
           {"[a]\nFormat=FixedLength\nCol1=X Text\n", "línea 3, Col1: falta Width"},
           {"[a]\nCol1=X Text\nCol1=Y Text\n", "línea 3, Col1: está repetida"},
           {"[a]\nCharacterSet=OEM\n", "línea 2, CharacterSet: «OEM» no se admite"},
           {"Col1=X Text\n", "Diseño: no tiene secciones"},
       }) {
    Put(text, "schema.ini");
    EXPECT_EQ(FaultOf([&] { file->LeerSchemaIni(Path("schema.ini")); }),
              ToUtf8(Path("schema.ini")) + ": " + fault);
  }
  EXPECT_EQ(FaultOf([&] {
              WithLayout(Fixed(R"("type": "integer", "tovalin:ancho": 3,
                                               "tovalin:relleno": "0")"))
                  ->SchemaIni(u"a");
            }),
            "schema.ini: no describe la forma del campo «V»");
}

TEST_F(FlatLayout, AnExportGivesItsLayoutAndTheSameBytes) {
  const auto fields = FieldsOf({{kText, 6},
                                {kInteger, 0},
                                {kDate, 0},
                                {kTime, 0},
                                {kCurrency, 0},
                                {kDouble, 0},
                                {kFloat, 0}});
  Variant rows = TableOf(
      {{u"Ana", std::int16_t{42}, Date{45356}, Date{0.5}, Currency{12345}, 0.1, 0.1f},
       {u"Íñigo", std::int32_t{-7}, Variant::Null(), Date{0.75}, Currency{-1}, 1e15, 2.5f}});
  const auto exporter = Make<clsFileExport>();
  exporter->LetFomato(clsFileExport::LONGITUDFIJA);
  exporter->LetOrdenFechas(u"DMY");
  ASSERT_TRUE(exporter->GenerarArchivoPlanoDesdeBD(rows, fields, 1, Path("export")));
  const auto file = Make<ArchivoPlano>();
  file->DesdeExport(exporter, fields);
  ASSERT_TRUE(file->Escribir(rows, Path())) << Faults(*file);
  EXPECT_EQ(Contents(), Contents("export.txt"));
  const Variant read = file->Leer(Path("export.txt"));
  ASSERT_EQ(Faults(*file), "");
  EXPECT_EQ(read.AsArray().At(2, 0).AsDate(), Date{45356});
  EXPECT_EQ(read.AsArray().At(5, 1).AsDouble(), 1e15);

  // The description tells names and places; numbers come as the texts that they are.
  file->LeerDescripcion(Path("export.ref"));
  const Variant texts = file->Leer(Path("export.txt"));
  ASSERT_EQ(Faults(*file), "");
  EXPECT_EQ(texts.AsArray().At(0, 1).AsText(), u"Íñigo");
  EXPECT_EQ(texts.AsArray().At(2, 0).AsText(), u"05/03/24");
  EXPECT_EQ(file->CamposDe()->Item(std::int32_t{7}).AsText(), u"Campo 6");

  EXPECT_EQ(FaultOf([&] {
              file->DesdeExport(exporter, FieldsOf({{kLogical, 0}}));
            }),
            "Campo «Campo 0»: es de un tipo sin ancho fijo");
  Put("cualquier cosa\n", "otro.ref");
  EXPECT_NE(FaultOf([&] { file->LeerDescripcion(Path("otro.ref")); }), "");
}

TEST_F(FlatLayout, AFaultKeepsTheLayoutThereWas) {
  const auto file = WithLayout(Delimited(R"("type": "string")"));
  const Text before = file->Diseno();
  EXPECT_THROW(file->LetDiseno(u"{}"), Error);
  EXPECT_EQ(file->Diseno(), before);
  file->GuardarDiseno(Path("diseno.json"));
  file->LeerDiseno(Path("diseno.json"));
  EXPECT_EQ(file->Diseno(), before);
  EXPECT_THROW(file->LeerDiseno(Path("ninguno.json")), Error);
}

}  // namespace
}  // namespace tovalin
