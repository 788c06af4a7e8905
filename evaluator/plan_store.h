#pragma once

#include <list>
#include <unordered_map>

#include "evaluator/element_search.h"
#include "evaluator/plan.h"

namespace tovalin {

/// Makes the plans of formula texts and keeps the latest of them.
class PlanStore {
 public:
  explicit PlanStore(const Symbols& symbols) : symbols_(symbols) {}

  /// The plan of a formula: checked, converted, its names looked up and its
  /// constants bound as the tables are now. `locals` may be null.
  Ref<Plan> Get(TextView formula, const Ref<Campos>& locals);

  /// The same for a plan that is not shared.
  Ref<Plan> Make(TextView formula, const Ref<Campos>& locals) {
    return Compile(formula, locals, StampNames(symbols_, locals.get()));
  }

  /// The tokens of a formula, their names not looked up.
  TokenList Tokens(Text formula);
  const ElementSearch& Elements();

  std::size_t Capacity() const { return capacity_; }
  /// How many plans are kept; 0 for none.
  void LetCapacity(std::size_t capacity);

 private:
  using Order = std::list<Ref<Plan>>;  // the latest in front

  Ref<Plan> Compile(TextView formula, const Ref<Campos>& locals, const NamesStamp& stamp);
  void Keep(const Ref<Plan>& plan);
  void Shrink(std::size_t size);

  const Symbols& symbols_;
  ElementSearch elements_;
  VocabularyStamp elements_stamp_;
  bool elements_built_ = false;
  Order order_;
  std::unordered_map<TextView, Order::iterator> by_text_;  // keys lie in the plans
  std::size_t capacity_ = 256;
};

/// A formula without its carriage returns: a pair with a line feed goes whole, a
/// lone line feed deliberately stays, as part of the token around it.
void StripCarriageReturns(Text& formula);

}  // namespace tovalin
