#pragma once

#include <algorithm>
#include <cstdint>

namespace tovalin {

/// How much of a stack of `size` bytes has to be left for code to run that may call the
/// library again: what stands between two checks, the host's part of it and the raising
/// of the error included.
constexpr std::uintptr_t StackReserve(std::uintptr_t size) {
  constexpr std::uintptr_t kMost = 64 * 1024;
  return std::min(kMost, size / 4);
}

}  // namespace tovalin
