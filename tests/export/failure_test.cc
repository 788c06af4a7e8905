#include <filesystem>

#include "export/export_fixture.h"

namespace tovalin {
namespace {

class Failures : public ExportTest {
 protected:
  Failures() { exporter->LetFomato(clsFileExport::LONGITUDFIJA); }
};

TEST_F(Failures, KeepTheRecordsBeforeThem) {
  struct Case {
    const char* what;
    FieldRow field;
    Variant third;
  };
  for (const Case& c : {
           Case{"a text wider than its size", {u"B", kText, 1, 3}, u"abcd"},
           Case{"a number wider than its type", {u"B", kInteger, 1}, 12345678901.0},
           Case{"a date that is none", {u"B", kDate, 1}, u"ayer fue martes"},
           Case{"a time wider than five", {u"B", kTime, 1}, u"pronto"},
           Case{"a value without a text", {u"B", 0, 1}, Ref<Object>()},
           Case{"an array within", {u"B", kText, 1, 3}, Table({{u"x"}})},
       }) {
    const Variant data = Table({{u"1", Variant::Null()}, {u"2", Variant::Null()}, {u"3", c.third}});
    exporter->LetOrdenFechas(u"YMD");
    const std::string blank = [&] {
      EXPECT_TRUE(Export(data, Fields({c.field}), 0)) << c.what;
      return Data().substr(0, Data().size() - 2);
    }();
    std::filesystem::remove(here / "datos.ref");
    EXPECT_FALSE(Export(data, Fields({{u"A", kText, 0, 1}, c.field}), 2)) << c.what;
    EXPECT_EQ(Data(), "1;" + blank + "\r\n2;" + blank + "\r\n") << c.what;
    EXPECT_FALSE(here.Has("datos.ref")) << c.what;
  }
}

TEST_F(Failures, InTheFirstRecord) {
  struct Case {
    const char* what;
    Variant data;
    Ref<Campos> fields;
  };
  const Variant data = Table({{u"1"}});
  for (const Case& c : {
           Case{"no fields object", data, nullptr},
           Case{"no array", u"1", Fields({{u"A", kText, 0, 1}})},
           Case{"no such column", data, Fields({{u"A", kText, 1, 1}})},
           Case{"a column below zero", data, Fields({{u"A", kText, -1, 1}})},
           Case{"a size below zero", data, Fields({{u"A", kText, 0, -1}})},
           Case{"a size beyond reason", data, Fields({{u"A", kText, 0, 2147483647}})},
           Case{"a field that fills the record before another", data,
                Fields({{u"A", kText, 0, 1 << 28}, {u"B", kText, 0, 5}})},
           Case{"a long name", data, Fields({{u"Un nombre de treinta caracteres", kText, 0, 1}})},
       }) {
    EXPECT_FALSE(Export(c.data, c.fields, 0)) << c.what;
    EXPECT_TRUE(here.Has("datos.txt")) << c.what;
    EXPECT_EQ(Data(), "") << c.what;
    EXPECT_FALSE(here.Has("datos.ref")) << c.what;
  }
}

TEST_F(Failures, BeyondTheLastRowOfTheArray) {
  EXPECT_FALSE(Export(Table({{u"1"}, {u"2"}}), Fields({{u"A", kText, 0, 1}}), 2));
  EXPECT_EQ(Data(), "1;\r\n2;\r\n");
}

TEST_F(Failures, OfTheHostsClock) {
  exporter->UseClock([]() -> Date { throw std::runtime_error("parado"); });
  EXPECT_FALSE(Export(Table({{u"1"}}), Fields({{u"A", kText, 0, 1}}), 0));
  EXPECT_EQ(Data(), "");
}

TEST_F(Failures, OfTheFiles) {
  const auto fields = Fields({{u"A", kText, 0, 1}});
  Variant data = Table({{u"1"}});
  const auto to = [&](const Text& path) {
    return exporter->GenerarArchivoPlanoDesdeBD(data, fields, 0, path);
  };
  EXPECT_FALSE(to(here.Host("no/hay")));
  EXPECT_FALSE(to(here.Host("nul") + u'\0'));
  EXPECT_FALSE(std::filesystem::exists(here / "nul"));

  std::filesystem::create_directory(here / "datos.ref");
  EXPECT_FALSE(to(here.Host("datos")));
  EXPECT_EQ(Data(), "1;\r\n");
}

TEST_F(Failures, OfAFullDisk) {
  const auto fields = Fields({{u"A", kText, 0, 100'000}});
  const Variant data = Table({{u"1"}, {u"2"}, {u"3"}});
  for (const std::int32_t last_row : {-1, 0, 2}) {
    for (const char* name : {"datos.txt", "datos.ref"}) {
      if (last_row < 0 && name == std::string("datos.txt")) continue;  // nothing to write
      std::filesystem::remove(here / name);
      std::filesystem::create_symlink("/dev/full", here / name);
      EXPECT_FALSE(Export(data, fields, last_row)) << name << last_row;
      std::filesystem::remove(here / name);
    }
  }
  EXPECT_TRUE(Export(data, fields, 2));
}

}  // namespace
}  // namespace tovalin
