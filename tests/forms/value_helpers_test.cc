#include <gtest/gtest.h>

#include <random>

#include "tests/forms/fakes.h"
#include "tovalin/lib_general.h"

namespace tovalin {
namespace {

TEST(StripDelimiter, RemovesEachDelimiterButTheNextOfTwo) {
  struct {
    const char16_t* text;
    const char16_t* delimiters;
    const char* stripped;
  } const kCases[] = {
      {u"a,,b", u",", "a,b"},
      {u"a,b,c", u",", "abc"},
      {u"(1-2)", u"()-", "12"},
      {u"a,,b", u",,", "ab"},
      {u",,,,", u",", ",,"},
      {u"aAa", u"a", "A"},
      {u"", u",", ""},
      {u"abc", u"", "abc"},
      {u",", u",", ""},
      {u"900.123.456-7", u".-", "9001234567"},
      {u"año»», fin", u"»,", "año» fin"},
  };
  for (const auto& c : kCases)
    EXPECT_EQ(ToUtf8(LibGeneral().StripDelimiter(c.text, c.delimiters)), c.stripped)
        << ToUtf8(c.text) << " without " << ToUtf8(c.delimiters);
}

// The same by erasing from the text in place.
Text StripInPlace(Text text, TextView delimiters) {
  for (const char16_t delimiter : delimiters) {
    std::size_t found = text.find(delimiter);
    while (found != Text::npos) {
      text.erase(found, 1);
      found = text.find(delimiter, found + 1);
    }
  }
  return text;
}

TEST(StripDelimiter, AgreesWithErasingInPlaceOverRandomTexts) {
  std::mt19937 random(1252);
  for (int round = 0; round < 20000; ++round) {
    Text text, delimiters;
    for (auto n = random() % 15; n > 0; --n) text += u"a,.-"[random() % 4];
    for (auto n = random() % 5; n > 0; --n) delimiters += u",.-x"[random() % 4];
    ASSERT_EQ(LibGeneral().StripDelimiter(text, delimiters), StripInPlace(text, delimiters))
        << ToUtf8(text) << " without " << ToUtf8(delimiters);
  }
}

TEST(StripDelimiter, TakesLongListsOfDelimiters) {
  Text delimiters;
  for (char16_t c = 0; c < 0xFFFF; ++c) delimiters += c;
  EXPECT_EQ(LibGeneral().StripDelimiter(Text(1000000, u'\xFFFF'), delimiters).size(), 1000000u);
}

TEST(Pot, MultipliesAndWidensAsArithmeticDoes) {
  struct {
    Variant base;
    Variant power;
    Variant result;
  } const kCases[] = {
      {std::int16_t{2}, std::int16_t{0}, std::int16_t{1}},
      {std::int16_t{2}, std::int16_t{-3}, std::int16_t{1}},
      {std::int16_t{2}, std::int16_t{10}, std::int16_t{1024}},
      {std::int16_t{2}, std::int16_t{20}, std::int32_t{1048576}},
      {std::int16_t{2}, std::int16_t{40}, 1099511627776.0},
      {1.5, 2.5, 2.25},  // 2.5 rounds to 2
      {1.5, u"3", 3.375},
      {u"3", std::int16_t{2}, 9.0},
      {u"abc", std::int16_t{0}, std::int16_t{1}},
  };
  for (const auto& c : kCases) {
    const Variant result = LibGeneral().Pot(c.base, c.power);
    EXPECT_EQ(result.Code(), c.result.Code()) << ToUtf8(ToText(c.base));
    EXPECT_EQ(ToDouble(result), ToDouble(c.result)) << ToUtf8(ToText(c.base));
  }
  EXPECT_TRUE(LibGeneral().Pot(Variant::Null(), Variant(2)).Is(Subtype::Null));
}

TEST(Pot, RaisesWhatDoesNotConvertOrFit) {
  const auto error = [](const Variant& base, const Variant& power) {
    return RaisedBy([&] { LibGeneral().Pot(base, power); }).number;
  };
  EXPECT_EQ(error(Variant(2), Variant(u"dos")), 13);
  EXPECT_EQ(error(Variant(2), Variant(32768)), 6);
  EXPECT_EQ(error(Variant(u"abc"), Variant(1)), 13);
  EXPECT_EQ(error(Variant(10), Variant(400)), 6);
}

TEST(EsNulo, HoldsForNothingAndBlanks) {
  const LibGeneral general;
  EXPECT_TRUE(general.EsNulo(Variant()));
  EXPECT_TRUE(general.EsNulo(Variant::Null()));
  EXPECT_TRUE(general.EsNulo(u""));
  EXPECT_TRUE(general.EsNulo(u"   "));
  EXPECT_FALSE(general.EsNulo(u"\t"));
  EXPECT_FALSE(general.EsNulo(Variant(0)));
  EXPECT_FALSE(general.EsNulo(false));
  EXPECT_FALSE(general.EsNulo(Date{0}));
  EXPECT_EQ(RaisedBy([&] { general.EsNulo(Variant(Ref<Object>())); }).number, 13);
}

TEST(EstaVacio, AnswersABooleanValue) {
  const LibGeneral general;
  EXPECT_TRUE(general.EstaVacio(u"").AsBoolean());
  EXPECT_TRUE(general.EstaVacio(u"   ").AsBoolean());
  EXPECT_FALSE(general.EstaVacio(u" x ").AsBoolean());
}

TEST(Nvl, ReplacesNullAlone) {
  const LibGeneral general;
  EXPECT_EQ(general.nvl(Variant::Null(), Variant(7)).AsLong(), 7);
  EXPECT_EQ(general.nvl(Variant(3), Variant(7)).AsLong(), 3);
  EXPECT_TRUE(general.nvl(Variant(), Variant(7)).Is(Subtype::Empty));
}

TEST(Check, TestsNumbersDatesAndSubtypes) {
  struct {
    Variant value;
    int type;
    bool passes;
  } const kCases[] = {
      {u"70000", 2, true},
      {u"12.5", 3, true},
      {u"abc", 5, false},
      {u"", 4, false},
      {Date{1}, 6, false},
      {true, 6, true},
      {Variant(), 2, true},
      {Variant::Null(), 2, false},
      {u"07/03/2004", 7, true},
      {Date{1}, 7, true},
      {u"abc", 7, false},
      {std::int32_t{3}, 7, false},
      {u"", 8, true},
      {std::int32_t{3}, 8, false},
      {true, 11, true},
      {std::int32_t{1}, 11, false},
      {std::uint8_t{1}, 17, true},
      {u"1", 17, false},
      {Variant(), 0, true},
      {Variant::Null(), 1, true},
      {Ref<Object>(), 9, true},
      {u"x", -8, false},
      {Ref<VariantArray>(Make<VariantArray>(1, 1)), 8204, true},
  };
  for (const auto& c : kCases)
    EXPECT_EQ(LibGeneral().Check(c.value, static_cast<std::int16_t>(c.type)), c.passes)
        << c.value.Code() << " as " << c.type;
}

}  // namespace
}  // namespace tovalin
