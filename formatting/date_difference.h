#pragma once

#include "tovalin/variant.h"

namespace tovalin {

/// The difference between two dates, such as "1 Año 2 Meses y 3 Días": see
/// LibFecha::DateDiffStr. Raises 5 for a date outside the years 100 to 9999.
Text DateDifferenceText(Date one, Date other);

}  // namespace tovalin
