#pragma once

#include "review/source.h"

namespace tovalin::review {

/// The variable or constant whose name is nearest to a misspelt one, or empty when none is
/// near: accents, a few letters, or two that changed places.
Text NearestName(const Surroundings& surroundings, TextView name);

/// The same of a function, with its bracket.
Text NearestFunction(const Surroundings& surroundings, TextView name);

}  // namespace tovalin::review
