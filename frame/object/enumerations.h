#pragma once

#include "tovalin/describe.h"

// Enumerations that members of several classes take. Each stands in the description of
// one class, which has it for hosts.

namespace tovalin {

extern const EnumInfo kDataTypeInfo;  // DataType: of Campo
extern const EnumInfo kStatusInfo;    // the status codes of a Campo
extern const EnumInfo kSubtypeInfo;   // the codes of Subtype: of LibGeneral

}  // namespace tovalin
