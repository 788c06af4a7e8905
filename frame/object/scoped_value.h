#pragma once

#include <utility>

namespace tovalin {

/// Gives a place another value until the end of the scope, however that is left.
template <class T>
class ScopedValue {
 public:
  ScopedValue(T& place, T value) : place_(place), former_(std::exchange(place, value)) {}
  ScopedValue(const ScopedValue&) = delete;
  ScopedValue& operator=(const ScopedValue&) = delete;
  ~ScopedValue() { place_ = former_; }

 private:
  T& place_;
  T former_;
};

}  // namespace tovalin
