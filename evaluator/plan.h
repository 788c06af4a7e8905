#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "evaluator/numeric.h"
#include "evaluator/postfix.h"

namespace tovalin {

/// A formula converted for evaluation: made once, evaluated many times, and made again
/// when its names may stand for something else.
struct Plan {
  // What every evaluation asks stands in front.
  ReferenceCount references;
  std::uint16_t evaluations = 0;  // under way
  bool came_again = false;        // asked for again after it was made
  std::uint32_t hash = 0;         // of the text
  std::uint32_t trace_version = 0;
  NamesVersion version;
  NumericProgram numeric;  // of a plan of numbers alone
  Postfix postfix;
  std::unique_ptr<std::vector<Fault>> faults;  // null without any; with any, there are no items
  std::vector<std::uint32_t> at_signs;         // as in the TokenList
  Ref<Campos> locals;                          // pins the address in the version
  // The postfix text that the trace shows: made when it is first shown, which gives it
  // a version other than 0, and again when a constant has changed it.
  Text trace_postfix;
  // Of the plan cache: the next plan with like hashes, and the neighbours in the
  // order of use.
  Ref<Plan> same_bucket;
  Plan* newer = nullptr;
  Plan* older = nullptr;

  const std::vector<Fault>& Faults() const {
    static const std::vector<Fault> none;
    return faults ? *faults : none;
  }
  /// Whether its names stand for what they stood for when it was made.
  bool IsCurrent(const NamesVersion& now) const { return version == now; }
};

/// The plans of the formula texts that were used last. The plans themselves carry
/// the links of the hash table and of the order of use, so that one that comes in
/// place of another takes no memory and few steps.
class PlanCache {
 public:
  PlanCache() = default;
  PlanCache(const PlanCache&) = delete;
  PlanCache& operator=(const PlanCache&) = delete;
  ~PlanCache() { LetCapacity(0); }

  static std::uint32_t Hash(TextView text);

  /// The plan of a text, which becomes the latest, or null.
  Plan* Find(TextView text, std::uint32_t hash);
  /// Keeps a plan of a text that is not here, as the latest. It must not be full.
  void Add(const Ref<Plan>& plan);
  /// Removes a plan that is here.
  Ref<Plan> Extract(Plan& plan);
  bool IsFull() const { return size_ >= capacity_; }
  /// Removes the plan that was used longest ago, if there is one.
  Ref<Plan> ExtractOldest() { return oldest_ ? Extract(*oldest_) : nullptr; }

  std::size_t Capacity() const { return capacity_; }
  void LetCapacity(std::size_t capacity);

 private:
  Ref<Plan>& Bucket(std::uint32_t hash) { return buckets_[hash & (buckets_.size() - 1)]; }
  void Grow();
  void Link(Plan& plan);
  void Unlink(Plan& plan);

  std::vector<Ref<Plan>> buckets_;  // as many as a power of two, or none
  std::size_t size_ = 0;
  Plan* latest_ = nullptr;
  Plan* oldest_ = nullptr;
  std::size_t capacity_ = 256;
};

/// The plan of a formula, and the formula for the trace where several texts share the
/// plan; otherwise that is the plan's.
struct PreparedPlan {
  Ref<Plan> plan;
  std::optional<Text> expression;

  const Text* Expression() const { return expression ? &*expression : nullptr; }
};

/// Makes the plans of formula texts, keeps the latest of them, and knows whether a
/// plan may still be evaluated.
class Plans {
 public:
  explicit Plans(const Symbols& symbols) : symbols_(symbols), lexer_(symbols) {}

  /// The plan of a formula: checked, converted, its names looked up and its
  /// constants bound as the tables are now, and so current. `locals` may be null.
  Ref<Plan> Get(TextView formula, const Ref<Campos>& locals);
  /// The same of a formula as its host gave it, which may hold carriage returns.
  PreparedPlan Prepare(const Text& formula, const Ref<Campos>& locals);
  /// The same of a text that its host may hand in again.
  PreparedPlan Prepare(SharedText& formula, const Ref<Campos>& locals);
  /// The plan of such a text that came before, known by its address, if it is ready, or
  /// null. It saves two thirds of the time of a short formula evaluated again.
  const Ref<Plan>* Recent(const SharedText& formula, const Campos* locals) const {
    const RecentText& recent = recent_[RecentIndex(formula)];
    const bool is_same = recent.text.get() == &formula;
    return is_same && IsReady(*recent.plan, Version(locals)) ? &recent.plan : nullptr;
  }
  /// The same for a plan that the cache does not keep.
  Ref<Plan> MakeFor(Text formula, const Ref<Campos>& locals);
  /// The plan of a postfix Collection, whose items are looked up as they are.
  Ref<Plan> MakeOfItems(const Collection& items, const Ref<Campos>& locals) const;

  NamesVersion Version(const Campos* locals) const { return VersionOfNames(symbols_, locals); }
  bool IsCurrent(const Plan& plan, const Campos* locals) const {
    return plan.IsCurrent(Version(locals));
  }
  /// Whether a plan that was kept may be evaluated: it is current, and no evaluation of
  /// it, which would keep its constants, is under way. Its constants are bound then.
  bool IsReady(Plan& plan, const NamesVersion& now) const {
    if (plan.evaluations > 0 || !plan.IsCurrent(now)) return false;
    return !plan.postfix.has_constants || BindConstants(plan, now);
  }
  /// Looks the names of a plan up again when they may stand for something else: nothing
  /// in it leads to a record that is gone. It is no current plan any more then.
  void KeepCurrent(Plan& plan, const Campos* locals) const {
    if (!IsCurrent(plan, locals)) LookUpAgain(plan, locals);
  }
  void LookUpAgain(Plan& plan, const Campos* locals) const;

  Lexer& GetLexer() { return lexer_; }
  std::size_t Capacity() const { return cache_.Capacity(); }
  /// How many plans are kept; 0 for none.
  void LetCapacity(std::size_t capacity) { cache_.LetCapacity(capacity); }

 private:
  Ref<Plan> Make(TextView formula, const Ref<Campos>& locals);
  void Compile(Plan& plan, TextView formula, const Ref<Campos>& locals);
  Ref<Plan> EmptyPlan();
  bool BindConstants(Plan& plan, const NamesVersion& now) const;

  // A text of a host and its plan, which has neither faults nor constants.
  struct RecentText {
    Ref<SharedText> text;
    Ref<Plan> plan;
  };
  static constexpr std::size_t kRecent = 32;
  static std::size_t RecentIndex(const SharedText& formula) {
    return reinterpret_cast<std::uintptr_t>(&formula) / sizeof(SharedText) % kRecent;
  }

  const Symbols& symbols_;
  Lexer lexer_;
  PlanCache cache_;
  std::array<RecentText, kRecent> recent_;
  TokenList tokens_;  // of the formula that is being converted, kept for its memory
};

}  // namespace tovalin
