#pragma once

#include "tovalin/text.h"

namespace tovalin {

/// `vstrWord` with its words in title case: see LibTexto::TipoFrase.
Text TipoFrase(TextView vstrWord);

}  // namespace tovalin
