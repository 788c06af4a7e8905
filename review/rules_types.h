#pragma once

#include "review/abstract_value.h"
#include "review/findings.h"

namespace tovalin::review {

/// Where a rule looks, and where it tells what it finds.
struct Place {
  const Source& source;
  Findings& findings;
  std::uint32_t token;  // the operator or function
};

/// Tells of operands that an operator cannot take, or of which it computes something
/// that nobody means.
void CheckOperands(const Place& place, const Operator& row, const AbstractValue& left,
                   const AbstractValue& right);

/// Tells of a text where a number is needed.
void CheckNumber(const Place& place, const AbstractValue& value);

/// Tells of a text that is compared with a number, or by its order with a date.
void CheckComparison(const Place& place, OperatorCode code, const AbstractValue& left,
                     const AbstractValue& right);

/// Tells of arguments that a function's parameters do not take.
void CheckArguments(const Place& place, const BuiltinFunction& row,
                    std::span<const AbstractValue> arguments);

/// Tells of a condition that is always the same, and marks it as told.
void CheckCondition(const Place& place, AbstractValue& condition);

}  // namespace tovalin::review
