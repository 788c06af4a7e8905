#include "files/command_line.h"

#include <gtest/gtest.h>

namespace tovalin {
namespace {

struct Case {
  const char16_t* command_line;
  std::vector<Text> words;
};

const Case kCases[] = {
    {u"", {}},
    {u" \t ", {}},
    {u"p", {u"p"}},
    {u"  p  a\tb ", {u"p", u"a", u"b"}},
    // The program's name: backslashes are its own, quotes only hold blanks.
    {u"C:\\bin\\p.exe a", {u"C:\\bin\\p.exe", u"a"}},
    {u"\"C:\\mis programas\\p\" a", {u"C:\\mis programas\\p", u"a"}},
    {u"\"C:\\dir\\\" a", {u"C:\\dir\\", u"a"}},
    {u"C:\\\"mis programas\"\\p a", {u"C:\\mis programas\\p", u"a"}},
    {u"\"\" a", {u"", u"a"}},
    // The other words.
    {u"p \"a b\" c", {u"p", u"a b", u"c"}},
    {u"p a\" \"b", {u"p", u"a b"}},
    {u"p \"\" x", {u"p", u"", u"x"}},
    {u"p C:\\a\\b\\", {u"p", u"C:\\a\\b\\"}},
    {u"p \\\\red\\x", {u"p", u"\\\\red\\x"}},
    {u"p \\\"a b\\\"", {u"p", u"\"a", u"b\""}},
    {u"p \"a\\\"b c\"", {u"p", u"a\"b c"}},
    {u"p \"a b\\\\\" c", {u"p", u"a b\\", u"c"}},
    {u"p a\\\\\\\"b", {u"p", u"a\\\"b"}},
    {u"p a\\\\\\\\\"b c\"", {u"p", u"a\\\\b c"}},
    {u"p \"a \"\"b\"\" c\" d", {u"p", u"a \"b\" c", u"d"}},
    {u"p \"sin fin c", {u"p", u"sin fin c"}},
    {u"p \\", {u"p", u"\\"}},
    // Nothing of a shell.
    {u"p $HOME 'a b' * ; q", {u"p", u"$HOME", u"'a", u"b'", u"*", u";", u"q"}},
};

TEST(CommandLine, Words) {
  for (const Case& c : kCases)
    EXPECT_EQ(SplitCommandLine(c.command_line), c.words) << ToUtf8(c.command_line);
}

}  // namespace
}  // namespace tovalin
