#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tests/evaluator/formula_host.h"

// Any bytes as a formula: check, postfix, review and evaluation end in a message, a
// raised error or a value.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static tovalin::FormulaHost* const host = std::make_unique<tovalin::FormulaHost>().release();
  const tovalin::Text formula = tovalin::FromUtf8({reinterpret_cast<const char*>(data), size});
  tovalin::Text expression = formula;
  const auto tokens = host->evaluator->CheckInfijo(expression);
  tovalin::Ref<tovalin::Collection> items;
  host->evaluator->Posfijo(tokens, items);
  host->evaluator->Revisar(formula);
  host->Evaluate(formula);
  return 0;
}
