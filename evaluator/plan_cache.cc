#include "evaluator/plan_cache.h"

#include <utility>

namespace tovalin {

std::uint32_t PlanCache::Hash(TextView text) {
  const std::uint64_t hash = std::hash<TextView>()(text);
  return static_cast<std::uint32_t>(hash ^ hash >> 32);
}

Plan* PlanCache::Find(TextView text, std::uint32_t hash) {
  if (size_ == 0) return nullptr;
  Plan* plan = Bucket(hash).get();
  while (plan && (plan->hash != hash || plan->text != text)) plan = plan->same_bucket.get();
  if (plan && plan != latest_) {
    Unchain(*plan);
    Chain(*plan);
  }
  return plan;
}

void PlanCache::Add(const Ref<Plan>& plan) {
  if (size_ == buckets_.size()) Grow();
  plan->same_bucket = std::exchange(Bucket(plan->hash), plan);
  ++size_;
  Chain(*plan);
}

Ref<Plan> PlanCache::Take(Plan& plan) {
  Ref<Plan>* place = &Bucket(plan.hash);
  while (place->get() != &plan) place = &(*place)->same_bucket;
  Ref<Plan> taken = std::move(*place);
  *place = std::move(plan.same_bucket);
  --size_;
  Unchain(plan);
  return taken;
}

void PlanCache::LetCapacity(std::size_t capacity) {
  capacity_ = capacity;
  while (size_ > capacity) TakeOldest();
}

void PlanCache::Grow() {
  constexpr std::size_t kFewest = 16;
  std::vector<Ref<Plan>> former(buckets_.empty() ? kFewest : 2 * buckets_.size());
  former.swap(buckets_);
  for (Ref<Plan>& chain : former) {
    while (chain) {
      Ref<Plan> plan = std::move(chain);
      chain = std::move(plan->same_bucket);
      plan->same_bucket = std::exchange(Bucket(plan->hash), plan);
    }
  }
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
