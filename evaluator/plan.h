#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "evaluator/functions.h"
#include "evaluator/numeric_program.h"
#include "evaluator/operators.h"
#include "evaluator/symbols.h"
#include "evaluator/token.h"

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

/// One item of a postfix sequence. It names its text by a span of the plan's. Its
/// record is good while the plan's stamp holds, which a record that is gone has
/// broken.
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
  Campo* constant = nullptr;  // of a Constant, while the plan's stamp holds
  bool is_quoted = false;     // it is text, and stands as a literal
};

/// A formula converted for walking: made once, walked many times, and made anew
/// when its names may stand for something else.
struct Plan {
  // What every walk asks stands in front.
  ReferenceCount references;
  std::uint16_t walks = 0;  // under way
  bool has_constants : 1 = false;
  bool came_again : 1 = false;  // asked for again after it was made
  bool calls_host : 1 = false;  // a walk may: a host function, or a formula variable
  std::uint32_t hash = 0;       // of the text
  std::uint32_t trace_edition = 0;
  NamesStamp stamp;
  NumericProgram numeric;  // of a plan of numbers alone
  std::vector<Item> items;
  std::unique_ptr<std::vector<Fault>> faults;  // null without any; with any, there are no items
  std::vector<HeldValue> held;
  std::vector<std::uint32_t> at_signs;  // as in the TokenList
  Ref<Campos> locals;                   // pins the address in the stamp
  Text text;                            // the formula, without carriage returns
  // The postfix text that the trace shows: made when it is first shown, which gives it
  // an edition other than 0, and again when a constant has changed it.
  Text trace_postfix;
  // Of the plan cache: the next plan with like hashes, and the neighbours in the
  // order of use.
  Ref<Plan> same_bucket;
  Plan* newer = nullptr;
  Plan* older = nullptr;

  TextView Span(const Item& item) const { return TextView(text).substr(item.start, item.length); }
  const Variant& ValueOf(const Item& item) const { return held[item.held].value; }
  const std::vector<Fault>& Faults() const {
    static const std::vector<Fault> none;
    return faults ? *faults : none;
  }
  bool MayRun(const NamesStamp& now) const { return stamp == now && walks == 0; }
};

/// Converts checked tokens to postfix items, appended to `plan`, whose text must
/// be that of the tokens. Operators wait on a stack by the priorities of their
/// records; every level, "^" included, groups from the left.
void ConvertToPostfix(TokenList& list, Plan& plan);

/// The items as one text, each followed by a blank.
Text PostfixText(const Plan& plan);
/// The same at the end of `text`.
void AppendPostfixText(Text& text, const Plan& plan);
/// The items as a host sees them: texts, and records for constants.
Ref<Collection> PostfixItems(const Plan& plan);

/// Adds the item that a postfix Collection of a host holds.
void AppendHostItem(Plan& plan, const Variant& value, const Symbols& symbols, const Campos* locals);

/// Looks the names of `plan` up again, as the tables are now: what a walk has passed
/// too, so that the plan can be shown. It will not be taken for a plan of these tables.
void LookUpAgain(Plan& plan, const Symbols& symbols, const Campos* locals);

/// Gives the constants of a plan the values that they have now. Where the postfix text
/// is another one then, what the trace shows has to be made again. The former values go
/// last; an object among them may change the tables.
void BindConstants(Plan& plan);

}  // namespace tovalin
