#include <gtest/gtest.h>

#include "tests/forms/fakes.h"
#include "tovalin/lib_general.h"

namespace tovalin {
namespace {

std::string ValueText(const Variant& value, std::int16_t type) {
  Text formula;
  LibGeneral().AdicionarParametro(formula, u"p", u"and", u"=", value, type);
  EXPECT_EQ(formula.substr(0, 2), u"p=");
  return ToUtf8(formula.substr(2));
}

TEST(AdicionarParametro, JoinsConditionsWithSingleBlanks) {
  const LibGeneral general;
  Text formula;
  general.AdicionarParametro(formula, u"{t.a}", u"and", u" = ", Variant(5), 2);
  EXPECT_EQ(ToUtf8(formula), "{t.a} = 5");
  general.AdicionarParametro(formula, u"{t.b}", u"and", u" = ", u"X", 8);
  EXPECT_EQ(ToUtf8(formula), "{t.a} = 5 and {t.b} = \"X\"");
}

TEST(AdicionarParametro, WritesEachTypeAsReportsReadIt) {
  struct {
    Variant value;
    int type;
    const char* text;
  } const kCases[] = {
      {true, 11, "1"},
      {std::int32_t{0}, 11, "0"},
      {u"-3", 11, "1"},
      {u"200", 17, "200"},
      {2.5, 2, "2"},
      {3.5, 3, "4"},
      {u"70000", 3, "70000"},
      {0.1f, 4, "0.1"},
      {0.1 + 0.2, 5, "0.3"},
      {1234.56789, 6, "1234.5679"},
      {Date{38053.75}, 7, "Date (2004,3,7)"},
      {u"07/03/2004", 7, "Date (2004,3,7)"},
      {Date{-1.5}, 7, "Date (1899,12,29)"},
      {u"di \"hola\"", 8, "\"di \"hola\"\""},
      {std::int32_t{12}, 8, "\"12\""},
      {true, 99, "Verdadero"},
      {Variant(), 0, ""},
      {1.5, -1, "1.5"},
  };
  for (const auto& c : kCases)
    EXPECT_EQ(ValueText(c.value, static_cast<std::int16_t>(c.type)), c.text) << c.type;
}

TEST(AdicionarParametro, KeepsTheJoinerWhenTheValueDoesNotConvert) {
  struct {
    Variant value;
    int type;
    int error;
  } const kCases[] = {
      {u"abc", 2, 13},  {std::int32_t{70000}, 2, 6}, {std::int32_t{256}, 17, 6},
      {u"ayer", 7, 13}, {Variant::Null(), 8, 13},    {Ref<Object>(), 99, 13},
  };
  const LibGeneral general;
  for (const auto& c : kCases) {
    const auto type = static_cast<std::int16_t>(c.type);
    Text formula = u"x";
    EXPECT_EQ(RaisedBy([&] {
                general.AdicionarParametro(formula, u"p", u"or", u"=", c.value, type);
              }).number,
              c.error);
    EXPECT_EQ(ToUtf8(formula), "x or ") << c.type;
    Text empty;
    RaisedBy([&] { general.AdicionarParametro(empty, u"p", u"or", u"=", c.value, type); });
    EXPECT_EQ(empty, u"") << c.type;
  }
}

TEST(AdicionarParametro, TakesPartsOfTheFormulaItself) {
  Text formula = u"{t.a}=1";
  const TextView whole = formula;
  LibGeneral().AdicionarParametro(formula, whole.substr(0, 5), whole.substr(5), whole, u"", 8);
  EXPECT_EQ(ToUtf8(formula), "{t.a}=1 =1 {t.a}{t.a}=1\"\"");
}

}  // namespace
}  // namespace tovalin
