#include "evaluator/plan_cache.h"

#include <utility>

namespace tovalin {

Plan* PlanCache::Find(TextView text, std::size_t hash) {
  const auto place = plans_.find(Key{text, hash});
  if (place == plans_.end()) return nullptr;
  Plan* plan = place->get();
  if (plan != latest_) {
    Unchain(*plan);
    Chain(*plan);
  }
  return plan;
}

void PlanCache::Add(const Ref<Plan>& plan) {
  if (free_node_) {
    free_node_.value() = plan;
    plans_.insert(std::move(free_node_));
  } else {
    plans_.insert(plan);
  }
  Chain(*plan);
}

void PlanCache::Remove(Plan& plan) { Take(plans_.find(Ref<Plan>::Share(&plan))); }

Ref<Plan> PlanCache::TakeOldest() {
  return oldest_ ? Take(plans_.find(Key{oldest_->text, oldest_->hash})) : nullptr;
}

void PlanCache::LetCapacity(std::size_t capacity) {
  capacity_ = capacity;
  while (plans_.size() > capacity) TakeOldest();
}

Ref<Plan> PlanCache::Take(Plans::const_iterator place) {
  free_node_ = plans_.extract(place);
  Ref<Plan> plan = std::move(free_node_.value());
  Unchain(*plan);
  return plan;
}

void PlanCache::Chain(Plan& plan) {
  plan.older = std::exchange(latest_, &plan);
  plan.newer = nullptr;
  (plan.older ? plan.older->newer : oldest_) = &plan;
}

void PlanCache::Unchain(Plan& plan) {
  (plan.newer ? plan.newer->older : latest_) = plan.older;
  (plan.older ? plan.older->newer : oldest_) = plan.newer;
}

}  // namespace tovalin
