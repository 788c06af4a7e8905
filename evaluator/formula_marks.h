#pragma once

#include <exception>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "tovalin/campos.h"

namespace tovalin {

/// The formula variables that one evaluation has tried: those that it computed, and
/// those that failed, which keep their error so that each is tried once. A record keeps
/// its place in the list, so that asking takes constant time; the place proves
/// itself by what stands there, so that nothing needs to be reset.
class FormulaMarks {
 public:
  /// Whether the formula of a record was tried.
  bool Contains(const Campo& record) const {
    return record.mark_ < tried_.size() && tried_[record.mark_].get() == &record;
  }
  /// How many formulas were tried, one that was tried twice being one.
  std::size_t Count() const { return tried_.size() - (rare_ ? rare_->repeated.size() : 0); }
  /// The place of the next one.
  std::size_t Next() const { return tried_.size(); }
  /// Whether the formula was tried, but not since `place` was the next one.
  bool IsOlderThan(std::size_t place, const Campo& record) const {
    return Contains(record) && record.mark_ < place;
  }

  /// Gives a formula variable its value. It is no change of a value as hosts make
  /// them. Answers the former value, whose destructor may run code of the host.
  [[nodiscard]] Variant Store(Campo& record, Variant value) {
    Mark(record);
    if (rare_) rare_->failures.erase(&record);
    return std::exchange(record.value_, std::move(value));
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
    record.mark_ = static_cast<std::uint32_t>(tried_.size() - 1);
  }
  void RaiseKept(const Campo& record) const {
    const auto failure = rare_->failures.find(&record);
    if (failure != rare_->failures.end() && Contains(record))
      std::rethrow_exception(failure->second);
  }

  std::vector<Ref<Campo>> tried_;  // a record that was tried again stands there twice
  std::unique_ptr<Rare> rare_;     // most evaluations need none
};

}  // namespace tovalin
