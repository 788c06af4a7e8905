#include "evaluator/operators.h"

#include <algorithm>

#include "frame/arithmetic.h"
#include "frame/comparison.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

constexpr std::int16_t kMinusOne = -1;

struct OperatorName {
  TextView literal;
  OperatorCode code;
};

constexpr OperatorName kNames[] = {
    {u"+", OperatorCode::Add},           {u"-", OperatorCode::Subtract},
    {u"*", OperatorCode::Multiply},      {u"/", OperatorCode::Divide},
    {u"^", OperatorCode::Power},         {u"&", OperatorCode::Concatenate},
    {u"=", OperatorCode::Equal},         {u">", OperatorCode::Greater},
    {u"<", OperatorCode::Less},          {u">=", OperatorCode::GreaterOrEqual},
    {u"<=", OperatorCode::LessOrEqual},  {u"<>", OperatorCode::Different},
    {u"AND", OperatorCode::And},         {u"OR", OperatorCode::Or},
    {u"IN", OperatorCode::In},           {u"BETWEEN", OperatorCode::Between},
    {u"*-", OperatorCode::TimesNegated}, {u"-1*", OperatorCode::Negating},
    {u"*-1", OperatorCode::Negated},
};

Variant Negated(const Variant& value) { return Multiply(value, kMinusOne); }

bool IsZero(const Variant& value) {
  if (value.Is(Subtype::Double)) return value.AsDouble() == 0;
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
  const Text text = ToText(whole);
  return !text.empty() && FindFolded(text, ToText(part)) != Text::npos;
}

Variant Binary(OperatorCode code, const Variant& left, const Variant& right) {
  switch (code) {
    case OperatorCode::Add:
      return Add(left, right);
    case OperatorCode::Subtract:
      return Subtract(left, right);
    case OperatorCode::Multiply:
      return Multiply(left, right);
    case OperatorCode::Divide:
      return Quotient(left, right);
    case OperatorCode::Power:
      return Power(left, right);
    case OperatorCode::TimesNegated:
      return Negated(Multiply(left, right));
    case OperatorCode::Concatenate:
      return Concatenate(left, right);
    case OperatorCode::Less:
      return Less(left, right);
    case OperatorCode::LessOrEqual:
      return LessOrEqual(left, right);
    case OperatorCode::Greater:
      return Greater(left, right);
    case OperatorCode::GreaterOrEqual:
      return GreaterOrEqual(left, right);
    case OperatorCode::Equal:
      return Equal(left, right);
    case OperatorCode::Different:
      return Different(left, right);
    case OperatorCode::In:
      return IsWithin(left, right);
    case OperatorCode::And:
      return And(left, right);
    case OperatorCode::Or:
      return Or(left, right);
    default:
      RaiseOwn(u"Evaluador", u"Operador sin definir");
  }
}

void ApplyUnary(OperatorCode code, ValueStack& stack) {
  Variant value = Pop(stack);
  const bool negates = code == OperatorCode::Subtract || code == OperatorCode::Negating;
  stack.push_back(negates ? Negated(value) : std::move(value));
}

bool HasThousands(TextView text) { return text.find(u',') != TextView::npos; }

Variant NormalisedText(Variant value) {
  const Text& text = value.AsText();
  if (HasThousands(text))
    if (const auto number = ReadNumber(text)) return *number;
  if (text.find(u'"') == Text::npos) return value;
  Text stripped = text;
  std::erase(stripped, u'"');
  return stripped;
}

}  // namespace

OperatorCode CodeOf(TextView literal) {
  for (const OperatorName& name : kNames)
    if (name.literal == literal) return name.code;
  return OperatorCode::Unknown;
}

Variant Pop(ValueStack& stack) {
  if (stack.empty()) return Variant();
  Variant value = std::move(stack.back());
  stack.pop_back();
  return value.Is(Subtype::String) ? NormalisedText(std::move(value)) : value;
}

void ApplyOperator(OperatorCode code, ValueStack& stack) {
  if (stack.empty()) {
    stack.emplace_back();
    return;
  }
  if (stack.size() == 1) return ApplyUnary(code, stack);
  const Variant right = Pop(stack);
  const Variant left = Pop(stack);
  if (code == OperatorCode::Between) {
    const Variant tested = Pop(stack);
    stack.emplace_back(GreaterOrEqual(tested, left) && LessOrEqual(tested, right));
  } else if (code == OperatorCode::Negated || code == OperatorCode::Negating) {
    // Deliberately two values: the negation stands for the sign of the right one.
    stack.push_back(left);
    stack.push_back(Negated(right));
  } else {
    stack.push_back(Binary(code, left, right));
  }
}

}  // namespace tovalin
