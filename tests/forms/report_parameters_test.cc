#include <gtest/gtest.h>

#include "tests/forms/fakes.h"
#include "tovalin/lib_general.h"

namespace tovalin {
namespace {

TEST(AdicionarParametro, TakesPartsOfTheFormulaItself) {
  Text formula = u"{t.a}=1";
  const TextView whole = formula;
  LibGeneral().AdicionarParametro(formula, whole.substr(0, 5), whole.substr(5), whole, u"", 8);
  EXPECT_EQ(ToUtf8(formula), "{t.a}=1 =1 {t.a}{t.a}=1\"\"");
}

}  // namespace
}  // namespace tovalin
