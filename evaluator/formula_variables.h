#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "evaluator/plan.h"
#include "frame/object/campo_access.h"
#include "tovalin/campos.h"

// What an evaluator knows of its formula variables: which were computed, and their
// plans.

namespace tovalin {

/// What a Campo keeps for the evaluators that it belongs to: only this reads and
/// writes it. An index is a hint; it counts if the record stands there.
struct FormulaSlot {
  /// The place in the list of those that an evaluation has computed.
  static std::uint32_t VisitedIndex(const Campo& record) {
    return CampoAccess::AnnotationOf(record)[0];
  }
  static void SetVisitedIndex(Campo& record, std::size_t index) {
    CampoAccess::AnnotationOf(record)[0] = static_cast<std::uint32_t>(index);
  }
  /// The place of the plan.
  static std::uint32_t PlanIndex(const Campo& record) {
    return CampoAccess::AnnotationOf(record)[1];
  }
  static void SetPlanIndex(Campo& record, std::size_t index) {
    CampoAccess::AnnotationOf(record)[1] = static_cast<std::uint32_t>(index);
  }
  /// Replaces the value, which is no change as hosts make them, and gives the former.
  static Variant ExchangeValue(Campo& record, Variant value) {
    return CampoAccess::ExchangeValue(record, std::move(value));
  }
};

/// The formula variables that one evaluation has tried: those that it computed, and
/// those that failed, which keep their error so that each is tried once. A record keeps
/// its place in the list, so that asking takes constant time; the place proves
/// itself by what stands there, so that nothing needs to be reset.
class FormulaMarks {
 public:
  /// Whether the formula of a record was tried.
  bool Contains(const Campo& record) const {
    return FormulaSlot::VisitedIndex(record) < tried_.size() &&
           tried_[FormulaSlot::VisitedIndex(record)].get() == &record;
  }
  /// How many formulas were tried, one that was tried twice being one.
  std::size_t Count() const { return tried_.size() - (rare_ ? rare_->repeated.size() : 0); }
  /// The place of the next one.
  std::size_t Next() const { return tried_.size(); }
  /// Whether the formula was tried, but not since `place` was the next one.
  bool IsOlderThan(std::size_t place, const Campo& record) const {
    return Contains(record) && FormulaSlot::VisitedIndex(record) < place;
  }

  /// Gives a formula variable its value. It is no change of a value as hosts make
  /// them. Answers the former value, whose destructor may run code of the host.
  [[nodiscard]] Variant Store(Campo& record, Variant value) {
    Mark(record);
    if (rare_) rare_->failures.erase(&record);
    return FormulaSlot::ExchangeValue(record, std::move(value));
  }
  void Fail(Campo& record, std::exception_ptr error) {
    Mark(record);
    Rarely().failures[&record] = std::move(error);
  }
  /// Throws what the formula of a record failed with, if it did.
  void RaiseFailure(const Campo& record) const {
    if (rare_) RaiseKept(record);
  }
  /// Lets a formula that was tried be tried once more. False when it was already.
  bool Repeat(const Campo& record) { return Rarely().repeated.insert(&record).second; }

 private:
  struct Rare {
    std::unordered_map<const Campo*, std::exception_ptr> failures;
    std::unordered_set<const Campo*> repeated;
  };

  Rare& Rarely() {
    if (!rare_) rare_ = std::make_unique<Rare>();
    return *rare_;
  }
  void Mark(Campo& record) {
    tried_.push_back(Ref<Campo>::Share(&record));
    FormulaSlot::SetVisitedIndex(record, tried_.size() - 1);
  }
  void RaiseKept(const Campo& record) const {
    const auto failure = rare_->failures.find(&record);
    if (failure != rare_->failures.end() && Contains(record))
      std::rethrow_exception(failure->second);
  }

  std::vector<Ref<Campo>> tried_;  // a record that was tried again stands there twice
  std::unique_ptr<Rare> rare_;     // most evaluations need none
};

/// The plans of formula variables, beside the bounded store. A record keeps the place
/// of its plan; the place proves itself by the record that stands there, since another
/// evaluator may know the record too. Then the place is looked up.
class FormulaPlans {
 public:
  /// The plan of a record, empty at first. Whether it is still good its stamp says,
  /// which a record that is gone has broken.
  Ref<Plan>& Of(Campo& record) {
    if (!IsAt(record)) Place(record);
    return entries_[FormulaSlot::PlanIndex(record)].plan;
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
    return FormulaSlot::PlanIndex(record) < entries_.size() &&
           entries_[FormulaSlot::PlanIndex(record)].record == &record;
  }
  void Place(Campo& record) {
    const auto found = places_.find(&record);
    if (found != places_.end()) {
      FormulaSlot::SetPlanIndex(record, found->second);
      return;
    }
    // The entry first: a place without one would be taken for that of another record.
    entries_.push_back({&record, nullptr});
    const auto place = static_cast<std::uint32_t>(entries_.size() - 1);
    places_.emplace(&record, place);
    FormulaSlot::SetPlanIndex(record, place);
  }

  std::vector<Entry> entries_;
  std::unordered_map<const Campo*, std::uint32_t> places_;
};

}  // namespace tovalin
