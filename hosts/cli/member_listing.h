#pragma once

#include <string>

#include "tovalin/dispatch.h"

namespace tovalin::tool {

/// The members of a class as a line each, as their parameters are written in the
/// language of automation hosts, with what they do below. A property stands there
/// once. Events come last.
std::string ListMembers(const ClassInfo& info);

}  // namespace tovalin::tool
