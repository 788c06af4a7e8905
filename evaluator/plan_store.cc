#include "evaluator/plan_store.h"

#include "evaluator/infix_check.h"
#include "evaluator/tokenizer.h"

namespace tovalin {
namespace {

// A longer formula is not worth its place: converting it takes far less time
// than a host needs to write it.
constexpr std::size_t kLongestKept = 65536;

}  // namespace

Ref<Plan> PlanStore::Get(TextView formula, const Ref<Campos>& locals) {
  const NamesStamp stamp = StampNames(symbols_, locals.get());
  const auto found = by_text_.find(formula);
  if (found == by_text_.end()) {
    Ref<Plan> plan = Compile(formula, locals, stamp);
    Keep(plan);
    return plan;
  }
  const auto place = found->second;
  // A plan that is being walked keeps the constants that it was converted with.
  if ((*place)->walks > 0) return Compile(formula, locals, stamp);
  order_.splice(order_.begin(), order_, place);
  if ((*place)->stamp == stamp) {
    Plan& kept = **place;
    if (kept.has_constants && BindConstants(kept)) kept.trace_edition = 0;
    return *place;
  }
  Ref<Plan> plan = Compile(formula, locals, stamp);
  by_text_.erase(found);
  *place = plan;
  by_text_.emplace(plan->text, place);
  return plan;
}

Ref<Plan> PlanStore::Compile(TextView formula, const Ref<Campos>& locals, const NamesStamp& stamp) {
  TokenList list = Tokens(Text(formula));
  CheckTokens(list, symbols_, locals.get());
  auto plan = tovalin::Make<Plan>();
  plan->stamp = stamp;
  plan->locals = locals;
  plan->faults = std::move(list.faults);
  if (plan->faults.empty()) ConvertToPostfix(list, *plan);
  plan->text = std::move(list.text);
  if (plan->faults.empty()) plan->numeric = MakeNumericProgram(*plan);
  return plan;
}

TokenList PlanStore::Tokens(Text formula) {
  return Tokenize(std::move(formula), Elements(), symbols_.string_delimiter);
}

const ElementSearch& PlanStore::Elements() {
  const VocabularyStamp stamp = StampVocabulary(symbols_);
  if (!elements_built_ || stamp != elements_stamp_) {
    elements_.Build(symbols_);
    elements_stamp_ = stamp;
    elements_built_ = true;
  }
  return elements_;
}

void PlanStore::Keep(const Ref<Plan>& plan) {
  if (capacity_ == 0 || plan->text.size() > kLongestKept) return;
  Shrink(capacity_ - 1);
  order_.push_front(plan);
  by_text_.emplace(plan->text, order_.begin());
}

void PlanStore::Shrink(std::size_t size) {
  while (order_.size() > size) {
    by_text_.erase(order_.back()->text);
    order_.pop_back();
  }
}

void PlanStore::LetCapacity(std::size_t capacity) {
  capacity_ = capacity;
  Shrink(capacity);
}

void StripCarriageReturns(Text& formula) {
  std::size_t kept = formula.find(u'\r');
  if (kept == Text::npos) return;
  for (std::size_t i = kept; i < formula.size(); ++i) {
    if (formula[i] != u'\r')
      formula[kept++] = formula[i];
    else if (i + 1 < formula.size() && formula[i + 1] == u'\n')
      ++i;
  }
  formula.resize(kept);
}

}  // namespace tovalin
