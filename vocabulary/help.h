#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "tovalin/text.h"

// What those who write formulas read of each function, operator and constant, in Spanish.
// Everything else about them stands in the tables of the evaluator.

namespace tovalin::vocabulary {

/// What functions and operators are listed under.
enum class Group : std::uint8_t {
  Text,
  Number,
  Date,
  Choice,
  Trigonometry,
  Arithmetic,
  Comparison,
  Logic,
};
TextView NameOf(Group group);

/// An example and the text of its value, where `Vacio` is a variable that holds Null and
/// the clock stands at 5 February 2024, 14:30:15. The value is none where it is the
/// machine's.
struct Example {
  TextView formula;
  TextView value;
};

struct FunctionHelp {
  TextView word;  // with its bracket, as in the table of functions
  Group group;
  std::array<TextView, 3> parameters;  // what each means
  TextView text;
  Example example;
};

struct OperatorHelp {
  TextView literal;
  Group group;
  TextView signature;
  std::array<TextView, 3> parameters;  // their names in the signature
  TextView text;
  Example example;
};

struct ConstantHelp {
  TextView name;
  TextView text;
  Example example;
};

/// In the order in which a page shows them: by groups.
std::span<const FunctionHelp> FunctionHelps();
std::span<const OperatorHelp> OperatorHelps();

/// The row of a word, without regard to case, or null.
const FunctionHelp* FindFunctionHelp(TextView word);
const OperatorHelp* FindOperatorHelp(TextView literal);
const ConstantHelp* FindConstantHelp(TextView name);

}  // namespace tovalin::vocabulary
