#pragma once

#include <cstddef>
#include <cstdint>

#include "evaluator/functions.h"
#include "tovalin/convert.h"
#include "tovalin/error.h"

// How the built-in functions read their arguments. Every conversion is one of
// tovalin/convert.h, so that all functions answer the same mistake alike.

namespace tovalin::functions {

using Arguments = std::span<const Variant>;

/// The text of any value, without a copy when the value is a text.
class TextArgument {
 public:
  explicit TextArgument(const Variant& value) {
    if (value.Is(Subtype::String)) {
      view_ = value.AsText();
    } else {
      own_ = ToText(value);
      view_ = own_;
    }
  }
  TextArgument(const TextArgument&) = delete;
  TextArgument& operator=(const TextArgument&) = delete;
  operator TextView() const { return view_; }
  TextView View() const { return view_; }

 private:
  Text own_;
  TextView view_;
};

/// A count of characters; raises 5 when it is negative.
inline std::size_t CountArgument(const Variant& value) {
  const std::int32_t count = ToLong(value);
  if (count < 0) Raise(Failure::InvalidArgument);
  return static_cast<std::size_t>(count);
}

}  // namespace tovalin::functions
