#include <windows.h>

#include "frame/system/stack.h"
#include "tovalin/error.h"

namespace tovalin {

void CheckStack() {
  ULONG_PTR end = 0;
  ULONG_PTR top = 0;
  GetCurrentThreadStackLimits(&end, &top);
  const auto address = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  if (address >= end && address - end < StackReserve(top - end)) Raise(Failure::OutOfStack);
}

}  // namespace tovalin
