#pragma once

#include <vector>

#include "tovalin/api.h"
#include "tovalin/dispatch.h"
#include "tovalin/object.h"

namespace tovalin {

/// Makes an object of a public class by its name, "Evaluador" or
/// "Tovalin.Evaluador", without regard to case. Raises 429 for any other name.
TOVALIN_API Ref<Object> CreateObject(TextView class_name);

/// The descriptions of every class that CreateObject makes.
TOVALIN_API std::vector<const ClassInfo*> Classes();

}  // namespace tovalin
