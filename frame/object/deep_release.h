#pragma once

#include <vector>

#include "tovalin/variant.h"

namespace tovalin {

class Campo;
class Campos;

/// Lets go of values without recursion: what a Collection, a Campos, a Campo or an
/// array holds alone is taken out of it before it goes, so that a chain of a
/// million of them, one within the other, needs no stack. Where other objects stand
/// in between, releases nest in one another; below a certain depth they leave what
/// they hold to the release around them.
class DeepRelease {
 public:
  DeepRelease();
  DeepRelease(const DeepRelease&) = delete;
  DeepRelease& operator=(const DeepRelease&) = delete;
  /// Each moves what may hold others out of its place, to be released at the end.
  void Add(Variant& value) noexcept;
  void AddAll(std::vector<Variant>& values);
  void AddValues(Campo& record);
  void AddRecords(Campos& table);
  ~DeepRelease();

 private:
  static constexpr int kDeepest = 50;

  static bool MayHold(const Variant& value) {
    return value.Is(Subtype::Object) || value.Is(Subtype::Array);
  }
  void Empty(const Variant& holder);

  DeepRelease* const outer_;
  const int depth_;
  std::vector<Variant> pending_;
};

}  // namespace tovalin
