#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "evaluator/language.h"
#include "tovalin/error.h"

namespace tovalin {
namespace {

using Arguments = std::vector<Variant>;

constexpr Date kNow{45327.75};  // 5 February 2024, 18:00

const Variant kNull = Variant::Null();

TEST(BuiltinsTest, AnswersNamesExactly) {
  EXPECT_EQ(FindFunction(u"MEDIO")->call, FindFunction(u"MID")->call);
  // ISNULL( is the host's.
  for (const TextView name : {u"ISNULL", u"medio", u"MEDIO(", u"", u"NOSUCH"})
    EXPECT_EQ(FindFunction(name), nullptr) << ToUtf8(name);
}

TEST(BuiltinsTest, EveryCodeComesBack) {
  static const HostClock clock([] { return kNow; });
  for (int code = 0; code < 256; ++code) {
    const Arguments character = {FindFunction(u"CHR")->call(Arguments{code}, {clock})};
    EXPECT_EQ(FindFunction(u"ASC")->call(character, {clock}).AsInteger(), code);
  }
}

// Whatever a host hands in, each function answers or raises.
TEST(BuiltinsTest, EveryFunctionSurvivesEveryValue) {
  const Arguments values = {Variant(),
                            kNull,
                            std::int16_t{-32768},
                            std::numeric_limits<std::int32_t>::min(),
                            -0.0f,
                            std::numeric_limits<double>::quiet_NaN(),
                            -std::numeric_limits<double>::infinity(),
                            1e308,
                            Currency{std::numeric_limits<std::int64_t>::min()},
                            Date{1e300},
                            Date{std::numeric_limits<double>::quiet_NaN()},
                            u"",
                            u"\xD800",
                            u"31/12/9999",
                            true,
                            std::uint8_t{255},
                            Variant::Missing(),
                            Variant(Ref<Object>())};
  for (const BuiltinFunction* function : BuiltinFunctions()) {
    if (!function->call) continue;
    const std::size_t count = function->Parameters().size();
    std::size_t combinations = 1;
    for (std::size_t i = 0; i < count; ++i) combinations *= values.size();
    for (std::size_t n = 0; n < combinations; ++n) {
      Arguments arguments;
      for (std::size_t rest = n; arguments.size() < count; rest /= values.size())
        arguments.push_back(values[rest % values.size()]);
      static const HostClock clock([] { return kNow; });
      try {
        function->Call(arguments, {clock});
      } catch (const Error& error) {
        EXPECT_TRUE(error.number == 5 || error.number == 6 || error.number == 7 ||
                    error.number == 11 || error.number == 13)
            << ToUtf8(function->word) << ": " << error.number;
      }
    }
  }
}

}  // namespace
}  // namespace tovalin
