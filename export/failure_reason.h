#pragma once

#include <string_view>

#include "tovalin/error.h"

namespace tovalin {

/// Throws a platform failure whose text says what is wrong in the case at hand.
[[noreturn]] inline void RaiseBecause(Failure failure, std::string_view reason) {
  Error error = PlatformError(failure);
  error.description = FromUtf8(reason);
  throw error;
}

}  // namespace tovalin
