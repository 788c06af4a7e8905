#include <gtest/gtest.h>
#include <sys/stat.h>

#include "files/attributes.h"
#include "files/temporary_directory.h"
#include "tovalin/lib_file.h"

namespace tovalin {
namespace {

TEST(Attributes, ComeFromModesAndNames) {
  const TemporaryDirectory here;
  for (const char* name : {"plano", ".oculto", "leer"}) mkdir((here / name).c_str(), 0755);
  chmod((here / "leer").c_str(), 0555);
  here.Write("a.txt", "x");
  here.Write(".b", "x");
  chmod((here / ".b").c_str(), 0400);
  struct Case {
    const char* name;
    std::uint32_t attributes;
    bool is_directory;
  };
  const auto files = Make<LibFile>();
  for (const Case& c :
       {Case{"plano", 16, true}, Case{"plano/", 16, true}, Case{"plano/.", 16, true},
        Case{"plano/..", 16, true}, Case{".oculto", 18, false}, Case{".oculto/", 18, false},
        Case{"leer", 17, false}, Case{"a.txt", 32, false}, Case{".b", 35, false}}) {
    EXPECT_EQ(FileAttributes(here.Host(c.name)), c.attributes) << c.name;
    EXPECT_EQ(files->DirExist(here.Host(c.name)), c.is_directory) << c.name;
    EXPECT_TRUE(files->FileExist(here.Host(c.name))) << c.name;
  }
}

}  // namespace
}  // namespace tovalin
