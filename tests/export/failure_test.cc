#include <filesystem>

#include "export/export_fixture.h"

namespace tovalin {
namespace {

class Failures : public ExportTest {
 protected:
  Failures() { exporter->LetFomato(clsFileExport::LONGITUDFIJA); }
};

using State = clsFileExport::FileState;

TEST_F(Failures, KeepTheRecordsBeforeThem) {
  struct Case {
    FieldRow field;
    Variant third;
    std::int32_t number;
    const char* reason;
    Text value;
  };
  for (const Case& c : {
           Case{{u"B", kText, 1, 3}, u"abcd", 5, "ocupa 4 caracteres y el campo es de 3", u"abcd"},
           Case{{u"B", kInteger, 1},
                12345678901.0,
                5,
                "ocupa 11 caracteres y el campo es de 10",
                u"12345678901"},
           Case{{u"B", kDate, 1},
                u"ayer fue martes",
                5,
                "ocupa 15 caracteres y el campo es de 8",
                u"ayer fue martes"},
           Case{{u"B", kTime, 1}, u"pronto", 5, "ocupa 6 caracteres y el campo es de 5", u"pronto"},
           Case{{u"B", 0, 1}, Ref<Object>(), 13, "No coinciden los tipos", u""},
           Case{{u"B", kText, 1, 3}, Table({{u"x"}}), 13, "No coinciden los tipos", u""},
       }) {
    const Variant data = Table({{u"1", Variant::Null()}, {u"2", Variant::Null()}, {u"3", c.third}});
    exporter->LetOrdenFechas(u"YMD");
    const std::string blank = [&] {
      EXPECT_TRUE(Export(data, Fields({c.field}), 0)) << c.reason;
      EXPECT_FALSE(exporter->LastFailure());
      return Data().substr(0, Data().size() - 2);
    }();
    std::filesystem::remove(here / "datos.ref");
    EXPECT_FALSE(Export(data, Fields({{u"A", kText, 0, 1}, c.field}), 2)) << c.reason;
    EXPECT_EQ(Data(), "1;" + blank + "\r\n2;" + blank + "\r\n") << c.reason;
    EXPECT_FALSE(here.Has("datos.ref")) << c.reason;
    EXPECT_EQ(Failure().error.number, c.number) << c.reason;
    EXPECT_EQ(ToUtf8(Failure().error.description), c.reason);
    EXPECT_EQ(Failure().row, 2) << c.reason;
    EXPECT_EQ(Failure().field, u"B") << c.reason;
    EXPECT_EQ(Failure().value, c.value) << c.reason;
    EXPECT_EQ(Failure().records, 2) << c.reason;
    EXPECT_FALSE(Failure().broken_record) << c.reason;
    EXPECT_EQ(Failure().data, State::Incomplete) << c.reason;
    EXPECT_EQ(Failure().layout, State::Untouched) << c.reason;
  }
}

TEST_F(Failures, InTheFirstRecord) {
  struct Case {
    Variant data;
    Ref<Campos> fields;
    std::int32_t number;
    const char* reason;
    std::int64_t row;
    Text field;
  };
  const Variant data = Table({{u"1"}});
  const Text name = u"Un nombre de treinta caracteres";
  for (const Case& c : {
           Case{data, nullptr, 91, "no se dieron los campos", -1, u""},
           Case{u"1", Fields({{u"A", kText, 0, 1}}), 13,
                "los datos no son un arreglo de dos dimensiones", 0, u"A"},
           Case{data, Fields({{u"A", kText, 1, 1}}), 9,
                "el arreglo no tiene la columna 1: tiene 1, contadas desde 0", 0, u"A"},
           Case{data, Fields({{u"A", kText, -1, 1}}), 9,
                "el arreglo no tiene la columna -1: tiene 1, contadas desde 0", 0, u"A"},
           Case{data, Fields({{u"A", kText, 0, -1}}), 5, "ocupa 1 caracteres y el campo es de -1",
                0, u"A"},
           Case{data, Fields({{u"A", kText, 0, 2147483647}}), 7,
                "el registro pasa de 268435456 caracteres", 0, u"A"},
           // A field that fills the record before another.
           Case{data, Fields({{u"A", kText, 0, 1 << 28}, {u"B", kText, 0, 5}}), 7,
                "el registro pasa de 268435456 caracteres", 0, u"B"},
           Case{data, Fields({{name.c_str(), kText, 0, 1}}), 5,
                "el nombre tiene 31 caracteres y caben 30", -1, name},
       }) {
    EXPECT_FALSE(Export(c.data, c.fields, 0)) << c.reason;
    EXPECT_TRUE(here.Has("datos.txt")) << c.reason;
    EXPECT_EQ(Data(), "") << c.reason;
    EXPECT_FALSE(here.Has("datos.ref")) << c.reason;
    EXPECT_EQ(Failure().error.number, c.number) << c.reason;
    EXPECT_EQ(ToUtf8(Failure().error.description), c.reason);
    EXPECT_EQ(Failure().row, c.row) << c.reason;
    EXPECT_EQ(Failure().field, c.field) << c.reason;
    EXPECT_EQ(Failure().records, 0) << c.reason;
  }
  exporter->LetFomato(clsFileExport::TEXTO_DELIMITADO);
  EXPECT_FALSE(Export(data, Fields({}), 0));
  EXPECT_EQ(Failure().error.description, u"no hay campos");
}

TEST_F(Failures, BeyondTheLastRowOfTheArray) {
  EXPECT_FALSE(Export(Table({{u"1"}, {u"2"}}), Fields({{u"A", kText, 0, 1}}), 2));
  EXPECT_EQ(Data(), "1;\r\n2;\r\n");
  EXPECT_EQ(Failure().row, 2);
  EXPECT_EQ(Failure().error.description,
            u"el arreglo no tiene la fila 2: tiene 2, contadas desde 0");
}

TEST_F(Failures, OfTheHostsClock) {
  exporter->UseClock([]() -> Date { throw std::runtime_error("parado"); });
  EXPECT_FALSE(Export(Table({{u"1"}}), Fields({{u"A", kText, 0, 1}}), 0));
  EXPECT_EQ(Data(), "");
  EXPECT_EQ(Failure().error.description, u"parado");
  exporter->UseClock([]() -> Date { throw 1; });
  EXPECT_FALSE(Export(Table({{u"1"}}), Fields({{u"A", kText, 0, 1}}), 0));
  exporter->UseClock(nullptr);
  EXPECT_TRUE(Export(Table({{u"1"}}), Fields({{u"A", kText, 0, 1}}), 0));
  EXPECT_FALSE(exporter->LastFailure());
}

// What the host gave lives as long as the export, whatever its clock does.
TEST_F(Failures, NoneWhenTheClockDropsEverything) {
  Ref<clsFileExport> own = Make<clsFileExport>();
  Ref<Campos> fields = Fields({{u"A", kText, 0, 1}});
  Variant data = Table({{u"1"}});
  Text path = here.Host("datos");
  own->UseClock([&] {
    clsFileExport& exporting = *own;
    own = nullptr;
    fields = nullptr;
    data = Variant();
    path = u"otro";
    exporting.UseClock(nullptr);
    return Date{1};
  });
  EXPECT_TRUE(own->GenerarArchivoPlanoDesdeBD(data, fields, 0, path));
  EXPECT_EQ(Data(), "\"1\"\r\n");
  EXPECT_FALSE(own);
}

TEST_F(Failures, OfTheFiles) {
  const auto fields = Fields({{u"A", kText, 0, 1}});
  Variant data = Table({{u"1"}});
  const auto to = [&](const Text& path) {
    return exporter->GenerarArchivoPlanoDesdeBD(data, fields, 0, path);
  };
  EXPECT_FALSE(to(here.Host("no/hay")));
  EXPECT_EQ(Failure().error.number, 75);
  EXPECT_TRUE(Failure().error.description.ends_with(here.Host("no/hay.txt")));
  EXPECT_EQ(Failure().data, State::Untouched);
  EXPECT_FALSE(to(here.Host("nul") + u'\0'));
  EXPECT_EQ(Failure().error.number, 52);
  EXPECT_FALSE(std::filesystem::exists(here / "nul"));

  std::filesystem::create_directory(here / "datos.ref");
  EXPECT_FALSE(to(here.Host("datos")));
  EXPECT_EQ(Data(), "1;\r\n");
  EXPECT_EQ(Failure().error.number, 75);
  EXPECT_EQ(Failure().data, State::Complete);
  EXPECT_EQ(Failure().records, 1);
  EXPECT_EQ(Failure().layout, State::Untouched);
}

TEST_F(Failures, OfAFullDisk) {
  const auto fields = Fields({{u"A", kText, 0, 100'000}});
  const Variant data = Table({{u"1"}, {u"2"}, {u"3"}});
  for (const std::int32_t last_row : {-1, 0, 2}) {
    for (const char* name : {"datos.txt", "datos.ref"}) {
      const bool is_data = name == std::string("datos.txt");
      if (last_row < 0 && is_data) continue;  // nothing to write
      std::filesystem::remove(here / name);
      std::filesystem::create_symlink("/dev/full", here / name);
      EXPECT_FALSE(Export(data, fields, last_row)) << name << last_row;
      EXPECT_EQ(Failure().error.number, 61) << name << last_row;
      EXPECT_EQ(Failure().row, -1) << name << last_row;
      EXPECT_EQ(Failure().records, is_data ? 0 : last_row + 1) << name << last_row;
      EXPECT_EQ(Failure().data, is_data ? State::Incomplete : State::Complete) << name;
      EXPECT_EQ(Failure().layout, is_data ? State::Untouched : State::Incomplete) << name;
      std::filesystem::remove(here / name);
    }
  }
  EXPECT_TRUE(Export(data, fields, 2));
}

}  // namespace
}  // namespace tovalin
