#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "evaluator/number_helpers.h"
#include "evaluator/text_helpers.h"
#include "tovalin/error.h"

namespace tovalin::evaluator {
namespace {

template <class Call>
std::int32_t ErrorOf(Call call) {
  try {
    call();
  } catch (const Error& error) {
    return error.number;
  }
  return 0;
}

struct TextCase {
  TextView text;
  TextView expected;
};

template <class Function>
void ExpectAll(Function function, std::initializer_list<TextCase> cases) {
  for (const auto& [text, expected] : cases)
    EXPECT_EQ(ToUtf8(function(text)), ToUtf8(expected)) << ToUtf8(text);
}

TEST(ReplaceStringTest, ReplacesEveryOccurrenceExactly) {
  struct {
    TextView text, macro, replacement, expected;
  } const cases[] = {
      {u"a.b.c", u".", u"--", u"a--b--c"},
      {u"aaaa", u"aa", u"a", u"aa"},  // what was put in is not searched again
      {u"aaa", u"aa", u"b", u"ba"},   // from left to right
      {u"Caja caja", u"caja", u"x", u"Caja x"},
      {u"abc", u"", u"x", u"abc"},
      {u"abc", u"abcd", u"x", u"abc"},
      {u"", u"a", u"x", u""},
      {u"[N]", u"[N]", u"", u""},
  };
  for (const auto& c : cases)
    EXPECT_EQ(ToUtf8(ReplaceString(c.text, c.macro, c.replacement)), ToUtf8(c.expected))
        << ToUtf8(c.text);
}

TEST(ReplaceStringTest, AgreesWithCharCountAndStripOnRandomTexts) {
  std::mt19937 random(7);
  for (int round = 0; round < 2000; ++round) {
    Text text;
    for (auto length = random() % 12; length > 0; --length)
      text.push_back(static_cast<char16_t>('a' + random() % 2));
    const Text macro = random() % 2 ? u"ab" : u"aa";
    const std::size_t count = CharCount(text, macro);
    EXPECT_EQ(Strip(text, macro).size(), text.size() - 2 * count);
    const Text marked = ReplaceString(text, macro, u"#");
    EXPECT_EQ(CharCount(marked, u"#"), count);
    EXPECT_EQ(marked.find(macro), Text::npos) << ToUtf8(text);
    EXPECT_EQ(ReplaceString(marked, u"#", macro), text);
  }
}

// Each of these took the square of its length when searched plainly.
TEST(ReplaceStringTest, TakesLinearTimeOnLongMacros) {
  const Text run(1 << 19, u'a');
  const Text half(1 << 18, u'a');
  EXPECT_EQ(CharCount(run, half + u"b"), 0u);
  EXPECT_EQ(CharCount(run, u"b" + half), 0u);
  EXPECT_EQ(CharCount(run, half), 2u);
  EXPECT_EQ(ReplaceString(run, half, u"x"), u"xx");
  EXPECT_EQ(ReplaceString(run + u"b" + half, half + u"b", u"x"), half + u"x" + half);
}

TEST(DoAutoBracketTest, TakesLinearTimeOnUnclosedBrackets) {
  const Text parts = Replicate(u"[.", 1 << 18);
  EXPECT_EQ(DoAutoBracket(parts), Replicate(u"[[].", 1 << 18));
}

TEST(TextLimitTest, ResultsThatFitNowhereRaiseOutOfMemory) {
  const Text longer(1 << 16, u'1');
  EXPECT_EQ(ErrorOf([&] { ReplaceString(longer, u"1", longer); }), 7);
  EXPECT_EQ(ErrorOf([&] { Replicate(longer, 1 << 20); }), 7);
  Text groups = longer;
  for (int i = 0; i < 1 << 16; ++i) groups += u".1";
  EXPECT_EQ(ErrorOf([&] { AjustarDigitosGrupo(groups); }), 7);
}

TEST(ReplicateTest, RepeatsText) {
  EXPECT_EQ(Replicate(u"ab", 3), u"ababab");
  EXPECT_EQ(Replicate(u"ab", 0), u"");
  EXPECT_EQ(Replicate(u"", std::numeric_limits<std::int32_t>::max()), u"");
  EXPECT_EQ(ErrorOf([] { Replicate(u"ab", -1); }), 5);
}

TEST(CSVNextCharTest, TakesFieldsFromTheFront) {
  struct {
    TextView line, delimiter, quote;
    std::vector<Text> fields;
  } const cases[] = {
      {u"a,b,,c", u",", u"", {u"a", u"b", u"", u"c"}},
      {u"a", u",", u"", {u"a"}},
      {u"a,", u",", u"", {u"a"}},
      {u"a||b", u"||", u"", {u"a", u"b"}},
      {u"a,b", u"", u"", {u"a,b"}},
      {u"\"a,b\",c", u",", u"", {u"\"a", u"b\"", u"c"}},
      {u"\"a,b\",c", u",", u"\"", {u"a,b", u"c"}},
      {u"\"a\"\"b\",c", u",", u"\"", {u"a\"b", u"c"}},
      {u"\"\",\"\"\"\"", u",", u"\"", {u"", u"\""}},
      {u"\"a,b", u",", u"\"", {u"a,b"}},
      {u"\"a\" b,c", u",", u"\"", {u"a b", u"c"}},
      {u"\"", u",", u"\"", {u""}},
  };
  for (const auto& c : cases) {
    TextView rest = c.line;
    std::vector<Text> fields;
    while (!rest.empty()) fields.push_back(CSVNextChar(rest, c.delimiter, c.quote));
    EXPECT_EQ(fields, c.fields) << ToUtf8(c.line);
  }
}

TEST(StripNitTest, KeepsLettersAndDigitsBeforeTheCheckDigit) {
  ExpectAll(StripNit, {{u"800.197.268-4", u"800197268"},
                       {u"800197268", u"800197268"},
                       {u"800-197-268-4", u"800197268"},
                       {u" AÑ 12/b-3", u"AÑ12b"},
                       {u"-4", u""},
                       {u"", u""}});
}

TEST(RemoveCharsTest, LeavesWhatANameMayHold) {
  ExpectAll(RemoveChars, {{u"+-/*^();!#%&[]{}?~.,\\|<>=:@$ '\"", u""},
                          {u"Caja (menor) #1", u"Cajamenor1"},
                          {u"año_2024¿»\t", u"año_2024¿»\t"}});
}

TEST(AjustarDigitosGrupoTest, FillsToTheLongestGroup) {
  ExpectAll(AjustarDigitosGrupo, {{u"1.10.300", u"001.010.300"},
                                  {u"A1-22B", u"A01-22B"},
                                  {u"300", u"300"},
                                  {u"abc", u"abc"},
                                  {u"", u""},
                                  {u"5x", u"5x"}});
}

TEST(DoAutoBracketTest, BracketsEachPart) {
  ExpectAll(DoAutoBracket, {{u"a.[b c]", u"[a].[b c]"},
                            {u" Valor total ", u"[Valor total]"},
                            {u"[a.b] . c", u"[a.b].[c]"},
                            {u"db..t", u"[db]..[t]"},
                            {u"[a", u"[[a]"},
                            {u"[a.b", u"[[a].[b]"},
                            {u"[a]b", u"[[a]b]"},
                            {u"[]", u"[]"},
                            {u"[", u"[[]"},
                            {u"", u""}});
}

TEST(ExtraerPalabraTest, ParticlesAreNoWordsWhenAnotherFollows) {
  struct {
    TextView name;
    std::vector<Text> words;
  } const cases[] = {
      {u"María de los Ángeles Pérez", {u"María", u"Ángeles", u"Pérez", u""}},
      {u" DE LA Cruz Y Soto ", {u"Cruz", u"Soto", u""}},
      {u"Ana Eva e Inés", {u"Ana", u"Eva", u"Inés", u""}},
      {u"Ruiz de la", {u"Ruiz", u"la", u""}},
      {u"a  b", {u"a", u"", u"b", u""}},
      {u"y", {u"y", u""}},
      {u"Lasso Delia", {u"Lasso", u"Delia", u""}},
      {u"  ", {u""}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ExtraerPalabra(c.name, 0), u"");
    for (std::size_t i = 0; i < c.words.size(); ++i)
      EXPECT_EQ(ToUtf8(ExtraerPalabra(c.name, static_cast<std::uint8_t>(i + 1))),
                ToUtf8(c.words[i]))
          << ToUtf8(c.name) << ' ' << i + 1;
    EXPECT_EQ(ExtraerPalabra(c.name, 255), u"");
  }
}

TEST(ExtraeRevTest, GivesTheLastWord) {
  ExpectAll(ExtraeRev,
            {{u"uno dos  tres ", u"tres"}, {u"uno", u"uno"}, {u"Ruiz de", u"de"}, {u"", u""}});
}

// Tax numbers of well-known Colombian entities with their published digits.
TEST(DigitoVTest, GivesThePublishedDigits) {
  ExpectAll(DigitoV, {{u"800197268", u"4"},
                      {u"860002964", u"4"},
                      {u"890903938", u"8"},
                      {u"899999068", u"1"},
                      {u"860034313", u"7"},
                      {u"890900608", u"9"},
                      {u"899999061", u"9"},
                      {u"900336004", u"7"},
                      {u"890900286", u"0"},
                      {u"  800197268 ", u"4"},
                      {u"000000800197268", u"4"},
                      {u"", u""}});
}

TEST(DigitoVTest, TakesAnyCharacterThatIsNoDigitAsZero) {
  EXPECT_EQ(DigitoV(u"8X0197268"), DigitoV(u"800197268"));
  EXPECT_EQ(DigitoV(u"80-"), DigitoV(u"800"));
  EXPECT_EQ(DigitoV(u"   "), u"0");
  EXPECT_EQ(ErrorOf([] { DigitoV(u"1234567890123456"); }), 5);
  EXPECT_EQ(ErrorOf([] { DigitoV(u" 123456789012345 "); }), 0);
}

// Every amount of three decimals, and its neighbours that read alike, against
// whole-number arithmetic.
TEST(RoundHalfEvenTest, RoundsDecimalsAsTheyAreWritten) {
  for (int thousandths = -30000; thousandths <= 30000; ++thousandths) {
    const int magnitude = std::abs(thousandths);
    int hundredths = magnitude / 10;
    const int rest = magnitude % 10;
    if (rest > 5 || (rest == 5 && hundredths % 2 == 1)) ++hundredths;
    const double expected = (thousandths < 0 ? -hundredths : hundredths) / 100.0;
    const double value = thousandths / 1000.0;
    for (double near : {value, std::nextafter(value, -1e9), std::nextafter(value, 1e9)})
      ASSERT_EQ(RoundHalfEven(near, 2), expected) << thousandths;
  }
}

TEST(RoundHalfEvenTest, KeepsWhatItCannotRound) {
  EXPECT_EQ(RoundHalfEven(0.1 + 0.2, 10), 0.3);
  EXPECT_EQ(RoundHalfEven(12345678901234567.0, 2), 12345678901234567.0);
  EXPECT_EQ(RoundHalfEven(1e300, 22), 1e300);
  EXPECT_EQ(RoundHalfEven(5e-324, 22), 0);
  EXPECT_EQ(RoundHalfEven(0.5, 0), 0);
  EXPECT_EQ(RoundHalfEven(0.51, 0), 1);
  EXPECT_EQ(RoundHalfEven(999999.5, 0), 1000000);
  EXPECT_FALSE(std::signbit(RoundHalfEven(-0.001, 2)));
  EXPECT_EQ(ErrorOf([] { RoundHalfEven(1, -1); }), 5);
  EXPECT_EQ(ErrorOf([] { RoundHalfEven(1, 23); }), 5);
}

TEST(AjusteMedioTest, FollowsItsRulesInOrder) {
  struct {
    double value, step;
    std::int32_t decimals;
    double expected;
  } const cases[] = {
      {2.5, 1, 0, 2.5},       {-2.5, 1, 0, -2.5},     // unchanged
      {2.665, 1, 2, 2.66},    {2.675, 1, 2, 2.68},    // half to even
      {-2.345, 1, 2, -2},     {-2.995, 1, 2, -3},     // a hundredth's half, whole part
      {1275, 50, 0, 1300},    {-1275, 50, 0, -1300},  // half away from zero
      {1274.99, 50, 0, 1250}, {-1274.99, 50, 0, -1250},
      {1299, 100, 2, 1200},   {-1299, 100, 2, -1200},  // decimals shift the half
      {0, 50, 0, 0},          {-2, 5, 0, 0},           // no negative zero
      {7, -5, 0, 5},          {-7, -5, 0, -5},         // a negative step
  };
  for (const auto& c : cases) {
    const double result = AjusteMedio(c.value, c.step, c.decimals);
    EXPECT_EQ(result, c.expected) << c.value << ' ' << c.step << ' ' << c.decimals;
    EXPECT_EQ(std::signbit(result), c.expected < 0) << c.value;
  }
}

// Cash roundings to five cents: every amount of cents, both signs.
TEST(AjusteMedioTest, RoundsHalvesAwayFromZeroWhateverTheDoublesSay) {
  for (int thousandths = -50000; thousandths <= 50000; thousandths += 5) {
    const int steps = (std::abs(thousandths) + 25) / 50;
    const double expected = (thousandths < 0 ? -steps : steps) * 0.05;
    ASSERT_DOUBLE_EQ(AjusteMedio(thousandths / 1000.0, 0.05, 0), expected) << thousandths;
  }
}

TEST(AjusteMedioTest, RefusesWhatHasNoResult) {
  const double infinite = std::numeric_limits<double>::infinity();
  const double none = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(ErrorOf([] { AjusteMedio(5, 0, 0); }), 11);
  EXPECT_EQ(ErrorOf([] { AjusteMedio(0, 0, 2); }), 11);
  EXPECT_EQ(ErrorOf([] { AjusteMedio(2.5, 1, -1); }), 5);
  EXPECT_EQ(ErrorOf([] { AjusteMedio(1e300, 1e-300, 0); }), 6);
  EXPECT_EQ(ErrorOf([] { AjusteMedio(5, 2, std::numeric_limits<std::int32_t>::min()); }), 6);
  EXPECT_EQ(ErrorOf([=] { AjusteMedio(infinite, 5, 0); }), 6);
  EXPECT_EQ(ErrorOf([=] { AjusteMedio(none, 5, 0); }), 6);
  EXPECT_EQ(ErrorOf([=] { AjusteMedio(5, infinite, 0); }), 6);
}

TEST(RedondearTest, RoundsToPowersOfTen) {
  struct {
    double value;
    std::int32_t n;
    double expected;
  } const cases[] = {
      {1234500, 3, 1235000},
      {-1234500, 3, -1235000},
      {1234499.99, 3, 1234000},
      {2.5, 0, 2},
      {3.5, 0, 4},
      {-2.5, 0, -2},
      {2.6, 0, 3},
      {45, 1, 50},
      {44.99, 1, 40},
      {4e12, 13, 0},
      {5e12, 13, 1e13},
  };
  for (const auto& c : cases) EXPECT_EQ(Redondear(c.value, c.n), c.expected) << c.value;
  EXPECT_EQ(ErrorOf([] { Redondear(1234.5, -1); }), 11);
  EXPECT_EQ(ErrorOf([] { Redondear(1, 309); }), 6);
}

}  // namespace
}  // namespace tovalin::evaluator
