#include "frame/conversion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include "frame/value_notation.h"
#include "tovalin/convert.h"
#include "tovalin/locale.h"

namespace tovalin {
namespace {

using testing::Outcome;
using testing::Value;

struct Row {
  const char* value;
  const char* result;
};

template <std::size_t N>
void ExpectRows(Subtype target, const Row (&rows)[N]) {
  for (const Row& row : rows)
    EXPECT_EQ(Outcome([&] { return Convert(Value(row.value), target); }), row.result)
        << row.value << " to " << ToUtf8(SubtypeName(target));
}

TEST(Conversion, ToInteger) {
  ExpectRows(Subtype::Integer, {{"empty", "i:0"},         {"null", "!13"},
                                {"b:-1", "i:-1"},         {"y:255", "i:255"},
                                {"l:32768", "!6"},        {"f:2.5", "i:2"},
                                {"d:-0.5000001", "i:-1"}, {"d:0.49999999999999994", "i:0"},
                                {"d:-1.5", "i:-2"},       {"d:32766.5", "i:32766"},
                                {"d:32767.5", "!6"},      {"c:-2.5000", "i:-2"},
                                {"c:0.5001", "i:1"},      {"c:-32768.5000", "i:-32768"},
                                {"c:32767.5000", "!6"},   {"t:1.5", "i:2"},
                                {"t:45292", "!6"},        {"s:32767.4", "i:32767"},
                                {"s:&HFFFF", "i:-1"},     {"s:-&H8000", "!6"},
                                {"s:&H7FFFFFFF", "!6"},   {"s:abc", "!13"}});
}

TEST(Conversion, ToLong) {
  ExpectRows(Subtype::Long, {{"d:2147483647.49", "l:2147483647"},
                             {"d:-2147483648.5", "l:-2147483648"},
                             {"d:2147483647.5", "!6"},
                             {"d:1e308", "!6"},
                             {"c:2147483647.5000", "!6"},
                             {"t:45292.75", "l:45293"},
                             {"s:&HFFFF", "l:65535"},
                             {"s:&HFFFFFFFF", "l:-1"},
                             {"s:-1.5", "l:-2"},
                             {"s:1e309", "!6"},
                             {"s:14:30", "!13"}});
}

TEST(Conversion, ToByte) {
  ExpectRows(Subtype::Byte, {{"b:-1", "y:255"},
                             {"i:256", "!6"},
                             {"i:-1", "!6"},
                             {"d:-0.5", "y:0"},
                             {"d:255.5", "!6"},
                             {"s:254.5", "y:254"},
                             {"s:-5", "!6"}});
}

TEST(Conversion, ToSingle) {
  ExpectRows(Subtype::Single, {{"d:0.1", "f:0.1"},
                               {"d:1e-300", "f:0"},
                               {"d:3.4028235e38", "f:3.4028235e+38"},
                               {"d:3.4028235677973366e+38", "!6"},
                               {"l:2147483647", "f:2147483648"},
                               {"s:1e39", "!6"}});
}

TEST(Conversion, ToDouble) {
  ExpectRows(Subtype::Double, {{"f:0.1", "d:0.10000000149011612"},
                               {"c:-922337203685477.5808", "d:-922337203685477.6"},
                               {"t:45351.9999999", "d:45351.9999999"},
                               {"b:-1", "d:-1"},
                               {"s:1.234,5", "d:1.2345"},
                               {"s:&H1FFFFFFFF", "!6"},
                               {"s:-1e309", "!6"},
                               {"s:", "!13"},
                               {"s:1/1/2024", "!13"}});
}

TEST(Conversion, ToCurrency) {
  ExpectRows(Subtype::Currency, {{"d:0.00015", "c:0.0001"},
                                 {"d:0.00025", "c:0.0003"},
                                 {"d:-5e-05", "c:-0.0001"},
                                 {"d:0.0001220703125", "c:0.0001"},
                                 {"d:0.03125", "c:0.0312"},
                                 {"d:0.09375", "c:0.0938"},
                                 {"d:2958465.99999", "c:2958466.0000"},
                                 {"d:922337203685477", "c:922337203685477.0000"},
                                 {"d:922337203685477.6", "!6"},
                                 {"f:0.1", "c:0.1000"},
                                 {"s:922337203685477.5807", "c:922337203685477.5807"},
                                 {"s:922337203685477.5808", "!6"},
                                 {"s:-922337203685477.5808", "c:-922337203685477.5808"},
                                 {"s:123456789012345.67895", "c:123456789012345.6790"},
                                 {"s:0.00005", "c:0.0000"},
                                 {"s:0.000050001", "c:0.0001"},
                                 {"s:0.00015", "c:0.0002"},
                                 {"s:1E5", "c:100000.0000"},
                                 {"s:1e39", "!6"},
                                 {"s:1e-5000", "c:0.0000"},
                                 {"s:&H1F", "!6"}});
}

TEST(Conversion, ToDate) {
  ExpectRows(Subtype::Date, {{"empty", "t:0"},
                             {"f:0.1", "t:0.10000000149011612"},
                             {"d:-657434.99", "t:-657434.99"},
                             {"d:-657435", "!6"},
                             {"d:2958465.99999", "t:2958465.99999"},
                             {"l:2958466", "!6"},
                             {"b:-1", "t:-1"},
                             {"s:12", "!13"},
                             {"s:1e5", "!13"}});
}

TEST(Conversion, ToBoolean) {
  ExpectRows(Subtype::Boolean, {{"empty", "b:0"},
                                {"null", "!13"},
                                {"d:1e-300", "b:-1"},
                                {"c:0.0001", "b:-1"},
                                {"t:0", "b:0"},
                                {"s:0", "b:0"},
                                {"s:12-", "b:-1"},
                                {"s:true", "b:-1"},
                                {"s:#FALSE#", "b:0"},
                                {"s:-1e309", "!6"},
                                {"s:Falso", "!13"},
                                {"s:", "!13"}});
}

TEST(Conversion, ToText) {
  ExpectRows(Subtype::String, {{"empty", "s:"},
                               {"null", "!13"},
                               {"i:-32768", "s:-32768"},
                               {"l:-2147483648", "s:-2147483648"},
                               {"y:255", "s:255"},
                               {"b:-1", "s:Verdadero"},
                               {"b:0", "s:Falso"},
                               {"d:-657434.99", "s:-657434.99"},
                               {"s:  12  ", "s:  12  "}});
}

TEST(Conversion, OfTheSameSubtypeKeepsTheValue) {
  const Variant text(u"compartido");
  EXPECT_EQ(Convert(text, Subtype::String).AsText().data(), text.AsText().data());
  EXPECT_TRUE(Convert(Variant::Null(), Subtype::Null).Is(Subtype::Null));
  Variant target(2.5);
  EXPECT_FALSE(Convert(Variant::ByReference(target), Subtype::Double).IsByReference());
}

TEST(Conversion, WhatHasNoScalarFormRaisesTypeMismatch) {
  const Variant strangers[] = {Variant(Ref<Object>()), Variant::Missing(),
                               Variant(Make<VariantArray>(1, 1))};
  const Subtype targets[] = {Subtype::Integer, Subtype::Long,    Subtype::Single,
                             Subtype::Double,  Subtype::Date,    Subtype::Currency,
                             Subtype::String,  Subtype::Boolean, Subtype::Byte};
  for (const Variant& stranger : strangers)
    for (const Subtype target : targets)
      EXPECT_EQ(Outcome([&] { return Convert(stranger, target); }), "!13");
  EXPECT_EQ(Outcome([] { return Convert(Variant(1.0), Subtype::Object); }), "!13");
}

TEST(Conversion, ValuesThatAreNotFiniteFitNowhereButInDouble) {
  const Subtype targets[] = {Subtype::Integer, Subtype::Long,     Subtype::Byte,
                             Subtype::Single,  Subtype::Currency, Subtype::Date};
  for (const double value :
       {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()})
    for (const Subtype target : targets)
      EXPECT_EQ(Outcome([&] { return Convert(value, target); }), "!6");
}

// An amount is its exact count of ten-thousandths rounded to even; __int128 and
// a power of two do that sum without Double's roundings.
TEST(Conversion, CurrencyIsTheNearestAmountToTheBinaryValue) {
  std::uint64_t state = 1;
  for (int i = 0; i < 20000; ++i) {
    state = state * 6364136223846793005u + 1442695040888963407u;
    const auto mantissa = static_cast<std::int64_t>(state >> 11);  // 53 bits
    const int shift = 4 + i % 60;
    __extension__ using Int128 = __int128;
    const Int128 product = Int128{mantissa} * 10000;
    Int128 units = product >> shift;
    const Int128 rest = product - (units << shift);
    const Int128 half = Int128{1} << (shift - 1);
    if (rest > half || (rest == half && units % 2 != 0)) ++units;
    const auto amount = CurrencyOf(std::ldexp(static_cast<double>(mantissa), -shift));
    if (units > std::numeric_limits<std::int64_t>::max()) {
      EXPECT_FALSE(amount);
    } else {
      ASSERT_TRUE(amount);
      EXPECT_EQ(amount->ten_thousandths, static_cast<std::int64_t>(units))
          << mantissa << ' ' << shift;
    }
  }
}

TEST(NumberReading, WholeTexts) {
  struct {
    const char* text;
    std::optional<double> number;
  } const kRows[] = {
      {"+12", 12},
      {" 5 -", -5},
      {"5+", 5},
      {"-5-", {}},
      {"--5", {}},
      {"( 5 )", -5},
      {"(-5)", -5},
      {"(5", {}},
      {"5)", {}},
      {"\n12\t", 12},
      {"\u00A012", 12},
      {"", {}},
      {" ", {}},
      {"-", {}},
      {".", {}},
      {"12.", 12},
      {"-.5", -0.5},
      {"1.2.3", {}},
      {",5", {}},
      {"5,", 5},
      {"1,,2", 12},
      {"1.5,5", 1.55},
      {"$ 5", 5},
      {"-$5", -5},
      {"$-5", -5},
      {"5$", 5},
      {"$", {}},
      {"$$5", {}},
      {"€5", {}},
      {"5%", {}},
      {"1E5", 1e5},
      {"1d-2", 0.01},
      {"1e", {}},
      {"1e+", {}},
      {"1 e5", {}},
      {"1e5.5", {}},
      {"e5", {}},
      {"1e-400", 0},
      {"0e99999999999", 0},
      {"1e309", {}},
      {"&h1f", 31},
      {"-&H1F", -31},
      {"&o17", 15},
      {"&HFFFF", 65535},
      {"&HFFFFFFFF", -1},
      {"&H000000001", 1},
      {"&H1FFFFFFFF", {}},
      {"&H", {}},
      {"&O8", {}},
      {"&17", {}},
      {"0x1F", {}},
      {"12abc", {}},
      {"1 234", {}},
      {"1/1/2024", {}},
      {"nan", {}},
      {"Infinity", {}},
      {"Verdadero", {}},
      {"١٢", {}},
      // To the last bit as far as Double is exact, beyond it as the platform does.
      {"1.00005", 1.00005},
      {"0.1", 0.1},
      {"123456789.123456", 123456789.123456},
      {"8.2e-20", 8.2e-20},
      {"99999999999999999999", 1.0000000000000002e+20},
      {"-922337203685477.5808", -922337203685477.8},
      {"1e308", 9.999999999999998e+307},
      {"5e-324", 4.9406564584124654e-324},
  };
  for (const auto& row : kRows) {
    const Text text = FromUtf8(row.text);
    EXPECT_EQ(ReadNumber(text), row.number) << row.text;
    EXPECT_EQ(IsNumeric(Variant(text)), row.number.has_value()) << row.text;
  }
}

TEST(NumberReading, TextsWithoutEnd) {
  const Text digits(1'000'000, u'9');
  EXPECT_EQ(ReadNumber(digits), std::nullopt);
  EXPECT_NEAR(ReadNumber(u"0." + digits).value_or(0), 1, 1e-14);
  EXPECT_EQ(ReadNumber(Text(1'000'000, u'(')), std::nullopt);
  EXPECT_EQ(LeadingNumber(u"0." + digits), 1);
  EXPECT_EQ(LeadingNumber(Text(1'000'000, u' ') + u"7"), 7);
}

TEST(NumberReading, UnderAnotherLocale) {
  const Locale before = CurrentLocale();
  Locale locale;
  locale.decimal_separator = u',';
  locale.thousands_separator = u'.';
  locale.currency_symbol = u"Bs.";
  locale.true_text = u"Sí";
  SetLocale(locale);
  EXPECT_EQ(ReadNumber(u"Bs. 1.234,5"), 1234.5);
  EXPECT_EQ(ReadNumber(u"$5"), std::nullopt);
  EXPECT_EQ(ToText(Variant(-1234.5)), u"-1234,5");
  EXPECT_EQ(ToText(Variant(Currency{15000})), u"1,5");
  EXPECT_EQ(ToText(Variant(true)), u"Sí");
  EXPECT_EQ(LeadingNumber(u"1.5"), 1.5);
  SetLocale(before);
}

TEST(NumberReading, LeadingNumbers) {
  struct {
    const char* text;
    double number;
  } const kRows[] = {
      {" 12 500.5 kg", 12500.5},
      {"1,234", 1},
      {"-.5x", -0.5},
      {"- 7", -7},
      {"+7", 7},
      {"--7", 0},
      {"7-", 7},
      {"", 0},
      {"abc", 0},
      {".", 0},
      {"$5", 0},
      {"5.", 5},
      {"1.2.3", 1.2},
      {"2e3", 2000},
      {"2D3", 2000},
      {"2e", 2},
      {"2e+x", 2},
      {"1e-400", 0},
      {"3.141592653589793", 3.141592653589793},
      {"&HFF", 255},
      {"&hffff", -1},
      {"&HFFFF&", 65535},
      {"&H10000", 65536},
      {"&HFFFFFFFF", -1},
      {"&H1G", 1},
      {"&O17", 15},
      {"&H", 0},
      {"&17", 0},
      {"١٢", 0},
  };
  for (const auto& row : kRows)
    EXPECT_EQ(LeadingNumber(FromUtf8(row.text)), row.number) << row.text;
  for (const char16_t* text : {u"1e400", u"-1e400", u"&H1FFFFFFFF"})
    EXPECT_EQ(Outcome([&] { return LeadingNumber(text); }), "!6");
}

TEST(IsNumeric, OfOtherSubtypes) {
  for (const char* numeric : {"empty", "i:1", "l:1", "f:1", "d:1", "c:1.0000", "b:0", "y:1"})
    EXPECT_TRUE(IsNumeric(Value(numeric))) << numeric;
  for (const char* other : {"null", "t:1"}) EXPECT_FALSE(IsNumeric(Value(other))) << other;
  EXPECT_FALSE(IsNumeric(Variant::Missing()));
}

}  // namespace
}  // namespace tovalin
