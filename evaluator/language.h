#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>

#include "tovalin/campos.h"
#include "tovalin/clock.h"
#include "tovalin/collection.h"
#include "tovalin/convert.h"
#include "tovalin/error.h"
#include "tovalin/text.h"
#include "tovalin/variant.h"

// The language of formulas: what an operator and a function is, and the tables of
// symbols that one evaluator knows.

namespace tovalin {

/// The operations on doubles that a numeric program has.
enum class NumericCode : std::uint8_t {
  None,  // no operation on doubles
  Load,  // pushes its operand
  Add,
  Subtract,
  Multiply,
  Divide,
  Power,
  TimesNegated,
  Less,
  LessOrEqual,
  Greater,
  GreaterOrEqual,
  Equal,
  Different,
  And,
  Or,
  Min,
  Max,
  Round,   // Redondear
  Negate,  // of the right operand, as Abs
  Abs,
  Choose,  // IIF
  Adjust,  // AjusteMedio
};

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

/// The built-in function that a function's name ("MEDIO(") stands for, or null.
const BuiltinFunction* FunctionOf(TextView function_name);

// How functions read their arguments. Every conversion is one of tovalin/convert.h,
// so that all functions answer the same mistake alike.
namespace functions {

using Arguments = std::span<const Variant>;

/// The text of any value, without a copy when the value is a text.
class TextArgument {
 public:
  explicit TextArgument(const Variant& value) {
    if (value.Is(Subtype::String)) {
      view_ = value.AsText();
    } else {
      own_ = ToText(value);
      view_ = own_;
    }
  }
  TextArgument(const TextArgument&) = delete;
  TextArgument& operator=(const TextArgument&) = delete;
  operator TextView() const { return view_; }
  TextView View() const { return view_; }

 private:
  Text own_;
  TextView view_;
};

/// A count of characters; raises 5 when it is negative.
inline std::size_t CountArgument(const Variant& value) {
  const std::int32_t count = ToLong(value);
  if (count < 0) Raise(Failure::InvalidArgument);
  return static_cast<std::size_t>(count);
}

}  // namespace functions

/// The characters that names must not contain, in the order of the vocabulary.
inline constexpr TextView kReservedCharacters = u"+-/*^();!#%&[]{}?~.,\\|<>=:@$";

/// What separates expressions.
inline constexpr TextView kSeparators = u"(),";

/// The tables of one evaluator and what else the reading of a formula depends on.
struct Symbols {
  Symbols();

  Ref<Campos> functions;
  Ref<Campos> variables;
  Ref<Campos> constants;
  Ref<Campos> operators;
  Ref<Collection> separators;
  Ref<Collection> special_characters;
  Text string_delimiter = u"'";
  /// Grows when a table or the delimiter is replaced: by more than all versions of
  /// the table, so that no sum of versions comes back.
  std::uint64_t replacements = 0;

  /// The variable of a name, else the constant, or null.
  Campo* Find(TextView name) const;
  /// Raises kObjectError with a line for each rule that a new name breaks.
  void Validate(TextView name) const;
  bool IsValid(TextView name) const { return Complaints(name).empty(); }

 private:
  Text Complaints(TextView name) const;
};

/// A number that grows with every change of the elements of the language. It is a
/// sum of counters that never shrink, so it stands still only when they all do.
inline std::uint64_t VocabularyVersion(const Symbols& symbols) {
  return symbols.replacements + symbols.functions->Version() + symbols.operators->Version() +
         symbols.operators->ValuesVersion();
}

/// What every name of a formula stood for at a moment. `locals` is kept by
/// whoever keeps the version, so that its address is not used again.
struct NamesVersion {
  static constexpr std::uint64_t kNever = static_cast<std::uint64_t>(-1);

  std::uint64_t names = kNever;  // of the vocabulary and all tables, a sum like the above
  const Campos* locals = nullptr;

  friend bool operator==(const NamesVersion&, const NamesVersion&) = default;
};

inline NamesVersion VersionOfNames(const Symbols& symbols, const Campos* locals) {
  const std::uint64_t names =
      VocabularyVersion(symbols) + symbols.variables->Version() + symbols.constants->Version();
  return {locals ? names + locals->Version() : names, locals};
}

/// The 19 operators with their priorities.
Ref<Campos> MakeOperators();
/// The 48 built-in functions.
Ref<Campos> MakeFunctions();
/// The ten constants, nine of them in the system list.
Ref<Campos> MakeConstants();
/// "(", ")" and ",".
Ref<Collection> MakeSeparators();
/// The 28 characters that a name must not contain.
Ref<Collection> MakeSpecialCharacters();

/// The record of a function for a table.
Ref<Campo> MakeFunction(const Text& name, const Text& source_name, const Text& description,
                        const Text& syntax);
/// The record of a variable or constant for a table.
Ref<Campo> MakeSymbol(const Text& name, const Variant& value, const Text& description,
                      std::int32_t data_type, const Text& formula = {});

}  // namespace tovalin
