#pragma once

#include "review/rules_types.h"

namespace tovalin::review {

/// Tells of a call with more or fewer values in its brackets than the function takes.
void CheckCount(const Place& place, const BuiltinFunction& row,
                std::span<const AbstractValue> arguments);

/// Notes what few expect of a call: Redondear to tens, DESAJUSTAR at the left, letters of
/// a date pattern. Tells of a constant condition of IIF.
void CheckSurprises(const Place& place, const BuiltinFunction& row,
                    std::span<const AbstractValue> arguments);

/// The type of a function that gives one of its arguments.
OperandType ChosenType(const BuiltinFunction& row, std::span<const AbstractValue> arguments);

}  // namespace tovalin::review
