#pragma once

#include <CLI/CLI.hpp>

namespace tovalin::tool {

/// Makes the help and the messages of a tool or of one of its commands Spanish. Comes
/// before its options are added.
void SpeakSpanish(CLI::App& app);

}  // namespace tovalin::tool
