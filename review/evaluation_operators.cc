#include <algorithm>

#include "review/evaluation.h"
#include "review/other_functions.h"
#include "review/rules_types.h"
#include "review/suggestions.h"

namespace tovalin::review {

// Whether nothing stands in front of an operator that it could compute with.
bool Evaluation::IsFirst(std::uint32_t token) const {
  if (token == 0) return true;
  const TokenKind before = source_.At(token - 1).kind;
  return before == TokenKind::Open || before == TokenKind::Comma || before == TokenKind::Operator ||
         source_.IsCall(token - 1);
}

// Whether AND or OR takes a part of the comparison beside it.
bool Evaluation::IsMisread(std::uint32_t token, const Operator& row) const {
  if (row.code != OperatorCode::And && row.code != OperatorCode::Or) return false;
  const std::optional<std::int32_t>& comparison = source_.SegmentOf(token).comparison;
  const std::optional<std::int32_t>& own = source_.At(token).priority;
  return comparison && own && *own > *comparison;
}

void Evaluation::EvaluateOperator(std::uint32_t token) {
  const Operator* row = FindOperator(source_.At(token).operator_code);
  if (stack_.empty()) {
    AbstractValue nothing;
    nothing.is_doubtful = true;
    return Push(std::move(nothing), token, token);
  }
  AbstractValue right = Pop();
  if (IsFirst(token)) return EvaluateFirst(token, row, std::move(right));
  if (row && row->keeps_left) return EvaluateGlued(token, std::move(right));
  if (row && row->code == OperatorCode::Between) return EvaluateBetween(token, std::move(right));
  EvaluateBinary(token, row, std::move(right));
}

void Evaluation::EvaluateFirst(std::uint32_t token, const Operator* row, AbstractValue right) {
  const OperatorCode code = row ? row->code : OperatorCode::Unknown;
  const bool is_minus = code == OperatorCode::Subtract;
  const bool is_sign = is_minus || code == OperatorCode::Add;
  AbstractValue result;
  result.type = OperandType::Number;
  result.is_doubtful = right.is_doubtful;
  if (is_sign && !stack_.empty()) {
    AbstractValue left = stack_.back();
    WithBrackets(left);
    const Span sign = source_.SpanOf(token);
    Repair repair;
    is_minus ? repair.Insert(sign.start, u"0") : repair.Replace(sign, u"");
    findings_.Add(is_minus ? Rule::MinusSubtracts : Rule::PlusAdds, sign, {TextOf(left)}, repair);
    result.is_doubtful = true;
  } else if (!is_sign && !(row && row->negates_alone)) {
    findings_.Add(Rule::NothingOnTheLeft, source_.SpanOf(token), {Text(source_.Word(token))},
                  LogicalCall(source_, token));
    result.type = OperandType::Any;
    result.is_doubtful = true;
    right.last = DropGroup(token, right.last);
  } else if (row) {
    CheckNumber({source_, findings_, token}, right);
    const AbstractValue zero = ConstantValue(0.0);
    if (code != OperatorCode::Negating) {
      const AbstractValue* operands[] = {&zero, &right};
      Fold(result, *row, operands);
    }
  }
  const std::uint32_t last = std::max(token, right.last);
  Push(std::move(result), std::min(token, right.first), last);
}

// The values in the brackets behind a word ("AND( A , B )") were meant as its own. Gives
// the last token of them.
std::uint32_t Evaluation::DropGroup(std::uint32_t token, std::uint32_t last) {
  if (!source_.Is(token + 1, TokenKind::Open) || source_.Match(token + 1) == kNone) return last;
  while (!stack_.empty() && stack_.back().first > token) stack_.pop_back();
  return source_.Match(token + 1);
}

// "-1*" and "*-1" between two values leave both of them.
void Evaluation::EvaluateGlued(std::uint32_t token, AbstractValue right) {
  AbstractValue result;
  result.type = OperandType::Number;
  const bool is_behind = right.last < token;  // "(3*-1)": what it negates stands before it
  if (is_behind && !stack_.empty()) return Push(std::move(result), right.first, token);
  const AbstractValue left = stack_.empty() ? right : Pop();
  findings_.Add(Rule::GluedOperator, source_.SpanOf(token),
                {Text(source_.Word(token)), TextOf(left), is_behind ? Text(u"1") : TextOf(right)},
                SeparatedOperator(source_, token));
  result.is_doubtful = true;
  Push(std::move(result), std::min(left.first, right.first), std::max(right.last, token));
}

// The tested value stands before a comma. Where it is missing the two bounds are taken
// alone, so that what stands before them is reviewed as it was meant.
void Evaluation::EvaluateBetween(std::uint32_t token, AbstractValue high) {
  AbstractValue result;
  result.type = OperandType::Logical;
  if (stack_.empty()) return Push(std::move(result), high.first, high.last);
  AbstractValue low = Pop();
  if (low.misplaced != kNone) return EvaluateLooseBetween(token, low);
  const bool has_comma = low.first > 0 && source_.Is(low.first - 1, TokenKind::Comma);
  const bool is_tested = !stack_.empty() && has_comma;
  if (!is_tested) {
    findings_.Add(Rule::NothingTested, source_.SpanOf(token), {Text(source_.Word(token))},
                  BetweenWithComma(source_, token, low, high));
    result.is_doubtful = true;
    return Push(std::move(result), low.first, high.last);
  }
  AbstractValue tested = Pop();
  result.is_doubtful = tested.is_doubtful || low.is_doubtful || high.is_doubtful;
  if (tested.last + 2 != low.first && misplaced_ == kNone) {
    misplaced_ = token;
    misplaced_operands_ = TextOf(tested);
  }
  if (!result.is_doubtful) {
    const Place place{source_, findings_, token};
    CheckComparison(place, OperatorCode::GreaterOrEqual, tested, low);
    CheckComparison(place, OperatorCode::LessOrEqual, tested, high);
    const AbstractValue* operands[] = {&tested, &low, &high};
    Fold(result, *FindOperator(OperatorCode::Between), operands);
  }
  const std::uint32_t first = std::min(tested.first, low.first);
  Push(std::move(result), first, high.last);
  CheckCondition({source_, findings_, token}, stack_.back());
}

// "A + B , 1 BETWEEN 5": outside of a call a comma does not end what stands before it, and
// B + 1 is the lower bound.
void Evaluation::EvaluateLooseBetween(std::uint32_t token, const AbstractValue& low) {
  const Segment& segment = source_.SegmentOf(token);
  findings_.Add(Rule::OtherOperands, source_.SpanOf(low.misplaced),
                {Text(source_.Word(low.misplaced)), TextOf(low)}, BracketedTested(source_, token));
  while (!stack_.empty() && stack_.back().first >= segment.first) stack_.pop_back();
  AbstractValue result;
  result.type = OperandType::Logical;
  result.is_doubtful = true;
  Push(std::move(result), segment.first, segment.last);
}

void Evaluation::EvaluateBinary(std::uint32_t token, const Operator* row, AbstractValue right) {
  if (stack_.empty()) {
    right.is_doubtful = true;
    return Push(std::move(right), right.first, right.last);
  }
  const AbstractValue left = Pop();
  const bool is_misplaced = left.last + 1 != token || right.first != token + 1;
  if (is_misplaced && misplaced_ == kNone) {
    misplaced_ = token;
    misplaced_operands_ = TextOf(left).append(u" y ").append(TextOf(right));
  }
  AbstractValue result;
  if (is_misplaced) result.misplaced = token;
  result.is_doubtful = !row || left.is_doubtful || right.is_doubtful;
  if (row) result.type = ResultType(*row, left, right);
  if (row && IsMisread(token, *row)) {
    findings_.Add(
        Rule::LogicalFirst, source_.SpanOf(token),
        {Text(source_.Word(token)), Shown(source_.TextOf(source_.SpanOf(left.first, right.last)))},
        BracketedComparisons(source_, token));
    result.is_doubtful = true;
  }
  if (!result.is_doubtful) {
    CheckOperands({source_, findings_, token}, *row, left, right);
    const AbstractValue* operands[] = {&left, &right};
    Fold(result, *row, operands);
  }
  const std::uint32_t first = std::min(left.first, right.first);
  Push(std::move(result), first, std::max(left.last, right.last));
  if (row && row->gives == OperandType::Logical && stack_.back().type == OperandType::Logical)
    CheckCondition({source_, findings_, token}, stack_.back());
}

}  // namespace tovalin::review
