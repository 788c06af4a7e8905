#include "review/abstract_value.h"

#include <algorithm>

#include "evaluator/operators.h"
#include "tovalin/convert.h"
#include "tovalin/error.h"

namespace tovalin::review {
namespace {

using enum OperandType;

// A longer text is not followed: nothing that is told depends on it.
constexpr std::size_t kLongestText = 1000;

OperandType TypeOfValue(const Variant& value) {
  switch (value.Kind()) {
    case Subtype::String:
      return Text;
    case Subtype::Date:
      return Date;
    case Subtype::Boolean:
      return Logical;
    case Subtype::Empty:
    case Subtype::Null:
    case Subtype::Object:
    case Subtype::Error:
    case Subtype::Array:
    case Subtype::Variant:
      return Any;
    default:
      return Number;
  }
}

// 1009 says nothing: it is what a record has whose type nobody gave.
OperandType TypeOfCode(std::int32_t data_type) {
  switch (data_type) {
    case kText:
    case kLongText:
      return Text;
    case kTime:
    case kDate:
    case kTimeOfDay:
      return Date;
    case kLogical:
      return Logical;
    case kInteger:
    case kWholeNumber:
    case kCurrency:
    case kDouble:
    case kFloat:
      return Number;
    default:
      return Any;
  }
}

// Keeps what an operation gives, unless it raises: that is told by its types, if at all.
template <class Compute>
void Keep(AbstractValue& result, Compute compute) {
  try {
    Variant value = compute();
    if (value.Is(Subtype::String) && value.AsText().size() > kLongestText) return;
    const OperandType type = TypeOfValue(value);
    if (type != Any) result.type = type;
    result.value = std::move(value);
    result.is_constant = true;
  } catch (const Error&) {
  }
}

}  // namespace

bool AbstractValue::ReadsAsNumber() const { return IsKnownText() && IsNumeric(value); }

bool AbstractValue::ReadsAsDate() const { return IsKnownText() && IsDate(value); }

AbstractValue ValueOfRecord(const Campo& record) {
  AbstractValue value;
  if (record.HasFormula()) return value;
  const Variant& held = record.Value().Value();
  value.type = TypeOfValue(held);
  if (value.type == Any && !held.Is(Subtype::Object)) value.type = TypeOfCode(record.DataType());
  if (held.Is(Subtype::String) && held.AsText().size() <= kLongestText) value.value = held;
  return value;
}

AbstractValue ConstantValue(Variant value) {
  AbstractValue constant;
  constant.type = TypeOfValue(value);
  constant.value = std::move(value);
  constant.is_constant = true;
  return constant;
}

OperandType CommonType(OperandType left, OperandType right) { return left == right ? left : Any; }

OperandType ResultType(const Operator& row, const AbstractValue& left, const AbstractValue& right) {
  const bool is_sum = row.code == OperatorCode::Add;
  if (is_sum || row.code == OperatorCode::Subtract) {
    if (left.IsText() && right.IsText()) return is_sum ? Text : Number;
    if (left.type == Date && right.type == Date) return is_sum ? Date : Number;
    if (left.type == Any || right.type == Any) return Any;
    return left.type == Date || right.type == Date ? Date : Number;
  }
  if (row.code == OperatorCode::And || row.code == OperatorCode::Or)
    return CommonType(left.type, right.type);
  return row.gives;
}

void Fold(AbstractValue& result, const Operator& row,
          std::span<const AbstractValue* const> operands) {
  if (!std::ranges::all_of(operands, &AbstractValue::is_constant)) return;
  std::vector<Variant> values;
  for (const AbstractValue* operand : operands) values.push_back(Normalised(operand->value));
  Keep(result, [&] { return row.compute(values); });
}

void Fold(AbstractValue& result, const BuiltinFunction& row,
          std::span<const AbstractValue> arguments) {
  if (!row.call || !row.is_pure) return;
  if (!std::ranges::all_of(arguments, &AbstractValue::is_constant)) return;
  std::vector<Variant> values;
  for (const AbstractValue& argument : arguments) values.push_back(Normalised(argument.value));
  const HostClock clock;
  Keep(result, [&] { return row.Call(values, {clock}); });
}

std::optional<bool> Truth(const AbstractValue& condition) {
  if (!condition.is_constant || condition.value.Is(Subtype::Null)) return std::nullopt;
  try {
    return ToBoolean(condition.value);
  } catch (const Error&) {
    return std::nullopt;
  }
}

}  // namespace tovalin::review
