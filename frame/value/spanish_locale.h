#pragma once

#include "tovalin/locale.h"

namespace tovalin {

/// The library's own locale, whichever one is in force.
const Locale& SpanishLocale();

}  // namespace tovalin
