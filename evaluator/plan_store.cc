#include "evaluator/plan_store.h"

#include <utility>

#include "evaluator/infix_check.h"
#include "evaluator/tokenizer.h"

namespace tovalin {
namespace {

// A longer formula is not worth its place: converting it takes far less time
// than a host needs to write it.
constexpr std::size_t kLongestKept = 65536;

// The memory of a shorter one serves those that follow.
constexpr std::size_t kLongestReused = 4096;

bool IsReusable(const TokenList& list) {
  return list.text.capacity() <= kLongestReused && list.tokens.capacity() <= kLongestReused;
}

bool IsReusable(const Plan& plan) {
  return plan.references.Value() == 1 && plan.text.capacity() <= kLongestReused &&
         plan.items.capacity() <= kLongestReused;
}

void Empty(TokenList& list) {
  if (!IsReusable(list)) list = TokenList();
  list.tokens.clear();
  list.faults.clear();
  list.at_signs.clear();
}

// As new, but for the memory of its parts. What goes here may run a destructor of the
// host; nothing that is half done sees it.
void Empty(Plan& plan) {
  plan.locals = nullptr;
  plan.items.clear();
  plan.held.clear();
  plan.faults.reset();
  plan.numeric.steps.clear();
  plan.trace_edition = 0;
  plan.has_constants = false;
  plan.came_again = false;
  plan.calls_host = false;
}

}  // namespace

Ref<Plan> PlanStore::Get(TextView formula, const Ref<Campos>& locals) {
  const NamesStamp stamp = StampNames(symbols_, locals.get());
  const std::uint32_t hash = PlanCache::Hash(formula);
  Ref<Plan> plan = Ref<Plan>::Share(cache_.Find(formula, hash));
  if (plan && plan->MayRun(stamp)) {
    plan->came_again = true;
    if (!plan->has_constants) return plan;
    BindConstants(*plan);
    return plan->stamp == StampNames(symbols_, locals.get()) ? plan : Make(formula, locals);
  }
  // A plan that is being walked keeps the constants that it was converted with.
  if (plan && plan->walks > 0) return Make(formula, locals);
  if (plan) cache_.Take(*plan);
  plan = EmptyPlan();
  Compile(*plan, formula, locals, stamp);
  plan->hash = hash;
  if (cache_.Capacity() > 0 && formula.size() <= kLongestKept) cache_.Add(plan);
  return plan;
}

Ref<Plan> PlanStore::Make(TextView formula, const Ref<Campos>& locals) {
  auto plan = tovalin::Make<Plan>();
  Compile(*plan, formula, locals, StampNames(symbols_, locals.get()));
  return plan;
}

// A new plan, or the oldest one, which goes for it, where nobody else holds it.
Ref<Plan> PlanStore::EmptyPlan() {
  if (!cache_.IsFull()) return tovalin::Make<Plan>();
  Ref<Plan> plan = cache_.TakeOldest();
  if (!plan || !IsReusable(*plan)) return tovalin::Make<Plan>();
  Empty(*plan);
  return plan;
}

void PlanStore::Compile(Plan& plan, TextView formula, const Ref<Campos>& locals,
                        const NamesStamp& stamp) {
  Empty(tokens_);
  tokens_.text = formula;
  Tokenize(tokens_, Elements(), symbols_.string_delimiter);
  CheckTokens(tokens_, symbols_, locals.get());
  plan.stamp = stamp;
  plan.locals = locals;
  if (tokens_.faults.empty())
    ConvertToPostfix(tokens_, plan);
  else
    plan.faults = std::make_unique<std::vector<Fault>>(std::move(tokens_.faults));
  std::swap(plan.text, tokens_.text);
  std::swap(plan.at_signs, tokens_.at_signs);
  MakeNumericProgram(plan);
}

TokenList PlanStore::Tokens(Text formula) {
  TokenList list;
  list.text = std::move(formula);
  StripCarriageReturns(list.text);
  Tokenize(list, Elements(), symbols_.string_delimiter);
  return list;
}

const ElementSearch& PlanStore::Elements() {
  const std::uint64_t stamp = VocabularyStamp(symbols_);
  if (elements_stamp_ != stamp) {
    elements_.Build(symbols_);
    elements_stamp_ = stamp;
  }
  return elements_;
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
