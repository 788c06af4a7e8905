#pragma once

#include <optional>
#include <span>

#include "review/abstract_value.h"
#include "review/repair.h"

// How what is found is mended: each gives the edits that make of the formula the one that
// was meant, or none where that cannot be told.

namespace tovalin::review {

/// Values that nothing joins: digits with commas become one number, neighbours a product.
std::optional<Repair> JoinedValues(const Source& source, std::span<const AbstractValue> values);

/// "3*-12" as "3*-(12)", "5-1*2" as "5 - 1 * 2".
std::optional<Repair> SeparatedOperator(const Source& source, std::uint32_t token);

/// "X BETWEEN 1 AND 5" as "X , 1 BETWEEN 5".
std::optional<Repair> BetweenWithComma(const Source& source, std::uint32_t token,
                                       const AbstractValue& low, const AbstractValue& high);

/// "A + B , 1 BETWEEN 5" as "(A + B) , 1 BETWEEN 5".
std::optional<Repair> BracketedTested(const Source& source, std::uint32_t between);

/// Every comparison beside an AND or OR in brackets. The first of them mends all.
Repair BracketedComparisons(const Source& source, std::uint32_t token);

/// The value as a number: "VAL( X )".
Repair AsNumber(const Source& source, const AbstractValue& value);

/// A text that reads as a date as "SERIEFECHA( 2025 , 12 , 31 )".
std::optional<Repair> AsDate(const Source& source, const AbstractValue& text);

/// A literal in place of another one.
Repair WithLiteral(const Source& source, std::uint32_t literal, TextView text);

/// A call with the values that its function takes: MAX of several nested, digits with
/// commas joined, SERIEFECHA for DATE with parts.
std::optional<Repair> RightCall(const Source& source, std::uint32_t token,
                                const BuiltinFunction& row,
                                std::span<const AbstractValue> arguments);

/// "Redondear( X , 2 )" as "VAL( FORMAT( X , '0.00' ) )".
std::optional<Repair> RoundedToDecimals(const Source& source, std::uint32_t token,
                                        std::span<const AbstractValue> arguments);

/// A call of another function with the first argument alone; `opener` ends in a blank.
std::optional<Repair> OnlyFirstArgument(const Source& source, std::uint32_t token,
                                        std::span<const AbstractValue> arguments, TextView opener);

}  // namespace tovalin::review
