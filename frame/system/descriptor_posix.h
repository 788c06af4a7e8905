#pragma once

#include <unistd.h>

#include <utility>

namespace tovalin {

/// An open file, closed at the end of the scope.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }

  int number() const { return number_; }
  bool IsOpen() const { return number_ >= 0; }
  /// Leaves the file open, to be closed by the caller.
  int Release() { return std::exchange(number_, -1); }

 private:
  int number_;
};

}  // namespace tovalin
