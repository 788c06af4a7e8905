#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace tovalin::tool {

// What is told of the command line itself, from its own description.

/// Prints the help of a command, named by its words ("flat write"), or of the tool.
int RunHelp(const CLI::App& tool, const std::vector<std::string>& words);
/// Prints the page of the manual, for man.
int RunManual(const CLI::App& tool);
/// Prints what bash has to read in order to complete command lines.
int RunCompletion(const CLI::App& tool);

}  // namespace tovalin::tool
