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

 private:
  using Edges = std::unordered_map<const Campo*, std::vector<Campo*>>;

  void Refresh();
  std::vector<Campo*> Reached(const std::vector<Ref<Campo>>& roots) const;

  const Symbols& symbols_;
  PlanStore& plans_;
  NamesStamp stamp_;
  bool built_ = false;
  Edges dependants_;  // of a variable: the formula variables that mention it
};

}  // namespace tovalin
