#pragma once

#include <utility>

namespace tovalin {

/// Gives a place another value until the end of the scope, however that is left.
template <class T>
class Temporarily {
 public:
  Temporarily(T& place, T value) : place_(place), former_(std::exchange(place, value)) {}
  Temporarily(const Temporarily&) = delete;
  Temporarily& operator=(const Temporarily&) = delete;
  ~Temporarily() { place_ = former_; }

 private:
  T& place_;
  T former_;
};

}  // namespace tovalin
