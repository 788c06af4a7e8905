#include "export/export_fixture.h"

namespace tovalin {
namespace {

using Delimited = ExportTest;

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
