#include <algorithm>
#include <optional>
#include <utility>

#include "evaluator/element_search.h"
#include "evaluator/number_token.h"
#include "evaluator/plan.h"
#include "frame/value/conversion.h"

namespace tovalin {
namespace {

bool IsTextConstant(const Campo& record) {
  return record.DataType() == kText || record.DataType() == kLongText;
}

// Conversion never fails: a value that has no text becomes the empty one.
Text TextOrEmpty(const Variant& value) {
  try {
    return ToText(value);
  } catch (const Error&) {
    return {};
  }
}

// Whether the item's text is another one than before.
bool BindConstant(HeldValue& held, std::vector<Variant>& former) {
  if (held.value.MayOwnObjects()) former.push_back(std::move(held.value));
  if (!IsTextConstant(*held.constant)) {
    held.value = held.constant->Value();
    return std::exchange(held.is_quoted, false);
  }
  Variant text = TextOrEmpty(held.constant->Value());
  const bool same = held.is_quoted && held.value.AsText() == text.AsText();
  if (!same) held.value = std::move(text);
  held.is_quoted = true;
  return !same;
}

void SetFunction(Plan& plan, Item& item, Campo& record, const BuiltinFunction* builtin) {
  item.record = &record;
  item.kind = builtin ? ItemKind::Builtin : ItemKind::HostFunction;
  if (builtin)
    item.builtin = FunctionIndex(*builtin);
  else
    plan.calls_host = true;
}

void SetOperator(Item& item, Campo& record, OperatorCode code) {
  item.kind = ItemKind::Operator;
  item.record = &record;
  item.operator_code = code;
}

void SetVariable(Plan& plan, Item& item, Campo& record) {
  item.record = &record;
  item.kind = ItemKind::Variable;
  if (record.HasFormula()) plan.calls_host = true;
}

void SetHeld(Plan& plan, Item& item, ItemKind kind, HeldValue held) {
  item.kind = kind;
  item.held = plan.held.size();
  plan.held.push_back(std::move(held));
}

void SetConstant(Plan& plan, Item& item, Campo& record) {
  HeldValue held{{}, &record};
  std::vector<Variant> none;
  BindConstant(held, none);
  SetHeld(plan, item, ItemKind::Constant, std::move(held));
  plan.has_constants = true;
}

void SetLiteral(Plan& plan, Item& item, TextView text) {
  SetHeld(plan, item, ItemKind::Literal, {text, nullptr, true});
}

// Operators, and the brackets that they stand behind, wait in a stack that is
// chained through the tokens themselves.
class Converter {
 public:
  Converter(TokenList& list, Plan& plan) : list_(list), plan_(plan) {}

  void Run() {
    plan_.items.reserve(plan_.items.size() + static_cast<std::size_t>(std::ranges::count_if(
                                                 list_.tokens, BecomesItem, &Token::kind)));
    for (Token& token : list_.tokens) Take(token);
    while (waiting_) Release();
  }

 private:
  static bool BecomesItem(TokenKind kind) {
    return kind != TokenKind::Open && kind != TokenKind::Close && kind != TokenKind::Comma;
  }

  void Take(Token& token) {
    switch (token.kind) {
      case TokenKind::Operator:
        TakeOperator(token);
        break;
      case TokenKind::Function:
        if (token.is_opener)
          Wait(token);
        else
          Append(token);
        break;
      case TokenKind::Open:
        Wait(token);
        break;
      case TokenKind::Comma:
        TakeComma();
        break;
      case TokenKind::Close:
        while (waiting_ && !IsBracket(*waiting_)) Release();
        if (waiting_) Release();
        break;
      default:
        Append(token);
    }
  }

  void TakeOperator(Token& token) {
    while (token.priority && waiting_ && !IsBracket(*waiting_)) {
      if (!waiting_->priority || *waiting_->priority < *token.priority) break;
      Release();
    }
    Wait(token);
  }

  // A comma ends an argument of the call that it stands in, and nothing else.
  void TakeComma() {
    const Token* bracket = waiting_;
    while (bracket && !IsBracket(*bracket)) bracket = bracket->below;
    if (!bracket || bracket->kind != TokenKind::Function) return;
    while (waiting_ != bracket) Release();
  }

  static bool IsBracket(const Token& token) { return token.kind != TokenKind::Operator; }

  void Wait(Token& token) { token.below = std::exchange(waiting_, &token); }

  void Release() {
    const Token& token = *std::exchange(waiting_, waiting_->below);
    if (token.kind != TokenKind::Open) Append(token);
  }

  void Append(const Token& token) {
    Item& item = plan_.items.emplace_back();
    item.start = token.start;
    item.length = token.length;
    switch (token.kind) {
      case TokenKind::Number:
        item.kind = ItemKind::Number;
        item.number = token.number;
        break;
      case TokenKind::Literal:
        SetLiteral(plan_, item, list_.Span(token));
        break;
      case TokenKind::Value:
        SetHeld(plan_, item, ItemKind::Value, {token.value->Value()});
        break;
      case TokenKind::Operator:
        SetOperator(item, *token.record, token.operator_code);
        break;
      case TokenKind::Function:
        if (token.record) SetFunction(plan_, item, *token.record, token.builtin);
        break;
      default:
        if (token.scope == Scope::Constant)
          SetConstant(plan_, item, *token.record);
        else if (token.scope != Scope::None)
          SetVariable(plan_, item, *token.record);
    }
  }

  TokenList& list_;
  Plan& plan_;
  Token* waiting_ = nullptr;  // the last one that waits
};

TextView SpellingOf(const Plan& plan, const Item& item) {
  const bool is_spelled = item.HasRecord() && item.kind != ItemKind::Variable;
  return is_spelled ? Trim(item.record->Name()) : plan.Span(item);
}

// Hands `put` the text of an item, in parts.
template <class PutText>
void PutItem(const Plan& plan, const Item& item, PutText put) {
  if (!item.HoldsValue()) return put(SpellingOf(plan, item));
  const HeldValue& held = plan.held[item.held];
  if (held.is_quoted) {
    put(u"\"");
    put(held.value.AsText());
    put(u"\"");
  } else if (held.constant) {
    put(Trim(held.constant->Name()));
  } else if (item.kind == ItemKind::Constant) {
    put(plan.Span(item));
  } else {
    put(TextOrEmpty(held.value));
  }
}

Text ItemText(const Plan& plan, const Item& item) {
  Text text;
  PutItem(plan, item, [&text](TextView part) { text.append(part); });
  return text;
}

// What an item of a known text stands for, in the order in which a walk asks.
void Classify(Plan& plan, Item& item, TextView text, const Symbols& symbols, const Campos* locals) {
  item.kind = ItemKind::Text;
  Campo* record = nullptr;
  if (double number = 0; ReadNumberToken(text, number)) {
    item.kind = ItemKind::Number;
    item.number = number;
  } else if ((record = symbols.operators->Find(text))) {
    SetOperator(item, *record, CodeOf(Trim(record->Name())));
  } else if ((record = locals ? locals->Find(text) : nullptr) ||
             (record = symbols.variables->Find(text))) {
    SetVariable(plan, item, *record);
  } else if ((record = symbols.constants->Find(text))) {
    SetConstant(plan, item, *record);
  } else if ((record = symbols.functions->Find(text))) {
    SetFunction(plan, item, *record, FunctionOf(text));
  } else if (text.size() > 1 && text.front() == u'"' && text.back() == u'"') {
    SetLiteral(plan, item, text.substr(1, text.size() - 2));
  }
}

}  // namespace

void ConvertToPostfix(TokenList& list, Plan& plan) { Converter(list, plan).Run(); }

Text PostfixText(const Plan& plan) {
  Text text;
  AppendPostfixText(text, plan);
  return text;
}

void AppendPostfixText(Text& text, const Plan& plan) {
  text.reserve(text.size() + plan.text.size() + plan.items.size());
  for (const Item& item : plan.items) {
    PutItem(plan, item, [&text](TextView part) { text.append(part); });
    text.push_back(u' ');
  }
}

Ref<Collection> PostfixItems(const Plan& plan) {
  auto items = Make<Collection>();
  for (const Item& item : plan.items) {
    if (item.kind == ItemKind::Value)
      items->List().Append(plan.ValueOf(item));
    else if (item.kind == ItemKind::Constant && !plan.held[item.held].is_quoted)
      // A copy, so that a later change of the constant is not seen.
      items->List().Append(plan.held[item.held].constant->Copy());
    else
      items->List().Append(ItemText(plan, item));
  }
  return items;
}

void AppendHostItem(Plan& plan, const Variant& value, const Symbols& symbols,
                    const Campos* locals) {
  Item& item = plan.items.emplace_back();
  item.start = static_cast<std::uint32_t>(plan.text.size());
  const Ref<Campo> constant =
      value.Is(Subtype::Object) ? value.AsObject().As<Campo>() : Ref<Campo>();
  if (value.Is(Subtype::String)) {
    plan.text.append(value.AsText());
    item.length = static_cast<std::uint32_t>(value.AsText().size());
    Classify(plan, item, value.AsText(), symbols, locals);
  } else if (IsNumber(value)) {
    item.kind = ItemKind::Number;
    item.number = ToDouble(value);
  } else {
    SetHeld(plan, item, ItemKind::Value, {constant ? constant->Value() : value.Value()});
  }
}

void LookUpAgain(Plan& plan, const Symbols& symbols, const Campos* locals) {
  plan.stamp = NamesStamp{};
  for (HeldValue& held : plan.held) held.constant = nullptr;
  for (Item& item : plan.items) {
    if (item.kind == ItemKind::Number || item.HoldsValue()) continue;
    Classify(plan, item, plan.Span(item), symbols, locals);
  }
}

void BindConstants(Plan& plan) {
  std::vector<Variant> former;
  for (HeldValue& held : plan.held)
    if (held.constant && BindConstant(held, former)) plan.trace_edition = 0;
}

}  // namespace tovalin
