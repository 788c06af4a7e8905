#include "tovalin/text.h"

#include <gtest/gtest.h>

namespace tovalin {
namespace {

TEST(Text, FoldsAccentedLetters) {
  struct Case {
    TextView left;
    TextView right;
    bool equal;
  };
  constexpr Case kCases[] = {
      {u"AÑO", u"año", true},
      {u"ano", u"año", false},
      {u"ÁÉÍÓÚÜ", u"áéíóúü", true},
      {u"a", u"á", false},
      {u"Ÿ", u"ÿ", true},
      {u"×", u"÷", false},
      {u"ß", u"SS", false},
      {u"ŒŽĀ", u"œžā", true},
      {u"ΑΩЖ", u"αωж", true},
      {u"[", u"{", false},
      {u"@", u"`", false},
      {u"", u"", true},
      {u"\xD800x", u"\xD800X", true},
      {u"İ", u"i", false},
  };
  for (const Case& row : kCases) {
    EXPECT_EQ(EqualFolded(row.left, row.right), row.equal) << ToUtf8(row.left);
    if (row.equal) {
      EXPECT_EQ(FoldedHash()(row.left), FoldedHash()(row.right)) << ToUtf8(row.left);
    }
  }
  EXPECT_EQ(ToUpper(u"camión ñandú ÿ œ ж 1"), u"CAMIÓN ÑANDÚ Ÿ Œ Ж 1");
  EXPECT_EQ(ToLower(u"CAMIÓN ÑANDÚ Ÿ Œ Ж 1"), u"camión ñandú ÿ œ ж 1");
}

TEST(Text, PairsEveryLetterBothWays) {
  for (char32_t c = 0; c < 0x10000; ++c) {
    const auto letter = static_cast<char16_t>(c);
    const char16_t folded = FoldCase(letter);
    ASSERT_EQ(FoldCase(folded), folded) << static_cast<unsigned>(c);
    if (folded != letter) {
      ASSERT_EQ(ToUpper(TextView(&folded, 1)), TextView(&letter, 1)) << static_cast<unsigned>(c);
    }
  }
}

TEST(Text, SurvivesUtf8) {
  struct Case {
    std::string_view utf8;
    TextView text;
    std::string_view back;
  };
  constexpr Case kCases[] = {
      {"año €", u"año €", "año €"},
      {"\xF0\x9F\x92\xB0", u"\xD83D\xDCB0", "\xF0\x9F\x92\xB0"},
      {"a\xFFz", u"a\xFFFDz", "a\xEF\xBF\xBDz"},
      {"\xC3", u"\xFFFD", "\xEF\xBF\xBD"},
      {"\xC0\x80", u"\xFFFD\xFFFD", "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"\xED\xA0\x80", u"\xFFFD\xFFFD\xFFFD", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD",
       "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"\xE2\x82", u"\xFFFD\xFFFD", "\xEF\xBF\xBD\xEF\xBF\xBD"},
      // The first and the last character of each length, and what is too long for them.
      {"\x7F", u"\x7F", "\x7F"},
      {"\xC2\x80", u"\x80", "\xC2\x80"},
      {"\xDF\xBF", u"\x7FF", "\xDF\xBF"},
      {"\xE0\xA0\x80", u"\x800", "\xE0\xA0\x80"},
      {"\xED\x9F\xBF", u"\xD7FF", "\xED\x9F\xBF"},
      {"\xEE\x80\x80", u"\xE000", "\xEE\x80\x80"},
      {"\xEF\xBF\xBF", u"\xFFFF", "\xEF\xBF\xBF"},
      {"\xF0\x90\x80\x80", u"\xD800\xDC00", "\xF0\x90\x80\x80"},
      {"\xF4\x8F\xBF\xBF", u"\xDBFF\xDFFF", "\xF4\x8F\xBF\xBF"},
      {"\xC1\xBF", u"\xFFFD\xFFFD", "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"\xE0\x9F\xBF", u"\xFFFD\xFFFD\xFFFD", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"\xF0\x8F\xBF\xBF", u"\xFFFD\xFFFD\xFFFD\xFFFD",
       "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
  };
  for (const Case& row : kCases) {
    EXPECT_EQ(FromUtf8(row.utf8), row.text);
    EXPECT_EQ(ToUtf8(row.text), row.back);
  }
  EXPECT_EQ(ToUtf8(u"\xDC00\xD800"), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(ToUtf8(u"\xD800z"), "\xEF\xBF\xBDz");
}

TEST(Text, FindsWithoutCase) {
  EXPECT_EQ(FindFolded(u"Señor PEÑA", u"peña"), 6u);
  EXPECT_EQ(FindFolded(u"aaa", u"", 2), 2u);
  EXPECT_EQ(FindFolded(u"aaa", u"a", 4), TextView::npos);
  // A long part whose beginning repeats: found where the plain search finds it.
  Text part(100, u'a');
  part += u"b";
  const Text text = Text(150, u'A') + Text(100, u'a') + u"b" + Text(10, u'a');
  EXPECT_EQ(FindFolded(text, part), 150u);
  EXPECT_EQ(FindFolded(text, part + u"c"), TextView::npos);
}

}  // namespace
}  // namespace tovalin
