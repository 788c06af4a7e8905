#include <gtest/gtest.h>
#include <windows.h>

#include "files/attributes.h"
#include "files/temporary_directory.h"
#include "tovalin/lib_file.h"

namespace tovalin {
namespace {

TEST(Attributes, AreTheSystems) {
  const TemporaryDirectory here;
  const auto files = Make<LibFile>();
  std::filesystem::create_directory(here / "directorio");
  here.Write("a.txt", "x");
  struct Case {
    const char* name;
    DWORD attributes;
    bool is_directory;
  };
  for (const Case& c : {Case{"directorio", FILE_ATTRIBUTE_DIRECTORY, true},
                        Case{"directorio", FILE_ATTRIBUTE_HIDDEN, false},
                        Case{"directorio", FILE_ATTRIBUTE_READONLY, false},
                        Case{"a.txt", FILE_ATTRIBUTE_ARCHIVE, false},
                        Case{"a.txt", FILE_ATTRIBUTE_HIDDEN, false}}) {
    const std::string path = here / c.name;
    const DWORD before = GetFileAttributesA(path.c_str());
    ASSERT_TRUE(SetFileAttributesA(path.c_str(), c.attributes));
    const DWORD attributes = GetFileAttributesA(path.c_str());
    EXPECT_EQ(FileAttributes(here.Host(c.name)), attributes) << path;
    if ((attributes & c.attributes) == 0) continue;  // Wine keeps it where Linux can
    EXPECT_EQ(files->DirExist(here.Host(c.name)), c.is_directory) << path << ' ' << c.attributes;
    EXPECT_TRUE(files->FileExist(here.Host(c.name))) << path;
    SetFileAttributesA(path.c_str(), before);
  }
}

}  // namespace
}  // namespace tovalin
