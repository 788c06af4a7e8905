#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "evaluator/plan.h"
#include "frame/settings/live_trace.h"
#include "tovalin/settings.h"

namespace tovalin {

/// The trace of the last evaluation: its expression, postfix text, result and the
/// number of values that it left, under application "Evaluador", section
/// "Posfijo". It goes to the process's LiveTrace, or to the store that a host put in
/// place. Nothing is raised: what cannot be written is left out.
class Trace {
 public:
  /// Before an evaluation, so that the formula is there when the host does not survive it.
  /// `expression` is shown in place of the plan's text, unless it is null.
  void Begin(const Ref<Plan>& plan, const Text* expression) noexcept;
  /// After an evaluation.
  void End(const Ref<Plan>& plan, const Text* expression, const Variant& result,
           std::size_t left) noexcept;

  void UseStore(Ref<SettingsStore> store);
  /// Whether code of the host keeps the trace: it may call the evaluator again.
  bool UsesStore() const { return static_cast<bool>(store_); }

 private:
  /// Whether the formula is the one that was shown last: not if the text has no plan to
  /// itself, or a handler evaluated another one.
  bool IsShown(const Ref<Plan>& plan, const Text* expression) const {
    return !expression && shown_ == plan && shown_version_ == plan->trace_version;
  }
  bool ShowFormula(const Ref<Plan>& plan, const Text* expression, Ref<Plan>& former);
  bool ShowResult(const Variant& result, std::size_t left);
  void Put(const LiveChanges& changes, std::size_t same);
  void Save(const LiveChanges& changes);
  void Forget();

  Ref<SettingsStore> store_;
  bool is_saving_ = false;  // in the store: what it evaluates leaves no trace
  LiveTrace live_;
  // What was shown last: the plan, if with its own expression, and the version of its
  // postfix text.
  Ref<Plan> shown_;
  std::uint32_t shown_version_ = 0;
  std::uint32_t last_version_ = 0;
  std::optional<std::uint64_t> shown_bits_;                // of the Double that is the result
  std::size_t shown_left_ = static_cast<std::size_t>(-1);  // and the number of values
  Text result_;
  Text left_;
  Text postfix_;  // being made, kept for its memory
};

}  // namespace tovalin
