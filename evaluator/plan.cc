#include "evaluator/plan.h"

#include <algorithm>
#include <utility>

#include "evaluator/check.h"

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
  return plan.references.Value() == 1 && plan.postfix.text.capacity() <= kLongestReused &&
         plan.postfix.items.capacity() <= kLongestReused;
}

void Empty(TokenList& list) {
  if (!IsReusable(list)) list = TokenList();
  list.tokens.clear();
  list.faults.clear();
  list.at_signs.clear();
}

// As new, but for the memory of its parts. What is destroyed here may run code of the
// host; nothing that is half done sees it.
void Empty(Plan& plan) {
  plan.locals = nullptr;
  plan.postfix.items.clear();
  plan.postfix.held.clear();
  plan.postfix.has_constants = false;
  plan.postfix.calls_host = false;
  plan.faults.reset();
  plan.numeric.steps.clear();
  plan.trace_version = 0;
  plan.came_again = false;
}

// Adds an item to a numeric program. False when there can be none.
bool AddItem(NumericBuilder& builder, const Postfix& postfix, const Item& item) {
  switch (item.kind) {
    case ItemKind::Number:
      return builder.LoadNumber(item.number);
    case ItemKind::Variable:
      return builder.LoadVariable(*item.record);
    case ItemKind::Constant:
      return builder.LoadConstant(postfix.ValueOf(item));
    case ItemKind::Operator:
      return builder.Apply(FindOperator(item.operator_code));
    case ItemKind::Builtin:
      return builder.Call(FunctionAt(item.builtin));
    default:
      return false;
  }
}

// Whether a formula has characters that its plan or trace has not. Without a branch for
// each character, so that the compiler takes many at once.
bool HasSpecial(const Text& formula) {
  unsigned special = 0;
  for (char16_t c : formula) special |= c == u'@' || c == u'\r';
  return special != 0;
}

void MakeNumericProgram(Plan& plan) {
  NumericBuilder builder(plan.numeric);
  const auto add = [&](const Item& item) { return AddItem(builder, plan.postfix, item); };
  if (plan.postfix.items.empty() || !std::ranges::all_of(plan.postfix.items, add))
    plan.numeric.steps.clear();
  else
    builder.Finish();
}

}  // namespace

std::uint32_t PlanCache::Hash(TextView text) {
  const std::uint64_t hash = std::hash<TextView>()(text);
  return static_cast<std::uint32_t>(hash ^ hash >> 32);
}

Plan* PlanCache::Find(TextView text, std::uint32_t hash) {
  if (size_ == 0) return nullptr;
  Plan* plan = Bucket(hash).get();
  while (plan && (plan->hash != hash || plan->postfix.text != text)) plan = plan->same_bucket.get();
  if (plan && plan != latest_) {
    Unlink(*plan);
    Link(*plan);
  }
  return plan;
}

void PlanCache::Add(const Ref<Plan>& plan) {
  if (size_ == buckets_.size()) Grow();
  plan->same_bucket = std::exchange(Bucket(plan->hash), plan);
  ++size_;
  Link(*plan);
}

Ref<Plan> PlanCache::Extract(Plan& plan) {
  Ref<Plan>* place = &Bucket(plan.hash);
  while (place->get() != &plan) place = &(*place)->same_bucket;
  Ref<Plan> extracted = std::move(*place);
  *place = std::move(plan.same_bucket);
  --size_;
  Unlink(plan);
  return extracted;
}

void PlanCache::LetCapacity(std::size_t capacity) {
  capacity_ = capacity;
  while (size_ > capacity) ExtractOldest();
}

void PlanCache::Grow() {
  constexpr std::size_t kFewest = 16;
  std::vector<Ref<Plan>> former(buckets_.empty() ? kFewest : 2 * buckets_.size());
  former.swap(buckets_);
  for (Ref<Plan>& bucket : former) {
    while (bucket) {
      Ref<Plan> plan = std::move(bucket);
      bucket = std::move(plan->same_bucket);
      plan->same_bucket = std::exchange(Bucket(plan->hash), plan);
    }
  }
}

void PlanCache::Link(Plan& plan) {
  plan.older = std::exchange(latest_, &plan);
  plan.newer = nullptr;
  (plan.older ? plan.older->newer : oldest_) = &plan;
}

void PlanCache::Unlink(Plan& plan) {
  (plan.newer ? plan.newer->older : latest_) = plan.older;
  (plan.older ? plan.older->newer : oldest_) = plan.newer;
}

Ref<Plan> Plans::Get(TextView formula, const Ref<Campos>& locals) {
  const NamesVersion version = Version(locals.get());
  const std::uint32_t hash = PlanCache::Hash(formula);
  Ref<Plan> plan = Ref<Plan>::Share(cache_.Find(formula, hash));
  // A plan under evaluation keeps the constants that it was converted with.
  if (plan && (plan->evaluations > 0 || plan->IsCurrent(version))) {
    plan->came_again = true;
    return IsReady(*plan, version) ? plan : Make(formula, locals);
  }
  if (plan) cache_.Extract(*plan);
  plan = EmptyPlan();
  // What was destroyed meanwhile may have changed the tables.
  Compile(*plan, formula, locals);
  plan->hash = hash;
  if (cache_.Capacity() > 0 && formula.size() <= kLongestKept) cache_.Add(plan);
  return plan;
}

Ref<Plan> Plans::Make(TextView formula, const Ref<Campos>& locals) {
  auto plan = tovalin::Make<Plan>();
  Compile(*plan, formula, locals);
  return plan;
}

PreparedPlan Plans::Prepare(const Text& formula, const Ref<Campos>& locals) {
  if (!HasSpecial(formula)) return {Get(formula, locals), std::nullopt};
  Text text = formula;
  StripCarriageReturns(text);
  Ref<Plan> plan = Get(text, locals);
  Text expression = WithoutAtSigns(formula, plan->at_signs);
  return {std::move(plan), std::move(expression)};
}

PreparedPlan Plans::Prepare(SharedText& formula, const Ref<Campos>& locals) {
  PreparedPlan prepared = Prepare(formula.value, locals);
  const Plan& plan = *prepared.plan;
  // Faults have to be reported and constants bound each time.
  if (!plan.came_again || prepared.expression || plan.faults || plan.postfix.has_constants)
    return prepared;
  {
    RecentText text{Ref<SharedText>::Share(&formula), prepared.plan};
    std::swap(recent_[RecentIndex(formula)], text);
  }
  // What was replaced may have held an object, which changes the tables.
  return IsCurrent(plan, locals.get()) ? std::move(prepared) : Prepare(formula.value, locals);
}

Ref<Plan> Plans::MakeFor(Text formula, const Ref<Campos>& locals) {
  StripCarriageReturns(formula);
  return Make(formula, locals);
}

Ref<Plan> Plans::MakeOfItems(const Collection& items, const Ref<Campos>& locals) const {
  auto plan = tovalin::Make<Plan>();
  plan->version = Version(locals.get());
  for (const Variant& item : items.List().Items())
    AppendHostItem(plan->postfix, item, symbols_, locals.get());
  return plan;
}

void Plans::LookUpAgain(Plan& plan, const Campos* locals) const {
  plan.version = NamesVersion();
  tovalin::LookUpAgain(plan.postfix, symbols_, locals);
}

// A value that is replaced may be an object, which changes the tables as it goes.
bool Plans::BindConstants(Plan& plan, const NamesVersion& now) const {
  const std::uint32_t shown = std::exchange(plan.trace_version, 0);
  if (tovalin::BindConstants(plan.postfix)) plan.trace_version = shown;
  return plan.evaluations == 0 && plan.version == Version(now.locals);
}

// A new plan, or the memory of the oldest one, where nobody else holds it.
Ref<Plan> Plans::EmptyPlan() {
  if (!cache_.IsFull()) return tovalin::Make<Plan>();
  Ref<Plan> plan = cache_.ExtractOldest();
  if (!plan || !IsReusable(*plan)) return tovalin::Make<Plan>();
  Empty(*plan);
  return plan;
}

void Plans::Compile(Plan& plan, TextView formula, const Ref<Campos>& locals) {
  Empty(tokens_);
  tokens_.text = formula;
  lexer_.Split(tokens_);
  CheckTokens(tokens_, symbols_, locals.get());
  plan.version = Version(locals.get());
  plan.locals = locals;
  if (tokens_.faults.empty())
    ConvertToPostfix(tokens_, plan.postfix);
  else
    plan.faults = std::make_unique<std::vector<Fault>>(std::move(tokens_.faults));
  std::swap(plan.postfix.text, tokens_.text);
  std::swap(plan.at_signs, tokens_.at_signs);
  MakeNumericProgram(plan);
}

}  // namespace tovalin
