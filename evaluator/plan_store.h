#pragma once

#include <optional>

#include "evaluator/element_search.h"
#include "evaluator/plan_cache.h"

namespace tovalin {

/// Makes the plans of formula texts and keeps the latest of them.
class PlanStore {
 public:
  explicit PlanStore(const Symbols& symbols) : symbols_(symbols) {}

  /// The plan of a formula: checked, converted, its names looked up and its
  /// constants bound as the tables are now. `locals` may be null.
  Ref<Plan> Get(TextView formula, const Ref<Campos>& locals);

  /// The same for a plan that is not shared.
  Ref<Plan> Make(TextView formula, const Ref<Campos>& locals);

  /// The tokens of a formula, with carriage returns or without, their names not looked up.
  TokenList Tokens(Text formula);
  const ElementSearch& Elements();

  std::size_t Capacity() const { return cache_.Capacity(); }
  /// How many plans are kept; 0 for none.
  void LetCapacity(std::size_t capacity) { cache_.LetCapacity(capacity); }

 private:
  void Compile(Plan& plan, TextView formula, const Ref<Campos>& locals, const NamesStamp& stamp);
  Ref<Plan> EmptyPlan();

  const Symbols& symbols_;
  ElementSearch elements_;
  std::optional<std::uint64_t> elements_stamp_;
  PlanCache cache_;
  TokenList tokens_;  // of the formula that is being converted, kept for its memory
};

/// A formula without its carriage returns: a pair with a line feed goes whole, a
/// lone line feed deliberately stays, as part of the token around it.
void StripCarriageReturns(Text& formula);

}  // namespace tovalin
