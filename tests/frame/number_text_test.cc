#include "frame/number_text.h"

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

TEST(NumberText, OfDouble) {
  struct {
    double value;
    const char* text;
  } const kRows[] = {
      {0, "0"},
      {-0.0, "0"},
      {0.1 + 0.2, "0.3"},
      {1.0 / 3, "0.333333333333333"},
      {-100.0 / 3, "-33.3333333333333"},
      {434.99999999999994, "435"},
      {2.675, "2.675"},
      {0.9999999999999999, "1"},
      {0.999999999999999, "0.999999999999999"},
      {120000000000, "120000000000"},
      {900000000000000, "900000000000000"},
      {-999999999999999, "-999999999999999"},
      {-999999999999999.5, "-1E+15"},
      {1e15, "1E+15"},
      {9007199254740992, "9.00719925474099E+15"},
      {6.02214076e23, "6.02214076E+23"},
      {1.7976931348623157e308, "1.79769313486232E+308"},
      {4.94065645841247e-324, "4.94065645841247E-324"},
      {-1e-308, "-1E-308"},
      // A point needs at most 15 digits behind it.
      {1234567.89, "1234567.89"},
      {100000000000.1, "100000000000.1"},
      {0.00015, "0.00015"},
      {5e-07, "0.0000005"},
      {-1e-11, "-0.00000000001"},
      {1.5e-14, "0.000000000000015"},
      {1e-15, "0.000000000000001"},
      {1e-16, "1E-16"},
      {1.5e-16, "1.5E-16"},
      {0.123456789012345, "0.123456789012345"},
      {0.09999999999999964, "9.99999999999996E-02"},
      {1.23456789012345e-05, "1.23456789012345E-05"},
      {std::numeric_limits<double>::infinity(), "INF"},
      {-std::numeric_limits<double>::infinity(), "-INF"},
      {std::numeric_limits<double>::quiet_NaN(), "NaN"},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(TextOf(row.value), row.text);
    std::string utf8 = "=";
    AppendNumber(utf8, row.value);
    EXPECT_EQ(utf8, std::string("=") + row.text);
  }
}

TEST(NumberText, OfSingle) {
  struct {
    float value;
    const char* text;
  } const kRows[] = {{0.1f, "0.1"},
                     {1.0f / 3, "0.3333333"},
                     {123456.7f, "123456.7"},
                     {-1234567.0f, "-1234567"},
                     {12345678.0f, "1.234568E+07"},
                     {1e7f, "1E+07"},
                     {1e-5f, "0.00001"},
                     {1.2345e-5f, "1.2345E-05"},
                     {1.4013e-45f, "1.401298E-45"}};
  for (const auto& row : kRows) EXPECT_EQ(TextOf(row.value), row.text);
}

TEST(NumberText, OfAmountsAndWholeNumbers) {
  struct {
    std::int64_t ten_thousandths;
    const char* text;
  } const kRows[] = {{0, "0"},
                     {1, "0.0001"},
                     {-5, "-0.0005"},
                     {100, "0.01"},
                     {-10000, "-1"},
                     {1000500, "100.05"},
                     {-123456, "-12.3456"},
                     {100000000000, "10000000"},
                     {std::numeric_limits<std::int64_t>::max(), "922337203685477.5807"},
                     {std::numeric_limits<std::int64_t>::min(), "-922337203685477.5808"}};
  for (const auto& row : kRows) EXPECT_EQ(TextOf(Currency{row.ten_thousandths}), row.text);
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
