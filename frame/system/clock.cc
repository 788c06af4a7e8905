#include "tovalin/clock.h"

#include "frame/system/clock.h"

namespace tovalin {

// The former function is destroyed last: what it holds may call this clock again.
void HostClock::Use(Function function) {
  std::shared_ptr<const Function> kept;
  if (function) kept = std::make_shared<const Function>(std::move(function));
  function_.swap(kept);
}

Date HostClock::Now() const {
  const std::shared_ptr<const Function> running = function_;
  return running ? (*running)() : SystemNow();
}

}  // namespace tovalin
