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

}  // namespace
}  // namespace tovalin
