#include "evaluator/postfix.h"

#include <algorithm>
#include <optional>
#include <utility>

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

void SetFunction(Postfix& postfix, Item& item, Campo& record, const BuiltinFunction* builtin) {
  item.record = &record;
  item.kind = builtin ? ItemKind::Builtin : ItemKind::HostFunction;
  if (builtin)
    item.builtin = FunctionIndex(*builtin);
  else
    postfix.calls_host = true;
}

void SetOperator(Item& item, Campo& record, OperatorCode code) {
  item.kind = ItemKind::Operator;
  item.record = &record;
  item.operator_code = code;
}

void SetVariable(Postfix& postfix, Item& item, Campo& record) {
  item.record = &record;
  item.kind = ItemKind::Variable;
  if (record.HasFormula()) postfix.calls_host = true;
}

void SetHeld(Postfix& postfix, Item& item, ItemKind kind, HeldValue held) {
  item.kind = kind;
  item.held = postfix.held.size();
  postfix.held.push_back(std::move(held));
}

void SetConstant(Postfix& postfix, Item& item, Campo& record) {
  HeldValue held{{}, &record};
  std::vector<Variant> none;
  BindConstant(held, none);
  SetHeld(postfix, item, ItemKind::Constant, std::move(held));
  postfix.has_constants = true;
}

void SetLiteral(Postfix& postfix, Item& item, TextView text) {
  SetHeld(postfix, item, ItemKind::Literal, {text, nullptr, true});
}

// The shunting-yard algorithm: operators, and the brackets that they stand behind, are
// on a stack that is linked through the tokens themselves.
class Converter {
 public:
  Converter(TokenList& list, Postfix& postfix) : list_(list), postfix_(postfix) {}

  void Run() {
    postfix_.items.reserve(postfix_.items.size() + static_cast<std::size_t>(std::ranges::count_if(
                                                       list_.tokens, BecomesItem, &Token::kind)));
    for (Token& token : list_.tokens) Accept(token);
    while (top_) PopOperator();
  }

 private:
  static bool BecomesItem(TokenKind kind) {
    return kind != TokenKind::Open && kind != TokenKind::Close && kind != TokenKind::Comma;
  }

  void Accept(Token& token) {
    switch (token.kind) {
      case TokenKind::Operator:
        AcceptOperator(token);
        break;
      case TokenKind::Function:
        if (token.is_opener)
          PushOperator(token);
        else
          Append(token);
        break;
      case TokenKind::Open:
        PushOperator(token);
        break;
      case TokenKind::Comma:
        AcceptComma();
        break;
      case TokenKind::Close:
        while (top_ && !IsBracket(*top_)) PopOperator();
        if (top_) PopOperator();
        break;
      default:
        Append(token);
    }
  }

  void AcceptOperator(Token& token) {
    while (token.priority && top_ && !IsBracket(*top_)) {
      if (!top_->priority || *top_->priority < *token.priority) break;
      PopOperator();
    }
    PushOperator(token);
  }

  // A comma ends an argument of the call that it stands in, and nothing else.
  void AcceptComma() {
    const Token* bracket = top_;
    while (bracket && !IsBracket(*bracket)) bracket = bracket->below;
    if (!bracket || bracket->kind != TokenKind::Function) return;
    while (top_ != bracket) PopOperator();
  }

  static bool IsBracket(const Token& token) { return token.kind != TokenKind::Operator; }

  void PushOperator(Token& token) { token.below = std::exchange(top_, &token); }

  void PopOperator() {
    const Token& token = *std::exchange(top_, top_->below);
    if (token.kind != TokenKind::Open) Append(token);
  }

  void Append(const Token& token) {
    Item& item = postfix_.items.emplace_back();
    item.start = token.start;
    item.length = token.length;
    switch (token.kind) {
      case TokenKind::Number:
        item.kind = ItemKind::Number;
        item.number = token.number;
        break;
      case TokenKind::Literal:
        SetLiteral(postfix_, item, list_.Span(token));
        break;
      case TokenKind::Value:
        SetHeld(postfix_, item, ItemKind::Value, {token.value->Value()});
        break;
      case TokenKind::Operator:
        SetOperator(item, *token.record, token.operator_code);
        break;
      case TokenKind::Function:
        if (token.record) SetFunction(postfix_, item, *token.record, token.builtin);
        break;
      default:
        if (token.scope == Scope::Constant)
          SetConstant(postfix_, item, *token.record);
        else if (token.scope != Scope::None)
          SetVariable(postfix_, item, *token.record);
    }
  }

  TokenList& list_;
  Postfix& postfix_;
  Token* top_ = nullptr;  // of the operator stack
};

TextView SpellingOf(const Postfix& postfix, const Item& item) {
  const bool is_spelled = item.HasRecord() && item.kind != ItemKind::Variable;
  return is_spelled ? Trim(item.record->Name()) : postfix.Span(item);
}

// Hands `put` the text of an item, in parts.
template <class PutText>
void PutItem(const Postfix& postfix, const Item& item, PutText put) {
  if (!item.HoldsValue()) return put(SpellingOf(postfix, item));
  const HeldValue& held = postfix.held[item.held];
  if (held.is_quoted) {
    put(u"\"");
    put(held.value.AsText());
    put(u"\"");
  } else if (held.constant) {
    put(Trim(held.constant->Name()));
  } else if (item.kind == ItemKind::Constant) {
    put(postfix.Span(item));
  } else {
    put(TextOrEmpty(held.value));
  }
}

Text ItemText(const Postfix& postfix, const Item& item) {
  Text text;
  PutItem(postfix, item, [&text](TextView part) { text.append(part); });
  return text;
}

// What an item of a known text stands for, in the order in which scopes are searched.
void Classify(Postfix& postfix, Item& item, TextView text, const Symbols& symbols,
              const Campos* locals) {
  item.kind = ItemKind::Text;
  Campo* record = nullptr;
  if (double number = 0; ReadNumberToken(text, number)) {
    item.kind = ItemKind::Number;
    item.number = number;
  } else if ((record = symbols.operators->Find(text))) {
    SetOperator(item, *record, CodeOf(Trim(record->Name())));
  } else if ((record = locals ? locals->Find(text) : nullptr) ||
             (record = symbols.variables->Find(text))) {
    SetVariable(postfix, item, *record);
  } else if ((record = symbols.constants->Find(text))) {
    SetConstant(postfix, item, *record);
  } else if ((record = symbols.functions->Find(text))) {
    SetFunction(postfix, item, *record, FunctionOf(text));
  } else if (text.size() > 1 && text.front() == u'"' && text.back() == u'"') {
    SetLiteral(postfix, item, text.substr(1, text.size() - 2));
  }
}

}  // namespace

void ConvertToPostfix(TokenList& list, Postfix& postfix) { Converter(list, postfix).Run(); }

Text PostfixText(const Postfix& postfix) {
  Text text;
  AppendPostfixText(text, postfix);
  return text;
}

void AppendPostfixText(Text& text, const Postfix& postfix) {
  text.reserve(text.size() + postfix.text.size() + postfix.items.size());
  for (const Item& item : postfix.items) {
    PutItem(postfix, item, [&text](TextView part) { text.append(part); });
    text.push_back(u' ');
  }
}

Ref<Collection> PostfixItems(const Postfix& postfix) {
  auto items = Make<Collection>();
  for (const Item& item : postfix.items) {
    if (item.kind == ItemKind::Value)
      items->List().Append(postfix.ValueOf(item));
    else if (item.kind == ItemKind::Constant && !postfix.held[item.held].is_quoted)
      // A copy, so that a later change of the constant is not seen.
      items->List().Append(postfix.held[item.held].constant->Copy());
    else
      items->List().Append(ItemText(postfix, item));
  }
  return items;
}

void AppendHostItem(Postfix& postfix, const Variant& value, const Symbols& symbols,
                    const Campos* locals) {
  Item& item = postfix.items.emplace_back();
  item.start = static_cast<std::uint32_t>(postfix.text.size());
  const Ref<Campo> constant =
      value.Is(Subtype::Object) ? value.AsObject().As<Campo>() : Ref<Campo>();
  if (value.Is(Subtype::String)) {
    postfix.text.append(value.AsText());
    item.length = static_cast<std::uint32_t>(value.AsText().size());
    Classify(postfix, item, value.AsText(), symbols, locals);
  } else if (IsNumber(value)) {
    item.kind = ItemKind::Number;
    item.number = ToDouble(value);
  } else {
    SetHeld(postfix, item, ItemKind::Value, {constant ? constant->Value() : value.Value()});
  }
}

void LookUpAgain(Postfix& postfix, const Symbols& symbols, const Campos* locals) {
  for (HeldValue& held : postfix.held) held.constant = nullptr;
  for (Item& item : postfix.items) {
    if (item.kind == ItemKind::Number || item.HoldsValue()) continue;
    Classify(postfix, item, postfix.Span(item), symbols, locals);
  }
}

bool BindConstants(Postfix& postfix) {
  bool is_same = true;
  std::vector<Variant> former;
  for (HeldValue& held : postfix.held)
    if (held.constant && BindConstant(held, former)) is_same = false;
  return is_same;
}

}  // namespace tovalin
