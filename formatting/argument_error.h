#pragma once

#include "tovalin/error.h"

namespace tovalin {

/// A text as a message quotes it: a long one is cut.
inline Text Quoted(TextView text) {
  constexpr std::size_t kMost = 40;
  return u"«" + Text(text.substr(0, kMost)) + (text.size() > kMost ? u"…»" : u"»");
}

/// Throws error 5 with a text of its own.
[[noreturn]] inline void RaiseInvalidArgument(TextView source, TextView description) {
  throw Error{static_cast<std::int32_t>(Failure::InvalidArgument), Text(source), Text(description)};
}

}  // namespace tovalin
