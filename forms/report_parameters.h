#pragma once

#include <cstdint>

#include "tovalin/text.h"
#include "tovalin/variant.h"

namespace tovalin {

/// A condition of a selection formula.
struct ReportCondition {
  TextView parameter;
  TextView joiner;  // stands between this condition and those before it
  TextView comparison;
  const Variant& value;
  std::int16_t type;  // a subtype code
};

/// Appends a condition; see LibGeneral::AdicionarParametro.
void AppendCondition(Text& formula, const ReportCondition& condition);

}  // namespace tovalin
