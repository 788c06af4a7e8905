#pragma once

#include "tovalin/text.h"

namespace tovalin {

// Both start the program that a command line names, without a shell, with the
// caller's environment, current directory and open handles. Nothing happens when
// it cannot be started.

/// Returns when that process has ended, and does not wait for any other.
void RunAndWait(TextView command_line);

/// Returns at once. The process outlives this one and leaves nothing to collect.
void Launch(TextView command_line);

}  // namespace tovalin
