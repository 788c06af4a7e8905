#include "frame/value/conversion.h"

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

#ifdef __SIZEOF_INT128__
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
#endif

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
  EXPECT_EQ(ToText(Variant(1.5e-20)), u"1,5E-20");
  EXPECT_EQ(ToText(Variant(0.5F)), u"0,5");
  EXPECT_EQ(ToText(Variant(Currency{15000})), u"1,5");
  EXPECT_EQ(ToText(Variant(true)), u"Sí");
  EXPECT_EQ(LeadingNumber(u"1.5"), 1.5);
  SetLocale(before);
}

TEST(IsNumeric, OfOtherSubtypes) {
  for (const char* numeric : {"empty", "i:1", "l:1", "f:1", "d:1", "c:1.0000", "b:0", "y:1"})
    EXPECT_TRUE(IsNumeric(Value(numeric))) << numeric;
  for (const char* other : {"null", "t:1"}) EXPECT_FALSE(IsNumeric(Value(other))) << other;
  EXPECT_FALSE(IsNumeric(Variant::Missing()));
}

}  // namespace
}  // namespace tovalin
