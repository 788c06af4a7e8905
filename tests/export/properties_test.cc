#include "export/export_fixture.h"

namespace tovalin {
namespace {

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
