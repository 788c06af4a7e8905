#include "files/text_file.h"

#include <gtest/gtest.h>

#include "files/number_raised.h"
#include "files/temporary_directory.h"
#include "tovalin/lib_file.h"

namespace tovalin {
namespace {

TEST(FileToText, EndsEveryLineWithBothCharacters) {
  struct Case {
    const char* bytes;
    const char16_t* text;
  };
  const TemporaryDirectory here;
  const auto files = Make<LibFile>();
  for (const Case& c : {Case{"a\r\nb\r\n", u"a\r\nb\r\n"}, Case{"a\nb", u"a\r\nb\r\n"},
                        Case{"a\rb\r", u"a\r\nb\r\n"}, Case{"a\n\rb", u"a\r\n\r\nb\r\n"},
                        Case{"\n", u"\r\n"}, Case{"\r\r\n\n", u"\r\n\r\n\r\n"}, Case{"x", u"x\r\n"},
                        Case{"\xF1\x80\x93\xE1 \x1A \x81", u"ñ€“á \x1A \x81\r\n"}}) {
    here.Write("a.txt", c.bytes);
    EXPECT_EQ(files->FileToText(here.Host("a.txt")), c.text) << c.bytes;
  }
}

TEST(FileToText, KeepsEveryByteOfALargeFile) {
  const TemporaryDirectory here;
  std::string bytes;
  Text text;
  for (int line = 0; bytes.size() < 3'000'000; ++line) {
    const std::string number = std::to_string(line);
    bytes += number + '\0' + '\n';
    text += FromUtf8(number) + u'\0' + u"\r\n";
  }
  here.Write("a.txt", bytes);
  const Text read = Make<LibFile>()->FileToText(here.Host("a.txt"));
  EXPECT_TRUE(read == text);
  EXPECT_EQ(read.capacity(), read.size());
}

TEST(FileToText, Failures) {
  const TemporaryDirectory here;
  here.Write("vacio.txt", "");
  std::filesystem::create_directory(here / "directorio");
  const auto files = Make<LibFile>();
  const auto raised = [&](const char* name) {
    return NumberRaisedBy([&] { files->FileToText(here.Host(name)); });
  };
  EXPECT_EQ(files->FileToText(here.Host("nada.txt")), u"");
  EXPECT_EQ(raised("vacio.txt"), 62);
  EXPECT_EQ(raised(""), 75);
  EXPECT_EQ(raised("directorio"), 75);

  // Gone since the test for its existence.
  EXPECT_EQ(NumberRaisedBy([&] { ReadTextFile(here.Host("nada.txt")); }), 53);
  EXPECT_EQ(NumberRaisedBy([&] { ReadTextFile(here.Host("no/hay.txt")); }), 76);
  // The current directory and the topmost one are always there.
  EXPECT_EQ(NumberRaisedBy([&] { ReadTextFile(u"no hay este archivo.txt"); }), 53);
  EXPECT_EQ(NumberRaisedBy([&] { ReadTextFile(u"/no hay este archivo.txt"); }), 53);
  EXPECT_EQ(NumberRaisedBy([&] { ReadTextFile(here.Host("vacio.txt/a")); }), 76);
}

}  // namespace
}  // namespace tovalin
