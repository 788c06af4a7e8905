#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "evaluator/language.h"

namespace tovalin {

/// The values that a formula has pushed, the top at the end.
using ValueStack = std::vector<Variant>;

/// Pops the top value, normalised: text loses its double quotes, and text
/// that reads as a number grouped by thousands becomes that Double. Numbers
/// are taken as they are. Empty from an empty stack.
Variant Pop(ValueStack& stack);

/// A value as Pop gives it.
Variant Normalised(Variant value);
/// Whether a text is so already.
bool IsNormalised(TextView text);
/// Whether a value is so already.
inline bool IsNormalised(const Variant& value) {
  if (value.IsByReference()) return false;
  return !value.Is(Subtype::String) || value.AsSharedText().is_plain ||
         IsNormalised(TextView(value.AsText()));
}

/// Whether that is so without a look at its characters.
inline bool IsKnownNormalised(const Variant& value) {
  return !value.Is(Subtype::String) || (!value.IsByReference() && value.AsSharedText().is_plain);
}

/// The top `count` values of the stack as operands: normalised in place, with Empty
/// in front where there are fewer.
std::span<Variant> TopOperands(ValueStack& stack, std::size_t count);
/// Puts a value in the place of the top `count`, which are there.
void ReplaceTop(ValueStack& stack, std::size_t count, Variant result);

/// Applies an operator to the top of the stack. With a single value it is unary,
/// with none it pushes Empty. Raises kObjectError for an operator without a meaning.
void ApplyOperator(OperatorCode code, ValueStack& stack);

}  // namespace tovalin
