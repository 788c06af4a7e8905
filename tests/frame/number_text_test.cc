#include "frame/value/number_text.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>

#include "tovalin/convert.h"

namespace tovalin {
namespace {

template <class Number>
std::string TextOf(Number value) {
  Text text = u"=";
  AppendNumber(text, value);
  return ToUtf8(text).substr(1);
}

TEST(NumberText, OfWhatIsNoNumberAndInUtf8) {
  const struct {
    double value;
    const char* text;
  } kRows[] = {{-0.0, "0"},
               {-1.5e-16, "-1.5E-16"},
               {-1234.5, "-1234.5"},
               {std::numeric_limits<double>::infinity(), "INF"},
               {-std::numeric_limits<double>::infinity(), "-INF"},
               {std::numeric_limits<double>::quiet_NaN(), "NaN"}};
  for (const auto& row : kRows) {
    EXPECT_EQ(TextOf(row.value), row.text);
    std::string utf8 = "=";
    AppendNumber(utf8, row.value);
    EXPECT_EQ(utf8, std::string("=") + row.text);
  }
}

TEST(NumberText, OfTheSmallestWholeNumber) {
  EXPECT_EQ(TextOf(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

// The C library rounds a decimal expansion of any length correctly and by
// another algorithm.
std::string DigitsByPrintf(double value, int significant, int& exponent) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.*e", significant - 1, std::abs(value));
  std::string digits = buffer;
  const std::size_t mark = digits.find('e');
  exponent = std::atoi(digits.c_str() + mark + 1) + 1;
  digits.resize(mark);
  std::erase(digits, '.');
  digits.erase(digits.find_last_not_of('0') + 1);
  return digits;
}

TEST(NumberText, DigitsAreCorrectlyRounded) {
  std::uint64_t state = 7;
  const auto next = [&state] {
    return state = state * 6364136223846793005u + 1442695040888963407u;
  };
  for (int i = 0; i < 30000; ++i) {
    const auto bits = static_cast<std::int64_t>(next() >> 20);
    double value = static_cast<double>(bits);
    if (i % 3 == 0) value = static_cast<double>(bits % 1'000'000'000) / 100;          // amounts
    if (i % 3 == 1) value = std::ldexp(value, static_cast<int>(next() >> 54) - 600);  // any size
    if (i % 5 == 0) value = std::ldexp(value, -static_cast<int>(next() >> 58));       // near 1
    if (i % 7 == 0) value = static_cast<double>(bits % 1'000'000) / 16;  // halves of a digit
    if (i % 2 == 0) value = -value;
    const int significant = 1 + i % 17;
    const DecimalDigits digits = ToDecimalDigits(value, significant);
    if (value == 0) {
      EXPECT_EQ(digits.count, 0);
      continue;
    }
    int exponent = 0;
    EXPECT_EQ(std::string(digits.digits, static_cast<std::size_t>(digits.count)),
              DigitsByPrintf(value, significant, exponent))
        << value << ' ' << significant;
    EXPECT_EQ(digits.exponent, exponent) << value << ' ' << significant;
    EXPECT_EQ(digits.negative, value < 0);
  }
}

TEST(NumberText, AmountsReadBackToTheLastBit) {
  std::uint64_t state = 3;
  for (int i = 0; i < 20000; ++i) {
    state = state * 6364136223846793005u + 1442695040888963407u;
    const double value = static_cast<double>(state >> 24) / 10000;
    EXPECT_EQ(ReadNumber(ToText(Variant(value))), value);
  }
}

}  // namespace
}  // namespace tovalin
