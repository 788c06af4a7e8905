#include <gtest/gtest.h>

#include "tests/evaluator/formula_host.h"

namespace tovalin {
namespace {

TEST(AppendsVble, ATableAppendedToItselfHoldsEveryNameAlready) {
  FormulaHost host;
  const Ref<Campos> variables = host.evaluator->Variables();
  const std::int32_t count = variables->Count();
  host.evaluator->AppendsVble(variables);
  EXPECT_EQ(variables->Count(), count);
}

}  // namespace
}  // namespace tovalin
