#include <gtest/gtest.h>

#include "files/temporary_directory.h"
#include "tovalin/lib_file.h"

namespace tovalin {
namespace {

struct PathCase {
  const char16_t* path;
  const char16_t* name;
  const char16_t* directory;
};

constexpr PathCase kPaths[] = {
    {u"C:\\datos\\a.txt", u"a.txt", u"C:\\datos\\"},
    {u"C:\\a.txt", u"a.txt", u"C:\\"},
    {u"a.txt", u"a.txt", u"\\"},
    {u"", u"", u"\\"},
    {u"\\", u"", u"\\"},
    {u"\\a", u"a", u"\\"},
    {u"C:\\datos\\", u"", u"C:\\datos\\"},
    {u"x\\\\a", u"a", u"x\\"},
    {u"C:/datos/a.txt", u"C:/datos/a.txt", u"\\"},
};

TEST(Paths, AreSplitAtTheLastBackslash) {
  const auto files = Make<LibFile>();
  for (const PathCase& c : kPaths) {
    Text path = c.path;
    EXPECT_EQ(files->StripFileName(path), c.name) << ToUtf8(c.path);
    EXPECT_EQ(files->StripPath(path), c.directory) << ToUtf8(c.path);
    EXPECT_EQ(path, c.path);
  }
}

TEST(Paths, NetworkNames) {
  struct Case {
    const char16_t* path;
    int answer;
  };
  const auto files = Make<LibFile>();
  for (const Case& c : std::initializer_list<Case>{{u"\\\\servidor\\x", -1},
                                                   {u"//servidor/x", -1},
                                                   {u"\\/x", -1},
                                                   {u"/\\x", -1},
                                                   {u"\\", -1},
                                                   {u"/", -1},
                                                   {u"", -1},
                                                   {u"\\x", 0},
                                                   {u"/x", 0},
                                                   {u"C:\\x", 0},
                                                   {u"x", 0}})
    EXPECT_EQ(files->IsUNCName(c.path), c.answer) << ToUtf8(c.path);
}

TEST(Paths, WhatIsNotThere) {
  const TemporaryDirectory here;
  here.Write("a.txt", "x");
  const auto files = Make<LibFile>();
  for (const Text& path : {Text(), here.Host("nada"), here.Host("no/hay"), here.Host("a.txt/b"),
                           here.Host("a.txt") + Text(1, u'\0'), Text(5000, u'x')}) {
    EXPECT_FALSE(files->DirExist(path)) << ToUtf8(path);
    EXPECT_FALSE(files->FileExist(path)) << ToUtf8(path);
  }
  EXPECT_FALSE(files->DirExist(Variant::Null()));
  EXPECT_THROW(files->FileExist(Ref<Object>()), Error);
}

TEST(LibFile, LateBound) {
  const auto files = Make<LibFile>();
  Variant name(u"C:\\datos\\a.txt"), result;
  Variant argument = Variant::ByReference(name);
  EXPECT_FALSE(files->Invoke(u"stripfilename", MemberKind::Method, {&argument, 1}, result));
  EXPECT_EQ(result.AsText(), u"a.txt");
  EXPECT_EQ(name.AsText(), u"C:\\datos\\a.txt");

  bool cancel = false;
  const int attachment =
      files->Attach(u"BeforeDelete", [](std::span<Variant> a) { a[0].Assign(Variant(true)); });
  files->BeforeDelete.Raise(cancel);
  EXPECT_TRUE(cancel);
  cancel = false;
  files->Detach(u"BeforeDelete", attachment);
  files->BeforeDelete.Raise(cancel);
  EXPECT_FALSE(cancel);
}

}  // namespace
}  // namespace tovalin
