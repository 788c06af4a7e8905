#include <optional>
#include <utility>

#include "evaluator/element_search.h"
#include "evaluator/number_token.h"
#include "evaluator/plan.h"
#include "tovalin/convert.h"

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
bool BindConstant(Item& item) {
  const bool was_quoted = std::exchange(item.quoted, IsTextConstant(*item.record));
  if (!item.quoted) {
    item.value = item.record->Value();
    return was_quoted;
  }
  Variant text = TextOrEmpty(item.record->Value());
  const bool same = was_quoted && item.value.AsText() == text.AsText();
  if (!same) item.value = std::move(text);
  return !same;
}

std::optional<std::int32_t> Priority(const Campo& record) {
  if (record.Value().Is(Subtype::Integer)) return record.Value().AsInteger();
  try {
    return ToLong(record.Value());
  } catch (const Error&) {
    return std::nullopt;
  }
}

void SetFunction(Item& item, Campo& record, const Builtin* builtin) {
  item.record = Ref<Campo>::Share(&record);
  item.kind = builtin ? ItemKind::Builtin : ItemKind::HostFunction;
  item.builtin = builtin;
}

void SetOperator(Item& item, Campo& record, OperatorCode code) {
  item.kind = ItemKind::Operator;
  item.record = Ref<Campo>::Share(&record);
  item.operator_code = code;
}

void SetName(Item& item, Campo& record, bool is_constant) {
  item.record = Ref<Campo>::Share(&record);
  item.kind = is_constant ? ItemKind::Constant : ItemKind::Variable;
  if (is_constant) BindConstant(item);
}

class Converter {
 public:
  Converter(const TokenList& list, Plan& plan) : list_(list), plan_(plan) {}

  void Run() {
    plan_.items.reserve(plan_.items.size() + list_.tokens.size());
    waiting_.reserve(list_.tokens.size() / 2 + 1);
    for (const Token& token : list_.tokens) Take(token);
    while (!waiting_.empty()) Release();
  }

 private:
  void Take(const Token& token) {
    switch (token.kind) {
      case TokenKind::Operator:
        TakeOperator(token);
        break;
      case TokenKind::Function:
        if (IsOpener(token))
          waiting_.push_back(&token);
        else
          Append(token);
        break;
      case TokenKind::Open:
        waiting_.push_back(&token);
        break;
      case TokenKind::Comma:
        TakeComma();
        break;
      case TokenKind::Close:
        while (!waiting_.empty() && !IsBracket(*waiting_.back())) Release();
        if (!waiting_.empty()) Release();
        break;
      default:
        Append(token);
    }
  }

  void TakeOperator(const Token& token) {
    const auto priority = Priority(*token.record);
    while (priority && !waiting_.empty() && !IsBracket(*waiting_.back())) {
      const auto top = Priority(*waiting_.back()->record);
      if (!top || *top < *priority) break;
      Release();
    }
    waiting_.push_back(&token);
  }

  // A comma ends an argument of the call that it stands in, and nothing else.
  void TakeComma() {
    std::size_t bracket = waiting_.size();
    while (bracket > 0 && !IsBracket(*waiting_[bracket - 1])) --bracket;
    if (bracket == 0 || waiting_[bracket - 1]->kind != TokenKind::Function) return;
    while (waiting_.size() > bracket) Release();
  }

  bool IsOpener(const Token& token) const {
    if (!token.record) return true;
    return Trim(token.record->Name()).ends_with(u'(');
  }
  static bool IsBracket(const Token& token) { return token.kind != TokenKind::Operator; }

  void Release() {
    const Token& token = *waiting_.back();
    waiting_.pop_back();
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
        item.kind = ItemKind::Literal;
        item.value = Variant(list_.Span(token));
        break;
      case TokenKind::Operator:
        SetOperator(item, *token.record, token.operator_code);
        break;
      case TokenKind::Function:
        if (token.record) SetFunction(item, *token.record, token.builtin);
        break;
      default:
        if (token.scope == Scope::None) break;
        SetName(item, *token.record, token.scope == Scope::Constant);
        plan_.has_constants |= token.scope == Scope::Constant;
    }
  }

  const TokenList& list_;
  Plan& plan_;
  std::vector<const Token*> waiting_;  // operators, and the brackets that they stand behind
};

void AppendItemText(Text& text, const Plan& plan, const Item& item) {
  const bool quoted =
      item.kind == ItemKind::Literal || (item.kind == ItemKind::Constant && item.quoted);
  if (quoted)
    text.append(1, u'"').append(item.value.AsText()).append(1, u'"');
  else if (item.kind == ItemKind::Value)
    text.append(TextOrEmpty(item.value));
  else if (item.record && item.kind != ItemKind::Variable)
    text.append(Trim(item.record->Name()));
  else
    text.append(plan.Span(item));
}

// What an item of a known text stands for, in the order in which a walk asks.
void Classify(Item& item, TextView text, const Symbols& symbols, const Campos* locals) {
  item.record = nullptr;
  item.kind = ItemKind::Text;
  Campo* record = nullptr;
  if (const std::optional<double> number = NumberToken(text)) {
    item.kind = ItemKind::Number;
    item.number = *number;
  } else if ((record = symbols.operators->Find(text))) {
    SetOperator(item, *record, CodeOf(Trim(record->Name())));
  } else if ((record = locals ? locals->Find(text) : nullptr) ||
             (record = symbols.variables->Find(text))) {
    SetName(item, *record, false);
  } else if ((record = symbols.constants->Find(text))) {
    SetName(item, *record, true);
  } else if ((record = symbols.functions->Find(text))) {
    SetFunction(item, *record, BuiltinOf(text));
  } else if (text.size() > 1 && text.front() == u'"' && text.back() == u'"') {
    item.kind = ItemKind::Literal;
    item.value = Variant(text.substr(1, text.size() - 2));
  }
}

}  // namespace

void ConvertToPostfix(const TokenList& list, Plan& plan) { Converter(list, plan).Run(); }

Text PostfixText(const Plan& plan) {
  Text text;
  text.reserve(plan.text.size() + plan.items.size());
  for (const Item& item : plan.items) {
    AppendItemText(text, plan, item);
    text.push_back(u' ');
  }
  return text;
}

Ref<Collection> PostfixItems(const Plan& plan) {
  auto items = Make<Collection>();
  for (const Item& item : plan.items) {
    if (item.kind == ItemKind::Constant && !item.quoted) {
      // A copy, so that a later change of the constant is not seen.
      items->List().Append(item.record->Copy());
      continue;
    }
    Text text;
    AppendItemText(text, plan, item);
    items->List().Append(std::move(text));
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
    Classify(item, value.AsText(), symbols, locals);
  } else if (IsNumeric(value) && !value.Is(Subtype::Boolean) && !value.Is(Subtype::Empty)) {
    item.kind = ItemKind::Number;
    item.number = ToDouble(value);
  } else {
    item.kind = ItemKind::Value;
    item.value = constant ? constant->Value() : value.Value();
  }
}

void ClassifyAgain(Plan& plan, std::size_t from, const Symbols& symbols, const Campos* locals) {
  for (std::size_t i = from; i < plan.items.size(); ++i) {
    Item& item = plan.items[i];
    const bool fixed = item.kind == ItemKind::Number || item.kind == ItemKind::Literal ||
                       item.kind == ItemKind::Value || item.kind == ItemKind::Constant;
    if (!fixed) Classify(item, Text(plan.Span(item)), symbols, locals);
  }
}

bool BindConstants(Plan& plan) {
  bool changed = false;
  for (Item& item : plan.items)
    if (item.kind == ItemKind::Constant) changed |= BindConstant(item);
  return changed;
}

}  // namespace tovalin
