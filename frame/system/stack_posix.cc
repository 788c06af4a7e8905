#include <pthread.h>

#include "frame/system/stack.h"
#include "tovalin/error.h"

namespace tovalin {
namespace {

// The stack of a thread. Without a destructor: one that runs when a thread ends costs
// every thread something, and not every toolchain gets it right.
struct ThreadStack {
  std::uintptr_t end = 0;
  std::uintptr_t reserve_end = 0;  // from here up there is enough of it
  std::uintptr_t top = 0;          // 0 until it was measured

  bool IsEnough(std::uintptr_t address) const { return address >= reserve_end && address < top; }
  // A stack that the host made itself was not measured: nothing is known of its end.
  bool IsReserve(std::uintptr_t address) const { return address >= end && address < reserve_end; }
};
thread_local constinit ThreadStack stack;

void Measure() {
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return;  // no memory: next time
  void* start = nullptr;
  std::size_t size = 0;
  std::size_t guard = 0;
  pthread_attr_getstack(&attributes, &start, &size);
  pthread_attr_getguardsize(&attributes, &guard);
  pthread_attr_destroy(&attributes);
  const auto end = reinterpret_cast<std::uintptr_t>(start);
  stack = {end, end + guard + StackReserve(size), end + size};
}

}  // namespace

void CheckStack() {
  const auto address = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  if (stack.IsEnough(address)) return;
  if (stack.top == 0) Measure();
  if (stack.IsReserve(address)) Raise(Failure::OutOfStack);
}

}  // namespace tovalin
