#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "evaluator/numeric_operations.h"
#include "tovalin/variant.h"

namespace tovalin {

/// The operators in the order of the vocabulary.
enum class OperatorCode : std::uint8_t {
  Add,
  Subtract,
  Divide,
  Multiply,
  TimesNegated,  // "*-"
  Negating,      // "-1*": a negation that stands between two operands
  Negated,       // "*-1": the same
  Power,
  Concatenate,
  Greater,
  GreaterOrEqual,
  Less,
  LessOrEqual,
  Different,
  Equal,
  In,
  And,
  Or,
  Between,
  Unknown,  // an operator that a host added: it has no meaning here
};

/// What an operand, a parameter or a result is.
enum class OperandType : std::uint8_t { Any, Number, Text, Date, Logical };

/// Everything about one operator.
struct Operator {
  OperatorCode code;
  TextView literal;       // matched exactly
  std::int16_t priority;  // higher binds tighter; a host may change that of its table
  std::uint8_t operands;
  OperandType takes;
  OperandType gives;
  /// Computes the normalised operands, in the order written; may use them up.
  Variant (*compute)(std::span<Variant> operands);
  NumericCode numeric = NumericCode::None;
  bool negates_alone = false;  // with a single value on the stack
  bool keeps_left = false;     // the left operand stays on the stack, below the result
};

/// Every operator, in the order of the vocabulary.
std::span<const Operator> Operators();
/// The operator of that code, or null for Unknown.
const Operator* FindOperator(OperatorCode code);
/// The code of a literal, compared exactly.
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
