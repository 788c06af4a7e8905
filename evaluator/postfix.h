#pragma once

#include <cstdint>
#include <vector>

#include "evaluator/lexer.h"

namespace tovalin {

enum class ItemKind : std::uint8_t {
  Number,
  Operator,      // `record` is its row of the operator table
  Variable,      // `record` holds the value and the formula
  Constant,      // its HeldValue is what the constant held when the formula was converted
  Builtin,       // `builtin` is its row of the built-ins, `record` that of the function table
  HostFunction,  // `record` is its row of the function table
  Literal,       // its HeldValue is the text
  Value,         // its HeldValue as it stands: what a host put into a postfix Collection
  Text,          // nothing that is known: pushed as text
};

/// One item of a postfix sequence. It names its text by a span. Its
/// record is good while the names stand for the same, which they do not once a record
/// is gone.
struct Item {
  ItemKind kind = ItemKind::Text;
  OperatorCode operator_code = OperatorCode::Unknown;
  std::uint8_t builtin = 0;
  std::uint32_t start = 0;
  std::uint32_t length = 0;
  union {
    double number = 0;
    Campo* record;
    std::size_t held;  // the place of the HeldValue
  };

  bool HasRecord() const {
    return kind == ItemKind::Operator || kind == ItemKind::Variable || kind == ItemKind::Builtin ||
           kind == ItemKind::HostFunction;
  }
  bool HoldsValue() const {
    return kind == ItemKind::Constant || kind == ItemKind::Literal || kind == ItemKind::Value;
  }
};

/// A value that stands in the plan itself.
struct HeldValue {
  Variant value;
  Campo* constant = nullptr;  // of a Constant, while the names stand for the same
  bool is_quoted = false;     // it is text, and stands as a literal
};

/// A formula in postfix order.
struct Postfix {
  Text text;  // of the formula, without carriage returns
  std::vector<Item> items;
  std::vector<HeldValue> held;
  bool has_constants = false;
  bool calls_host = false;  // may call: it has a host function or a formula variable

  TextView Span(const Item& item) const { return TextView(text).substr(item.start, item.length); }
  const Variant& ValueOf(const Item& item) const { return held[item.held].value; }
};

/// Converts checked tokens to postfix items, appended to `postfix`, whose text must
/// become that of the tokens. Operators are ordered by the priorities of their
/// records; every level, "^" included, groups from the left.
void ConvertToPostfix(TokenList& list, Postfix& postfix);

/// The items as one text, each followed by a blank.
Text PostfixText(const Postfix& postfix);
/// The same at the end of `text`.
void AppendPostfixText(Text& text, const Postfix& postfix);
/// The items as a host sees them: texts, and records for constants.
Ref<Collection> PostfixItems(const Postfix& postfix);

/// Adds the item that a postfix Collection of a host holds.
void AppendHostItem(Postfix& postfix, const Variant& value, const Symbols& symbols,
                    const Campos* locals);

/// Looks the names up again, as the tables are now: what an evaluation has passed too,
/// so that the items can be shown.
void LookUpAgain(Postfix& postfix, const Symbols& symbols, const Campos* locals);

/// Gives the constants the values that they have now. False when the postfix text is
/// another one then. The former values are destroyed last; an object among them may
/// change the tables.
bool BindConstants(Postfix& postfix);

}  // namespace tovalin
