#pragma once

#include "review/source.h"

namespace tovalin::review {

/// What a review knows of a value on the stack, without having evaluated anything.
struct AbstractValue {
  /// The tokens that it comes from; brackets around it included once they were looked at.
  std::uint32_t first = 0;
  std::uint32_t last = 0;
  OperandType type = OperandType::Any;
  /// The value itself where it is known to be always the same; of a text variable the
  /// present one.
  Variant value;
  bool is_constant = false;
  /// Something in it was told already, so that nothing that follows from it is.
  bool is_doubtful = false;
  /// The operator that gave it from other values than the ones beside it, or kNone.
  std::uint32_t misplaced = kNone;

  bool IsText() const { return type == OperandType::Text; }
  /// A text whose characters are known, and which reads as a number or does not.
  bool IsKnownText() const { return IsText() && value.Is(Subtype::String); }
  bool ReadsAsNumber() const;
  bool ReadsAsDate() const;
  /// A text that is known to read as no number.
  bool IsNoNumber() const { return IsKnownText() && !ReadsAsNumber(); }
};

/// The value of a variable or constant, by what it holds, else by its data type; Any for
/// what a formula gives.
AbstractValue ValueOfRecord(const Campo& record);

/// A value that is always the same.
AbstractValue ConstantValue(Variant value);

/// Any of two, or the type of both.
OperandType CommonType(OperandType left, OperandType right);

/// What an operator gives for such operands.
OperandType ResultType(const Operator& row, const AbstractValue& left, const AbstractValue& right);

/// The result of a function or an operator for constant values, computed by the row's own
/// code; not a constant where that raises, or gives a long text.
void Fold(AbstractValue& result, const Operator& row,
          std::span<const AbstractValue* const> operands);
void Fold(AbstractValue& result, const BuiltinFunction& row,
          std::span<const AbstractValue> arguments);

/// Whether a constant condition holds; none where it is no condition.
std::optional<bool> Truth(const AbstractValue& condition);

}  // namespace tovalin::review
