#pragma once

#include <memory>
#include <string>

#include "evaluator/engine.h"
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

  /// Before the walk, so that the formula is there when the host does not survive it.
  void Begin(const Engine::Prepared& prepared);
  /// After the walk.
  void End(const Engine::Prepared& prepared, const Variant& result, std::size_t left);

  void UseStore(Ref<SettingsStore> store);

 private:
  bool Shows(const Engine::Prepared& prepared) const;
  void MakeTexts(Plan& plan);
  void KeepResult(const Variant& result, std::size_t left);
  void Remember(const Engine::Prepared& prepared);
  void Write(std::size_t first, std::span<const std::string_view> values);

  Ref<SettingsStore> store_;
  LiveSection section_;
  // What stands in the section now: the plan, if with its own expression, and
  // the edition of its postfix text.
  Ref<Plan> shown_;
  int shown_edition_ = 0;
  int last_edition_ = 0;
  std::string result_;
  std::optional<std::uint64_t> number_bits_;  // of the Double that result_ is the text of
  std::string left_;
};

}  // namespace tovalin
