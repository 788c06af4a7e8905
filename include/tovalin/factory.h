#pragma once

#include <span>

#include "tovalin/api.h"
#include "tovalin/describe.h"
#include "tovalin/object.h"

namespace tovalin {

/// Makes an object of a public class by its name, "Evaluador" or
/// "Tovalin.Evaluador", without regard to case. Raises 429 for any other name.
TOVALIN_API Ref<Object> CreateObject(TextView class_name);

/// The descriptions of every class that a host meets. CreateObject makes objects of
/// those with `create`; others come from members, as a Formula does.
TOVALIN_API std::span<const ClassInfo* const> Classes();

/// The description of a class, by its name as CreateObject takes it, or null.
TOVALIN_API const ClassInfo* FindClass(TextView class_name);

/// An enumeration by its name, without regard to case, or null.
TOVALIN_API const EnumInfo* FindEnumeration(TextView name);

}  // namespace tovalin
