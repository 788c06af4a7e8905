#include <random>

#include "flatfile/flat_fixture.h"

namespace tovalin {
namespace {

// A header with totals, two kinds of details and a trailer.
constexpr const char* kPayroll = R"({
  "tovalin:formato": "fijo",
  "tovalin:longitud": 24,
  "tovalin:columnaRegistro": "Tipo",
  "fields": [{"name": "Tipo", "type": "string"}, {"name": "Valor", "type": "number"}],
  "tovalin:registros": [
    {"nombre": "encabezado", "papel": "inicio", "fields": [
      {"name": "R", "tovalin:ancho": 1, "tovalin:constante": "1"},
      {"name": "Pago", "type": "date", "format": "%Y%m%d", "tovalin:ancho": 8},
      {"name": "Lineas", "type": "integer", "tovalin:ancho": 4, "tovalin:relleno": "0",
       "tovalin:total": {"tipo": "registros"}}]},
    {"nombre": "abono", "cuando": ["A"], "fields": [
      {"name": "R", "tovalin:ancho": 1, "tovalin:constante": "6"},
      {"name": "Cuenta", "tovalin:ancho": 8, "tovalin:relleno": "0",
       "tovalin:alineacion": "derecha"},
      {"name": "Valor", "type": "number", "tovalin:decimales": 2, "tovalin:implicito": true,
       "tovalin:ancho": 10, "tovalin:relleno": "0"}]},
    {"nombre": "nota", "cuando": ["A", "N"], "fields": [
      {"name": "R", "tovalin:ancho": 1, "tovalin:constante": "7"},
      {"name": "Doble", "type": "number", "tovalin:decimales": 2, "tovalin:ancho": 12,
       "tovalin:formula": "Valor * Factor"}]},
    {"nombre": "fin", "papel": "fin", "fields": [
      {"name": "R", "tovalin:ancho": 1, "tovalin:constante": "9"},
      {"name": "Abonos", "type": "integer", "tovalin:ancho": 4,
       "tovalin:total": {"tipo": "cuenta", "registros": ["abono"]}},
      {"name": "Suma", "type": "number", "tovalin:decimales": 2, "tovalin:ancho": 12,
       "tovalin:total": {"tipo": "suma", "campo": "Valor"}},
      {"name": "Control", "type": "integer", "tovalin:ancho": 4, "tovalin:relleno": "0",
       "tovalin:total": {"tipo": "control", "campo": "Cuenta", "modulo": 10000}}]}
  ]})";

const std::string kPayrollFile =
    "1202403050006           \r\n"
    "6000099990000000029     \r\n"
    "7        0.58           \r\n"
    "6000000020000010050     \r\n"
    "7      201.00           \r\n"
    "9   2      100.790001   \r\n";

class FlatFile : public FlatFileTest {
 protected:
  FlatFile() { file->LetParametro(u"Pago", Date{45356}), file->LetParametro(u"Factor", 2.0); }
  static Variant Payments() {
    return TableOf({{u"A", 0.29, u"9999"}, {u"A", Currency{1005000}, u"2"}});
  }

  Ref<ArchivoPlano> file = WithLayout(kPayroll);
};

TEST_F(FlatFile, HeadersAndTrailersCountAndSum) {
  ASSERT_TRUE(file->Escribir(Payments(), Path())) << Faults(*file);
  EXPECT_EQ(Contents(), kPayrollFile);
  EXPECT_EQ(file->Registros(), 6);
  EXPECT_EQ(file->Registros(u"ABONO"), 2);
  EXPECT_EQ(Files(), 1u);
  EXPECT_TRUE(file->Verificar(Path())) << Faults(*file);

  const Variant read = file->Leer(Path(), u"abono");
  ASSERT_EQ(read.AsArray().Rows(), 2u);
  EXPECT_EQ(read.AsArray().At(1, 0).AsText(), u"9999");
  EXPECT_EQ(read.AsArray().At(2, 1).AsCurrency().ten_thousandths, 1005000);
}

TEST_F(FlatFile, EachFaultOfEachRowIsToldAndNothingIsPublished) {
  const Variant rows = TableOf({{u"A", u"diez", u"123456789"},
                                {u"X", 1.0, u"2"},
                                {u"A", 1.5, u"2"},
                                {u"N", Variant::Null(), u"2"},
                                {u"A", 0.005, u"2"}});
  Put("lo que había");
  EXPECT_FALSE(file->Escribir(rows, Path()));
  EXPECT_EQ(Contents(), "lo que había");
  EXPECT_EQ(Files(), 1u);
  EXPECT_EQ(Faults(*file),
            "1|abono|Cuenta|123456789|ocupa 9 caracteres y el campo es de 8\n"
            "1|abono|Valor|diez|no es un número\n"
            "1|nota|Doble||No coinciden los tipos\n"
            "2|||X|ningún registro del diseño corresponde a la fila\n"
            "5|abono|Valor|0.005|tiene más de 2 decimales\n");
  EXPECT_EQ(file->FilasRechazadas(), 3);
  EXPECT_FALSE(file->Publicado());

  file->LetPermitirParcial(true);
  file->LetLimiteErrores(2);
  EXPECT_FALSE(file->Escribir(rows, Path()));
  EXPECT_TRUE(file->Publicado());
  EXPECT_EQ(file->Fallos().size(), 2u);
  EXPECT_EQ(file->NumeroErrores(), 5);
  EXPECT_TRUE(file->Verificar(Path())) << Faults(*file);  // what is there adds up
  EXPECT_EQ(file->Registros(u"abono"), 1);
}

TEST_F(FlatFile, AFaultInAHeaderPublishesNothingEvenInPart) {
  file->LetPermitirParcial(true);
  file->LetParametro(u"Pago", u"ayer");
  EXPECT_FALSE(file->Escribir(Payments(), Path()));
  EXPECT_EQ(Faults(*file), "0|encabezado|Pago|ayer|no es una fecha ni una hora\n");
  EXPECT_EQ(Files(), 0u);
}

TEST_F(FlatFile, VerifyingFindsWhatWasChanged) {
  struct Change {
    std::size_t at;
    std::string bytes;
    std::string faults;
  };
  const std::size_t line = 26;
  for (const Change& change : std::vector<Change>{
           {line + 17, "30", "6|fin|Suma|100.79|los registros dan 100.8\n"},
           {line + 5, "8", "6|fin|Control|1|los registros dan 9001\n"},
           {line + 12, "x",
            "2|abono|Valor|000x000029|no es un número del campo\n"
            "6|fin|Abonos|2|los registros dan 1\n"
            "6|fin|Suma|100.79|los registros dan 100.5\n"
            "6|fin|Control|1|los registros dan 2\n"},
           {line, "5",
            "2|||5000099990000000029     |ningún registro del diseño corresponde\n"
            "6|fin|Abonos|2|los registros dan 1\n"
            "6|fin|Suma|100.79|los registros dan 100.5\n"
            "6|fin|Control|1|los registros dan 2\n"},
           {0, "2",
            "1|encabezado|R|2|debe decir «1»\n"
            "6|encabezado|||falta el registro, o no se pudo leer\n"},
           {1, "20241305",
            "1|encabezado|Pago|20241305|"
            "no es una fecha o una hora con el patrón del campo\n"
            "6|encabezado|||falta el registro, o no se pudo leer\n"},
           {12, "7", "1|encabezado|Lineas|7|los registros dan 6\n"},
       }) {
    std::string bytes = kPayrollFile;
    bytes.replace(change.at, change.bytes.size(), change.bytes);
    Put(bytes);
    EXPECT_FALSE(file->Verificar(Path()));
    EXPECT_EQ(Faults(*file), change.faults);
  }
  Put(kPayrollFile.substr(0, 5 * line));  // cut off before the trailer
  EXPECT_FALSE(file->Verificar(Path()));
  Put(kPayrollFile.substr(0, 3 * line - 9));  // and in the midst of a record
  EXPECT_FALSE(file->Verificar(Path()));
  Put("");
  EXPECT_FALSE(file->Verificar(Path()));
}

TEST_F(FlatFile, EveryConstantOfARecordIsChecked) {
  const auto codes = WithLayout(R"({"tovalin:formato": "fijo", "fields": [
      {"name": "Antes", "tovalin:ancho": 1, "tovalin:constante": "6"},
      {"name": "V", "tovalin:ancho": 2},
      {"name": "Medio", "tovalin:ancho": 2, "tovalin:constante": "MN"},
      {"name": "Detras", "tovalin:ancho": 1, "tovalin:constante": "Z"}]})");
  for (const auto& [record, faults] : std::vector<std::pair<std::string, std::string>>{
           {"6abMNZ", ""},
           {"7abMNZ", "1|detalle|Antes|7|debe decir «6»\n"},
           {"6abMMZ", "1|detalle|Medio|MM|debe decir «MN»\n"},
           {"6abMNz", "1|detalle|Detras|z|debe decir «Z»\n"}}) {
    Put(record + "\r\n");
    EXPECT_EQ(codes->Verificar(Path()), faults.empty()) << record;
    EXPECT_EQ(Faults(*codes), faults);
  }
}

// Whatever was done to a file or a layout, it is told and nothing worse.
TEST_F(FlatFile, DamagedFilesAndLayoutsDoNoHarm) {
  std::mt19937 random(94);
  const auto damaged = [&](std::string bytes) {
    static const std::string kBytes = "019A ;\"\r\n{}[]:,-x\xF1\xC3";
    for (auto changes = 1 + random() % 3; changes > 0; --changes) {
      const std::size_t at = random() % bytes.size();
      const std::string byte(1, kBytes[random() % kBytes.size()]);
      bytes.replace(at, random() % 2, byte.substr(random() % 2));
    }
    return bytes;
  };
  int faulty = 0;
  for (int i = 0; i < 500; ++i) {
    Put(damaged(kPayrollFile));
    EXPECT_NO_THROW(faulty += !file->Verificar(Path()));
  }
  EXPECT_GT(faulty, 300);
  int refused = 0;
  for (int i = 0; i < 500; ++i) {
    try {
      const auto other = WithLayout(damaged(kPayroll));
      other->LetParametro(u"Pago", Date{45356});
      other->LetParametro(u"Factor", 2.0);
      if (other->Escribir(Payments(), Path())) {
        EXPECT_TRUE(other->Verificar(Path()));
      }
    } catch (const Error&) {
      ++refused;
    }
  }
  EXPECT_GT(refused, 100);
}

TEST_F(FlatFile, RowsComeFromEventsAndTheHostChoosesTheirKind) {
  file->PedirFila.Attach([](std::int32_t number, Ref<Collection>& values, Text& kind, bool& any) {
    any = number <= 2;
    values->Add(u"?");
    values->Add(1.25);
    values->Add(u"77");
    kind = number == 1 ? u"nota" : u"abono";
  });
  ASSERT_TRUE(file->EscribirFilas(Path())) << Faults(*file);
  EXPECT_EQ(file->Registros(u"abono"), 1);
  EXPECT_EQ(file->Registros(u"nota"), 1);

  std::vector<std::string> kinds;
  file->FilaLeida.Attach(
      [&](std::int32_t number, const Text& kind, const Ref<Collection>& values, bool& cancel) {
        kinds.push_back(std::to_string(number) + ToUtf8(kind));
        if (kind == u"abono") {
          EXPECT_EQ(values->Item(u"cuenta").AsText(), u"77");
        }
        cancel = kind == u"abono";
      });
  EXPECT_TRUE(file->LeerFilas(Path())) << Faults(*file);
  EXPECT_EQ(kinds, (std::vector<std::string>{"1encabezado", "2nota", "3abono"}));
}

TEST_F(FlatFile, AHandlerThatRaisesLeavesNoFile) {
  file->PedirFila.Attach([](std::int32_t number, Ref<Collection>& values, Text&, bool& any) {
    if (number == 2) Raise(Failure::DivisionByZero);
    for (const char16_t* value : {u"A", u"1", u"1"}) values->Add(value);
    any = true;
  });
  EXPECT_THROW(file->EscribirFilas(Path()), Error);
  EXPECT_EQ(Files(), 0u);
  EXPECT_TRUE(file->Escribir(Payments(), Path()));  // the object is free again
}

TEST_F(FlatFile, ConvertsFromOneLayoutToAnother) {
  const auto ledger = WithLayout(R"({"tovalin:codificacion": "utf-8",
    "tovalin:dialecto": {"delimiter": ";", "header": true},
    "fields": [{"name": "Tipo"}, {"name": "Cuenta"},
               {"name": "Valor", "type": "number", "tovalin:decimales": 2}]})");
  Put("Tipo;Cuenta;Valor\nA;9999;0.29\nA;2;100.50\n", "libro.csv");
  ASSERT_TRUE(file->Convertir(ledger, Path("libro.csv"), Path())) << Faults(*file);
  EXPECT_EQ(Contents(), kPayrollFile);
  Put("Tipo;Cuenta;Valor\nA;9999;0.291\n", "libro.csv");
  EXPECT_FALSE(file->Convertir(ledger, Path("libro.csv"), Path()));
  EXPECT_EQ(Faults(*file), "2|detalle|Valor|0.291|no es un número del campo\n");
  EXPECT_EQ(Contents(), kPayrollFile);
}

// Records and quoted texts lie across the blocks that a file is read in.
TEST_F(FlatFile, LongTextsComeBackWhole) {
  const auto texts = WithLayout(Delimited(R"("type": "string")"));
  std::vector<Row> rows;
  for (std::size_t i = 0; i < 300; ++i) {
    Text text(i * 7919 % 3000, static_cast<char16_t>(u'a' + i % 26));
    for (std::size_t at = i; at < text.size(); at += 97) text[at] = u"\n\",ñ"[at % 4];
    rows.push_back({text});
  }
  ASSERT_TRUE(texts->Escribir(TableOf(rows), Path())) << Faults(*texts);
  const Variant read = texts->Leer(Path());
  ASSERT_EQ(read.AsArray().Rows(), rows.size()) << Faults(*texts);
  for (std::size_t i = 0; i < rows.size(); ++i)
    EXPECT_EQ(read.AsArray().At(0, i).AsText(), rows[i][0].AsText());
}

TEST_F(FlatFile, LateBoundHostsHaveItAll) {
  Variant result;
  const Ref<Object> object = Make<ArchivoPlano>();
  const auto call = [&](TextView name, MemberKind kind, std::vector<Variant> arguments) {
    const std::optional<Error> error = object->Invoke(name, kind, arguments, result);
    return error ? ToUtf8(error->description) : "";
  };
  EXPECT_EQ(call(u"Escribir", MemberKind::Method, {Payments(), Path()}),
            "No se ha dado el diseño del archivo");
  EXPECT_EQ(call(u"Diseno", MemberKind::Let, {FromUtf8(kPayroll)}), "");
  EXPECT_EQ(call(u"Parametro", MemberKind::Let, {u"Pago", Date{45356}}), "");
  EXPECT_EQ(call(u"Parametro", MemberKind::Let, {u"Factor", std::int16_t{2}}), "");
  for (const Variant& value : {Variant(Make<Collection>()), Variant(Make<VariantArray>(1, 1))})
    EXPECT_EQ(call(u"Parametro", MemberKind::Let, {u"Pago", value}), "No coinciden los tipos");
  EXPECT_EQ(call(u"Escribir", MemberKind::Method, {Payments(), Path()}), "");
  EXPECT_TRUE(result.AsBoolean());
  EXPECT_EQ(Contents(), kPayrollFile);
  EXPECT_EQ(call(u"Verificar", MemberKind::Method, {Path()}), "");
  EXPECT_TRUE(result.AsBoolean());

  int seen = 0;
  object->Attach(u"FilaLeida", [&](std::span<Variant> arguments) {
    ++seen;
    arguments[3].Assign(true);  // Cancelar
  });
  EXPECT_EQ(call(u"LeerFilas", MemberKind::Method, {Path()}), "");
  EXPECT_EQ(seen, 1);
  object->Attach(u"PedirFila", [&](std::span<Variant> arguments) {
    const Ref<Collection> values = arguments[1].Value().AsObject().As<Collection>();
    for (const char16_t* value : {u"A", u"1", u"1"}) values->Add(value);
    arguments[3].Assign(arguments[0].AsLong() <= 3);  // Hay
  });
  EXPECT_EQ(call(u"EscribirFilas", MemberKind::Method, {Path()}), "");
  EXPECT_TRUE(result.AsBoolean());
  EXPECT_EQ(call(u"Registros", MemberKind::Get, {u"abono"}), "");
  EXPECT_EQ(result.AsLong(), 3);
}

TEST_F(FlatFile, AFileThatCannotBeThereIsRaised) {
  const auto number = [&](const Text& path) {
    try {
      WithLayout(Delimited(R"("type": "string")"))->Escribir(TableOf({{u"a"}}), path);
    } catch (const Error& error) {
      return error.number;
    }
    return 0;
  };
  EXPECT_EQ(number(Path("no\\existe\\archivo.txt")), 75);
  EXPECT_EQ(number(u"\\dev\\full"), 61);
  EXPECT_EQ(number(u""), 52);
  EXPECT_THROW(file->Verificar(Path("ninguno.txt")), Error);
}

}  // namespace
}  // namespace tovalin
