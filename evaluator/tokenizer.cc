#include "evaluator/tokenizer.h"

#include <algorithm>
#include <optional>

#include "evaluator/number_token.h"

namespace tovalin {
namespace {

constexpr char16_t kQuote = u'"';

class Tokenizer {
 public:
  Tokenizer(TokenList& list, const ElementSearch& elements, TextView delimiter)
      : list_(list), text_(list.text), elements_(elements), delimiter_(delimiter) {}

  void Run() {
    while (end_ > 0 && text_[end_ - 1] == u' ') --end_;
    text_ = text_.substr(0, end_);
    for (SkipBlanks(); position_ < end_; SkipBlanks()) {
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

  void Add(TokenKind kind, std::size_t start, std::size_t end, Campo* record = nullptr,
           const Builtin* builtin = nullptr) {
    Token& token = list_.tokens.emplace_back();
    token.kind = kind;
    token.start = static_cast<std::uint32_t>(start);
    token.length = static_cast<std::uint32_t>(end - start);
    token.record = record;
    token.builtin = builtin;
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
    const bool blank_before = position_ > 0 && text_[position_ - 1] == u' ';
    const auto match = elements_.Find(text_, blank_before ? position_ - 1 : position_);
    if (!match) {
      AddOperand(position_, end_);
      position_ = end_;
      return;
    }
    if (match->start > position_) AddOperand(position_, match->start);
    const std::size_t blank = match->is_word ? 1 : 0;
    const std::size_t end = match->start + match->length - blank;
    Add(match->kind, match->start + blank, end, match->record, match->builtin);
    list_.tokens.back().operator_code = match->operator_code;
    position_ = end;  // the blank behind a word may stand before the next one
  }

  void AddOperand(std::size_t start, std::size_t end) {
    const auto [first, last] = Trimmed(start, end);
    if (first == last) return;
    const TextView operand = text_.substr(first, last - first);
    if (const std::optional<double> number = NumberToken(operand)) {
      Add(TokenKind::Number, first, last);
      list_.tokens.back().number = *number;
    } else if (Campo* word = elements_.FindWord(operand)) {
      Add(TokenKind::Operator, first, last, word);
      list_.tokens.back().operator_code = CodeOf(Trim(word->Name()));
    } else {
      Add(TokenKind::Name, first, last);
    }
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
  std::size_t position_ = 0;
  std::size_t end_ = text_.size();
};

}  // namespace

void Tokenize(TokenList& list, const ElementSearch& elements, TextView string_delimiter) {
  list.tokens.reserve(list.text.size() / 4 + 2);
  Tokenizer(list, elements, string_delimiter).Run();
}

void AppendHostToken(TokenList& list, TextView text, const ElementSearch& elements,
                     const Symbols& symbols) {
  const TextView word = Trim(text);
  Token token;
  token.start = static_cast<std::uint32_t>(list.text.size());
  token.length = static_cast<std::uint32_t>(text.size());
  list.text.append(text).push_back(u' ');
  const auto match = elements.Find(word, 0);
  if (const std::optional<double> number = NumberToken(word)) {
    token.kind = TokenKind::Number;
    token.number = *number;
  } else if (Campo* record = symbols.operators->Find(word)) {
    token.kind = TokenKind::Operator;
    token.record = record;
    token.operator_code = CodeOf(Trim(record->Name()));
  } else if (match && match->length == word.size() && !word.empty()) {
    token.kind = match->kind;
    token.record = match->record;
    token.builtin = match->builtin;
  } else if (word.size() > 1 && word.back() == u'(') {
    token.kind = TokenKind::Function;
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
