#pragma once

#include <unordered_map>
#include <vector>

#include "evaluator/plan_store.h"
#include "evaluator/symbols.h"

namespace tovalin {

/// Which formula variables mention which variables.
class DependencyIndex {
 public:
  DependencyIndex(const Symbols& symbols, PlanStore& plans) : symbols_(symbols), plans_(plans) {}

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
  PlanStore& plans_;
  NamesStamp stamp_;
  std::uint64_t vocabulary_ = NamesStamp::kNever;
  std::size_t formula_count_ = 0;
  Edges dependants_;  // of a variable or constant: the formula variables that mention it
  std::unordered_map<const Campo*, Mentions> mentions_;
};

}  // namespace tovalin
