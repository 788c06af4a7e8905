#include <gtest/gtest.h>

#include <thread>

#include "files/temporary_directory.h"
#include "tovalin/lib_file.h"

namespace tovalin {
namespace {

void Execute(const Text& command, bool wait) { Make<LibFile>()->Ejecutar(command, wait); }

void WaitUntilThere(const TemporaryDirectory& here, const std::string& name) {
  while (!here.Has(name)) std::this_thread::yield();
}

TEST(Ejecutar, WaitsUntilTheProgramEnds) {
  const TemporaryDirectory here;
  Execute(u"cmd /c \"mkdir \"" + here.Host("uno") + u"\" && mkdir \"" + here.Host("dos") + u"\"\"",
          true);
  EXPECT_TRUE(here.Has("uno"));
  EXPECT_TRUE(here.Has("dos"));
}

// The program waits for what its host does after the call.
TEST(Ejecutar, ReturnsAtOnceWithoutWaiting) {
  const TemporaryDirectory here;
  here.Write("espera.cmd", ":otra\r\nif not exist sigue goto otra\r\nmkdir fin\r\n");
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(here / "");
  Execute(u"cmd /c espera.cmd", false);
  EXPECT_FALSE(here.Has("fin"));
  here.Write("sigue", "");
  WaitUntilThere(here, "fin");
  std::filesystem::current_path(before);
}

TEST(Ejecutar, EndsQuietlyWhenItCannotStart) {
  const TemporaryDirectory here;
  const Text with_nul = u"cmd /c mkdir \"" + here.Host("huella") + u"\"" + u'\0' + u"x";
  here.Write("datos.txt", "x");
  for (const bool wait : {true, false})
    for (const Text& command : {Text(), Text(u"  "), Text(u"no_hay_tal_programa x"),
                                here.Host("nada"), here.Host("datos.txt"), with_nul})
      EXPECT_NO_THROW(Execute(command, wait)) << ToUtf8(command);
  EXPECT_FALSE(here.Has("huella"));
}

}  // namespace
}  // namespace tovalin
