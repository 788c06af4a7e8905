#include <algorithm>
#include <string>

#include "review/evaluation.h"
#include "review/rules_calls.h"
#include "review/rules_types.h"

namespace tovalin::review {

void Evaluation::EvaluateCall(std::uint32_t token) {
  const auto inside = std::ranges::find_if(
      stack_.rbegin(), stack_.rend(), [token](const auto& value) { return value.first < token; });
  Values arguments(std::make_move_iterator(inside.base()), std::make_move_iterator(stack_.end()));
  stack_.erase(inside.base(), stack_.end());
  for (AbstractValue& argument : arguments) WithBrackets(argument);

  AbstractValue result;
  const BuiltinFunction* row = FunctionRow(source_.At(token));
  if (row) {
    const Place place{source_, findings_, token};
    result.type = row->result;
    result.is_doubtful = arguments.size() != row->Parameters().size() ||
                         std::ranges::any_of(arguments, &AbstractValue::is_doubtful);
    if (arguments.size() != row->Parameters().size()) {
      CheckCount(place, *row, arguments);
    } else {
      CheckArguments(place, *row, arguments);
      CheckSurprises(place, *row, arguments);
      if (row->result == OperandType::Any) result.type = ChosenType(*row, arguments);
      if (!result.is_doubtful) Fold(result, *row, arguments);
    }
  }
  if (source_.At(token).record && !source_.At(token).builtin) CheckAnswered(token);
  const std::uint32_t close = source_.Match(token);
  Push(std::move(result), token, close == kNone ? source_.Count() - 1 : close);
}

// A function whose name a host has added without a bracket takes what was computed last.
void Evaluation::EvaluateBareFunction(std::uint32_t token) {
  if (!source_.At(token).builtin) CheckAnswered(token);
  AbstractValue result;
  result.is_doubtful = true;
  const BuiltinFunction* row = FunctionRow(source_.At(token));
  std::size_t count = row ? row->Parameters().size() : 0;
  std::uint32_t first = token;
  for (; count > 0 && !stack_.empty(); --count) first = std::min(first, Pop().first);
  Push(std::move(result), first, token);
}

void Evaluation::CheckAnswered(std::uint32_t token) {
  if (surroundings_.has_handlers) return;
  findings_.Add(Rule::NobodyAnswers, source_.SpanOf(token),
                {Text(Trim(source_.At(token).record->Name()))});
}

}  // namespace tovalin::review
