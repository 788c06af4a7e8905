#pragma once

#include "tovalin/text.h"

namespace tovalin {

/// `text` without the characters of `delimiters`; see LibGeneral.
Text StripDelimiter(TextView text, TextView delimiters);

}  // namespace tovalin
