#pragma once

#include <array>
#include <deque>
#include <optional>
#include <vector>

#include "evaluator/dependencies.h"
#include "evaluator/formula_variables.h"
#include "evaluator/operators.h"
#include "evaluator/plan_store.h"
#include "tovalin/evaluador.h"

namespace tovalin {

/// The faults of one formula with the two texts that their spans lead through.
struct FaultReport {
  Text host_text;  // as the host gave it
  Text text;       // as it was checked
  std::vector<Fault> faults;
};

/// Walks plans with a stack of values, computes formula variables on the way, and
/// hands unknown functions to the evaluator's host.
class Engine {
 public:
  /// What a walk leaves: the value at the bottom of the stack, and how many there
  /// were.
  struct Outcome {
    Variant value;
    std::size_t left = 0;
  };

  Engine(Evaluador& owner, const Symbols& symbols, PlanStore& plans, bool& close_stack)
      : owner_(owner),
        symbols_(symbols),
        plans_(plans),
        dependencies_(symbols, plans),
        close_stack_(close_stack) {}

  /// A formula ready to be walked, and its text for the trace where several texts
  /// share the plan; otherwise that is the plan's.
  struct Prepared {
    Ref<Plan> plan;
    std::optional<Text> expression;

    const Text* Expression() const { return expression ? &*expression : nullptr; }
  };

  /// One evaluation as the host sees it. Within the outermost one each formula
  /// variable is computed at most once, and at its end those that depend on what
  /// was computed are too. An evaluation that a handler starts goes by what was
  /// computed already, unless a value was written since: a host that sums over
  /// rows gets a new value for each row.
  class Calculation {
   public:
    Calculation(Engine& engine, Ref<Campos> locals);
    ~Calculation();
    Calculation(const Calculation&) = delete;
    Calculation& operator=(const Calculation&) = delete;
    /// Walks one plan of this evaluation, whose numeric program gave up or is none.
    /// Throws whatever the walk raises.
    Outcome Walk(const Ref<Plan>& plan);
    /// Has what depends on `record` computed: now, or by the outermost evaluation
    /// at its end.
    void Touch(const Ref<Campo>& record);
    /// A formula variable was computed: what depends on it is due at the end.
    void NoteComputed(const Ref<Campo>& record) {
      if (values_changed_)
        NoteChanged(record);
      else
        outermost_.touched_.push_back(record);
    }

   private:
    friend class Engine;
    friend class FormulaChain;
    using Records = std::vector<Ref<Campo>>;

    // Values of the tables and of the local variables as they were at a moment.
    struct ValuesStamp {
      std::uint64_t values = 0;
      std::uint64_t locals = 0;
      friend bool operator==(const ValuesStamp&, const ValuesStamp&) = default;
    };

    ValuesStamp StampValues() const;
    void NoteChanged(const Ref<Campo>& record);
    void Finish();
    void ComputeDependants(const Records& roots);
    void ComputeAgain(const Records& roots, std::size_t before);
    bool TryDependant(const Ref<Campo>& record);

    // First, so that it goes last: code of the host may drop its last Ref on the
    // evaluator.
    Ref<Object> alive_;
    Engine& engine_;
    Ref<Campos> locals_;
    Calculation* outer_;
    Calculation& outermost_;
    FormulaMarks own_marks_;
    FormulaMarks* marks_;
    ValuesStamp values_;  // when it began
    NamesStamp names_;    // the same, of the tables
    // Of the outermost: whose dependants are due. A host that has written a value since
    // gets those that were computed before once more.
    Records touched_;
    Records changed_;
    std::size_t changed_at_ = 0;  // the next formula when the last of them changed
    bool finishing_ = false;
    bool values_changed_ = false;  // since the outermost evaluation began
  };

  /// The outcome of a plan of numbers alone, if its program gets through: it reads
  /// no formula variable and calls no handler, and so needs no Calculation. The plan must
  /// be current.
  static std::optional<Outcome> RunNumeric(const Plan& plan);

  /// Looks up or makes the plan of a formula text.
  Prepared Prepare(const Text& formula, const Ref<Campos>& locals);
  /// The same for a text that a host may hand in again and again.
  Prepared Prepare(SharedText& formula, const Ref<Campos>& locals);
  /// The plan of a shared text that a host handed in before, known by its address,
  /// or null.
  const Ref<Plan>* Recent(const SharedText& formula, const Campos* locals) const;
  /// The same for a plan of its own, which the plan store does not keep.
  Ref<Plan> PrepareApart(const Text& formula, const Ref<Campos>& locals);
  Text ReplaceReferences(const Text& formula, const Campos* locals);
  /// Whether the names of a plan stand for what they stood for when it was made.
  bool IsCurrent(const Plan& plan, const Campos* locals) const {
    return plan.stamp == StampNames(symbols_, locals);
  }
  /// Looks the names of a plan up again when they may stand for something else: nothing
  /// in it leads to a record that is gone.
  void KeepCurrent(Plan& plan, const Campos* locals) const {
    if (!IsCurrent(plan, locals)) LookUpAgain(plan, symbols_, locals);
  }

  std::vector<FaultReport>& Reports() { return reports_; }
  void ForgetReports() {
    if (!reports_.empty()) DropReports();
  }
  void UseClock(HostClock::Function clock) { clock_.Use(std::move(clock)); }

 private:
  friend class FormulaChain;
  struct Level;

  void DropReports();
  Outcome Walk(Plan& plan, const Ref<Campos>& locals);
  void Step(Plan& plan, std::size_t index, const Ref<Campos>& locals, ValueStack& stack);
  void Take(const Item& item, const Ref<Campos>& locals, ValueStack& stack);
  void CallBuiltin(const BuiltinFunction& function, ValueStack& stack);
  void CallHost(const Ref<Campo>& function, ValueStack& stack);
  Ref<Plan> FormulaPlan(Campo& record, const Ref<Campos>& locals);
  Ref<Plan> FormulaPlanAgain(Campo& record, const Ref<Campos>& locals);
  bool CallsHost() const { return owner_.Evaluate.HasHandlers() || clock_.IsHosts(); }
  bool NeedsComputing(const Campo& record) const;
  bool MustCompute(const Campo& record) const;

  // A formula text of a host and its plan, which is used while the stamp holds.
  struct RecentText {
    Ref<SharedText> text;
    Ref<Plan> plan;
  };
  static constexpr std::size_t kRecent = 32;
  static std::size_t RecentPlace(const SharedText& formula) {
    return reinterpret_cast<std::uintptr_t>(&formula) / sizeof(SharedText) % kRecent;
  }
  static constexpr int kDeepest = 1000;

  Evaluador& owner_;
  const Symbols& symbols_;
  PlanStore& plans_;
  DependencyIndex dependencies_;
  bool& close_stack_;
  HostClock clock_;
  std::vector<FaultReport> reports_;
  std::array<RecentText, kRecent> recent_;
  FormulaPlans formula_plans_;
  std::deque<ValueStack> stacks_;  // one for each walk, kept for its memory
  std::size_t walks_ = 0;          // under way
  Calculation* calculation_ = nullptr;
  int depth_ = 0;  // of walks, and of formula variables that wait for others
};

}  // namespace tovalin
