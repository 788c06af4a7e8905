#include "evaluator/operators.h"

#include <algorithm>
#include <array>

#include "frame/text/characters.h"
#include "frame/value/arithmetic.h"
#include "frame/value/comparison.h"
#include "tovalin/convert.h"
#include "tovalin/locale.h"

namespace tovalin {
namespace {

constexpr std::int16_t kMinusOne = -1;

Variant Negated(const Variant& value) { return Multiply(value, kMinusOne); }

bool IsZero(const Variant& value) {
  if (value.Is(Subtype::Double)) return value.AsDouble() == 0;
  if (value.Is(Subtype::Date)) return value.AsDate().days == 0;
  return !value.Is(Subtype::Null) && IsNumeric(value) && ToDouble(value) == 0;
}

// A division by zero deliberately gives 0: twenty years of formulas divide by
// counts that may be zero.
Variant Quotient(const Variant& left, const Variant& right) {
  if (IsZero(right)) return std::int16_t{0};
  const Variant quotient = Divide(left, right);
  return quotient.Is(Subtype::Null) ? quotient : Variant(ToDouble(quotient));
}

bool IsWithin(const Variant& whole, const Variant& part) {
  if (whole.Is(Subtype::Null) || part.Is(Subtype::Null)) return false;
  const functions::TextArgument text(whole);
  return !text.View().empty() && FindFolded(text, functions::TextArgument(part)) != Text::npos;
}

// Text without quotes and commas stays so when more of it is joined. What is joined
// is looked at here, so that the next pop need not read all of it again.
Variant Join(Variant left, const Variant& right) {
  const auto is_plain = [](const Variant& value) {
    return value.Is(Subtype::String) ? value.AsSharedText().is_plain : IsNumeric(value);
  };
  const bool plain =
      is_plain(left) &&
      (is_plain(right) || (right.Is(Subtype::String) && IsNormalised(TextView(right.AsText()))));
  Variant joined = Concatenate(std::move(left), right);
  if (plain && joined.Is(Subtype::String)) joined.AsSharedText().is_plain = true;
  return joined;
}

bool IsBetween(const Variant& tested, const Variant& low, const Variant& high) {
  return GreaterOrEqual(tested, low) && LessOrEqual(tested, high);
}

// An operation of two operands as the table holds it.
template <auto kOperation>
Variant Binary(std::span<Variant> operands) {
  return kOperation(operands[0], operands[1]);
}

Variant Sum(std::span<Variant> operands) {
  const bool are_texts = operands[0].Is(Subtype::String) && operands[1].Is(Subtype::String);
  return are_texts ? Join(std::move(operands[0]), operands[1]) : Add(operands[0], operands[1]);
}

Variant Joined(std::span<Variant> operands) { return Join(std::move(operands[0]), operands[1]); }

Variant NegatedProduct(std::span<Variant> operands) {
  return Negated(Multiply(operands[0], operands[1]));
}

// Deliberately two values: the negation stands for the sign of the right one.
Variant NegatedRight(std::span<Variant> operands) { return Negated(operands[1]); }

Variant Between(std::span<Variant> operands) {
  return IsBetween(operands[0], operands[1], operands[2]);
}

using Code = OperatorCode;
using Type = OperandType;

// Behind each literal: its priority, its operands, what they are and what they give.
//
// AND and OR deliberately stand at the level of "+", above the comparisons: formulas
// in use are bracketed for that, and would change their values.
constexpr Operator kOperators[] = {
    {Code::Add, u"+", 3, 2, Type::Number, Type::Number, Sum, NumericCode::Add},
    {Code::Subtract, u"-", 3, 2, Type::Number, Type::Number, Binary<Subtract>,
     NumericCode::Subtract, true},
    {Code::Divide, u"/", 4, 2, Type::Number, Type::Number, Binary<Quotient>, NumericCode::Divide},
    {Code::Multiply, u"*", 4, 2, Type::Number, Type::Number, Binary<Multiply>,
     NumericCode::Multiply},
    {Code::TimesNegated, u"*-", 4, 2, Type::Number, Type::Number, NegatedProduct,
     NumericCode::TimesNegated},
    {Code::Negating, u"-1*", 4, 2, Type::Number, Type::Number, NegatedRight, NumericCode::None,
     true, true},
    {Code::Negated, u"*-1", 4, 2, Type::Number, Type::Number, NegatedRight, NumericCode::None,
     false, true},
    {Code::Power, u"^", 5, 2, Type::Number, Type::Number, Binary<Power>, NumericCode::Power},
    {Code::Concatenate, u"&", 3, 2, Type::Any, Type::Text, Joined},
    {Code::Greater, u">", 2, 2, Type::Any, Type::Logical, Binary<Greater>, NumericCode::Greater},
    {Code::GreaterOrEqual, u">=", 2, 2, Type::Any, Type::Logical, Binary<GreaterOrEqual>,
     NumericCode::GreaterOrEqual},
    {Code::Less, u"<", 2, 2, Type::Any, Type::Logical, Binary<Less>, NumericCode::Less},
    {Code::LessOrEqual, u"<=", 2, 2, Type::Any, Type::Logical, Binary<LessOrEqual>,
     NumericCode::LessOrEqual},
    {Code::Different, u"<>", 2, 2, Type::Any, Type::Logical, Binary<Different>,
     NumericCode::Different},
    {Code::Equal, u"=", 2, 2, Type::Any, Type::Logical, Binary<Equal>, NumericCode::Equal},
    {Code::In, u"IN", 3, 2, Type::Text, Type::Logical, Binary<IsWithin>},
    {Code::And, u"AND", 3, 2, Type::Logical, Type::Logical, Binary<And>, NumericCode::And},
    {Code::Or, u"OR", 3, 2, Type::Logical, Type::Logical, Binary<Or>, NumericCode::Or},
    {Code::Between, u"BETWEEN", 3, 3, Type::Any, Type::Logical, Between},
};

static_assert(
    [] {
      for (std::size_t i = 0; i < std::size(kOperators); ++i)
        if (static_cast<std::size_t>(kOperators[i].code) != i) return false;
      return std::size(kOperators) == static_cast<std::size_t>(OperatorCode::Unknown);
    }(),
    "a code is the place of its row");

void ApplyAlone(const Operator* row, Variant& value) {
  value = Normalised(std::move(value));
  if (row && row->negates_alone) value = Negated(value);
}

// Whether the digits of a text are grouped by thousands: 1,234 and 12,345,678.90,
// but no list such as 1,2,3 and no pattern such as 0,000.00.
bool HasThousands(TextView text) {
  const auto first = std::ranges::find_if(text, IsDigit);
  if (first == text.end() || *first == u'0') return false;
  text.remove_prefix(static_cast<std::size_t>(first - text.begin()));
  const char16_t separator = CurrentLocale().thousands_separator;
  const auto digits = [&text] {
    return static_cast<std::size_t>(std::ranges::find_if_not(text, IsDigit) - text.begin());
  };
  std::size_t groups = 0;
  for (std::size_t count = digits(); groups == 0 ? count <= 3 : count == 3; count = digits()) {
    text.remove_prefix(count);
    if (!text.starts_with(separator)) return groups > 0;
    text.remove_prefix(1);
    ++groups;
  }
  return false;
}

Variant NormalisedText(Variant value) {
  SharedText& shared = value.AsSharedText();
  if (shared.is_plain) return value;
  if (IsNormalised(TextView(shared.value))) {
    if (shared.references.Value() == 1) shared.is_plain = true;
    return value;
  }
  if (HasThousands(shared.value))
    if (const auto number = ReadNumber(shared.value)) return *number;
  if (shared.value.find(u'"') == Text::npos) return value;
  Text stripped = shared.value;
  std::erase(stripped, u'"');
  return stripped;
}

}  // namespace

std::span<const Operator> Operators() { return kOperators; }

const Operator* FindOperator(OperatorCode code) {
  return code == OperatorCode::Unknown ? nullptr : &kOperators[static_cast<std::size_t>(code)];
}

OperatorCode CodeOf(TextView literal) {
  const auto* row = std::ranges::find(kOperators, literal, &Operator::literal);
  return row == std::end(kOperators) ? OperatorCode::Unknown : row->code;
}

Variant Pop(ValueStack& stack) {
  if (stack.empty()) return Variant();
  Variant value = std::move(stack.back());
  stack.pop_back();
  return Normalised(std::move(value));
}

// Quotes and separators are looked for at once and many characters at a time: most
// texts hold neither.
bool IsNormalised(TextView text) {
  const char16_t separator = CurrentLocale().thousands_separator;
  std::uint16_t marks = 0;
  for (char16_t c : text) marks |= static_cast<std::uint16_t>((c == u'"') | (c == separator));
  return marks == 0;
}

Variant Normalised(Variant value) {
  if (!value.Is(Subtype::String)) return value;
  return NormalisedText(value.IsByReference() ? Variant(value.Value()) : std::move(value));
}

std::span<Variant> TopOperands(ValueStack& stack, std::size_t count) {
  while (stack.size() < count) stack.emplace(stack.begin());
  const std::span<Variant> operands = std::span(stack).last(count);
  for (Variant& operand : operands)
    if (!IsKnownNormalised(operand)) operand = Normalised(std::move(operand));
  return operands;
}

void ReplaceTop(ValueStack& stack, std::size_t count, Variant result) {
  if (count == 0) {
    stack.push_back(std::move(result));
    return;
  }
  stack.resize(stack.size() - count + 1);
  stack.back() = std::move(result);
}

void ApplyOperator(OperatorCode code, ValueStack& stack) {
  const Operator* row = FindOperator(code);
  if (stack.empty()) {
    stack.emplace_back();
  } else if (stack.size() == 1) {
    ApplyAlone(row, stack.front());
  } else if (!row) {
    RaiseOwn(u"Evaluador", u"Operador sin definir");
  } else {
    Variant result = row->compute(TopOperands(stack, row->operands));
    ReplaceTop(stack, row->keeps_left ? 1 : row->operands, std::move(result));
  }
}

}  // namespace tovalin
