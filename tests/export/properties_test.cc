#include "export/export_fixture.h"

namespace tovalin {
namespace {

template <class Call>
std::int32_t NumberRaisedBy(Call call) {
  try {
    call();
  } catch (const Error& error) {
    return error.number;
  }
  return 0;
}

TEST(ExportProperties, Defaults) {
  const auto exporter = Make<clsFileExport>();
  EXPECT_EQ(exporter->Fomato(), clsFileExport::TEXTO_DELIMITADO);
  EXPECT_EQ(exporter->OrdenFechas(), u"AMD");
  EXPECT_FALSE(exporter->AnoCompleto());
  EXPECT_EQ(exporter->SeparadorFecha(), u"/");
  EXPECT_EQ(exporter->SeparadorCadena(), u"\"");
}

TEST(ExportProperties, Precision) {
  struct Case {
    Variant type;
    int width;
  };
  const auto exporter = Make<clsFileExport>();
  for (const Case& c :
       {Case{u"Numeric", 16}, Case{u"Decimal", 16}, Case{u"Integer", 10}, Case{u"SmallInt", 5},
        Case{u"Float", 15}, Case{u"Real", 7}, Case{u"Double", 15}, Case{u"Currency", 15},
        Case{u"INTEGER", 10}, Case{std::int32_t{1}, 16}, Case{8.0, 15}}) {
    EXPECT_EQ(exporter->Precision(c.type), c.width);
    EXPECT_EQ(NumberRaisedBy([&] { exporter->LetPrecision(c.type, 20); }), 424);
    EXPECT_EQ(exporter->Precision(c.type), c.width);
  }
  EXPECT_EQ(NumberRaisedBy([&] { exporter->Precision(u"Text"); }), 5);
  EXPECT_EQ(NumberRaisedBy([&] { exporter->Precision(std::int32_t{0}); }), 9);
  EXPECT_EQ(NumberRaisedBy([&] { exporter->Precision(std::int32_t{9}); }), 9);
}

class LateBoundExport : public ExportTest {};

TEST_F(LateBoundExport, DrivesTheWholeExport) {
  const auto invoke = [&](TextView name, MemberKind kind, std::vector<Variant> arguments) {
    Variant result;
    const auto error = exporter->Invoke(name, kind, arguments, result);
    EXPECT_FALSE(error) << ToUtf8(error->description);
    return result;
  };
  invoke(u"fomato", MemberKind::Let, {1.0});
  invoke(u"ordenfechas", MemberKind::Let, {u"DMY"});
  EXPECT_EQ(invoke(u"OrdenFechas", MemberKind::Get, {}).AsText(), u"DMY");
  EXPECT_EQ(invoke(u"Precision", MemberKind::Get, {u"real"}).AsByte(), 7);

  Variant data = Table({{u"x", Date{45356}}});
  const auto fields = Fields({{u"A", kText, 0, 2}, {u"B", kDate, 1}});
  const Variant done = invoke(u"GenerarArchivoPlanoDesdeBD", MemberKind::Method,
                              {Variant::ByReference(data), fields, 0.0, here.Host("datos")});
  EXPECT_TRUE(done.AsBoolean());
  EXPECT_EQ(Data(), "x ;05/03/24;\r\n");
  EXPECT_EQ(data.AsArray().At(0, 0).AsText(), u"x");

  Variant result;
  std::vector<Variant> width = {u"Real", 9.0};
  EXPECT_EQ(exporter->Invoke(u"Precision", MemberKind::Let, width, result)->number, 424);
}

}  // namespace
}  // namespace tovalin
