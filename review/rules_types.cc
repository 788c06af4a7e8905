#include "review/rules_types.h"

#include "review/suggestions.h"
#include "tovalin/convert.h"
#include "tovalin/error.h"

namespace tovalin::review {
namespace {

Text TextOf(const Place& place, const AbstractValue& value) {
  return Shown(place.source.TextOf(place.source.SpanOf(value.first, value.last)));
}

Span SpanOf(const Place& place, const AbstractValue& value) {
  return place.source.SpanOf(value.first, value.last);
}

// The word of an operator or a function, without its bracket.
Text WordOf(const Place& place) {
  Text word(Trim(place.source.Word(place.token)));
  if (word.ends_with(u'(')) word.pop_back();
  return word;
}

bool IsNumberLike(const AbstractValue& value) {
  return value.type == OperandType::Number || value.type == OperandType::Date ||
         value.type == OperandType::Logical;
}

bool ReadsAsLogical(const AbstractValue& value) {
  try {
    (void)ToBoolean(value.value);
    return true;
  } catch (const Error&) {
    return false;
  }
}

void CheckLogical(const Place& place, const AbstractValue& value) {
  if (value.is_doubtful || !value.IsKnownText() || ReadsAsLogical(value)) return;
  place.findings.Add(Rule::TextForLogical, SpanOf(place, value),
                     {WordOf(place), TextOf(place, value)});
}

void CheckDate(const Place& place, const AbstractValue& value) {
  if (value.is_doubtful || !value.IsNoNumber() || value.ReadsAsDate()) return;
  place.findings.Add(Rule::TextForDate, SpanOf(place, value),
                     {WordOf(place), TextOf(place, value)});
}

void CheckSum(const Place& place, const AbstractValue& left, const AbstractValue& right) {
  if (left.type == OperandType::Date && right.type == OperandType::Date) {
    place.findings.Add(Rule::DatesAdded, place.source.SpanOf(place.token),
                       {TextOf(place, left), TextOf(place, right)});
    return;
  }
  const AbstractValue& text = left.IsText() ? left : right;
  const AbstractValue& other = left.IsText() ? right : left;
  if (!text.IsText() || !IsNumberLike(other) || text.ReadsAsNumber()) return;
  Repair repair;
  if (text.IsNoNumber())
    repair.Replace(place.source.SpanOf(place.token), u"&");
  else
    repair = AsNumber(place.source, text);
  place.findings.Add(Rule::TextAdded, SpanOf(place, text), {TextOf(place, text)}, repair);
}

void CheckDivisor(const Place& place, const AbstractValue& divisor) {
  if (!divisor.is_constant || !IsNumeric(divisor.value) || ToDouble(divisor.value) != 0) return;
  place.findings.Add(Rule::ZeroDivisor, SpanOf(place, divisor), {TextOf(place, divisor)});
}

// An AND with what is always false, and an OR with what is always true.
void CheckDeciding(const Place& place, const Operator& row, const AbstractValue& operand) {
  if (operand.type != OperandType::Logical || operand.is_doubtful) return;
  const std::optional<bool> truth = Truth(operand);
  if (!truth || *truth != (row.code == OperatorCode::Or)) return;
  AbstractValue condition = operand;
  CheckCondition(place, condition);
}

}  // namespace

void CheckNumber(const Place& place, const AbstractValue& value) {
  if (value.is_doubtful || !value.IsText() || value.ReadsAsNumber()) return;
  place.findings.Add(
      Rule::TextForNumber, SpanOf(place, value), {WordOf(place), TextOf(place, value)},
      value.IsKnownText() ? std::nullopt : std::optional(AsNumber(place.source, value)));
}

void CheckComparison(const Place& place, OperatorCode code, const AbstractValue& left,
                     const AbstractValue& right) {
  const AbstractValue& text = left.IsText() ? left : right;
  const AbstractValue& other = left.IsText() ? right : left;
  if (!text.IsText() || text.is_doubtful || other.is_doubtful) return;
  const std::vector<Text> names{WordOf(place), TextOf(place, text), TextOf(place, other)};
  const bool is_equal = code == OperatorCode::Equal;
  if (other.type == OperandType::Number) {
    // "=" reads both as numbers where it can.
    if (is_equal && !text.IsNoNumber()) return;
    std::vector<Text> all = names;
    all.emplace_back(is_equal ? u"nunca son iguales" : u"los compara letra por letra");
    place.findings.Add(
        Rule::TextCompared, SpanOf(place, text), std::move(all),
        text.IsNoNumber() ? std::nullopt : std::optional(AsNumber(place.source, text)));
  } else if (other.type == OperandType::Date && !is_equal && code != OperatorCode::Different) {
    place.findings.Add(Rule::TextComparedWithDate, SpanOf(place, text), names,
                       AsDate(place.source, text));
  }
}

void CheckOperands(const Place& place, const Operator& row, const AbstractValue& left,
                   const AbstractValue& right) {
  switch (row.code) {
    case OperatorCode::Add:
      return CheckSum(place, left, right);
    case OperatorCode::And:
    case OperatorCode::Or:
      CheckLogical(place, left);
      CheckLogical(place, right);
      CheckDeciding(place, row, left);
      return CheckDeciding(place, row, right);
    default:
      break;
  }
  if (IsComparison(row.code)) return CheckComparison(place, row.code, left, right);
  if (row.takes != OperandType::Number) return;
  CheckNumber(place, left);
  CheckNumber(place, right);
  if (row.code == OperatorCode::Divide) CheckDivisor(place, right);
}

void CheckArguments(const Place& place, const BuiltinFunction& row,
                    std::span<const AbstractValue> arguments) {
  const auto parameters = row.Parameters();
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    switch (parameters[i].type) {
      case OperandType::Number:
        CheckNumber(place, arguments[i]);
        break;
      case OperandType::Date:
        CheckDate(place, arguments[i]);
        break;
      case OperandType::Logical:
        CheckLogical(place, arguments[i]);
        break;
      default:
        break;
    }
  }
}

void CheckCondition(const Place& place, AbstractValue& condition) {
  const std::optional<bool> truth = Truth(condition);
  if (!truth || condition.is_doubtful) return;
  place.findings.Add(Rule::ConstantCondition, SpanOf(place, condition),
                     {TextOf(place, condition), *truth ? u"verdadera" : u"falsa"});
  condition.is_doubtful = true;
}

}  // namespace tovalin::review
