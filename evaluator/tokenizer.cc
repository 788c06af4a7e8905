#include "evaluator/tokenizer.h"

#include <algorithm>
#include <optional>
#include <tuple>

#include "evaluator/number_token.h"

namespace tovalin {
namespace {

constexpr char16_t kQuote = u'"';

void TakeElement(Token& token, const Element& element) {
  token.kind = element.kind;
  token.operator_code = element.operator_code;
  token.is_opener = element.is_opener;
  token.priority = element.priority;
  token.record = element.record;
  token.builtin = element.builtin;
}

class Tokenizer {
 public:
  Tokenizer(TokenList& list, const ElementSearch& elements, TextView delimiter)
      : list_(list), text_(list.text), elements_(elements), delimiter_(delimiter) {}

  void Run() {
    std::tie(begin_, end_) = Trimmed(0, end_);
    text_ = text_.substr(0, end_);
    for (position_ = begin_; position_ < end_; SkipBlanks()) {
      if (text_[position_] == kQuote) {
        if (!QuotedLiteral()) return;
      } else if (!delimiter_.empty() && text_.substr(position_).starts_with(delimiter_)) {
        DelimitedLiteral();
      } else {
        OperandAndElement();
      }
    }
  }

 private:
  void SkipBlanks() {
    while (position_ < end_ && text_[position_] == u' ') ++position_;
  }

  Token& Add(TokenKind kind, std::size_t start, std::size_t end) {
    Token& token = list_.tokens.emplace_back();
    token.kind = kind;
    token.start = static_cast<std::uint32_t>(start);
    token.length = static_cast<std::uint32_t>(end - start);
    return token;
  }

  bool QuotedLiteral() {
    const std::size_t close = text_.find(kQuote, position_ + 1);
    if (close == TextView::npos) {
      list_.faults.push_back({FaultCode::UnclosedLiteral, static_cast<std::uint32_t>(position_),
                              static_cast<std::uint32_t>(end_ - position_),
                              u"Fin de cadena no encontrado"});
      return false;
    }
    Add(TokenKind::Literal, position_ + 1, close);
    position_ = close + 1;
    return true;
  }

  // Blanks at the ends of such a literal are deliberately dropped; formulas keep
  // their blanks in double quotes.
  void DelimitedLiteral() {
    const std::size_t open = position_ + delimiter_.size();
    const std::size_t close = text_.find(delimiter_, open);
    if (close == TextView::npos) {
      AddOperand(position_, end_);
      position_ = end_;
      return;
    }
    const auto [first, last] = Trimmed(open, close);
    Add(TokenKind::Literal, first, last);
    position_ = close + delimiter_.size();
  }

  void OperandAndElement() {
    // A word operator may begin with the blank that was skipped last.
    const bool blank_before = position_ > begin_ && text_[position_ - 1] == u' ';
    const auto [element, start] = elements_.Find(text_, blank_before ? position_ - 1 : position_);
    if (!element) {
      AddOperand(position_, end_);
      position_ = end_;
      return;
    }
    if (start > position_) AddOperand(position_, start);
    const std::size_t blank = element->is_word ? 1 : 0;
    const std::size_t end = start + element->length - blank;
    TakeElement(Add(element->kind, start + blank, end), *element);
    position_ = end;  // the blank behind a word may stand before the next one
  }

  void AddOperand(std::size_t start, std::size_t end) {
    const auto [first, last] = Trimmed(start, end);
    if (first == last) return;
    const TextView operand = text_.substr(first, last - first);
    Token& token = Add(TokenKind::Name, first, last);
    if (ReadNumberToken(operand, token.number))
      token.kind = TokenKind::Number;
    else if (const Element* word = elements_.FindWord(operand))
      TakeElement(token, *word);
  }

  std::pair<std::size_t, std::size_t> Trimmed(std::size_t start, std::size_t end) const {
    while (start < end && text_[start] == u' ') ++start;
    while (start < end && text_[end - 1] == u' ') --end;
    return {start, end};
  }

  TokenList& list_;
  TextView text_;
  const ElementSearch& elements_;
  TextView delimiter_;
  // The formula without the blanks around it.
  std::size_t begin_ = 0;
  std::size_t end_ = text_.size();
  std::size_t position_ = 0;
};

}  // namespace

void Tokenize(TokenList& list, const ElementSearch& elements, TextView string_delimiter) {
  list.tokens.reserve(list.text.size() / 4 + 2);
  Tokenizer(list, elements, string_delimiter).Run();
}

void AppendHostToken(TokenList& list, const Variant& value, const ElementSearch& elements,
                     const Symbols& symbols) {
  Token token;
  token.start = static_cast<std::uint32_t>(list.text.size());
  if (!value.Is(Subtype::String)) {
    token.kind = TokenKind::Value;
    token.value = &value;
    list.tokens.push_back(token);
    return;
  }
  const TextView text = value.AsText();
  const TextView word = Trim(text);
  token.length = static_cast<std::uint32_t>(text.size());
  list.text.append(text).push_back(u' ');
  const Element* element = elements.Find(word, 0).element;
  if (ReadNumberToken(word, token.number)) {
    token.kind = TokenKind::Number;
  } else if (Campo* record = symbols.operators->Find(word)) {
    TakeElement(token, OperatorElement(*record));
  } else if (element && element->length == word.size() && !word.empty()) {
    TakeElement(token, *element);
  } else if (word.size() > 1 && word.back() == u'(') {
    token.kind = TokenKind::Function;
    token.is_opener = true;
  } else if (text.size() > 1 && text.front() == kQuote && text.back() == kQuote) {
    token.kind = TokenKind::Literal;
    token.start += 1;
    token.length -= 2;
  }
  list.tokens.push_back(token);
}

void TokenList::AppendSpelling(Text& target, const Token& token) const {
  if (token.kind == TokenKind::Literal)
    target.append(1, kQuote).append(Span(token)).append(1, kQuote);
  else if (token.record && token.kind != TokenKind::Name)
    target.append(Trim(token.record->Name()));
  else
    target.append(Span(token));
}

Text TokenList::Spelling(const Token& token) const {
  Text spelling;
  AppendSpelling(spelling, token);
  return spelling;
}

}  // namespace tovalin
