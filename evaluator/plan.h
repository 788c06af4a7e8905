#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "evaluator/builtins.h"
#include "evaluator/numeric_program.h"
#include "evaluator/operators.h"
#include "evaluator/symbols.h"
#include "evaluator/token.h"

namespace tovalin {

enum class ItemKind : std::uint8_t {
  Number,
  Operator,
  Variable,  // `record` holds the value and the formula
  Constant,  // `value` is what the constant held when the formula was converted
  Builtin,
  HostFunction,  // `record` is its row of the function table
  Literal,       // `value` is the text
  Value,         // `value` as it stands: what a host put into a postfix Collection
  Text,          // nothing that is known: pushed as text
};

/// One item of a postfix sequence. It names its text by a span of the plan's.
struct Item {
  ItemKind kind = ItemKind::Text;
  OperatorCode operator_code = OperatorCode::Unknown;
  std::uint32_t start = 0;
  std::uint32_t length = 0;
  union {
    double number = 0;
    const Builtin* builtin;
  };
  Ref<Campo> record;
  Variant value;
  bool quoted = false;  // of a Constant: it is text, and stands as a literal
};

/// A formula converted for walking: made once, walked many times, and made anew
/// when its names may stand for something else.
struct Plan {
  Text text;  // the formula, without carriage returns
  std::vector<Item> items;
  std::vector<Fault> faults;  // with any, there are no items
  NamesStamp stamp;
  Ref<Campos> locals;  // pins the address in the stamp
  // What the trace shows, in UTF-8: made when it is first shown, and again when a
  // constant has changed the postfix text.
  std::string trace_expression;
  std::string trace_postfix;
  int trace_edition = 0;  // 0: not made yet
  bool has_constants = false;
  std::optional<NumericProgram> numeric;  // of a plan of numbers alone
  int walks = 0;                          // under way
  ReferenceCount references;

  TextView Span(const Item& item) const { return TextView(text).substr(item.start, item.length); }
};

/// Converts checked tokens to postfix items, appended to `plan`, whose text must
/// be that of the tokens. Operators wait on a stack by the priorities of their
/// records; every level, "^" included, groups from the left.
void ConvertToPostfix(const TokenList& list, Plan& plan);

/// The items as one text, each followed by a blank.
Text PostfixText(const Plan& plan);
/// The items as a host sees them: texts, and records for constants.
Ref<Collection> PostfixItems(const Plan& plan);

/// Adds the item that a postfix Collection of a host holds.
void AppendHostItem(Plan& plan, const Variant& value, const Symbols& symbols, const Campos* locals);

/// Looks the names of `plan` up again from item `from` on, as the tables are now.
void ClassifyAgain(Plan& plan, std::size_t from, const Symbols& symbols, const Campos* locals);

/// Gives the constants of a plan the values that they have now. Whether the
/// postfix text is another one then.
bool BindConstants(Plan& plan);

}  // namespace tovalin
