#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "evaluator/plan.h"
#include "frame/live_section.h"
#include "tovalin/settings.h"

namespace tovalin {

/// The trace of the last evaluation: its expression, postfix text, result and the
/// number of values that it left, under application "Evaluador", section
/// "Posfijo". It goes to a section of the settings file that stays mapped, or to
/// the store that a host put in place. What cannot be written is left out.
class Trace {
 public:
  Trace();

  /// Before a walk, so that the formula is there when the host does not survive it.
  /// `expression` is shown in place of the plan's text, unless it is null.
  void Begin(const Ref<Plan>& plan, const Text* expression);
  /// After an evaluation.
  void End(const Ref<Plan>& plan, const Text* expression, const Variant& result, std::size_t left);

  void UseStore(Ref<SettingsStore> store);
  /// Whether code of the host keeps the trace: it may call the evaluator again.
  bool UsesStore() const { return static_cast<bool>(store_); }

 private:
  [[nodiscard]] Ref<Plan> ShowFormula(const Ref<Plan>& plan, const Text* expression);
  void ShowResult(const Variant& result, std::size_t left);
  void Show(std::size_t part, std::string_view lines);
  void AddResult(std::string& lines, const Variant& result) const;
  void Save(std::string lines);
  void MakeLines(Plan& plan);

  Ref<SettingsStore> store_;
  bool is_saving_ = false;  // in the store: what it evaluates leaves no trace
  LiveSection section_;
  // What stands in the section now: the plan, if with its own expression, and the
  // edition of its postfix text.
  Ref<Plan> shown_;
  std::uint32_t shown_edition_ = 0;
  std::uint32_t last_edition_ = 0;
  std::optional<std::uint64_t> shown_bits_;                // of the Double that is the result there
  std::size_t shown_left_ = static_cast<std::size_t>(-1);  // and the number of values
  std::string left_line_;                                  // the line of that number
  std::string lines_;                                      // being made, kept for its memory
};

}  // namespace tovalin
