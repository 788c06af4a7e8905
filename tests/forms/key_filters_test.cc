#include <gtest/gtest.h>

#include "tests/forms/fakes.h"
#include "tovalin/lib_general.h"

namespace tovalin {
namespace {

using Filter = void (LibGeneral::*)(std::int16_t&) const;

// The accepted codes, out of every code that there is.
std::vector<int> Accepted(Filter filter) {
  std::vector<int> codes;
  for (int code = -32768; code <= 32767; ++code) {
    auto key = static_cast<std::int16_t>(code);
    (LibGeneral().*filter)(key);
    if (key != 0) {
      EXPECT_EQ(key, code);
      codes.push_back(code);
    }
  }
  return codes;
}

TEST(KeyFilters, AcceptTheirKeysAlone) {
  EXPECT_EQ(Accepted(&LibGeneral::CheckNumber),
            (std::vector{8, 45, 46, 48, 49, 50, 51, 52, 53, 54, 55, 56, 57, 109, 110}));
  EXPECT_EQ(Accepted(&LibGeneral::CheckDate),
            (std::vector{8, 45, 47, 48, 49, 50, 51, 52, 53, 54, 55, 56, 57}));
  EXPECT_EQ(Accepted(&LibGeneral::CheckTime),
            (std::vector{8, 48, 49, 50, 51, 52, 53, 54, 55, 56, 57, 58}));
}

struct KeyCase {
  const char16_t* text;
  int key;
  const char* result;
};

TEST(AddText, AppliesAKey) {
  const KeyCase kCases[] = {
      {u"ab", 0, "ab"},  {u"ab", 8, "a"},   {u"a", 8, ""},     {u"", 8, ""},     {u"ab", 67, "abC"},
      {u"a", 241, "añ"}, {u"a", 128, "a€"}, {u"a", 255, "aÿ"}, {u"a", 46, "a."}, {u"", 109, "m"},
  };
  for (const KeyCase& c : kCases)
    EXPECT_EQ(ToUtf8(LibGeneral().AddText(c.text, c.key)), c.result) << c.key;
  for (const int key : {-1, 256, 65536 + 65, 2147483647})
    EXPECT_EQ(RaisedBy([&] { LibGeneral().AddText(u"a", key); }).number, 5) << key;
}

TEST(AddNumber, AppliesAKeyOfANumber) {
  const KeyCase kCases[] = {
      {u"12", 0, "12"},          {u"12", 8, "1"},       {u"", 8, ""},
      {u"12", 48, "120"},        {u"12", 57, "129"},    {u"12.5", 99, "12.53"},
      {u"1", 96, "10"},          {u"1", 105, "19"},     {u"12", 46, "12."},
      {u"12", 110, "12."},       {u"12.5", 46, "12.5"}, {u"1.", 110, "1."},
      {u"12", 47, "12"},         {u"12", 58, "12"},     {u"12", 95, "12"},
      {u"12", 106, "12"},        {u"12", 45, "12"},     {u"12", -5, "12"},
      {u"12", 65536 + 49, "12"},
  };
  for (const KeyCase& c : kCases)
    EXPECT_EQ(ToUtf8(LibGeneral().AddNumber(c.text, c.key)), c.result) << c.key;
}

}  // namespace
}  // namespace tovalin
