#pragma once

#include "tovalin/text.h"

namespace tovalin {

/// The text of a file, as LibFile::FileToText gives it. Raises 53, 76, 70 or 75
/// when the file cannot be opened or read, 62 when it is empty and 7 when its text
/// is too long.
Text ReadTextFile(TextView path);

}  // namespace tovalin
