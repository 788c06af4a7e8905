#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <span>

#include "evaluator/operators.h"
#include "tovalin/clock.h"
#include "tovalin/text.h"
#include "tovalin/variant.h"

namespace tovalin {

/// What a built-in function may ask of its surroundings.
struct FunctionContext {
  const HostClock& clock;
};

/// Computes a function of as many arguments as its row has parameters, in the order
/// written. A wrong argument raises the errors of its conversion (13, 6), or 5
/// where the value is of the right type but out of the function's range.
using FunctionCall = Variant (*)(std::span<const Variant> arguments,
                                 const FunctionContext& context);

struct FunctionParameter {
  TextView name;
  OperandType type = OperandType::Any;
};

/// The parameters of a function, from the bracket on.
struct FunctionParameters {
  static constexpr std::size_t kMost = 3;

  constexpr FunctionParameters(std::initializer_list<FunctionParameter> list) {
    for (const FunctionParameter& parameter : list) slots[count++] = parameter;
  }
  std::array<FunctionParameter, kMost> slots{};
  std::size_t count = 0;
};

/// Which argument makes the whole result Null when it is Null.
enum class NullArgument : std::uint8_t { None, First, Last };

/// Everything about one built-in function. The texts of the table are spelled as they
/// are deliberately, to the blank: formula editors of hosts look for them.
struct BuiltinFunction {
  constexpr BuiltinFunction(std::uint8_t place, TextView word, TextView source_name,
                            TextView description, TextView syntax, FunctionParameters parameters,
                            OperandType result, FunctionCall call,
                            NullArgument null_argument = NullArgument::None,
                            NumericCode numeric = NumericCode::None, bool is_pure = true)
      : place(place),
        word(word),
        source_name(source_name),
        description(description),
        syntax(syntax),
        parameters(parameters),
        result(result),
        call(call),
        null_argument(null_argument),
        numeric(numeric),
        is_pure(is_pure) {}

  std::uint8_t place;    // in the function table, from 1; 0: a host has to add the name
  TextView word;         // its name there, with the bracket
  TextView source_name;  // the bare word
  TextView description;
  TextView syntax;
  FunctionParameters parameters;
  OperandType result;
  FunctionCall call;           // null: the function is the host's
  NullArgument null_argument;  // makes the result Null
  NumericCode numeric;         // on doubles
  bool is_pure;                // the result depends on the arguments alone

  std::span<const FunctionParameter> Parameters() const {
    return std::span(parameters.slots).first(parameters.count);
  }
  /// Whether an upper-case word without bracket is its name.
  bool Matches(TextView upper_name) const;
  /// The result for these arguments, Null where the row says so.
  Variant Call(std::span<const Variant> arguments, const FunctionContext& context) const;
};

namespace functions {

// The rows of each family, beside their code.
std::span<const BuiltinFunction> OfText();     // functions_text.cc
std::span<const BuiltinFunction> OfNumbers();  // functions_number.cc
std::span<const BuiltinFunction> OfDates();    // functions_date.cc
std::span<const BuiltinFunction> OfLogic();    // functions_logic.cc

}  // namespace functions

/// Every built-in function: those of the function table in its order, then the others.
std::span<const BuiltinFunction* const> BuiltinFunctions();

/// The place of a function in that list, and back.
std::uint8_t FunctionIndex(const BuiltinFunction& function);
const BuiltinFunction& FunctionAt(std::uint8_t index);

/// The function of that name that is computed here, compared exactly against a word
/// in upper case without bracket, or null.
const BuiltinFunction* FindFunction(TextView upper_name);

}  // namespace tovalin
