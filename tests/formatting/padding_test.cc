#include "formatting/padding.h"

#include <gtest/gtest.h>

#include "tovalin/error.h"

namespace tovalin {
namespace {

TEST(AjustarTexto, Table) {
  struct Case {
    const char16_t* text;
    std::int16_t length;
    const char* left;
    const char* right;
  };
  const Case kCases[] = {
      {u"  ab ", 5, "ab   ", "   ab"},
      {u"  ab ", 2, "ab", "ab"},
      {u"  ab ", 1, "a", "a"},
      {u"  ab ", 0, "", ""},
      {u"", 3, "   ", "   "},
      {u"a b", 4, "a b ", " a b"},
      {u"ñandú", 6, "ñandú ", " ñandú"},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(ToUtf8(AjustarTexto(c.text, c.length, 0)), c.left);
    EXPECT_EQ(ToUtf8(AjustarTexto(c.text, c.length, -1)), c.left);
    EXPECT_EQ(ToUtf8(AjustarTexto(c.text, c.length, 1)), c.right);
  }
  EXPECT_EQ(AjustarTexto(u"x", 32767, 1).size(), 32767u);
}

TEST(AjustarTexto, NegativeLengthRaises) {
  for (const char16_t* text : {u"", u"ab"}) {
    try {
      ADD_FAILURE() << ToUtf8(AjustarTexto(text, -1, 0));
    } catch (const Error& error) {
      EXPECT_EQ(error, PlatformError(Failure::InvalidArgument));
    }
  }
}

TEST(DesajustarTexto, Table) {
  struct Case {
    const char16_t* text;
    const char16_t* fill;
    std::int32_t side;
    const char* rest;
  };
  const Case kCases[] = {
      {u"0123", u"0", 0, "123"},
      {u"000123", u"0", 0, "123"},
      // The place of comparison runs ahead of the text that gets shorter.
      {u"0000123", u"0", 0, "0123"},
      {u"00000000", u"0", 0, "00"},
      {u"0", u"0", 0, ""},
      {u"abababab1", u"ab", 0, "ab1"},
      {u"X00", u"x", 0, "00"},
      {u"ñÑa", u"Ñ", 2, "Ña"},
      {u" 12 ", u"0", 0, "12"},
      {u"abc***", u"*", 1, "abc"},
      {u"  abc** ", u"*", 1, "abc"},
      {u"***", u"*", 1, ""},
      {u"12xX", u"X", 1, "12"},
      // A longer fill is never found at the right.
      {u"1abab", u"ab", 1, "1abab"},
      {u" abc ", u"", 0, "abc"},
      {u" abc ", u"", 1, "abc"},
      {u"", u"0", 0, ""},
      {u"", u"0", 1, ""},
      {u"a", u"abc", 0, "a"},
  };
  for (const Case& c : kCases)
    EXPECT_EQ(ToUtf8(DesajustarTexto(c.text, c.fill, c.side)), c.rest)
        << ToUtf8(c.text) << " without " << ToUtf8(c.fill) << " at side " << c.side;
}

}  // namespace
}  // namespace tovalin
