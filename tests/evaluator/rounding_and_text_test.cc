#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "evaluator/rounding.h"
#include "evaluator/text_operations.h"
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

}  // namespace
}  // namespace tovalin::evaluator
