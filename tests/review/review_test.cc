// What the table of cases cannot say: handlers, cycles, local variables, line ends, the
// locale, and input that nobody would write.

#include <gtest/gtest.h>

#include "tests/review/review_host.h"
#include "tovalin/dispatch.h"
#include "tovalin/locale.h"

namespace tovalin {
namespace {

TEST(ReviewTest, AFunctionOfTheHostIsToldWhileNobodyAnswers) {
  FormulaHost host;
  host.evaluator->AddFunction(u"DOBLE(", u"DOBLE", u"", u"");
  const auto told = [&host] { return host.evaluator->Revisar(u"1 + DOBLE( A )")->Count(); };
  const Ref<Collection> records = host.evaluator->Revisar(u"1 + DOBLE( A )");
  ASSERT_EQ(records->Count(), 1);
  const Ref<Collection> record = records->Item(1).AsObject().As<Collection>();
  EXPECT_EQ(ToUtf8(ToText(record->Item(u"Codigo"))), "sin-respuesta");
  EXPECT_EQ(ToLong(record->Item(u"Inicio")), 5);
  EXPECT_EQ(ToLong(record->Item(u"Largo")), 6);
  const int handler = host.evaluator->Attach(u"Evaluate", [](std::span<Variant>) {});
  EXPECT_EQ(told(), 0);
  host.evaluator->Detach(u"Evaluate", handler);
  EXPECT_EQ(told(), 1);
}

TEST(ReviewTest, ACycleIsToldWithItsPath) {
  ReviewHost host;
  const auto add = [&host](const char16_t* name, const char16_t* formula) {
    host.evaluator->AddVble(name, Variant(), u"", kNumeric, formula);
  };
  add(u"P", u"Q + 1");
  add(u"Q", u"A + R");
  add(u"R", u"P * 2");
  add(u"Desde", u"R");
  add(u"Saldo", u"Saldo + A");
  add(u"Recto", u"A + B");
  const struct {
    const char16_t* formula;
    std::string place;
    std::string path;
  } cases[] = {
      {u"1 + P", "advertencia ciclo 5 1", "P → Q → R → P"},
      {u"Desde + Desde", "advertencia ciclo 1 5", "Desde → R → P → Q → R"},
      {u"Saldo", "advertencia ciclo 1 5", "Saldo → Saldo"},
  };
  for (const auto& row : cases) {
    const std::vector<FoundPlace> found = host.Review(row.formula);
    ASSERT_EQ(found.size(), 1u) << ToUtf8(row.formula);
    EXPECT_EQ(found[0].Place(), row.place);
    EXPECT_NE(found[0].message.find(row.path), std::string::npos) << found[0].message;
  }
  EXPECT_EQ(host.Told(u"Recto * 2"), "");
}

TEST(ReviewTest, ALongChainOfFormulasTakesNoStack) {
  ReviewHost host;
  constexpr int kLength = 20000;
  for (int i = 0; i < kLength; ++i)
    host.evaluator->AddVble(FromUtf8("V" + std::to_string(i)), Variant(), u"", kNumeric,
                            FromUtf8("V" + std::to_string(i + 1) + " + 1"));
  host.evaluator->AddVble(FromUtf8("V" + std::to_string(kLength)), Variant(), u"", kNumeric, u"V5");
  const std::vector<FoundPlace> found = host.Review(u"V0");
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].code, "ciclo");
  EXPECT_LT(found[0].message.size(), 500u);
}

TEST(ReviewTest, LocalVariablesComeFirst) {
  ReviewHost host;
  auto locals = Make<Campos>();
  auto text = Make<Campo>(u"A");
  text->LetValue(u"abc");
  locals->Add(text);
  EXPECT_EQ(host.Review(u"A * 2").size(), 0u);
  const std::vector<FoundPlace> found = host.Review(u"A * 2", &locals);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].Place(), "advertencia tipos 1 1");
}

TEST(ReviewTest, PlacesAndSuggestionsAreThoseOfTheTextAsItWasGiven) {
  ReviewHost host;
  const Text formula = u"A >\r\n 1 AND\rB < 9\r\n";
  const std::vector<FoundPlace> found = host.Review(formula);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].Place(), "error 4 7 7");
}

TEST(ReviewTest, SeveralLinesKeepTheirLineEnds) {
  ReviewHost host;
  const std::vector<FoundPlace> found = host.Review(u"A > 1\r\n AND B < 9\r\n + 1");
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].Place(), "advertencia precedencia 9 3");
  EXPECT_EQ(found[0].suggestion, "(A > 1)\r\n AND (B < 9\r\n + 1)");
}

TEST(ReviewTest, ARoundedNumberIsReadBackUnderTheLocale) {
  const Locale before = CurrentLocale();
  Locale comma = before;
  comma.decimal_separator = u',';
  comma.thousands_separator = u'.';
  SetLocale(comma);
  ReviewHost host;
  const std::vector<FoundPlace> found = host.Review(u"ROUND( A / B , 2 )");
  const std::string suggestion = found.empty() ? "" : found.back().suggestion;
  const Variant value = host.Value(FromUtf8(suggestion));
  SetLocale(before);
  EXPECT_EQ(suggestion, "VAL( ReemplazarCadena( FORMAT( A / B , '0.00' ) , ',' , '.' ) )");
  EXPECT_EQ(ToDouble(value), 0.4);
}

TEST(ReviewTest, NothingIsEvaluatedAndNothingChanges) {
  ReviewHost host;
  host.Evaluate(u"A + Quien");
  const Text before = host.evaluator->LastError();
  int calls = 0;
  host.evaluator->Evaluate.Attach([&calls](const Text&, Variant&, Ref<Collection>&) { ++calls; });
  host.evaluator->AddVble(u"F", Variant(), u"", kNumeric, u"ISNULL( A )");
  EXPECT_EQ(host.Told(u"F + ISNULL( B ) + 5*(A)"), "");
  EXPECT_EQ(calls, 0);
  EXPECT_EQ(host.evaluator->LastError(), before);
}

TEST(ReviewTest, LateBoundHostsCallIt) {
  ReviewHost host;
  Variant arguments[] = {Variant(u"5*(-3)")};
  Variant result;
  EXPECT_FALSE(host.evaluator->Invoke(u"Revisar", MemberKind::Method, arguments, result));
  const Ref<Collection> records = result.AsObject().As<Collection>();
  ASSERT_EQ(records->Count(), 1);
  const Ref<Collection> record = records->Item(1).AsObject().As<Collection>();
  EXPECT_EQ(ToUtf8(ToText(record->Item(u"Sugerencia"))), "5*(0-3)");
}

Text Repeated(TextView part, std::size_t count) {
  Text text;
  text.reserve(part.size() * count);
  for (std::size_t i = 0; i < count; ++i) text.append(part);
  return text;
}

// Each would run for hours if a step grew with what was read before.
TEST(ReviewTest, HostileFormulasEnd) {
  constexpr std::size_t kMany = 20000;
  constexpr std::size_t kDeep = 100000;
  const Text formulas[] = {
      Repeated(u"(", kDeep) + u"A" + Repeated(u")", kDeep),
      Repeated(u"(", kDeep),
      Repeated(u")", kDeep),
      Repeated(u"ROUND(", kMany) + u"A" + Repeated(u",2)", kMany),
      Repeated(u"MAX(", kMany) + u"A" + Repeated(u",2,3)", kMany),
      Repeated(u"A > 1 AND ", kMany) + u"B",
      Repeated(u"A+(-B)*", kMany) + u"B",
      Repeated(u"1,", kMany * 3) + u"1",
      u"MAX(" + Repeated(u"1,", kMany * 3) + u"1)",
      Repeated(u"Salaro + ", kMany) + u"A",
      Repeated(u"' x' & ", kMany) + u"A",
      Repeated(u"'a' & ", kMany) + u"'a'",
      Repeated(u"A , 1 BETWEEN ", kMany) + u"2",
      Repeated(u"3*-1", kMany),
      Repeated(u"1E-", kMany) + u"1",
      Repeated(u"Redondear(A,2)+", kMany / 10) + u"A",
      Repeated(u"(A) ", kMany),
      Repeated(u"1.2.", kMany),
      Text(1 << 20, u'x'),
      Text(1 << 20, u'\xD800'),
      Text(1 << 20, u'"'),
      Text(1 << 20, u'\r'),
      Text(u"\xDC00 + \xD800(\xDC00)"),
      Text(u"' \xD800 ' & A"),
      Text(3, u'\0'),
  };
  ReviewHost host;
  for (const Text& formula : formulas) {
    const std::vector<FoundPlace> found = host.Review(formula);
    EXPECT_LE(found.size(), 1000u);
    for (const FoundPlace& place : found) {
      ASSERT_GE(place.start, 1);
      ASSERT_LE(static_cast<std::size_t>(place.start - 1 + place.length), formula.size());
    }
  }
}

}  // namespace
}  // namespace tovalin
