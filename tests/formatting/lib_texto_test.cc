#include "tovalin/lib_texto.h"

#include <gtest/gtest.h>

#include <array>

#include "tovalin/variant.h"

namespace tovalin {
namespace {

TEST(LibTexto, WordsAndPhrases) {
  struct Case {
    const char16_t* text;
    std::uint8_t part;
    const char* word;
    const char* phrase;
  };
  const Case kCases[] = {
      {u"uno dos tres", 0, "", ""},
      {u"uno dos tres", 1, "uno", "uno dos tres"},
      {u"uno dos tres", 2, "dos", "dos tres"},
      {u"uno dos tres", 3, "tres", "tres"},
      {u"uno dos tres", 4, "", ""},
      {u"uno dos tres", 255, "", ""},
      {u"  uno dos  ", 1, "uno", "uno dos"},
      {u"  uno dos  ", 2, "dos", "dos"},
      {u"  uno dos  ", 3, "", ""},
      // Two blanks in a row have an empty word between them.
      {u"a  b", 2, "", " b"},
      {u"a  b", 3, "b", "b"},
      {u"", 1, "", ""},
      {u"   ", 1, "", ""},
      {u"uno\tdos", 1, "uno\tdos", "uno\tdos"},
  };
  const LibTexto texto;
  for (const Case& c : kCases) {
    EXPECT_EQ(ToUtf8(texto.ExtraerPalabra(c.text, c.part)), c.word)
        << ToUtf8(c.text) << ' ' << int{c.part};
    EXPECT_EQ(ToUtf8(texto.ExtraerFrase(c.text, c.part)), c.phrase)
        << ToUtf8(c.text) << ' ' << int{c.part};
  }
}

TEST(LibTexto, TipoFrase) {
  struct Case {
    const char16_t* text;
    const char* phrase;
  };
  const Case kCases[] = {
      {u"", ""},
      {u"la", "la"},
      {u"LA", "LA"},
      {u"ana", "Ana"},
      {u"ANA", "Ana"},
      {u"de la ROSA", "De la Rosa"},
      {u"EL NIÑO", "El Niño"},
      {u"MARÍA DE LOS ÁNGELES", "María DE LOS Ángeles"},
      {u"maría del mar", "María del mar"},
      {u"ñandú élite", "Ñandú Élite"},
      {u" el  perro ", " El  Perro "},
      {u"x 1000 pesos", "X 1000 Pesos"},
      {u"   ", "   "},
  };
  const LibTexto texto;
  for (const Case& c : kCases) EXPECT_EQ(ToUtf8(texto.TipoFrase(c.text)), c.phrase);
}

TEST(LibTexto, AnswersLateBound) {
  const auto texto = Make<LibTexto>();
  std::array<Variant, 2> arguments = {Variant(u"uno dos tres"), Variant(u"2")};
  Variant result;
  ASSERT_FALSE(texto->Invoke(u"ExtraerFrase", MemberKind::Method, arguments, result));
  EXPECT_EQ(ToUtf8(result.AsText()), "dos tres");
  arguments = {Variant(u"uno dos tres"), Variant(std::int16_t{256})};
  const auto error = texto->Invoke(u"ExtraerPalabra", MemberKind::Method, arguments, result);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number, 6);
}

}  // namespace
}  // namespace tovalin
