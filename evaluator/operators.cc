#include "evaluator/operators.h"

#include <algorithm>

#include "evaluator/builtin_arguments.h"
#include "frame/arithmetic.h"
#include "frame/comparison.h"
#include "tovalin/convert.h"
#include "tovalin/locale.h"

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
  const builtins::TextArgument text(whole);
  return !text.View().empty() && FindFolded(text, builtins::TextArgument(part)) != Text::npos;
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

void ApplyUnary(OperatorCode code, ValueStack& stack) {
  Variant value = Pop(stack);
  const bool negates = code == OperatorCode::Subtract || code == OperatorCode::Negating;
  stack.push_back(negates ? Negated(value) : std::move(value));
}

bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

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

OperatorCode CodeOf(TextView literal) {
  for (const OperatorName& name : kNames)
    if (name.literal == literal) return name.code;
  return OperatorCode::Unknown;
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

std::size_t OperandsOf(OperatorCode code) {
  switch (code) {
    case OperatorCode::Between:
      return 3;
    case OperatorCode::Negated:
    case OperatorCode::Negating:
    case OperatorCode::Unknown:
      return 0;
    default:
      return 2;
  }
}

Variant Combine(OperatorCode code, Variant& left, const Variant& right) {
  switch (code) {
    case OperatorCode::Add:
      if (left.Is(Subtype::String) && right.Is(Subtype::String))
        return Join(std::move(left), right);
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
      return Join(std::move(left), right);
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

Variant IsBetween(const Variant& tested, const Variant& low, const Variant& high) {
  return GreaterOrEqual(tested, low) && LessOrEqual(tested, high);
}

void ApplyOperator(OperatorCode code, ValueStack& stack) {
  if (stack.empty()) {
    stack.emplace_back();
    return;
  }
  if (stack.size() == 1) return ApplyUnary(code, stack);
  const Variant right = Pop(stack);
  Variant left = Pop(stack);
  if (code == OperatorCode::Between) {
    const Variant tested = Pop(stack);
    stack.push_back(IsBetween(tested, left, right));
  } else if (code == OperatorCode::Negated || code == OperatorCode::Negating) {
    // Deliberately two values: the negation stands for the sign of the right one.
    stack.push_back(left);
    stack.push_back(Negated(right));
  } else {
    stack.push_back(Combine(code, left, right));
  }
}

}  // namespace tovalin
