#pragma once

#include <memory>
#include <vector>

#include "evaluator/check.h"
#include "evaluator/evaluate.h"
#include "evaluator/formula_variables.h"
#include "evaluator/trace.h"
#include "tovalin/evaluador.h"
#include "tovalin/formula.h"

// One calculation: an evaluation as the host sees it, with the formula variables that it
// reads and those that depend on them. And what it works on: what an Evaluador and a
// Formula hold.

namespace tovalin {

/// Within the outermost calculation each formula variable is computed at most once, and
/// at its end those that depend on what was computed are too. A calculation that a
/// handler starts goes by what was computed already, unless a value was written since: a
/// host that sums over rows gets a new value for each row.
class Calculation {
 public:
  Calculation(Evaluador::Core& core, Ref<Campos> locals);
  ~Calculation();
  Calculation(const Calculation&) = delete;
  Calculation& operator=(const Calculation&) = delete;

  /// Evaluates the items of one plan of this calculation. Raises what they raise.
  PlanResult EvaluateItems(const Ref<Plan>& plan);
  /// Has what depends on `record` computed: now, or by the outermost calculation
  /// at its end.
  void Touch(const Ref<Campo>& record);
  /// Computes a formula variable that was not, before it is read. Raises what it fails
  /// or has failed with.
  void ComputeIfNeeded(const Ref<Campo>& record);

 private:
  class Chain;
  using Records = std::vector<Ref<Campo>>;

  // The versions of the values in the tables and in the local variables.
  struct ValuesVersion {
    std::uint64_t tables = 0;
    std::uint64_t locals = 0;
    friend bool operator==(const ValuesVersion&, const ValuesVersion&) = default;
  };

  ValuesVersion CurrentValues() const;
  void NoteComputed(const Ref<Campo>& record);
  void NoteChanged(const Ref<Campo>& record);
  void Finish();
  void ComputeDependants(const Records& roots);
  void ComputeAgain(const Records& roots, std::size_t before);
  bool TryDependant(const Ref<Campo>& record);
  bool IsDue(const Campo& record) const;
  bool MustCompute(const Campo& record) const;
  Ref<Plan> PlanOf(Campo& record);
  Ref<Plan> KeptPlan(Campo& record);

  // First, so that it is released last: code of the host may drop its last Ref on the
  // evaluator.
  Ref<Object> alive_;
  Evaluador::Core& core_;
  Ref<Campos> locals_;
  Calculation* outer_;
  Calculation& outermost_;
  VisitedVariables own_visited_;
  VisitedVariables* visited_;
  ValuesVersion values_;  // when it began
  NamesVersion names_;    // the same, of the tables
  // Of the outermost: whose dependants are due. A host that has written a value since
  // gets those that were computed before once more.
  Records touched_;
  Records changed_;
  std::size_t changed_at_ = 0;  // the next formula when the last of them changed
  bool finishing_ = false;
  bool values_changed_ = false;  // since the outermost calculation began
};

/// Where formulas find their evaluator; emptied when the evaluator goes.
struct EvaluatorLink {
  Evaluador::Core* core = nullptr;
};

/// What an Evaluador holds.
class Evaluador::Core {
 public:
  explicit Core(Evaluador& owner)
      : owner(owner),
        plans(symbols),
        items(owner, plans, close_stack,
              [this](const Ref<Campo>& record) { calculation->ComputeIfNeeded(record); }),
        dependencies(symbols, plans.GetLexer()) {}

  Evaluador& owner;
  Symbols symbols;
  Plans plans;
  bool close_stack = false;
  Text description;
  Text expression;
  ItemEvaluator items;
  DependencyIndex dependencies;
  FormulaPlans formula_plans;
  Calculation* calculation = nullptr;  // the innermost under way
  std::vector<FaultReport> reports;    // of the last evaluation
  Trace trace;
  std::shared_ptr<EvaluatorLink> link = std::make_shared<EvaluatorLink>();

  /// Evaluates a plan as a calculation of its own.
  PlanResult Evaluate(const Ref<Plan>& plan, const Ref<Campos>& locals) {
    return EvaluatePlan(*plan, [&] { return Calculation(*this, locals).EvaluateItems(plan); });
  }

  /// Keeps the faults of a plan for LastError and Errores.
  void ReportFaults(const Text& host_text, const Plan& plan) {
    if (plan.faults) reports.push_back({host_text, plan.postfix.text, plan.Faults()});
  }
  void ForgetReports() {
    if (!reports.empty()) DropReports();
  }

 private:
  void DropReports();
};

/// What a Formula holds.
class Formula::Core {
 public:
  Core(std::shared_ptr<const EvaluatorLink> link, Text text, Ref<Campos> locals)
      : link_(std::move(link)), text_(std::move(text)), locals_(std::move(locals)) {
    PrepareAgain();
  }

  const Text& FormulaText() const { return text_; }
  const Ref<Campos>& Locals() const { return locals_; }
  /// The evaluator's core. Raises when it is gone.
  Evaluador::Core& Host() const {
    if (!link_->core) RaiseGone();
    return *link_->core;
  }
  /// Whether the plan is as the tables are now: if not, Current may run code of the host,
  /// which may drop its last Ref on the formula.
  bool IsCurrent() const {
    return plan_ && link_->core && link_->core->plans.IsCurrent(*plan_, locals_.get());
  }
  /// The plan as the tables are now. Raises when the evaluator is gone.
  const Ref<Plan>& Current() {
    if (!IsCurrent()) PrepareAgain();
    return plan_;
  }
  /// The value of the formula, as the tables are now.
  PlanResult Evaluate() {
    const Ref<Plan>& plan = Current();
    Host().ForgetReports();
    return EvaluatePlan(*plan, [&] { return EvaluateItems(); });
  }

 private:
  [[noreturn]] static void RaiseGone();
  void PrepareAgain();
  PlanResult EvaluateItems();

  std::shared_ptr<const EvaluatorLink> link_;
  Text text_;
  Ref<Campos> locals_;
  Ref<Plan> plan_;
};

}  // namespace tovalin
