#include <gtest/gtest.h>

#include <array>

#include "tests/forms/fakes.h"
#include "tovalin/lib_general.h"

namespace tovalin {
namespace {

class LateBound : public testing::Test {
 protected:
  template <class... A>
  int Call(TextView name, MemberKind kind, A... arguments) {
    std::array<Variant, sizeof...(A)> list{std::move(arguments)...};
    const auto error = general->Invoke(name, kind, list, result);
    return error ? error->number : 0;
  }
  template <class... A>
  int Method(TextView name, A... arguments) {
    return Call(name, MemberKind::Method, Variant(std::move(arguments))...);
  }

  Ref<Object> general = Make<LibGeneral>();
  Variant result;
};

TEST_F(LateBound, KeyFiltersChangeTheCallersKey) {
  Variant key = std::int16_t{44};
  EXPECT_EQ(Method(u"checknumber", Variant::ByReference(key)), 0);
  EXPECT_EQ(key.AsInteger(), 0);
  key = std::int16_t{109};
  EXPECT_EQ(Method(u"CheckNumber", Variant::ByReference(key)), 0);
  EXPECT_EQ(key.AsInteger(), 109);
  key = 70000;
  EXPECT_EQ(Method(u"CheckTime", Variant::ByReference(key)), 6);
  EXPECT_EQ(key.AsLong(), 70000);
}

TEST_F(LateBound, AdicionarParametroChangesTheCallersText) {
  Variant formula = u"";
  const auto add = [&](const char16_t* name, const Variant& value, std::int32_t type) {
    return Method(u"AdicionarParametro", Variant::ByReference(formula), name, u"and", u" = ", value,
                  type);
  };
  EXPECT_EQ(add(u"{t.a}", Variant(5), 2), 0);
  EXPECT_EQ(add(u"{t.b}", Variant(u"X"), 8), 0);
  EXPECT_EQ(ToUtf8(formula.AsText()), "{t.a} = 5 and {t.b} = \"X\"");
  EXPECT_EQ(add(u"{t.c}", Variant(u"abc"), 2), 13);
  EXPECT_EQ(ToUtf8(formula.AsText()), "{t.a} = 5 and {t.b} = \"X\" and ");
}

TEST_F(LateBound, PropertiesAreReadAndWritten) {
  EXPECT_EQ(Call(u"Separador", MemberKind::Let, Variant(u"::")), 0);
  EXPECT_EQ(Call(u"Separador", MemberKind::Get), 0);
  EXPECT_EQ(result.AsText(), u":");
  EXPECT_EQ(Method(u"GetTag", u"a:b:", std::int32_t{2}), 0);
  EXPECT_EQ(result.AsText(), u"b");
  EXPECT_EQ(Method(u"GetTag", u"a:b:", std::int32_t{256}), 6);
  EXPECT_EQ(Call(u"gbolCUI", MemberKind::Let, Variant(u"1")), 0);
  EXPECT_EQ(Call(u"GBOLCUI", MemberKind::Get), 0);
  EXPECT_TRUE(result.AsBoolean());
  EXPECT_EQ(Call(u"Aplicacion", MemberKind::Let, Variant(u"Nómina")), 0);
  EXPECT_EQ(Call(u"Aplicacion", MemberKind::Get), 0);
  EXPECT_EQ(ToUtf8(result.AsText()), "Nómina");
}

TEST_F(LateBound, OptionalArgumentsMayBeLeftOut) {
  FakeField field;
  FakeStatusBar bar;
  field.text = u"abc";
  field.tag = u"»»Ayuda»0»»";
  const Ref<Object> box = field.As(ControlKind::TextBox);
  EXPECT_EQ(Method(u"GotFocus", box), 0);
  EXPECT_EQ(Method(u"GotFocus", box, Variant::Missing(), bar.Bar()), 0);
  EXPECT_EQ(Method(u"LostFocus", box, bar.Bar()), 0);
  EXPECT_TRUE(result.Is(Subtype::Empty));
  EXPECT_EQ(bar.shown, (std::vector<std::string>{"Ayuda", ""}));
  EXPECT_EQ(ToUtf8(field.tag), "»»Ayuda»1»»");
  EXPECT_EQ(Method(u"SelectText"), 0);
  EXPECT_EQ(Method(u"SelectText", box), 0);
  EXPECT_EQ(field.selection_length, 3);
  EXPECT_EQ(Method(u"MsgBar", bar.Bar(), u"Listo"), 0);
  EXPECT_EQ(bar.shown.back(), "Listo");
  // Nobody waits for a text unless it is asked for.
  std::vector<bool> pauses;
  HostServices host;
  host.status_bar = [&](const Ref<Object>&, TextView, bool pause) { pauses.push_back(pause); };
  const auto with_host = Make<LibGeneral>();
  with_host->UseHost(std::move(host));
  with_host->MsgBar(bar.Bar(), u"Listo");
  general = with_host;
  EXPECT_EQ(Method(u"MsgBar", bar.Bar(), u"Listo"), 0);
  EXPECT_EQ(Method(u"MsgBar", bar.Bar(), u"Listo", true), 0);
  EXPECT_EQ(pauses, (std::vector<bool>{false, false, true}));
}

TEST_F(LateBound, WrongArgumentsAreToldApart) {
  EXPECT_EQ(Method(u"EsNulo"), 449);
  EXPECT_EQ(Method(u"EsNulo", 1, 2), 450);
  EXPECT_EQ(Method(u"IsControl", u"texto"), 424);
  EXPECT_EQ(Method(u"LostFocus", u"texto"), 424);
  EXPECT_EQ(Method(u"Cifrar", u"texto"), 438);
  EXPECT_EQ(Method(u"AddText", u"a", 256), 5);
  EXPECT_EQ(Method(u"SaveControlProperties", u"s", u"k", 3), 424);
}

TEST_F(LateBound, ResultsKeepTheirSubtypes) {
  EXPECT_EQ(Method(u"EstaVacio", u" "), 0);
  EXPECT_EQ(result.Code(), 11);
  EXPECT_EQ(Method(u"Pot", std::int16_t{2}, std::int16_t{-1}), 0);
  EXPECT_EQ(result.Code(), 2);
  EXPECT_EQ(Method(u"nvl", Variant::Null(), Variant()), 0);
  EXPECT_EQ(result.Code(), 0);
}

}  // namespace
}  // namespace tovalin
