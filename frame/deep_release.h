#pragma once

#include <vector>

#include "tovalin/variant.h"

namespace tovalin {

class Campos;

/// Lets go of values without recursion: what a Collection, a Campos, a Campo or an
/// array holds alone is taken out of it before it goes, so that a chain of a
/// million of them, one within the other, needs no stack.
class DeepRelease {
 public:
  void Take(Variant& value);
  void TakeAll(std::vector<Variant>& values);
  void TakeRecords(Campos& table);
  ~DeepRelease();

 private:
  static bool MayHold(const Variant& value) {
    return value.Is(Subtype::Object) || value.Is(Subtype::Array);
  }
  void Empty(const Variant& holder);

  std::vector<Variant> pending_;
};

}  // namespace tovalin
