#pragma once

#include <filesystem>

#include "tovalin/error.h"

namespace tovalin {

/// The failure that `cause`, an errno of making or writing `file`, means: 61 for a full
/// disk, 70 without the right, otherwise 75, as for a directory.
Failure WriteFailure(int cause, const std::filesystem::path& file);

}  // namespace tovalin
