#include "export/export_fixture.h"

namespace tovalin {
namespace {

class FixedWidth : public ExportTest {
 protected:
  FixedWidth() { exporter->LetFomato(clsFileExport::LONGITUDFIJA); }
};

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

}  // namespace
}  // namespace tovalin
