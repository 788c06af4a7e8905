#include <fstream>

#include "flatfile/flat_fixture.h"

namespace tovalin {
namespace {

/// A line of /proc/self/status, in kilobytes.
std::int64_t StatusKilobytes(const std::string& label) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;)
    if (std::int64_t kilobytes = 0; word == label && status >> kilobytes) return kilobytes;
  return 0;
}

class FlatMemory : public FlatFileTest {};

TEST_F(FlatMemory, WritingAndReadingKeepNoRows) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the sanitizers keep freed memory";
#endif
  constexpr std::size_t kRows = 40'000;
  const auto file = WithLayout(R"({"fields": [{"name": "A"}, {"name": "B", "type": "integer"}]})");
  const std::vector<Text> columns{u"A", u"B"};
  const auto write = [&](std::size_t rows) {
    ArchivoPlano::Escritura writing(*file, columns, Path());
    for (std::size_t row = 0; row < rows; ++row)
      writing.Fila(std::vector<Variant>{Text(100, u'x'), static_cast<std::int32_t>(row)});
    ASSERT_TRUE(writing.Terminar());
    ASSERT_TRUE(file->Verificar(Path()));
    EXPECT_EQ(file->Registros(), static_cast<std::int32_t>(rows));
  };
  write(1000);
  const std::int64_t before = StatusKilobytes("VmHWM:");
  write(kRows);  // of which the file has 4 MB
  EXPECT_LT(StatusKilobytes("VmHWM:") - before, 2048);

  // Each row is refused: the faults kept are few.
  const auto refusing = WithLayout(Delimited(R"("type": "integer")"));
  ArchivoPlano::Escritura writing(*refusing, std::vector<Text>{u"V"}, Path());
  for (std::size_t row = 0; row < kRows; ++row)
    writing.Fila(std::vector<Variant>{Text(1000, u'x')});
  EXPECT_FALSE(writing.Terminar());
  EXPECT_EQ(refusing->NumeroErrores(), static_cast<std::int32_t>(kRows));
  EXPECT_LT(StatusKilobytes("VmHWM:") - before, 4096);
}

// Who may read the payroll may read the next one.
TEST_F(FlatMemory, AFileThatIsReplacedKeepsItsPermissions) {
  using std::filesystem::perms;
  const auto file = WithLayout(Delimited(R"("type": "string")"));
  for (const auto mode : {perms{0600}, perms{0664}}) {
    Put("antes");
    std::filesystem::permissions(here / "archivo.txt", mode);
    ASSERT_TRUE(file->Escribir(TableOf({{u"A"}}), Path())) << Faults(*file);
    EXPECT_EQ(std::filesystem::status(here / "archivo.txt").permissions(), mode);
    Remove();
  }
}

}  // namespace
}  // namespace tovalin
