#pragma once

#include "tovalin/error.h"

namespace tovalin {

/// The number of the error that a call raises, or 0.
template <class Call>
std::int32_t NumberRaisedBy(Call call) {
  try {
    call();
  } catch (const Error& error) {
    return error.number;
  }
  return 0;
}

}  // namespace tovalin
