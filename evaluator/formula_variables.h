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

// What an evaluator knows of its formula variables: which were computed, their plans,
// and which mention which.

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

/// The formula variables that one evaluation has computed, and those that failed, which
/// keep their error so that each is tried once. It is a sparse set: a record keeps its
/// index in the list, which counts if the record stands there, so that asking takes
/// constant time and nothing needs to be reset.
class VisitedVariables {
 public:
  /// Whether the formula of a record was tried.
  bool Contains(const Campo& record) const {
    const std::uint32_t index = FormulaSlot::VisitedIndex(record);
    return index < visited_.size() && visited_[index].get() == &record;
  }
  /// How many formulas were tried, one that was tried twice being one.
  std::size_t Count() const { return visited_.size() - (rare_ ? rare_->repeated.size() : 0); }
  /// The index of the next one.
  std::size_t NextIndex() const { return visited_.size(); }
  /// Whether the formula was tried, but not since `index` was the next one.
  bool IsOlderThan(std::size_t index, const Campo& record) const {
    return Contains(record) && FormulaSlot::VisitedIndex(record) < index;
  }

  /// Gives a formula variable its value. It is no change of a value as hosts make
  /// them. Returns the former value, whose destructor may run code of the host.
  [[nodiscard]] Variant Store(Campo& record, Variant value) {
    Add(record);
    if (rare_) rare_->failures.erase(&record);
    return FormulaSlot::ExchangeValue(record, std::move(value));
  }
  void Fail(Campo& record, std::exception_ptr error) {
    Add(record);
    MakeRare().failures[&record] = std::move(error);
  }
  /// Throws what the formula of a record failed with, if it did.
  void RaiseFailure(const Campo& record) const {
    if (rare_) RaiseKept(record);
  }
  /// Lets a formula that was tried be tried once more. False when it was already.
  bool Repeat(const Campo& record) { return MakeRare().repeated.insert(&record).second; }

 private:
  struct Rare {
    std::unordered_map<const Campo*, std::exception_ptr> failures;
    std::unordered_set<const Campo*> repeated;
  };

  Rare& MakeRare() {
    if (!rare_) rare_ = std::make_unique<Rare>();
    return *rare_;
  }
  void Add(Campo& record) {
    visited_.push_back(Ref<Campo>::Share(&record));
    FormulaSlot::SetVisitedIndex(record, visited_.size() - 1);
  }
  void RaiseKept(const Campo& record) const {
    const auto failure = rare_->failures.find(&record);
    if (failure != rare_->failures.end() && Contains(record))
      std::rethrow_exception(failure->second);
  }

  std::vector<Ref<Campo>> visited_;  // a record that was tried again stands there twice
  std::unique_ptr<Rare> rare_;       // most evaluations need none
};

/// The plans of formula variables, beside the bounded cache. A record keeps the index
/// of its plan, which counts if the record stands there, since another evaluator may
/// know the record too; otherwise the index is looked up.
class FormulaPlans {
 public:
  /// The plan of a record, empty at first.
  Ref<Plan>& Of(Campo& record) {
    if (!IsAt(record)) SetIndex(record);
    return entries_[FormulaSlot::PlanIndex(record)].plan;
  }

  /// Forgets all when most are of records that are gone. The plans are destroyed last: a
  /// value in one may run code of the host, which may ask for another.
  void RemoveStale(std::size_t records) {
    if (entries_.size() <= 2 * records + 64) return;
    const std::vector<Entry> stale = std::exchange(entries_, {});
    indexes_.clear();
  }

 private:
  struct Entry {
    const Campo* record;
    Ref<Plan> plan;
  };

  bool IsAt(const Campo& record) const {
    const std::uint32_t index = FormulaSlot::PlanIndex(record);
    return index < entries_.size() && entries_[index].record == &record;
  }
  void SetIndex(Campo& record) {
    const auto found = indexes_.find(&record);
    if (found != indexes_.end()) return FormulaSlot::SetPlanIndex(record, found->second);
    // The entry first: an index without one would be taken for that of another record.
    entries_.push_back({&record, nullptr});
    indexes_.emplace(&record, entries_.size() - 1);
    FormulaSlot::SetPlanIndex(record, entries_.size() - 1);
  }

  std::vector<Entry> entries_;
  std::unordered_map<const Campo*, std::size_t> indexes_;
};

/// The order in which the nodes 0 to `count` - 1 of a graph can be computed: each behind
/// those that it depends on, otherwise as they stand. Nodes of a circle, and those that
/// depend on them, are left out. `for_each_reader(node, visit)` calls `visit` with each
/// node that depends on `node`.
template <class ForEachReader>
std::vector<std::size_t> DependencyOrder(std::size_t count, ForEachReader for_each_reader) {
  std::vector<std::size_t> pending(count);  // how many dependencies are not in the order yet
  for (std::size_t node = 0; node < count; ++node)
    for_each_reader(node, [&](std::size_t reader) { ++pending[reader]; });
  std::vector<std::size_t> order;
  for (std::size_t node = 0; node < count; ++node)
    if (pending[node] == 0) order.push_back(node);
  for (std::size_t next = 0; next < order.size(); ++next)
    for_each_reader(order[next], [&](std::size_t reader) {
      if (--pending[reader] == 0) order.push_back(reader);
    });
  return order;
}

/// Which formula variables mention which variables.
class DependencyIndex {
 public:
  DependencyIndex(const Symbols& symbols, Lexer& lexer) : symbols_(symbols), lexer_(lexer) {}

  /// The formula variables that mention one of `roots`, directly or through
  /// others, each behind those that it mentions itself; those of a circle at the
  /// end. A root is among them only when another root leads to it.
  std::vector<Ref<Campo>> Dependants(const std::vector<Ref<Campo>>& roots);

  /// Calls `visit` with the formula variables that mention `record` themselves.
  template <class Visit>
  void ForEachReader(const Campo& record, Visit visit) {
    Refresh();
    const auto readers = dependants_.find(&record);
    if (readers == dependants_.end()) return;
    for (const Campo* reader : readers->second) visit(*reader);
  }

  /// How many formula variables there are.
  std::size_t FormulaCount() {
    Refresh();
    return formula_count_;
  }

  /// Whether a formula variable that mentions one of `roots` itself is as asked.
  template <class Predicate>
  bool AnyReader(const std::vector<Ref<Campo>>& roots, Predicate predicate) {
    Refresh();
    for (const Ref<Campo>& root : roots) {
      const auto readers = dependants_.find(root.get());
      if (readers == dependants_.end()) continue;
      for (const Campo* reader : readers->second)
        if (predicate(*reader)) return true;
    }
    return false;
  }

 private:
  using Edges = std::unordered_map<const Campo*, std::vector<Campo*>>;

  // The names that a formula mentions, good while the vocabulary and its text stay.
  struct Mentions {
    Text formula;
    std::vector<Text> names;
  };

  void Refresh();
  const std::vector<Text>& NamesOf(const Campo& record);
  std::vector<Campo*> Reached(const std::vector<Ref<Campo>>& roots) const;

  const Symbols& symbols_;
  Lexer& lexer_;
  NamesVersion version_;
  std::uint64_t vocabulary_version_ = NamesVersion::kNever;
  std::size_t formula_count_ = 0;
  Edges dependants_;  // of a variable or constant: the formula variables that mention it
  std::unordered_map<const Campo*, Mentions> mentions_;
};

}  // namespace tovalin
