#include <gtest/gtest.h>

#include <random>

#include "tests/forms/fakes.h"
#include "tovalin/lib_general.h"

namespace tovalin {
namespace {

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

}  // namespace
}  // namespace tovalin
