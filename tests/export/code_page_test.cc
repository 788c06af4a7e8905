#include "frame/text/code_page.h"

#include <gtest/gtest.h>

namespace tovalin {
namespace {

TEST(CodePage, EveryByteComesBack) {
  for (int byte = 0; byte < 256; ++byte) {
    const char16_t c = FromCodePage(static_cast<unsigned char>(byte));
    EXPECT_TRUE(InCodePage(c)) << byte;
    EXPECT_EQ(static_cast<unsigned char>(ToCodePage(c)), byte);
  }
}

TEST(CodePage, EveryCharacterIsInThePageOrAQuestionMark) {
  int inside = 0;
  for (int code = 0; code <= 0xFFFF; ++code) {
    const auto c = static_cast<char16_t>(code);
    if (InCodePage(c))
      ++inside;
    else
      EXPECT_EQ(ToCodePage(c), '?') << code;
  }
  EXPECT_EQ(inside, 256);
}

TEST(CodePage, KnownBytes) {
  std::string bytes;
  AppendToCodePage(bytes, u"aÑñ€‘’“”–—…Žžœ™ÿ");
  AppendToCodePage(bytes, u" Ω\U0001F600\u0080");
  EXPECT_EQ(bytes,
            "a\xD1\xF1\x80\x91\x92\x93\x94\x96\x97\x85\x8E\x9E\x9C\x99\xFF ?"
            "??"
            "?");
}

}  // namespace
}  // namespace tovalin
