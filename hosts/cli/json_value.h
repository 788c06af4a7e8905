#pragma once

#include "frame/text/json.h"
#include "tovalin/variant.h"

namespace tovalin::tool {

/// A value as JSON: a Collection with keys as an object, another one as an array, numbers,
/// Booleans and Null as JSON has them, every other value as the text that the tool prints.
Json JsonOf(const Variant& value);

}  // namespace tovalin::tool
