#pragma once

#include <deque>
#include <functional>
#include <vector>

#include "evaluator/dependencies.h"
#include "evaluator/formula_marks.h"
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

  /// One evaluation as the host sees it: within it each formula variable is
  /// computed at most once, and at its end those that depend on them are too.
  /// Evaluations that a handler starts are calculations of their own.
  class Calculation {
   public:
    Calculation(Engine& engine, Ref<Campos> locals);
    ~Calculation();
    /// Walks one plan of this evaluation. Throws whatever the walk raises.
    Outcome Walk(const Ref<Plan>& plan);
    /// Computes what depends on `roots`.
    void ComputeDependants(const std::vector<Ref<Campo>>& roots);

   private:
    friend class Engine;
    void ComputeDependantsOfComputed();

    Engine& engine_;
    Ref<Campos> locals_;
    FormulaMarks marks_;
    Calculation* outer_;
  };

  /// The formula with "@Name" replaced, without carriage returns, and its plan.
  Ref<Plan> Prepare(const Text& formula, const Ref<Campos>& locals);
  /// The same for a plan of its own, which the plan store does not keep.
  Ref<Plan> PrepareApart(const Text& formula, const Ref<Campos>& locals);
  Text ReplaceReferences(const Text& formula, const Campos* locals) const;

  std::vector<FaultReport>& Reports() { return reports_; }
  const std::function<Date()>& Clock() const { return clock_; }
  void UseClock(std::function<Date()> clock) { clock_ = std::move(clock); }

 private:
  struct Level;

  Outcome Walk(Plan& plan, const Ref<Campos>& locals);
  void Step(Plan& plan, std::size_t index, const Ref<Campos>& locals, ValueStack& stack);
  void PushVariable(const Item& item, const Ref<Campos>& locals, ValueStack& stack);
  void CallBuiltin(const Builtin& builtin, ValueStack& stack);
  void CallHost(const Ref<Campo>& function, ValueStack& stack);
  void ComputeFormula(const Ref<Campo>& record, const Ref<Campos>& locals);
  bool NeedsComputing(const Campo& record) const;

  static constexpr int kDeepest = 1000;

  Evaluador& owner_;
  const Symbols& symbols_;
  PlanStore& plans_;
  DependencyIndex dependencies_;
  bool& close_stack_;
  std::function<Date()> clock_;
  std::vector<FaultReport> reports_;
  std::deque<ValueStack> stacks_;  // one for each level, kept for its memory
  Calculation* calculation_ = nullptr;
  int depth_ = 0;
};

}  // namespace tovalin
