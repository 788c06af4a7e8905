#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "tovalin/api.h"
#include "tovalin/variant.h"

namespace tovalin {

/// Where an object takes the date and time from: the system's local time, until its
/// host puts a function in its place.
class TOVALIN_API HostClock {
 public:
  using Function = std::function<Date()>;

  HostClock() = default;
  explicit HostClock(Function function) { Use(std::move(function)); }

  /// An empty function brings the system's time back.
  void Use(Function function);
  /// Whether code of the host tells the time.
  bool IsHosts() const { return function_ != nullptr; }
  /// The present moment. Raises what the host's function raises, which may put
  /// another one in its place or let go of the clock's owner while it runs.
  Date Now() const;

 private:
  std::shared_ptr<const Function> function_;
};

}  // namespace tovalin
