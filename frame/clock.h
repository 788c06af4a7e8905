#pragma once

#include <functional>

#include "tovalin/variant.h"

namespace tovalin {

/// Where the current date and time come from. A test or a host replaces it.
using Clock = std::function<Date()>;

/// The local date and time of the system, to the second.
Date SystemNow();

}  // namespace tovalin
