#include "evaluator/trace.h"

#include <bit>
#include <utility>

#include "frame/object/scoped_value.h"
#include "frame/settings/settings_store.h"
#include "frame/value/number_text.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

constexpr std::size_t kFormulaTexts = 2;

LiveEntry<TextView> Entry(TextView text) { return {text}; }

LiveChanges FormulaOf(const Plan& plan, const Text* expression) {
  LiveChanges changes;
  changes[kTraceExpression] = Entry(expression ? *expression : plan.postfix.text);
  changes[kTracePostfix] = Entry(plan.trace_postfix);
  return changes;
}

}  // namespace

// What is replaced goes last: it may be the host's last hold on the evaluator.
void Trace::UseStore(Ref<SettingsStore> store) {
  const Ref<Plan> former = std::exchange(shown_, nullptr);
  shown_bits_.reset();
  if (store && IsFileSettings(*store)) store = nullptr;
  std::swap(store_, store);
}

void Trace::Begin(const Ref<Plan>& plan, const Text* expression) noexcept {
  Ref<Plan> former;
  try {
    const bool is_shown = IsShown(plan, expression) || ShowFormula(plan, expression, former);
    if (is_shown && !store_ && live_.Holds()) return;
    Put(FormulaOf(*plan, expression), is_shown ? kFormulaTexts : 0);
  } catch (...) {
    Forget();
  }
}

void Trace::End(const Ref<Plan>& plan, const Text* expression, const Variant& result,
                std::size_t left) noexcept {
  Ref<Plan> former;
  try {
    const bool is_formula_shown =
        IsShown(plan, expression) || ShowFormula(plan, expression, former);
    const bool is_result_shown = ShowResult(result, left);
    if (is_formula_shown && is_result_shown && !store_ && live_.Holds()) return;
    LiveChanges changes = FormulaOf(*plan, expression);
    changes[kTraceResult] = Entry(result_);
    changes[kTraceLeft] = Entry(left_);
    Put(changes, !is_formula_shown ? 0 : is_result_shown ? kLiveTexts : kFormulaTexts);
  } catch (...) {
    Forget();
  }
}

void Trace::Put(const LiveChanges& changes, std::size_t same) {
  if (store_)
    Save(changes);
  else
    live_.Put(changes, same);
}

// Makes the next evaluation show everything.
void Trace::Forget() {
  shown_ = nullptr;
  shown_bits_.reset();
}

// False, as what is shown has changed.
bool Trace::ShowFormula(const Ref<Plan>& plan, const Text* expression, Ref<Plan>& former) {
  if (plan->trace_version == 0) {
    postfix_.clear();
    AppendPostfixText(postfix_, plan->postfix);
    plan->trace_postfix = postfix_;  // without spare capacity
    plan->trace_version = ++last_version_;
  }
  former = std::exchange(shown_, expression ? nullptr : plan);
  shown_version_ = plan->trace_version;
  return false;
}

// Whether the result is the one that was shown last. The text of one that comes again and
// again is made once.
bool Trace::ShowResult(const Variant& result, std::size_t left) {
  const double* number = result.IfDouble();
  const std::optional<std::uint64_t> bits =
      number ? std::optional(std::bit_cast<std::uint64_t>(*number)) : std::nullopt;
  if (bits && bits == shown_bits_ && left == shown_left_) return true;
  if (left != shown_left_) {
    left_.clear();
    AppendNumber(left_, static_cast<std::int64_t>(left));
  }
  shown_bits_ = bits;
  shown_left_ = left;
  result_.clear();
  try {
    if (number)
      AppendNumber(result_, *number);
    else if (!result.Is(Subtype::Null))
      result_ = ToText(result);
  } catch (const Error&) {
    // An object has no text.
  }
  return false;
}

void Trace::Save(const LiveChanges& changes) {
  if (is_saving_) return;
  const ScopedValue saving(is_saving_, true);
  const Ref<SettingsStore> store = store_;
  // Copies, since the store may lead to another evaluation.
  std::array<Text, kLiveTexts> texts;
  for (std::size_t key = 0; key < kLiveTexts; ++key)
    if (changes[key]) texts[key] = changes[key]->text;
  for (std::size_t key = 0; key < kLiveTexts; ++key)
    if (changes[key]) store->Save(kTraceApplication, kTraceSection, kTraceKeys[key], texts[key]);
}

}  // namespace tovalin
