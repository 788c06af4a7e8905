#pragma once

#include <vector>

#include "evaluator/plan.h"

namespace tovalin {

/// The plans of the formula texts that were used last. The plans themselves carry
/// the links of the hash table and of the order of use, so that one that comes in
/// place of another takes no memory and few steps.
class PlanCache {
 public:
  PlanCache() = default;
  PlanCache(const PlanCache&) = delete;
  PlanCache& operator=(const PlanCache&) = delete;
  ~PlanCache() { LetCapacity(0); }

  static std::uint32_t Hash(TextView text);

  /// The plan of a text, which becomes the latest, or null.
  Plan* Find(TextView text, std::uint32_t hash);
  /// Keeps a plan of a text that is not here, as the latest. There must be room.
  void Add(const Ref<Plan>& plan);
  /// Takes a plan out that is here.
  Ref<Plan> Take(Plan& plan);
  bool IsFull() const { return size_ >= capacity_; }
  /// Takes the plan that was used longest ago out, if there is one.
  Ref<Plan> TakeOldest() { return oldest_ ? Take(*oldest_) : nullptr; }

  std::size_t Capacity() const { return capacity_; }
  void LetCapacity(std::size_t capacity);

 private:
  Ref<Plan>& Bucket(std::uint32_t hash) { return buckets_[hash & (buckets_.size() - 1)]; }
  void Grow();
  void Chain(Plan& plan);
  void Unchain(Plan& plan);

  std::vector<Ref<Plan>> buckets_;  // as many as a power of two, or none
  std::size_t size_ = 0;
  Plan* latest_ = nullptr;
  Plan* oldest_ = nullptr;
  std::size_t capacity_ = 256;
};

}  // namespace tovalin
