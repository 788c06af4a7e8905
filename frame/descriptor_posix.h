#pragma once

#include <unistd.h>

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

 private:
  int number_;
};

}  // namespace tovalin
