#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tovalin/variant.h"

namespace tovalin {

/// What an operator's literal computes.
enum class OperatorCode : std::uint8_t {
  Add,
  Subtract,
  Multiply,
  Divide,
  Power,
  TimesNegated,  // "*-"
  Negated,       // "-1*" and "*-1": a negation that stands between two operands
  Negating,      // "-1*" also negates the only value of a stack
  Concatenate,
  Less,
  LessOrEqual,
  Greater,
  GreaterOrEqual,
  Equal,
  Different,
  In,
  And,
  Or,
  Between,
  Unknown,  // an operator that a host added: it has no meaning here
};

OperatorCode CodeOf(TextView literal);

/// The values that a formula has pushed, the top at the end.
using ValueStack = std::vector<Variant>;

/// Takes the top value off, normalised: text loses its double quotes, and text
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

/// Applies an operator to the top of the stack. With a single value it is unary,
/// with none it pushes Empty.
void ApplyOperator(OperatorCode code, ValueStack& stack);

/// How many values an operator makes one of, or 0 when it does not.
std::size_t OperandsOf(OperatorCode code);
/// The value of an operator of two normalised operands; `left` may be used up.
Variant Combine(OperatorCode code, Variant& left, const Variant& right);
/// BETWEEN, the operator of three.
Variant IsBetween(const Variant& tested, const Variant& low, const Variant& high);

}  // namespace tovalin
