#pragma once

#include "tovalin/api.h"

/// The version of these headers: major * 10000 + minor * 100 + patch. A macro, so
/// that the preprocessor can compare it.
#define TOVALIN_VERSION 10000

namespace tovalin {

/// The same as text.
inline constexpr char kVersion[] = "1.0.0";

}  // namespace tovalin
