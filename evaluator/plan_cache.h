#pragma once

#include <unordered_set>

#include "evaluator/plan.h"

namespace tovalin {

/// The plans of the formula texts that were used last. Plans are chained in the
/// order of use and carry the hash of their text; a plan that goes leaves its place
/// in the table, and itself where nobody holds it, to the one that comes.
class PlanCache {
 public:
  PlanCache() = default;
  PlanCache(const PlanCache&) = delete;
  PlanCache& operator=(const PlanCache&) = delete;

  static std::size_t Hash(TextView text) { return std::hash<TextView>()(text); }

  /// The plan of a text, which becomes the latest, or null.
  Plan* Find(TextView text, std::size_t hash);
  /// Keeps a plan of a text that is not here, as the latest. There must be room.
  void Add(const Ref<Plan>& plan);
  void Remove(Plan& plan);
  bool IsFull() const { return plans_.size() >= capacity_; }
  /// Takes the plan that was used longest ago out, if there is one.
  Ref<Plan> TakeOldest();

  std::size_t Capacity() const { return capacity_; }
  void LetCapacity(std::size_t capacity);

 private:
  struct Key {
    TextView text;
    std::size_t hash;
  };
  // Not noexcept, so that the table keeps the hashes itself: a search then touches no
  // other plan.
  struct KeyHash {
    using is_transparent = void;
    std::size_t operator()(const Key& key) const { return key.hash; }
    std::size_t operator()(const Ref<Plan>& plan) const { return plan->hash; }
  };
  struct KeyEqual {
    using is_transparent = void;
    bool operator()(const Ref<Plan>& a, const Ref<Plan>& b) const noexcept { return a == b; }
    bool operator()(const Key& key, const Ref<Plan>& plan) const noexcept {
      return key.hash == plan->hash && key.text == plan->text;
    }
    bool operator()(const Ref<Plan>& plan, const Key& key) const noexcept {
      return (*this)(key, plan);
    }
  };
  using Plans = std::unordered_set<Ref<Plan>, KeyHash, KeyEqual>;

  Ref<Plan> Take(Plans::const_iterator place);
  void Chain(Plan& plan);
  void Unchain(Plan& plan);

  Plans plans_;
  Plans::node_type free_node_;  // kept for its memory
  Plan* latest_ = nullptr;
  Plan* oldest_ = nullptr;
  std::size_t capacity_ = 256;
};

}  // namespace tovalin
