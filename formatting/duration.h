#pragma once

#include <cstdint>

#include "tovalin/text.h"

namespace tovalin {

// A number of seconds as text: see LibFecha::Duration.

/// Example: "1d 02h:03m:04s".
Text ShortDuration(std::int32_t seconds);

/// Example: "1 day, 2 hrs 3 mins 4 secs".
Text LongDuration(std::int32_t seconds);

}  // namespace tovalin
