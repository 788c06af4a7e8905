#pragma once

#include "tovalin/text.h"

namespace tovalin {

/// The amount in words: see LibMonto::MontoEscrito. Allocates its result only.
Text MontoEscrito(double pdblValor);

}  // namespace tovalin
