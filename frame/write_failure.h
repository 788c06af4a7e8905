#pragma once

#include "tovalin/error.h"

namespace tovalin {

/// The failure that `cause`, an errno of making or writing a file, means: 61 for a full
/// disk, 70 without the right, otherwise 75.
Failure WriteFailure(int cause);

}  // namespace tovalin
