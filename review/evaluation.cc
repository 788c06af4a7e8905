#include "review/evaluation.h"

#include <algorithm>

#include "review/suggestions.h"
#include "tovalin/locale.h"

namespace tovalin::review {

void Evaluation::Run() {
  for (std::uint32_t token : source_.Order()) Take(token);
  Finish();
}

void Evaluation::Take(std::uint32_t place) {
  const Token& token = source_.At(place);
  switch (token.kind) {
    case TokenKind::Operator:
      return EvaluateOperator(place);
    case TokenKind::Function:
      return source_.IsCall(place) ? EvaluateCall(place) : EvaluateBareFunction(place);
    case TokenKind::Number:
      return Push(ConstantValue(token.number), place, place);
    case TokenKind::Literal:
      return Push(ConstantValue(Text(source_.Word(place))), place, place);
    default:
      return Push(ValueOfName(token), place, place);
  }
}

void Evaluation::Push(AbstractValue value, std::uint32_t first, std::uint32_t last) {
  value.first = first;
  value.last = last;
  stack_.push_back(std::move(value));
}

AbstractValue Evaluation::Pop() {
  AbstractValue value = std::move(stack_.back());
  stack_.pop_back();
  WithBrackets(value);
  return value;
}

void Evaluation::WithBrackets(AbstractValue& value) const {
  while (value.first > 0 && source_.Is(value.first - 1, TokenKind::Open) &&
         source_.Match(value.first - 1) == value.last + 1) {
    --value.first;
    ++value.last;
  }
}

// A host may change its constants; what they hold is known of those of the system alone.
AbstractValue Evaluation::ValueOfName(const Token& token) const {
  if (token.scope == Scope::None) return {};
  AbstractValue value = ValueOfRecord(*token.record);
  const bool is_system = token.scope == Scope::Constant &&
                         token.record->Value().Is(Subtype::Boolean) &&
                         surroundings_.symbols.constants->IsSystem(token.record->Name());
  return is_system ? ConstantValue(token.record->Value().Value()) : value;
}

void Evaluation::Finish() {
  for (AbstractValue& value : stack_) WithBrackets(value);
  if (stack_.size() > 1) {
    const Span span = source_.SpanOf(stack_[1].first, stack_.back().last);
    findings_.Add(Rule::ValuesLeft, span,
                  {Shown(source_.TextOf(span)), FromUtf8(std::to_string(stack_.size())),
                   TextOf(stack_[0]), Text(1, CurrentLocale().decimal_separator)},
                  JoinedValues(source_, stack_));
  } else if (misplaced_ != kNone && findings_.Count() == 0) {
    findings_.Add(Rule::OtherOperands, source_.SpanOf(misplaced_),
                  {Text(source_.Word(misplaced_)), misplaced_operands_});
  }
}

}  // namespace tovalin::review
