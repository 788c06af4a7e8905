#pragma once

#include <cstdint>

#include "tovalin/text.h"

namespace tovalin {

/// The cents of an amount in words: see LibMonto::LeerMonto. Raises 5 for a text
/// that is no amount, and 6 for an amount beyond Currency.
std::int64_t ReadAmount(TextView text);

}  // namespace tovalin
