#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <functional>
#include <map>
#include <new>
#include <optional>

#include "tests/evaluator/formula_host.h"
#include "tests/files/temporary_directory.h"
#include "tovalin/archivo_plano.h"
#include "tovalin/cls_file_export.h"
#include "tovalin/dispatch.h"
#include "tovalin/enumerador.h"
#include "tovalin/factory.h"
#include "tovalin/lib_fecha.h"
#include "tovalin/lib_file.h"
#include "tovalin/lib_general.h"
#include "tovalin/lib_monto.h"
#include "tovalin/lib_texto.h"

// Memory that runs out is error 7 out of every member, wherever it happens, and leaves
// nothing lost or half done: each member is run with its first allocation failing, then
// its second, and so on until it succeeds.

namespace {

std::size_t to_go = 0;  // allocations until one fails; 0 for none
bool fail_on = false;   // and all behind it
bool has_failed = false;

void CountAllocation() {
  if (to_go == 0 || --to_go > 0) return;
  has_failed = true;
  if (fail_on) to_go = 1;
  throw std::bad_alloc();
}

}  // namespace

// Not inlined: the compiler would take malloc and delete for a mismatch.
[[gnu::noinline]] void* operator new(std::size_t size) {
  CountAllocation();
  if (void* memory = std::malloc(size > 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace tovalin {
namespace {

// What `work` ends with while the n-th allocation fails, or all from there on.
struct Attempt {
  bool failed = false;  // an allocation
  std::string outcome = "done";
};

template <class Work>
Attempt RunFailing(std::size_t n, bool all_behind, Work work) {
  has_failed = false;
  fail_on = all_behind;
  to_go = n;
  std::int32_t number = 0;
  const char* other = nullptr;
  try {
    work();
  } catch (const Error& error) {
    number = error.number;
  } catch (const std::bad_alloc&) {
    other = "bad_alloc";
  } catch (const std::length_error&) {
    other = "length_error";
  }
  to_go = 0;
  Attempt attempt{has_failed};
  if (other) attempt.outcome = other;
  if (number != 0) attempt.outcome = "Error " + std::to_string(number);
  return attempt;
}

class NoSettings : public SettingsStore {
 public:
  void Save(TextView, TextView, TextView, TextView) override {}
  Text Get(TextView, TextView, TextView, TextView otherwise) const override {
    return Text(otherwise);
  }
};

// An evaluator, and whatever else the rows need.
struct Fixture {
  Fixture() {
    host.evaluator->UseSettings(Make<NoSettings>());
    host.evaluator->AddVble(u"Doble", 0.0, u"", kNumeric, u"@A * 2 & X & ComodinLike");
    host.evaluator->AddVble(u"Cuadruple", 0.0, u"", kNumeric, u"Doble & Doble");
    host.evaluator->AddFunction(u"SUMA(", u"SUMA", u"", u"");
    host.evaluator->Evaluate.Attach([this](const Text&, Variant& result, Ref<Collection>& pila) {
      const Variant top = host.evaluator->LoadTopePila(pila);
      host.evaluator->LoadTopePila(pila);
      result = top;
    });
    list->Add(u"uno", u"Clave uno, que es larga");
    list->Add(u"dos");
    for (const char16_t* token : {u"A", u"&", u"'"}) tokens->Add(token);
    Text faulty = u"@Quien + * 'abc";
    host.evaluator->CheckInfijo(faulty);
  }

  // Everything that the rows may change, as text.
  std::string State() const {
    std::string state;
    for (const Ref<Campos>& table :
         {host.evaluator->Functions(), host.evaluator->Variables(), host.evaluator->Constantes()}) {
      const KeyedList<Ref<Campo>>& records = table->List();
      for (std::size_t i = 0; i < records.Size(); ++i) {
        const Campo& record = *records[i];
        EXPECT_EQ(records.Find(records.Key(i)), i);
        state += ToUtf8(records.Key(i)) + "," + ToUtf8(record.Name()) + "," +
                 ToUtf8(record.Formula()) + "," + ToUtf8(record.Description()) + "," +
                 std::to_string(record.Status()) + ";";
      }
      state += "\n";
    }
    for (const Ref<Collection>& items : {list, postfix}) {
      const KeyedList<Variant>& values = items->List();
      for (std::size_t i = 0; i < values.Size(); ++i)
        state += ToUtf8(values.Key(i)) + "=" + FormulaHost::Show(values[i]) + ";";
      state += "\n";
    }
    return state + FormulaHost::Show(result) + ToUtf8(host.evaluator->StringDelimiter()) +
           ToUtf8(text) + ToUtf8(exporter->OrdenFechas()) + ToUtf8(general->Aplicacion());
  }

  FormulaHost host;
  Ref<Formula> formula = host.evaluator->Preparar(u"@A * 2 & X & ComodinLike");
  Ref<Campo> record = Make<Campo>(u"Otro");
  Ref<Collection> list = Make<Collection>();
  Ref<Collection> tokens = Make<Collection>();
  Ref<Collection> postfix = Make<Collection>();
  Ref<clsFileExport> exporter = Make<clsFileExport>();
  Ref<LibGeneral> general = Make<LibGeneral>();
  Ref<LibFile> files = Make<LibFile>();
  Ref<LibFecha> dates = Make<LibFecha>();
  Variant result = 5.0;
  Text text = u"un texto que no cabe en sí mismo";
};

struct Row {
  const char* name;
  std::function<void(Fixture&)> work;
};

// Arguments are the host's own memory: they are made once, before anything fails.
const Text& T(TextView text) {
  static std::map<Text, Text, std::less<>> made;
  const auto found = made.find(text);
  return found != made.end() ? found->second : made.emplace(text, text).first->second;
}
const Variant& V(TextView text) {
  static std::map<Text, Variant, std::less<>> made;
  const auto found = made.find(text);
  return found != made.end() ? found->second : made.emplace(text, Variant(text)).first->second;
}

constexpr TextView kLong = u"un nombre que no cabe en sí mismo";

const Row kRows[] = {
    {"Collection.Add",
     [](Fixture& f) { f.list->Add(V(u"tres"), V(u"Otra clave, larga también")); }},
    {"Collection.Add the first key",
     [](Fixture& f) { f.postfix->Add(V(u"tres"), V(u"Otra clave, larga también")); }},
    {"Collection.Add before",
     [](Fixture& f) { f.list->Add(V(kLong), Variant::Missing(), V(u"Clave uno, que es larga")); }},
    {"Collection.Claves", [](Fixture& f) { f.list->Claves(); }},
    {"Collection.NewEnum",
     [](Fixture& f) {
       Variant item;
       const Ref<Enumerador> items = f.list->NewEnum();
       items->Siguiente(item);
       items->Clave();
     }},
    {"Campos.Add", [](Fixture& f) { f.host.evaluator->Variables()->Add(f.record); }},
    {"Campo.Let",
     [](Fixture& f) {
       f.host.evaluator->Variables()->Item(V(u"B"))->LetFormula(T(u"A * 2 + A * 3"));
     }},
    {"Campo.Copy", [](Fixture& f) { f.host.evaluator->Variables()->Item(V(u"B"))->Copy(); }},
    {"NewVble",
     [](Fixture& f) {
       f.host.evaluator->NewVble(T(kLong), V(kLong), T(kLong), kLongText, T(kLong));
     }},
    {"NewVble of a name that is none",
     [](Fixture& f) { f.host.evaluator->NewVble(T(u"A+B"), 1.0, T(kLong), kNumeric); }},
    {"NewConstant",
     [](Fixture& f) { f.host.evaluator->NewConstant(T(kLong), V(kLong), T(kLong), 1014); }},
    {"AddFunction",
     [](Fixture& f) {
       f.host.evaluator->AddFunction(T(u"LARGA FUNCION("), T(kLong), T(kLong), T(kLong));
     }},
    {"RemoveVble", [](Fixture& f) { f.host.evaluator->RemoveVble(T(u"B")); }},
    {"RemoveConts", [](Fixture& f) { f.host.evaluator->RemoveConts(T(u"ComodinLike")); }},
    {"RemoveConts of the system", [](Fixture& f) { f.host.evaluator->RemoveConts(T(u"FALSO")); }},
    {"ClearFunctions", [](Fixture& f) { f.host.evaluator->ClearFunctions(); }},
    {"ClearConstants", [](Fixture& f) { f.host.evaluator->ClearConstants(); }},
    {"LetStringDelimiter", [](Fixture& f) { f.host.evaluator->LetStringDelimiter(T(kLong)); }},
    {"LetDescription",
     [](Fixture& f) {
       f.host.evaluator->LetDescription(T(kLong));
       f.host.evaluator->Description();
     }},
    {"EvaluatePosfijo",
     [](Fixture& f) {
       f.host.evaluator->EvaluatePosfijo(
           V(u"(@Cuadruple & '-' & SUMA( A , X )) & FORMAT( A , '#,##0.00' )"), f.result);
     }},
    {"EvaluatePosfijo that raises",
     [](Fixture& f) { f.host.evaluator->EvaluatePosfijo(V(u"A * X + B"), f.result); }},
    {"EvaluatePosfijo with a fault",
     [](Fixture& f) { f.host.evaluator->EvaluatePosfijo(V(u"@Quien + * 'abc"), f.result); }},
    {"LastError",
     [](Fixture& f) {
       f.host.evaluator->LastError();
       f.host.evaluator->Errores();
     }},
    {"CalcularDependencias", [](Fixture& f) { f.host.evaluator->CalcularDependencias(T(u"A")); }},
    {"CheckInfijo", [](Fixture& f) { f.host.evaluator->CheckInfijo(f.text); }},
    {"Posfijo", [](Fixture& f) { f.host.evaluator->Posfijo(f.tokens, f.postfix); }},
    {"Preparar",
     [](Fixture& f) {
       const Ref<Formula> formula = f.host.evaluator->Preparar(T(u"@Cuadruple & ComodinLike & A"));
       formula->Texto();
       formula->Posfijo();
       formula->Variables();
       formula->Errores();
     }},
    {"Formula.Evaluar", [](Fixture& f) { f.formula->Evaluar(f.result); }},
    {"Names",
     [](Fixture& f) {
       f.host.evaluator->ReplaceExpresion(T(u"@Salario Base * 2 + @A + 'texto'"));
       f.host.evaluator->VarExpresion(T(u"@Salario Base * 2 + @A + 'texto'"));
       f.host.evaluator->ConstExpresion(T(u"VERDADERO + FALSO"));
       f.host.evaluator->ReplaceWildCards(T(u"un texto * con ? comodines"));
     }},
    {"CSVNextChar", [](Fixture& f) { f.host.evaluator->CSVNextChar(f.text, T(u"q"), T(u"'")); }},
    {"Texts",
     [](Fixture& f) {
       const Evaluador& evaluator = *f.host.evaluator;
       evaluator.Strip(T(kLong), T(u"no"));
       evaluator.ReplaceString(T(kLong), T(u"no"), T(kLong));
       evaluator.CharCount(T(kLong), T(u"no"));
       evaluator.Replicate(T(kLong), 3);
       evaluator.StripNit(T(kLong));
       evaluator.RemoveChars(T(kLong));
       evaluator.DigitoV(T(u"800197268"));
       evaluator.ExtraerPalabra(T(kLong), 2);
       evaluator.ExtraerFrase(T(kLong), 2);
       evaluator.ExtraeRev(T(kLong));
       evaluator.MontoEscrito(1234567.89);
     }},
    {"LibFecha",
     [](Fixture& f) {
       Variant date = V(u"15/02/2024");
       f.dates->MonthBegin(date);
       f.dates->MonthEnd(date);
       f.dates->DateDiffStr(V(u"15/02/2020"), date);
       f.dates->cdbDate(date, T(u"dddd, d \"de\" mmmm \"de\" yyyy"));
       EXPECT_EQ(f.dates->DiasSemana()->Count(), 7);
       EXPECT_EQ(f.dates->MesesDelAno()->Count(), 12);
       std::int32_t seconds = 1'234'567;
       std::int16_t format = 1;
       f.dates->Duration(seconds, format);
     }},
    {"LibTexto",
     [](Fixture&) {
       LibMonto().MontoEscrito(1234567.89);
       LibTexto().ExtraerPalabra(T(kLong), 1);
       LibTexto().ExtraerFrase(T(kLong), 1);
       LibTexto().TipoFrase(T(kLong));
     }},
    {"LibFile",
     [](Fixture& f) {
       const LibFile& files = *f.files;
       files.DirExist(V(kLong));
       files.FileExist(V(kLong));
       files.StripFileName(f.text);
       files.StripPath(T(u"un directorio\\con un archivo largo"));
       files.FileToText(T(kLong));
     }},
    {"LibGeneral",
     [](Fixture& f) {
       const Text& tag = T(u"uno que es largo»otro, también largo»");
       f.general->AddText(T(kLong), 65);
       f.general->AddNumber(T(u"12345678901"), 48);
       f.general->GetTag(tag, 2);
       f.general->LetTag(tag, 1, T(kLong));
       f.general->LetSeparador(V(u"una cosa larga que no cabe"));
       f.general->Separador();
       f.general->StripDelimiter(tag, T(u"»"));
       f.general->Pot(V(u"12"), 3.0);
       f.general->Check(V(u"15/02/2024"), 1011);
     }},
    {"LibGeneral.Aplicacion", [](Fixture& f) { f.general->LetAplicacion(T(kLong)); }},
    {"LibGeneral.AdicionarParametro",
     [](Fixture& f) {
       f.general->AdicionarParametro(f.text, T(u"{Tabla.Un campo largo}"), T(u"AND"), T(u"="),
                                     V(u"un valor que es largo"), 1014);
     }},
    {"clsFileExport", [](Fixture& f) { f.exporter->LetOrdenFechas(T(u"DMY")); }},
    {"CreateObject",
     [](Fixture&) {
       CreateObject(T(u"Tovalin.Evaluador"));
       Classes();
     }},
};

// Each attempt finds the fixture as the failed ones before it have left it.
void FailEachAllocation(const Row& row, bool all_behind, const Attempt& done,
                        const std::string& expected) {
  std::optional<Fixture> fixture(std::in_place);
  const auto work = [&row, &fixture] { row.work(*fixture); };
  std::string before = fixture->State();
  for (std::size_t n = 1;; ++n) {
    const Attempt attempt = RunFailing(n, all_behind, work);
    const std::string after = fixture->State();
    if (attempt.outcome == done.outcome) {
      ASSERT_TRUE(after == expected) << row.name << ' ' << n;
      if (!attempt.failed) break;
      fixture.emplace();  // it did without the memory
    } else {
      ASSERT_EQ(attempt.outcome, "Error 7") << row.name << ' ' << n;
      ASSERT_TRUE(after == before) << row.name << ' ' << n;
    }
  }
  EXPECT_EQ(fixture->host.Evaluate(u"A * 2 & Codigo"), "String 4007") << row.name;
}

TEST(OutOfMemory, IsErrorSevenAndChangesNothing) {
  for (const Row& row : kRows) {
    Fixture model;
    const Attempt done = RunFailing(0, false, [&] { row.work(model); });
    const std::string expected = model.State();
    for (const bool all_behind : {false, true}) FailEachAllocation(row, all_behind, done, expected);
  }
}

// Rows that were computed are kept, whatever becomes of the others.
TEST(OutOfMemory, KeepsTheRowsOfATable) {
  constexpr std::size_t kRowCount = 150;
  std::vector<Variant> names(kRowCount);
  for (std::size_t i = 0; i < kRowCount; ++i)
    names[i] = u"un nombre largo, el número " + FromUtf8(std::to_string(i));
  for (const TextView text : {u"X & '-' & LEN( X ) & FORMAT( A , '0.00' )", u"SUMA( A , X ) & X"}) {
    Fixture fixture;
    const Ref<Formula> formula = fixture.host.evaluator->Preparar(Text(text));
    const std::array<Formula::Column, 1> columns{{{u"X", std::span<const Variant>(names)}}};
    std::vector<Variant> expected(kRowCount);
    ASSERT_TRUE(formula->EvaluarTabla(columns, kRowCount, std::span(expected)).empty());
    std::size_t failures = 0;
    for (std::size_t n = 1;; n += 1 + n / 16) {
      std::vector<Variant> results(kRowCount);
      std::vector<Formula::RowError> errors;
      const Attempt attempt = RunFailing(n, false, [&] {
        errors = formula->EvaluarTabla(columns, kRowCount, std::span(results));
      });
      if (!attempt.failed) break;
      EXPECT_LE(errors.size(), 1u) << n;
      for (const Formula::RowError& error : errors) {
        EXPECT_EQ(error.error.number, 7);
        EXPECT_TRUE(results[error.row].Is(Subtype::Empty));
        results[error.row] = expected[error.row];
      }
      failures += errors.size();
      if (attempt.outcome == "done")
        for (std::size_t i = 0; i < kRowCount; ++i)
          ASSERT_EQ(ToText(results[i]), ToText(expected[i])) << n << ' ' << i;
      else
        ASSERT_EQ(attempt.outcome, "Error 7") << n;
      ASSERT_EQ(fixture.host.Evaluate(u"X"), "String Contabilidad") << n;
    }
    // By columns, rows whose memory ran out are computed once more, one by one.
    EXPECT_EQ(failures > 0, text.starts_with(u"SUMA"));
  }
}

TEST(OutOfMemory, KeepsTheFormulasOfABatch) {
  const std::vector<Text> formulas{u"A * 2 + B", u"X & '-' & Codigo & ' y una cola larga'",
                                   u"Cuadruple & 1", u"@Quien + 1",
                                   u"FORMAT( A , '#,##0.00' ) & X"};
  const auto show = [](const Evaluador::Outcome& outcome) {
    return outcome.error ? "Error " + std::to_string(outcome.error->number)
                         : FormulaHost::Show(outcome.value) + ToUtf8(outcome.faults);
  };
  Fixture model;
  std::vector<Evaluador::Outcome> expected(formulas.size());
  model.host.evaluator->EvaluateBatch(formulas, expected);
  for (std::size_t n = 1;; ++n) {
    Fixture fixture;
    std::vector<Evaluador::Outcome> outcomes(formulas.size());
    const Attempt attempt =
        RunFailing(n, false, [&] { fixture.host.evaluator->EvaluateBatch(formulas, outcomes); });
    ASSERT_EQ(attempt.outcome, "done") << n;
    std::size_t failures = 0;
    for (std::size_t i = 0; i < formulas.size(); ++i) {
      const std::string shown = show(outcomes[i]);
      if (shown != show(expected[i])) {
        EXPECT_EQ(shown, "Error 7") << n << ' ' << i;
        ++failures;
      }
    }
    EXPECT_LE(failures, 1u) << n;
    if (!attempt.failed) break;
  }
}

// A flat file is whole, or is not there, and the object takes the next call as ever.
TEST(OutOfMemory, LeavesNoPartOfAFlatFile) {
  constexpr TextView kLayout =
      uR"({"tovalin:formato": "fijo", "fields": [
          {"name": "Nombre", "type": "string", "tovalin:ancho": 30},
          {"name": "Valor", "type": "number", "tovalin:ancho": 12, "tovalin:decimales": 2}]})";
  const TemporaryDirectory here;
  const Text path = here.Host("archivo.txt");
  const auto rows = Make<VariantArray>(2, 3);
  for (std::size_t row = 0; row < 3; ++row) {
    rows->At(0, row) = u"un nombre que es muy largo";
    rows->At(1, row) = 1234.25;
  }
  const Variant table = rows;
  Variant read;
  const auto work = [&](ArchivoPlano& file) {
    file.LetDiseno(T(kLayout));
    file.LetParametro(T(kLong), V(kLong));
    if (!file.Escribir(table, path) || !file.Verificar(path)) Raise(Failure::InvalidArgument);
    read = file.Leer(path);
  };
  const auto model = Make<ArchivoPlano>();
  ASSERT_EQ(RunFailing(0, false, [&] { work(*model); }).outcome, "done");
  const std::string whole = here.Read("archivo.txt");
  ASSERT_EQ(whole.size(), 3 * 44u);
  for (const bool all_behind : {false, true}) {
    const auto file = Make<ArchivoPlano>();
    for (std::size_t n = 1;; ++n) {
      std::filesystem::remove(here / "archivo.txt");
      read = {};
      const Attempt attempt = RunFailing(n, all_behind, [&] { work(*file); });
      if (here.Has("archivo.txt")) {
        ASSERT_EQ(here.Read("archivo.txt"), whole) << n;
      }
      ASSERT_EQ(std::distance(std::filesystem::directory_iterator(here / ""), {}),
                here.Has("archivo.txt"))
          << n;
      if (attempt.outcome == "done") {
        ASSERT_EQ(ToText(read.AsArray().At(1, 2)), u"1234.25") << n;
        if (!attempt.failed) break;
      } else {
        ASSERT_EQ(attempt.outcome, "Error 7") << n;
      }
    }
  }
}

Variant ArgumentFor(const ParameterInfo& parameter) {
  switch (parameter.type.subtype) {
    case Subtype::String:
      return V(u"un texto que no cabe en sí mismo");
    case Subtype::Object:
      if (parameter.type.class_name == u"Campo") return Make<Campo>(u"Un registro");
      if (parameter.type.class_name == u"Campos") return Make<Campos>();
      if (parameter.type.class_name == u"Collection") return Make<Collection>();
      return Ref<Object>();
    case Subtype::Variant:
      return V(u"12");
    default:
      return std::int32_t{1};
  }
}

// A late-bound call throws nothing at all.
TEST(OutOfMemory, IsAnsweredByEveryLateBoundCall) {
  for (const ClassInfo* info : Classes()) {
    if (!info->create) continue;
    for (const MemberInfo& member : info->members) {
      const std::string where = ToUtf8(info->name) + "." + ToUtf8(member.name);
      if (where == "LibFile.Ejecutar" || where == "clsFileExport.GenerarArchivoPlanoDesdeBD")
        continue;
      const Ref<Object> object = CreateObject(info->name);
      if (const auto evaluator = object.As<Evaluador>()) evaluator->UseSettings(Make<NoSettings>());
      std::vector<Variant> given;
      for (const ParameterInfo& parameter : member.parameters)
        given.push_back(ArgumentFor(parameter));
      const auto call = [&](std::size_t n, bool all_behind) {
        std::vector<Variant> arguments = given;
        std::int32_t number = 0;
        Variant result;
        Attempt attempt = RunFailing(n, all_behind, [&] {
          const auto error = Invoke(*object, member, arguments, result);
          number = error ? error->number : 0;
        });
        if (number != 0) attempt.outcome += " " + std::to_string(number);
        return attempt;
      };
      for (const bool all_behind : {false, true})
        for (std::size_t n = 1; n < 2000; ++n) {
          const Attempt attempt = call(n, all_behind);
          if (!attempt.failed) break;
          EXPECT_TRUE(attempt.outcome.starts_with("done")) << where << ' ' << attempt.outcome;
        }
    }
  }
}

}  // namespace
}  // namespace tovalin
