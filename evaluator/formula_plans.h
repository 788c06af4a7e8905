#pragma once

#include <unordered_map>
#include <utility>
#include <vector>

#include "evaluator/plan.h"

namespace tovalin {

/// The plans of formula variables, beside the bounded store. A record keeps the place
/// of its plan; the place proves itself by the record that stands there, since another
/// evaluator may know the record too. Then the place is looked up.
class FormulaPlans {
 public:
  /// The plan of a record, empty at first. Whether it is still good its stamp says,
  /// which a record that is gone has broken.
  Ref<Plan>& Of(Campo& record) {
    if (!IsAt(record)) Place(record);
    return entries_[record.plan_place_].plan;
  }

  /// Forgets all when most are of records that are gone. The plans go last: a value in
  /// one may run code of the host, which may ask for another.
  void Tidy(std::size_t records) {
    if (entries_.size() <= 2 * records + 64) return;
    const std::vector<Entry> gone = std::exchange(entries_, {});
    places_.clear();
  }

 private:
  struct Entry {
    const Campo* record;
    Ref<Plan> plan;
  };

  bool IsAt(const Campo& record) const {
    return record.plan_place_ < entries_.size() && entries_[record.plan_place_].record == &record;
  }
  void Place(Campo& record) {
    const auto found = places_.find(&record);
    if (found != places_.end()) {
      record.plan_place_ = found->second;
      return;
    }
    // The entry first: a place without one would be taken for that of another record.
    entries_.push_back({&record, nullptr});
    const auto place = static_cast<std::uint32_t>(entries_.size() - 1);
    places_.emplace(&record, place);
    record.plan_place_ = place;
  }

  std::vector<Entry> entries_;
  std::unordered_map<const Campo*, std::uint32_t> places_;
};

}  // namespace tovalin
