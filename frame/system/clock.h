#pragma once

#include "tovalin/variant.h"

namespace tovalin {

/// The local date and time of the system, to the second.
Date SystemNow();

}  // namespace tovalin
