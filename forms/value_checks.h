#pragma once

#include <cstdint>

#include "tovalin/variant.h"

namespace tovalin {

// The value tests and helpers; see LibGeneral for what each answers.

Variant WholePower(const Variant& base, const Variant& power);
bool IsBlank(TextView text);
bool IsNoValue(const Variant& value);
bool PassesAs(const Variant& value, std::int16_t type);

}  // namespace tovalin
