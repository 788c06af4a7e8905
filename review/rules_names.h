#pragma once

#include "review/findings.h"

namespace tovalin::review {

/// Tells of the faults of the check, and beside unknown names what they were meant as: a
/// number, a name that is near, a function of another language.
void CheckNames(const Source& source, const Surroundings& surroundings, Findings& findings);

/// Tells of literals that lose their blanks.
void CheckLiterals(const Source& source, Findings& findings);

}  // namespace tovalin::review
