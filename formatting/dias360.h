#pragma once

#include <cstdint>

#include "tovalin/variant.h"

namespace tovalin {

/// Days from one date to the other on a 360-day year: see LibFecha::Dias360.
/// Raises 5 for a date outside the years 100 to 9999.
std::int32_t Dias360(Date vInicial, Date vFin);

}  // namespace tovalin
